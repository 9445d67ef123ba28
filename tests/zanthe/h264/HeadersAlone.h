#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "tests/zanthe/analysis/Mp4Boxes.h"

// The headers alone of a file whose one track has this size and transform.
inline std::string HeadersAlone(std::int32_t width, std::int32_t height,
                                const boxes::Elements& matrix = boxes::Upright) {
    boxes::TrackHeader header;
    header.width = static_cast<std::uint32_t>(width) << 16;
    header.height = static_cast<std::uint32_t>(height) << 16;
    header.matrix = matrix;
    return boxes::Movie(boxes::Track(boxes::TrackHeaderBox(header), "vide",
                                     boxes::SampleDescriptionBox(0, boxes::Zeros(8))));
}

// The headers of a file whose video lasts so many milliseconds, though no sample is there.
inline std::string WithoutSamples(std::uint32_t duration) {
    const auto empty = [](std::string_view type) { return boxes::Box(type, boxes::Zeros(8)); };
    const std::string table = boxes::SampleDescriptionBox(1, boxes::VisualEntry("mp4v", 64, 48)) +
                              empty("stts") + empty("stsc") + boxes::Box("stsz", boxes::Zeros(12)) +
                              empty("stco");
    const std::string header = boxes::Box("mdhd", boxes::Zeros(12) + boxes::U32(1000) +
                                                      boxes::U32(duration) + boxes::Zeros(4));
    return boxes::Movie(boxes::Box(
        "trak", boxes::TrackHeaderBox({}) +
                    boxes::Box("mdia", header + boxes::HandlerBox("vide") +
                                           boxes::Box("minf", boxes::Box("stbl", table)))));
}
