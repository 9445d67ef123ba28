#include "platform/av/PictureConversion.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

extern "C" {
#include <libavutil/pixdesc.h>
}

namespace av {
namespace {

struct Case {
    AVPixelFormat format;
    AVColorSpace space;
    AVColorRange range;
};

struct Weights {
    double red, blue;
};

Weights WeightsOf(AVColorSpace space) {
    switch (space) {
    case AVCOL_SPC_BT709:
        return {0.2126, 0.0722};
    case AVCOL_SPC_SMPTE240M:
        return {0.212, 0.087};
    case AVCOL_SPC_BT2020_NCL:
        return {0.2627, 0.0593};
    default:
        return {0.299, 0.114};
    }
}

// Brightness and colour differences as bytes, from the definition.
constexpr std::array<int, 3> kCode{100, 110, 150};

// Blue, green, red.
std::array<int, 3> Expected(const Case& c) {
    const Weights w = WeightsOf(c.space);
    const bool full = c.range == AVCOL_RANGE_JPEG;
    const double y = full ? kCode[0] / 255.0 : (kCode[0] - 16) / 219.0;
    const double u = (kCode[1] - 128) / (full ? 255.0 : 224.0);
    const double v = (kCode[2] - 128) / (full ? 255.0 : 224.0);
    const double red = y + 2 * (1 - w.red) * v;
    const double blue = y + 2 * (1 - w.blue) * u;
    const double green = (y - w.red * red - w.blue * blue) / (1 - w.red - w.blue);
    const auto byte = [](double value) {
        return static_cast<int>(std::lround(std::clamp(value, 0.0, 1.0) * 255));
    };
    return {byte(blue), byte(green), byte(red)};
}

void Fill(AVFrame& frame) {
    const AVPixFmtDescriptor* format =
        av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
    for (int part = 0; part < format->nb_components; ++part) {
        const AVComponentDescriptor& place = format->comp[part];
        const bool chroma = part == 1 || part == 2;
        const int width = AV_CEIL_RSHIFT(frame.width, chroma ? format->log2_chroma_w : 0);
        const int height = AV_CEIL_RSHIFT(frame.height, chroma ? format->log2_chroma_h : 0);
        const int code = (part < 3 ? kCode[static_cast<std::size_t>(part)] : 7)
                         << (place.depth - 8) << place.shift;
        for (int y = 0; y < height; ++y) {
            std::uint8_t* row = frame.data[place.plane] + y * frame.linesize[place.plane];
            for (int x = 0; x < width; ++x) {
                std::uint8_t* sample = row + x * place.step + place.offset;
                sample[0] = static_cast<std::uint8_t>(code & 0xFF);
                if (place.depth > 8) {
                    sample[1] = static_cast<std::uint8_t>(code >> 8);
                }
            }
        }
    }
}

Picture MakePicture(const Case& c, int width, int height) {
    FramePtr frame(av_frame_alloc());
    frame->format = c.format;
    frame->width = width;
    frame->height = height;
    frame->colorspace = c.space;
    frame->color_range = c.range;
    EXPECT_GE(av_frame_get_buffer(frame.get(), 0), 0);
    Fill(*frame);
    return {std::move(frame), 0, 1};
}

class Conversion : public testing::TestWithParam<Case> {};

TEST_P(Conversion, BgraByTheDefinition) {
    constexpr int kWidth = 37, kHeight = 21, kStride = 4 * kWidth + 12;
    const std::int64_t before = PicturesConverted();
    std::vector<std::uint8_t> rows(kStride * kHeight, 0xCC);
    ASSERT_TRUE(ConvertToBgra(MakePicture(GetParam(), kWidth, kHeight), rows.data(), kStride));
    EXPECT_EQ(PicturesConverted(), before + 1);
    const auto expected = Expected(GetParam());
    for (const int x : {0, 17, kWidth - 1}) {
        for (const int y : {0, 10, kHeight - 1}) {
            const std::uint8_t* pixel = rows.data() + y * kStride + 4 * x;
            for (std::size_t i = 0; i < expected.size(); ++i) {
                EXPECT_NEAR(pixel[i], expected[i], 3) << "part " << i << " at " << x << ", " << y;
            }
            EXPECT_EQ(pixel[3], 255);
        }
    }
    EXPECT_EQ(rows[4 * kWidth], 0xCC); // behind the row nothing is written
}

TEST_P(Conversion, Nv12KeepsTheCodes) {
    constexpr int kWidth = 37, kHeight = 21, kStride = 40;
    std::vector<std::uint8_t> luma(kStride * kHeight), chroma(kStride * ((kHeight + 1) / 2));
    const Picture picture = MakePicture(GetParam(), kWidth, kHeight);
    ASSERT_TRUE(ConvertToNv12(picture, luma.data(), kStride, chroma.data()));
    EXPECT_NEAR(luma[0], kCode[0], 1);
    EXPECT_NEAR(luma[20 * kStride + 36], kCode[0], 1);
    EXPECT_NEAR(chroma[10 * kStride + 36], kCode[1], 1);
    EXPECT_NEAR(chroma[10 * kStride + 37], kCode[2], 1);
}

INSTANTIATE_TEST_SUITE_P(
    Formats, Conversion,
    testing::Values(Case{AV_PIX_FMT_YUV420P, AVCOL_SPC_SMPTE170M, AVCOL_RANGE_MPEG},
                    Case{AV_PIX_FMT_YUV420P, AVCOL_SPC_BT709, AVCOL_RANGE_MPEG},
                    Case{AV_PIX_FMT_YUV420P, AVCOL_SPC_BT709, AVCOL_RANGE_JPEG},
                    Case{AV_PIX_FMT_YUV420P, AVCOL_SPC_BT2020_NCL, AVCOL_RANGE_MPEG},
                    Case{AV_PIX_FMT_YUV420P, AVCOL_SPC_SMPTE240M, AVCOL_RANGE_MPEG},
                    Case{AV_PIX_FMT_YUVJ420P, AVCOL_SPC_BT470BG, AVCOL_RANGE_JPEG},
                    Case{AV_PIX_FMT_YUVA420P, AVCOL_SPC_BT470BG, AVCOL_RANGE_MPEG},
                    Case{AV_PIX_FMT_NV12, AVCOL_SPC_BT709, AVCOL_RANGE_MPEG},
                    Case{AV_PIX_FMT_YUV422P, AVCOL_SPC_BT709, AVCOL_RANGE_MPEG},
                    Case{AV_PIX_FMT_YUV444P, AVCOL_SPC_BT709, AVCOL_RANGE_MPEG},
                    Case{AV_PIX_FMT_YUV411P, AVCOL_SPC_SMPTE170M, AVCOL_RANGE_MPEG},
                    Case{AV_PIX_FMT_YUV420P10, AVCOL_SPC_BT2020_NCL, AVCOL_RANGE_MPEG},
                    Case{AV_PIX_FMT_YUV422P10, AVCOL_SPC_BT709, AVCOL_RANGE_MPEG},
                    Case{AV_PIX_FMT_YUV444P10, AVCOL_SPC_BT709, AVCOL_RANGE_MPEG},
                    Case{AV_PIX_FMT_YUV420P12, AVCOL_SPC_BT2020_NCL, AVCOL_RANGE_MPEG},
                    Case{AV_PIX_FMT_P010, AVCOL_SPC_BT709, AVCOL_RANGE_MPEG}),
    [](const auto& tested) {
        return std::string(av_get_pix_fmt_name(tested.param.format)) + "_" +
               std::to_string(tested.param.space) + "_" + std::to_string(tested.param.range);
    });

TEST(ColourRules, TheHeightDecidesWhereTheStreamIsSilent) {
    AVFrame* raw = av_frame_alloc();
    const FramePtr frame(raw);
    frame->format = AV_PIX_FMT_YUV420P;
    frame->height = 720;
    EXPECT_EQ(ColourRulesOf(*frame), (ColourRules{ColourMatrix::Bt601, ColourRange::Video}));
    frame->height = 721;
    EXPECT_EQ(ColourRulesOf(*frame), (ColourRules{ColourMatrix::Bt709, ColourRange::Video}));
    frame->colorspace = AVCOL_SPC_SMPTE170M;
    frame->color_range = AVCOL_RANGE_JPEG;
    EXPECT_EQ(ColourRulesOf(*frame), (ColourRules{ColourMatrix::Bt601, ColourRange::Full}));
    frame->color_range = AVCOL_RANGE_UNSPECIFIED;
    frame->format = AV_PIX_FMT_YUVJ422P;
    EXPECT_EQ(ColourRulesOf(*frame).range, ColourRange::Full);
}

TEST(PictureConversion, RgbKeepsItsColoursAndLosesItsAlpha) {
    FramePtr frame(av_frame_alloc());
    frame->format = AV_PIX_FMT_RGBA;
    frame->width = 3;
    frame->height = 2;
    ASSERT_GE(av_frame_get_buffer(frame.get(), 0), 0);
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 3; ++x) {
            const std::array<std::uint8_t, 4> pixel{10, 20, 30, 40};
            std::copy(pixel.begin(), pixel.end(), frame->data[0] + y * frame->linesize[0] + 4 * x);
        }
    }
    std::array<std::uint8_t, 24> rows{};
    ASSERT_TRUE(ConvertToBgra(Picture(std::move(frame), 0, 1), rows.data(), 12));
    EXPECT_EQ(rows[20], 30);
    EXPECT_EQ(rows[21], 20);
    EXPECT_EQ(rows[22], 10);
    EXPECT_EQ(rows[23], 255);
}

} // namespace
} // namespace av
