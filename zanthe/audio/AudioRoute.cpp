#include "zanthe/audio/AudioRoute.h"

#include "platform/win32/Text.h"
#include "zanthe/analysis/BrecFile.h"
#include "zanthe/analysis/Extension.h"
#include "zanthe/analysis/MediaFoundationChoice.h"

namespace Zanthe {

AudioRoute ChooseAudioRoute(const std::string& path,
                            const boost::shared_ptr<IWindowsVersionProvider>& versionProvider) {
    const std::wstring widePath = win32::Utf8ToWide(path);
    if (LowerFileExtension(widePath) == L".mp3") {
        return AudioRoute::Ffmpeg;
    }
    if (HasBrecExtension(path)) {
        return AudioRoute::Recording;
    }
    return ShouldUseMediaFoundation(widePath, MediaFoundationPurpose::Audio, versionProvider)
               ? AudioRoute::MediaFoundation
               : AudioRoute::DirectShow;
}

} // namespace Zanthe
