// PDF pages as pixels: the calls of the closed rasteriser, on poppler and cairo.
#pragma once

#include <memory>
#include <string>

namespace Vellum {

// A document. What a page leaves unpainted stays transparent: artwork is laid over video without a
// box around it, and a page that is to be white says so itself or gets white put behind it.
//
// Thread-safety: one thread at a time for each object.
class Pdf {
public:
    // `path` is UTF-8. A file that cannot be opened makes a document that is not valid.
    explicit Pdf(const std::string& path);
    Pdf(const Pdf&) = delete;
    Pdf& operator=(const Pdf&) = delete;
    ~Pdf();

    // Whether the file could be opened as a document. One that asks for a password could not.
    bool IsValid() const;

    // Draws page `page`, counted from 1, stretched to exactly width by height pixels, into
    // `destination`: blue, green, red, alpha in memory, premultiplied, the top row first, `stride`
    // bytes a row, a multiple of 4. The page is what its crop box shows, turned as it says.
    //
    // False, with the rows untouched or half drawn, where the document is not valid or has no such
    // page, the page has no area, a size is below 1 or above 32767, or there is no memory.
    bool Rasterize(int width, int height, int page, void* destination, int stride) const;

private:
    class Document;

    std::unique_ptr<const Document> m_document; // null when not valid
};

} // namespace Vellum
