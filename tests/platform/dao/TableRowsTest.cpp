#include "platform/dao/DaoTestBase.h"

namespace mailvane {
namespace {

class TableRows : public DaoTest {
protected:
    void SetUp() override {
        Field kept = Column("Kept");
        kept.defaultValue = "\"usual\"";
        MakeTable("T",
                  {Column("Id", FieldType::Long), Column("Name", FieldType::Text, 5),
                   Column("Day", FieldType::Date), Column("Part", FieldType::Double),
                   Column("Sum", FieldType::Currency), Column("Flag", FieldType::Boolean), kept},
                  {{"Key", {"Id"}, true, true}});
        auto opened = database_->OpenAppender("t", {"ID", "name", "Day", "Part", "Sum", "Flag"});
        ASSERT_TRUE(opened.Ok()) << opened.Error().description;
        rows = std::move(*opened);
    }

    DaoError Append(const std::vector<const char*>& texts) {
        for (std::size_t i = 0; i < texts.size(); ++i)
            if (DaoError failed = rows->SetText(i, texts[i]); failed.Failed()) return failed;
        return rows->Append();
    }

    std::string Shown() {
        const auto scan = database_->OpenScan("T");
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

    std::unique_ptr<TableAppender> rows;
};

TEST_F(TableRows, TextsAreConvertedAsARecordsetDoes) {
    EXPECT_DONE(Append({"1", "", "2024-02-29 23:59:58", "0.1", "1.2", "True"}));
    EXPECT_DONE(Append({" 2 ", "\xC5\xBD\xC3\xA9", "2/29/2024", "1e3", "12", "0"}));
    EXPECT_DONE(rows->Set(0, DaoValue(3)));
    EXPECT_DONE(rows->Append());  // what was set does not stay for the next row
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
    EXPECT_DONE(Append({"7"}));
    EXPECT_FAILS(Append({"7"}), dao_error::DuplicateKey);
    EXPECT_EQ(database_->OpenAppender("T", {"Nobody"}).Error().number, dao_error::ItemNotFound);
    EXPECT_EQ(database_->OpenAppender("Gone", {"Id"}).Error().number, dao_error::TableNotFound);
    database_->Close();
    EXPECT_EQ(rows->Append().number, dao_error::ObjectInvalid);
}

TEST_F(TableRows, ScanFindsRowsByBookmark) {
    EXPECT_DONE(Append({"5"}));
    EXPECT_DONE(Append({"6"}));
    const auto list = database_->OpenRecordset("T");
    const auto scan = database_->OpenScan("T");
    ASSERT_TRUE(*(*scan)->Find(*(*list)->BookmarkAt(1)));
    EXPECT_EQ((*scan)->TextOf(0), "6");
    EXPECT_FALSE(*(*scan)->Find(999));
    ASSERT_TRUE(*(*scan)->Next());
    EXPECT_EQ((*scan)->TextOf(0), "5");
}

}  // namespace
}  // namespace mailvane
