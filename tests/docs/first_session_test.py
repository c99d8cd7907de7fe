#!/usr/bin/python3
"""Runs the programs of docs/first_session.md against a virtual instrument, and compares what they print.

    first_session_test.py PAGE DRIVER COMPILER INCLUDE_FOLDER...

DRIVER is the driver's library as it is loaded. Environment: KVX_VIRTUAL_INSTRUMENT, PYTHONPATH with the package.
"""

import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

from virtual_instrument import VirtualInstrument

PAGE, DRIVER, COMPILER, *INCLUDES = sys.argv[1:]
RESOURCE = "TCPIP0::127.0.0.1::5025::SOCKET"


class FirstSession(unittest.TestCase):
    def setUp(self):
        self.page = pathlib.Path(PAGE).read_text(encoding="utf-8")
        self.instrument = VirtualInstrument()
        self.addCleanup(self.instrument.close)
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def program(self, language):
        """The program of the page, for the instrument of this test."""
        text = re.search(rf"^```{language}\n(.*?)^```", self.page, re.M | re.S)[1]
        self.assertIn(RESOURCE, text)
        return text.replace(RESOURCE, self.instrument.resource)

    def run_it(self, *command):
        ended = subprocess.run(command, capture_output=True, text=True, timeout=60)
        self.assertEqual((ended.returncode, ended.stderr), (0, ""))
        return ended.stdout

    def assert_has_ended_switched_off(self):
        lines = self.instrument.new_lines()
        self.assertIn(":OUTP:STAT CH1,ON", lines)
        self.assertEqual(":OUTPut:STATe ALL,OFF", lines[-1])

    def test_the_program_in_c_prints_what_the_page_says(self):
        source, program = self.folder / "program.c", self.folder / "program"
        source.write_text(self.program("c"))
        driver = pathlib.Path(DRIVER)
        warnings = ["-Wall", "-Wextra", "-Werror"]
        includes = [f"-I{folder}" for folder in INCLUDES]
        self.run_it(COMPILER, *warnings, *includes, source, driver, f"-Wl,-rpath,{driver.parent}", "-o", program)
        self.assertIn(f"It prints `{self.run_it(program).strip()}`.", self.page)
        self.assert_has_ended_switched_off()

    def test_the_program_in_python_prints_the_same(self):
        self.assertEqual("5.0 V\n", self.run_it(sys.executable, "-c", self.program("python")))
        self.assert_has_ended_switched_off()


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
