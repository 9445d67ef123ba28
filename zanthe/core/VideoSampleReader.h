// A file's video, read at random: the frame shown at any time, in any order.
//
//     std::unique_ptr<VideoSample> sample(
//         reader->readVideoSample(MediaTime(5, 2), {}, VideoSampleReaderFlags::None));
//     if (!sample) ... // no frame there
#pragma once

#include <functional>

#include "zanthe/core/Export.h"
#include "zanthe/core/MediaTime.h"
#include "zanthe/core/VideoSample.h"
#include "zanthe/core/VideoSampleReaderFlags.h"

namespace Zanthe {

// Hosts call through the order of these operations: it is settled, and new ones go to the end.
//
// Thread-safety: none; one reader serves one thread at a time. Different readers are independent.
class ZANTHE_API VideoSampleReader {
public:
    VideoSampleReader() = default;
    VideoSampleReader(const VideoSampleReader&) = delete;
    VideoSampleReader& operator=(const VideoSampleReader&) = delete;
    virtual ~VideoSampleReader();

    // The size of the delivered picture, in pixels.
    virtual int outputWidth() const = 0;
    virtual int outputHeight() const = 0;

    // The sample of the frame shown at `time` (seconds from the start of the stream), or null when
    // there is none. It is the caller's, who ends it with delete. It keeps what it needs alive by
    // itself, also when the reader has moved on or gone; only the samples of
    // VideoDecoderToVideoSampleReader share one picture, which the next read overwrites.
    //
    // prepare(bits, bytesPerRow) is called before the frame is decoded, on this thread, by a reader
    // that decodes into memory of its own, so that the caller can see or clear that memory. It may
    // be empty. Readers that hand over a platform sample have no such memory and drop it.
    //
    // Throws std::runtime_error when the reader is broken; which texts, each reader says.
    virtual VideoSample* readVideoSample(MediaTime time,
                                         std::function<void(unsigned char*, int)> prepare,
                                         VideoSampleReaderFlags flags) = 0;

    // True when a read without VideoSampleReaderFlags::QuickAnswer can fail to bring a sample that
    // a read with it brings.
    virtual bool requiresFlagSometimesToActuallyGetSamples() = 0;

    // True when the caller must still turn the picture as the file's orientation says.
    virtual bool requiresMediaOrientationTransformation() = 0;
};

} // namespace Zanthe
