#include "zanthe/containers/avi20/WindowsStream.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/com/Object.h"
#include "platform/com/StorageResult.h"

namespace {

using AVI20::Read::WindowsStream;

// A stream of ten bytes, "0" to "9", that fails as it is told to and writes down what it is asked.
class ScriptedStream final : public com::Object<::IStream> {
public:
    HRESULT readResult = S_OK;
    ULONG mostBytes = 100; // of one reading
    HRESULT seekResult = S_OK;
    HRESULT statResult = S_OK;
    std::uint64_t size = 10;
    std::vector<std::string> calls;

    // IStream
    HRESULT Read(void* buffer, ULONG byteCount, ULONG* bytesRead) override {
        calls.push_back("read " + std::to_string(byteCount));
        const ULONG left = m_position < 10 ? 10 - static_cast<ULONG>(m_position) : 0;
        *bytesRead = std::min({byteCount, left, mostBytes});
        std::memcpy(buffer, "0123456789" + std::min<std::uint64_t>(m_position, 10), *bytesRead);
        m_position += *bytesRead;
        return readResult;
    }

    HRESULT Seek(LARGE_INTEGER distance, DWORD origin, ULARGE_INTEGER*) override {
        calls.push_back("seek " + std::to_string(distance.QuadPart) + " from " +
                        std::to_string(origin));
        if (SUCCEEDED(seekResult)) {
            m_position = static_cast<std::uint64_t>(distance.QuadPart);
        }
        return seekResult;
    }

    HRESULT Stat(STATSTG* facts, DWORD flags) override {
        calls.push_back("stat " + std::to_string(flags));
        facts->cbSize.QuadPart = size;
        return statResult;
    }

    HRESULT Write(const void*, ULONG, ULONG*) override { return E_NOTIMPL; }

    HRESULT SetSize(ULARGE_INTEGER) override { return E_NOTIMPL; }

    HRESULT CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override {
        return E_NOTIMPL;
    }

    HRESULT Commit(DWORD) override { return E_NOTIMPL; }

    HRESULT Revert() override { return E_NOTIMPL; }

    HRESULT LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }

    HRESULT UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }

    HRESULT Clone(IStream**) override { return E_NOTIMPL; }

private:
    void* Find(REFIID iid) override {
        return com::Among(iid, IID_IStream, static_cast<IStream*>(this));
    }

    std::uint64_t m_position = 0;
};

class WindowsStreams : public testing::Test {
protected:
    WindowsStreams()
        : m_scripted(*new ScriptedStream)
        , m_owner(com::ComPtr<::IStream>::Attach(&m_scripted)) {}

    ScriptedStream& m_scripted;
    com::ComPtr<::IStream> m_owner;
    WindowsStream m_stream{&m_scripted};
    std::string m_bytes = "????????????";
};

TEST_F(WindowsStreams, ReadingMovesByWhatCame) {
    EXPECT_TRUE(m_stream.Read(m_bytes.data(), 4));
    EXPECT_EQ(m_bytes, "0123????????");
    EXPECT_EQ(m_stream.Position(), 4U);
    m_scripted.mostBytes = 2;
    EXPECT_FALSE(m_stream.Read(m_bytes.data(), 3));
    EXPECT_EQ(m_stream.Position(), 6U);
    m_scripted.readResult = STG_E_READFAULT;
    EXPECT_FALSE(m_stream.Read(m_bytes.data(), 2)); // both came, with a failure
    EXPECT_EQ(m_stream.Position(), 8U);
    m_scripted.readResult = S_FALSE; // is none
    EXPECT_TRUE(m_stream.Read(m_bytes.data(), 2));
    EXPECT_FALSE(m_stream.Read(m_bytes.data(), 1));
    EXPECT_EQ(m_stream.Position(), 10U);
}

TEST_F(WindowsStreams, SeekingCountsFromTheStart) {
    EXPECT_TRUE(m_stream.Seek(7));
    EXPECT_TRUE(m_stream.Seek(3));
    EXPECT_EQ(m_stream.Position(), 3U);
    EXPECT_TRUE(m_stream.Rewind());
    EXPECT_EQ(m_stream.Position(), 0U);
    EXPECT_EQ(m_scripted.calls,
              (std::vector<std::string>{"seek 7 from 0", "seek 3 from 0", "seek 0 from 0"}));
}

TEST_F(WindowsStreams, AFailedSeekMovesNothing) {
    m_stream.Seek(7);
    m_scripted.seekResult = STG_E_INVALIDFUNCTION;
    EXPECT_FALSE(m_stream.Seek(3));
    EXPECT_FALSE(m_stream.Rewind());
    EXPECT_FALSE(m_stream.SeekToEnd());
    EXPECT_EQ(m_stream.Position(), 7U);
}

TEST_F(WindowsStreams, ThePositionIsNotAskedFor) {
    m_stream.Read(m_bytes.data(), 4);
    m_scripted.calls.clear();
    EXPECT_EQ(m_stream.Position(), 4U);
    EXPECT_TRUE(m_scripted.calls.empty());
}

TEST_F(WindowsStreams, TheSizeIsAskedOnceAndWithoutAName) {
    EXPECT_TRUE(m_scripted.calls.empty());
    EXPECT_EQ(m_stream.Size(), 10U);
    m_scripted.size = 20;
    EXPECT_EQ(m_stream.Size(), 10U);
    EXPECT_TRUE(m_stream.SeekToEnd());
    EXPECT_EQ(m_stream.Position(), 10U);
    EXPECT_EQ(m_scripted.calls, (std::vector<std::string>{"stat 1", "seek 10 from 0"}));
}

TEST_F(WindowsStreams, ASizeThatCannotBeToldIsAskedOnceToo) {
    m_scripted.statResult = E_FAIL;
    EXPECT_EQ(m_stream.Size(), 0U);
    m_scripted.statResult = S_OK;
    EXPECT_EQ(m_stream.Size(), 0U);
    EXPECT_EQ(m_scripted.calls, std::vector<std::string>{"stat 1"});
}

TEST_F(WindowsStreams, TheStreamIsBorrowed) {
    { const WindowsStream other(&m_scripted); }
    m_scripted.AddRef();
    EXPECT_EQ(m_scripted.Release(), 1U);
}

TEST_F(WindowsStreams, OfNoneThereIsNothing) {
    EXPECT_FALSE(m_stream.IsNull());
    EXPECT_TRUE(m_stream.IsOpen());
    WindowsStream none(nullptr);
    EXPECT_TRUE(none.IsNull());
    EXPECT_FALSE(none.IsOpen());
    EXPECT_FALSE(none.Read(m_bytes.data(), 1));
    EXPECT_FALSE(none.Seek(0));
    EXPECT_EQ(none.Size(), 0U);
    EXPECT_EQ(none.Position(), 0U);
}

} // namespace
