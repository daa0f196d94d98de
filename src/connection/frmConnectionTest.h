#pragma once

#include <string>

#include "connection/ConnectionTest.h"
#include "core/Workbench.h"

namespace mailvane {

/// Tries a mail account out and says step by step what worked.
class frmConnectionTest final : public WorkbenchForm {
public:
    explicit frmConnectionTest(Workbench& wb);

    Label lblServer{*this, "lblServer"};
    TextBox txtReport{*this, "txtReport"};
    Button cmdCancel{*this, "cmdCancel", [this] { canceled_ = true; }};
    Button cmdClose{*this, "cmdClose", [this] { OnCloseBox(); }};

    /// Begins as soon as the program is idle, with the form open.
    void Start(const MailAccount& account);
    void OnCloseBox() override;

private:
    void Run(const MailAccount& account);
    void AddLine(const std::string& line);
    bool running_ = false;
    bool canceled_ = false;
};

/// Opens the form, modally, on a test of the account.
void ShowConnectionTest(Workbench& wb, const MailAccount& account);

}  // namespace mailvane
