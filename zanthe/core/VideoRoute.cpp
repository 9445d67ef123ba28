#include "zanthe/core/VideoRoute.h"

#include <string_view>

#include "platform/win32/Text.h"
#include "zanthe/analysis/Extension.h"
#include "zanthe/analysis/MediaFoundationChoice.h"
#include "zanthe/analysis/RecordingPath.h"

namespace Zanthe {

namespace {

bool IsText(const std::string& text, std::wstring_view wanted) {
    return EqualIgnoringCase(win32::Utf8ToWide(text), wanted);
}

bool NamesMemberOfBrec(const std::string& path) {
    return LowerCase(win32::Utf8ToWide(path)).find(L".brec!") != std::wstring::npos;
}

bool IsLegacyRecordingStream(const std::string& path) {
    return RecordingPath(path).kind == ScreenVideo;
}

} // namespace

std::string TextBehindLastDot(const std::string& path) {
    return path.substr(path.rfind('.') + 1);
}

bool GoesToOwnDecoder(const std::string& path, const OpensAsPngMov& opensAsPngMov) {
    if (path.find('.') == std::string::npos) {
        return false;
    }
    const std::string extension = TextBehindLastDot(path);
    if (NamesMemberOfBrec(path) || IsText(extension, L"brec") || IsLegacyRecordingStream(path)) {
        return true;
    }
    // Only opening tells; the decoder is made again when it is wanted.
    if (IsText(extension, L"mov") && opensAsPngMov()) {
        return true;
    }
    return IsText(extension, L"gif");
}

OwnVideoDecoder ChooseOwnDecoder(const std::string& path, const OpensAsPngMov& opensAsPngMov) {
    const std::string extension = TextBehindLastDot(path);
    if (IsLegacyRecordingStream(path)) {
        return OwnVideoDecoder::LegacyRecording;
    }
    if (IsText(extension, L"brec")) {
        return OwnVideoDecoder::Recording;
    }
    if (IsText(extension, L"mov") && opensAsPngMov()) {
        return OwnVideoDecoder::PngMov;
    }
    return IsText(extension, L"gif") ? OwnVideoDecoder::Gif : OwnVideoDecoder::None;
}

VideoRoute ChooseVideoRoute(const std::string& path, bool useMediaFoundation,
                            const OpensAsPngMov& opensAsPngMov,
                            const boost::shared_ptr<IWindowsVersionProvider>& versionProvider) {
    if (GoesToOwnDecoder(path, opensAsPngMov)) {
        return VideoRoute::OwnDecoder;
    }
    const bool mediaFoundation =
        useMediaFoundation &&
        ShouldUseMediaFoundation(win32::Utf8ToWide(path), MediaFoundationPurpose::VideoSamples,
                                 versionProvider);
    return mediaFoundation ? VideoRoute::MediaFoundation : VideoRoute::DirectShow;
}

} // namespace Zanthe
