#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// What the ffprobe program says of one stream.
struct ProbedStream {
    std::string kind;    // "video", "audio", "subtitle", "data"
    std::string codec;   // the four characters of the sample description
    std::int32_t id = 0; // track_ID; 0 for a picture that is no track
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::optional<std::int32_t> rotation; // degrees, against the clock
    std::string sampleAspectRatio;        // "4:3"; empty when unknown
};

// The streams of a file, in its order; nothing when ffprobe refuses it.
std::optional<std::vector<ProbedStream>> Probe(const std::string& path);
