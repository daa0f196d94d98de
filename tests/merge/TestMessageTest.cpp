#include "merge/MergeBench.h"
#include "merge/MergeDocument.h"

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
    struct Row {
        std::size_t row;
        const char* body;
        const char* subject;
        const char* from;
    };
    const Row rows[] = {{1, "Dear N2", "a2@x", "N2 <me@here>"},
                        {2, "Dear ", "", " <me@here>"},
                        {0, "Dear N1", "a1@x", "N1 <me@here>"}};
    for (const Row& row : rows) {
        view.Grid1.SetCurrentRow(row.row);
        Prompts().QueueInput("test@there");
        view.ActiveBar1.Press("Test");
        const auto messages = Outbox();
        ASSERT_EQ(messages.size(), 1u);
        EXPECT_EQ(messages[0].To, "test@there");
        EXPECT_EQ(messages[0].Body, row.body);
        EXPECT_EQ(messages[0].Subject, row.subject);
        EXPECT_EQ(messages[0].From, row.from);
        EXPECT_EQ(messages[0].Priority, "1");
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
    EXPECT_FALSE(Prompts().Failure());
}

TEST_F(TestMessageTest, IsCheckedFirst) {
    MakeRecipients(1);
    struct Row {
        const char* name;
        const char* from;
        const char* body;
        std::vector<BoxAnswer> answers;
        std::optional<std::optional<std::string>> address;
        const char* lastBox;
    };
    const Row rows[] = {
        {"no sender",
         "",
         "B",
         {BoxAnswer::Ok},
         {},
         "Enter your e-mail address in the 'From' field."},
        {"no body",
         "F",
         "",
         {BoxAnswer::No},
         {},
         "This e-mail message has no body.\r\nDo you want to proceed anyway?"},
        {"no address",
         "F",
         "B",
         {BoxAnswer::Ok},
         std::optional<std::string>(""),
         "The message could not be sent.\r\n\r\n"
         "Please specify some recipients for the message."},
        {"cancelled",
         "F",
         "B",
         {BoxAnswer::Ok},
         std::optional<std::string>(),
         "The message could not be sent.\r\n\r\n"
         "Please specify some recipients for the message."},
        {"no at-sign",
         "F",
         "B",
         {BoxAnswer::Ok},
         std::optional<std::string>("me"),
         "The message could not be sent.\r\n\r\nPlease enter correct e-mail address."},
    };
    for (const Row& row : rows) {
        frmViewMerge& view = Message(row.body, "S", row.from);
        Prompts().QueueBox(BoxAnswer::Ok, "Testing the message");
        for (const BoxAnswer answer : row.answers)
            Prompts().QueueBox(answer);
        if (row.address) Prompts().QueueInput(*row.address);
        view.ActiveBar1.Press("Test");
        EXPECT_EQ(Prompts().Shown().back().text, row.lastBox) << row.name;
    }
    EXPECT_EQ(sent, 0);
    EXPECT_FALSE(Prompts().Failure());
}

TEST_F(TestMessageTest, TheScheduledMergeNeedsNobody) {
    MakeRecipients(2, "One");
    MakeRecipients(3, "Two");
    MakeTable("None", {{.name = "Email"}}, {});
    struct Row {
        const char* name;
        const char* document;  ///< empty: the file is missing
        std::size_t messages;
    };
    const Row rows[] = {
        {"a table of its own", "txtFrom*|*F#|#txtSubject*|*S#|#txtBody*|*B#|#lblTable*|*two#|#", 3},
        {"the table in use", "txtFrom*|*F#|#txtSubject*|*S#|#txtBody*|*B#|#", 2},
        {"a table that is not there",
         "txtFrom*|*F#|#txtSubject*|*S#|#txtBody*|*B#|#lblTable*|*Three#|#", 0},
        {"no rows", "txtFrom*|*F#|#txtSubject*|*S#|#txtBody*|*B#|#lblTable*|*None#|#", 0},
        {"no sender", "txtSubject*|*S#|#txtBody*|*B#|#lblTable*|*One#|#", 0},
        {"no subject", "txtFrom*|*F#|#txtBody*|*B#|#lblTable*|*One#|#", 0},
        {"no body", "txtFrom*|*F#|#txtSubject*|*S#|#lblTable*|*One#|#", 0},
        {"no file", "", 0},
    };
    wb.state.UnattendedRun = true;
    for (const Row& row : rows) {
        frmViewMerge& view = Message();
        view.Show();
        view.cmbTable.SetText("One");
        view.lblTable.SetText("One");
        view.ScheduledMessage = folder.File("task.dmg");
        DeleteFile(view.ScheduledMessage);
        if (*row.document)
            WriteFileText(view.ScheduledMessage, ScrambleMergeDocument(row.document));
        sent = 0;
        wb.state.SendNowFlag = false;
        view.cmdSCHSend.Press();
        EXPECT_EQ(Outbox().size(), row.messages) << row.name;
        EXPECT_EQ(sent, row.messages > 0 ? 1 : 0) << row.name;
        EXPECT_FALSE(wb.forms.Find<frmMerge>()) << row.name;
        EmptyOutbox();
        Settle();
    }
    EXPECT_TRUE(Prompts().Shown().empty());
}

}  // namespace
}  // namespace mailvane::test
