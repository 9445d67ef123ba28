// The sound of one track of a ".brec" recording.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

#include "zanthe/audio/IAudioReader.h"
#include "zanthe/core/Export.h"

namespace BREC {
class AACDecoderFactory;
class AudioFormat;
class MP4TrackReader;
class Reader;
} // namespace BREC

namespace Zanthe {

// Hosts make it from a path; the other constructors take types that are not installed.
//
// Always two channels at 44100 Hz. A read that is no longer than those before allocates nothing.
//
// Thread-safety: none; one reader serves one thread at a time.
class ZANTHE_API BRECLibAudioMediaReader : public IAudioReader {
public:
    // Over track trackIndex, counted from 0, of the recording at `path` (UTF-8). Where there is no
    // such recording or no such track that is no failure: every read answers 0.
    BRECLibAudioMediaReader(const std::string& path, int trackIndex);

    // How a recording is opened: as BREC::Reader::create does it, and with its arguments.
    using Opener = std::function<boost::shared_ptr<BREC::Reader>(
        const std::string& path, const BREC::AudioFormat& format, BREC::AACDecoderFactory*)>;

    // The same over another way to open a recording.
    BRECLibAudioMediaReader(const std::string& path, int trackIndex, const Opener& open);

    // Over a track that is open already; empty is as no such track.
    explicit BRECLibAudioMediaReader(boost::shared_ptr<BREC::MP4TrackReader> track);

    ~BRECLibAudioMediaReader() override;

    // IAudioReader
    //
    // 0 also for a negative startFrame, and where the track gives no sound.
    unsigned int FillAudioBuffer(std::int64_t startFrame, unsigned int frameCount,
                                 std::vector<float*>& channels) override;

private:
    std::string m_path;
    boost::shared_ptr<BREC::Reader> m_reader;
    boost::shared_ptr<BREC::MP4TrackReader> m_track; // empty: nothing to read
    std::vector<unsigned char> m_scratch;            // interleaved 16-bit samples; only grows
    [[maybe_unused]] int m_trackIndex = 0;
};

} // namespace Zanthe
