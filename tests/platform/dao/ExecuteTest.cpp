#include "platform/dao/DaoTestBase.h"

namespace mailvane {
namespace {

class ExecuteTest : public DaoTest {
protected:
    int NumberOf(const std::string& sql) { return database_->Execute(sql).Error().number; }
};

TEST_F(ExecuteTest, SelectIntoKeepsColumnsWithoutKeys) {
    Field code = Column("Code", FieldType::Text, 5);
    code.required = true;
    code.defaultValue = "x";
    MakeTable("T", {AutoNumber(), code, Column("When", FieldType::Date)},
              {{"Index1", {"ID"}, true}});
    EXPECT_DONE(AddRow(*Open("T"), {DaoValue(), "00123", "3/9/2001"}));
    EXPECT_EQ(Execute("SELECT [T].* INTO [T_Backup] FROM [T];"), 1);
    const TableDef copy = *database_->GetTableDef("T_Backup");
    EXPECT_EQ(copy.fields[1].size, 5);
    EXPECT_FALSE(copy.fields[1].required);
    EXPECT_EQ(copy.fields[1].defaultValue, "");
    EXPECT_EQ(copy.fields[2].type, FieldType::Date);
    EXPECT_EQ(copy.fields[0].type, FieldType::Long);
    EXPECT_FALSE(copy.fields[0].IsAutoNumber());
    EXPECT_TRUE(copy.indexes.empty());
    EXPECT_EQ(Execute("INSERT INTO T_Backup SELECT * FROM T"), 1);
    EXPECT_EQ(Walk("SELECT Code FROM T_Backup"), "00123 00123");
    EXPECT_EQ(Walk("SELECT ID FROM T_Backup"), "1 1");
    EXPECT_EQ(NumberOf("SELECT * INTO t_backup FROM T"), dao_error::TableExists);
    EXPECT_EQ(NumberOf("SELECT * INTO [a.b] FROM T"), dao_error::InvalidName);
    EXPECT_EQ(Execute("DROP TABLE [T_Backup];"), 0);
    EXPECT_FALSE(database_->TableExists("T_Backup"));
    EXPECT_EQ(NumberOf("DROP TABLE [T_Backup];"), dao_error::TableDoesNotExist);
}

TEST_F(ExecuteTest, RefusedRowsUndoTheWholeStatement) {
    MakePeople({"Ann", "Bob"});
    Execute("SELECT * INTO Copy FROM People WHERE Name = 'Bob'");
    EXPECT_DONE(database_->AppendIndex("Copy", {"Name", {"Name"}, false, true}));
    EXPECT_EQ(NumberOf("INSERT INTO Copy SELECT * FROM People"), dao_error::DuplicateKey);
    EXPECT_EQ(Walk("Copy"), "Bob");
    EXPECT_EQ(NumberOf("UPDATE Copy SET Nothing = 1"), dao_error::TooFewParameters);
    EXPECT_EQ(NumberOf("DELETE * FROM Nobody"), dao_error::TableNotFound);
    EXPECT_EQ(NumberOf("SELECT * FROM People"), dao_error::IsSelectQuery);
    EXPECT_EQ(NumberOf("nonsense"), dao_error::QuerySyntax);
    EXPECT_EQ(database_->OpenRecordset("Nobody").Error().number, dao_error::TableNotFound);
}

TEST_F(ExecuteTest, SourcesAreTableNamesOrQueries) {
    MakePeople({"00123", "1e5", "0x10"});  // texts of digits stay texts
    for (const char* source : {"people", "[People]", "SELECT * FROM [People] ORDER BY Age"})
        EXPECT_EQ(Walk(source), "00123 1e5 0x10") << source;
    EXPECT_EQ(database_->OpenRecordset("SELECT * FROM People", RecordsetType::Table).Error().number,
              dao_error::TableNotFound);
}

TEST_F(ExecuteTest, TransactionsNestAndUndoWhatFailed) {
    MakePeople({"Ann"});
    const DaoError refusal = MakeDaoError(dao_error::InvalidNull);
    EXPECT_DONE(database_->Transaction([&]() -> DaoError {
        Execute("INSERT INTO People (Name) VALUES ('kept')");
        const DaoError inner = database_->Transaction([&] {
            Execute("INSERT INTO People (Name) VALUES ('undone')");
            EXPECT_DONE(database_->RenameTable("People", "Persons"));
            return refusal;
        });
        EXPECT_EQ(inner.number, refusal.number);
        EXPECT_TRUE(database_->TableExists("People"));
        return {};
    }));
    EXPECT_EQ(Walk("People"), "Ann kept");
    const auto emptyAndFail = [&] {
        Execute("DELETE * FROM People");
        EXPECT_DONE(database_->AppendField("People", Column("New")));
        return refusal;
    };
    EXPECT_FAILS(database_->Transaction(emptyAndFail, true), dao_error::InvalidNull);
    EXPECT_EQ(Walk("People"), "Ann kept");
    EXPECT_EQ(database_->GetTableDef("People")->FindField("New"), nullptr);
    EXPECT_DONE(database_->AppendField("People", Column("Other")));
    EXPECT_NE(database_->GetTableDef("People")->FindField("Other"), nullptr);
}

TEST_F(ExecuteTest, TwoOpeningsSeeEachOthersWork) {
    MakePeople({"Ann"});
    const auto second = *workspace_->OpenDatabase(path_);
    const auto here = Open("People");
    EXPECT_DONE(AddRow(**second->OpenRecordset("People"), {"Bob", 2}));
    EXPECT_EQ(second->Execute("UPDATE People SET Age = 30 WHERE Name = 'Ann'").ValueOr(0), 1);
    EXPECT_DONE(second->AppendField("People", Column("City")));
    EXPECT_EQ(TextOf(here->Get("Age")), "30");
    EXPECT_DONE(Change(*here, "Age", 31));
    EXPECT_EQ(Walk("People"), "Ann Bob");
    EXPECT_NE(database_->GetTableDef("People")->FindField("City"), nullptr);
}

}  // namespace
}  // namespace mailvane
