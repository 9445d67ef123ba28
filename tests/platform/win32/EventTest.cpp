#include "platform/win32/Event.h"

#include <atomic>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/win32/Wait.h"

namespace {

class OwnedEvent {
public:
    OwnedEvent(BOOL manualReset, BOOL set)
        : m_handle(CreateEventW(nullptr, manualReset, set, nullptr)) {}

    OwnedEvent(const OwnedEvent&) = delete;
    OwnedEvent& operator=(const OwnedEvent&) = delete;

    ~OwnedEvent() { CloseHandle(m_handle); }

    HANDLE Handle() const { return m_handle; }

    DWORD Look() const { return WaitForSingleObject(m_handle, 0); }

private:
    HANDLE m_handle;
};

TEST(Event, ManualResetStaysUntilReset) {
    const OwnedEvent event(TRUE, FALSE);
    EXPECT_EQ(event.Look(), WAIT_TIMEOUT);
    EXPECT_TRUE(SetEvent(event.Handle()));
    EXPECT_EQ(event.Look(), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(event.Handle(), INFINITE), WAIT_OBJECT_0);
    EXPECT_TRUE(ResetEvent(event.Handle()));
    EXPECT_EQ(event.Look(), WAIT_TIMEOUT);
}

TEST(Event, AutoResetEndsOneWait) {
    const OwnedEvent event(FALSE, TRUE);
    EXPECT_EQ(event.Look(), WAIT_OBJECT_0);
    EXPECT_EQ(event.Look(), WAIT_TIMEOUT);
    SetEvent(event.Handle());
    SetEvent(event.Handle());
    EXPECT_EQ(event.Look(), WAIT_OBJECT_0);
    EXPECT_EQ(event.Look(), WAIT_TIMEOUT);
}

TEST(Event, TimeRunsOut) {
    const OwnedEvent event(TRUE, FALSE);
    EXPECT_EQ(WaitForSingleObject(event.Handle(), 5), WAIT_TIMEOUT);
}

TEST(Event, ManualResetEndsEveryWait) {
    const OwnedEvent event(TRUE, FALSE);
    std::atomic<int> ended = 0;
    {
        std::vector<std::jthread> waiters;
        for (int i = 0; i < 4; ++i) {
            waiters.emplace_back([&] {
                WaitForSingleObject(event.Handle(), INFINITE);
                ++ended;
            });
        }
        SetEvent(event.Handle());
    }
    EXPECT_EQ(ended, 4);
}

TEST(Event, WhatIsNoEvent) {
    EXPECT_EQ(CreateEventW(nullptr, TRUE, FALSE, L"named"), nullptr);
    EXPECT_FALSE(SetEvent(nullptr));
    EXPECT_FALSE(ResetEvent(INVALID_HANDLE_VALUE));
    EXPECT_EQ(WaitForSingleObject(nullptr, INFINITE), WAIT_FAILED);
}

} // namespace
