#include "platform/tables/text/CharacterSet.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unicode/ucnv.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace mailvane {

namespace {

constexpr std::size_t LeastBlock = 8;
constexpr std::string_view Utf8Mark = "\xEF\xBB\xBF";

/// Bytes of the character that begins with `lead`; 0 when none does.
std::size_t CharacterLength(unsigned char lead) {
    if (lead < 0x80) return 1;
    if (lead < 0xC2) return 0;
    if (lead < 0xE0) return 2;
    if (lead < 0xF0) return 3;
    return lead < 0xF5 ? 4 : 0;
}

bool IsContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

/// Whether the second byte keeps the character in range: no longer form than needed, no surrogate,
/// nothing behind the last character there is.
bool SecondByteFits(unsigned char lead, unsigned char second) {
    switch (lead) {
        case 0xE0:
            return second >= 0xA0;
        case 0xED:
            return second < 0xA0;
        case 0xF0:
            return second >= 0x90;
        case 0xF4:
            return second < 0x90;
        default:
            return true;
    }
}

/// Length of the part at the front that is valid UTF-8.
std::size_t ValidLength(std::string_view bytes) {
    std::size_t i = 0;
    while (i < bytes.size()) {
        std::uint64_t eight = 0;
        if (i + sizeof eight <= bytes.size()) {
            std::memcpy(&eight, bytes.data() + i, sizeof eight);
            if ((eight & 0x8080808080808080u) == 0) {
                i += sizeof eight;
                continue;
            }
        }
        const auto lead = static_cast<unsigned char>(bytes[i]);
        const std::size_t length = CharacterLength(lead);
        if (length == 0 || i + length > bytes.size()) return i;
        for (std::size_t k = 1; k < length; ++k)
            if (!IsContinuation(bytes[i + k])) return i;
        if (length > 2 && !SecondByteFits(lead, static_cast<unsigned char>(bytes[i + 1]))) return i;
        i += length;
    }
    return i;
}

/// Whether most of every second byte, from `first`, is zero and hardly any of the others.
bool ZerosStandAt(std::string_view bytes, std::size_t first) {
    std::size_t here = 0;
    std::size_t elsewhere = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        if (bytes[i] == '\0') ++(i % 2 == first ? here : elsewhere);
    const std::size_t characters = bytes.size() / 2;
    return characters > 1 && here > characters / 2 && elsewhere < characters / 20 + 1;
}

const char* ConverterName(CharacterSet set) {
    switch (set) {
        case CharacterSet::Utf16LittleEndian:
            return "UTF-16LE";
        case CharacterSet::Utf16BigEndian:
            return "UTF-16BE";
        default:
            return "windows-1252";
    }
}

}  // namespace

bool IsUtf8(std::string_view bytes) {
    return ValidLength(bytes) == bytes.size();
}

CharacterSet GuessCharacterSet(std::string_view bytes, bool complete) {
    if (bytes.starts_with("\xFF\xFE")) return CharacterSet::Utf16LittleEndian;
    if (bytes.starts_with("\xFE\xFF")) return CharacterSet::Utf16BigEndian;
    if (bytes.starts_with(Utf8Mark)) return CharacterSet::Utf8;
    const std::string_view start = bytes.substr(0, 4096);
    if (ZerosStandAt(start, 1)) return CharacterSet::Utf16LittleEndian;
    if (ZerosStandAt(start, 0)) return CharacterSet::Utf16BigEndian;
    constexpr std::size_t LongestCut = 3;
    const std::size_t valid = ValidLength(bytes);
    const bool onlyCut = !complete && bytes.size() - valid <= LongestCut;
    return valid == bytes.size() || onlyCut ? CharacterSet::Utf8 : CharacterSet::Windows1252;
}

/// ICU's converter from one set, through UTF-16, to UTF-8.
class DecodedFile::Converter {
public:
    explicit Converter(CharacterSet set) {
        UErrorCode status = U_ZERO_ERROR;
        from_ = ucnv_open(ConverterName(set), &status);
        to_ = ucnv_open("UTF-8", &status);
        ready_ = U_SUCCESS(status) != 0;
    }
    ~Converter() {
        ucnv_close(from_);
        ucnv_close(to_);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    bool Ready() const { return ready_; }

    void Convert(std::string_view bytes, bool last, std::string& text) {
        const char* source = bytes.data();
        const char* sourceEnd = source + bytes.size();
        UErrorCode status = U_ZERO_ERROR;
        do {
            char* target = output_.data();
            status = U_ZERO_ERROR;
            ucnv_convertEx(to_, from_, &target, output_.data() + output_.size(), &source, sourceEnd,
                           pivot_.data(), &pivotSource_, &pivotTarget_,
                           pivot_.data() + pivot_.size(), 0, last ? 1 : 0, &status);
            text.append(output_.data(), target);
        } while (status == U_BUFFER_OVERFLOW_ERROR);
    }

private:
    UConverter* from_ = nullptr;
    UConverter* to_ = nullptr;
    bool ready_ = false;
    std::array<UChar, 4096> pivot_{};
    UChar* pivotSource_ = pivot_.data();
    UChar* pivotTarget_ = pivot_.data();
    std::array<char, 16384> output_{};
};

DecodedFile::DecodedFile(const std::string& path, CharacterSet set, std::size_t blockSize)
    : handle_(::open(path.c_str(), O_RDONLY | O_CLOEXEC)),
      blockSize_(std::max(blockSize, LeastBlock)) {
    struct stat status {};
    if (handle_ >= 0 && ::fstat(handle_, &status) == 0) size_ = status.st_size;
    // A short file needs no large block.
    blockSize_ = std::clamp(static_cast<std::size_t>(size_) + 1, LeastBlock, blockSize_);
    if (handle_ >= 0) ::posix_fadvise(handle_, 0, 0, POSIX_FADV_SEQUENTIAL);
    if (set == CharacterSet::Utf8) return;
    converter_ = std::make_unique<Converter>(set);
    failed_ = !converter_->Ready();
}

DecodedFile::~DecodedFile() {
    if (handle_ >= 0) ::close(handle_);
}

bool DecodedFile::Append(std::string& text) {
    if (handle_ < 0 || failed_ || ended_) return false;
    const bool first = bytesRead_ == 0;
    const std::size_t before = text.size();
    block_.resize(blockSize_);
    ssize_t count = 0;
    do
        count = ::read(handle_, block_.data(), block_.size());
    while (count < 0 && errno == EINTR);
    failed_ = count < 0;
    ended_ = count <= 0;
    if (failed_) return false;
    bytesRead_ += count;
    const std::string_view bytes(block_.data(), static_cast<std::size_t>(count));
    if (converter_)
        converter_->Convert(bytes, ended_, text);
    else
        text.append(bytes);
    if (first && std::string_view(text).substr(before).starts_with(Utf8Mark))
        text.erase(before, Utf8Mark.size());
    return !ended_ || text.size() > before;
}

}  // namespace mailvane
