#include <optional>

#include "merge/MergeBench.h"
#include "merge/MergeRun.h"
#include "merge/frmMSGOutbox.h"
#include "send/DeliveryReport.h"
#include "support/FullDisk.h"

namespace mailvane::test {
namespace {

using Texts = std::vector<std::string>;

struct MergeRunTest : testing::Test, MergeBench {
    Texts BlindCopies() {
        Texts texts;
        for (const MessageRecord& message : Outbox())
            texts.push_back(message.BCC);
        return texts;
    }
    void UseBulk(frmMerge& dialog, const std::string& packet) {
        dialog.optBulk.SetValue(true);
        dialog.txtPacket.SetText(packet);
    }
    void UseRows(frmMerge& dialog, const std::string& first, const std::string& last) {
        dialog.chkFractional.SetChecked(true);
        dialog.txtFractional1.SetText(first);
        dialog.txtFractional2.SetText(last);
    }
};

/// "a1@x, a2@x, " up to `last`; a packet of `size` closes without a separator.
std::string Packets(int last, int size) {
    std::string text;
    for (int i = 1; i <= last; ++i)
        text += "a" + std::to_string(i) + "@x" + (i % size == 0 ? "" : ", ");
    return text;
}

TEST_F(MergeRunTest, NarrowsTheRecipients) {
    MakeTable("People", {{.name = "Email"}, {.name = "Since", .type = FieldType::Date}},
              {{"a", "2024-01-01 00:00:00"},
               {"b", "2024-01-02 00:00:00"},
               {"c", Cell()},
               {"d", "2024-01-03 00:00:00"},
               {"e", "2024-01-04 00:00:00"}});
    struct Row {
        const char* name;
        const char* maximum;  ///< null: not chosen
        const char* first;
        const char* last;
        int fromDay;  ///< 0: not chosen
        int toDay;
        Texts to;
    };
    const Row rows[] = {
        {"all", nullptr, nullptr, nullptr, 0, 0, {"a", "b", "c", "d", "e"}},
        {"a maximum", " 2 ", nullptr, nullptr, 0, 0, {"a", "b"}},
        {"a maximum above the rows", "100", nullptr, nullptr, 0, 0, {"a", "b", "c", "d", "e"}},
        {"rows", nullptr, "2", "4", 0, 0, {"b", "c", "d"}},
        {"rows from the first", nullptr, "1", "1", 0, 0, {"a"}},
        {"dates", nullptr, nullptr, nullptr, 2, 3, {"b", "d"}},
        {"dates within a maximum", "4", nullptr, nullptr, 2, 4, {"b", "d"}},
        {"rows of the dates", nullptr, "2", "3", 1, 4, {"b", "d"}},
        {"rows within a maximum", "3", "2", "3", 0, 0, {"b", "c"}},
        {"rows of the dates within a maximum", "4", "3", "3", 1, 4, {"d"}},
    };
    Message();
    for (const Row& row : rows) {
        frmMerge& dialog = Dialog();
        if (row.maximum) dialog.txtMax.SetText(row.maximum);
        dialog.chkMax.SetChecked(row.maximum != nullptr);
        if (row.first) UseRows(dialog, row.first, row.last);
        if (row.fromDay > 0) {
            dialog.chkDate.SetChecked(true);
            dialog.Date1.SetValue(*DateTime::FromParts(2024, 1, row.fromDay));
            dialog.Date2.SetValue(*DateTime::FromParts(2024, 1, row.toDay));
        }
        dialog.cmdStart.Press();
        EXPECT_EQ(Recipients(Outbox()), row.to) << row.name;
        EXPECT_FALSE(wb.forms.Find<frmMerge>()) << row.name;
        EmptyOutbox();
    }
}

TEST_F(MergeRunTest, AsksAboutOptionsThatMakeNoSense) {
    MakeRecipients(3);
    struct Row {
        const char* name;
        std::function<void(frmMerge&)> choose;
        std::string question;
    };
    const std::string proceed = "\r\nDo you want to proceed anyway?";
    const Row rows[] = {
        {"a maximum of 0",
         [](frmMerge& dialog) {
             dialog.chkMax.SetChecked(true);
             dialog.txtMax.SetText(" 0 ");
         },
         "'Maximum number of messages' text box contains invalid value: '0'."},
        {"a maximum that is SQL",
         [](frmMerge& dialog) {
             dialog.chkMax.SetChecked(true);
             dialog.txtMax.SetText("1 PERCENT");
         },
         "'Maximum number of messages' text box contains invalid value: '1 PERCENT'."},
        {"rows in the wrong order", [this](frmMerge& dialog) { UseRows(dialog, "3", "2"); },
         "Invalid range of rows for fractional sending: 'from 3 to 2'."},
        {"no rows given", [](frmMerge& dialog) { dialog.chkFractional.SetChecked(true); },
         "Invalid range of rows for fractional sending: 'from  to '."},
    };
    Message();
    for (const Row& row : rows) {
        frmMerge& refused = Dialog();
        row.choose(refused);
        Prompts().QueueBox(BoxAnswer::No);
        refused.cmdStart.Press();
        EXPECT_TRUE(Prompts().ExpectBox(row.question + proceed)) << row.name;
        EXPECT_TRUE(Outbox().empty()) << row.name;

        frmMerge& accepted = Dialog();
        row.choose(accepted);
        Prompts().QueueBox(BoxAnswer::Yes);
        accepted.cmdStart.Press();
        EXPECT_EQ(Outbox().size(), 3u) << row.name;
        EmptyOutbox();
    }
}

TEST_F(MergeRunTest, ADateChoiceOnATextColumnIsDropped) {
    MakeRecipients(2);
    Message();
    frmMerge& dialog = Dialog();
    Prompts().QueueBox(BoxAnswer::Ok, "You must select date data type field");
    dialog.chkDate.SetChecked(true);
    Prompts().QueueBox(BoxAnswer::Yes, "Your database field 'Email' is not a date data type field");
    dialog.cmdStart.Press();
    EXPECT_EQ(Outbox().size(), 2u);
    EXPECT_FALSE(Prompts().Failure());
}

TEST_F(MergeRunTest, NoRecordsInTheDatesEndsTheRun) {
    MakeTable("People", {{.name = "Email"}, {.name = "Since", .type = FieldType::Date}},
              {{"a", "2024-01-01 00:00:00"}});
    Message();
    frmMerge& dialog = Dialog();
    dialog.chkDate.SetChecked(true);
    Prompts().QueueBox(BoxAnswer::Ok);
    dialog.cmdStart.Press();
    EXPECT_TRUE(Prompts().ExpectBox(
        "This message cannot be sent. \r\nChoose another table or select another date range."));
    EXPECT_TRUE(dialog.IsLoaded());
    EXPECT_TRUE(dialog.cmdStart.Enabled());
}

TEST_F(MergeRunTest, BulkPackets) {
    struct Row {
        const char* name;
        int records;
        const char* packet;
        Texts blindCopies;
    };
    const Row rows[] = {
        {"19 in packets of 19", 19, "19", {Packets(19, 19)}},
        {"40 in packets of 19", 40, "19", {Packets(19, 19), Packets(38, 19)}},
        {"50 in packets of 19", 50, "19", {Packets(19, 19), Packets(38, 19)}},
        {"fewer than a packet", 3, "19", {Packets(3, 3)}},
        {"packets of one", 2, "1", {"a1@x", "a1@xa2@x"}},
        {"a packet of a fraction is never full", 4, "2.5", {Packets(4, 4)}},
    };
    for (const Row& row : rows) {
        const std::string table = row.name;
        MakeRecipients(row.records, table);
        Message().cmbTable.SetText(table);
        wb.forms.Get<frmViewMerge>().cmdRefresh.Press();
        wb.forms.Get<frmViewMerge>().cmbTable.SetText(table);
        frmMerge& dialog = Dialog();
        UseBulk(dialog, row.packet);
        dialog.txtTo.SetText("[Name]");
        dialog.cmdStart.Press();
        EXPECT_EQ(BlindCopies(), row.blindCopies) << row.name;
        EXPECT_EQ(Outbox().front().To, "[Name]") << row.name;
        EmptyOutbox();
    }
}

TEST_F(MergeRunTest, BulkPacketsOfNarrowedRows) {
    struct Row {
        const char* name;
        const char* packet;
        const char* maximum;  ///< null: not chosen
        const char* first;    ///< null: not chosen
        const char* last;
        Texts blindCopies;
    };
    const Row rows[] = {
        {"rows shorter than a packet", "19", nullptr, "5", "10", {}},
        {"rows with a rest", " 2 ", nullptr, "5", "9", {"a5@x, a6@x", "a5@x, a6@xa7@x, a8@x"}},
        {"a maximum below a packet", "19", "3", nullptr, nullptr, {Packets(3, 3)}},
        {"rows of a maximum below a packet", "19", "3", "2", "3", {}},
    };
    MakeRecipients(30);
    Message();
    for (const Row& row : rows) {
        frmMerge& dialog = Dialog();
        UseBulk(dialog, row.packet);
        if (row.maximum) dialog.txtMax.SetText(row.maximum);
        dialog.chkMax.SetChecked(row.maximum != nullptr);
        if (row.first) UseRows(dialog, row.first, row.last);
        dialog.cmdStart.Press();
        EXPECT_EQ(BlindCopies(), row.blindCopies) << row.name;
        EmptyOutbox();
    }
}

TEST_F(MergeRunTest, ANullAddressJoinsAPacketAsNothing) {
    MakeTable("People", {{.name = "Email"}}, {{"a@x"}, {Cell()}, {"b@x"}});
    Message();
    frmMerge& dialog = Dialog();
    UseBulk(dialog, "19");
    dialog.cmdStart.Press();
    EXPECT_EQ(BlindCopies(), Texts{"a@x, , b@x"});
}

TEST_F(MergeRunTest, AnInvalidPacketSizeBecomes19OrEndsTheRun) {
    MakeRecipients(20);
    Message();
    UseBulk(Dialog(), "none");
    frmMerge& dialog = *wb.forms.Find<frmMerge>();
    Prompts().QueueBox(BoxAnswer::No);
    dialog.cmdStart.Press();
    EXPECT_TRUE(dialog.IsLoaded());
    EXPECT_TRUE(Outbox().empty());
    Prompts().QueueBox(BoxAnswer::Yes,
                       "'Messages per packet' text-box contains invalid value: 'none'.");
    dialog.cmdStart.Press();
    EXPECT_EQ(BlindCopies(), Texts{Packets(19, 19)});
}

TEST_F(MergeRunTest, CancelKeepsOrDeletesTheMessages) {
    struct Row {
        const char* name;
        bool personal;
        BoxAnswer deletes;
        std::size_t messages;
        bool mailingTable;
    };
    const Row rows[] = {
        {"personal", true, BoxAnswer::No, 3, false},
        {"personal, deleted with those before", true, BoxAnswer::Yes, 0, false},
        {"bulk", false, BoxAnswer::No, 1, true},
    };
    MakeRecipients(9);
    Message();
    for (const Row& row : rows) {
        const std::size_t tables = database->UserTableNames()->size();
        frmMerge& dialog = Dialog();
        if (!row.personal) UseBulk(dialog, "2");
        dialog.chkCreate.SetChecked(true);
        CancelAfter(2);
        Prompts().QueueBox(row.deletes, "Do you want to delete all generated messages");
        dialog.cmdStart.Press();
        EXPECT_FALSE(Prompts().Failure()) << row.name;
        EXPECT_FALSE(dialog.IsLoaded()) << row.name;
        EXPECT_FALSE(wb.state.CancelRequested) << row.name;
        EXPECT_FALSE(wb.forms.Find<frmStatus>()->Visible()) << row.name;
        EXPECT_EQ(Outbox().size(), row.messages) << row.name;
        EXPECT_EQ(database->UserTableNames()->size() - tables, row.mailingTable ? 1u : 0u)
            << row.name;
    }
    EXPECT_EQ(FirstColumn("People 3/15/2024 10:30:00 AM").size(), 9u);
}

TEST_F(MergeRunTest, TheDeliveryReportSaysHowManyMessagesWereMade) {
    MakeRecipients(5);
    Message();
    for (const bool personal : {true, false}) {  // the messages of the run before stay
        frmMerge& dialog = Dialog();
        if (!personal) UseBulk(dialog, "2");
        dialog.cmdStart.Press();
    }
    CancelAfter(2);
    Prompts().QueueBox(BoxAnswer::No);
    Dialog().cmdStart.Press();
    std::string error;
    std::vector<std::pair<std::string, std::int64_t>> made;
    for (const DeliveryRun& run :
         ReadDeliveryRuns(DeliveryReportPath(wb, wb.state.ProjectFolder), error)) {
        EXPECT_EQ(run.kind, DeliveryRun::Kind::Merge);
        made.emplace_back(run.table, run.generated);
    }
    EXPECT_EQ(made, (std::vector<std::pair<std::string, std::int64_t>>{
                        {"People", 5}, {"People", 2}, {"People", 3}}));
}

TEST_F(MergeRunTest, FullDiskStopsTheRunWithOneBox) {
    MakeRecipients(2000);
    Message(std::string(2000, 'x'));
    frmMerge& dialog = Dialog();
    Prompts().QueueBox(BoxAnswer::Ok, "The message store cannot be written: ");
    {
        std::optional<test::FullDisk> full;
        const auto watch = windows.yielded.Observe([&] {
            const auto* status = wb.forms.Find<frmStatus>();
            if (status && status->Progress1.Value() == 300) full.emplace();
        });
        dialog.cmdStart.Press();
    }
    EXPECT_FALSE(Prompts().Failure());
    EXPECT_EQ(Prompts().Shown().size(), 1u);
    EXPECT_TRUE(dialog.cmdStart.Enabled());
    const auto messages = Outbox();
    EXPECT_EQ(messages.size(), 300u);
    EXPECT_EQ(messages.back().Body.size(), 2000u);
}

TEST_F(MergeRunTest, TheDialogsCancelEndsARunToo) {
    MakeRecipients(5);
    Message();
    frmMerge& dialog = Dialog();
    bool pressed = false;
    const Subscription press = windows.yielded.Observe([&] {
        if (!std::exchange(pressed, true)) dialog.cmdCancel.Press();
    });
    Prompts().QueueBox(BoxAnswer::No);
    dialog.cmdStart.Press();
    EXPECT_EQ(Outbox().size(), 2u);
    EXPECT_FALSE(dialog.IsLoaded());
}

TEST_F(MergeRunTest, MailingTable) {
    struct Row {
        const char* name;
        const char* table;
        const char* first;  ///< null: all rows
        const char* last;
        const char* mailingTable;
        Texts addresses;
    };
    const Row rows[] = {
        {"all rows",
         "List",
         nullptr,
         nullptr,
         "List 3/15/2024 10:30:00 AM",
         {"a1@x", "a2@x", "a3@x"}},
        {"the same second again",
         "List",
         "2",
         "2",
         "List 3/15/2024 10:30:00 AM",
         {"a1@x", "a2@x", "a3@x", "a2@x"}},
        {"a name of 40 letters",
         "A table whose name has exactly 40 letters",
         "3",
         "3",
         "A table whose name has exactly 40 letters 3/15/2024 10:30:",
         {"a3@x"}},
        {"a letter that the end would cut",
         "xüüüüüüüüüüüüüüüüüüüüüüüüüüüüü",
         "1",
         "1",
         "xüüüüüüüüüüüüüüüüüüüüüüüüüüüü",
         {"a1@x"}},
    };
    MakeRecipients(3, "List");
    MakeRecipients(3, "xüüüüüüüüüüüüüüüüüüüüüüüüüüüüü");
    MakeRecipients(3, "A table whose name has exactly 40 letters");
    for (const Row& row : rows) {
        Message().cmbTable.SetText(row.table);
        frmMerge& dialog = Dialog();
        dialog.chkCreate.SetChecked(true);
        if (row.first) UseRows(dialog, row.first, row.last);
        dialog.cmdStart.Press();
        EXPECT_EQ(FirstColumn(row.mailingTable), row.addresses) << row.name;
    }
}

TEST_F(MergeRunTest, RowsBeyondTheEndAskEachTime) {
    const std::string question = "No current record.\r\nDo you want to proceed anyway?";
    MakeRecipients(4);
    Message();
    UseRows(Dialog(), "3", "6");
    wb.forms.Find<frmMerge>()->chkCreate.SetChecked(true);
    Prompts().QueueBox(BoxAnswer::No, question);
    wb.forms.Find<frmMerge>()->cmdStart.Press();
    // The message beyond the last row goes to the address before.
    EXPECT_EQ(Recipients(Outbox()), (Texts{"a3@x", "a4@x", "a4@x"}));
    EXPECT_TRUE(wb.forms.Find<frmMerge>());
    EXPECT_EQ(FirstColumn("People 3/15/2024 10:30:00 AM"), (Texts{"a3@x", "a4@x"}));
    EmptyOutbox();

    UseRows(Dialog(), "3", "6");
    Prompts().QueueBox(BoxAnswer::Yes, question);
    Prompts().QueueBox(BoxAnswer::Yes, question);
    wb.forms.Find<frmMerge>()->cmdStart.Press();
    EXPECT_EQ(Outbox().size(), 4u);
    EmptyOutbox();

    UseRows(Dialog(), "9", "9");
    Prompts().QueueBox(BoxAnswer::Yes, question);
    wb.forms.Find<frmMerge>()->cmdStart.Press();
    EXPECT_EQ(Recipients(Outbox()), Texts{""});
    EXPECT_FALSE(Prompts().Failure());
}

TEST_F(MergeRunTest, SendsWhenAskedTo) {
    MakeRecipients(1);
    frmViewMerge& view = Message();
    std::vector<bool> finalSteps;
    wb.forms.Get<frmSettings>().cmdSendEmail.onClick = [&] {
        finalSteps.push_back(wb.state.FinalRunStep);
    };
    for (const char* command : {"Send Later", "Send Message"}) {
        view.ActiveBar1.Press(command);
        wb.forms.Find<frmMerge>()->cmdStart.Press();
    }
    EXPECT_EQ(finalSteps, std::vector<bool>{true});
    EXPECT_FALSE(wb.state.FinalRunStep);
}

TEST_F(MergeRunTest, TheNoticeStaysAwayWhenAskedTo) {
    SaveUserSetting(wb, "Messages", "Outbox", "0");
    MakeRecipients(1);
    Message();
    int notices = 0;
    const Subscription click = windows.idle.Observe([&] {
        auto* notice = wb.forms.Find<frmMSGOutbox>();
        if (!notice) return;
        ++notices;
        EXPECT_FALSE(wb.forms.Find<frmMerge>()->Visible());
        notice->Check1.SetChecked(true);
        notice->cmdStart.Press();
    });
    for (int run = 0; run < 2; ++run)
        Dialog().cmdStart.Press();
    EXPECT_EQ(notices, 1);
    EXPECT_EQ(GetUserSetting(wb, "Messages", "Outbox"), "1");
}

TEST_F(MergeRunTest, SettingsGoBackToTheProject) {
    MakeRecipients(1);
    frmSettings& settings = wb.forms.Get<frmSettings>();
    settings.txtSMTPServer.SetText("old.example.com");
    Message();
    frmMerge& dialog = Dialog();
    EXPECT_EQ(dialog.txtSMTPServer.Text(), "old.example.com");
    dialog.txtSMTPServer.SetText("new.example.com");
    dialog.chkSaveSentMessages.SetChecked(true);
    dialog.cmdStart.Press();
    EXPECT_EQ(settings.txtSMTPServer.Text(), "new.example.com");
    EXPECT_TRUE(settings.chkSaveSentMessages.Checked());
}

TEST_F(MergeRunTest, OutlivesTheFormsItWorksOn) {
    MakeRecipients(50);
    Message();
    int yields = 0;
    const Subscription unload = windows.yielded.Observe([&] {
        if (++yields == 3) wb.forms.UnloadAllExcept({"frmMain"});
    });
    Dialog().cmdStart.Press();
    Settle();
    EXPECT_FALSE(wb.forms.Find<frmMerge>());
    EXPECT_LT(yields, 50);
}

}  // namespace
}  // namespace mailvane::test
