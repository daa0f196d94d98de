#!/usr/bin/python3
"""Messages that run a program and call a web script, once for each recipient."""

import http.server
import json
import threading
import unittest
import urllib.parse

import program

NAMES = [
    'Ann "Quote" O\'Hara',
    "; touch evil; $(touch evil) `touch evil` | & > evil",
    "back\\slash \\\" [Email] * ~ %26 a=b&c=d #?",
    "Zoë + Ωmega",
]

# Writes its arguments, a line a run; stands still while it is told to.
RECORDER = """#!/usr/bin/python3
import json, os, sys, time
with open("{calls}", "a", encoding="utf-8") as file:
    file.write(json.dumps(sys.argv[1:]) + "\\n")
for stream in (1, 2):  # whoever reads them does not wait for this program
    os.close(stream)
end = time.monotonic() + 60
while os.path.exists("{hold}") and time.monotonic() < end:
    time.sleep(0.02)
"""

OPEN = """
command Merge
file m.dmg
tool frmViewMerge Open
"""

PROGRAM_TAG = """
tool frmViewMerge "Execute Program"
press frmTagProgram.lbxTags add
set frmTagProgramAdd.txtProgram {recorder}
set frmTagProgramAdd.txtCommand {line}
press frmTagProgramAdd.cmdOk
expect-count frmTagProgram.lbxTags 1
set frmTagProgram.lbxTags #0
press frmTagProgram.cmdOk
expect-contains frmViewMerge.txtBody "##Execute Program 1##"
"""

CGI_TAG = """
tool frmViewMerge "Execute CGI"
press frmTagCGI.lbxTags add
set frmTagCGIAdd.txtCGI {url}
set frmTagCGIAdd.txtQuery "?who=[Name]&to=[Email]"
set frmTagCGIAdd.txtReferer http://example.com/page
set frmTagCGIAdd.opt{method} 1
set frmTagCGIAdd.chkSave 1
set frmTagCGIAdd.txtResult {result}
press frmTagCGIAdd.cmdOk
set frmTagCGI.lbxTags #0
press frmTagCGI.cmdOk
expect-contains frmViewMerge.txtBody "##Execute CGI 1##"
"""

SEND_LATER = """
tool frmViewMerge "Send Later"
press frmMerge.cmdStart
"""


class Handler(http.server.BaseHTTPRequestHandler):
    def answer(self):
        body = self.rfile.read(int(self.headers.get("Content-Length", 0))).decode()
        self.server.heard.append((self.command, self.path, self.headers.get("Referer"), body))
        content = f"call {len(self.server.heard)}".encode()
        self.send_response(200)
        self.send_header("Content-Length", str(len(content)))
        self.end_headers()
        if self.command != "HEAD":
            self.wfile.write(content)

    do_GET = do_POST = do_HEAD = answer

    def log_message(self, *arguments):
        pass


class ExecuteTags(program.ProgramTest):
    def setUp(self):
        super().setUp()
        self.calls = self.scratch / "calls"
        self.hold = self.scratch / "hold"
        self.recorder = self.scratch / "record calls.py"
        self.recorder.write_text(
            RECORDER.replace("{calls}", str(self.calls)).replace("{hold}", str(self.hold)))
        self.recorder.chmod(0o755)
        self.addCleanup(self.hold.unlink, missing_ok=True)
        program.name = lambda i: '"' + NAMES[i].replace('"', '""') + '"'
        self.make_campaign(len(NAMES))

    def web_server(self) -> http.server.HTTPServer:
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        server.heard = []
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        return server

    def program_tag(self, line: str) -> str:
        tag = PROGRAM_TAG.replace("{recorder}", program.quoted(str(self.recorder)))
        return tag.replace("{line}", program.quoted(line))

    def arguments(self) -> list[list[str]]:
        return [json.loads(line) for line in self.calls.read_text("utf-8").splitlines()]

    def test_programs_get_each_value_as_one_argument(self):
        self.good(self.home.play(
            OPEN + self.program_tag('v=5 /[Name] "to [Email]" [Nobody]') + SEND_LATER, "p.poc"))
        expected = []
        for i, name in enumerate(NAMES):
            # A value may name a column that comes later, not one that came before.
            expected.append(["v=5", f"/{name}", f"to {program.address(i)}", "[Nobody]"])
        self.assertEqual(self.arguments(), expected)
        evil = [path for path in self.scratch.rglob("evil*")]
        self.assertEqual(evil, [])
        bodies = self.store().rows("Outbox", '"Body"')
        self.assertEqual(len(bodies), len(NAMES))
        for body in bodies:
            self.assertIn("##Execute Program 1##", body)

    def test_scripts_are_called_by_each_method(self):
        result = self.scratch / "result"
        for method in ("GET", "POST", "HEAD"):
            server = self.web_server()
            home = self.home.copy(self.scratch / method)
            tag = CGI_TAG.replace("{method}", method).replace("{result}", str(result))
            url = f"http://127.0.0.1:{server.server_port}/cgi-bin/count.pl"
            self.good(home.play(OPEN + tag.replace("{url}", url) + SEND_LATER, "p.poc"))
            self.assertEqual(len(server.heard), len(NAMES), method)
            for i, (command, path, referer, body) in enumerate(server.heard):
                self.assertEqual((command, referer), (method, "http://example.com/page"))
                query = body if method == "POST" else path.partition("?")[2]
                self.assertEqual(path.partition("?")[0], "/cgi-bin/count.pl")
                self.assertEqual(urllib.parse.parse_qsl(query, strict_parsing=True),
                                 [("who", NAMES[i]), ("to", program.address(i))])
            content = result.read_text()
            if method == "HEAD":
                self.assertTrue(content.startswith("HTTP/1.0 200 OK"), content)
            else:
                self.assertEqual(content, f"call {len(NAMES)}")
            self.assertEqual(len(self.store(home).rows("Outbox")), len(NAMES))

    def test_cancel_works_while_a_program_runs(self):
        self.hold.touch()
        watch = "when frmStatus.lblCaption1 contains Generating press frmStatus.cmdCancel\n"
        send = SEND_LATER.replace("press", "answer no\n" + watch + "press")
        self.good(self.home.play(OPEN + self.program_tag("[Email]") + send, "p.poc"))
        self.assertTrue(self.hold.exists())
        self.assertTrue(program.wait_until(self.calls.exists), "the program runs on by itself")
        self.assertEqual(self.arguments(), [[program.address(0)]])
        self.assertEqual(self.store().rows("Outbox"), [program.address(0)])


if __name__ == "__main__":
    ExecuteTags.program = program.program_from_arguments()
    unittest.main()
