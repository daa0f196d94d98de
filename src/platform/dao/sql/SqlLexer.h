#pragma once

#include <string>
#include <vector>

#include "platform/dao/DaoError.h"

namespace mailvane {

struct SqlToken {
    enum class Kind {
        Word,    ///< bare word: keyword or name, as written
        Name,    ///< [name], without the brackets
        Text,    ///< '..' or "..", without the quotes
        Number,  ///< digits, point and exponent, as written
        Date,    ///< #..#, in the stored form
        Symbol,  ///< an operator or a punctuation mark
        End
    };
    Kind kind = Kind::End;
    std::string text;
};

/// Takes a text of the dialect apart; the last token is End. 3075 for a character that begins no
/// token, a name, text or date that does not end, an empty name, and a #..# that is no date.
DaoResult<std::vector<SqlToken>> LexSql(const std::string& sql);

}  // namespace mailvane
