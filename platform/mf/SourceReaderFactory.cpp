#include "platform/mf/SourceReaderFactory.h"

#include <mutex>
#include <utility>

namespace mf {

namespace {

std::mutex factoryMutex;
SourceReaderFactory currentFactory;            // guarded by factoryMutex
MediaSourceReaderFactory currentSourceFactory; // guarded by factoryMutex

} // namespace

SourceReaderFactory SetSourceReaderFactory(SourceReaderFactory factory) {
    const std::lock_guard lock(factoryMutex);
    return std::exchange(currentFactory, std::move(factory));
}

SourceReaderFactory CurrentSourceReaderFactory() {
    const std::lock_guard lock(factoryMutex);
    return currentFactory;
}

MediaSourceReaderFactory SetMediaSourceReaderFactory(MediaSourceReaderFactory factory) {
    const std::lock_guard lock(factoryMutex);
    return std::exchange(currentSourceFactory, std::move(factory));
}

MediaSourceReaderFactory CurrentMediaSourceReaderFactory() {
    const std::lock_guard lock(factoryMutex);
    return currentSourceFactory;
}

} // namespace mf
