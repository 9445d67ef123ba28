#include "platform/win32/Thread.h"

#include <gtest/gtest.h>

#include "platform/win32/Event.h"
#include "platform/win32/Wait.h"

namespace {

HANDLE Begin(unsigned int (*start)(void*), void* argument, unsigned int* identifier = nullptr) {
    const std::uintptr_t thread = _beginthreadex(nullptr, 0, start, argument, 0, identifier);
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the SDK answers the handle as a number
    return reinterpret_cast<HANDLE>(thread);
}

unsigned int Increment(void* number) {
    ++*static_cast<int*>(number);
    return 0;
}

unsigned int AwaitEvent(void* event) {
    WaitForSingleObject(event, INFINITE);
    return 0;
}

// A plain number: the wait alone makes what the thread wrote visible.
TEST(Thread, TheWaitSeesWhatTheThreadDid) {
    int number = 41;
    const HANDLE thread = Begin(Increment, &number);
    ASSERT_NE(thread, nullptr);
    EXPECT_EQ(WaitForSingleObject(thread, INFINITE), WAIT_OBJECT_0);
    EXPECT_EQ(number, 42);
    EXPECT_EQ(WaitForSingleObject(thread, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(CloseHandle(thread));
}

TEST(Thread, IsNotSignalledWhileItRuns) {
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    const HANDLE thread = Begin(AwaitEvent, event);
    EXPECT_EQ(WaitForSingleObject(thread, 0), WAIT_TIMEOUT);
    SetEvent(event);
    EXPECT_EQ(WaitForSingleObject(thread, INFINITE), WAIT_OBJECT_0);
    CloseHandle(thread);
    CloseHandle(event);
}

struct Exchange {
    HANDLE go = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    HANDLE done = CreateEventW(nullptr, TRUE, FALSE, nullptr);
};

unsigned int Answer(void* argument) {
    const auto* exchange = static_cast<Exchange*>(argument);
    WaitForSingleObject(exchange->go, INFINITE);
    SetEvent(exchange->done);
    return 0;
}

TEST(Thread, RunsOnWithoutItsHandle) {
    const Exchange exchange;
    CloseHandle(Begin(Answer, const_cast<Exchange*>(&exchange)));
    SetEvent(exchange.go);
    EXPECT_EQ(WaitForSingleObject(exchange.done, INFINITE), WAIT_OBJECT_0);
    CloseHandle(exchange.go);
    CloseHandle(exchange.done);
}

TEST(Thread, EachHasAnIdentifier) {
    int number = 0;
    unsigned int first = 0;
    unsigned int second = 0;
    for (unsigned int* identifier : {&first, &second}) {
        const HANDLE thread = Begin(Increment, &number, identifier);
        WaitForSingleObject(thread, INFINITE);
        CloseHandle(thread);
    }
    EXPECT_NE(first, 0U);
    EXPECT_NE(first, second);
}

TEST(Thread, WhatIsNotOffered) {
    int number = 0;
    constexpr unsigned int createSuspended = 4;
    EXPECT_EQ(_beginthreadex(nullptr, 0, Increment, &number, createSuspended, nullptr), 0U);
    EXPECT_EQ(_beginthreadex(nullptr, 65536, Increment, &number, 0, nullptr), 0U);
    EXPECT_EQ(_beginthreadex(nullptr, 0, nullptr, &number, 0, nullptr), 0U);
}

} // namespace
