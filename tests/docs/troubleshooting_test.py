#!/usr/bin/python3
"""Makes everything go wrong that docs/troubleshooting.md tells of, and compares what is seen.

    troubleshooting_test.py PAGE DRIVER PACKAGE COMPILER INCLUDE_FOLDER...

PAGE is the page, DRIVER the driver's library as it is loaded; the platform's libraries stand beside it. PACKAGE is the folder
with the Python package.
"""

import argparse
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

SIMULATED = "Simulate=1"
REMEMBERING = "Simulate=1, DriverSetup=StatefulSimulation:1"
BENCH = "DriverSetup=Profile:Bench"

# What the program is started with under each headline, in the order of the texts.
SESSIONS = {
    "Opening: nobody listens": [
        ("TCPIP0::127.0.0.1::1::SOCKET", "", "CH1", "5"),
        ("TCPIP0::127.0.0.1::1::SOCKET", BENCH, "CH1", "5"),
    ],
    "Opening: the resource name is malformed": [("TCPIP0:127.0.0.1::5025::SOCKET", BENCH, "CH1", "5")],
    "Opening: the name is not in the configuration store": [("BenchSuply", BENCH, "CH1", "5")],
    "Opening: VISA cannot do that interface": [("GPIB0::5::INSTR", BENCH, "CH1", "5")],
    "Opening: another model answers": [("", SIMULATED, "CH1", "5")],
    "Opening: an option is misspelt": [("", "Simulat=1", "CH1", "5")],
    "Opening: an option has no such value": [("", "Simulate=yes", "CH1", "5")],
    "Working: the channel is misspelt": [("", REMEMBERING, "OutputChanel1", "5")],
    "Working: the channel is missing": [("", REMEMBERING, "", "5")],
    "Working: channels are listed wrongly": [("", f"Simulate=1, {BENCH}", "CH1;CH2", "5")],
    "Working: the level is beyond the limit": [
        ("", REMEMBERING, "CH3", "16.5"),
        ("", f"Simulate=1, {BENCH}", "CH3", "16.5"),
    ],
}


class Section:
    """What stands under a headline: texts, and a line of Python with the text that it ends with."""

    def __init__(self, body: str) -> None:
        body = re.sub(r"^```.*?^```$", "", body, flags=re.MULTILINE | re.DOTALL)
        native, self.statement, python = (re.split(r"^In Python, `(.*)`:$", body, flags=re.MULTILINE) + ["", ""])[:3]
        self.texts = [line.strip() for line in re.findall(r"^    .*$", native, re.MULTILINE)]
        self.python_texts = [line.strip() for line in re.findall(r"^    .*$", python, re.MULTILINE)]


def sections_of(page: str) -> dict[str, Section]:
    sections = re.split(r"^## (.*)$", page, flags=re.MULTILINE)[1:]
    return {headline: Section(body) for headline, body in zip(sections[::2], sections[1::2])}


def matches(pattern: str, seen: str) -> bool:
    return re.fullmatch(".*".join(re.escape(part) for part in pattern.split("...")), seen) is not None


class Bench:
    """A folder with the program of the page, and how it is compiled and linked."""

    def __init__(self, arguments: argparse.Namespace, folder: pathlib.Path) -> None:
        self.folder = folder
        self.driver = pathlib.Path(arguments.driver).resolve()
        self.package = pathlib.Path(arguments.package).resolve()
        self.compiler = arguments.compiler
        self.headers = [f"-I{path}" for path in arguments.includes]
        page = pathlib.Path(arguments.page).read_text(encoding="utf-8")
        self.sections = sections_of(page)
        program, self.watching = re.findall(r"^```c\n(.*?)^```", page, re.MULTILINE | re.DOTALL)
        (folder / "program.c").write_text(program)

    def run(self, *command: str, environment: dict[str, str] | None = None) -> str:
        """What a command says."""
        variables = {"PATH": "/usr/bin:/bin", "LC_ALL": "C", "XDG_CONFIG_HOME": "/no-such-folder"} | (environment or {})
        ended = subprocess.run(command, cwd=self.folder, env=variables, check=False, timeout=120,
                               stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        return ended.stdout

    def run_python(self, statement: str, package: pathlib.Path) -> str:
        return self.run("/usr/bin/python3", "-B", "-c", f"from kvx2800t import Supply; {statement}",
                        environment={"PYTHONPATH": str(package)})

    def compile(self, *options: str) -> str:
        return self.run(self.compiler, *options)

    def install(self, *names: str) -> pathlib.Path:
        """A folder with these of the libraries."""
        folder = pathlib.Path(tempfile.mkdtemp(dir=self.folder))
        for name in names:
            shutil.copy(self.driver.parent / name, folder / name)
        return folder

    def link(self, name: str, *options: str) -> str:
        return self.compile("program.c", *self.headers, "-o", name, f"-L{self.driver.parent}", "-lKVX2800T",
                            f"-Wl,-rpath-link,{self.driver.parent}", *options)


class Troubleshooting(unittest.TestCase):
    arguments: argparse.Namespace

    @classmethod
    def setUpClass(cls) -> None:
        cls.temporary = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.temporary.cleanup)
        cls.bench = Bench(cls.arguments, pathlib.Path(cls.temporary.name))
        cls.told = set()
        said = cls.bench.link("working", f"-Wl,-rpath,{cls.bench.driver.parent}")
        assert said == "", said

    def expect(self, headline: str, *seen: str) -> None:
        """A line of each output is the text that stands under the headline, in this order."""
        self.told.add(headline)
        texts = self.bench.sections[headline].texts
        self.assertEqual(len(texts), len(seen), headline)
        for text, output in zip(texts, seen):
            lines = [line.strip() for line in output.splitlines()]
            self.assertTrue(any(matches(text, line) for line in lines), f"{headline}:\n{text}\nis not in\n{output}")

    def test_building(self) -> None:
        bench = self.bench
        self.expect("Compiling: the header is not found", bench.compile("-c", "program.c"))
        objects = bench.compile("-c", "program.c", *bench.headers)
        self.assertEqual(objects, "")
        self.expect("Linking: the library is not found", bench.compile("program.o", "-lKVX2800T"))
        self.expect("Linking: the functions are not known", bench.compile("program.o"))

    def test_widths(self) -> None:
        bench = self.bench
        other = bench.folder / "32"
        other.mkdir()
        (other / "empty.c").write_text("")
        said = bench.compile("-m32", "-shared", "-nostdlib", "32/empty.c", "-o", "32/libKVX2800T.so")
        self.assertEqual(said, "")
        self.expect("Linking: the library has another width",
                    bench.compile("program.c", *bench.headers, f"-L{other}", "-lKVX2800T"))
        library = (other / "libKVX2800T.so").rename(other / "libKVX2800T.so.1")
        self.expect("Loading: the driver has another width",
                    bench.run("/usr/bin/python3", "-c", f"import ctypes; ctypes.CDLL('{library}')"))

    def test_starting(self) -> None:
        bench = self.bench
        bench.link("program")
        self.expect("Starting: the driver is not found", bench.run("./program"))
        driver_alone = bench.install("libKVX2800T.so.1", "libIviCShared.so", "libIviConfigServer.so")
        self.expect("Starting: VISA is not found",
                    bench.run("./program", environment={"LD_LIBRARY_PATH": str(driver_alone)}))

    def test_sessions(self) -> None:
        for headline, starts in SESSIONS.items():
            with self.subTest(headline):
                self.expect(headline, *(self.bench.run("./working", *start) for start in starts))
                section = self.bench.sections[headline]
                ended = self.bench.run_python(section.statement, self.bench.package)
                self.assertEqual([ended.splitlines()[-1]], section.python_texts)

    def test_watching(self) -> None:
        bench = self.bench
        headline = "Watching: what a session says"
        end = "    return KVX2800T_close"
        program = (bench.folder / "program.c").read_text().replace(end, bench.watching + end)
        (bench.folder / "watching.c").write_text(program)
        said = bench.compile("watching.c", *bench.headers, "-o", "watching", f"-L{bench.driver.parent}", "-lKVX2800T",
                             f"-Wl,-rpath,{bench.driver.parent}", f"-Wl,-rpath-link,{bench.driver.parent}")
        self.assertEqual(said, "")
        shown = bench.run("./watching", "", f"Simulate=1, {BENCH}, MessageLog:100", "CH3", "5").splitlines()
        self.expect(headline, *shown)
        section = bench.sections[headline]
        shown = bench.run_python(section.statement, bench.package).splitlines()
        self.assertEqual(len(shown), len(section.python_texts), shown)
        for text, line in zip(section.python_texts, shown):
            self.assertTrue(matches(text, line), line)

    def test_importing(self) -> None:
        package = self.bench.folder / "package"
        shutil.copytree(self.bench.package / "kvx2800t", package / "kvx2800t", ignore=shutil.ignore_patterns("lib"))
        ended = self.bench.run_python("Supply('')", package)
        self.expect("Importing: the driver is not found", *[ended] * 4)

    @classmethod
    def tearDownClass(cls) -> None:
        untried = set(cls.bench.sections) - cls.told
        assert not untried, f"nothing provokes {sorted(untried)}"


def main() -> None:
    parser = argparse.ArgumentParser()
    parser.add_argument("page")
    parser.add_argument("driver")
    parser.add_argument("package")
    parser.add_argument("compiler")
    parser.add_argument("includes", nargs="+")
    Troubleshooting.arguments = parser.parse_args()
    unittest.main(argv=sys.argv[:1])


main()
