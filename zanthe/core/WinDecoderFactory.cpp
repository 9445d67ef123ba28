#include "zanthe/core/WinDecoderFactory.h"

#include <stdexcept>
#include <utility>

#include <boost/make_shared.hpp>

#include "platform/mf/DXGIDeviceManager.h"
#include "platform/win32/Text.h"
#include "zanthe/analysis/RecordingPath.h"
#include "zanthe/analysis/WindowsVersionProvider.h"
#include "zanthe/core/VideoDecoderToVideoSampleReader.h"
#include "zanthe/core/VideoRoute.h"
#include "zanthe/core/routes/DecoderRoutes.h"

namespace Zanthe {

void WinDecoderFactory::Releaser::operator()(IMFDXGIDeviceManager* deviceManager) const {
    deviceManager->Release();
}

WinDecoderFactory::WinDecoderFactory(DecoderOutputFormat format,
                                     IMFDXGIDeviceManager* deviceManager, bool useMediaFoundation)
    : WinDecoderFactory(format, deviceManager, useMediaFoundation,
                        std::make_unique<DecoderRoutes>()) {}

WinDecoderFactory::WinDecoderFactory(DecoderOutputFormat format,
                                     IMFDXGIDeviceManager* deviceManager, bool useMediaFoundation,
                                     std::unique_ptr<const IDecoderRoutes> routes)
    // The manager first: from deviceManager on nothing throws, so a reference taken is kept.
    : m_chainManager(routes->CreateChainManager())
    , m_outputFormat(format)
    , m_deviceManager(deviceManager)
    , m_useMediaFoundation(useMediaFoundation)
    , m_routes(std::move(routes)) {}

WinDecoderFactory::~WinDecoderFactory() = default;

VideoSampleReader* WinDecoderFactory::CreateVideoSampleReader(const std::string& path,
                                                              int streamIndex,
                                                              bool deferInitialization) {
    const auto opensAsPngMov = [&] { return m_routes->CreatePngMov(path, streamIndex) != nullptr; };
    switch (ChooseVideoRoute(path, m_useMediaFoundation, opensAsPngMov,
                             boost::make_shared<WindowsVersionProvider>())) {
    case VideoRoute::OwnDecoder:
        return new VideoDecoderToVideoSampleReader(CreateVideoDecoder(path, streamIndex));
    case VideoRoute::MediaFoundation:
        return m_routes
            ->CreateMediaFoundation(path, streamIndex, m_outputFormat, m_deviceManager.get())
            .release();
    case VideoRoute::DirectShow:
        break;
    }
    return m_routes->CreateDirectShow(path, streamIndex, deferInitialization, m_chainManager)
        .release();
}

bool WinDecoderFactory::IsHandledByVideoDecoder(const std::string& path, int streamIndex) const {
    return GoesToOwnDecoder(path,
                            [&] { return m_routes->CreatePngMov(path, streamIndex) != nullptr; });
}

std::unique_ptr<VideoDecoder> WinDecoderFactory::CreateVideoDecoder(const std::string& path,
                                                                    int streamIndex) const {
    if (path.find('.') == std::string::npos) {
        throw std::runtime_error("DecoderFactory::CreateVideoDecoder: Can't create decoder for a "
                                 "filename that has no extension. FileName = " +
                                 path);
    }
    std::unique_ptr<VideoDecoder> pngMov;
    const auto opensAsPngMov = [&] {
        pngMov = m_routes->CreatePngMov(path, streamIndex);
        return pngMov != nullptr;
    };
    switch (ChooseOwnDecoder(path, opensAsPngMov)) {
    case OwnVideoDecoder::LegacyRecording:
        return m_routes->CreateLegacyRecording(
            win32::WideToUtf8(RecordingPath(path).GetContainerPath()));
    case OwnVideoDecoder::Recording:
        return m_routes->CreateRecording(path, streamIndex);
    case OwnVideoDecoder::PngMov:
        return pngMov;
    case OwnVideoDecoder::Gif:
        return m_routes->CreateGif(path);
    case OwnVideoDecoder::None:
        break;
    }
    throw std::runtime_error("DecoderFactory::CreateVideoDecoder: Couldn't find a decoder to match "
                             "extension = " +
                             TextBehindLastDot(path));
}

} // namespace Zanthe
