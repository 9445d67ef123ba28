#include "zanthe/images/MetadataReader.h"

#include <utility>

namespace Zanthe {

MetadataReader::MetadataReader(com::ComPtr<IWICMetadataQueryReader> reader)
    : m_reader(std::move(reader)) {}

template <typename Take>
HRESULT MetadataReader::ReadAs(const wchar_t* name, VARTYPE type, const Take& take) const {
    PROPVARIANT variant;
    PropVariantInit(&variant);
    const HRESULT result = m_reader->GetMetadataByName(name, &variant);
    if (FAILED(result)) {
        return result;
    }
    const bool typed = variant.vt == type;
    if (typed) {
        take(variant);
    }
    PropVariantClear(&variant);
    return typed ? S_OK : E_FAIL;
}

HRESULT MetadataReader::Read(const wchar_t* name, bool& value) const {
    return ReadAs(name, VT_BOOL,
                  [&](const PROPVARIANT& variant) { value = variant.boolVal != VARIANT_FALSE; });
}

HRESULT MetadataReader::Read(const wchar_t* name, std::uint8_t& value) const {
    return ReadAs(name, VT_UI1, [&](const PROPVARIANT& variant) { value = variant.bVal; });
}

HRESULT MetadataReader::Read(const wchar_t* name, std::uint16_t& value) const {
    return ReadAs(name, VT_UI2, [&](const PROPVARIANT& variant) { value = variant.uiVal; });
}

HRESULT MetadataReader::Read(const wchar_t* name, std::vector<std::uint8_t>& value) const {
    return ReadAs(name, VT_VECTOR | VT_UI1, [&](const PROPVARIANT& variant) {
        value.assign(variant.caub.pElems, variant.caub.pElems + variant.caub.cElems);
    });
}

} // namespace Zanthe
