#!/usr/bin/python3
"""Names the functions of a type library as the DLL exports them: name_entries.py FILE, in place.

widl writes "#" for the name of every entry point. The names are appended to the file's table of strings, which moves to
the file's end for that, and each function of a module gets its own.
"""

import struct
import sys
from pathlib import Path

from model import PREFIX

WORD = 4
MAGIC = b"MSFT"
# Places in the header, of the directory of tables behind it and its entries, of the description of a type, and of the
# record of a function.
FLAGS, TYPE_COUNT, HEADER_SIZE = 0x14, 0x20, 0x54
HAS_HELP_DLL = 0x100
TYPES, NAMES, STRINGS, TABLE_SIZE = 0, 7, 8, 16
TYPE_SIZE, KIND, MEMBERS, COUNTS = 0x64, 0x00, 0x04, 0x18
KIND_MASK, MODULE = 0xF, 2
ENTRY = 32
# Of a name: its text is behind its length, whose upper bytes say something else.
NAME_LENGTH, NAME_TEXT = 8, 12


class TypeLibrary:
    """The bytes of a file."""

    def __init__(self, data: bytes) -> None:
        if data[: len(MAGIC)] != MAGIC:
            raise SystemExit("this is no type library")
        self._data = bytearray(data)
        self._tables = HEADER_SIZE + WORD * self._word(TYPE_COUNT)
        if self._word(FLAGS) & HAS_HELP_DLL:
            self._tables += WORD
        self._added = bytearray()

    def _word(self, place: int) -> int:
        return int(struct.unpack_from("<I", self._data, place)[0])

    def _table(self, number: int) -> tuple[int, int]:
        """Where it begins, and its size."""
        entry = self._tables + TABLE_SIZE * number
        return self._word(entry), self._word(entry + WORD)

    def name_entries(self) -> bytes:
        """What the file is to be."""
        types, size = self._table(TYPES)
        for type_info in range(types, types + size, TYPE_SIZE):
            if self._word(type_info + KIND) & KIND_MASK == MODULE:
                self._name_functions(type_info)
        self._move_strings()
        return bytes(self._data)

    def _name_functions(self, type_info: int) -> None:
        """The records of functions are one behind the other; the names of members are behind all records."""
        members, count = self._word(type_info + MEMBERS), self._word(type_info + COUNTS) & 0xFFFF
        record = members + WORD
        names = members + WORD + self._word(members) + WORD * count
        for number in range(count):
            name = self._name(self._word(names + WORD * number))
            struct.pack_into("<I", self._data, record + ENTRY, self._string(name))
            record += self._word(record) & 0xFFFF

    def _name(self, offset: int) -> bytes:
        place = self._table(NAMES)[0] + offset
        length = self._word(place + NAME_LENGTH) & 0xFF
        name = bytes(self._data[place + NAME_TEXT : place + NAME_TEXT + length])
        if not name.startswith(PREFIX.encode()):
            raise SystemExit(f"{name!r} is no function of the driver")
        return name

    def _string(self, text: bytes) -> int:
        """Its place in the table of strings: a length of two bytes and the text, filled up to words."""
        place = self._table(STRINGS)[1] + len(self._added)
        entry = struct.pack("<H", len(text)) + text
        self._added += entry + b"W" * (-len(entry) % WORD)
        return place

    def _move_strings(self) -> None:
        place, size = self._table(STRINGS)
        strings = self._data[place : place + size] + self._added
        struct.pack_into("<II", self._data, self._tables + TABLE_SIZE * STRINGS, len(self._data), len(strings))
        self._data += strings


def main() -> None:
    """Changes the file."""
    path = Path(sys.argv[1])
    path.write_bytes(TypeLibrary(path.read_bytes()).name_entries())


if __name__ == "__main__":
    main()
