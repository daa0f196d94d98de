// The check before sending over a big table, against a bare walk over the same columns through the
// SQLite C API.
// Usage: MergeCheckBench [--rows N] [--folder DIR]

#include <sqlite3.h>

#include <string>

#include "MergeCampaign.h"

namespace {

using namespace mailvane;
using namespace mailvane::bench;

double WalkBare(const std::string& path, int count) {
    const Stopwatch watch;
    sqlite3* database = nullptr;
    sqlite3_stmt* rows = nullptr;
    sqlite3_open_v2(path.c_str(), &database, SQLITE_OPEN_READONLY, nullptr);
    sqlite3_prepare_v2(database, "SELECT Email, FirstName, LastName, City FROM People", -1, &rows,
                       nullptr);
    std::size_t bytes = 0;
    int walked = 0;
    for (; sqlite3_step(rows) == SQLITE_ROW; ++walked)
        for (int column = 0; column < 4; ++column)
            if (sqlite3_column_text(rows, column) != nullptr)
                bytes += static_cast<std::size_t>(sqlite3_column_bytes(rows, column));
    sqlite3_finalize(rows);
    sqlite3_close(database);
    if (walked != count || bytes == 0) Fail("The rows cannot be read.");
    return count / watch.Seconds();
}

double Check(MergeCampaign& campaign, int count) {
    const Stopwatch watch;
    const auto found = campaign.Check();
    const double seconds = watch.Seconds();
    if (!found.empty()) Fail("The check found: " + found.front().text);
    return count / seconds;
}

void Run(const Options& options) {
    const int count = options.Number("--rows", 1000000);
    const ScratchFolder scratch(options.Text("--folder", BuildFolder()));
    const std::string path = scratch.File("recipients.db");
    MakeRecipients(path, count);
    MergeCampaign campaign(scratch.File("program"), path, "Dear [FirstName] [LastName]");
    Rates bare;
    Rates check;
    for (int round = 0; round < 3; ++round) {
        bare.Add(WalkBare(path, count));
        check.Add(Check(campaign, count));
    }
    Report("merge_check_bare_walk", bare.Median(), "rows/s");
    Report("merge_check", check.Median(), "rows/s", Ratio(check, bare));
}

}  // namespace

int main(int argc, char** argv) {
    return RunBench([&] { Run(Options(argc, argv)); });
}
