#include "platform/mf/SampleMaking.h"

#include <algorithm>
#include <limits>

#include "platform/mf/BufferLock.h"

namespace mf {

namespace {

HRESULT Fill(IMFMediaBuffer& buffer, const std::vector<std::uint8_t>& bytes) {
    const BufferLock lock(buffer);
    if (FAILED(lock.Result())) {
        return lock.Result();
    }
    std::copy(bytes.begin(), bytes.end(), lock.Bytes());
    return buffer.SetCurrentLength(static_cast<DWORD>(bytes.size()));
}

HRESULT Make(const std::vector<std::uint8_t>& bytes, com::ComPtr<IMFSample>& sample) {
    if (bytes.size() > std::numeric_limits<DWORD>::max()) {
        return E_OUTOFMEMORY;
    }
    com::ComPtr<IMFMediaBuffer> buffer;
    HRESULT result = MFCreateMemoryBuffer(static_cast<DWORD>(bytes.size()), buffer.Put());
    if (SUCCEEDED(result)) {
        result = Fill(*buffer, bytes);
    }
    if (SUCCEEDED(result)) {
        result = MFCreateSample(sample.Put());
    }
    return SUCCEEDED(result) ? sample->AddBuffer(buffer.Get()) : result;
}

} // namespace

HRESULT MakeFilledSample(const std::vector<std::uint8_t>& bytes, LONGLONG time, LONGLONG duration,
                         com::ComPtr<IMFSample>& sample) {
    const HRESULT result = Make(bytes, sample);
    if (FAILED(result)) {
        sample.Reset();
        return result;
    }
    sample->SetSampleTime(time);
    sample->SetSampleDuration(duration);
    return S_OK;
}

} // namespace mf
