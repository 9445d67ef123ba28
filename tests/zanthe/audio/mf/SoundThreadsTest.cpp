// Readers of files on several threads at once, each with the source's own thread behind it.
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/StereoSound.h"
#include "tests/support/TestMedia.h"
#include "zanthe/audio/AudioMediaReaderFactory.h"

namespace Zanthe {
namespace {

boost::shared_ptr<IAudioReader> Open(const std::string& path, bool recontainer = false) {
    return AudioMediaReaderFactory(path, 0, 48000).Create_AudioMediaReader(recontainer);
}

TEST(SoundThreads, ReadersOfOneFileAreIndependent) {
    for (const char* name : {"sound/aac-film.mp4", "sound/wma2-film.wmv", "sound/pcm-44100.wav"}) {
        const std::string path = MadeMedia(name);
        const StereoSound whole = ReadWhole(*Open(path));
        std::vector<std::jthread> threads;
        for (std::size_t thread = 0; thread < 3; ++thread) {
            threads.emplace_back([&, thread] {
                const auto reader = Open(path);
                for (std::size_t i = 0; i < 6; ++i) {
                    const std::size_t start = (thread * 7919 + i * 104'729) % whole.Frames();
                    EXPECT_TRUE(ReadSpan(*reader, static_cast<std::int64_t>(start), 3001) ==
                                whole.Slice(start, 3001))
                        << name << ' ' << start;
                }
            });
        }
    }
}

TEST(SoundThreads, CopiesAreMadeAndRemovedAtOnce) {
    const std::string film = MadeMedia("sound/aac-film.mp4");
    const StereoSound whole = ReadSpan(*Open(film), 0, 5000);
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&] {
            for (int i = 0; i < 4; ++i) {
                EXPECT_TRUE(ReadSpan(*Open(film, true), 0, 5000) == whole);
            }
        });
    }
}

TEST(SoundThreads, AReaderMayEndAtAnyMoment) {
    const std::string path = MadeMedia("sound/aac-44100.m4a");
    for (int i = 0; i < 30; ++i) {
        const auto reader = Open(path);
        ReadSpan(*reader, i * 1000, static_cast<unsigned int>(i * 10));
    }
}

} // namespace
} // namespace Zanthe
