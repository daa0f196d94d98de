#include <string>
#include <utility>

#include "platform/os/Files.h"
#include "platform/os/TextCase.h"

namespace mailvane {

namespace {

constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";

/// One line of a profile file, without its line end.
struct ProfileLine {
    std::size_t start;  ///< where it begins in the file
    std::size_t end;    ///< behind its last character, before its line end
    std::size_t next;   ///< where the next one begins
};

/// Goes through the lines of a profile file.
class ProfileLines {
public:
    explicit ProfileLines(const std::string& text) : text_(text) {
        if (text.starts_with(ByteOrderMark)) next_ = ByteOrderMark.size();
    }

    std::optional<ProfileLine> Next() {
        if (next_ >= text_.size()) return std::nullopt;
        ProfileLine line{next_, text_.find('\n', next_), 0};
        if (line.end == std::string::npos) {
            line.end = line.next = text_.size();
        } else {
            line.next = line.end + 1;
        }
        while (line.end > line.start && text_[line.end - 1] == '\r')
            --line.end;
        next_ = line.next;
        return line;
    }

    std::string_view Text(const ProfileLine& line) const {
        return TrimBlanks(std::string_view(text_).substr(line.start, line.end - line.start));
    }

private:
    const std::string& text_;
    std::size_t next_ = 0;
};

/// The name of the section that the line opens. A line with "=" in it is a value even when its key
/// begins with a bracket, as names of columns do.
std::optional<std::string_view> SectionOf(std::string_view line) {
    if (line.size() < 2 || line.front() != '[' || line.back() != ']' ||
        line.find('=') != std::string_view::npos)
        return std::nullopt;
    return TrimBlanks(line.substr(1, line.size() - 2));
}

/// What stands behind "KEY=". A key may hold "=" itself.
std::optional<std::string_view> ValueOf(std::string_view line, std::string_view key) {
    if (line.size() <= key.size() || line.front() == ';' ||
        !SameName(line.substr(0, key.size()), key))
        return std::nullopt;
    const std::string_view rest = TrimBlanks(line.substr(key.size()));
    if (rest.empty() || rest.front() != '=') return std::nullopt;
    return TrimBlanks(rest.substr(1));
}

bool IsQuoted(std::string_view value) {
    return value.size() >= 2 && value.front() == value.back() &&
           (value.front() == '"' || value.front() == '\'');
}

/// One line's worth of a name or value: no line ends.
std::string WithoutBreaks(std::string_view text) {
    std::string line(text);
    std::erase_if(line, [](char c) { return c == '\r' || c == '\n'; });
    return line;
}

std::string Name(std::string_view text) {
    return std::string(TrimBlanks(WithoutBreaks(text)));
}

/// The value such that reading gives it back: quotes keep blanks at the ends, and quotes.
std::string Stored(std::string_view text) {
    const std::string value = WithoutBreaks(text);
    if (TrimBlanks(value) == value && !IsQuoted(value)) return value;
    return '"' + value + '"';
}

/// Where things stand in the file for one section and key.
struct ProfilePlace {
    std::optional<ProfileLine> line;       ///< of the value
    std::string_view value;                ///< as it stands there
    std::optional<std::size_t> insertion;  ///< for a new line of the section; empty without one
};

ProfilePlace FindPlace(const std::string& text, const std::string& section,
                       const std::string& key) {
    ProfilePlace place;
    ProfileLines lines(text);
    bool inside = false;
    while (const auto line = lines.Next()) {
        const std::string_view content = lines.Text(*line);
        if (const auto name = SectionOf(content)) {
            if (inside) break;
            inside = SameName(*name, section);
            if (inside) place.insertion = line->next;
        } else if (inside) {
            if (const auto value = ValueOf(content, key)) {
                place.line = line;
                place.value = *value;
                return place;
            }
            if (!content.empty()) place.insertion = line->next;
        }
    }
    return place;
}

std::string WithLineEnd(std::string text) {
    if (!text.empty() && text.back() != '\n' && text != ByteOrderMark) text += "\r\n";
    return text;
}

}  // namespace

std::optional<std::string> ReadProfileValue(const std::string& path, const std::string& section,
                                            const std::string& key) {
    const auto text = ReadWholeFile(path);
    if (!text) return std::nullopt;
    const ProfilePlace place = FindPlace(*text, Name(section), Name(key));
    if (!place.line) return std::nullopt;
    const std::string_view value = place.value;
    return std::string(IsQuoted(value) ? value.substr(1, value.size() - 2) : value);
}

bool WriteProfileValue(const std::string& path, const std::string& section, const std::string& key,
                       const std::string& value, FileAccess access) {
    const std::string sectionName = Name(section);
    const std::string keyName = Name(key);
    if (sectionName.find('=') != std::string::npos || keyName.empty() || keyName.front() == ';')
        return false;
    const auto old = ReadWholeFile(path);
    if (!old && IsFile(path)) return false;  // there, but not readable: its other lines must stay
    std::string text = old.value_or(std::string());
    const std::string line = keyName + "=" + Stored(value);
    const ProfilePlace place = FindPlace(text, sectionName, keyName);
    if (place.line) {
        text.replace(place.line->start, place.line->end - place.line->start, line);
    } else if (place.insertion) {
        std::string head = WithLineEnd(text.substr(0, *place.insertion));
        text = std::move(head) + line + "\r\n" + text.substr(*place.insertion);
    } else {
        text = WithLineEnd(std::move(text)) + "[" + sectionName + "]\r\n" + line + "\r\n";
    }
    return (old && text == *old) || WriteWholeFile(path, text, nullptr, access);
}

std::vector<std::string> ProfileKeys(const std::string& path, const std::string& section) {
    std::vector<std::string> keys;
    const std::string text = ReadWholeFile(path).value_or(std::string());
    const std::string wanted = Name(section);
    ProfileLines lines(text);
    bool inside = false;
    while (const auto line = lines.Next()) {
        const std::string_view content = lines.Text(*line);
        if (const auto name = SectionOf(content)) {
            if (inside) break;
            inside = SameName(*name, wanted);
        } else if (const std::size_t sign = content.find('=');
                   inside && sign != std::string_view::npos && content.front() != ';') {
            keys.emplace_back(TrimBlanks(content.substr(0, sign)));
        }
    }
    return keys;
}

}  // namespace mailvane
