#include "platform/mf/DXGIDeviceManager.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/com/Object.h"
#include "platform/mf/Errors.h"

namespace mf {

namespace {

// What a device handle stands for: the device as it was when the handle was opened.
class DeviceHandle final : public win32::KernelObject {
public:
    explicit DeviceHandle(ULONG era)
        : m_era(era) {}

    ULONG Era() const { return m_era; }

private:
    const ULONG m_era;
};

class DeviceManager final : public com::Object<IMFDXGIDeviceManager> {
public:
    explicit DeviceManager(UINT resetToken)
        : m_resetToken(resetToken) {}

    HRESULT CloseDeviceHandle(HANDLE device) override;
    HRESULT GetVideoService(HANDLE device, REFIID iid, void** service) override;
    HRESULT LockDevice(HANDLE device, REFIID iid, void** object, BOOL block) override;
    HRESULT OpenDeviceHandle(HANDLE* device) override;
    HRESULT ResetDevice(IUnknown* device, UINT resetToken) override;
    HRESULT TestDevice(HANDLE device) override;
    HRESULT UnlockDevice(HANDLE device, BOOL saveState) override;

private:
    using Handles = std::vector<std::unique_ptr<DeviceHandle>>;

    void* Find(REFIID iid) override {
        return com::Among(iid, IID_IMFDXGIDeviceManager, static_cast<IMFDXGIDeviceManager*>(this));
    }

    // Of this manager's own; a handle is never followed before it is found here.
    Handles::iterator Position(HANDLE device);
    HRESULT Check(HANDLE device);

    const UINT m_resetToken;
    std::mutex m_mutex; // guards all below
    std::condition_variable m_unlocked;
    com::ComPtr<IUnknown> m_device; // may be empty
    ULONG m_era = 0;                // how often the device was set
    Handles m_handles;
    HANDLE m_lockedBy = nullptr;
};

DeviceManager::Handles::iterator DeviceManager::Position(HANDLE device) {
    return std::find_if(m_handles.begin(), m_handles.end(), [&](const auto& handle) {
        return static_cast<win32::KernelObject*>(handle.get()) == device;
    });
}

HRESULT DeviceManager::Check(HANDLE device) {
    const auto found = Position(device);
    if (found == m_handles.end()) {
        return E_HANDLE;
    }
    return (*found)->Era() == m_era ? S_OK : MF_E_DXGI_NEW_VIDEO_DEVICE;
}

HRESULT DeviceManager::OpenDeviceHandle(HANDLE* device) {
    if (device == nullptr) {
        return E_POINTER;
    }
    *device = nullptr;
    return com::Wall([&] {
        const std::lock_guard lock(m_mutex);
        if (!m_device) {
            return MF_E_DXGI_DEVICE_NOT_INITIALIZED;
        }
        m_handles.push_back(std::make_unique<DeviceHandle>(m_era));
        *device = static_cast<win32::KernelObject*>(m_handles.back().get());
        return S_OK;
    });
}

HRESULT DeviceManager::CloseDeviceHandle(HANDLE device) {
    const std::lock_guard lock(m_mutex);
    const auto found = Position(device);
    if (found == m_handles.end()) {
        return E_HANDLE;
    }
    if (m_lockedBy == device) {
        m_lockedBy = nullptr;
        m_unlocked.notify_one();
    }
    m_handles.erase(found);
    return S_OK;
}

HRESULT DeviceManager::GetVideoService(HANDLE device, REFIID iid, void** service) {
    if (service == nullptr) {
        return E_POINTER;
    }
    *service = nullptr;
    com::ComPtr<IUnknown> present;
    {
        const std::lock_guard lock(m_mutex);
        if (const HRESULT result = Check(device); FAILED(result)) {
            return result;
        }
        present = m_device;
    }
    return present->QueryInterface(iid, service);
}

HRESULT DeviceManager::LockDevice(HANDLE device, REFIID iid, void** object, BOOL block) {
    if (object == nullptr) {
        return E_POINTER;
    }
    *object = nullptr;
    std::unique_lock lock(m_mutex);
    if (block != FALSE) {
        m_unlocked.wait(lock, [&] { return m_lockedBy == nullptr || FAILED(Check(device)); });
    }
    HRESULT result = Check(device);
    if (SUCCEEDED(result) && m_lockedBy != nullptr) {
        result = MF_E_DXGI_VIDEO_DEVICE_LOCKED;
    }
    if (SUCCEEDED(result)) {
        result = m_device->QueryInterface(iid, object);
    }
    if (SUCCEEDED(result)) {
        m_lockedBy = device;
    }
    return result;
}

HRESULT DeviceManager::UnlockDevice(HANDLE device, BOOL /*saveState*/) {
    const std::lock_guard lock(m_mutex);
    if (device == nullptr || m_lockedBy != device) {
        return E_INVALIDARG;
    }
    m_lockedBy = nullptr;
    m_unlocked.notify_one();
    return S_OK;
}

HRESULT DeviceManager::ResetDevice(IUnknown* device, UINT resetToken) {
    if (device == nullptr || resetToken != m_resetToken) {
        return E_INVALIDARG;
    }
    com::ComPtr<IUnknown> old(device);
    const std::lock_guard lock(m_mutex);
    std::swap(m_device, old);
    ++m_era;
    m_lockedBy = nullptr;
    m_unlocked.notify_all();
    return S_OK;
}

HRESULT DeviceManager::TestDevice(HANDLE device) {
    const std::lock_guard lock(m_mutex);
    return Check(device);
}

} // namespace

} // namespace mf

HRESULT MFCreateDXGIDeviceManager(UINT* resetToken, IMFDXGIDeviceManager** manager) {
    static std::atomic<UINT> next{1};
    if (resetToken == nullptr) {
        return E_POINTER;
    }
    *resetToken = next.fetch_add(1);
    return com::Make<mf::DeviceManager>(manager, *resetToken);
}
