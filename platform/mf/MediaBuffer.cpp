#include "platform/mf/MediaBuffer.h"

#include <vector>

#include "platform/mf/CountedBuffer.h"

namespace mf {

namespace {

class MemoryBuffer final : public CountedBuffer<> {
public:
    explicit MemoryBuffer(DWORD maxLength)
        : CountedBuffer(maxLength, 0)
        , m_bytes(maxLength) {}

private:
    void* Find(REFIID iid) override {
        return com::Among(iid, IID_IMFMediaBuffer, static_cast<IMFMediaBuffer*>(this));
    }

    HRESULT Prepare(BYTE** bytes) override {
        *bytes = m_bytes.data();
        return S_OK;
    }

    std::vector<BYTE> m_bytes;
};

} // namespace

} // namespace mf

HRESULT MFCreateMemoryBuffer(DWORD maxLength, IMFMediaBuffer** buffer) {
    return com::Make<mf::MemoryBuffer>(buffer, maxLength);
}
