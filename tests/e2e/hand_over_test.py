#!/usr/bin/python3
"""Starts the program a second time, as a desktop or a timer does: the running one does the work."""

import subprocess
import unittest

import program
from program import ProgramTest

MADE = ("answers default\nfile p.poc\ncommand New\nset frmSettings.txtName Ana\ncommand Save\n"
        "file q.poc\ncommand New\n")
WAITING = "print frmSettings.txtName\nwait 4\nprint frmSettings.txtName\nprint boxes\n"


class HandOver(ProgramTest):
    def second(self, *arguments):
        return subprocess.run([self.program, "--home", ".", *arguments], cwd=self.home.folder,
                              capture_output=True, text=True, timeout=program.WAIT, check=False)

    def test_project_is_opened_and_the_window_shown(self):
        self.good(self.home.play(MADE))
        for arguments, name in [(["p.poc"], "Ana"), ([], "")]:
            with self.subTest(arguments):
                first = self.home.start(WAITING, "q.poc")
                self.assertTrue(first.wait_for_output("\n"))
                self.assertEqual(self.second(*arguments).returncode, 0)
                self.assertEqual(self.good(first.finish()), ["", name])

    def test_task_is_carried_out_where_there_is_room(self):
        """And nobody is asked: it may be a timer's."""
        tasks = self.home.folder / "Scheduled Events"
        tasks.mkdir(parents=True, exist_ok=True)
        (tasks / "nightly.shd").write_bytes(bytes(64))
        self.good(self.home.play(MADE))
        for script, status, told in [(WAITING, 0, ""), ("command Options\n" + WAITING +
                                     "press frmOptions.cmdOk\n", 1, "which is busy")]:
            with self.subTest(told):
                first = self.home.start(script, "p.poc")
                self.assertTrue(first.wait_for_output("\n"))
                second = self.second("--task", "nightly")
                self.assertEqual((second.returncode, told in second.stderr), (status, True))
                self.assertEqual(self.good(first.finish()), ["Ana", "Ana"])


if __name__ == "__main__":
    HandOver.program = program.program_from_arguments()
    unittest.main()
