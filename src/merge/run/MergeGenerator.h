#pragma once

#include <functional>
#include <string>

#include "core/Workbench.h"
#include "merge/run/MergePlan.h"
#include "merge/run/RecipientRow.h"
#include "merge/tags/TagKinds.h"
#include "merge/tags/TagList.h"
#include "store/MessageRecord.h"

namespace mailvane {

/// Turns the message of a plan and the current row of its recipients into finished rows of the
/// Outbox. One per run: a message keeps the To line and the HTML code of the one before where its
/// row gives none.
class MergeGenerator {
public:
    /// The plan must live as long as this. With MissingTagFile::Leave building leaves the disk as
    /// it is.
    MergeGenerator(Workbench& wb, const MergePlan& plan,
                   MissingTagFile missingFile = MissingTagFile::Make);

    /// Makes one message, runs its tags and stores it; failures on the way to it leave the part
    /// concerned as it was. Tells when it could not be made or stored.
    DaoError GenerateMergeMessage();

    // The same in steps. RunTags waits and lets the program go on meanwhile: no transaction may be
    // open.
    /// Fails for a row whose values make a text too long.
    DaoError BuildMessage();
    /// From the first message on that had a program or script to run.
    bool HasTagsToRun() const;
    void RunTags();
    DaoError StoreMessage();

    /// The message built last, with its tags run or not.
    const MessageRecord& Message() const { return record_; }
    RecipientRow& Row() { return row_; }
    const TagList& Columns() const { return columns_; }
    const MessageTags& Tags() const { return tags_; }

    std::string PacketText;  ///< bulk: the addresses of the blind copy
    /// Called while a program or script is waited for; false ends the wait.
    std::function<bool()> KeepWaiting;

private:
    void ReadMessageParts();
    [[nodiscard]] bool FindFiles(const TagList::ValueOf& row);
    void FindTags();
    void Address();

    Workbench& wb_;
    const MergePlan& plan_;
    TagList columns_;
    MessageTags tags_;
    RecipientRow row_;
    MessageRecord record_;
    std::string writtenCode_;  ///< of the last HTML file, before anything was filled in
};

}  // namespace mailvane
