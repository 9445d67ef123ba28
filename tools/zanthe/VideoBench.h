// How fast is a video, asked as an editor asks?
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "tools/zanthe/IVideo.h"
#include "zanthe/core/WorkReport.h"

namespace Program {

enum class BenchKind { Open, Sequential, Random, Backward, ToAndFro };
inline constexpr int BenchKinds = 5;

// "open to first picture", "sequential", "random", "backward", "to and fro".
std::string_view NameOf(BenchKind kind);

struct BenchResult {
    BenchKind kind = BenchKind::Open;
    std::vector<double> milliseconds = {}; // of each reading, in order
    Zanthe::WorkDone work = {};            // by all of them together

    // Of `milliseconds`; 0 without any. The second is the least time that 95 % do not exceed.
    double Median() const;
    double Percentile95() const;
};

struct BenchPlan {
    int openings = 5;
    int sequential = 300; // pictures
    int random = 50;
    int backward = 100;
    int scrubs = 100;
    std::uint64_t seed = 1;
};

// Thread-safety: none.
class VideoBench {
public:
    using Opening = std::function<std::unique_ptr<IVideo>()>;
    // Called before each reading; may throw to stop the work.
    using Watch = std::function<void(BenchKind kind, std::size_t reading)>;

    VideoBench(Opening open, const BenchPlan& plan, Watch watch = {});

    // One result a kind, in order. Each kind has a video of its own, freshly opened, so that none
    // lives on what another has left behind. A reading ends with the picture's pixels in memory.
    //
    // Throws what opening, reading and the watch throw.
    std::vector<BenchResult> Run();

    // Of the video opened last.
    const VideoFacts& Facts() const { return m_facts; }

private:
    BenchResult Open();
    BenchResult Sequential();
    BenchResult Random();
    BenchResult Backward();
    BenchResult ToAndFro();

    struct Shown {
        std::int64_t time = 0; // as asked, 100 ns
        std::optional<std::int64_t> start;
        std::optional<std::int64_t> duration;
    };

    std::unique_ptr<IVideo> OpenOne();
    std::int64_t Length(IVideo& video);
    std::optional<Shown> Read(BenchResult& result, IVideo& video, std::int64_t time);

    Opening m_open;
    BenchPlan m_plan;
    Watch m_watch;
    VideoFacts m_facts;
    std::optional<std::int64_t> m_length; // 100 ns
};

} // namespace Program
