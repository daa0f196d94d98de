#include "core/ProgramFolder.h"

#include <filesystem>
#include <system_error>

#include "platform/os/Files.h"

namespace mailvane {

namespace {

namespace fs = std::filesystem;

bool CopyWhenMissing(const fs::path& from, const fs::path& to) {
    if (IsFile(to.string())) return true;
    const std::optional<std::string> content = ReadWholeFile(from.string());
    return content && MakeFolders(to.parent_path().string()) &&
           WriteWholeFile(to.string(), *content);
}

}  // namespace

bool PrepareProgramFolder(Workbench& wb) {
    const fs::path program = wb.platform.programFolder;
    const fs::path share = wb.platform.shareFolder;
    if (!MakeFolders((program / "Projects").string())) return false;
    bool complete = true;
    for (const char* name : {"prct.mp", "msge.mg", "subs.msg", "unsubs.msg", ".shd"})
        complete = CopyWhenMissing(share / name, program / name) && complete;
    std::error_code error;
    for (const auto& entry : fs::recursive_directory_iterator(share / "help", error)) {
        if (entry.is_regular_file(error))
            complete = CopyWhenMissing(entry.path(), program / fs::relative(entry.path(), share)) &&
                       complete;
    }
    return complete && !error;
}

}  // namespace mailvane
