#!/usr/bin/python3
"""The lines that the panel shows for a click do what the click has done.

    lines_test.py KVX2800T VIRTUAL_INSTRUMENT EXPORTS HEADERS...

Each action is asked of a panel, and the lines of Python that it shows are run with the Python package against another
instrument: both instruments have received the same messages but for queries. The lines of C call exported functions, with
names that the headers have.
"""

import base64
import contextlib
import json
import os
import re
import socket
import subprocess
import sys
import unittest
from pathlib import Path

from kvx2800t import ListEnd, SourceMode, Supply

PROGRAM, INSTRUMENT, EXPORTS, *HEADERS = sys.argv[1:]

ACTIONS = [
    {"do": "setVoltage", "channel": "CH3", "value": 2.5},
    {"do": "setCurrent", "channel": "CH3", "value": 0.75},
    {"do": "setOvp", "channel": "CH3", "enabled": True, "value": 6.5},
    {"do": "setOcp", "channel": "CH4", "enabled": True, "value": 1.25},
    {"do": "setOutput", "channel": "CH3", "on": True},
    {
        "do": "loadList",
        "channel": "CH3",
        "groups": [
            {"voltage": 1, "current": 0.5, "duration": 60},
            {"voltage": 2.25, "current": 0.1, "duration": 0.125},
        ],
        "cycles": 2,
        "end": "last",
    },
    {"do": "runList", "channel": "CH3"},
    {"do": "pauseList", "channel": "CH3"},
    {"do": "runList", "channel": "CH3"},
    {"do": "stopList", "channel": "CH3"},
    {"do": "readList", "channel": "CH3"},
    {"do": "allOff"},
    {"do": "setSourceMode", "mode": "series"},
    {"do": "clearErrors"},
    {"do": "reset"},
]


class Instrument:
    """A virtual instrument of its own."""

    def __init__(self, stack: contextlib.ExitStack) -> None:
        self._process = stack.enter_context(
            subprocess.Popen(
                [INSTRUMENT, "--port", "0", "--control-port", "0", "--until-stdin-closes"],
                stdin=subprocess.PIPE,
                stdout=subprocess.PIPE,
                stderr=subprocess.DEVNULL,
                text=True,
            )
        )
        stack.callback(self._process.stdin.close)
        port, control = (self._process.stdout.readline().strip().rsplit(":", 1)[1] for _ in range(2))
        self.resource = f"TCPIP0::127.0.0.1::{port}::SOCKET"
        connection = stack.enter_context(socket.create_connection(("127.0.0.1", int(control))))
        self._control = stack.enter_context(connection.makefile("rw", newline="\n"))

    def commands(self) -> list[str]:
        """What it has received but for queries, which the panel asks all the time, and their channels."""
        self._control.write("log\n")
        self._control.flush()
        count = int(self._control.readline().split()[1])
        lines = [self._control.readline().strip() for _ in range(count)]
        return [line for line in lines if not line.endswith("?") and "INST:SELE" not in line and "? " not in line]


class Page:
    """A page's end of the panel's WebSocket."""

    def __init__(self, stack: contextlib.ExitStack, address: str) -> None:
        host, token = re.fullmatch(r"http://([^/]+)/\?token=(\w+)", address).groups()
        connection = stack.enter_context(socket.create_connection(("127.0.0.1", int(host.rsplit(":", 1)[1]))))
        self._stream = stack.enter_context(connection.makefile("rwb"))
        fields = {
            "Host": host,
            "Origin": f"http://{host}",
            "Connection": "Upgrade",
            "Upgrade": "websocket",
            "Sec-WebSocket-Version": "13",
            "Sec-WebSocket-Key": base64.b64encode(os.urandom(16)).decode(),
        }
        lines = [f"GET /ws?token={token} HTTP/1.1", *(f"{name}: {value}" for name, value in fields.items()), "", ""]
        self._stream.write("\r\n".join(lines).encode())
        self._stream.flush()
        while self._stream.readline().strip():
            pass

    def say(self, message: dict[str, object]) -> None:
        text = json.dumps(message).encode()
        size = bytes([0x80 | len(text)]) if len(text) < 126 else b"\xFE" + len(text).to_bytes(2, "big")
        # A mask of zeros leaves the text as it is.
        self._stream.write(b"\x81" + size + bytes(4) + text)
        self._stream.flush()

    def hear(self, kind: str) -> dict[str, object]:
        while True:
            size = self._stream.read(2)[1]
            if size > 125:
                size = int.from_bytes(self._stream.read({126: 2, 127: 8}[size]), "big")
            message = json.loads(self._stream.read(size))
            if message["type"] == kind:
                return message


class Lines(unittest.TestCase):
    @classmethod
    def setUpClass(cls) -> None:
        cls.stack = contextlib.ExitStack()
        cls.addClassCleanup(cls.stack.close)
        cls.clicked = Instrument(cls.stack)
        cls.typed = Instrument(cls.stack)
        panel = cls.stack.enter_context(
            subprocess.Popen(
                [PROGRAM, "panel", cls.clicked.resource, "--no-browser", "--until-stdin-closes"],
                stdin=subprocess.PIPE,
                stdout=subprocess.PIPE,
                text=True,
            )
        )
        cls.stack.callback(panel.stdin.close)
        panel.stdout.readline()
        page = Page(cls.stack, panel.stdout.readline().strip())
        # The panel connects before it takes actions.
        while page.hear("state")["channels"] is None:
            pass
        cls.lines = []
        for number, action in enumerate(ACTIONS, 1):
            page.say({"id": number, **action})
            cls.lines.append(page.hear("lines"))
            result = page.hear("result")
            if not result["ok"]:
                raise AssertionError(f"{action}: {result}")

    def test_the_lines_of_python_send_what_the_clicks_have_sent(self) -> None:
        with Supply(self.typed.resource) as supply, contextlib.redirect_stdout(None):
            names = {"supply": supply, "ListEnd": ListEnd, "SourceMode": SourceMode}
            for lines in self.lines:
                exec("\n".join(lines["python"]), names)
        self.assertEqual(self.typed.commands(), self.clicked.commands())
        self.assertIn(":SOUR3:VOLT 2.500000", self.clicked.commands())

    def test_the_lines_of_c_have_only_names_of_the_driver(self) -> None:
        functions = set(Path(EXPORTS).read_text().split())
        headers = "".join(Path(header).read_text() for header in HEADERS)
        for lines in self.lines:
            for name in re.findall(r"KVX2800T_\w+", "\n".join(lines["c"])):
                if "_VAL_" in name or "_ATTR_" in name:
                    self.assertRegex(headers, rf"#define {name}\b")
                else:
                    self.assertIn(name, functions)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
