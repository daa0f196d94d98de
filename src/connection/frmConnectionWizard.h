#pragma once

#include "core/Workbench.h"
#include "core/project/WizardPages.h"
#include "core/settings/Proxy.h"

namespace mailvane {

/// Asks at the first start how this machine reaches the network.
class frmConnectionWizard final : public WorkbenchForm {
public:
    explicit frmConnectionWizard(Workbench& wb);

    Panel pnlConnection{*this, "pnlConnection"};
    OptionButton optDirect{*this, "optDirect", true};
    OptionButton optModem{*this, "optModem"};
    Panel pnlProxy{*this, "pnlProxy"};
    CheckBox chkProxy{*this, "chkProxy"};
    TextBox txtProxy{*this, "txtProxy"};
    TextBox txtPort{*this, "txtPort"};
    Panel pnlFinish{*this, "pnlFinish"};
    Button cmdBack{*this, "cmdBack"};
    Button cmdNext{*this, "cmdNext"};
    Button cmdFinish{*this, "cmdFinish", [this] { Finish(); }};
    Button cmdCancel{*this, "cmdCancel", [this] { Cancel(); }};

    void OnCloseBox() override { Cancel(); }

protected:
    void OnLoad() override;

private:
    void ApplyProxyChoice();
    void NoteOffered();
    void Finish();
    void Cancel();
    WizardPages pages_{
        {{&pnlConnection, &optDirect}, {&pnlProxy, &chkProxy}, {&pnlFinish, &cmdFinish}},
        cmdBack,
        cmdNext};
};

}  // namespace mailvane
