#include <gtest/gtest.h>

#include "core/settings/Settings.h"
#include "core/settings/frmSettings.h"
#include "store/MergeMark.h"
#include "store/MessageStore.h"
#include "store/SentLedger.h"
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
    ASSERT_EQ(outbox->indexes.size(), 2u);
    EXPECT_EQ(outbox->indexes[0].name, "Index1");
    EXPECT_TRUE(outbox->indexes[0].primary);
    EXPECT_FALSE(outbox->indexes[0].unique);
}

TEST(MessageStore, ExistingFileIsLeftAlone) {
    TestBench bench;
    WriteFileText(MessageStorePath(bench.wb), "not a database");
    EXPECT_TRUE(EnsureMessageStore(bench.wb).Ok());
    EXPECT_EQ(ReadFileText(MessageStorePath(bench.wb)), "not a database");
    EXPECT_TRUE(OpenMessageStore(bench.wb).Failed());
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
    struct Case {
        const char* name;
        const char* oldFolder;
        const char* folder;
        bool deleteOld;
        bool knowsId;
        std::size_t oldLeft;
        std::size_t stored;
    };
    const Case cases[] = {
        {"moves", "Drafts", "Inbox", true, true, 0, 1},
        {"keeps the old row when not told to delete it", "Drafts", "Inbox", false, true, 1, 1},
        {"without an old ID deletes nothing", "Drafts", "Inbox", true, false, 1, 1},
        {"one blank is no old folder", " ", "Inbox", true, true, 1, 1},
        {"no old folder", "", "Inbox", true, true, 1, 1},
        {"blank target only deletes", "Drafts", "  ", true, true, 0, 0},
        {"missing old folder does not matter", "No such", "Inbox", true, true, 1, 1},
        {"missing target stores nothing", "Drafts", "No such", false, true, 1, 0},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        EmptyFolders();
        MessageRecord record = Sample();
        Save(record, "Drafts", "Read");
        const std::int32_t id = test.knowsId ? LastId("Drafts") : -1;
        SaveMessageRecord(wb, record, test.oldFolder, test.folder, test.deleteOld, id, "Unread",
                          false);
        EXPECT_EQ(Rows("Drafts").size(), test.oldLeft);
        EXPECT_EQ(Rows("Inbox").size(), test.stored);
    }
}

TEST_F(StoreTest, SignatureAndWrapOnTheWayIntoTheOutbox) {
    enum Source { None, Text, File, NoFile };
    struct Case {
        const char* name;
        const char* folder;
        Source signature;
        const char* text;
        const char* body;
        bool wrap = false;
        const char* status = "Read";
    };
    const std::string file = folder.Write("sig.txt", "-- file");
    const char* const others = " and everybody else here too ok";
    const Case cases[] = {
        {"plain", "Outbox", None, "-- Ann", "Dear Bob"},
        {"text", "Outbox", Text, "-- Ann", "Dear Bob-- Ann"},
        {"empty text", "Outbox", Text, "", "Dear Bob"},
        {"file", "Outbox", File, "unused", "Dear Bob-- file"},
        {"missing file", "Outbox", NoFile, "unused", "Dear Bob"},
        {"wrapped", "Outbox", Text, others, "Dear Bob and everybody else \r\nhere too ok", true},
        {"other folder", "Sent Items", Text, "-- Ann", "Dear Bob", true, "UnreadForward"},
    };
    auto& settings = wb.forms.Get<frmSettings>();
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        EmptyFolders();
        settings.chkAddSignature.SetChecked(test.signature != None);
        settings.optFile.SetValue(test.signature >= File);
        settings.optText.SetValue(test.signature == Text);
        settings.txtSignature.SetText(test.text);
        settings.txtSigFile.SetText(test.signature == File ? file : "/nowhere");
        settings.chkWrap.SetChecked(test.wrap);
        settings.txtWrap.SetText("30");
        MessageRecord record = Sample();
        record.Body = "Dear Bob";
        Save(record, test.folder, "UnreadForward");
        ASSERT_EQ(Rows(test.folder).size(), 1u);
        EXPECT_EQ(Rows(test.folder)[0].Body, test.body);
        EXPECT_EQ(Rows(test.folder)[0].Status, test.status);
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

TEST_F(StoreTest, OversizedTextLosesTheRowAndNothingElse) {
    MessageRecord record = Sample();
    record.To.assign(DefaultTextSize + 1, 'x');
    Save(record, "Inbox");
    EXPECT_TRUE(Rows("Inbox").empty());
    record.To.pop_back();
    Save(record, "Inbox");
    EXPECT_EQ(Rows("Inbox").size(), 1u);
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

TEST_F(StoreTest, LedgerKeepsIdsOutOfTheFolderListUntilTheirMessagesHaveGone) {
    Database& store = *wb.state.MessageStore;
    EXPECT_TRUE(SentLedger::Entries(store)->empty());
    EXPECT_TRUE(SentLedger::RemoveGone(store).Ok());
    for (int i = 0; i < 3; ++i)
        Save({}, OutboxFolder);
    const auto ledger = SentLedger::Open(store);
    ASSERT_TRUE(ledger.Ok());
    for (const std::int32_t id : {3, 9, 1})
        ASSERT_TRUE(SentLedger::Record(**ledger, id, clock.Now()).Ok());
    ASSERT_TRUE(store.Execute("DELETE FROM Outbox WHERE ID = 1").Ok());
    ASSERT_TRUE(SentLedger::RemoveGone(store).Ok());
    CloseMessageStore(wb);
    ASSERT_TRUE(OpenMessageStore(wb).Ok());
    EXPECT_EQ(*SentLedger::Entries(*wb.state.MessageStore), (AcceptedMessages{{3, clock.Now()}}));
    EXPECT_EQ(wb.state.MessageStore->UserTableNames()->size(), 6u);
}

TEST_F(StoreTest, MergeMarkCountsOnceHowFarTheRunCame) {
    Database& store = *wb.state.MessageStore;
    EXPECT_FALSE(MergeMark::Find(store)->has_value()) << "no run yet";
    Save({}, OutboxFolder);  // from before the run
    UnfinishedMerge run;
    run.table = "People";
    run.total = 500;
    run.firstRow = 3;
    run.started = clock.Now();
    ASSERT_TRUE(MergeMark::Set(store, UnfinishedMerge()).Ok());
    ASSERT_TRUE(MergeMark::Set(store, run).Ok()) << "in place of the one before";
    for (int i = 0; i < 7; ++i)
        Save({}, OutboxFolder);
    for (int start = 0; start < 2; ++start) {
        const auto found = MergeMark::Find(store);
        ASSERT_TRUE(found.Ok() && found->has_value());
        EXPECT_EQ((*found)->table, "People");
        EXPECT_EQ((*found)->firstRow, 3);
        EXPECT_EQ((*found)->started.GeneralDate(), run.started.GeneralDate());
        EXPECT_EQ(InterruptedMergeText(**found),
                  "The last merge run was interrupted: 7 of 500 messages are in the Outbox.");
        ASSERT_TRUE(store.Execute("DELETE * FROM Outbox").Ok());  // sent meanwhile
    }
    ASSERT_TRUE(MergeMark::Clear(store).Ok());
    EXPECT_FALSE(MergeMark::Find(store)->has_value());
}

}  // namespace
}  // namespace mailvane
