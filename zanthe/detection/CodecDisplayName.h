// What the editor calls a stream's codec.
#pragma once

#include <string>

#include "platform/com/Guid.h"

// True with the codec's name in `name`, where the table holds this pair of media types; false with
// `name` untouched for any other pair, and for any major type but MEDIATYPE_Video and
// MEDIATYPE_Audio.
//
// Thread-safety: safe from any thread.
bool GetCodecDisplayName(const GUID& majorType, const GUID& subtype, std::wstring& name);
