#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "core/Workbench.h"
#include "merge/tags/ExecuteTag.h"
#include "merge/tags/TagList.h"
#include "store/MessageRecord.h"

namespace mailvane {

/// A web script that messages call, as its record file holds it.
struct CgiTagRecord {
    std::int32_t TagNumber = 0;
    std::int32_t TagListIndex = 0;
    std::string ScriptUrl;
    std::string QueryString;
    bool IncludeResult = false;
    bool SaveResult = false;
    std::string ResultFile;
    std::string Referer;
    std::string RequestMethod;  ///< "Get", "Post" or "Head"
    std::string EditMode;       ///< "Add" or "Edit"

    friend bool operator==(const CgiTagRecord&, const CgiTagRecord&) = default;
};

/// An empty record for a number without a file.
CgiTagRecord LoadCgiTag(const Workbench& wb, const std::string& number,
                        MissingTagFile missing = MissingTagFile::Make);
bool SaveCgiTag(const Workbench& wb, const CgiTagRecord& tag);
/// "3. execute count.pl CGI script and include results."
std::string CgiTagEntry(const CgiTagRecord& tag);

/// A script on its way to be called for a message.
class CgiTag {
public:
    /// The number of the first tag in Body, else of the first in HTMLCode, else NoExecuteTag. Its
    /// record is kept.
    std::string FindCgiTag(const Workbench& wb, const MessageRecord& record);
    /// Fills field tags in, with the values encoded for a URL.
    void FillIn(const TagList& fieldTags, const TagList::ValueOf& valueOf);
    /// Sends the request and writes what comes back to the result file, or to one in the program's
    /// folder. Waits for the answer, for the end of the request's own time-outs, or until
    /// `keepWaiting`, which is called all the time, says no. A script that does not answer is
    /// passed over.
    void Call(Workbench& wb, const std::function<bool()>& keepWaiting) const;

    MissingTagFile MissingFile = MissingTagFile::Make;  ///< of the records that are looked for

private:
    CgiTagRecord record_;
};

}  // namespace mailvane
