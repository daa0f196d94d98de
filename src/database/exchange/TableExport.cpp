#include "database/exchange/TableExport.h"

#include <algorithm>

#include "core/text/Text.h"
#include "database/exchange/SqliteTables.h"
#include "platform/tables/sheets/SpreadsheetWriter.h"
#include "platform/tables/text/DelimitedWriter.h"

namespace mailvane {

namespace {

constexpr std::int64_t RowsBetweenReports = 1000;
constexpr const char* Canceled = "The export was canceled; no file was written.";
constexpr std::string_view Midnight = " 00:00:00";

std::string HexOf(std::string_view bytes) {
    constexpr const char* Digits = "0123456789ABCDEF";
    std::string hex;
    hex.reserve(bytes.size() * 2);
    for (const char byte : bytes) {
        hex += Digits[static_cast<unsigned char>(byte) >> 4];
        hex += Digits[static_cast<unsigned char>(byte) & 15];
    }
    return hex;
}

/// Carries one export through.
class Export {
public:
    Export(Database& database, const TableExportOptions& options, const TableProgress& goOn)
        : database_(database), options_(options), goOn_(goOn) {}

    TableExportResult Run() {
        if (IsSpreadsheetName(options_.file)) {
            SpreadsheetWriter writer(options_.file, options_.table);
            WriteAll(writer);
            result_.sheets = writer.Sheets();
        } else {
            DelimitedWriter writer(options_.file, options_.format);
            WriteAll(writer);
        }
        if (!result_.error.empty()) result_.rows = 0;
        return result_;
    }

private:
    void WriteAll(TableWriter& writer) {
        auto scan = database_.OpenScan(options_.table);
        if (scan.Failed()) {
            result_.error = scan.Error().description;
            return;
        }
        std::vector<std::string> names;
        for (const Field& field : (*scan)->Fields())
            names.push_back(field.name);
        const bool done = (!options_.header || writer.WriteColumns(names)) &&
                          WriteRows(**scan, writer) && writer.Finish();
        if (!done && result_.error.empty()) result_.error = writer.Error();
    }

    bool WriteRows(TableScan& scan, TableWriter& writer) {
        total_ = options_.rows ? static_cast<std::int64_t>(options_.rows->size()) : CountRows();
        if (!options_.rows) {
            for (;;) {
                const DaoResult<bool> row = scan.Next();
                if (row.Failed()) return Fail(row.Error().description);
                if (!*row) return true;
                if (!WriteRow(scan, writer)) return false;
            }
        }
        for (const Bookmark bookmark : *options_.rows) {
            const DaoResult<bool> row = scan.Find(bookmark);
            if (row.Failed()) return Fail(row.Error().description);
            if (*row && !WriteRow(scan, writer)) return false;
        }
        return true;
    }

    bool WriteRow(const TableScan& scan, TableWriter& writer) {
        CellsOf(scan, row_);
        for (std::size_t i = 0; i < row_.size(); ++i) {
            Cell& cell = row_[i];
            if (cell.kind == ValueKind::Date && cell.text.ends_with(Midnight))
                cell.text.remove_suffix(Midnight.size());
            if (cell.kind != ValueKind::Bytes) continue;
            hex_.resize(row_.size());
            hex_[i] = HexOf(cell.text);
            cell.text = hex_[i];
        }
        ++result_.rows;
        if (result_.rows % RowsBetweenReports == 0 && !goOn_(result_.rows, total_))
            return Fail(Canceled);
        return writer.WriteRow(row_);
    }

    std::int64_t CountRows() const {
        const auto count =
            database_.OpenRecordset("SELECT Count(*) AS [n] FROM [" + options_.table + "]");
        return count.Ok() ? (*count)->Get(std::size_t{0}).ValueOr({}).NumberOr(0) : 0;
    }

    bool Fail(const std::string& reason) {
        result_.error = reason;
        return false;
    }

    Database& database_;
    const TableExportOptions& options_;
    const TableProgress& goOn_;
    std::int64_t total_ = 0;
    std::vector<Cell> row_;
    std::vector<std::string> hex_;
    TableExportResult result_;
};

}  // namespace

bool IsSpreadsheetName(const std::string& file) {
    return ToLower(file).ends_with(".xlsx");
}

TableExportResult ExportTable(Database& database, const TableExportOptions& options,
                              const TableProgress& goOn) {
    return Export(database, options, goOn).Run();
}

}  // namespace mailvane
