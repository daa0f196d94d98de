#pragma once

#include "core/Workbench.h"

namespace mailvane {

/// Progress of a long run: two captions, a bar, Cancel.
class frmStatus final : public WorkbenchForm {
public:
    explicit frmStatus(Workbench& wb);

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

    Label lblCaption{*this, "lblCaption"};
    ProgressBar Progress1{*this, "Progress1"};
};

/// Shows frmMSGPreparing with that text and draws it.
void ShowPreparing(Workbench& wb, const std::string& text);
void EndPreparing(Workbench& wb);

}  // namespace mailvane
