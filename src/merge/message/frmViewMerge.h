#pragma once

#include <string>
#include <vector>

#include "core/Workbench.h"
#include "core/project/Project.h"
#include "core/records/DataControl.h"
#include "database/view/frmViewDatabase.h"
#include "merge/message/clsAutoComplete.h"

namespace mailvane {

/// The merge view: one message with field tags, written for the table that the database view
/// shows. The first seven controls are the message document, in its order.
class frmViewMerge final : public WorkbenchForm {
public:
    explicit frmViewMerge(Workbench& wb);

    TextBox txtFrom{*this, "txtFrom"};
    TextBox txtSubject{*this, "txtSubject"};
    RichTextBox txtBody{*this, "txtBody"};
    ComboBox txtTo{*this, "txtTo"};
    ListBox lstAttach{*this, "lstAttach"};
    ListBox lstHTML{*this, "lstHTML"};
    Label lblTable{*this, "lblTable"};

    ActiveBar ActiveBar1{*this, "ActiveBar1"};
    ComboBox cmbTable{*this, "cmbTable"};
    ListBox lstFields{*this, "lstFields"};
    Panel pnlTable{*this, "pnlTable"};
    Grid Grid1{*this, "Grid1"};
    Button cmdRefresh{*this, "cmdRefresh", Button::HiddenButton};
    Button cmdSCHSend{*this, "cmdSCHSend", Button::HiddenButton};  ///< sends ScheduledMessage
    Timer Timer1{*this, "Timer1", std::chrono::milliseconds(500)};

    DataControl Data1;
    RecentFile RecentFile1;

    /// Makes the file the form's message. Its table becomes the table in use when the database has
    /// it; otherwise a box says so and the table stays.
    void OpenMergeDocument(const std::string& path);
    void SaveMergeDocument(const std::string& path);
    /// "" while the message has no file.
    const std::string& CurrentFile() const { return currentFile_; }

    std::string CurrentMergeTable() const;
    /// Chooses the first column whose name holds "email" or "e-mail".
    void SelectEmailField();
    void FillFieldLists();
    void FillTableList();
    /// The checks before a run; opens frmMerge when they hold.
    void CheckAndStartMerge(bool sendNow);
    /// Sends the message made for the row under the cursor to an address that the user types.
    void TestMergeMessage();
    /// Makes a text known to the completion of addresses.
    void LearnAddress(const std::string& text);

    /// The file of the message that a scheduled task sends.
    std::string ScheduledMessage;

    /// "1" high, "3" normal, "5" low.
    const std::string& PriorityValue() const { return priority_; }
    /// Those that a run locks: what it was started with counts to its end.
    std::vector<Control*> MessageControls();

protected:
    void OnLoad() override;
    void OnActivate() override;
    bool OnQueryUnload() override;
    void OnUnload() override;

private:
    static constexpr const char* AccessingRecords = "Accessing records, please wait...";

    void WireLists();
    bool DatabaseNamed();
    void ObserveView(frmViewDatabase& view);
    void FollowView();
    void FollowNewDatabase();
    std::vector<std::string> TableNames() const;
    void ChooseColumns();
    void SwitchTable();
    void UseTable(const std::string& table);
    void Refresh();
    void KeepInLine();
    void ShowRecordCount();
    void ShowPanel(const std::string& text);
    void PresetSender();
    void RememberFile(const std::string& path);
    void FindTableOfDocument(int pendingToIndex);
    void TellWrongTable();
    void WarnOfScarceResources();

    // Sending: frmViewMergeSending.cpp
    bool CheckMessage();
    void RequeryRecipients();
    bool HasRecipients() const;
    void TellNoRecords();
    std::string AskTestAddress();
    DaoResult<bool> StoreTestMessage(const std::string& address);
    void SendScheduled();

    // Commands: frmViewMergeCommands.cpp
    void AddOwnTools();
    void AddPriorities();
    void AddRecentFiles();
    void OpenMessage();
    void NewMessage();
    void SaveMessage();
    void OpenExisting(std::string path);
    void ChooseFile(ListBox& list);
    void SetPriority(const std::string& toolName);
    void ShowRecentFiles(const std::vector<std::string>& paths);

    std::string currentFile_;
    std::string addressList_;
    clsAutoComplete completion_;
    std::string priority_ = "3";
    bool loading_ = false;
    bool filling_ = false;
    Subscription viewMade_;
    Subscription databaseCreated_;
    Subscription tableShown_;
    Subscription viewCloses_;
};

/// The sender line of the project's name and address; "" unless it has both.
std::string SenderLine(Workbench& wb);

}  // namespace mailvane
