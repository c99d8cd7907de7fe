"""Wheel and sdist: made, looked into, installed into a Python of its own, and used.

Environment: PACKAGE (what they are made of), KVX_VIRTUAL_INSTRUMENT.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tarfile
import venv
import zipfile

import pytest
from virtual_instrument import VirtualInstrument

LIBRARIES = {"libKVX2800T.so.1", "libvisa.so", "libIviCShared.so", "libIviConfigServer.so"}
FOUR_LINES = """\
from kvx2800t import Supply
with Supply({resource!r}) as supply:
    supply.channels["CH3"].voltage_level = 3.3
    print(supply.channels["CH3"].voltage_level)
"""


@pytest.fixture(scope="module")
def packages(tmp_path_factory):
    """The folder with both."""
    source, folder = tmp_path_factory.mktemp("source") / "python", tmp_path_factory.mktemp("packages")
    shutil.copytree(os.environ["PACKAGE"], source, ignore=shutil.ignore_patterns("build", "*.egg-info", "__pycache__"))
    subprocess.run(
        [sys.executable, "-m", "build", "--no-isolation", "--sdist", "--wheel", "--outdir", folder, source],
        check=True,
        stdout=subprocess.DEVNULL,
    )
    return folder


@pytest.fixture(scope="module")
def wheel(packages):
    (path,) = packages.glob("*.whl")
    return path


def test_the_wheel_is_for_this_kind_of_machine_and_every_python(wheel):
    assert wheel.name == f"kvx2800t-1.0.0-py3-none-linux_{os.uname().machine}.whl"


def test_the_wheel_has_the_driver_and_the_platforms_libraries(wheel):
    names = [pathlib.PurePath(name) for name in zipfile.ZipFile(wheel).namelist()]
    libraries = [name.name for name in names if name.parts[:2] == ("kvx2800t", "lib")]
    assert len(libraries) == 4
    assert set(libraries) == LIBRARIES
    assert pathlib.PurePath("kvx2800t/py.typed") in names
    assert pathlib.PurePath("kvx2800t/_interface.py") in names


def test_the_wheel_needs_of_the_system_what_its_document_says(wheel, tmp_path):
    document = pathlib.Path(os.environ["PACKAGE"], "README.md").read_text(encoding="utf-8").split("## The wheel")[1]
    zipfile.ZipFile(wheel).extractall(tmp_path)
    needed, versions = set(), set()
    for library in tmp_path.rglob("*.so*"):
        told = subprocess.run(["readelf", "-dV", library], capture_output=True, check=True, text=True).stdout
        needed |= set(re.findall(r"\(NEEDED\).*\[(.*?)\]", told))
        versions |= set(re.findall(r"Name: (GLIBC|GLIBCXX|CXXABI)_([0-9.]+)", told))
    of_every_system = {"libc.so.6", "libm.so.6", "libgcc_s.so.1", "libstdc++.so.6", "ld-linux-x86-64.so.2"}
    others = needed - LIBRARIES - of_every_system
    assert others == set(re.findall(r"`(lib[\w.-]+\.so\.\d)`", document))
    glibc = tuple(map(int, re.search(r"glibc (\d+)\.(\d+) or later", document).groups()))
    # libstdc++ of GCC 12.
    known = {"GLIBC": glibc, "GLIBCXX": (3, 4, 30), "CXXABI": (1, 3, 13)}
    for name, version in versions:
        assert tuple(map(int, version.split("."))) <= known[name]
    assert "C++ runtime of GCC 12 or later" in document


def test_the_sdist_has_no_library(packages):
    (sdist,) = packages.glob("*.tar.gz")
    names = {name.split("/", 1)[-1] for name in tarfile.open(sdist).getnames()}
    assert not [name for name in names if ".so" in name]
    assert {"kvx2800t/_interface.py", "kvx2800t/py.typed", "README.md", "LICENSE", "setup.py"} <= names


def test_four_lines_drive_the_virtual_instrument(wheel, tmp_path):
    venv.create(tmp_path / "venv", with_pip=True, symlinks=True)
    python = tmp_path / "venv" / "bin" / "python"
    install = [python, "-I", "-m", "pip", "install", "--quiet", "--no-index", "--disable-pip-version-check", wheel]
    subprocess.run(install, check=True)
    instrument = VirtualInstrument()
    environment = {"XDG_CONFIG_HOME": "/no-such-folder"}
    try:
        ended = subprocess.run(
            [python, "-I", "-c", FOUR_LINES.format(resource=instrument.resource)],
            env=environment,
            cwd=tmp_path,
            capture_output=True,
            text=True,
        )
        assert (ended.stdout, ended.stderr) == ("3.3\n", "")
        assert ":SOUR3:VOLT 3.300000" in instrument.new_lines()
    finally:
        instrument.close()
    loaded = subprocess.run(
        [python, "-I", "-c", "import kvx2800t; kvx2800t.Library(); print(open('/proc/self/maps').read())"],
        env=environment,
        check=True,
        capture_output=True,
        text=True,
    )
    for name in LIBRARIES:
        places = {line.split()[-1] for line in loaded.stdout.splitlines() if line.endswith("/" + name)}
        assert len(places) == 1
        assert str(places.pop()).startswith(str(tmp_path.resolve()))
