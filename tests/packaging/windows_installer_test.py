#!/usr/bin/python3
"""Installs, uses, upgrades and removes the driver by its installer for Windows, under Wine.

  windows_installer_test.py PACKAGES

PACKAGES is the folder of the zips and of the installer, which were made of the same builds. Wine takes the prefix of
WINEPREFIX, or one of its own (cmake/host/wine.sh). This Wine has no programs of 32 bits: their files are only looked for.
"""

import contextlib
import hashlib
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time
import unittest
import zipfile

PROJECT = pathlib.Path(__file__).resolve().parents[2]
PACKAGES = pathlib.Path(sys.argv[1]).resolve()
WINE = PROJECT / "cmake/host/wine.sh"
PREFIX = pathlib.Path(os.environ.get("WINEPREFIX") or f"{tempfile.gettempdir()}/kvx2800t-wine-{os.getuid()}")
DRIVE = PREFIX / "drive_c"
OWN = "Drivers/KVX2800T/"
UNINSTALL = r"SOFTWARE\Microsoft\Windows\CurrentVersion\Uninstall\KVX2800T"
ZIP = next(PACKAGES.glob("KVX2800T-*-windows.zip"))
INSTALLER = next(PACKAGES.glob("KVX2800T-*-setup.exe"))
VERSION = ZIP.name.split("-")[1]

# Exit codes, as readme.txt has them.
FAILED, MACHINE, OLDER, OTHER_VENDOR, NO_IVI, COMMAND_LINE = range(2, 8)

STAND_INS_64 = {OWN + "Platform/x64/" + name for name in ("IviCShared_64.dll", "IviConfigServerCAPI.dll", "visa64.dll")}
STAND_INS_32 = {OWN + "Platform/x86/" + name for name in ("IviCShared.dll", "IviConfigServerCAPI.dll", "visa32.dll")}

# Another vendor's driver and all that a store has of it; the published APIs are those that ours offers, too.
FOREIGN_STORE = """<?xml version="1.0" encoding="UTF-8"?>
<IviConfigStore xmlns:dt="urn:schemas-microsoft-com:datatypes">
\t<Name>IVI Configuration Server</Name><Revision>1.6.0.0</Revision>
\t<PublishedAPIs><!-- shared -->
\t\t<IviPublishedAPI id="p1"><Name>IviDriver</Name><MajorVersion>2</MajorVersion><MinorVersion>1</MinorVersion><Type>IVI-C</Type></IviPublishedAPI>
\t\t<IviPublishedAPI id="p2"><Name>IviDCPwr</Name><MajorVersion>3</MajorVersion><MinorVersion>0</MinorVersion><Type>IVI-C</Type></IviPublishedAPI>
\t</PublishedAPIs>
\t<SoftwareModules>
\t\t<IviSoftwareModule id="p3"><Name>other20x</Name><DataComponents/><ModulePath>other20x_32.dll</ModulePath><Prefix>other20x</Prefix><PublishedAPIs><IviPublishedAPI idref="p2"/></PublishedAPIs></IviSoftwareModule>
\t</SoftwareModules>
\t<HardwareAssets><IviHardwareAsset id="p7"><Name>Theirs</Name><DataComponents/><IOResourceDescriptor>GPIB0::7::INSTR</IOResourceDescriptor></IviHardwareAsset></HardwareAssets>
\t<DriverSessions><IviDriverSession id="p8"><Name>Other</Name><DataComponents/><IviHardwareAsset idref="p7"/><IviSoftwareModuleRef idref="p3"/><VirtualNames/><SoftwareModuleName>other20x</SoftwareModuleName></IviDriverSession></DriverSessions>
\t<Sessions><IviDriverSession idref="p8"/></Sessions>
\t<LogicalNames/>
</IviConfigStore>
""".replace("\n", "\r\n").encode()

# How what the first example prints ends: the virtual instrument has been asked.
SESSION = """OutputChannel1: 5.000 V, 1.000 A, output on
OutputChannel3: 3.300 V, 0.500 A, output on
16.5 V on OutputChannel3: 0xBFFA4217 Attribute or function parameter value is invalid (out of range or not supported).
closed
"""


def windows(path):
    """A path of this machine as Windows programs are given it."""
    inside = path.is_relative_to(DRIVE)
    return ("C:\\" if inside else "Z:\\") + str(path.relative_to(DRIVE if inside else "/")).replace("/", "\\")


def wine(*command, expected=0, **variables):
    """What a Windows program prints. Into a file: what Wine leaves running would keep a pipe open."""
    with tempfile.TemporaryFile("w+") as printed:
        arguments = [WINE, *map(str, command)]
        code = subprocess.run(arguments, stdout=printed, stderr=subprocess.STDOUT, env={**os.environ, **variables}).returncode
        printed.seek(0)
        text = printed.read()
    if code != expected:
        raise AssertionError(f"{command} ended with {code}, not with {expected}:\n{text}")
    return text.replace("\r", "")


def files(folder):
    return {path.relative_to(folder).as_posix() for path in folder.rglob("*") if path.is_file()}


def contents(*folders):
    """The files below folders, each with a digest: a difference is short to tell."""
    return {path: hashlib.sha256(path.read_bytes()).hexdigest() for folder in folders for path in folder.rglob("*") if path.is_file()}


def quoted(text):
    return '"' + text.replace("\\", "\\\\") + '"'


def wait_for(condition):
    for _ in range(600):
        if condition():
            return
        time.sleep(0.05)
    raise AssertionError("waited in vain")


class InstallerTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.work = pathlib.Path(cls.folder.name)
        # As long as one program runs, others need not wait for Wine's services to start.
        cls.first_program = subprocess.Popen([WINE, "cmd"], stdin=subprocess.PIPE, stdout=subprocess.DEVNULL)
        cls.next_version = cls.make_next_version()
        # Debian's Wine is a Windows 7 unless it is told otherwise.
        names = (INSTALLER.name, cls.next_version.name)
        cls.change_registry(*((rf"HKEY_CURRENT_USER\Software\Wine\AppDefaults\{name}", "Version", "win10") for name in names))

    @classmethod
    def tearDownClass(cls):
        cls.first_program.communicate()
        cls.folder.cleanup()

    @classmethod
    def make_next_version(cls):
        """An installer of a version that lacks one file of this one, has another, and differs in a third."""
        changed = cls.work / "KVX2800T-99.1.0-windows.zip"
        with zipfile.ZipFile(ZIP) as before, zipfile.ZipFile(changed, "w") as after:
            for name in before.namelist():
                if name != OWN + "Examples/two_supplies.c" and not name.endswith("/"):
                    after.writestr(name, b"new" if name == OWN + "readme.txt" else before.read(name))
            after.writestr(OWN + "Examples/new/added.c", "int added;\n")
        installer = cls.work / "KVX2800T-99.1.0-setup.exe"
        maker = PROJECT / "packaging/windows/make_installer.py"
        subprocess.run(["/usr/bin/python3", "-B", maker, changed, installer, "--quick"], check=True)
        return installer

    @classmethod
    def change_registry(cls, *values, remove=()):
        """Sets texts (key, name, text) after removing keys."""
        lines = ["REGEDIT4"] + [f"\n[-{key}]" for key in remove]
        lines += [f"\n[{key}]\n{quoted(name)}={quoted(text)}" for key, name, text in values]
        script = cls.work / "change.reg"
        script.write_text("\n".join(lines) + "\n")
        wine("reg", "import", windows(script))

    def setUp(self):
        self.root64 = DRIVE / "IVI root"
        self.root32 = DRIVE / "IVI root (x86)"
        self.store = DRIVE / "store/IviConfigurationStore.xml"
        self.log = self.work / "installer.log"
        self.clean()
        self.addCleanup(self.clean)
        self.store.parent.mkdir()
        self.store.write_bytes(FOREIGN_STORE)
        self.change_registry((r"HKEY_LOCAL_MACHINE\SOFTWARE\IVI\CONFIGURATIONSERVER", "MasterStore", windows(self.store)))

    def clean(self):
        self.change_registry(
            remove=(
                rf"HKEY_LOCAL_MACHINE\{UNINSTALL}",
                r"HKEY_LOCAL_MACHINE\SOFTWARE\IVI",
                r"HKEY_LOCAL_MACHINE\SOFTWARE\Wow6432Node\IVI",
            )
        )
        for folder in self.root64, self.root32, self.store.parent:
            shutil.rmtree(folder, ignore_errors=True)
        self.log.unlink(missing_ok=True)

    def install(self, *options, installer=INSTALLER, expected=0, folder=True):
        """Runs an installer; its log."""
        place = [f"/D={windows(self.root64)}"] if folder else []
        wine(installer, "/S", f"/LOG={windows(self.log)}", *options, *place, expected=expected)
        return self.log.read_text().splitlines()

    def uninstall(self):
        """Runs the uninstaller, which goes on in a copy of itself; its log."""
        log = self.work / "uninstaller.log"
        log.unlink(missing_ok=True)
        wine(self.root64 / OWN / "uninstall.exe", "/S", f"/LOG={windows(log)}")
        wait_for(lambda: log.exists() and re.search(r"^done", log.read_text(), re.MULTILINE))
        return log.read_text().splitlines()

    def registered(self):
        """The entry among the installed programs."""
        lines = wine("reg", "query", rf"HKLM\{UNINSTALL}").splitlines()
        return {match[1]: match[2] for match in (re.fullmatch(r" +(\w+) +REG_\w+ +(.*)", line) for line in lines) if match}

    def store_tool(self, *arguments):
        return wine(self.root64 / OWN / "Platform/x64/kvx2800t-store.exe", *arguments)

    def register_shared_components(self):
        """What the installers of the IVI shared components leave, as far as this one looks at it."""
        for root, service in (self.root64, "IviCShared_64.dll"), (self.root32, "IviCShared.dll"):
            for name in "Bin/IviSharedComponentVersion.dll", f"Bin/{service}", "Include/IviVisaType.h", "Lib_x64/msc/visa64.lib":
                (root / name).parent.mkdir(parents=True, exist_ok=True)
                (root / name).write_text(f"not ours: {name}")
        self.change_registry(
            (r"HKEY_LOCAL_MACHINE\SOFTWARE\IVI", "IviStandardRootDir", windows(self.root64) + "\\"),
            (r"HKEY_LOCAL_MACHINE\SOFTWARE\Wow6432Node\IVI", "IviStandardRootDir", windows(self.root32) + "\\"),
        )

    def put_driver(self, company, version):
        """A DLL with nothing but a version resource, in the driver's place."""
        script = self.work / "version.rc"
        numbers = version.replace(".", ",")
        script.write_text(
            f'1 VERSIONINFO FILEVERSION {numbers} BEGIN BLOCK "StringFileInfo" BEGIN BLOCK "040904B0" BEGIN\n'
            f'VALUE "CompanyName", "{company}"\nEND END BLOCK "VarFileInfo" BEGIN VALUE "Translation", 0x0409, 1200 END END\n'
        )
        subprocess.run(["x86_64-w64-mingw32-windres", script, self.work / "version.o"], check=True)
        place = self.root64 / "Bin/KVX2800T_64.dll"
        place.parent.mkdir(parents=True, exist_ok=True)
        linker = ["x86_64-w64-mingw32-gcc", "-shared", "-nostdlib", "-Wl,--entry=0", self.work / "version.o"]
        subprocess.run([*linker, "-o", place], check=True)

    def expected_files(self):
        """What goes to the roots of 64 and 32 bits, with the stand-ins."""
        names = {name for name in zipfile.ZipFile(ZIP).namelist() if not name.endswith("/")}
        narrow = {name for name in names if name.startswith(("Lib/", OWN + "Platform/x86/")) or name == "Bin/KVX2800T.dll"}
        both = {name for name in names if name.startswith(("Include/", "Lib_x64/", OWN + "Platform/Include/"))}
        both |= {OWN + name for name in ("readme.txt", "license.txt", "KVX2800T.sub")}
        programs = {name for name in narrow if name.endswith(".exe")}
        return names - narrow | {OWN + "uninstall.exe", OWN + "installed.txt"}, narrow - programs | both

    def built_example(self):
        """The first example, built from installed files alone."""
        program = self.work / "first_session.exe"
        own = self.root64 / OWN
        subprocess.run(
            ["x86_64-w64-mingw32-gcc", own / "Examples/first_session.c", "-I", self.root64 / "Include"]
            + ["-I", own / "Platform/Include", self.root64 / "Lib_x64/mingw/libKVX2800T.dll.a", "-o", program],
            check=True,
        )
        return program

    def session(self, program, resource):
        return wine(program, resource, WINEPATH=windows(self.root64 / "Bin"))

    @contextlib.contextmanager
    def instrument(self):
        """Runs the installed virtual instrument; its resource descriptor."""
        said = self.work / "instrument.txt"
        command = [WINE, self.root64 / OWN / "Platform/x64/kvx2800t-virtual.exe", "--port", "0", "--until-stdin-closes"]
        with open(said, "w") as out, subprocess.Popen(command, stdin=subprocess.PIPE, stdout=out, stderr=out) as process:
            wait_for(lambda: said.read_text().endswith("\n"))
            port = re.fullmatch(r"listening on 127\.0\.0\.1:(\d+)\s*", said.read_text())[1]
            yield f"TCPIP0::127.0.0.1::{port}::SOCKET"
            process.stdin.close()

    def test_installs_runs_a_session_and_goes_without_a_trace(self):
        log = self.install("/STANDINS")
        self.assertEqual((files(self.root64), files(self.root32)), self.expected_files())
        for path in contents(self.root64, self.root32):
            self.assertIn(f"installed file {windows(path)}", log)
        self.assertIn("kvx2800t-store register --create: exit code 0, added software module 'KVX2800T'", log)
        self.assertIn(rf"wrote registry key HKLM\{UNINSTALL}", log)
        self.assertEqual(log[-1], "done")
        entry = self.registered()
        for name, value in (
            ("DisplayName", "KVX2800T IVI-C driver"),
            ("DisplayVersion", VERSION),
            ("Publisher", "Tessaro Instruments"),
            ("UninstallString", f'"{windows(self.root64 / OWN / "uninstall.exe")}"'),
        ):
            self.assertEqual(entry[name], value)
        with self.instrument() as resource:
            self.assertTrue(self.session(self.built_example(), resource).endswith(SESSION))
        self.assertEqual(self.store_tool("check"), f"{windows(self.store)}: no findings\n")

        compiled = self.root64 / OWN / "Python/kvx2800t/__pycache__"
        compiled.mkdir()
        (compiled / "_supply.cpython-311.pyc").write_bytes(b"compiled by a user's Python")
        log = self.uninstall()
        self.assertIn("kvx2800t-store unregister: exit code 0, removed software module 'KVX2800T'", log)
        self.assertIn(f"removed file {windows(self.root64 / 'Bin/KVX2800T_64.dll')}", log)
        self.assertFalse(self.root64.exists() or self.root32.exists())
        self.assertEqual(self.store.read_bytes(), FOREIGN_STORE)
        wine("reg", "query", rf"HKLM\{UNINSTALL}", expected=1)

    def test_an_upgrade_replaces_what_was_there_and_keeps_sessions_and_stand_ins(self):
        self.install("/STANDINS")
        self.store_tool("add", "Bench", "--resource", "TCPIP0::10.0.0.5::5025::SOCKET", "--logical", "BenchSupply")
        before = self.store.read_bytes()
        log = self.install(installer=self.next_version, folder=False)
        self.assertEqual(self.registered()["DisplayVersion"], "99.1.0")
        wide, narrow = self.expected_files()
        wide = wide - {OWN + "Examples/two_supplies.c"} | {OWN + "Examples/new/added.c"}
        self.assertEqual((files(self.root64), files(self.root32)), (wide, narrow))
        self.assertEqual((self.root64 / OWN / "readme.txt").read_text(), "new")
        self.assertIn(f"removed file {windows(self.root64 / OWN / 'Examples/two_supplies.c')}", log)
        self.assertIn(f"replaced what was {windows(self.root64 / OWN / 'readme.txt')}", log)
        self.assertIn("kvx2800t-store register --create: exit code 0, renewed software module 'KVX2800T'", log)
        assets = before.index(b"<HardwareAssets>")
        self.assertEqual(self.store.read_bytes()[-len(before[assets:]) :], before[assets:])
        with self.instrument() as resource:
            self.store_tool("add", "Bench", "--replace", "--resource", resource, "--logical", "BenchSupply")
            self.assertTrue(self.session(self.built_example(), "BenchSupply").endswith(SESSION))

        self.uninstall()
        self.assertFalse(self.root64.exists() or self.root32.exists())
        left = self.store.read_text()
        self.assertIn("<Name>BenchSupply</Name>", left)
        self.assertIn("<SoftwareModuleName>KVX2800T</SoftwareModuleName>", left)
        self.assertNotIn("<Prefix>KVX2800T</Prefix>", left)

    def test_an_older_version_or_another_vendors_driver_is_refused_and_nothing_changes(self):
        for company, version, code, reason in (
            ("Tessaro Instruments", "99.2.0.1", OLDER, f"has the version 99.2.0.1, which is newer than {VERSION}.0"),
            ("Somebody Else", "0.1.0.0", OTHER_VENDOR, "is a driver of another vendor: Somebody Else"),
        ):
            with self.subTest(company=company):
                self.put_driver(company, version)
                before = contents(self.root64)
                log = self.install("/STANDINS", expected=code)
                self.assertIn(reason, log[-1])
                self.assertEqual(contents(self.root64), before)
                self.assertFalse(self.root32.exists())
                self.assertEqual(self.store.read_bytes(), FOREIGN_STORE)

    def test_the_same_version_of_ours_is_replaced(self):
        self.put_driver("Tessaro Instruments", f"{VERSION}.0")
        log = self.install("/STANDINS")
        self.assertIn(f"replaced what was {windows(self.root64 / 'Bin/KVX2800T_64.dll')}", log)
        self.assertEqual(files(self.root64), self.expected_files()[0])

    def test_the_ivi_shared_components_and_a_vendors_visa_stay_as_they_are(self):
        self.register_shared_components()
        theirs = contents(self.root64, self.root32)
        self.install(folder=False)
        after = contents(self.root64, self.root32)
        self.assertEqual({path: after[path] for path in theirs}, theirs)
        wide, narrow = self.expected_files()
        headers = {name for name in wide if name.startswith(OWN + "Platform/Include/")}
        shared = {path.relative_to(root).as_posix() for root in (self.root64, self.root32) for path in theirs if path.is_relative_to(root)}
        self.assertEqual(files(self.root64) - shared, wide - headers - STAND_INS_64)
        self.assertEqual(files(self.root32) - shared, narrow - headers - STAND_INS_32)
        self.uninstall()
        self.assertEqual(contents(self.root64, self.root32), theirs)
        self.assertFalse((self.root64 / "Drivers").exists())

    def test_without_the_shared_components_stand_ins_have_to_be_asked_for(self):
        log = self.install(expected=NO_IVI)
        self.assertIn("The IVI shared components are not on this machine.", log[-1])
        self.assertFalse(self.root64.exists() or self.root32.exists())

    def test_folders_that_cannot_be_are_refused(self):
        log = self.install("/STANDINS", f"/ROOT32={windows(self.root64)}", expected=COMMAND_LINE)
        self.assertIn("cannot be IVI's root folder for 64 and for 32 bits", log[-1])
        self.register_shared_components()
        before = contents(self.root64, self.root32)
        wine(INSTALLER, "/S", f"/LOG={windows(self.log)}", r"/D=C:\elsewhere", expected=COMMAND_LINE)
        self.assertIn(f"IVI's root folder for 64 bits is {windows(self.root64)}", self.log.read_text())
        wine(INSTALLER, "/S", r"/LOG=C:\no such folder\installer.log", expected=COMMAND_LINE)
        self.assertEqual(contents(self.root64, self.root32), before)

    def test_windows_before_10_is_refused(self):
        unknown = self.work / "other-setup.exe"
        shutil.copy(INSTALLER, unknown)
        log = self.install("/STANDINS", installer=unknown, expected=MACHINE)
        self.assertEqual(log[-1], "refused: This driver needs Windows 10 or later.")

    def test_what_cannot_be_finished_is_put_back(self):
        self.root64.mkdir()
        (self.root64 / "Lib_x64").write_text("in the way")
        log = self.install("/STANDINS", expected=FAILED)
        self.assertIn(f"failed: The folder {windows(self.root64 / 'Lib_x64')} cannot be made.", log)
        self.assertEqual(log[-1], "nothing is changed")
        self.assertEqual(files(self.root64), {"Lib_x64"})
        self.assertFalse((self.root64 / "Bin").exists() or self.root32.exists())
        self.assertEqual(self.store.read_bytes(), FOREIGN_STORE)

    def test_an_upgrade_that_cannot_be_registered_leaves_the_installation_as_it_was(self):
        self.install("/STANDINS")
        before = contents(self.root64, self.root32)
        entry = self.registered()
        self.store.write_text("no store")
        log = self.install("/STANDINS", installer=self.next_version, expected=FAILED)
        self.assertTrue(any("cannot be registered in the configuration store" in line for line in log), log)
        self.assertEqual(contents(self.root64, self.root32), before)
        self.assertEqual(self.registered(), entry)
        self.assertEqual(self.store.read_text(), "no store")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
