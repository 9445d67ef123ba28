#include "zanthe/analysis/RecordingPath.h"

#include <array>
#include <string_view>

#include "platform/win32/Text.h"

namespace {

struct FixedMember {
    std::wstring_view name;
    RecordingMember kind;
};

struct NumberedMember {
    std::wstring_view prefix;
    std::wstring_view suffix;
    RecordingMember kind;
};

constexpr std::array<FixedMember, 6> FixedMembers{{
    {L"Screen_Stream.avi", ScreenVideo},
    {L"Camera_Stream.wmv", CameraVideo},
    {L"Audio.wav", MicrophoneAudio},
    {L"SysAudio.wav", SystemAudio},
    {L"Events.dat", EventData},
    {L"manifest.orixml", Manifest},
}};

constexpr std::array<NumberedMember, 3> NumberedMembers{{
    {L"video", L".mp4", NumberedVideo},
    {L"audio", L".mp4", NumberedAudio},
    {L"track", L".bsc2", NumberedScreenTrack},
}};

// A letter's place here is its code; the first place stands for "none".
constexpr std::wstring_view MemberLetters = L"_SC$MVA";
constexpr std::int32_t MemberCodeOffset = 99;

std::int32_t MemberCode(const std::wstring& member) {
    const std::size_t place =
        member.empty() ? std::wstring_view::npos : MemberLetters.find(member.front());
    const bool known = place != std::wstring_view::npos && place != 0;
    return known ? static_cast<std::int32_t>(place) + MemberCodeOffset : 0;
}

// Unsigned, because a wide character need not be a code point.
std::int32_t DigitValue(wchar_t digit) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(digit) - U'0');
}

} // namespace

RecordingPath::RecordingPath(const std::wstring& path) {
    SplitDirectory(path);
    SplitMember();
}

RecordingPath::RecordingPath(const std::string& path)
    : RecordingPath(win32::Utf8ToWide(path)) {}

void RecordingPath::SplitDirectory(const std::wstring& path) {
    const std::size_t separator = path.find_last_of(L"\\/");
    const std::size_t nameStart = separator == std::wstring::npos ? 0 : separator + 1;
    directory = path.substr(0, nameStart);
    fileName = path.substr(nameStart);
    name = fileName;
}

void RecordingPath::SplitMember() {
    const std::size_t mark = fileName.rfind(L'!');
    if (mark == std::wstring::npos || mark == 0) {
        return;
    }
    const std::wstring member = fileName.substr(mark + 1);
    kind = ClassifyMember(member, &index);
    if (kind == NoMember) {
        return;
    }
    name = fileName.substr(0, mark);
    memberCode = MemberCode(member);
}

std::wstring RecordingPath::GetExtension() const {
    const std::size_t dot = name.rfind(L'.');
    return dot == std::wstring::npos ? std::wstring() : name.substr(dot + 1);
}

std::wstring RecordingPath::GetContainerPath() const {
    return directory + name;
}

std::int32_t RecordingPath::ClassifyMember(const std::wstring& member, std::int32_t* index) {
    for (const FixedMember& fixed : FixedMembers) {
        if (member == fixed.name) {
            return fixed.kind;
        }
    }
    for (const NumberedMember& numbered : NumberedMembers) {
        if (member.starts_with(numbered.prefix) && member.ends_with(numbered.suffix)) {
            // There is such a character: no prefix and suffix here can share a letter.
            if (index != nullptr) {
                *index = DigitValue(member[numbered.prefix.size()]);
            }
            return numbered.kind;
        }
    }
    return NoMember;
}
