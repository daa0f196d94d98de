#include "platform/tables/sheets/SpreadsheetWriter.h"

#include <xlsxwriter.h>

#include <charconv>
#include <cstring>
#include <filesystem>

#include "platform/os/DateTime.h"

namespace mailvane {

namespace {

constexpr std::size_t LongestSheetName = 31;
constexpr std::size_t LongestCellText = 32767;
constexpr std::size_t ExactDigits = 15;
/// Sheets count their days from 1900, and rightly only from 1 March on.
constexpr int FirstDateYear = 1901;

std::size_t LetterCount(std::string_view text) {
    std::size_t letters = 0;
    for (const char sign : text)
        letters += (static_cast<unsigned char>(sign) & 0xC0) != 0x80;
    return letters;
}

/// Cuts the text before the letter that would be one too many.
std::string FirstLetters(std::string_view text, std::size_t count) {
    std::size_t end = 0;
    for (std::size_t letters = 0; end < text.size(); ++end)
        if ((static_cast<unsigned char>(text[end]) & 0xC0) != 0x80 && ++letters > count) break;
    return std::string(text.substr(0, end));
}

/// The name without what a sheet's name cannot hold; the number makes it another one.
std::string SheetName(const std::string& wanted, int number) {
    const std::string ending = number > 1 ? " " + std::to_string(number) : "";
    std::string name;
    for (const char sign : wanted)
        name += std::string_view("[]:*?/\\").find(sign) == std::string_view::npos ? sign : '_';
    if (name.empty()) name = "Table";
    name = FirstLetters(name, LongestSheetName - ending.size()) + ending;
    if (name.front() == '\'') name.front() = '_';
    if (name.back() == '\'') name.back() = '_';
    return name;
}

/// Whether a sheet keeps all the digits of the number.
bool KeepsDigits(std::string_view number) {
    std::size_t digits = 0;
    for (const char sign : number) {
        if (sign == 'e' || sign == 'E') break;
        digits += sign >= '0' && sign <= '9' && (digits > 0 || sign != '0');
    }
    return digits <= ExactDigits;
}

}  // namespace

SpreadsheetWriter::SpreadsheetWriter(const std::string& path, const std::string& sheet,
                                     std::int64_t rowsPerSheet)
    : file_(path), sheetName_(sheet), rowsPerSheet_(rowsPerSheet) {
    if (!file_.Error().empty()) return;
    lxw_workbook_options options{};
    options.constant_memory = LXW_TRUE;
    std::string folder = std::filesystem::temp_directory_path().string();
    options.tmpdir = folder.data();
    workbook_ = workbook_new_opt(file_.TemporaryPath().c_str(), &options);
    date_ = workbook_add_format(workbook_);
    format_set_num_format_index(date_, 14);
    dateAndTime_ = workbook_add_format(workbook_);
    format_set_num_format(dateAndTime_, "m/d/yyyy h:mm:ss AM/PM");
    time_ = workbook_add_format(workbook_);
    format_set_num_format(time_, "h:mm:ss AM/PM");
}

SpreadsheetWriter::~SpreadsheetWriter() {
    // Closing is how the library lets go of its temporary files.
    if (workbook_ != nullptr) workbook_close(workbook_);
}

bool SpreadsheetWriter::Fail(const std::string& reason) {
    if (error_.empty()) error_ = reason;
    return false;
}

bool SpreadsheetWriter::AddSheet() {
    const std::string name = SheetName(sheetName_, ++sheets_);
    worksheet_ = workbook_add_worksheet(workbook_, name.c_str());
    if (worksheet_ == nullptr) return Fail("The sheet '" + name + "' cannot be made.");
    row_ = names_.empty() ? 0 : 1;
    for (std::size_t i = 0; i < names_.size(); ++i)
        if (!WriteCell(0, static_cast<std::uint16_t>(i), {ValueKind::Text, names_[i]}))
            return false;
    return true;
}

bool SpreadsheetWriter::WriteColumns(const std::vector<std::string>& names) {
    if (!Error().empty()) return false;
    if (names.size() > std::size_t{MostSheetColumns})
        return Fail("The table has more columns than a sheet holds.");
    names_ = names;
    return AddSheet();
}

bool SpreadsheetWriter::WriteRow(const std::vector<Cell>& row) {
    const bool full = worksheet_ == nullptr || row_ >= rowsPerSheet_;
    if (!Error().empty() || (full && !AddSheet())) return false;
    for (std::size_t i = 0; i < row.size(); ++i)
        if (!WriteCell(static_cast<std::uint32_t>(row_), static_cast<std::uint16_t>(i), row[i]))
            return false;
    ++row_;
    return true;
}

bool SpreadsheetWriter::WriteCell(std::uint32_t row, std::uint16_t column, const Cell& cell) {
    lxw_error outcome = LXW_NO_ERROR;
    const std::optional<DateTime> date =
        cell.kind == ValueKind::Date ? DateTime::Parse(cell.text) : std::nullopt;
    if (cell.kind == ValueKind::Null) return true;
    if (cell.kind == ValueKind::Number && KeepsDigits(cell.text)) {
        double number = 0;
        std::from_chars(cell.text.data(), cell.text.data() + cell.text.size(), number);
        outcome = worksheet_write_number(worksheet_, row, column, number, nullptr);
    } else if (cell.kind == ValueKind::Truth) {
        outcome = worksheet_write_boolean(worksheet_, row, column, cell.text == "True", nullptr);
    } else if (date && (date->Year() >= FirstDateYear || !date->HasDate())) {
        lxw_format* const format =
            !date->HasDate() ? time_ : (date->HasTime() ? dateAndTime_ : date_);
        outcome = worksheet_write_number(worksheet_, row, column, date->Serial(), format);
    } else if (LetterCount(cell.text) > LongestCellText) {
        return Fail("Row " + std::to_string(row) + ": a cell of a sheet holds " +
                    std::to_string(LongestCellText) +
                    " characters at most, and a text is longer. Export to delimited text instead.");
    } else {
        const std::string text(cell.text);
        outcome = worksheet_write_string(worksheet_, row, column, text.c_str(), nullptr);
    }
    return outcome == LXW_NO_ERROR || Fail(lxw_strerror(outcome));
}

bool SpreadsheetWriter::Finish() {
    if (!Error().empty() || workbook_ == nullptr) return false;
    const lxw_error outcome = workbook_close(workbook_);
    workbook_ = nullptr;
    if (outcome != LXW_NO_ERROR) return Fail(lxw_strerror(outcome));
    return file_.Finish();
}

}  // namespace mailvane
