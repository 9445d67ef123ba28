#include <array>
#include <optional>
#include <string_view>

#include "platform/win32/File.h"
#include "platform/win32/OwnedHandle.h"
#include "platform/win32/Path.h"
#include "platform/win32/Text.h"
#include "zanthe/analysis/Extension.h"
#include "zanthe/audio/AudioMediaReaderFactory.h"
#include "zanthe/h264/Mp4Track.h"

namespace Zanthe {

namespace {

using FileStart = std::array<char, 20>;

// The first bytes of the file; nothing where it cannot be opened or is shorter.
std::optional<FileStart> ReadFileStart(const std::string& path) {
    const win32::OwnedHandle file = win32::OpenToRead(win32::Utf8ToWide(path).c_str());
    if (file == nullptr) {
        return std::nullopt;
    }
    FileStart start{};
    DWORD bytesRead = 0;
    const BOOL read = ReadFile(file.get(), start.data(), start.size(), &bytesRead, nullptr);
    return read != FALSE && bytesRead == start.size() ? std::optional(start) : std::nullopt;
}

// A common ftyp box names its first compatible brand there. Its major brand, at 8, is not asked:
// files of either family carry either.
bool NamesQuickTimeAsCompatible(const std::string& path) {
    const auto start = ReadFileStart(path);
    return start && std::string_view(start->data() + 16, 4) == "qt  ";
}

} // namespace

bool AudioMediaReaderFactory::IsMP4WithAACAudio(const std::string& path) {
    const std::wstring extension = LowerFileExtension(win32::Utf8ToWide(path));
    if (extension != L".mp4" && extension != L".mov") {
        return false;
    }
    if (NamesQuickTimeAsCompatible(path)) {
        return false;
    }
    const Mp4FileOwner file = OpenMp4File(win32::ExistingPath(path));
    if (file == nullptr) {
        return false;
    }
    const MP4TrackId track = MP4FindTrackId(file.get(), 0, MP4_AUDIO_TRACK_TYPE, 0);
    return track != MP4_INVALID_TRACK_ID &&
           MP4HaveTrackAtom(file.get(), track, "mdia.minf.stbl.stsd.mp4a");
}

} // namespace Zanthe
