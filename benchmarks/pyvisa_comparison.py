#!/usr/bin/python3
"""The driver beside PyVISA with its pure Python back end, with the same bytes over loopback.

    benchmarks/pyvisa_comparison.py [--vxi11] [BUILD_FOLDER]

Both are called from this program, the driver through ctypes, on one virtual instrument. They take turns, so that
whatever else the machine does slows both down. The build folder is build/benchmark unless one is named.

PyVISA is measured as it comes, when every set and query waits for the host to acknowledge the first of two writes,
which takes 40 ms, and with TCP_NODELAY set on its socket behind its back. With --vxi11 both use VXI-11, whose
portmapper has one port: this program then needs a network of its own (unshare -rn, and the loopback interface up).
"""

from __future__ import annotations

import argparse
import contextlib
import ctypes
import pathlib
import socket
import subprocess
import sys
import time
from typing import Callable, Iterator

try:
    import pyvisa
    import pyvisa_py  # noqa: F401 - the back end, which pyvisa only looks for when it is used
except ImportError as missing:
    sys.exit(f"{missing}: install python3-pyvisa and python3-pyvisa-py, and run this with /usr/bin/python3")

VOLTAGE_LEVEL = 1250001
CHANNEL = b"OutputChannel3"

ROUNDS = 10


def require(works: bool) -> None:
    """Ends the program when something does not work; figures of failing calls mean nothing."""
    if not works:
        raise RuntimeError("a call failed")


@contextlib.contextmanager
def virtual_instrument(build: pathlib.Path, *options: str) -> Iterator[str]:
    """The port of an instrument that runs meanwhile, of its way in that it announces last."""
    command = [build / "bin" / "kvx2800t-virtual", "--port", "0", "--until-stdin-closes", *options]
    with subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL, text=True) as process:
        assert process.stdin is not None and process.stdout is not None
        for _ in range(1 + len(options)):
            announced = process.stdout.readline()
        yield announced.rsplit(":", 1)[1].strip()
        process.stdin.close()


@contextlib.contextmanager
def driver(build: pathlib.Path, resource: str) -> Iterator[Callable[[], None]]:
    """A set and a query through the driver."""
    library = ctypes.CDLL(str(build / "lib" / "libKVX2800T.so"))
    library.KVX2800T_ConfigureVoltageLevel.argtypes = [ctypes.c_uint32, ctypes.c_char_p, ctypes.c_double]
    session = ctypes.c_uint32()
    require(library.KVX2800T_init(resource.encode(), 0, 0, ctypes.byref(session)) == 0)
    volts = ctypes.c_double()

    def exchange() -> None:
        require(library.KVX2800T_ConfigureVoltageLevel(session, CHANNEL, 5.0) == 0)
        require(library.KVX2800T_GetAttributeViReal64(session, CHANNEL, VOLTAGE_LEVEL, ctypes.byref(volts)) == 0)
        require(volts.value == 5.0)

    yield exchange
    library.KVX2800T_close(session)


@contextlib.contextmanager
def pure_python(resource: str, no_delay: bool) -> Iterator[Callable[[], None]]:
    """The same bytes through PyVISA."""
    manager = pyvisa.ResourceManager("@py")
    supply = manager.open_resource(resource, read_termination="\n", write_termination="\n")
    if no_delay:
        connection = supply.visalib.sessions[supply.session].interface
        connection.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)

    def exchange() -> None:
        supply.write(":SOUR3:VOLT 5.000000")
        require(float(supply.query(":SOUR3:VOLT?")) == 5.0)

    yield exchange
    supply.close()
    manager.close()


def seconds_for(exchange: Callable[[], None], count: int) -> float:
    start = time.perf_counter()
    for _ in range(count):
        exchange()
    return time.perf_counter() - start


def compare(title: str, fast: Callable[[], None], slow: Callable[[], None], count: int) -> None:
    """Prints how often each makes a set and a query; `count` of them in a turn."""
    driver_seconds = python_seconds = 0.0
    for _ in range(ROUNDS):
        driver_seconds += seconds_for(fast, count)
        python_seconds += seconds_for(slow, count)
    exchanges = ROUNDS * count
    print(f"{title}: driver {exchanges / driver_seconds:.0f}/s, PyVISA {exchanges / python_seconds:.0f}/s, "
          f"ratio {python_seconds / driver_seconds:.1f}")


def compare_over_socket(build: pathlib.Path, resource: str) -> None:
    with driver(build, resource) as fast:
        with pure_python(resource, no_delay=False) as slow:
            compare("as it comes", fast, slow, 10)
        with pure_python(resource, no_delay=True) as slow:
            compare("with TCP_NODELAY", fast, slow, 500)


def main() -> None:
    parser = argparse.ArgumentParser(description="The driver beside PyVISA with its pure Python back end.")
    parser.add_argument("--vxi11", action="store_true", help="over VXI-11")
    parser.add_argument("build", nargs="?", type=pathlib.Path, help="the build folder")
    options = parser.parse_args()
    build = options.build or pathlib.Path(__file__).resolve().parent.parent / "build" / "benchmark"
    if options.vxi11:
        resource = "TCPIP0::127.0.0.1::inst0::INSTR"
        with virtual_instrument(build, "--vxi11"), driver(build, resource) as fast:
            with pure_python(resource, no_delay=False) as slow:
                compare("VXI-11", fast, slow, 100)
        return
    with virtual_instrument(build) as port:
        compare_over_socket(build, f"TCPIP0::127.0.0.1::{port}::SOCKET")


if __name__ == "__main__":
    main()
