#pragma once

#include <array>

#include "core/Workbench.h"
#include "core/settings/Proxy.h"

namespace mailvane {

/// The program's live options: its controls hold them as long as the program runs, mostly hidden.
/// What the user changes is in force once OK has stored it.
class frmOptions final : public WorkbenchForm {
public:
    explicit frmOptions(Workbench& wb);

    Tabs Tab1{*this, "Tab1"};
    CheckBox chkLoad{*this, "chkLoad"};
    CheckBox chkSave{*this, "chkSave"};
    CheckBox chkUpgrade{*this, "chkUpgrade"};
    CheckBox chkWelcome{*this, "chkWelcome"};
    CheckBox chkCompactMessages{*this, "chkCompactMessages"};
    CheckBox chkCompactDatabase{*this, "chkCompactDatabase"};
    CheckBox chkPopUp{*this, "chkPopUp"};
    OptionButton optOrientation0{*this, "optOrientation0", true, "orientation"};
    OptionButton optOrientation1{*this, "optOrientation1", false, "orientation"};
    OptionButton optOrientation2{*this, "optOrientation2", false, "orientation"};
    OptionButton optOrientation3{*this, "optOrientation3", false, "orientation"};
    CheckBox chkHide{*this, "chkHide"};
    TextBox txtHide{*this, "txtHide", "10"};
    OptionButton optDial{*this, "optDial", false, "connection"};
    OptionButton optDirect{*this, "optDirect", true, "connection"};
    CheckBox chkProxy{*this, "chkProxy"};
    TextBox txtProxy{*this, "txtProxy"};
    TextBox txtPort{*this, "txtPort"};
    ListBox List1{*this, "List1", ListBox::Selection::Ticks};
    Button cmdCompactM{*this, "cmdCompactM", [this] { CompactMessages(); }};
    Button cmdCompactD{*this, "cmdCompactD", [this] { CompactDatabase(); }};
    Button cmdOk{*this, "cmdOk", [this] { Store(); }};
    Button cmdCancel{*this, "cmdCancel", [this] { Cancel(); }};

    void ShowProxy(const ProxySettings& proxy);
    void ApplyTipTime();  ///< to all windows
    void OnCloseBox() override { Cancel(); }

protected:
    void OnLoad() override;
    void OnActivate() override;

private:
    std::array<OptionButton*, 4> Orientations();
    void LoadOrientation();
    void LoadMessage(int index);
    void LoadMessages();
    void LimitSeconds();
    bool ConfirmCompacting();
    void CompactMessages();
    void CompactDatabase();
    void Store();
    void Cancel();
    bool open_ = false;  ///< on the screen, for the user to change
};

}  // namespace mailvane
