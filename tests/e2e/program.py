"""What the end-to-end tests share: a program folder to run Mailvane in, and its mail store."""

import os
import pathlib
import resource
import select
import shutil
import sqlite3
import subprocess
import sys
import tempfile
import time
import unittest

WAIT = 120.0  # seconds; only a program that hangs needs them

# With this variable set, scripts are played in the real windows, and a person's close box ends them.
IN_WINDOWS = "MAILVANE_IN_WINDOWS" in os.environ
MANNER = [] if IN_WINDOWS else ["--headless"]
ENDING = "\nclose frmMain\n" if IN_WINDOWS else ""
# What Qt says of the platform without a screen, not of the program.
NOISE = ("This plugin does not support ", "QStandardPaths: XDG_RUNTIME_DIR not set")

MADE_PROJECT = """
file p.poc
command New
set frmSettings.chkSaveSentMessages 1
set frmSettings.txtSMTPServer 127.0.0.1
file r.db
command NewDatabase
set frmDataWizard.txtFile r.csv
answer ok "records imported"
press frmDataWizard.cmdFinish
command Merge
set frmViewMerge.txtFrom sender@example.com
set frmViewMerge.txtTo Email
set frmViewMerge.txtSubject "News for [Name]"
set frmViewMerge.txtBody "Dear [Name],\\n{filling}\\n"
file m.dmg
tool frmViewMerge Save
command Save
"""

OPEN_MERGE = """
command Merge
file m.dmg
tool frmViewMerge Open
tool frmViewMerge "Send Later"
"""

MERGE = OPEN_MERGE + """
press frmMerge.cmdStart
press frmMSGOutbox.cmdStart
"""


def program_from_arguments() -> pathlib.Path:
    return pathlib.Path(sys.argv.pop(1)).resolve()


def quoted(text: str) -> str:
    """The text as one word of a script."""
    for sign, escape in [("\\", "\\\\"), ('"', '\\"'), ("\r\n", "\\n"), ("\t", "\\t")]:
        text = text.replace(sign, escape)
    return f'"{text}"'


def pause(number: int) -> str:
    """Script lines at which the program stands still, until its output is read on: they print more
    than a pipe takes."""
    text = f"pause {number} " + "." * 400_000
    return (f"set frmSettings.txtAddHTMLHeader {quoted(text)}\n"
            "print frmSettings.txtAddHTMLHeader\n")


class Running:
    """A started program."""

    def __init__(self, command, folder, limit=None):
        def before_start():
            resource.setrlimit(resource.RLIMIT_FSIZE, (limit, resource.RLIM_INFINITY))

        # The test ignores SIGXFSZ, as Python does, and so does the program that it starts: a file
        # at its limit is a failed write, like a full disk.
        self.process = subprocess.Popen(
            command, cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
            preexec_fn=before_start if limit is not None else None, restore_signals=False)
        self.output = b""
        self.done: subprocess.CompletedProcess | None = None  # when it has been waited for

    def wait_for_output(self, text: str) -> bool:
        """False when the program ends, or the time, without having printed the text."""
        end = time.monotonic() + WAIT
        pipe = self.process.stdout.fileno()
        while text.encode() not in self.output:
            if not select.select([pipe], [], [], max(0.0, end - time.monotonic()))[0]:
                return False
            piece = os.read(pipe, 65536)
            if not piece:
                return False
            self.output += piece
        return True

    def wait_for_pause(self, number: int) -> None:
        if not self.wait_for_output(f"pause {number} "):
            raise AssertionError(f"no pause {number}: {self.finish()}")

    def limit_files(self, size: int) -> None:
        """No file of the program may be written beyond that size from now on."""
        resource.prlimit(self.process.pid, resource.RLIMIT_FSIZE, (size, resource.RLIM_INFINITY))

    def kill(self) -> None:
        self.process.kill()
        self.finish()

    def finish(self) -> subprocess.CompletedProcess:
        """Waits for the program's end."""
        if self.done:
            return self.done
        try:
            output, errors = self.process.communicate(timeout=WAIT)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.communicate()
            raise
        self.output += output
        said = [line for line in errors.decode("utf-8").splitlines(keepends=True)
                if not line.startswith(NOISE)]
        self.done = subprocess.CompletedProcess(
            self.process.args, self.process.returncode, self.output.decode("utf-8"), "".join(said))
        return self.done


class Home:
    """A program folder, and the scripts that are played in it."""

    def __init__(self, program: pathlib.Path, folder: pathlib.Path):
        self.program = program
        self.folder = folder
        self.started: list[Running] = []

    def copy(self, folder: pathlib.Path) -> "Home":
        shutil.copytree(self.folder, folder)
        copy = Home(self.program, folder)
        copy.started = self.started
        return copy

    def end_all(self) -> None:
        """For a test that has failed while programs ran."""
        for running in self.started:
            running.kill()

    def start(self, script: str, *arguments, limit=None) -> Running:
        path = self.folder / "t.script"
        path.write_text(script + ENDING, encoding="utf-8")
        command = [self.program, *MANNER, "--home", ".", "--script", path.name, *arguments]
        self.started.append(Running(command, self.folder, limit))
        return self.started[-1]

    def play(self, script: str, *arguments, limit=None) -> subprocess.CompletedProcess:
        return self.start(script, *arguments, limit=limit).finish()

    def log_size(self) -> int:
        """Of the mail store's log, which grows before the store itself does."""
        log = self.folder / "messages.dat-wal"
        return log.stat().st_size if log.exists() else 0

    def temporary_files(self) -> list[str]:
        return sorted(path.name for path in self.folder.rglob(".mailvane-*"))


def wait_until(condition) -> bool:
    """What the condition says at last; false when the time has passed."""
    end = time.monotonic() + WAIT
    while not (found := condition()) and time.monotonic() < end:
        time.sleep(0.005)
    return found


class ProgramTest(unittest.TestCase):
    """Each test has a fresh program folder, `home`."""

    program: pathlib.Path

    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.scratch = pathlib.Path(scratch.name)
        (self.scratch / "home").mkdir()
        self.home = Home(self.program, self.scratch / "home")
        self.addCleanup(self.home.end_all)

    def good(self, done: subprocess.CompletedProcess) -> list[str]:
        """What a script has printed that held to its end."""
        self.assertEqual((done.returncode, done.stderr), (0, ""), done.stdout)
        return done.stdout.splitlines()

    def make_campaign(self, rows: int, filling: str = "hello", script: str = "") -> None:
        """Project p.poc, database r.db and message m.dmg for so many recipients."""
        lines = [f"{address(i)},{name(i)}\n" for i in range(rows)]
        self.make_project("Email,Name\n" + "".join(lines), filling, script)

    def make_project(self, table: str, filling: str, script: str = "") -> None:
        """The same with the table that the delimited text holds."""
        (self.home.folder / "r.csv").write_text(table, encoding="utf-8")
        made = MADE_PROJECT.replace("{filling}", filling)
        self.good(self.home.play(made + script))

    def boxes(self, output: list[str]) -> list[str]:
        """The texts of the message boxes, out of what "print boxes" says."""
        lines = [line.split("\t") for line in output]
        return [line[3] for line in lines if line[0] == "message box"]

    def store(self, home: Home | None = None) -> "Store":
        """A look at the mail store, at a copy of it: opening one that a killed program has left
        would already mend it."""
        number = len(list(self.scratch.iterdir()))
        folder = self.scratch / f"store{number}"
        folder.mkdir()
        for path in (home or self.home).folder.glob("messages.dat*"):
            if not path.name.endswith(".lock"):
                shutil.copy(path, folder)
        store = Store(folder / "messages.dat")
        self.addCleanup(store.close)
        self.assertEqual(store.check(), "ok")
        return store


class Store:
    def __init__(self, path: pathlib.Path):
        self.connection = sqlite3.connect(path)

    def close(self) -> None:
        self.connection.close()

    def check(self) -> str:
        return self.connection.execute("PRAGMA integrity_check").fetchone()[0]

    def rows(self, folder: str, columns: str = '"To"') -> list:
        """In the order in which they came; a single column without its tuple."""
        found = self.connection.execute(f'SELECT {columns} FROM "{folder}" ORDER BY ID').fetchall()
        return [row[0] for row in found] if columns.count('"') == 2 else found

    def folders(self) -> list[str]:
        found = self.connection.execute("SELECT name FROM sqlite_schema WHERE type = 'table'")
        return sorted(row[0] for row in found.fetchall())

    def accepted(self) -> list[int]:
        """Messages in the Outbox that are known to be sent."""
        try:
            found = self.connection.execute("SELECT ID FROM MSysSentMessages").fetchall()
        except sqlite3.OperationalError:
            return []
        return [row[0] for row in found]


def address(i: int) -> str:
    return f"user{i}@example.com"


def name(i: int) -> str:
    return f"Friend {i}"


def merged_rows(count: int, filling: str = "hello") -> list[tuple[str, str, str]]:
    """To, Subject and Body of the first messages of make_campaign's merge."""
    return [(address(i), f"News for {name(i)}", f"Dear {name(i)},\r\n{filling}\r\n")
            for i in range(count)]
