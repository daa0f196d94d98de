#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace mailvane {

/// What another start asks of the running program.
struct StartRequest {
    std::string commandLine;  ///< "" when it only asks for the window
    std::string sender;       ///< address of the one that waits for the answer
};

/// What became of a request.
enum class HandedOver { Taken, Refused, NotAnswered };

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
    bool Writable() const { return file_ >= 0; }
    int Holder() const { return holder_; }  ///< process that holds it otherwise; 0 when unknown

    /// For the holder: other starts may hand their command lines over from now on.
    void Listen();
    std::optional<StartRequest> TakeRequest();  ///< the next one that waits
    void Answer(const StartRequest& request, bool taken) const;
    /// For the others: asks the holder to carry the command line out, and waits for its answer.
    HandedOver HandOver(const std::string& commandLine, std::chrono::milliseconds wait) const;

private:
    void WriteHolder() const;
    void ReadHolder();

    int file_ = -1;
    int socket_ = -1;
    int holder_ = 0;
    bool held_ = true;
};

}  // namespace mailvane
