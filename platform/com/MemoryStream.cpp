#include "platform/com/MemoryStream.h"

#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "platform/com/ReadingStream.h"

namespace {

using Bytes = std::vector<BYTE>;

class MemoryStream final : public com::ReadingStream {
public:
    explicit MemoryStream(std::shared_ptr<const Bytes> bytes)
        : m_bytes(std::move(bytes)) {}

    HRESULT Clone(IStream** copy) override { return com::Make<MemoryStream>(copy, m_bytes); }

private:
    std::uint64_t Size() const override { return m_bytes->size(); }

    bool ReadAt(std::uint64_t position, void* buffer, ULONG byteCount) override {
        std::memcpy(buffer, m_bytes->data() + position, byteCount);
        return true;
    }

    std::wstring Name() const override { return {}; }

    std::shared_ptr<const Bytes> m_bytes; // shared with its clones
};

} // namespace

IStream* SHCreateMemStream(const BYTE* bytes, UINT byteCount) {
    if (bytes == nullptr && byteCount > 0) {
        return nullptr;
    }
    IStream* stream = nullptr;
    const HRESULT result = com::Wall([&]() -> HRESULT {
        auto copy = std::make_shared<const Bytes>(bytes, bytes + byteCount);
        return com::Make<MemoryStream>(&stream, std::move(copy));
    });
    return SUCCEEDED(result) ? stream : nullptr;
}
