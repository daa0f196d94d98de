#include "platform/tables/text/DelimitedReader.h"

#include <algorithm>
#include <cstring>

namespace mailvane {

namespace {

/// A record longer than this is a quotation mark that nothing closes.
constexpr std::size_t LongestRecord = 64 * 1024 * 1024;

bool IsLineEnd(char sign) {
    return sign == '\r' || sign == '\n';
}

}  // namespace

DelimitedReader::DelimitedReader(const std::string& path, const DelimitedFormat& format,
                                 std::size_t blockSize)
    : file_(path, format.set, blockSize), path_(path), format_(format) {
    for (const char sign : {'\r', '\n', format.delimiter})
        stops_[static_cast<unsigned char>(sign)] = true;
    if (!file_.IsOpen()) error_ = "The file '" + path + "' cannot be read.";
}

/// More of the file behind what has not been passed yet; false at its end.
bool DelimitedReader::Fill() {
    text_.erase(0, at_);
    at_ = 0;
    if (text_.size() > LongestRecord) {
        error_ = "Line " + std::to_string(recordLine_) + ": ";
        error_ += insideQuotes_ ? "a quotation mark is never closed." : "the line is too long.";
        return false;
    }
    if (file_.Append(text_)) return true;
    if (file_.Failed()) error_ = "The file '" + path_ + "' cannot be read to its end.";
    ended_ = true;
    return false;
}

/// To the first byte of the next record; false when there is none.
bool DelimitedReader::SkipLineEnds() {
    for (;;) {
        if (at_ == text_.size() && !Fill()) return false;
        // The second half of a line end may be in the next block.
        if (text_[at_] == '\r' && at_ + 1 == text_.size() && !ended_) {
            Fill();
            if (!error_.empty()) return false;
        }
        if (at_ < text_.size() && !IsLineEnd(text_[at_])) return true;
        if (at_ < text_.size()) at_ = PassLineEnd(at_);
    }
}

std::size_t DelimitedReader::PassLineEnd(std::size_t at) {
    const bool pair = text_[at] == '\r' && at + 1 < text_.size() && text_[at + 1] == '\n';
    ++line_;
    return at + (pair ? 2 : 1);
}

std::int64_t DelimitedReader::LinesIn(std::size_t begin, std::size_t end) const {
    const auto first = text_.begin() + static_cast<std::ptrdiff_t>(begin);
    const auto last = text_.begin() + static_cast<std::ptrdiff_t>(end);
    const auto feeds = std::count(first, last, '\n');
    return feeds > 0 ? feeds : std::count(first, last, '\r');
}

bool DelimitedReader::ScanPlain(std::size_t& at) const {
    const char* const begin = text_.data();
    const char* const end = begin + text_.size();
    const char* sign = begin + at;
    while (sign < end && !stops_[static_cast<unsigned char>(*sign)])
        ++sign;
    at = static_cast<std::size_t>(sign - begin);
    return sign < end || ended_;
}

/// From behind the opening quote to the end of the field. False when it needs more of the file.
bool DelimitedReader::ScanQuoted(std::size_t& at, Field& field) {
    field.quoted = true;
    field.begin = ++at;
    for (;;) {
        const void* found = std::memchr(text_.data() + at, format_.quote, text_.size() - at);
        if (found == nullptr) {
            insideQuotes_ = true;
            return false;
        }
        const std::size_t close =
            static_cast<std::size_t>(static_cast<const char*>(found) - text_.data());
        if (close + 1 == text_.size() && !ended_) return false;  // perhaps the first of two
        at = close + 1;
        if (at < text_.size() && text_[at] == format_.quote) {
            field.plain = false;
            ++at;
            continue;
        }
        field.end = close;
        quotedLines_ += LinesIn(field.begin, close);
        break;
    }
    // What stands behind the closing quote belongs to the field.
    if (!ScanPlain(at)) return false;
    if (at != field.end + 1) {
        field.plain = false;
        field.end = at;
    }
    return true;
}

bool DelimitedReader::ScanField(std::size_t& at, Field& field) {
    const bool quoted = format_.quote != '\0' && at < text_.size() && text_[at] == format_.quote;
    if (quoted) return ScanQuoted(at, field);
    field.begin = at;
    const bool whole = ScanPlain(at);
    field.end = at;
    return whole;
}

/// Finds the fields of the record at at_ and passes it.
DelimitedReader::Outcome DelimitedReader::ScanRecord() {
    fields_.clear();
    insideQuotes_ = false;
    quotedLines_ = 0;
    std::size_t at = at_;
    for (;;) {
        if (!ScanField(at, fields_.emplace_back())) return Outcome::NeedMore;
        if (at < text_.size() && text_[at] == format_.delimiter) {
            ++at;
            if (at == text_.size() && !ended_) return Outcome::NeedMore;
            continue;
        }
        // A line end that the block cuts in two is passed whole.
        if (at + 1 >= text_.size() && !ended_) return Outcome::NeedMore;
        break;
    }
    line_ += quotedLines_;
    valid_ =
        format_.set != CharacterSet::Utf8 || IsUtf8(std::string_view(text_).substr(at_, at - at_));
    at_ = at < text_.size() ? PassLineEnd(at) : at;
    return Outcome::Record;
}

/// The value of a field with doubled quotes, or with more behind its closing quote; it takes the
/// place of what was read, being shorter.
std::string_view DelimitedReader::Unquote(const Field& field) {
    char* const begin = text_.data() + field.begin;
    char* to = begin;
    bool inside = true;
    for (std::size_t i = field.begin; i < field.end; ++i) {
        if (inside && text_[i] == format_.quote) {
            const bool doubled = i + 1 < field.end && text_[i + 1] == format_.quote;
            inside = doubled;
            if (!doubled) continue;
            ++i;
        }
        *to++ = text_[i];
    }
    return {begin, static_cast<std::size_t>(to - begin)};
}

bool DelimitedReader::Next(std::vector<Cell>& record) {
    record.clear();
    if (!error_.empty() || !SkipLineEnds()) return false;
    recordLine_ = line_;
    while (ScanRecord() == Outcome::NeedMore) {
        if (Fill() || error_.empty()) {
            if (!ended_ || !insideQuotes_) continue;
            error_ = "Line " + std::to_string(recordLine_) + ": a quotation mark is never closed.";
        }
        return false;
    }
    for (const Field& field : fields_) {
        const std::string_view text =
            field.plain ? std::string_view(text_).substr(field.begin, field.end - field.begin)
                        : Unquote(field);
        const bool isNull = text.empty() && !field.quoted;
        record.push_back({isNull ? ValueKind::Null : ValueKind::Text, text});
    }
    return true;
}

}  // namespace mailvane
