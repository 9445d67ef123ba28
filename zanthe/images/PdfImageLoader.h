// The first page of a PDF document as a bitmap, at any size.
//
//     Zanthe::PdfImageLoader loader("slide.pdf", 0);
//     loader.Load(0.0, 1920, 1080);
//     loader.GetBitmap()->SavePNG("slide.png");
#pragma once

#include <string>

#include <boost/shared_ptr.hpp>

#include "zanthe/core/Export.h"
#include "zanthe/images/IImageLoader.h"

namespace Vellum {
class Pdf;
}

namespace Zanthe {

// Whether the file at `path` (UTF-8) has a document's mark in its first kilobyte: some have bytes
// before it. Thread-safety: safe from any thread.
ZANTHE_API bool LooksLikePdf(const std::string& path);

// A page has no size in pixels: it is stretched to the one that is asked for, and drawn anew for
// every other. What it leaves unpainted is transparent.
//
// Thread-safety: as IImageLoader.
class ZANTHE_API PdfImageLoader : public IImageLoader {
public:
    // `path` is UTF-8. `value` is the host's own, kept and not used. Throws std::runtime_error
    // "PdfImageLoader: Couldn't open filename" when the file is no document that can be opened.
    PdfImageLoader(const std::string& path, int value);
    ~PdfImageLoader() override;

    // IImageLoader

    // Of the picture at hand. Throw std::runtime_error before the first Load:
    // "PdfImageLoader: Can't GetWidth if _Bitmap is nullptr", and the same of GetHeight.
    int GetWidth() const override;
    int GetHeight() const override;

    // Draws the page at exactly this size; nothing happens when the picture has it already. `time`
    // plays no part. Throws std::bad_alloc as Bitmap does, and std::runtime_error:
    //   "PdfImageLoader: width and height must be > 0"    the picture at hand stays
    //   "PdfImageLoader: Couldn't load a bitmap"          there is no page, or a side is above
    //                                                     32767; what the picture shows is
    //                                                     undefined
    void Load(double time, int width, int height) override;

    bool IsVectorResizable() const override; // true

    // As Load, and may come before it.
    void Resize(int width, int height) override;

    boost::shared_ptr<Bitmap> GetBitmap() override;

private:
    void Rasterize(int width, int height);

    boost::shared_ptr<Vellum::Pdf> m_document;
    boost::shared_ptr<Bitmap> m_bitmap;
    [[maybe_unused]] int m_value;
};

} // namespace Zanthe
