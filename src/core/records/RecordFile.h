#pragma once

#include <cstdint>
#include <string>

#include "platform/os/DateTime.h"
#include "platform/os/Files.h"

namespace mailvane {

// A record is a struct that lists its fields once, in the order of its file:
//
//     static void Fields(auto& record, auto&& field) {
//         field(record.TagNumber);
//         for (auto& text : record.KeptTexts)
//             field(text);
//         Inner::Fields(record.inner, field);  // a record inside a record
//     }
//
// That list reads and writes the file (SaveRecordFile, LoadRecordFile). The type of a field says
// how it stands there: std::int32_t, std::int16_t, bool, std::string or DateTime, and no other. A
// flag that stands as 1 where it is set, not as -1, is a std::int16_t.

/// Writes the fields of a record in order, without padding or header: numbers little-endian, a
/// string with its 16-bit length in front (65,535 bytes and more: the length 0xFFFF, a 32-bit
/// length, the bytes), a bool as 16 bits (0 or -1), a date as an 8-byte serial number.
class RecordWriter {
public:
    void operator()(std::int32_t value);
    void operator()(std::int16_t value);
    void operator()(bool value);
    void operator()(const std::string& value);
    void operator()(DateTime value);
    void operator()(const char*) = delete;  // it would be a bool
    const std::string& Bytes() const { return bytes_; }

private:
    std::string bytes_;
};

/// Reads them back. Once the bytes are used up every field reads as 0 or "" and Complete is false.
class RecordReader {
public:
    explicit RecordReader(std::string bytes) : bytes_(std::move(bytes)) {}
    void operator()(std::int32_t& value);
    void operator()(std::int16_t& value);
    void operator()(bool& value);
    void operator()(std::string& value);
    void operator()(DateTime& value);
    bool Complete() const { return complete_; }

private:
    const char* Take(std::size_t count);
    std::uint64_t TakeNumber(int size);
    std::string bytes_;
    std::size_t position_ = 0;
    bool complete_ = true;
};

/// One record a file, whole.
template <class Record>
bool SaveRecordFile(const std::string& path, const Record& record) {
    RecordWriter writer;
    Record::Fields(record, writer);
    return WriteWholeFile(path, writer.Bytes());
}

/// False, and the record as far as it could be read, when the file is missing or short.
template <class Record>
bool LoadRecordFile(const std::string& path, Record& record) {
    const std::optional<std::string> bytes = ReadWholeFile(path);
    RecordReader reader(bytes.value_or(std::string()));
    Record::Fields(record, reader);
    return bytes.has_value() && reader.Complete();
}

}  // namespace mailvane
