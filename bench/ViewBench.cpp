// The database view in its window on a table of many rows: the time until the first rows are drawn,
// the jump to the last row, selecting all rows, sorting by a text column and deleting half of the
// rows, selected one by one; against `sqlite3`, which sorts the rows, takes every second one and
// deletes these one by one, or with one statement. And the memory that all of it takes.
// Usage: ViewBench [--rows N] [--rounds N] [--folder DIR] [--sqlite3 FILE]

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <string>

#include "HeadlessProgram.h"
#include "ProcessMemory.h"
#include "Tools.h"
#include "database/view/frmViewDatabase.h"
#include "platform/qt/QtWindows.h"

namespace {

using namespace mailvane;
using namespace mailvane::bench;

constexpr double MostOpenMilliseconds = 500;
constexpr double MostMegabytes = 60;
constexpr double MostOfShellTime = 1.5;

void Check(const DaoError& outcome) {
    if (outcome.Failed()) Fail(outcome.description);
}

TableDef Recipients() {
    TableDef table;
    table.name = "List";
    table.fields = {{.name = "Email"},
                    {.name = "First Name"},
                    {.name = "City", .size = 40},
                    {.name = "Customer", .type = FieldType::Long},
                    {.name = "Since", .type = FieldType::Date},
                    {.name = "Amount", .type = FieldType::Double},
                    {.name = "Active", .type = FieldType::Boolean},
                    {.name = "Notes", .type = FieldType::Memo}};
    return table;
}

/// Rows in no order of their texts.
void FillTable(const std::string& path, int rows) {
    auto database = Workspace::Create()->CreateDatabase(path);
    if (database.Failed()) Fail(database.Error().description);
    Check((*database)->AppendTable(Recipients()));
    std::vector<std::string> columns;
    for (const Field& field : Recipients().fields)
        columns.push_back(field.name);
    const char* names[] = {"Ana", "Bob", "Gul", "Chris"};
    Check((*database)->Transaction([&]() -> DaoError {
        auto list = (*database)->OpenAppender("List", columns);
        if (list.Failed()) return list.Error();
        for (int i = 0; i < rows; ++i) {
            const std::string number = std::to_string(i);
            const std::string texts[] = {
                "u" + std::to_string(i * 7919LL % 1000003) + "@example.com",
                names[i % 4],
                "City " + std::to_string(i % 997),
                number,
                "2024-0" + std::to_string(1 + i % 9) + "-1" + std::to_string(i % 10) + " 00:00:00",
                std::to_string(i % 700) + ".5",
                i % 2 == 0 ? "True" : "False",
                "Note " + number};
            for (std::size_t column = 0; column < columns.size(); ++column)
                if (DaoError failed = (*list)->SetText(column, texts[column]); failed.Failed())
                    return failed;
            if (DaoError failed = (*list)->Append(); failed.Failed()) return failed;
        }
        return {};
    }));
    (*database)->Close();
}

void Print(const char* name, double value) {
    std::printf("%s %f\n", name, value);
}

void SelectEverySecond(Grid& grid) {
    for (std::size_t row = 0; row < grid.RowCount(); row += 2)
        grid.AddSelected(grid.Rows()->BookmarkAt(row));
}

/// The program in its windows, on that database. Prints one figure a line.
void ViewOnce(const std::string& folder, const std::string& path, int argc, char** argv) {
    SystemClock clock;
    SystemProcesses processes;
    QtWindows windows(argc, argv, clock);
    PromptScript prompts;
    windows.PlayPrompts(&prompts);
    Platform platform{
        windows, clock, processes, folder, MAILVANE_SHARE_DIR, folder + "/registry.ini"};
    Workbench wb(platform);
    DatabaseService databases(wb);
    wb.forms.Load<frmMain>().Start({.dialogs = false});
    wb.state.ProjectFolder = folder + "/Projects/Bench";
    wb.state.CurrentProjectFile = wb.state.ProjectFolder + ".poc";
    MakeFolders(wb.state.ProjectFolder);
    const auto draw = [&] {
        for (int round = 0; round < 3; ++round)
            windows.PumpEvents();
    };
    draw();
    wb.forms.Get<frmSettings>().txtAccessDBPath.SetText(path);
    ForgetPeak();
    const double idle = ProcessMegabytes("VmRSS");

    const Stopwatch opening;
    auto& view = wb.forms.Get<frmViewDatabase>();
    view.Show();
    draw();
    Print("open", opening.Seconds());

    const Stopwatch jump;
    view.ActiveBar1.Press("Last");
    draw();
    Print("last", jump.Seconds());

    const Stopwatch all;
    view.ActiveBar1.Press("Select All");
    draw();
    Print("select_all", all.Seconds());

    const Stopwatch sort;
    view.SortGridByColumn(0);
    draw();
    Print("sort", sort.Seconds());
    const std::size_t rows = view.Grid1.RowCount();
    SelectEverySecond(view.Grid1);
    draw();
    view.cmdDeleteSelectedNoStatus.Press();
    draw();
    Print("delete", sort.Seconds());
    if (view.Grid1.RowCount() != rows / 2) Fail("The rows are not deleted.");
    Print("memory", ProcessMegabytes("VmHWM") - idle);
    std::fflush(stdout);
    if (prompts.Failure()) Fail(*prompts.Failure());
    std::_Exit(0);
}

double ShellSeconds(const std::string& shell, const std::string& path, const std::string& sql) {
    const Stopwatch watch;
    bench::Tool({shell, path, sql}).Wait();
    return watch.Seconds();
}

/// The statements for single rows are made and read in the same time.
double OneByOneSeconds(const std::string& shell, const std::string& path,
                       const ScratchFolder& scratch) {
    const std::string statements = scratch.File("delete.sql");
    const std::string select =
        "SELECT 'DELETE FROM List WHERE rowid = ' || r || ';' FROM (SELECT rowid AS r, "
        "row_number() "
        "OVER (ORDER BY Email) AS n FROM List) WHERE n % 2 = 1;";
    const Stopwatch watch;
    bench::Tool({shell, path, ".output '" + statements + "'", "SELECT 'BEGIN;';", select,
                 "SELECT 'COMMIT;';"})
        .Wait();
    bench::Tool({shell, path, ".read '" + statements + "'"}).Wait();
    return watch.Seconds();
}

std::map<std::string, double> ViewFigures(const std::string& folder, const std::string& path) {
    const std::string figures = folder + ".txt";
    const int output = open(figures.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    bench::Tool({BuildFolder() + "/ViewBench", "--once", folder, path}, output).Wait();
    close(output);
    std::map<std::string, double> values;
    std::ifstream file(figures);
    std::string name;
    double value = 0;
    while (file >> name >> value)
        values[name] = value;
    if (!values.contains("memory")) Fail("The view did not come to its end.");
    return values;
}

std::string FreshCopy(const std::string& path, const std::string& target) {
    std::filesystem::copy_file(path, target, std::filesystem::copy_options::overwrite_existing);
    SettleDisk();
    return target;
}

void Run(const Options& options) {
    const int rows = options.Number("--rows", 1000000);
    const int rounds = options.Number("--rounds", 3);
    const std::string shell = options.Text("--sqlite3", "/usr/bin/sqlite3");
    const ScratchFolder scratch(options.Text("--folder", BuildFolder()));
    const std::string whole = scratch.File("list.db");
    FillTable(whole, rows);

    std::map<std::string, Rates> view;
    Rates shellKeys;
    Rates shellSingle;
    Rates shellStatement;
    for (int round = 0; round < rounds; ++round) {
        const std::string path = FreshCopy(whole, scratch.File("ours.db"));
        for (const auto& [name, value] : ViewFigures(scratch.File("program"), path))
            view[name].Add(value);
        const std::string peer = FreshCopy(whole, scratch.File("peer.db"));
        shellKeys.Add(
            ShellSeconds(shell, peer, "SELECT rowid FROM List; SELECT * FROM List LIMIT 50"));
        shellSingle.Add(OneByOneSeconds(shell, peer, scratch));
        FreshCopy(whole, peer);
        shellStatement.Add(ShellSeconds(
            shell, peer,
            "DELETE FROM List WHERE rowid IN (SELECT r FROM (SELECT rowid AS r, row_number() OVER "
            "(ORDER BY Email) AS n FROM List) WHERE n % 2 = 1)"));
    }
    const auto milliseconds = [&](const char* name) { return view[name].Median() * 1000; };
    Report("view_open", milliseconds("open"), "ms", MostOpenMilliseconds / milliseconds("open"), 1);
    Report("view_open_sqlite3_shell", shellKeys.Median() * 1000, "ms");
    Report("view_last_row", milliseconds("last"), "ms");
    Report("view_select_all", milliseconds("select_all"), "ms");
    Report("view_sort", milliseconds("sort"), "ms");
    Report("view_sort_delete_half", milliseconds("delete"), "ms",
           Ratio(shellSingle, view["delete"]), 1 / MostOfShellTime);
    Report("view_sort_delete_half_sqlite3_shell", shellSingle.Median() * 1000, "ms");
    Report("view_sort_delete_half_sqlite3_statement", shellStatement.Median() * 1000, "ms",
           Ratio(shellStatement, view["delete"]));
    // Like the other targets a least ratio: what is allowed over what is taken.
    Report("view_memory_peak_over_idle", view["memory"].Median(), "MB",
           MostMegabytes / view["memory"].Median(), 1);
}

}  // namespace

int main(int argc, char** argv) {
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    return RunBench([&] {
        if (argc == 4 && std::string(argv[1]) == "--once") ViewOnce(argv[2], argv[3], argc, argv);
        Run(Options(argc, argv));
    });
}
