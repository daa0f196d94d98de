#include "database/view/ViewCells.h"

#include "core/text/Text.h"

namespace mailvane {

namespace {

constexpr int WideSize = 8;

/// What a column takes, to stand behind "takes ".
std::string TakenBy(const Field& field) {
    switch (field.type) {
        case FieldType::Boolean:
            return "Yes or No.";
        case FieldType::Byte:
            return "whole numbers from 0 to 255.";
        case FieldType::Integer:
            return "whole numbers from -32,768 to 32,767.";
        case FieldType::Long:
            return field.size == WideSize ? "whole numbers."
                                          : "whole numbers from -2,147,483,648 to 2,147,483,647.";
        case FieldType::Date:
            return "dates: month/day/year, with a time behind if you like, as in 12/31/2026 6:30 "
                   "PM.";
        default:
            return "numbers, with a point before the decimals.";
    }
}

/// The text in quotation marks that begins at `at`, which moves behind it; false when the mark is
/// an ordinary character.
bool ReadQuoted(std::string_view text, std::size_t& at, std::string& cell) {
    std::string inner;
    for (std::size_t i = at + 1; i < text.size(); ++i) {
        if (text[i] != '"') {
            inner += text[i];
        } else if (i + 1 < text.size() && text[i + 1] == '"') {
            inner += '"';
            ++i;
        } else {
            const bool ends = i + 1 == text.size() || text[i + 1] == '\t' || text[i + 1] == '\n' ||
                              text[i + 1] == '\r';
            if (!ends) return false;
            at = i + 1;
            cell = std::move(inner);
            return true;
        }
    }
    return false;
}

std::string ReadCell(std::string_view text, std::size_t& at) {
    std::string cell;
    if (text[at] == '"' && ReadQuoted(text, at, cell)) return cell;
    const std::size_t end = std::min(text.find_first_of("\t\r\n", at), text.size());
    cell = text.substr(at, end - at);
    at = end;
    return cell;
}

}  // namespace

DaoValue CellValue(const Field& field, const std::string& text) {
    if (!text.empty() || (field.IsText() && field.required && field.allowZeroLength)) return text;
    return {};
}

std::string RefusalText(const Field& field, const std::string& text, const DaoError& error) {
    const std::string column = "The column '" + field.name + "' takes ";
    if (error.number == dao_error::DataConversion)
        return "'" + text + "': " + column + TakenBy(field);
    if (error.number == dao_error::FieldTooSmall)
        return column + std::to_string(field.size) + " characters, and this text has " +
               std::to_string(text.size()) + ".";
    return error.description;
}

void AppendBlockLine(std::string& block, const std::vector<std::string>& cells) {
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (i > 0) block += '\t';
        const std::string& cell = cells[i];
        const bool plain =
            cell.find_first_of("\t\r\n") == std::string::npos && !cell.starts_with('"');
        block += plain ? cell : "\"" + ReplaceText(cell, "\"", "\"\"") + "\"";
    }
    block += '\n';
}

TextBlock ParseBlock(std::string_view text) {
    TextBlock block;
    std::size_t at = 0;
    while (at < text.size()) {
        auto& row = block.emplace_back();
        for (;;) {
            row.push_back(at < text.size() ? ReadCell(text, at) : std::string());
            if (at >= text.size() || text[at] != '\t') break;
            ++at;
        }
        if (text.substr(at).starts_with("\r\n")) ++at;
        ++at;
    }
    return block;
}

}  // namespace mailvane
