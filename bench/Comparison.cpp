#include "bench/Comparison.h"

#include <algorithm>
#include <iomanip>
#include <iostream>
#include <map>
#include <numeric>
#include <optional>
#include <regex>
#include <stdexcept>
#include <utility>
#include <vector>

namespace {

struct Result {
    std::string name;
    Comparison::Contender contender;
    std::vector<double> times; // of one iteration each, in the unit of the run
    std::map<std::string, std::vector<double>> counters;
    std::string error;
};

struct Task {
    std::string name;
    int iterations = 0;          // 0: as many as take the usual time
    std::vector<Result> results; // the floor's first
};

std::vector<Task>& Tasks() {
    static std::vector<Task> tasks;
    return tasks;
}

Task& TaskNamed(const std::string& name) {
    auto& tasks = Tasks();
    const auto found = std::find_if(tasks.begin(), tasks.end(),
                                    [&](const Task& task) { return task.name == name; });
    return found != tasks.end() ? *found : tasks.emplace_back(Task{name, 0, {}});
}

// Registered names are TASK/CONTENDER.
Result& ResultOf(const std::string& registered) {
    const auto slash = registered.find('/');
    auto& results = TaskNamed(registered.substr(0, slash)).results;
    const auto found = std::find_if(results.begin(), results.end(), [&](const Result& result) {
        return result.name == registered.substr(slash + 1);
    });
    if (found == results.end()) {
        throw std::logic_error("no contender " + registered);
    }
    return *found;
}

std::optional<double> Median(std::vector<double> values) {
    if (values.empty()) {
        return std::nullopt;
    }
    std::sort(values.begin(), values.end());
    const std::size_t half = values.size() / 2;
    return values.size() % 2 != 0 ? values[half] : (values[half - 1] + values[half]) / 2;
}

std::optional<double> Mean(const std::vector<double>& values) {
    return values.empty() ? std::nullopt
                          : std::optional(std::accumulate(values.begin(), values.end(), 0.0) /
                                          static_cast<double>(values.size()));
}

// A counted task has turns that cost far more than others, which a median would leave out.
std::optional<double> Typical(const Task& task, const std::vector<double>& values) {
    return task.iterations > 0 ? Mean(values) : Median(values);
}

// Gathers the single repetitions; Google Benchmark's own aggregates know nothing of ratios.
class Gatherer : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context& context) override {
        PrintBasicContext(&std::cerr, context);
        return true;
    }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration) {
                Gather(run);
            }
        }
    }

private:
    static void Gather(const Run& run) {
        Result& result = ResultOf(run.run_name.function_name);
        if (run.error_occurred) {
            result.error = run.error_message;
            return;
        }
        result.times.push_back(run.GetAdjustedRealTime());
        for (const auto& [name, counter] : run.counters) {
            result.counters[name].push_back(counter.value);
        }
    }
};

void PrintResult(const Task& task, const Result& result, std::optional<double> floor) {
    std::cout << "  " << std::left << std::setw(12) << result.name << std::right;
    const auto time = Typical(task, result.times);
    if (!result.error.empty() || !time) {
        std::cout << "  " << (result.error.empty() ? "not run" : result.error) << '\n';
        return;
    }
    std::cout << std::fixed << std::setprecision(3) << std::setw(12) << *time << " ms";
    if (floor) {
        std::cout << std::setprecision(2) << std::setw(8) << *time / *floor << " x";
    }
    for (const auto& [name, values] : result.counters) {
        std::cout << "   " << name << ' ' << std::setprecision(1) << *Typical(task, values);
    }
    std::cout << '\n';
}

// A filter on the command line may have left its floor out.
void PrintTask(const Task& task) {
    std::cout << '\n' << task.name << '\n';
    const auto floor = Typical(task, task.results.front().times);
    for (const Result& result : task.results) {
        PrintResult(task, result, floor);
    }
    std::cout << std::flush;
}

bool IsWanted(const std::string& name) {
    const std::string filter = benchmark::GetBenchmarkFilter();
    return filter.empty() || filter == "all" || std::regex_search(name, std::regex(filter));
}

// Leaves registered what the command line asks for of this task alone; false where that is nothing.
bool Register(Task& task) {
    benchmark::ClearRegisteredBenchmarks();
    bool any = false;
    for (const Result& result : task.results) {
        const std::string name = task.name + "/" + result.name;
        if (!IsWanted(name)) {
            continue;
        }
        any = true;
        auto* registered = benchmark::RegisterBenchmark(name.c_str(), result.contender)
                               ->UseRealTime()
                               ->Unit(benchmark::kMillisecond);
        if (task.iterations > 0) {
            registered->Iterations(task.iterations);
        }
    }
    return any;
}

bool Failed(const Task& task) {
    return std::any_of(task.results.begin(), task.results.end(),
                       [](const Result& result) { return !result.error.empty(); });
}

} // namespace

Comparison::Comparison(std::string task, int iterations)
    : m_task(std::move(task)) {
    TaskNamed(m_task).iterations = iterations;
}

Comparison& Comparison::Add(const std::string& name, Contender contender) {
    TaskNamed(m_task).results.push_back({name, std::move(contender), {}, {}, {}});
    return *this;
}

bool RunComparisons() {
    for (Task& task : Tasks()) {
        if (Register(task)) {
            Gatherer gatherer;
            benchmark::RunSpecifiedBenchmarks(&gatherer);
            PrintTask(task);
        }
        for (Result& result : task.results) {
            result.contender = nullptr; // gives back what it held open
        }
    }
    return std::none_of(Tasks().begin(), Tasks().end(), Failed);
}
