#!/usr/bin/python3
"""Uses what is installed: the Debian packages, unpacked into a folder, and a moved `cmake --install`.

  installed_test.py BUILD PACKAGES

BUILD is the folder of a release build, PACKAGES that of the packages which were made of it. Nothing is installed on this
machine. What the packages' scripts do on a real one is tried by packaging/debian/try_packages.sh.
"""

import contextlib
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

PROJECT = pathlib.Path(__file__).resolve().parents[2]
BUILD = pathlib.Path(sys.argv[1]).resolve()
PACKAGES = pathlib.Path(sys.argv[2]).resolve()

# How what the first example prints ends: the virtual instrument has been asked.
SESSION = """OutputChannel1: 5.000 V, 1.000 A, output on
OutputChannel3: 3.300 V, 0.500 A, output on
16.5 V on OutputChannel3: 0xBFFA4217 Attribute or function parameter value is invalid (out of range or not supported).
closed
"""


def output(*command, **variables):
    """What a command prints; it must succeed."""
    result = subprocess.run(command, capture_output=True, text=True, env={**os.environ, **variables})
    if result.returncode != 0:
        raise AssertionError(f"{command} ended with {result.returncode}:\n{result.stdout}{result.stderr}")
    return result.stdout


def files(folder):
    return {str(path.relative_to(folder)) for path in folder.rglob("*") if not path.is_dir() or path.is_symlink()}


class Installation:
    """Where an installation has its parts, and programs that use it."""

    def __init__(self, prefix, libdir, work):
        self.bin = prefix / "bin"
        self.include = prefix / "include"
        self.libraries = prefix / libdir
        self.platform = self.libraries / "kvx2800t"
        self.visa = self.platform / "libvisa.so"
        self.prefix = prefix
        self.work = work

    def variables(self, **others):
        return {"LD_LIBRARY_PATH": str(self.libraries)} | others

    def built_by_pkg_config(self):
        flags = output("pkg-config", "--cflags", "--libs", "kvx2800t", PKG_CONFIG_PATH=str(self.libraries / "pkgconfig"))
        program = self.work / "by_pkg_config"
        output("cc", PROJECT / "examples/first_session.c", *flags.split(), "-o", program)
        return program

    def built_with_csharp(self):
        """A program for mono, and where it looks for the assembly."""
        source, program = self.work / "program.cs", self.work / "program.exe"
        source.write_text(
            "internal static class Program\n"
            "{\n"
            "    private static void Main(string[] arguments)\n"
            "    {\n"
            "        using (var supply = new Kvx2800t.Supply(arguments[0]))\n"
            "        {\n"
            '            supply.Channels["CH3"].VoltageLevel = 3.3;\n'
            '            System.Console.WriteLine(supply.Channels["CH3"].VoltageLevel);\n'
            "        }\n"
            "    }\n"
            "}\n"
        )
        folder = self.prefix / "share/pkgconfig"
        assembly = output("pkg-config", "--libs", "kvx2800t-cil", PKG_CONFIG_PATH=str(folder)).strip()
        output("mcs", assembly, f"-out:{program}", source)
        return program, pathlib.Path(assembly.replace("-r:", "", 1)).parent

    def built_by_cmake(self):
        source = self.work / "source"
        source.mkdir()
        shutil.copy(PROJECT / "examples/first_session.c", source)
        (source / "CMakeLists.txt").write_text(
            "cmake_minimum_required(VERSION 3.16)\n"
            "project(program LANGUAGES C)\n"
            "find_package(KVX2800T 1.0 REQUIRED)\n"
            "add_executable(program first_session.c)\n"
            "target_link_libraries(program KVX2800T::KVX2800T)\n"
        )
        output("cmake", "-S", source, "-B", self.work / "build", f"-DCMAKE_PREFIX_PATH={self.prefix}")
        output("cmake", "--build", self.work / "build")
        return self.work / "build/program"

    @contextlib.contextmanager
    def instrument(self):
        """Runs the virtual instrument; its resource descriptor."""
        command = [self.bin / "kvx2800t-virtual", "--port", "0", "--until-stdin-closes"]
        with subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True) as process:
            port = re.fullmatch(r"listening on 127\.0\.0\.1:(\d+)\n", process.stdout.readline()).group(1)
            yield f"TCPIP0::127.0.0.1::{port}::SOCKET"
            process.stdin.close()

    def session(self, program, **variables):
        with self.instrument() as resource:
            return output(program, resource, **self.variables(**variables))

    def calls_of_a_session(self, program, library, **variables):
        """What a vendor's VISA is asked for: made of the trace, it forwards to ours."""
        trace = self.work / "trace.log"
        trace.unlink(missing_ok=True)
        variables |= {"KVX_VISATRACE_LIBRARY": str(library), "KVX_VISATRACE_FILE": str(trace)}
        session = self.session(program, **variables)
        lines = trace.read_text().splitlines() if trace.exists() else []
        return session, [re.sub(r".*\] (\w+)\(.*", r"\1", line) for line in lines]


class InstalledTest(unittest.TestCase):
    def assert_has_run(self, session):
        self.assertTrue(session.endswith(SESSION), session)


class InstalledFolder(InstalledTest):
    """`cmake --install` to a folder that is moved afterwards."""

    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        folder = pathlib.Path(cls.folder.name)
        output("cmake", "--install", BUILD, "--prefix", folder / "first")
        (folder / "first").rename(folder / "moved")
        cls.installed = Installation(folder / "moved", "lib", folder)
        cls.program = cls.installed.built_by_pkg_config()

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def install(self, component):
        folder = pathlib.Path(tempfile.mkdtemp(dir=self.folder.name))
        output("cmake", "--install", BUILD, "--prefix", folder, "--component", component)
        return files(folder)

    def vendor(self):
        library = self.installed.work / "libvendor.so.7"
        shutil.copy(self.installed.platform / "libvisatrace.so", library)
        return library

    def use(self, visa):
        output(self.installed.bin / "kvx2800t-visa", visa)

    def test_a_program_that_pkg_config_has_helped_to_build_runs_a_session(self):
        self.assert_has_run(self.installed.session(self.program))

    def test_a_program_that_cmake_has_found_the_driver_for_runs_a_session(self):
        self.assert_has_run(self.installed.session(self.installed.built_by_cmake()))

    def test_a_program_in_csharp_runs_a_session(self):
        program, folder = self.installed.built_with_csharp()
        with self.installed.instrument() as resource:
            shown = output("mono", program, resource, **self.installed.variables(MONO_PATH=str(folder)))
        self.assertEqual(shown, "3.3\n")

    def test_the_switch_changes_between_our_visa_and_a_vendors(self):
        own = self.installed.platform / "own/libvisa.so"
        vendor = self.vendor()
        self.addCleanup(self.use, "own")
        for visa, library, first_calls in ("own", own, []), (vendor, vendor, ["viOpenDefaultRM", "viOpen"]):
            with self.subTest(visa=visa):
                self.use(visa)
                self.assertEqual(output(self.installed.bin / "kvx2800t-visa"), f"{library}\n")
                session, calls = self.installed.calls_of_a_session(self.program, own)
                self.assert_has_run(session)
                self.assertEqual(calls[:2], first_calls)

    def test_the_switch_refuses_what_is_no_visa(self):
        other = self.installed.platform / "libIviCShared.so"
        for file, reason in ("/nowhere", "is no file"), (other, "has no viOpenDefaultRM: it is no VISA library"):
            with self.subTest(file=file):
                result = subprocess.run([self.installed.bin / "kvx2800t-visa", file], capture_output=True, text=True)
                self.assertEqual((result.returncode, result.stderr), (1, f"kvx2800t-visa: {file} {reason}\n"))
                self.assertEqual(self.installed.visa.readlink(), pathlib.Path("own/libvisa.so"))

    def test_the_trace_in_front_of_the_others_shows_what_the_driver_asks_for(self):
        front = self.installed.work / "trace"
        front.mkdir()
        (front / "libvisa.so").symlink_to(self.installed.platform / "libvisatrace.so")
        library = output(self.installed.bin / "kvx2800t-visa").strip()
        folders = f"{front}:{self.installed.libraries}"
        session, calls = self.installed.calls_of_a_session(self.program, library, LD_LIBRARY_PATH=folders)
        self.assert_has_run(session)
        self.assertEqual(calls[:2], ["viOpenDefaultRM", "viOpen"])

    def test_installing_again_keeps_the_vendors_visa(self):
        vendor = self.vendor()
        self.use(vendor)
        self.addCleanup(self.use, "own")
        output("cmake", "--install", BUILD, "--prefix", self.installed.prefix)
        self.assertEqual(self.installed.visa.readlink(), vendor)

    def test_the_driver_alone_is_a_component(self):
        self.assertEqual(self.install("runtime"), {"lib/libKVX2800T.so.1", "lib/libKVX2800T.so.1.0.0"})

    def test_what_is_for_packages_alone_is_not_installed(self):
        strangers = {name for name in files(self.installed.prefix) if "changelog" in name or "copyright" in name}
        self.assertEqual(strangers, set())


class Packages(InstalledTest):
    """The packages, unpacked into one folder, with what their scripts do on a machine."""

    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.root = pathlib.Path(cls.folder.name, "root")
        for folder in "etc", "var/lib/dpkg", "var/log":
            (cls.root / folder).mkdir(parents=True)
        for package in PACKAGES.glob("*.deb"):
            output("dpkg-deb", "-x", package, cls.root)
        triplet = output("gcc", "-print-multiarch").strip()
        cls.installed = Installation(cls.root / "usr", f"lib/{triplet}", pathlib.Path(cls.folder.name))
        cls.run_script("kvx2800t-platform", "postinst", "configure")
        with cls.links_within_the_root():
            cls.program = cls.installed.built_by_pkg_config()

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    @classmethod
    def run_script(cls, package, script, *arguments):
        control = pathlib.Path(tempfile.mkdtemp(dir=cls.folder.name))
        output("dpkg-deb", "-e", next(PACKAGES.glob(f"{package}_*.deb")), control)
        output(control / script, *arguments, DPKG_ROOT=str(cls.root))

    @classmethod
    @contextlib.contextmanager
    def links_within_the_root(cls):
        """Links lead from the machine's root on; they are led to the same place in the folder."""
        links = [cls.installed.visa, *(cls.root / "etc/alternatives").iterdir()]
        targets = [link.readlink() for link in links]
        for link, target in zip(links, targets):
            link.unlink()
            link.symlink_to(cls.root / target.relative_to("/"))
        yield
        for link, target in zip(links, targets):
            link.unlink()
            link.symlink_to(target)

    def alternatives(self, *arguments):
        return output("update-alternatives", *arguments, DPKG_ROOT=str(self.root))

    def path_of(self, file):
        return f"/{file.relative_to(self.root)}"

    def test_the_first_visa_of_the_driver_is_ours_and_a_vendors_is_an_alternative(self):
        own = self.installed.platform / "own/libvisa.so"
        vendor = self.root / "opt/vendor/libvisa.so.0"
        vendor.parent.mkdir(parents=True)
        shutil.copy(self.installed.platform / "libvisatrace.so", vendor)
        name = self.installed.visa.readlink().name
        for first_calls in [], ["viOpenDefaultRM", "viOpen"], []:
            with self.subTest(first_calls=first_calls):
                with self.links_within_the_root():
                    session, calls = self.installed.calls_of_a_session(self.program, own)
                self.assert_has_run(session)
                self.assertEqual(calls[:2], first_calls)
            if first_calls:
                self.alternatives("--remove", name, self.path_of(vendor))
            else:
                self.alternatives("--install", self.path_of(self.installed.visa), name, self.path_of(vendor), "20")

    def test_removing_the_platform_leaves_no_link(self):
        self.run_script("kvx2800t-platform", "prerm", "upgrade")
        self.assertTrue(self.installed.visa.is_symlink())
        self.run_script("kvx2800t-platform", "prerm", "remove")
        self.assertFalse(self.installed.visa.is_symlink())
        self.assertEqual(list((self.root / "etc/alternatives").iterdir()), [])
        self.run_script("kvx2800t-platform", "postinst", "configure")

    def test_nothing_public_has_the_name_of_a_visa(self):
        names = {name for name in files(self.root) if pathlib.Path(name).name.startswith(("libvisa", "visa"))}
        private = str(self.installed.platform.relative_to(self.root))
        self.assertEqual(
            names,
            {
                f"{private}/libvisa.so",
                f"{private}/libvisatrace.so",
                f"{private}/own/libvisa.so",
                "usr/include/kvx2800t/visa.h",
                "usr/include/kvx2800t/visatype.h",
            },
        )

    def test_pyvisa_does_not_find_our_visa_by_itself_and_takes_it_by_its_path(self):
        search = "from pyvisa.ctwrapper import IVIVisaLibrary; print(*IVIVisaLibrary.get_library_paths())"
        found = output("/usr/bin/python3", "-c", search, **self.installed.variables())
        self.assertNotIn(str(self.root), found)
        question = (
            "import pyvisa, sys; resources = pyvisa.ResourceManager(sys.argv[1]);"
            "print(resources.open_resource(sys.argv[2], read_termination='\\n').query('*IDN?'))"
        )
        with self.installed.instrument() as resource:
            answer = output("/usr/bin/python3", "-c", question, self.installed.platform / "own/libvisa.so", resource)
        self.assertEqual(answer, "Tessaro Instruments,KVX2833T,VIRT0000001,V1.00\n")

    def test_a_program_that_cmake_has_found_the_driver_for_runs_a_session(self):
        with self.links_within_the_root():
            self.assert_has_run(self.installed.session(self.installed.built_by_cmake()))

    def test_a_name_that_the_store_tool_has_added_opens_the_instrument(self):
        store = str(self.installed.work / "store.xml")
        with self.links_within_the_root(), self.installed.instrument() as resource:
            add = ["add", "Bench1", "--create", "--logical", "BenchSupply", "--resource", resource]
            output(self.installed.bin / "kvx2800t-store", "--store", store, *add)
            session = output(self.program, "BenchSupply", **self.installed.variables(IVI_MASTER_STORE=store))
        self.assert_has_run(session)

    def test_the_example_store_has_no_findings(self):
        store = self.root / "usr/share/doc/kvx2800t/examples/IviConfigurationStore.xml"
        self.assertEqual(output(self.installed.bin / "kvx2800t-store", "--store", store, "check"), f"{store}: no findings\n")

    def test_python_finds_the_module_and_the_driver(self):
        modules = str(self.root / "usr/lib/python3/dist-packages")
        with self.links_within_the_root(), self.installed.instrument() as resource:
            program = ["/usr/bin/python3", "-B", "-m", "kvx2800t", resource]
            printed = output(*program, **self.installed.variables(PYTHONPATH=modules))
        self.assertEqual(
            printed.splitlines()[:2],
            ["KVX2833T, firmware V1.00", "OutputChannel3: 3.300 V, 0.500 A, output on"],
        )

    def test_the_symbols_file_has_what_the_library_exports(self):
        control = self.installed.work / "control"
        package = next(PACKAGES.glob("libkvx2800t1_*.deb"))
        output("dpkg-deb", "-e", package, control)
        version = output("dpkg-deb", "-f", package, "Version").strip()
        lines = (control / "symbols").read_text().splitlines()
        exports = (PROJECT / "api/exports.txt").read_text().split()
        self.assertEqual(
            lines[:2], ["libKVX2800T.so.1 libkvx2800t1 #MINVER#", "* Build-Depends-Package: libkvx2800t-dev"]
        )
        names = ["KVX2800T_1", *sorted(exports)]
        self.assertEqual(lines[2:], [f" {name}@KVX2800T_1 {version}" for name in names])
        exported = output("nm", "-D", "--defined-only", self.installed.libraries / "libKVX2800T.so")
        self.assertEqual(
            sorted(line.split()[2] for line in exported.splitlines() if " A " not in line),
            sorted(f"{name}@@KVX2800T_1" for name in exports),
        )

    def test_bash_completes_commands_and_options(self):
        completion = self.root / "usr/share/bash-completion/completions"
        cases = {
            ("kvx2800t-store", ""): ["list", "add", "remove", "check", "register", "unregister"],
            ("kvx2800t-store", "re"): ["remove", "register"],
            ("kvx2800t-store", "add", "--virtual"): ["--virtual", "--virtual-range"],
            ("kvx2800t-store", "add", "--cache", ""): ["0", "1"],
            ("kvx2800t-virtual", "--ser"): ["--serial"],
            ("kvx2800t", "d"): ["delay", "doctor"],
            ("kvx2800t", "list", ""): ["load", "show", "run", "watch", "pause", "stop"],
            ("kvx2800t", "list", "load", "--c"): ["--cycles"],
            ("kvx2800t", "set", "CH1", "o"): ["on", "off"],
            ("kvx2800t", "measure", "CH1"): ["CH1"],
        }
        for words, expected in cases.items():
            with self.subTest(words=words):
                function = "_" + words[0].replace("-", "_")
                script = (
                    f". /usr/share/bash-completion/bash_completion; . {completion / words[0]}\n"
                    f"COMP_WORDS=({' '.join(repr(word) for word in words)}); COMP_CWORD={len(words) - 1}\n"
                    f"COMP_LINE='{' '.join(words)}'; COMP_POINT={len(' '.join(words))}\n"
                    f"{function} {self.installed.bin / words[0]} '{words[-1]}' '{words[-2]}'\n"
                    'printf "%s\\n" "${COMPREPLY[@]}"\n'
                )
                libraries = f"{self.installed.libraries}:{self.installed.platform / 'own'}"
                seen = output("bash", "-c", script, LD_LIBRARY_PATH=libraries)
                self.assertEqual(seen.split(), expected)

    def test_the_help_is_there_as_pages_and_as_a_document(self):
        folder = self.root / "usr/share/doc/kvx2800t"
        made = {path.name for path in (BUILD / "help/html").iterdir()}
        self.assertIn("functions.html", made)
        self.assertEqual(made, {path.name for path in (folder / "html").iterdir()})
        self.assertEqual(b"%PDF", (folder / "KVX2800T.pdf").read_bytes()[:4])
        indexed = (self.root / "usr/share/doc-base/kvx2800t-doc.kvx2800t").read_text()
        for file in re.findall("^(?:Index|Files): (.*)$", indexed, re.M):
            self.assertTrue(list(self.root.glob(file.lstrip("/"))), file)

    def test_each_program_has_a_manual_page(self):
        pages = self.root / "usr/share/man/man1"
        for program in self.installed.bin.iterdir():
            self.assertTrue((pages / f"{program.name}.1.gz").is_file(), program.name)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
