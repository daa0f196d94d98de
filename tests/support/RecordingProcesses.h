#pragma once

#include <string>
#include <utility>
#include <vector>

#include "platform/os/Processes.h"

namespace mailvane::test {

/// Starts nothing; remembers what should have been started.
class RecordingProcesses final : public Processes {
public:
    bool OpenDocument(const std::string& path, const std::vector<std::string>& arguments) override {
        opened.emplace_back(path, arguments);
        return succeeds;
    }
    bool Start(const std::vector<std::string>& commandLine) override {
        started.push_back(commandLine);
        return succeeds;
    }
    bool RunAndWait(const std::vector<std::string>& commandLine,
                    const std::function<bool()>& keepWaiting = {}) override {
        ran.push_back(commandLine);
        while (runsOn && keepWaiting && keepWaiting())
            continue;
        return succeeds;
    }

    std::vector<std::pair<std::string, std::vector<std::string>>> opened;
    std::vector<std::vector<std::string>> started;
    std::vector<std::vector<std::string>> ran;
    bool succeeds = true;  ///< the answer to every call
    bool runsOn = false;   ///< a program does not end before it is left to itself
};

}  // namespace mailvane::test
