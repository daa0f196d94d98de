#pragma once

#include <string>

namespace mailvane {

/// Keeps a folder to one running program: two that write the same files would spoil each other's
/// work. The claim ends with the process, however it ends.
class FolderClaim {
public:
    /// Makes the folder when it is missing. A folder in which no file can be made is nobody's, and
    /// counts as held.
    explicit FolderClaim(const std::string& folder);
    ~FolderClaim();
    FolderClaim(const FolderClaim&) = delete;
    FolderClaim& operator=(const FolderClaim&) = delete;

    bool Held() const { return held_; }
    int Holder() const { return holder_; }  ///< process that holds it otherwise; 0 when unknown

    /// For the holder, when it has a window to show: other starts may ask for it from now on.
    void Listen();
    bool TakeShowRequest();  ///< one has asked since the last call
    /// For the others: asks the holder to show its window. False when it does not listen.
    bool AskToShow() const;

private:
    void WriteHolder() const;
    void ReadHolder();

    int file_ = -1;
    int socket_ = -1;
    int holder_ = 0;
    bool held_ = true;
};

}  // namespace mailvane
