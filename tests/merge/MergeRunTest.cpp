#include <algorithm>

#include "merge/MergeBench.h"
#include "merge/check/MergeCheck.h"
#include "merge/check/MergePreview.h"
#include "merge/run/MergeRun.h"
#include "merge/run/frmMSGOutbox.h"
#include "send/report/DeliveryReport.h"
#include "store/MergeMark.h"

namespace mailvane::test {
namespace {

using Texts = std::vector<std::string>;

/// What is set in the dialog; null: not chosen.
struct Options {
    const char* maximum = nullptr;
    const char* first = nullptr;
    const char* last = nullptr;
    const char* packet = nullptr;
    int fromDay = 0;  ///< 0: not chosen
    int toDay = 0;
};

struct MergeRunTest : testing::Test, MergeBench {
    frmMerge& Choose(const Options& options) {
        frmMerge& dialog = options.first ? Rows(options.first, options.last) : Dialog();
        if (options.maximum) dialog.txtMax.SetText(options.maximum);
        dialog.chkMax.SetChecked(options.maximum != nullptr);
        if (options.packet) {
            dialog.optBulk.SetValue(true);
            dialog.txtPacket.SetText(options.packet);
        }
        if (options.fromDay > 0) {
            dialog.chkDate.SetChecked(true);
            dialog.Date1.SetValue(*DateTime::FromParts(2024, 1, options.fromDay));
            dialog.Date2.SetValue(*DateTime::FromParts(2024, 1, options.toDay));
        }
        return dialog;
    }
    Texts BlindCopies() {
        Texts texts;
        for (const MessageRecord& message : Outbox())
            texts.push_back(message.BCC);
        return texts;
    }
};

/// "a1@x, a2@x, " up to `last`; a packet of `size` closes without a separator.
std::string Joined(int last, int size) {
    std::string text;
    for (int i = 1; i <= last; ++i)
        text += "a" + std::to_string(i) + "@x" + (i % size == 0 ? "" : ", ");
    return text;
}

/// Whom the run writes to, whom the preview shows, and whose addresses the check looks at: none of
/// them is one that sending takes.
TEST_F(MergeRunTest, RunPreviewAndCheckTakeTheSameRows) {
    MakeTable("People", {{.name = "Email"}, {.name = "Since", .type = FieldType::Date}},
              {{"a", "2024-01-01 00:00:00"},
               {"b", "2024-01-02 00:00:00"},
               {"c", Cell()},
               {"d", "2024-01-03 00:00:00"},
               {"e", "2024-01-04 00:00:00"}});
    struct Row {
        const char* name;
        Options options;
        const char* to;
        int questions = 0;  ///< answered by Yes
        std::size_t beyond = 0;
    };
    const Row rows[] = {
        {"all", {}, "a b c d e "},
        {"a maximum", {.maximum = " 2 "}, "a b "},
        {"a maximum above the rows", {.maximum = "100"}, "a b c d e "},
        {"a maximum that makes no sense", {.maximum = "0"}, "a b c d e ", 1},
        {"rows", {.first = "2", .last = "4"}, "b c d "},
        {"rows from the first", {.first = "1", .last = "1"}, "a "},
        {"rows that make no sense", {.first = "3", .last = "2"}, "a b c d e ", 1},
        {"rows beyond the end", {.first = "4", .last = "7"}, "d e e e ", 2, 2},
        {"rows all beyond the end", {.first = "9", .last = "9"}, " ", 1, 1},
        {"dates", {.fromDay = 2, .toDay = 3}, "b d "},
        {"dates within a maximum", {.maximum = "4", .fromDay = 2, .toDay = 4}, "b d "},
        {"rows of the dates", {.first = "2", .last = "3", .fromDay = 1, .toDay = 4}, "b d "},
        {"rows within a maximum", {.maximum = "3", .first = "2", .last = "3"}, "b c "},
        {"rows of the dates within a maximum", {"4", "3", "3", nullptr, 1, 4}, "d "},
        {"nobody's dates", {.first = "1", .last = "2", .fromDay = 5, .toDay = 6}, "", 1},
    };
    Message("[Email]");
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        frmMerge& dialog = Choose(row.options);
        const MergePlan plan = MakeMergePlan(wb, dialog.Options());
        std::string checked;
        for (const MergeFinding& finding : CheckMerge(wb, plan, [](auto) { return true; }))
            if (finding.text == "Not an e-mail address")
                for (const Bookmark record : finding.rows) {
                    EXPECT_TRUE(plan.recipients->SetBookmark(record).Ok());
                    checked += plan.recipients->Get("Email")->TextOrEmpty() + " ";
                }
        std::vector<MessageRecord> shown;
        MergePreview preview(wb, plan);
        for (std::size_t i = preview.Count(); i > 0; --i)
            shown.insert(shown.begin(), *preview.Message(i - 1));
        for (int i = 0; i < row.questions; ++i)
            Prompts().QueueBox(*row.to ? BoxAnswer::Yes : BoxAnswer::Ok);
        dialog.cmdStart.Press();
        const auto made = Outbox();
        EXPECT_EQ(Recipients(made), row.to);
        EXPECT_EQ(Recipients(shown), row.to);
        ASSERT_EQ(made.size(), shown.size());
        std::string bodies;
        for (std::size_t i = 0; i < made.size(); ++i) {
            EXPECT_EQ(made[i].Body, shown[i].Body);
            if (!made[i].Body.empty()) bodies += made[i].Body + " ";
        }
        EXPECT_EQ(bodies, checked) << "beyond the last record a message is empty";
        EXPECT_EQ(std::ranges::count(made, std::string(), &MessageRecord::Body), row.beyond);
        EXPECT_EQ(wb.forms.Find<frmMerge>() != nullptr, made.empty());
        EmptyOutbox();
    }
    EXPECT_EQ(
        Prompts().Shown().back().text,
        "This message cannot be sent. \r\nChoose another table or select another date range.");
    EXPECT_TRUE(Dialog().cmdStart.Enabled());
}

TEST_F(MergeRunTest, AsksAboutOptionsThatMakeNoSense) {
    MakeRecipients(3);
    const std::string maximum = "'Maximum number of messages' text box contains invalid value: ";
    const std::string range = "Invalid range of rows for fractional sending: ";
    const std::pair<Options, std::string> rows[] = {
        {{.maximum = " 0 "}, maximum + "'0'."},
        {{.maximum = "1 PERCENT"}, maximum + "'1 PERCENT'."},
        {{.first = "3", .last = "2"}, range + "'from 3 to 2'."},
        {{.first = "", .last = ""}, range + "'from  to '."},
    };
    Message();
    for (const auto& [options, question] : rows) {
        for (const BoxAnswer answer : {BoxAnswer::No, BoxAnswer::Yes}) {
            frmMerge& dialog = Choose(options);
            Prompts().QueueBox(answer);
            dialog.cmdStart.Press();
            EXPECT_TRUE(Prompts().ExpectBox(question + "\r\nDo you want to proceed anyway?"));
            EXPECT_EQ(Outbox().size(), answer == BoxAnswer::Yes ? 3u : 0u) << question;
        }
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
    EXPECT_EQ(Prompts().Shown().size(), 2u);
}

TEST_F(MergeRunTest, BulkPackets) {
    const std::tuple<const char*, int, Options, Texts> rows[] = {
        {"19 in packets of 19", 19, {.packet = "19"}, {Joined(19, 19)}},
        {"40 in packets of 19", 40, {.packet = "19"}, {Joined(19, 19), Joined(38, 19)}},
        {"50 in packets of 19", 50, {.packet = "19"}, {Joined(19, 19), Joined(38, 19)}},
        {"fewer than a packet", 3, {.packet = "19"}, {Joined(3, 3)}},
        {"packets of one", 2, {.packet = "1"}, {"a1@x", "a1@xa2@x"}},
        {"a packet of a fraction is never full", 4, {.packet = "2.5"}, {Joined(4, 4)}},
        {"rows shorter than a packet", 30, {.first = "5", .last = "10", .packet = "19"}, {}},
        {"rows with a rest",
         30,
         {.first = "5", .last = "9", .packet = " 2 "},
         {"a5@x, a6@x", "a5@x, a6@xa7@x, a8@x"}},
        {"a maximum below a packet", 30, {.maximum = "3", .packet = "19"}, {Joined(3, 3)}},
        {"rows of a maximum below a packet", 30, {"3", "2", "3", "19"}, {}},
    };
    for (const auto& [name, records, options, blindCopies] : rows) {
        MakeRecipients(records, name);
        Message().cmbTable.SetText(name);
        wb.forms.Get<frmViewMerge>().cmdRefresh.Press();
        wb.forms.Get<frmViewMerge>().cmbTable.SetText(name);
        frmMerge& dialog = Choose(options);
        dialog.txtTo.SetText("[Name]");
        MergePreview preview(wb, MakeMergePlan(wb, dialog.Options()));
        dialog.cmdStart.Press();
        EXPECT_EQ(BlindCopies(), blindCopies) << name;
        ASSERT_EQ(preview.Count(), blindCopies.size()) << name;
        for (std::size_t i = blindCopies.size(); i > 0; --i)
            EXPECT_EQ(preview.Message(i - 1)->BCC, blindCopies[i - 1]) << name;
        for (const MessageRecord& message : Outbox())
            EXPECT_EQ(message.To, "[Name]") << name;
        EmptyOutbox();
    }
}

TEST_F(MergeRunTest, ANullAddressJoinsAPacketAsNothing) {
    MakeTable("People", {{.name = "Email"}}, {{"a@x"}, {Cell()}, {"b@x"}});
    Message();
    Choose({.packet = "19"}).cmdStart.Press();
    EXPECT_EQ(BlindCopies(), Texts{"a@x, , b@x"});
}

TEST_F(MergeRunTest, AnInvalidPacketSizeBecomes19OrEndsTheRun) {
    MakeRecipients(20);
    Message();
    frmMerge& dialog = Choose({.packet = "none"});
    Prompts().QueueBox(BoxAnswer::No);
    dialog.cmdStart.Press();
    EXPECT_TRUE(dialog.IsLoaded());
    EXPECT_TRUE(Outbox().empty());
    Prompts().QueueBox(BoxAnswer::Yes,
                       "'Messages per packet' text-box contains invalid value: 'none'.");
    dialog.cmdStart.Press();
    EXPECT_EQ(BlindCopies(), Texts{Joined(19, 19)});
}

TEST_F(MergeRunTest, CancelKeepsOrDeletesTheMessages) {
    const std::tuple<const char*, Options, BoxAnswer, std::size_t, std::size_t> rows[] = {
        {"personal", {}, BoxAnswer::No, 3, 0},
        {"personal, deleted with those before", {}, BoxAnswer::Yes, 0, 0},
        {"bulk", {.packet = "2"}, BoxAnswer::No, 1, 1},
    };
    MakeRecipients(9);
    Message();
    for (const auto& [name, options, deletes, messages, mailingTables] : rows) {
        SCOPED_TRACE(name);
        frmMerge& dialog = Choose(options);
        dialog.chkCreate.SetChecked(true);
        CancelAfter(2);
        Prompts().QueueBox(deletes, "Do you want to delete all generated messages");
        dialog.cmdStart.Press();
        EXPECT_FALSE(dialog.IsLoaded());
        EXPECT_FALSE(wb.state.CancelRequested);
        EXPECT_FALSE(wb.forms.Find<frmStatus>()->Visible());
        EXPECT_EQ(Outbox().size(), messages);
        EXPECT_EQ(database->UserTableNames()->size(), 1 + mailingTables);
    }
    EXPECT_EQ(FirstColumn("People 3/15/2024 10:30:00 AM"), FirstColumn("People"));
}

TEST_F(MergeRunTest, TheDeliveryReportSaysHowManyMessagesWereMade) {
    MakeRecipients(5);
    Message();
    Dialog().cmdStart.Press();
    Choose({.packet = "2"}).cmdStart.Press();  // the messages of the run before stay
    CancelAfter(2);
    Prompts().QueueBox(BoxAnswer::No);
    Dialog().cmdStart.Press();
    std::string error;
    std::string made;
    for (const DeliveryRun& run :
         ReadDeliveryRuns(DeliveryReportPath(wb, wb.state.ProjectFolder), error)) {
        EXPECT_EQ(run.kind, DeliveryRun::Kind::Merge);
        made += run.table + " " + std::to_string(run.generated) + " ";
    }
    EXPECT_EQ(made, "People 5 People 2 People 3 ");
}

TEST_F(MergeRunTest, MailingTable) {
    const std::string longest = "A table whose name has exactly 40 letters";
    const std::string full = std::string(58, 'n');
    const std::tuple<const char*, std::string, Options, std::string, const char*> rows[] = {
        {"all rows", "List", {}, "List 3/15/2024 10:30:00 AM", "a1@x a2@x a3@x "},
        {"the same second", "List", {{}, "2", "2"}, "List 3/15/2024 10:30:00 AM (2)", "a2@x "},
        {"40 letters", longest, {{}, "3", "3"}, longest + " 3/15/2024 10:30:", "a3@x "},
        {"no room for the date",
         full,
         {},
         full.substr(0, 36) + " 3/15/2024 10:30:00 AM",
         "a1@x a2@x a3@x "},
    };
    for (const std::string& table : {std::string("List"), full, longest})
        MakeRecipients(3, table);
    for (const auto& [name, table, options, mailingTable, addresses] : rows) {
        Message().cmbTable.SetText(table);
        frmMerge& dialog = Choose(options);
        dialog.chkCreate.SetChecked(true);
        dialog.cmdStart.Press();
        EXPECT_EQ(FirstColumn(mailingTable), addresses) << name;
        EXPECT_EQ(FirstColumn(table), "a1@x a2@x a3@x ") << name;
    }
}

TEST_F(MergeRunTest, RowsBeyondTheEndAskEachTime) {
    const std::string question = "No current record.\r\nDo you want to proceed anyway?";
    MakeRecipients(4);
    Message();
    frmMerge& dialog = Choose({.first = "3", .last = "6"});
    dialog.chkCreate.SetChecked(true);
    Prompts().QueueBox(BoxAnswer::No, question);
    dialog.cmdStart.Press();
    // The message beyond the last row goes to the address before.
    EXPECT_EQ(Recipients(Outbox()), "a3@x a4@x a4@x ");
    EXPECT_TRUE(dialog.IsLoaded());
    EXPECT_EQ(FirstColumn("People 3/15/2024 10:30:00 AM"), "a3@x a4@x ");
}

TEST_F(MergeRunTest, ARowWhoseTextsGrowTooLongIsNamed) {
    const std::string half(9 << 20, 'x');
    MakeTable("People", {{.name = "Email"}, {.name = "Note", .type = FieldType::Memo}},
              {{"a1@x", "1"}, {"a2@x", half}, {"a3@x", "3"}});
    Message("[Note][Note]");
    for (const auto& [answer, to] :
         {std::pair(BoxAnswer::No, "a1@x "), {BoxAnswer::Yes, "a1@x a3@x "}}) {
        Prompts().QueueBox(answer, "Row 2, a2@x: A text of the message grows past 16 MB");
        Dialog().cmdStart.Press();
        EXPECT_EQ(Recipients(Outbox()), to);
        EmptyOutbox();
    }
}

TEST_F(MergeRunTest, TheMessageIsLockedAndTheRowRestored) {
    MakeRecipients(20);
    frmViewMerge& view = Message("Body", "Subject");
    frmMerge& dialog = Dialog();
    auto& shown = wb.forms.Get<frmViewDatabase>();
    shown.Grid1.SetCurrentRow(4);
    int yields = 0;
    const Subscription meddle = windows.yielded.Observe([&] {
        if (++yields != 3) return;
        for (Control* control : view.MessageControls())
            EXPECT_FALSE(control->Enabled()) << control->Name();
        EXPECT_FALSE(dialog.cmdCheck.Enabled());
        view.txtBody.SetText("other");
        view.lstAttach.SetItems({"other"});
        dialog.optBulk.SetValue(true);
        shown.Grid1.SetCurrentRow(9);
    });
    dialog.cmdStart.Press();
    const auto messages = Outbox();
    ASSERT_EQ(messages.size(), 20u);
    EXPECT_EQ(messages.back().Body, "Body");
    EXPECT_TRUE(view.txtBody.Enabled());
    EXPECT_EQ(shown.Data1.Recordset()->Get("Email")->TextOrEmpty(), "a5@x");
}

TEST_F(MergeRunTest, WhateverClosesItsFormsEndsTheRunInOrder) {
    MakeRecipients(1200);
    const auto close = [this](int form) {
        if (form == 0)
            wb.forms.Get<frmViewMerge>().OnCloseBox();
        else if (form == 1)
            wb.forms.Get<frmMerge>().OnCloseBox();
        else
            wb.runs.EndThen(
                Holds::Store, [] {}, HowFar::Kept);
    };
    for (int form = 0; form < 3; ++form) {
        Message();
        frmMerge& dialog = Dialog();
        dialog.chkCreate.SetChecked(true);
        int yields = 0;
        const Subscription closing = windows.yielded.Observe([&] {
            if (++yields == 3) close(form);
        });
        if (form < 2)
            Prompts().QueueBox(BoxAnswer::Ok,
                               "Generating messages was ended early: 4 of 1,200 messages are in "
                               "the Outbox.");
        dialog.cmdStart.Press();
        Settle();
        EXPECT_EQ(wb.forms.Find<frmViewMerge>() == nullptr, form == 0);
        EXPECT_EQ(wb.forms.Find<frmMerge>() == nullptr, form < 2);
        EXPECT_EQ(Outbox().size(), 4u);
        EXPECT_EQ(MergeMark::Find(*wb.state.MessageStore)->has_value(), form == 2)
            << "the next start tells what nobody was told";
        EXPECT_EQ(database->UserTableNames()->size(), 1u);
        EmptyOutbox();
    }
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
}

TEST_F(MergeRunTest, SettingsGoBackToTheProject) {
    MakeRecipients(1);
    frmSettings& settings = wb.forms.Get<frmSettings>();
    settings.txtSMTPServer.SetText("old.example.com");
    settings.chkSaveSentMessages.SetChecked(true);
    Message();
    for (const bool saved : {false, true}) {
        frmMerge& dialog = Dialog();
        EXPECT_EQ(dialog.chkSaveSentMessages.Checked(), !saved);
        dialog.txtSMTPServer.SetText("new.example.com");
        dialog.txtSMTPPort.SetText("2525");
        dialog.chkSaveSentMessages.SetChecked(saved);
        dialog.cmdStart.Press();
        EXPECT_EQ(settings.txtSMTPServer.Text(), "new.example.com");
        EXPECT_EQ(settings.txtSMTPPort.Text(), "2525");
        EXPECT_EQ(settings.chkSaveSentMessages.Checked(), saved);
    }
}

}  // namespace
}  // namespace mailvane::test
