#include "zanthe/audio/WavWriter.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <string_view>

#include "zanthe/audio/WavLayout.h"

namespace Zanthe {

namespace {

using namespace WavLayout;

constexpr std::size_t FramesPerBlock = 1024;
constexpr std::size_t MaxFrameBytes = Channels * sizeof(float);

bool IsFloat(WavUtl::WavFormat format) {
    return format == WavUtl::WavFormat::Float32;
}

std::uint16_t SampleBytes(WavUtl::WavFormat format) {
    return IsFloat(format) ? sizeof(float) : sizeof(std::int16_t);
}

std::uint16_t FrameBytes(WavUtl::WavFormat format) {
    return static_cast<std::uint16_t>(Channels * SampleBytes(format));
}

// Bytes laid down one behind the other in the file's order, whatever the machine's.
class LittleEndian {
public:
    explicit LittleEndian(char* to)
        : m_to(to) {}

    void Text(std::string_view text) { m_to = std::copy(text.begin(), text.end(), m_to); }

    void Number(std::uint16_t value) { Bytes(value, 2); }

    void Number(std::uint32_t value) { Bytes(value, 4); }

private:
    void Bytes(std::uint32_t value, int count) {
        for (int i = 0; i < count; ++i, value >>= 8) {
            *m_to++ = static_cast<char>(value & 0xFF);
        }
    }

    char* m_to;
};

std::uint16_t PcmSample(float sample) {
    if (std::isnan(sample)) {
        return 0;
    }
    // Clamped first: an infinity or a very loud sample has no long to be rounded to.
    const double scaled = std::clamp(sample * PcmScale, -PcmScale, PcmScale - 1);
    return static_cast<std::uint16_t>(static_cast<std::int16_t>(std::lround(scaled)));
}

void PutSample(LittleEndian& bytes, WavUtl::WavFormat format, float sample) {
    if (IsFloat(format)) {
        bytes.Number(std::bit_cast<std::uint32_t>(sample));
    } else {
        bytes.Number(PcmSample(sample));
    }
}

} // namespace

std::int64_t WavWriter::MaxFrames(WavUtl::WavFormat format) {
    // The larger of the two sizes in the header counts from byte 8 on.
    constexpr std::int64_t maxFileBytes =
        std::int64_t{std::numeric_limits<std::uint32_t>::max()} + 8;
    return (maxFileBytes - static_cast<std::int64_t>(HeaderBytes)) / FrameBytes(format);
}

WavWriter::WavWriter(const std::string& path, WavUtl::WavFormat format, int sampleRate)
    : m_stream(path, std::ios::binary | std::ios::trunc)
    , m_format(format)
    , m_sampleRate(sampleRate) {
    // Sizes of a file of no bytes wrap around to 0xFFFFFFF8 and 0xFFFFFFD4: "unfinished".
    WriteHeader(0);
}

void WavWriter::WriteHeader(std::uint64_t fileBytes) {
    const auto size = static_cast<std::uint32_t>(fileBytes);
    const auto rate = static_cast<std::uint32_t>(m_sampleRate);
    const std::uint16_t frameBytes = FrameBytes(m_format);
    std::array<char, HeaderBytes> header{};
    LittleEndian bytes(header.data());
    bytes.Text("RIFF");
    bytes.Number(size - 8);
    bytes.Text("WAVE");
    bytes.Text("fmt ");
    bytes.Number(std::uint32_t{16});
    bytes.Number(IsFloat(m_format) ? FloatTag : PcmTag);
    bytes.Number(static_cast<std::uint16_t>(Channels));
    bytes.Number(rate);
    bytes.Number(frameBytes * rate);
    bytes.Number(frameBytes);
    bytes.Number(static_cast<std::uint16_t>(SampleBytes(m_format) * 8));
    bytes.Text("data");
    bytes.Number(size - static_cast<std::uint32_t>(HeaderBytes));
    m_stream.write(header.data(), header.size());
}

void WavWriter::Append(const float* left, const float* right, std::size_t frames) {
    std::array<char, FramesPerBlock * MaxFrameBytes> block;
    while (frames > 0) {
        const std::size_t count = std::min(frames, FramesPerBlock);
        LittleEndian bytes(block.data());
        for (std::size_t i = 0; i < count; ++i) {
            PutSample(bytes, m_format, left[i]);
            PutSample(bytes, m_format, right[i]);
        }
        m_stream.write(block.data(), static_cast<std::streamsize>(count * FrameBytes(m_format)));
        left += count;
        right += count;
        frames -= count;
    }
}

bool WavWriter::Finish() {
    const std::int64_t fileBytes = m_stream.tellp();
    const std::int64_t maxFileBytes =
        static_cast<std::int64_t>(HeaderBytes) + MaxFrames(m_format) * FrameBytes(m_format);
    // Sizes that do not fit are left saying "unfinished": readers then go by the file's end.
    const bool fits = fileBytes >= 0 && fileBytes <= maxFileBytes;
    if (fits) {
        m_stream.seekp(0);
        WriteHeader(static_cast<std::uint64_t>(fileBytes));
    }
    m_stream.close();
    return fits && !m_stream.fail();
}

} // namespace Zanthe
