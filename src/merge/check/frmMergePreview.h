#pragma once

#include <optional>
#include <string>

#include "core/Workbench.h"
#include "merge/check/MergePreview.h"

namespace mailvane {

class LongRun;

/// Pages through the messages that a run would make.
class frmMergePreview final : public WorkbenchForm {
public:
    explicit frmMergePreview(Workbench& wb);

    Button cmdFirst{*this, "cmdFirst", [this] { GoTo(0); }};
    Button cmdPrevious{*this, "cmdPrevious", [this] { GoTo(number_ - 1); }};
    Button cmdNext{*this, "cmdNext", [this] { GoTo(number_ + 1); }};
    Button cmdLast{*this, "cmdLast", [this] { GoTo(preview_->Count() - 1); }};
    Label lblPosition{*this, "lblPosition"};
    TextBox txtFind{*this, "txtFind"};
    Button cmdFind{*this, "cmdFind", [this] { Find(); }};
    Label lblFound{*this, "lblFound"};
    TextBox txtFrom{*this, "txtFrom"};
    TextBox txtTo{*this, "txtTo"};
    TextBox txtBCC{*this, "txtBCC"};
    TextBox txtSubject{*this, "txtSubject"};
    TextBox txtAttach{*this, "txtAttach"};
    Label lblProblem{*this, "lblProblem"};
    Tabs tabMessage{*this, "tabMessage"};
    TextBox txtText{*this, "txtText"};
    HtmlView htmMessage{*this, "htmMessage"};
    TextBox txtSource{*this, "txtSource"};
    Button cmdClose{*this, "cmdClose", [this] { Unload(); }};

    /// Shows the first message of the plan.
    void Preview(MergePlan plan);

private:
    void GoTo(std::size_t number);
    void ShowMessage(MessageRecord message);
    void ShowParts(const MessageRecord& message);
    void EnableButtons();
    void Find();
    void Search(LongRun& run, const std::string& text);

    std::optional<MergePreview> preview_;
    std::size_t number_ = 0;
    bool searching_ = false;
};

/// Shows the messages of that plan, modally.
void ShowMergePreview(Workbench& wb, MergePlan plan);

/// The same for all rows of the table that the message is written for, a message each.
void PreviewWholeTable(Workbench& wb);

}  // namespace mailvane
