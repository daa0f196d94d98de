#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace mailvane {

enum class CharacterSet { Utf8, Utf16LittleEndian, Utf16BigEndian, Windows1252 };

struct CharacterSetName {
    CharacterSet set;
    const char* name;
};
inline constexpr std::array CharacterSetNames{
    CharacterSetName{CharacterSet::Utf8, "UTF-8"},
    CharacterSetName{CharacterSet::Windows1252, "Windows-1252"},
    CharacterSetName{CharacterSet::Utf16LittleEndian, "UTF-16LE"},
    CharacterSetName{CharacterSet::Utf16BigEndian, "UTF-16BE"},
};

/// From a mark, from the zero bytes that UTF-16 has in every line, or from what is valid UTF-8.
/// `complete` false: the bytes may end inside a character.
CharacterSet GuessCharacterSet(std::string_view bytes, bool complete);
bool IsUtf8(std::string_view bytes);

/// A text file read in blocks, as UTF-8 without its mark. What a character set does not have comes
/// as U+FFFD; bytes of a UTF-8 file come as they are, valid or not.
class DecodedFile {
public:
    static constexpr std::size_t UsualBlock = 256 * 1024;
    /// A block has 8 bytes at least.
    DecodedFile(const std::string& path, CharacterSet set, std::size_t blockSize = UsualBlock);
    ~DecodedFile();
    DecodedFile(const DecodedFile&) = delete;
    DecodedFile& operator=(const DecodedFile&) = delete;

    bool IsOpen() const { return handle_ >= 0; }
    /// Appends the next block; false at the end of the file, or when the disk fails.
    bool Append(std::string& text);
    bool Failed() const { return failed_; }
    std::int64_t BytesRead() const { return bytesRead_; }
    std::int64_t Size() const { return size_; }

private:
    class Converter;
    int handle_ = -1;
    bool failed_ = false;
    bool ended_ = false;
    std::int64_t bytesRead_ = 0;
    std::int64_t size_ = 0;
    std::size_t blockSize_;
    std::string block_;
    std::unique_ptr<Converter> converter_;  ///< null for UTF-8
};

}  // namespace mailvane
