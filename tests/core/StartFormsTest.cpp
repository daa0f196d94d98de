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

TEST(StartForms, WelcomeLeadsOn) {
    test::TestBench bench;
    const std::pair<Button frmWelcome::*, const char*> rows[] = {
        {&frmWelcome::cmdWizard, "New Project Wizard"},
        {&frmWelcome::cmdOpen, "Open"},
        {&frmWelcome::cmdMerge, "Merge"},
        {&frmWelcome::cmdHelp, "Help"},
    };
    for (const auto& [button, command] : rows) {
        bench.wb.state.FirstLaunch = true;
        auto& form = bench.wb.forms.Get<frmWelcome>();
        form.Show();
        (form.*button).Press();
        EXPECT_EQ(bench.shell.commands.back().first, command);
        const bool stays = std::string(command) == "Help";
        EXPECT_EQ(bench.wb.forms.IsFormLoaded("frmWelcome"), stays) << command;
        EXPECT_EQ(bench.wb.state.FirstLaunch, stays) << command;
    }
}

TEST(StartForms, WelcomeIsSwitchedOffForBothForms) {
    test::TestBench bench;
    auto& options = bench.wb.forms.Get<frmOptions>();
    for (const char* value : {"1", "0"}) {
        bench.wb.forms.Get<frmWelcome>().chkWelcome.SetByUser(value);
        EXPECT_EQ(GetUserSetting(bench.wb, "Settings", "Welcome"), value);
        EXPECT_EQ(options.chkWelcome.ShownText(), value);
        bench.wb.forms.Get<frmWelcome>().cmdClose.Press();
        EXPECT_EQ(bench.wb.forms.Get<frmWelcome>().chkWelcome.ShownText(), value);
    }
}

/// Shows the form modally and closes it, with its box ticked or not; false when it did not come.
template <class F>
bool Comes(test::TestBench& bench, Button F::*close, bool tick) {
    bool came = false;
    const auto closing = bench.windows.idle.Observe([&] {
        F* form = bench.wb.forms.Find<F>();
        if (!form) return;
        came = true;
        form->Check1.SetChecked(tick);
        (form->*close).Press();
    });
    ShowModalDialog(bench.wb, bench.wb.forms.Get<F>());
    return came;
}

template <class F>
void ComesUntilTicked(const char* key, Button F::*close) {
    test::TestBench bench;
    EXPECT_TRUE(Comes(bench, close, false));
    EXPECT_EQ(GetUserSetting(bench.wb, "Messages", key), "0");
    EXPECT_TRUE(Comes(bench, close, true));
    EXPECT_EQ(GetUserSetting(bench.wb, "Messages", key), "1");
    EXPECT_FALSE(Comes(bench, close, false));
    EXPECT_EQ(GetUserSetting(bench.wb, "Messages", key), "1");
}

TEST(StartForms, WarningsComeUntilTicked) {
    ComesUntilTicked("Resources", &frmMSGResources::cmdOk);
    ComesUntilTicked("LargeEmailDB", &frmMSGLargeEmailDB::SSCommand1);
    ComesUntilTicked("Compact", &frmMSGCompact::cmdCancel);
}

TEST(StartForms, CompactingOnCommandAsksUnlessTicked) {
    test::TestBench bench;
    auto& options = bench.wb.forms.Get<frmOptions>();
    bool confirm = false;
    const Subscription answer = bench.windows.idle.Observe([&] {
        if (auto* form = bench.wb.forms.Find<frmMSGCompact>())
            (confirm ? form->cmdStart : form->cmdCancel).Press();
    });
    options.cmdCompactM.Press();
    EXPECT_EQ(bench.shell.messagesCompacted, 0);
    confirm = true;
    bench.Prompts().QueueBox(BoxAnswer::Ok, "Successfully compacted message folders.");
    options.cmdCompactM.Press();
    EXPECT_EQ(bench.shell.messagesCompacted, 1);
    confirm = false;
    SaveUserSetting(bench.wb, "Messages", "Compact", "1");
    bench.Prompts().QueueBox(BoxAnswer::Ok, "open existing database first.");
    options.cmdCompactD.Press();
    WriteFileText(bench.InProgramFolder("people.db"), "");
    auto& settings = bench.wb.forms.Get<frmSettings>();
    bench.Prompts().UseDefaults();
    settings.txtAccessDBPath.SetText(bench.InProgramFolder("people.db"));
    options.cmdCompactD.Press();
    EXPECT_EQ(bench.shell.recipientsCompacted, 1) << "ticked: no question";
    EXPECT_TRUE(bench.Prompts().ExpectBox("Successfully compacted the 'people.db' database."));
}

TEST(StartForms, LargeStoreIsCompacted) {
    test::TestBench bench;
    bench.Prompts().QueueBox(BoxAnswer::Ok);
    bench.wb.forms.Get<frmMSGLargeEmailDB>().cmdCompact.Press();
    EXPECT_EQ(bench.shell.messagesCompacted, 1);
    EXPECT_TRUE(bench.Prompts().ExpectBox("Successfully compacted message folders."));
}

TEST(StartForms, ResourcesAreReadAgain) {
    test::TestBench bench;
    auto& form = bench.wb.forms.Get<frmMSGResources>();
    form.lblResources.SetText("");
    bench.wb.platform.windows.WaitSeconds(1.1);
    EXPECT_EQ(form.lblResources.Text(), "Free resources: 0%");
}

}  // namespace
}  // namespace mailvane
