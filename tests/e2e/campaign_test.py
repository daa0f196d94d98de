#!/usr/bin/python3
"""Plays the sample campaigns and compares every received message with its row."""

import csv
import email
import email.policy
import pathlib
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "scripts"))
import sample_campaign as sample  # noqa: E402

import program  # noqa: E402

PROGRAM = program.program_from_arguments()


def received(folder: pathlib.Path) -> list[email.message.EmailMessage]:
    return [
        email.message_from_bytes(file.read_bytes(), policy=email.policy.default)
        for file in sorted((folder / "received" / "new").iterdir())
    ]


def recipients() -> list[dict[str, str]]:
    with open(sample.EXAMPLES / "recipients.csv", encoding="utf-8", newline="") as file:
        return list(csv.DictReader(file))


class Campaigns(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = pathlib.Path(scratch.name) / "sample"
        sample.prepare(self.folder)

    def play(self, server, script, *arguments):
        process = sample.play(PROGRAM, script, self.folder, server.port, *program.MANNER,
                              *arguments, ending=program.ENDING)
        self.assertEqual(process.wait(timeout=240), 0)

    def check_message(self, message, row):
        self.assertEqual(message.defects, [])
        self.assertEqual(message["To"], row["Email"])
        self.assertEqual(message["X-RcptTo"], row["Email"])
        self.assertEqual(message["From"].addresses[0].addr_spec, "sender@example.com")
        self.assertEqual(message["From"].addresses[0].display_name, "Sample Sender")
        self.assertEqual(message["Reply-To"], "replies@example.com")
        subject = f"News for {row['First Name']} from {row['City']}"
        self.assertEqual(message["Subject"].strip(), subject.strip())
        self.assertIsNotNone(message["Date"].datetime)
        self.assertEqual(len(message.get_all("Message-ID")), 1)
        self.assertEqual(message["MIME-Version"], "1.0")
        body = message.get_content().replace("\r\n", "\n")
        self.assertEqual(
            body.rstrip("\n"),
            f"Dear {row['First Name']} {row['Last Name']},\n\n"
            f"you have been our customer {row['Customer']} since {row['Since']}.\n"
            f"Here is what is new for {row['Company']}.\n\n"
            "Kind regards\nSample Sender",
        )

    def test_personal_then_bulk(self):
        with sample.MailServer(self.folder / "received") as server:
            self.play(server, "campaign.script")
        messages = {message["X-RcptTo"]: message for message in received(self.folder)}
        rows = recipients()
        self.assertEqual(len(messages), len(rows))
        for row in rows:
            with self.subTest(row["Email"]):
                self.check_message(messages[row["Email"]], row)
        ids = {message["Message-ID"] for message in messages.values()}
        self.assertEqual(len(ids), len(rows))

        sample.shutil.move(self.folder / "received", self.folder / "personal")
        with sample.MailServer(self.folder / "received") as server:
            self.play(server, "bulk.script", "campaign.poc")
        self.check_bulk(received(self.folder), rows)

    def check_bulk(self, messages, rows):
        """A packet's message reaches the earlier packets too; addresses joined between two packets
        reach nobody."""
        addresses = [row["Email"] for row in rows]
        self.assertEqual(len(messages), 4)
        for message in messages:
            self.assertEqual(message["To"], "friends@example.com")
            self.assertIsNone(message["Bcc"])
            self.assertEqual(message.get_content().split("\n")[0].strip(), "Dear friends,")
        reached = sorted((m["X-RcptTo"].replace(" ", "").split(",") for m in messages), key=len)
        for packets, found in enumerate(reached, 1):
            joined = {i for border in range(50, 50 * packets, 50) for i in (border - 1, border)}
            expected = [a for i, a in enumerate(addresses[: 50 * packets]) if i not in joined]
            self.assertEqual(found, ["friends@example.com", *expected])


if __name__ == "__main__":
    unittest.main()
