#include "tests/tools/ProgramRun.h"

#include <csignal>
#include <stdexcept>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

void Redirect(int descriptor, const std::string& path) {
    const int access = descriptor == STDIN_FILENO ? O_RDONLY : O_WRONLY;
    const int file = open(path.c_str(), access | O_CREAT | O_TRUNC, 0600);
    dup2(file, descriptor);
    close(file);
}

[[noreturn]] void Become(const std::vector<std::string>& arguments, const std::string& out,
                         const std::string& err) {
    Redirect(STDIN_FILENO, "/dev/null");
    Redirect(STDOUT_FILENO, out);
    Redirect(STDERR_FILENO, err);
    // A test runner in the background may have them ignored.
    signal(SIGINT, SIG_DFL);
    signal(SIGTERM, SIG_DFL);
    signal(SIGPIPE, SIG_DFL);
    std::vector<char*> words{const_cast<char*>("zanthe")};
    for (const std::string& argument : arguments) {
        words.push_back(const_cast<char*>(argument.c_str()));
    }
    words.push_back(nullptr);
    execv(ZANTHE_PROGRAM, words.data());
    _exit(127);
}

} // namespace

ProgramRun::ProgramRun(const std::vector<std::string>& arguments, const std::string& out)
    : m_process(fork()) {
    if (m_process < 0) {
        throw std::runtime_error("no process");
    }
    if (m_process == 0) {
        Become(arguments, out.empty() ? m_folder / "out" : out, m_folder / "err");
    }
}

ProgramRun::~ProgramRun() {
    if (m_process > 0) {
        kill(m_process, SIGKILL);
        Wait();
    }
}

void ProgramRun::Signal(int signal) const {
    kill(m_process, signal);
}

int ProgramRun::Wait() {
    int status = 0;
    rusage used{};
    wait4(m_process, &status, 0, &used);
    m_process = -1;
    m_peakKibibytes = used.ru_maxrss;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

std::string ProgramRun::Out() const {
    return ReadWholeFile(m_folder / "out");
}

std::string ProgramRun::Err() const {
    return ReadWholeFile(m_folder / "err");
}

ProgramEnd RunProgram(const std::vector<std::string>& arguments, const std::string& out) {
    ProgramRun run(arguments, out);
    const int status = run.Wait();
    return {status, run.Out(), run.Err()};
}
