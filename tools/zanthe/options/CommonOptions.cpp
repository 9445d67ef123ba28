#include "tools/zanthe/options/CommonOptions.h"

#include <charconv>
#include <limits>

namespace Program {

WholeNumber::WholeNumber(std::uint64_t low, std::uint64_t high) {
    const std::string range = std::to_string(low) + " to " + std::to_string(high);
    func_ = [=](std::string& text) -> std::string {
        std::uint64_t number = 0;
        const char* end = text.data() + text.size();
        const auto [stop, error] = std::from_chars(text.data(), end, number);
        if (error != std::errc() || stop != end || number < low || number > high) {
            return text + " is no whole number from " + range;
        }
        text = std::to_string(number);
        return {};
    };
}

void AddFlag(CLI::App& command, const std::string& name, bool& flag, const std::string& text) {
    command.add_flag(name, flag, text)->disable_flag_override();
}

void AddFile(CLI::App& command, std::string& file, const std::string& text) {
    command.add_option("FILE", file, text)->required()->type_name("");
}

void AddPngOutput(CLI::App& command, std::string& path) {
    command
        .add_option("-o,--output", path,
                    "The PNG file to write; one that is there is replaced at the end; - is "
                    "standard output")
        ->type_name("OUT.png")
        ->required();
}

void AddJson(CLI::App& command, bool& json) {
    AddFlag(command, "--json", json, "Print one JSON object instead of text");
}

void AddRate(CLI::App& command, int& rate) {
    command
        .add_option("--rate", rate,
                    "Sample rate of the sound read, in Hz, 1000 to 768000; of recordings and "
                    "of what filter graphs read, 44100 whatever is given")
        ->type_name("HZ")
        ->transform(WholeNumber(1000, 768000))
        ->capture_default_str();
}

void AddRecontainer(CLI::App& command, bool& recontainer) {
    AddFlag(command, "--recontainer", recontainer,
            "Read AAC in an MP4 file by way of a temporary copy of its sound track; other "
            "files are read as they are");
}

void AddStreamAndFormat(CLI::App& command, VideoChoice& choice) {
    command
        .add_option(
            "--stream", choice.stream,
            "Number of the stream of a recording, or of PNG images in a QuickTime file, counted "
            "from 0 over streams of any kind (default: the first of pictures); of other "
            "files the first of pictures is read, whatever is given")
        ->type_name("N")
        ->transform(WholeNumber(0, std::numeric_limits<int>::max()));
    command
        .add_option_function<int>(
            "--format",
            [&choice](int format) {
                choice.format = static_cast<Zanthe::DecoderOutputFormat>(format);
            },
            "How pictures are decoded: 0 on the graphics device if one is granted, 1 in memory, 2 "
            "in memory as NV12 that is converted picture by picture (default: 0)")
        ->type_name("0|1|2")
        ->transform(WholeNumber(0, 2));
}

} // namespace Program
