#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/dao/records/Recordset.h"

namespace mailvane {

/// Texts by row and column, as a grid shows them.
using TextBlock = std::vector<std::vector<std::string>>;

/// Whether a search wants the row of this text.
using CellMatch = std::function<bool(const std::string& cell)>;

/// What a text typed into a cell stands for; nothing typed is Null where the column takes it.
DaoValue CellValue(const Field& field, const std::string& text);
/// Why the engine has refused the text for that column, in the user's words.
std::string RefusalText(const Field& field, const std::string& text, const DaoError& error);

/// A block as spreadsheets put it on the clipboard: tabs between cells, a line end behind each row,
/// and quotation marks around a text that has one of them inside.
void AppendBlockLine(std::string& block, const std::vector<std::string>& cells);
TextBlock ParseBlock(std::string_view text);

}  // namespace mailvane
