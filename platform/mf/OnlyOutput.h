// What transforms with one output stream ask of the buffers they are handed.
#pragma once

#include "platform/mf/Errors.h"
#include "platform/mf/Transform.h"

namespace mf {

// Sets the status of the call and of the buffer to 0. E_POINTER where there is nothing to write to;
// E_INVALIDARG unless it is one buffer with a sample.
inline HRESULT PrepareOnlyOutput(DWORD count, MFT_OUTPUT_DATA_BUFFER* buffers, DWORD* status) {
    if (buffers == nullptr || status == nullptr) {
        return E_POINTER;
    }
    *status = 0;
    if (count != 1 || buffers->pSample == nullptr) {
        return E_INVALIDARG;
    }
    buffers->dwStatus = 0;
    return S_OK;
}

} // namespace mf
