#include "platform/dao/sql/SqlTokenReader.h"

#include <algorithm>
#include <array>

#include "platform/dao/structure/TableDef.h"

namespace mailvane {
namespace {

/// Words that are no names unless they stand in brackets.
constexpr std::array ReservedWords = {
    "AND",   "AS",    "ASC",    "BETWEEN", "DELETE", "DESC",   "DISTINCT", "DISTINCTROW",
    "DROP",  "FROM",  "GROUP",  "HAVING",  "IN",     "INNER",  "INSERT",   "INTO",
    "IS",    "JOIN",  "LEFT",   "LIKE",    "NOT",    "NULL",   "ON",       "OR",
    "ORDER", "OUTER", "SELECT", "SET",     "UNION",  "UPDATE", "VALUES",   "WHERE"};

/// SQLite's parser keeps at most 100 symbols open; a parenthesis of the dialect opens a few.
constexpr int MaxDepth = 20;

}  // namespace

bool SqlTokenReader::Finish() {
    AcceptSymbol(";");
    return !failed_ && AtKind(SqlToken::Kind::End);
}

bool SqlTokenReader::AtWord(const char* word) const {
    return AtKind(SqlToken::Kind::Word) && SameName(Ahead(0).text, word);
}

bool SqlTokenReader::SymbolAhead(std::size_t count, const char* symbol) const {
    return Ahead(count).kind == SqlToken::Kind::Symbol && Ahead(count).text == symbol;
}

bool SqlTokenReader::AtName() const {
    if (AtKind(SqlToken::Kind::Name)) return true;
    return AtKind(SqlToken::Kind::Word) &&
           std::none_of(ReservedWords.begin(), ReservedWords.end(),
                        [this](const char* word) { return AtWord(word); });
}

const SqlToken& SqlTokenReader::Ahead(std::size_t count) const {
    return tokens_[std::min(position_ + count, tokens_.size() - 1)];
}

bool SqlTokenReader::AcceptWord(const char* word) {
    if (!AtWord(word)) return false;
    Skip();
    return true;
}

bool SqlTokenReader::AcceptSymbol(const char* symbol) {
    if (!AtSymbol(symbol)) return false;
    Skip();
    return true;
}

void SqlTokenReader::ExpectWord(const char* word) {
    if (!AcceptWord(word)) Fail();
}

void SqlTokenReader::ExpectSymbol(const char* symbol) {
    if (!AcceptSymbol(symbol)) Fail();
}

std::string SqlTokenReader::ExpectName() {
    if (AtName()) return tokens_[position_++].text;
    Fail();
    return {};
}

std::string SqlTokenReader::Expect(SqlToken::Kind kind) {
    if (AtKind(kind)) return tokens_[position_++].text;
    Fail();
    return {};
}

void SqlTokenReader::Skip(std::size_t count) {
    position_ = std::min(position_ + count, tokens_.size() - 1);
}

void SqlTokenReader::Fail() {
    failed_ = true;
    position_ = tokens_.size() - 1;
}

bool SqlTokenReader::Enter(int levels) {
    depth_ += levels;
    if (depth_ <= MaxDepth) return true;
    Fail();
    return false;
}

}  // namespace mailvane
