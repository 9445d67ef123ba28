// Any bytes as an animated GIF: the table of its frames, and the pictures put together in several
// orders. Small screens alone are drawn; that large ones are bounded, tests show.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <limits>
#include <vector>

#include "fuzz/BytesAsFile.h"
#include "platform/win32/Text.h"
#include "zanthe/images/WICAnimatedGIFLoader.h"
#include "zanthe/images/WICAnimatedGIFReader.h"

namespace {

constexpr std::uint64_t MostPixels = 1 << 18;
constexpr int MostFrames = 24;

void Require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

// The table makes sense, whatever the file says.
void CheckTable(const Zanthe::WICAnimatedGIFReader& reader) {
    const auto& frames = reader.Frames();
    Require(frames.size() == reader.FrameCount());
    double sum = 0;
    for (const auto& frame : frames) {
        Require(frame->delay >= 20 && frame->left <= frame->right && frame->top <= frame->bottom);
        sum += frame->delay;
    }
    Require(reader.Duration() == sum / 1000.0);
    const int last = std::max(0, static_cast<int>(frames.size()) - 1);
    Require(reader.frameAtTime(-1) == 0);
    Require(reader.frameAtTime(reader.Duration()) == last);
    Require(reader.frameAtTime(std::numeric_limits<double>::infinity()) == last);
}

bool IsSmall(const Zanthe::WICAnimatedGIFReader& reader) {
    std::uint64_t pixels = std::uint64_t{reader.ScreenWidth()} * reader.ScreenHeight();
    for (const auto& frame : reader.Frames()) {
        pixels = std::max(pixels,
                          std::uint64_t{frame->right - frame->left} * (frame->bottom - frame->top));
    }
    return pixels <= MostPixels;
}

// Bytes behind the picture stay what they were.
void ReadInto(Zanthe::WICAnimatedGIFLoader& loader, double seconds) {
    constexpr unsigned char mark = 0xA5;
    const std::size_t size = static_cast<std::size_t>(loader.GetWidth()) *
                             static_cast<std::size_t>(loader.GetHeight()) * 4;
    std::vector<unsigned char> buffer(size + 1, mark);
    try {
        loader.GetFrameAtTimeIntoBuffer(seconds, buffer.data());
    } catch (const std::runtime_error&) {
        // A frame that cannot be drawn.
    }
    Require(buffer[size] == mark);
}

void Show(const CStringW& path, const Zanthe::WICAnimatedGIFReader& reader) {
    Zanthe::WICAnimatedGIFLoader loader(path);
    if (!loader.IsInitialized()) {
        return;
    }
    const int count = std::min(static_cast<int>(reader.FrameCount()), MostFrames);
    for (int i = 0; i < count; ++i) {
        loader.GetFrameAtIndex(i);
    }
    for (int i = count - 1; i >= 0; i -= 3) {
        ReadInto(loader, reader.Duration() * i / count);
    }
    loader.GetFrameAtIndex(count / 2);
    loader.GetFrameAtTime(0.05);
    ReadInto(loader, -1.0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const BytesAsFile file(data, size);
    const CStringW path = win32::Utf8ToWide(file.Path());
    try {
        Zanthe::WICAnimatedGIFReader reader(path);
        reader.Open();
        CheckTable(reader);
        if (IsSmall(reader)) {
            Show(path, reader);
        }
    } catch (const std::exception&) {
        // No picture at all.
    }
    return 0;
}
