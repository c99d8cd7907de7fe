#!/usr/bin/python3
"""Makes the installer for 64-bit Windows of the zip with both widths.

  make_installer.py ZIP OUTPUT [--version VERSION] [--quick]

IVI-3.17 has a root folder for each width. That of 64 bits gets everything but the libraries of 32 bits; that of 32 bits gets
these, the headers, and the import libraries of both widths. The stand-ins for VISA and the IVI shared components come only
when they are asked for.
"""

import argparse
import pathlib
import re
import subprocess
import tempfile
import zipfile

HERE = pathlib.Path(__file__).resolve().parent
OWN = "Drivers/KVX2800T/"
PROGRAMS = {"kvx2800t-store.exe", "kvx2800t-virtual.exe"}

IN_BOTH_ROOTS = re.compile(rf"Include/|Lib_x64/|{OWN}(readme\.txt|license\.txt|KVX2800T\.sub)$|{OWN}Platform/Include/")
FOR_32_BITS = re.compile(rf"Bin/KVX2800T\.dll$|Lib/|{OWN}Platform/x86/")
STAND_IN = re.compile(rf"{OWN}Platform/(Include/|x64/|x86/)")


def roots_of(name):
    """The roots that a file of the zip goes to; none for the programs of 32 bits, whose twins of 64 bits do."""
    if FOR_32_BITS.match(name):
        return () if pathlib.PurePosixPath(name).name in PROGRAMS else ("$Root32",)
    return ("$Root64", "$Root32") if IN_BOTH_ROOTS.match(name) else ("$Root64",)


def is_stand_in(name):
    return STAND_IN.match(name) and pathlib.PurePosixPath(name).name not in PROGRAMS


def put(name, folder):
    path = pathlib.PurePosixPath(name)
    return [f'  !insertmacro Put "{root}" "{str(path.parent).replace("/", chr(92))}" "{path.name}" "{folder / name}"'
            for root in roots_of(name)]


def macro(title, names, folder):
    lines = [line for name in sorted(names) for line in put(name, folder)]
    return "\n".join([f"!macro {title}", *lines, "!macroend", ""])


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("zip", type=pathlib.Path)
    parser.add_argument("output", type=pathlib.Path)
    parser.add_argument("--version", help="in place of the zip's")
    parser.add_argument("--quick", action="store_true", help="without compression")
    arguments = parser.parse_args()
    version = arguments.version or re.search(r"-(\d+\.\d+\.\d+)-", arguments.zip.name)[1]
    with tempfile.TemporaryDirectory() as work:
        folder = pathlib.Path(work, "files")
        zipfile.ZipFile(arguments.zip).extractall(folder)
        names = [path.relative_to(folder).as_posix() for path in folder.rglob("*") if path.is_file()]
        files = pathlib.Path(work, "files.nsh")
        files.write_text(macro("DriverFiles", [name for name in names if not is_stand_in(name)], folder)
                         + macro("StandInFiles", [name for name in names if is_stand_in(name)], folder))
        subprocess.run(
            ["makensis", "-V2", "-WX", "-NOCD", "-INPUTCHARSET", "UTF8", f"-DVERSION={version}", f"-DVERSION4={version}.0",
             f"-DFILES={files}", f"-DLICENSE={folder / OWN / 'license.txt'}", f"-DOUTPUT={arguments.output.resolve()}"]
            + ["-DQUICK"] * arguments.quick + [str(HERE / "installer.nsi")],
            check=True)


if __name__ == "__main__":
    main()
