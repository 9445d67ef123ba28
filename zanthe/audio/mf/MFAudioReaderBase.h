// What the readers that move a sample finder have in common.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "zanthe/audio/mf/MFAudioSampleFinder.h"
#include "zanthe/core/Export.h"

namespace Zanthe {

// Thread-safety: none; one reader serves one thread at a time.
class ZANTHE_API MFAudioReaderBase {
public:
    MFAudioReaderBase(const MFAudioReaderBase&) = delete;
    MFAudioReaderBase& operator=(const MFAudioReaderBase&) = delete;
    virtual ~MFAudioReaderBase();

    // Opens the sound; see MFAudioSampleFinder::Initialize. A reader that is not initialized
    // answers 0 to every read.
    virtual bool Initialize(int sampleRate);

protected:
    // The arguments are the finder's.
    MFAudioReaderBase(const std::string& path, bool useNativeFormat);
    MFAudioReaderBase(IMFMediaSource* source, bool useNativeFormat);

    // Has the finder stand on the sample that holds `frame`, counted at the finder's rate: as it
    // is, by steps where less than 5 seconds are missing, or by a seek. False where it cannot.
    bool MoveTo(std::int64_t frame);

    // Where `frame`, counted at the finder's rate, lies to the current sample.
    MFAudioSampleFinder::SampleInRange RangeOf(std::int64_t frame) const;

    MFAudioSampleFinder& Finder() const { return *m_sampleFinder; }

    // Of the finder's format; 0 before it is initialized.
    std::uint32_t SampleRate() const { return m_sampleRate; }

    std::uint32_t BlockAlign() const { return m_blockAlign; }

    std::int64_t TimeOf(std::int64_t frame) const; // in units of 100 ns

private:
    bool MoveForwardTo(std::int64_t time);
    bool SeekTo(std::int64_t time);
    bool StepTo(std::int64_t time);

    std::unique_ptr<MFAudioSampleFinder> m_sampleFinder;
    std::uint32_t m_sampleRate = 0; // Hz
    std::uint32_t m_blockAlign = 0; // bytes of a frame
};

} // namespace Zanthe
