#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "platform/dao/sql/SqlLexer.h"

namespace mailvane {

/// A walk over tokens with one fault at most: Fail moves to the end, where every loop of a parser
/// stops by itself, and what was read is to be thrown away.
class SqlTokenReader {
public:
    /// The tokens end with End and outlive the reader.
    explicit SqlTokenReader(const std::vector<SqlToken>& tokens) : tokens_(tokens) {}

    /// Whether all was understood, but for a semicolon at the end.
    bool Finish();

protected:
    bool AtWord(const char* word) const;  ///< keyword, case ignored
    bool AtSymbol(const char* symbol) const { return SymbolAhead(0, symbol); }
    bool SymbolAhead(std::size_t count, const char* symbol) const;
    bool AtKind(SqlToken::Kind kind) const { return Ahead(0).kind == kind; }
    bool AtName() const;  ///< a name in brackets, or a word that is not reserved
    const SqlToken& Ahead(std::size_t count) const;

    bool AcceptWord(const char* word);
    bool AcceptSymbol(const char* symbol);
    void ExpectWord(const char* word);
    void ExpectSymbol(const char* symbol);
    std::string ExpectName();
    std::string Expect(SqlToken::Kind kind);
    void Skip(std::size_t count = 1);

    void Fail();
    bool Failed() const { return failed_; }

    /// So many levels of nesting further in; false, having failed, when that is too deep. A failed
    /// parse is never continued, so only the successful ways out need to go back.
    bool Enter(int levels = 1);
    void Leave(int levels = 1) { depth_ -= levels; }

private:
    const std::vector<SqlToken>& tokens_;
    std::size_t position_ = 0;
    int depth_ = 0;
    bool failed_ = false;
};

}  // namespace mailvane
