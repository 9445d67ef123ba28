#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <thread>

#include <gtest/gtest.h>

#include "platform/mf/Errors.h"
#include "platform/mf/MediaFormats.h"
#include "platform/mf/SourceReader.h"
#include "platform/win32/Text.h"
#include "tests/platform/mf/Readers.h"
#include "tests/platform/mf/RecordingCallback.h"
#include "tests/platform/mf/Sounds.h"
#include "tests/support/TestMedia.h"

namespace {

com::ComPtr<IMFSourceReader> OpenAsync(const std::string& path, RecordingCallback& callback) {
    com::ComPtr<IMFAttributes> attributes;
    EXPECT_EQ(MFCreateAttributes(attributes.Put(), 1), S_OK);
    attributes->SetUnknown(MF_SOURCE_READER_ASYNC_CALLBACK, &callback);
    com::ComPtr<IMFSourceReader> reader;
    EXPECT_EQ(MFCreateSourceReaderFromURL(win32::Utf8ToWide(path).c_str(), attributes.Get(),
                                          reader.Put()),
              S_OK);
    return reader;
}

class AsyncReader : public testing::Test {
protected:
    explicit AsyncReader(std::function<void()> within = {})
        : m_callback(com::MakeOwned<RecordingCallback>(std::move(within))) {
        OpenFile("aac-stereo.m4a");
    }

    void OpenFile(const std::string& name) {
        m_reader = OpenAsync(MadeMedia("sound-exact/" + name), *m_callback);
        m_reader->SetStreamSelection(MF_SOURCE_READER_ALL_STREAMS, FALSE);
        m_reader->SetStreamSelection(kSound, TRUE);
        EXPECT_EQ(m_reader->SetCurrentMediaType(kSound, nullptr,
                                                SoundType(MFAudioFormat_Float, 32, 2, 48000).Get()),
                  S_OK);
    }

    HRESULT Ask() { return m_reader->ReadSample(kSound, 0, nullptr, nullptr, nullptr, nullptr); }

    Answer ReadOne() {
        const std::size_t before = m_callback->Count();
        EXPECT_EQ(Ask(), S_OK);
        return m_callback->Wait(before);
    }

    void FlushAndWait() {
        const std::size_t before = m_callback->Count();
        EXPECT_EQ(m_reader->Flush(kSound), S_OK);
        std::size_t i = before;
        while (!m_callback->Wait(i).isFlush) {
            ASSERT_LT(++i, before + 3);
        }
    }

    com::ComPtr<RecordingCallback> m_callback;
    com::ComPtr<IMFSourceReader> m_reader;
};

TEST_F(AsyncReader, GivesWhatASynchronousOneGives) {
    const auto reader = OpenSound("aac-stereo.m4a", SoundType(MFAudioFormat_Float, 32, 2, 48000));
    const SoundRun whole = ReadSound(*reader);
    std::vector<std::uint8_t> bytes;
    while (true) {
        const Answer answer = ReadOne();
        ASSERT_EQ(answer.result, S_OK);
        ASSERT_EQ(answer.index, 0U);
        if (!answer.sample) {
            EXPECT_EQ(answer.flags, MF_SOURCE_READERF_ENDOFSTREAM);
            break;
        }
        EXPECT_EQ(TimeOf(*answer.sample), answer.time);
        const auto more = BytesOf(*answer.sample);
        bytes.insert(bytes.end(), more.begin(), more.end());
    }
    EXPECT_TRUE(bytes == whole.bytes);
    // The end is told as often as it is asked for.
    EXPECT_EQ(ReadOne().flags, MF_SOURCE_READERF_ENDOFSTREAM);
}

TEST_F(AsyncReader, RequestsAreAnsweredInTheirOrder) {
    for (int i = 0; i < 50; ++i) {
        ASSERT_EQ(Ask(), S_OK);
    }
    LONGLONG end = 0;
    for (std::size_t i = 0; i < 50; ++i) {
        const Answer answer = m_callback->Wait(i);
        ASSERT_TRUE(answer.sample);
        EXPECT_EQ(answer.time, end);
        end = answer.time + DurationOf(*answer.sample);
    }
}

TEST_F(AsyncReader, GoesToAPositionBehindAFlush) {
    for (const LONGLONG position : {50'000'000LL, 10'000'000LL, 90'000'000LL, 0LL}) {
        FlushAndWait();
        ASSERT_EQ(Seek(*m_reader, position), S_OK);
        EXPECT_EQ(ReadOne().time, position);
    }
}

TEST_F(AsyncReader, ReadsHaveNoRoomForAnswers) {
    DWORD number = 0;
    LONGLONG time = 0;
    com::ComPtr<IMFSample> sample;
    EXPECT_EQ(m_reader->ReadSample(kSound, 0, &number, nullptr, nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(m_reader->ReadSample(kSound, 0, nullptr, &number, nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(m_reader->ReadSample(kSound, 0, nullptr, nullptr, &time, nullptr), E_INVALIDARG);
    EXPECT_EQ(m_reader->ReadSample(kSound, 0, nullptr, nullptr, nullptr, sample.Put()),
              E_INVALIDARG);
    EXPECT_EQ(m_callback->Count(), 0U);
}

TEST_F(AsyncReader, RefusesStreamsThatAreNotThereOrNotSelected) {
    const auto ask = [&](DWORD stream) {
        return m_reader->ReadSample(stream, 0, nullptr, nullptr, nullptr, nullptr);
    };
    EXPECT_EQ(ask(7), MF_E_INVALIDSTREAMNUMBER);
    EXPECT_EQ(ask(kVideo), MF_E_INVALIDSTREAMNUMBER);
    EXPECT_EQ(m_reader->Flush(7), MF_E_INVALIDSTREAMNUMBER);
    EXPECT_EQ(m_reader->SetStreamSelection(kSound, FALSE), S_OK);
    EXPECT_EQ(ask(kSound), MF_E_INVALIDREQUEST);
}

TEST_F(AsyncReader, AFailureIsAnAnswer) {
    OpenFile("aac-stereo.m4a");
    m_reader = OpenAsync(MadeMedia("sound-exact/aac-stereo.m4a"), *m_callback);
    const Answer answer = ReadOne(); // compressed sound is not served
    EXPECT_EQ(answer.result, MF_E_TOPO_CODEC_NOT_FOUND);
    EXPECT_EQ(answer.flags, MF_SOURCE_READERF_ERROR);
    EXPECT_FALSE(answer.sample);
}

TEST_F(AsyncReader, TellsTheDuration) {
    PROPVARIANT value;
    ASSERT_EQ(
        m_reader->GetPresentationAttribute(MF_SOURCE_READER_MEDIASOURCE, MF_PD_DURATION, &value),
        S_OK);
    LONGLONG duration = 0;
    EXPECT_EQ(PropVariantToInt64(value, &duration), S_OK);
    EXPECT_EQ(duration, 95'000'000);
}

TEST_F(AsyncReader, HoldsItsCallbackNoLongerThanItself) {
    EXPECT_EQ(ReadOne().result, S_OK);
    m_reader.Reset();
    m_callback->AddRef();
    EXPECT_EQ(m_callback->Release(), 1U);
}

TEST_F(AsyncReader, EndsWithRequestsInFlight) {
    for (int i = 0; i < 20; ++i) {
        OpenFile("aac-stereo.m4a");
        for (int request = 0; request < 1 + i * 3; ++request) {
            ASSERT_EQ(Ask(), S_OK);
        }
        m_reader.Reset();
        const std::size_t answers = m_callback->Count();
        std::this_thread::yield();
        EXPECT_EQ(m_callback->Count(), answers); // none comes behind the end
    }
}

TEST_F(AsyncReader, AFlushDropsWhatIsInFlight) {
    for (int i = 0; i < 20; ++i) {
        const std::size_t before = m_callback->Count();
        for (int request = 0; request < 200; ++request) {
            ASSERT_EQ(Ask(), S_OK);
        }
        ASSERT_EQ(m_reader->Flush(kSound), S_OK);
        std::size_t number = before;
        while (!m_callback->Wait(number).isFlush) {
            ++number;
        }
        ASSERT_EQ(Seek(*m_reader, 30'000'000), S_OK); // nothing is in flight any more
        EXPECT_EQ(ReadOne().time, 30'000'000);
        EXPECT_EQ(m_callback->Count(), number + 2);
    }
}

TEST_F(AsyncReader, AFlushOfAnotherStreamDropsNothing) {
    OpenFile("sound-late.mp4");
    const std::size_t before = m_callback->Count();
    for (int request = 0; request < 20; ++request) {
        ASSERT_EQ(Ask(), S_OK);
    }
    ASSERT_EQ(m_reader->Flush(kVideo), S_OK);
    std::size_t flushes = 0;
    for (std::size_t i = 0; i < 21; ++i) {
        flushes += m_callback->Wait(before + i).isFlush ? 1 : 0;
    }
    EXPECT_EQ(flushes, 1U);
}

TEST_F(AsyncReader, AFlushOfAllStreamsIsOneAnswer) {
    ASSERT_EQ(m_reader->Flush(MF_SOURCE_READER_ALL_STREAMS), S_OK);
    const Answer answer = m_callback->Wait(0);
    EXPECT_TRUE(answer.isFlush);
    EXPECT_EQ(answer.index, MF_SOURCE_READER_ALL_STREAMS);
}

// A callback that waits until it is let go.
class Gate {
public:
    void Open() {
        const std::lock_guard lock(m_mutex);
        m_open = true;
        m_changed.notify_all();
    }

    void Pass() {
        std::unique_lock lock(m_mutex);
        m_reached = true;
        m_changed.notify_all();
        m_changed.wait(lock, [&] { return m_open; });
    }

    void WaitUntilReached() {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [&] { return m_reached; });
    }

private:
    std::mutex m_mutex; // guards all below
    std::condition_variable m_changed;
    bool m_open = false;
    bool m_reached = false;
};

class HeldAsyncReader : public AsyncReader {
protected:
    HeldAsyncReader()
        : AsyncReader([this] { m_gate.Pass(); }) {}

    void TearDown() override {
        m_gate.Open();
        m_reader.Reset();
    }

    Gate m_gate;
};

TEST_F(HeldAsyncReader, CannotBeMovedWithRequestsInFlight) {
    ASSERT_EQ(Ask(), S_OK);
    m_gate.WaitUntilReached();
    ASSERT_EQ(Ask(), S_OK);
    EXPECT_EQ(Seek(*m_reader, 0), MF_E_INVALIDREQUEST);
    EXPECT_EQ(m_reader->SetCurrentMediaType(kSound, nullptr, SoundType(MFAudioFormat_Float).Get()),
              MF_E_INVALIDREQUEST);
    m_gate.Open();
    EXPECT_TRUE(m_callback->Wait(1).sample);
    EXPECT_EQ(Seek(*m_reader, 0), S_OK);
}

TEST_F(HeldAsyncReader, TakesNoReadsDuringAFlush) {
    ASSERT_EQ(Ask(), S_OK);
    m_gate.WaitUntilReached();
    ASSERT_EQ(m_reader->Flush(kSound), S_OK);
    EXPECT_EQ(Ask(), MF_E_NOTACCEPTING);
    m_gate.Open();
    EXPECT_TRUE(m_callback->Wait(1).isFlush);
    EXPECT_EQ(Ask(), S_OK);
}

TEST_F(HeldAsyncReader, VeryManyRequestsAreTooMany) {
    ASSERT_EQ(Ask(), S_OK);
    m_gate.WaitUntilReached();
    HRESULT result = S_OK;
    int accepted = 0;
    while ((result = Ask()) == S_OK && accepted < 100'000) {
        ++accepted;
    }
    EXPECT_EQ(result, MF_E_NOTACCEPTING);
    EXPECT_GE(accepted, 1000);
}

// The callback itself goes on, moves the reader, and ends it.
class BusyCallback final : public com::Object<IMFSourceReaderCallback> {
public:
    HRESULT OnReadSample(HRESULT result, DWORD, DWORD, LONGLONG time, IMFSample*) override {
        EXPECT_EQ(result, S_OK);
        EXPECT_EQ(time, m_left.load() * 1'000'000LL);
        if (--m_left > 0) {
            EXPECT_EQ(Seek(*m_reader, m_left.load() * 1'000'000LL), S_OK);
            EXPECT_EQ(m_reader->ReadSample(kSound, 0, nullptr, nullptr, nullptr, nullptr), S_OK);
            return S_OK;
        }
        m_reader.Reset();
        m_done.set_value();
        return S_OK;
    }

    HRESULT OnFlush(DWORD) override { return S_OK; }

    HRESULT OnEvent(DWORD, IMFMediaEvent*) override { return S_OK; }

    com::ComPtr<IMFSourceReader> m_reader;
    std::atomic<int> m_left = 40;
    std::promise<void> m_done;

private:
    void* Find(REFIID iid) override {
        return com::Among(iid, IID_IMFSourceReaderCallback,
                          static_cast<IMFSourceReaderCallback*>(this));
    }
};

TEST(AsyncReaderInItsCallback, ReadsOnMovesAndEnds) {
    const auto callback = com::MakeOwned<BusyCallback>();
    com::ComPtr<IMFAttributes> attributes;
    ASSERT_EQ(MFCreateAttributes(attributes.Put(), 1), S_OK);
    attributes->SetUnknown(MF_SOURCE_READER_ASYNC_CALLBACK, callback.Get());
    const std::wstring path = win32::Utf8ToWide(MadeMedia("sound-exact/pcm-16.wav"));
    ASSERT_EQ(MFCreateSourceReaderFromURL(path.c_str(), attributes.Get(), callback->m_reader.Put()),
              S_OK);
    attributes.Reset();
    ASSERT_EQ(Seek(*callback->m_reader, 40 * 1'000'000LL), S_OK);
    auto done = callback->m_done.get_future();
    ASSERT_EQ(callback->m_reader->ReadSample(kSound, 0, nullptr, nullptr, nullptr, nullptr), S_OK);
    EXPECT_EQ(done.wait_for(std::chrono::minutes(1)), std::future_status::ready);
}

TEST(AsyncReaders, OfManyThreadsDoNotDisturbEachOther) {
    const SoundRun whole = ReadSound(*OpenSound("aac-stereo.m4a", SoundType(MFAudioFormat_Float)));
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (LONGLONG i = 0; i < 4; ++i) {
        threads.emplace_back([&, i] {
            const auto callback = com::MakeOwned<RecordingCallback>();
            const auto reader = OpenAsync(MadeMedia("sound-exact/aac-stereo.m4a"), *callback);
            reader->SetCurrentMediaType(kSound, nullptr, SoundType(MFAudioFormat_Float).Get());
            for (int k = 0; k < 10; ++k) {
                const LONGLONG frame = 4410 * (7 * k + i);
                EXPECT_EQ(Seek(*reader, frame * 10'000'000 / 44100), S_OK);
                EXPECT_EQ(reader->ReadSample(kSound, 0, nullptr, nullptr, nullptr, nullptr), S_OK);
                const Answer answer = callback->Wait(static_cast<std::size_t>(k));
                ASSERT_TRUE(answer.sample);
                const auto bytes = BytesOf(*answer.sample);
                EXPECT_TRUE(
                    std::equal(bytes.begin(), bytes.end(), whole.bytes.begin() + frame * 8));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

} // namespace
