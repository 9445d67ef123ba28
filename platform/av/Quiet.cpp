#include "platform/av/Quiet.h"

#include <mutex>

extern "C" {
#include <libavutil/log.h>
}

namespace av {

void QuietUnlessChosen() {
    static std::once_flag once;
    std::call_once(once, [] {
        if (av_log_get_level() == AV_LOG_INFO) {
            av_log_set_level(AV_LOG_QUIET);
        }
    });
}

} // namespace av
