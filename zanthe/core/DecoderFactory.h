// The one question for a file's video.
//
//     std::unique_ptr<DecoderFactory> factory(DecoderFactory::Create());
//     std::unique_ptr<VideoSampleReader> reader(
//         factory->CreateVideoSampleReader("clip.mp4", 0, false));
//     if (!reader || reader->outputWidth() == 0) ... // no pictures can be read, see below
//     std::unique_ptr<VideoSample> sample(reader->readVideoSample(...)); // null: no frame there
//
// Failures come in three kinds, so a host that survives them all catches std::exception and
// const char*.
//
// A host that shows one file in several places asks through VideoSampleReaderCache instead.
#pragma once

#include <string>

#include "zanthe/core/DecoderOutputFormat.h"
#include "zanthe/core/Export.h"
#include "zanthe/core/VideoSampleReader.h"

struct IMFDXGIDeviceManager;

namespace Zanthe {

// Hosts call through the order of these operations: it is settled, and new ones go to the end.
//
// Thread-safety: safe from any thread. The readers are not; see VideoSampleReader.
class ZANTHE_API DecoderFactory {
public:
    // A factory as most hosts want it: DeviceArgb32, no device, Media Foundation allowed. It is the
    // caller's, who ends it with delete; readers live on without it.
    static DecoderFactory* Create();

    // deviceManager: the host's graphics device or null; platform/mf/DXGIDeviceManager.h declares
    // it and what makes one. The factory takes over one reference from the caller and gives it back
    // when it is destroyed; when this throws, the reference is still the caller's.
    // useMediaFoundation: false keeps every file away from the H.264 reader.
    static DecoderFactory* Create(DecoderOutputFormat format, IMFDXGIDeviceManager* deviceManager,
                                  bool useMediaFoundation);

    DecoderFactory() = default;
    DecoderFactory(const DecoderFactory&) = delete;
    DecoderFactory& operator=(const DecoderFactory&) = delete;
    virtual ~DecoderFactory();

    // A reader over one video stream of the file at `path` (UTF-8), which may name a member of a
    // recording behind a "!". It is the caller's, who ends it with delete. A file that goes to the
    // H.264 reader gets one also when it cannot be opened: not null, of size 0 by 0 as a rule, and
    // every read gives null. WinH264SampleReader::readerStatus() tells why, as 2
    // (ReaderStatusSourceReaderFailed) for a file that is missing, damaged or of another kind. No
    // other backend is then tried.
    //
    // The first that fits decides. E is the text behind the last "." of the whole path, compared
    // with no regard to case; nothing of the first four fits a path without a dot. docs/classify.md
    // shows how to ask `zanthe classify` which it is for a file.
    //
    //     the member "Screen_Stream.avi" of a recording  screen recording of the older kind
    //     E is brec                                      recording
    //     E is mov, with PNG images as its pictures      QuickTime recording
    //     E is gif                                       animated GIF
    //     ".brec!" stands anywhere                       none: it throws
    //     E is wma, mp3, wav or m4a, and from system
    //     version 6.2 on mov or mp4, unless
    //     useMediaFoundation is false                    H.264 reader
    //     anything else                                  DirectShow
    //
    // streamIndex: the number of the stream among the file's own, where a backend looks at it.
    // deferInitialization: for the DirectShow reader, which with false prepares its graph in the
    // asynchronous manner and with true at once.
    //
    // Throws std::runtime_error:
    //   "DecoderFactory::CreateVideoDecoder: Couldn't find a decoder to match extension = " and E
    //        any other path with ".brec!" in it: a member of a recording has no decoder of its own
    //   "Can't create WICAnimatedGIFReader"
    //        E is gif: a picture of another kind, or a GIF that is damaged
    // DSMediaDetException:
    //   "Unable to create decoder"
    //        E is gif: no such file, or no picture
    // TextException, for a screen recording of the older kind:
    //   "OrirecScreenVideoDecoder - orirec is not a structured-storage file!"   no such file
    //   "OrirecScreenVideoDecoder - failed to open structured-storage file!"    no compound file
    //   "OrirecScreenVideoDecoder - failed to open screen stream!"              no such member
    //   "OrirecScreenVideoDecoder - VFW codec initialization failed!"           no codec for it
    // a plain std::exception where the AVI file in such a recording cannot be read.
    // boost::bad_rational for a file of the H.264 reader; see WinH264SampleReader::create.
    // std::bad_alloc, also for a recording or GIF whose pictures no Bitmap can hold.
    // a const char*, as the DirectShow side throws its texts:
    //   "Could not get the MediaControl interface from the FilterGraph"   no graph for the file
    virtual VideoSampleReader* CreateVideoSampleReader(const std::string& path, int streamIndex,
                                                       bool deferInitialization) = 0;
};

} // namespace Zanthe
