// Who collects the key frames of a file.
#pragma once

#include <functional>
#include <memory>

#include "zanthe/h264/IH264KeyframeCollector.h"

namespace Zanthe {

using KeyframeCollectorFactory = std::function<std::unique_ptr<IH264KeyframeCollector>()>;

// Has `factory` make all collectors from now on that MakeKeyframeCollector answers, and answers who
// did before; an empty one stands for H264KeyframeCollector_MP4V2. For tests.
//
// Thread-safety: safe from any thread, as is the next. A call under way keeps whom it began with.
KeyframeCollectorFactory SetKeyframeCollectorFactory(KeyframeCollectorFactory factory);

// A collector, never null unless a factory makes it so.
std::unique_ptr<IH264KeyframeCollector> MakeKeyframeCollector();

} // namespace Zanthe
