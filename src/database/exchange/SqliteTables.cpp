#include "database/exchange/SqliteTables.h"

#include "platform/dao/file/Workspace.h"

namespace mailvane {

namespace {

SourceType TypeOf(const Field& field) {
    switch (field.type) {
        case FieldType::Boolean:
            return SourceType::Boolean;
        case FieldType::Byte:
            return SourceType::Byte;
        case FieldType::Integer:
            return SourceType::Integer;
        case FieldType::Long:
            return field.size > 0 ? SourceType::Wide : SourceType::Long;
        case FieldType::Currency:
            return SourceType::Currency;
        case FieldType::Single:
            return SourceType::Single;
        case FieldType::Double:
            return SourceType::Double;
        case FieldType::Date:
            return SourceType::Date;
        case FieldType::Memo:
            return SourceType::Memo;
        case FieldType::LongBinary:
            return SourceType::Bytes;
        case FieldType::Text:
            break;
    }
    return SourceType::Text;
}

/// As this engine writes them; other programs may hold anything in such a column.
bool IsStoredDate(std::string_view text) {
    return text.size() == 19 && text[4] == '-' && text[10] == ' ' && text[13] == ':';
}

ValueKind KindOf(StoredKind stored, FieldType type) {
    switch (stored) {
        case StoredKind::Null:
            return ValueKind::Null;
        case StoredKind::Number:
            return type == FieldType::Boolean ? ValueKind::Truth : ValueKind::Number;
        case StoredKind::Bytes:
            return ValueKind::Bytes;
        case StoredKind::Text:
            break;
    }
    return ValueKind::Text;
}

class SqliteRows final : public SourceRows {
public:
    SqliteRows(std::unique_ptr<TableScan> scan, std::int64_t total)
        : scan_(std::move(scan)), total_(total) {
        for (const Field& field : scan_->Fields())
            columns_.push_back({field.name, TypeOf(field), field.IsAutoNumber()});
    }

    const std::vector<SourceColumn>& Columns() const override { return columns_; }
    bool Next(std::vector<Cell>& row) override {
        const DaoResult<bool> came = scan_->Next();
        if (came.Failed()) error_ = came.Error().description;
        if (came.Failed() || !*came) return false;
        ++place_;
        CellsOf(*scan_, row);
        return true;
    }
    const std::string& Error() const override { return error_; }
    std::int64_t Place() const override { return place_; }
    std::int64_t Done() const override { return place_; }
    std::int64_t Total() const override { return total_; }

private:
    std::unique_ptr<TableScan> scan_;
    std::int64_t total_;
    std::vector<SourceColumn> columns_;
    std::int64_t place_ = 0;
    std::string error_;
};

class SqliteSource final : public TableSource {
public:
    explicit SqliteSource(std::shared_ptr<Database> database)
        : database_(std::move(database)), tables_(database_->UserTableNames().ValueOr({})) {}

    const std::vector<std::string>& Tables() const override { return tables_; }
    bool NamesColumns() const override { return true; }
    std::unique_ptr<SourceRows> Open(std::size_t table, bool, std::string& error) override {
        const std::string& name = tables_.at(table);
        auto scan = database_->OpenScan(name);
        if (scan.Failed()) {
            error = scan.Error().description;
            return nullptr;
        }
        error.clear();
        return std::make_unique<SqliteRows>(std::move(*scan), CountRows(name));
    }

private:
    std::int64_t CountRows(const std::string& table) const {
        const auto count = database_->OpenRecordset("SELECT Count(*) AS [n] FROM [" + table + "]");
        return count.Ok() ? (*count)->Get(std::size_t{0}).ValueOr({}).NumberOr(0) : 0;
    }

    std::shared_ptr<Database> database_;
    std::vector<std::string> tables_;
};

}  // namespace

void CellsOf(const TableScan& scan, std::vector<Cell>& row) {
    row.clear();
    for (std::size_t i = 0; i < scan.Fields().size(); ++i) {
        const FieldType type = scan.Fields()[i].type;
        Cell cell{KindOf(scan.KindOf(i), type), {}};
        if (cell.kind != ValueKind::Null) cell.text = scan.TextOf(i);
        if (cell.kind == ValueKind::Text && type == FieldType::Date && IsStoredDate(cell.text))
            cell.kind = ValueKind::Date;
        row.push_back(cell);
    }
}

std::unique_ptr<TableSource> OpenSqliteFile(const std::string& path, std::string& error) {
    const auto database = Workspace::Create()->OpenDatabase(path);
    if (database.Failed()) {
        error = database.Error().description;
        return nullptr;
    }
    return std::make_unique<SqliteSource>(*database);
}

}  // namespace mailvane
