#include "send/SentMessages.h"

#include <algorithm>
#include <span>

#include "store/MessageStore.h"
#include "store/SentLedger.h"

namespace mailvane {

namespace {

constexpr std::size_t GroupSize = 200;  ///< messages that one transaction finishes

using Ids = std::span<const std::int32_t>;

/// The move of messages out of the Outbox, on the program's own connection to the store, where
/// SaveMessageRecord writes.
class SentMessageMove {
public:
    SentMessageMove(Workbench& wb, Database& store, std::shared_ptr<Recordset> outbox)
        : wb_(wb), store_(store), outbox_(std::move(outbox)) {}

    /// A group that fails as a whole is tried one by one: one bad message holds up no other.
    DaoError FinishGroup(Ids group, std::set<std::int32_t>& unfinished,
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
    DaoError Finish(Ids ids, std::set<std::int32_t>& unfinished) {
        const DaoError outcome = store_.Transaction([&]() -> DaoError {
            for (const std::int32_t id : ids)
                if (DaoError failed = FinishOne(id); failed.Failed()) return failed;
            return SentLedger::RemoveGone(store_);
        });
        // After a failure it lists copies that have been undone.
        if (outcome.Failed()) wb_.state.CurrentFolderRecordset = nullptr;
        for (const std::int32_t id : ids)
            if (outcome.Ok()) unfinished.erase(id);
        return outcome;
    }

    DaoError FinishOne(std::int32_t id) {
        const std::string condition = "ID = " + std::to_string(id);
        if (outbox_)
            if (DaoError failed = Copy(condition); failed.Failed()) return failed;
        const auto deleted = store_.Execute("DELETE FROM [Outbox] WHERE " + condition);
        return deleted.Failed() ? deleted.Error() : DaoError();
    }

    DaoError Copy(const std::string& condition) {
        if (DaoError failed = outbox_->FindFirst(condition); failed.Failed()) return failed;
        if (outbox_->NoMatch()) return {};  // the user has deleted it meanwhile
        DaoResult<MessageRecord> record = ReadMessageRow(*outbox_);
        if (record.Failed()) return record.Error();
        return TrySaveMessageRecord(wb_, *record, "", SentItemsFolder, false, 0, "Read", false);
    }

    Workbench& wb_;
    Database& store_;
    std::shared_ptr<Recordset> outbox_;
};

}  // namespace

std::set<std::int32_t> FinishSentMessages(Workbench& wb, const std::vector<std::int32_t>& ids,
                                          bool keepCopies, const std::function<void()>& afterGroup,
                                          const std::function<void(const DaoError&)>& onFailure) {
    std::set<std::int32_t> unfinished(ids.begin(), ids.end());
    if (ids.empty()) return unfinished;
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
    for (Ids left = ids; !left.empty() && store->IsOpen();) {
        const Ids group = left.first(std::min(left.size(), GroupSize));
        left = left.subspan(group.size());
        const DaoError failed = move.FinishGroup(group, unfinished, onFailure);
        if (IsStorageFailure(failed)) break;  // the others would fare no better
        afterGroup();
    }
    return unfinished;
}

}  // namespace mailvane
