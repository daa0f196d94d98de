#!/usr/bin/python3
"""Whole runs to mail servers that nobody here wrote: in clear text, with STARTTLS, with TLS from the
start, and with a logon where they have one."""

import time
import unittest

import program
from mail_servers import Authority, MailServer
from smtp_logon_test import LOGON, SEND
from unpacked_servers import Exim, OpenSmtpd, Postfix

MESSAGES = 3
TAKEN = 30.0  # seconds until everything has been handed on


class OtherServers(program.ProgramTest):
    def setUp(self):
        super().setUp()
        self.authority = Authority(self.scratch / "authority")
        self.make_campaign(MESSAGES, script=program.MERGE.split("Open\n")[1])
        with open(self.home.folder / "registry.ini", "a", encoding="utf-8") as file:
            file.write(f"\n[MailServer]\nCertificateAuthorities={self.authority.certificate}\n")

    def test_opensmtpd(self):
        self.check(OpenSmtpd)

    def test_postfix(self):
        self.check(Postfix)

    def test_exim(self):
        self.check(Exim)

    def check(self, server_class):
        with MailServer() as sink, server_class(self.scratch / "server", sink.port,
                                                self.authority) as server:
            for security, port in server.ports.items():
                with self.subTest(security):
                    home, self.home = self.home, self.home.copy(self.scratch / security)
                    sink.taken.clear()
                    self.send(security, port, server.has_logon and security != "None")
                    end = time.monotonic() + TAKEN
                    while len(sink.taken) < MESSAGES and time.monotonic() < end:
                        time.sleep(0.05)
                    self.assertEqual(sorted(sink.recipients),
                                     [program.address(i) for i in range(MESSAGES)])
                    self.home = home

    def send(self, security, port, logon):
        script = SEND.replace("{port}", str(port)).replace("{security}", program.quoted(security))
        if logon:
            words = LOGON.replace("ann@example.com", Exim.user)
            words = words.replace("{password}", Exim.password)
            script = words + script
        self.good(self.home.play(script, "p.poc"))
        log = self.home.folder / "p" / "errorlog.txt"
        self.assertEqual(log.read_text(encoding="utf-8") if log.exists() else "", "")


if __name__ == "__main__":
    OtherServers.program = program.program_from_arguments()
    unittest.main(warnings="ignore")
