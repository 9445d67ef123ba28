#include "tests/support/TiffBytes.h"

#include <algorithm>

namespace {

constexpr int Width = 256;
constexpr int Height = 257;
constexpr int BitsPerSample = 258;
constexpr int StripOffsets = 273;
constexpr int SamplesPerPixel = 277;
constexpr int StripByteCounts = 279;

constexpr int Short = 3;
constexpr int Long = 4;

} // namespace

TiffBytes::TiffBytes(int width, int height, const std::vector<std::uint32_t>& bits,
                     std::string_view pixels, Form form)
    : m_form(form)
    , m_pixels(pixels) {
    const auto samples = static_cast<std::uint32_t>(bits.size());
    const std::uint32_t colours = samples >= 3 ? 3 : 1;
    m_entries.insert({Width, {Long, {static_cast<std::uint32_t>(width)}}});
    m_entries.insert({Height, {Long, {static_cast<std::uint32_t>(height)}}});
    m_entries.insert({RowsPerStrip, {Long, {static_cast<std::uint32_t>(height)}}});
    m_entries.insert({StripByteCounts, {Long, {static_cast<std::uint32_t>(pixels.size())}}});
    m_entries.insert({StripOffsets, {Long, {0}}});
    Set(BitsPerSample, bits);
    Set(Compression, {1});
    Set(Photometric, {colours == 3 ? 2U : 1U});
    Set(SamplesPerPixel, {samples});
    Set(Planes, {1});
    if (samples > colours) {
        Set(ExtraSamples, std::vector<std::uint32_t>(samples - colours, 0));
    }
}

TiffBytes& TiffBytes::Set(int tag, const std::vector<std::uint32_t>& values) {
    m_entries.erase(tag);
    return Repeat(tag, values);
}

TiffBytes& TiffBytes::Repeat(int tag, const std::vector<std::uint32_t>& values) {
    m_entries.insert({tag, {Short, values}});
    return *this;
}

std::string TiffBytes::Bytes() const {
    const bool isBig = m_form == Form::BigTiff;
    const std::string start = (m_form == Form::Big ? "MM" : "II") + Number(isBig ? 43 : 42, 2) +
                              (isBig ? Number(8, 2) + Number(0, 2) : std::string());
    const std::size_t directory = start.size() + static_cast<std::size_t>(CountBytes());
    const std::size_t entryBytes = 4 + 2 * static_cast<std::size_t>(CountBytes());
    const std::size_t behind = directory + (isBig ? 8 : 2) + m_entries.size() * entryBytes +
                               static_cast<std::size_t>(CountBytes());
    std::string file =
        start + Number(directory, CountBytes()) + Number(m_entries.size(), isBig ? 8 : 2);
    std::string elsewhere = m_pixels + (m_pixels.size() % 2 != 0 ? std::string(1, '\0') : "");
    for (const auto& [tag, entry] : m_entries) {
        std::string values = tag == StripOffsets ? Number(behind, 4) : Values(entry);
        if (values.size() > static_cast<std::size_t>(CountBytes())) {
            const std::size_t place = behind + elsewhere.size();
            elsewhere += values;
            values = Number(place, CountBytes());
        }
        values.resize(static_cast<std::size_t>(CountBytes()), '\0');
        file += Number(static_cast<std::uint64_t>(tag), 2) +
                Number(static_cast<std::uint64_t>(entry.type), 2) +
                Number(entry.values.size(), CountBytes()) + values;
    }
    return file + Number(0, CountBytes()) + elsewhere;
}

std::string TiffBytes::Number(std::uint64_t value, int bytes) const {
    std::string text;
    for (int i = 0; i < bytes; ++i) {
        text += static_cast<char>(value >> 8 * i);
    }
    if (m_form == Form::Big) {
        std::reverse(text.begin(), text.end());
    }
    return text;
}

std::string TiffBytes::Values(const Entry& entry) const {
    std::string text;
    for (const std::uint32_t value : entry.values) {
        text += Number(value, entry.type == Short ? 2 : 4);
    }
    return text;
}
