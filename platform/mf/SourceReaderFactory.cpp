#include "platform/mf/SourceReaderFactory.h"

#include <utility>

#include "platform/com/Replaceable.h"

namespace mf {

namespace {

com::Replaceable<SourceReaderFactory> currentFactory;
com::Replaceable<MediaSourceReaderFactory> currentSourceFactory;

} // namespace

SourceReaderFactory SetSourceReaderFactory(SourceReaderFactory factory) {
    return currentFactory.Replace(std::move(factory));
}

SourceReaderFactory CurrentSourceReaderFactory() {
    return currentFactory.Current();
}

MediaSourceReaderFactory SetMediaSourceReaderFactory(MediaSourceReaderFactory factory) {
    return currentSourceFactory.Replace(std::move(factory));
}

MediaSourceReaderFactory CurrentMediaSourceReaderFactory() {
    return currentSourceFactory.Current();
}

} // namespace mf
