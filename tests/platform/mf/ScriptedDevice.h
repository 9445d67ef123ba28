// A device without hardware: it marks pictures as its own.
#pragma once

#include "platform/com/Object.h"
#include "platform/mf/DXGIDeviceManager.h"
#include "platform/mf/HardwareDevice.h"

class ScriptedDevice final : public com::Object<IHardwareDevice> {
public:
    explicit ScriptedDevice(HRESULT answer)
        : m_answer(answer) {}

    void* DecodingDevice() override { return nullptr; }

    HRESULT TakeOver(const void* /*frame*/, BOOL /*decodedHere*/) override { return m_answer; }

private:
    void* Find(REFIID iid) override {
        return com::Among(iid, IID_IHardwareDevice, static_cast<IHardwareDevice*>(this));
    }

    const HRESULT m_answer;
};

// A device manager over `device`.
inline com::ComPtr<IMFDXGIDeviceManager> ManagerOf(IUnknown* device) {
    com::ComPtr<IMFDXGIDeviceManager> manager;
    UINT token = 0;
    if (SUCCEEDED(MFCreateDXGIDeviceManager(&token, manager.Put()))) {
        manager->ResetDevice(device, token);
    }
    return manager;
}
