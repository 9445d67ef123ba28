#include "zanthe/analysis/FileSignature.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "platform/dshow/Uuids.h"
#include "platform/win32/File.h"
#include "platform/win32/OwnedHandle.h"
#include "zanthe/analysis/Extension.h"
#include "zanthe/analysis/RecordingPath.h"

// The second entry for MPEG audio can never hold: it asks for bytes where its mask is zero. Were it
// mended, a file would be told by its ID3 tag that so far goes by its extension, and a tag stands
// before other things than MPEG audio too. The bytes of this table stay as they are.
// clang-format off
const std::vector<FileSignatureEntry> FileSignatureTable{
    {MEDIASUBTYPE_Avi,
     {{0, 4, {0xFF, 0xFF, 0xFF, 0xFF}, {0x52, 0x49, 0x46, 0x46}},   // "RIFF"
      {8, 4, {0xFF, 0xFF, 0xFF, 0xFF}, {0x41, 0x56, 0x49, 0x20}}}}, // "AVI "
    {MEDIASUBTYPE_MPEG1Audio,
     {{0, 2, {0xFF, 0xE0}, {0xFF, 0xE0}}}},
    {MEDIASUBTYPE_MPEG1Audio,
     {{0, 10,
       {0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00},
       {0x49, 0x44, 0x33, 0x03, 0x00, 0x80, 0x80, 0x80, 0x80, 0x00}}}},
    {MEDIASUBTYPE_WAVE,
     {{0, 4, {0xFF, 0xFF, 0xFF, 0xFF}, {0x52, 0x49, 0x46, 0x46}},   // "RIFF"
      {8, 4, {0xFF, 0xFF, 0xFF, 0xFF}, {0x57, 0x41, 0x56, 0x45}}}}, // "WAVE"
    {MEDIASUBTYPE_MPEG1Video,
     {{0, 4, {0xFF, 0xFF, 0xFF, 0xFF}, {0x00, 0x00, 0x01, 0xB3}}}}, // sequence header
    {MEDIASUBTYPE_MPEG1System,
     {{0, 16, // pack header and system header
       {0xFF, 0xFF, 0xFF, 0xFF, 0xF1, 0x00, 0x01, 0x00,
        0x01, 0x80, 0x00, 0x01, 0xFF, 0xFF, 0xFF, 0xFF},
       {0x00, 0x00, 0x01, 0xBA, 0x21, 0x00, 0x01, 0x00,
        0x01, 0x80, 0x00, 0x01, 0x00, 0x00, 0x01, 0xBB}}}},
    {MEDIASUBTYPE_MPEG1VideoCD,
     {{0, 4, {0xFF, 0xFF, 0xFF, 0xFF}, {0x52, 0x49, 0x46, 0x46}},   // "RIFF"
      {8, 8,
       {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF},
       {0x43, 0x44, 0x58, 0x41, 0x66, 0x6D, 0x74, 0x20}},           // "CDXAfmt "
      {36, 20,
       {0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00, 0x00, 0x00, 0xFF, 0xFF,
        0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF},
       {0x64, 0x61, 0x74, 0x61, 0x00, 0x00, 0x00, 0x00, 0x00, 0xFF, // "data", then a sector's sync
        0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00}}}},
};

// clang-format on

namespace {

bool WellFormed(const FileSignatureCheck& check) {
    return check.length <= MaxSignatureLength && check.mask.size() == check.length &&
           check.value.size() == check.length;
}

bool Holds(const FileSignatureCheck& check, const SignatureReader& read) {
    std::array<std::uint8_t, MaxSignatureLength> bytes;
    if (!WellFormed(check) || !read(check.offset, check.length, bytes.data())) {
        return false;
    }
    for (std::uint32_t i = 0; i < check.length; ++i) {
        if ((check.mask[i] & bytes[i]) != check.value[i]) {
            return false;
        }
    }
    return true;
}

bool ReadAt(HANDLE file, std::int64_t offset, std::uint32_t length, std::uint8_t* bytes) {
    LARGE_INTEGER distance;
    distance.QuadPart = offset;
    if (SetFilePointerEx(file, distance, nullptr, offset < 0 ? FILE_END : FILE_BEGIN) == FALSE) {
        return false;
    }
    DWORD got = 0;
    return ReadFile(file, bytes, length, &got, nullptr) != FALSE && got == length;
}

struct ExtensionSubtype {
    std::wstring_view extension;
    GUID subtype;
};

constexpr std::array<ExtensionSubtype, 5> ExtensionSubtypes{{
    {L"avi", MEDIASUBTYPE_Avi},
    {L"mp3", MEDIASUBTYPE_MPEG1Audio},
    {L"wav", MEDIASUBTYPE_WAVE},
    {L"mpg", MEDIASUBTYPE_MPEG1System},
    {L"mpeg", MEDIASUBTYPE_MPEG1System},
}};

DetectedSubtype SubtypeByExtension(const std::wstring& path) {
    const std::wstring extension = LowerTextBehindLastDot(path);
    for (const ExtensionSubtype& row : ExtensionSubtypes) {
        if (extension == row.extension) {
            return {row.subtype, SubtypeSource::Extension};
        }
    }
    return {MEDIASUBTYPE_None, SubtypeSource::Nothing};
}

} // namespace

const FileSignatureEntry* FindSignature(const SignatureReader& read,
                                        const std::vector<FileSignatureEntry>& table) {
    const auto found = std::find_if(table.begin(), table.end(), [&](const auto& entry) {
        return std::all_of(entry.checks.begin(), entry.checks.end(),
                           [&](const auto& check) { return Holds(check, read); });
    });
    return found != table.end() ? &*found : nullptr;
}

DetectedSubtype DetectMediaSubtypeAndSource(const std::wstring& path) {
    if (EqualIgnoringCase(RecordingPath(path).GetExtension(), L"brec")) {
        return {MEDIASUBTYPE_None, SubtypeSource::Nothing};
    }
    const win32::OwnedHandle file =
        win32::OpenToRead(path.c_str(), FILE_ATTRIBUTE_NORMAL | FILE_FLAG_RANDOM_ACCESS);
    if (file == nullptr) {
        return {MEDIASUBTYPE_None, SubtypeSource::Nothing};
    }
    const auto read = [&](std::int64_t offset, std::uint32_t length, std::uint8_t* bytes) {
        return ReadAt(file.get(), offset, length, bytes);
    };
    const FileSignatureEntry* entry = FindSignature(read, FileSignatureTable);
    return entry != nullptr ? DetectedSubtype{entry->subtype, SubtypeSource::Signature}
                            : SubtypeByExtension(path);
}

GUID DetectMediaSubtype(const std::wstring& path) {
    return DetectMediaSubtypeAndSource(path).subtype;
}
