#include "platform/mf/HardwareDevice.h"

#include "platform/av/DecodingDevice.h"
#include "platform/com/Object.h"

namespace mf {

namespace {

class HardwareDevice final : public com::Object<IHardwareDevice> {
public:
    explicit HardwareDevice(av::BufferPtr device)
        : m_device(std::move(device)) {}

    void* DecodingDevice() override { return m_device.get(); }

    HRESULT TakeOver(const void* /*frame*/, BOOL decodedHere) override {
        return decodedHere != FALSE ? S_OK : S_FALSE;
    }

private:
    void* Find(REFIID iid) override {
        return com::Among(iid, IID_IHardwareDevice, static_cast<IHardwareDevice*>(this));
    }

    const av::BufferPtr m_device;
};

} // namespace

} // namespace mf

HRESULT CreateHardwareDevice(HARDWARE_DEVICE_TYPE type, IUnknown** device) {
    if (device == nullptr) {
        return E_POINTER;
    }
    *device = nullptr;
    if (type != HARDWARE_DEVICE_VAAPI && type != HARDWARE_DEVICE_CUDA) {
        return E_INVALIDARG;
    }
    av::BufferPtr opened = av::OpenDecodingDevice(
        type == HARDWARE_DEVICE_VAAPI ? av::DeviceKind::VaApi : av::DeviceKind::Cuda);
    if (opened == nullptr) {
        return E_FAIL;
    }
    return com::Make<mf::HardwareDevice>(device, std::move(opened));
}
