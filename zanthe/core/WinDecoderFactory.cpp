#include "zanthe/core/WinDecoderFactory.h"

#include <stdexcept>
#include <string_view>
#include <utility>

#include <boost/make_shared.hpp>

#include "platform/mf/DXGIDeviceManager.h"
#include "platform/win32/Text.h"
#include "zanthe/analysis/Extension.h"
#include "zanthe/analysis/MediaFoundationChoice.h"
#include "zanthe/analysis/RecordingPath.h"
#include "zanthe/analysis/WindowsVersionProvider.h"
#include "zanthe/core/VideoDecoderToVideoSampleReader.h"
#include "zanthe/core/routes/DecoderRoutes.h"

namespace Zanthe {

namespace {

// The text behind the last "." of the whole path, be it a folder's: separators play no part.
std::string TextBehindLastDot(const std::string& path) {
    return path.substr(path.rfind('.') + 1);
}

bool IsText(const std::string& text, std::wstring_view wanted) {
    return EqualIgnoringCase(win32::Utf8ToWide(text), wanted);
}

bool NamesMemberOfBrec(const std::string& path) {
    return LowerCase(win32::Utf8ToWide(path)).find(L".brec!") != std::wstring::npos;
}

bool IsLegacyRecordingStream(const std::string& path) {
    return RecordingPath(path).kind == ScreenVideo;
}

bool GoesToMediaFoundation(const std::string& path) {
    const auto version = boost::make_shared<WindowsVersionProvider>();
    return ShouldUseMediaFoundation(win32::Utf8ToWide(path), MediaFoundationPurpose::VideoSamples,
                                    version);
}

} // namespace

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
    if (IsHandledByVideoDecoder(path, streamIndex)) {
        return new VideoDecoderToVideoSampleReader(CreateVideoDecoder(path, streamIndex));
    }
    if (m_useMediaFoundation && GoesToMediaFoundation(path)) {
        return m_routes
            ->CreateMediaFoundation(path, streamIndex, m_outputFormat, m_deviceManager.get())
            .release();
    }
    return m_routes->CreateDirectShow(path, streamIndex, deferInitialization, m_chainManager)
        .release();
}

bool WinDecoderFactory::IsHandledByVideoDecoder(const std::string& path, int streamIndex) const {
    if (path.find('.') == std::string::npos) {
        return false;
    }
    const std::string extension = TextBehindLastDot(path);
    if (NamesMemberOfBrec(path) || IsText(extension, L"brec") || IsLegacyRecordingStream(path)) {
        return true;
    }
    // Only opening tells; the decoder is made again when it is wanted.
    if (IsText(extension, L"mov") && m_routes->CreatePngMov(path, streamIndex) != nullptr) {
        return true;
    }
    return IsText(extension, L"gif");
}

std::unique_ptr<VideoDecoder> WinDecoderFactory::CreateVideoDecoder(const std::string& path,
                                                                    int streamIndex) const {
    if (path.find('.') == std::string::npos) {
        throw std::runtime_error("DecoderFactory::CreateVideoDecoder: Can't create decoder for a "
                                 "filename that has no extension. FileName = " +
                                 path);
    }
    const std::string extension = TextBehindLastDot(path);
    if (IsLegacyRecordingStream(path)) {
        return m_routes->CreateLegacyRecording(
            win32::WideToUtf8(RecordingPath(path).GetContainerPath()));
    }
    if (IsText(extension, L"brec")) {
        return m_routes->CreateRecording(path, streamIndex);
    }
    if (IsText(extension, L"mov")) {
        if (auto decoder = m_routes->CreatePngMov(path, streamIndex)) {
            return decoder;
        }
    }
    if (IsText(extension, L"gif")) {
        return m_routes->CreateGif(path);
    }
    throw std::runtime_error("DecoderFactory::CreateVideoDecoder: Couldn't find a decoder to match "
                             "extension = " +
                             extension);
}

} // namespace Zanthe
