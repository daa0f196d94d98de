// Record files: any bytes read as fields of any kind. Short ones give empty fields, never a fault;
// a record that was read whole comes back from the file that it is written to.

#include <variant>

#include "core/records/RecordFile.h"
#include "fuzz/FuzzTarget.h"

namespace mailvane::fuzz {
namespace {

using Value = std::variant<std::int32_t, std::int16_t, bool, std::string, DateTime>;

Value EmptyField(char kind) {
    switch (kind) {
        case 'L':
            return std::int32_t{0};
        case 'I':
            return std::int16_t{0};
        case 'F':
            return false;
        case 'D':
            return DateTime();
        default:
            return std::string();
    }
}

std::vector<Value> ReadRecord(std::string_view kinds, RecordReader& reader) {
    std::vector<Value> fields;
    for (const char kind : kinds)
        std::visit(reader, fields.emplace_back(EmptyField(kind)));
    return fields;
}

std::string Written(const std::vector<Value>& fields) {
    RecordWriter writer;
    for (const Value& field : fields)
        std::visit(writer, field);
    return writer.Bytes();
}

void TryRecord(std::string_view kinds, const std::string& bytes) {
    RecordReader reader(bytes);
    const std::vector<Value> fields = ReadRecord(kinds, reader);
    if (!reader.Complete()) {
        Require(ReadRecord("TLD", reader) ==
                    std::vector<Value>{std::string(), std::int32_t{0}, DateTime()},
                "behind the end there is nothing");
    }
    const std::string written = Written(fields);
    Require(!reader.Complete() || written.size() <= bytes.size(), "a record takes no more room");
    RecordReader again(written);
    Require(ReadRecord(kinds, again) == fields, "what was written is read back");
    Require(again.Complete(), "what was written is complete");
    Require(Written(fields) == written, "the same record gives the same bytes");
    for (const Value& field : fields) {
        if (const auto* date = std::get_if<DateTime>(&field))
            Require(DateTime::Parse(date->GeneralDate()).has_value(), "a date reads as one");
    }
}

}  // namespace

/// A line of the fields' kinds (L, I, F, D, and T or anything else for a text), then the record.
void TryInput(const std::string& input) {
    const std::size_t kinds = input.find('\n');
    if (kinds != std::string::npos) TryRecord(input.substr(0, kinds), input.substr(kinds + 1));
}

}  // namespace mailvane::fuzz
