#pragma once

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <string>
#include <thread>
#include <vector>

#include "ForkedServer.h"

namespace mailvane::bench {

/// A program that was started; killed at the end when it has not ended by then.
class Tool {
public:
    /// Its output goes to `output`, a handle, or nowhere when that is negative.
    explicit Tool(std::vector<std::string> words, int output = -1) : name_(words.front()) {
        std::vector<char*> arguments;
        for (std::string& word : words)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        if (output < 0)
            posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
        else
            posix_spawn_file_actions_adddup2(&actions, output, 1);
        const int failed =
            posix_spawn(&child_, arguments[0], &actions, nullptr, arguments.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        if (failed != 0) Fail("Cannot start " + name_);
    }
    ~Tool() {
        if (ended_) return;
        kill(child_, SIGKILL);
        waitpid(child_, nullptr, 0);
    }
    Tool(const Tool&) = delete;
    Tool& operator=(const Tool&) = delete;

    /// Until it ends.
    void Wait() {
        int status = 0;
        ended_ = waitpid(child_, &status, 0) == child_;
        if (!ended_ || status != 0) Fail(name_ + " has failed");
    }

private:
    std::string name_;
    pid_t child_ = -1;
    bool ended_ = false;
};

/// Postfix's sink on a port of the loopback.
class PostfixSink {
public:
    explicit PostfixSink(const std::string& tools) : sink_(Words(tools, port_)) {
        for (int attempt = 0; attempt < 500; ++attempt) {
            if (const int fd = ConnectTo(port_); fd >= 0) {
                close(fd);
                return;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        Fail("smtp-sink takes no connections");
    }
    int Port() const { return port_; }

private:
    static std::vector<std::string> Words(const std::string& tools, int port) {
        std::vector<std::string> words{tools + "/smtp-sink", "-c"};
        // It serves nobody as root.
        if (geteuid() == 0) words.insert(words.end(), {"-u", "nobody"});
        words.insert(words.end(), {"127.0.0.1:" + std::to_string(port), "256"});
        return words;
    }
    /// One that was free a moment ago.
    static int FreePort() {
        return ForkedServer([](int) {}).Port();
    }

    int port_ = FreePort();
    Tool sink_;
};

/// Messages a second of Postfix's smtp-source with one session. What one message takes is
/// subtracted: the start of the program and the beginning of the session.
inline double SmtpSourceRate(const std::string& tools, int port, int count, int bytes) {
    const auto seconds = [&](int messages) {
        const Stopwatch watch;
        Tool({tools + "/smtp-source", "-s", "1", "-d", "-m", std::to_string(messages), "-l",
              std::to_string(bytes), "-f", "sender@example.com", "-t", "recipient@example.com",
              "127.0.0.1:" + std::to_string(port)})
            .Wait();
        return watch.Seconds();
    };
    const double one = seconds(1);
    return (count - 1) / (seconds(count) - one);
}

/// Messages a second of Python's smtplib in one session, as it measures itself.
inline double SmtplibRate(int port, int count, int bytes) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) Fail("Cannot make a pipe");
    Tool script({"/usr/bin/python3", MAILVANE_BENCH_DIR "/smtplib_send.py", std::to_string(port),
                 std::to_string(count), std::to_string(bytes)},
                ends[1]);
    close(ends[1]);
    script.Wait();
    char text[64] = {};
    const ssize_t length = read(ends[0], text, sizeof text - 1);
    close(ends[0]);
    const double seconds = length > 0 ? std::atof(text) : 0;
    if (seconds <= 0) Fail("smtplib_send.py tells no time");
    return count / seconds;
}

}  // namespace mailvane::bench
