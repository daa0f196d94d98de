#include <algorithm>
#include <utility>

#include "core/MessageBoxes.h"
#include "core/Waiting.h"
#include "core/run/Progress.h"
#include "core/text/Text.h"
#include "merge/run/BulkPacket.h"
#include "merge/run/MergeGenerator.h"
#include "merge/run/MergeRun.h"
#include "store/MessageStore.h"

namespace mailvane {

MergeRun::Outcome MergeRun::GenerateMessages() {
    const bool personal = dialog_.optPersonal.IsSet();
    if (!personal && !CheckPacketSize()) return Outcome::Stopped;
    if (DaoError closed = OpenMessageStore(wb_); closed.Failed()) return StopForStore(closed);
    newestBefore_ = NewestMessage();
    if (DaoError failed = MergeMark::Set(*wb_.state.MessageStore, Intent(personal));
        failed.Failed())
        return StopForStore(failed);
    MergeGenerator generator(wb_, message_, recipients_,
                             {personal, message_.txtTo.Text(), dialog_.txtTo.Text()});
    generator.KeepWaiting = [this] { return !wb_.state.CancelRequested && dialog_.IsLoaded(); };
    UpdateProgress(wb_, static_cast<long>(total_), 0, "Generating messages...");
    const Outcome outcome = personal ? GeneratePersonal(generator) : GenerateBulk(generator);
    // A mark that cannot be taken away tells the next start of the program how far this run came.
    if (wb_.state.MessageStore) MergeMark::Clear(*wb_.state.MessageStore).Ignore();
    return outcome;
}

UnfinishedMerge MergeRun::Intent(bool personal) const {
    UnfinishedMerge intent;
    intent.table = table_;
    intent.started = wb_.platform.clock.Now();
    intent.total = total_;
    intent.firstRow = firstRow_;
    if (!personal) {
        const double packets = static_cast<double>(total_) / NumberOf(dialog_.txtPacket.Text());
        intent.total = std::max<std::int64_t>(static_cast<std::int64_t>(packets), 1);
        intent.firstRow = 0;
    }
    return intent;
}

MergeRun::Outcome MergeRun::GeneratePersonal(MergeGenerator& generator) {
    Outcome outcome = Outcome::Complete;
    while (done_ < total_ && outcome == Outcome::Complete) {
        // A handler that the last yield let run may have closed it.
        DaoError failed = OpenMessageStore(wb_);
        if (failed.Ok() && !generator.HasTagsToRun()) failed = MakeGroup(generator);
        if (failed.Ok() && generator.HasTagsToRun()) failed = MakeWithTags(generator);
        outcome = StepOn(failed);
    }
    noMailingTable_ = outcome == Outcome::Cancelled;
    return outcome;
}

/// The messages from one yield to the next are stored as one unit: a commit for each of them would
/// cost more than all the rest. Ends early at a failure, with what was made before it stored, and
/// before the first message that has tags to run.
DaoError MergeRun::MakeGroup(MergeGenerator& generator) {
    const std::shared_ptr<Database> store = wb_.state.MessageStore;
    const std::int64_t before = done_;
    const DaoResult<Bookmark> position = recipients_->GetBookmark();
    DaoError failed;
    const auto makeMessages = [&]() -> DaoError {
        do {
            generator.BuildMessage();
            if (generator.HasTagsToRun()) return {};
            failed = generator.StoreMessage();
            if (IsStorageFailure(failed)) return failed;
            ++done_;
            const DaoError moved = recipients_->MoveNext();
            if (failed.Ok()) failed = moved;
        } while (failed.Ok() && done_ < total_ && !wb_.state.CancelRequested &&
                 !wb_.platform.windows.YieldIsDue());
        return {};
    };
    const DaoError stored = store->Transaction([&] { return database_->OneRead(makeMessages); });
    if (stored.Ok()) return failed;
    done_ = before;
    if (position.Ok()) recipients_->SetBookmark(*position).Ignore();
    wb_.state.CurrentFolderRecordset = nullptr;  // it lists rows that have been undone
    return stored;
}

/// A single message: handlers run while its program or script is waited for.
DaoError MergeRun::MakeWithTags(MergeGenerator& generator) {
    const DaoError failed = generator.GenerateMergeMessage();
    if (IsStorageFailure(failed)) return failed;
    ++done_;
    const DaoError moved = recipients_->MoveNext();
    return failed.Ok() ? moved : failed;
}

MergeRun::Outcome MergeRun::GenerateBulk(MergeGenerator& generator) {
    BulkPacket packet(NumberOf(dialog_.txtPacket.Text()), recipients_->RecordCount());
    Outcome outcome = Outcome::Complete;
    while (done_ < total_ && outcome == Outcome::Complete) {
        const bool full = packet.Next();
        if (!AppendAddress(packet)) return Outcome::Stopped;
        generator.PacketText = full ? packet.Text() : std::string();
        DaoError failed = full ? generator.GenerateMergeMessage() : DaoError();
        ++done_;
        const DaoError moved = recipients_->MoveNext();
        if (failed.Ok()) failed = moved;
        outcome = StepOn(failed);
    }
    return outcome;
}

bool MergeRun::CheckPacketSize() {
    dialog_.txtPacket.SetText(Trim(dialog_.txtPacket.Text()));
    const std::string value = dialog_.txtPacket.Text();
    if (!IsBelowOneOrNoNumber(value)) return true;
    wb_.platform.windows.SetPointer(MousePointer::Normal);
    if (!AskToProceed("'Messages per packet' text-box contains invalid value: '" + value + "'."))
        return false;
    dialog_.txtPacket.SetText(frmMerge::UsualPacketSize);
    return true;
}

/// A Null address joins as nothing. False when the user ends the run.
bool MergeRun::AppendAddress(BulkPacket& packet) {
    const auto address = recipients_->Get(dialog_.cmbEmail.Text());
    if (address.Failed()) return Proceed(address.Error());
    packet.Append(address->TextOrEmpty());
    return true;
}

/// After messages were made; `failed` is what stood in the way of the last one, or of the move to
/// the recipient behind it. Complete when the run goes on.
MergeRun::Outcome MergeRun::StepOn(const DaoError& failed) {
    if (IsStorageFailure(failed)) return StopForStore(failed);
    if (std::exchange(wb_.state.CancelRequested, false)) return Outcome::Cancelled;
    UpdateProgress(
        wb_, 0, static_cast<long>(done_),
        "Generating message " + std::to_string(done_) + " of " + std::to_string(total_) + "...");
    if (!Proceed(failed)) return Outcome::Stopped;
    YieldBriefly(wb_);
    return dialog_.IsLoaded() ? Outcome::Complete : Outcome::Stopped;
}

MergeRun::Outcome MergeRun::StopForStore(const DaoError& failed) {
    wb_.platform.windows.SetPointer(MousePointer::Normal);
    Tell(wb_,
         "The message store cannot be written: " + failed.description +
             "\r\nThe run stops here: the messages of " + std::to_string(done_) + " of " +
             std::to_string(total_) + " recipients are in the Outbox.",
         BoxIcon::Critical);
    return Outcome::Stopped;
}

bool MergeRun::Proceed(const DaoError& error) {
    return error.Ok() || AskToProceed(error.description, BoxIcon::Exclamation);
}

}  // namespace mailvane
