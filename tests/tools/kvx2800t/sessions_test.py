#!/usr/bin/python3
"""Runs the program as a person does, in a pseudo terminal, against a virtual instrument, and compares what is seen.

    sessions_test.py PROGRAM VIRTUAL_INSTRUMENT WITHOUT_MEMORY [--record]

Sessions are in sessions.txt, as they are seen: a command behind "$ ", and below it what the program writes to its terminal.
"[exit N]" stands where it ends with another code than 0. A line that begins with "% " is no part of it but is done in
between:

    % control TEXT    tells the virtual instrument's test control
    % file NAME       writes a file of the lines below, up to "% end"
    % store NAME      writes the example of a configuration store, at the virtual instrument
    % plain NAME      the same with a session of no driver, whose logical name is the driver session's own
    % set NAME VALUE  sets a variable of the environment, up to the end of the session
    % preload         puts the library WITHOUT_MEMORY in front of the driver, up to the end of the session

Where "..." stands, anything may be seen. {PORT}, {FOLDER} and {OTHER} are the instrument's port, the folder of the test and
a port where nobody listens. With --record the file is written anew; what it says then has to be read. WITHOUT_MEMORY is a
library whose KVX2800T_InitWithOptions is out of memory.
"""

import argparse
import contextlib
import os
import pathlib
import pty
import re
import select
import shlex
import signal
import socket
import subprocess
import sys
import tempfile
import time
import unittest
import urllib.request

SESSIONS = pathlib.Path(__file__).with_name("sessions.txt")
PLAIN_SESSION = """  <IviSession id="p20">
      <Name>Oven</Name>
      <Description></Description>
      <DataComponents/>
      <VirtualNames/>
      <SoftwareModuleName></SoftwareModuleName>
    </IviSession>
  </Sessions>"""
ITS_NAME = """  <IviLogicalName id="p21">
      <Name>BenchSupplySession</Name>
      <Description></Description>
      <IviSession idref="p20"/>
    </IviLogicalName>
  </LogicalNames>"""
EXAMPLE_STORE = pathlib.Path(__file__).parents[3] / "examples/IviConfigurationStore.xml"
PATIENCE = 60


class VirtualInstrument:
    """A virtual instrument with its test control."""

    def __init__(self, program, *arguments):
        command = [program, "--control-port", "0", "--until-stdin-closes", *arguments]
        self.process = subprocess.Popen(
            [*command, "--port", "0"] if "--port" not in arguments else command, stdin=subprocess.PIPE,
            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        self.port = self._announced("listening on ")
        self.resource = f"TCPIP0::127.0.0.1::{self.port}::SOCKET"
        self.stream = socket.create_connection(("127.0.0.1", self._announced("test control on ")))
        self.answers = self.stream.makefile("r", encoding="ascii")

    def _announced(self, start):
        line = self.process.stdout.readline()
        if not line.startswith(start):
            raise RuntimeError(f"the virtual instrument does not come up: {line}")
        return int(line.rsplit(":", 1)[1])

    def control(self, command):
        self.stream.sendall(command.encode() + b"\n")
        answer = self.answers.readline()
        if not answer.startswith("ok"):
            raise RuntimeError(f"{command}: {answer}")

    def received(self):
        self.stream.sendall(b"log\n")
        return [self.answers.readline().rstrip("\n") for _ in range(int(self.answers.readline().split()[1]))]

    def close(self):
        self.answers.close()
        self.stream.close()
        self.process.communicate(timeout=PATIENCE)


class Terminal:
    """A program in a pseudo terminal of its own."""

    def __init__(self, command, environment, folder):
        self.master, slave = pty.openpty()
        self.process = subprocess.Popen(command, stdin=slave, stdout=slave, stderr=slave, env=environment, cwd=folder,
                                        start_new_session=True)
        os.close(slave)
        self.seen = ""

    def _read(self, patience):
        """Whether there is more to come."""
        if not select.select([self.master], [], [], patience)[0]:
            raise TimeoutError(f"nothing more is seen behind: {self.seen}")
        try:
            data = os.read(self.master, 65536)
        except OSError:
            return False  # Linux tells the end of the last process so
        self.seen += data.decode(errors="replace").replace("\r\n", "\n")
        return bool(data)

    def expect(self, text, behind=0):
        """Waits until a text is seen, behind a place of what has been seen."""
        while text not in self.seen[behind:]:
            if not self._read(PATIENCE):
                raise EOFError(f"no {text!r} in: {self.seen}")
        return len(self.seen)

    def type(self, text):
        os.write(self.master, text.encode())

    def finish(self):
        """What was seen, and the exit code."""
        while self._read(PATIENCE):
            pass
        code = self.process.wait(timeout=PATIENCE)
        os.close(self.master)
        return self.seen, code


def shown(seen):
    """What stays on the screen of lines that are written over each other, without blanks at their ends."""
    lines = []
    for line in seen.split("\n"):
        cells = []
        column = 0
        for letter in line:
            if letter == "\r":
                column = 0
            elif letter == "\b":
                column -= 1
            else:
                cells[column:column + 1] = [letter]
                column += 1
        lines.append("".join(cells).rstrip())
    return "\n".join(lines)


def matches(pattern, seen):
    return re.fullmatch(".*".join(re.escape(part) for part in pattern.split("...")), seen, re.DOTALL) is not None


class Bench:
    """What all sessions share."""

    def __init__(self, arguments):
        self.arguments = arguments
        self.folder = tempfile.TemporaryDirectory()
        self.instrument = VirtualInstrument(arguments.virtual_instrument)
        with socket.socket() as unused:
            unused.bind(("127.0.0.1", 0))
            self.other = unused.getsockname()[1]
        self.variables = {}

    def close(self):
        self.instrument.close()
        self.folder.cleanup()

    def environment(self):
        return {"PATH": "/usr/bin:/bin", "LC_ALL": "C", "TERM": "dumb", "XDG_CONFIG_HOME": "/no-such-folder",
                "KVX2800T_RESOURCE": self.instrument.resource, **self.variables}

    def filled(self, text):
        return (text.replace("{PORT}", str(self.instrument.port)).replace("{FOLDER}", self.folder.name)
                .replace("{OTHER}", str(self.other)))

    def emptied(self, text):
        return (text.replace(f"::{self.instrument.port}::", "::{PORT}::").replace(self.folder.name, "{FOLDER}")
                .replace(f"::{self.other}::", "::{OTHER}::"))

    def open(self, *words):
        return Terminal([self.arguments.program, *words], self.environment(), self.folder.name)

    def run(self, command):
        """What is seen of a command line that begins with the program's name, and its exit code below."""
        program, *words = shlex.split(self.filled(command))
        assert program == "kvx2800t", command
        seen, code = self.open(*words).finish()
        return shown(seen) + ("" if code == 0 else f"[exit {code}]\n")

    def act(self, deed, lines):
        word, _, rest = deed.partition(" ")
        if word == "control":
            self.instrument.control(rest)
        elif word == "set":
            name, _, value = rest.partition(" ")
            self.variables[name] = self.filled(value)
        elif word == "preload":
            self.variables["LD_PRELOAD"] = self.arguments.without_memory
            self.variables["ASAN_OPTIONS"] = "verify_asan_link_order=0"
        elif word == "file":
            (pathlib.Path(self.folder.name) / rest).write_text(self.filled("".join(lines)), encoding="utf-8")
        elif word in ("store", "plain"):
            text = EXAMPLE_STORE.read_text(encoding="utf-8").replace("::5025::", f"::{self.instrument.port}::")
            if word == "plain":
                text = text.replace("</Sessions>", PLAIN_SESSION).replace("</LogicalNames>", ITS_NAME)
            (pathlib.Path(self.folder.name) / rest).write_text(text, encoding="utf-8")
        else:
            raise ValueError(deed)


class Step:
    """A line that begins with "$ " or "% ", and those below it."""

    def __init__(self, line):
        self.line = line
        self.below = []


def sessions_of(text):
    """By title, the steps of each session."""
    sessions = {}
    for line in text.splitlines(keepends=True):
        if line.startswith("== "):
            steps = sessions.setdefault(line[3:].strip(), [])
        elif line.startswith(("$ ", "% ")) and line != "% end\n":
            steps.append(Step(line.rstrip("\n")))
        elif line != "% end\n":
            steps[-1].below.append(line)
    return sessions


class RecordedSessions(unittest.TestCase):
    """Those of the file; each begins with an instrument that is as new."""

    arguments: argparse.Namespace

    def setUp(self):
        self.maxDiff = None
        self.bench = Bench(self.arguments)
        self.addCleanup(self.bench.close)

    def play(self, title, steps):
        for step in steps:
            if step.line.startswith("% "):
                self.bench.act(step.line[2:], step.below)
                continue
            seen = self.bench.run(step.line[2:])
            expected = self.bench.filled("".join(step.below).rstrip("\n"))
            if not matches(expected, seen.rstrip("\n")):
                self.assertEqual(expected, seen.rstrip("\n"), f"{title}: {step.line}")


def add_recorded_sessions():
    for title, steps in sessions_of(SESSIONS.read_text(encoding="utf-8")).items():
        name = "test_" + re.sub(r"\W+", "_", title)
        setattr(RecordedSessions, name, lambda self, title=title, steps=steps: self.play(title, steps))


def record(arguments):
    """Writes the file anew with what is seen; lines with "..." that still match stay."""
    text = ""
    for title, steps in sessions_of(SESSIONS.read_text(encoding="utf-8")).items():
        text += f"== {title}\n"
        with contextlib.closing(Bench(arguments)) as bench:
            for step in steps:
                if step.line.startswith("% "):
                    bench.act(step.line[2:], step.below)
                    text += step.line + "\n" + "".join(step.below)
                    text += "% end\n" if step.line.startswith("% file") else ""
                    continue
                seen = bench.run(step.line[2:])
                below = "".join(step.below)
                keeps = "..." in below and matches(bench.filled(below.rstrip("\n")), seen.rstrip("\n"))
                text += step.line + "\n" + (below if keeps else bench.emptied(seen))
    SESSIONS.write_text(text, encoding="utf-8")


class TypedSessions(unittest.TestCase):
    """What somebody types while the program runs, or does to the instrument."""

    arguments: argparse.Namespace

    def setUp(self):
        self.maxDiff = None
        self.bench = Bench(self.arguments)
        self.addCleanup(self.bench.close)

    def test_messages_are_typed_and_answered(self):
        terminal = self.bench.open("scpi")
        terminal.expect("Messages to KVX2833T; exit or Ctrl-D ends\n")
        terminal.expect("scpi> ")
        terminal.type("*IDN?\n")
        place = terminal.expect("Tessaro Instruments,KVX2833T,VIRT0000001,V1.00\n")
        terminal.type("BOGUS\n")
        terminal.expect("error -113 Undefined header\n", place)
        terminal.type("exit\n")
        self.assertEqual(terminal.finish()[1], 0)
        self.assertEqual([line for line in self.bench.instrument.received() if line == "BOGUS"], ["BOGUS"])

    def test_the_end_of_the_input_ends_the_messages(self):
        terminal = self.bench.open("scpi")
        terminal.expect("scpi> ")
        # A terminal that is just changing its mode may drop one, or leave something in the line: Ctrl-U takes that away.
        for _ in range(PATIENCE * 5):
            if terminal.process.poll() is not None:
                break
            terminal.type("\x15\x04")
            time.sleep(0.2)
        self.assertEqual(terminal.finish()[1], 0)

    def test_messages_of_a_file_fail_where_there_is_no_answer(self):
        program = subprocess.Popen([self.arguments.program, "scpi", "--timeout", "200ms"], stdin=subprocess.PIPE,
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE, env=self.bench.environment(), text=True)
        program.stdin.write("*OPC?\n")
        program.stdin.flush()
        self.assertEqual(program.stdout.readline(), "1\n")
        self.bench.instrument.control("swallow 1")
        said, errors = program.communicate("*OPC?\n", timeout=PATIENCE)
        self.assertEqual(said, "")
        self.assertRegex(errors, r"\A0xBFFF0015 VI_ERROR_TMO: .*\nkvx2800t: no answer to \*OPC\?\n\Z")
        self.assertEqual(program.returncode, 4)

    def test_ctrl_c_ends_a_log_cleanly(self):
        terminal = self.bench.open("log", "CH1", "--every", "20ms")
        terminal.expect("0.000,0.000,0.000,0.000\n")
        os.kill(terminal.process.pid, signal.SIGINT)
        seen, code = terminal.finish()
        self.assertEqual(code, 0)
        self.assertRegex(seen, r"\Aseconds,CH1 V,CH1 A,CH1 W\n(\d+\.\d{3},0\.000,0\.000,0\.000\n)+"
                               r"\d+ readings? in \d+\.\d{3} s, \d+ gaps?, \d+ readings? missing\n\Z")

    def test_a_log_shows_how_far_it_is_where_its_rows_go_to_a_file(self):
        terminal = self.bench.open("log", "CH1", "--every", "10ms", "--count", "3", "--csv", "log.csv")
        seen, code = terminal.finish()
        self.assertEqual(code, 0)
        self.assertRegex(seen, r"\A\r\d\.\d{3} s, 1 reading, 0 gaps")
        self.assertRegex(shown(seen), r"\A3 readings in \d\.\d{3} s, 0 gaps, 0 readings missing\n\Z")
        rows = (pathlib.Path(self.bench.folder.name) / "log.csv").read_text(encoding="utf-8").splitlines()
        self.assertEqual(len(rows), 4)
        times = [float(row.split(",")[0]) for row in rows[1:]]
        self.assertEqual(times, sorted(times))

    def test_a_log_survives_a_lost_link_and_reports_the_gap(self):
        instrument = VirtualInstrument(self.arguments.virtual_instrument)
        self.bench.variables["KVX2800T_RESOURCE"] = instrument.resource
        terminal = self.bench.open("log", "CH1", "--every", "20ms", "--timeout", "300ms", "--json", "log.json")
        terminal.expect("5 readings")
        instrument.process.kill()
        instrument.close()
        time.sleep(0.5)
        again = VirtualInstrument(self.arguments.virtual_instrument, "--port", str(instrument.port))
        self.addCleanup(again.close)
        terminal.expect("gap from ")
        place = terminal.expect(" missing: ")
        terminal.expect("1 gap", place)
        os.kill(terminal.process.pid, signal.SIGINT)
        seen, code = terminal.finish()
        self.assertEqual(code, 0)
        self.assertRegex(seen, r"gap from \d+\.\d{3} s to \d+\.\d{3} s, \d+ readings? missing: 0xBFFA421[45] KVX2800T_ERROR_IO")
        text = (pathlib.Path(self.bench.folder.name) / "log.json").read_text(encoding="utf-8")
        self.assertRegex(text, r'\n\{"gap":\{"from":[\d.]+,"to":[\d.]+,"missed":\d+,"reason":"0xBFFA421')
        self.assertTrue(text.endswith("}]}\n"))

    def test_ctrl_c_ends_watching_and_the_list_goes_on(self):
        (pathlib.Path(self.bench.folder.name) / "long.csv").write_text("1,1,1h\n", encoding="ascii")
        self.assertEqual(self.bench.run("kvx2800t list load CH1 long.csv"), "CH1: 1 group loaded\n")
        terminal = self.bench.open("list", "run", "CH1", "--watch")
        terminal.expect(" left of the group")
        os.kill(terminal.process.pid, signal.SIGINT)
        seen, code = terminal.finish()
        self.assertEqual(code, 0)
        self.assertEqual(shown(seen), "CH1 running, group 1 of 1\n")
        self.assertIn("on", self.bench.run("kvx2800t get CH1").split())

    def test_the_panel_is_served_until_ctrl_c(self):
        terminal = self.bench.open("panel", "--no-browser")
        terminal.expect("http://127.0.0.1:")
        terminal.expect("\n")
        address = re.search(r"http://\S+", terminal.seen)[0]
        with urllib.request.urlopen(address, timeout=PATIENCE) as page:
            self.assertEqual(page.status, 200)
        os.kill(terminal.process.pid, signal.SIGINT)
        self.assertEqual(terminal.finish()[1], 0)

    def test_an_output_that_cannot_be_written_is_told(self):
        with open("/dev/full", "w", encoding="ascii") as full:
            ended = subprocess.run([self.arguments.program, "get"], stdout=full, stderr=subprocess.PIPE, check=False,
                                   env=self.bench.environment(), text=True, timeout=PATIENCE)
        self.assertEqual((ended.returncode, ended.stderr), (9, "kvx2800t: cannot write the output\n"))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("program", type=os.path.abspath)
    parser.add_argument("virtual_instrument", type=os.path.abspath)
    parser.add_argument("without_memory", type=os.path.abspath)
    parser.add_argument("--record", action="store_true")
    arguments, rest = parser.parse_known_args()
    if arguments.record:
        record(arguments)
        return
    RecordedSessions.arguments = TypedSessions.arguments = arguments
    add_recorded_sessions()
    unittest.main(argv=[sys.argv[0], *rest])


main()
