"""What is compiled and run for each: the programs of the documents, and mistakes that the compiler is to find.

Environment: KVX_ASSEMBLY, KVX_MCS, KVX_MONO, KVX_README, KVX_EXAMPLE_STORE, KVX_VIRTUAL_INSTRUMENT, KVX2800T_LIBRARY.
"""

import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

from virtual_instrument import VirtualInstrument

PROGRAM = """\
using Kvx2800t;
internal static class Program
{
    private static void Main()
    {
        using (var supply = new Supply("", new Options { Simulate = true }))
        {
            %s;
        }
    }
}
"""


class Compiled(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        shutil.copy(os.environ["KVX_ASSEMBLY"], self.folder)

    def compile(self, text):
        """What the compiler says."""
        (self.folder / "Program.cs").write_text(text, encoding="utf-8")
        ended = subprocess.run(
            [os.environ["KVX_MCS"], "-warn:4", "-warnaserror", "-r:Kvx2800t.dll", "Program.cs"],
            cwd=self.folder,
            capture_output=True,
            text=True,
        )
        return re.sub(r"(?m)^.*\(Location of the symbol.*\n", "", ended.stdout + ended.stderr)

    def run_program(self, **environment):
        ended = subprocess.run(
            [os.environ["KVX_MONO"], "Program.exe"],
            cwd=self.folder,
            env={**os.environ, **environment},
            capture_output=True,
            text=True,
        )
        return ended.stdout + ended.stderr


class Documents(Compiled):
    def test_programs_print_what_stands_below_them(self):
        instrument = VirtualInstrument()
        self.addCleanup(instrument.close)
        store = self.folder / "IviConfigurationStore.xml"
        text = pathlib.Path(os.environ["KVX_EXAMPLE_STORE"]).read_text(encoding="utf-8")
        store.write_text(text.replace("TCPIP0::127.0.0.1::5025::SOCKET", instrument.resource), encoding="utf-8")
        readme = pathlib.Path(os.environ["KVX_README"]).read_text(encoding="utf-8")
        programs = re.findall(r"```csharp\n(.*?)```\n```\n(.*?)```\n", readme, re.S)
        self.assertEqual(readme.count("```csharp\n"), len(programs))
        self.assertEqual(3, len(programs))
        for program, output in programs:
            self.assertEqual("", self.compile(program))
            self.assertEqual(output, self.run_program(IVI_MASTER_STORE=str(store)))
        self.assertIn(":SOUR3:VOLT 5.000000", instrument.new_lines())


class Mistakes(Compiled):
    def test_a_number_is_no_channel(self):
        said = self.compile(PROGRAM % "supply.Channels[3].VoltageLevel = 5.0")
        self.assertIn(
            "Program.cs(8,28): error CS0619: `Kvx2800t.Channels.this[int]' is obsolete: "
            '`channels have names, such as "CH1" or "OutputChannel1": a number is none\'',
            said,
        )

    def test_values_of_other_types_do_not_compile(self):
        self.assertEqual("", self.compile(PROGRAM % 'supply.Channels["CH3"].VoltageLevel = 5'))
        for statement in (
            'supply.Channels["CH3"].VoltageLevel = "5"',
            'supply.Channels["CH3"].OutputEnabled = 1',
            'supply.Channels["CH3"].Pairing = 1',
            'supply.Channels["CH3"].List.GroupCount = 1',
            "supply.ConfigureVoltageLevel(3, 5.0)",
        ):
            with self.subTest(statement):
                self.assertRegex(self.compile(PROGRAM % statement), r"Program\.cs\(8,\d+\): error CS")


class Library(Compiled):
    def test_a_driver_that_is_nowhere_is_said_to_be(self):
        self.assertEqual("", self.compile(PROGRAM % "supply.Reset()"))
        self.assertIn(
            "Kvx2800t.DriverNotInstalledException: the KVX2800T driver is not installed, or its library cannot be loaded. "
            "Looked at:\n"
            f"  {self.folder}/libKVX2800T.so.1: there is no such file\n"
            "  libKVX2800T.so.1: libKVX2800T.so.1: cannot open shared object file: No such file or directory\n"
            "Install the driver, or name its library by the environment variable KVX2800T_LIBRARY.\n",
            self.run_program(KVX2800T_LIBRARY=""),
        )

    def test_a_driver_beside_the_assembly_is_found(self):
        for library in pathlib.Path(os.environ["KVX2800T_LIBRARY"]).parent.glob("*.so*"):
            (self.folder / library.name).symlink_to(library)
        self.compile(PROGRAM % "System.Console.WriteLine(supply.Library.Location)")
        self.assertEqual(f"{self.folder}/libKVX2800T.so.1\n", self.run_program(KVX2800T_LIBRARY=""))


if __name__ == "__main__":
    unittest.main()
