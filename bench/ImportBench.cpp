// Rows a second that an import of delimited text takes into a new table, types guessed and values
// checked, and an export writes; against `sqlite3` with .import into the same columns and with
// -csv. Usage: ImportBench [--rows N] [--rounds N] [--folder DIR] [--sqlite3 FILE]

#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include <fstream>
#include <memory>

#include "BenchSupport.h"
#include "Tools.h"
#include "database/exchange/TableExport.h"
#include "database/exchange/TableFile.h"
#include "platform/dao/file/Workspace.h"
#include "platform/tables/text/FormatGuess.h"

namespace {

using namespace mailvane;
using namespace mailvane::bench;

/// Recipients as lists have them, 50 bytes a row.
void WriteList(const std::string& path, int rows) {
    std::ofstream file(path, std::ios::binary);
    file << "Email,First Name,City,Customer,Since,Amount\n";
    const char* names[] = {"Ana", "\xC5\xBD\xC3\xA9lie", "Bob", "Gul"};
    const char* cities[] = {"Cork", "\"Lyon, Est\"", "Zagreb", ""};
    for (int i = 0; i < rows; ++i)
        file << "u" << i << "@example.com," << names[i % 4] << ',' << cities[i % 4] << ",0"
             << i % 9973 << ",2024-0" << 1 + i % 9 << "-1" << i % 10 << ',' << i % 700 << ".5\n";
    if (!file.flush()) Fail("Cannot write " + path);
}

std::shared_ptr<Database> Make(const std::string& path) {
    auto made = Workspace::Create()->CreateDatabase(path);
    if (made.Failed()) Fail(made.Error().description);
    return *made;
}

bool GoOn(std::int64_t, std::int64_t) {
    return true;
}

double ImportSeconds(Database& database, const std::string& list, int rows) {
    const Stopwatch watch;
    TableImportOptions options;
    options.table = "List";
    std::string error;
    const auto source = OpenTableFile(list, GuessFormat(list), error);
    if (!source) Fail(error);
    options.header = FirstRowIsHeader(*source, 0);
    const TableImportResult result = ImportTable(database, *source, options, GoOn);
    if (result.rows != rows) Fail("The import is not whole. " + result.error);
    return watch.Seconds();
}

double ExportSeconds(Database& database, const std::string& file, int rows) {
    const Stopwatch watch;
    TableExportOptions options;
    options.table = "List";
    options.file = file;
    const TableExportResult result = ExportTable(database, options, GoOn);
    if (result.rows != rows) Fail("The export is not whole. " + result.error);
    return watch.Seconds();
}

/// The statement that made the table, as the file has it.
std::string TableSql(const std::string& path) {
    sqlite3* database = nullptr;
    sqlite3_stmt* query = nullptr;
    std::string sql;
    if (sqlite3_open(path.c_str(), &database) == SQLITE_OK &&
        sqlite3_prepare_v2(database, "SELECT sql FROM sqlite_schema WHERE name = 'List'", -1,
                           &query, nullptr) == SQLITE_OK &&
        sqlite3_step(query) == SQLITE_ROW)
        sql = reinterpret_cast<const char*>(sqlite3_column_text(query, 0));
    sqlite3_finalize(query);
    sqlite3_close(database);
    if (sql.empty()) Fail("The imported table is not there.");
    return sql;
}

double ToolSeconds(const std::vector<std::string>& words, int output = -1) {
    const Stopwatch watch;
    Tool(words, output).Wait();
    return watch.Seconds();
}

void Run(const Options& options) {
    const int rows = options.Number("--rows", 1500000);
    const int rounds = options.Number("--rounds", 3);
    const std::string shell = options.Text("--sqlite3", "/usr/bin/sqlite3");
    const ScratchFolder scratch(options.Text("--folder", BuildFolder()));
    const std::string list = scratch.File("list.csv");
    WriteList(list, rows);

    Rates ourImport;
    Rates shellImport;
    Rates ourExport;
    Rates shellExport;
    for (int round = 0; round < rounds; ++round) {
        const ScratchFolder folder(scratch.File(""));
        const auto database = Make(folder.File("ours.db"));
        SettleDisk();
        ourImport.Add(rows / ImportSeconds(*database, list, rows));
        const std::string peer = folder.File("peer.db");
        ToolSeconds({shell, peer, TableSql(database->Path())});
        SettleDisk();
        shellImport.Add(rows /
                        ToolSeconds({shell, peer, ".import --csv --skip 1 '" + list + "' List"}));
        SettleDisk();
        ourExport.Add(rows / ExportSeconds(*database, folder.File("ours.csv"), rows));
        SettleDisk();
        const int output = open(folder.File("peer.csv").c_str(), O_WRONLY | O_CREAT, 0666);
        shellExport.Add(
            rows / ToolSeconds({shell, "-csv", "-header", peer, "SELECT * FROM List"}, output));
        close(output);
    }
    Report("import", ourImport.Median(), "rows/s", Ratio(ourImport, shellImport), 0.4);
    Report("import_sqlite3_shell", shellImport.Median(), "rows/s");
    Report("export", ourExport.Median(), "rows/s", Ratio(ourExport, shellExport), 0.4);
    Report("export_sqlite3_shell", shellExport.Median(), "rows/s");
}

}  // namespace

int main(int argc, char** argv) {
    return RunBench([&] { Run(Options(argc, argv)); });
}
