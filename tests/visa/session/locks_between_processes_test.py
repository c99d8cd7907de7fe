"""Locks that one process holds and another one asks for, by HiSLIP and by VXI-11, with the virtual instrument.

usage: locks_between_processes_test.py VISA_LIBRARY VIRTUAL_INSTRUMENT; ends with 77 where the host gives no network of
the test's own, which VXI-11's port needs.
"""
import ctypes
import os
import subprocess
import sys

sys.path.append(os.path.join(os.path.dirname(__file__), "../../support/processes"))
import own_network

SUCCESS = 0
TIMED_OUT = 0xBFFF0015
LOCKED = 0xBFFF000F
NOT_LOCKED = 0xBFFF009C
EXCLUSIVE, SHARED = 1, 2
SHORT_MS, LONG_MS = 20, 60000
HISLIP = "TCPIP0::127.0.0.1::hislip0::INSTR"
VXI11 = "TCPIP0::127.0.0.1::inst0::INSTR"


def serve(library, resource):
    """The other process: a session that does what the lines say that it is sent."""
    visa = ctypes.CDLL(library)
    manager, session = ctypes.c_uint32(), ctypes.c_uint32()
    visa.viOpenDefaultRM(ctypes.byref(manager))
    status = visa.viOpen(manager, resource.encode(), 0, LONG_MS, ctypes.byref(session))
    for line in sys.stdin:
        name, *arguments = line.split()
        if name == "lock":
            kind, wait, *key = arguments
            status = visa.viLock(session, int(kind), int(wait), key[0].encode() if key else None,
                                 ctypes.create_string_buffer(256) if key else None)
        elif name == "unlock":
            status = visa.viUnlock(session)
        elif name == "write":
            status = visa.viWrite(session, arguments[0].encode(), len(arguments[0]), None)
        print(status & 0xFFFFFFFF, flush=True)


class Session:
    """A session in a process of its own."""

    def __init__(self, library, resource):
        self.process = subprocess.Popen([sys.executable, "-B", __file__, "--serve", library, resource],
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        expect(SUCCESS, self.call("opened"))

    def begin(self, *words):
        print(*words, file=self.process.stdin, flush=True)

    def result(self):
        return int(self.process.stdout.readline())

    def call(self, *words):
        self.begin(*words)
        return self.result()

    def end(self):
        self.process.stdin.close()
        expect(0, self.process.wait())

    def die(self):
        self.process.kill()
        self.process.wait()


def expect(wanted, found):
    assert wanted == found, f"expected {wanted:#x}, found {found:#x}"


def exclusive_locks(library, resource):
    first, second = Session(library, resource), Session(library, resource)
    expect(SUCCESS, first.call("lock", EXCLUSIVE, LONG_MS))
    expect(TIMED_OUT, second.call("lock", EXCLUSIVE, SHORT_MS))
    expect(NOT_LOCKED, second.call("unlock"))
    second.begin("lock", EXCLUSIVE, LONG_MS)
    expect(SUCCESS, first.call("write", "*RST"))
    expect(SUCCESS, first.call("unlock"))
    expect(SUCCESS, second.result())
    expect(TIMED_OUT, first.call("lock", EXCLUSIVE, SHORT_MS))
    # Whoever dies holds nothing any more.
    first.begin("lock", EXCLUSIVE, LONG_MS)
    second.die()
    expect(SUCCESS, first.result())
    first.end()


def refused_messages(library):
    first, second = Session(library, VXI11), Session(library, VXI11)
    expect(SUCCESS, first.call("lock", EXCLUSIVE, LONG_MS))
    expect(LOCKED, second.call("write", "*RST"))
    expect(SUCCESS, first.call("unlock"))
    expect(SUCCESS, second.call("write", "*RST"))
    first.end()
    second.end()


def shared_locks(library):
    first, second, third = (Session(library, HISLIP) for _ in range(3))
    expect(SUCCESS, first.call("lock", SHARED, LONG_MS, "bench"))
    expect(SUCCESS, second.call("lock", SHARED, LONG_MS, "bench"))
    expect(TIMED_OUT, third.call("lock", SHARED, SHORT_MS, "other"))
    expect(TIMED_OUT, third.call("lock", EXCLUSIVE, SHORT_MS))
    expect(SUCCESS, first.call("unlock"))
    third.begin("lock", EXCLUSIVE, LONG_MS)
    expect(SUCCESS, second.call("unlock"))
    expect(SUCCESS, third.result())
    for session in (first, second, third):
        session.end()


def main(library, program):
    own_network.enter()
    instrument = subprocess.Popen([program, "--vxi11", "--hislip", "--port", "0", "--until-stdin-closes"],
                                  stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
    while not instrument.stdout.readline().startswith("portmapper on"):
        pass
    for resource in (HISLIP, VXI11):
        exclusive_locks(library, resource)
    refused_messages(library)
    shared_locks(library)
    instrument.stdin.close()
    expect(0, instrument.wait())


if sys.argv[1] == "--serve":
    serve(*sys.argv[2:])
else:
    main(*sys.argv[1:])
