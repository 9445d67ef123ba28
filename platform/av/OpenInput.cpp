#include "platform/av/OpenInput.h"

#include <sys/stat.h>

#include <cerrno>
#include <mutex>

extern "C" {
#include <libavutil/log.h>
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

} // namespace

int OpenInput(FormatContextPtr& context, const std::string& path) {
    QuietUnlessChosen();
    if (const int error = CheckRegularFile(path); error < 0) {
        context.reset();
        return error;
    }
    // avformat_open_input frees the context itself when it fails.
    AVFormatContext* raw = context.release();
    const int result = avformat_open_input(&raw, ("file:" + path).c_str(), nullptr, nullptr);
    context.reset(raw);
    return result;
}

} // namespace av
