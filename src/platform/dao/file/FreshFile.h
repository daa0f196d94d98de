#pragma once

#include <string>

#include "platform/dao/DaoError.h"

namespace mailvane {

/// A file under a temporary name beside the one that it is to become; removed unless it was put in
/// place.
class FreshFile {
public:
    explicit FreshFile(std::string target);
    ~FreshFile();
    FreshFile(const FreshFile&) = delete;
    FreshFile& operator=(const FreshFile&) = delete;

    const std::string& Path() const { return path_; }
    /// Takes the target's place, with the permissions of `like`, and is on the disk then.
    DaoError PutInPlace(const std::string& like);

private:
    void RemoveAll();

    std::string target_;
    std::string path_;
};

/// Removes a database's log, journal and shared memory.
void RemoveCompanions(const std::string& path);

}  // namespace mailvane
