#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/Workbench.h"
#include "platform/dao/file/Database.h"

namespace mailvane {

class frmViewMerge;

/// What is chosen for a run, validated: an option that makes no sense is not among them.
struct MergeOptions {
    static constexpr const char* UsualPacketSize = "19";

    struct Dates {
        std::string column;
        DateTime from;
        DateTime to;
    };
    struct Rows {
        std::int64_t first = 1;  ///< counted from 1
        std::int64_t last = 1;
    };
    bool personal = true;
    std::optional<std::int64_t> maximum;
    std::optional<Dates> dates;
    std::optional<Rows> rows;
    // Bulk messages only.
    double packetSize = 19;
    std::string bulkTo;         ///< the To line of every message
    std::string addressColumn;  ///< of the blind copies
    bool mailingTable = false;
};

/// The message as frmViewMerge has it, with what else goes into every message.
struct MergeMessage {
    std::string from;
    std::string subject;
    std::string body;
    std::string attachment;               ///< path, may hold tags
    std::optional<std::string> htmlFile;  ///< the same; nothing when there is none
    std::string replyTo;
    std::string priority;
    std::string addressColumn;         ///< of personal messages; "" for a test message
    std::vector<std::string> columns;  ///< whose tags count
};
MergeMessage CopyMessage(Workbench& wb, const frmViewMerge& view);

/// What a merge run does, whole, from before its first message: nobody changes it meanwhile. The
/// run, the check, the preview and the test message all follow it.
struct MergePlan {
    MergeOptions options;
    MergeMessage message;
    std::shared_ptr<Database> database;
    std::shared_ptr<Recordset> recipients;  ///< null when they cannot be read
    std::string table;
    std::int64_t records = 0;   ///< of the recipients
    std::int64_t firstRow = 1;  ///< of the recipients that is used
    /// Messages to make, or addresses in bulk packets. It may reach beyond the last record.
    std::int64_t total = 0;
    std::string mailingTable;  ///< "" when none is wanted

    std::int64_t UsedRecords() const;    ///< of the total, those that there are
    std::int64_t MessageCount() const;   ///< personal ones or packets
    std::int64_t PacketRecords() const;  ///< addresses that make a packet full; 0: none ever is
    /// Makes the row of a message, counted from 0, the current one; without one there is no current
    /// row.
    DaoError GoTo(std::int64_t number) const;
};

/// In two steps, for a run that shows them: the recipients of the database view's table by the
/// maximum, then those of the dates and rows.
MergePlan OpenMergePlan(Workbench& wb, MergeOptions options);
void NarrowMergePlan(MergePlan& plan);
/// Both.
MergePlan MakeMergePlan(Workbench& wb, MergeOptions options);

/// A name in the brackets that statements want. A bracket in the name itself would end it early;
/// without it, no table has that name.
std::string Bracketed(std::string name);

}  // namespace mailvane
