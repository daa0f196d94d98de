#pragma once

#include <chrono>
#include <optional>

#include "core/Workbench.h"

namespace mailvane {

/// When the window of a run comes: half a second after it was opened. What ends sooner would only
/// flash, and a window manager may leave the keyboard with a window that has gone.
class DelayedShow {
public:
    explicit DelayedShow(WorkbenchForm& form) : form_(form) {}
    void Open();
    void ShowWhenDue();
    void Close();
    /// From Open to Close, with the window on the screen or not yet.
    bool IsOpen() const { return opened_.has_value(); }

private:
    WorkbenchForm& form_;
    std::optional<std::chrono::milliseconds> opened_;  ///< when
};

/// Progress of a long run: two captions, a bar, Cancel.
class frmStatus final : public WorkbenchForm {
public:
    explicit frmStatus(Workbench& wb);

    DelayedShow Window{*this};

    Label lblCaption1{*this, "lblCaption1"};
    Label lblCaption2{*this, "lblCaption2"};
    ProgressBar Progress1{*this, "Progress1"};
    Button cmdCancel{*this, "cmdCancel", [this] { Cancel(); }};

    void OnCloseBox() override { Cancel(); }

private:
    void Cancel();
};

/// "Please wait" while something is prepared that cannot be cancelled.
class frmMSGPreparing final : public WorkbenchForm {
public:
    explicit frmMSGPreparing(Workbench& wb);

    DelayedShow Window{*this};
    Label lblCaption{*this, "lblCaption"};
    ProgressBar Progress1{*this, "Progress1"};
};

/// Opens frmMSGPreparing with that text, for so many steps (0: unknown); its window comes when that
/// lasts.
void ShowPreparing(Workbench& wb, const std::string& text, long steps = 0);
/// One step of it is done.
void StepPreparing(Workbench& wb);
void EndPreparing(Workbench& wb);

}  // namespace mailvane
