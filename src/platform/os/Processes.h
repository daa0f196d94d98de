#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace mailvane {

/// Other programs. No shell is ever involved: a program gets its arguments as they are given.
class Processes {
public:
    virtual ~Processes() = default;
    /// Without arguments opens a document or folder in the program that the desktop has for it;
    /// with arguments starts `path` as a program with them. Does not wait. False when nothing
    /// started.
    virtual bool OpenDocument(const std::string& path,
                              const std::vector<std::string>& arguments) = 0;
    /// Starts a program and does not wait. False when it could not be started.
    virtual bool Start(const std::vector<std::string>& commandLine) = 0;
    /// Starts a program and waits for its end. False when it could not be started. `keepWaiting`,
    /// where there is one, is called every 20 ms; when it says no the program is left to itself.
    virtual bool RunAndWait(const std::vector<std::string>& commandLine,
                            const std::function<bool()>& keepWaiting = {}) = 0;
};

class SystemProcesses final : public Processes {
public:
    bool OpenDocument(const std::string& path, const std::vector<std::string>& arguments) override;
    bool Start(const std::vector<std::string>& commandLine) override;
    bool RunAndWait(const std::vector<std::string>& commandLine,
                    const std::function<bool()>& keepWaiting = {}) override;

private:
    std::vector<int> leftAlone_;  ///< programs that nobody waits for any more, by their ids
};

/// Splits a command line into arguments: blanks separate, double quotes hold together, a backslash
/// before a double quote takes its meaning away. `pieceAt` gives the length of a piece that begins
/// at a position and is taken as it stands, 0 where there is none.
std::vector<std::string> SplitCommandLine(
    const std::string& line, const std::function<std::size_t(std::size_t)>& pieceAt = {});

/// First IPv4 address of this machine that is not the loopback, dotted; "127.0.0.1" without one.
std::string LocalIpAddress();
std::string TemporaryFolder();  ///< with the separator at its end

}  // namespace mailvane
