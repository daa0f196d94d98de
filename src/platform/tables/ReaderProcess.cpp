#include "platform/tables/ReaderProcess.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

namespace mailvane {

namespace {

constexpr int OutputHandle = 3;

/// Leaves the child with the handle for its output and none of the program's: locks on open files
/// would live as long as it does.
void KeepOnly(int output) {
    const int nowhere = ::open("/dev/null", O_RDWR);
    for (const int standard : {0, 1, 2})
        ::dup2(nowhere, standard);
    ::dup2(output, OutputHandle);
    ::close_range(OutputHandle + 1, ~0U, 0);
    const rlimit noCore{0, 0};
    ::setrlimit(RLIMIT_CORE, &noCore);
    for (const int number : {SIGSEGV, SIGBUS, SIGABRT, SIGFPE, SIGILL, SIGPIPE, SIGTERM, SIGPROF})
        ::signal(number, SIG_DFL);
}

[[noreturn]] void WorkInChild(const ReaderProcess::Work& work, int patience, int output) {
    KeepOnly(output);
    FrameWriter frames(OutputHandle, patience);
    work(frames);
    frames.Flush();
    ::_exit(0);
}

int WaitFor(pid_t child) {
    int status = 0;
    while (::waitpid(child, &status, 0) < 0)
        if (errno != EINTR) return -1;
    return status;
}

}  // namespace

std::unique_ptr<ReaderProcess> ReaderProcess::Start(const Work& work, int patience) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) return nullptr;
    const pid_t child = ::fork();
    if (child == 0) WorkInChild(work, patience, ends[1]);
    ::close(ends[1]);
    if (child > 0) return std::unique_ptr<ReaderProcess>(new ReaderProcess(child, ends[0]));
    ::close(ends[0]);
    return nullptr;
}

bool ReaderProcess::Run(const Work& work, int patience, int handle) {
    const pid_t child = ::fork();
    if (child == 0) WorkInChild(work, patience, handle);
    return child > 0 && WaitFor(child) == 0;
}

ReaderProcess::~ReaderProcess() {
    ::close(pipe_);
    ::kill(child_, SIGKILL);
    WaitFor(child_);
}

}  // namespace mailvane
