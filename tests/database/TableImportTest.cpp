#include <gtest/gtest.h>

#include "database/exchange/TableExport.h"
#include "database/exchange/TableFile.h"
#include "platform/dao/file/Workspace.h"
#include "platform/os/Files.h"
#include "support/TempFolder.h"

namespace mailvane {
namespace {

class TableImport : public testing::Test {
protected:
    void SetUp() override {
        auto made = workspace->CreateDatabase(folder.File("recipients.db"));
        ASSERT_TRUE(made.Ok()) << made.Error().description;
        database = *made;
    }

    TableImportResult Import(const std::string& text, TableImportOptions options = {}) {
        if (options.table.empty()) options.table = "List";
        std::string error;
        const auto source = OpenTableFile(folder.Write("list.csv", text), {}, error);
        return ImportTable(*database, *source, options,
                           [this](std::int64_t, std::int64_t) { return !cancel; });
    }

    TableImportResult AddRows(const std::string& text) {
        TableImportOptions options;
        options.newTable = false;
        return Import(text, options);
    }

    /// The table as text: columns with the numbers of their types, then the rows; "-" is Null.
    std::string Shown(const std::string& table = "List") {
        const auto rows = database->OpenRecordset(table);
        if (rows.Failed()) return rows.Error().description;
        std::string shown;
        for (const Field& field : (*rows)->Fields())
            shown += field.name + ":" + std::to_string(static_cast<int>(field.type)) + "|";
        const auto all = (*rows)->ReadRows(0, 100);
        for (const auto& row : *all) {
            shown += "\n";
            for (const DaoValue& value : row)
                shown += (value.IsNull() ? "-" : "[" + value.TextOrEmpty() + "]");
        }
        return shown;
    }

    test::TempFolder folder;
    std::shared_ptr<Workspace> workspace = Workspace::Create();
    std::shared_ptr<Database> database;
    bool cancel = false;
};

TEST_F(TableImport, KeepsEveryValueInAColumnThatFits) {
    const auto result = Import(
        "Email,First Name,Company,Customer,Since,Sum\r\n"
        "a@example.com,Žélie,\"Müller, Sons & Co\",00123,2024-02-29,12\r\n"
        "b@example.com,O'Brien,,\"\",2023-01-05 13:30:00,0.5\r\n"
        "c@example.com\r\n");
    ASSERT_EQ(result.error, "");
    EXPECT_EQ(result.rows, 3);
    EXPECT_EQ(result.rejected, 0);
    EXPECT_EQ(Shown(),
              "Email:10|First Name:10|Company:10|Customer:10|Since:8|Sum:7|\n"
              "[a@example.com][Žélie][Müller, Sons & Co][00123][2/29/2024][12]\n"
              "[b@example.com][O'Brien]-[][1/5/2023 1:30:00 PM][0.5]\n"
              "[c@example.com]-----");
}

TEST_F(TableImport, NamesTheColumns) {
    TableImportOptions named;
    named.columns = {"Address", "", "N"};
    TableImportOptions headless;
    headless.header = false;
    const std::tuple<const char*, const char*, TableImportOptions, const char*> rows[] = {
        {"what the engine takes",
         "E.mail,[First],email,E mail,,\xC3\xA9\nx,x,x,x,x,x\n",
         {},
         "E mail:10|First:10|email:10|E mail 2:10|Field5:10|é:10|\n[x][x][x][x][x][x]"},
        {"without a header", "a@example.com,Ana\n", headless,
         "Field1:10|Field2:10|\n[a@example.com][Ana]"},
        {"renamed and left out", "Email,Name,Number\na@example.com,Ana,7\n", named,
         "Address:10|N:4|\n[a@example.com][7]"},
    };
    for (const auto& [name, text, options, shown] : rows) {
        EXPECT_EQ(Import(text, options).error, "") << name;
        EXPECT_EQ(Shown(), shown) << name;
        EXPECT_TRUE(database->DeleteTable("List").Ok());
    }
}

TEST_F(TableImport, AddsToATableByColumnName) {
    ASSERT_EQ(Import("Email,Name\na@example.com,Ana\n").error, "");
    const auto result = AddRows("NAME,Other,email\nBob,x,b@example.com\n");
    ASSERT_EQ(result.error, "");
    EXPECT_EQ(Shown(), "Email:10|Name:10|\n[a@example.com][Ana]\n[b@example.com][Bob]");
    EXPECT_NE(AddRows("Other\nx\n").error.find("No column"), std::string::npos);
}

TEST_F(TableImport, PutsRowsThatDoNotFitAside) {
    ASSERT_EQ(Import("Id,Since\n1,2024-01-01\n").error, "");
    ASSERT_TRUE(database->AppendIndex("List", {"Key", {"Id"}, false, true}).Ok());
    const auto result = AddRows(
        "Id,Since\n2,2024-01-02\nmany,2024-01-03\n1,2024-01-04\n3,soon\n4,2024-01-05,more\n"
        "5,\xFF\n6,\"2024-01-06\"\n");
    ASSERT_EQ(result.error, "");
    EXPECT_EQ(result.rows, 2);
    EXPECT_EQ(result.rejected, 5);
    EXPECT_EQ(Shown(), "Id:4|Since:8|\n[1][1/1/2024]\n[2][1/2/2024]\n[6][1/6/2024]");
    EXPECT_EQ(result.rejectedFile, folder.File("List rejected.csv"));
    EXPECT_EQ(
        ReadWholeFile(result.rejectedFile).value_or(""),
        "Line,Reason,Id,Since\r\n"
        "3,Column 'Id': Data type conversion error.,many,2024-01-03\r\n"
        "4,\"The changes you requested to the table were not successful because they would "
        "create duplicate values in the index, primary key, or relationship.\",1,2024-01-04\r\n"
        "5,Column 'Since': Data type conversion error.,3,soon\r\n"
        "6,\"It has 3 fields, the first line has 2.\",4,2024-01-05,more\r\n"
        "7,It holds bytes that are no UTF-8; another character set fits.,5,\xFF\r\n");
    EXPECT_EQ(AddRows("Id\nx\n").rejectedFile, folder.File("List rejected 2.csv"));
}

TEST_F(TableImport, RefusedTextsLeaveNoTableBehind) {
    const std::pair<const char*, const char*> rows[] = {
        {"", "is empty"}, {"a,b\n1,\"2\n", "Line 2: a quotation mark"}};
    for (const auto& [text, error] : rows) {
        const auto result = Import(text);
        EXPECT_NE(result.error.find(error), std::string::npos) << result.error;
        EXPECT_EQ(result.rows, 0);
        EXPECT_FALSE(database->TableExists("List"));
    }
}

TEST_F(TableImport, CancelAndFailureLeaveEverythingAsItWas) {
    std::string text = "a,b\n1,2,3\n";
    for (int i = 0; i < 3000; ++i)
        text += "x,y\n";
    cancel = true;
    EXPECT_NE(Import(text).error.find("canceled"), std::string::npos);
    EXPECT_FALSE(database->TableExists("List"));
    cancel = false;
    ASSERT_EQ(Import("a,b\n1,2\n").error, "");
    EXPECT_EQ(Import("b\n2\n").error, "Table 'List' already exists.");
    EXPECT_NE(AddRows(text + "\"open\n").error.find("never closed"), std::string::npos);
    cancel = true;
    EXPECT_NE(AddRows(text).error.find("canceled"), std::string::npos);
    EXPECT_EQ(Shown(), "a:4|b:4|\n[1][2]");
    EXPECT_FALSE(IsFile(folder.File("List rejected.csv"))) << "it goes with the import";
}

TEST_F(TableImport, TakesTablesOfOtherSqliteFiles) {
    TableDef table;
    table.name = "T";
    using enum FieldType;
    table.fields = {{"Id", Long, 0, AutoIncrementAttribute},
                    {"Name", Text},
                    {"D", Date},
                    {"B", Boolean},
                    {"M", Memo},
                    {"N", Double}};
    auto other = Workspace::Create()->CreateDatabase(folder.File("other.db"));
    ASSERT_TRUE((*other)->AppendTable(table).Ok());
    const std::string insert = "INSERT INTO T (D, B, N, Name) VALUES (";
    for (const char* name : {"'Ana')", "Null)"})
        ASSERT_TRUE((*other)->Execute(insert + "#2/29/2024 1:30:00 PM#, True, 0.1, " + name).Ok());
    (*other)->Close();
    std::string error;
    const auto source = OpenTableFile(folder.File("other.db"), {}, error);
    ASSERT_TRUE(source) << error;
    EXPECT_EQ(source->Tables(), std::vector<std::string>{"T"});
    TableImportOptions options;
    options.table = "Copy";
    const auto result =
        ImportTable(*database, *source, options, [](std::int64_t, std::int64_t) { return true; });
    ASSERT_EQ(result.error, "");
    EXPECT_EQ(Shown("Copy"),
              "Id:4|Name:10|D:8|B:1|M:12|N:7|\n"
              "[1][Ana][2/29/2024 1:30:00 PM][True]-[0.1]\n"
              "[2]-[2/29/2024 1:30:00 PM][True]-[0.1]");
    EXPECT_TRUE(database->GetTableDef("Copy")->fields[0].IsAutoNumber());
}

// --- Export -----------------------------------------------------------------------------------

class TableExport : public TableImport {
protected:
    TableExportResult Export(const std::string& file, const std::string& table = "List") {
        TableExportOptions options;
        options.table = table;
        options.file = folder.File(file);
        options.rows = rows;
        options.format.delimiter = delimiter;
        return ExportTable(*database, options,
                           [this](std::int64_t, std::int64_t) { return !cancel; });
    }

    /// Imports the exported file into another table.
    std::string Again(const std::string& file) {
        std::string error;
        DelimitedFormat format;
        format.delimiter = delimiter;
        const auto source = OpenTableFile(folder.File(file), format, error);
        if (!source) return error;
        TableImportOptions options;
        options.table = "Again";
        ImportTable(*database, *source, options, [](std::int64_t, std::int64_t) { return true; });
        return Shown("Again");
    }

    static constexpr const char* Values =
        "Text,Code,Day,Moment,Number,Flag\n"
        "\"a \"\"b\"\";c,d\r\ne\",00123,2024-02-29,2024-02-29 23:59:58,-1.5,True\n"
        "\"\",0,1750-01-01,,12,False\n"
        "Žéß,+1,,1999-12-31 00:00:01,,True\n";
    std::optional<std::vector<Bookmark>> rows;
    char delimiter = ',';
};

TEST_F(TableExport, ComesBackEqualFromText) {
    ASSERT_EQ(Import(Values).error, "");
    delimiter = ';';
    EXPECT_EQ(Export("out.csv").rows, 3);
    EXPECT_EQ(Again("out.csv"), Shown());
    delimiter = ',';
    EXPECT_EQ(Export("out.csv").error, "");
    EXPECT_EQ(ReadWholeFile(folder.File("out.csv")).value_or(""),
              "Text,Code,Day,Moment,Number,Flag\r\n"
              "\"a \"\"b\"\";c,d\r\ne\",00123,2024-02-29,2024-02-29 23:59:58,-1.5,True\r\n"
              "\"\",0,1750-01-01,,12,False\r\n"
              "Žéß,+1,,1999-12-31 00:00:01,,True\r\n");
}

TEST_F(TableExport, ComesBackEqualFromAWorkbook) {
    ASSERT_EQ(Import("Text,Code,Day,Number,Flag\n\"a \"\"b\"\"\r\nc\",00123,2024-02-29,-1.5,True\n"
                     "Žéß,+1,2024-03-01 23:59:58,,False\n")
                  .error,
              "");
    EXPECT_EQ(Export("out.XLSX").sheets, 1);
    EXPECT_EQ(Again("out.XLSX"), Shown());
}

TEST_F(TableExport, TakesSelectedRowsInTheirOrder) {
    ASSERT_EQ(Import("N\n10\n20\n30\n").error, "");
    const auto list = database->OpenRecordset("List");
    rows = {*(*list)->BookmarkAt(2), 999, *(*list)->BookmarkAt(0)};
    EXPECT_EQ(Export("out.csv").rows, 2) << "a row that has gone is passed over";
    EXPECT_EQ(ReadWholeFile(folder.File("out.csv")).value_or(""), "N\r\n30\r\n10\r\n");
}

TEST_F(TableExport, CancelAndFailureLeaveTheOldFile) {
    std::string text = "a\n";
    for (int i = 0; i < 3000; ++i)
        text += "x\n";
    ASSERT_EQ(Import(text).error, "");
    for (const char* file : {"out.csv", "out.xlsx"}) {
        folder.Write(file, "old");
        cancel = true;
        EXPECT_NE(Export(file).error.find("canceled"), std::string::npos);
        cancel = false;
        EXPECT_NE(Export(file, "Gone").error, "");
        EXPECT_EQ(folder.Read(file), "old");
    }
    EXPECT_NE(Export("no folder/out.xlsx").error.find("cannot be written"), std::string::npos);
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
        files += entry.path().filename().string().find("tmp") != std::string::npos;
    EXPECT_EQ(files, 0);
}

}  // namespace
}  // namespace mailvane
