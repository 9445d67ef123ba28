// A still picture's file as libvips reads it: JPEG, PNG, TIFF, WebP, HEIF.
#pragma once

#include <memory>
#include <optional>

#include "platform/wic/InputFile.h"
#include "platform/wic/Rendering.h"
#include "platform/wic/TiffTags.h"
#include "platform/wic/VipsHandles.h"

namespace wic {

// Thread-safety: none.
class VipsFile {
public:
    // Reads the header. Null, with why in `result`, where no hardened loader knows the bytes
    // (WINCODEC_ERR_COMPONENTNOTFOUND), the header makes no sense (WINCODEC_ERR_BADIMAGE) or
    // promises more pixels than are ever decoded (WINCODEC_ERR_IMAGESIZEOUTOFRANGE), or pixels
    // are of a kind that nobody converts (WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT).
    static std::shared_ptr<VipsFile> Open(std::shared_ptr<const InputFile> file, HRESULT& result);

    const PictureShape& Shape() const { return m_shape; }

    // The orientation that a JPEG file's EXIF block tells, 1 to 8; empty where it tells none.
    std::optional<std::uint16_t> Orientation() const { return m_orientation; }

    // Decodes; may be asked again.
    HRESULT Render(const Rendering& rendering) const;

private:
    explicit VipsFile(std::shared_ptr<const InputFile> file);

    // A picture that nothing has been read of but its header. shrink: 1, or 2, 4 or 8, by which a
    // JPEG file is decoded smaller.
    VipsImagePtr OpenImage(int shrink) const;
    HRESULT ReadHeader();
    int ShrinkFor(const Rendering& rendering) const;

    std::shared_ptr<const InputFile> m_file;
    PictureShape m_shape;
    std::optional<std::uint16_t> m_orientation;
    FilePatch m_patch;
    bool m_isJpeg = false;
    bool m_isPremultiplied = false; // when it is read with the patch
};

} // namespace wic
