#include "platform/dao/structure/CreateText.h"

#include <string_view>

#include "platform/dao/structure/TableDef.h"

namespace mailvane {

namespace {

struct Token {
    std::string text;
    bool quoted = false;

    bool Is(std::string_view keyword) const { return !quoted && SameName(text, keyword); }
};

/// Takes a text that SQLite has accepted apart into words, quoted names and single characters.
class CreateScanner {
public:
    explicit CreateScanner(std::string_view text) : rest_(text) {}

    /// False at the end of the text.
    bool Next(Token& token) {
        SkipSpace();
        if (rest_.empty()) return false;
        const char first = rest_.front();
        token.quoted = first == '"' || first == '\'' || first == '`' || first == '[';
        if (token.quoted)
            token.text = TakeQuoted(first == '[' ? ']' : first);
        else
            token.text = TakeWord();
        return true;
    }

private:
    static bool IsWordLetter(char letter) {
        return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
               (letter >= '0' && letter <= '9') || letter == '_' || (letter & 0x80) != 0;
    }

    void SkipThrough(std::string_view end) {
        const std::size_t found = rest_.find(end);
        rest_.remove_prefix(found == std::string_view::npos ? rest_.size() : found + end.size());
    }

    void SkipSpace() {
        while (!rest_.empty()) {
            if (rest_.starts_with("--"))
                SkipThrough("\n");
            else if (rest_.starts_with("/*"))
                SkipThrough("*/");
            else if (rest_.front() == ' ' || (rest_.front() >= '\t' && rest_.front() <= '\r'))
                rest_.remove_prefix(1);
            else
                return;
        }
    }

    std::string TakeQuoted(char quote) {
        std::string inside;
        rest_.remove_prefix(1);
        while (!rest_.empty()) {
            const char letter = rest_.front();
            rest_.remove_prefix(1);
            if (letter == quote) {
                if (quote == ']' || rest_.empty() || rest_.front() != quote) break;
                rest_.remove_prefix(1);
            }
            inside += letter;
        }
        return inside;
    }

    std::string TakeWord() {
        std::size_t length = 0;
        while (length < rest_.size() && IsWordLetter(rest_[length]))
            ++length;
        if (length == 0) length = 1;
        const std::string word(rest_.substr(0, length));
        rest_.remove_prefix(length);
        return word;
    }

    std::string_view rest_;
};

}  // namespace

std::string PrimaryConstraintName(const std::string& createSql) {
    CreateScanner scanner(createSql);
    Token beforeLast;
    Token last;
    Token token;
    while (scanner.Next(token)) {
        if (token.Is("PRIMARY") && beforeLast.Is("CONSTRAINT")) return last.text;
        beforeLast = last;
        last = token;
    }
    return {};
}

}  // namespace mailvane
