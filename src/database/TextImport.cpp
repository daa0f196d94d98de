#include "database/TextImport.h"

#include <fstream>

#include "core/Paths.h"
#include "core/Text.h"
#include "database/DelimitedReader.h"

namespace mailvane {

namespace {

using Record = std::vector<DelimitedField>;

constexpr std::size_t LongestName = 63;
constexpr int RowsBetweenReports = 200;

/// A column name that the engine takes: what names cannot hold becomes a blank.
std::string ColumnName(const std::string& heading, std::size_t number) {
    std::string name;
    for (const char c : heading) {
        const bool refused = static_cast<unsigned char>(c) < 32 ||
                             std::string_view(".,[]!'`").find(c) != std::string_view::npos;
        name.push_back(refused ? ' ' : c);
    }
    name = Trim(name.substr(0, LongestName));
    return name.empty() ? "Field" + std::to_string(number) : name;
}

TableDef TableFor(const std::string& name, const Record& first, bool header) {
    TableDef table;
    table.name = name;
    for (std::size_t i = 0; i < first.size(); ++i) {
        Field field;
        field.name = ColumnName(header ? first[i].text : std::string(), i + 1);
        for (int copy = 2; table.FindField(field.name); ++copy)
            field.name = ColumnName(header ? first[i].text : std::string(), i + 1)
                             .substr(0, LongestName - 4) +
                         " " + std::to_string(copy);
        field.allowZeroLength = true;
        table.fields.push_back(field);
    }
    return table;
}

std::string AtLine(const DelimitedReader& reader, const std::string& what) {
    return "Line " + std::to_string(reader.Line()) + ": " + what;
}

DaoError AddRow(Recordset& rows, const Record& record) {
    if (DaoError error = rows.AddNew(); error.Failed()) return error;
    for (std::size_t i = 0; i < record.size(); ++i) {
        if (record[i].text.empty() && !record[i].quoted) continue;
        if (DaoError error = rows.Set(i, DaoValue(record[i].text)); error.Failed()) return error;
    }
    return rows.Update();
}

/// Carries one import through; `error` is the reason when it fails.
class Import {
public:
    Import(Database& database, const TextImportOptions& options,
           const std::function<bool(std::int64_t)>& goOn)
        : database_(database),
          options_(options),
          goOn_(goOn),
          input_(options.file, std::ios::binary),
          reader_(input_) {}

    TextImportResult Run() {
        if (!input_) return Failed("The file '" + options_.file + "' cannot be read.");
        if (!reader_.Next(record_)) return Failed("The file '" + options_.file + "' is empty.");
        const DaoError outcome = database_.Transaction([this] { return CopyAll(); });
        if (outcome.Failed() && result_.error.empty()) result_.error = outcome.description;
        if (outcome.Failed()) result_.rows = 0;
        return result_;
    }

private:
    TextImportResult Failed(const std::string& reason) {
        result_.error = reason;
        return result_;
    }

    DaoError Refuse(const std::string& reason) {
        result_.error = reason;
        return {dao_error::DataConversion, reason};
    }

    DaoError CopyAll() {
        const std::size_t columns = record_.size();
        const TableDef table = TableFor(options_.table, record_, options_.header);
        if (DaoError error = database_.AppendTable(table); error.Failed()) return error;
        auto rows = database_.OpenRecordset(table.name);
        if (rows.Failed()) return rows.Error();
        bool more = !options_.header || reader_.Next(record_);
        for (; more; more = reader_.Next(record_)) {
            if (record_.size() > columns)
                return Refuse(AtLine(reader_, "it has " + std::to_string(record_.size()) +
                                                  " fields, the first line has " +
                                                  std::to_string(columns) + "."));
            if (DaoError error = AddRow(**rows, record_); error.Failed())
                return Refuse(AtLine(reader_, error.description));
            ++result_.rows;
            if (result_.rows % RowsBetweenReports == 0 &&
                !goOn_(static_cast<std::int64_t>(reader_.BytesRead())))
                return Refuse("The import was canceled; nothing was imported.");
        }
        if (reader_.EndedInsideQuotes())
            return Refuse(AtLine(reader_, "a quotation mark is never closed."));
        return {};
    }

    Database& database_;
    const TextImportOptions& options_;
    const std::function<bool(std::int64_t)>& goOn_;
    std::ifstream input_;
    DelimitedReader reader_;
    Record record_;
    TextImportResult result_;
};

}  // namespace

TextImportResult ImportText(Database& database, const TextImportOptions& options,
                            const std::function<bool(std::int64_t)>& goOn) {
    return Import(database, options, goOn).Run();
}

}  // namespace mailvane
