#pragma once

#include <string>

#include "core/Workbench.h"

namespace mailvane {

/// The dialer. This system has no dial-up lines: it lists none, and dialing says so.
class frmDial final : public WorkbenchForm {
public:
    explicit frmDial(Workbench& wb);

    Tabs Tab1{*this, "Tab1"};
    ListBox lPhonebook{*this, "lPhonebook"};
    /// An entry by hand: user, password, domain, phone number, entry.
    TextBox Text1_0{*this, "Text1_0"};
    TextBox Text1_1{*this, "Text1_1"};
    TextBox Text1_2{*this, "Text1_2"};
    TextBox Text1_3{*this, "Text1_3"};
    TextBox Text1_4{*this, "Text1_4"};
    ListBox lConnections{*this, "lConnections"};
    Label lblStatus{*this, "lblStatus"};
    Button cmdDialNow{*this, "cmdDialNow", [this] { DialNow(); }};
    Button cmdStop{*this, "cmdStop", [this] { Stop(); }};
    Button cmdDisconnect{*this, "cmdDisconnect", [this] { Disconnect(); }};
    Button SSCommand1{*this, "SSCommand1", [this] { ShowHelp(); }};
    Button cmdOk{*this, "cmdOk", [this] { Hide(); }};
    Button cmdCancel{*this, "cmdCancel", [this] { Unload(); }};

    /// Pages of Tab1.
    enum Page { PhonebookPage, ManualPage };

protected:
    void OnLoad() override;

private:
    void DialNow();
    void Stop();
    void Disconnect();
    void ShowHelp();
    void StatusEvent(const std::string& state, const std::string& number);
};

/// True when the line may be used: always, unless the connection setting says "modem".
bool EnsureDialUp(Workbench& wb);

}  // namespace mailvane
