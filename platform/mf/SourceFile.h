// The file behind a media source of this layer.
#pragma once

#include <string>

#include "platform/av/FileFacts.h"
#include "platform/com/Unknown.h"

namespace mf {

inline constexpr IID IID_ISourceFile = {
    0x5B1D7C0A, 0x33D4, 0x4E0B, {0x9C, 0x55, 0x6E, 0x0D, 0x4A, 0x1F, 0x82, 0xB7}};

// Where nothing is at a path.
inline constexpr HRESULT kFileNotFound = com::ResultOf(0x80070002);

// Thread-safety: safe from any thread.
struct ISourceFile : IUnknown {
    // UTF-8, as it is opened.
    virtual const std::string& Path() const = 0;

    virtual bool IsShutDown() const = 0;

protected:
    ~ISourceFile() = default;
};

// What streams the file has. MF_E_UNSUPPORTED_BYTESTREAM_TYPE where it is no media file, HRESULT
// 0x80070002 where nothing is there. Throws std::bad_alloc.
HRESULT ReadSourceFacts(const std::string& path, av::FileFacts& facts);

} // namespace mf
