// What a file says beside its pixels, by path.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <variant>
#include <vector>

#include "platform/wic/WinCodec.h"

namespace wic {

using MetadataValue = std::variant<bool, std::uint8_t, std::uint16_t, std::vector<std::uint8_t>>;
using MetadataItems = std::map<std::wstring, MetadataValue, std::less<>>;

// A reader of `items`: flags come as VT_BOOL, numbers as VT_UI1 and VT_UI2, bytes as
// VT_VECTOR | VT_UI1.
HRESULT MakeQueryReader(MetadataItems items, IWICMetadataQueryReader** reader);

} // namespace wic
