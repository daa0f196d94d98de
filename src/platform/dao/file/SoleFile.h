#pragma once

#include <memory>
#include <string>

#include "platform/dao/DaoError.h"
#include "platform/dao/file/FileLock.h"

namespace mailvane {

class Connection;

/// A closed database file of which nobody else can read or write anything, in this program or in
/// another, until the object goes: also after another file has taken its name.
class SoleFile {
public:
    /// Follows links. 3024 and 3343 when there is no such file, 3027 for one that is marked
    /// read-only, 3356 when anyone has it open.
    static DaoResult<SoleFile> Take(const std::string& path);
    ~SoleFile();
    SoleFile(SoleFile&& other) noexcept;
    SoleFile& operator=(SoleFile&&) = delete;

    const std::string& Path() const { return path_; }  ///< links followed
    DaoResult<std::shared_ptr<Connection>> Open() const;

private:
    SoleFile(std::string path, FileLock lock, int handle);

    std::string path_;
    FileLock lock_;
    int handle_;  ///< holds SQLite's own exclusive lock
};

}  // namespace mailvane
