// Several readers on several threads, over the same files and over different ones. They share
// nothing that they do not guard.
#include <atomic>
#include <random>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "tests/exact/PictureAsker.h"
#include "tests/support/TestMedia.h"

using Zanthe::MediaTime;

namespace {

constexpr int Pictures = 96;

// Answers how many of the pictures were not the ones asked for.
int AskAtRandom(const std::string& path, unsigned int seed, int questions) {
    PictureAsker asker(path);
    std::mt19937 random(seed);
    int wrong = 0;
    for (int i = 0; i < questions; ++i) {
        const int number = static_cast<int>(random() % Pictures);
        const auto picture = asker.At(MediaTime(number, 24));
        wrong += picture && NumberInPicture(*picture) == number ? 0 : 1;
    }
    return wrong;
}

TEST(ReadersOnThreads, OverOneFile) {
    std::atomic<int> wrong{0};
    {
        std::vector<std::jthread> threads;
        for (unsigned int seed = 0; seed < 4; ++seed) {
            threads.emplace_back([&wrong, seed, path = MadeMedia("h264/plain.mp4")] {
                wrong += AskAtRandom(path, seed, 40);
            });
        }
    }
    EXPECT_EQ(wrong, 0);
}

TEST(ReadersOnThreads, OverDifferentFiles) {
    std::atomic<int> wrong{0};
    {
        std::vector<std::jthread> threads;
        for (const char* name : {"h264/open-groups.mp4", "h264/hevc-open-groups.mp4",
                                 "h264/mpeg4-bframes.mp4", "h264/fragmented.mp4"}) {
            threads.emplace_back(
                [&wrong, path = MadeMedia(name)] { wrong += AskAtRandom(path, 5, 40); });
        }
    }
    EXPECT_EQ(wrong, 0);
}

TEST(ReadersOnThreads, OpenedAndClosedAtOnce) {
    std::atomic<int> wrong{0};
    {
        std::vector<std::jthread> threads;
        for (unsigned int seed = 0; seed < 4; ++seed) {
            threads.emplace_back([&wrong, seed, path = MadeMedia("h264/short-groups.mp4")] {
                for (unsigned int i = 0; i < 8; ++i) {
                    wrong += AskAtRandom(path, seed * 100 + i, 2);
                }
            });
        }
    }
    EXPECT_EQ(wrong, 0);
}

// A host decodes ahead on one thread and draws on another.
TEST(ReadersOnThreads, SamplesAreUsedElsewhere) {
    PictureAsker asker(MadeMedia("h264/plain.mp4"));
    ASSERT_TRUE(asker);
    std::atomic<int> wrong{0};
    std::vector<std::jthread> threads;
    for (int number = 0; number < Pictures; number += 11) {
        std::shared_ptr<Zanthe::VideoSample> sample(asker.Reader().readVideoSample(
            MediaTime(number, 24), {}, Zanthe::VideoSampleReaderFlags::None));
        ASSERT_TRUE(sample);
        threads.emplace_back([&wrong, number, sample] {
            wrong += NumberInPicture(PixelsOf(*sample)) == number ? 0 : 1;
        });
    }
    threads.clear();
    EXPECT_EQ(wrong, 0);
}

} // namespace
