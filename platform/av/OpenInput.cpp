#include "platform/av/OpenInput.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

#include "platform/av/TrackBoxes.h"

extern "C" {
#include <libavutil/opt.h>
}

#include "platform/av/Quiet.h"

namespace av {

namespace {

int CheckRegularFile(const std::string& path) {
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0) {
        return AVERROR(errno);
    }
    return S_ISREG(status.st_mode) ? 0 : AVERROR(EINVAL);
}

// Playlists and the like, whatever they are named, make FFmpeg open what they refer to. This opens
// the file that was asked for, and nothing else.
int OpenOnlyItself(AVFormatContext* context, AVIOContext** file, const char* url, int flags,
                   AVDictionary** options) {
    if (std::strcmp(url, context->url) != 0) {
        return AVERROR(EPERM);
    }
    return avio_open2(file, url, flags, &context->interrupt_callback, options);
}

// Contexts that a demuxer makes for what it refers to do not inherit the opening function, but they
// do inherit the list of protocols they may use. No protocol has this name.
constexpr char kNoProtocol[] = "none";

int ConfineToFile(AVFormatContext& context) {
    context.io_open = OpenOnlyItself;
    return av_opt_set(&context, "protocol_whitelist", kNoProtocol, 0);
}

// Formats that hold nothing themselves but name other files. They could serve nothing here, and a
// playlist without an end would be waited on for ever.
bool IsListOfFiles(const AVInputFormat& format) {
    constexpr std::array kLists = {"concat", "dash", "hls", "imf"};
    return std::any_of(kLists.begin(), kLists.end(),
                       [&](const char* name) { return std::strcmp(format.name, name) == 0; });
}

// Answers 0 or a negative FFmpeg code.
int Probe(const std::string& path, const AVInputFormat*& format) {
    const int score = ProbeFile(path, true, format);
    if (score < 0) {
        return score;
    }
    return IsListOfFiles(*format) ? AVERROR_INVALIDDATA : 0;
}

bool IsMp4(const AVInputFormat& format) {
    return std::strstr(format.name, "mp4") != nullptr;
}

// `format` null: whatever the file's bytes look like. Options that nobody takes are no error.
int OpenAs(FormatContextPtr& context, const std::string& path, const AVInputFormat* format,
           DictionaryPtr options) {
    QuietUnlessChosen();
    if (!context) {
        return AVERROR(ENOMEM);
    }
    const std::string url = "file:" + path;
    int error = CheckRegularFile(path);
    if (error >= 0 && format == nullptr) {
        error = Probe(path, format);
    }
    if (error >= 0 && IsMp4(*format) && IsTooCostlyToOpen(path)) {
        error = AVERROR_INVALIDDATA;
    }
    if (error >= 0) {
        error = ConfineToFile(*context);
    }
    if (error < 0) {
        context.reset();
        return error;
    }
    // avformat_open_input frees the context itself when it fails, and changes the dictionary.
    AVFormatContext* raw = context.release();
    AVDictionary* rawOptions = options.release();
    const int result = avformat_open_input(&raw, url.c_str(), format, &rawOptions);
    options.reset(rawOptions);
    context.reset(raw);
    return result;
}

DictionaryPtr MakeOptions(const char* key, const char* value) {
    AVDictionary* options = nullptr;
    const int result = av_dict_set(&options, key, value, 0);
    DictionaryPtr owner(options);
    return result < 0 ? nullptr : std::move(owner);
}

} // namespace

int ProbeFile(const std::string& path, bool byName, const AVInputFormat*& format) {
    QuietUnlessChosen();
    if (const int error = CheckRegularFile(path); error < 0) {
        return error;
    }
    const std::string url = "file:" + path;
    AVIOContext* raw = nullptr;
    if (const int error = avio_open2(&raw, url.c_str(), AVIO_FLAG_READ, nullptr, nullptr);
        error < 0) {
        return error;
    }
    const IoContextPtr file(raw);
    return av_probe_input_buffer2(raw, &format, byName ? url.c_str() : "", nullptr, 0, 0);
}

int OpenInput(FormatContextPtr& context, const std::string& path) {
    return OpenAs(context, path, nullptr, nullptr);
}

FormatContextPtr OpenMp4(const std::string& path, EditLists editLists) {
    FormatContextPtr context(avformat_alloc_context());
    auto options = MakeOptions("ignore_editlist", editLists == EditLists::Ignored ? "1" : "0");
    if (context == nullptr || options == nullptr) {
        return nullptr;
    }
    const AVInputFormat* format = av_find_input_format("mp4");
    return OpenAs(context, path, format, std::move(options)) < 0 ? nullptr : std::move(context);
}

} // namespace av
