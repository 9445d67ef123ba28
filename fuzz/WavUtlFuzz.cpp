// Any bytes read as a WAV file; what was read, written as floats, must read back bit for bit.
#include <cstdlib>
#include <cstring>
#include <vector>

#include "fuzz/BytesAsFile.h"
#include "zanthe/audio/WavUtl.h"

namespace {

using Planes = std::vector<std::vector<float>>;

void Require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

// Compares bits: a NaN is not equal to itself, but must come back as it went.
bool SameBits(const std::vector<float>& a, const std::vector<float>& b) {
    return a.size() == b.size() &&
           (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(float)) == 0);
}

void RequireRoundTrip(const Planes& planes) {
    const BytesAsFile copy(nullptr, 0);
    Require(Zanthe::WavUtl::WriteWav(copy.Path(), planes, Zanthe::WavUtl::WavFormat::Float32, 1));
    const Planes again = Zanthe::WavUtl::ReadWav(copy.Path());
    Require(again.size() == 2 && SameBits(planes[0], again[0]) && SameBits(planes[1], again[1]));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const BytesAsFile file(data, size);
    const Planes planes = Zanthe::WavUtl::ReadWav(file.Path());
    Require(planes.size() == 2 && planes[0].size() == planes[1].size());
    Require(planes[0].size() <= size);
    RequireRoundTrip(planes);
    return 0;
}
