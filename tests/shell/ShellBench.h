#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/settings/Settings.h"
#include "core/settings/frmSettings.h"
#include "shell/Folders.h"
#include "shell/frmMain.h"
#include "support/TestBench.h"

namespace mailvane::test {

/// The program as main makes it, without a screen.
class Shell : public testing::Test, protected HeadlessBench {
protected:
    frmMain& Start(const std::string& commandLine = {}, bool dialogs = false) {
        auto& form = wb.forms.Load<frmMain>();
        form.Start({commandLine, dialogs});
        return form;
    }
    /// As if the process had ended; another start may follow.
    void LeaveProgram() {
        wb.forms.UnloadAllExcept({});
        wb.state = {};
    }
    std::string Path(const std::string& name) const { return folder.Path() + "/" + name; }
    /// Carries a command out with that file chosen in its dialog.
    void Command(const std::string& name, const std::string& file = {}) {
        if (!file.empty()) windows.prompts.QueueFile(file);
        EXPECT_EQ(wb.shell->ExecuteCommand(name, ""), ControlAnswer::Done) << name;
        EXPECT_EQ(windows.prompts.Failure(), std::nullopt);
    }
    /// Presses that button as soon as its form stands open, once.
    void PressWhenOpen(const std::string& form, const std::string& button) {
        presses_.push_back({form, button});
    }
    /// What a start with dialogs asks is answered, so that it goes on without a project.
    void AnswerStartUpDialogs() {
        SaveUserSetting(wb, "Proxy", "Status", "yes");
        SaveUserSetting(wb, "Settings", "Welcome", "1");
        SaveUserSetting(wb, "Settings", "Load", "1");
    }
    bool IsOpen(const std::string& form) {
        const Form* found = wb.forms.FindByName(form);
        return found && found->Visible();
    }
    /// Gives the path of a recipients database, in which `filler` was stored and deleted.
    std::string MakePeople(const std::string& filler = {}) {
        Field notes;
        notes.name = "Notes";
        notes.type = FieldType::Memo;
        TableDef table;
        table.name = "People";
        table.fields = {notes};
        const auto made = wb.state.MainWorkspace->CreateDatabase(Path("people.db"));
        EXPECT_TRUE(made.Ok() && (*made)->AppendTable(table).Ok());
        const std::string insert = "INSERT INTO People (Notes) VALUES ('" + filler + "')";
        EXPECT_TRUE((*made)->Execute(insert).Ok());
        EXPECT_TRUE((*made)->Execute("DELETE * FROM People").Ok());
        (*made)->Close();
        return Path("people.db");
    }
    std::string Setting(const std::string& key) { return GetUserSetting(wb, "Settings", key); }

    Folders folders{wb};
    std::vector<std::string> opened_;  ///< the forms whose button was pressed, in order

private:
    struct Press {
        std::string form;
        std::string button;
    };
    void PressNext() {
        if (presses_.empty() || !IsOpen(presses_.front().form)) return GiveUpModal();
        idleRounds_ = 0;
        const Press press = presses_.front();
        presses_.erase(presses_.begin());
        opened_.push_back(press.form);
        Control* button = wb.forms.FindByName(press.form)->FindControl(press.button);
        ASSERT_NE(button, nullptr) << press.form << "." << press.button;
        static_cast<Button*>(button)->Press();
    }
    /// A modal form that no press is meant for would stand open for ever.
    void GiveUpModal() {
        constexpr int MostRounds = 500;
        if (windows.ModalDepth() == 0 || ++idleRounds_ < MostRounds) return;
        ADD_FAILURE() << "a modal form waits that nothing closes";
        windows.Quit();
    }
    std::vector<Press> presses_;
    int idleRounds_ = 0;
    Subscription idle_ = windows.idle.Observe([this] { PressNext(); });
};

}  // namespace mailvane::test
