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

# Writes its arguments, a line a run.
RECORDER = """#!/usr/bin/python3
import json, sys
with open("{calls}", "a", encoding="utf-8") as file:
    file.write(json.dumps(sys.argv[1:]) + "\\n")
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
set frmTagCGIAdd.optGET 1
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
    def do_GET(self):
        self.server.heard.append((self.path, self.headers.get("Referer")))
        self.send_response(200)
        self.end_headers()
        self.wfile.write(f"call {len(self.server.heard)}".encode())

    def log_message(self, *arguments):
        pass


class ExecuteTags(program.ProgramTest):
    def setUp(self):
        super().setUp()
        self.calls = self.scratch / "calls"
        self.recorder = self.scratch / "record calls.py"
        self.recorder.write_text(RECORDER.replace("{calls}", str(self.calls)))
        self.recorder.chmod(0o755)
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

    def test_programs_get_each_value_as_one_argument(self):
        self.good(self.home.play(
            OPEN + self.program_tag('v=5 /[Name] "to [Email]" [Nobody]') + SEND_LATER, "p.poc"))
        # A value may name a column that comes later, not one that came before.
        calls = [json.loads(line) for line in self.calls.read_text("utf-8").splitlines()]
        self.assertEqual(calls, [["v=5", f"/{name}", f"to {program.address(i)}", "[Nobody]"]
                                 for i, name in enumerate(NAMES)])
        self.assertEqual(list(self.scratch.rglob("evil*")), [])
        bodies = self.store().rows("Outbox", '"Body"')
        self.assertEqual(["##Execute Program 1##" in body for body in bodies], [True] * len(NAMES))

    def test_scripts_are_called_with_each_value(self):
        result = self.scratch / "result"
        server = self.web_server()
        url = f"http://127.0.0.1:{server.server_port}/cgi-bin/count.pl"
        tag = CGI_TAG.replace("{url}", url).replace("{result}", str(result))
        self.good(self.home.play(OPEN + tag + SEND_LATER, "p.poc"))
        for i, (path, referer) in enumerate(server.heard):
            self.assertEqual(referer, "http://example.com/page")
            base, _, query = path.partition("?")
            self.assertEqual(base, "/cgi-bin/count.pl")
            self.assertEqual(urllib.parse.parse_qsl(query, strict_parsing=True),
                             [("who", NAMES[i]), ("to", program.address(i))])
        self.assertEqual(result.read_text(), f"call {len(NAMES)}")
        self.assertEqual(len(self.store().rows("Outbox")), len(NAMES))


if __name__ == "__main__":
    ExecuteTags.program = program.program_from_arguments()
    unittest.main()
