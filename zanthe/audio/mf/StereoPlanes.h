// Where a read's frames go: two planes of a caller, filled from the front.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace Zanthe {

// Thread-safety: none.
class StereoPlanes {
public:
    // Both planes hold `frameCount` floats and outlive this.
    StereoPlanes(float* left, float* right, unsigned int frameCount)
        : m_left(left)
        , m_right(right)
        , m_missing(frameCount)
        , m_written(0) {}

    unsigned int Written() const { return m_written; }

    unsigned int Missing() const { return m_missing; }

    bool IsFull() const { return m_missing == 0; }

    // Writes as many of `frameCount` interleaved pairs of floats as there is room for, and answers
    // how many. The bytes need not stand where floats do.
    unsigned int Append(const unsigned char* interleaved, std::uint64_t frameCount) {
        constexpr std::size_t sampleBytes = sizeof(float);
        const auto count =
            static_cast<unsigned int>(std::min<std::uint64_t>(frameCount, m_missing));
        for (unsigned int i = 0; i < count; ++i, interleaved += 2 * sampleBytes) {
            std::memcpy(m_left++, interleaved, sampleBytes);
            std::memcpy(m_right++, interleaved + sampleBytes, sampleBytes);
        }
        m_missing -= count;
        m_written += count;
        return count;
    }

private:
    float* m_left; // behind what is written, as is the next
    float* m_right;
    unsigned int m_missing;
    unsigned int m_written;
};

} // namespace Zanthe
