#include "platform/net/smtp/SmtpReply.h"

#include <algorithm>

namespace mailvane {

namespace {

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Three digits, the first from 2 to 5, then the end, a blank or a hyphen (RFC 5321 section 4.2).
bool IsReplyLine(std::string_view line) {
    if (line.size() < 3 || line[0] < '2' || line[0] > '5') return false;
    if (!IsDigit(line[1]) || !IsDigit(line[2])) return false;
    return line.size() == 3 || line[3] == ' ' || line[3] == '-';
}

}  // namespace

std::optional<std::string_view> LineReader::Next(std::string_view& bytes) {
    const std::size_t lineFeed = bytes.find('\n');
    partial_ += bytes.substr(0, lineFeed);
    if (lineFeed == std::string_view::npos) {
        bytes = {};
        return std::nullopt;
    }
    if (TooLong()) return std::nullopt;
    bytes.remove_prefix(lineFeed + 1);
    line_.swap(partial_);
    partial_.clear();
    if (!line_.empty() && line_.back() == '\r') line_.pop_back();
    // The text goes to logs and error lists: nothing in it may begin a line of its own there.
    std::replace_if(
        line_.begin(), line_.end(), [](char c) { return c >= 0 && c < ' '; }, ' ');
    return line_;
}

SmtpReply::Progress SmtpReply::AddLine(std::string_view line) {
    if (!started_) {
        text_.clear();
        size_ = 0;
    }
    size_ += line.size();
    if (!IsReplyLine(line) || size_ > MaxSize) return Progress::Malformed;
    code_ = (line[0] - '0') * 100 + (line[1] - '0') * 10 + (line[2] - '0');
    started_ = line.size() > 3 && line[3] == '-';
    lastLine_ = line.substr(std::min<std::size_t>(4, line.size()));
    if (!text_.empty() && !lastLine_.empty()) text_ += ' ';
    text_ += lastLine_;
    return started_ ? Progress::More : Progress::Complete;
}

std::string SmtpReply::Description() const {
    if (code_ == 0) return {};
    return std::to_string(code_) + (text_.empty() ? "" : " ") + text_;
}

}  // namespace mailvane
