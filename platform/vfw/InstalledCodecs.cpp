#include "platform/vfw/InstalledCodecs.h"

#include <map>
#include <mutex>

namespace vfw {

namespace {

struct Installed {
    std::mutex mutex;
    std::map<DWORD, DRIVERPROC> codecs; // by the code in lower case
};

Installed& All() {
    static Installed installed;
    return installed;
}

DWORD LowerCase(DWORD code) {
    DWORD lower = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        const DWORD character = code >> shift & 0xFF;
        const bool capital = character >= 'A' && character <= 'Z';
        lower |= (capital ? character + ('a' - 'A') : character) << shift;
    }
    return lower;
}

} // namespace

DRIVERPROC FindInstalled(DWORD handler) {
    Installed& all = All();
    const std::lock_guard lock(all.mutex);
    const auto found = all.codecs.find(LowerCase(handler));
    return found == all.codecs.end() ? nullptr : found->second;
}

void Install(DWORD handler, DRIVERPROC codec) {
    Installed& all = All();
    const std::lock_guard lock(all.mutex);
    all.codecs[LowerCase(handler)] = codec;
}

bool Remove(DWORD handler) {
    Installed& all = All();
    const std::lock_guard lock(all.mutex);
    return all.codecs.erase(LowerCase(handler)) > 0;
}

} // namespace vfw
