#include "zanthe/h264/HardwareDecoders.h"

#include <atomic>

namespace Zanthe {

namespace {

std::atomic<int> activeHardwareDecoders{0};

} // namespace

int ActiveHardwareDecoders() {
    return activeHardwareDecoders;
}

void AddHardwareDecoder() {
    ++activeHardwareDecoders;
}

void RemoveHardwareDecoder() {
    --activeHardwareDecoders;
}

} // namespace Zanthe
