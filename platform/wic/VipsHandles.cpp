#include "platform/wic/VipsHandles.h"

namespace wic {

namespace {

void SayNothing(const gchar*, GLogLevelFlags, const gchar*, gpointer) {}

bool Start() {
    // A library in somebody's process: damaged files are told by results, not on stderr.
    g_log_set_handler("VIPS", static_cast<GLogLevelFlags>(G_LOG_LEVEL_WARNING), SayNothing,
                      nullptr);
    if (VIPS_INIT("zanthe") != 0) {
        vips_error_clear();
        return false;
    }
    vips_block_untrusted_set(TRUE);
    // Its cache of operations would keep pictures, and their files open, that nobody has any more.
    vips_cache_set_max(0);
    return true;
}

} // namespace

bool StartVips() {
    static const bool started = Start();
    return started;
}

} // namespace wic
