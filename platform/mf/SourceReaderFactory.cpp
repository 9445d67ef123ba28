#include "platform/mf/SourceReaderFactory.h"

#include <utility>

#include "platform/com/Replaceable.h"

namespace mf {

namespace {

com::Replaceable<SourceReaderFactory> currentFactory;

} // namespace

SourceReaderFactory SetSourceReaderFactory(SourceReaderFactory factory) {
    return currentFactory.Replace(std::move(factory));
}

SourceReaderFactory CurrentSourceReaderFactory() {
    return currentFactory.Current();
}

} // namespace mf
