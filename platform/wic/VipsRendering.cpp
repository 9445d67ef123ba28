#include "platform/wic/VipsRendering.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace wic {

namespace {

// A step of a pipeline: takes the picture and answers the next one, null when libvips refuses.
template <typename Call>
VipsImagePtr Step(const VipsImagePtr& image, const Call& call) {
    VipsImage* next = nullptr;
    return call(image.get(), &next) == 0 ? VipsImagePtr(next) : nullptr;
}

VipsImagePtr Bands(const VipsImagePtr& image, int count) {
    return Step(image, [&](VipsImage* in, VipsImage** out) {
        return vips_extract_band(in, out, 0, "n", count, nullptr);
    });
}

VipsImagePtr ToSrgb(const VipsImagePtr& image) {
    return Step(image, [](VipsImage* in, VipsImage** out) {
        return vips_colourspace(in, out, VIPS_INTERPRETATION_sRGB, nullptr);
    });
}

VipsImagePtr WithFormat(const VipsImagePtr& image, VipsBandFormat format) {
    return Step(image, [&](VipsImage* in, VipsImage** out) {
        return vips_copy(in, out, "format", format, nullptr);
    });
}

// Makes the rows of a region from those of its input: row(from, pixels, to).
template <typename Row>
int GenerateRows(VipsRegion* out, void* sequence, const Row& row) {
    auto* in = static_cast<VipsRegion*>(sequence);
    const VipsRect& area = out->valid;
    if (vips_region_prepare(in, &area) != 0) {
        return -1;
    }
    for (int y = 0; y < area.height; ++y) {
        row(VIPS_REGION_ADDR(in, area.left, area.top + y), static_cast<std::size_t>(area.width),
            VIPS_REGION_ADDR(out, area.left, area.top + y));
    }
    return 0;
}

// A picture whose rows `generate` makes from those of `image`, in bytes.
VipsImagePtr Generated(const VipsImagePtr& image, VipsGenerateFn generate) {
    VipsImagePtr out(vips_image_new());
    if (vips_image_pipelinev(out.get(), VIPS_DEMAND_STYLE_THINSTRIP, image.get(), nullptr) != 0) {
        return nullptr;
    }
    out->BandFmt = VIPS_FORMAT_UCHAR;
    if (vips_image_generate(out.get(), vips_start_one, generate, vips_stop_one, image.get(),
                            nullptr) != 0) {
        return nullptr;
    }
    // The output lives no longer than its input: it holds a reference on it.
    g_object_ref(image.get());
    vips_object_local(out.get(), image.get());
    return out;
}

int NarrowRegion(VipsRegion* out, void* sequence, void*, void*, gboolean*) {
    const auto bands = static_cast<std::size_t>(out->im->Bands);
    return GenerateRows(out, sequence, [&](const VipsPel* from, std::size_t width, VipsPel* to) {
        NarrowToBytes(reinterpret_cast<const std::uint16_t*>(from), width * bands, to);
    });
}

// Of 16 bits the nearest shade of 8; of 32 the upper byte. A sign is none: decoders of pictures
// take the bits as they are.
VipsImagePtr ToBytes(const VipsImagePtr& image) {
    if (!image) {
        return nullptr;
    }
    switch (image->BandFmt) {
    case VIPS_FORMAT_CHAR:
        return WithFormat(image, VIPS_FORMAT_UCHAR);
    case VIPS_FORMAT_SHORT:
    case VIPS_FORMAT_USHORT:
        return Generated(image, NarrowRegion);
    default:
        return Step(image, [&](VipsImage* in, VipsImage** out) {
            const gboolean shift = vips_band_format_isint(in->BandFmt);
            return vips_cast(in, out, VIPS_FORMAT_UCHAR, "shift", shift, nullptr);
        });
    }
}

bool IsRgbOrGray(VipsInterpretation interpretation) {
    switch (interpretation) {
    case VIPS_INTERPRETATION_B_W:
    case VIPS_INTERPRETATION_GREY16:
    case VIPS_INTERPRETATION_sRGB:
    case VIPS_INTERPRETATION_RGB:
    case VIPS_INTERPRETATION_RGB16:
    case VIPS_INTERPRETATION_MULTIBAND:
        return true;
    default:
        return false;
    }
}

bool IsFloat(const VipsImagePtr& image) {
    return vips_band_format_isint(image->BandFmt) == 0;
}

PixelLayout LayoutOf(int bands) {
    switch (bands) {
    case 1:
        return PixelLayout::Gray;
    case 2:
        return PixelLayout::GrayAlpha;
    case 3:
        return PixelLayout::Rgb;
    default:
        return PixelLayout::Rgba;
    }
}

struct BytePicture {
    VipsImagePtr image;
    PixelKind kind;
};

// Colours are taken as the file has them: profiles are the host's affair, as for video.
std::optional<BytePicture> AsBytes(VipsImagePtr image, bool premultiplied) {
    if (image->Type == VIPS_INTERPRETATION_CMYK && image->Bands >= 4 && !IsFloat(image)) {
        image = ToBytes(Bands(image, 4));
        return image ? std::optional(BytePicture{std::move(image), {PixelLayout::Cmyk, false}})
                     : std::nullopt;
    }
    if (!IsRgbOrGray(image->Type) || IsFloat(image)) {
        image = ToSrgb(image);
    }
    if (image && image->BandFmt != VIPS_FORMAT_UCHAR) {
        image = ToBytes(image);
    }
    if (image && image->Bands > 4) {
        image = Bands(image, 4);
    }
    if (!image) {
        return std::nullopt;
    }
    const PixelKind kind{LayoutOf(image->Bands), premultiplied};
    return BytePicture{std::move(image), kind};
}

int PremultiplyRegion(VipsRegion* out, void* sequence, void*, void*, gboolean*) {
    const PixelLayout layout = out->im->Bands == 2 ? PixelLayout::GrayAlpha : PixelLayout::Rgba;
    return GenerateRows(out, sequence, [&](const VipsPel* from, std::size_t width, VipsPel* to) {
        Premultiply(layout, from, width, to);
    });
}

VipsImagePtr Resized(const VipsImagePtr& image, UINT width, UINT height) {
    return Step(image, [&](VipsImage* in, VipsImage** out) {
        return vips_resize(in, out, static_cast<double>(width) / in->Xsize, "vscale",
                           static_cast<double>(height) / in->Ysize, "kernel", VIPS_KERNEL_CUBIC,
                           nullptr);
    });
}

HRESULT Failed() {
    vips_error_clear();
    return WINCODEC_ERR_BADIMAGE;
}

// On libvips' own thread, in the order of the rows. Nothing in here throws.
int WriteStrip(VipsRegion* region, VipsRect* area, void* writer) {
    static_cast<RowWriter*>(writer)->Write(static_cast<std::size_t>(area->top),
                                           static_cast<std::size_t>(area->height),
                                           VIPS_REGION_ADDR(region, 0, area->top),
                                           static_cast<std::size_t>(VIPS_REGION_LSKIP(region)));
    return 0;
}

} // namespace

HRESULT RenderVips(VipsImagePtr image, PixelKind kind, const Rendering& rendering) {
    const auto fits = [&] {
        return static_cast<UINT>(image->Xsize) == rendering.width &&
               static_cast<UINT>(image->Ysize) == rendering.height;
    };
    if (!fits()) {
        // What cannot be seen must not bleed into what can.
        if (HasAlpha(kind.layout) && !kind.premultiplied) {
            image = Generated(image, PremultiplyRegion);
            kind.premultiplied = true;
        }
        image = image ? Resized(image, rendering.width, rendering.height) : nullptr;
    }
    if (!image || !fits()) {
        return Failed();
    }
    RowWriter writer(kind, rendering);
    return vips_sink_disc(image.get(), WriteStrip, &writer) == 0 ? S_OK : Failed();
}

HRESULT RenderMemory(const BYTE* pixels, const PictureShape& shape, const PixelKind& kind,
                     const Rendering& rendering) {
    if (shape.width == rendering.width && shape.height == rendering.height) {
        RowWriter writer(kind, rendering);
        writer.Write(0, shape.height, pixels, std::size_t{shape.width} * 4);
        return S_OK;
    }
    if (!StartVips()) {
        return E_FAIL;
    }
    constexpr int bands = 4;
    VipsImagePtr image(vips_image_new_from_memory(
        pixels, std::size_t{shape.width} * shape.height * bands, static_cast<int>(shape.width),
        static_cast<int>(shape.height), bands, VIPS_FORMAT_UCHAR));
    return image ? RenderVips(std::move(image), kind, rendering) : Failed();
}

HRESULT RenderLoaded(VipsImagePtr image, bool premultiplied, const Rendering& rendering) {
    std::optional<BytePicture> bytes = AsBytes(std::move(image), premultiplied);
    return bytes ? RenderVips(std::move(bytes->image), bytes->kind, rendering) : Failed();
}

} // namespace wic
