#pragma once

namespace Zanthe {

// What lies behind a video sample's bytes. Every value below GraphicsDevice, also one that no
// sample of this library has, means memory that VideoSample::lockData makes readable.
enum class VideoSampleFormat : unsigned int {
    SystemMemory = 0,   // packed 32-bit pixels
    GraphicsDevice = 2, // the sample's media buffer answers IMFDXGIBuffer; data() is not usable and
                        // lockData() does nothing
};

} // namespace Zanthe
