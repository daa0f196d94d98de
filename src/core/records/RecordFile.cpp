#include "core/records/RecordFile.h"

#include <bit>

namespace mailvane {

namespace {

constexpr std::uint16_t LongTextMark = 0xFFFF;

void AppendNumber(std::string& bytes, std::uint64_t value, int size) {
    for (int i = 0; i < size; ++i)
        bytes.push_back(static_cast<char>(value >> (8 * i) & 0xFF));
}

}  // namespace

void RecordWriter::operator()(std::int32_t value) {
    AppendNumber(bytes_, static_cast<std::uint32_t>(value), 4);
}

void RecordWriter::operator()(std::int16_t value) {
    AppendNumber(bytes_, static_cast<std::uint16_t>(value), 2);
}

void RecordWriter::operator()(bool value) {
    AppendNumber(bytes_, value ? 0xFFFF : 0, 2);
}

void RecordWriter::operator()(const std::string& value) {
    if (value.size() < LongTextMark) {
        AppendNumber(bytes_, value.size(), 2);
    } else {
        AppendNumber(bytes_, LongTextMark, 2);
        AppendNumber(bytes_, value.size(), 4);
    }
    bytes_.append(value);
}

void RecordWriter::operator()(DateTime value) {
    AppendNumber(bytes_, std::bit_cast<std::uint64_t>(value.Serial()), 8);
}

const char* RecordReader::Take(std::size_t count) {
    if (count > bytes_.size() - position_) {
        position_ = bytes_.size();
        complete_ = false;
        return nullptr;
    }
    const char* taken = bytes_.data() + position_;
    position_ += count;
    return taken;
}

/// 0 when the bytes are missing.
std::uint64_t RecordReader::TakeNumber(int size) {
    const char* bytes = Take(static_cast<std::size_t>(size));
    std::uint64_t number = 0;
    for (int i = 0; bytes != nullptr && i < size; ++i)
        number |= std::uint64_t{static_cast<unsigned char>(bytes[i])} << (8 * i);
    return number;
}

void RecordReader::operator()(std::int32_t& value) {
    value = static_cast<std::int32_t>(TakeNumber(4));
}

void RecordReader::operator()(std::int16_t& value) {
    value = static_cast<std::int16_t>(TakeNumber(2));
}

void RecordReader::operator()(bool& value) {
    value = TakeNumber(2) != 0;
}

void RecordReader::operator()(std::string& value) {
    std::uint64_t length = TakeNumber(2);
    if (length == LongTextMark) length = TakeNumber(4);
    const char* text = Take(length);
    value = text == nullptr ? std::string() : std::string(text, length);
}

void RecordReader::operator()(DateTime& value) {
    value = DateTime::FromSerial(std::bit_cast<double>(TakeNumber(8)));
}

}  // namespace mailvane
