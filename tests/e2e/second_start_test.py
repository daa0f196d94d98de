#!/usr/bin/python3
"""Starts the program on a folder that another one runs on: it says so and touches nothing."""

import os
import re
import subprocess
import unittest

import program
from program import ProgramTest

NOTHING = "print frmMain.sbStatusBar\n"


class SecondStart(ProgramTest):
    def setUp(self):
        super().setUp()
        self.good(self.home.play(NOTHING))
        self.script = self.scratch / "nothing.script"
        self.script.write_text(NOTHING, encoding="utf-8")

    def snapshot(self):
        """Names, sizes, times and bytes of everything in the folder."""
        found = {}
        for path in [self.home.folder, *sorted(self.home.folder.rglob("*"))]:
            status = path.lstat()
            content = path.read_bytes() if path.is_file() else b""
            found[path] = (status.st_mode, status.st_size, status.st_mtime_ns, content)
        return found

    def start_first(self) -> program.Running:
        """A program that has started and stands still."""
        first = self.home.start(program.pause(1))
        first.wait_for_pause(1)
        return first

    def start(self, home, folder, variables):
        """`home`: the folder's name; None when the variables name it."""
        command = [self.program, "--headless", "--script", self.script]
        if home is not None:
            command[1:1] = ["--home", home]
        return subprocess.run(
            command, cwd=folder, env={**os.environ, **variables}, capture_output=True, text=True,
            timeout=program.WAIT, check=False)

    def check_refused(self, done, first):
        self.assertEqual((done.returncode, done.stdout), (1, ""), done.stderr)
        self.assertEqual(done.stderr.count("\n"), 1, done.stderr)
        text = re.fullmatch(
            r"mailvane: the program folder '(.*)' is in use by another Mailvane "
            r"\(process (\d+)\)\n", done.stderr)
        self.assertTrue(text, done.stderr)
        self.assertTrue(os.path.samefile(text[1], self.home.folder), text[1])
        self.assertEqual(int(text[2]), first.process.pid)

    def test_same_folder(self):
        folder = self.home.folder
        (self.scratch / "link").symlink_to(folder)
        (self.scratch / "deep").mkdir()
        (self.scratch / "deep" / "link").symlink_to(self.scratch / "link")
        (self.scratch / "mailvane").symlink_to(folder)
        first = self.start_first()
        before = self.snapshot()
        for case, home, start_in, variables in [
            ("same name", str(folder), self.scratch, {}),
            ("relative from beside", "home", self.scratch, {}),
            ("link to a link", "deep/link", self.scratch, {}),
            ("variable", None, self.scratch, {"MAILVANE_HOME": str(folder)}),
            ("user's data folder", None, self.scratch,
             {"MAILVANE_HOME": "", "XDG_DATA_HOME": str(self.scratch)}),
        ]:
            with self.subTest(case):
                self.check_refused(self.start(home, start_in, variables), first)
                self.assertEqual(self.snapshot(), before)
        self.good(first.finish())
        self.assertEqual(self.start("home", self.scratch, {}).returncode, 0)

    def test_killed_one_leaves_the_folder_free(self):
        for number in range(3):
            self.start_first().kill()
            with self.subTest(number):
                self.good(self.home.play(NOTHING))

    def test_opened_document_does_not_hold_the_folder(self):
        """What the program has opened for the user may stay open longer than the program."""
        viewer = self.scratch / "bin" / "xdg-open"
        viewer.parent.mkdir()
        started = self.scratch / "viewer.pid"
        viewer.write_text(f"#!/bin/sh\necho $$ > {started}.new\nmv {started}.new {started}\n"
                          "exec sleep 60 > /dev/null 2>&1\n")
        viewer.chmod(0o755)
        self.script.write_text("command Help\nwait 0.1\n")
        done = self.start("home", self.scratch, {"PATH": f"{viewer.parent}:{os.environ['PATH']}"})
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        program.wait_until(started.exists)
        try:
            self.good(self.home.play(NOTHING))
        finally:
            os.kill(int(started.read_text()), 9)


if __name__ == "__main__":
    SecondStart.program = program.program_from_arguments()
    unittest.main()
