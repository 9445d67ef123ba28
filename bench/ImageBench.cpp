// Pictures: a photo of 24 megapixels as a bitmap of at most 4096 a side, frames of a GIF on and
// back, a page of a PDF document. Against the libraries below, used by hand.
#include <cmath>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/Comparison.h"
#include "platform/av/Handles.h"
#include "zanthe/images/PdfImageLoader.h"
#include "zanthe/images/WICAnimatedGIFLoader.h"
#include "zanthe/images/WICImageLoader.h"
#include "zanthe/images/WidePath.h"

// Behind ours: GLib has macros where they have constants.
#include <cairo.h>
#include <poppler.h>
#include <vips/vips.h>

namespace {

constexpr int Side = 4096;
constexpr int PhotoWidth = 4096;
constexpr int PhotoHeight = 2731; // 4000 * 4096 / 6000, to the nearest
constexpr int PageWidth = 1920;
constexpr int PageHeight = 1080;

using Pixels = std::vector<unsigned char>; // blue, green, red, alpha

std::string Media(const std::string& name) {
    return std::string(ZANTHE_BENCH_MEDIA_FOLDER "/") + name;
}

void Require(bool holds, const char* what) {
    if (!holds) {
        throw std::runtime_error(what);
    }
}

struct DropObject {
    void operator()(gpointer object) const { g_object_unref(object); }
};

using ImagePtr = std::unique_ptr<VipsImage, DropObject>;

// Decode in order, shrink with the cubic kernel, put the bands as a bitmap has them.
Pixels VipsPhoto() {
    const ImagePtr photo(vips_image_new_from_file(Media("photo.jpg").c_str(), "access",
                                                  VIPS_ACCESS_SEQUENTIAL, nullptr));
    Require(photo != nullptr, "libvips opens no photo");
    VipsImage* next = nullptr;
    vips_resize(photo.get(), &next, double{PhotoWidth} / photo->Xsize, "vscale",
                double{PhotoHeight} / photo->Ysize, "kernel", VIPS_KERNEL_CUBIC, nullptr);
    const ImagePtr small(next);
    std::vector<ImagePtr> bands;
    std::vector<VipsImage*> order;
    for (const int band : {2, 1, 0}) {
        vips_extract_band(small.get(), &next, band, nullptr);
        bands.emplace_back(next);
        order.push_back(next);
    }
    vips_bandjoin(order.data(), &next, 3, nullptr);
    const ImagePtr colours(next);
    vips_bandjoin_const1(colours.get(), &next, 255, nullptr);
    const ImagePtr all(next);
    std::size_t size = 0;
    void* memory = vips_image_write_to_memory(all.get(), &size);
    Require(memory != nullptr, "libvips decodes no photo");
    const auto* bytes = static_cast<unsigned char*>(memory);
    Pixels pixels(bytes, bytes + size);
    g_free(memory);
    return pixels;
}

// A file of pictures, decoded in order, converted to bitmaps of one size.
class FfmpegPictures {
public:
    FfmpegPictures(const std::string& path, int width, int height)
        : m_packet(av_packet_alloc())
        , m_frame(av_frame_alloc())
        , m_width(width)
        , m_height(height) {
        AVFormatContext* format = nullptr;
        Require(avformat_open_input(&format, path.c_str(), nullptr, nullptr) >= 0, "no such film");
        m_format.reset(format);
        Require(avformat_find_stream_info(format, nullptr) >= 0, "no film");
        const AVCodecParameters& parameters = *format->streams[0]->codecpar;
        const AVCodec* codec = avcodec_find_decoder(parameters.codec_id);
        m_codec.reset(avcodec_alloc_context3(codec));
        avcodec_parameters_to_context(m_codec.get(), &parameters);
        Require(avcodec_open2(m_codec.get(), codec, nullptr) >= 0, "no decoder");
    }

    bool Next(Pixels& pixels) {
        while (avcodec_receive_frame(m_codec.get(), m_frame.get()) < 0) {
            av_packet_unref(m_packet.get());
            if (av_read_frame(m_format.get(), m_packet.get()) < 0) {
                if (m_draining) {
                    return false;
                }
                m_draining = true;
                avcodec_send_packet(m_codec.get(), nullptr);
                continue;
            }
            avcodec_send_packet(m_codec.get(), m_packet.get());
        }
        if (!m_scaler) {
            m_scaler.reset(sws_getContext(
                m_frame->width, m_frame->height, static_cast<AVPixelFormat>(m_frame->format),
                m_width, m_height, AV_PIX_FMT_BGRA, SWS_BICUBIC, nullptr, nullptr, nullptr));
        }
        pixels.resize(static_cast<std::size_t>(m_width) * static_cast<std::size_t>(m_height) * 4);
        unsigned char* rows[] = {pixels.data()};
        const int strides[] = {m_width * 4};
        sws_scale(m_scaler.get(), m_frame->data, m_frame->linesize, 0, m_frame->height, rows,
                  strides);
        return true;
    }

private:
    av::FormatContextPtr m_format;
    av::CodecContextPtr m_codec;
    av::PacketPtr m_packet;
    av::FramePtr m_frame;
    av::SwsContextPtr m_scaler;
    int m_width;
    int m_height;
    bool m_draining = false;
};

Pixels FfmpegPhoto() {
    Pixels pixels;
    Require(FfmpegPictures(Media("photo.jpg"), PhotoWidth, PhotoHeight).Next(pixels),
            "FFmpeg decodes no photo");
    return pixels;
}

boost::shared_ptr<Zanthe::Bitmap> ZanthePhoto() {
    Zanthe::WICImageLoader loader(Zanthe::WidePath(Media("photo.jpg")), Side);
    loader.Load(0.0, 0, 0);
    return loader.GetBitmap();
}

// Contenders that show other pictures have not done the same task.
void RequireAlike(const Pixels& pixels, const Zanthe::Bitmap& bitmap) {
    Require(pixels.size() == static_cast<std::size_t>(bitmap.GetStride()) *
                                 static_cast<std::size_t>(bitmap.GetHeight()),
            "a contender's picture has another size");
    double sum = 0;
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        sum += std::abs(int{pixels[i]} - int{bitmap.GetBits()[i]});
    }
    Require(sum / static_cast<double>(pixels.size()) < 4, "a contender shows another picture");
}

constexpr int GifWidth = 640;
constexpr int GifHeight = 360;

// Twenty frames on from the first and back: each step back is a decoding from the start.
void FfmpegToAndFro() {
    Pixels pixels;
    FfmpegPictures film(Media("moving.gif"), GifWidth, GifHeight);
    for (int i = 0; i < 20; ++i) {
        Require(film.Next(pixels), "FFmpeg decodes no GIF");
    }
    for (int last = 18; last >= 0; --last) {
        FfmpegPictures again(Media("moving.gif"), GifWidth, GifHeight);
        for (int i = 0; i <= last; ++i) {
            Require(again.Next(pixels), "FFmpeg decodes no GIF");
        }
    }
}

void ZantheToAndFro() {
    Pixels pixels(std::size_t{GifWidth} * GifHeight * 4);
    Zanthe::WICAnimatedGIFLoader film(Zanthe::WidePath(Media("moving.gif")));
    for (int i = 0; i < 20; ++i) {
        film.GetFrameAtTimeIntoBuffer(i * 0.1 + 0.05, pixels.data());
    }
    for (int i = 18; i >= 0; --i) {
        film.GetFrameAtTimeIntoBuffer(i * 0.1 + 0.05, pixels.data());
    }
}

void FfmpegForward() {
    Pixels pixels;
    FfmpegPictures film(Media("moving.gif"), GifWidth, GifHeight);
    while (film.Next(pixels)) {
    }
}

void ZantheForward() {
    Pixels pixels(std::size_t{GifWidth} * GifHeight * 4);
    Zanthe::WICAnimatedGIFLoader film(Zanthe::WidePath(Media("moving.gif")));
    for (int i = 0; i < 40; ++i) {
        film.GetFrameAtTimeIntoBuffer(i * 0.1 + 0.05, pixels.data());
    }
}

void DrawByPoppler() {
    GError* error = nullptr;
    const std::string uri = "file://" + Media("page.pdf");
    const std::unique_ptr<PopplerDocument, DropObject> document(
        poppler_document_new_from_file(uri.c_str(), nullptr, &error));
    Require(document != nullptr, "poppler opens no page");
    const std::unique_ptr<PopplerPage, DropObject> page(
        poppler_document_get_page(document.get(), 0));
    double width = 0;
    double height = 0;
    poppler_page_get_size(page.get(), &width, &height);
    cairo_surface_t* surface =
        cairo_image_surface_create(CAIRO_FORMAT_ARGB32, PageWidth, PageHeight);
    cairo_t* context = cairo_create(surface);
    cairo_scale(context, PageWidth / width, PageHeight / height);
    poppler_page_render(page.get(), context);
    cairo_destroy(context);
    cairo_surface_destroy(surface);
}

void ZanthePage() {
    Zanthe::PdfImageLoader loader(Media("page.pdf"), 0);
    loader.Load(0.0, PageWidth, PageHeight);
}

template <typename Task>
Comparison::Contender Repeated(const Task& task) {
    return [task](benchmark::State& state) {
        for ([[maybe_unused]] auto _ : state) {
            task();
        }
    };
}

} // namespace

void RegisterComparisons() {
    Require(VIPS_INIT("ImageBench") == 0, "libvips does not start");
    const auto photo = ZanthePhoto();
    RequireAlike(VipsPhoto(), *photo);
    RequireAlike(FfmpegPhoto(), *photo);
    Comparison("photo of 24 megapixels")
        .Add("libvips", Repeated([] { benchmark::DoNotOptimize(VipsPhoto()); }))
        .Add("ffmpeg", Repeated([] { benchmark::DoNotOptimize(FfmpegPhoto()); }))
        .Add("zanthe", Repeated([] { benchmark::DoNotOptimize(ZanthePhoto()); }));
    Comparison("GIF, forty frames on")
        .Add("ffmpeg", Repeated(FfmpegForward))
        .Add("zanthe", Repeated(ZantheForward));
    Comparison("GIF, twenty frames on and back")
        .Add("ffmpeg", Repeated(FfmpegToAndFro))
        .Add("zanthe", Repeated(ZantheToAndFro));
    Comparison("page at 1920x1080")
        .Add("poppler", Repeated(DrawByPoppler))
        .Add("zanthe", Repeated(ZanthePage));
}
