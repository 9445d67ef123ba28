#include "zanthe/core/DecoderFactory.h"

#include "zanthe/core/WinDecoderFactory.h"

namespace Zanthe {

// Out of line, so that the class's tables live in this library alone and a host can catch and cast.
DecoderFactory::~DecoderFactory() = default;

DecoderFactory* DecoderFactory::Create() {
    return new WinDecoderFactory(DecoderOutputFormat::DeviceArgb32, nullptr, true);
}

DecoderFactory* DecoderFactory::Create(DecoderOutputFormat format,
                                       IMFDXGIDeviceManager* deviceManager,
                                       bool useMediaFoundation) {
    return new WinDecoderFactory(format, deviceManager, useMediaFoundation);
}

} // namespace Zanthe
