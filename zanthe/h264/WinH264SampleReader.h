// Reads the H.264, HEVC and MPEG-4 part 2 video of MP4 and QuickTime files by exact time.
//
//     std::unique_ptr<WinH264SampleReader> reader(
//         WinH264SampleReader::create(path, 0, DecoderOutputFormat::MemoryArgb32, nullptr));
//     if (reader->readerStatus() != ReaderStatus::ReaderStatusOk) ... // it gives no samples
//     std::unique_ptr<VideoSample> sample(
//         reader->readVideoSample(MediaTime(5, 2), {}, VideoSampleReaderFlags::None));
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <string>

#include "platform/com/ComPtr.h"
#include "zanthe/core/DecoderOutputFormat.h"
#include "zanthe/core/Export.h"
#include "zanthe/core/VideoSampleReader.h"
#include "zanthe/h264/ColorConversionInfo.h"
#include "zanthe/h264/NativeMediaTypeInfo.h"
#include "zanthe/h264/ReadSampleOp.h"
#include "zanthe/h264/ReaderStatus.h"

struct IMFDXGIDeviceManager;
struct IMFSample;
struct IMFSourceReader;

namespace Zanthe {

class Nv12ToRgb32;
class WinH264FastSampleFinder;

// What the output formats come to:
//
//                    DeviceArgb32             MemoryArgb32   MemoryNv12
//     decoded as     ARGB32                   ARGB32         NV12
//     samples        ARGB32, on the device    ARGB32         RGB32 with alpha 255, converted
//                    if it is granted                        anew for each read
//
// DeviceArgb32 becomes MemoryArgb32 without a device manager, on systems older than 6.2, and while
// two other readers of the process decode on the device (a rough limit: readers opened at the same
// moment can pass it together). A file whose picture is to be turned by 90, 180 or 270 degrees is
// read as MemoryNv12, whatever was asked for. Its pictures come as they are stored: a host turns
// them clockwise by nativeMediaTypeInfo().rotation, or shows most clips of phones on their side,
// and stretches them by the pixel aspect ratio there.
//
// Thread-safety: none; one reader serves one thread at a time. Different readers are independent.
class ZANTHE_API WinH264SampleReader : public VideoSampleReader {
public:
    // A reader on the first video stream of the file at `path` (UTF-8); streamIndex plays no part.
    // It is the caller's, who ends it with delete, and never null: readerStatus() says whether it
    // gives samples. A reference is kept on deviceManager, which may be null.
    //
    // Throws boost::bad_rational where the shape of the pixels that the file's headers come to is
    // no ratio of positive 32-bit numbers.
    static WinH264SampleReader* create(const std::string& path, int streamIndex,
                                       DecoderOutputFormat format,
                                       IMFDXGIDeviceManager* deviceManager);

    // How many readers of a process may decode on the graphics device: 2.
    static int ActiveHardwareDecodersLimit();

    // Waits for the collection of the file's key frames, where that has not ended.
    ~WinH264SampleReader() override;

    // VideoSampleReader
    // The size that the file tells, which the decoded picture may exceed; 0 for a reader without
    // samples.
    int outputWidth() const override;
    int outputHeight() const override;

    // Null for a reader without samples and where readSample gives none. The callback and the flags
    // play no part.
    //
    // Throws std::runtime_error: "Couldn't find key frame times" for a later time where the file
    // has no table of key frames, as elementary streams have none; "MFVideoSample: Couldn't get
    // MediaBuffer from MFSample".
    VideoSample* readVideoSample(MediaTime time, std::function<void(unsigned char*, int)> prepare,
                                 VideoSampleReaderFlags flags) override;
    bool requiresFlagSometimesToActuallyGetSamples() override; // false
    bool requiresMediaOrientationTransformation() override;    // false, for turned pictures too

    // The platform's sample of the frame shown at `time`, with a reference for the caller, as
    // WinH264FastSampleFinder::findSampleAtTime finds it; its time counts from the first sample. It
    // carries MF_MT_FRAME_SIZE, the size of its buffer, and unless it was converted the attributes
    // that ColorConversionInfo reads. Null where there is none, where the conversion fails, and for
    // a reader without samples. The flags play no part. Throws as readVideoSample.
    IMFSample* readSample(MediaTime time, VideoSampleReaderFlags flags);

    // Set by create, and never changed.
    ReaderStatus readerStatus() const { return m_status; }

    const NativeMediaTypeInfo& nativeMediaTypeInfo() const { return m_nativeType; }

    // Whether the samples lie on the graphics device.
    bool IsDXGI() const { return m_usesHardware; }

    // The output that the reader has, which need not be the one asked for.
    DecoderOutputFormat outputFormat() const { return m_outputFormat; }

    // How the samples' YUV is to become RGB.
    const ColorConversionInfo& colorConversionInfo() const { return m_color; }

    // The stream's end by the file's header, in units of 100 ns; -1 for a reader without samples. A
    // time equal to it is still answered, one behind it is not, wherever the last picture ends.
    std::int64_t StreamDuration() const;

    // The sample finder's logs; see there. Empty for a reader without samples.
    const std::deque<ReadSampleOp>& readSampleOps() const;
    const std::deque<std::int64_t>& readSampleFailures() const;
    const std::deque<int>& attempts() const;

    // Whether getting from one time to another, both in units of 100 ns, takes a seek. Throws
    // std::runtime_error with "WinH264SampleReader: No sample finder!" for a reader without
    // samples, and as the decider does.
    bool NeedToSeekBetweenTimes(std::int64_t from, std::int64_t to) const;

private:
    WinH264SampleReader(const std::string& path, DecoderOutputFormat format,
                        IMFDXGIDeviceManager* deviceManager);

    void Open();
    ReaderStatus Configure();
    ReaderStatus StartFinder();
    void OnSampleRead(IMFSample* sample);
    void OnFirstSample(IMFSample* sample);

    std::string m_path;

    // In the order of creation: the finder goes first, as its decider may still be collecting, then
    // what it reads from, and the device last.
    com::ComPtr<IMFDXGIDeviceManager> m_deviceManager;
    DecoderOutputFormat m_outputFormat;
    com::ComPtr<IMFSourceReader> m_sourceReader;
    NativeMediaTypeInfo m_nativeType;
    ReaderStatus m_status = ReaderStatus::ReaderStatusNotOpened;
    std::int64_t m_firstSampleTime = 0; // of the source
    int m_streamIndex = -1;
    std::unique_ptr<Nv12ToRgb32> m_converter; // for MemoryNv12
    bool m_firstSampleSeen = false;
    std::uint32_t m_decodedWidth = 0;
    std::uint32_t m_decodedHeight = 0;
    bool m_usesHardware = false;
    std::unique_ptr<WinH264FastSampleFinder> m_sampleFinder; // null where opening failed before it
    ColorConversionInfo m_color;
};

} // namespace Zanthe
