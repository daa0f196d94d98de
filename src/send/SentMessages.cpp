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

    DaoError Finish(Ids ids) {
        const DaoError outcome = store_.Transaction([&]() -> DaoError {
            for (const std::int32_t id : ids)
                if (DaoError failed = FinishOne(id); failed.Failed()) return failed;
            return {};
        });
        // After a failure it lists copies that have been undone.
        if (outcome.Failed()) wb_.state.CurrentFolderRecordset = nullptr;
        return outcome;
    }

private:
    DaoError FinishOne(std::int32_t id) {
        const std::string condition = "ID = " + std::to_string(id);
        if (outbox_)
            if (DaoError failed = Copy(condition); failed.Failed()) return failed;
        const auto deleted = store_.Execute("DELETE FROM [Outbox] WHERE " + condition);
        return deleted.Failed() ? deleted.Error() : SentLedger::Remove(store_, id);
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

void FinishSentMessages(Workbench& wb, const std::vector<std::int32_t>& ids, bool keepCopies,
                        const std::function<void()>& afterGroup,
                        const std::function<void(const DaoError&)>& onFailure) {
    if (ids.empty()) return;
    if (DaoError closed = OpenMessageStore(wb); closed.Failed()) return onFailure(closed);
    const std::shared_ptr<Database> store = wb.state.MessageStore;
    std::shared_ptr<Recordset> outbox;
    if (keepCopies) {
        auto opened = store->OpenRecordset(OutboxFolder);
        if (opened.Failed()) return onFailure(opened.Error());
        outbox = *opened;
    }
    SentMessageMove move(wb, *store, outbox);
    for (Ids left = ids; !left.empty() && store->IsOpen();) {
        const Ids group = left.first(std::min(left.size(), GroupSize));
        left = left.subspan(group.size());
        // A group that fails as a whole is tried one by one: one bad message holds up no other.
        if (move.Finish(group).Failed())
            for (std::size_t i = 0; i < group.size(); ++i)
                if (DaoError failed = move.Finish(group.subspan(i, 1)); failed.Failed())
                    onFailure(failed);
        afterGroup();
    }
}

}  // namespace mailvane
