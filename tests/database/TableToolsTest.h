#pragma once

#include <gtest/gtest.h>

#include "core/settings/Settings.h"
#include "core/settings/frmSettings.h"
#include "database/DatabaseService.h"
#include "database/view/frmViewDatabase.h"
#include "support/TestBench.h"

namespace mailvane::test {

/// The view of a database with two tables: People (Email, Name, Age; an index on Email) with three
/// rows, and an empty Archive (Email, Age, Notes).
class TableToolsTest : public testing::Test {
protected:
    void SetUp() override {
        bench.UseProject();
        path = bench.InProgramFolder("lists.db");
        auto made = bench.wb.state.MainWorkspace->CreateDatabase(path);
        ASSERT_TRUE(made.Ok()) << made.Error().description;
        TableDef people;
        people.name = "People";
        people.fields = {{.name = "Email"}, {.name = "Name"}, {"Age", FieldType::Long}};
        people.indexes = {{"ByEmail", {"Email"}, false, false}};
        TableDef archive;
        archive.name = "Archive";
        archive.fields = {{.name = "Email"}, {"Age", FieldType::Long}, {.name = "Notes"}};
        ASSERT_TRUE((*made)->AppendTable(people).Ok());
        ASSERT_TRUE((*made)->AppendTable(archive).Ok());
        for (const char* row :
             {"('a@x.com', 'Ann', 31)", "('b@x.com', 'Bob', 32)", "('c@x.com', 'Cid', 33)"})
            ASSERT_TRUE((*made)->Execute(std::string("INSERT INTO People VALUES ") + row).Ok());
        (*made)->Close();
        Settings().txtAccessDBPath.SetText(path);
        view = &bench.wb.forms.Get<frmViewDatabase>();
        // Modal forms stand open while the program is idle: that is when the user acts in them.
        whileOpen = bench.windows.idle.Observe([this] {
            if (next == acts.size()) return;
            const auto act = acts[next++];
            act();
        });
    }

    void TearDown() override {
        EXPECT_EQ(bench.Prompts().Failure(), std::nullopt);
        EXPECT_EQ(next, acts.size()) << "dialogs that never came";
    }

    frmSettings& Settings() { return bench.wb.forms.Get<frmSettings>(); }
    std::string ProjectFile(const std::string& name) {
        return bench.wb.state.ProjectFolder + "/" + name;
    }
    void CloseView() {
        view->Unload();
        bench.Settle();
    }
    void Reopen() {
        if (bench.wb.forms.Find<frmViewDatabase>()) CloseView();
        view = &bench.wb.forms.Get<frmViewDatabase>();
    }
    template <class F>
    F& Form() {
        F* form = bench.wb.forms.Find<F>();
        EXPECT_NE(form, nullptr);
        return *form;
    }
    /// What the user does in the dialogs to come, one after another.
    void Act(std::function<void()> act) { acts.push_back(std::move(act)); }
    void AnswerBox(BoxAnswer answer, const std::string& text) {
        bench.Prompts().QueueBox(answer, text);
    }
    void ExpectBox(const std::string& text) {
        EXPECT_TRUE(bench.Prompts().ExpectBox(text)) << text << "\n" << LastBox();
    }
    std::string LastBox() {
        const auto& shown = bench.Prompts().Shown();
        return shown.empty() ? "none" : shown.back().Line();
    }

    /// "name:type" of each column.
    std::string Columns(const std::string& table) {
        std::string text;
        for (const Field& field : Describe(table).fields)
            text += (text.empty() ? "" : " ") + field.name + ":" +
                    std::to_string(static_cast<int>(field.type));
        return text;
    }
    TableDef Describe(const std::string& table) {
        return view->Data1.Database()->GetTableDef(table).ValueOr({});
    }
    /// The rows of a table, a line each, values separated by blanks.
    std::string Rows(const std::string& table) {
        std::string text;
        auto records = view->Data1.Database()->OpenRecordset(table);
        if (records.Failed()) return records.Error().description;
        for (; !(*records)->EndOfFile(); (*records)->MoveNext().Ignore()) {
            std::string line;
            for (std::size_t i = 0; i < (*records)->Fields().size(); ++i)
                line += (i == 0 ? "" : " ") + (*records)->Get(i)->TextOrEmpty();
            text += line + "\n";
        }
        return text;
    }
    void Select(std::initializer_list<std::size_t> rows) {
        for (const std::size_t row : rows)
            view->Grid1.AddSelected(view->Grid1.Rows()->BookmarkAt(row));
    }
    void Show(const std::string& table) {
        EXPECT_EQ(view->cmbTable.SetByUser(table), ControlAnswer::Done);
    }

    TestBench bench;
    DatabaseService service{bench.wb};
    std::string path;
    frmViewDatabase* view = nullptr;
    std::vector<std::function<void()>> acts;
    std::size_t next = 0;
    Subscription whileOpen;
};

inline const std::string PeopleRows = "a@x.com Ann 31\nb@x.com Bob 32\nc@x.com Cid 33\n";

}  // namespace mailvane::test
