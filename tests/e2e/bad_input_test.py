#!/usr/bin/python3
"""Starts the program on bad input: each answer is one clear line and an exit status."""

import random
import subprocess
import unittest

import program
from program import ProgramTest

MADE_PROJECT = """
file p.poc
command New
set frmSettings.txtName Ana
set frmSettings.chkWrap 1
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
            ("\nset frmNoSuch.txtName x\n", 2, "t.script:2: "),
            ("command \"No such tool\"\n", 2, "t.script:1: "),
            ("command \"Mailing lists\"\n", 2, "t.script:1: "),
            ("frobnicate\n", 2, "t.script:1: "),
            ("set frmSettings.txtName \"open\n", 2, "t.script:1: "),
            ("expect frmSettings.txtSMTPPort 26\n", 1, "25"),
            ("command Save\n", 1, "t.script:1: "),
            ("print frmSettings.txtSMTPPort\n", 0, ""),
        ]:
            with self.subTest(script):
                self.check(script, status, error)
        with self.subTest("missing script"):
            done = subprocess.run(
                [self.program, "--headless", "--home", ".", "--script", "none"],
                cwd=self.folder, capture_output=True, text=True, timeout=60, check=False,
            )
            self.assertEqual(done.returncode, 2)
            self.assertIn("none", done.stderr)

    def test_projects(self):
        self.check(MADE_PROJECT, 0)
        whole = (self.folder / "p.poc").read_bytes()
        bytes_ = random.Random(1).randbytes
        for name, content, expected in [
            ("whole", whole, "Ana\n25\n1\n"),
            ("empty", b"", "\n\n0\n"),
            ("wrong key", bytes(b + 1 if b < 122 else b for b in whole), "\n\n0\n"),
            ("random", bytes_(5000), "\n\n0\n"),
        ]:
            with self.subTest(name):
                (self.folder / "bad.poc").write_bytes(content)
                out = self.check(
                    "print frmSettings.txtName\nprint frmSettings.txtSMTPPort\n"
                    "print frmSettings.chkWrap\n", 0, "", "bad.poc")
                self.assertEqual(out, expected)
        with self.subTest("cut short"):
            (self.folder / "bad.poc").write_bytes(whole[: len(whole) // 2])
            out = self.check("print frmSettings.txtName\n", 0, "", "bad.poc")
            self.assertEqual(out, "Ana\n")
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

    def test_missing_table(self):
        (self.folder / "list.csv").write_text("Email\na@example.com\n", encoding="utf-8")
        self.check(
            MADE_PROJECT + "answers default\nfile r.db\ncommand NewDatabase\n"
            "set frmDataWizard.txtFile list.csv\npress frmDataWizard.cmdFinish\n"
            "command Merge\nset frmViewMerge.txtFrom a@example.com\n"
            "file m.dmg\ntool frmViewMerge Save\ncommand Save\n", 0)
        (self.folder / "r.db").unlink()
        (self.folder / "other.csv").write_text("Email\nb@example.com\n", encoding="utf-8")
        out = self.check(
            "answers default\nfile s.db\ncommand NewDatabase\n"
            "set frmDataWizard.txtFile other.csv\npress frmDataWizard.cmdFinish\n"
            "command Merge\nfile m.dmg\ntool frmViewMerge Open\nprint boxes\n"
            "print frmViewMerge.txtFrom\n", 0, "", "p.poc")
        self.assertIn("Your table 'list' cannot be found in the current database. ", out)
        self.assertIn("Wrong table", out)
        self.assertTrue(out.endswith("a@example.com\n"))


if __name__ == "__main__":
    BadInput.program = program.program_from_arguments()
    unittest.main()
