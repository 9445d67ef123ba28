// Metadata items with the type that they must have.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/com/ComPtr.h"
#include "platform/com/PropVariant.h"
#include "platform/wic/WinCodec.h"

namespace Zanthe {

// Each reads the item `name` into `value`, which is left alone on failure: an item of another type
// is E_FAIL, one that is missing what the reader says.
//
// Thread-safety: none.
class MetadataReader {
public:
    explicit MetadataReader(com::ComPtr<IWICMetadataQueryReader> reader);

    HRESULT Read(const wchar_t* name, bool& value) const;
    HRESULT Read(const wchar_t* name, std::uint8_t& value) const;
    HRESULT Read(const wchar_t* name, std::uint16_t& value) const;
    HRESULT Read(const wchar_t* name, std::vector<std::uint8_t>& value) const;

private:
    template <typename Take>
    HRESULT ReadAs(const wchar_t* name, VARTYPE type, const Take& take) const;

    com::ComPtr<IWICMetadataQueryReader> m_reader;
};

} // namespace Zanthe
