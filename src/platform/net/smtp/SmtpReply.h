#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/net/NetError.h"

namespace mailvane {

/// Cuts a stream of bytes into lines. A line without an end beyond the limit is refused.
class LineReader {
public:
    static constexpr std::size_t MaxLine = 8 * 1024;

    /// Takes bytes off the front of `bytes`; a line without its CR LF or LF when one is complete.
    /// The view holds until the next call.
    std::optional<std::string_view> Next(std::string_view& bytes);
    bool TooLong() const { return partial_.size() > MaxLine; }
    bool Empty() const { return partial_.empty(); }

private:
    std::string partial_;  // a line whose end has not come yet
    std::string line_;
};

/// A reply of one or more lines (RFC 5321 section 4.2).
class SmtpReply {
public:
    enum class Progress { More, Complete, Malformed };
    static constexpr std::size_t MaxSize = 64 * 1024;

    /// The first line begins a new reply.
    Progress AddLine(std::string_view line);

    int Code() const { return code_; }
    bool Started() const { return started_; }                ///< the last line has not come yet
    std::string_view LastLine() const { return lastLine_; }  ///< without the code
    bool Accepted() const { return code_ / 100 == 2; }
    bool Refused() const { return code_ >= 400; }
    /// Code and texts on one line: "550 5.1.1 No such user here".
    std::string Description() const;
    NetError AsError() const { return {code_, Description()}; }

private:
    int code_ = 0;
    bool started_ = false;
    std::size_t size_ = 0;  // of all lines, also those without text
    std::string text_;
    std::string lastLine_;
};

}  // namespace mailvane
