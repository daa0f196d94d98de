// TLS against a real mail server, with certificates of a certificate authority made for the run.
// Needs the openssl program and the package python3-aiosmtpd.

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "platform/net/smtp/SmtpClient.h"
#include "support/FakeSmtpServer.h"
#include "support/TempFolder.h"

namespace mailvane {
namespace {

using Action = SmtpClient::Action;

/// A server process; it ends when its standard input does.
class TlsServer {
public:
    TlsServer(const std::string& folder, const std::string& mode, const std::string& certificate) {
        const std::string portFile = folder + "/port-" + mode + "-" + certificate;
        const std::string base = folder + "/" + certificate;
        process_ = popen(("exec /usr/bin/python3 " MAILVANE_SOURCE_DIR
                          "/tests/platform/net/tls_mail_server.py " +
                          mode + " " + base + ".pem " + base + ".key " + portFile + " 2>/dev/null")
                             .c_str(),
                         "w");
        for (int i = 0; i < 500 && port_ == 0; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            std::ifstream(portFile) >> port_;
        }
    }
    ~TlsServer() { pclose(process_); }
    TlsServer(const TlsServer&) = delete;
    TlsServer& operator=(const TlsServer&) = delete;

    int Port() const { return port_; }

private:
    std::FILE* process_;
    int port_ = 0;
};

class SmtpTlsTest : public testing::Test {
protected:
    void SetUp() override {
        const std::string signedByCa = " -CA ca.pem -CAkey ca.key -addext subjectAltName=";
        MakeCertificate("ca", "");
        MakeCertificate("otherca", "");
        MakeCertificate("good", signedByCa + "DNS:localhost,IP:127.0.0.1");
        MakeCertificate("wrongname", signedByCa + "DNS:mail.test");
    }
    void MakeCertificate(const std::string& name, const std::string& options) const {
        const std::string command =
            "cd " + folder + " && openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256" +
            " -nodes -days 2 -subj /CN=" + name + " -keyout " + name + ".key -out " + name +
            ".pem" + options + " >openssl.log 2>&1";
        ASSERT_EQ(std::system(command.c_str()), 0) << own.Read("openssl.log");
    }
    void Prepare(SmtpClient& client, int port) const {
        client.MailServer = "127.0.0.1";
        client.MailPort = port;
        client.CertificateAuthorities = folder + "/ca.pem";
        client.LocalName = "me.test";
        client.Timeout = 10;
        client.From = "a@x.org";
        client.SendTo = "b@x.org";
        client.Date = "d";
    }

    const test::TempFolder own;
    const std::string& folder = own.Path();
};

TEST_F(SmtpTlsTest, SecuredConnections) {
    const TlsServer startTls(folder, "starttls", "good");
    const TlsServer implicit(folder, "implicit", "good");
    const TlsServer wrongName(folder, "starttls", "wrongname");
    const test::FakeSmtpServer plain;
    ASSERT_TRUE(startTls.Port() > 0 && implicit.Port() > 0 && wrongName.Port() > 0);
    const struct {
        const char* name;
        int port;
        Security security;
        const char* authorities;
        bool verify;
        const char* answer;  ///< the end of the answer to the message, "" when TLS fails
        const char* host = "127.0.0.1";
    } rows[] = {
        {"STARTTLS when offered", startTls.Port(), Security::Automatic, "ca", true, "secured"},
        {"STARTTLS required", startTls.Port(), Security::RequireStartTls, "ca", true, "secured"},
        {"implicit", implicit.Port(), Security::ImplicitTls, "ca", true, "secured"},
        {"by name", implicit.Port(), Security::ImplicitTls, "ca", true, "secured", "localhost"},
        {"none wanted", startTls.Port(), Security::None, "ca", true, "clear"},
        {"none offered", plain.Port(), Security::Automatic, "ca", true, "OK"},
        {"required, none offered", plain.Port(), Security::RequireStartTls, "ca", true, ""},
        {"unknown authority", startTls.Port(), Security::Automatic, "otherca", true, ""},
        {"unknown authority, implicit", implicit.Port(), Security::ImplicitTls, "otherca", true,
         ""},
        {"wrong name", wrongName.Port(), Security::Automatic, "ca", true, ""},
        {"wrong name, not checked", wrongName.Port(), Security::Automatic, "ca", false, "secured"},
        {"no such file of authorities", implicit.Port(), Security::ImplicitTls, "none", true, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        SmtpClient client;
        Prepare(client, row.port);
        client.MailServer = row.host;
        client.ConnectionSecurity = row.security;
        client.CertificateAuthorities = folder + "/" + row.authorities + ".pem";
        client.VerifyCertificate = row.verify;
        client.MessageText = std::string(300000, 'x');
        for (std::size_t i = 76; i < client.MessageText.size(); i += 77)
            client.MessageText[i] = '\n';
        const std::string answer = row.answer;
        const NetError error = client.SetAction(Action::Send);
        if (answer.empty()) {
            EXPECT_EQ(error.code, net_error::TlsFailed) << error.description;
            EXPECT_FALSE(client.IsConnected());
            continue;
        }
        EXPECT_TRUE(error.Ok()) << error.description;
        EXPECT_TRUE(client.LastReply().ends_with(answer)) << client.LastReply();
        EXPECT_EQ(client.IsSecured(), answer == "secured");
        EXPECT_TRUE(client.SetAction(Action::Send).Ok());
        EXPECT_TRUE(client.SetAction(Action::Disconnect).Ok());
    }
}

TEST_F(SmtpTlsTest, BytesBeforeTheHandshakeAreNoAnswers) {
    // Somebody on the way adds answers in clear text behind the one to STARTTLS.
    std::string reply = "220 go\r\n250-evil\r\n250 CHUNKING";
    test::FakeSmtpServer server;
    server.extensions = {"STARTTLS"};
    server.answer = [&](const std::string& step, const auto&) {
        return step == "STARTTLS" ? reply : "";
    };
    SmtpClient client;
    Prepare(client, server.Port());
    client.Timeout = 2;
    EXPECT_TRUE(client.SetAction(Action::Connect).Failed());
    EXPECT_FALSE(client.IsConnected());
    EXPECT_FALSE(client.Offers("CHUNKING"));

    reply = "454 no TLS today";
    client.ConnectionSecurity = Security::RequireStartTls;
    EXPECT_EQ(client.SetAction(Action::Connect).description, "454 no TLS today");
}

}  // namespace
}  // namespace mailvane
