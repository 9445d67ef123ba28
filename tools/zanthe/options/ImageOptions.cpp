#include <charconv>
#include <string_view>

#include "tools/zanthe/options/CommonOptions.h"
#include "tools/zanthe/options/Options.h"

namespace Program {

namespace {

constexpr int MostPixels = 32767; // a side that can be drawn on

bool ParseSide(std::string_view text, int& side) {
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, side);
    return error == std::errc() && stop == end && side >= 1 && side <= MostPixels;
}

// WIDTHxHEIGHT.
bool ParseSize(const std::string& text, PictureSize& size) {
    const std::string_view all = text;
    const std::size_t cross = all.find('x');
    return cross != std::string_view::npos && ParseSide(all.substr(0, cross), size.width) &&
           ParseSide(all.substr(cross + 1), size.height);
}

class SizeText : public CLI::Validator {
public:
    SizeText() {
        func_ = [](std::string& text) -> std::string {
            PictureSize size;
            return ParseSize(text, size) ? std::string()
                                         : text + " is no size such as 1920x1080, up to 32767 "
                                                  "pixels a side";
        };
    }
};

} // namespace

void Declare(CLI::App& command, ImageRequest& request) {
    AddFile(command, request.file,
            "The file to read: JPEG, PNG, TIFF, WebP, HEIF, BMP, the first frame of a GIF, or PDF");
    command
        .add_option("--max", request.maxDimension,
                    "The most pixels that a side of a picture may have, 1 to 32767; a larger "
                    "picture is scaled down")
        ->type_name("N")
        ->transform(WholeNumber(1, MostPixels))
        ->capture_default_str();
    command
        .add_option_function<std::string>(
            "--size",
            [&request](const std::string& text) { ParseSize(text, request.size.emplace()); },
            "The size at which a PDF page is drawn, in pixels; the page is stretched to it")
        ->type_name("WxH")
        ->transform(SizeText());
    AddPngOutput(command, request.output);
    AddJson(command, request.json);
}

} // namespace Program
