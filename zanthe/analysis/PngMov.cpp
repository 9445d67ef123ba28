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
    return stream.type == 0 && stream.codec == "png ";
}

} // namespace

bool IsMovWithPngVideo(const std::wstring& path) {
    if (!EqualIgnoringCase(RecordingPath(path).GetExtension(), L"mov") || !Exists(path)) {
        return false;
    }
    const std::vector<MP4StreamType> streams = ReadMP4StreamTypes(path);
    return std::any_of(streams.begin(), streams.end(), IsPngVideo);
}
