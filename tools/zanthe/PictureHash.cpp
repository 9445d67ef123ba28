#include "tools/zanthe/PictureHash.h"

#include <bit>
#include <cstddef>
#include <cstring>

namespace Program {

namespace {

// Odd numbers without a pattern; what they are does not matter.
constexpr std::uint64_t Stir = 0x9E3779B97F4A7C15;
constexpr std::uint64_t Fold = 0xD6E8FEB86659FD93;

std::uint64_t Mix(std::uint64_t hash, std::uint64_t word) {
    return std::rotl((hash ^ word) * Stir, 29);
}

std::uint64_t Finish(std::uint64_t hash) {
    hash = (hash ^ (hash >> 32)) * Fold;
    hash = (hash ^ (hash >> 32)) * Fold;
    return hash ^ (hash >> 32);
}

std::uint64_t WordAt(const unsigned char* bytes) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

// Four words a turn into four hashes, so that no multiplication waits for the one before.
class RowHash {
public:
    explicit RowHash(std::uint64_t seed)
        : m_lanes{seed, seed + Stir, seed ^ Fold, seed - Fold} {}

    void Add(const unsigned char* bytes, std::size_t count) {
        constexpr std::size_t turn = 4 * sizeof(std::uint64_t);
        for (; count >= turn; bytes += turn, count -= turn) {
            for (std::size_t lane = 0; lane < 4; ++lane) {
                m_lanes[lane] = Mix(m_lanes[lane], WordAt(bytes + lane * sizeof(std::uint64_t)));
            }
        }
        unsigned char rest[turn] = {};
        std::memcpy(rest, bytes, count);
        for (std::size_t lane = 0; lane < 4; ++lane) {
            m_lanes[lane] = Mix(m_lanes[lane], WordAt(rest + lane * sizeof(std::uint64_t)));
        }
    }

    std::uint64_t Sum() const {
        std::uint64_t sum = 0;
        for (const std::uint64_t lane : m_lanes) {
            sum = Finish(sum ^ lane) * Stir;
        }
        return Finish(sum);
    }

private:
    std::uint64_t m_lanes[4];
};

} // namespace

std::uint64_t HashOf(const LockedPixels& pixels) {
    RowHash hash((static_cast<std::uint64_t>(pixels.Width()) << 32) |
                 static_cast<std::uint32_t>(pixels.Height()));
    for (int y = 0; y < pixels.Height(); ++y) {
        hash.Add(pixels.Row(y), static_cast<std::size_t>(pixels.Width()) * 4);
    }
    return hash.Sum();
}

} // namespace Program
