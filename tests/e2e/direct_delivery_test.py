#!/usr/bin/python3
"""Delivers straight to mail exchangers: mail servers on several addresses of the loopback, found
through a real name server."""

import contextlib
import re
import socket
import ssl
import subprocess
import time
import unittest

import program
from mail_servers import Authority, MailServer, free_port

NAME_SERVER = "/usr/sbin/dnsmasq"
FIRST, SECOND, SILENT, LATE, NOBODY = (f"127.0.0.{i}" for i in (2, 3, 4, 5, 9))

EXCHANGERS = {
    "pref.test": [(20, "second.test"), (10, "first.test")],
    "refused.test": [(10, "nobody.test"), (20, "second.test")],
    "silent.test": [(10, "silence.test"), (20, "second.test")],
    "late.test": [(10, "latecomer.test")],
}
ADDRESSES = {"first.test": FIRST, "second.test": SECOND, "silence.test": SILENT,
             "latecomer.test": LATE, "nobody.test": NOBODY, "plain.test": FIRST}
NULL_MX = "null.test,15,000000"  # preference 0, the root

SETTINGS = """
set frmSettings.chkServer 1
press frmSettings.SSCommand1
set frmMailServer.optCustomDNS 1
set frmMailServer.txtDNS 127.0.0.1:{port}
set frmMailServer.chkLogs 1
press frmMailServer.cmdOk
command Save
"""

SEND = 'answers default\ncommand "Send All"\n'


@contextlib.contextmanager
def name_server():
    """Its port. Names outside of the tables do not exist."""
    port = free_port("127.0.0.1", socket.SOCK_DGRAM)
    options = [f"--mx-host={domain},{host},{preference}"
               for domain, records in EXCHANGERS.items() for preference, host in records]
    options += [f"--host-record={name},{address}" for name, address in ADDRESSES.items()]
    process = subprocess.Popen(
        [NAME_SERVER, "--keep-in-foreground", "--conf-file=/dev/null", "--no-resolv", "--no-hosts",
         "--listen-address=127.0.0.1", "--bind-interfaces", f"--port={port}", "--pid-file=",
         "--user=", "--log-facility=-", "--local=/test/", f"--dns-rr={NULL_MX}", *options],
        stderr=subprocess.PIPE)
    try:
        while b"started" not in (line := process.stderr.readline()):
            if not line:
                raise AssertionError("the name server did not start")
        yield port
    finally:
        process.terminate()
        process.communicate()


class DirectDelivery(program.ProgramTest):
    def setUp(self):
        super().setUp()
        self.port = free_port(FIRST)
        self.name_port = self.enterContext(name_server())

    def serve(self, host: str, **options) -> MailServer:
        return self.enterContext(MailServer(host, self.port, **options))

    def queue(self, *recipients: str) -> None:
        """Fills the Outbox with a message for each; a message may have several recipients."""
        lines = [f'"{to}",Friend\n' for to in recipients]
        (self.home.folder / "r.csv").write_text("Email,Name\n" + "".join(lines), encoding="utf-8")
        made = program.MADE_PROJECT.replace("{filling}", "hello")
        settings = SETTINGS.replace("{port}", str(self.name_port))
        self.good(self.home.play(made + settings + program.MERGE.split("Open\n")[1]))
        registry = self.home.folder / "registry.ini"
        hidden = f"[MailServer]\nPort={self.port}\nTimeout=2\n"
        text = registry.read_text(encoding="utf-8")
        registry.write_text(text.replace("[MailServer]\n", hidden), encoding="utf-8")

    def send(self) -> str:
        """The error log of the run; "" when nothing failed."""
        log = self.home.folder / "p" / "errorlog.txt"
        log.unlink(missing_ok=True)
        self.good(self.home.play(SEND, "p.poc"))
        return log.read_text(encoding="utf-8") if log.exists() else ""

    def errors(self, log: str) -> list[str]:
        """Those of whole messages and of refused recipients."""
        return sorted(re.findall(r"Error: (.*)\nTo: ", log))

    def test_exchangers(self):
        first, second = self.serve(FIRST), self.serve(SECOND)
        silent = self.enterContext(socket.create_server((SILENT, self.port)))
        self.queue("a@pref.test", "b@refused.test", "c@silent.test", "d@plain.test",
                   "e@Pref.test", "f@silent.test", f"g@[{SECOND}]", "h@null.test", "i@unknown.test",
                   "j@null.test")
        begin = time.monotonic()
        log = self.send()
        self.assertLess(time.monotonic() - begin, 30)
        self.assertEqual(first.recipients, ["a@pref.test", "d@plain.test", "e@Pref.test"])
        self.assertEqual(second.recipients,
                         ["b@refused.test", "c@silent.test", "f@silent.test", f"g@[{SECOND}]"])
        unknown, *null = self.errors(log)[::-1]
        self.assertEqual(null, ["null.test: The domain takes no mail."] * 2)
        self.assertRegex(unknown, '^unknown.test: unknown.test: The name .* was not found')
        self.assertEqual(self.store().rows("Outbox"),
                         ["h@null.test", "i@unknown.test", "j@null.test"])
        silent.settimeout(0)
        silent.accept()[0].close()
        with self.assertRaises(BlockingIOError, msg="a silent server is waited for once"):
            silent.accept()
        self.check_session_log()

    def check_session_log(self):
        logs = list((self.home.folder / "p" / "Logs").iterdir())
        self.assertEqual(len(logs), 1)
        self.assertRegex(logs[0].name, r"^\d+-\d+-\d{4} \d\d\.\d\d\.\d\d [AP]M\.txt$")
        text = logs[0].read_bytes().decode("utf-8")
        self.assertNotIn("\n", text.replace("\r\n", ""))
        for line in ("SMTP:1: RCPT TO:<a@pref.test>", "SMTP:2: nobody.test: Failed to connect",
                     "Error: null.test: The domain takes no mail."):
            self.assertIn("\r\n" + line, text)

    def test_killed_between_two_domains(self):
        first, late = self.serve(FIRST), self.serve(LATE)
        self.queue("a@pref.test,b@late.test")
        running = self.home.start(SEND, "p.poc")
        late.refuses = lambda address: running.process.kill()
        running.finish()
        self.assertEqual((first.recipients, late.recipients), (["a@pref.test"], []))
        late.refuses = lambda address: None
        self.assertEqual(self.send(), "")
        self.assertEqual((first.recipients, late.recipients), (["a@pref.test"], ["b@late.test"]))

    def test_tls_where_it_works(self):
        authority = Authority(self.scratch / "authority")
        good = authority.server_tls("DNS:another.name")
        broken = authority.server_tls("DNS:second.test")
        broken.maximum_version = ssl.TLSVersion.TLSv1_2
        broken.set_ciphers("PSK")
        first, second = self.serve(FIRST, tls_context=good), self.serve(SECOND, tls_context=broken)
        self.queue("a@pref.test", "b@refused.test", "c@refused.test")
        self.assertEqual(self.send(), "")
        self.assertEqual([secured for *_, secured in first.taken], [True])
        self.assertEqual([secured for *_, secured in second.taken], [False, False])
        self.assertEqual(second.recipients, ["b@refused.test", "c@refused.test"])


if __name__ == "__main__":
    DirectDelivery.program = program.program_from_arguments()
    unittest.main()
