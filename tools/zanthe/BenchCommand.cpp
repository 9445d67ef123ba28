#include "tools/zanthe/BenchCommand.h"

#include <fstream>
#include <iomanip>
#include <numeric>
#include <sstream>
#include <utility>

#include "tools/zanthe/CommandError.h"
#include "tools/zanthe/Interrupt.h"
#include "tools/zanthe/Progress.h"
#include "tools/zanthe/TimeText.h"
#include "tools/zanthe/VideoJson.h"

namespace Program {

namespace {

double PicturesPerSecond(const BenchResult& result) {
    const double all = std::accumulate(result.milliseconds.begin(), result.milliseconds.end(), 0.0);
    return all > 0 ? 1000 * static_cast<double>(result.milliseconds.size()) / all : 0;
}

Json JsonOf(const BenchResult& result) {
    return {{"kind", NameOf(result.kind)},
            {"readings", result.milliseconds.size()},
            {"median_ms", result.Median()},
            {"p95_ms", result.Percentile95()},
            {"pictures_per_second", PicturesPerSecond(result)},
            {"work",
             {{"packets_read", result.work.packetsRead},
              {"pictures_decoded", result.work.picturesDecoded},
              {"pictures_converted", result.work.picturesConverted},
              {"seeks", result.work.seeks}}}};
}

void PrintJson(const BenchRequest& request, const VideoFacts& facts,
               const std::vector<BenchResult>& results, std::ostream& out) {
    Json all = Json::array();
    for (const BenchResult& result : results) {
        all.push_back(JsonOf(result));
    }
    PrintJsonLine({{"command", "bench"},
                   {"file", request.file},
                   {"video", JsonOf(facts)},
                   {"seed", request.plan.seed},
                   {"results", std::move(all)},
                   {"peak_memory_bytes", PeakMemory()}},
                  out);
}

void PrintRow(const BenchResult& result, std::ostream& out) {
    out << "  " << std::left << std::setw(22) << NameOf(result.kind) << std::right << std::setw(8)
        << result.milliseconds.size() << std::setprecision(2) << std::setw(11) << result.Median()
        << std::setw(11) << result.Percentile95() << std::setw(10) << result.work.packetsRead
        << std::setw(10) << result.work.picturesDecoded << std::setw(10)
        << result.work.picturesConverted << std::setw(8) << result.work.seeks << '\n';
}

void PrintLines(const BenchRequest& request, const VideoFacts& facts,
                const std::vector<BenchResult>& results, std::ostream& out) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(3) << OneLine(request.file) << ": " << facts.width
         << " x " << facts.height << ", " << facts.reader << "; seed " << request.plan.seed << '\n'
         << "                        readings  median ms     95 % ms   packets   decoded converted"
            "   seeks\n";
    for (const BenchResult& result : results) {
        PrintRow(result, text);
    }
    text << "  peak memory " << std::setprecision(1)
         << static_cast<double>(PeakMemory()) / (1 << 20) << " MiB\n";
    out << text.str();
}

std::string Where(BenchKind kind, std::size_t reading) {
    return std::string(NameOf(kind)) + ": " + std::to_string(reading);
}

} // namespace

// getrusage would count what this process's parent held before it became the program.
std::int64_t PeakMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        if (word == "VmHWM:") {
            std::int64_t kibibytes = 0;
            status >> kibibytes;
            return kibibytes * 1024;
        }
    }
    return 0;
}

void Bench(const VideoBench::Opening& open, const BenchRequest& request, std::ostream& out) {
    StandardProgress progress;
    VideoBench bench(open, request.plan, [&](BenchKind kind, std::size_t reading) {
        ThrowIfInterrupted();
        progress.Show(Where(kind, reading));
    });
    const std::vector<BenchResult> results = bench.Run();
    if (results.front().milliseconds.empty()) {
        throw CommandError(request.file, "holds no pictures");
    }
    progress.Wipe();
    if (request.json) {
        PrintJson(request, bench.Facts(), results, out);
    } else {
        PrintLines(request, bench.Facts(), results, out);
    }
}

void RunBench(const BenchRequest& request, std::ostream& out) {
    Bench([&] { return OpenVideo(request.file, request.choice); }, request, out);
}

} // namespace Program
