#pragma once

#include <memory>
#include <string>

#include "core/Workbench.h"
#include "core/frmSettings.h"
#include "merge/RecipientRow.h"
#include "merge/TagList.h"
#include "merge/frmViewMerge.h"
#include "store/MessageRecord.h"

namespace mailvane {

/// How the messages of a run are addressed.
struct MergeAddressing {
    bool personal = true;
    std::string toColumn;    ///< personal: the column that holds each recipient's address
    std::string bulkToText;  ///< bulk: the To line of every message
};

/// Turns the message of frmViewMerge and the current row of the recipients into finished rows of
/// the Outbox. One per run: a message keeps the To line and the HTML code of the one before where
/// its row gives none.
class MergeGenerator {
public:
    MergeGenerator(Workbench& wb, const frmViewMerge& message,
                   std::shared_ptr<Recordset> recipients, MergeAddressing addressing);

    /// Makes one message and stores it; failures on the way to it leave the part concerned as it
    /// was. Tells when it could not be stored.
    DaoError GenerateMergeMessage();

    std::string PacketText;  ///< bulk: the addresses of the blind copy

private:
    void ReadMessageParts();
    void FillInFields();
    void FindFiles();
    void FillInSystemValues();
    void RemoveFieldTags();
    void Address();

    Workbench& wb_;
    const frmViewMerge& message_;
    const frmSettings& settings_;
    MergeAddressing addressing_;
    TagList fieldTags_;
    RecipientRow row_;
    MessageRecord record_;
};

/// Replaces the tags of the machine's time, date, address and resources.
void FillInSystemTags(const Workbench& wb, std::string& text);
/// Takes the first program tag of a text out of it when the program it names is not there.
void RemoveDeadProgramTag(std::string& text);

}  // namespace mailvane
