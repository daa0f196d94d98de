#include "merge/tags/FieldTags.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <optional>

#include "core/Paths.h"

namespace mailvane {

namespace {

/// A row's values as they stand between quotes.
class QuotedValues {
public:
    explicit QuotedValues(ValuesWithoutNul& row) : row_(row) {}
    const std::string* operator()(std::size_t column) {
        const std::string* value = row_(column);
        if (!value || value->find_first_of("\"\\") == std::string::npos) return value;
        text_.clear();
        for (const char sign : *value) {
            if (sign == '"' || sign == '\\') text_ += '\\';
            text_ += sign;
        }
        return &text_;
    }

private:
    ValuesWithoutNul& row_;
    std::string text_;
};

/// The folder that a path names before its first tag, not counting one at its very front; nothing
/// when there is no such tag, or no folder before it.
std::optional<std::string> FolderBeforeTags(const TagList& columns, const std::string& path) {
    const std::size_t front = columns.TagLengthAt(path, 0);
    std::size_t tag = front;
    while (tag < path.size() && columns.TagLengthAt(path, tag) == 0)
        ++tag;
    if (tag >= path.size()) return std::nullopt;
    const std::size_t slash = path.rfind(PathSeparator, tag);
    if (slash != std::string::npos) return path.substr(0, slash + 1);
    return front > 0 ? std::nullopt : std::optional<std::string>("./");
}

bool StaysIn(const std::string& folder, const std::string& path) {
    namespace fs = std::filesystem;
    const fs::path inside = fs::path(path).lexically_normal().lexically_relative(
        fs::path(folder + ".").lexically_normal());
    return !inside.empty() && *inside.begin() != "..";
}

}  // namespace

const std::string* ValuesWithoutNul::operator()(std::size_t column) {
    const std::string* value = row_(column);
    if (!value || value->find('\0') == std::string::npos) return value;
    text_ = *value;
    std::erase(text_, '\0');
    return &text_;
}

bool FillInPath(const TagList& columns, std::string& path, const TagList::ValueOf& row) {
    if (path.find('[') == std::string::npos) return true;
    ValuesWithoutNul values(row);
    std::optional<std::string> folder = FolderBeforeTags(columns, path);
    if (!columns.Replace(path, std::ref(values))) return false;
    if (!folder) return true;
    if (!columns.Replace(*folder, std::ref(values))) return false;
    if (!StaysIn(*folder, path)) path.clear();
    return true;
}

bool FillInSender(const TagList& columns, std::string& text, const TagList::ValueOf& row) {
    if (text.find('[') == std::string::npos) return true;
    ValuesWithoutNul values(row);
    QuotedValues quotedValues(values);
    std::string result;
    std::size_t start = 0;
    bool quoted = false;
    const auto takeUpTo = [&](std::size_t end) {
        std::string part = text.substr(start, end - start);
        start = end;
        const bool fits = quoted ? columns.Replace(part, std::ref(quotedValues))
                                 : columns.Replace(part, std::ref(values));
        result += part;
        return fits && result.size() <= TagList::LongestText;
    };
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t tag = columns.TagLengthAt(text, at);
        const bool closes = quoted || text.find('"', at + 1) != std::string::npos;
        if (tag == 0 && text[at] == '"' && closes) {
            if (!takeUpTo(at)) return false;
            quoted = !quoted;
        }
        at += tag > 0 ? tag : quoted && text[at] == '\\' ? 2 : 1;
    }
    if (!takeUpTo(text.size())) return false;
    text = std::move(result);
    return true;
}

bool FieldTags::FillIn(MessageRecord& message, const TagList::ValueOf* row) {
    if (!row) return true;
    ValuesWithoutNul values(*row);
    return columns_.Replace(message.Body, *row) &&
           columns_.Replace(message.Subject, std::ref(values)) &&
           FillInSender(columns_, message.From, *row) && columns_.Replace(message.HTMLCode, *row);
}

/// Columns that are Null, tags that came in with a value, and in messages for many all of them.
void FieldTags::CleanUp(MessageRecord& message) const {
    for (std::string* text :
         {&message.Body, &message.Subject, &message.Attach, &message.From, &message.HTMLCode})
        columns_.Remove(*text);
}

}  // namespace mailvane
