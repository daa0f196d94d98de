#pragma once

#include <string>
#include <string_view>

namespace mailvane {

/// A file written in blocks under a temporary name beside its own, and put in place whole at the
/// end. Without Finish nothing is left of it.
class OutputFile {
public:
    explicit OutputFile(std::string path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// Where the content goes until Finish; for writers that open the file themselves.
    const std::string& TemporaryPath() const { return temporary_; }
    bool Write(std::string_view text);
    /// Flushes to the disk and gives the file its name.
    bool Finish();
    const std::string& Error() const { return error_; }

private:
    bool Flush();
    bool Fail();
    std::string path_;
    std::string temporary_;
    std::string buffer_;
    std::string error_;
    int handle_ = -1;
};

}  // namespace mailvane
