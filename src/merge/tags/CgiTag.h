#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "core/Workbench.h"
#include "merge/tags/MessageTag.h"

namespace mailvane {

/// A web script that messages call, as its record file holds it.
struct CgiTagRecord {
    static constexpr const ExecuteTagKind& Kind = CgiTagKind;

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

    static void Fields(auto& record, auto&& field) {
        field(record.TagNumber);
        field(record.TagListIndex);
        field(record.ScriptUrl);
        field(record.QueryString);
        field(record.IncludeResult);
        field(record.SaveResult);
        field(record.ResultFile);
        field(record.Referer);
        field(record.RequestMethod);
        field(record.EditMode);
    }
    friend bool operator==(const CgiTagRecord&, const CgiTagRecord&) = default;
};

/// "3. execute count.pl CGI script and include results."
std::string TagEntry(const CgiTagRecord& tag);

/// A script on its way to be called for a message. Once one was found, every later message calls
/// the one found last.
class CgiTag final : public MessageTag {
public:
    explicit CgiTag(const TagSetting& setting) : setting_(setting) {}

    /// The number of the first tag in Body, else of the first in HTMLCode, else NoExecuteTag. Its
    /// record is kept.
    std::string FindCgiTag(const MessageRecord& record);

    void Find(MessageRecord& message) override;
    /// With the values encoded for a URL.
    bool FillIn(MessageRecord& message, const TagList::ValueOf* row) override;
    bool HasToRun() const override { return found_; }
    /// Sends the request and writes what comes back to the result file, or to one in the program's
    /// folder. Waits for the answer, or for the end of the request's own time-outs. A script that
    /// does not answer is passed over.
    void Run(const std::function<bool()>& keepWaiting) const override;
    std::string Objection(const std::string& text) const override;

private:
    TagSetting setting_;
    bool found_ = false;
    CgiTagRecord record_;
};

}  // namespace mailvane
