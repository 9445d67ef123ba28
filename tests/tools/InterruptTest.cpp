#include "tools/zanthe/Interrupt.h"

#include <csignal>
#include <filesystem>

#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/support/TemporaryFolder.h"

using Program::CatchInterrupts;
using Program::Interrupted;
using Program::RemovedWhenEnded;
using Program::StopCatchingInterrupts;
using Program::ThrowIfInterrupted;

namespace {

// Puts the signals' handling back to what any program starts with.
class Interrupts : public ::testing::Test {
protected:
    void TearDown() override {
        for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
            std::signal(signal, SIG_DFL);
        }
    }

    static int Caught() {
        try {
            ThrowIfInterrupted();
            return 0;
        } catch (const Interrupted& interrupted) {
            return interrupted.signal;
        }
    }
};

} // namespace

TEST_F(Interrupts, WithoutASignalNothingIsThrown) {
    CatchInterrupts();
    EXPECT_EQ(Caught(), 0);
}

TEST_F(Interrupts, ASignalIsThrownOnce) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        CatchInterrupts();
        std::raise(signal);
        EXPECT_EQ(Caught(), signal);
        EXPECT_EQ(Caught(), 0);
    }
}

TEST_F(Interrupts, ASignalThatIsIgnoredStaysIgnored) {
    std::signal(SIGHUP, SIG_IGN);
    CatchInterrupts();
    std::raise(SIGHUP);
    EXPECT_EQ(Caught(), 0);
}

TEST_F(Interrupts, WhatIsNoLongerCaughtEndsTheProgram) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
        CatchInterrupts();
        StopCatchingInterrupts();
        EXPECT_EXIT(std::raise(signal), testing::KilledBySignal(signal), "");
    }
}

TEST_F(Interrupts, ASignalFromBeforeIsThrownWhenCatchingEnds) {
    CatchInterrupts();
    std::raise(SIGTERM);
    EXPECT_THROW(StopCatchingInterrupts(), Interrupted);
}

TEST_F(Interrupts, WhatIsIgnoredStaysIgnoredWhenCatchingEnds) {
    std::signal(SIGHUP, SIG_IGN);
    CatchInterrupts();
    StopCatchingInterrupts();
    std::raise(SIGHUP);
    EXPECT_EQ(Caught(), 0);
}

TEST_F(Interrupts, ASecondSignalEndsTheProgramAtOnceAndTakesItsFilesAlong) {
    const TemporaryFolder folder;
    const std::string kept = folder.Write("kept", "x");
    const std::string passing = folder.Write("passing", "x");
    const auto end = [&] {
        CatchInterrupts();
        { const RemovedWhenEnded whole(kept); }
        const RemovedWhenEnded half(passing);
        std::raise(SIGINT);
        std::raise(SIGTERM);
    };
    EXPECT_EXIT(end(), testing::ExitedWithCode(128 + SIGTERM), "");
    EXPECT_TRUE(std::filesystem::exists(kept));
    EXPECT_FALSE(std::filesystem::exists(passing));
}

TEST_F(Interrupts, ASignalThatNobodyHeedsEndsTheProgramAfterAWhile) {
    const auto end = [] {
        CatchInterrupts();
        std::raise(SIGINT);
        for (;;) { // asks for nothing, as work in one piece does
            pause();
        }
    };
    EXPECT_EXIT(end(), testing::ExitedWithCode(128 + SIGINT), "");
}

TEST_F(Interrupts, ASignalThatIsHeededHasNoGrace) {
    CatchInterrupts();
    std::raise(SIGINT);
    EXPECT_EQ(Caught(), SIGINT);
    EXPECT_EQ(alarm(0), 0U);
}
