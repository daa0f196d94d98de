#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/Workbench.h"
#include "platform/dao/records/Recordset.h"

namespace mailvane {

/// One kind of thing that would go wrong, or look wrong, in a merge run.
struct MergeFinding {
    std::string text;
    std::int64_t count = 0;
    std::vector<Bookmark> rows;  ///< the recipients concerned; empty when it is the message itself
};

/// The message as it was written, with its tags.
struct MergeParts {
    std::string from;
    std::string subject;
    std::string body;
    std::string attachment;  ///< path, may hold tags
    std::string htmlFile;    ///< path, may hold tags
    std::string addressColumn;
};

/// The rows of a run: `count` of them from `first` on, counted from 0 in the recordset.
struct MergeRows {
    std::shared_ptr<Recordset> recipients;
    std::size_t first = 0;
    std::size_t count = 0;
};

/// Looks at every row once, in bounded time each, and lists what it found: tags that name no
/// column, empty values in used columns, addresses missing, malformed or repeated, files that are
/// not there, line breaks in values for header fields. Empty when all is well. Reads only, and runs
/// no program. `goOn` is told now and then how many rows are done; false ends the check with what
/// was found so far.
std::vector<MergeFinding> CheckMerge(const MergeParts& parts, const MergeRows& rows,
                                     const std::function<bool(std::size_t done)>& goOn);

}  // namespace mailvane
