#pragma once

#include <string>
#include <vector>

#include "platform/tables/text/DelimitedReader.h"

namespace mailvane {

/// The delimiters that are guessed among.
inline constexpr std::string_view Delimiters = ",;\t|";

/// How the text is most likely written, from its first records. A file that cannot be read gives
/// the default.
DelimitedFormat GuessFormat(const std::string& path);

/// The first rows of a table as texts, at most `count`; a table that cannot be read gives none.
std::vector<std::vector<std::string>> FirstRows(TableSource& source, std::size_t table, bool header,
                                                std::size_t count);

/// Whether the first row of a table names its columns: it has texts alone, none that looks like a
/// value (a number, a date, an e-mail address) and none that a row below has in the same column.
bool FirstRowIsHeader(TableSource& source, std::size_t table);

}  // namespace mailvane
