#include "database/exchange/TableImport.h"

#include <algorithm>

#include "core/Paths.h"
#include "core/text/Text.h"
#include "database/exchange/ColumnGuess.h"
#include "database/exchange/RejectedRows.h"

namespace mailvane {

namespace {

constexpr std::size_t LongestName = 63;
constexpr std::int64_t RowsBetweenReports = 1000;
constexpr const char* Canceled = "The import was canceled; nothing was imported.";

/// The row is at fault and not the table or the file.
bool IsRowsFault(const DaoError& error) {
    constexpr int Numbers[] = {dao_error::DataConversion, dao_error::FieldTooSmall,
                               dao_error::DuplicateKey,   dao_error::RequiredField,
                               dao_error::InvalidNull,    dao_error::NullInPrimaryKey,
                               dao_error::ValidationRule};
    return std::find(std::begin(Numbers), std::end(Numbers), error.number) != std::end(Numbers);
}

std::string UsableName(const std::string& name, std::size_t number) {
    std::string usable;
    for (const char c : name) {
        const bool refused = static_cast<unsigned char>(c) < 32 ||
                             std::string_view(".,[]!'`").find(c) != std::string_view::npos;
        usable.push_back(refused ? ' ' : c);
    }
    // A character that is cut in two goes as a whole.
    if (usable.size() > LongestName) {
        std::size_t end = LongestName;
        while (end > 0 && (static_cast<unsigned char>(usable[end]) & 0xC0) == 0x80)
            --end;
        usable.resize(end);
    }
    usable = Trim(usable);
    return usable.empty() ? "Field" + std::to_string(number) : usable;
}

/// Carries one import through.
class Import {
public:
    Import(Database& database, TableSource& source, const TableImportOptions& options,
           const TableProgress& goOn)
        : database_(database),
          source_(source),
          options_(options),
          goOn_(goOn),
          rejected_(options.folder.empty() ? FolderFromPath(database.Path(), PathSeparator)
                                           : options.folder,
                    options.table) {}

    TableImportResult Run() {
        TableDef table;
        table.name = options_.table;
        if (options_.newTable && database_.TableExists(table.name))
            result_.error = MakeDaoError(dao_error::TableExists, table.name).description;
        if (!result_.error.empty() || !OpenRows() || !ChooseColumns()) return result_;
        if (options_.newTable && !GuessTypes(table)) return result_;
        const DaoError outcome = database_.Transaction([&]() -> DaoError {
            if (options_.newTable)
                if (DaoError error = database_.AppendTable(table); error.Failed()) return error;
            if (DaoError error = CopyAll(); error.Failed()) return error;
            return rejected_.Finish() ? DaoError() : Refuse(rejected_.Error());
        });
        if (outcome.Failed()) {
            if (result_.error.empty()) result_.error = outcome.description;
            result_.rows = 0;
            rejected_.Discard();
            return result_;
        }
        result_.rejected = rejected_.Count();
        result_.rejectedFile = rejected_.Path();
        return result_;
    }

private:
    bool OpenRows() {
        rows_ = source_.Open(options_.source, options_.header, result_.error);
        return rows_ != nullptr;
    }

    bool ChooseColumns() {
        columns_ = options_.columns;
        if (columns_.empty() && options_.newTable) columns_ = NewColumnNames(rows_->Columns());
        if (columns_.empty()) {
            const DaoResult<TableDef> table = database_.GetTableDef(options_.table);
            if (table.Ok()) columns_ = MatchColumns(rows_->Columns(), *table);
        }
        columns_.resize(rows_->Columns().size());
        for (std::size_t i = 0; i < columns_.size(); ++i)
            if (!columns_[i].empty()) taken_.push_back(i);
        if (taken_.empty())
            result_.error = "No column goes to a column of the '" + options_.table + "' table.";
        return result_.error.empty();
    }

    /// Reads everything once to see what the columns hold, and opens the rows anew.
    bool GuessTypes(TableDef& table) {
        std::vector<ColumnGuess> guesses(columns_.size());
        passes_ = 2;
        while (rows_->Next(row_)) {
            if (!Report()) return Fail(Canceled);
            if (!FaultOfRow().empty()) continue;
            row_.resize(columns_.size());
            for (const std::size_t i : taken_)
                guesses[i].See(row_[i]);
        }
        if (!rows_->Error().empty()) return Fail(rows_->Error());
        for (const std::size_t i : taken_) {
            SourceColumn column = rows_->Columns()[i];
            column.name = columns_[i];
            table.fields.push_back(guesses[i].FieldFor(column));
        }
        pass_ = 1;
        return OpenRows();
    }

    DaoError CopyAll() {
        std::vector<std::string> names;
        for (const std::size_t i : taken_)
            names.push_back(columns_[i]);
        auto opened = database_.OpenAppender(options_.table, names);
        if (opened.Failed()) return opened.Error();
        while (rows_->Next(row_)) {
            if (!Report()) return Refuse(Canceled);
            if (DaoError error = CopyRow(**opened); error.Failed()) return error;
        }
        return rows_->Error().empty() ? DaoError() : Refuse(rows_->Error());
    }

    /// An error that concerns this row alone puts it aside.
    DaoError CopyRow(TableAppender& table) {
        const std::string fault = FaultOfRow();
        if (!fault.empty()) return PutAside(fault);
        for (std::size_t place = 0; place < taken_.size(); ++place) {
            const std::size_t i = taken_[place];
            if (i >= row_.size() || row_[i].kind == ValueKind::Null) continue;
            const DaoError set = table.SetText(place, row_[i].text);
            if (set.Ok()) continue;
            table.Clear();
            return PutAside("Column '" + table.Fields()[place].name + "': " + set.description);
        }
        DaoError added = table.Append();
        if (added.Failed()) return IsRowsFault(added) ? PutAside(added.description) : added;
        ++result_.rows;
        return {};
    }

    std::string FaultOfRow() const {
        const std::size_t count = columns_.size();
        const bool tooLong =
            row_.size() > count &&
            std::any_of(row_.begin() + static_cast<std::ptrdiff_t>(count), row_.end(),
                        [](const Cell& cell) { return cell.kind != ValueKind::Null; });
        if (!tooLong) return rows_->Fault();
        return "It has " + std::to_string(row_.size()) + " fields, the first line has " +
               std::to_string(count) + ".";
    }

    DaoError PutAside(const std::string& reason) {
        const bool kept = rejected_.Add(rows_->Columns(), rows_->Place(), reason, row_);
        return kept ? DaoError() : Refuse(rejected_.Error());
    }

    bool Report() {
        if (++seen_ % RowsBetweenReports != 0) return true;
        const std::int64_t total = std::max<std::int64_t>(rows_->Total(), 1);
        return goOn_(pass_ * total + std::min(rows_->Done(), total), passes_ * total);
    }

    bool Fail(const std::string& reason) {
        result_.error = reason;
        return false;
    }
    DaoError Refuse(const std::string& reason) {
        result_.error = reason;
        return {dao_error::DataConversion, reason};
    }

    Database& database_;
    TableSource& source_;
    const TableImportOptions& options_;
    const TableProgress& goOn_;
    RejectedRows rejected_;
    std::unique_ptr<SourceRows> rows_;
    std::vector<Cell> row_;
    std::vector<std::string> columns_;  ///< target by source column
    std::vector<std::size_t> taken_;    ///< source columns that have a target
    std::int64_t seen_ = 0;
    std::int64_t pass_ = 0;
    std::int64_t passes_ = 1;
    TableImportResult result_;
};

}  // namespace

std::vector<std::string> NewColumnNames(const std::vector<SourceColumn>& columns) {
    constexpr std::size_t RoomForNumber = 5;
    std::vector<std::string> names;
    const auto isTaken = [&names](const std::string& name) {
        return std::any_of(names.begin(), names.end(),
                           [&](const std::string& other) { return EqualText(other, name); });
    };
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const std::string first = UsableName(columns[i].name, i + 1);
        std::string name = first;
        for (int copy = 2; isTaken(name); ++copy)
            name = UsableName(first.substr(0, LongestName - RoomForNumber), i + 1) + " " +
                   std::to_string(copy);
        names.push_back(name);
    }
    return names;
}

std::vector<std::string> MatchColumns(const std::vector<SourceColumn>& columns,
                                      const TableDef& table) {
    const bool named = std::any_of(columns.begin(), columns.end(),
                                   [](const SourceColumn& column) { return !column.name.empty(); });
    std::vector<std::string> matches;
    std::vector<const Field*> used;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const Field* field = nullptr;
        if (named) {
            for (const Field& one : table.fields)
                if (EqualText(one.name, columns[i].name) ||
                    EqualText(one.name, UsableName(columns[i].name, i + 1)))
                    field = &one;
        } else if (i < table.fields.size()) {
            field = &table.fields[i];
        }
        const bool again = std::find(used.begin(), used.end(), field) != used.end();
        matches.push_back(field && !again ? field->name : std::string());
        if (field) used.push_back(field);
    }
    return matches;
}

TableImportResult ImportTable(Database& database, TableSource& source,
                              const TableImportOptions& options, const TableProgress& goOn) {
    return Import(database, source, options, goOn).Run();
}

}  // namespace mailvane
