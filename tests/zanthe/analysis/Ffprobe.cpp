#include "tests/zanthe/analysis/Ffprobe.h"

#include <array>
#include <cstdio>
#include <stdexcept>

#include <nlohmann/json.hpp>

using nlohmann::json;

namespace {

std::string Quoted(const std::string& text) {
    std::string quoted = "'";
    for (const char letter : text) {
        quoted += letter == '\'' ? std::string("'\\''") : std::string(1, letter);
    }
    return quoted + "'";
}

// The output of a command; nothing when it fails.
std::optional<std::string> Run(const std::string& command) {
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) {
        throw std::runtime_error("cannot run " + command);
    }
    std::string output;
    std::array<char, 4096> buffer;
    for (std::size_t got = 0; (got = fread(buffer.data(), 1, buffer.size(), pipe)) > 0;) {
        output.append(buffer.data(), got);
    }
    return pclose(pipe) == 0 ? std::optional(output) : std::nullopt;
}

// The rotation, from whichever of the stream's side data has it.
std::optional<std::int32_t> RotationOf(const json& stream) {
    for (const json& data : stream.value("side_data_list", json::array())) {
        if (data.contains("rotation")) {
            return data["rotation"].get<std::int32_t>();
        }
    }
    return std::nullopt;
}

ProbedStream StreamOf(const json& stream) {
    ProbedStream probed;
    probed.kind = stream.value("codec_type", "");
    probed.codec = stream.value("codec_tag_string", "");
    probed.id = std::stoi(stream.value("id", "0x0"), nullptr, 16);
    probed.width = stream.value("width", 0);
    probed.height = stream.value("height", 0);
    probed.rotation = RotationOf(stream);
    probed.sampleAspectRatio = stream.value("sample_aspect_ratio", "");
    return probed;
}

} // namespace

std::optional<std::vector<ProbedStream>> Probe(const std::string& path) {
    const std::optional<std::string> output =
        Run("ffprobe -v quiet -show_entries "
            "stream=codec_type,codec_tag_string,id,width,height,sample_aspect_ratio:"
            "stream_side_data=rotation -of json " +
            Quoted(path));
    if (!output.has_value()) {
        return std::nullopt;
    }
    const json answer = json::parse(*output);
    std::vector<ProbedStream> streams;
    for (const json& stream : answer.at("streams")) {
        streams.push_back(StreamOf(stream));
    }
    return streams;
}
