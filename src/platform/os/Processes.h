#pragma once

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
    /// Starts a program and waits for its end. False when it could not be started.
    virtual bool RunAndWait(const std::vector<std::string>& commandLine) = 0;
};

class SystemProcesses final : public Processes {
public:
    bool OpenDocument(const std::string& path, const std::vector<std::string>& arguments) override;
    bool RunAndWait(const std::vector<std::string>& commandLine) override;
};

/// Splits a command line into arguments: blanks separate, double quotes hold together, a backslash
/// before a double quote takes its meaning away.
std::vector<std::string> SplitCommandLine(const std::string& line);

/// First IPv4 address of this machine that is not the loopback, dotted; "127.0.0.1" without one.
std::string LocalIpAddress();
std::string TemporaryFolder();  ///< with the separator at its end

}  // namespace mailvane
