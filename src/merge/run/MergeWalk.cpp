#include "merge/run/MergeWalk.h"

#include <algorithm>

#include "core/MessageBoxes.h"
#include "core/Waiting.h"
#include "store/MergeMark.h"
#include "store/MessageStore.h"

namespace mailvane {

namespace {

/// "12,800"
std::string Grouped(std::int64_t number) {
    std::string text = std::to_string(number);
    for (auto at = static_cast<std::ptrdiff_t>(text.size()) - 3; at > 0; at -= 3)
        text.insert(static_cast<std::size_t>(at), ",");
    return text;
}

}  // namespace

MergeWalk::MergeWalk(Workbench& wb, LongRun& run, const MergePlan& plan)
    : wb_(wb), run_(run), plan_(plan), generator_(wb, plan) {
    generator_.KeepWaiting = [this] { return !run_.Cancelled(); };
}

MergeOutcome MergeWalk::Generate() {
    if (DaoError closed = OpenMessageStore(wb_); closed.Failed()) return StopForStore(closed);
    newestBefore_ = StoreNumber("SELECT max(ID) FROM [" + std::string(OutboxFolder) + "]");
    if (DaoError failed = SetMark(); failed.Failed()) return StopForStore(failed);
    run_.ShowProgress(static_cast<long>(plan_.total), "Generating messages...");
    plan_.GoTo(0).Ignore();
    const MergeOutcome outcome = plan_.options.personal ? GeneratePersonal() : GenerateBulk();
    TakeMarkAway();
    return outcome;
}

std::string MergeWalk::HowFar() const {
    return Grouped(made_) + " of " + Grouped(plan_.MessageCount()) + " messages are in the Outbox";
}

DaoError MergeWalk::SetMark() {
    UnfinishedMerge intent;
    intent.table = plan_.table;
    intent.started = wb_.platform.clock.Now();
    intent.total = std::max<std::int64_t>(plan_.MessageCount(), 1);
    intent.firstRow = plan_.options.personal ? plan_.firstRow : 0;
    return MergeMark::Set(*wb_.state.MessageStore, intent);
}

/// When the program leaves in mid-run, nobody is told how far it came before the next start. A mark
/// that cannot be taken away tells it as well.
void MergeWalk::TakeMarkAway() {
    if (wb_.platform.windows.Quitting() || run_.OutcomeIsKept()) return;
    if (wb_.state.MessageStore) MergeMark::Clear(*wb_.state.MessageStore).Ignore();
}

MergeOutcome MergeWalk::GeneratePersonal() {
    MergeOutcome outcome = MergeOutcome::Complete;
    while (done_ < plan_.total && outcome == MergeOutcome::Complete) {
        // A handler that the last yield let run may have closed it.
        DaoError failed = OpenMessageStore(wb_);
        if (failed.Ok() && !generator_.HasTagsToRun()) failed = MakeGroup();
        if (failed.Ok() && done_ < plan_.total && generator_.HasTagsToRun())
            failed = MakeWithTags();
        outcome = StepOn(failed);
    }
    return outcome;
}

/// The messages from one yield to the next are stored as one unit: a commit for each of them would
/// cost more than all the rest. Ends early at a failure, with what was made before it stored, and
/// before the first message that has tags to run.
DaoError MergeWalk::MakeGroup() {
    const std::shared_ptr<Database> store = wb_.state.MessageStore;
    const std::int64_t doneBefore = done_;
    const std::int64_t madeBefore = made_;
    DaoError failed;
    const auto makeMessages = [&]() -> DaoError {
        do {
            failed = BuildMessage();
            if (generator_.HasTagsToRun()) {
                failed = {};
                return {};
            }
            if (failed.Ok()) failed = generator_.StoreMessage();
            if (IsStorageFailure(failed)) return failed;
            failed = CountAndMove(failed);
        } while (failed.Ok() && done_ < plan_.total && !run_.Cancelled() &&
                 !wb_.platform.windows.YieldIsDue());
        return {};
    };
    const DaoError stored =
        store->Transaction([&] { return plan_.database->OneRead(makeMessages); });
    if (stored.Ok()) return failed;
    done_ = doneBefore;
    made_ = madeBefore;
    plan_.GoTo(done_).Ignore();
    wb_.state.CurrentFolderRecordset = nullptr;  // it lists rows that have been undone
    return stored;
}

/// A single message: handlers run while its program or script is waited for.
DaoError MergeWalk::MakeWithTags() {
    DaoError failed = BuildMessage();
    if (failed.Ok()) {
        generator_.RunTags();
        failed = generator_.StoreMessage();
    }
    if (IsStorageFailure(failed)) return failed;
    return CountAndMove(failed);
}

/// A row whose message cannot be built is named.
DaoError MergeWalk::BuildMessage() {
    DaoError failed = generator_.BuildMessage();
    if (failed.Ok()) return failed;
    const std::string* address = generator_.Row().Text(plan_.message.addressColumn);
    failed.description = "Row " + std::to_string(plan_.firstRow + done_) +
                         (address ? ", " + *address : std::string()) + ": " + failed.description;
    return failed;
}

/// Behind a row with its message, or with the failure that stood in its way; what stood in the way
/// of it or of the next row.
DaoError MergeWalk::CountAndMove(const DaoError& failed) {
    ++done_;
    if (failed.Ok()) ++made_;
    const DaoError moved = plan_.recipients->MoveNext();
    return failed.Failed() ? failed : moved;
}

MergeOutcome MergeWalk::GenerateBulk() {
    BulkPacket packet(plan_.options.packetSize, plan_.records);
    MergeOutcome outcome = MergeOutcome::Complete;
    while (done_ < plan_.total && outcome == MergeOutcome::Complete) {
        const bool full = packet.Next();
        if (!AppendAddress(packet)) return MergeOutcome::Stopped;
        generator_.PacketText = full ? packet.Text() : std::string();
        const DaoError failed = full ? generator_.GenerateMergeMessage() : DaoError();
        if (full && failed.Ok()) ++made_;
        ++done_;
        const DaoError moved = plan_.recipients->MoveNext();
        outcome = StepOn(failed.Failed() ? failed : moved);
    }
    return outcome;
}

/// A Null address joins as nothing. False when the user ends the run.
bool MergeWalk::AppendAddress(BulkPacket& packet) {
    const auto address = plan_.recipients->Get(plan_.options.addressColumn);
    if (address.Failed()) return Proceed(address.Error());
    packet.Append(address->TextOrEmpty());
    return true;
}

/// After messages were made; `failed` is what stood in the way of the last one, or of the move to
/// the recipient behind it. Complete when the run goes on.
MergeOutcome MergeWalk::StepOn(const DaoError& failed) {
    if (IsStorageFailure(failed)) return StopForStore(failed);
    if (run_.Cancelled())
        return run_.EndAsked() || wb_.platform.windows.Quitting() ? MergeOutcome::Ended
                                                                  : MergeOutcome::Cancelled;
    run_.Step(static_cast<long>(done_), "Generating message " + std::to_string(done_) + " of " +
                                            std::to_string(plan_.total) + "...");
    if (!Proceed(failed)) return MergeOutcome::Stopped;
    YieldBriefly(wb_);
    return MergeOutcome::Complete;
}

MergeOutcome MergeWalk::StopForStore(const DaoError& failed) {
    wb_.platform.windows.SetPointer(MousePointer::Normal);
    Tell(wb_,
         "The message store cannot be written: " + failed.description +
             "\r\nThe run stops here: the messages of " + std::to_string(done_) + " of " +
             std::to_string(plan_.total) + " recipients are in the Outbox.",
         BoxIcon::Critical);
    return MergeOutcome::Stopped;
}

bool MergeWalk::Proceed(const DaoError& error) {
    return error.Ok() || AskYesNo(wb_, error.description + "\r\nDo you want to proceed anyway?",
                                  BoxIcon::Exclamation);
}

/// A number that a query of one row and column gives; nothing when the store cannot be asked.
std::optional<std::int64_t> MergeWalk::StoreNumber(const std::string& query) const {
    if (OpenMessageStore(wb_).Failed()) return {};
    const auto rows = wb_.state.MessageStore->OpenRecordset(query);
    const DaoResult<DaoValue> value = rows.Ok() ? (*rows)->Get(0) : rows.Error();
    if (value.Failed()) return {};
    return static_cast<std::int64_t>(value->NumberOr(0));
}

/// IDs are never given out twice.
std::optional<std::int64_t> MergeWalk::StoredMessages() const {
    if (done_ == 0 || !newestBefore_) return {};
    return StoreNumber("SELECT count(*) FROM [" + std::string(OutboxFolder) + "] WHERE ID > " +
                       std::to_string(*newestBefore_));
}

}  // namespace mailvane
