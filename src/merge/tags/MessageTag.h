#pragma once

#include <functional>
#include <string>
#include <vector>

#include "core/Workbench.h"
#include "merge/tags/ExecuteTag.h"
#include "merge/tags/TagList.h"
#include "store/MessageRecord.h"

namespace mailvane {

/// What the tags of one run have in common.
struct TagSetting {
    Workbench& wb;
    const TagList& columns;  ///< of the recipients; must live as long as the tags
    MissingTagFile missingFile = MissingTagFile::Make;
};

/// One kind of tag on its way through a run. The messages are built one after the other; for each
/// the functions are called in the order in which they stand here, for all kinds in the order of
/// TagKinds. A kind does nothing where it has nothing to do.
class MessageTag {
public:
    virtual ~MessageTag() = default;

    /// Looks for tags in Body and HTMLCode as the user wrote them. Messages for one recipient only.
    virtual void Find(MessageRecord&) {}
    /// Fills values in; `row` is null in messages for many. False when a text grows too long.
    [[nodiscard]] virtual bool FillIn(MessageRecord& message, const TagList::ValueOf* row) = 0;
    /// Takes out what could not be filled in.
    virtual void CleanUp(MessageRecord&) const {}
    /// From the first message on that had something to run.
    virtual bool HasToRun() const { return false; }
    /// Runs it, and waits while `keepWaiting`, which is called all the time, says yes.
    virtual void Run(const std::function<bool()>&) const {}

    // For the check before a run.

    /// Whether what stands between brackets is a tag of this kind.
    virtual bool Owns(const std::string&) const { return false; }
    /// What is wrong with the tags of this kind in a text as the user wrote it; "" when nothing is.
    virtual std::string Objection(const std::string&) const { return {}; }
};

}  // namespace mailvane
