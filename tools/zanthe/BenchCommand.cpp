#include "tools/zanthe/BenchCommand.h"

#include <fstream>
#include <iomanip>
#include <numeric>
#include <sstream>
#include <utility>

#include "tools/zanthe/CommandError.h"
#include "tools/zanthe/InputFile.h"
#include "tools/zanthe/Interrupt.h"
#include "tools/zanthe/OpenAudio.h"
#include "tools/zanthe/Progress.h"
#include "tools/zanthe/TimeText.h"
#include "tools/zanthe/VideoJson.h"
#include "zanthe/analysis/FileClassification.h"

namespace Program {

namespace {

// What was measured of one kind of stream; without results where there is none.
template <typename Measured>
struct Part {
    Measured facts = {};
    std::vector<BenchResult> results = {};
    std::string absent = {}; // why there is none
};

using VideoPart = Part<VideoFacts>;
using SoundPart = Part<SoundBenchPlan>;

double PerSecond(const BenchResult& result) {
    const double all = std::accumulate(result.milliseconds.begin(), result.milliseconds.end(), 0.0);
    return all > 0 ? 1000 * static_cast<double>(result.milliseconds.size()) / all : 0;
}

// How many seconds of sound come in one: a reading is a second long.
double TimesRealTime(const BenchResult& result) {
    return result.Median() > 0 ? 1000 / result.Median() : 0;
}

Json TimesOf(const BenchResult& result, std::string_view name) {
    return {{"kind", name},
            {"readings", result.milliseconds.size()},
            {"median_ms", result.Median()},
            {"p95_ms", result.Percentile95()}};
}

Json PictureJson(const BenchResult& result) {
    Json json = TimesOf(result, NameOf(result.kind));
    json["pictures_per_second"] = PerSecond(result);
    json["work"] = {{"packets_read", result.work.packetsRead},
                    {"pictures_decoded", result.work.picturesDecoded},
                    {"pictures_converted", result.work.picturesConverted},
                    {"seeks", result.work.seeks}};
    return json;
}

std::string_view SoundNameOf(BenchKind kind) {
    return kind == BenchKind::Open ? "open to first sound" : NameOf(kind);
}

Json SoundJson(const BenchResult& result) {
    Json json = TimesOf(result, SoundNameOf(result.kind));
    if (result.kind != BenchKind::Open) {
        json["times_real_time"] = TimesRealTime(result);
    }
    return json;
}

template <typename Each>
Json ListOf(const std::vector<BenchResult>& results, Each each) {
    Json all = Json::array();
    for (const BenchResult& result : results) {
        all.push_back(each(result));
    }
    return all;
}

void PrintJson(const BenchRequest& request, const VideoPart& video, const SoundPart& sound,
               std::ostream& out) {
    const bool hasVideo = !video.results.empty();
    const bool hasSound = !sound.results.empty();
    PrintJsonLine({{"command", "bench"},
                   {"file", request.file},
                   {"video", hasVideo ? JsonOf(video.facts) : Json(nullptr)},
                   {"seed", request.plan.seed},
                   {"results", ListOf(video.results, PictureJson)},
                   {"audio_rate", hasSound ? Json(sound.facts.rate) : Json(nullptr)},
                   {"audio_results", ListOf(sound.results, SoundJson)},
                   {"peak_memory_bytes", PeakMemory()}},
                  out);
}

void PrintTimes(const BenchResult& result, std::string_view name, std::ostream& out) {
    out << "  " << std::left << std::setw(22) << name << std::right << std::setw(8)
        << result.milliseconds.size() << std::setprecision(2) << std::setw(11) << result.Median()
        << std::setw(11) << result.Percentile95();
}

void PrintPictures(const VideoPart& video, std::ostream& out) {
    out << "                        readings  median ms     95 % ms   packets   decoded converted"
           "   seeks\n";
    for (const BenchResult& result : video.results) {
        PrintTimes(result, NameOf(result.kind), out);
        out << std::setw(10) << result.work.packetsRead << std::setw(10)
            << result.work.picturesDecoded << std::setw(10) << result.work.picturesConverted
            << std::setw(8) << result.work.seeks << '\n';
    }
}

void PrintSound(const SoundPart& sound, std::ostream& out) {
    out << "  sound at " << sound.facts.rate << " Hz, a second a reading\n"
        << "                        readings  median ms     95 % ms  times real time\n";
    for (const BenchResult& result : sound.results) {
        PrintTimes(result, SoundNameOf(result.kind), out);
        if (result.kind != BenchKind::Open) {
            out << std::setprecision(0) << std::setw(17) << TimesRealTime(result);
        }
        out << '\n';
    }
}

void PrintLines(const BenchRequest& request, const VideoPart& video, const SoundPart& sound,
                std::ostream& out) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(3) << OneLine(request.file) << ": ";
    if (!video.results.empty()) {
        text << video.facts.width << " x " << video.facts.height << ", " << video.facts.reader
             << "; ";
    }
    text << "seed " << request.plan.seed << '\n';
    if (!video.results.empty()) {
        PrintPictures(video, text);
    }
    if (!sound.results.empty()) {
        PrintSound(sound, text);
    }
    text << "  peak memory " << std::setprecision(1)
         << static_cast<double>(PeakMemory()) / (1 << 20) << " MiB\n";
    out << text.str();
}

std::string Where(BenchKind kind, std::size_t reading) {
    return std::string(NameOf(kind)) + ": " + std::to_string(reading);
}

// What a file does not have is no failure as long as it has the other.
template <typename Measured, typename Measure>
Part<Measured> Try(const Measure& measure, const char* nothing) {
    try {
        Part<Measured> part = measure();
        if (part.results.front().milliseconds.empty()) {
            return {.absent = nothing};
        }
        return part;
    } catch (const CommandError& error) {
        return {.absent = std::string(error.Reason())};
    }
}

VideoPart MeasureVideo(const BenchSources& sources, const BenchRequest& request,
                       const VideoBench::Watch& watch) {
    VideoBench bench(sources.video, request.plan, watch);
    auto results = bench.Run();
    return {.facts = bench.Facts(), .results = std::move(results)};
}

SoundPart MeasureSound(const BenchSources& sources, const BenchRequest& request,
                       const SoundBench::Watch& watch) {
    SoundBenchPlan plan = request.soundPlan;
    plan.seed = request.plan.seed;
    return {.facts = plan, .results = SoundBench(sources.sound, plan, watch).Run()};
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

void Bench(const BenchSources& sources, const BenchRequest& request, std::ostream& out) {
    StandardProgress progress;
    const auto watch = [&](BenchKind kind, std::size_t reading) {
        ThrowIfInterrupted();
        progress.Show(Where(kind, reading));
    };
    const auto video =
        Try<VideoFacts>([&] { return MeasureVideo(sources, request, watch); }, "holds no pictures");
    const auto sound = Try<SoundBenchPlan>([&] { return MeasureSound(sources, request, watch); },
                                           "holds no sound");
    if (video.results.empty() && sound.results.empty()) {
        throw CommandError(request.file, video.absent + "; " + sound.absent);
    }
    progress.Wipe();
    if (request.json) {
        PrintJson(request, video, sound, out);
    } else {
        PrintLines(request, video, sound, out);
    }
}

void RunBench(const BenchRequest& request, std::ostream& out) {
    RequireReadableFile(Zanthe::ContainerPathOf(request.file));
    const AudioChoice audio{.rate = request.soundPlan.rate};
    Bench({.video = [&] { return OpenVideo(request.file, request.choice); },
           .sound = [&] { return OpenAudio(request.file, audio).reader; }},
          request, out);
}

} // namespace Program
