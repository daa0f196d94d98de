#include "core/records/RecordFile.h"

#include <bit>

#include "platform/os/Files.h"

namespace mailvane {

namespace {

constexpr std::uint16_t LongTextMark = 0xFFFF;

void AppendNumber(std::string& bytes, std::uint64_t value, int size) {
    for (int i = 0; i < size; ++i)
        bytes.push_back(static_cast<char>(value >> (8 * i) & 0xFF));
}

/// 0 when the bytes are missing.
std::uint64_t NumberIn(const char* bytes, int size) {
    std::uint64_t value = 0;
    for (int i = 0; bytes != nullptr && i < size; ++i)
        value |= std::uint64_t{static_cast<unsigned char>(bytes[i])} << (8 * i);
    return value;
}

}  // namespace

void RecordWriter::Long(std::int32_t value) {
    AppendNumber(bytes_, static_cast<std::uint32_t>(value), 4);
}

void RecordWriter::Integer(std::int16_t value) {
    AppendNumber(bytes_, static_cast<std::uint16_t>(value), 2);
}

void RecordWriter::Flag(bool value) {
    Integer(value ? -1 : 0);
}

void RecordWriter::Text(const std::string& value) {
    if (value.size() < LongTextMark) {
        AppendNumber(bytes_, value.size(), 2);
    } else {
        AppendNumber(bytes_, LongTextMark, 2);
        AppendNumber(bytes_, value.size(), 4);
    }
    bytes_.append(value);
}

void RecordWriter::Date(DateTime value) {
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

std::int32_t RecordReader::Long() {
    return static_cast<std::int32_t>(NumberIn(Take(4), 4));
}

std::int16_t RecordReader::Integer() {
    return static_cast<std::int16_t>(NumberIn(Take(2), 2));
}

bool RecordReader::Flag() {
    return Integer() != 0;
}

std::string RecordReader::Text() {
    std::uint64_t length = NumberIn(Take(2), 2);
    if (length == LongTextMark) length = NumberIn(Take(4), 4);
    const char* text = Take(length);
    return text == nullptr ? std::string() : std::string(text, length);
}

DateTime RecordReader::Date() {
    return DateTime::FromSerial(std::bit_cast<double>(NumberIn(Take(8), 8)));
}

bool SaveRecordFile(const std::string& path, const std::function<void(RecordWriter&)>& write) {
    RecordWriter writer;
    write(writer);
    return WriteWholeFile(path, writer.Bytes());
}

bool LoadRecordFile(const std::string& path, const std::function<void(RecordReader&)>& read) {
    const std::optional<std::string> bytes = ReadWholeFile(path);
    RecordReader reader(bytes.value_or(std::string()));
    read(reader);
    return bytes.has_value() && reader.Complete();
}

}  // namespace mailvane
