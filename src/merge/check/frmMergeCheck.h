#pragma once

#include <string>
#include <vector>

#include "core/Workbench.h"
#include "merge/check/MergeCheck.h"

namespace mailvane {

/// What a check before sending has found. It informs; what to do about it is the user's business.
class frmMergeCheck final : public WorkbenchForm {
public:
    explicit frmMergeCheck(Workbench& wb);

    Label lblSummary{*this, "lblSummary"};
    ListBox lstFindings{*this, "lstFindings"};
    Button cmdShow{*this, "cmdShow", [this] { ShowRows(); }};
    Button cmdClose{*this, "cmdClose", [this] { Unload(); }};

    /// Looks at the rows and lists the findings, the most serious first.
    void Check(const MergePlan& plan);

private:
    void ShowFindings(std::int64_t records, bool complete);
    void ShowRows();
    const MergeFinding* Chosen() const;
    std::vector<MergeFinding> findings_;
};

/// Checks the messages of a plan, in a form of its own.
void ShowMergeCheck(Workbench& wb, const MergePlan& plan);

/// The same for a message to each row of the table that the message is written for.
void CheckWholeTable(Workbench& wb);

}  // namespace mailvane
