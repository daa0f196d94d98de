#!/usr/bin/python3
"""Reads src/ and tells which lines point up or reach past the platform: include lines, and names of
forms as strings outside the folder of the form."""

import pathlib
import re
import sys

# What each folder may include, besides itself and what lies below it. shell stands above all others.
PLATFORM = ["platform/forms", "platform/script", "platform/dao", "platform/net", "platform/tables", "platform/os"]
CORE = ["core", *PLATFORM]
ALLOWED = {
    "platform/os": [],
    "platform/dao": ["platform/os"],
    "platform/net": ["platform/os"],
    "platform/tables": ["platform/os"],
    "platform/forms": ["platform/os"],
    "platform/script": ["platform/forms", "platform/os"],
    "platform/qt": ["platform/forms", "platform/os"],
    "core": PLATFORM,
    "store": CORE,
    "database": CORE,
    "connection": CORE,
    "send": ["store", "database", "connection", *CORE],
    "merge": ["send", "store", "database", "connection", *CORE],
    "receive": ["merge", "send", "store", "database", "connection", *CORE],
    "shell": ["receive", "merge", "send", "store", "database", "connection", *CORE],
}
FOLDERS = sorted(ALLOWED, key=len, reverse=True)
QT = re.compile(r"<Q[A-Z]\w*|<Qt\w*/|<ui_")
ENGINES = re.compile(r"<(sqlite3|curl/|ares|unicode/|mdbtools|orcus/|xlsxwriter|libxml/)")
FORM = re.compile(r'"(frm[A-Z]\w*)')
FORM_HEADER = re.compile(r'"(?!shell/frmMain\.h)(\w+/)+frm[A-Z]\w*\.h"')
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"][^>"]+[>"])')


def folder_of(path: str) -> str:
    return next((f for f in FOLDERS if path.startswith(f + "/")), "")


def complaints(source: pathlib.Path) -> list[str]:
    found = []
    homes = {file.stem: file.parent for file in source.rglob("frm*.*") if file.suffix in (".h", ".ui")}
    for file in sorted(source.rglob("*.[hc]*")):
        if file.suffix not in (".h", ".cpp"):
            continue
        name = file.relative_to(source).as_posix()
        home = folder_of(name)
        for number, line in enumerate(file.read_text(encoding="utf-8").splitlines(), 1):
            where = f"src/{name}:{number}: "
            for form in FORM.findall(line):
                if homes.get(form) != file.parent:
                    found.append(where + f"the name of a form outside its folder: {form}")
            match = INCLUDE.match(line)
            if not match:
                continue
            target = match.group(1)
            if name == "main.cpp" and FORM_HEADER.match(target):
                found.append(where + f"main.cpp knows no form but frmMain: {target}")
            if QT.match(target) and home != "platform/qt":
                found.append(where + f"Qt outside platform/qt: {target}")
            if ENGINES.match(target) and not home.startswith("platform/"):
                found.append(where + f"an engine outside platform: {target}")
            if not target.startswith('"') or not home:
                continue
            other = folder_of(target[1:-1])
            if other and other != home and other not in ALLOWED[home]:
                found.append(where + f"{home} must not include {other}: {target}")
    return found


def main() -> int:
    found = complaints(pathlib.Path(sys.argv[1]))
    print("\n".join(found) or "All arrows point down.")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
