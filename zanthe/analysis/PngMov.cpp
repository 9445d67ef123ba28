#include "zanthe/analysis/PngMov.h"

#include <algorithm>
#include <filesystem>
#include <vector>

#include "platform/win32/Path.h"
#include "platform/win32/Text.h"
#include "zanthe/analysis/Extension.h"
#include "zanthe/analysis/MP4StreamTypes.h"
#include "zanthe/analysis/RecordingPath.h"

namespace {

bool Exists(const std::wstring& path) {
    std::error_code unknown;
    return std::filesystem::exists(win32::ExistingPath(win32::WideToUtf8(path)), unknown);
}

bool IsPngVideo(const MP4StreamType& stream) {
    return stream.type == MP4TrackType::Video && stream.codec == "png ";
}

bool HasPngVideo(const std::vector<MP4StreamType>& streams) {
    return std::any_of(streams.begin(), streams.end(), IsPngVideo);
}

bool CanBePngMov(const std::wstring& path) {
    return EqualIgnoringCase(RecordingPath(path).GetExtension(), L"mov") && Exists(path);
}

} // namespace

bool IsMovWithPngVideo(const std::wstring& path) {
    return CanBePngMov(path) && HasPngVideo(ReadMP4StreamTypes(path));
}

bool IsMovWithPngVideo(const std::wstring& path, const std::vector<MP4StreamType>& streams) {
    return CanBePngMov(path) && HasPngVideo(streams);
}
