#include "tools/zanthe/Canvas.h"

#include <cstddef>
#include <cstring>
#include <stdexcept>

namespace Program {

namespace {

using Zanthe::Bitmap;

constexpr int BytesPerPixel = 4;

// As cairo wants it: every colour multiplied by its alpha.
BitmapPtr Premultiplied(const Bitmap& picture) {
    auto copy = std::make_unique<Bitmap>(picture.GetWidth(), picture.GetHeight(), true);
    const std::size_t bytes =
        static_cast<std::size_t>(copy->GetStride()) * static_cast<std::size_t>(copy->GetHeight());
    unsigned char* const bits = copy->GetBits();
    std::memcpy(bits, picture.GetBits(), bytes);
    for (std::size_t i = 0; i < bytes && !picture.GetPreMultipliedAlpha(); i += BytesPerPixel) {
        const int alpha = bits[i + 3];
        for (std::size_t channel = i; channel < i + 3; ++channel) {
            bits[channel] = static_cast<unsigned char>((bits[channel] * alpha + 127) / 255);
        }
    }
    return copy;
}

[[noreturn]] void Fail(cairo_status_t status) {
    throw std::runtime_error(std::string("cannot be drawn: ") + cairo_status_to_string(status));
}

} // namespace

Canvas::Canvas(Size size)
    : m_size(size)
    , m_surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, size.width, size.height))
    , m_cairo(cairo_create(m_surface.get())) {
    RequireSuccess();
}

Canvas::Canvas(Size size, const Colour& ground)
    : Canvas(size) {
    FillArea({0, 0, size.width, size.height}, ground);
}

void Canvas::DrawPicture(const Bitmap& picture, const Rect& place) {
    const BitmapPtr source = Premultiplied(picture);
    const CairoSurfacePtr surface(cairo_image_surface_create_for_data(
        source->GetBits(), CAIRO_FORMAT_ARGB32, source->GetWidth(), source->GetHeight(),
        source->GetStride()));
    cairo_t* const cairo = m_cairo.get();
    cairo_save(cairo);
    cairo_rectangle(cairo, place.x, place.y, place.width, place.height);
    cairo_clip(cairo);
    cairo_translate(cairo, place.x, place.y);
    cairo_scale(cairo, static_cast<double>(place.width) / source->GetWidth(),
                static_cast<double>(place.height) / source->GetHeight());
    cairo_set_source_surface(cairo, surface.get(), 0, 0);
    cairo_pattern_set_filter(cairo_get_source(cairo), CAIRO_FILTER_BEST);
    // Without it the edges would mix with what is not there.
    cairo_pattern_set_extend(cairo_get_source(cairo), CAIRO_EXTEND_PAD);
    cairo_paint(cairo);
    cairo_restore(cairo);
    RequireSuccess();
}

void Canvas::FillArea(const Rect& area, const Colour& colour) {
    cairo_set_source_rgb(m_cairo.get(), colour.red, colour.green, colour.blue);
    cairo_rectangle(m_cairo.get(), area.x, area.y, area.width, area.height);
    cairo_fill(m_cairo.get());
    RequireSuccess();
}

void Canvas::DrawText(const std::string& text, const Rect& area, Align align, double letterHeight,
                      const Colour& colour) {
    cairo_t* const cairo = m_cairo.get();
    cairo_save(cairo);
    cairo_rectangle(cairo, area.x, area.y, area.width, area.height);
    cairo_clip(cairo);
    cairo_select_font_face(cairo, "sans-serif", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(cairo, letterHeight);
    cairo_text_extents_t letters;
    cairo_text_extents(cairo, text.c_str(), &letters);
    cairo_font_extents_t font;
    cairo_font_extents(cairo, &font);
    const double x = align == Align::Left ? area.x : area.x + area.width - letters.x_advance;
    const double baseline = area.y + (area.height + font.ascent - font.descent) / 2;
    cairo_move_to(cairo, x, baseline);
    cairo_set_source_rgb(cairo, colour.red, colour.green, colour.blue);
    cairo_show_text(cairo, text.c_str());
    cairo_restore(cairo);
    RequireSuccess();
}

BitmapPtr Canvas::ToBitmap() const {
    cairo_surface_flush(m_surface.get());
    auto bitmap = std::make_unique<Bitmap>(m_size.width, m_size.height, true);
    const int pitch = cairo_image_surface_get_stride(m_surface.get());
    const unsigned char* row = cairo_image_surface_get_data(m_surface.get());
    for (int y = 0; y < m_size.height; ++y, row += pitch) {
        std::memcpy(bitmap->GetBits() + std::ptrdiff_t{bitmap->GetStride()} * y, row,
                    static_cast<std::size_t>(bitmap->GetStride()));
    }
    return bitmap;
}

void Canvas::RequireSuccess() const {
    if (const cairo_status_t status = cairo_status(m_cairo.get()); status != CAIRO_STATUS_SUCCESS) {
        Fail(status);
    }
}

BitmapPtr Scaled(const Bitmap& picture, Size size) {
    Canvas canvas(size);
    canvas.DrawPicture(picture, {0, 0, size.width, size.height});
    return canvas.ToBitmap();
}

} // namespace Program
