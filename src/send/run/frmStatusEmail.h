#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/Workbench.h"

namespace mailvane {

/// Caption of frmStatusEmail while a send run has it.
inline constexpr const char* SendingCaption = "Sending messages";

/// The measure of LastSmtpActivity.
long SecondsSinceMidnight(const DateTime& time);

/// The status of a send or receive run: its messages, its progress, the conversation with the
/// server.
class frmStatusEmail final : public WorkbenchForm {
public:
    explicit frmStatusEmail(Workbench& wb);

    Label lStatus{*this, "lStatus"};
    Label lStats{*this, "lStats"};
    Grid lMessages{*this, "lMessages"};
    ProgressBar Progress1{*this, "Progress1"};
    CheckBox chkHang{*this, "chkHang"};
    Button cmdDetails{*this, "cmdDetails", [this] { ToggleDetails(); }, "&Details >>"};
    Button cmdNext{*this, "cmdNext", [this] { GiveUpMessage(); }};
    Button cmdCancel{*this, "cmdCancel", [this] { Cancel(); }};
    ListBox List1{*this, "List1"};
    Timer Timer1{*this, "Timer1", std::chrono::seconds(1), [this] { CheckSilence(); }};

    // The run that has the form puts its work here, and takes it away at its end.
    std::function<void()> onStopTransfer;   ///< Cancel: end the transfer and the connection
    std::function<void()> onGiveUpMessage;  ///< Next: end the transfer of the present message

    /// lStatus, and panel 1 of the main window.
    void ShowStatus(const std::string& text);
    void ClearMessages();
    void AddMessage(std::string subject, std::string recipient, std::string sender);
    void ShowMessages();  ///< after the last AddMessage
    /// Makes the row current and gives it the status; a row that is not there is passed over.
    void SetMessageStatus(std::size_t row, const std::string& status);

    /// Adds a line to the conversation. It comes into List1 a little later, or with ShowProtocol:
    /// lines are many, and the list is drawn as a whole.
    void AddProtocolLine(std::string line);
    void ShowProtocol();
    void ShowProtocolWhenDue();

    void OnCloseBox() override;

protected:
    void OnLoad() override;
    void OnUnload() override;

private:
    void ToggleDetails();
    void GiveUpMessage();
    void Cancel();
    void CheckSilence();
    std::string LayoutPath() const;
    std::shared_ptr<GridTable> messages_ = std::make_shared<GridTable>();
    std::vector<std::string> newLines_;
    std::chrono::milliseconds protocolShown_{0};
};

}  // namespace mailvane
