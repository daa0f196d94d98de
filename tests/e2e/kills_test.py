#!/usr/bin/python3
"""Kills the program at random moments: nothing is lost, nothing is sent twice, no file is half."""

import collections
import os
import random
import shutil
import time
import unittest

import program
from counting_server import PIPELINING, CountingServer
from program import ProgramTest

SEED = int(os.environ.get("MAILVANE_SEED", "20240607"))


class Kills(ProgramTest):
    def setUp(self):
        super().setUp()
        print(f"{self.id()}: MAILVANE_SEED={SEED}", flush=True)
        self.random = random.Random(SEED)

    def start_time(self) -> float:
        """How long the program needs, at this moment, to come to its script."""
        begun = time.monotonic()
        self.good(self.home.play('print frmMain.sbStatusBar\n', "p.poc"))
        return time.monotonic() - begun


class KilledSending(Kills):
    MESSAGES = 500
    DELAY = 0.004

    def test_send_run(self):
        self.make_campaign(self.MESSAGES, script=program.MERGE.split("Open\n")[1])
        self.everybody = [program.address(i) for i in range(self.MESSAGES)]
        self.in_flight = collections.Counter()
        with CountingServer(self.DELAY) as self.server:
            whole_start = self.start_time()
            moments = [("start", self.random.uniform(0, 1.5) * whole_start) for _ in range(7)]
            moments += [("message", self.random.randint(1, 20)) for _ in range(14)]
            moments += [("cancelled", self.random.randint(5, 25)) for _ in range(5)]
            self.random.shuffle(moments)
            # The last run sends the rest and is killed while the rows move to Sent Items.
            moments += [("last", 0)] + [("start", whole_start * x) for x in (0.9, 1.1, 1.3)]
            for i, (kind, value) in enumerate(moments):
                with self.subTest(kill=i, kind=kind, value=value):
                    self.server.extensions = PIPELINING if i % 2 else ()
                    self.kill_at(kind, value)
                    self.check_store()
            self.finish()
        self.check_end()

    def script(self, cancel_at: int = 0) -> str:
        script = f"set frmSettings.txtSMTPPort {self.server.port}\n"
        if cancel_at:
            script += (f'when frmStatusEmail.lStatus contains "Sending message {cancel_at} of"'
                       " press frmStatusEmail.cmdCancel\n")
        return script + 'command "Send All"\n'

    def kill_at(self, kind: str, value: float) -> None:
        sessions = self.server.sessions
        before = len(sessions)
        running = self.home.start(self.script(value if kind == "cancelled" else 0), "p.poc")
        if kind == "start":
            time.sleep(value)
        elif kind == "message":
            self.assertTrue(self.server.wait_until(
                lambda: len(sessions) > before and len(sessions[-1].accepted) >= value))
            time.sleep(self.random.uniform(0, 2 * self.DELAY))
        elif kind == "cancelled":
            # The connection is left just before the rows move.
            self.assertTrue(self.server.wait_until(
                lambda: len(sessions) > before and self.server.open_sessions == 0))
            time.sleep(self.random.uniform(0, 0.02))
        else:
            self.assertTrue(self.server.wait_until(
                lambda: len(self.server.counts) == self.MESSAGES))
            time.sleep(self.random.uniform(self.DELAY, self.DELAY + 0.02))
        running.kill()
        self.note_in_flight(before)

    def note_in_flight(self, before: int) -> None:
        """Of each session that the last run has had, when the server has read all of it."""
        self.assertTrue(self.server.wait_until(lambda: self.server.open_sessions == 0))
        last = [s.in_flight for s in self.server.sessions[before:] if s.in_flight]
        self.assertLessEqual(len(last), 1)
        self.in_flight.update(last)

    def check_store(self) -> None:
        store = self.store()
        outbox = store.rows("Outbox")
        held = outbox + store.rows("Sent Items")
        self.assertEqual(sorted(held), sorted(self.everybody))
        accepted = set(self.server.counts)
        self.assertEqual([a for a in store.rows("Sent Items") if a not in accepted], [])

    def finish(self) -> None:
        before = len(self.server.sessions)
        done = self.home.play(self.script() + "print frmMain.sbStatusBar\n", "p.poc")
        self.note_in_flight(before)
        self.good(done)

    def check_end(self) -> None:
        self.assertEqual([a for a in self.everybody if a not in self.server.counts], [])
        doubles = self.server.counts - collections.Counter(self.everybody)
        self.assertEqual(doubles - self.in_flight, collections.Counter())
        print(f"  {len(self.server.sessions)} sessions, {doubles.total()} messages came twice "
              f"of {self.in_flight.total()} in flight at a kill")
        store = self.store()
        self.assertEqual(store.rows("Outbox"), [])
        self.assertEqual(sorted(store.rows("Sent Items", '"To", "Subject", "Body"')),
                         sorted(program.merged_rows(self.MESSAGES)))
        self.assertEqual(store.accepted(), [])


class KilledMerging(Kills):
    ROWS = 20000
    # What the dialog shows: the script prints the one before the run and the other behind it.
    BEGUN, ENDED = f"Records: {ROWS}\n", "Send to list: r\n"

    def test_merge_run(self):
        self.make_campaign(self.ROWS)
        start, run = self.start_time(), self.run_time()
        print(f"  {run:.2f} s a run; rows at the kills:", end="")
        kills = [("start", self.random.uniform(0, 1.5) * start) for _ in range(3)]
        kills += [("run", self.random.uniform(0, run)) for _ in range(10)]
        kills += [("row", self.random.randint(1, 5000)) for _ in range(5)]
        kills += [("end", 0), ("end", self.random.uniform(0, 0.02))]
        for i, (kind, value) in enumerate(kills):
            with self.subTest(kill=i, kind=kind, value=value):
                home = self.home.copy(self.scratch / f"killed{i}")
                output = self.kill_at(home, kind, value)
                self.check_rows(home, output)
                if kind == "row":
                    self.check_whole_run(home)
                shutil.rmtree(home.folder)
        print()

    def script(self, row: int) -> str:
        """A watched run stores row by row. The watch ends when it has seen its row, and from there
        on the run goes by groups."""
        return (program.OPEN_MERGE +
                f'when frmStatus.lblCaption1 contains "Generating message {row} of"'
                " print frmStatus.lblCaption1\n"
                "print frmMerge.Label2\npress frmMerge.cmdStart\nprint frmMerge.Label1\n")

    def run_time(self) -> float:
        """How long the run takes, at this moment, behind its first row."""
        home = self.home.copy(self.scratch / "whole")
        running = home.start(self.script(1), "p.poc")
        self.assertTrue(running.wait_for_output("Generating"), running.output)
        begun = time.monotonic()
        self.assertTrue(running.wait_for_output(self.ENDED), running.output)
        ended = time.monotonic()
        running.kill()
        return ended - begun

    def kill_at(self, home: program.Home, kind: str, value: float) -> str:
        """What the script has printed until then."""
        running = home.start(self.script(value if kind == "row" else 1) + "wait 60\n", "p.poc")
        mark = self.ENDED if kind == "end" else "Generating"
        if kind != "start":
            self.assertTrue(running.wait_for_output(mark), running.output)
        time.sleep(self.random.uniform(0, 0.01) if kind == "row" else value)
        running.kill()
        return running.output.decode("utf-8")

    def check_rows(self, home: program.Home, output: str) -> None:
        found = self.store(home).rows("Outbox", '"To", "Subject", "Body"')
        count = len(found)
        print(f"  {count}", end="")
        self.assertEqual(found, program.merged_rows(count))
        told = self.good(home.play("print frmMain.sbStatusBar\n"))[0]
        text = (f"The last merge run was interrupted: {count} of {self.ROWS} messages are in the "
                "Outbox.")
        if self.BEGUN not in output:
            self.assertEqual((told, count), ("", 0))
        elif self.ENDED in output:
            self.assertEqual((told, count), ("", self.ROWS))
        elif 0 < count < self.ROWS or told:
            self.assertEqual(told, text)

    def check_whole_run(self, home: program.Home) -> None:
        """A run that comes to its end is no longer told of."""
        self.good(home.play(program.MERGE, "p.poc"))
        self.assertEqual(self.good(home.play("print frmMain.sbStatusBar\n")), [""])


class KilledSaving(Kills):
    KILLS = 50

    def test_project_save(self):
        self.good(self.home.play("file p.poc\ncommand New\n"))
        settings = [self.settings(letter) for letter in "ab"]
        poc = self.home.folder / "p.poc"
        whole = []
        for one in settings:
            self.good(self.home.play(one, "p.poc"))
            whole.append(poc.read_bytes())
        self.assertNotEqual(*whole)
        found = collections.Counter()
        for i in range(self.KILLS):
            running = self.home.start(
                "print frmSettings.txtWrap\n" + "".join(settings * 20), "p.poc")
            self.assertTrue(running.wait_for_output("65"))
            time.sleep(self.random.uniform(0, 0.05))
            running.kill()
            self.assertIn(poc.read_bytes(), whole, f"kill {i}")
            found[poc.read_bytes()] += 1
        self.assertEqual(len(found), 2)
        self.good(self.home.play(settings[0], "p.poc"))
        self.assertEqual(self.home.temporary_files(), [])

    def settings(self, letter: str) -> str:
        return "".join(
            f"set frmSettings.{name} {letter * 10000}\n"
            for name in ("txtName", "txtReplyTo", "txtSignature", "txtSMTPServer")
        ) + "command Save\n"


class KilledFirstStart(Kills):
    KILLS = 15

    def test_first_start(self):
        """The next start has all files and folders, whole."""
        begun = time.monotonic()
        self.good(self.home.play(""))
        start = time.monotonic() - begun
        whole = self.files(self.home)
        self.assertGreater(len(whole), 4)
        for i in range(self.KILLS):
            with self.subTest(kill=i):
                home = program.Home(self.program, self.scratch / f"new{i}")
                home.folder.mkdir()
                running = home.start("")
                time.sleep(self.random.uniform(0, start))
                running.kill()
                self.good(home.play('command Email\nset frmViewEmail.cmbFolder "Sent Items"\n'))
                self.assertEqual(self.files(home), whole)
                self.assertEqual(self.store(home).folders(), self.store().folders())

    def files(self, home: program.Home) -> dict[str, bytes]:
        """Those that come with the program."""
        paths = [path for path in home.folder.rglob("*")
                 if path.is_file() and path.suffix in (".mp", ".msg", ".mg", ".html")]
        return {str(path.relative_to(home.folder)): path.read_bytes() for path in paths}


if __name__ == "__main__":
    Kills.program = program.program_from_arguments()
    unittest.main()
