#include <gtest/gtest.h>

#include <cstdlib>

#include "core/frmSettings.h"
#include "core/frmStatus.h"
#include "database/DatabaseService.h"
#include "database/frmDataWizard.h"
#include "database/frmViewDatabase.h"
#include "support/TestBench.h"

namespace mailvane {
namespace {

class DataWizard : public testing::Test {
protected:
    void SetUp() override {
        bench.UseProject();
        path = bench.InProgramFolder("lists.db");
        auto made = bench.wb.state.MainWorkspace->CreateDatabase(path);
        ASSERT_TRUE(made.Ok()) << made.Error().description;
        for (const char* name : {"Customers", "Prospects 1/2"}) {
            TableDef table;
            table.name = name;
            table.fields = {{.name = "Email"}, {.name = "First Name"}};
            ASSERT_TRUE((*made)->AppendTable(table).Ok());
            const std::string insert = std::string("INSERT INTO [") + name + "] ([Email]) VALUES ";
            for (const char* value : {"('a@example.com')", "('b@example.com')"})
                ASSERT_TRUE((*made)->Execute(insert + value).Ok());
        }
        (*made)->Close();
        list = bench.folder.Write("people.csv", "Email,Name\nx@example.com,\"Ana, B.\"\n");
        // The wizard is modal: what the user does in it happens while it stands open.
        whileOpen = bench.windows.idle.Observe([this] {
            if (auto* wizard = bench.wb.forms.Find<frmDataWizard>(); wizard && act) {
                const auto once = std::exchange(act, nullptr);
                once(*wizard);
            }
        });
    }

    void TearDown() override {
        EXPECT_EQ(bench.Prompts().Failure(), std::nullopt);
        EXPECT_EQ(act, nullptr) << "the wizard was never open";
    }

    frmSettings& Settings() { return bench.wb.forms.Get<frmSettings>(); }
    frmViewDatabase& View() { return bench.wb.forms.Get<frmViewDatabase>(); }
    void ExpectBox(const std::string& text, BoxAnswer answer = BoxAnswer::Ok) {
        bench.Prompts().QueueBox(answer, text);
    }

    std::vector<std::string> Tables(const std::string& file) {
        const auto opened = bench.wb.state.MainWorkspace->OpenDatabase(file);
        return opened.Ok() ? (*opened)->UserTableNames().ValueOr({}) : std::vector<std::string>{};
    }
    std::int64_t Rows(const std::string& file, const std::string& table) {
        const auto opened = bench.wb.state.MainWorkspace->OpenDatabase(file);
        const auto rows = (*opened)->OpenRecordset(table);
        return rows.Ok() ? (*rows)->RecordCount() : -1;
    }

    test::TestBench bench;
    DatabaseService service{bench.wb};
    std::string path;
    std::string list;
    std::function<void(frmDataWizard&)> act;
    Subscription whileOpen;
};

TEST_F(DataWizard, NewDatabaseBecomesTheProjects) {
    const std::string made = bench.InProgramFolder("new.db");
    bench.Prompts().QueueFile(made);
    ExpectBox("1 records imported into the 'people' table.");
    act = [this](frmDataWizard& wizard) {
        wizard.txtFile.SetByUser(list);
        wizard.cmdFinish.Press();
    };
    Settings().cmdCreateDatabase.Press();
    EXPECT_EQ(Settings().txtAccessDBPath.Text(), made);
    EXPECT_EQ(Settings().cmbAccessTable.Text(), "people");
    EXPECT_EQ(View().Grid1.RowCount(), 1u);
    EXPECT_FALSE(bench.wb.forms.IsFormLoaded("frmDataWizard"));
}

TEST_F(DataWizard, AFailedImportLeavesNoNewDatabase) {
    const std::string made = bench.InProgramFolder("new.db");
    list = bench.folder.Write("bad.csv", "a\n\"1\n");
    bench.Prompts().QueueFile(made);
    ExpectBox("Line 2");
    act = [this](frmDataWizard& wizard) {
        wizard.txtFile.SetByUser(list);
        wizard.cmdFinish.Press();
        EXPECT_TRUE(wizard.Visible()) << "what was typed can be corrected";
        wizard.cmdCancel.Press();
    };
    Settings().cmdCreateDatabase.Press();
    EXPECT_FALSE(FileExists(made));
    EXPECT_EQ(Settings().txtAccessDBPath.Text(), "");
}

TEST_F(DataWizard, ChecksItsFields) {
    Settings().txtAccessDBPath.SetText(path);
    ExpectBox("File not found.");
    ExpectBox("Invalid Table name: 'a.b'");
    ExpectBox("already exists");
    ExpectBox("Invalid Column name: '[x]'");
    act = [this](frmDataWizard& wizard) {
        wizard.txtFile.SetByUser("/nowhere.csv");
        wizard.cmdNext.Press();
        EXPECT_TRUE(wizard.pnlFile.Visible());
        wizard.txtFile.SetByUser(list);
        wizard.txtTable.SetByUser("a.b");
        wizard.cmdFinish.Press();
        wizard.txtTable.SetByUser("customers");
        wizard.cmdFinish.Press();
        wizard.txtTable.SetByUser("new");
        wizard.lstColumns.SetByUser("#1");
        wizard.cmbColumn.SetByUser("[x]");
        wizard.cmdFinish.Press();
        wizard.cmdCancel.Press();
    };
    Settings().cmdImportData.Press();
}

TEST_F(DataWizard, GuessesWhatTheUserCanChange) {
    Settings().txtAccessDBPath.SetText(path);
    list = bench.folder.Write("customers.csv", "Caf\xE9;Sum\nAna;1\n");
    act = [this](frmDataWizard& wizard) {
        wizard.txtFile.SetByUser(list);
        EXPECT_EQ(wizard.cmbDelimiter.Text(), "Semicolon ;");
        EXPECT_EQ(wizard.cmbCharset.Text(), "Windows-1252");
        EXPECT_TRUE(wizard.chkHeader.Checked());
        EXPECT_EQ(wizard.txtTable.Text(), "customers 2") << "there is a Customers already";
        EXPECT_EQ(wizard.lstColumns.Items(),
                  (std::vector<std::string>{"Café  >  Café", "Sum  >  Sum"}));
        wizard.cmdNext.Press();
        EXPECT_TRUE(wizard.pnlFormat.Visible());
        EXPECT_EQ(wizard.Grid1.RowCount(), 1u);
        wizard.chkHeader.SetByUser("0");
        EXPECT_EQ(wizard.Grid1.RowCount(), 2u);
        wizard.cmbDelimiter.SetByUser("Tab");
        EXPECT_EQ(wizard.Grid1.Columns().size(), 1u);
        wizard.cmdCancel.Press();
    };
    Settings().cmdImportData.Press();
}

TEST_F(DataWizard, AddsToATableWithMatchedColumns) {
    Settings().txtAccessDBPath.SetText(path);
    View().Show();
    ExpectBox("1 records imported into the 'Customers' table.");
    act = [this](frmDataWizard& wizard) {
        wizard.txtFile.SetByUser(list);
        wizard.cmbTable.SetByUser("Customers");
        wizard.optExistingTable.SetByUser("1");
        EXPECT_EQ(wizard.lstColumns.Items(),
                  (std::vector<std::string>{"Email  >  Email", "Name  >  (left out)"}));
        wizard.lstColumns.SetByUser("#1");
        wizard.cmbColumn.SetByUser("First Name");
        wizard.cmdFinish.Press();
    };
    Settings().cmdImportData.Press();
    EXPECT_EQ(View().Grid1.RowCount(), 3u) << "the view shows the new row";
    ASSERT_TRUE(View().Data1.Recordset()->MoveLast().Ok());
    EXPECT_EQ(*View().Data1.Recordset()->Get("First Name"), DaoValue("Ana, B."));
}

TEST_F(DataWizard, TellsOfRowsThatDidNotFit) {
    Settings().txtAccessDBPath.SetText(path);
    list = bench.folder.Write("long.csv", "a\n1\n2,3\n");
    ExpectBox("1 records imported into the 'long' table.\r\n\r\n1 records did not fit.");
    act = [this](frmDataWizard& wizard) {
        wizard.txtFile.SetByUser(list);
        wizard.cmdFinish.Press();
    };
    Settings().cmdImportData.Press();
    EXPECT_TRUE(FileExists(bench.InProgramFolder("long rejected.csv")));
}

TEST_F(DataWizard, TakesTablesOfAnotherDatabase) {
    const std::string made = bench.InProgramFolder("new.db");
    for (const bool all : {true, false}) {
        bench.Prompts().QueueFile(made);
        ExpectBox("2 records imported into the");
        act = [&](frmDataWizard& wizard) {
            wizard.txtFile.SetByUser(path);
            EXPECT_EQ(wizard.lstTables.SelectedItems().size(), 2u);
            if (!all) wizard.lstTables.SetSelected(0, false);
            wizard.cmdFinish.Press();
        };
        Settings().cmdCreateDatabase.Press();
        const std::vector<std::string> both{"Customers", "Prospects 1/2"};
        EXPECT_EQ(Tables(made), all ? both : std::vector<std::string>{"Prospects 1/2"});
        Settings().txtAccessDBPath.SetText("");
        DeleteFile(made);
    }
}

TEST_F(DataWizard, CancelInTheMiddleLeavesNothing) {
    Settings().txtAccessDBPath.SetText(path);
    std::string text = "a\n";
    for (int i = 0; i < 5000; ++i)
        text += "x\n";
    list = bench.folder.Write("long.csv", text);
    ExpectBox("The import was canceled; nothing was imported.");
    act = [this](frmDataWizard& wizard) {
        wizard.txtFile.SetByUser(list);
        auto& status = bench.wb.forms.Get<frmStatus>();
        const Subscription progress = status.Progress1.changed.Observe([&status](Property) {
            if (status.Progress1.Value() > 600) status.cmdCancel.Press();
        });
        wizard.cmdFinish.Press();
        wizard.cmdCancel.Press();
    };
    Settings().cmdImportData.Press();
    EXPECT_EQ(Tables(path).size(), 2u);
}

TEST_F(DataWizard, ExportsTheTableOrItsSelectedRows) {
    Settings().txtAccessDBPath.SetText(path);
    View().Show();
    const std::string file = bench.InProgramFolder("out.csv");
    const auto exportWith = [&](const char* selected) {
        View().Grid1.AddSelected(View().Grid1.Rows()->BookmarkAt(1));
        act = [&file, selected](frmDataWizard& wizard) {
            wizard.txtFile.SetByUser(file);
            EXPECT_EQ(wizard.lstTables.SelectedItems(), std::vector<int>{0});
            EXPECT_TRUE(wizard.chkSelected.Visible());
            wizard.cmdNext.Press();
            EXPECT_FALSE(wizard.cmdNext.Enabled());
            EXPECT_FALSE(wizard.pnlTable.Visible());
            wizard.chkSelected.SetByUser(selected);
            wizard.cmbDelimiter.SetByUser("Semicolon ;");
            wizard.cmdFinish.Press();
        };
        Settings().cmdExportData.Press();
    };
    ExpectBox("2 records exported to the file");
    exportWith("0");
    ExpectBox("already exists", BoxAnswer::Yes);
    ExpectBox("1 records exported to the file");
    exportWith("1");
    EXPECT_EQ(ReadFileText(file), "Email;First Name\r\nb@example.com;\r\n");
}

class AccessOffer : public DataWizard {
protected:
    /// Access files of several generations stand beside the project, not in it.
    static std::string SamplesFolder() {
        const char* given = std::getenv("MAILVANE_ACCESS_SAMPLES");
        return given ? given : MAILVANE_SOURCE_DIR "/../shared/fixtures/access";
    }

    /// A copy in the program folder; "" without samples.
    std::string Sample(const std::string& name) {
        const auto bytes = ReadWholeFile(SamplesFolder() + "/" + name);
        if (!bytes) return {};
        const std::string copy = bench.InProgramFolder(name);
        WriteWholeFile(copy, *bytes);
        return copy;
    }
};

TEST_F(AccessOffer, UsesWhatIsImported) {
    const std::string sample = Sample("ace14-2010.accdb");
    if (sample.empty()) GTEST_SKIP() << SamplesFolder() << " is not there.";
    const std::string before = ReadFileText(sample);
    ExpectBox("is a Microsoft Access file", BoxAnswer::Yes);
    ExpectBox("2 records imported into the 'Table1' table.");
    Settings().txtAccessDBPath.SetText(sample);
    EXPECT_EQ(Settings().txtAccessDBPath.Text(), bench.InProgramFolder("ace14-2010.db"));
    EXPECT_EQ(Settings().cmbAccessTable.Count(), 4);
    EXPECT_EQ(Rows(Settings().txtAccessDBPath.Text(), "Table1"), 2);
    EXPECT_EQ(ReadFileText(sample), before);
}

TEST_F(AccessOffer, KeepsTheDatabaseWhenNothingComesOfIt) {
    const std::string sample = Sample("ace14-encrypted.accdb");
    if (sample.empty()) GTEST_SKIP() << SamplesFolder() << " is not there.";
    Settings().txtAccessDBPath.SetText(path);
    ExpectBox("is a Microsoft Access file", BoxAnswer::No);
    Settings().txtAccessDBPath.SetText(sample);
    EXPECT_EQ(Settings().txtAccessDBPath.Text(), path);
    ExpectBox("is a Microsoft Access file", BoxAnswer::Yes);
    ExpectBox("password");
    Settings().txtAccessDBPath.SetText(sample);
    EXPECT_EQ(Settings().txtAccessDBPath.Text(), path);
    EXPECT_FALSE(FileExists(bench.InProgramFolder("ace14-encrypted.db")));
}

}  // namespace
}  // namespace mailvane
