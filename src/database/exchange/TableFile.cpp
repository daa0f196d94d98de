#include "database/exchange/TableFile.h"

#include <fstream>

#include "database/exchange/SqliteTables.h"
#include "platform/tables/AccessSource.h"
#include "platform/tables/sheets/SpreadsheetSource.h"
#include "platform/tables/text/DelimitedSource.h"

namespace mailvane {

namespace {

bool BeginsWith(const std::string& path, std::string_view mark) {
    std::string head(mark.size(), '\0');
    std::ifstream file(path, std::ios::binary);
    file.read(head.data(), static_cast<std::streamsize>(head.size()));
    return file && head == mark;
}

}  // namespace

TableFileKind KindOfTableFile(const std::string& path) {
    using namespace std::string_view_literals;
    if (IsAccessFile(path)) return TableFileKind::Access;
    if (IsSpreadsheetFile(path)) return TableFileKind::Spreadsheet;
    if (BeginsWith(path, "SQLite format 3\0"sv)) return TableFileKind::Sqlite;
    return TableFileKind::Delimited;
}

std::unique_ptr<TableSource> OpenTableFile(const std::string& path, const DelimitedFormat& format,
                                           std::string& error) {
    error.clear();
    switch (KindOfTableFile(path)) {
        case TableFileKind::Access:
            return OpenAccessFile(path, error);
        case TableFileKind::Spreadsheet:
            return OpenSpreadsheet(path, error);
        case TableFileKind::Sqlite:
            return OpenSqliteFile(path, error);
        case TableFileKind::Delimited:
            break;
    }
    if (BeginsWith(path, "\xD0\xCF\x11\xE0")) {
        error = "The file '" + path +
                "' is an older spreadsheet, or one with a password. Save it as .xlsx or .ods "
                "without a password first.";
        return nullptr;
    }
    return std::make_unique<DelimitedSource>(path, format);
}

}  // namespace mailvane
