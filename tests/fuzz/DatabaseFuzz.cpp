// A database file that is damaged, or none at all: opening, reading and repairing it answers with
// an error or with rows, and never writes to a file that it cannot read.

#include "fuzz/FuzzTarget.h"
#include "platform/dao/file/Workspace.h"
#include "platform/os/Files.h"
#include "support/TempFolder.h"

namespace mailvane::fuzz {
namespace {

constexpr std::int64_t MostRows = 200;

void ReadTable(Database& database, const std::string& table) {
    const auto rows = database.OpenRecordset(table);
    if (rows.Failed()) return;
    for (std::int64_t i = 0; i < MostRows && !(*rows)->EndOfFile(); ++i) {
        for (std::size_t column = 0; column < (*rows)->Fields().size(); ++column)
            static_cast<void>((*rows)->Get(column));
        if ((*rows)->MoveNext().Failed()) return;
    }
}

void ReadAll(const std::string& path) {
    const auto workspace = Workspace::Create();
    const auto database = workspace->OpenDatabase(path);
    if (database.Ok())
        for (const std::string& table : (*database)->TableNames().ValueOr({}))
            ReadTable(**database, table);
    workspace->Close();
}

}  // namespace

void TryInput(const std::string& input) {
    const test::TempFolder folder;
    const std::string path = folder.Write("d.db", input);
    ReadAll(path);
    if (DBEngine::RepairDatabase(path).Ok()) ReadAll(path);
    Require(IsFile(path), "the file stays");
}

}  // namespace mailvane::fuzz
