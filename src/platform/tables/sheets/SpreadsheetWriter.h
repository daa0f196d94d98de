#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/tables/OutputFile.h"
#include "platform/tables/TableSource.h"
#include "platform/tables/sheets/SheetLimits.h"

struct lxw_workbook;
struct lxw_worksheet;
struct lxw_format;

namespace mailvane {

/// Writes an .xlsx workbook in bounded memory: dates as dates, numbers as numbers as far as a sheet
/// keeps their digits, everything else as text. A sheet that is full is followed by a further one
/// with the same column names.
class SpreadsheetWriter final : public TableWriter {
public:
    /// `sheet` names the first sheet, as far as a sheet can have that name.
    SpreadsheetWriter(const std::string& path, const std::string& sheet,
                      std::int64_t rowsPerSheet = MostSheetRows);
    ~SpreadsheetWriter() override;

    bool WriteColumns(const std::vector<std::string>& names) override;
    bool WriteRow(const std::vector<Cell>& row) override;
    bool Finish() override;
    const std::string& Error() const override { return error_.empty() ? file_.Error() : error_; }
    int Sheets() const { return sheets_; }  ///< so far

private:
    bool AddSheet();
    bool Fail(const std::string& reason);
    bool WriteCell(std::uint32_t row, std::uint16_t column, const Cell& cell);

    OutputFile file_;
    std::string sheetName_;
    std::int64_t rowsPerSheet_;
    lxw_workbook* workbook_ = nullptr;
    lxw_worksheet* worksheet_ = nullptr;
    lxw_format* date_ = nullptr;
    lxw_format* dateAndTime_ = nullptr;
    lxw_format* time_ = nullptr;
    std::vector<std::string> names_;
    std::int64_t row_ = 0;
    int sheets_ = 0;
    std::string error_;
};

}  // namespace mailvane
