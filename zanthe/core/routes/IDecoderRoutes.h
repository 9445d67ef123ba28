// What each kind of file is opened with. The factory decides which of these a file takes; how a
// backend is made is known here alone.
#pragma once

#include <memory>
#include <string>

#include <boost/shared_ptr.hpp>

#include "zanthe/core/DecoderOutputFormat.h"
#include "zanthe/core/VideoDecoder.h"
#include "zanthe/core/VideoSampleReader.h"

class IDSChainManager;
struct IMFDXGIDeviceManager;

namespace Zanthe {

// Paths are UTF-8. Failures are those of the backend itself: its exception, or its null where that
// is said.
//
// Thread-safety: safe from any thread; an implementation keeps no state.
class IDecoderRoutes {
public:
    IDecoderRoutes() = default;
    IDecoderRoutes(const IDecoderRoutes&) = delete;
    IDecoderRoutes& operator=(const IDecoderRoutes&) = delete;
    virtual ~IDecoderRoutes() = default;

    // The screen video of the recording at containerPath, the file without a member. Never null.
    virtual std::unique_ptr<VideoDecoder>
    CreateLegacyRecording(const std::string& containerPath) const = 0;

    // One track of a ".brec" recording. Never null.
    virtual std::unique_ptr<VideoDecoder> CreateRecording(const std::string& path,
                                                          int streamIndex) const = 0;

    // One track of a QuickTime file whose pictures are PNG images; null when it is none.
    virtual std::unique_ptr<VideoDecoder> CreatePngMov(const std::string& path,
                                                       int streamIndex) const = 0;

    // Never null.
    virtual std::unique_ptr<VideoDecoder> CreateGif(const std::string& path) const = 0;

    // deviceManager is borrowed for the call, and may be null. Null is an answer.
    virtual std::unique_ptr<VideoSampleReader>
    CreateMediaFoundation(const std::string& path, int streamIndex, DecoderOutputFormat format,
                          IMFDXGIDeviceManager* deviceManager) const = 0;

    // chainManager is one that CreateChainManager answered.
    virtual std::unique_ptr<VideoSampleReader>
    CreateDirectShow(const std::string& path, int streamIndex, bool deferInitialization,
                     const boost::shared_ptr<IDSChainManager>& chainManager) const = 0;

    // What the DirectShow readers of one factory share; empty where they need none.
    virtual boost::shared_ptr<IDSChainManager> CreateChainManager() const = 0;
};

} // namespace Zanthe
