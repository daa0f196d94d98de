#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "merge/run/BulkPacket.h"
#include "merge/run/MergeGenerator.h"
#include "merge/run/MergePlan.h"

namespace mailvane {

/// The finished messages of a run that is not made: built as the run builds them, one at a time
/// and in any order. Runs no program or script and writes nothing.
class MergePreview {
public:
    MergePreview(Workbench& wb, MergePlan plan);

    bool Personal() const { return plan_.options.personal; }
    std::size_t Count() const { return count_; }  ///< messages
    /// The message of that number, from 0, as it would stand in the Outbox.
    DaoResult<MessageRecord> Message(std::size_t number);
    /// The first message from `from` on, the ones before it last, that holds the text in an
    /// address, the subject or the body, in any letter case. Nothing when there is none or `goOn`,
    /// told the messages looked at, says no; a row that cannot be read is an error.
    DaoResult<std::optional<std::size_t>> Find(const std::string& text, std::size_t from,
                                               const std::function<bool(std::size_t)>& goOn);

private:
    DaoError BuildPersonal(MergeGenerator& generator, std::size_t number);
    DaoError BuildBulk(MergeGenerator& generator, std::size_t number);
    DaoResult<std::size_t> RowOfAddress(std::size_t row);
    DaoResult<std::size_t> FindRowOfAddress(std::size_t row) const;
    DaoError MoveTo(std::size_t row) const { return plan_.GoTo(static_cast<std::int64_t>(row)); }

    Workbench& wb_;
    MergePlan plan_;
    // The packets made so far: their text only grows, so that the next one is near.
    BulkPacket packet_;
    std::size_t packets_ = 0;
    std::size_t packetRows_ = 0;
    std::size_t count_ = 0;
    // The rows behind the first of these, up to the last, have no address.
    std::size_t addressed_ = 0;
    std::size_t addressedTo_ = 0;
};

}  // namespace mailvane
