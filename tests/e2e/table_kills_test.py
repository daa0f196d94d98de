#!/usr/bin/python3
"""Kills the program while it changes the recipients database: every table stays whole."""

import shutil
import sqlite3
import time
import unittest

import program
from kills_test import Kills

# The project names the database of the home that it was made in.
DATABASE = "set frmSettings.txtAccessDBPath r.db\ncommand Database\n"
STARTED = "print frmViewDatabase.cmbTable\n"
ENDED = "print frmViewDatabase.Grid1\n"


class TableKills(Kills):
    ROWS = 100_000
    KILLS = 5

    def setUp(self):
        super().setUp()
        self.make_campaign(1)
        self.fill()

    def fill(self) -> None:
        with sqlite3.connect(self.home.folder / "r.db") as database:
            database.execute("DELETE FROM r")
            database.executemany("INSERT INTO r (Email, Name) VALUES (?, ?)",
                                 map(self.row, range(self.ROWS)))
            database.execute("CREATE INDEX ByEmail ON r (Email)")
        database.close()

    def row(self, i: int) -> tuple[str, str]:
        return program.address(i), program.name(i)

    def kill_all(self, script: str, check) -> None:
        """Plays the script whole, and then several times with an end at a random moment; `check`
        gets the database of each and whether the script had come to its end."""
        took = None
        for i in range(self.KILLS + 1):
            home = self.home.copy(self.scratch / f"run{i}")
            running = home.start(DATABASE + STARTED + script + ENDED, "p.poc")
            self.assertTrue(running.wait_for_output("r\n"), running.output)
            begun = time.monotonic()
            if took is None:
                self.good(running.finish())
                took = time.monotonic() - begun
                check(self.look(home), True)
                continue
            moment = self.random.uniform(0, took)
            with self.subTest(kill=i, moment=moment, whole=took):
                time.sleep(moment)
                running.kill()
                check(self.look(home), False)
                self.good(home.play(DATABASE + STARTED, "p.poc"))
                self.assertEqual(list(home.folder.rglob("*mailvane-new*")), [])
                shutil.rmtree(home.folder)

    def look(self, home: program.Home) -> sqlite3.Connection:
        """At a copy: opening the file would already mend it."""
        folder = self.scratch / f"look{len(list(self.scratch.iterdir()))}"
        folder.mkdir()
        for path in home.folder.glob("r.db*"):
            if not path.name.endswith(".lock"):
                shutil.copy(path, folder)
        database = sqlite3.connect(folder / "r.db")
        self.addCleanup(database.close)
        self.assertEqual(database.execute("PRAGMA integrity_check").fetchone()[0], "ok")
        return database

    def rows(self, database: sqlite3.Connection, table: str, columns: str) -> list:
        return database.execute(f'SELECT {columns} FROM "{table}" ORDER BY rowid').fetchall()

    def tables(self, database: sqlite3.Connection) -> list[str]:
        found = database.execute("SELECT name FROM sqlite_schema WHERE type = 'table'"
                                 " AND name NOT LIKE 'sqlite%' ORDER BY name")
        return [row[0] for row in found]

    def check_source(self, database: sqlite3.Connection, columns: str = "Email, Name") -> None:
        self.assertEqual(self.rows(database, "r", columns),
                         [self.row(i)[:columns.count(",") + 1] for i in range(self.ROWS)])

    def test_copies_of_tables(self):
        def check(database, ended):
            self.check_source(database)
            copies = [table for table in self.tables(database) if table != "r"]
            self.assertEqual(len(copies), 2) if ended else self.assertLessEqual(len(copies), 2)
            for copy in copies:
                self.assertEqual(self.rows(database, copy, "Email, Name"),
                                 self.rows(database, "r", "Email, Name"))

        self.kill_all("".join(
            f'input {name}\nanswer ok "Successfully"\npress frmViewDatabase.cmdBackup\n'
            for name in ("copy1", "copy2")), check)

    def test_copies_of_rows(self):
        def check(database, ended):
            self.check_source(database)
            copied = self.rows(database, "some", "Email, Name") if "some" in self.tables(
                database) else []
            self.assertEqual(copied, [self.row(i) for i in range(len(copied))])
            if ended:
                self.assertEqual(len(copied), self.ROWS)

        self.kill_all("select frmViewDatabase.Grid1 all\ninput some\nanswer ok successfully\n"
                      "press frmViewDatabase.cmdCopyToNew\n", check)

    def test_imports(self):
        with open(self.home.folder / "more.csv", "w", encoding="utf-8") as file:
            file.write("Email,Name\n")
            file.writelines(f"{email},{name}\n" for email, name in map(self.row, range(self.ROWS)))

        def check(database, ended):
            self.check_source(database)
            self.assertIn(self.tables(database), [["r"], ["more", "r"]])
            if "more" in self.tables(database):
                self.assertEqual(self.rows(database, "more", "Email, Name"),
                                 self.rows(database, "r", "Email, Name"))
            else:
                self.assertFalse(ended)

        self.kill_all('command ImportData\nset frmDataWizard.txtFile more.csv\n'
                      'answer ok "records imported"\npress frmDataWizard.cmdFinish\n', check)

    def test_changes_of_the_structure(self):
        def check(database, ended):
            found = [column[1] for column in database.execute("PRAGMA table_info(r)")]
            self.assertIn(found, [["Email", "Name"], ["Email", "Name", "Full"],
                                  ["Email", "Full"]])
            self.check_source(database, "Email, Name" if "Name" in found else "Email")
            indexes = [index[1] for index in database.execute("PRAGMA index_list(r)")]
            self.assertEqual(indexes, ["ByEmail"])
            if ended:
                self.assertEqual(found, ["Email", "Full"])

        self.kill_all(
            "press frmViewDatabase.cmdEditTable\nset frmDatabaseTable.txtFieldName Full\n"
            "set frmDatabaseTable.cmbFieldDataType Text\npress frmDatabaseTable.cmdAddField\n"
            "set frmDatabaseTable.lstFields #1\nanswer yes deleted\n"
            "press frmDatabaseTable.cmdDelete\npress frmDatabaseTable.cmdOk\n", check)

    def test_compactions(self):
        def check(database, ended):
            self.check_source(database)
            self.assertEqual(self.tables(database), ["r"])

        self.kill_all("press frmViewDatabase.cmdCompact\nanswer ok Successfully\n"
                      "press frmMSGCompact.cmdStart\n", check)


if __name__ == "__main__":
    TableKills.program = program.program_from_arguments()
    unittest.main()
