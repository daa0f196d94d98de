#include "database/exchange/TableRuns.h"

#include <algorithm>
#include <filesystem>
#include <numeric>

#include "core/MessageBoxes.h"
#include "core/Paths.h"
#include "core/Waiting.h"
#include "core/run/LongRun.h"
#include "core/text/Text.h"
#include "platform/os/Files.h"
#include "platform/tables/AccessSource.h"
#include "platform/tables/sheets/SheetLimits.h"

namespace mailvane {

namespace {

constexpr long Steps = 1000;
constexpr const char* DatabaseExtension = ".db";

/// An import or export of several parts. It leaves nothing behind when it ends early.
class ExchangeRun {
public:
    ExchangeRun(Workbench& wb, std::size_t parts, const char* caption, const std::string& name)
        : run_(wb, {name, Holds::Recipients}), parts_(static_cast<double>(parts)) {
        if (run_.Began()) run_.ShowProgress(Steps, caption, name + "...");
        run_.howFar = [] { return std::string("the records stay as they were"); };
    }

    bool Began() const { return run_.Began(); }
    /// Its outcome is told by whoever has asked it to end.
    bool EndAsked() const { return run_.EndAsked(); }
    void EndPart() { ++part_; }
    TableProgress Reporter() {
        return [this](std::int64_t done, std::int64_t total) {
            const double share =
                total > 0 ? static_cast<double>(done) / static_cast<double>(total) : 0;
            return run_.GoesOn(static_cast<long>((part_ + share) * Steps / parts_));
        };
    }

private:
    LongRun run_;
    const double parts_;
    int part_ = 0;
};

/// The file, and what the engine may have left beside it.
void RemoveDatabase(const std::string& path) {
    for (const char* part : {"", "-wal", "-shm"})
        DeleteFile(path + part);
}

std::string OutcomeText(const TableImportOptions& import, const TableImportResult& result) {
    std::string text =
        std::to_string(result.rows) + " records imported into the '" + import.table + "' table.";
    if (result.rejected > 0)
        text += "\r\n\r\n" + std::to_string(result.rejected) +
                " records did not fit. They are kept, with line and reason, in the file '" +
                result.rejectedFile + "'.";
    return text;
}

}  // namespace

bool RunImports(Workbench& wb, Database& database, TableSource& source,
                const std::vector<TableImportOptions>& imports) {
    std::string outcomes;
    std::string failure;
    std::vector<std::string> rejectedFiles;
    bool endAsked = false;
    {
        const BusyPointer busy(wb);
        ExchangeRun run(wb, imports.size(), "Import", "Importing records");
        if (!run.Began()) return false;
        const DaoError outcome = database.Transaction([&]() -> DaoError {
            for (const TableImportOptions& import : imports) {
                const TableImportResult result =
                    ImportTable(database, source, import, run.Reporter());
                failure = result.error;
                if (!failure.empty()) return {dao_error::EngineFailure, failure};
                if (result.rejected > 0) rejectedFiles.push_back(result.rejectedFile);
                outcomes += (outcomes.empty() ? "" : "\r\n") + OutcomeText(import, result);
                run.EndPart();
            }
            return {};
        });
        if (outcome.Failed() && failure.empty()) failure = outcome.description;
        if (outcome.Failed())
            for (const std::string& file : rejectedFiles)
                DeleteFile(file);
        endAsked = run.EndAsked();
    }
    const bool done = failure.empty();
    if (done || !endAsked)
        Tell(wb, done ? outcomes : failure, done ? BoxIcon::Information : BoxIcon::Exclamation);
    return done;
}

bool RunExport(Workbench& wb, Database& database, const TableExportOptions& options) {
    TableExportResult result;
    bool endAsked = false;
    {
        const BusyPointer busy(wb);
        ExchangeRun run(wb, 1, "Export", "Exporting records");
        if (!run.Began()) return false;
        result = ExportTable(database, options, run.Reporter());
        endAsked = run.EndAsked();
    }
    if (!result.error.empty()) {
        if (!endAsked) Tell(wb, result.error, BoxIcon::Exclamation);
        return false;
    }
    std::string text =
        std::to_string(result.rows) + " records exported to the file '" + options.file + "'.";
    if (result.sheets > 1)
        text += "\r\n\r\nA sheet holds " + std::to_string(MostSheetRows) +
                " rows, so that they stand in " + std::to_string(result.sheets) + " sheets.";
    Tell(wb, text, BoxIcon::Information);
    return true;
}

std::string NewTableName(const std::string& wanted, const std::vector<std::string>& existing) {
    const auto isTaken = [&](const std::string& name) {
        return std::any_of(existing.begin(), existing.end(),
                           [&](const std::string& other) { return EqualText(other, name); });
    };
    std::string name = wanted;
    for (int number = 2; isTaken(name); ++number)
        name = wanted.substr(0, 58) + " " + std::to_string(number);
    return name;
}

std::vector<TableImportOptions> ImportsIntoNewTables(const TableSource& source,
                                                     const std::vector<std::size_t>& tables,
                                                     std::vector<std::string> existing) {
    std::vector<SourceColumn> wanted;
    for (const std::size_t table : tables)
        wanted.push_back({source.Tables().at(table)});
    const std::vector<std::string> usable = NewColumnNames(wanted);
    std::vector<TableImportOptions> imports;
    for (std::size_t i = 0; i < tables.size(); ++i) {
        TableImportOptions& import = imports.emplace_back();
        import.source = tables[i];
        import.table = NewTableName(usable[i], existing);
        existing.push_back(import.table);
    }
    return imports;
}

bool MakeDatabaseFile(Workbench& wb, const std::string& path,
                      const std::function<bool(Database&)>& fill) {
    const std::string unfinished = path + ".part";
    RemoveDatabase(unfinished);  // of a program that died
    const auto made = wb.state.MainWorkspace->CreateDatabase(unfinished);
    if (made.Failed()) {
        Tell(wb, made.Error().description, BoxIcon::Exclamation);
        return false;
    }
    const bool filled = fill(**made);
    (*made)->Close();
    std::error_code failure;
    if (filled) std::filesystem::rename(unfinished, path, failure);
    if (failure)
        Tell(wb, MakeDaoError(dao_error::DiskError, path).description, BoxIcon::Exclamation);
    if (filled && !failure) return true;
    RemoveDatabase(unfinished);
    return false;
}

bool OfferAccessImport(Workbench& wb, const std::string& accessFile, std::string& importedFile) {
    const std::string folder = FolderFromPath(accessFile, PathSeparator);
    const std::string name = FileNameFromPath(accessFile, PathSeparator, true);
    const std::string start = folder.empty() ? name : folder + PathSeparator + name;
    std::string target = start + DatabaseExtension;
    for (int number = 2; IsFile(target); ++number)
        target = start + " " + std::to_string(number) + DatabaseExtension;
    if (!AskYesNo(wb, "The file '" + accessFile +
                          "' is a Microsoft Access file. Do you want to import its tables into the "
                          "new database '" +
                          target + "' and use that? The Access file stays as it is."))
        return false;
    std::string error;
    const auto source = OpenAccessFile(accessFile, error);
    if (!source) {
        Tell(wb, error, BoxIcon::Exclamation);
        return false;
    }
    std::vector<std::size_t> tables(source->Tables().size());
    std::iota(tables.begin(), tables.end(), std::size_t{0});
    const bool made = MakeDatabaseFile(wb, target, [&](Database& database) {
        return tables.empty() ||
               RunImports(wb, database, *source, ImportsIntoNewTables(*source, tables, {}));
    });
    if (made) importedFile = target;
    return made;
}

}  // namespace mailvane
