#!/usr/bin/python3
"""Leaves the program by each way out, with windows open or just gone: the exit status is 0."""

import unittest

import program
from program import ProgramTest

SEND_LATER = program.OPEN_MERGE
RUN = SEND_LATER + "press frmMerge.cmdStart\n"
QUIT = "command Exit\n"
CLOSE = "close frmMain\n"


class Leaving(ProgramTest):
    def test_with_windows_open(self):
        self.make_campaign(3)
        for name, script in {
            "nothing": "",
            "settings": "command Settings\n",
            "settings closed before": "command Settings\nclose frmSettings\n",
            "options": "command Options\n",
            "one from the other": "command Settings\ncommand Options\ncommand Settings\n",
            "about": "command About\n",
            "views": "command Database\ncommand Email\ncommand Merge\nclose frmViewDatabase\n",
            "modal": SEND_LATER,
            "preview": SEND_LATER.replace("Send Later", "Preview"),
            "wizard": "command ImportData\n",
            "modal after a run": RUN,
            "after a run": RUN + "press frmMSGOutbox.cmdStart\n",
            "a project opened again": "command Settings\nopen p.poc\ncommand Database\n",
        }.items():
            for way in [QUIT, CLOSE]:
                with self.subTest(name, way=way):
                    self.good(self.home.play(script + way, "p.poc"))

    def test_in_the_middle_of_a_run(self):
        self.make_campaign(30)
        at = 'when frmStatus.lblCaption1 contains "message {} of" {}\n'
        shown = at.format(3, "wait 0.6")  # long enough for the window of the run
        for script in ["", shown]:
            for way in [QUIT, CLOSE]:
                with self.subTest(script, way=way):
                    watches = script + at.format(9, way)
                    self.good(self.home.play("answers default\n" + watches + RUN, "p.poc"))


if __name__ == "__main__":
    program.ENDING = ""
    Leaving.program = program.program_from_arguments()
    unittest.main()
