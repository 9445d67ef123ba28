#include "platform/win32/FaultGuard.h"

#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>
#include <sys/mman.h>

namespace {

// Memory that nobody may touch.
class Forbidden : public testing::Test {
protected:
    void SetUp() override {
        void* page = mmap(nullptr, Bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        ASSERT_NE(page, MAP_FAILED);
        m_byte = static_cast<volatile char*>(page);
    }

    void TearDown() override {
        munmap(const_cast<char*>(m_byte), Bytes);
        win32::SetFaultGuards(true);
    }

    void Touch() { *m_byte = 1; }

    bool TouchGuarded() {
        return win32::SurvivesFaults([this] { Touch(); });
    }

private:
    static constexpr std::size_t Bytes = 4096;

    volatile char* m_byte = nullptr;
};

using FaultGuard = Forbidden;

TEST_F(FaultGuard, ACallThatComesBackSurvives) {
    int calls = 0;
    EXPECT_TRUE(win32::SurvivesFaults([&] { ++calls; }));
    EXPECT_EQ(calls, 1);
}

TEST_F(FaultGuard, AFaultEndsTheCallEachTime) {
    bool beyond = false;
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(win32::SurvivesFaults([&] {
            Touch();
            beyond = true;
        }));
    }
    EXPECT_FALSE(beyond);
}

TEST_F(FaultGuard, AnInstructionThatIsNoneIsAFault) {
    EXPECT_FALSE(win32::SurvivesFaults([] { __builtin_trap(); }));
}

TEST_F(FaultGuard, WhatIsThrownPassesThrough) {
    EXPECT_THROW(win32::SurvivesFaults([] { throw std::runtime_error("thrown"); }),
                 std::runtime_error);
    EXPECT_FALSE(TouchGuarded());
}

TEST_F(FaultGuard, TheInnermostCallEnds) {
    bool inner = true;
    EXPECT_TRUE(win32::SurvivesFaults([&] { inner = TouchGuarded(); }));
    EXPECT_FALSE(inner);
    EXPECT_FALSE(win32::SurvivesFaults([&] {
        TouchGuarded();
        Touch();
    }));
}

TEST_F(FaultGuard, EachThreadHasItsOwn) {
    bool other = true;
    EXPECT_TRUE(
        win32::SurvivesFaults([&] { std::thread([&] { other = TouchGuarded(); }).join(); }));
    EXPECT_FALSE(other);
}

using FaultGuardDeathTest = Forbidden;

TEST_F(FaultGuardDeathTest, OutsideAFaultEndsTheProcess) {
    EXPECT_FALSE(TouchGuarded());
    EXPECT_DEATH(Touch(), "");
    // On a thread that is not in a guarded call, whatever other threads are in.
    EXPECT_DEATH(win32::SurvivesFaults([&] { std::thread([&] { Touch(); }).join(); }), "");
}

TEST_F(FaultGuardDeathTest, WhatWasSentIsNoFault) {
    EXPECT_DEATH(win32::SurvivesFaults([] { std::raise(SIGSEGV); }), "");
}

TEST_F(FaultGuardDeathTest, SwitchedOffAFaultEndsTheProcess) {
    win32::SetFaultGuards(false);
    EXPECT_DEATH(TouchGuarded(), "");
}

volatile std::sig_atomic_t g_survived = 0;

extern "C" void LeaveWith7(int) {
    std::_Exit(g_survived != 0 ? 7 : 8);
}

TEST_F(FaultGuardDeathTest, OutsideTheHandlerBeforeIsCalled) {
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // a process without a guarded call yet
    EXPECT_EXIT(
        {
            std::signal(SIGSEGV, LeaveWith7);
            g_survived = TouchGuarded() ? 0 : 1;
            Touch();
        },
        testing::ExitedWithCode(7), "");
    GTEST_FLAG_SET(death_test_style, "fast");
}

} // namespace
