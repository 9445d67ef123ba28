#include "tests/support/DecoderPictures.h"

#include <algorithm>
#include <numeric>
#include <random>

#include <gtest/gtest.h>

using Zanthe::MediaTime;

std::optional<BgraPicture> PictureAt(Zanthe::VideoDecoder& decoder, MediaTime time) {
    BgraPicture picture{decoder.outputWidth(), decoder.outputHeight(), {}};
    picture.bits.assign(static_cast<std::size_t>(picture.width) *
                            static_cast<std::size_t>(picture.height) * 4,
                        0xEE);
    double actualTime = -1.0;
    return decoder.readFrame(time, picture.bits.data(), actualTime) ? std::optional(picture)
                                                                    : std::nullopt;
}

std::vector<BgraPicture> ExpectAnyOrder(Zanthe::VideoDecoder& decoder,
                                        const std::vector<MediaTime>& times) {
    std::vector<BgraPicture> linear;
    for (const MediaTime& time : times) {
        const auto picture = PictureAt(decoder, time);
        EXPECT_TRUE(picture.has_value()) << time;
        linear.push_back(picture.value_or(BgraPicture{}));
    }
    std::vector<std::size_t> order(times.size() * 3);
    std::iota(order.begin(), order.end(), 0);
    std::shuffle(order.begin(), order.end(), std::mt19937(20240229));
    for (const std::size_t each : order) {
        const std::size_t i = each % times.size();
        const auto picture = PictureAt(decoder, times[i]);
        EXPECT_TRUE(picture.has_value() && picture->bits == linear[i].bits) << i;
    }
    return linear;
}

void ExpectLikeness(const std::vector<BgraPicture>& pictures,
                    const std::vector<BgraPicture>& expected) {
    ASSERT_EQ(pictures.size(), expected.size());
    for (std::size_t i = 0; i < pictures.size(); ++i) {
        EXPECT_GT(Psnr(pictures[i], expected[i]), 40.0) << i;
        if (i > 0) {
            EXPECT_LT(Psnr(pictures[i], expected[i - 1]), 40.0) << i;
        }
    }
}

std::vector<MediaTime> MiddlesOf(int count, int rate) {
    std::vector<MediaTime> times;
    for (int i = 0; i < count; ++i) {
        times.emplace_back(2 * i + 1, 2 * rate);
    }
    return times;
}
