#pragma once

#include <sys/resource.h>

#include <csignal>

namespace mailvane::test {

/// Files of this process grow no more while it lives, as on a full disk: every write beyond
/// `bytes` fails.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes = 1) {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before_);
        rlimit full = before_;
        full.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &full);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &before_); }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    rlimit before_{};
};

}  // namespace mailvane::test
