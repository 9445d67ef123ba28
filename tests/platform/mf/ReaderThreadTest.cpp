// An asynchronous reader over one whose every read takes as long as the test wants.
#include <condition_variable>
#include <mutex>
#include <thread>

#include <gtest/gtest.h>

#include "platform/com/Object.h"
#include "platform/mf/AsyncReader.h"
#include "platform/mf/Errors.h"
#include "platform/mf/MediaFormats.h"
#include "tests/platform/mf/Readers.h"
#include "tests/platform/mf/RecordingCallback.h"
#include "tests/platform/mf/Sounds.h"

namespace {

constexpr DWORD kFirst = 0;
constexpr DWORD kSecond = 1;

// Two streams of sound. A read waits until it is let go, and then answers what it was told to.
class SlowReader final : public com::Object<IMFSourceReader> {
public:
    HRESULT GetStreamSelection(DWORD, BOOL* selected) override {
        *selected = TRUE;
        return S_OK;
    }

    HRESULT SetStreamSelection(DWORD, BOOL) override { return S_OK; }

    HRESULT GetNativeMediaType(DWORD stream, DWORD, IMFMediaType** type) override {
        if (stream > kSecond) {
            return MF_E_INVALIDSTREAMNUMBER;
        }
        SoundType(MFAudioFormat_Float).CopyTo(type);
        return S_OK;
    }

    HRESULT GetCurrentMediaType(DWORD, IMFMediaType**) override { return E_NOTIMPL; }

    HRESULT SetCurrentMediaType(DWORD, DWORD*, IMFMediaType*) override { return S_OK; }

    HRESULT SetCurrentPosition(REFGUID, REFPROPVARIANT) override { return S_OK; }

    HRESULT ReadSample(DWORD stream, DWORD, DWORD* index, DWORD* flags, LONGLONG* time,
                       IMFSample**) override {
        std::unique_lock lock(m_mutex);
        ++m_begun;
        m_changed.notify_all();
        m_changed.wait(lock, [&] { return m_letGo > 0; });
        --m_letGo;
        *index = stream;
        *flags = m_flags;
        *time = 7;
        return m_result;
    }

    HRESULT Flush(DWORD) override { return S_OK; }

    HRESULT GetServiceForStream(DWORD, REFGUID, REFIID, void**) override { return E_NOTIMPL; }

    HRESULT GetPresentationAttribute(DWORD, REFGUID, PROPVARIANT*) override { return E_NOTIMPL; }

    void WaitForReads(int count) {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [&] { return m_begun >= count; });
    }

    void LetGo(int reads = 1) {
        const std::lock_guard lock(m_mutex);
        m_letGo += reads;
        m_changed.notify_all();
    }

    // Of the reads that are let go from now on.
    void Answer(HRESULT result, DWORD flags) {
        const std::lock_guard lock(m_mutex);
        m_result = result;
        m_flags = flags;
    }

    int Begun() {
        const std::lock_guard lock(m_mutex);
        return m_begun;
    }

private:
    void* Find(REFIID iid) override {
        return com::Among(iid, IID_IMFSourceReader, static_cast<IMFSourceReader*>(this));
    }

    std::mutex m_mutex; // guards all below
    std::condition_variable m_changed;
    int m_begun = 0;
    int m_letGo = 0;
    HRESULT m_result = S_OK;
    DWORD m_flags = 0;
};

class SlowReads : public testing::Test {
protected:
    SlowReads() {
        EXPECT_EQ(mf::CreateAsyncReader(m_inner.Get(), m_callback.Get(), m_reader.Put()), S_OK);
    }

    void TearDown() override { m_inner->LetGo(1000); }

    HRESULT Ask(DWORD stream = kFirst) {
        return m_reader->ReadSample(stream, 0, nullptr, nullptr, nullptr, nullptr);
    }

    void AskAndWaitUntilItReads() {
        const int before = m_inner->Begun();
        ASSERT_EQ(Ask(), S_OK);
        m_inner->WaitForReads(before + 1);
    }

    com::ComPtr<SlowReader> m_inner = com::MakeOwned<SlowReader>();
    com::ComPtr<RecordingCallback> m_callback = com::MakeOwned<RecordingCallback>();
    com::ComPtr<IMFSourceReader> m_reader;
};

TEST_F(SlowReads, AFlushDropsTheReadThatIsUnderWayWithoutWaitingForIt) {
    AskAndWaitUntilItReads();
    ASSERT_EQ(m_reader->Flush(kFirst), S_OK);
    EXPECT_EQ(m_callback->Count(), 0U);
    EXPECT_EQ(Ask(), MF_E_NOTACCEPTING);
    m_inner->LetGo();
    EXPECT_TRUE(m_callback->Wait(0).isFlush);
    ASSERT_EQ(Ask(), S_OK);
    m_inner->LetGo();
    EXPECT_FALSE(m_callback->Wait(1).isFlush); // the next read's answer, and no other one before
    EXPECT_EQ(m_callback->Count(), 2U);
    EXPECT_EQ(m_inner->Begun(), 2);
}

TEST_F(SlowReads, AFlushDropsWhatWaitsBehindIt) {
    AskAndWaitUntilItReads();
    for (int i = 0; i < 10; ++i) {
        ASSERT_EQ(Ask(), S_OK);
    }
    ASSERT_EQ(m_reader->Flush(MF_SOURCE_READER_ALL_STREAMS), S_OK);
    m_inner->LetGo();
    EXPECT_TRUE(m_callback->Wait(0).isFlush);
    EXPECT_EQ(m_inner->Begun(), 1);
}

TEST_F(SlowReads, AFlushOfAnotherStreamLeavesTheReadAlone) {
    AskAndWaitUntilItReads();
    ASSERT_EQ(Ask(kSecond), S_OK);
    ASSERT_EQ(Ask(kFirst), S_OK);
    ASSERT_EQ(m_reader->Flush(kSecond), S_OK);
    m_inner->LetGo(2);
    EXPECT_FALSE(m_callback->Wait(0).isFlush);
    EXPECT_FALSE(m_callback->Wait(1).isFlush);
    const Answer last = m_callback->Wait(2);
    EXPECT_TRUE(last.isFlush);
    EXPECT_EQ(last.index, kSecond);
    EXPECT_EQ(m_inner->Begun(), 2);
}

TEST_F(SlowReads, TheReaderDoesNotMoveMeanwhile) {
    AskAndWaitUntilItReads();
    EXPECT_EQ(Seek(*m_reader, 0), MF_E_INVALIDREQUEST);
    EXPECT_EQ(m_reader->SetCurrentMediaType(kFirst, nullptr, SoundType(MFAudioFormat_Float).Get()),
              MF_E_INVALIDREQUEST);
    m_inner->LetGo();
    EXPECT_EQ(m_callback->Wait(0).time, 7);
    EXPECT_EQ(Seek(*m_reader, 0), S_OK);
}

// Which of the two comes first is left to chance, and plays no part.
TEST_F(SlowReads, ItMayEndWhileItReads) {
    AskAndWaitUntilItReads();
    ASSERT_EQ(Ask(), S_OK);
    std::thread ending([&] { m_reader.Reset(); });
    m_inner->LetGo(2);
    ending.join();
    // Nobody is called any more, and nobody holds what the thread has used.
    EXPECT_LE(m_callback->Count(), static_cast<std::size_t>(m_inner->Begun()));
    m_callback->AddRef();
    EXPECT_EQ(m_callback->Release(), 1U);
    m_inner->AddRef();
    EXPECT_EQ(m_inner->Release(), 1U);
}

TEST_F(SlowReads, GapsEndsAndFailuresAreHandedOn) {
    const struct {
        HRESULT result;
        DWORD flags;
    } reads[] = {{S_OK, MF_SOURCE_READERF_STREAMTICK},
                 {S_OK, MF_SOURCE_READERF_ENDOFSTREAM},
                 {E_FAIL, MF_SOURCE_READERF_ERROR}};

    std::size_t number = 0;
    for (const auto& read : reads) {
        m_inner->Answer(read.result, read.flags);
        ASSERT_EQ(Ask(kSecond), S_OK);
        m_inner->LetGo();
        const Answer answer = m_callback->Wait(number++);
        EXPECT_EQ(answer.result, read.result);
        EXPECT_EQ(answer.flags, read.flags);
        EXPECT_EQ(answer.index, kSecond);
        EXPECT_FALSE(answer.sample);
    }
}

} // namespace
