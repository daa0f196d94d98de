#include "platform/dao/file/FreshFile.h"

#include <filesystem>
#include <utility>

#include "platform/dao/file/Connection.h"

namespace mailvane {

namespace {

void RemoveFile(const std::string& path) {
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
}

}  // namespace

void RemoveCompanions(const std::string& path) {
    for (const char* part : {"-wal", "-shm", "-journal"})
        RemoveFile(path + part);
}

FreshFile::FreshFile(std::string target)
    : target_(std::move(target)), path_(target_ + ".mailvane-new") {
    RemoveAll();
}

FreshFile::~FreshFile() {
    RemoveAll();
}

void FreshFile::RemoveAll() {
    RemoveFile(path_);
    RemoveFile(path_ + ".lock");
    RemoveCompanions(path_);
}

DaoError FreshFile::PutInPlace(const std::string& like) {
    std::error_code failure;
    std::filesystem::permissions(path_, std::filesystem::status(like, failure).permissions(),
                                 failure);
    if (failure || !FlushToDisk(path_)) return MakeDaoError(dao_error::DiskError, path_);
    std::filesystem::rename(path_, target_, failure);
    if (failure) return MakeDaoError(dao_error::DiskError, failure.message());
    const std::filesystem::path folder = std::filesystem::path(target_).parent_path();
    // The new name is there for everyone; only a power failure could still lose it.
    FlushToDisk(folder.empty() ? "." : folder.string());
    return {};
}

}  // namespace mailvane
