// Where a source reader has a stream's samples from: one implementation for each way of giving
// them.
#pragma once

#include "platform/com/ComPtr.h"
#include "platform/mf/MediaType.h"
#include "platform/mf/Sample.h"

namespace mf {

struct SampleRead {
    HRESULT result = S_OK;
    DWORD flags = 0; // MF_SOURCE_READERF_...
    LONGLONG time = 0;
    com::ComPtr<IMFSample> sample; // empty at the end, and after a failure
};

// Thread-safety: none.
class ISampleSource {
public:
    ISampleSource() = default;
    ISampleSource(const ISampleSource&) = delete;
    ISampleSource& operator=(const ISampleSource&) = delete;
    virtual ~ISampleSource() = default;

    // Where the next sample is from, as IMFSourceReader::SetCurrentPosition says.
    virtual HRESULT SetPosition(LONGLONG position) = 0;

    // The next sample. Throws std::bad_alloc.
    virtual SampleRead Read() = 0;

    // Writes into the stream's current type what the samples have told of it by now.
    virtual void Describe(IMFMediaType& type) const = 0;
};

} // namespace mf
