// Where and in which form the pictures of an H.264 reader come.
#pragma once

namespace Zanthe {

// Asked for by the host; a reader that cannot serve it takes the next best. Readers other than the
// H.264 reader pay no regard to it.
enum class DecoderOutputFormat : int {
    DeviceArgb32 = 0, // 32-bit pixels, on the graphics device if the platform grants it
    MemoryArgb32 = 1, // 32-bit pixels in memory
    MemoryNv12 = 2,   // decoded as NV12 in memory; the reader makes 32-bit pixels of each sample
};

} // namespace Zanthe
