#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "platform/os/DateTime.h"

namespace mailvane {

/// Writes the fields of a record in order, without padding or header: numbers little-endian, a
/// string with its 16-bit length in front (65,535 bytes and more: the length 0xFFFF, a 32-bit
/// length, the bytes), a flag as 16 bits (0 or -1), a date as an 8-byte serial number.
class RecordWriter {
public:
    void Long(std::int32_t value);
    void Integer(std::int16_t value);
    void Flag(bool value);
    void Text(const std::string& value);
    void Date(DateTime value);
    const std::string& Bytes() const { return bytes_; }

private:
    std::string bytes_;
};

/// Reads them back. Once the bytes are used up every field reads as 0 or "" and Complete is false.
class RecordReader {
public:
    explicit RecordReader(std::string bytes) : bytes_(std::move(bytes)) {}
    std::int32_t Long();
    std::int16_t Integer();
    bool Flag();
    std::string Text();
    DateTime Date();
    bool Complete() const { return complete_; }

private:
    const char* Take(std::size_t count);
    std::string bytes_;
    std::size_t position_ = 0;
    bool complete_ = true;
};

/// One record a file, whole. Loading gives false, and the record as far as it could be read, when
/// the file is missing or short.
bool SaveRecordFile(const std::string& path, const std::function<void(RecordWriter&)>& write);
bool LoadRecordFile(const std::string& path, const std::function<void(RecordReader&)>& read);

}  // namespace mailvane
