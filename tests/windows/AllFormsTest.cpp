#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>
#include <QListWidget>
#include <QPointer>
#include <cstdlib>
#include <filesystem>
#include <set>

#include "connection/frmConnectionTest.h"
#include "connection/frmConnectionWizard.h"
#include "connection/frmDial.h"
#include "connection/frmSMTPAuthentication.h"
#include "core/notices/frmMSGCompact.h"
#include "core/notices/frmMSGLargeEmailDB.h"
#include "core/notices/frmMSGResources.h"
#include "core/project/Project.h"
#include "core/project/frmProjectDialog.h"
#include "core/project/frmProjectWizard.h"
#include "core/project/frmWelcome.h"
#include "core/run/frmStatus.h"
#include "core/settings/Settings.h"
#include "core/settings/frmOptions.h"
#include "core/settings/frmSettings.h"
#include "database/design/frmDatabaseTable.h"
#include "database/design/frmDatabaseTablePK.h"
#include "database/exchange/TableFile.h"
#include "database/exchange/TableImport.h"
#include "database/exchange/frmDataWizard.h"
#include "database/exchange/frmDatabasePrint.h"
#include "database/tools/frmDatabaseCopy.h"
#include "database/view/frmFind.h"
#include "database/view/frmMSGDeleteDatabase.h"
#include "database/view/frmMSGMemo.h"
#include "database/view/frmViewDatabase.h"
#include "merge/check/frmMergeCheck.h"
#include "merge/check/frmMergePreview.h"
#include "merge/message/frmSpelling.h"
#include "merge/message/frmViewMerge.h"
#include "merge/run/frmMSGOutbox.h"
#include "merge/run/frmMerge.h"
#include "merge/tags/frmTagCGI.h"
#include "merge/tags/frmTagCGIAdd.h"
#include "merge/tags/frmTagProgram.h"
#include "merge/tags/frmTagProgramAdd.h"
#include "platform/os/Files.h"
#include "platform/qt/QtWindows.h"
#include "platform/qt/check/FormCheck.h"
#include "platform/qt/check/LayoutCheck.h"
#include "platform/qt/check/Screenshots.h"
#include "platform/tables/text/FormatGuess.h"
#include "send/direct/frmMailServer.h"
#include "send/report/frmDeliveryReport.h"
#include "send/run/frmMSGSndRecvError.h"
#include "send/run/frmStatusEmail.h"
#include "shell/Folders.h"
#include "shell/frmAbout.h"
#include "shell/frmMain.h"
#include "shell/frmSplash.h"
#include "store/view/frmViewEmail.h"
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
        wb.forms.Load<frmMain>().Start({.dialogs = false});
        auto made = wb.state.MainWorkspace->CreateDatabase(folder.File("recipients.db"));
        ASSERT_TRUE(made.Ok());
        const std::string list = MAILVANE_SOURCE_DIR "/examples/recipients.csv";
        std::string error;
        const auto source = OpenTableFile(list, GuessFormat(list), error);
        ASSERT_TRUE(source) << error;
        ASSERT_EQ(ImportTable(**made, *source, {.table = "Recipients"},
                              [](std::int64_t, std::int64_t) { return true; })
                      .error,
                  "");
        (*made)->Close();
        auto& settings = wb.forms.Get<frmSettings>();
        settings.txtName.SetText("Sample Sender");
        settings.txtEmail.SetText("sender@example.com");
        settings.txtSMTPServer.SetText("127.0.0.1");
        settings.txtAccessDBPath.SetText(folder.File("recipients.db"));
        wb.state.CurrentProjectFile = folder.File("Sample.poc");
        SaveProject(wb, wb.state.CurrentProjectFile);
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
        return {&wb.forms.Get<frmSettings>(),
                &wb.forms.Get<frmStatus>(),
                &wb.forms.Get<frmMSGPreparing>(),
                &wb.forms.Get<frmDial>(),
                &wb.forms.Get<frmDataWizard>(),
                &wb.forms.Get<frmDatabaseCopy>(),
                &wb.forms.Get<frmDatabasePrint>(),
                &wb.forms.Get<frmDatabaseTablePK>(),
                &wb.forms.Get<frmFind>(),
                &wb.forms.Get<frmMSGDeleteDatabase>(),
                &wb.forms.Get<frmMSGMemo>(),
                &wb.forms.Get<frmViewDatabase>(),
                &wb.forms.Get<frmViewMerge>(),
                &wb.forms.Get<frmMerge>(),
                &wb.forms.Get<frmMSGOutbox>(),
                &wb.forms.Get<frmMergeCheck>(),
                &wb.forms.Get<frmMergePreview>(),
                &wb.forms.Get<frmSpelling>(),
                &wb.forms.Get<frmTagProgram>(),
                &wb.forms.Get<frmTagProgramAdd>(),
                &wb.forms.Get<frmTagCGI>(),
                &wb.forms.Get<frmTagCGIAdd>(),
                &wb.forms.Get<frmStatusEmail>(),
                &wb.forms.Get<frmDeliveryReport>(),
                &wb.forms.Get<frmMSGSndRecvError>(),
                &wb.forms.Get<frmViewEmail>(),
                &wb.forms.Get<frmOptions>(),
                &wb.forms.Get<frmConnectionWizard>(),
                &wb.forms.Get<frmProjectWizard>(),
                &wb.forms.Get<frmProjectDialog>(),
                &wb.forms.Get<frmWelcome>(),
                &wb.forms.Get<frmAbout>(),
                &wb.forms.Get<frmSplash>(),
                &wb.forms.Get<frmMSGResources>(),
                &wb.forms.Get<frmMSGLargeEmailDB>(),
                &wb.forms.Get<frmMSGCompact>(),
                &wb.forms.Get<frmConnectionTest>(),
                &wb.forms.Get<frmMailServer>(),
                &wb.forms.Get<frmSMTPAuthentication>()};
    }

    /// Those of a large scale have a folder of their own.
    static std::string ScreenshotFolder() {
        const int percent = static_cast<int>(qApp->devicePixelRatio() * 100);
        return std::string(MAILVANE_BUILD_DIR) + "/screenshots" +
               (percent == 100 ? "" : "/" + std::to_string(percent));
    }

    void Photograph(Form& form, const std::string& name) {
        const std::string path = ScreenshotFolder() + "/" + name + ".png";
        EXPECT_TRUE(SaveScreenshot(windows, form, path)) << name;
        EXPECT_EQ(CheckLayout(*windows.WindowOf(form)), std::vector<std::string>()) << name;
    }

    /// The view has no connection while the designer is there.
    frmDatabaseTable& OpenDesigner() {
        auto& designer = wb.forms.Get<frmDatabaseTable>();
        designer.NameTable("Recipients");
        designer.cmdNapuniPolja.Press();
        designer.lstFields.SetByUser("#1");
        return designer;
    }

    void PhotographDesigner(const std::string& ending) {
        auto& designer = OpenDesigner();
        Photograph(designer, "frmDatabaseTable" + ending);
        auto& key = wb.forms.Get<frmDatabaseTablePK>();
        key.Offer({"Email", "First Name", "Last Name"});
        Photograph(key, "frmDatabaseTablePK1" + ending);
        designer.Unload();
    }

    /// A table of all kinds of columns with long names, and a database without a table.
    void PhotographTables(const std::string& ending) {
        auto& view = wb.forms.Get<frmViewDatabase>();
        const std::string name = "Recipients who have asked for the catalogue since last summer";
        TableDef table{name, 0, {{"Asked for the printed catalogue", FieldType::Boolean}}, {}};
        table.fields.push_back({"Number of the order in the shop", FieldType::Long});
        table.fields.push_back({"What the recipient has written to us", FieldType::Memo});
        if (ending.empty()) {
            ASSERT_TRUE(view.Data1.Database()->AppendTable(table).Ok());
        }
        view.Data1.RecordSource = name;
        view.cmdRefresh.Press();
        view.ActiveBar1.Press("Insert");
        view.Grid1.onCellEdit(0, 0, "True");
        view.Grid1.onCellEdit(0, 1, "4711");
        view.Grid1.onCellEdit(0, 2, "Please send it to the office.\r\nThank you.");
        view.SortGridByColumn(1);
        Photograph(view, "frmViewDatabase1" + ending);
        const std::string empty = folder.File("empty" + ending + ".db");
        ASSERT_TRUE(wb.state.MainWorkspace->CreateDatabase(empty).Ok());
        wb.forms.Get<frmSettings>().txtAccessDBPath.SetText(empty);
        Photograph(view, "frmViewDatabase2" + ending);
        wb.forms.Get<frmSettings>().txtAccessDBPath.SetText(folder.File("recipients.db"));
        view.Data1.RecordSource = "Recipients";
        view.cmdRefresh.Press();
    }

    /// An HTML message with what a preview must not load, its source, and its check.
    void PhotographPreview(const std::string& ending) {
        auto& message = wb.forms.Get<frmViewMerge>();
        message.lstHTML.SetItems({folder.Write(
            "news.html",
            "<h1>News for [First Name]</h1><script>alert(1)</script><p>From <b>[City]</b>: "
            "<a href=\"http://example.com/\">read on</a></p><img src=\"http://example.com/a.png\">"
            "<img src=\"/usr/share/icons/hicolor/48x48/apps/a.png\"><table border=\"1\"><tr><td>"
            "Customer</td><td>[Customer]</td></tr></table>")});
        auto& preview = wb.forms.Get<frmMergePreview>();
        preview.Preview(MakeMergePlan(wb, {}));
        preview.cmdNext.Press();
        preview.txtFind.SetText("nobody");
        preview.cmdFind.Press();
        Photograph(preview, "frmMergePreview1" + ending);
        preview.tabMessage.SetCurrent(2);
        Photograph(preview, "frmMergePreview2" + ending);
        auto& check = wb.forms.Get<frmMergeCheck>();
        message.lstAttach.SetItems({"/nowhere/[Customer].pdf"});
        check.Check(MakeMergePlan(wb, {}));
        Photograph(check, "frmMergeCheck1" + ending);
        message.lstAttach.Clear();
        message.lstHTML.Clear();
    }

    /// More domains than the chart has bars for, with long names.
    void PhotographReport(const std::string& ending) {
        DeliveryRun merge{.began = clock.Now(), .kind = DeliveryRun::Kind::Merge};
        merge.table = "Recipients";
        merge.generated = 1530;
        RecordDeliveryRun(wb, wb.state.ProjectFolder, merge);
        DeliveryRun send{.began = clock.Now(), .left = 12};
        for (int i = 1; i <= 12; ++i)
            send.domains.push_back({"customers" + std::to_string(i) + ".example", 640 / i, 13 % i});
        send.domains.push_back({"mail.a-very-long-name-of-a-company.example.com", 210, 60});
        for (int i = 1; i <= send.Refused(); ++i)
            send.refused.push_back({"p" + std::to_string(i) + "@customers1.example",
                                    "550-5.1.1 No such user here\r\n550 See the postmaster"});
        RecordDeliveryRun(wb, wb.state.ProjectFolder, send);
        auto& report = wb.forms.Get<frmDeliveryReport>();
        report.Show();
        for (const int page : {0, 1, 2}) {
            report.Tab1.SetCurrent(page);
            Photograph(report, "frmDeliveryReport" + std::to_string(page + 1) + ending);
        }
        report.Tab1.SetCurrent(0);
        report.Hide();
    }

    /// What the first photograph does not show: the other pages.
    void PhotographPages(const std::string& ending) {
        PhotographReport(ending);
        PhotographPreview(ending);
        PhotographTables(ending);
        PhotographDesigner(ending);
        wb.forms.Get<frmOptions>().List1.SetSelected(3, false);
        const std::pair<Tabs*, int> tabs[] = {{&wb.forms.Get<frmSettings>().Tab1, 7},
                                              {&wb.forms.Get<frmOptions>().Tab1, 5},
                                              {&wb.forms.Get<frmDial>().Tab1, 2}};
        for (const auto& [control, count] : tabs) {
            for (int page = 1; page < count; ++page) {
                control->SetCurrent(page);
                Photograph(control->Owner(),
                           control->Owner().Name() + std::to_string(page) + ending);
            }
            control->SetCurrent(0);
        }
        auto& spelling = wb.forms.Get<frmSpelling>();
        spelling.lblWord.SetText("costumer");
        spelling.lstSuggestions.SetItems({"customer", "costumier"});
        spelling.lstSuggestions.SetListIndex(0);
        Photograph(spelling, "frmSpelling1" + ending);
        auto& dialog = wb.forms.Get<frmProjectDialog>();
        dialog.Offer({folder.Write("Summer.poc", ""), folder.Write("Winter.poc", "")});
        Photograph(dialog, "frmProjectDialog1" + ending);
        wb.forms.Get<frmProjectWizard>().txtProject.SetText(folder.File("Autumn.poc"));
        for (const char* name : {"frmConnectionWizard", "frmProjectWizard"}) {
            Form* wizard = wb.forms.FindByName(name);
            auto* next = static_cast<Button*>(wizard->FindControl("cmdNext"));
            for (int page = 1; next->Press() == ControlAnswer::Done; ++page)
                Photograph(*wizard, name + std::to_string(page) + ending);
            wizard->Unload();
        }
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
    Folders folders{wb};
};

TEST_F(AllForms, FitTheirWindows) {
    std::set<std::string> designs;
    for (const auto& file : fs::recursive_directory_iterator(MAILVANE_SOURCE_DIR "/src"))
        if (file.path().extension() == ".ui") designs.insert(file.path().stem());
    std::vector<Form*> forms = LoadAll();
    forms.push_back(&OpenDesigner());
    for (Form* form : forms) {
        EXPECT_EQ(designs.erase(form->Name()), 1u) << form->Name() << " has no design";
        EXPECT_EQ(CheckForm(*form), std::vector<std::string>()) << form->Name();
    }
    EXPECT_TRUE(designs.empty()) << *designs.begin() << " is not looked at here";
    EXPECT_EQ(prompts.Failure(), std::nullopt);
}

TEST_F(AllForms, LookGoodInLightAndDark) {
    fs::create_directories(ScreenshotFolder());
    for (const bool dark : {false, true}) {
        UseDarkPalette(dark);
        const std::string ending = dark ? "-dark" : "";
        for (Form* form : LoadAll()) {
            if (form->Style() == FormStyle::Child) form->Show();
            Photograph(*form, form->Name() + ending);
        }
        PhotographPages(ending);
        wb.forms.Get<frmViewEmail>().Hide();
        wb.forms.Get<frmViewMerge>().BringToFront();
        Photograph(wb.shell->MainForm(), "frmMain" + ending);
    }
    UseDarkPalette(false);
}

TEST_F(AllForms, WizardsNeedNoMouse) {
    auto& wizard = wb.forms.Get<frmConnectionWizard>();
    wizard.Show();
    windows.PumpEvents();
    const auto press = [&](int key) {
        QWidget* const window = windows.WindowOf(wizard)->window();
        const QPointer<QWidget> target(window->focusWidget() ? window->focusWidget() : window);
        for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, key, Qt::NoModifier);
            if (target) QCoreApplication::sendEvent(target, &event);
        }
        windows.PumpEvents();
    };
    press(Qt::Key_Return);
    EXPECT_TRUE(wizard.pnlProxy.Visible());
    press(Qt::Key_Space);
    EXPECT_TRUE(wizard.chkProxy.Checked());
    press(Qt::Key_Return);
    EXPECT_TRUE(wizard.pnlFinish.Visible());
    EXPECT_EQ(GetUserSetting(wb, "Proxy", "Status"), NotFound);
    press(Qt::Key_Return);
    EXPECT_FALSE(wizard.IsLoaded());
    EXPECT_EQ(GetUserSetting(wb, "Proxy", "Connection"), "direct");
}

TEST_F(AllForms, ListsTakeTicksFromKeysAndMouse) {
    auto& options = wb.forms.Get<frmOptions>();
    options.Show();
    auto* list = windows.WindowOf(options)->findChild<QListWidget*>(QStringLiteral("List1"));
    ASSERT_NE(list, nullptr);
    ASSERT_EQ(list->count(), 8);
    EXPECT_EQ(list->item(0)->checkState(), Qt::Checked);
    list->setCurrentRow(1);
    QKeyEvent space(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "));
    QCoreApplication::sendEvent(list, &space);
    EXPECT_FALSE(options.List1.IsSelected(1));
    EXPECT_EQ(options.List1.ListIndex(), 1);
    list->item(2)->setCheckState(Qt::Unchecked);  // what a click on the box does
    EXPECT_EQ(options.List1.SelectedItems(), (std::vector<int>{0, 3, 4, 5, 6, 7}));
    options.List1.SetSelected(2, true);
    EXPECT_EQ(list->item(2)->checkState(), Qt::Checked);
    options.cmdCancel.Press();
}

}  // namespace
}  // namespace mailvane
