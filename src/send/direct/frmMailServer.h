#pragma once

#include <string>
#include <vector>

#include "core/Workbench.h"

namespace mailvane {

/// The internal mail server: whether messages go straight to the recipients' servers, which name
/// service tells those, and the session logs.
class frmMailServer final : public WorkbenchForm {
public:
    explicit frmMailServer(Workbench& wb);

    CheckBox chkEnable{*this, "chkEnable"};
    OptionButton optDefaultDNS{*this, "optDefaultDNS", true};
    OptionButton optCustomDNS{*this, "optCustomDNS"};
    TextBox txtDNS{*this, "txtDNS"};
    CheckBox chkLogs{*this, "chkLogs"};
    ComboBox cmbLogs{*this, "cmbLogs"};
    Button cmdLogs{*this, "cmdLogs", [this] { OpenLog(); }};
    CheckBox chkDelete{*this, "chkDelete"};
    TextBox txtDays{*this, "txtDays", "3"};
    Button cmdLAN{*this, "cmdLAN", [this] { ShowHelp(); }};
    Button cmdOk{*this, "cmdOk", [this] { Accept(); }};
    Button cmdCancel{*this, "cmdCancel", [this] { Unload(); }};

    /// Takes everything from the settings again: a form that was closed with OK stays loaded.
    void ReadSettings();

protected:
    void OnLoad() override;

private:
    void ApplyDependentStates();
    void ReadLogs();
    void DeleteOldLogs(const std::string& folder);
    void FillLogs(const std::string& folder);
    void OpenLog();
    void ShowHelp();
    void Accept();
    void WriteSettings();
};

/// Opens the form, with the settings as they are now.
void ShowMailServer(Workbench& wb);

}  // namespace mailvane
