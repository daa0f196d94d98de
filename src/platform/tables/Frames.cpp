#include "platform/tables/Frames.h"

#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace mailvane {

namespace {

constexpr std::size_t BlockSize = 128 * 1024;
constexpr std::size_t HeadSize = 1 + sizeof(std::uint32_t);

template <class Number>
void AppendRaw(std::string& to, Number number) {
    char bytes[sizeof number];
    std::memcpy(bytes, &number, sizeof number);
    to.append(bytes, sizeof number);
}

template <class Number>
Number TakeRaw(std::string_view& from) {
    Number number{};
    if (from.size() < sizeof number) {
        from = {};
        return number;
    }
    std::memcpy(&number, from.data(), sizeof number);
    from.remove_prefix(sizeof number);
    return number;
}

}  // namespace

FrameWriter::FrameWriter(int handle, int patience) : handle_(handle), patience_(patience) {
    StartWatch();
}

/// The signal's usual effect is the end of the process.
void FrameWriter::StartWatch() const {
    const itimerval watch{{0, 0}, {patience_, 0}};
    ::setitimer(ITIMER_PROF, &watch, nullptr);
}

void FrameWriter::Begin(char tag) {
    begun_ = buffer_.size();
    buffer_ += tag;
    AppendRaw(buffer_, std::uint32_t{0});
}

void FrameWriter::Put(std::int64_t number) {
    AppendRaw(buffer_, number);
}

void FrameWriter::Put(std::string_view text) {
    AppendRaw(buffer_, static_cast<std::uint32_t>(text.size()));
    buffer_.append(text);
}

void FrameWriter::Put(const Cell& cell) {
    buffer_ += static_cast<char>(cell.kind);
    Put(cell.text);
}

void FrameWriter::Close() {
    const auto length = static_cast<std::uint32_t>(buffer_.size() - begun_ - HeadSize);
    std::memcpy(buffer_.data() + begun_ + 1, &length, sizeof length);
    StartWatch();
    if (buffer_.size() > BlockSize) Flush();
}

void FrameWriter::Flush() {
    std::string_view rest = buffer_;
    while (!rest.empty()) {
        const ssize_t count = ::write(handle_, rest.data(), rest.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) ::_exit(1);  // the process is there for its reader alone
        rest.remove_prefix(static_cast<std::size_t>(count));
    }
    buffer_.clear();
}

void FrameWriter::Say(char tag, std::string_view text) {
    Begin(tag);
    Put(text);
    Close();
}

std::int64_t FrameBody::Number() {
    return TakeRaw<std::int64_t>(rest_);
}

std::string_view FrameBody::Text() {
    const auto length = TakeRaw<std::uint32_t>(rest_);
    const std::string_view text = rest_.substr(0, length);
    rest_.remove_prefix(text.size());
    return text;
}

Cell FrameBody::TakeCell() {
    const auto kind = TakeRaw<std::uint8_t>(rest_);
    return {static_cast<ValueKind>(kind), Text()};
}

/// At least so many bytes behind at_; false when fewer come.
bool FrameReader::Need(std::size_t count) {
    while (buffer_.size() - at_ < count) {
        buffer_.erase(0, at_);
        at_ = 0;
        const std::size_t have = buffer_.size();
        buffer_.resize(std::max(count, have + BlockSize));
        const std::size_t room = buffer_.size() - have;
        ssize_t got = 0;
        do
            got = offset_ < 0 ? ::read(handle_, buffer_.data() + have, room)
                              : ::pread(handle_, buffer_.data() + have, room, offset_);
        while (got < 0 && errno == EINTR);
        buffer_.resize(have + static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
        if (got <= 0) return false;
        if (offset_ >= 0) offset_ += got;
    }
    return true;
}

bool FrameReader::Next() {
    if (!Need(HeadSize)) return false;
    std::uint32_t length = 0;
    std::memcpy(&length, buffer_.data() + at_ + 1, sizeof length);
    if (!Need(HeadSize + length)) return false;
    tag_ = buffer_[at_];
    body_ = std::string_view(buffer_).substr(at_ + HeadSize, length);
    at_ += HeadSize + length;
    passed_ += static_cast<std::int64_t>(HeadSize + length);
    return true;
}

}  // namespace mailvane
