#include "zanthe/audio/mf/MediaFoundationBackends.h"

#include <filesystem>

#include "platform/win32/Text.h"
#include "zanthe/audio/AudioMediaReaderFactory.h"
#include "zanthe/core/TextException.h"

namespace Zanthe {

namespace {

// Empty where the system has none; the copy then fails, and says so.
std::string TemporaryFolder() {
    std::error_code none;
    return std::filesystem::temp_directory_path(none).string();
}

} // namespace

boost::shared_ptr<IAudioReader>
CreateReaderBySystemVersion(const std::string& path, int sampleRate,
                            const IMediaFoundationBackends& backends,
                            const IWindowsVersionProvider& versionProvider) {
    return versionProvider.IsWindows62OrLater() ? backends.CreateCurrent(path, sampleRate)
                                                : backends.CreateLegacy(win32::Utf8ToWide(path));
}

boost::shared_ptr<IAudioReader>
CreateMediaFoundationReader(const std::string& path, bool recontainerAacInMp4, int sampleRate,
                            const IMediaFoundationBackends& backends,
                            const IWindowsVersionProvider& versionProvider) {
    const bool recontainer =
        recontainerAacInMp4 && AudioMediaReaderFactory::IsMP4WithAACAudio(path);
    auto reader = recontainer
                      ? backends.CreateRecontainering(path, TemporaryFolder(), sampleRate)
                      : CreateReaderBySystemVersion(path, sampleRate, backends, versionProvider);
    if (reader == nullptr) {
        throw TextException("Failed to create MediaFoundation resource");
    }
    return reader;
}

} // namespace Zanthe
