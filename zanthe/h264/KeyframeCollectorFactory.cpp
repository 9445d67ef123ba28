#include "zanthe/h264/KeyframeCollectorFactory.h"

#include <utility>

#include "platform/com/Replaceable.h"
#include "zanthe/h264/H264KeyframeCollector_MP4V2.h"

namespace Zanthe {

namespace {

com::Replaceable<KeyframeCollectorFactory> currentFactory;

} // namespace

KeyframeCollectorFactory SetKeyframeCollectorFactory(KeyframeCollectorFactory factory) {
    return currentFactory.Replace(std::move(factory));
}

std::unique_ptr<IH264KeyframeCollector> MakeKeyframeCollector() {
    const KeyframeCollectorFactory factory = currentFactory.Current();
    return factory ? factory() : std::make_unique<H264KeyframeCollector_MP4V2>();
}

} // namespace Zanthe
