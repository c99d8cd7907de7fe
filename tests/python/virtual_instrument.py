"""A virtual instrument as a process, for tests."""

import os
import socket
import subprocess


class VirtualInstrument:
    """A virtual instrument with its test control; it ends with this process at the latest."""

    def __init__(self, port=0):
        self._process = subprocess.Popen(
            [os.environ["KVX_VIRTUAL_INSTRUMENT"], "--port", str(port), "--control-port", "0", "--until-stdin-closes"],
            stdin=subprocess.PIPE,
            stdout=subprocess.PIPE,
            stderr=subprocess.DEVNULL,
            text=True,
        )
        self.port = self._announced_port("listening on ")
        self.resource = f"TCPIP0::127.0.0.1::{self.port}::SOCKET"
        self._control = socket.create_connection(("127.0.0.1", self._announced_port("test control on ")))
        self._answers = self._control.makefile("r", encoding="ascii")

    def _announced_port(self, start):
        for line in self._process.stdout:
            if line.startswith(start):
                return int(line.rsplit(":", 1)[1])
        raise RuntimeError("the virtual instrument does not come up")

    def control(self, command):
        self._control.sendall(command.encode() + b"\n")
        answer = self._answers.readline().split()
        if not answer or answer[0] != "ok":
            raise RuntimeError(f"{command}: {answer}")
        return answer[1:]

    def new_lines(self):
        """What it has received since the last call."""
        lines = [self._answers.readline().rstrip("\n") for _ in range(int(self.control("log")[0]))]
        self.control("clear-log")
        return lines

    def close(self):
        self._answers.close()
        self._control.close()
        self._process.communicate()
