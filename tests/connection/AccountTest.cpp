#include <gtest/gtest.h>

#include <map>

#include "connection/ConnectionService.h"
#include "connection/frmConnectionTest.h"
#include "core/text/Text.h"
#include "platform/net/LoopbackServer.h"
#include "support/TestBench.h"

namespace mailvane {
namespace {

using Answers = std::map<std::string, std::string>;

/// A server that answers each line by its beginning; a line without an answer ends the connection.
test::LoopbackServer::Talk Answering(const std::string& greeting, const Answers& answers) {
    return [=](test::Peer& peer, int) {
        peer.Send(greeting + "\r\n");
        while (const auto line = peer.ReadLine()) {
            const auto found = std::find_if(answers.begin(), answers.end(), [&](const auto& entry) {
                return line->starts_with(entry.first);
            });
            if (found == answers.end()) return;
            peer.Send(found->second + "\r\n");
        }
    };
}

struct AccountCase {
    const char* name;
    MailAccount account;  ///< server and port are the test's
    const char* greeting;
    Answers answers;
    std::string report;  ///< behind the name, with the number of the port as N
};

MailAccount Account(MailAccount::Protocol protocol, const char* user = "",
                    Security security = Security::Automatic) {
    MailAccount account;
    account.MailProtocol = protocol;
    account.MailServer = "127.0.0.1";
    account.User = user;
    account.Password = "secret";
    account.ConnectionSecurity = security;
    return account;
}

constexpr auto Smtp = MailAccount::Protocol::Smtp;
constexpr auto Pop3 = MailAccount::Protocol::Pop3;

const std::string SmtpAnswers = "Connection: Port N answers: 220 mail ready\r\nEncryption: ";
const std::string PopAnswers = "Connection: Port N answers: +OK pop ready\r\nEncryption: ";
const std::string Clear = "The connection is not encrypted.\r\n";
const std::string Works = "\r\nEverything works.\r\n";
const std::string Ended = "\r\nThe test ended here.\r\n";

Answers LogonAnswers(const char* toPassword) {
    return {{"EHLO", "250-mail\r\n250 AUTH LOGIN"},
            {"AUTH LOGIN", "334 VXNlcm5hbWU6"},
            {"bWU=", "334 UGFzc3dvcmQ6"},
            {"c2VjcmV0", toPassword},
            {"QUIT", "221 bye"}};
}

const AccountCase AccountCases[] = {
    {"SmtpWithoutLogon",
     Account(Smtp),
     "220 mail ready",
     {{"EHLO", "250 mail"}, {"QUIT", "221 bye"}},
     SmtpAnswers + Clear + "Logon: No logon is set." + Works},
    {"SmtpLogon", Account(Smtp, "me"), "220 mail ready", LogonAnswers("235 Welcome, me"),
     SmtpAnswers + Clear + "Logon: 235 Welcome, me" + Works},
    {"SmtpWrongPassword", Account(Smtp, "me"), "220 mail ready", LogonAnswers("535 Go away"),
     SmtpAnswers + Clear + "Logon: FAILED. 535 Go away" + Ended},
    {"SmtpRefuses",
     Account(Smtp),
     "554 No service for you",
     {},
     "Connection: FAILED. 554 No service for you" + Ended},
    {"SmtpWithoutTheTlsAskedFor",
     Account(Smtp, "", Security::RequireStartTls),
     "220 mail ready",
     {{"EHLO", "250 mail"}, {"QUIT", "221 bye"}},
     SmtpAnswers + "FAILED. STARTTLS not supported." + Ended},
    {"PopLogon",
     Account(Pop3, "me"),
     "+OK pop ready",
     {{"CAPA", "+OK\r\nUSER\r\n."},
      {"USER me", "+OK"},
      {"PASS secret", "+OK logged on"},
      {"STAT", "+OK 12 34567"},
      {"QUIT", "+OK"}},
     PopAnswers + Clear + "Logon: +OK 12 34567" + Works},
    {"PopWrongPassword",
     Account(Pop3, "me"),
     "+OK pop ready",
     {{"CAPA", "-ERR what"}, {"USER", "+OK"}, {"PASS", "-ERR [AUTH] no"}, {"QUIT", "+OK"}},
     PopAnswers + Clear + "Logon: FAILED. -ERR [AUTH] no" + Ended},
    {"PopHangsUp",
     Account(Pop3, "me"),
     "+OK pop ready",
     {{"CAPA", "-ERR what"}},
     PopAnswers + Clear + "Logon: FAILED. The server closed the connection." + Ended},
};

struct TestConnection : testing::Test, test::TestBench {
    frmConnectionTest& form = wb.forms.Get<frmConnectionTest>();
};

TEST_F(TestConnection, SaysStepByStepWhatWorked) {
    for (const AccountCase& row : AccountCases) {
        SCOPED_TRACE(row.name);
        test::LoopbackServer server(Answering(row.greeting, row.answers));
        MailAccount account = row.account;
        account.MailPort = server.Port();
        form.txtReport.SetText("");
        form.Start(account);
        windows.HandleIdle();
        const std::string port = "Port " + std::to_string(account.MailPort);
        EXPECT_EQ(form.txtReport.Text(),
                  "Name: 127.0.0.1 is 127.0.0.1.\r\n" + ReplaceText(row.report, "Port N", port));
        EXPECT_TRUE(form.cmdClose.Enabled());
    }
}

TEST_F(TestConnection, CancelEndsASilentServer) {
    test::LoopbackServer server([](test::Peer& peer, int) { peer.ReadLine(); });
    MailAccount account = Account(Pop3, "me");
    account.MailPort = server.Port();
    form.Start(account);
    windows.Post([] {});
    const Subscription cancel = windows.yielded.Observe([&] { form.cmdCancel.Press(); });
    windows.HandleIdle();
    EXPECT_TRUE(form.txtReport.Text().ends_with(Ended));
}

TEST(TestConnectionForm, SettingsGiveTheIncomingAccount) {
    test::TestBench bench;
    ConnectionService service(bench.wb);
    test::LoopbackServer server(
        Answering("+OK pop ready",
                  {{"CAPA", "-ERR"}, {"USER", "+OK"}, {"PASS", "+OK"}, {"STAT", "+OK 1 2"}}));
    auto& settings = bench.wb.forms.Get<frmSettings>();
    settings.txtPOPServer.SetText(" 127.0.0.1 ");
    settings.txtPOPPort.SetText(std::to_string(server.Port()));
    settings.txtPOPUser.SetText("me");
    std::string report;
    const Subscription close = bench.windows.idle.Observe([&] {
        auto* form = bench.wb.forms.Find<frmConnectionTest>();
        if (!form || !form->cmdClose.Enabled()) return;
        report = form->txtReport.Text();
        form->cmdClose.Press();
    });
    settings.cmdTestPOP.Press();
    EXPECT_TRUE(report.ends_with("Everything works.\r\n")) << report;
}

}  // namespace
}  // namespace mailvane
