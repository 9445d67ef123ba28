#include "tools/zanthe/GifTimes.h"

#include <array>
#include <fstream>

#include "tools/zanthe/TimeText.h"
#include "zanthe/images/GifDelay.h"

namespace Program {

namespace {

constexpr std::int64_t Millisecond = UnitsPerSecond / 1000;

// Walks over the blocks of a file, of which it keeps nothing but delays.
class GifWalk {
public:
    explicit GifWalk(const std::string& path)
        : m_file(path, std::ios::binary) {}

    std::vector<std::int64_t> Times() {
        std::array<unsigned char, 13> header{};
        if (!Read(header.data(), header.size()) || header[0] != 'G' || header[1] != 'I' ||
            header[2] != 'F') {
            return {};
        }
        SkipPalette(header[10]);
        std::vector<std::int64_t> times{0};
        for (int block = Byte(); block == Extension || block == Image; block = Byte()) {
            if (block == Extension) {
                ReadExtension();
            } else if (SkipImage()) {
                times.push_back(times.back() + m_delay * Millisecond);
                m_delay = Zanthe::DefaultGifDelay;
            }
        }
        return times.size() > 1 ? times : std::vector<std::int64_t>();
    }

private:
    static constexpr int Extension = 0x21;
    static constexpr int Image = 0x2C;
    static constexpr int Control = 0xF9;

    bool Read(unsigned char* bytes, std::size_t count) {
        return static_cast<bool>(
            m_file.read(reinterpret_cast<char*>(bytes), static_cast<std::streamsize>(count)));
    }

    // -1 at the end of the file.
    int Byte() { return m_file.get(); }

    void Skip(std::streamsize count) { m_file.ignore(count); }

    void SkipPalette(unsigned char flags) {
        if ((flags & 0x80) != 0) {
            Skip(std::streamsize{3} << ((flags & 7) + 1));
        }
    }

    void SkipBlocks() {
        for (int size = Byte(); size > 0; size = Byte()) {
            Skip(size);
        }
    }

    void ReadExtension() {
        const int label = Byte();
        const int size = Byte();
        if (label == Control && size >= 4) {
            std::array<unsigned char, 4> control{};
            if (!Read(control.data(), control.size())) {
                return;
            }
            const auto hundredths = static_cast<std::uint32_t>(control[1] | control[2] << 8);
            m_delay = Zanthe::ShownGifDelay(10 * hundredths);
            Skip(size - 4);
        } else if (size > 0) {
            Skip(size);
        } else {
            return;
        }
        SkipBlocks();
    }

    bool SkipImage() {
        std::array<unsigned char, 9> descriptor{};
        if (!Read(descriptor.data(), descriptor.size())) {
            return false;
        }
        SkipPalette(descriptor[8]);
        if (Byte() < 0) {
            return false;
        }
        SkipBlocks();
        return true;
    }

    std::ifstream m_file;
    std::int64_t m_delay = Zanthe::DefaultGifDelay; // milliseconds, of the next image
};

} // namespace

std::vector<std::int64_t> GifTimes(const std::string& path) {
    return GifWalk(path).Times();
}

} // namespace Program
