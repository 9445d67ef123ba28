#include "platform/av/OpenInput.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <mutex>
#include <utility>

extern "C" {
#include <libavutil/log.h>
#include <libavutil/opt.h>
}

namespace av {

namespace {

// FFmpeg writes a line to standard error for many a file. Inside somebody's editor that is noise,
// so it is turned off, unless the host has set a level of its own.
void QuietUnlessChosen() {
    static std::once_flag once;
    std::call_once(once, [] {
        if (av_log_get_level() == AV_LOG_INFO) {
            av_log_set_level(AV_LOG_QUIET);
        }
    });
}

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

// `format` null: whatever the file's bytes look like. Options that nobody takes are no error.
int OpenAs(FormatContextPtr& context, const std::string& path, const AVInputFormat* format,
           DictionaryPtr options) {
    QuietUnlessChosen();
    if (!context) {
        return AVERROR(ENOMEM);
    }
    const int unfit = CheckRegularFile(path);
    if (const int error = unfit < 0 ? unfit : ConfineToFile(*context); error < 0) {
        context.reset();
        return error;
    }
    // avformat_open_input frees the context itself when it fails, and changes the dictionary.
    AVFormatContext* raw = context.release();
    AVDictionary* rawOptions = options.release();
    const int result = avformat_open_input(&raw, ("file:" + path).c_str(), format, &rawOptions);
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
