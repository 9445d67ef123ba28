// Owners of cairo's objects.
#pragma once

#include <memory>

#include <cairo.h>

namespace wic {

struct DestroySurface {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};

struct DestroyContext {
    void operator()(cairo_t* context) const { cairo_destroy(context); }
};

using CairoSurfacePtr = std::unique_ptr<cairo_surface_t, DestroySurface>;
using CairoContextPtr = std::unique_ptr<cairo_t, DestroyContext>;

} // namespace wic
