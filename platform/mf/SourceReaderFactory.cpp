#include "platform/mf/SourceReaderFactory.h"

#include <mutex>
#include <utility>

namespace mf {

namespace {

std::mutex factoryMutex;
SourceReaderFactory currentFactory; // guarded by factoryMutex

} // namespace

SourceReaderFactory SetSourceReaderFactory(SourceReaderFactory factory) {
    const std::lock_guard lock(factoryMutex);
    return std::exchange(currentFactory, std::move(factory));
}

SourceReaderFactory CurrentSourceReaderFactory() {
    const std::lock_guard lock(factoryMutex);
    return currentFactory;
}

} // namespace mf
