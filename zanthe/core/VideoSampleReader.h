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

    // The size of the delivered picture as it is stored, in pixels: neither turned nor stretched. 0
    // by 0 for a reader whose file could not be opened, which DecoderFactory tells of.
    virtual int outputWidth() const = 0;
    virtual int outputHeight() const = 0;

    // The sample of the frame shown at `time` (seconds from the start of the stream), or null when
    // there is none. Time 0 is the first picture, whatever time the file gives that: it is taken
    // off all others. Of WinH264SampleReader a negative time is the first picture's too, and none
    // is shown behind the duration in the file's header, also where the last would stay for longer.
    // The sample tells no time; VideoSample.h says where that stands. It is the caller's, who ends
    // it with delete. It keeps what it needs alive by itself, also when the reader has moved on or
    // gone; only the samples of VideoDecoderToVideoSampleReader (recordings, GIF, PNG in QuickTime)
    // share one picture, which the next read overwrites, and where there is no picture at `time`
    // they show the one before.
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

    // Not whether pictures are to be turned: they come as they are stored, from every reader, and
    // it is the host that turns them, by WinH264SampleReader::nativeMediaTypeInfo().rotation or
    // ClassifyFile(path).orientation. True would ask for the turn of the file's orientation on top
    // of what a reader tells of its own; no reader of this library asks for that: all answer false,
    // also for a phone's clip that lies on its side.
    virtual bool requiresMediaOrientationTransformation() = 0;
};

} // namespace Zanthe
