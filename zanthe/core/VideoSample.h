// One frame of video, as a reader hands it over.
//
//     std::unique_ptr<VideoSample> sample(reader->readVideoSample(time, {}, flags));
//     sample->lockData();
//     draw(sample->data(), sample->bytesPerRow(), sample->isFlipped());
//     sample->unlockData();
//
// A pixel in memory is 4 bytes: blue, green, red, alpha. Alpha is 255 in films, which are opaque,
// and straight in QuickTime recordings of PNG pictures; in GIF files colours are multiplied by it.
//
// A sample tells neither its time nor how long it is shown. Of WinH264SampleReader both stand on
// the platform's sample, in units of 100 ns from the first picture: GetSampleTime and
// GetSampleDuration of MFVideoSample::imfSample(). A VideoDecoder leaves the time in the last
// argument of readFrame.
//
// What the implementations make of it:
//
//                         BitmapVideoSample   from DirectShow        from Media Foundation
//     decrementRefCount   nothing             releases IMediaSample  releases IMFSample
//     isFlipped           false               true                   false
//     videoSampleFormat   SystemMemory        SystemMemory           either
//     lockData, unlock    nothing             nothing                locks, unlocks IMFMediaBuffer
#pragma once

#include "zanthe/core/ColorSpace.h"
#include "zanthe/core/Export.h"
#include "zanthe/core/VideoSampleFormat.h"

namespace Zanthe {

// Hosts call through the order of these operations: it is settled, and new ones go to the end.
//
// Thread-safety: none, but a sample may outlive its reader and be used on another thread.
class ZANTHE_API VideoSample {
public:
    VideoSample() = default;
    VideoSample(const VideoSample&) = delete;
    VideoSample& operator=(const VideoSample&) = delete;

    // Gives back what the sample holds, its one reference on a platform sample included.
    virtual ~VideoSample();

    // Drops one reference on the platform sample underneath; on a sample without one it does
    // nothing. For readers, whose own search leaves them a reference too many: a sample arrives at
    // the caller holding exactly one, and the caller leaves this alone.
    virtual void decrementRefCount() = 0;

    // The picture as it is stored, in pixels: neither turned nor stretched.
    virtual int width() const = 0;
    virtual int height() const = 0;

    // The image in memory, in pixels: the picture, unless the platform's buffer is wider or taller.
    virtual int bufferWidth() const = 0;
    virtual int bufferHeight() const = 0;

    // Bytes from one row of the image in memory to the next.
    virtual int bytesPerRow() const = 0;

    // True when row 0 of the memory is the bottom of the picture.
    virtual bool isFlipped() const = 0;

    virtual VideoSampleFormat videoSampleFormat() = 0;

    // Makes data() and dataSize() valid; every call is ended by one of unlockData().
    virtual void lockData() = 0;

    // The first byte of the image in memory, the sample's, valid between lockData and unlockData.
    virtual unsigned char* data() = 0;

    virtual void unlockData() = 0;

    // Bytes of the image in memory.
    virtual int dataSize() = 0;

    // Null on every sample of this library.
    virtual CGColorSpace* colorSpace() const = 0;
};

} // namespace Zanthe
