#include <exception>
#include <iostream>
#include <vector>

#include "bench/Comparison.h"

namespace {

// Before the arguments given, so that these win. Repetitions in random turns are what makes a
// ratio of two medians worth printing.
std::vector<char*> WithDefaults(int argc, char** argv) {
    static char repetitions[] = "--benchmark_repetitions=9";
    static char interleaving[] = "--benchmark_enable_random_interleaving=true";
    static char time[] = "--benchmark_min_time=0.3";
    std::vector<char*> arguments{argv[0], repetitions, interleaving, time};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    return arguments;
}

} // namespace

int main(int argc, char** argv) {
    try {
        auto arguments = WithDefaults(argc, argv);
        int count = static_cast<int>(arguments.size());
        benchmark::Initialize(&count, arguments.data());
        if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) {
            return 2;
        }
        RegisterComparisons();
        return RunComparisons() ? 0 : 1;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
