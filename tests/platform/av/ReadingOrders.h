// Reads a stream in many orders and compares what comes with one read from start to end.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/av/VideoStream.h"

namespace av {

// One picture of the linear read.
struct SeenPicture {
    std::int64_t start = 0;
    std::int64_t end = 0;
    std::uint64_t hash = 0; // of the pixels as decoded

    bool operator==(const SeenPicture&) const = default;
};

SeenPicture See(const Picture& picture);

// All pictures from the start, at most `most`.
std::vector<SeenPicture> ReadAll(VideoStream& stream, std::size_t most = 100'000);

// What differs, one line each; empty when every order gives the same pictures.
struct OrderReport {
    std::size_t pictures = 0;
    std::size_t reads = 0;
    std::vector<std::string> differences;
};

// Linear, random, backward, to and fro, and on the boundaries of pictures, among the first `most`.
// `reads`: of each order.
OrderReport CompareOrders(const std::string& path, int reads, unsigned seed,
                          std::size_t most = 100'000);

} // namespace av
