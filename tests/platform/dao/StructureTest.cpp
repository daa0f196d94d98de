#include <sqlite3.h>

#include "platform/dao/DaoTestBase.h"

namespace mailvane {
namespace {

class StructureTest : public DaoTest {
protected:
    TableDef Describe(const std::string& table) {
        auto description = database_->GetTableDef(table);
        EXPECT_TRUE(description.Ok()) << description.Error().description;
        return description.ValueOr(TableDef());
    }

    template <class Items>
    static std::string NamesOf(const Items& items) {
        std::string names;
        for (const auto& item : items)
            names += (names.empty() ? "" : " ") + item.name;
        return names;
    }
    std::string FieldNames(const std::string& table) { return NamesOf(Describe(table).fields); }
    std::string IndexNames(const std::string& table) { return NamesOf(Describe(table).indexes); }

    /// Runs SQLite's own SQL on the closed file, as another program would.
    void RunElsewhere(const std::string& path, const char* sql) {
        sqlite3* file = nullptr;
        sqlite3_open(path.c_str(), &file);
        char* message = nullptr;
        EXPECT_EQ(sqlite3_exec(file, sql, nullptr, nullptr, &message), SQLITE_OK) << message;
        sqlite3_free(message);
        sqlite3_close(file);
    }
};

TEST_F(StructureTest, MailFolderTableComesBackAsItWasGiven) {
    Field from = Column("From");
    from.allowZeroLength = true;
    Field retries = Column("Retries", FieldType::Integer);
    retries.defaultValue = "0";
    MakeTable("Sent Items", {from, Column("Date", FieldType::Date), Column("Body", FieldType::Memo),
                             AutoNumber(), retries});
    EXPECT_TRUE(Describe("sent items").indexes.empty());
    EXPECT_DONE(database_->AppendIndex("Sent Items", {"Index1", {"ID"}, true, false}));

    const TableDef table = Describe("SENT ITEMS");
    EXPECT_EQ(table.name, "Sent Items");
    EXPECT_EQ(FieldNames("Sent Items"), "From Date Body ID Retries");
    EXPECT_EQ(table.fields[0].size, DefaultTextSize);
    EXPECT_TRUE(table.fields[0].allowZeroLength);
    EXPECT_TRUE(table.fields[3].IsAutoNumber());
    EXPECT_EQ(table.fields[4].defaultValue, "0");
    EXPECT_EQ(IndexNames("Sent Items"), "Index1");
    EXPECT_TRUE(table.indexes.at(0).primary && !table.indexes.at(0).unique);
    EXPECT_FAILS(database_->AppendTable(table), dao_error::TableExists);
}

TEST_F(StructureTest, TheSameIndexNameServesManyTables) {
    for (const char* name : {"One", "Two"}) {
        MakeTable(name, {Column("Email"), Column("Name")},
                  {{"Index1", {"email"}, true, true}, {"Name", {"Name"}, false, false}});
        EXPECT_EQ(IndexNames(name), "Index1 Name");
    }
    EXPECT_DONE(database_->RenameTable("One", "Four"));
    EXPECT_EQ(IndexNames("Four"), "Index1 Name");
}

TEST_F(StructureTest, SystemTablesAreHidden) {
    MakeTable("mSysSent", {AutoNumber()});
    MakePeople({});
    EXPECT_EQ(*database_->UserTableNames(), std::vector<std::string>{"People"});
    EXPECT_EQ(database_->TableNames()->size(), 3u);
    EXPECT_EQ(Describe("MSysSent").attributes, SystemObjectMask);
    EXPECT_EQ(Describe("sqlite_sequence").attributes, SystemObjectMask);
    EXPECT_TRUE(Describe("People").IsUserTable());
}

TEST_F(StructureTest, PrimaryIndexRefusesNullAndDuplicates) {
    MakePeople({"Ann", "Bob"});
    EXPECT_DONE(database_->AppendIndex("People", {"Index1", {"Name"}, true, true}));
    const auto people = Open("People");
    EXPECT_FAILS(AddRow(*people, {DaoValue(), 7}), dao_error::NullInPrimaryKey);
    EXPECT_FAILS(AddRow(*people, {"ANN", 7}), dao_error::DuplicateKey);
    EXPECT_DONE(AddRow(*people, {"", 7}));
    EXPECT_FAILS(AddRow(*people, {"", 8}), dao_error::DuplicateKey);
    EXPECT_EQ(Walk("People"), "Ann Bob ");
    EXPECT_FALSE(Describe("People").FindField("Name")->required);
}

TEST_F(StructureTest, IndexOverRowsThatBreakItIsRefused) {
    MakePeople({"Ann", "ann"});
    EXPECT_FAILS(database_->AppendIndex("People", {"Name", {"Name"}, false, true}),
                 dao_error::DuplicateKey);
    EXPECT_DONE(AddRow(*Open("People"), {"Bob", DaoValue()}));
    EXPECT_FAILS(database_->AppendIndex("People", {"Key", {"Age"}, true, true}),
                 dao_error::NullInPrimaryKey);
    EXPECT_DONE(database_->AppendIndex("People", {"Age", {"Age"}, false, true}));
    EXPECT_FAILS(database_->AppendIndex("People", {"age", {"Name"}, false, false}),
                 dao_error::IndexExists);
    EXPECT_FAILS(database_->AppendIndex("People", {"No", {"Nothing"}, false, false}),
                 dao_error::ItemNotFound);
    EXPECT_EQ(IndexNames("People"), "Age");
}

TEST_F(StructureTest, ChangesKeepWhatTheyDoNotTouch) {
    MakeTable("T", {AutoNumber(), Column("A"), Column("B"), Column("C", FieldType::Long)},
              {{"Index1", {"ID"}, true}, {"A", {"A"}, false, true}, {"BC", {"B", "C"}}});
    const auto rows = Open("T");
    for (const char* name : {"x", "y", "z"})
        EXPECT_DONE(AddRow(*rows, {DaoValue(), name, name, 5}));
    EXPECT_EQ(Execute("DELETE FROM T WHERE A = 'x'"), 1);

    EXPECT_DONE(database_->AppendField("T", Column("D", FieldType::Boolean)));
    EXPECT_DONE(database_->RenameField("T", "a", "First"));
    EXPECT_DONE(database_->DeleteField("T", "B"));
    EXPECT_EQ(FieldNames("T"), "ID First C D");
    EXPECT_EQ(IndexNames("T"), "Index1 A");
    EXPECT_EQ(Walk("SELECT First FROM T"), "y z");
    EXPECT_EQ(Walk("SELECT D FROM T"), "False False");
    EXPECT_FAILS(AddRow(*Open("T"), {DaoValue(), "Y"}), dao_error::DuplicateKey);

    EXPECT_DONE(database_->DeleteField("T", "ID"));
    EXPECT_EQ(IndexNames("T"), "A");
    EXPECT_DONE(database_->AppendField("T", AutoNumber("Key")));
    EXPECT_TRUE(Describe("T").FindField("Key")->IsAutoNumber());
    EXPECT_EQ(Walk("SELECT Key FROM T"), "1 2");
    EXPECT_EQ(Walk("SELECT First FROM T"), "y z");
    EXPECT_FAILS(AddRow(*Open("T"), {"Y"}), dao_error::DuplicateKey);
}

TEST_F(StructureTest, LastNumberSurvivesARebuild) {
    MakeTable("T", {AutoNumber(), Column("A")});
    for (const char* name : {"x", "y"})
        EXPECT_DONE(AddRow(*Open("T"), {DaoValue(), name}));
    EXPECT_EQ(Execute("DELETE FROM T WHERE A = 'y'"), 1);
    EXPECT_DONE(database_->AppendIndex("T", {"Index1", {"ID"}, true, false}));
    EXPECT_DONE(AddRow(*Open("T"), {DaoValue(), "z"}));
    EXPECT_EQ(Walk("T"), "1 3");
}

TEST_F(StructureTest, WrongChangesAreRefusedAndChangeNothing) {
    MakePeople({"Ann"});
    MakeTable("Other", {Column("X")});
    TableDef table{"New", 0, {Column("Email")}, {}};
    EXPECT_FAILS(table.AppendField(Column("EMAIL")), dao_error::FieldDefinedTwice);
    EXPECT_FAILS(table.AppendField(Column("a.b")), dao_error::InvalidName);
    EXPECT_FAILS(database_->DeleteTable("Nobody"), dao_error::ItemNotFound);
    EXPECT_FAILS(database_->RenameTable("People", "OTHER"), dao_error::TableExists);
    EXPECT_FAILS(database_->RenameTable("People", "a.b"), dao_error::InvalidName);
    EXPECT_FAILS(database_->RenameTable("People", ""), dao_error::InvalidName);
    EXPECT_FAILS(database_->AppendField("People", Column("NAME")), dao_error::FieldDefinedTwice);
    EXPECT_FAILS(database_->RenameField("People", "Age", "name"), dao_error::FieldDefinedTwice);
    EXPECT_FAILS(database_->DeleteField("People", "Nothing"), dao_error::ItemNotFound);
    EXPECT_FAILS(database_->DeleteField("Other", "X"), dao_error::NoFieldDefined);

    const std::pair<std::vector<Field>, int> rows[] = {
        {{Column("A"), Column("a")}, dao_error::FieldDefinedTwice},
        {{Column("A"), Column("B[")}, dao_error::InvalidName},
        {{}, dao_error::NoFieldDefined},
    };
    for (const auto& [fields, number] : rows)
        EXPECT_FAILS(database_->AppendTable({"Half", 0, fields, {}}), number);
    EXPECT_FALSE(database_->TableExists("Half"));
    EXPECT_EQ(FieldNames("People"), "Name Age");
}

TEST_F(StructureTest, NamesMayDifferInCaseAndHoldAnyOtherCharacter) {
    MakePeople({"Ann"});
    EXPECT_DONE(database_->RenameTable("people", "PEOPLE"));
    EXPECT_DONE(database_->RenameField("PEOPLE", "name", "NAME"));
    EXPECT_EQ(FieldNames("People"), "NAME Age");
    const std::string hostile = "a\"b'; DROP TABLE x; --";
    EXPECT_DONE(database_->RenameTable("People", hostile));
    EXPECT_DONE(database_->RenameField(hostile, "NAME", "q\"'{key}?"));
    const auto rows = Open(hostile);
    EXPECT_DONE(Change(*rows, "q\"'{key}?", "Bob"));
    EXPECT_EQ(TextOf(rows->Get("Q\"'{KEY}?")), "Bob");
}

TEST_F(StructureTest, FilesOfOtherProgramsOpenUnchanged) {
    const std::string path = folder_.File("foreign.db");
    RunElsewhere(path,
                 "CREATE TABLE c (id INTEGER PRIMARY KEY, mail VARCHAR(20) UNIQUE, n BIGINT,"
                 " CHECK (n > 0));"
                 "INSERT INTO c (mail, n) VALUES ('A@x', 9000000000), ('b@x', 2);"
                 "CREATE TABLE k (a TEXT, b INT, PRIMARY KEY (a, b)) WITHOUT ROWID;"
                 "INSERT INTO k VALUES ('q', 1);"
                 "CREATE TABLE r (rowid TEXT, x INT); INSERT INTO r VALUES ('seven', 7);"
                 "CREATE VIEW v AS SELECT mail FROM c;");
    const std::string before = folder_.Read("foreign.db");
    Reopen(path);
    EXPECT_EQ(*database_->UserTableNames(), (std::vector<std::string>{"c", "k", "r"}));
    EXPECT_TRUE(Describe("c").FindField("id")->IsAutoNumber());
    EXPECT_EQ(IndexNames("k"), "PrimaryKey");
    EXPECT_EQ(Walk("SELECT n FROM c"), "9000000000 2");
    EXPECT_EQ(Walk("SELECT id FROM c WHERE mail = 'a@X'"), "1");
    EXPECT_EQ(Walk("v"), "A@x b@x");
    EXPECT_FAILS(Open("v")->AddNew(), dao_error::ReadOnly);
    EXPECT_FAILS(Open("k")->Edit(), dao_error::ReadOnly);
    const auto shadowed = Open("r");
    EXPECT_DONE(shadowed->Edit());
    EXPECT_DONE(shadowed->Set("x", 8));
    database_->Close();
    EXPECT_EQ(folder_.Read("foreign.db"), before);

    Reopen(path);
    EXPECT_FAILS(AddRow(*Open("c"), {DaoValue(), "c@x", 0}), dao_error::ValidationRule);
    EXPECT_DONE(database_->DeleteField("k", "b"));
    EXPECT_EQ(Walk("k"), "q");
    EXPECT_DONE(database_->AppendIndex("r", {"Key", {"x"}, true, true}));
    EXPECT_EQ(Walk("r"), "seven");
}

}  // namespace
}  // namespace mailvane
