#!/usr/bin/python3
"""The program on a real X server with a window manager, by the keyboard alone."""

import os
import pathlib
import subprocess
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "e2e"))
import program  # noqa: E402

MAIN, SETTINGS, MERGE = "p - Mailvane", "Project settings", "Merge"
CLOSE_BOX = "alt+F4"  # the window manager sends what its close box sends


def use(*arguments) -> list[str]:
    """What xdotool says, line by line."""
    done = subprocess.run(["xdotool", *map(str, arguments)], capture_output=True, text=True,
                          timeout=program.WAIT, check=False)
    return done.stdout.split("\n")[:-1]


def title_in_focus() -> str:
    return "".join(use("getwindowfocus", "getwindowname"))


class Desk(program.ProgramTest):
    def setUp(self):
        super().setUp()
        read, write = os.pipe()
        self.keep(["Xvfb", "-displayfd", str(write), "-screen", "0", "1280x1000x24", "-nolisten",
                   "tcp"], pass_fds=[write])
        os.close(write)
        with os.fdopen(read) as answer:
            os.environ["DISPLAY"] = ":" + answer.readline().strip()
        self.keep(["openbox", "--sm-disable"])
        self.assertTrue(program.wait_until(lambda: use("get_desktop")), "no window manager")
        self.make_campaign(12)

    def keep(self, command, **options):
        """Runs until the test ends."""
        process = subprocess.Popen(command, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL, **options)
        self.addCleanup(process.wait)
        self.addCleanup(process.terminate)

    def start(self, script: str):
        (self.home.folder / "t.script").write_text(script + "wait 600\n", encoding="utf-8")
        self.run_program("--script", "t.script", "p.poc")

    def run_program(self, *arguments):
        self.running = program.Running([self.program, "--home", ".", *arguments], self.home.folder)
        self.home.started.append(self.running)

    def focused(self, part: str):
        self.assertTrue(program.wait_until(lambda: part in title_in_focus()),
                        f"{part!r} has no keyboard, but {title_in_focus()!r}")

    def press(self, *keys: str):
        use("key", *keys)

    def close_all(self):
        """The close box of whatever has the keyboard, until the program has ended."""
        def ended():
            self.press(CLOSE_BOX)
            return self.running.process.poll() is not None
        self.assertTrue(program.wait_until(ended))

    def left(self):
        self.assertEqual(self.good(self.running.finish()), [])

    def test_windows_come_and_go(self):
        for way in ["ctrl+q", CLOSE_BOX]:
            self.start("")
            for leave_settings in [CLOSE_BOX, "Escape"]:
                self.focused(MAIN)
                self.press("F8")
                self.focused(SETTINGS)
                self.press(leave_settings)
            self.focused(MAIN)
            self.press(way)
            self.left()

    def test_the_keyboard_after_a_run(self):
        """The window of a run comes and goes; what is typed then reaches the message."""
        self.start('when frmStatus.lblCaption1 contains "message 3 of" wait 0.6\n' +
                   program.MERGE + "command Merge\nset frmViewMerge.txtSubject x\n"
                   "when frmViewMerge.txtSubject contains Typed print frmViewMerge.txtSubject\n"
                   "set frmViewMerge.txtSubject ready\n"
                   "print frmViewMerge.txtSubject\n")
        self.assertTrue(self.running.wait_for_output("ready"))
        self.focused(MAIN)
        self.press("alt+j")
        use("type", "Typed")
        self.assertTrue(self.running.wait_for_output("Typed"))
        self.press("ctrl+q")
        self.assertEqual(self.running.finish().returncode, 0)

    def test_a_modal_dialog_at_the_end(self):
        self.start(program.OPEN_MERGE)
        self.focused(MERGE)
        main = use("search", "--onlyvisible", "--name", MAIN)[0]
        use("windowactivate", "--sync", main)
        self.close_all()
        self.left()

    def test_the_first_start_without_a_script(self):
        self.run_program()
        self.focused("wizard")
        self.close_all()
        self.left()


if __name__ == "__main__":
    Desk.program = program.program_from_arguments()
    unittest.main()
