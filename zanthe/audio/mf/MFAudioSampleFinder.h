// A cursor over the decoded sound of a file, addressed by time.
//
//     MFAudioSampleFinder finder("clip.mp4", false);
//     if (finder.Initialize(48000) && finder.SeekAndWaitForSample(5 * 10'000'000, nullptr)) {
//         com::ComPtr<IMFSample> sample;
//         finder.GetCurrentSample(sample.Put());
//     }
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/com/ComPtr.h"
#include "zanthe/audio/mf/MFAudioSampleFormat.h"
#include "zanthe/core/Export.h"

struct IMFMediaSource;
struct IMFMediaType;
struct IMFSample;

namespace Zanthe {

class AsyncAudioSource;

// It trusts the source's time stamps right after a seek alone. From there on a sample's time is
// made of the number of frames received, and its duration of its bytes, so that samples meet
// without gaps and overlaps; now and then (after 60 seconds of sound, unless told otherwise) it
// seeks to bring the count back in line with the source.
//
// Times are in units of 100 ns; 0 is the start of the first sample that the source delivers.
//
//     not initialized       Initialize          initialized; there is no way back
//     initialized           end of the sound    initialized, without a current sample until a seek
//
// Nothing is thrown but for lack of memory. What fails answers false and leaves the finder usable;
// a read that fails leaves no current sample.
//
// Thread-safety: none; one thread at a time, which waits for the source's threads without a limit.
class ZANTHE_API MFAudioSampleFinder {
public:
    // How a time lies to the current sample.
    enum class SampleInRange : std::int32_t {
        NoAnswer = 0, // not initialized, or no current sample
        Within = 1,
        After = 2, // behind the sample
        Before = 3,
    };

    // Over the file at `path` (UTF-8), or over a source, of which it keeps a reference.
    // useNativeFormat: see Initialize. Both only keep what they are given.
    MFAudioSampleFinder(const std::string& path, bool useNativeFormat);
    MFAudioSampleFinder(IMFMediaSource* source, bool useNativeFormat);

    MFAudioSampleFinder(const MFAudioSampleFinder&) = delete;
    MFAudioSampleFinder& operator=(const MFAudioSampleFinder&) = delete;
    virtual ~MFAudioSampleFinder();

    // Opens the source and reads its first sample, which is then the current one. The samples are
    // stereo floats at sampleRate Hz, or, in the native format, of the source's own rate and
    // channels and float or integer as the source is; sampleRate then plays no part.
    //
    // True also where it is initialized already, with nothing done. False where there is no source
    // or no sound, where the format cannot be had, for a rate or a channel count of 0, and where
    // the first read fails. A source without any sample is no failure.
    bool Initialize(int sampleRate);

    // The next sample becomes the current one; false where there is none. After the forced interval
    // it is found by a seek.
    //
    // `sample` may be null; otherwise what it held is given back, and it gets the new sample with a
    // reference for the caller. On failure it is as it was.
    bool AdvanceToNextSample(IMFSample** sample);

    // The sample that holds `time` becomes the current one: by a seek, and from wherever that
    // lands by steps forward and further seeks, a hundred moves at most. False for a time before 0
    // or not before the presentation's length, where the position cannot be set, and where the
    // search comes back to where it was.
    //
    // `sample` is as above, and gets the one on which the first seek landed: the one that was found
    // is the current sample.
    bool SeekAndWaitForSample(std::int64_t time, IMFSample** sample);

    // *sample: the current one with a reference for the caller; what it held is given back. False
    // and null where there is none.
    bool GetCurrentSample(IMFSample** sample) const;

    SampleInRange IsTimeWithinCurrentSample(std::int64_t time) const;

    // *type: what the source delivers, the caller's own. False when not initialized.
    bool GetOutputType(IMFMediaType** type) const;

    bool HasNullCurrentSample() const { return !m_currentSample; }

    bool IsInitialized() const { return m_initialized; }

    // -1 before the first read.
    std::int32_t StreamIndex() const { return m_streamIndex; }

    // Seeks so far that the source made.
    std::int64_t SeekCount() const { return m_seekCount; }

    // The source's duration; the greatest number where it is not told.
    std::int64_t GetPresentationLength() const { return m_presentationLength; }

    // In frames; with 0 and less every step is a seek.
    std::int64_t ForcedSeekInterval() const { return m_forcedSeekInterval; }

    void SetForcedSeekInterval(std::int64_t frames) { m_forcedSeekInterval = frames; }

    const MFAudioSampleFormat& AudioSampleFormat() const { return m_format; }

    // Empty over a source.
    const std::string& FilePath() const { return m_filePath; }

private:
    bool OpenSource();
    bool ChooseFormat(int sampleRate);
    bool UseFormat();
    bool ReadFirstSample();
    bool ReadSample();
    void BeginSearch();
    bool Advance(IMFSample** sample);
    bool StepToNextSample();
    bool SeekTo(std::int64_t time);
    bool SeekAndWalk(std::int64_t time, IMFSample** sample);
    bool WalkTo(std::int64_t time);
    bool MoveTowards(std::int64_t time, SampleInRange range);
    void FixDuration();
    void FixSampleBehindSeek();
    void FixSampleBehindStep();
    std::int64_t CountedTime() const;
    std::int64_t CurrentTime() const;
    std::int64_t CurrentDuration() const;
    void GiveCurrentSample(IMFSample** sample) const;

    std::string m_filePath;
    bool m_useNativeFormat;
    bool m_initialized = false;
    std::unique_ptr<AsyncAudioSource> m_source;
    com::ComPtr<IMFSample> m_currentSample;
    std::int32_t m_streamIndex = -1;
    std::int64_t m_firstSampleTime = 0; // the source's own
    std::int64_t m_baseFrame = 0;       // of the sample that the latest seek brought
    std::int64_t m_framesSinceSeek = 0; // received before the current sample
    std::int64_t m_presentationLength;
    std::int64_t m_seekCount = 0;
    com::ComPtr<IMFMediaSource> m_mediaSource; // empty over a file
    std::int64_t m_forcedSeekInterval = 0;
    MFAudioSampleFormat m_format;
    int m_emptySamples = 0; // in a row
    // Of the search that is under way:
    int m_openWalks = 0; // one within the other
    int m_movesLeft = 0; // of all its walks
};

} // namespace Zanthe
