// Drawing with cairo: scaled pictures, areas of colour, lines of text.
//
//     Canvas canvas({640, 200}, Colours::Ground);
//     canvas.DrawPicture(picture, {10, 10, 320, 180});
//     canvas.DrawText("0:00:01.000", {10, 192}, Align::Left, Colours::Text);
//     canvas.ToBitmap()->SavePNG("sheet.png");
#pragma once

#include <memory>
#include <string>

#include <cairo.h>

#include "zanthe/core/Bitmap.h"

namespace Program {

using BitmapPtr = std::unique_ptr<Zanthe::Bitmap>;

struct Size {
    int width = 0; // pixels
    int height = 0;
    bool operator==(const Size&) const = default;
};

struct Rect {
    int x = 0; // pixels, from the top left
    int y = 0;
    int width = 0;
    int height = 0;
    bool operator==(const Rect&) const = default;
};

struct Colour {
    double red = 0; // 0 to 1
    double green = 0;
    double blue = 0;
};

template <auto Free>
struct CairoFree {
    template <typename T>
    void operator()(T* object) const {
        Free(object);
    }
};

using CairoSurfacePtr = std::unique_ptr<cairo_surface_t, CairoFree<cairo_surface_destroy>>;
using CairoPtr = std::unique_ptr<cairo_t, CairoFree<cairo_destroy>>;

// Thread-safety: none. All operations throw std::runtime_error with cairo's own text when it fails.
class Canvas {
public:
    // Filled with `ground`. A side above 32767 is more than cairo can draw.
    Canvas(Size size, const Colour& ground);
    // Transparent.
    explicit Canvas(Size size);

    // The whole picture into `place`, filtered.
    void DrawPicture(const Zanthe::Bitmap& picture, const Rect& place);

    void FillArea(const Rect& area, const Colour& colour);

    // One line of text, its first letter at `area`'s left or its last one at the right, centred
    // upright. Letters that do not fit are cut off on the other side.
    enum class Align { Left, Right };
    void DrawText(const std::string& text, const Rect& area, Align align, double letterHeight,
                  const Colour& colour);

    // A copy of what is drawn, premultiplied.
    BitmapPtr ToBitmap() const;

private:
    void RequireSuccess() const;

    Size m_size;
    CairoSurfacePtr m_surface;
    CairoPtr m_cairo;
};

// The picture in another size, filtered, premultiplied.
BitmapPtr Scaled(const Zanthe::Bitmap& picture, Size size);

} // namespace Program
