// A source of sound that lands and fails as the test says, and counts what is asked of it. Its
// samples tell where they are from: frame i is (i, -i).
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "platform/com/ComPtr.h"
#include "platform/mf/SourceReader.h"
#include "platform/mf/SourceReaderFactory.h"
#include "tests/support/StereoSound.h"

// What a read comes to.
enum class SoundOutcome {
    Sample,
    Tick,          // a gap in the stream: no sample
    Nothing,       // neither a sample nor a reason
    Failed,        // the answer is a failure
    Refused,       // there is no answer: the request itself fails
    End,           // without a sample
    EndWithSample, // the last one, which says so
    TickWithSample,
};

struct SoundSample {
    std::int64_t time = 0;       // on the source's timeline, in units of 100 ns
    std::int64_t firstFrame = 0; // where its sound is from
    std::int64_t frames = 0;
    std::int64_t duration = -1; // as the source tells it; -1: not at all
};

// `count` samples of `frames` each at `rate`, one behind the other, the first one at `start`.
std::vector<SoundSample> SoundSamples(int count, std::int64_t frames, int rate,
                                      std::int64_t start = 0);

struct SoundScript {
    std::vector<SoundSample> samples;
    // Which sample comes next behind a seek; by default the one that holds the position, or the
    // last.
    std::function<std::size_t(std::int64_t position)> landing;
    // What the read of this number comes to, counted from 0 over the reader's life.
    std::function<SoundOutcome(int read)> outcome;
    std::int64_t duration = 0; // of the presentation; 0: not told
    bool onThread = false;     // the answers come from a thread of their own
    DWORD streamIndex = 1;

    HRESULT openResult = S_OK;
    HRESULT nativeTypeResult = S_OK;
    HRESULT setTypeResult = S_OK;
    HRESULT selectResult = S_OK; // of the sound
    HRESULT flushResult = S_OK;
    HRESULT positionResult = S_OK;
    com::ComPtr<IMFMediaType> nativeType; // by default PCM of 16 bits, stereo, 44100 Hz
    std::uint32_t sampleBytes = 4;        // 4: floats; 2: integers

    // What was asked.
    int reads = 0;
    int flushes = 0;
    std::vector<std::int64_t> positions;
    std::vector<std::pair<DWORD, BOOL>> selections;
    com::ComPtr<IMFMediaType> typeSet;
    std::wstring url;
};

using Script = std::shared_ptr<SoundScript>;

Script MakeSoundScript(std::vector<SoundSample> samples);

// What frames from `first` on are.
StereoSound Ramp(std::int64_t first, std::size_t count);

// A source to make readers over; the scripted reader does not look at it.
com::ComPtr<IMFMediaSource> MakeScriptedSource();

// As long as it lives, every source reader that is opened is a scripted one.
class ScriptedSoundOpening {
public:
    explicit ScriptedSoundOpening(const Script& script);
    ScriptedSoundOpening(const ScriptedSoundOpening&) = delete;
    ScriptedSoundOpening& operator=(const ScriptedSoundOpening&) = delete;
    ~ScriptedSoundOpening();

private:
    mf::SourceReaderFactory m_fromUrl;
    mf::MediaSourceReaderFactory m_fromSource;
};
