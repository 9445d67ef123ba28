// The same work on several threads at once.
#pragma once

#include <thread>
#include <vector>

// Calls `work` with the numbers 0 to count - 1, each on a thread of its own, and returns when all
// have ended.
template <typename Work>
void OnAllThreads(int count, const Work& work) {
    std::vector<std::jthread> threads;
    threads.reserve(static_cast<std::size_t>(count));
    for (int thread = 0; thread < count; ++thread) {
        threads.emplace_back([&work, thread] { work(thread); });
    }
}
