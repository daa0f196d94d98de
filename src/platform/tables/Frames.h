#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/tables/TableSource.h"

namespace mailvane {

/// What a reading process says, one frame after another: a tag and a body of numbers and texts.
namespace frame {
inline constexpr char Table = 'T';    ///< name; rows that follow are the table's
inline constexpr char Column = 'C';   ///< name, type, auto number
inline constexpr char Row = 'R';      ///< place, then the cells: kind, text
inline constexpr char Failure = 'E';  ///< text of the error; nothing follows
inline constexpr char End = '.';      ///< all has been said
}  // namespace frame

class FrameWriter {
public:
    /// The process ends when it computes for `patience` seconds without closing a frame.
    FrameWriter(int handle, int patience);

    void Begin(char tag);
    void Put(std::int64_t number);
    void Put(std::string_view text);
    void Put(const Cell& cell);
    void Close();  ///< the frame that was begun
    /// Ends the process when nobody reads any more.
    void Flush();
    void Say(char tag, std::string_view text = {});

private:
    void StartWatch() const;
    int handle_;
    int patience_;
    std::string buffer_;
    std::size_t begun_ = 0;
};

/// Takes the body of a frame apart. A body that is too short gives 0, "" and no cell.
class FrameBody {
public:
    explicit FrameBody(std::string_view body = {}) : rest_(body) {}
    std::int64_t Number();
    std::string_view Text();
    bool AtEnd() const { return rest_.empty(); }
    Cell TakeCell();

private:
    std::string_view rest_;
};

class FrameReader {
public:
    /// Reads from `offset` of a file, or with a negative one a pipe.
    explicit FrameReader(int handle, std::int64_t offset = -1) : handle_(handle), offset_(offset) {}

    /// False at the end of what was written.
    bool Next();
    char Tag() const { return tag_; }
    FrameBody Body() const { return FrameBody(body_); }
    std::int64_t Passed() const { return passed_; }  ///< bytes of the frames so far

private:
    bool Need(std::size_t count);
    int handle_;
    std::int64_t offset_;
    std::string buffer_;
    std::size_t at_ = 0;
    char tag_ = frame::End;
    std::string_view body_;
    std::int64_t passed_ = 0;
};

}  // namespace mailvane
