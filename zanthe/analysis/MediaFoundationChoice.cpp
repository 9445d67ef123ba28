#include "zanthe/analysis/MediaFoundationChoice.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>

#include "zanthe/analysis/Extension.h"
#include "zanthe/analysis/PngMov.h"
#include "zanthe/analysis/RecordingPath.h"

namespace {

bool IsOneOf(const std::wstring& extension, std::initializer_list<std::wstring_view> list) {
    return std::find(list.begin(), list.end(), extension) != list.end();
}

bool IsRecording(const std::wstring& path) {
    return IsOneOf(LowerCase(RecordingPath(path).GetExtension()), {L"brec", L"orirec"});
}

bool RefusedByOlderSystem(const std::wstring& extension, MediaFoundationPurpose purpose) {
    return purpose != MediaFoundationPurpose::Audio &&
           IsOneOf(extension, {L"mov", L"mp4", L"mts", L"m2ts"});
}

bool AddedByNewerSystem(const std::wstring& extension, MediaFoundationPurpose purpose) {
    return purpose != MediaFoundationPurpose::VideoSamples && IsOneOf(extension, {L"mts", L"m2ts"});
}

bool ReadOnEverySystem(const std::wstring& extension) {
    return IsOneOf(extension, {L"wmv", L"wma", L"mp3", L"mp4", L"mov", L"wav", L"m4a"});
}

} // namespace

bool ShouldUseMediaFoundation(
    const std::wstring& path, MediaFoundationPurpose purpose,
    const boost::shared_ptr<Zanthe::IWindowsVersionProvider>& versionProvider) {
    return ShouldUseMediaFoundation(path, purpose, versionProvider,
                                    [&path] { return IsMovWithPngVideo(path); });
}

bool ShouldUseMediaFoundation(
    const std::wstring& path, MediaFoundationPurpose purpose,
    const boost::shared_ptr<Zanthe::IWindowsVersionProvider>& versionProvider,
    const std::function<bool()>& isMovWithPngVideo) {
    if (IsRecording(path)) {
        return false;
    }
    const std::wstring extension = LowerExtension(path);
    if (purpose == MediaFoundationPurpose::Detection && extension == L"mov" &&
        isMovWithPngVideo()) {
        return true;
    }
    if (purpose == MediaFoundationPurpose::VideoSamples && extension == L"wmv") {
        return false;
    }
    if (versionProvider == nullptr) {
        return false;
    }
    const bool newer = versionProvider->IsWindows62OrLater();
    if (!newer && RefusedByOlderSystem(extension, purpose)) {
        return false;
    }
    if (newer && AddedByNewerSystem(extension, purpose)) {
        return true;
    }
    return ReadOnEverySystem(extension);
}
