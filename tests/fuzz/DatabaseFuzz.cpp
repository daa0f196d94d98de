// A database file that is damaged, or none at all: opening, reading and repairing it answers with
// an error or with rows, and never writes to a file that it cannot read.

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "platform/dao/file/Workspace.h"
#include "platform/os/Files.h"

namespace {

namespace fs = std::filesystem;
using namespace mailvane;

constexpr std::int64_t MostRows = 200;

/// One folder a process, removed at its end.
const std::string& Folder() {
    static const struct Scratch {
        std::string path =
            (fs::temp_directory_path() / ("database-" + std::to_string(getpid()))).string();
        Scratch() { fs::create_directories(path); }
        ~Scratch() {
            std::error_code ignored;
            fs::remove_all(path, ignored);
        }
    } scratch;
    return scratch.path;
}

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

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    for (const auto& entry : fs::directory_iterator(Folder()))
        fs::remove(entry.path());
    const std::string path = Folder() + "/d.db";
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    if (!WriteWholeFile(path, bytes)) std::abort();
    ReadAll(path);
    if (DBEngine::RepairDatabase(path).Ok()) ReadAll(path);
    if (!IsFile(path)) std::abort();
    return 0;
}
