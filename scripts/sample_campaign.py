#!/usr/bin/python3
"""Plays examples/campaign.script against a mail server on this machine and tells what happened."""

import argparse
import pathlib
import shutil
import socket
import sqlite3
import subprocess
import sys
import time

from aiosmtpd.controller import Controller
from aiosmtpd.handlers import Mailbox

EXAMPLES = pathlib.Path(__file__).resolve().parent.parent / "examples"
SCRIPT_PORT = "8025"


def free_port() -> int:
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


class MailServer:
    """A mail server on loopback that files what it accepts in a mail folder."""

    def __init__(self, folder: pathlib.Path):
        self.folder = folder
        self.controller = Controller(Mailbox(str(folder)), hostname="127.0.0.1", port=free_port())

    def __enter__(self):
        self.controller.start()
        return self

    def __exit__(self, *_):
        self.controller.stop()

    @property
    def port(self) -> int:
        return self.controller.port

    def count(self) -> int:
        return len(list((self.folder / "new").iterdir()))


def prepare(folder: pathlib.Path) -> None:
    """A fresh folder with the sample's files, in place of one that an earlier run left."""
    if folder.exists():
        if not (folder / "recipients.csv").exists():
            sys.exit(f"{folder} is not a sample folder; it stays as it is.")
        shutil.rmtree(folder)
    folder.mkdir(parents=True)
    shutil.copy(EXAMPLES / "recipients.csv", folder)


def play(program: pathlib.Path, script: str, folder: pathlib.Path, port: int, *arguments: str,
         ending: str = ""):
    """Starts the program on a script of examples/, with the server's port in it."""
    text = (EXAMPLES / script).read_text(encoding="utf-8").replace(SCRIPT_PORT, str(port))
    (folder / script).write_text(text + ending, encoding="utf-8")
    command = [str(program), "--home", ".", "--script", script, *arguments]
    return subprocess.Popen(command, cwd=folder)


def rows(folder: pathlib.Path, table: str) -> int:
    with sqlite3.connect(folder / "messages.dat") as store:
        return store.execute(f'SELECT count(*) FROM "{table}"').fetchone()[0]


def show_progress(process: subprocess.Popen, server: MailServer) -> None:
    said = None
    while process.poll() is None:
        received = server.count()
        if received != said:
            print(f"\r  accepted by the server: {received}", end="", flush=True)
            said = received
        time.sleep(0.1)
    print(f"\r  accepted by the server: {server.count()}")


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("program", type=pathlib.Path)
    parser.add_argument("folder", type=pathlib.Path)
    arguments = parser.parse_args()
    folder = arguments.folder.resolve()
    prepare(folder)
    with MailServer(folder / "received") as server:
        print("The sample campaign: 200 recipients, one message each, sent to this machine only.")
        process = play(arguments.program.resolve(), "campaign.script", folder, server.port,
                       "--headless")
        show_progress(process, server)
        accepted = server.count()
    failed = rows(folder, "Outbox")
    print(f"Generated: {rows(folder, 'Sent Items') + failed}")
    print(f"Accepted:  {accepted}")
    print(f"Failed:    {failed}")
    print(f"The received messages lie in {folder / 'received'}")
    if accepted:
        first = next(iter(sorted((folder / "received" / "new").iterdir())))
        print(f"The first one:\n\n{first.read_text(encoding='utf-8', errors='replace')}")
    return process.returncode


if __name__ == "__main__":
    sys.exit(main())
