#include "platform/av/DecodingDevice.h"

extern "C" {
#include <libavutil/hwcontext.h>
}

namespace av {

BufferPtr OpenDecodingDevice(DeviceKind kind) {
    AVBufferRef* device = nullptr;
    const AVHWDeviceType type =
        kind == DeviceKind::VaApi ? AV_HWDEVICE_TYPE_VAAPI : AV_HWDEVICE_TYPE_CUDA;
    const int result = av_hwdevice_ctx_create(&device, type, nullptr, nullptr, 0);
    BufferPtr owner(device);
    return result < 0 ? nullptr : std::move(owner);
}

} // namespace av
