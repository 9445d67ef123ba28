#include "platform/mf/DXGIDeviceManager.h"

#include <thread>

#include <gtest/gtest.h>

#include "platform/mf/Errors.h"
#include "tests/platform/mf/ScriptedDevice.h"

namespace {

class DeviceManager : public testing::Test {
protected:
    DeviceManager() { EXPECT_EQ(MFCreateDXGIDeviceManager(&m_token, m_manager.Put()), S_OK); }

    HANDLE Open() {
        HANDLE handle = nullptr;
        EXPECT_EQ(m_manager->OpenDeviceHandle(&handle), S_OK);
        return handle;
    }

    HRESULT Lock(HANDLE handle, BOOL block = FALSE) {
        com::ComPtr<IUnknown> object;
        return m_manager->LockDevice(handle, IID_IHardwareDevice, object.PutVoid(), block);
    }

    UINT m_token = 0;
    com::ComPtr<IMFDXGIDeviceManager> m_manager;
    const com::ComPtr<ScriptedDevice> m_device = com::MakeOwned<ScriptedDevice>(S_OK);
};

TEST_F(DeviceManager, HasNoDeviceAtFirst) {
    HANDLE handle = this;
    EXPECT_EQ(m_manager->OpenDeviceHandle(&handle), MF_E_DXGI_DEVICE_NOT_INITIALIZED);
    EXPECT_EQ(handle, nullptr);
    EXPECT_EQ(m_manager->ResetDevice(m_device.Get(), m_token + 1), E_INVALIDARG);
    EXPECT_EQ(m_manager->ResetDevice(nullptr, m_token), E_INVALIDARG);
    EXPECT_EQ(m_manager->OpenDeviceHandle(nullptr), E_POINTER);
    EXPECT_EQ(MFCreateDXGIDeviceManager(nullptr, nullptr), E_POINTER);
}

TEST_F(DeviceManager, GivesTheDevice) {
    ASSERT_EQ(m_manager->ResetDevice(m_device.Get(), m_token), S_OK);
    HANDLE handle = Open();
    EXPECT_EQ(m_manager->TestDevice(handle), S_OK);
    com::ComPtr<IHardwareDevice> device;
    EXPECT_EQ(m_manager->GetVideoService(handle, IID_IHardwareDevice, device.PutVoid()), S_OK);
    EXPECT_EQ(device.Get(), m_device.Get());
    EXPECT_EQ(m_manager->CloseDeviceHandle(handle), S_OK);
    EXPECT_EQ(m_manager->CloseDeviceHandle(handle), E_HANDLE);
    EXPECT_EQ(m_manager->TestDevice(handle), E_HANDLE);
    EXPECT_EQ(m_manager->GetVideoService(handle, IID_IHardwareDevice, device.PutVoid()), E_HANDLE);
}

TEST_F(DeviceManager, HandlesEndWithTheirDevice) {
    ASSERT_EQ(m_manager->ResetDevice(m_device.Get(), m_token), S_OK);
    HANDLE handle = Open();
    const auto other = com::MakeOwned<ScriptedDevice>(S_OK);
    ASSERT_EQ(m_manager->ResetDevice(other.Get(), m_token), S_OK);
    EXPECT_EQ(m_manager->TestDevice(handle), MF_E_DXGI_NEW_VIDEO_DEVICE);
    EXPECT_EQ(Lock(handle), MF_E_DXGI_NEW_VIDEO_DEVICE);
    EXPECT_EQ(m_manager->CloseDeviceHandle(handle), S_OK);
}

TEST_F(DeviceManager, LocksTheDeviceForOne) {
    ASSERT_EQ(m_manager->ResetDevice(m_device.Get(), m_token), S_OK);
    HANDLE first = Open();
    HANDLE second = Open();
    EXPECT_EQ(Lock(first), S_OK);
    EXPECT_EQ(Lock(second), MF_E_DXGI_VIDEO_DEVICE_LOCKED);
    EXPECT_EQ(m_manager->UnlockDevice(second, FALSE), E_INVALIDARG);
    std::thread waiting([&] { EXPECT_EQ(Lock(second, TRUE), S_OK); });
    EXPECT_EQ(m_manager->UnlockDevice(first, FALSE), S_OK);
    waiting.join();
    EXPECT_EQ(Lock(first), MF_E_DXGI_VIDEO_DEVICE_LOCKED);
    EXPECT_EQ(m_manager->CloseDeviceHandle(second), S_OK); // gives the lock back
    EXPECT_EQ(Lock(first), S_OK);
}

} // namespace
