#!/usr/bin/python3
"""Prints the C++ translation units of a build whose sources all match a pattern, one a line.

    translation_units.py BUILD_FOLDER PATTERN

Of a unity build these are the files that include several sources. The pattern is a Python regular expression for paths
relative to the project's folder. A unit whose sources are those of one before, for another target, is left out.
"""

import json
import pathlib
import re
import sys


def sources_of(unit: pathlib.Path, project: pathlib.Path) -> frozenset:
    if unit.parent.name != "Unity":
        return frozenset([str(unit.relative_to(project))])
    included = re.findall(r'^#include "(.*)"$', unit.read_text(), re.MULTILINE)
    return frozenset(str(pathlib.Path(path).relative_to(project)) for path in included)


def main() -> None:
    folder, pattern = sys.argv[1:]
    project = pathlib.Path.cwd()
    told = set()
    for command in json.loads((project / folder / "compile_commands.json").read_text()):
        unit = pathlib.Path(command["file"])
        sources = sources_of(unit, project)
        if sources in told or unit.suffix == ".c" or not all(re.search(pattern, source) for source in sources):
            continue
        told.add(sources)
        print(unit)


main()
