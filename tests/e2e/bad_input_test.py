#!/usr/bin/python3
"""Starts the program on bad input: each answer is one clear line and an exit status."""

import random
import unittest

import program
from program import ProgramTest

MADE_PROJECT = """
file p.poc
command New
set frmSettings.txtName Ana
command Save
"""


class BadInput(ProgramTest):
    def setUp(self):
        super().setUp()
        self.folder = self.home.folder

    def check(self, script, status, error="", *arguments):
        done = self.home.play(script, *arguments)
        self.assertEqual(done.returncode, status, done.stderr)
        self.assertIn(error, done.stderr)
        if status:
            self.assertEqual(done.stderr.count("\n"), 1, done.stderr)
        return done.stdout

    def test_scripts(self):
        for script, status, error in [
            ("set frmSettings.txtNoSuch x\n", 2, "t.script:1: "),
            ("expect frmSettings.txtSMTPPort 26\n", 1, "25"),
            ("command Save\n", 1, "t.script:1: "),
            ("print frmSettings.txtSMTPPort\n", 0, ""),
        ]:
            with self.subTest(script):
                self.check(script, status, error)

    def test_projects(self):
        self.check(MADE_PROJECT, 0)
        whole = (self.folder / "p.poc").read_bytes()
        for name, content, expected in [
            ("whole", whole, "Ana"),
            ("cut short", whole[: len(whole) // 2], "Ana"),
            ("empty", b"", ""),
            ("wrong key", bytes(b + 1 if b < 122 else b for b in whole), ""),
            ("random", random.Random(1).randbytes(5000), ""),
        ]:
            with self.subTest(name):
                (self.folder / "bad.poc").write_bytes(content)
                out = self.check("print frmSettings.txtName\n", 0, "", "bad.poc")
                self.assertEqual(out, expected + "\n")
        with self.subTest("missing"):
            self.check(
                "answer ok\nopen nowhere.poc\n"
                'expect-box "File not found. Please verify the correct file name was given. "\n', 0)
            self.check("print frmSettings.txtName\n", 0, "", "nowhere.poc")

    def test_databases(self):
        (self.folder / "notes.db").write_text("These are my notes.")
        (self.folder / "empty.db").write_bytes(b"")
        (self.folder / "old.mdb").write_bytes(b"\0\1\0\0Standard Jet DB\0" + bytes(4096))
        for name, text in [("notes.db", "Unrecognized database format"),
                           ("empty.db", "Unrecognized database format"),
                           ("old.mdb", "Access")]:
            with self.subTest(name):
                before = (self.folder / name).read_bytes()
                out = self.check(
                    f"answers default\nset frmSettings.txtAccessDBPath {name}\nprint boxes\n"
                    "expect-count frmSettings.cmbAccessTable 0\n", 0)
                self.assertIn(text, out)
                self.assertEqual((self.folder / name).read_bytes(), before)


if __name__ == "__main__":
    BadInput.program = program.program_from_arguments()
    unittest.main()
