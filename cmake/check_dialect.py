#!/usr/bin/python3
"""check_dialect.py FILE...: tells where sources do not keep to what neither compiler nor formatter checks.

To be run in the project's folder. What users include or copy is for other projects' folders, and other hosts.
"""

import pathlib
import re
import sys

FOR_USERS = re.compile(r"api/KVX2800T\w*\.h|\w+/include/.*|examples/.*|tests/api/header/.*")

RULES = (
    (r"template <[^;{\n]*\btypename \w+[,>= ]", "template parameters are a class"),
    (r"^namespace [\w:]+\n\{\n\n+namespace\n\{", "no blank line before an anonymous namespace"),
    (r"&&\) *(?:noexcept *)?= delete", "only copies are deleted"),
    (r"^ *# *(?:el)?if.*\b_*(?:WIN32|WIN64|MINGW\w*|MSC_VER|linux|unix|APPLE)_*\b", "a file for each host, no condition"),
)


def wrong_places(text):
    for pattern, rule in RULES:
        for match in re.finditer(pattern, text, re.MULTILINE):
            yield match.start(), rule
    for match in re.finditer(r'^#include "([^"]+)"', text, re.MULTILINE):
        if not pathlib.Path(match[1]).exists():
            yield match.start(), "includes are rooted at the project's folder"


def main():
    found = False
    for name in sys.argv[1:]:
        if FOR_USERS.fullmatch(name):
            continue
        text = pathlib.Path(name).read_text(encoding="utf-8")
        for position, rule in wrong_places(text):
            found = True
            print(f"{name}:{text.count(chr(10), 0, position) + 1}: {rule}")
    sys.exit(found)


if __name__ == "__main__":
    main()
