#pragma once

#include <cstdint>
#include <string>

#include "platform/dao/records/Recordset.h"
#include "platform/os/DateTime.h"

namespace mailvane {

/// One message in memory; the fields in the order in which records of other files embed it.
struct MessageRecord {
    std::string From;
    std::string To;
    std::string Subject;
    DateTime Date;
    std::string AllHeaders;
    std::int32_t Size = 0;
    std::string Body;
    std::string Attach;
    std::string CC;
    std::string BCC;
    std::string Priority;
    std::string Mailer;
    std::string ReplyTo;
    std::string ContentType;
    std::string HTML;
    std::string HTMLCode;
    std::string Status;
    std::int16_t Retries = 0;
    std::int16_t ReplyImportJobNumber = 0;  ///< no column; used inside rule records only

    /// The fields that have a column in a folder, in the order above.
    static void Columns(auto& record, auto&& column) {
        column("From", record.From);
        column("To", record.To);
        column("Subject", record.Subject);
        column("Date", record.Date);
        column("AllHeaders", record.AllHeaders);
        column("Size", record.Size);
        column("Body", record.Body);
        column("Attach", record.Attach);
        column("CC", record.CC);
        column("BCC", record.BCC);
        column("Priority", record.Priority);
        column("Mailer", record.Mailer);
        column("ReplyTo", record.ReplyTo);
        column("ContentType", record.ContentType);
        column("HTML", record.HTML);
        column("HTMLCode", record.HTMLCode);
        column("Status", record.Status);
        column("Retries", record.Retries);
    }
};

/// The row under the recordset's position, column by column; Null reads as "" or 0.
DaoResult<MessageRecord> ReadMessageRow(const Recordset& folder);
/// Sets all columns of the row under edit.
DaoError WriteMessageRow(Recordset& folder, const MessageRecord& record);

}  // namespace mailvane
