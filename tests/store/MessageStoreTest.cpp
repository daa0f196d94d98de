#include <gtest/gtest.h>

#include <filesystem>

#include "core/settings/Settings.h"
#include "core/settings/frmSettings.h"
#include "store/MessageStore.h"
#include "support/TestBench.h"

namespace mailvane {
namespace {

using test::TestBench;

struct StoreTest : testing::Test, TestBench {
    StoreTest() {
        EXPECT_TRUE(EnsureMessageStore(wb).Ok());
        EXPECT_TRUE(OpenMessageStore(wb).Ok());
    }
    ~StoreTest() override { CloseMessageStore(wb); }

    std::vector<MessageRecord> Rows(const std::string& name) {
        std::vector<MessageRecord> rows;
        const auto opened = wb.state.MessageStore->OpenRecordset(name);
        if (opened.Failed()) return rows;
        for (; !(*opened)->EndOfFile(); (*opened)->MoveNext().Ignore()) {
            const auto row = ReadMessageRow(**opened);
            EXPECT_TRUE(row.Ok());
            rows.push_back(*row);
        }
        return rows;
    }
    void Save(MessageRecord record, const std::string& target, const std::string& status = "Unread",
              bool undo = false) {
        SaveMessageRecord(wb, record, "", target, false, 0, status, undo);
    }
    void EmptyFolders() {
        const auto tables = wb.state.MessageStore->UserTableNames();
        for (const std::string& name : *tables)
            EXPECT_TRUE(wb.state.MessageStore->Execute("DELETE * FROM [" + name + "]").Ok());
    }
    std::int32_t LastId(const std::string& name) {
        const auto opened = wb.state.MessageStore->OpenRecordset(name);
        EXPECT_TRUE((*opened)->MoveLast().Ok());
        return static_cast<std::int32_t>((*opened)->Get("ID")->NumberOr(-1));
    }
};

MessageRecord Sample() {
    MessageRecord record;
    record.From = "Ann <ann@example.com>";
    record.To = "bob@example.com";
    record.Subject = "O'Hara";
    record.Date = *DateTime::FromParts(2024, 2, 29, 23, 59, 58);
    record.Size = 1234;
    record.Body = "One\r\nTwo";
    record.BCC = "c@example.com";
    record.Retries = 2;
    return record;
}

TEST_F(StoreTest, NewStoreHasTheFoldersAndColumnsInOrder) {
    const auto folders = wb.state.MessageStore->UserTableNames();
    EXPECT_EQ(*folders, (std::vector<std::string>{"Inbox", "Outbox", "Sent Items", "Deleted Items",
                                                  "Drafts", "Imported Messages"}));
    const auto outbox = wb.state.MessageStore->GetTableDef("Outbox");
    ASSERT_TRUE(outbox.Ok());
    std::string layout;
    for (const Field& field : outbox->fields)
        layout += field.name + ":" + std::to_string(static_cast<int>(field.type)) + " ";
    EXPECT_EQ(layout,
              "From:10 To:10 Subject:10 Date:8 Body:12 CC:10 BCC:12 Attach:10 AllHeaders:12 "
              "Size:10 Priority:10 ReplyTo:10 Mailer:10 ContentType:10 HTML:10 ID:4 HTMLCode:12 "
              "Status:10 Retries:3 ");
    EXPECT_TRUE(outbox->FindField("ID")->IsAutoNumber());
    EXPECT_TRUE(outbox->indexes.at(0).name == "Index1" && outbox->indexes[0].primary);
}

TEST_F(StoreTest, LinkToAPlaceThatIsNotMountedIsNotReplaced) {
    CloseMessageStore(wb);
    std::filesystem::remove(MessageStorePath(wb));
    std::filesystem::create_symlink("/nowhere/messages.dat", MessageStorePath(wb));
    EXPECT_TRUE(EnsureMessageStore(wb).Ok());
    EXPECT_EQ(OpenMessageStore(wb).description, "Could not find file '/nowhere/messages.dat'.");
}

TEST_F(StoreTest, UpgradeAddsAColumnToEveryFolderAndHidesIt) {
    Database& store = *wb.state.MessageStore;
    const auto tables = store.UserTableNames();
    for (const std::string& name : *tables)
        ASSERT_TRUE(store.DeleteField(name, "Status").Ok());
    CloseMessageStore(wb);

    AddMissingColumn(wb, "STATUS", FieldType::Text, "");
    AddMissingColumn(wb, "Retries", FieldType::Integer, "0");
    ASSERT_TRUE(OpenMessageStore(wb).Ok());
    for (const std::string& name : *tables)
        EXPECT_TRUE(wb.state.MessageStore->GetTableDef(name)->FindField("Status")) << name;
    EXPECT_EQ(GetUserSetting(wb, "Columns", "STATUS"), "0");
    EXPECT_EQ(GetUserSetting(wb, "Columns", "Retries"), NotFound) << "was there already";
}

TEST_F(StoreTest, RowKeepsEveryFieldOfTheRecord) {
    std::string MessageRecord::*const texts[] = {
        &MessageRecord::From,        &MessageRecord::To,      &MessageRecord::Subject,
        &MessageRecord::Body,        &MessageRecord::CC,      &MessageRecord::BCC,
        &MessageRecord::AllHeaders,  &MessageRecord::Attach,  &MessageRecord::Priority,
        &MessageRecord::Mailer,      &MessageRecord::ReplyTo, &MessageRecord::HTML,
        &MessageRecord::ContentType, &MessageRecord::HTMLCode};
    MessageRecord record = Sample();
    record.To.assign(DefaultTextSize + 1, 'x');
    Save(record, "Drafts");
    EXPECT_TRUE(Rows("Drafts").empty())
        << "a text that is too long loses the row, and nothing else";
    int number = 0;
    for (const auto text : texts)
        record.*text = "\xC3\xA4\r\n" + std::to_string(++number);
    Save(record, "Drafts", "UnreadReplied");
    const MessageRecord row = Rows("Drafts").at(0);
    for (const auto text : texts)
        EXPECT_EQ(row.*text, record.*text);
    EXPECT_EQ(row.Date, record.Date);
    EXPECT_EQ(row.Size, 1234);
    EXPECT_EQ(row.Retries, 2);
    EXPECT_EQ(row.Status, "UnreadReplied");
}

TEST_F(StoreTest, OldRowAndTarget) {
    const std::tuple<const char*, const char*, const char*, bool, bool, std::size_t, std::size_t>
        cases[] = {
            {"moves", "Drafts", "Inbox", true, true, 0, 1},
            {"keeps the old row when not told to delete it", "Drafts", "Inbox", false, true, 1, 1},
            {"without an old ID deletes nothing", "Drafts", "Inbox", true, false, 1, 1},
            {"one blank is no old folder", " ", "Inbox", true, true, 1, 1},
            {"no old folder", "", "Inbox", true, true, 1, 1},
            {"blank target only deletes", "Drafts", "  ", true, true, 0, 0},
            {"missing old folder does not matter", "No such", "Inbox", true, true, 1, 1},
            {"missing target stores nothing", "Drafts", "No such", false, true, 1, 0},
        };
    for (const auto& [name, oldFolder, target, deleteOld, knowsId, oldLeft, stored] : cases) {
        SCOPED_TRACE(name);
        EmptyFolders();
        MessageRecord record = Sample();
        Save(record, "Drafts", "Read");
        const std::int32_t id = knowsId ? LastId("Drafts") : -1;
        SaveMessageRecord(wb, record, oldFolder, target, deleteOld, id, "Unread", false);
        EXPECT_EQ(Rows("Drafts").size(), oldLeft);
        EXPECT_EQ(Rows("Inbox").size(), stored);
    }
}

TEST_F(StoreTest, SignatureAndWrapOnTheWayIntoTheOutbox) {
    const std::string file = folder.Write("sig.txt", "-- file");
    enum Source { None, Text, File };
    const std::tuple<const char*, Source, const char*, const char*, bool> cases[] = {
        {"plain", None, "-- Ann", "Dear Bob", false},
        {"text", Text, "-- Ann", "Dear Bob-- Ann", false},
        {"file", File, file.c_str(), "Dear Bob-- file", false},
        {"missing file", File, "/nowhere", "Dear Bob", false},
        {"wrapped", Text, " and everybody else here too ok",
         "Dear Bob and everybody else \r\nhere too ok", true},
    };
    auto& settings = wb.forms.Get<frmSettings>();
    MessageRecord record = Sample();
    record.Body = "Dear Bob";
    for (const auto& [name, source, signature, body, wrap] : cases) {
        SCOPED_TRACE(name);
        EmptyFolders();
        settings.chkAddSignature.SetChecked(source != None);
        (source == File ? settings.optFile : settings.optText).SetValue(true);
        settings.txtSignature.SetText(signature);
        settings.txtSigFile.SetText(signature);
        settings.chkWrap.SetChecked(wrap);
        settings.txtWrap.SetText("30");
        Save(record, "Outbox", "UnreadForward");
        Save(record, "Sent Items", "UnreadForward");
        EXPECT_EQ(Rows("Outbox").at(0).Body, body);
        EXPECT_EQ(Rows("Outbox")[0].Status, "Read");
        EXPECT_EQ(Rows("Sent Items").at(0).Body, "Dear Bob") << "of another folder";
        EXPECT_EQ(Rows("Sent Items")[0].Status, "UnreadForward");
    }
}

TEST_F(StoreTest, UndoRemovesOnlyTheNewestEqualRow) {
    Save(Sample(), "Inbox", "Unread", true);
    EXPECT_TRUE(Rows("Inbox").empty()) << "an empty folder has nothing to undo";
    const std::tuple<const char*, void (*)(MessageRecord&), std::size_t> cases[] = {
        {"equal", [](MessageRecord&) {}, 1},
        {"other From", [](MessageRecord& r) { r.From += "x"; }, 2},
        {"other To", [](MessageRecord& r) { r.To += "x"; }, 2},
        {"other Subject", [](MessageRecord& r) { r.Subject = "o'hara"; }, 2},
        {"other Date", [](MessageRecord& r) { r.Date = r.Date.PlusSeconds(1); }, 2},
        {"other Body only", [](MessageRecord& r) { r.Body = "x"; }, 1},
    };
    for (const auto& [name, change, left] : cases) {
        SCOPED_TRACE(name);
        EmptyFolders();
        MessageRecord record = Sample();
        for (int i = 0; i < 2; ++i)
            Save(record, "Inbox");
        change(record);
        Save(record, "Inbox", "Unread", true);
        EXPECT_EQ(Rows("Inbox").size(), left);
    }
}

TEST_F(StoreTest, UserFolderKeepsTheDateAsGeneralDateText) {
    Database& store = *wb.state.MessageStore;
    TableDef mine = *store.GetTableDef("Inbox");
    mine.name = "Mine";
    for (Field& field : mine.fields)
        if (field.name == "Date") field = *mine.FindField("Subject"), field.name = "Date";
    ASSERT_TRUE(store.AppendTable(mine).Ok());
    Save(Sample(), "Mine");
    const auto rows = store.OpenRecordset("Mine");
    ASSERT_TRUE(rows.Ok());
    EXPECT_EQ((*rows)->Get("Date")->TextOrEmpty(), "2/29/2024 11:59:58 PM");
    Save(Sample(), "Mine", "Unread", true);
    EXPECT_TRUE(Rows("Mine").empty()) << "undo reads the text as a date";
}

}  // namespace
}  // namespace mailvane
