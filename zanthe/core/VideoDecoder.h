// A decoder that writes frames into the caller's memory.
//
//     std::vector<unsigned char> buffer(decoder.outputWidth() * decoder.outputHeight() * 4);
//     double actualTime = -1.0;
//     decoder.readFrame(MediaTime(1, 2), buffer.data(), actualTime);
#pragma once

#include "zanthe/core/Export.h"
#include "zanthe/core/MediaTime.h"

namespace Zanthe {

// Hosts call through the order of these operations: it is settled, and new ones go to the end.
//
// Thread-safety: none; one decoder serves one thread at a time. Different decoders are independent.
class ZANTHE_API VideoDecoder {
public:
    VideoDecoder() = default;
    VideoDecoder(const VideoDecoder&) = delete;
    VideoDecoder& operator=(const VideoDecoder&) = delete;
    virtual ~VideoDecoder();

    // The size of every frame, in pixels.
    virtual int outputWidth() const = 0;
    virtual int outputHeight() const = 0;

    // Writes the frame shown at `time` (seconds from the start of the stream) into `buffer`, the
    // caller's, of at least outputWidth() * outputHeight() * 4 bytes: 4 bytes a pixel, top row
    // first, width * 4 bytes a row. True when the buffer was served.
    //
    // actualTime, in seconds, goes in and out. In: the time of the frame that `buffer` holds from
    // the call before, -1.0 when it holds none; a decoder leaves the buffer alone when the frame is
    // still that one. Out: the time of the frame that `buffer` holds now.
    //
    // A time outside the stream is no error: the buffer is left untouched.
    // Throws std::runtime_error when the decoder is broken; which texts, each decoder says.
    virtual bool readFrame(MediaTime time, unsigned char* buffer, double& actualTime) = 0;
};

} // namespace Zanthe
