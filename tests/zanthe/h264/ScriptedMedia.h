// Buffers, samples and media types that do as the test says, and can be counted.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "platform/mf/DXGIBuffer.h"
#include "platform/mf/DXGIDeviceManager.h"
#include "platform/mf/MediaFormats.h"
#include "platform/mf/MediaType.h"
#include "platform/mf/Sample.h"
#include "tests/zanthe/h264/ScriptedAttributes.h"

// How many references there are on the object.
template <typename T>
ULONG References(T* object) {
    object->AddRef();
    return object->Release();
}

enum class Place { Memory, Device };

class ScriptedBuffer final : public com::Object<IMFMediaBuffer, IMFDXGIBuffer> {
public:
    explicit ScriptedBuffer(std::size_t byteCount, Place place = Place::Memory)
        : m_bytes(byteCount)
        , m_place(place) {}

    std::vector<BYTE>& Bytes() { return m_bytes; }

    HRESULT lockResult = S_OK;
    int locks = 0;          // under way
    int interfaceAsked = 0; // for IMFDXGIBuffer

    // IMFMediaBuffer
    HRESULT Lock(BYTE** bytes, DWORD* maxLength, DWORD* currentLength) override {
        if (lockResult != S_OK) {
            return lockResult;
        }
        ++locks;
        *bytes = m_bytes.data();
        for (DWORD* length : {maxLength, currentLength}) {
            if (length != nullptr) {
                *length = static_cast<DWORD>(m_bytes.size());
            }
        }
        return S_OK;
    }

    HRESULT Unlock() override {
        --locks;
        return S_OK;
    }

    HRESULT GetCurrentLength(DWORD* length) override { return GetMaxLength(length); }

    HRESULT SetCurrentLength(DWORD) override { return S_OK; }

    HRESULT GetMaxLength(DWORD* length) override {
        *length = static_cast<DWORD>(m_bytes.size());
        return S_OK;
    }

    // IMFDXGIBuffer
    HRESULT GetResource(REFIID, void**) override { return E_NOTIMPL; }

    HRESULT GetSubresourceIndex(UINT*) override { return E_NOTIMPL; }

private:
    void* Find(REFIID iid) override {
        if (iid == IID_IMFDXGIBuffer) {
            ++interfaceAsked;
            return m_place == Place::Device ? static_cast<IMFDXGIBuffer*>(this) : nullptr;
        }
        return com::Among(iid, IID_IMFMediaBuffer, static_cast<IMFMediaBuffer*>(this));
    }

    std::vector<BYTE> m_bytes;
    Place m_place;
};

// Counts the living samples of one test.
using Living = std::shared_ptr<std::atomic<int>>;

class ScriptedSample final : public ScriptedAttributes<IMFSample> {
public:
    ScriptedSample(LONGLONG time, LONGLONG duration, Living living = nullptr)
        : m_time(time)
        , m_duration(duration)
        , m_living(std::move(living)) {
        if (m_living) {
            ++*m_living;
        }
    }

    ~ScriptedSample() override {
        if (m_living) {
            --*m_living;
        }
        if (onEnd) {
            onEnd();
        }
    }

    std::function<void()> onEnd;

    // IMFSample
    HRESULT GetSampleTime(LONGLONG* time) override {
        *time = m_time;
        return S_OK;
    }

    HRESULT SetSampleTime(LONGLONG time) override {
        m_time = time;
        return S_OK;
    }

    HRESULT GetSampleDuration(LONGLONG* duration) override {
        *duration = m_duration;
        return S_OK;
    }

    HRESULT SetSampleDuration(LONGLONG duration) override {
        m_duration = duration;
        return S_OK;
    }

    HRESULT GetBufferCount(DWORD* count) override {
        *count = static_cast<DWORD>(m_buffers.size());
        return S_OK;
    }

    HRESULT GetBufferByIndex(DWORD index, IMFMediaBuffer** buffer) override {
        if (index >= m_buffers.size()) {
            return E_INVALIDARG;
        }
        m_buffers[index].CopyTo(buffer);
        return S_OK;
    }

    // Of samples with one buffer.
    HRESULT ConvertToContiguousBuffer(IMFMediaBuffer** buffer) override {
        return GetBufferByIndex(0, buffer);
    }

    HRESULT AddBuffer(IMFMediaBuffer* buffer) override {
        m_buffers.emplace_back(buffer);
        return S_OK;
    }

private:
    void* Find(REFIID iid) override {
        return com::Among(iid, IID_IMFSample, static_cast<IMFSample*>(this));
    }

    LONGLONG m_time;
    LONGLONG m_duration;
    Living m_living;
    std::vector<com::ComPtr<IMFMediaBuffer>> m_buffers;
};

class ScriptedMediaType final : public ScriptedAttributes<IMFMediaType> {
public:
    // IMFMediaType
    HRESULT GetMajorType(GUID* majorType) override {
        return this->GetGUID(MF_MT_MAJOR_TYPE, majorType);
    }

private:
    void* Find(REFIID iid) override {
        return com::Among(iid, IID_IMFMediaType, static_cast<IMFMediaType*>(this));
    }
};

// It has no device; readers look at its address alone.
class ScriptedDeviceManager final : public com::Object<IMFDXGIDeviceManager> {
public:
    ~ScriptedDeviceManager() override {
        if (onEnd) {
            onEnd();
        }
    }

    std::function<void()> onEnd;

    // IMFDXGIDeviceManager
    HRESULT CloseDeviceHandle(HANDLE) override { return E_NOTIMPL; }

    HRESULT GetVideoService(HANDLE, REFIID, void**) override { return E_NOTIMPL; }

    HRESULT LockDevice(HANDLE, REFIID, void**, BOOL) override { return E_NOTIMPL; }

    HRESULT OpenDeviceHandle(HANDLE*) override { return E_NOTIMPL; }

    HRESULT ResetDevice(IUnknown*, UINT) override { return E_NOTIMPL; }

    HRESULT TestDevice(HANDLE) override { return E_NOTIMPL; }

    HRESULT UnlockDevice(HANDLE, BOOL) override { return E_NOTIMPL; }

private:
    void* Find(REFIID iid) override {
        return com::Among(iid, IID_IMFDXGIDeviceManager, static_cast<IMFDXGIDeviceManager*>(this));
    }
};
