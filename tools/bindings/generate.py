#!/usr/bin/python3
"""Writes what is made of the driver's headers: generate.py XML VERSION DLL FOLDER, with the folder of Doxygen's XML."""

import sys
from pathlib import Path

import attribute_file_writer
import csharp_writer
import python_writer
import reader
import type_library_writer


def main() -> None:
    """Each output is a file of the folder."""
    xml, version, dll, folder = sys.argv[1:]
    interface = reader.read(Path(xml))
    outputs = {
        "_interface.py": python_writer.write(interface),
        "Interface.cs": csharp_writer.write(interface, version),
        "KVX2800T.sub": attribute_file_writer.write(interface),
        "KVX2800T.idl": type_library_writer.write(interface, version, dll),
    }
    Path(folder).mkdir(parents=True, exist_ok=True)
    for name, text in outputs.items():
        with open(Path(folder) / name, "w", encoding="utf-8", newline="\n") as file:
            file.write(text)


if __name__ == "__main__":
    main()
