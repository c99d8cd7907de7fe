#!/usr/bin/python3
"""Configures the project with made-up vendors' folders (KVX_VENDOR_PLATFORM) and looks at what the driver is made of.

  vendor_platform_test.py PROJECT            what would be compiled and linked
  vendor_platform_test.py PROJECT --build    also builds the driver, and reads which libraries it needs
"""

import json
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

PROJECT = pathlib.Path(sys.argv[1]).resolve()
IS_BUILDING = "--build" in sys.argv[2:]

# What a folder has of a component: its header or headers, and where the functions of its library are listed.
VISA = {"visa": ("visa/include", "visa")}
IVI = {
    "IviCShared": ("platform/include", "platform/ivi_c_shared"),
    "IviConfigServer": ("platform/include", "platform/config_server"),
}
COMPONENTS = VISA | IVI
SHARED_HEADERS = {"visa": "visatype.h", "IviCShared": "IviVisaType.h", "IviConfigServer": "IviVisaType.h"}


def add_header(vendor, component):
    folder = vendor / "include"
    folder.mkdir(parents=True, exist_ok=True)
    for header in f"{component}.h", SHARED_HEADERS[component]:
        shutil.copy(PROJECT / COMPONENTS[component][0] / header, folder)


def add_library(vendor, component):
    """A library with functions of the right names that do nothing, or only its file."""
    folder = vendor / "lib"
    folder.mkdir(parents=True, exist_ok=True)
    library = folder / f"lib{component}.so"
    if not IS_BUILDING:
        library.touch()
        return
    exports = (PROJECT / COMPONENTS[component][1] / "exports.txt").read_text().splitlines()
    source = folder / f"{component}.c"
    source.write_text("".join(f"void {line.split()[0]}(void) {{}}\n" for line in exports if line))
    subprocess.run(
        ["cc", "-w", "-fno-builtin", "-shared", "-fPIC", f"-Wl,-soname,libvendor_{component}.so", "-o", library, source],
        check=True,
    )


class VendorPlatform(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        # One build folder for all: nothing of one vendor may stay when another is named.
        cls.folder = tempfile.TemporaryDirectory()
        cls.build = pathlib.Path(cls.folder.name, "build")

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def setUp(self):
        self.vendor = pathlib.Path(tempfile.mkdtemp(dir=self.folder.name))

    def configure(self):
        return subprocess.run(
            ["cmake", "-G", "Ninja", "-S", PROJECT, "-B", self.build, "-D", "CMAKE_EXPORT_COMPILE_COMMANDS=ON"]
            + ["-D", "KVX_BUILD_TESTS=OFF", "-D", f"KVX_VENDOR_PLATFORM={self.vendor}"]
            + ["-D", "CMAKE_UNITY_BUILD=ON", "-D", "CMAKE_UNITY_BUILD_BATCH_SIZE=0"],
            capture_output=True,
            text=True,
        )

    def has(self, components):
        for component in components:
            add_header(self.vendor, component)
            add_library(self.vendor, component)

    def libraries(self):
        """The files that the driver is linked with, the vendor's by their place in the folder."""
        commands = subprocess.run(
            ["ninja", "-C", self.build, "-t", "commands", "KVX2800T"], capture_output=True, text=True, check=True
        ).stdout.splitlines()
        command = next(line for line in commands if "-soname,libKVX2800T.so" in line)
        files = re.findall(r"\s(\S*lib(?:visa|IviCShared|IviConfigServer)\.so)", command)
        return sorted(file.replace(f"{self.vendor}/", "vendor/") for file in set(files))

    def header_folders(self):
        """The folders with the platform's headers in the order in which a source of the driver looks through them."""
        commands = json.loads((self.build / "compile_commands.json").read_text())
        command = next(entry["command"] for entry in commands if "/kvx_io.dir/" in entry["command"])
        folders = re.findall(r"-isystem (\S+)", command)
        return [f.replace(str(self.vendor), "vendor").replace(f"{PROJECT}/", "") for f in folders]

    def needed(self):
        """What the built driver names of the vendor's libraries."""
        subprocess.run(["nice", "ninja", "-C", self.build, "KVX2800T"], check=True, stdout=subprocess.DEVNULL)
        dynamic = subprocess.run(
            ["readelf", "-d", self.build / "lib/libKVX2800T.so"], capture_output=True, text=True, check=True
        ).stdout
        return sorted(re.findall(r"Shared library: \[(libvendor_\w+\.so|lib(?:visa|Ivi\w+)\.so)\]", dynamic))

    def assert_uses(self, header_folders, libraries, needed):
        result = self.configure()
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(self.header_folders(), header_folders)
        self.assertEqual(self.libraries(), libraries)
        if IS_BUILDING:
            self.assertEqual(self.needed(), needed)

    def assert_refuses(self, *lines):
        result = self.configure()
        self.assertEqual(result.returncode, 1)
        # CMake breaks lines.
        said = " ".join(result.stderr.split())
        for line in lines:
            self.assertIn(line.replace("FOLDER", f"KVX_VENDOR_PLATFORM={self.vendor}"), said)

    def test_visa_and_ivi_are_taken_from_a_folder_that_has_both(self):
        self.has(COMPONENTS)
        self.assert_uses(
            ["vendor/include"],
            ["vendor/lib/libIviCShared.so", "vendor/lib/libIviConfigServer.so", "vendor/lib/libvisa.so"],
            ["libvendor_IviCShared.so", "libvendor_IviConfigServer.so", "libvendor_visa.so"],
        )

    def test_visa_alone_is_taken_and_the_libraries_of_ivi_are_built(self):
        self.has(VISA)
        self.assert_uses(
            ["vendor/include", "platform/include"],
            ["lib/libIviCShared.so", "lib/libIviConfigServer.so", "vendor/lib/libvisa.so"],
            ["libIviCShared.so", "libIviConfigServer.so", "libvendor_visa.so"],
        )

    def test_the_libraries_of_ivi_alone_are_taken_and_visa_is_built(self):
        self.has(IVI)
        self.assert_uses(
            ["vendor/include", "visa/include"],
            ["lib/libvisa.so", "vendor/lib/libIviCShared.so", "vendor/lib/libIviConfigServer.so"],
            ["libvendor_IviCShared.so", "libvendor_IviConfigServer.so", "libvisa.so"],
        )

    def test_a_folder_with_neither_is_refused_with_what_it_lacks(self):
        self.assert_refuses(
            "FOLDER has neither VISA nor the libraries of IVI",
            "VISA, missing: include/visa.h, the library visa in lib/",
            "IVI, missing: include/IviCShared.h, the library IviCShared in lib/, include/IviConfigServer.h, "
            "the library IviConfigServer in lib/",
        )

    def test_a_header_without_its_library_is_refused(self):
        self.has(IVI)
        add_header(self.vendor, "visa")
        self.assert_refuses("FOLDER: VISA is not complete there, missing: the library visa in lib/")

    def test_one_library_of_ivi_without_the_other_is_refused(self):
        self.has(["visa", "IviCShared"])
        self.assert_refuses(
            "FOLDER: IVI is not complete there, missing: include/IviConfigServer.h, the library IviConfigServer in lib/"
        )


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
