#include "platform/os/Processes.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <ctime>

#include "platform/os/Files.h"

namespace mailvane {

namespace {

constexpr int ReportFile = 3;  ///< where a child keeps the pipe that reports a failed start

/// The program's path; "" when there is no such program.
std::string FindProgram(const std::string& name) {
    if (name.find('/') != std::string::npos) return name;
    const char* variable = std::getenv("PATH");
    const std::string folders = variable ? variable : "/usr/local/bin:/usr/bin:/bin";
    for (std::size_t start = 0; start <= folders.size();) {
        const std::size_t end = std::min(folders.find(':', start), folders.size());
        if (end > start) {
            const std::string path = folders.substr(start, end - start) + "/" + name;
            if (IsFile(path) && ::access(path.c_str(), X_OK) == 0) return path;
        }
        start = end + 1;
    }
    return {};
}

/// In the child: no file or signal setting of this program goes on into the new one. Its output
/// goes to the error stream, because the output of this program belongs to scripts.
void PrepareChild(int report) {
    for (int number = 1; number < NSIG; ++number)
        std::signal(number, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    const int empty = ::open("/dev/null", O_RDONLY);
    if (empty >= 0) ::dup2(empty, STDIN_FILENO);
    ::dup2(STDERR_FILENO, STDOUT_FILENO);
    if (report != ReportFile) ::dup2(report, ReportFile);
    ::fcntl(ReportFile, F_SETFD, FD_CLOEXEC);
    ::close_range(ReportFile + 1, ~0U, 0);
}

[[noreturn]] void ReportFailure(int report) {
    const char failed = 1;
    const ssize_t written = ::write(report, &failed, 1);
    ::_exit(written == 1 ? 127 : 126);
}

/// In the child: becomes the program. Only calls that are safe after fork in a program with
/// threads.
[[noreturn]] void BecomeProgram(const char* program, char* const* arguments, int report) {
    PrepareChild(report);
    ::execv(program, arguments);
    ReportFailure(ReportFile);
}

/// Its exit status; 128 and more when a signal has ended it.
int WaitFor(pid_t child) {
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

/// In the child: the end of a program that ends at once, 0 for one that goes on.
[[noreturn]] void ExitLike(pid_t program) {
    constexpr int Looks = 50;
    constexpr timespec Pause{0, 20'000'000};
    int status = 0;
    for (int look = 0; look < Looks; ++look) {
        if (::waitpid(program, &status, WNOHANG) == program)
            ::_exit(WIFEXITED(status) ? WEXITSTATUS(status) : 1);
        nanosleep(&Pause, nullptr);
    }
    ::_exit(0);
}

/// True when nothing was reported until the pipe closed, which a successful start does.
bool Started(int report) {
    char failed = 0;
    ssize_t count = 0;
    do {
        count = ::read(report, &failed, 1);
    } while (count < 0 && errno == EINTR);
    return count == 0;
}

/// Until the program has ended, which is true, or `keepWaiting` says no.
bool WaitFor(pid_t child, const std::function<bool()>& keepWaiting) {
    constexpr int StepMilliseconds = 20;
    pollfd ended{static_cast<int>(::syscall(SYS_pidfd_open, child, 0)), POLLIN, 0};
    bool gone = ::waitpid(child, nullptr, WNOHANG) != 0;
    while (!gone && keepWaiting()) {
        ::poll(&ended, 1, StepMilliseconds);
        gone = ::waitpid(child, nullptr, WNOHANG) != 0;
    }
    if (ended.fd >= 0) ::close(ended.fd);
    return gone;
}

enum class Way {
    Attached,
    Detached,
    Watched  ///< detached, and its first second decides the child's exit status
};

/// The child that is or starts the program, to be waited for; 0 when it could not be started.
pid_t StartChild(const std::vector<std::string>& commandLine, Way how) {
    if (commandLine.empty()) return 0;
    const std::string program = FindProgram(commandLine.front());
    if (program.empty()) return 0;
    std::vector<std::string> words = commandLine;
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);

    int report[2];
    if (::pipe2(report, O_CLOEXEC) != 0) return 0;
    const pid_t child = ::fork();
    if (child == 0) {
        if (how != Way::Attached) {
            // A grandchild in a session of its own: init takes it over, and it outlives us.
            ::setsid();
            const pid_t grandchild = ::fork();
            if (grandchild < 0) ReportFailure(report[1]);
            if (grandchild != 0 && how == Way::Watched) {
                ::close(report[1]);
                ExitLike(grandchild);
            }
            if (grandchild != 0) ::_exit(0);
        }
        BecomeProgram(program.c_str(), arguments.data(), report[1]);
    }
    ::close(report[1]);
    const bool started = child > 0 && Started(report[0]);
    ::close(report[0]);
    if (started) return child;
    if (child > 0) WaitFor(child);
    return 0;
}

}  // namespace

bool SystemProcesses::OpenDocument(const std::string& path,
                                   const std::vector<std::string>& arguments) {
    if (path.empty()) return false;
    // What has the execute bit is still a document: only a command with arguments is a program.
    if (!arguments.empty()) {
        std::vector<std::string> commandLine{path};
        commandLine.insert(commandLine.end(), arguments.begin(), arguments.end());
        return Start(commandLine);
    }
    // It says by its exit status that the desktop has no program for the document.
    const pid_t opener =
        StartChild({"xdg-open", path.front() == '-' ? "./" + path : path}, Way::Watched);
    return opener > 0 && WaitFor(opener) == 0;
}

bool SystemProcesses::Start(const std::vector<std::string>& commandLine) {
    const pid_t child = StartChild(commandLine, Way::Detached);
    if (child > 0) WaitFor(child);  // it has only started the program
    return child > 0;
}

bool SystemProcesses::RunAndWait(const std::vector<std::string>& commandLine,
                                 const std::function<bool()>& keepWaiting) {
    std::erase_if(leftAlone_, [](pid_t left) { return ::waitpid(left, nullptr, WNOHANG) != 0; });
    const pid_t child = StartChild(commandLine, Way::Attached);
    if (child <= 0) return false;
    if (!keepWaiting)
        WaitFor(child);
    else if (!WaitFor(child, keepWaiting))
        leftAlone_.push_back(child);
    return true;
}

std::vector<std::string> SplitCommandLine(const std::string& line,
                                          const std::function<std::size_t(std::size_t)>& pieceAt) {
    std::vector<std::string> arguments;
    std::string word;
    bool inWord = false;
    bool inQuotes = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (const std::size_t piece = pieceAt ? pieceAt(i) : 0; piece > 0) {
            word.append(line, i, piece);
            inWord = true;
            i += piece - 1;
            continue;
        }
        if (!inQuotes && (c == ' ' || c == '\t')) {
            if (inWord) arguments.push_back(std::move(word));
            word.clear();
            inWord = false;
            continue;
        }
        inWord = true;
        if (c == '\\' && i + 1 < line.size() && line[i + 1] == '"') {
            word += line[++i];
        } else if (c == '"') {
            inQuotes = !inQuotes;
        } else {
            word += c;
        }
    }
    if (inWord) arguments.push_back(std::move(word));
    return arguments;
}

std::string TemporaryFolder() {
    const char* variable = std::getenv("TMPDIR");
    const std::string folder = variable && *variable ? variable : "/tmp";
    return folder.back() == '/' ? folder : folder + "/";
}

}  // namespace mailvane
