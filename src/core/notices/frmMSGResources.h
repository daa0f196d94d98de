#pragma once

#include "core/notices/NoticeForm.h"

namespace mailvane {

/// Says that the system is low on resources.
class frmMSGResources final : public NoticeForm {
public:
    explicit frmMSGResources(Workbench& wb);

    Label lblText{*this, "lblText",
                  "Your system is low on resources. Please close programs that you do not need "
                  "before you go on."};
    Label lblResources{*this, "lblResources"};
    CheckBox Check1{*this, "Check1"};
    Button cmdOk{*this, "cmdOk", [this] { Unload(); }};
    Timer Timer1{*this, "Timer1", std::chrono::seconds(1), [this] { GetResources(); }};

protected:
    void OnLoad() override;

private:
    void GetResources();
};

}  // namespace mailvane
