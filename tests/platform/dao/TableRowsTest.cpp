#include <gtest/gtest.h>

#include "platform/dao/file/Workspace.h"
#include "support/TempFolder.h"

namespace mailvane {
namespace {

class TableRows : public testing::Test {
protected:
    void SetUp() override {
        TableDef table;
        table.name = "T";
        table.fields = {{.name = "Id", .type = FieldType::Long},
                        {.name = "Name", .size = 5},
                        {.name = "Day", .type = FieldType::Date},
                        {.name = "Part", .type = FieldType::Double},
                        {.name = "Sum", .type = FieldType::Currency},
                        {.name = "Flag", .type = FieldType::Boolean},
                        {.name = "Kept", .defaultValue = "\"usual\""}};
        table.indexes = {{"Key", {"Id"}, true, true}};
        database = *Workspace::Create()->CreateDatabase(folder.File("rows.db"));
        ASSERT_TRUE(database->AppendTable(table).Ok());
        auto opened = database->OpenAppender("t", {"ID", "name", "Day", "Part", "Sum", "Flag"});
        ASSERT_TRUE(opened.Ok()) << opened.Error().description;
        rows = std::move(*opened);
    }

    std::string Shown() {
        const auto scan = database->OpenScan("T");
        std::string shown;
        while (*(*scan)->Next()) {
            for (std::size_t i = 0; i < (*scan)->Fields().size(); ++i)
                shown += (*scan)->KindOf(i) == StoredKind::Null
                             ? "-"
                             : "[" + std::string((*scan)->TextOf(i)) + "]";
            shown += "\n";
        }
        return shown;
    }

    test::TempFolder folder;
    std::shared_ptr<Database> database;
    std::unique_ptr<TableAppender> rows;
};

TEST_F(TableRows, TextsAreConvertedAsARecordsetDoes) {
    const std::vector<std::vector<const char*>> texts{
        {"1", "", "2024-02-29 23:59:58", "0.1", "1.2", "True"},
        {" 2 ", "\xC5\xBD\xC3\xA9", "2/29/2024", "1e3", "12", "0"}};
    for (const auto& row : texts) {
        for (std::size_t i = 0; i < row.size(); ++i)
            ASSERT_TRUE(rows->SetText(i, row[i]).Ok()) << row[i];
        ASSERT_TRUE(rows->Append().Ok());
    }
    ASSERT_TRUE(rows->Set(0, DaoValue(3)).Ok());
    ASSERT_TRUE(rows->Append().Ok()) << "what was set does not stay for the next row";
    EXPECT_EQ(Shown(),
              "[1][][2024-02-29 23:59:58][0.1][1.2][True][usual]\n"
              "[2][\xC5\xBD\xC3\xA9][2024-02-29 00:00:00][1000][12][False][usual]\n"
              "[3]----[False][usual]\n");
}

TEST_F(TableRows, RefusesWhatARecordsetRefuses) {
    EXPECT_EQ(rows->SetText(0, "x").number, dao_error::DataConversion);
    EXPECT_EQ(rows->SetText(0, "2147483648").number, dao_error::DataConversion);
    EXPECT_EQ(rows->SetText(1, "sixsix").number, dao_error::FieldTooSmall);
    EXPECT_EQ(rows->SetText(2, "2023-02-29 00:00:00").number, dao_error::DataConversion);
    EXPECT_EQ(rows->SetText(3, "inf").number, dao_error::DataConversion);
    EXPECT_EQ(rows->SetText(9, "x").number, dao_error::ItemNotFound);
    for (const int expected : {0, dao_error::DuplicateKey}) {
        ASSERT_TRUE(rows->SetText(0, "7").Ok());
        EXPECT_EQ(rows->Append().number, expected);
    }
    EXPECT_EQ(database->OpenAppender("T", {"Nobody"}).Error().number, dao_error::ItemNotFound);
    EXPECT_EQ(database->OpenAppender("Gone", {"Id"}).Error().number, dao_error::TableNotFound);
    database->Close();
    EXPECT_EQ(rows->Append().number, dao_error::ObjectInvalid);
}

TEST_F(TableRows, ScanFindsRowsByBookmark) {
    for (const char* id : {"5", "6"}) {
        ASSERT_TRUE(rows->SetText(0, id).Ok());
        ASSERT_TRUE(rows->Append().Ok());
    }
    const auto list = database->OpenRecordset("T");
    const auto scan = database->OpenScan("T");
    ASSERT_TRUE(*(*scan)->Find(*(*list)->BookmarkAt(1)));
    EXPECT_EQ((*scan)->TextOf(0), "6");
    EXPECT_FALSE(*(*scan)->Find(999));
    ASSERT_TRUE(*(*scan)->Next());
    EXPECT_EQ((*scan)->TextOf(0), "5");
}

}  // namespace
}  // namespace mailvane
