#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

#include "tests/support/TemporaryFolder.h"

// The program, started as a user would. What it prints goes to files, so that it never waits for
// us.
class ProgramRun {
public:
    // out: where its standard output goes; empty: to a file that Out reads.
    explicit ProgramRun(const std::vector<std::string>& arguments, const std::string& out = {});
    ProgramRun(const ProgramRun&) = delete;
    ProgramRun& operator=(const ProgramRun&) = delete;
    ~ProgramRun(); // kills what still runs

    pid_t Process() const { return m_process; }

    void Signal(int signal) const;

    // Waits for its end: the exit status, or minus the signal that killed it.
    int Wait();

    // The most memory that it held, after Wait.
    long PeakKibibytes() const { return m_peakKibibytes; }

    std::string Out() const;
    std::string Err() const;

private:
    TemporaryFolder m_folder;
    pid_t m_process = -1;
    long m_peakKibibytes = 0;
};

struct ProgramEnd {
    int status;
    std::string out;
    std::string err;
};

// Runs it to its end.
ProgramEnd RunProgram(const std::vector<std::string>& arguments, const std::string& out = {});
