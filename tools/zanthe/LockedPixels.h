// The pixels of a sample, in memory for as long as this lives.
//
//     const LockedPixels pixels(*picture.sample);
//     for (int y = 0; y < pixels.Height(); ++y) take(pixels.Row(y), pixels.Width() * 4);
#pragma once

#include "zanthe/core/VideoSample.h"

namespace Program {

// Thread-safety: as the sample.
class LockedPixels {
public:
    // Locks the sample, which stays the caller's and must outlive this. The picture is the top left
    // part of what may be a larger buffer.
    //
    // Throws std::runtime_error when the picture lies on a graphics device, its bytes are fewer
    // than its size asks for, or the sample cannot be locked.
    explicit LockedPixels(Zanthe::VideoSample& sample);
    LockedPixels(const LockedPixels&) = delete;
    LockedPixels& operator=(const LockedPixels&) = delete;
    ~LockedPixels();

    int Width() const { return m_width; }

    int Height() const { return m_height; }

    // Width() pixels of 4 bytes: blue, green, red, and the fourth. Row 0 is the top one, however
    // the sample has them.
    const unsigned char* Row(int y) const;

private:
    void Measure();

    Zanthe::VideoSample& m_sample;
    int m_width;
    int m_height;
    const unsigned char* m_top = nullptr; // first byte of row 0
    long m_pitch = 0;                     // bytes to the row below; negative from a flipped sample
};

} // namespace Program
