"""VISA finds the virtual instrument by multicast DNS and a VXI-11 server by its broadcast, in a network of the test's own.

usage: find_on_networks_test.py VISA_LIBRARY VIRTUAL_INSTRUMENT; ends with 77 where the host gives no such network.
"""
import ctypes
import os
import shutil
import socket
import struct
import subprocess
import sys
import threading

sys.path.append(os.path.join(os.path.dirname(__file__), "../../support/processes"))
import own_network

ADDRESS = "192.0.2.1"


def add_network():
    """An interface beside the loopback one; whether the host gives one."""
    commands = ["link add kvx0 type bridge", f"address add {ADDRESS}/24 broadcast + dev kvx0", "link set kvx0 up"]
    return shutil.which("ip") is not None and all(
        subprocess.run(["ip", *command.split()], capture_output=True).returncode == 0 for command in commands)


class Portmapper:
    """Knows one server, for whom it is asked by broadcast."""

    def __init__(self, port):
        self.port = port
        self.questions = []
        self.socket = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.socket.bind(("0.0.0.0", 111))
        threading.Thread(target=self.answer, daemon=True).start()

    def answer(self):
        while True:
            question, asker = self.socket.recvfrom(1000)
            self.questions.append(question[4:])
            self.socket.sendto(question[:4] + struct.pack(">6I", 1, 0, 0, 0, 0, self.port), asker)


class Instrument:
    """The virtual instrument with what its first lines say."""

    def __init__(self, program, *options):
        self.process = subprocess.Popen([program, "--mdns", "--until-stdin-closes", *options], stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, text=True)
        self.lines = []
        while not self.lines or not self.lines[-1].startswith("announced as "):
            line = self.process.stdout.readline()
            assert line, "the virtual instrument has ended"
            self.lines.append(line.strip())

    def end(self):
        self.process.stdin.close()
        assert self.process.wait(30) == 0


class Visa:
    def __init__(self, path):
        self.library = ctypes.CDLL(path)
        self.manager = ctypes.c_uint32()
        assert self.library.viOpenDefaultRM(ctypes.byref(self.manager)) == 0

    def find(self, expression):
        names = []
        found, count, name = ctypes.c_uint32(), ctypes.c_uint32(), ctypes.create_string_buffer(256)
        status = self.library.viFindRsrc(self.manager, expression.encode(), ctypes.byref(found), ctypes.byref(count), name)
        while status == 0:
            names.append(name.value.decode())
            status = self.library.viFindNext(found, name)
        assert status & 0xFFFFFFFF == 0xBFFF0011 and len(names) == count.value, (hex(status & 0xFFFFFFFF), names)
        self.library.viClose(found)
        return sorted(names)

    def query_identity(self, name):
        session, count, reply = ctypes.c_uint32(), ctypes.c_uint32(), ctypes.create_string_buffer(200)
        assert self.library.viOpen(self.manager, name.encode(), 0, 5000, ctypes.byref(session)) == 0, name
        assert self.library.viWrite(session, b"*IDN?\n", 6, None) == 0
        self.library.viSetAttribute(session, 0x3FFF0038, 1)  # VI_ATTR_TERMCHAR_EN
        assert self.library.viRead(session, reply, 199, ctypes.byref(count)) >= 0
        self.library.viClose(session)
        return reply.value.decode()


def expect(wanted, found):
    assert wanted == found, f"expected {wanted}, found {found}"


def test_loopback(visa, program):
    expect([], visa.find("TCPIP?*"))
    first = Instrument(program, "--port", "5025", "--hislip")
    second = Instrument(program, "--port", "5026", "--hislip", "4881")
    expect(["listening on 127.0.0.1:5025", "HiSLIP on 127.0.0.1:4880", "announced as kvx2800t-virtual-5025.local"],
           first.lines)
    sockets = ["TCPIP0::127.0.0.1::5025::SOCKET", "TCPIP0::127.0.0.1::5026::SOCKET"]
    links = ["TCPIP0::127.0.0.1::hislip0,4881::INSTR", "TCPIP0::127.0.0.1::hislip0::INSTR"]
    expect(sorted(sockets + links), visa.find("TCPIP?*"))
    expect(sockets[1:], visa.find('TCPIP?*{VI_ATTR_RSRC_CLASS == "SOCKET" && VI_ATTR_TCPIP_PORT > 5025}'))
    expect(links, visa.find("?*hislip?*"))
    for name in sockets:
        assert "KVX2833T" in visa.query_identity(name), name
    first.end()
    second.end()
    expect([], visa.find("TCPIP?*"))


def test_network(visa, program):
    instrument = Instrument(program, "--port", "5025", "--bind", ADDRESS)
    portmapper = Portmapper(1025)
    expect([f"TCPIP0::{ADDRESS}::5025::SOCKET", f"TCPIP0::{ADDRESS}::inst0::INSTR", "TCPIP0::127.0.0.1::inst0::INSTR"],
           sorted(visa.find("TCPIP?*"), key=lambda name: (ADDRESS not in name, name)))
    expect(2, len(portmapper.questions))
    visa.find("ASRL?*|USB?*")
    expect(2, len(portmapper.questions))
    instrument.end()


def main():
    own_network.enter()
    visa, program = Visa(sys.argv[1]), sys.argv[2]
    test_loopback(visa, program)
    if add_network():
        test_network(visa, program)
    else:
        print("skipped: the broadcast, without an interface of the test's own")


main()
