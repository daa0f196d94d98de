#pragma once

#include <string>
#include <vector>

#include "core/Workbench.h"
#include "merge/check/MergeCheck.h"

namespace mailvane {

class frmViewMerge;

/// What a check before sending has found. It informs; what to do about it is the user's business.
class frmMergeCheck final : public WorkbenchForm {
public:
    explicit frmMergeCheck(Workbench& wb);

    Label lblSummary{*this, "lblSummary"};
    ListBox lstFindings{*this, "lstFindings"};
    Button cmdShow{*this, "cmdShow", [this] { ShowRows(); }};
    Button cmdClose{*this, "cmdClose", [this] { Unload(); }};

    /// Looks at the rows and lists the findings, the most serious first.
    void Check(const MergeParts& parts, const MergeRows& rows);

private:
    void ShowFindings(std::size_t rows, bool complete);
    void ShowRows();
    const MergeFinding* Chosen() const;
    std::vector<MergeFinding> findings_;
};

/// The message as frmViewMerge has it now.
MergeParts PartsOf(const frmViewMerge& message);

/// Checks the message for those rows, in a form of its own.
void ShowMergeCheck(Workbench& wb, const MergeParts& parts, const MergeRows& rows);

/// All rows of the table that the message is written for; without recipients when there is none.
MergeRows WholeTable(Workbench& wb);

/// The same for all rows of the table that the message is written for.
void CheckWholeTable(Workbench& wb);

}  // namespace mailvane
