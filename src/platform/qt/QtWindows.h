#pragma once

#include <memory>

#include "platform/forms/WindowSystem.h"

class QDialog;
class QWidget;

namespace mailvane {

/// The window system on Qt's widgets. At most one at a time in a process. The window of a form is
/// made when it is first shown; a form without a design never comes to the screen.
class QtWindows final : public WindowSystem {
public:
    /// Takes the arguments that are Qt's own out of the list.
    QtWindows(int& argumentCount, char** arguments, Clock& clock);
    ~QtWindows() override;

    void ShowForm(Form& form) override;
    void HideForm(Form& form) override;
    void BringToFront(Form& form) override;
    void FormChanged(Form& form) override;
    void FormGone(Form& form) override;
    void FocusControl(Control& control) override;
    void ArrangeChildren(Arrangement arrangement) override;
    void SetPointer(MousePointer pointer) override;
    void StartTimer(Timer& timer) override;
    void StopTimer(Timer& timer) override;
    void PopupMenu(Form& form, const std::string& band) override;
    PrintOutcome PrintTable(const PrintJob& job) override;
    void PumpEvents() override;

    /// The window of the form, made when there is none yet; null for a form without a design. Owned
    /// here.
    QWidget* WindowOf(Form& form);

protected:
    void BeginModal(Form& form) override;
    void EndModal() override;
    BoxAnswer AskMessageBox(const BoxRequest& request) override;
    std::optional<std::string> AskInput(const InputRequest& request) override;
    std::optional<std::string> AskFile(const FileRequest& request) override;
    void WaitForEvents(std::chrono::milliseconds atMost) override;

private:
    void RunDialog(QDialog& dialog);
    struct Desktop;
    std::unique_ptr<Desktop> desktop_;
};

}  // namespace mailvane
