// The media types of a file's streams, as the file holds them.
#pragma once

#include "platform/av/FileFacts.h"
#include "platform/com/ComPtr.h"
#include "platform/mf/MediaType.h"

namespace mf {

// Throws std::bad_alloc.
com::ComPtr<IMFMediaType> NativeTypeOf(const av::FileStream& stream, const std::string& container);

// A copy of a type, for somebody else to change. Throws std::bad_alloc.
com::ComPtr<IMFMediaType> CopyOf(IMFMediaType& type);

} // namespace mf
