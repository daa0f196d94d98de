#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "core/Workbench.h"
#include "merge/run/MergePlan.h"

namespace mailvane {

/// One kind of thing that would go wrong, or look wrong, in a merge run.
struct MergeFinding {
    std::string text;
    std::int64_t count = 0;
    std::vector<Bookmark> rows;  ///< the recipients concerned; empty when it is the message itself
};

/// Builds every message of a plan as the run does, and lists what it found: tags that name no
/// column or do nothing, empty values in used columns, addresses that sending refuses or that stand
/// there twice, files that are not there, line breaks in header fields, texts that are too long,
/// records without a message and messages without a record. Empty when all is well. Writes nothing
/// and runs no program. `goOn` is told how many records are done; false ends the check with what
/// was found so far.
std::vector<MergeFinding> CheckMerge(Workbench& wb, const MergePlan& plan,
                                     const std::function<bool(std::int64_t done)>& goOn);

}  // namespace mailvane
