#include <array>
#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <latch>
#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>

#include "tests/support/OnAllThreads.h"
#include "tests/zanthe/core/CountedReader.h"
#include "zanthe/core/VideoSampleReaderCache.h"

namespace Zanthe {
namespace {

constexpr int Threads = 4;
constexpr int Rounds = 400;
const std::array<std::string, 3> Paths{"a.mp4", "b.mp4", "c.mov"};

// Its count is a plain integer on purpose: only the pool's lock guards it.
class UnguardedFactory : public DecoderFactory {
public:
    int created = 0;
    bool inside = false;
    bool overlapped = false;
    std::atomic<int> living = 0;

    // DecoderFactory
    VideoSampleReader* CreateVideoSampleReader(const std::string& path, int, bool) override {
        overlapped = overlapped || inside;
        inside = true;
        std::this_thread::yield();
        inside = false;
        if (path == "broken.mp4") {
            throw std::runtime_error("cannot open");
        }
        ++created;
        return new CountedReader(living);
    }
};

bool IsPooled(VideoSampleReaderCache& cache, const std::string& path) {
    try {
        cache.ReleaseDecoder(path, 0);
        return true;
    } catch (const std::runtime_error&) {
        return false;
    }
}

TEST(VideoSampleReaderCacheThreads, AFileIsOpenedOnceForAll) {
    UnguardedFactory factory;
    VideoSampleReaderCache cache(&factory);
    std::array<boost::shared_ptr<VideoSampleReader>, Threads> readers;
    OnAllThreads(Threads, [&](int thread) {
        readers[static_cast<std::size_t>(thread)] = cache.AcquireDecoder(Paths[0], 0, false);
    });
    for (const auto& reader : readers) {
        EXPECT_EQ(reader, readers[0]);
    }
    EXPECT_EQ(factory.created, 1);
    for (int thread = 0; thread < Threads; ++thread) {
        cache.ReleaseDecoder(Paths[0], 0);
    }
    EXPECT_FALSE(IsPooled(cache, Paths[0]));
}

TEST(VideoSampleReaderCacheThreads, EveryAcquireIsMatchedByItsRelease) {
    UnguardedFactory factory;
    VideoSampleReaderCache cache(&factory);
    OnAllThreads(Threads, [&](int thread) {
        for (int round = 0; round < Rounds; ++round) {
            const std::string& path = Paths[static_cast<std::size_t>(thread + round) % 3];
            const auto reader = cache.AcquireDecoder(path, 0, false);
            EXPECT_EQ(reader->outputWidth(), 4);
            cache.ReleaseDecoder(path, 0);
        }
    });
    EXPECT_FALSE(factory.overlapped);
    EXPECT_EQ(factory.living, 0);
    for (const std::string& path : Paths) {
        EXPECT_FALSE(IsPooled(cache, path)) << path;
    }
}

// Whoever keeps one reference in the pool keeps everybody on the same reader.
TEST(VideoSampleReaderCacheThreads, AHeldReaderStaysTheSame) {
    UnguardedFactory factory;
    VideoSampleReaderCache cache(&factory);
    const auto held = cache.AcquireDecoder(Paths[0], 0, false);
    OnAllThreads(Threads, [&](int) {
        for (int round = 0; round < Rounds; ++round) {
            EXPECT_EQ(cache.AcquireDecoder(Paths[0], 0, true), held);
            cache.ReleaseDecoder(Paths[0], 0);
        }
    });
    EXPECT_EQ(factory.created, 1);
    EXPECT_TRUE(IsPooled(cache, Paths[0]));
    EXPECT_FALSE(IsPooled(cache, Paths[0]));
}

// Runs `meanwhile` while a file is being opened, and tells whether the file is open yet.
class SlowFactory : public DecoderFactory {
public:
    std::function<void()> meanwhile = [] {};
    std::atomic<bool> opened = false;
    std::atomic<int> living = 0;

    // DecoderFactory
    VideoSampleReader* CreateVideoSampleReader(const std::string& path, int, bool) override {
        if (path == "slow.mp4") {
            meanwhile();
            opened = true;
        }
        return new CountedReader(living);
    }
};

// Long for a machine that is busy, and waited for only where something is wrong.
constexpr std::chrono::seconds Ages(20);

TEST(VideoSampleReaderCacheThreads, RecordingsDoNotWaitForAnOpen) {
    SlowFactory factory;
    VideoSampleReaderCache cache(&factory);
    std::future<void> recording;
    bool waited = true;
    factory.meanwhile = [&] {
        recording = std::async(std::launch::async, [&cache] {
            cache.AcquireDecoder("b.brec", 0, false);
            cache.ReleaseDecoder("b.brec", 0);
        });
        waited = recording.wait_for(Ages) != std::future_status::ready;
    };
    cache.AcquireDecoder("slow.mp4", 0, false);
    recording.get();
    EXPECT_FALSE(waited);
}

// What others do with a reader that is in the pool waits until the file is open.
void ExpectToWait(const std::function<void(VideoSampleReaderCache&)>& call) {
    SlowFactory factory;
    VideoSampleReaderCache cache(&factory);
    cache.AcquireDecoder("a.mp4", 0, false);
    std::latch started(1);
    std::future<bool> other;
    factory.meanwhile = [&] {
        other = std::async(std::launch::async, [&] {
            started.count_down();
            call(cache);
            return factory.opened.load();
        });
        started.wait();
        EXPECT_EQ(other.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    };
    cache.AcquireDecoder("slow.mp4", 0, false);
    EXPECT_TRUE(other.get());
}

TEST(VideoSampleReaderCacheThreads, APooledReaderWaitsForAnOpen) {
    ExpectToWait([](VideoSampleReaderCache& cache) { cache.AcquireDecoder("a.mp4", 0, false); });
}

TEST(VideoSampleReaderCacheThreads, AReleaseWaitsForAnOpen) {
    ExpectToWait([](VideoSampleReaderCache& cache) { cache.ReleaseDecoder("a.mp4", 0); });
}

TEST(VideoSampleReaderCacheThreads, AFailureToOpenLetsGoOfTheLock) {
    UnguardedFactory factory;
    VideoSampleReaderCache cache(&factory);
    OnAllThreads(Threads, [&](int thread) {
        for (int round = 0; round < Rounds; ++round) {
            if (thread % 2 == 0) {
                EXPECT_THROW(cache.AcquireDecoder("broken.mp4", 0, false), std::runtime_error);
                EXPECT_THROW(cache.ReleaseDecoder("broken.mp4", 0), std::runtime_error);
            } else {
                cache.AcquireDecoder(Paths[0], 0, false);
                cache.ReleaseDecoder(Paths[0], 0);
            }
        }
    });
    EXPECT_EQ(factory.living, 0);
    EXPECT_FALSE(IsPooled(cache, "broken.mp4"));
}

} // namespace
} // namespace Zanthe
