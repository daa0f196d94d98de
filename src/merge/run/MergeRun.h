#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/run/LongRun.h"
#include "database/view/frmViewDatabase.h"
#include "merge/message/frmViewMerge.h"
#include "merge/run/MergePlan.h"
#include "merge/run/MergeWalk.h"
#include "merge/run/frmMerge.h"

namespace mailvane {

/// One run of frmMerge from its Start button on: asks about the options, makes the plan, has the
/// messages made, ends, and hands over to the send run when that was asked for.
class MergeRun {
public:
    MergeRun(Workbench& wb, frmMerge& dialog);

    /// The whole run, messages to the user included. Returns when it is over.
    void Start();

private:
    bool AskAboutOptions();
    bool AskAboutPackets();
    bool AskToProceed(const std::string& text);
    void CopySettings();
    std::vector<Control*> Locked();

    MergeOutcome Work();
    void BeginWork();
    bool MakePlan();
    bool RefuseStart(const std::string& text);
    void EndWork();
    void RestoreRow();
    void RecordRun(const MergeWalk& walk) const;

    void AskToDelete();
    void HandOver();
    void ShowPanel(const std::string& text);

    Workbench& wb_;
    frmMerge& dialog_;
    frmViewDatabase& view_;
    frmViewMerge& message_;
    const std::string projectFolder_ = wb_.state.ProjectFolder;  ///< that it began in
    const DateTime began_ = wb_.platform.clock.Now();
    MergePlan plan_;
    std::optional<Bookmark> savedBookmark_;
};

}  // namespace mailvane
