#pragma once

#include <cstdint>
#include <string>

namespace mailvane {

/// The addresses of the blind copies of a bulk run. The text goes on growing from one packet to the
/// next, and only a full packet, or one that has reached the number of all recipients, becomes a
/// message.
class BulkPacket {
public:
    BulkPacket(double size, std::int64_t recipients) : size_(size), recipients_(recipients) {}

    /// Counts the next recipient; true when the packet is a message with this one.
    bool Next() {
        const bool full = static_cast<double>(count_) == size_ || count_ == recipients_;
        count_ = full ? 1 : count_ + 1;
        separator_ = full ? "" : ", ";
        return full;
    }
    /// The address of the recipient counted last.
    void Append(const std::string& address) { text_.append(address).append(separator_); }
    const std::string& Text() const { return text_; }

private:
    double size_;
    std::int64_t recipients_;
    std::int64_t count_ = 1;
    const char* separator_ = "";
    std::string text_;
};

}  // namespace mailvane
