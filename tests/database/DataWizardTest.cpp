#include "core/run/frmStatus.h"
#include "database/TableToolsTest.h"
#include "database/exchange/frmDataWizard.h"
#include "support/AccessSamples.h"

namespace mailvane {
namespace {

using Texts = std::vector<std::string>;

class DataWizard : public test::TableToolsTest {
protected:
    /// What the user does in the wizard, once the file is chosen.
    void InWizard(const std::string& file, std::function<void(frmDataWizard&)> act) {
        Act([this, file, act = std::move(act)] {
            auto& wizard = Form<frmDataWizard>();
            wizard.txtFile.SetByUser(file);
            act(wizard);
        });
    }
    void Import(const std::string& file, std::function<void(frmDataWizard&)> act) {
        InWizard(file, std::move(act));
        Settings().cmdImportData.Press();
    }
    void Create(const std::string& file, std::function<void(frmDataWizard&)> act) {
        InWizard(file, std::move(act));
        bench.Prompts().QueueFile(made);
        Settings().cmdCreateDatabase.Press();
    }
    std::string List(const std::string& name = "people.csv",
                     const std::string& text = "Email,Who\nx@example.com,\"Ana, B.\"\n") {
        return bench.folder.Write(name, text);
    }
    Texts Tables(const std::string& file) {
        const auto opened = bench.wb.state.MainWorkspace->OpenDatabase(file);
        return opened.Ok() ? (*opened)->UserTableNames().ValueOr({}) : Texts{};
    }

    const std::string made = bench.InProgramFolder("new.db");
};

TEST_F(DataWizard, AFailedImportLeavesNoNewDatabase) {
    AnswerBox(BoxAnswer::Ok, "Line 2");
    Create(List("bad.csv", "a\n\"1\n"), [](auto& wizard) {
        wizard.cmdFinish.Press();
        EXPECT_TRUE(wizard.Visible()) << "what was typed can be corrected";
        wizard.cmdCancel.Press();
    });
    EXPECT_FALSE(FileExists(made));
    EXPECT_EQ(Settings().txtAccessDBPath.Text(), path);
}

TEST_F(DataWizard, ChecksItsFields) {
    for (const char* text : {"File not found.", "Invalid Table name: 'a.b'", "already exists",
                             "Invalid Column name: '[x]'"})
        AnswerBox(BoxAnswer::Ok, text);
    Import("/nowhere.csv", [this](auto& wizard) {
        wizard.cmdNext.Press();
        EXPECT_TRUE(wizard.pnlFile.Visible());
        wizard.txtFile.SetByUser(List());
        for (const char* table : {"a.b", "people"}) {
            wizard.txtTable.SetByUser(table);
            wizard.cmdFinish.Press();
        }
        wizard.txtTable.SetByUser("new");
        wizard.lstColumns.SetByUser("#1");
        wizard.cmbColumn.SetByUser("[x]");
        wizard.cmdFinish.Press();
        wizard.cmdCancel.Press();
    });
    EXPECT_EQ(bench.Prompts().Shown().size(), 4u);
}

TEST_F(DataWizard, GuessesWhatTheUserCanChange) {
    Import(List("people.csv", "Caf\xE9;Sum\nAna;1\n"), [](auto& wizard) {
        EXPECT_EQ(wizard.cmbDelimiter.Text(), "Semicolon ;");
        EXPECT_EQ(wizard.cmbCharset.Text(), "Windows-1252");
        EXPECT_TRUE(wizard.chkHeader.Checked());
        EXPECT_EQ(wizard.txtTable.Text(), "people 2") << "there is a People already";
        EXPECT_EQ(wizard.lstColumns.Items(), (Texts{"Café  >  Café", "Sum  >  Sum"}));
        wizard.cmdNext.Press();
        EXPECT_TRUE(wizard.pnlFormat.Visible());
        EXPECT_EQ(wizard.Grid1.RowCount(), 1u);
        wizard.chkHeader.SetByUser("0");
        EXPECT_EQ(wizard.Grid1.RowCount(), 2u);
        wizard.cmbDelimiter.SetByUser("Tab");
        EXPECT_EQ(wizard.Grid1.Columns().size(), 1u);
        wizard.cmdCancel.Press();
    });
}

TEST_F(DataWizard, AddsToATableWithMatchedColumns) {
    AnswerBox(BoxAnswer::Ok, "1 records imported into the 'People' table.");
    Import(List(), [](auto& wizard) {
        wizard.cmbTable.SetByUser("People");
        wizard.optExistingTable.SetByUser("1");
        EXPECT_EQ(wizard.lstColumns.Items(), (Texts{"Email  >  Email", "Who  >  (left out)"}));
        wizard.lstColumns.SetByUser("#1");
        wizard.cmbColumn.SetByUser("Name");
        wizard.cmdFinish.Press();
    });
    EXPECT_EQ(view->Grid1.RowCount(), 4u) << "the view shows the new row";
    EXPECT_EQ(Rows("People"), test::PeopleRows + "x@example.com Ana, B. \n");
}

TEST_F(DataWizard, TellsOfRowsThatDidNotFit) {
    CloseView();
    AnswerBox(BoxAnswer::Ok,
              "1 records imported into the 'long' table.\r\n\r\n1 records did not fit.");
    Import(List("long.csv", "a\n1\n2,3\n"), [](auto& wizard) { wizard.cmdFinish.Press(); });
    EXPECT_TRUE(FileExists(bench.InProgramFolder("long rejected.csv")));
    EXPECT_EQ(Settings().cmbAccessTable.Items(), (Texts{"People", "Archive", "long"}));
    EXPECT_EQ(Settings().cmbAccessTable.Text(), "People");
}

TEST_F(DataWizard, TakesTablesOfAnotherDatabase) {
    ASSERT_TRUE(view->Data1.Database()->RenameTable("Archive", "Prospects 1/2").Ok());
    CloseView();
    for (const bool all : {true, false}) {
        Settings().txtAccessDBPath.SetText("");
        AnswerBox(BoxAnswer::Ok, all ? "3 records imported" : "0 records imported");
        Create(path, [all](auto& wizard) {
            EXPECT_EQ(wizard.lstTables.SelectedItems().size(), 2u);
            if (!all) wizard.lstTables.SetSelected(0, false);
            wizard.cmdFinish.Press();
        });
        EXPECT_EQ(Settings().txtAccessDBPath.Text(), made);
        EXPECT_EQ(Settings().cmbAccessTable.Text(), all ? "People" : "Prospects 1/2");
        EXPECT_EQ(Tables(made), all ? (Texts{"People", "Prospects 1/2"}) : Texts{"Prospects 1/2"});
        Settings().txtAccessDBPath.SetText("");
        DeleteFile(made);
    }
}

TEST_F(DataWizard, CancelInTheMiddleLeavesNothing) {
    std::string text = "a\n";
    for (int i = 0; i < 5000; ++i)
        text += "x\n";
    AnswerBox(BoxAnswer::Ok, "The import was canceled; nothing was imported.");
    Import(List("long.csv", text), [this](auto& wizard) {
        auto& status = bench.wb.forms.Get<frmStatus>();
        const Subscription yields = bench.windows.yielded.Observe([&status] {
            if (status.Progress1.Value() > 600) status.cmdCancel.Press();
        });
        wizard.cmdFinish.Press();
        wizard.cmdCancel.Press();
    });
    EXPECT_EQ(Tables(path).size(), 2u);
}

TEST_F(DataWizard, ExportsTheTableOrItsSelectedRows) {
    view->Show();
    const std::string file = bench.InProgramFolder("out.csv");
    const auto exportWith = [&](const char* selected) {
        Select({1});
        InWizard(file, [selected](auto& wizard) {
            EXPECT_EQ(wizard.lstTables.SelectedItems(), std::vector<int>{0});
            EXPECT_TRUE(wizard.chkSelected.Visible());
            wizard.cmdNext.Press();
            EXPECT_FALSE(wizard.cmdNext.Enabled());
            EXPECT_FALSE(wizard.pnlTable.Visible());
            wizard.chkSelected.SetByUser(selected);
            wizard.cmbDelimiter.SetByUser("Semicolon ;");
            wizard.cmdFinish.Press();
        });
        Settings().cmdExportData.Press();
    };
    AnswerBox(BoxAnswer::Ok, "3 records exported to the file");
    exportWith("0");
    AnswerBox(BoxAnswer::Yes, "already exists");
    AnswerBox(BoxAnswer::Ok, "1 records exported to the file");
    exportWith("1");
    EXPECT_EQ(ReadFileText(file), "Email;Name;Age\r\nb@x.com;Bob;32\r\n");
}

class AccessOffer : public DataWizard {
protected:
    /// A copy in the program folder; "" without samples.
    std::string Sample(const std::string& name) {
        const auto bytes = ReadWholeFile(test::AccessSamplesFolder() + "/" + name);
        if (!bytes) return {};
        const std::string copy = bench.InProgramFolder(name);
        WriteWholeFile(copy, *bytes);
        return copy;
    }
};

TEST_F(AccessOffer, UsesWhatIsImported) {
    const std::string sample = Sample("ace14-2010.accdb");
    if (sample.empty()) GTEST_SKIP() << test::AccessSamplesFolder() << " is not there.";
    const std::string before = ReadFileText(sample);
    AnswerBox(BoxAnswer::Yes, "is a Microsoft Access file");
    AnswerBox(BoxAnswer::Ok, "2 records imported into the 'Table1' table.");
    Settings().txtAccessDBPath.SetText(sample);
    EXPECT_EQ(Settings().txtAccessDBPath.Text(), bench.InProgramFolder("ace14-2010.db"));
    EXPECT_EQ(Settings().cmbAccessTable.Count(), 4);
    Show("Table1");
    EXPECT_EQ(view->Grid1.RowCount(), 2u);
    EXPECT_EQ(ReadFileText(sample), before);
}

TEST_F(AccessOffer, KeepsTheDatabaseWhenNothingComesOfIt) {
    const std::string sample = Sample("ace14-encrypted.accdb");
    if (sample.empty()) GTEST_SKIP() << test::AccessSamplesFolder() << " is not there.";
    AnswerBox(BoxAnswer::No, "is a Microsoft Access file");
    Settings().txtAccessDBPath.SetText(sample);
    EXPECT_EQ(Settings().txtAccessDBPath.Text(), path);
    AnswerBox(BoxAnswer::Yes, "is a Microsoft Access file");
    AnswerBox(BoxAnswer::Ok, "password");
    Settings().txtAccessDBPath.SetText(sample);
    EXPECT_EQ(Settings().txtAccessDBPath.Text(), path);
    EXPECT_FALSE(FileExists(bench.InProgramFolder("ace14-encrypted.db")));
}

}  // namespace
}  // namespace mailvane
