#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "core/Workbench.h"
#include "database/view/frmViewDatabase.h"
#include "merge/message/frmViewMerge.h"
#include "merge/run/frmMerge.h"
#include "store/MergeMark.h"

namespace mailvane {

class BulkPacket;
class MergeGenerator;

/// One run of frmMerge: narrows the recipients, writes the messages to the Outbox, and hands over
/// to the send run when that was asked for. The dialog and the views may be unloaded while it
/// yields; it ends then.
class MergeRun {
public:
    MergeRun(Workbench& wb, frmMerge& dialog);

    /// The whole run, messages to the user included. Returns when it is over.
    void Start();

private:
    enum class Outcome { Complete, Cancelled, Stopped };

    // Before the run: false ends it.
    bool CheckOptions();
    bool CheckDateColumn();
    bool CheckMaximum();
    bool CheckRange();
    void CopySettings();
    void Begin();
    void OpenRecipients();
    bool Narrow();
    bool NarrowByDate();
    bool NarrowByRows();
    bool RefuseStart(const std::string& text);

    // The run.
    Outcome GenerateMessages();
    Outcome GeneratePersonal(MergeGenerator& generator);
    DaoError MakeGroup(MergeGenerator& generator);
    DaoError MakeWithTags(MergeGenerator& generator);
    Outcome GenerateBulk(MergeGenerator& generator);
    bool CheckPacketSize();
    UnfinishedMerge Intent(bool personal) const;
    bool AppendAddress(BulkPacket& packet);
    Outcome StepOn(const DaoError& failed);
    Outcome StopForStore(const DaoError& failed);
    bool Proceed(const DaoError& error);

    // After it.
    void FinishMergeRun();
    std::optional<std::int64_t> StoreNumber(const std::string& query) const;
    std::optional<std::int64_t> NewestMessage() const;
    void RecordRun() const;
    void CreateMailingTable();
    void CopyRows(Recordset& mailingTable);
    DaoError CopyGroup(Recordset& mailingTable, std::int64_t& copied);
    void AskToDelete();
    void HandOver();

    void SkipRows(std::int64_t count);
    void ShowPanel(const std::string& text);
    std::string RangeText() const;
    bool AskToProceed(const std::string& text, BoxIcon icon = BoxIcon::Question);
    static bool IsBelowOneOrNoNumber(const std::string& text);

    Workbench& wb_;
    frmMerge& dialog_;
    frmViewDatabase& view_;
    frmViewMerge& message_;
    const std::string projectFolder_ = wb_.state.ProjectFolder;  ///< that it began in
    const DateTime began_ = wb_.platform.clock.Now();
    std::optional<std::int64_t> newestBefore_;  ///< message of the Outbox
    std::shared_ptr<Database> database_;
    std::shared_ptr<Recordset> recipients_;
    std::string table_;
    std::string mailingTable_;
    std::int64_t firstRow_ = 1;  ///< of the recipients
    std::int64_t total_ = 0;     ///< messages to make, or addresses in bulk packets
    std::int64_t done_ = 0;      ///< rows of the recipients that have their message, or a packet
    bool noMailingTable_ = false;
    std::optional<Bookmark> savedBookmark_;
};

}  // namespace mailvane
