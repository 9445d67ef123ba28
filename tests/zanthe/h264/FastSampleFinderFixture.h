// A sample finder over a scripted source and a scripted decider.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/zanthe/h264/ScriptedSourceReader.h"
#include "zanthe/h264/WinH264FastSampleFinder.h"

namespace Zanthe {

inline constexpr auto ReturnedCurrent = ReadSampleOp::ReturnedCurrentSample;
inline constexpr auto ReturnedPrevious = ReadSampleOp::ReturnedPreviousSample;
inline constexpr auto ReadNext = ReadSampleOp::ReadNextSample;
inline constexpr auto SeekBackward = ReadSampleOp::SeekBackward;
inline constexpr auto SeekForward = ReadSampleOp::SeekForward;
inline constexpr auto SeekFailed = ReadSampleOp::SeekFailed;

class ScriptedDecider : public ISeekOrStepThroughDecider {
public:
    using Answer = std::function<bool(std::int64_t, std::int64_t)>;

    explicit ScriptedDecider(Answer answer)
        : m_answer(std::move(answer)) {}

    // ISeekOrStepThroughDecider
    bool NeedToSeekBetweenTimes(std::int64_t from, std::int64_t to) const override {
        return m_answer(from, to);
    }

private:
    Answer m_answer;
};

inline bool Step(std::int64_t, std::int64_t) {
    return false;
}

inline bool Seek(std::int64_t, std::int64_t) {
    return true;
}

// A time that is cut to so many units of 100 ns, whatever doubles make of it.
inline MediaTime At(std::int64_t units) {
    return {2 * units + 1, 20'000'000};
}

class FastSampleFinder : public testing::Test {
protected:
    FastSampleFinder() { Use(Pictures(10, 100)); }

    void Use(std::vector<Picture> pictures) { m_script = MakeScript(std::move(pictures)); }

    std::int64_t EndOfPictures() const {
        const Picture& last = m_script->pictures.back();
        return last.time + last.duration - m_script->pictures.front().time;
    }

    void Open(ScriptedDecider::Answer answer = Step, std::int64_t duration = -2) {
        m_reader = MakeScriptedReader(m_script);
        IMFSample* first = ReadFirst(m_reader.Get());
        m_script->reads = 0;
        m_script->calls.clear();
        m_script->streamsRead.clear();
        m_finder = std::make_unique<WinH264FastSampleFinder>(
            m_reader.Get(), first, duration == -2 ? EndOfPictures() : duration, 1,
            std::make_unique<ScriptedDecider>(std::move(answer)), [this](IMFSample* sample) {
                LONGLONG time = 0;
                sample->GetSampleTime(&time);
                m_seen.push_back(time);
            });
    }

    com::ComPtr<IMFSample> Find(MediaTime time) {
        return com::ComPtr<IMFSample>::Attach(m_finder->findSampleAtTime(time));
    }

    // The time of the sample found at `units`; -1 for none.
    std::int64_t TimeFoundAt(std::int64_t units) {
        const auto sample = Find(At(units));
        LONGLONG time = -1;
        if (sample) {
            sample->GetSampleTime(&time);
        }
        return time;
    }

    Script m_script;
    com::ComPtr<IMFSourceReader> m_reader;
    std::vector<std::int64_t> m_seen; // by the callback
    std::unique_ptr<WinH264FastSampleFinder> m_finder;
};

} // namespace Zanthe
