// The pictures of one track of a ".brec" recording.
//
//     BRECVideoDecoder decoder("/x/a.brec", 0);
//     decoder.initialize();
//     std::vector<unsigned char> rows(decoder.outputWidth() * decoder.outputHeight() * 4);
//     double actualTime = -1.0;
//     decoder.readFrame(MediaTime(1, 2), rows.data(), actualTime);
//     if (actualTime >= 0.0) ... // else no picture came
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include <boost/shared_ptr.hpp>

#include "zanthe/core/VideoDecoder.h"

namespace BREC {
class AACDecoderFactory;
class AudioFormat;
class MP4TrackReader;
class Reader;
} // namespace BREC

// No failure shows in what a call answers, but in the time that it leaves. A recording that cannot
// be opened, or has no track of that number, is a video of no pixels.
//
// Thread-safety: none; one thread at a time. Different decoders are independent.
class BRECVideoDecoder : public Zanthe::VideoDecoder {
public:
    // `path` is UTF-8; trackIndex counts all tracks of the recording, from 0. Opens nothing.
    BRECVideoDecoder(std::string path, std::int32_t trackIndex);
    ~BRECVideoDecoder() override;

    // How a recording is opened: as BREC::Reader::create does it, and with its arguments.
    using Opener = std::function<boost::shared_ptr<BREC::Reader>(
        const std::string& path, const BREC::AudioFormat& format, BREC::AACDecoderFactory*)>;

    // Opens the recording; again, it opens anew. The second form does it in another way.
    void initialize();
    void initialize(const Opener& open);

    // VideoDecoder. Both are 0 without a track, and of one that has no pictures.
    int outputWidth() const override;
    int outputHeight() const override;

    // 32-bit pixels: blue, green, red and 255. Always true. actualTime becomes the second at which
    // the picture begins, or -1.0 with `buffer` untouched: before the start, behind the end, and
    // where the track gives no picture. A later call may succeed.
    bool readFrame(Zanthe::MediaTime time, unsigned char* buffer, double& actualTime) override;

private:
    std::string m_path;
    std::int32_t m_trackIndex;
    // The track goes before the reader.
    boost::shared_ptr<BREC::Reader> m_reader;
    boost::shared_ptr<BREC::MP4TrackReader> m_track; // empty: there is nothing to show
};
