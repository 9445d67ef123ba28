// How fast is a sound, asked as an editor asks?
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include <boost/shared_ptr.hpp>

#include "tools/zanthe/VideoBench.h"
#include "zanthe/audio/IAudioReader.h"

namespace Program {

struct SoundBenchPlan {
    int rate = 44100; // Hz
    int openings = 5;
    int sequential = 60; // spans of a second each, as are the next two
    int random = 50;
    int backward = 30;
    std::uint64_t seed = 1;
};

// Thread-safety: none.
class SoundBench {
public:
    using Opening = std::function<boost::shared_ptr<Zanthe::IAudioReader>()>;
    using Watch = VideoBench::Watch;

    SoundBench(Opening open, const SoundBenchPlan& plan, Watch watch = {});

    // One result a kind, in order: Open (to the first tenth of a second), Sequential, Random,
    // Backward. Each kind has a reader of its own. Without readings where there is no sound.
    //
    // Throws what opening, reading and the watch throw.
    std::vector<BenchResult> Run();

private:
    BenchResult Open();
    BenchResult Sequential();
    BenchResult Random();
    BenchResult Backward();

    std::int64_t Length(Zanthe::IAudioReader& reader);
    bool Read(BenchResult& result, Zanthe::IAudioReader& reader, std::int64_t start);

    Opening m_open;
    SoundBenchPlan m_plan;
    Watch m_watch;
    std::vector<float> m_left; // a span
    std::vector<float> m_right;
    std::vector<float*> m_planes;         // into them
    std::optional<std::int64_t> m_length; // frames
};

} // namespace Program
