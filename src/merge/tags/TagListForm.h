#pragma once

#include <string>

#include "core/Workbench.h"
#include "merge/tags/ExecuteTag.h"

namespace mailvane {

/// The list of the project's tags of one kind: adds, edits and removes them, and lets the user pick
/// one for a message. Removing an entry leaves its record file to the messages that name it.
class TagListForm : public WorkbenchForm {
public:
    Label lblInfo{*this, "lblInfo"};
    ListBoks lbxTags{*this, "lbxTags"};
    Button cmdOk{*this, "cmdOk", [this] { Answer(); }};
    Button cmdCancel{*this, "cmdCancel", [this] { Unload(); }};

    /// Shows the list modally. The number of the entry chosen with OK; "" without one.
    std::string Pick();
    /// Puts an entry in the place of the one at `index`, or behind the last for mode "Add", and
    /// writes the list.
    void TakeEntry(const std::string& mode, std::int32_t index, const std::string& entry);

protected:
    TagListForm(Workbench& wb, std::string name, std::string caption, const ExecuteTagKind& kind);
    void OnLoad() override;
    virtual void Add(std::int32_t number) = 0;
    virtual void Edit(const std::string& entry, std::int32_t index) = 0;

private:
    void Answer();
    const ExecuteTagKind& kind_;
    std::string picked_;
};

/// How an editor was opened.
inline constexpr const char* AddMode = "Add";
inline constexpr const char* EditMode = "Edit";

}  // namespace mailvane
