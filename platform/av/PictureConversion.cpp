#include "platform/av/PictureConversion.h"

#include <algorithm>
#include <atomic>

#include <libyuv.h>

extern "C" {
#include <libavutil/hwcontext.h>
#include <libavutil/pixdesc.h>
}

#include "platform/av/YuvKernelConstants.h"

namespace av {

namespace {

std::atomic<std::int64_t> conversions{0};

// One plane of rows to write to.
struct Rows {
    std::uint8_t* first = nullptr;
    std::ptrdiff_t stride = 0;

    int Stride() const { return static_cast<int>(stride); }
};

// The picture in memory: itself, or a copy of what lies on a device.
class InMemory {
public:
    explicit InMemory(const Picture& picture)
        : m_frame(&picture.Frame()) {
        if (picture.OnDevice()) {
            m_frame = Download(picture.Frame());
        }
    }

    // Null when the device does not give it.
    const AVFrame* Frame() const { return m_frame; }

private:
    const AVFrame* Download(const AVFrame& onDevice) {
        m_copy.reset(av_frame_alloc());
        if (m_copy == nullptr || av_hwframe_transfer_data(m_copy.get(), &onDevice, 0) < 0 ||
            av_frame_copy_props(m_copy.get(), &onDevice) < 0) {
            return nullptr;
        }
        m_copy->width = onDevice.width;
        m_copy->height = onDevice.height;
        return m_copy.get();
    }

    FramePtr m_copy;
    const AVFrame* m_frame;
};

int SwsMatrix(ColourMatrix matrix) {
    switch (matrix) {
    case ColourMatrix::Bt709:
        return SWS_CS_ITU709;
    case ColourMatrix::Smpte240M:
        return SWS_CS_SMPTE240M;
    case ColourMatrix::Bt2020:
        return SWS_CS_BT2020;
    default:
        return SWS_CS_ITU601;
    }
}

const std::uint16_t* Words(const std::uint8_t* plane) {
    return reinterpret_cast<const std::uint16_t*>(plane); // NOLINT: planes are aligned for them
}

template <typename Kernel>
bool ThreePlanes(Kernel kernel, const AVFrame& f, const Rows& out,
                 const libyuv::YuvConstants& constants) {
    return kernel(f.data[0], f.linesize[0], f.data[1], f.linesize[1], f.data[2], f.linesize[2],
                  out.first, out.Stride(), &constants, f.width, f.height) == 0;
}

template <typename Kernel>
bool ThreeWidePlanes(Kernel kernel, const AVFrame& f, const Rows& out,
                     const libyuv::YuvConstants& constants) {
    return kernel(Words(f.data[0]), f.linesize[0] / 2, Words(f.data[1]), f.linesize[1] / 2,
                  Words(f.data[2]), f.linesize[2] / 2, out.first, out.Stride(), &constants, f.width,
                  f.height) == 0;
}

bool TwoPlanes(const AVFrame& f, const Rows& out, const libyuv::YuvConstants& constants) {
    return libyuv::NV12ToARGBMatrix(f.data[0], f.linesize[0], f.data[1], f.linesize[1], out.first,
                                    out.Stride(), &constants, f.width, f.height) == 0;
}

bool TwoWidePlanes(const AVFrame& f, const Rows& out, const libyuv::YuvConstants& constants) {
    return libyuv::P010ToARGBMatrix(Words(f.data[0]), f.linesize[0] / 2, Words(f.data[1]),
                                    f.linesize[1] / 2, out.first, out.Stride(), &constants, f.width,
                                    f.height) == 0;
}

bool OnePlane(const AVFrame& f, const Rows& out, const libyuv::YuvConstants& constants) {
    return libyuv::I400ToARGBMatrix(f.data[0], f.linesize[0], out.first, out.Stride(), &constants,
                                    f.width, f.height) == 0;
}

// False where there is no kernel for the format; libyuv's "ARGB" is blue first in memory.
bool ToBgraByKernel(const AVFrame& frame, const Rows& out, const libyuv::YuvConstants& constants) {
    switch (frame.format) {
    case AV_PIX_FMT_YUV420P:
    case AV_PIX_FMT_YUVJ420P:
    case AV_PIX_FMT_YUVA420P:
        return ThreePlanes(libyuv::I420ToARGBMatrix, frame, out, constants);
    case AV_PIX_FMT_YUV422P:
    case AV_PIX_FMT_YUVJ422P:
    case AV_PIX_FMT_YUVA422P:
        return ThreePlanes(libyuv::I422ToARGBMatrix, frame, out, constants);
    case AV_PIX_FMT_YUV444P:
    case AV_PIX_FMT_YUVJ444P:
    case AV_PIX_FMT_YUVA444P:
        return ThreePlanes(libyuv::I444ToARGBMatrix, frame, out, constants);
    case AV_PIX_FMT_NV12:
        return TwoPlanes(frame, out, constants);
    case AV_PIX_FMT_YUV420P10:
        return ThreeWidePlanes(libyuv::I010ToARGBMatrix, frame, out, constants);
    case AV_PIX_FMT_YUV422P10:
        return ThreeWidePlanes(libyuv::I210ToARGBMatrix, frame, out, constants);
    case AV_PIX_FMT_YUV444P10:
        return ThreeWidePlanes(libyuv::I410ToARGBMatrix, frame, out, constants);
    case AV_PIX_FMT_P010:
        return TwoWidePlanes(frame, out, constants);
    case AV_PIX_FMT_GRAY8:
        return OnePlane(frame, out, constants);
    default:
        return false;
    }
}

// Whether the format holds red, green and blue, so that no matrix applies to reading it.
bool IsRgb(const AVFrame& frame) {
    const AVPixFmtDescriptor* format =
        av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
    return format != nullptr && (format->flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL)) != 0;
}

// The scaler for this frame and target format. Making one takes longer than using it for a small
// picture, so each thread keeps its last one.
SwsContext* ScalerFor(const AVFrame& frame, AVPixelFormat target) {
    thread_local SwsContextPtr scaler;
    constexpr int kExact = SWS_BILINEAR | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT;
    scaler.reset(sws_getCachedContext(scaler.release(), frame.width, frame.height,
                                      static_cast<AVPixelFormat>(frame.format), frame.width,
                                      frame.height, target, kExact, nullptr, nullptr, nullptr));
    return scaler.get();
}

struct Target {
    AVPixelFormat format;
    int range; // 0: video, 1: full
    std::uint8_t* planes[4];
    int strides[4];
};

bool ToByScaler(const AVFrame& frame, const ColourRules& rules, const Target& target) {
    SwsContext* scaler = ScalerFor(frame, target.format);
    if (scaler == nullptr) {
        return false;
    }
    const int* matrix = sws_getCoefficients(SwsMatrix(rules.matrix));
    const int range = IsRgb(frame) || rules.range == ColourRange::Full ? 1 : 0;
    constexpr int kUnity = 1 << 16;
    // Formats without a matrix refuse the call and need none.
    static_cast<void>(
        sws_setColorspaceDetails(scaler, matrix, range, matrix, target.range, 0, kUnity, kUnity));
    return sws_scale(scaler, frame.data, frame.linesize, 0, frame.height, target.planes,
                     target.strides) == frame.height;
}

void MakeOpaque(const Rows& rows, int width, int height) {
    for (int y = 0; y < height; ++y) {
        std::uint8_t* row = rows.first + y * rows.stride;
        for (std::ptrdiff_t x = 0; x < width; ++x) {
            row[4 * x + 3] = 255;
        }
    }
}

bool ToBgraByScaler(const AVFrame& frame, const ColourRules& rules, const Rows& out) {
    const Target target{AV_PIX_FMT_BGRA, 1, {out.first}, {out.Stride()}};
    if (!ToByScaler(frame, rules, target)) {
        return false;
    }
    MakeOpaque(out, frame.width, frame.height);
    return true;
}

// False where there is no kernel for the format.
bool ToNv12ByKernel(const AVFrame& f, const Rows& luma, const Rows& chroma) {
    switch (f.format) {
    case AV_PIX_FMT_YUV420P:
    case AV_PIX_FMT_YUVJ420P:
    case AV_PIX_FMT_YUVA420P:
        return libyuv::I420ToNV12(f.data[0], f.linesize[0], f.data[1], f.linesize[1], f.data[2],
                                  f.linesize[2], luma.first, luma.Stride(), chroma.first,
                                  chroma.Stride(), f.width, f.height) == 0;
    case AV_PIX_FMT_NV12:
        return libyuv::NV12Copy(f.data[0], f.linesize[0], f.data[1], f.linesize[1], luma.first,
                                luma.Stride(), chroma.first, chroma.Stride(), f.width,
                                f.height) == 0;
    default:
        return false;
    }
}

bool ToNv12ByScaler(const AVFrame& frame, const ColourRules& rules, const Rows& luma,
                    const Rows& chroma) {
    const Target target{AV_PIX_FMT_NV12,
                        rules.range == ColourRange::Full ? 1 : 0,
                        {luma.first, chroma.first},
                        {luma.Stride(), chroma.Stride()}};
    return ToByScaler(frame, rules, target);
}

} // namespace

bool ConvertToBgra(const Picture& picture, std::uint8_t* rows, std::ptrdiff_t stride) {
    const InMemory memory(picture);
    if (memory.Frame() == nullptr) {
        return false;
    }
    conversions.fetch_add(1, std::memory_order_relaxed);
    const AVFrame& frame = *memory.Frame();
    const ColourRules rules = ColourRulesOf(frame);
    const Rows out{rows, stride};
    const libyuv::YuvConstants* constants = KernelConstantsFor(rules);
    return (constants != nullptr && ToBgraByKernel(frame, out, *constants)) ||
           ToBgraByScaler(frame, rules, out);
}

bool ConvertToNv12(const Picture& picture, std::uint8_t* luma, std::ptrdiff_t stride,
                   std::uint8_t* chroma) {
    const InMemory memory(picture);
    if (memory.Frame() == nullptr) {
        return false;
    }
    conversions.fetch_add(1, std::memory_order_relaxed);
    const AVFrame& frame = *memory.Frame();
    const Rows lumaRows{luma, stride};
    const Rows chromaRows{chroma, stride};
    return ToNv12ByKernel(frame, lumaRows, chromaRows) ||
           ToNv12ByScaler(frame, ColourRulesOf(frame), lumaRows, chromaRows);
}

std::int64_t PicturesConverted() {
    return conversions.load(std::memory_order_relaxed);
}

} // namespace av
