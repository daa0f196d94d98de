#pragma once

#include <memory>
#include <string>

#include "core/Workbench.h"
#include "core/settings/frmSettings.h"
#include "merge/message/frmViewMerge.h"
#include "merge/run/RecipientRow.h"
#include "merge/tags/CgiTag.h"
#include "merge/tags/ProgramTag.h"
#include "merge/tags/TagList.h"
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

    /// Makes one message, runs its tags and stores it; failures on the way to it leave the part
    /// concerned as it was. Tells when it could not be stored.
    DaoError GenerateMergeMessage();

    // The same in steps. RunTags waits and lets the program go on meanwhile: no transaction may be
    // open.
    void BuildMessage();
    /// From the first message on that had a program or script to run.
    bool HasTagsToRun() const { return programFound_ || scriptFound_; }
    void RunTags();
    DaoError StoreMessage();

    /// The message built last, with its tags run or not.
    const MessageRecord& Message() const { return record_; }
    /// From now on building leaves the disk as it is.
    void WriteNothing();

    std::string PacketText;  ///< bulk: the addresses of the blind copy
    /// Called while a program or script is waited for; false ends the wait.
    std::function<bool()> KeepWaiting;

private:
    void ReadMessageParts();
    void FillInFields();
    void FindFiles();
    void FindTags();
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
    // Once found they run for every message, with the record that was read last.
    bool programFound_ = false;
    bool scriptFound_ = false;
    ProgramTag program_;
    CgiTag script_;
};

/// Replaces the tags of the machine's time, date, address and resources.
void FillInSystemTags(const Workbench& wb, std::string& text);

}  // namespace mailvane
