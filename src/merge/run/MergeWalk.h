#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/run/LongRun.h"
#include "merge/run/BulkPacket.h"
#include "merge/run/MergeGenerator.h"
#include "merge/run/MergePlan.h"

namespace mailvane {

enum class MergeOutcome {
    Complete,
    Cancelled,  ///< by the user
    Ended,      ///< for the sake of something else
    Stopped     ///< by a failure, or by the answer to a question
};

/// Walks over the recipients of a plan and puts their messages into the Outbox.
class MergeWalk {
public:
    /// All three must live as long as this.
    MergeWalk(Workbench& wb, LongRun& run, const MergePlan& plan);

    /// The whole walk, messages to the user included.
    MergeOutcome Generate();
    /// "3 of 12,800 messages are in the Outbox"
    std::string HowFar() const;
    /// What the walk has put into the Outbox; nothing when the store cannot be asked.
    std::optional<std::int64_t> StoredMessages() const;

private:
    MergeOutcome GeneratePersonal();
    MergeOutcome GenerateBulk();
    DaoError MakeGroup();
    DaoError MakeWithTags();
    DaoError BuildMessage();
    DaoError CountAndMove(const DaoError& failed);
    bool AppendAddress(BulkPacket& packet);
    MergeOutcome StepOn(const DaoError& failed);
    MergeOutcome StopForStore(const DaoError& failed);
    bool Proceed(const DaoError& error);
    DaoError SetMark();
    void TakeMarkAway();
    std::optional<std::int64_t> StoreNumber(const std::string& query) const;

    Workbench& wb_;
    LongRun& run_;
    const MergePlan& plan_;
    MergeGenerator generator_;
    std::optional<std::int64_t> newestBefore_;  ///< message of the Outbox
    std::int64_t done_ = 0;  ///< rows of the recipients that have their message, or a packet
    std::int64_t made_ = 0;  ///< messages
};

}  // namespace mailvane
