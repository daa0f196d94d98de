#pragma once

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace mailvane::bench {

/// The rates of one side of a comparison, one of each round.
class Rates {
public:
    void Add(double rate) { rates_.push_back(rate); }
    double Median() const {
        if (rates_.empty()) return 0;
        std::vector<double> sorted = rates_;
        std::ranges::sort(sorted);
        const std::size_t middle = sorted.size() / 2;
        return sorted.size() % 2 == 1 ? sorted[middle] : (sorted[middle - 1] + sorted[middle]) / 2;
    }

private:
    std::vector<double> rates_;
};

/// One line of the outcome: name, value, unit, ratio to the side compared with, least ratio wanted.
/// What a line lacks is "-".
inline void Report(const char* name, double value, const char* unit, double ratio = 0,
                   double target = 0) {
    std::printf("%s %.*f %s ", name, value < 100 ? 1 : 0, value, unit);
    ratio > 0 ? std::printf("%.2f ", ratio) : std::printf("- ");
    target > 0 ? std::printf("%g\n", target) : std::printf("-\n");
    std::fflush(stdout);
}

inline double Ratio(const Rates& side, const Rates& peer) {
    return peer.Median() > 0 ? side.Median() / peer.Median() : 0;
}

/// A figure without which the rest means nothing could not be had: the benchmark ends, with the
/// servers and folders that it has made.
[[noreturn]] inline void Fail(const std::string& reason) {
    throw std::runtime_error(reason);
}

/// Runs the benchmark; its exit status.
inline int RunBench(const std::function<void()>& work) {
    try {
        work();
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}

class Stopwatch {
public:
    double Seconds() const {
        const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start_;
        return passed.count();
    }

private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

/// The command line: pairs "--name value".
class Options {
public:
    Options(int argc, char** argv) : words_(argv + 1, argv + argc) {
        if (words_.size() % 2 != 0) Fail("Options are pairs: --name value");
    }
    std::string Text(std::string_view name, const std::string& usual) const {
        for (std::size_t i = 0; i + 1 < words_.size(); i += 2)
            if (words_[i] == name) return words_[i + 1];
        return usual;
    }
    int Number(std::string_view name, int usual) const {
        return std::atoi(Text(name, std::to_string(usual)).c_str());
    }

private:
    std::vector<std::string> words_;
};

/// The folder that the benchmark's own program file stands in.
inline std::string BuildFolder() {
    std::error_code ignored;
    return std::filesystem::read_symlink("/proc/self/exe", ignored).parent_path().string();
}

/// A new folder below another one, removed with all in it at the end.
class ScratchFolder {
public:
    explicit ScratchFolder(const std::string& parent) : path_(parent + "/bench-XXXXXX") {
        if (::mkdtemp(path_.data()) == nullptr) Fail("Cannot make a folder in " + parent);
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    std::string File(const std::string& name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

/// What earlier work has left to be written is written now, and not while something is measured.
inline void SettleDisk() {
    ::sync();
}

}  // namespace mailvane::bench
