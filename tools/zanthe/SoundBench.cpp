#include "tools/zanthe/SoundBench.h"

#include <algorithm>
#include <random>
#include <utility>

#include "tools/zanthe/Sound.h"
#include "tools/zanthe/Stopwatch.h"

namespace Program {

SoundBench::SoundBench(Opening open, const SoundBenchPlan& plan, Watch watch)
    : m_open(std::move(open))
    , m_plan(plan)
    , m_watch(std::move(watch))
    , m_left(static_cast<std::size_t>(plan.rate))
    , m_right(static_cast<std::size_t>(plan.rate))
    , m_planes{m_left.data(), m_right.data()} {}

std::vector<BenchResult> SoundBench::Run() {
    std::vector<BenchResult> results;
    results.push_back(Open());
    results.push_back(Sequential());
    results.push_back(Random());
    results.push_back(Backward());
    return results;
}

std::int64_t SoundBench::Length(Zanthe::IAudioReader& reader) {
    if (!m_length) {
        m_length = FindSoundEnd(reader, m_plan.rate);
    }
    return *m_length;
}

// Whether anything was there.
bool SoundBench::Read(BenchResult& result, Zanthe::IAudioReader& reader, std::int64_t start) {
    if (m_watch) {
        m_watch(result.kind, result.milliseconds.size());
    }
    const Stopwatch stopwatch;
    const auto frames = static_cast<unsigned int>(m_plan.rate);
    const bool any = reader.FillAudioBuffer(start, frames, m_planes) > 0;
    if (any) {
        result.milliseconds.push_back(stopwatch.Milliseconds());
    }
    return any;
}

BenchResult SoundBench::Open() {
    BenchResult result{.kind = BenchKind::Open};
    for (int i = 0; i < m_plan.openings; ++i) {
        if (m_watch) {
            m_watch(result.kind, result.milliseconds.size());
        }
        const Stopwatch stopwatch;
        const auto reader = m_open();
        if (reader->FillAudioBuffer(0, static_cast<unsigned int>(m_plan.rate / 10), m_planes) > 0) {
            result.milliseconds.push_back(stopwatch.Milliseconds());
        }
    }
    return result;
}

BenchResult SoundBench::Sequential() {
    BenchResult result{.kind = BenchKind::Sequential};
    const auto reader = m_open();
    for (std::int64_t i = 0; i < m_plan.sequential && Read(result, *reader, i * m_plan.rate); ++i) {
    }
    return result;
}

BenchResult SoundBench::Random() {
    BenchResult result{.kind = BenchKind::Random};
    const auto reader = m_open();
    const std::int64_t length = Length(*reader);
    std::mt19937_64 random(m_plan.seed);
    for (int i = 0; i < m_plan.random && length > 0; ++i) {
        Read(result, *reader, std::uniform_int_distribution<std::int64_t>(0, length - 1)(random));
    }
    return result;
}

// From three quarters of the sound on, where a reader that begins at the start again would show.
BenchResult SoundBench::Backward() {
    BenchResult result{.kind = BenchKind::Backward};
    const auto reader = m_open();
    const std::int64_t length = Length(*reader);
    std::int64_t start = length / 4 * 3;
    for (int i = 0; i < m_plan.backward && length > 0 && start >= 0; ++i) {
        Read(result, *reader, start);
        start -= m_plan.rate;
    }
    return result;
}

} // namespace Program
