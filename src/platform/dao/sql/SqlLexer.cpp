#include "platform/dao/sql/SqlLexer.h"

#include <optional>
#include <string_view>

#include "platform/os/DateTime.h"

namespace mailvane {
namespace {

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

bool StartsWord(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
           static_cast<unsigned char>(c) >= 0x80;
}

class Lexer {
public:
    explicit Lexer(std::string_view sql) : sql_(sql) {}

    /// False when the text is no text of the dialect.
    bool Run(std::vector<SqlToken>& tokens) {
        for (SkipBlanks(); position_ < sql_.size(); SkipBlanks()) {
            std::optional<SqlToken> token = Next();
            if (!token) return false;
            tokens.push_back(std::move(*token));
        }
        tokens.push_back({SqlToken::Kind::End, {}});
        return true;
    }

private:
    std::optional<SqlToken> Next() {
        const char c = sql_[position_];
        if (c == '[') return Name();
        if (c == '\'' || c == '"') return Text(c);
        if (c == '#') return Date();
        if (IsDigit(c) || (c == '.' && IsDigit(Peek(1)))) return Number();
        if (StartsWord(c)) return Word();
        return Symbol();
    }

    char Peek(std::size_t ahead) const {
        return position_ + ahead < sql_.size() ? sql_[position_ + ahead] : '\0';
    }

    void SkipBlanks() {
        while (IsBlank(Peek(0)))
            ++position_;
    }

    /// The text up to the next `closing` character, which is passed over.
    std::optional<std::string> UpTo(char closing) {
        const std::size_t end = sql_.find(closing, position_);
        if (end == std::string_view::npos) return std::nullopt;
        const std::string_view inner = sql_.substr(position_, end - position_);
        position_ = end + 1;
        // A NUL would end the statement early in SQLite.
        if (inner.find('\0') != std::string_view::npos) return std::nullopt;
        return std::string(inner);
    }

    std::optional<SqlToken> Name() {
        ++position_;
        std::optional<std::string> name = UpTo(']');
        if (!name || name->empty()) return std::nullopt;
        return SqlToken{SqlToken::Kind::Name, std::move(*name)};
    }

    std::optional<SqlToken> Text(char quote) {
        std::string text;
        do {
            ++position_;
            const std::optional<std::string> piece = UpTo(quote);
            if (!piece) return std::nullopt;
            text += *piece;
            if (Peek(0) == quote) text += quote;
        } while (Peek(0) == quote);
        return SqlToken{SqlToken::Kind::Text, std::move(text)};
    }

    std::optional<SqlToken> Date() {
        ++position_;
        const std::optional<std::string> text = UpTo('#');
        if (!text) return std::nullopt;
        const std::optional<DateTime> date = DateTime::Parse(*text);
        if (!date) return std::nullopt;
        return SqlToken{SqlToken::Kind::Date, date->Iso()};
    }

    SqlToken Number() {
        const std::size_t start = position_;
        while (IsDigit(Peek(0)))
            ++position_;
        if (Peek(0) == '.') {
            ++position_;
            while (IsDigit(Peek(0)))
                ++position_;
        }
        if (Peek(0) == 'e' || Peek(0) == 'E') {
            const std::size_t sign = Peek(1) == '+' || Peek(1) == '-' ? 1 : 0;
            if (IsDigit(Peek(1 + sign))) {
                position_ += 1 + sign;
                while (IsDigit(Peek(0)))
                    ++position_;
            }
        }
        return {SqlToken::Kind::Number, std::string(sql_.substr(start, position_ - start))};
    }

    SqlToken Word() {
        const std::size_t start = position_;
        while (StartsWord(Peek(0)) || IsDigit(Peek(0)) || Peek(0) == '$')
            ++position_;
        return {SqlToken::Kind::Word, std::string(sql_.substr(start, position_ - start))};
    }

    std::optional<SqlToken> Symbol() {
        for (const std::string_view symbol :
             {"<>", "<=", ">=", "<", ">", "=", "(", ")", ",", ".", ";", "*", "/", "+", "-", "&"}) {
            if (!sql_.substr(position_).starts_with(symbol)) continue;
            position_ += symbol.size();
            return SqlToken{SqlToken::Kind::Symbol, std::string(symbol)};
        }
        return std::nullopt;
    }

    std::string_view sql_;
    std::size_t position_ = 0;
};

}  // namespace

DaoResult<std::vector<SqlToken>> LexSql(const std::string& sql) {
    std::vector<SqlToken> tokens;
    if (!Lexer(sql).Run(tokens)) return MakeDaoError(dao_error::QuerySyntax, sql);
    return tokens;
}
}  // namespace mailvane
