#include <memory>
#include <mutex>
#include <string>

#include <gtest/gtest.h>

#include "platform/mf/MediaFormats.h"
#include "tests/support/OnAllThreads.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"
#include "tests/zanthe/h264/ScriptedOpening.h"
#include "zanthe/h264/KeyFrameCollectingSeekOrStepThroughDecider.h"
#include "zanthe/h264/TrackGeometry.h"
#include "zanthe/h264/WinH264SampleReader.h"

namespace Zanthe {
namespace {

constexpr int Threads = 4;

// A copy under a name that nobody has asked for, so that there is something to collect.
std::string FreshCopy(const TemporaryFolder& folder, const std::string& name) {
    return folder.Write(name, ReadWholeFile(MadeMedia("h264/short-groups.mp4")));
}

constexpr std::int64_t Group = 10'000'000 / 6; // 4 pictures of 24 a second

TEST(SampleReaderThreads, ManyDecidersOfOneFile) {
    const TemporaryFolder folder;
    for (int round = 0; round < 10; ++round) {
        const std::string path = FreshCopy(folder, std::to_string(round) + ".mp4");
        OnAllThreads(Threads, [&](int) {
            const KeyFrameCollectingSeekOrStepThroughDecider decider(path, 0, 0,
                                                                     MFVideoFormat_H264);
            EXPECT_FALSE(decider.NeedToSeekBetweenTimes(0, Group * 3 / 2));
            EXPECT_TRUE(decider.NeedToSeekBetweenTimes(0, Group * 5 / 2));
        });
    }
}

TEST(SampleReaderThreads, OneDeciderAskedByMany) {
    const TemporaryFolder folder;
    const KeyFrameCollectingSeekOrStepThroughDecider decider(FreshCopy(folder, "a.mp4"), 0, 0,
                                                             MFVideoFormat_H264);
    OnAllThreads(Threads, [&](int) {
        for (std::int64_t time = 1; time < Group; time += Group / 50) {
            EXPECT_FALSE(decider.NeedToSeekBetweenTimes(0, time)); // at first without a wait
        }
        EXPECT_TRUE(decider.NeedToSeekBetweenTimes(0, Group * 4));
    });
    EXPECT_TRUE(decider.CollectionSucceeded());
}

TEST(SampleReaderThreads, ADeciderThatGoesAtOnce) {
    const TemporaryFolder folder;
    OnAllThreads(Threads, [&](int thread) {
        const std::string path = FreshCopy(folder, std::to_string(thread) + ".mp4");
        for (int round = 0; round < 20; ++round) {
            const KeyFrameCollectingSeekOrStepThroughDecider decider(path, 0, 0,
                                                                     MFVideoFormat_H264);
        }
    });
}

TEST(SampleReaderThreads, GeometryAskedByMany) {
    const TemporaryFolder folder;
    const std::string path = FreshCopy(folder, "a.mp4");
    OnAllThreads(Threads, [&](int) { EXPECT_EQ(TrackGeometryOf(path).width, 192); });
}

TEST(SampleReaderThreads, ManyReaders) {
    OnAllThreads(Threads, [&](int thread) {
        const char* names[] = {"h264/plain.mp4", "h264/b-pyramid.mp4"};
        const std::unique_ptr<WinH264SampleReader> reader(WinH264SampleReader::create(
            MadeMedia(names[thread % 2]), 0, DecoderOutputFormat::MemoryArgb32, nullptr));
        ASSERT_EQ(reader->readerStatus(), ReaderStatusOk);
        for (int i = 0; i < 12; ++i) {
            const std::unique_ptr<VideoSample> sample(reader->readVideoSample(
                MediaTime(i * 37 % 96, 24), {}, VideoSampleReaderFlags::None));
            ASSERT_NE(sample, nullptr);
            sample->lockData();
            EXPECT_NE(sample->data(), nullptr);
            sample->unlockData();
        }
    });
}

// The limit is a rough one, but the count is not: all is given back.
TEST(SampleReaderThreads, TheDeviceIsGivenBack) {
    const auto device = com::MakeOwned<ScriptedDeviceManager>();
    const auto open = [&] {
        return std::unique_ptr<WinH264SampleReader>(WinH264SampleReader::create(
            "any.avi", 0, DecoderOutputFormat::DeviceArgb32, device.Get()));
    };
    std::mutex opening; // a script serves one reader at a time
    const ScriptedOpening scripted(MakeScript(Pictures(3, 100)));
    OnAllThreads(Threads, [&](int) {
        for (int round = 0; round < 50; ++round) {
            std::unique_ptr<WinH264SampleReader> reader;
            {
                const std::lock_guard lock(opening);
                reader = open();
            }
        }
    });
    const auto first = open();
    const auto second = open();
    EXPECT_TRUE(first->IsDXGI());
    EXPECT_TRUE(second->IsDXGI());
    EXPECT_FALSE(open()->IsDXGI());
}

} // namespace
} // namespace Zanthe
