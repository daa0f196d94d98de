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
};

/// The row under the recordset's position, column by column; Null reads as "" or 0.
DaoResult<MessageRecord> ReadMessageRow(const Recordset& folder);
/// Sets all columns of the row under edit.
DaoError WriteMessageRow(Recordset& folder, const MessageRecord& record);

}  // namespace mailvane
