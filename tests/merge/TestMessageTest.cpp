#include "merge/MergeBench.h"
#include "merge/message/MergeDocument.h"

namespace mailvane::test {
namespace {

/// Messages that leave frmViewMerge without the dialog. `sent` counts the send runs.
struct TestMessageTest : testing::Test, MergeBench {
    TestMessageTest() {
        wb.forms.Get<frmSettings>().cmdSendEmail.onClick = [this] {
            EXPECT_TRUE(wb.state.FinalRunStep);
            ++sent;
        };
    }

    int sent = 0;
};

TEST_F(TestMessageTest, GoesToTheAddressTyped) {
    MakeTable("People", {{.name = "Email"}, {.name = "Name"}},
              {{"a1@x", "N1"}, {"a2@x", "N2"}, {Cell(), Cell()}});
    wb.forms.Get<frmSettings>().txtEmail.SetText("me@here");
    frmViewMerge& view = Message("Dear [name]", "[Email]", "[Name] <me@here>");
    view.ActiveBar1.Press("High");
    Prompts().UseDefaults();
    const std::tuple<std::size_t, const char*, const char*, const char*> rows[] = {
        {1, "Dear N2", "a2@x", "N2 <me@here>"},
        {2, "Dear ", "", " <me@here>"},
        {0, "Dear N1", "a1@x", "N1 <me@here>"}};
    for (const auto& [row, body, subject, from] : rows) {
        view.Grid1.SetCurrentRow(row);
        Prompts().QueueInput("test@there");
        view.ActiveBar1.Press("Test");
        const auto messages = Outbox();
        ASSERT_EQ(messages.size(), 1u);
        const MessageRecord& made = messages[0];
        EXPECT_EQ(std::tie(made.To, made.Body, made.Subject, made.From, made.Priority),
                  std::tuple("test@there", body, subject, from, "1"));
        EmptyOutbox();
    }
    EXPECT_EQ(sent, 3);
    EXPECT_FALSE(wb.state.FinalRunStep);
    EXPECT_EQ(Prompts().Shown()[0].icon, BoxIcon::Information);
    EXPECT_EQ(Prompts().Shown()[0].text,
              "Testing the message will allow you to view it in your mail program before you send "
              "all messages. You will only send one, test message. Just enter your e-mail address "
              "and download the message as usual - from your favorite mail program. ");
    EXPECT_EQ(Prompts().Shown()[1].title, "E-mail Address");
    EXPECT_EQ(Prompts().Shown()[1].text, "Please enter your e-mail address: ");
}

TEST_F(TestMessageTest, IsCheckedFirst) {
    MakeRecipients(1);
    const std::string failed = "The message could not be sent.\r\n\r\n";
    const std::string nobody = failed + "Please specify some recipients for the message.";
    const std::optional<std::string> cancelled;
    const std::tuple<const char*, const char*, std::optional<std::optional<std::string>>,
                     std::string>
        rows[] = {
            {"", "B", {}, "Enter your e-mail address in the 'From' field."},
            {"F", "", {}, "This e-mail message has no body.\r\nDo you want to proceed anyway?"},
            {"F", "B", "", nobody},
            {"F", "B", cancelled, nobody},
            {"F", "B", "me", failed + "Please enter correct e-mail address."},
        };
    for (const auto& [from, body, address, lastBox] : rows) {
        frmViewMerge& view = Message(body, "S", from);
        Prompts().QueueBox(BoxAnswer::Ok, "Testing the message");
        Prompts().QueueBox(*body ? BoxAnswer::Ok : BoxAnswer::No);
        if (address) Prompts().QueueInput(*address);
        view.ActiveBar1.Press("Test");
        EXPECT_EQ(Prompts().Shown().back().text, lastBox);
    }
    EXPECT_EQ(sent, 0);
}

TEST_F(TestMessageTest, TheScheduledMergeNeedsNobody) {
    MakeRecipients(2, "One");
    MakeRecipients(3, "Two");
    MakeTable("None", {{.name = "Email"}}, {});
    const std::string from = "txtFrom*|*F#|#", subject = "txtSubject*|*S#|#";
    const std::string body = "txtBody*|*B#|#", all = from + subject + body;
    // The name of the case, the document ("": the file is missing), and the messages made.
    const std::tuple<const char*, std::string, std::size_t> rows[] = {
        {"a table of its own", all + "lblTable*|*two#|#", 3},
        {"the table in use", all, 2},
        {"a table that is not there", all + "lblTable*|*Three#|#", 0},
        {"no rows", all + "lblTable*|*None#|#", 0},
        {"no sender", subject + body, 0},
        {"no subject", from + body, 0},
        {"no body", from + subject, 0},
        {"no file", "", 0},
    };
    wb.state.UnattendedRun = true;
    for (const auto& [name, document, messages] : rows) {
        frmViewMerge& view = Message();
        view.Show();
        view.cmbTable.SetText("One");
        view.lblTable.SetText("One");
        view.ScheduledMessage = folder.File("task.dmg");
        DeleteFile(view.ScheduledMessage);
        if (!document.empty())
            WriteFileText(view.ScheduledMessage, ScrambleMergeDocument(document));
        sent = 0;
        wb.state.SendNowFlag = false;
        view.cmdSCHSend.Press();
        EXPECT_EQ(Outbox().size(), messages) << name;
        EXPECT_EQ(sent, messages > 0 ? 1 : 0) << name;
        EXPECT_FALSE(wb.forms.Find<frmMerge>()) << name;
        EmptyOutbox();
        Settle();
    }
    EXPECT_TRUE(Prompts().Shown().empty());
}

}  // namespace
}  // namespace mailvane::test
