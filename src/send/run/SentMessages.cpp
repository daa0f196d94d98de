#include "send/run/SentMessages.h"

#include <algorithm>
#include <span>
#include <vector>

#include "store/DeliveredRecipients.h"
#include "store/MessageStore.h"

namespace mailvane {

namespace {

constexpr std::size_t GroupSize = 200;  ///< messages that one transaction finishes

using Message = std::pair<std::int32_t, DateTime>;
using Group = std::span<const Message>;

/// The move of messages out of the Outbox, on the program's own connection to the store, where
/// SaveMessageRecord writes.
class SentMessageMove {
public:
    SentMessageMove(Workbench& wb, Database& store, std::shared_ptr<Recordset> outbox)
        : wb_(wb), store_(store), outbox_(std::move(outbox)) {}

    /// A group that fails as a whole is tried one by one: one bad message holds up no other.
    DaoError FinishGroup(Group group, AcceptedMessages& unfinished,
                         const std::function<void(const DaoError&)>& onFailure) {
        const bool whole = Finish(group, unfinished).Ok();
        for (std::size_t i = 0; !whole && i < group.size(); ++i) {
            DaoError failed = Finish(group.subspan(i, 1), unfinished);
            if (failed.Failed()) onFailure(failed);
            if (IsStorageFailure(failed)) return failed;
        }
        return {};
    }

private:
    DaoError Finish(Group group, AcceptedMessages& unfinished) {
        const DaoError outcome = store_.Transaction([&]() -> DaoError {
            for (const Message& message : group)
                if (DaoError failed = FinishOne(message); failed.Failed()) return failed;
            return {};
        });
        // After a failure it lists copies that have been undone.
        if (outcome.Failed()) wb_.state.CurrentFolderRecordset = nullptr;
        for (const auto& [id, attempt] : group)
            if (outcome.Ok()) unfinished.erase(id);
        return outcome;
    }

    DaoError FinishOne(const Message& message) {
        const std::string condition = "ID = " + std::to_string(message.first);
        if (outbox_)
            if (DaoError failed = Copy(condition, message.second); failed.Failed()) return failed;
        const auto deleted = store_.Execute("DELETE FROM [Outbox] WHERE " + condition);
        return deleted.Failed() ? deleted.Error() : DaoError();
    }

    DaoError Copy(const std::string& condition, DateTime attempt) {
        if (DaoError failed = outbox_->FindFirst(condition); failed.Failed()) return failed;
        if (outbox_->NoMatch()) return {};  // the user has deleted it meanwhile
        DaoResult<MessageRecord> record = ReadMessageRow(*outbox_);
        if (record.Failed()) return record.Error();
        record->Date = attempt;
        return TrySaveMessageRecord(wb_, *record, "", SentItemsFolder, false, 0, "Read", false);
    }

    Workbench& wb_;
    Database& store_;
    std::shared_ptr<Recordset> outbox_;
};

}  // namespace

AcceptedMessages FinishSentMessages(Workbench& wb, const AcceptedMessages& accepted,
                                    bool keepCopies, const std::function<void()>& afterGroup,
                                    const std::function<void(const DaoError&)>& onFailure) {
    AcceptedMessages unfinished = accepted;
    if (accepted.empty()) return unfinished;
    DaoError closed = OpenMessageStore(wb);
    const std::shared_ptr<Database> store = wb.state.MessageStore;
    std::shared_ptr<Recordset> outbox;
    if (closed.Ok() && keepCopies) {
        auto opened = store->OpenRecordset(OutboxFolder);
        if (opened.Ok())
            outbox = *opened;
        else
            closed = opened.Error();
    }
    if (closed.Failed()) {
        onFailure(closed);
        return unfinished;
    }
    SentMessageMove move(wb, *store, outbox);
    const std::vector<Message> messages(accepted.begin(), accepted.end());
    for (Group left = messages; !left.empty() && store->IsOpen();) {
        const Group group = left.first(std::min(left.size(), GroupSize));
        left = left.subspan(group.size());
        const DaoError failed = move.FinishGroup(group, unfinished, onFailure);
        if (IsStorageFailure(failed)) return unfinished;  // the others would fare no better
        afterGroup();
    }
    // Numbers of rows are never given out twice, so that an entry that a crash leaves does no harm.
    if (store->IsOpen())
        for (DaoError failed :
             {SentLedger::RemoveGone(*store), DeliveredLedger::RemoveGone(*store)})
            if (failed.Failed()) onFailure(failed);
    return unfinished;
}

}  // namespace mailvane
