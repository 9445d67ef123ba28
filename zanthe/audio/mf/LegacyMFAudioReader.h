// A file's sound through Media Foundation at one fixed format, with little trust in where a source
// lands.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/com/ComPtr.h"
#include "platform/com/Result.h"
#include "platform/win32/CString.h"
#include "zanthe/audio/IAudioReader.h"

struct IMFMediaSource;
struct IMFMediaType;
struct IMFSample;
struct IMFTransform;

namespace Zanthe {

class AsyncAudioSource;
class StereoPlanes;

// Always 44100 Hz, stereo. From system version 6.2 on the source reader delivers that; below, a
// resampler stands behind it, which is pulled a frame at a time.
//
// After a seek it looks where it landed. Outside the target it seeks again, from the sixth attempt
// on at a target moved by a fifth of the miss; a source that lands three times on one place has its
// way, and that place is taken for the target; and after thirty attempts nothing is read. Three
// counts tell how that went.
//
// Nothing is thrown but for lack of memory.
//
// Thread-safety: none; one reader serves one thread at a time, which waits for the source's threads
// without a limit.
class ZANTHE_API LegacyMFAudioReader : public IAudioReader {
public:
    // Over the file at `path`, which Initialize opens. The flag plays no part then.
    LegacyMFAudioReader(CStringW path, bool flag);

    // Over a source, opened here, without a look at the system's version: the source delivers what
    // the reader does. Where that fails every read answers 0. Initialize does nothing more.
    explicit LegacyMFAudioReader(IMFMediaSource* source);

    ~LegacyMFAudioReader() override;

    // Opens the file and reads its first sample. Negative where that failed; where only the sample
    // could not be read, the reader is initialized all the same. S_OK without doing anything where
    // it is initialized.
    HRESULT Initialize();

    // IAudioReader
    //
    // 0 also for a negative startFrame, where the frame cannot be reached, and before Initialize.
    unsigned int FillAudioBuffer(std::int64_t startFrame, unsigned int frameCount,
                                 std::vector<float*>& channels) override;

    // Each is -1 before Initialize.
    std::int64_t StreamLength() const; // in units of 100 ns; 0 where it is not told
    std::int32_t NumSeeks() const;
    std::int32_t NumReseeks() const;     // landings outside the target
    std::int32_t NumTimeAdjusts() const; // targets that were moved by a fifth of the miss

private:
    HRESULT OpenFile();
    HRESULT UseCanonicalFormat();
    HRESULT UseResampler(IMFMediaType& native);
    HRESULT ReadFirstSample();

    bool IsSeekForced() const;
    com::ComPtr<IMFSample> SampleAtTime(std::int64_t time, bool force);
    void SeekTo(std::int64_t time);
    com::ComPtr<IMFSample> ReadUpTo(std::int64_t time, bool sought);
    com::ComPtr<IMFSample> NextSample();
    void Keep(com::ComPtr<IMFSample> sample, std::int64_t time, std::int64_t frames);

    void ReadDirect(std::int64_t time, StereoPlanes& planes);
    bool CopyIfItHolds(IMFSample& sample, std::int64_t target, StereoPlanes& planes);
    std::int64_t TargetBehindMiss(IMFSample& sample, std::int64_t target, int attempt);

    void ReadResampled(std::int64_t time, StereoPlanes& planes);
    bool StartResampling(std::int64_t time, bool force);
    void FeedSample(IMFSample& sample, std::int64_t frame);
    void PullFrames(StereoPlanes& planes);

    std::wstring m_path; // empty over a source
    bool m_directOutput; // the source delivers what the reader does
    bool m_initialized = false;
    std::int64_t m_firstSampleTime = 0; // the source's own
    std::int64_t m_streamLength = 0;    // in units of 100 ns
    std::int32_t m_reseekCount = 0;
    std::int32_t m_timeAdjustCount = 0;
    std::unique_ptr<AsyncAudioSource> m_source;
    std::int64_t m_positionFrame = 0;       // first frame of the current run
    std::int64_t m_framesSincePosition = 0; // read since then
    com::ComPtr<IMFSample> m_currentSample;
    std::int32_t m_seekCount = 0;
    std::uint32_t m_blockAlign;            // bytes of a frame, as the source delivers it
    com::ComPtr<IMFTransform> m_resampler; // empty with direct output
    std::int64_t m_nextFrame = -1;         // where the last read stopped; -1: nowhere to go on from
};

} // namespace Zanthe
