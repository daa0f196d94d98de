#include <gtest/gtest.h>

#include "core/MessageBoxes.h"
#include "core/Paths.h"
#include "core/notices/frmMSGCompact.h"
#include "core/notices/frmMSGLargeEmailDB.h"
#include "core/notices/frmMSGResources.h"
#include "core/project/frmWelcome.h"
#include "core/settings/Settings.h"
#include "core/settings/frmOptions.h"
#include "core/settings/frmSettings.h"
#include "support/TestBench.h"

namespace mailvane {
namespace {

struct StartForms : testing::Test, test::TestBench {
    /// Shows the form modally, and closes it with its box ticked in the second place.
    template <class F>
    void ComesUntilTicked(const char* key, Button F::*close) {
        int came = 0;
        const Subscription closing = windows.idle.Observe([&] {
            F* form = wb.forms.Find<F>();
            if (!form) return;
            form->Check1.SetChecked(++came == 2);
            (form->*close).Press();
        });
        for (const char* stored : {"0", "1", "1"}) {
            ShowModalDialog(wb, wb.forms.Get<F>());
            EXPECT_EQ(GetUserSetting(wb, "Messages", key), stored);
        }
        EXPECT_EQ(came, 2);
    }
};

TEST_F(StartForms, WelcomeLeadsOn) {
    const std::pair<Button frmWelcome::*, const char*> rows[] = {
        {&frmWelcome::cmdWizard, "New Project Wizard"},
        {&frmWelcome::cmdOpen, "Open"},
        {&frmWelcome::cmdMerge, "Merge"},
        {&frmWelcome::cmdHelp, "Help"},
    };
    for (const auto& [button, command] : rows) {
        wb.state.FirstLaunch = true;
        auto& form = wb.forms.Get<frmWelcome>();
        form.Show();
        (form.*button).Press();
        EXPECT_EQ(shell.commands.back().first, command);
        const bool stays = std::string(command) == "Help";
        EXPECT_EQ(wb.forms.IsFormLoaded("frmWelcome"), stays) << command;
        EXPECT_EQ(wb.state.FirstLaunch, stays) << command;
    }
}

TEST_F(StartForms, WelcomeIsSwitchedOffForBothForms) {
    auto& options = wb.forms.Get<frmOptions>();
    for (const char* value : {"1", "0"}) {
        wb.forms.Get<frmWelcome>().chkWelcome.SetByUser(value);
        EXPECT_EQ(GetUserSetting(wb, "Settings", "Welcome"), value);
        EXPECT_EQ(options.chkWelcome.ShownText(), value);
        wb.forms.Get<frmWelcome>().cmdClose.Press();
        EXPECT_EQ(wb.forms.Get<frmWelcome>().chkWelcome.ShownText(), value);
    }
}

TEST_F(StartForms, WarningsComeUntilTicked) {
    ComesUntilTicked("Resources", &frmMSGResources::cmdOk);
    ComesUntilTicked("LargeEmailDB", &frmMSGLargeEmailDB::SSCommand1);
    ComesUntilTicked("Compact", &frmMSGCompact::cmdCancel);
}

TEST_F(StartForms, CompactingOnCommandAsksUnlessTicked) {
    auto& options = wb.forms.Get<frmOptions>();
    bool confirm = false;
    const Subscription answer = windows.idle.Observe([&] {
        if (auto* form = wb.forms.Find<frmMSGCompact>())
            (confirm ? form->cmdStart : form->cmdCancel).Press();
    });
    options.cmdCompactM.Press();
    EXPECT_EQ(shell.messagesCompacted, 0);
    confirm = true;
    Prompts().QueueBox(BoxAnswer::Ok, "Successfully compacted message folders.");
    options.cmdCompactM.Press();
    EXPECT_EQ(shell.messagesCompacted, 1);
    Prompts().QueueBox(BoxAnswer::Ok, "Successfully compacted message folders.");
    wb.forms.Get<frmMSGLargeEmailDB>().cmdCompact.Press();
    EXPECT_EQ(shell.messagesCompacted, 2);
    confirm = false;
    SaveUserSetting(wb, "Messages", "Compact", "1");
    Prompts().QueueBox(BoxAnswer::Ok, "open existing database first.");
    options.cmdCompactD.Press();
    WriteFileText(InProgramFolder("people.db"), "");
    Prompts().UseDefaults();
    wb.forms.Get<frmSettings>().txtAccessDBPath.SetText(InProgramFolder("people.db"));
    options.cmdCompactD.Press();
    EXPECT_EQ(shell.recipientsCompacted, 1) << "ticked: no question";
    EXPECT_TRUE(Prompts().ExpectBox("Successfully compacted the 'people.db' database."));
}

}  // namespace
}  // namespace mailvane
