#include <gtest/gtest.h>

#include "database/TextImport.h"
#include "platform/dao/Workspace.h"
#include "platform/os/Files.h"
#include "support/TempFolder.h"

namespace mailvane {
namespace {

class TextImport : public testing::Test {
protected:
    void SetUp() override {
        auto made = workspace->CreateDatabase(folder.Path() + "/recipients.db");
        ASSERT_TRUE(made.Ok()) << made.Error().description;
        database = *made;
    }

    TextImportResult Import(const std::string& text, bool header = true) {
        EXPECT_TRUE(WriteWholeFile(folder.Path() + "/list.csv", text));
        return ImportText(*database, {folder.Path() + "/list.csv", "List", header},
                          [this](std::int64_t) { return !cancel; });
    }

    std::string Columns() {
        std::string names;
        const auto table = database->GetTableDef("List");
        if (table.Ok())
            for (const Field& field : table->fields)
                names += field.name + "|";
        return names;
    }

    DaoValue Value(const std::string& column, int row = 0) {
        auto rows = database->OpenRecordset("List");
        for (int i = 0; i < row; ++i)
            EXPECT_TRUE((*rows)->MoveNext().Ok());
        return (*rows)->Get(column).ValueOr(DaoValue("no such column"));
    }

    test::TempFolder folder;
    std::shared_ptr<Workspace> workspace = Workspace::Create();
    std::shared_ptr<Database> database;
    bool cancel = false;
};

TEST_F(TextImport, KeepsEveryValueAsItStands) {
    const auto result = Import(
        "Email,First Name,Company,Customer\r\n"
        "a@example.com,Žélie,\"Müller, Sons & Co\",00123\r\n"
        "b@example.com,O'Brien,,\"\"\r\n"
        "c@example.com\r\n");
    ASSERT_EQ(result.error, "");
    EXPECT_EQ(result.rows, 3);
    EXPECT_EQ(Columns(), "Email|First Name|Company|Customer|");
    EXPECT_EQ(Value("Company"), DaoValue("Müller, Sons & Co"));
    EXPECT_EQ(Value("Customer"), DaoValue("00123"));
    EXPECT_EQ(Value("First Name", 1), DaoValue("O'Brien"));
    EXPECT_TRUE(Value("Company", 1).IsNull());
    EXPECT_EQ(Value("Customer", 1), DaoValue(""));
    EXPECT_TRUE(Value("First Name", 2).IsNull()) << "a short line leaves the rest empty";
}

TEST_F(TextImport, MakesColumnNamesThatTheEngineTakes) {
    ASSERT_EQ(Import("E.mail,[First],email,E mail,,\xC3\xA9\n1,2,3,4,5,6\n").error, "");
    EXPECT_EQ(Columns(), "E mail|First|email|E mail 2|Field5|é|");
}

TEST_F(TextImport, NumbersColumnsWithoutAHeader) {
    ASSERT_EQ(Import("a@example.com,Ana\n", false).rows, 1);
    EXPECT_EQ(Columns(), "Field1|Field2|");
}

struct Refused {
    const char* name;
    std::string text;
    std::string error;
};

class RefusedTexts : public TextImport, public testing::WithParamInterface<Refused> {};

TEST_P(RefusedTexts, LeaveNoTableBehind) {
    const auto result = Import(GetParam().text);
    EXPECT_NE(result.error.find(GetParam().error), std::string::npos) << result.error;
    EXPECT_EQ(result.rows, 0);
    EXPECT_FALSE(database->TableExists("List"));
}

INSTANTIATE_TEST_SUITE_P(
    All, RefusedTexts,
    testing::Values(Refused{"EmptyFile", "", "is empty"},
                    Refused{"TooManyFields", "a,b\n1,2\n1,2,3\n", "Line 3: it has 3 fields"},
                    Refused{"OpenQuote", "a,b\n1,\"2\n", "quotation mark"},
                    Refused{"LongerThanATextColumn", "a\n" + std::string(70000, 'x') + "\n",
                            "Line 2: The field is too small"}),
    [](const auto& row) { return row.param.name; });

TEST_F(TextImport, CancelLeavesNothing) {
    cancel = true;
    std::string text = "a\n";
    for (int i = 0; i < 1000; ++i)
        text += "x\n";
    EXPECT_NE(Import(text).error.find("canceled"), std::string::npos);
    EXPECT_FALSE(database->TableExists("List"));
}

TEST_F(TextImport, ExistingTableStaysAsItWas) {
    ASSERT_EQ(Import("a\n1\n").error, "");
    EXPECT_EQ(Import("b\n2\n").error, "Table 'List' already exists.");
    EXPECT_EQ(Value("a"), DaoValue("1"));
}

}  // namespace
}  // namespace mailvane
