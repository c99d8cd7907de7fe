#!/usr/bin/python3
"""check_packages.py FOLDER: compares the files in the zips for Windows with what they are to have, and tells sizes."""

import pathlib
import sys
import zipfile

sys.path.append("tools/help")
from chapters import CHAPTERS

OWN = "Drivers/KVX2800T/"
EXAMPLES = {path.name for path in pathlib.Path("examples").iterdir() if path.is_file()} - {"CMakeLists.txt", "README.md"}
EXAMPLES |= {"README.txt"}
MODULES = {path.name for path in pathlib.Path("python/kvx2800t").iterdir() if path.is_file()} | {"_interface.py"}
PAGES = {"help.css", "index.html"} | {chapter.name + ".html" for chapter in CHAPTERS}
CSHARP = {"Kvx2800t.dll", "Kvx2800t.xml", "Kvx2800t.csproj", "README.md", "Kvx2800t/Interface.cs"} | {
    "Kvx2800t/" + path.name for path in pathlib.Path("csharp/Kvx2800t").iterdir()
}
HEADERS = {path.name for room in ("platform", "visa") for path in pathlib.Path(room, "include").iterdir()}

COMMON = (
    {"Include/KVX2800T.h", "Include/KVX2800TInstrument.h", OWN + "readme.txt", OWN + "license.txt", OWN + "KVX2800T.sub"}
    | {OWN + "KVX2800T.pdf", OWN + "___Introduction to KVX2800T___.html"}
    | {OWN + "html/" + name for name in PAGES}
    | {OWN + "Examples/" + name for name in EXAMPLES}
    | {OWN + "Python/kvx2800t/" + name for name in MODULES}
    | {OWN + "CSharp/" + name for name in CSHARP}
    | {OWN + "Platform/Include/" + name for name in HEADERS}
)


def of_width(driver, libraries, platform, session_service, visa):
    folder = OWN + "Platform/" + platform + "/"
    names = (session_service, "IviConfigServerCAPI.dll", visa, "kvx2800t-store.exe", "kvx2800t-virtual.exe")
    return {
        "Bin/" + driver,
        libraries + "/msc/KVX2800T.lib",
        libraries + "/msc/KVX2800T.def",
        libraries + "/mingw/libKVX2800T.dll.a",
    } | {folder + name for name in names}


X64 = of_width("KVX2800T_64.dll", "Lib_x64", "x64", "IviCShared_64.dll", "visa64.dll") | {"Bin/kvx2800t.exe"}
X86 = of_width("KVX2800T.dll", "Lib", "x86", "IviCShared.dll", "visa32.dll")
CONTENTS = {"windows-x64": COMMON | X64, "windows-x86": COMMON | X86, "windows": COMMON | X64 | X86}


def main():
    packages = sorted(pathlib.Path(sys.argv[1]).glob("*.zip"))
    if {package.stem.split("-", 2)[2] for package in packages} != set(CONTENTS):
        sys.exit(f"other packages than expected: {packages}")
    for package in packages:
        entries = {entry.filename: entry for entry in zipfile.ZipFile(package).infolist() if not entry.is_dir()}
        expected = CONTENTS[package.stem.split("-", 2)[2]]
        if set(entries) != expected:
            sys.exit(f"{package}: missing {expected - set(entries)}, unexpected {set(entries) - expected}")
        dlls = ", ".join(f"{name} {entries[name].file_size}" for name in sorted(entries) if name.startswith("Bin/"))
        print(f"{package.name} {package.stat().st_size} bytes: {dlls}")


if __name__ == "__main__":
    main()
