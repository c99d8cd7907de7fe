#!/usr/bin/python3
"""What the driver's DLL and its import libraries show to the outside, read from the files by binutils.

Environment: OBJDUMP, NM, DLL, HEADER, INSTRUMENT_HEADER, EXPORTS, TYPE_LIBRARY; separated by semicolons, IMPORT_LIBRARIES and the PROGRAMS linked with
them.
"""

import os
import re
import subprocess
import unittest

SYSTEM_LIBRARIES = {"KERNEL32.dll", "msvcrt.dll"}
EXPORT_COUNT = 170


def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def content(variable):
    with open(os.environ[variable], encoding="utf-8") as file:
        return file.read()


class Dll(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.file = os.environ["DLL"]
        cls.headers = output(os.environ["OBJDUMP"], "-p", cls.file)
        cls.is_x86 = "pei-i386" in cls.headers
        symbols = output(os.environ["NM"], "--defined-only", cls.file)
        cls.decorated = dict(re.findall(r" T _(KVX2800T_\w+)@(\d+)$", symbols, re.M))
        cls.declared = {
            name: parameters.split(",")
            for name, parameters in re.findall(r"_VI_FUNC\s+(KVX2800T_\w+)\s*\(([^;]*)\);",
                                               content("HEADER") + content("INSTRUMENT_HEADER"))}

    def exported(self):
        table = self.headers.split("[Ordinal/Name Pointer] Table")[1]
        return re.findall(r"^\t\[ *\d+\] (\S+)$", table.split("\n\n")[0], re.M)

    def parameter_bytes(self, name):
        """What the callee takes off the stack: numbers of 64 bits by value have two words, everything else one."""
        return sum(8 if re.match(r"\s*Vi(?:Real|Int)64 \w+$", parameter) else 4 for parameter in self.declared[name])

    def test_exports_the_functions_of_the_header_undecorated_and_nothing_else(self):
        self.assertEqual(self.exported(), sorted(self.declared))
        self.assertEqual(self.exported(), sorted(content("EXPORTS").split()))
        self.assertEqual(len(self.exported()), EXPORT_COUNT)

    def test_needs_system_libraries_only(self):
        imported = set(re.findall(r"DLL Name: (\S+)", self.headers))
        self.assertEqual(imported, SYSTEM_LIBRARIES)

    def test_is_hardened(self):
        self.assertIn("DYNAMIC_BASE", self.headers)
        self.assertIn("NX_COMPAT", self.headers)
        self.assertRegex(self.headers, r"Entry 5 [0-9a-f]+ 0*[1-9a-f][0-9a-f]* Base Relocation Directory")
        if not self.is_x86:
            self.assertIn("HIGH_ENTROPY_VA", self.headers)

    def test_functions_on_x86_take_their_parameters_off_the_stack(self):
        if not self.is_x86:
            self.assertEqual(self.decorated, {})
            return
        self.assertEqual(sorted(self.decorated), self.exported())
        code = output(os.environ["OBJDUMP"], "-d", "--no-show-raw-insn", self.file)
        returns = 0
        for name, size in self.decorated.items():
            self.assertEqual(int(size), self.parameter_bytes(name), name)
            body = re.search(rf"^[0-9a-f]+ <_{name}@{size}>:\n(.*?)\n\n", code, re.M | re.S).group(1)
            for operand in re.findall(r"\tret *(.*)$", body, re.M):
                self.assertEqual(int(operand.lstrip("$"), 16), int(size), name)
                returns += 1
        self.assertGreaterEqual(returns, EXPORT_COUNT)

    def test_has_the_type_library_of_its_width_as_a_resource(self):
        with open(self.file, "rb") as dll, open(os.environ["TYPE_LIBRARY"], "rb") as library:
            type_library = library.read()
            self.assertIn(type_library, dll.read())
        self.assertIn(b"KVX2800T.dll" if self.is_x86 else b"KVX2800T_64.dll", type_library)

    def test_import_libraries_offer_the_names_that_callers_use(self):
        expected = [f"_{name}@{size}" for name, size in self.decorated.items()] if self.is_x86 else self.exported()
        for library in os.environ["IMPORT_LIBRARIES"].split(";"):
            offered = re.findall(r" T (_?KVX2800T_[\w@]+)$", output(os.environ["NM"], library), re.M)
            self.assertEqual(sorted(offered), sorted(expected), library)

    def test_programs_import_plain_names(self):
        for program in os.environ["PROGRAMS"].split(";"):
            headers = output(os.environ["OBJDUMP"], "-p", program)
            imports = headers.split("DLL Name: " + os.path.basename(self.file))[1].split("\n\n")[0]
            names = re.findall(r"(\S+)$", imports.split("Bound-To")[1], re.M)
            self.assertIn("KVX2800T_ConfigureVoltageLevel", names, program)
            self.assertLessEqual(set(names), set(self.exported()), program)


if __name__ == "__main__":
    unittest.main()
