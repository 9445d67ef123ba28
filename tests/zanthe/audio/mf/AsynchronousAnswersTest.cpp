// The readers over a source that answers on a thread of its own.
#include <mutex>
#include <semaphore>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "tests/zanthe/audio/mf/ScriptedSound.h"
#include "zanthe/audio/mf/LegacyMFAudioReader.h"
#include "zanthe/audio/mf/MFAudioReader.h"
#include "zanthe/audio/mf/MediaFoundationSourceReaderCallback.h"

namespace Zanthe {
namespace {

constexpr int kRate = 44100;

Script ScriptOnAThread() {
    Script script = MakeSoundScript(SoundSamples(1000, 441, kRate));
    script->duration = 100'000'000;
    script->onThread = true;
    return script;
}

void ExpectExactReads(IAudioReader& reader, std::int64_t salt) {
    for (std::int64_t i = 0; i < 60; ++i) {
        const std::int64_t start = (salt * 7919 + i * 104'729) % 430'000;
        EXPECT_TRUE(ReadSpan(reader, start, 3001) == Ramp(start, 3001)) << start;
    }
}

TEST(AsynchronousAnswers, AReaderWaitsForThem) {
    const ScriptedSoundOpening opening(ScriptOnAThread());
    MFAudioReader reader(std::string("a.wma"));
    ASSERT_TRUE(reader.Initialize(kRate));
    ExpectExactReads(reader, 1);
}

TEST(AsynchronousAnswers, TheLegacyReaderWaitsForThem) {
    const ScriptedSoundOpening opening(ScriptOnAThread());
    LegacyMFAudioReader reader(L"a.wma", false);
    ASSERT_EQ(reader.Initialize(), S_OK);
    ExpectExactReads(reader, 2);
}

TEST(AsynchronousAnswers, AReaderMayGoFromThreadToThread) {
    const ScriptedSoundOpening opening(ScriptOnAThread());
    MFAudioReader reader(std::string("a.wma"));
    ASSERT_TRUE(reader.Initialize(kRate));
    for (int i = 0; i < 4; ++i) {
        std::jthread([&] { ExpectExactReads(reader, i); }).join();
    }
}

TEST(AsynchronousAnswers, ReadersOnSeveralThreadsAreIndependent) {
    std::mutex opening; // one at a time: each has a script of its own, as files have
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([i, &opening] {
            MFAudioReader reader(std::string("a.wma"));
            {
                const std::lock_guard lock(opening);
                const ScriptedSoundOpening scripted(ScriptOnAThread());
                ASSERT_TRUE(reader.Initialize(kRate));
            }
            ExpectExactReads(reader, i);
        });
    }
}

TEST(AsynchronousAnswers, AnAnswerMayComeBeforeTheWaitOrAfterItBegan) {
    const auto callback = com::ComPtr<MediaFoundationSourceReaderCallback>::Attach(
        new MediaFoundationSourceReaderCallback);
    constexpr LONGLONG count = 2000;
    std::counting_semaphore<> requests(0);
    const std::jthread source([&] {
        for (LONGLONG i = 0; i < count; ++i) {
            requests.acquire();
            com::ComPtr<IMFSample> sample;
            MFCreateSample(sample.Put());
            callback->OnFlush(0);
            callback->OnReadSample(S_OK, 0, 0, i, sample.Get());
        }
    });
    for (LONGLONG i = 0; i < count; ++i) {
        requests.release();
        callback->WaitForFlush();
        const SourceAnswer answer = callback->WaitForSample();
        ASSERT_EQ(answer.timestamp, i);
        ASSERT_TRUE(answer.sample);
    }
}

} // namespace
} // namespace Zanthe
