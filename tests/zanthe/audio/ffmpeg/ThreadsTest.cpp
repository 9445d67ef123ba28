#include <thread>

#include <gtest/gtest.h>

#include "tests/support/StereoSound.h"
#include "tests/support/TestMedia.h"
#include "zanthe/audio/ffmpeg/FFMPEGAudioReader.h"

namespace Zanthe {
namespace {

TEST(FFMPEGAudioReader, ReadersOnSeveralThreadsAreIndependent) {
    const std::string path = MadeMedia("tone-44100-stereo-vbr.mp3");
    const StereoSound whole = ReadWhole(*FFMPEGAudioReader::Create(path, -1, 48000));
    std::vector<std::jthread> threads;
    for (std::size_t thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&, thread] {
            const auto reader = FFMPEGAudioReader::Create(path, -1, 48000);
            for (std::size_t i = 0; i < 20; ++i) {
                const std::size_t start = (thread * 7919 + i * 104729) % whole.Frames();
                EXPECT_TRUE(ReadSpan(*reader, static_cast<std::int64_t>(start), 3001) ==
                            whole.Slice(start, 3001));
            }
        });
    }
}

} // namespace
} // namespace Zanthe
