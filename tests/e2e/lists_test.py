#!/usr/bin/python3
"""What a user does with a list, from its file to paper, as one script in the real windows."""

import sqlite3
import unittest

import program
from program import ProgramTest

PEOPLE = """Email;Name;Code;Since
cora@example.com;Cora;00123;1/31/2024
ann@example.com;"Ann; the first";00007;2/29/2024
bob@example.com;Bjørn;00450;12/1/2023
dan@example.com;;00001;5/5/2025
"""

STORY = """
file p.poc
command New
file people.db
command NewDatabase
set frmDataWizard.txtFile people.csv
answer ok "4 records imported into the 'people' table."
press frmDataWizard.cmdFinish
expect frmSettings.cmbAccessTable people
command Database
expect-count frmViewDatabase.Grid1 4
tool frmViewDatabase "Sort Ascending"
row frmViewDatabase.Grid1 1
select frmViewDatabase.Grid1 1 2
input first
answer ok "Records are successfully copied to the 'first' table."
tool frmViewDatabase "Copy selected records to new table"
input Town
tool frmViewDatabase "New Column"
select frmViewDatabase.Grid1 4
tool frmViewDatabase Delete
answer ok "1 record is successfully deleted from the 'people' table."
press frmMSGDeleteDatabase.cmdYes
expect-count frmViewDatabase.Grid1 3
answer ok "Successfully"
tool frmViewDatabase Compact
press frmMSGCompact.cmdStart
expect-count frmViewDatabase.Grid1 3
tool frmViewDatabase Print
set frmDatabasePrint.chkPrint 0
file list.pdf
press frmDatabasePrint.cmdAdd
command ExportData
set frmDataWizard.txtFile out.csv
answer ok "records"
press frmDataWizard.cmdFinish
command Save
"""


class Lists(ProgramTest):
    def test_from_file_to_paper(self):
        folder = self.home.folder
        (folder / "people.csv").write_text(PEOPLE, encoding="utf-8")
        self.good(self.home.play(STORY))
        with sqlite3.connect(folder / "people.db") as database:
            rows = database.execute('SELECT * FROM "people" ORDER BY Email').fetchall()
            self.assertEqual([row[:4] for row in rows], [
                ("ann@example.com", "Ann; the first", "00007", "2024-02-29 00:00:00"),
                ("bob@example.com", "Bjørn", "00450", "2023-12-01 00:00:00"),
                ("cora@example.com", "Cora", "00123", "2024-01-31 00:00:00")])
            copied = database.execute('SELECT Email FROM "first" ORDER BY Email').fetchall()
            self.assertEqual(copied, [("ann@example.com",), ("bob@example.com",)])
        database.close()
        self.assertTrue((folder / "list.pdf").read_bytes().startswith(b"%PDF"))
        self.assertIn("00007", (folder / "out.csv").read_text(encoding="utf-8"))


if __name__ == "__main__":
    Lists.program = program.program_from_arguments()
    unittest.main()
