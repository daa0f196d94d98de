#include "store/MessageRecord.h"

#include <string>

namespace mailvane {

namespace {

void TakeValue(const DaoValue& value, std::string& field) {
    field = value.TextOrEmpty();
}
void TakeValue(const DaoValue& value, DateTime& field) {
    field = value.DateOr({});
}
void TakeValue(const DaoValue& value, std::int32_t& field) {
    field = static_cast<std::int32_t>(value.NumberOr(0));
}
void TakeValue(const DaoValue& value, std::int16_t& field) {
    field = static_cast<std::int16_t>(value.NumberOr(0));
}

template <class Field>
DaoValue ValueOf(const Field& field) {
    return field;
}
/// The column of sizes holds texts.
DaoValue ValueOf(std::int32_t size) {
    return std::to_string(size);
}
DaoValue ValueOf(std::int16_t number) {
    return int{number};
}

}  // namespace

DaoResult<MessageRecord> ReadMessageRow(const Recordset& folder) {
    MessageRecord record;
    DaoError failed;
    MessageRecord::Columns(record, [&](const char* name, auto& field) {
        if (failed.Failed()) return;
        const DaoResult<DaoValue> value = folder.Get(name);
        if (value.Ok())
            TakeValue(*value, field);
        else
            failed = value.Error();
    });
    if (failed.Failed()) return failed;
    return record;
}

DaoError WriteMessageRow(Recordset& folder, const MessageRecord& record) {
    DaoError failed;
    MessageRecord::Columns(record, [&](const char* name, const auto& field) {
        if (failed.Ok()) failed = folder.Set(name, ValueOf(field));
    });
    return failed;
}

}  // namespace mailvane
