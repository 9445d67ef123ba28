#include "zanthe/h264/TrackGeometry.h"

#include <map>
#include <mutex>

#include "platform/win32/Text.h"

namespace Zanthe {

namespace {

struct Cache {
    std::mutex mutex;
    std::map<std::string, TrackGeometry> geometries; // guarded by mutex
};

// Never destroyed, as a reader may be opened until the process ends.
Cache& CacheOfProcess() {
    static auto& cache = *new Cache;
    return cache;
}

} // namespace

TrackGeometry TrackGeometryOf(const std::string& path) {
    Cache& cache = CacheOfProcess();
    const std::lock_guard lock(cache.mutex);
    const auto found = cache.geometries.find(path);
    if (found != cache.geometries.end()) {
        return found->second;
    }
    const TrackGeometry geometry = ReadMediaOrientation(win32::Utf8ToWide(path));
    cache.geometries.emplace(path, geometry);
    return geometry;
}

} // namespace Zanthe
