#include "platform/wic/VipsFile.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>

#include "platform/wic/VipsRendering.h"

namespace wic {

namespace {

// One reading of the file by libvips; ends with the VipsSource that it is attached to.
struct Reading {
    std::shared_ptr<const InputFile> file;
    FilePatch patch;
    std::int64_t position = 0;
};

// Lays the patch over `count` bytes that begin at `offset` of the file.
void Apply(const FilePatch& patch, std::int64_t offset, std::uint8_t* bytes, std::size_t count) {
    for (std::size_t i = 0; i < patch.count; ++i) {
        const std::int64_t at = patch.offset + static_cast<std::int64_t>(i) - offset;
        if (at >= 0 && at < static_cast<std::int64_t>(count)) {
            bytes[at] = patch.bytes[i];
        }
    }
}

// Called by libvips, on whichever of its threads decodes; one at a time.
gint64 ReadBytes(VipsSourceCustom*, void* buffer, gint64 length, Reading* reading) {
    const std::size_t got =
        reading->file->ReadAt(reading->position, buffer, static_cast<std::size_t>(length));
    Apply(reading->patch, reading->position, static_cast<std::uint8_t*>(buffer), got);
    reading->position += static_cast<std::int64_t>(got);
    return static_cast<gint64>(got);
}

gint64 SeekTo(VipsSourceCustom*, gint64 offset, int whence, Reading* reading) {
    std::int64_t base = 0;
    if (whence == SEEK_CUR) {
        base = reading->position;
    } else if (whence == SEEK_END) {
        base = reading->file->Size();
    }
    std::int64_t target = 0;
    if (__builtin_add_overflow(base, offset, &target) || target < 0) {
        return -1;
    }
    reading->position = target;
    return target;
}

void EndReading(gpointer reading, GClosure*) {
    delete static_cast<Reading*>(reading);
}

// Through our own file, not a descriptor of libvips': that would be mapped into memory, where a
// file that somebody shortens meanwhile kills the process.
VipsSourcePtr SourceOf(std::shared_ptr<const InputFile> file, const FilePatch& patch = {}) {
    VipsSourceCustom* custom = vips_source_custom_new();
    if (custom == nullptr) {
        return nullptr;
    }
    VipsSourcePtr source(VIPS_SOURCE(custom));
    auto reading = std::make_unique<Reading>(Reading{std::move(file), patch});
    g_signal_connect(custom, "seek", G_CALLBACK(SeekTo), reading.get());
    g_signal_connect_data(custom, "read", G_CALLBACK(ReadBytes), reading.release(), EndReading,
                          GConnectFlags{});
    return source;
}

// The loaders that are let at a file, by the type that libvips gives them. GIF is not among them:
// its frames come from giflib, before they are put together.
constexpr std::array<std::string_view, 5> AllowedLoaders = {
    "VipsForeignLoadJpegSource", "VipsForeignLoadPngSource", "VipsForeignLoadTiffSource",
    "VipsForeignLoadWebpSource", "VipsForeignLoadHeifSource"};
constexpr std::string_view JpegLoader = AllowedLoaders[0];
constexpr std::string_view TiffLoader = AllowedLoaders[2];
constexpr std::string_view WebpLoader = AllowedLoaders[3];
constexpr std::string_view HeifLoader = AllowedLoaders[4];

std::string LoaderOf(const std::shared_ptr<const InputFile>& file) {
    const VipsSourcePtr source = SourceOf(file);
    const char* loader = source ? vips_foreign_find_load_source(source.get()) : nullptr;
    vips_error_clear();
    if (loader == nullptr || std::find(AllowedLoaders.begin(), AllowedLoaders.end(),
                                       std::string_view(loader)) == AllowedLoaders.end()) {
        return {};
    }
    return loader;
}

int IntegerOf(const VipsImagePtr& image, const char* name) {
    int value = 0;
    if (vips_image_get_typeof(image.get(), name) == G_TYPE_INT) {
        vips_image_get_int(image.get(), name, &value);
    }
    return value;
}

bool IsSixteenBits(const VipsImagePtr& image) {
    return image->BandFmt == VIPS_FORMAT_USHORT || image->BandFmt == VIPS_FORMAT_SHORT;
}

// Whether the picture is decoded as a whole before its first row is there.
bool IsHeldWhole(std::string_view loader, const VipsImagePtr& image) {
    return loader == WebpLoader || loader == HeifLoader ||
           vips_image_get_typeof(image.get(), "interlaced") != 0;
}

bool IsTooLarge(std::string_view loader, const TiffTags& tags, const VipsImagePtr& image) {
    const auto width = static_cast<std::uint64_t>(image->Xsize);
    const auto height = static_cast<std::uint64_t>(image->Ysize);
    const std::uint64_t rowBytes = width * VIPS_IMAGE_SIZEOF_PEL(image.get());
    return width * height >
               (IsHeldWhole(loader, image) ? MaxProgressivePixels : MaxPicturePixels) ||
           rowBytes > MaxRowBytes || rowBytes * RowsHeldOf(tags, height) > MaxStripBytes;
}

WICPixelFormatGUID IndexedFormat(int bits) {
    switch (bits) {
    case 1:
        return GUID_WICPixelFormat1bppIndexed;
    case 2:
        return GUID_WICPixelFormat2bppIndexed;
    case 4:
        return GUID_WICPixelFormat4bppIndexed;
    default:
        return GUID_WICPixelFormat8bppIndexed;
    }
}

// The nearest of the formats that there are names for.
WICPixelFormatGUID FormatOf(const VipsImagePtr& image) {
    if (const int bits = IntegerOf(image, "palette-bit-depth"); bits > 0) {
        return IndexedFormat(bits);
    }
    if (vips_band_format_isint(image->BandFmt) == 0) {
        return GUID_WICPixelFormat128bppRGBAFloat;
    }
    const bool wide = IsSixteenBits(image);
    if (image->Type == VIPS_INTERPRETATION_CMYK) {
        return wide ? GUID_WICPixelFormat64bppCMYK : GUID_WICPixelFormat32bppCMYK;
    }
    if (image->Bands == 1) {
        return wide ? GUID_WICPixelFormat16bppGray : GUID_WICPixelFormat8bppGray;
    }
    if (image->Bands == 3) {
        return wide ? GUID_WICPixelFormat48bppRGB : GUID_WICPixelFormat24bppBGR;
    }
    return wide ? GUID_WICPixelFormat64bppRGBA : GUID_WICPixelFormat32bppBGRA;
}

double DpiOf(double pixelsPerMillimetre) {
    constexpr double millimetresPerInch = 25.4;
    return pixelsPerMillimetre > 0 ? pixelsPerMillimetre * millimetresPerInch : 96.0;
}

} // namespace

std::shared_ptr<VipsFile> VipsFile::Open(std::shared_ptr<const InputFile> file, HRESULT& result) {
    std::shared_ptr<VipsFile> opened;
    result = StartVips() ? S_OK : E_FAIL;
    if (SUCCEEDED(result)) {
        opened.reset(new VipsFile(std::move(file)));
        result = opened->ReadHeader();
    }
    return SUCCEEDED(result) ? opened : nullptr;
}

VipsFile::VipsFile(std::shared_ptr<const InputFile> file)
    : m_file(std::move(file)) {}

HRESULT VipsFile::ReadHeader() {
    const std::string loader = LoaderOf(m_file);
    if (loader.empty()) {
        return WINCODEC_ERR_COMPONENTNOTFOUND;
    }
    const VipsImagePtr image = OpenImage(1);
    if (!image) {
        return WINCODEC_ERR_BADIMAGE;
    }
    m_isJpeg = loader == JpegLoader;
    const TiffTags tags = loader == TiffLoader ? ReadTiffTags(*m_file) : TiffTags();
    if (IsTooLarge(loader, tags, image)) {
        return WINCODEC_ERR_IMAGESIZEOUTOFRANGE;
    }
    if (IsYcbcrThatStaysSo(tags)) {
        return WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT;
    }
    m_isPremultiplied = IsPremultiplied(tags) && vips_band_format_isint(image->BandFmt) != 0;
    if (m_isPremultiplied) {
        m_patch = WithoutAssociation(tags);
    }
    m_shape = {static_cast<UINT>(image->Xsize), static_cast<UINT>(image->Ysize),
               m_isPremultiplied && IsPremultipliedRgba(tags) ? GUID_WICPixelFormat32bppPBGRA
                                                              : FormatOf(image),
               DpiOf(image->Xres), DpiOf(image->Yres)};
    if (m_isJpeg && vips_image_get_typeof(image.get(), VIPS_META_ORIENTATION) != 0) {
        m_orientation = static_cast<std::uint16_t>(vips_image_get_orientation(image.get()));
    }
    return S_OK;
}

VipsImagePtr VipsFile::OpenImage(int shrink) const {
    const VipsSourcePtr source = SourceOf(m_file, m_patch);
    if (!source) {
        return nullptr;
    }
    // A JPEG file that was cut off shows what there is of it, grey below, as everywhere. Other
    // formats give nothing that could be told from a picture.
    const VipsFailOn failOn = m_isJpeg ? VIPS_FAIL_ON_NONE : VIPS_FAIL_ON_TRUNCATED;
    const std::string options = shrink > 1 ? "shrink=" + std::to_string(shrink) : std::string();
    VipsImagePtr image(vips_image_new_from_source(source.get(), options.c_str(), "access",
                                                  VIPS_ACCESS_SEQUENTIAL, "fail_on", failOn,
                                                  nullptr));
    if (!image) {
        vips_error_clear();
    }
    return image;
}

// Leaves the scaler at least a factor of two, so that what the smaller decoding blurs is gone
// afterwards.
int VipsFile::ShrinkFor(const Rendering& rendering) const {
    const UINT factor =
        std::min(m_shape.width / rendering.width, m_shape.height / rendering.height);
    if (!m_isJpeg || factor < 4) {
        return 1;
    }
    return factor >= 16 ? 8 : factor >= 8 ? 4 : 2;
}

HRESULT VipsFile::Render(const Rendering& rendering) const {
    VipsImagePtr image = OpenImage(ShrinkFor(rendering));
    return image ? RenderLoaded(std::move(image), m_isPremultiplied, rendering)
                 : WINCODEC_ERR_BADIMAGE;
}

} // namespace wic
