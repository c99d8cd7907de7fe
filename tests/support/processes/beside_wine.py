#!/usr/bin/python3
"""Runs a Windows test program under Wine, and programs of this machine beside it on its request.

    beside_wine.py WINE-SCRIPT PROGRAM [ARGUMENT...]

The program finds the port of this helper in KVX_PROCESS_HELPER. A connection stands for one process. Its first line is
the command line, the arguments separated by tabs; the answer is "ok" or "error <text>". Then each line is a request
that is answered once it is done:

    read-line     "line <text>", or "end" at the end of the standard output
    errors        "errors <count>", followed by as many bytes of what the process has written to its error output
    close-input   "ok"
    interrupt, terminate, kill
                  "ok", once the signal is sent; harmless after the end of the process
    wait          "exit <code>": 128 and the number of a signal that has ended it; it is killed after a minute

When the connection ends, the process is killed. No process outlives this script.
"""

import os
import signal
import socketserver
import subprocess
import sys
import tempfile
import threading

PATIENCE = 60


class Companion(socketserver.StreamRequestHandler):
    """One process, for one connection."""

    def handle(self):
        command = self.rfile.readline().decode().rstrip("\n").split("\t")
        with tempfile.TemporaryFile() as self.errors:
            try:
                self.process = subprocess.Popen(
                    command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=self.errors)
            except OSError as error:
                self.answer(f"error {error}")
                return
            self.answer("ok")
            try:
                for request in self.rfile:
                    getattr(self, "do_" + request.decode().strip().replace("-", "_"))()
            except ConnectionError:
                pass
            finally:
                self.process.kill()
                self.process.wait()
                self.process.stdout.close()

    def answer(self, text):
        self.wfile.write(text.encode() + b"\n")

    def do_read_line(self):
        line = self.process.stdout.readline()
        self.wfile.write(b"line " + line.rstrip(b"\n") + b"\n" if line else b"end\n")

    def do_errors(self):
        size = os.fstat(self.errors.fileno()).st_size
        self.answer(f"errors {size}")
        self.wfile.write(os.pread(self.errors.fileno(), size, 0))

    def do_close_input(self):
        self.process.stdin.close()
        self.answer("ok")

    def signal_process(self, number):
        self.process.send_signal(number)
        self.answer("ok")

    def do_interrupt(self):
        self.signal_process(signal.SIGINT)

    def do_terminate(self):
        self.signal_process(signal.SIGTERM)

    def do_kill(self):
        self.signal_process(signal.SIGKILL)

    def do_wait(self):
        try:
            code = self.process.wait(PATIENCE)
        except subprocess.TimeoutExpired:
            self.process.kill()
            code = self.process.wait()
        self.answer(f"exit {code if code >= 0 else 128 - code}")


class Helper(socketserver.ThreadingTCPServer):
    block_on_close = True


def main():
    with Helper(("127.0.0.1", 0), Companion) as helper:
        threading.Thread(target=helper.serve_forever, daemon=True).start()
        environment = dict(os.environ, KVX_PROCESS_HELPER=str(helper.server_address[1]))
        result = subprocess.call(sys.argv[1:], env=environment)
        helper.shutdown()
    sys.exit(result)


if __name__ == "__main__":
    main()
