// One task, done by several contenders in one process, their repetitions in random turns, so that a
// machine that slows down slows all of them. Tasks follow each other: what one leaves in a cache is
// not worn by another's turns. The first contender is the floor: the least work that
// the task can be done with. What counts is a contender's ratio to it; times drift from run to run.
//
//     void RegisterComparisons() {
//         Comparison("random second")
//             .Add("ffmpeg", [](benchmark::State& state) { for (auto _ : state) ... })
//             .Add("zanthe", [](benchmark::State& state) { for (auto _ : state) ... });
//     }
#pragma once

#include <functional>
#include <string>

#include <benchmark/benchmark.h>

class Comparison {
public:
    using Contender = std::function<void(benchmark::State&)>;

    // The task's name, without a slash. `iterations`: how many make a repetition, of a task whose
    // turns differ so much that the mean of all of them counts; 0: as many as fill the time asked
    // for, and the median counts.
    explicit Comparison(std::string task, int iterations = 0);

    // Adds a contender; the first one is the floor. It is called once for each repetition and may
    // set counters on its state, which the table shows. What it needs once (an open file, an index)
    // belongs into what it captures.
    Comparison& Add(const std::string& name, Contender contender);

private:
    std::string m_task;
};

// Each bench program defines this one: it registers all its comparisons.
void RegisterComparisons();

// Runs what is registered and prints the table: per task each contender's median or mean real time,
// its ratio to the floor's and its counters. Answers false when a contender failed.
bool RunComparisons();
