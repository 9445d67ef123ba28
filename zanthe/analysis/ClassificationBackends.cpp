#include "zanthe/analysis/ClassificationBackends.h"

#include <boost/make_shared.hpp>

#include "platform/win32/Text.h"
#include "zanthe/analysis/MediaFoundationChoice.h"
#include "zanthe/analysis/WindowsVersionProvider.h"
#include "zanthe/audio/AudioRoute.h"
#include "zanthe/core/VideoRoute.h"
#include "zanthe/core/routes/DecoderRoutes.h"

namespace Zanthe {

namespace {

// A system as it might be, to ask about the one that this is not.
class SupposedVersion final : public IWindowsVersionProvider {
public:
    explicit SupposedVersion(bool newer)
        : m_newer(newer) {}

    // IWindowsVersionProvider
    bool IsWindows62OrLater() const override { return m_newer; }

private:
    bool m_newer;
};

ClassifiedBackend BackendFor(const std::wstring& path, MediaFoundationPurpose purpose,
                             bool pngMov) {
    const auto isPngMov = [pngMov] { return pngMov; };
    return {ShouldUseMediaFoundation(path, purpose, boost::make_shared<SupposedVersion>(true),
                                     isPngMov),
            ShouldUseMediaFoundation(path, purpose, boost::make_shared<SupposedVersion>(false),
                                     isPngMov)};
}

const char* AudioRouteName(AudioRoute route) {
    switch (route) {
    case AudioRoute::Ffmpeg:
        return "FFmpeg";
    case AudioRoute::Recording:
        return "recording";
    case AudioRoute::MediaFoundation:
        return "Media Foundation";
    case AudioRoute::DirectShow:
        break;
    }
    return "DirectShow";
}

const char* OwnDecoderName(OwnVideoDecoder decoder) {
    switch (decoder) {
    case OwnVideoDecoder::LegacyRecording:
        return "legacy recording decoder";
    case OwnVideoDecoder::Recording:
        return "recording decoder";
    case OwnVideoDecoder::PngMov:
        return "PNG QuickTime decoder";
    case OwnVideoDecoder::Gif:
        return "GIF decoder";
    case OwnVideoDecoder::None:
        break;
    }
    return "none: no decoder for it";
}

// As the factory decides, which also opens the file to see. Of the backends this build lacks only
// those on filter graphs.
ClassifiedRoute VideoRouteOf(const std::string& path, int stream) {
    const auto opensAsPngMov = [&] {
        return DecoderRoutes().CreatePngMov(path, stream) != nullptr;
    };
    switch (
        ChooseVideoRoute(path, true, opensAsPngMov, boost::make_shared<WindowsVersionProvider>())) {
    case VideoRoute::OwnDecoder:
        return {OwnDecoderName(ChooseOwnDecoder(path, opensAsPngMov)), true};
    case VideoRoute::MediaFoundation:
        return {"Media Foundation", true};
    case VideoRoute::DirectShow:
        break;
    }
    return {"DirectShow", false};
}

ClassifiedRoute AudioRouteOf(const std::string& path) {
    const AudioRoute route = ChooseAudioRoute(path, boost::make_shared<WindowsVersionProvider>());
    return {AudioRouteName(route), route != AudioRoute::DirectShow};
}

} // namespace

void ClassifyBackends(int videoStream, FileClassification& file) {
    const std::wstring path = win32::Utf8ToWide(file.path);
    file.audio = BackendFor(path, MediaFoundationPurpose::Audio, file.pngMov);
    file.videoSamples = BackendFor(path, MediaFoundationPurpose::VideoSamples, file.pngMov);
    file.detection = BackendFor(path, MediaFoundationPurpose::Detection, file.pngMov);
    file.system62 = WindowsVersionProvider().IsWindows62OrLater();
    file.audioRoute = AudioRouteOf(file.path);
    file.videoRoute = VideoRouteOf(file.path, videoStream);
}

} // namespace Zanthe
