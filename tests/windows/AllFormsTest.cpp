#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <set>

#include "connection/frmDial.h"
#include "core/frmSettings.h"
#include "core/frmStatus.h"
#include "core/shell/frmMain.h"
#include "database/DatabaseService.h"
#include "database/TextImport.h"
#include "database/frmDataWizard.h"
#include "database/frmViewDatabase.h"
#include "merge/frmMSGOutbox.h"
#include "merge/frmMerge.h"
#include "merge/frmViewMerge.h"
#include "platform/os/Files.h"
#include "platform/qt/FormCheck.h"
#include "platform/qt/QtWindows.h"
#include "platform/qt/Screenshots.h"
#include "send/SendService.h"
#include "send/frmMSGSndRecvError.h"
#include "send/frmStatusEmail.h"
#include "store/frmViewEmail.h"
#include "support/RecordingProcesses.h"
#include "support/TempFolder.h"

namespace mailvane {
namespace {

namespace fs = std::filesystem;

/// The program in real windows, on a project with the recipients of the sample campaign.
class AllForms : public testing::Test {
protected:
    static void SetUpTestSuite() { ::setenv("QT_QPA_PLATFORM", "offscreen", 1); }

    void SetUp() override {
        windows.PlayPrompts(&prompts);
        wb.forms.Load<frmMain>().Start({});
        auto made = wb.state.MainWorkspace->CreateDatabase(folder.File("recipients.db"));
        ASSERT_TRUE(made.Ok());
        const auto imported =
            ImportText(**made, {MAILVANE_SOURCE_DIR "/examples/recipients.csv", "Recipients", true},
                       [](std::int64_t) { return true; });
        ASSERT_EQ(imported.error, "");
        (*made)->Close();
        auto& settings = wb.forms.Get<frmSettings>();
        settings.txtName.SetText("Sample Sender");
        settings.txtEmail.SetText("sender@example.com");
        settings.txtSMTPServer.SetText("127.0.0.1");
        settings.txtAccessDBPath.SetText(folder.File("recipients.db"));
        wb.forms.Get<frmViewDatabase>();
        WriteMessage(wb.forms.Get<frmViewMerge>());
    }

    static void WriteMessage(frmViewMerge& merge) {
        merge.txtSubject.SetText("News for [First Name] from [City]");
        merge.txtBody.SetText(
            "Dear [First Name] [Last Name],\r\n\r\nyou have been our customer [Customer] since "
            "[Since].\r\nHere is what is new for [Company].\r\n\r\nKind regards\r\nSample Sender");
    }

    /// Every form of the program that has a window, loaded.
    std::vector<Form*> LoadAll() {
        return {&wb.forms.Get<frmSettings>(),        &wb.forms.Get<frmStatus>(),
                &wb.forms.Get<frmMSGPreparing>(),    &wb.forms.Get<frmDial>(),
                &wb.forms.Get<frmDataWizard>(),      &wb.forms.Get<frmViewDatabase>(),
                &wb.forms.Get<frmViewMerge>(),       &wb.forms.Get<frmMerge>(),
                &wb.forms.Get<frmMSGOutbox>(),       &wb.forms.Get<frmStatusEmail>(),
                &wb.forms.Get<frmMSGSndRecvError>(), &wb.forms.Get<frmViewEmail>()};
    }

    void Photograph(Form& form, const std::string& name) {
        const std::string path = std::string(MAILVANE_BUILD_DIR) + "/screenshots/" + name + ".png";
        EXPECT_TRUE(SaveScreenshot(windows, form, path)) << name;
        EXPECT_GT(FileSize(path), 0) << name;
    }

    test::TempFolder folder;
    SystemClock clock;
    int argumentCount = 1;
    std::string programName = "mailvane";
    char* arguments[2] = {programName.data(), nullptr};
    QtWindows windows{argumentCount, arguments, clock};
    PromptScript prompts;
    test::RecordingProcesses processes;
    Platform platform{windows,
                      clock,
                      processes,
                      folder.File("program"),
                      MAILVANE_SOURCE_DIR "/share",
                      folder.File("registry.ini")};
    Workbench wb{platform};
    DatabaseService databases{wb};
    SendService sending{wb};
};

TEST_F(AllForms, FitTheirWindows) {
    std::set<std::string> designs;
    for (const auto& file : fs::recursive_directory_iterator(MAILVANE_SOURCE_DIR "/src"))
        if (file.path().extension() == ".ui") designs.insert(file.path().stem());
    for (Form* form : LoadAll()) {
        EXPECT_EQ(designs.erase(form->Name()), 1u) << form->Name() << " has no design";
        EXPECT_EQ(CheckForm(*form), std::vector<std::string>()) << form->Name();
    }
    EXPECT_TRUE(designs.empty()) << *designs.begin() << " is not looked at here";
    EXPECT_EQ(prompts.Failure(), std::nullopt);
}

TEST_F(AllForms, LookGoodInLightAndDark) {
    fs::create_directories(std::string(MAILVANE_BUILD_DIR) + "/screenshots");
    for (const bool dark : {false, true}) {
        UseDarkPalette(dark);
        const std::string ending = dark ? "-dark" : "";
        for (Form* form : LoadAll()) {
            if (form->Style() == FormStyle::Child) form->Show();
            Photograph(*form, form->Name() + ending);
        }
        wb.forms.Get<frmViewEmail>().Hide();
        wb.forms.Get<frmViewMerge>().BringToFront();
        Photograph(wb.shell->MainForm(), "frmMain" + ending);
    }
    UseDarkPalette(false);
}

}  // namespace
}  // namespace mailvane
