#include "platform/script/ScriptParser.h"

#include <algorithm>
#include <optional>

#include "platform/script/ScriptCommands.h"

namespace mailvane {

namespace {

constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}

std::optional<std::string_view> Escaped(char c) {
    switch (c) {
        case '"':
            return "\"";
        case '\\':
            return "\\";
        case 'n':
            return "\r\n";
        case 't':
            return "\t";
        default:
            return std::nullopt;
    }
}

/// Splits one line into words.
class WordReader {
public:
    explicit WordReader(std::string_view line) : rest_(line) {}

    /// False when the line is wrong: `Reason` says why.
    bool ReadAll(std::vector<std::string>& words) {
        for (;;) {
            while (!rest_.empty() && IsBlank(rest_.front()))
                rest_.remove_prefix(1);
            if (rest_.empty() || BeginsComment(words.empty())) return true;
            words.emplace_back();
            if (rest_.front() == '"') {
                if (!ReadQuoted(words.back())) return false;
            } else {
                words.back() = TakePlain();
            }
        }
    }
    const std::string& Reason() const { return reason_; }

private:
    /// "#" and digits alone is the number of an entry, unless the line begins with it.
    bool BeginsComment(bool atLineStart) const {
        if (rest_.front() != '#') return false;
        const auto end = std::find_if(rest_.begin(), rest_.end(), IsBlank);
        const bool number =
            end - rest_.begin() > 1 &&
            std::all_of(rest_.begin() + 1, end, [](char c) { return c >= '0' && c <= '9'; });
        return atLineStart || !number;
    }

    std::string TakePlain() {
        const auto length = static_cast<std::size_t>(
            std::find_if(rest_.begin(), rest_.end(), IsBlank) - rest_.begin());
        std::string word(rest_.substr(0, length));
        rest_.remove_prefix(length);
        return word;
    }

    bool ReadQuoted(std::string& word) {
        for (rest_.remove_prefix(1); !rest_.empty(); rest_.remove_prefix(1)) {
            if (rest_.front() == '"') {
                rest_.remove_prefix(1);
                if (rest_.empty() || IsBlank(rest_.front())) return true;
                return Wrong("a blank must follow a closing quote");
            }
            if (rest_.front() != '\\') {
                word += rest_.front();
                continue;
            }
            rest_.remove_prefix(1);
            const auto meaning = rest_.empty() ? std::nullopt : Escaped(rest_.front());
            if (!meaning) return Wrong("unknown escape in a quoted word");
            word += *meaning;
        }
        return Wrong("a quote is not closed");
    }

    bool Wrong(std::string reason) {
        reason_ = std::move(reason);
        return false;
    }

    std::string_view rest_;
    std::string reason_;
};

}  // namespace

std::variant<std::vector<ScriptLine>, ScriptError> ParseScript(std::string_view text) {
    std::vector<ScriptLine> lines;
    if (text.starts_with(ByteOrderMark)) text.remove_prefix(ByteOrderMark.size());
    for (int number = 1; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view content = text.substr(0, end);
        if (content.ends_with('\r')) content.remove_suffix(1);
        text.remove_prefix(std::min(end + 1, text.size()));
        ScriptLine line{number, {}};
        WordReader reader(content);
        if (!reader.ReadAll(line.words)) return ScriptError{number, reader.Reason()};
        if (line.words.empty()) continue;
        if (auto reason = WhatIsWrong(line.words)) return ScriptError{number, std::move(*reason)};
        lines.push_back(std::move(line));
    }
    return lines;
}

}  // namespace mailvane
