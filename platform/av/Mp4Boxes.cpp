#include "platform/av/Mp4Boxes.h"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/win32/File.h"
#include "platform/win32/Text.h"

namespace av {

std::unique_ptr<Mp4Boxes> Mp4Boxes::Open(const std::string& path) {
    win32::OwnedHandle file = win32::OpenToRead(win32::Utf8ToWide(path).c_str());
    return file == nullptr ? nullptr : std::unique_ptr<Mp4Boxes>(new Mp4Boxes(std::move(file)));
}

Mp4Boxes::Mp4Boxes(win32::OwnedHandle file)
    : m_file(std::move(file)) {
    LARGE_INTEGER none;
    none.QuadPart = 0;
    LARGE_INTEGER end;
    if (SetFilePointerEx(m_file.get(), none, &end, FILE_END) != FALSE) {
        m_size = static_cast<std::uint64_t>(end.QuadPart);
    }
}

void Mp4Boxes::ForEach(const Mp4Range& range, const std::function<bool(const Mp4Box&)>& call) {
    Mp4Range rest = range;
    while (const auto box = BoxAt(rest)) {
        ++m_count;
        if (!call(*box)) {
            return;
        }
        rest.start = box->payload.end;
    }
}

std::optional<Mp4Box> Mp4Boxes::BoxAt(const Mp4Range& range) {
    constexpr std::uint64_t header = 8;
    if (range.start > range.end || range.end - range.start < header) {
        return std::nullopt;
    }
    const std::uint64_t room = range.end - range.start;
    auto size = Number(range.start, 4);
    auto type = FourCharacters(range.start + 4);
    std::uint64_t headerSize = header;
    if (size == 1U) {
        size = Number(range.start + header, 8);
        headerSize += 8;
    } else if (size == 0U) {
        size = room; // the rest
    }
    if (!size || !type || *size < headerSize || room < headerSize) {
        return std::nullopt;
    }
    return Mp4Box{std::move(*type),
                  {range.start + headerSize, range.start + std::min(*size, room)}};
}

std::optional<std::uint64_t> Mp4Boxes::Number(std::uint64_t position, unsigned int byteCount) {
    std::array<std::uint8_t, 8> bytes{};
    if (!m_ahead.Read(m_file.get(), position, bytes.data(), byteCount)) {
        return std::nullopt;
    }
    std::uint64_t number = 0;
    for (unsigned int i = 0; i < byteCount; ++i) {
        number = number << 8 | bytes[i];
    }
    return number;
}

std::optional<std::string> Mp4Boxes::FourCharacters(std::uint64_t position) {
    std::string characters(4, '\0');
    if (!m_ahead.Read(m_file.get(), position, characters.data(), characters.size())) {
        return std::nullopt;
    }
    return characters;
}

} // namespace av
