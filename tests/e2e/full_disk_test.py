#!/usr/bin/python3
"""Files that cannot grow, as on a full disk: the program says so, and what is there stays whole."""

import unittest

import program
from counting_server import CountingServer
from program import ProgramTest

STORE_BOX = "The message store cannot be written:"
FILLING = "filling " * 400
SLOW = 'when frmStatus.lblCaption1 contains "no such text" wait 0\n'  # row by row, not by groups


class FullDisk(ProgramTest):
    def check_box(self, boxes: list[str], begin: str, end: str = "") -> None:
        self.assertEqual(len(boxes), 1, boxes)
        self.assertTrue(boxes[0].startswith(begin) and boxes[0].endswith(end), boxes)


class MergeRun(FullDisk):
    ROWS = 3000

    def test_merge_run(self):
        """The store's log grows to some 4 MB before the store itself grows."""
        self.make_campaign(self.ROWS, FILLING)
        for case, limit, watch in [
            ("nothing fits", 34_000, ""),
            ("log", 1_000_000, ""),
            ("log, row by row", 1_000_000, SLOW),
            ("store", 5_000_000, ""),
            ("store, row by row", 5_000_000, SLOW),
        ]:
            with self.subTest(case):
                home = self.home.copy(self.scratch / case)
                done = home.play("answers default\n" + watch + program.OPEN_MERGE +
                                 "press frmMerge.cmdStart\nprint boxes\n", "p.poc", limit=limit)
                self.check_box(self.boxes(self.good(done)), STORE_BOX)
                found = self.store(home).rows("Outbox", '"To", "Subject", "Body"')
                self.assertEqual(found, program.merged_rows(len(found), FILLING))
                self.assertLess(len(found), self.ROWS)


class Sending:
    """A send run in a folder of its own, with a mail server of its own."""

    def __init__(self, home: program.Home, server: CountingServer):
        self.home = home
        self.server = server
        self.send = f'set frmSettings.txtSMTPPort {server.port}\ncommand "Send All"\n'

    def start(self, message: int, room: int) -> None:
        """The store's log cannot grow by more than `room` once the server has accepted that
        message."""
        self.running = self.home.start(
            "answers default\n" + program.pause(1) + self.send + "print boxes\n", "p.poc")
        self.running.wait_for_pause(1)
        if message == 0:
            self.running.limit_files(self.home.log_size() + room)

        def before_answer(event: str, number: int) -> None:
            if event == "message" and number == message:
                self.running.limit_files(self.home.log_size() + room)

        self.server.before_answer = before_answer

    def start_again(self) -> None:
        self.server.before_answer = lambda event, number: None
        self.running = self.home.start(self.send, "p.poc")


class SendRun(FullDisk):
    MESSAGES = 60

    def setUp(self):
        super().setUp()
        self.make_campaign(self.MESSAGES, FILLING, program.MERGE.split("Open\n")[1])
        self.everybody = [program.address(i) for i in range(self.MESSAGES)]

    def sending(self, case: str) -> Sending:
        server = self.enterContext(CountingServer())
        return Sending(self.home.copy(self.scratch / case), server)

    def check_arrived(self, sending: Sending, in_doubt: list[str]) -> None:
        counts = sending.server.counts
        self.assertEqual(sorted(counts), sorted(self.everybody))
        self.assertIn([a for a, count in counts.items() if count > 1], [[], in_doubt])
        store = self.store(sending.home)
        self.assertEqual(store.rows("Outbox"), [])
        self.assertEqual(sorted(store.rows("Sent Items")), sorted(self.everybody))
        self.assertEqual(store.accepted(), [])

    def test_space_comes_back_after_the_program(self):
        """Only the message whose acceptance could not be recorded may be sent again."""
        last = self.MESSAGES
        rows = [("before the first message", 0, 0, True), ("in the middle", 20, 0, True),
                ("at the last message", last, 0, True), ("moving the rows", last, 30_000, False),
                ("in the middle of the move", last, 100_000, False)]
        cases = [(case, self.sending(case), message, room, stops)
                 for case, message, room, stops in rows]
        for _, sending, message, room, _ in cases:
            sending.start(message, room)
        for case, sending, message, _, stops in cases:
            with self.subTest(case):
                boxes = self.boxes(self.good(sending.running.finish()))
                self.assertEqual([box for box in boxes if box.startswith(STORE_BOX)],
                                 boxes[:1] if stops else [])
                self.assertEqual(list(sending.server.counts), self.everybody[:message])
        for _, sending, *_ in cases:
            sending.start_again()
        for case, sending, message, _, stops in cases:
            with self.subTest(case + ", again"):
                self.good(sending.running.finish())
                self.check_arrived(sending, self.everybody[message - 1 : message] if stops else [])


class OtherFiles(FullDisk):
    def play_limited(self, limit: int, script: str) -> list[str]:
        running = self.home.start(program.pause(1) + script, "p.poc")
        running.wait_for_pause(1)
        running.limit_files(limit)
        return self.boxes(self.good(running.finish()))

    def test_project(self):
        self.good(self.home.play("file p.poc\ncommand New\nset frmSettings.txtName Ana\n"
                                 "command Save\n"))
        project = self.home.folder / "p.poc"
        before = project.read_bytes()
        boxes = self.play_limited(
            len(before) + 1000, f"set frmSettings.txtName {'Anna' * 1000}\n"
            "answer ok\ncommand Save\nprint boxes\n")
        self.assertEqual(boxes, [f"The project file '{project}' could not be written."])
        self.assertEqual(project.read_bytes(), before)
        self.assertEqual(self.home.temporary_files(), [])

    def test_user_settings(self):
        self.good(self.home.play("file p.poc\ncommand New\n"))
        settings = self.home.folder / "registry.ini"
        before = settings.read_bytes()
        for limit in (0, len(before)):
            with self.subTest(limit):
                self.play_limited(
                    limit, "answers default\nfile a-longer-name.poc\ncommand SaveAs\n"
                    "command Email\nclose frmViewEmail\ncommand exit\n")
                self.assertEqual(settings.read_bytes(), before)
                self.assertEqual(self.home.temporary_files(), [])

    def test_first_start(self):
        """A folder in which no file can be filled: a clear end, no crash."""
        for limit in (0, 200, 20_000, 40_000):
            with self.subTest(limit):
                home = program.Home(self.program, self.scratch / f"new{limit}")
                home.folder.mkdir()
                done = home.play("answers default\nprint boxes\n", limit=limit)
                self.assertIn(done.returncode, (0, 1), done.stderr)

    def test_error_log(self):
        self.make_campaign(30, script=program.MERGE.split("Open\n")[1])
        log = self.home.folder / "p" / "errorlog.txt"
        with CountingServer() as server:
            server.refusal = "550 no"
            send = f'set frmSettings.txtSMTPPort {server.port}\ncommand "Send All"\nprint boxes\n'
            self.good(self.home.play("answers default\n" + send, "p.poc"))
            before = log.read_bytes()
            self.assertEqual(before.count(b"550 no"), 60)
            server.refusal = "550 no, never"
            running = self.home.start("answers default\n" + send, "p.poc")
            # The run takes its leave of the server just before it writes the log.
            server.before_answer = lambda event, number: running.limit_files(64)
            boxes = self.boxes(self.good(running.finish()))
        self.assertEqual(boxes, [f"The file '{log}' could not be written."])
        self.assertEqual(log.read_bytes(), before)


if __name__ == "__main__":
    FullDisk.program = program.program_from_arguments()
    unittest.main()
