// The library's own backends. Each operation stands in a file of its own, named after it.
#pragma once

#include "zanthe/core/routes/IDecoderRoutes.h"

namespace Zanthe {

class DecoderRoutes final : public IDecoderRoutes {
public:
    // IDecoderRoutes
    std::unique_ptr<VideoDecoder>
    CreateLegacyRecording(const std::string& containerPath) const override;
    std::unique_ptr<VideoDecoder> CreateRecording(const std::string& path,
                                                  int streamIndex) const override;
    std::unique_ptr<VideoDecoder> CreatePngMov(const std::string& path,
                                               int streamIndex) const override;
    std::unique_ptr<VideoDecoder> CreateGif(const std::string& path) const override;
    std::unique_ptr<VideoSampleReader>
    CreateMediaFoundation(const std::string& path, int streamIndex, DecoderOutputFormat format,
                          IMFDXGIDeviceManager* deviceManager) const override;
    std::unique_ptr<VideoSampleReader>
    CreateDirectShow(const std::string& path, int streamIndex, bool deferInitialization,
                     const boost::shared_ptr<IDSChainManager>& chainManager) const override;
    boost::shared_ptr<IDSChainManager> CreateChainManager() const override;
};

} // namespace Zanthe
