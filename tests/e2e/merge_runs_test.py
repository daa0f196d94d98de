#!/usr/bin/python3
"""Merge runs of every kind, from the dialog to a mail server: what arrives is compared with the
rows of the table."""

import contextlib
import csv
import email
import email.policy
import io
import random
import sqlite3
import typing
import unittest

import program
from mail_servers import MailServer


class Row(typing.NamedTuple):
    Email: str
    Name: str
    File: str
    Since: str  # m/d/yyyy; "" is Null in the table


ROWS = [
    Row("ann@example.com", "Ann", "plain", "1/31/2024"),
    Row("bob@example.com", "Bjørn O'Hara", "two words", "2/1/2024"),
    Row("cora@example.com", 'Cora "C"', "missing", ""),
    Row("dan@example.com", "Dan, the 4th", "Zoë Ω", "2/15/2024"),
    Row("eve@example.com", "Eve", "50% #1 (a)", "3/1/2024"),
    Row("finn@example.com", "Finn", "empty", "2/29/2024"),
    Row("gus@example.com", "Gus", "missing as well", "2/2/2024"),
    Row("hal@example.com", "Hal", "long", ""),
]
SIZES = {"plain": 57, "two words": 1, "Zoë Ω": 58, "50% #1 (a)": 3000, "empty": 0, "long": 300_000}

MESSAGE = """
set frmSettings.txtSMTPPort {port}
command Merge
file m.dmg
tool frmViewMerge Open
"""

# The mail goes out when the notice has been read.
SEND_NOW = """
tool frmViewMerge "Send Message"
press frmMerge.cmdStart
press frmMSGOutbox.cmdStart
"""

SEND_ALL = 'answers default\ncommand "Send All"\n'


def run(options: str) -> str:
    return (f'tool frmViewMerge "Send Later"\n{options}\npress frmMerge.cmdStart\n'
            "press frmMSGOutbox.cmdStart\n")


def rows_from(first: int, last: int) -> str:
    return (f"set frmMerge.chkFractional 1\nset frmMerge.txtFractional1 {first}\n"
            f"set frmMerge.txtFractional2 {last}\n")


def dates(first: str, last: str) -> str:
    return ("set frmMerge.cmbField Since\nset frmMerge.chkDate 1\n"
            f"set frmMerge.Date1 {first}\nset frmMerge.Date2 {last}\n")


def most(number: int) -> str:
    return f"set frmMerge.chkMax 1\nset frmMerge.txtMax {number}\n"


def body_of(row: Row) -> str:
    return f"Dear {row.Name},\nsince {row.Since}."


def text_of(part: email.message.EmailMessage) -> str:
    return part.get_content().replace("\r\n", "\n").rstrip("\n")


class MergeRuns(program.ProgramTest):
    def setUp(self):
        super().setUp()
        self.server = self.enterContext(MailServer())
        table = io.StringIO()
        csv.writer(table).writerows([Row._fields, *ROWS])
        self.make_project(table.getvalue(), "since [Since].")

    def play(self, script: str) -> list[str]:
        message = MESSAGE.replace("{port}", str(self.server.port))
        return self.good(self.home.play(message + script, "p.poc"))

    def taken(self) -> list[tuple[list[str], email.message.EmailMessage]]:
        """What has come since the last call: recipients and message."""
        taken = [(recipients, email.message_from_bytes(content, policy=email.policy.default))
                 for recipients, content, _ in self.server.taken]
        self.server.taken.clear()
        for _, message in taken:
            self.assertEqual(message.defects, [])
        return taken

    def check_received(self, rows: list[Row]) -> None:
        """One message for each of them, in their order, and no other."""
        found = [(recipients, message["To"], message["Subject"], text_of(message))
                 for recipients, message in self.taken()]
        self.assertEqual(found, [([row.Email], row.Email, f"News for {row.Name}", body_of(row))
                                 for row in rows])

    def check_mailing_tables(self, expected: list[list[Row]]) -> None:
        """The tables that runs have made hold these rows, whole. They are removed."""
        with contextlib.closing(sqlite3.connect(self.home.folder / "r.db")) as database:
            source = {row[0]: row for row in database.execute('SELECT * FROM "r"')}
            names = [name for name, in database.execute(
                "SELECT name FROM sqlite_schema WHERE type = 'table' AND name LIKE 'r %'")]
            found = [database.execute(f'SELECT * FROM "{name}" ORDER BY rowid').fetchall()
                     for name in names]
            for name in names:
                database.execute(f'DROP TABLE "{name}"')
        self.assertEqual(found, [[source[row.Email] for row in rows] for rows in expected])

    def write_files(self, kind: str, contents: dict[str, bytes]) -> str:
        """The path with a tag that stands for them. A file of that very name is there to be chosen
        by it."""
        folder = self.home.folder / kind
        folder.mkdir()
        for name, content in (contents | {"[File]": b"of nobody"}).items():
            (folder / f"{name}.{kind}").write_bytes(content)
        return f"file {program.quoted(str(folder / f'[File].{kind}'))}\n"

    def test_an_attachment_for_each_row(self):
        generator = random.Random(7)
        contents = {name: generator.randbytes(size) for name, size in SIZES.items()}
        choose = self.write_files("bin", contents) + 'tool frmViewMerge "File Attachment"\n'
        self.play(choose + SEND_NOW)
        taken = self.taken()
        self.assertEqual([recipients for recipients, _ in taken], [[row.Email] for row in ROWS])
        for row, (_, message) in zip(ROWS, taken):
            with self.subTest(row.File):
                text, *attachments = message.iter_parts() if message.is_multipart() else [message]
                self.assertEqual(text_of(text), body_of(row))
                self.assertEqual({part.get_filename(): part.get_content() for part in attachments},
                                 {f"{name}.bin": content for name, content in contents.items()
                                  if name == row.File})

    def test_an_html_file_for_each_row(self):
        html = "<h1>{}</h1>\n<p>[name], [NAME]: since [Since], [Nobody]. [Email]</p>"
        pages = {name: html.format(name).encode("utf-8") for name in SIZES if SIZES[name]}
        choose = self.write_files("html", pages) + "tool frmViewMerge HTML\n"
        self.play(choose + SEND_NOW)
        taken = self.taken()
        self.assertEqual([recipients for recipients, _ in taken], [[row.Email] for row in ROWS])
        for row, (_, message) in zip(ROWS, taken):
            with self.subTest(row.File):
                self.assertEqual(message["Subject"], f"News for {row.Name}")
                if row.File not in pages:
                    self.assertEqual(message.get_content_type(), "text/plain")
                    self.assertEqual(text_of(message), body_of(row))
                    continue
                self.assertEqual(message.get_content_type(), "text/html")
                page = (f"<h1>{row.File}</h1>\n<p>{row.Name}, {row.Name}: since {row.Since}, "
                        f"[Nobody]. {row.Email}</p>")
                self.assertEqual(text_of(message), f"---\n{body_of(row)}\n<br><br>\n{page}")

    def test_narrowed_runs_and_their_mailing_tables(self):
        runs = [
            ("rows of a maximum", most(4) + rows_from(3, 4), ROWS[2:4]),
            ("dates, both ends with them", dates("2/1/2024", "3/1/2024"),
             [ROWS[i] for i in (1, 3, 4, 5, 6)]),
            ("rows of the dates", dates("2/1/2024", "2/29/2024") + rows_from(2, 3),
             [ROWS[3], ROWS[5]]),
            ("dates of a maximum", most(5) + dates("2/1/2024", "12/31/2024"),
             [ROWS[i] for i in (1, 3, 4)]),
        ]
        for kind, options, rows in runs:
            with self.subTest(kind):
                self.play(run("set frmMerge.chkCreate 1\n" + options))
                self.check_mailing_tables([rows])
        self.play(SEND_ALL)
        self.check_received([row for *_, rows in runs for row in rows])


if __name__ == "__main__":
    MergeRuns.program = program.program_from_arguments()
    unittest.main()
