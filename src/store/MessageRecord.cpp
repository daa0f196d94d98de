#include "store/MessageRecord.h"

#include <string>
#include <utility>

namespace mailvane {

namespace {

/// The columns of a folder that a record has a text for, in the order in which rows are read.
constexpr std::pair<const char*, std::string MessageRecord::*> TextColumns[] = {
    {"From", &MessageRecord::From},
    {"To", &MessageRecord::To},
    {"Subject", &MessageRecord::Subject},
    {"Body", &MessageRecord::Body},
    {"CC", &MessageRecord::CC},
    {"BCC", &MessageRecord::BCC},
    {"Attach", &MessageRecord::Attach},
    {"AllHeaders", &MessageRecord::AllHeaders},
    {"Priority", &MessageRecord::Priority},
    {"Mailer", &MessageRecord::Mailer},
    {"ReplyTo", &MessageRecord::ReplyTo},
    {"ContentType", &MessageRecord::ContentType},
    {"HTML", &MessageRecord::HTML},
    {"HTMLCode", &MessageRecord::HTMLCode},
    {"Status", &MessageRecord::Status},
};

}  // namespace

DaoResult<MessageRecord> ReadMessageRow(const Recordset& folder) {
    MessageRecord record;
    for (const auto& [column, text] : TextColumns) {
        const DaoResult<DaoValue> value = folder.Get(column);
        if (value.Failed()) return value.Error();
        record.*text = value->TextOrEmpty();
    }
    const DaoResult<DaoValue> date = folder.Get("Date");
    if (date.Failed()) return date.Error();
    const DaoResult<DaoValue> size = folder.Get("Size");
    if (size.Failed()) return size.Error();
    const DaoResult<DaoValue> retries = folder.Get("Retries");
    if (retries.Failed()) return retries.Error();
    record.Date = date->DateOr({});
    record.Size = static_cast<std::int32_t>(size->NumberOr(0));
    record.Retries = static_cast<std::int16_t>(retries->NumberOr(0));
    return record;
}

DaoError WriteMessageRow(Recordset& folder, const MessageRecord& record) {
    const std::pair<const char*, DaoValue> values[] = {
        {"From", record.From},
        {"To", record.To},
        {"Subject", record.Subject},
        {"Date", record.Date},
        {"Body", record.Body},
        {"CC", record.CC},
        {"BCC", record.BCC},
        {"Attach", record.Attach},
        {"AllHeaders", record.AllHeaders},
        {"Size", std::to_string(record.Size)},
        {"Priority", record.Priority},
        {"Mailer", record.Mailer},
        {"ReplyTo", record.ReplyTo},
        {"ContentType", record.ContentType},
        {"HTML", record.HTML},
        {"HTMLCode", record.HTMLCode},
        {"Status", record.Status},
        {"Retries", int{record.Retries}},
    };
    for (const auto& [column, value] : values)
        if (DaoError failed = folder.Set(column, value); failed.Failed()) return failed;
    return {};
}

}  // namespace mailvane
