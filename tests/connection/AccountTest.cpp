#include <gtest/gtest.h>

#include <map>

#include "connection/ConnectionService.h"
#include "connection/frmConnectionTest.h"
#include "core/Text.h"
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
    const char* report;  ///< from "Port" on, with the number of the port as N
};

MailAccount Account(MailAccount::Protocol protocol, const char* user = "",
                    const char* password = "", Security security = Security::Automatic) {
    MailAccount account;
    account.protocol = protocol;
    account.user = user;
    account.password = password;
    account.security = security;
    return account;
}

constexpr auto Smtp = MailAccount::Protocol::Smtp;
constexpr auto Pop3 = MailAccount::Protocol::Pop3;

const AccountCase AccountCases[] = {
    {"SmtpWithoutLogon",
     Account(Smtp),
     "220 mail ready",
     {{"EHLO", "250 mail"}, {"QUIT", "221 bye"}},
     "Connection: Port N answers: 220 mail ready\r\n"
     "Encryption: The connection is not encrypted.\r\n"
     "Logon: No logon is set.\r\nEverything works.\r\n"},
    {"SmtpLogon",
     Account(Smtp, "me", "secret"),
     "220 mail ready",
     {{"EHLO", "250-mail\r\n250 AUTH LOGIN"},
      {"AUTH LOGIN", "334 VXNlcm5hbWU6"},
      {"bWU=", "334 UGFzc3dvcmQ6"},
      {"c2VjcmV0", "235 Welcome, me"},
      {"QUIT", "221 bye"}},
     "Connection: Port N answers: 220 mail ready\r\n"
     "Encryption: The connection is not encrypted.\r\n"
     "Logon: 235 Welcome, me\r\nEverything works.\r\n"},
    {"SmtpWrongPassword",
     Account(Smtp, "me", "secret"),
     "220 mail ready",
     {{"EHLO", "250-mail\r\n250 AUTH LOGIN"},
      {"AUTH LOGIN", "334 VXNlcm5hbWU6"},
      {"bWU=", "334 UGFzc3dvcmQ6"},
      {"c2VjcmV0", "535 Wrong password, go away"},
      {"QUIT", "221 bye"}},
     "Connection: Port N answers: 220 mail ready\r\n"
     "Encryption: The connection is not encrypted.\r\n"
     "Logon: FAILED. 535 Wrong password, go away\r\nThe test ended here.\r\n"},
    {"SmtpRefuses",
     Account(Smtp),
     "554 No service for you",
     {},
     "Connection: FAILED. 554 No service for you\r\nThe test ended here.\r\n"},
    {"SmtpWithoutTheTlsAskedFor",
     Account(Smtp, "", "", Security::RequireStartTls),
     "220 mail",
     {{"EHLO", "250 mail"}, {"QUIT", "221 bye"}},
     "Connection: Port N answers: 220 mail\r\n"
     "Encryption: FAILED. STARTTLS not supported.\r\nThe test ended here.\r\n"},
    {"PopLogon",
     Account(Pop3, "me", "secret"),
     "+OK pop ready",
     {{"CAPA", "+OK\r\nUSER\r\n."},
      {"USER me", "+OK"},
      {"PASS secret", "+OK logged on"},
      {"STAT", "+OK 12 34567"},
      {"QUIT", "+OK"}},
     "Connection: Port N answers: +OK pop ready\r\n"
     "Encryption: The connection is not encrypted.\r\n"
     "Logon: +OK 12 34567\r\nEverything works.\r\n"},
    {"PopWrongPassword",
     Account(Pop3, "me", "secret"),
     "+OK pop ready",
     {{"CAPA", "-ERR what"}, {"USER", "+OK"}, {"PASS", "-ERR [AUTH] no"}, {"QUIT", "+OK"}},
     "Connection: Port N answers: +OK pop ready\r\n"
     "Encryption: The connection is not encrypted.\r\n"
     "Logon: FAILED. -ERR [AUTH] no\r\nThe test ended here.\r\n"},
    {"PopHangsUp",
     Account(Pop3, "me", "secret"),
     "+OK pop ready",
     {{"CAPA", "-ERR what"}},
     "Connection: Port N answers: +OK pop ready\r\n"
     "Encryption: The connection is not encrypted.\r\n"
     "Logon: FAILED. The server closed the connection.\r\nThe test ended here.\r\n"},
};

class TestConnection : public testing::TestWithParam<AccountCase> {};

TEST_P(TestConnection, SaysStepByStepWhatWorked) {
    const AccountCase& row = GetParam();
    test::TestBench bench;
    test::LoopbackServer server(Answering(row.greeting, row.answers));
    MailAccount account = row.account;
    account.server = "127.0.0.1";
    account.port = server.Port();
    auto& form = bench.wb.forms.Get<frmConnectionTest>();
    form.Start(account);
    bench.windows.HandleIdle();
    const std::string report =
        ReplaceText(row.report, "Port N", "Port " + std::to_string(account.port));
    EXPECT_EQ(form.txtReport.Text(), "Name: 127.0.0.1 is 127.0.0.1.\r\n" + report);
    EXPECT_TRUE(form.cmdClose.Enabled());
}

INSTANTIATE_TEST_SUITE_P(All, TestConnection, testing::ValuesIn(AccountCases),
                         [](const auto& row) { return row.param.name; });

TEST(TestConnectionForm, CancelEndsASilentServer) {
    test::TestBench bench;
    test::LoopbackServer server([](test::Peer& peer, int) { peer.ReadLine(); });
    auto& form = bench.wb.forms.Get<frmConnectionTest>();
    MailAccount account = Account(Pop3, "me", "secret");
    account.server = "127.0.0.1";
    account.port = server.Port();
    form.Start(account);
    bench.windows.Post([] {});
    const Subscription cancel = bench.windows.yielded.Observe([&] { form.cmdCancel.Press(); });
    bench.windows.HandleIdle();
    EXPECT_NE(form.txtReport.Text().find("The test ended here."), std::string::npos);
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
