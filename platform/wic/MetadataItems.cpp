#include "platform/wic/MetadataItems.h"

#include <algorithm>
#include <utility>

#include "platform/com/Object.h"
#include "platform/com/PropVariant.h"
#include "platform/com/TaskMemory.h"

namespace wic {

namespace {

// Writes a value into a variant that holds none.
struct Fill {
    PROPVARIANT& variant;

    HRESULT operator()(bool flag) const {
        variant.vt = VT_BOOL;
        variant.boolVal = flag ? VARIANT_TRUE : VARIANT_FALSE;
        return S_OK;
    }

    HRESULT operator()(std::uint8_t number) const {
        variant.vt = VT_UI1;
        variant.bVal = number;
        return S_OK;
    }

    HRESULT operator()(std::uint16_t number) const {
        variant.vt = VT_UI2;
        variant.uiVal = number;
        return S_OK;
    }

    HRESULT operator()(const std::vector<std::uint8_t>& bytes) const {
        auto* memory = static_cast<BYTE*>(CoTaskMemAlloc(std::max<std::size_t>(bytes.size(), 1)));
        if (memory == nullptr) {
            return E_OUTOFMEMORY;
        }
        std::copy(bytes.begin(), bytes.end(), memory);
        variant.vt = VT_VECTOR | VT_UI1;
        variant.caub = {static_cast<ULONG>(bytes.size()), memory};
        return S_OK;
    }
};

class QueryReader final : public com::Object<IWICMetadataQueryReader> {
public:
    explicit QueryReader(MetadataItems items)
        : m_items(std::move(items)) {}

    HRESULT GetMetadataByName(LPCWSTR name, PROPVARIANT* value) override {
        if (name == nullptr || value == nullptr) {
            return E_INVALIDARG;
        }
        const auto item = m_items.find(name);
        if (item == m_items.end()) {
            return WINCODEC_ERR_PROPERTYNOTFOUND;
        }
        PropVariantInit(value);
        return std::visit(Fill{*value}, item->second);
    }

private:
    void* Find(REFIID iid) override {
        return com::Among(iid, IID_IWICMetadataQueryReader,
                          static_cast<IWICMetadataQueryReader*>(this));
    }

    MetadataItems m_items;
};

} // namespace

HRESULT MakeQueryReader(MetadataItems items, IWICMetadataQueryReader** reader) {
    return com::Make<QueryReader>(reader, std::move(items));
}

} // namespace wic
