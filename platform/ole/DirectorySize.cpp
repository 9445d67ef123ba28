#include "platform/ole/DirectorySize.h"

#include <array>
#include <cstring>

#include <sys/stat.h>

namespace ole {

namespace {

constexpr std::uint32_t kEndOfChain = 0xFFFFFFFE;
constexpr std::uint32_t kEntryBytes = 128;
constexpr std::uint32_t kTableSectorsInHeader = 109;

// Chains of sectors, looked up in the file itself: each step costs a few reads of four bytes.
class SectorChains {
public:
    explicit SectorChains(std::FILE* file)
        : m_file(file) {}

    // False where the header is none, or has sectors of a size that no such file has.
    bool ReadHeader() {
        struct stat status {};

        if (fstat(fileno(m_file), &status) != 0 || status.st_size < HeaderBytes) {
            return false;
        }
        const auto shift = static_cast<std::uint16_t>(Number(30).value_or(0));
        if (shift != 9 && shift != 12) {
            return false;
        }
        m_sectorBytes = 1U << shift;
        m_sectors = static_cast<std::uint64_t>(status.st_size) / m_sectorBytes;
        // The two numbers that follow: 6 for sectors of 64 bytes within streams, and zeros.
        return (Number(32).value_or(0) & 0xFFFF) == 6;
    }

    std::optional<std::uint32_t> FirstOfDirectory() { return Number(48); }

    // The entries before and behind the root, which is the first of the directory.
    std::array<std::optional<std::uint32_t>, 2> BesideRoot() {
        const std::uint32_t sector = FirstOfDirectory().value_or(kEndOfChain);
        return {NumberIn(sector, 68 / 4), NumberIn(sector, 72 / 4)};
    }

    std::uint32_t SectorBytes() const { return m_sectorBytes; }

    std::optional<std::uint32_t> Next(std::uint32_t sector) {
        if (sector >= m_sectors) {
            return std::nullopt;
        }
        const std::uint32_t perSector = m_sectorBytes / 4;
        const auto table = TableSector(sector / perSector);
        return table ? NumberIn(*table, sector % perSector) : std::nullopt;
    }

private:
    static constexpr off_t HeaderBytes = 512;

    // Where part `index` of the allocation table lies. What does not fit into the header stands in
    // sectors of its own, each with the place of the next one as its last number.
    std::optional<std::uint32_t> TableSector(std::uint32_t index) {
        if (index < kTableSectorsInHeader) {
            return Number(76 + 4 * static_cast<long>(index));
        }
        const std::uint32_t perSector = m_sectorBytes / 4 - 1;
        const std::uint32_t further = index - kTableSectorsInHeader;
        std::optional<std::uint32_t> list = Number(68);
        for (std::uint32_t hops = further / perSector; list && hops > 0; --hops) {
            list = NumberIn(*list, perSector);
        }
        return list ? NumberIn(*list, further % perSector) : std::nullopt;
    }

    std::optional<std::uint32_t> NumberIn(std::uint32_t sector, std::uint32_t index) {
        if (sector >= m_sectors) {
            return std::nullopt;
        }
        return Number((static_cast<long>(sector) + 1) * m_sectorBytes + 4L * index);
    }

    // The little-endian number at this place.
    std::optional<std::uint32_t> Number(long position) {
        std::array<unsigned char, 4> bytes{};
        if (std::fseek(m_file, position, SEEK_SET) != 0 ||
            std::fread(bytes.data(), bytes.size(), 1, m_file) != 1) {
            return std::nullopt;
        }
        std::uint32_t value = 0;
        std::memcpy(&value, bytes.data(), sizeof value);
        return value;
    }

    std::FILE* m_file;
    std::uint32_t m_sectorBytes = 0;
    std::uint64_t m_sectors = 0;
};

} // namespace

std::optional<std::uint32_t> CountDirectoryEntries(std::FILE* file, std::uint32_t most) {
    SectorChains chains(file);
    if (!chains.ReadHeader()) {
        return std::nullopt;
    }
    const std::uint32_t perSector = chains.SectorBytes() / kEntryBytes;
    std::uint32_t entries = 0;
    std::optional<std::uint32_t> sector = chains.FirstOfDirectory();
    while (sector && *sector != kEndOfChain) {
        entries += perSector;
        sector = entries <= most ? chains.Next(*sector) : std::nullopt;
    }
    // libgsf reads those that stand beside the root, and never gives them back.
    for (const auto& beside : chains.BesideRoot()) {
        if (beside && *beside > 0 && *beside < entries) {
            return std::nullopt;
        }
    }
    return sector ? std::optional(entries) : std::nullopt;
}

} // namespace ole
