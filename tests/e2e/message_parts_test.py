#!/usr/bin/python3
"""Every form of a message comes back as it was written, in the eyes of two mail readers."""

import email
import email.policy
import itertools
import sqlite3
import unittest

import gi
import program
from mail_servers import MailServer

gi.require_version("GMime", "3.0")
from gi.repository import GMime  # noqa: E402

TEXTS = {"ASCII": "Dear Ann,\r\n.\r\nyours", "UTF-8": "Žiga\r\nčaj ☕", "long": "x" * 2000,
         "boundary": "a\r\n--abcdfwefjsdvsdfg\r\nb\r\n--abcdfwefjsdvsdfg--\r\nc"}
FILE = bytes(range(256)) * 3
CASES = list(itertools.product(("text", "html", "text and html"), TEXTS, (False, True)))


def html_of(text: str) -> str:
    return f"<p>{text}</p>"


def written(kind: str, text: str) -> str:
    if kind == "text":
        return text
    return html_of(text) if kind == "html" else f"---\r\n{text}<br><br>\r\n{html_of(text)}"


def read_by_python(content: bytes):
    message = email.message_from_bytes(content, policy=email.policy.default)
    text, *files = message.iter_parts() if message.is_multipart() else [message]
    return (text.get_content_type(), text.get_content(),
            [(file.get_filename(), file.get_content()) for file in files])


def read_by_gmime(content: bytes):
    stream = GMime.StreamMem.new_with_buffer(content)
    whole = GMime.Parser.new_with_stream(stream).construct_message(None).get_mime_part()
    parts = [whole]
    if isinstance(whole, GMime.Multipart):
        parts = [whole.get_part(i) for i in range(whole.get_count())]
    text, *files = parts

    def bytes_of(part) -> bytes:
        stream = GMime.StreamMem.new()
        part.get_content().write_to_stream(stream)
        return bytes(stream.get_byte_array())

    return (text.get_content_type().get_mime_type(), text.get_text(),
            [(file.get_filename(), bytes_of(file)) for file in files])


class MessageParts(program.ProgramTest):
    def test_every_form(self):
        GMime.init()
        self.make_campaign(len(CASES), script=program.MERGE.split("Open\n")[1])
        attached = self.home.folder / "a.bin"
        attached.write_bytes(FILE)
        store = sqlite3.connect(self.home.folder / "messages.dat")
        for i, (kind, name, with_file) in enumerate(CASES):
            html = kind != "text"
            values = ("" if kind == "html" else TEXTS[name], "html" if html else "text",
                      "page.html" if html else "", html_of(TEXTS[name]) if html else "",
                      str(attached) if with_file else "", program.address(i))
            store.execute('UPDATE "Outbox" SET Body = ?, ContentType = ?, HTML = ?, HTMLCode = ?, '
                          'Attach = ? WHERE "To" = ?', values)
        store.commit()
        store.close()
        with MailServer() as server:
            self.good(self.home.play("answers default\n"
                                     f"set frmSettings.txtSMTPPort {server.port}\n"
                                     'command "Send All"\n', "p.poc"))
        self.assertEqual(len(server.taken), len(CASES))
        for (kind, name, with_file), (_, content, _) in zip(CASES, server.taken):
            expected = ("text/plain" if kind == "text" else "text/html",
                        written(kind, TEXTS[name]).replace("\r\n", "\n"),
                        [("a.bin", FILE)] if with_file else [])
            self.assertNotIn(b"\r\nReply-To: \r\n", content)
            for reader in (read_by_python, read_by_gmime):
                with self.subTest(kind, text=name, file=with_file, reader=reader.__name__):
                    media, text, files = reader(content)
                    text = text.replace("\r\n", "\n")
                    if not with_file:
                        text = text.removesuffix("\n")  # the end of the message
                    self.assertEqual((media, text, files), expected)


if __name__ == "__main__":
    MessageParts.program = program.program_from_arguments()
    unittest.main(warnings="ignore")
