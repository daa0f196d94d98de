#include <filesystem>
#include <iostream>

#include "platform/os/Files.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace fs = std::filesystem;

bool Replay(const fs::path& file) {
    const auto bytes = mailvane::ReadWholeFile(file.string());
    if (!bytes) {
        std::cerr << file << " cannot be read\n";
        return false;
    }
    std::cout << file.filename().string() << std::endl;  // the last one named is the one that fails
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes->data()), bytes->size());
    return true;
}

bool ReplayFolder(const fs::path& folder) {
    std::error_code error;
    std::size_t replayed = 0;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
        if (!Replay(entry.path())) return false;
        ++replayed;
    }
    if (replayed == 0) std::cerr << folder << " has no files\n";
    return replayed > 0;
}

}  // namespace

/// Feeds every file of the folders named on the command line to the fuzz target it is linked with.
int main(int count, char** arguments) {
    for (int i = 1; i < count; ++i)
        if (!ReplayFolder(arguments[i])) return 1;
    return count > 1 ? 0 : 1;
}
