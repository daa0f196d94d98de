#include <gtest/gtest.h>

#include "core/Settings.h"
#include "core/frmSettings.h"
#include "store/MergeMark.h"
#include "store/MessageStore.h"
#include "store/SentLedger.h"
#include "support/TestBench.h"

namespace mailvane {
namespace {

using test::TestBench;

struct StoreBench : TestBench {
    StoreBench() {
        EXPECT_TRUE(EnsureMessageStore(wb).Ok());
        EXPECT_TRUE(OpenMessageStore(wb).Ok());
    }
    ~StoreBench() { CloseMessageStore(wb); }

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

TEST(MessageStore, NewStoreHasTheFoldersAndColumnsInOrder) {
    StoreBench bench;
    const auto folders = bench.wb.state.MessageStore->UserTableNames();
    EXPECT_EQ(*folders, (std::vector<std::string>{"Inbox", "Outbox", "Sent Items", "Deleted Items",
                                                  "Drafts", "Imported Messages"}));
    const auto outbox = bench.wb.state.MessageStore->GetTableDef("Outbox");
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

TEST(MessageStore, UpgradeAddsAColumnToEveryFolderAndHidesIt) {
    StoreBench bench;
    Database& store = *bench.wb.state.MessageStore;
    for (const char* folder : {"Inbox", "Drafts"})
        ASSERT_TRUE(store.DeleteField(folder, "Status").Ok());
    for (const char* folder : {"Outbox", "Sent Items", "Deleted Items", "Imported Messages"})
        ASSERT_TRUE(store.DeleteField(folder, "Status").Ok());
    CloseMessageStore(bench.wb);

    AddMissingColumn(bench.wb, "STATUS", FieldType::Text, "");
    AddMissingColumn(bench.wb, "Retries", FieldType::Integer, "0");
    ASSERT_TRUE(OpenMessageStore(bench.wb).Ok());
    const auto folders = bench.wb.state.MessageStore->UserTableNames();
    for (const std::string& folder : *folders)
        EXPECT_TRUE(bench.wb.state.MessageStore->GetTableDef(folder)->FindField("Status"))
            << folder;
    EXPECT_EQ(GetUserSetting(bench.wb, "Columns", "STATUS"), "0");
    EXPECT_EQ(GetUserSetting(bench.wb, "Columns", "Retries"), NotFound) << "was there already";
}

TEST(MessageStore, RowKeepsEveryFieldOfTheRecord) {
    StoreBench bench;
    MessageRecord record = Sample();
    record.AllHeaders = "X: y\r\n";
    record.CC = "cc@example.com";
    record.Attach = "/tmp/a.pdf";
    record.Priority = "1";
    record.Mailer = "M";
    record.ReplyTo = "r@example.com";
    record.ContentType = "html";
    record.HTML = "/tmp/a.html";
    record.HTMLCode = "<b>\xC3\xA4</b>";
    SaveMessageRecord(bench.wb, record, "", "Drafts", false, 0, "UnreadReplied", false);
    ASSERT_EQ(bench.Rows("Drafts").size(), 1u);
    const MessageRecord row = bench.Rows("Drafts")[0];
    for (const auto member :
         {&MessageRecord::From, &MessageRecord::To, &MessageRecord::Subject, &MessageRecord::Body,
          &MessageRecord::AllHeaders, &MessageRecord::CC, &MessageRecord::BCC,
          &MessageRecord::Attach, &MessageRecord::Priority, &MessageRecord::Mailer,
          &MessageRecord::ReplyTo, &MessageRecord::ContentType, &MessageRecord::HTML,
          &MessageRecord::HTMLCode})
        EXPECT_EQ(row.*member, record.*member);
    EXPECT_EQ(row.Date, record.Date);
    EXPECT_EQ(row.Size, 1234);
    EXPECT_EQ(row.Retries, 2);
    EXPECT_EQ(row.Status, "UnreadReplied");
}

TEST(SaveMessageRecord, OldRowAndTarget) {
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
        StoreBench bench;
        MessageRecord record = Sample();
        SaveMessageRecord(bench.wb, record, "", "Drafts", false, 0, "Read", false);
        const std::int32_t id = test.knowsId ? bench.LastId("Drafts") : -1;
        SaveMessageRecord(bench.wb, record, test.oldFolder, test.folder, test.deleteOld, id,
                          "Unread", false);
        EXPECT_EQ(bench.Rows("Drafts").size(), test.oldLeft);
        EXPECT_EQ(bench.Rows("Inbox").size(), test.stored);
    }
}

TEST(SaveMessageRecord, SignatureAndWrapOnTheWayIntoTheOutbox) {
    struct Case {
        const char* name;
        const char* folder;
        bool signature;
        bool fromFile;
        bool fileThere;
        const char* text;
        bool wrap;
        const char* body;
        const char* status;
    };
    const Case cases[] = {
        {"plain", "Outbox", false, false, false, "-- Ann", false, "Dear Bob", "Read"},
        {"text", "Outbox", true, false, false, "-- Ann", false, "Dear Bob-- Ann", "Read"},
        {"empty text", "Outbox", true, false, false, "", false, "Dear Bob", "Read"},
        {"file", "Outbox", true, true, true, "unused", false, "Dear Bob-- file", "Read"},
        {"missing file", "Outbox", true, true, false, "unused", false, "Dear Bob", "Read"},
        {"wrap after the signature", "Outbox", true, false, false,
         " and everybody else here too ok", true, "Dear Bob and everybody else\r\n here too ok",
         "Read"},
        {"other folder", "Sent Items", true, false, false, "-- Ann", true, "Dear Bob",
         "UnreadForward"},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        StoreBench bench;
        auto& settings = bench.wb.forms.Get<frmSettings>();
        settings.chkAddSignature.SetChecked(test.signature);
        settings.optFile.SetValue(test.fromFile);
        settings.optText.SetValue(!test.fromFile);
        settings.txtSignature.SetText(test.text);
        settings.txtSigFile.SetText(bench.InProgramFolder("sig.txt"));
        if (test.fileThere) WriteFileText(settings.txtSigFile.Text(), "-- file");
        settings.chkWrap.SetChecked(test.wrap);
        settings.txtWrap.SetText("30");
        MessageRecord record = Sample();
        record.Body = "Dear Bob";
        SaveMessageRecord(bench.wb, record, "", test.folder, false, 0, "UnreadForward", false);
        ASSERT_EQ(bench.Rows(test.folder).size(), 1u);
        const std::string stored = bench.Rows(test.folder)[0].Body;
        if (test.wrap && std::string(test.folder) == "Outbox")
            EXPECT_NE(stored.find("\r\n"), std::string::npos);
        else
            EXPECT_EQ(stored, test.body);
        EXPECT_EQ(bench.Rows(test.folder)[0].Status, test.status);
    }
}

TEST(SaveMessageRecord, UndoRemovesOnlyTheNewestEqualRow) {
    struct Case {
        const char* name;
        void (*change)(MessageRecord&);
        std::size_t left;
    };
    const Case cases[] = {
        {"equal", [](MessageRecord&) {}, 1},
        {"other From", [](MessageRecord& r) { r.From += "x"; }, 2},
        {"other To", [](MessageRecord& r) { r.To += "x"; }, 2},
        {"other Subject", [](MessageRecord& r) { r.Subject = "o'hara"; }, 2},
        {"other Date", [](MessageRecord& r) { r.Date = r.Date.PlusSeconds(1); }, 2},
        {"other Body only", [](MessageRecord& r) { r.Body = "x"; }, 1},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        StoreBench bench;
        MessageRecord record = Sample();
        for (int i = 0; i < 2; ++i)
            SaveMessageRecord(bench.wb, record, "", "Inbox", false, 0, "Unread", false);
        test.change(record);
        SaveMessageRecord(bench.wb, record, "", "Inbox", false, 0, "Unread", true);
        EXPECT_EQ(bench.Rows("Inbox").size(), test.left);
    }
    StoreBench bench;
    MessageRecord record = Sample();
    SaveMessageRecord(bench.wb, record, "", "Inbox", false, 0, "Unread", true);
    EXPECT_TRUE(bench.Rows("Inbox").empty()) << "an empty folder has nothing to undo";
}

TEST(SaveMessageRecord, OversizedTextLosesTheRowAndNothingElse) {
    StoreBench bench;
    MessageRecord record = Sample();
    record.To.assign(DefaultTextSize + 1, 'x');
    SaveMessageRecord(bench.wb, record, "", "Inbox", false, 0, "Unread", false);
    EXPECT_TRUE(bench.Rows("Inbox").empty());
    record.To.pop_back();
    SaveMessageRecord(bench.wb, record, "", "Inbox", false, 0, "Unread", false);
    EXPECT_EQ(bench.Rows("Inbox").size(), 1u);
}

TEST(SaveMessageRecord, UserFolderKeepsTheDateAsGeneralDateText) {
    StoreBench bench;
    Database& store = *bench.wb.state.MessageStore;
    TableDef folder = *store.GetTableDef("Inbox");
    folder.name = "Mine";
    for (Field& field : folder.fields)
        if (field.name == "Date") field = *folder.FindField("Subject"), field.name = "Date";
    ASSERT_TRUE(store.AppendTable(folder).Ok());
    MessageRecord record = Sample();
    SaveMessageRecord(bench.wb, record, "", "Mine", false, 0, "Unread", false);
    const auto rows = store.OpenRecordset("Mine");
    ASSERT_TRUE(rows.Ok());
    EXPECT_EQ((*rows)->Get("Date")->TextOrEmpty(), "2/29/2024 11:59:58 PM");
    SaveMessageRecord(bench.wb, record, "", "Mine", false, 0, "Unread", true);
    EXPECT_TRUE(bench.Rows("Mine").empty()) << "undo reads the text as a date";
}

TEST(SentLedger, KeepsIdsOutOfTheFolderListUntilTheirMessagesHaveGone) {
    StoreBench bench;
    Database& store = *bench.wb.state.MessageStore;
    EXPECT_TRUE(SentLedger::Entries(store)->empty());
    EXPECT_TRUE(SentLedger::RemoveGone(store).Ok());
    MessageRecord record;
    for (int i = 0; i < 3; ++i)
        SaveMessageRecord(bench.wb, record, "", OutboxFolder, false, 0, "", false);
    const auto ledger = SentLedger::Open(store);
    ASSERT_TRUE(ledger.Ok());
    for (const std::int32_t id : {3, 9, 1})
        ASSERT_TRUE(SentLedger::Record(**ledger, id, bench.clock.Now()).Ok());
    ASSERT_TRUE(store.Execute("DELETE FROM Outbox WHERE ID = 1").Ok());
    ASSERT_TRUE(SentLedger::RemoveGone(store).Ok());
    CloseMessageStore(bench.wb);
    ASSERT_TRUE(OpenMessageStore(bench.wb).Ok());
    EXPECT_EQ(*SentLedger::Entries(*bench.wb.state.MessageStore),
              (AcceptedMessages{{3, bench.clock.Now()}}));
    EXPECT_EQ(bench.wb.state.MessageStore->UserTableNames()->size(), 6u);
}

TEST(MergeMark, CountsOnceHowFarTheRunCame) {
    StoreBench bench;
    Database& store = *bench.wb.state.MessageStore;
    EXPECT_FALSE(MergeMark::Find(store)->has_value()) << "no run yet";
    MessageRecord record;
    const auto add = [&] {
        SaveMessageRecord(bench.wb, record, "", OutboxFolder, false, 0, "", false);
    };
    add();  // from before the run
    UnfinishedMerge run;
    run.table = "People";
    run.total = 500;
    run.firstRow = 3;
    run.started = bench.clock.Now();
    ASSERT_TRUE(MergeMark::Set(store, UnfinishedMerge()).Ok());
    ASSERT_TRUE(MergeMark::Set(store, run).Ok()) << "in place of the one before";
    for (int i = 0; i < 7; ++i)
        add();
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
