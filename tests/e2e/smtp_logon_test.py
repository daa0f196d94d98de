#!/usr/bin/python3
"""SMTP logon on secured connections, to real mail servers that want it."""

import unittest

import program
from mail_servers import Authority, MailServer

MESSAGES = 3
PASSWORD = 'right "=;%41 s3cretw0rd'
WRONG = "The logon failed: 535 5.7.8 Authentication credentials invalid"

LOGON = """
set frmSettings.chkSMTPAuth 1
press frmSettings.cmdSMTPAuth
set frmSMTPAuthentication.txtUser ann@example.com
set frmSMTPAuthentication.txtPass {password}
press frmSMTPAuthentication.cmdOk
"""

SEND = """
answers default
set frmSettings.txtSMTPPort {port}
set frmSettings.cmbSMTPSecurity {security}
command "Send All"
"""


class SmtpLogon(program.ProgramTest):
    def setUp(self):
        super().setUp()
        self.authority = Authority(self.scratch / "authority")
        self.make_campaign(MESSAGES, script=program.MERGE.split("Open\n")[1])
        with open(self.home.folder / "registry.ini", "a", encoding="utf-8") as file:
            file.write(f"\n[MailServer]\nCertificateAuthorities={self.authority.certificate}\n")

    def serve(self, security: str) -> MailServer:
        tls = self.authority.server_tls("DNS:localhost,IP:127.0.0.1")
        options = {"tls_context": tls}
        if security == "TLS from the start":
            options = {"ssl_context": tls, "auth_require_tls": False}
        return self.enterContext(MailServer(password=PASSWORD, **options))

    def send(self, server: MailServer, security: str, password: str = PASSWORD) -> list[str]:
        """The errors of the messages, after a run with that password."""
        log = self.home.folder / "p" / "errorlog.txt"
        log.unlink(missing_ok=True)
        logon = LOGON.replace("{password}", program.quoted(password))
        send = SEND.replace("{port}", str(server.port))
        send = send.replace("{security}", program.quoted(security))
        self.good(self.home.play(logon + send, "p.poc"))
        if not log.exists():
            return []
        # A block with a line "From" is what the component told of the same error.
        blocks = log.read_text(encoding="utf-8").split("\n\n")
        return [block.split("\n")[0].removeprefix("Error: ") for block in blocks
                if "Error: " in block and "\nFrom: " not in block]

    def test_right_and_wrong_password(self):
        for security in ("STARTTLS required", "TLS from the start", "Automatic"):
            with self.subTest(security):
                home, self.home = self.home, self.home.copy(self.scratch / security)
                server = self.serve(security)
                self.assertEqual(self.send(server, security, "wrong"), [WRONG] * MESSAGES)
                self.assertEqual(server.passwords, ["wrong"])
                self.assertEqual(server.taken, [])
                self.assertEqual(self.send(server, security), [])
                self.assertEqual(server.passwords, ["wrong", PASSWORD])
                self.assertEqual(server.recipients,
                                 [program.address(i) for i in range(MESSAGES)])
                self.assertTrue(all(secured for *_, secured in server.taken))
                self.check_secret()
                self.home = home

    def check_secret(self):
        """The password stands in no file in the clear, but for the script that told it."""
        for path in self.home.folder.rglob("*"):
            if path.is_file() and path.name != "t.script":
                self.assertNotIn(PASSWORD.split()[-1].encode(), path.read_bytes(), path)


if __name__ == "__main__":
    SmtpLogon.program = program.program_from_arguments()
    unittest.main(warnings="ignore")  # the servers warn as their log does
