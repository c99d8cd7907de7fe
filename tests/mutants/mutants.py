"""Applies one-line faults to copies of the tree, one at a time, and tells which of them no test notices.

run.sh calls it in the project's top folder. README.md of this folder describes the lists of faults.
"""

import argparse
import dataclasses
import os
import pathlib
import queue
import shutil
import subprocess
import sys
import tempfile
import threading

FAULTS = pathlib.Path("tests/mutants/faults")

# The programs that test a layer: each is built and run only if those before it have noticed nothing.
PROGRAMS = {
    "base": ["base_test", "instrument_test", "runtime_test", "api_test"],
    "io": ["io_test", "instrument_test", "runtime_test", "api_test", "end_to_end_test"],
    "instrument": ["instrument_test", "simulator_test", "api_test", "operations_test", "allocation_test"],
    "simulator": ["simulator_test", "runtime_test", "api_test"],
    "runtime": ["runtime_test", "api_test", "api_shared_test", "end_to_end_test", "session_lifetime_test"],
    "api": ["api_test", "api_out_of_memory_test", "api_shared_test", "end_to_end_test", "session_lifetime_test"],
}

SURVIVORS_ALLOWED = 0.03
PROGRAM_SECONDS = 300


@dataclasses.dataclass(frozen=True)
class Fault:
    """One text of one line that another one replaces; `why` tells of a fault that cannot be noticed."""

    file: str
    old: str
    new: str
    why: str

    def __str__(self):
        return f"{self.file}: {self.old}  =>  {self.new or '(nothing)'}"

    def programs(self):
        return PROGRAMS[self.file.split("/")[0]]


class BadFault(Exception):
    """A list of faults that is not as it should be."""


def read_faults(path):
    file = old = None
    faults = []
    for line in path.read_text().splitlines() + ["#"]:
        mark, text = line[:1], line[1:].strip()
        if old is not None and mark != "+":
            raise BadFault(f"{path}: nothing takes the place of: {old}")
        if mark == "#":
            file = text
        elif mark == "-":
            old = text
        elif mark == "+" and old is not None:
            faults.append(Fault(file, old, text, ""))
            old = None
        elif mark == "?" and faults:
            faults[-1] = dataclasses.replace(faults[-1], why=text)
        elif line.strip():
            raise BadFault(f"{path}: not understood: {line}")
    return faults


def check(fault):
    if not fault.old or fault.file.split("/")[0] not in PROGRAMS:
        raise BadFault(f"not a fault of the driver: {fault}")
    places = pathlib.Path(fault.file).read_text().count(fault.old)
    if places != 1:
        raise BadFault(f"{places} places in place of one: {fault}")


def all_faults(patterns):
    faults = [fault for path in sorted(FAULTS.glob("*.txt")) for fault in read_faults(path)]
    for fault in faults:
        check(fault)
    if len({(fault.file, fault.old, fault.new) for fault in faults}) != len(faults):
        raise BadFault("a fault stands in the lists twice")
    return [fault for fault in faults if not patterns or any(pattern in fault.file for pattern in patterns)]


class Copy:
    """A copy of the tree in a folder of its own, in which one fault at a time is tried."""

    def __init__(self, folder, processes):
        self.folder = pathlib.Path(folder)
        self.processes = str(processes)
        names = subprocess.run(["git", "ls-files", "-z"], check=True, capture_output=True).stdout
        for name in names.decode().split("\0")[:-1]:
            if os.path.exists(name):
                target = self.folder / name
                target.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy2(name, target)
        self.run(["cmake", "--preset", "debug", "-DCMAKE_CXX_FLAGS=-w", "-DCMAKE_CXX_FLAGS_DEBUG="]).check_returncode()

    def run(self, command, **environment):
        return subprocess.run(
            command, cwd=self.folder, env={**os.environ, **environment}, stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT, stdin=subprocess.DEVNULL, text=True, errors="replace")

    def build(self, program):
        return self.run(["cmake", "--build", "--preset", "debug", "--target", program, "--", "-j", self.processes])

    def passes(self, program):
        """A program that crashes or hangs does not pass either."""
        result = self.run(
            ["ctest", "--test-dir", "build/debug", "-R", rf"^{program}(\.[0-9]+)?$", "-j", self.processes,
             "--stop-on-failure", "--timeout", str(PROGRAM_SECONDS), "--no-tests=error", "--output-on-failure"],
            GTEST_FAIL_FAST="1")
        return result.returncode == 0, result.stdout

    def prove_sound(self, programs):
        for program in programs:
            built = self.build(program)
            if built.returncode != 0:
                raise BadFault(f"{program} cannot be built as it is:\n{built.stdout[-3000:]}")
            passed, output = self.passes(program)
            if not passed:
                raise BadFault(f"{program} fails as it is:\n{output[-3000:]}")

    def notices(self, fault):
        """The program that notices the fault; empty: none does."""
        source = self.folder / fault.file
        sound = source.read_text()
        source.write_text(sound.replace(fault.old, fault.new))
        try:
            for program in fault.programs():
                built = self.build(program)
                if built.returncode != 0:
                    raise BadFault(f"does not compile: {fault}\n{built.stdout[-1500:]}")
                if not self.passes(program)[0]:
                    return program
            return ""
        finally:
            source.write_text(sound)


class Campaign:
    """All faults, tried in several copies side by side, file by file."""

    def __init__(self, faults, jobs):
        self.jobs = jobs
        self.count = len(faults)
        self.tried = 0
        self.survivors = []
        self.errors = []
        self.lock = threading.Lock()
        by_file = {}
        for fault in faults:
            by_file.setdefault(fault.file, []).append(fault)
        self.programs = sorted({program for fault in faults for program in fault.programs()[:1]})
        self.files = queue.SimpleQueue()
        for file in sorted(by_file, key=lambda file: -len(by_file[file])):
            self.files.put(by_file[file])

    def tell(self, fault, program):
        with self.lock:
            self.tried += 1
            print(f"[{self.tried}/{self.count}] {program or 'SURVIVED'}: {fault}", flush=True)
            if not program:
                self.survivors.append(fault)
            elif fault.why:
                self.errors.append(f"explained, but {program} notices it: {fault}")

    def work(self, folder):
        try:
            copy = Copy(folder, max(1, (os.cpu_count() or 1) // self.jobs))
            copy.prove_sound(self.programs)
            while True:
                for fault in self.files.get_nowait():
                    try:
                        self.tell(fault, copy.notices(fault))
                    except BadFault as error:
                        self.errors.append(str(error))
        except queue.Empty:
            pass
        except (BadFault, subprocess.CalledProcessError) as error:
            self.errors.append(str(error))

    def run(self):
        with tempfile.TemporaryDirectory(prefix="kvx_mutants_") as top:
            threads = [threading.Thread(target=self.work, args=(os.path.join(top, str(i)),)) for i in range(self.jobs)]
            for thread in threads:
                thread.start()
            for thread in threads:
                thread.join()

    def report(self):
        """The exit status."""
        unexplained = [fault for fault in self.survivors if not fault.why]
        print(f"\n{self.tried} faults: {self.tried - len(self.survivors)} noticed, "
              f"{len(self.survivors) - len(unexplained)} survived as explained, {len(unexplained)} survived")
        for fault in unexplained:
            print(f"survived: {fault}")
        for error in self.errors:
            print(f"error: {error}")
        return 1 if self.errors or len(unexplained) > SURVIVORS_ALLOWED * self.count else 0


def main():
    parser = argparse.ArgumentParser(prog="tests/mutants/run.sh", description=__doc__.splitlines()[0])
    parser.add_argument("--check", action="store_true", help="only that each fault has its one place")
    parser.add_argument("--jobs", type=int, default=max(1, (os.cpu_count() or 1) // 2),
                        help="copies of the tree side by side")
    parser.add_argument("patterns", nargs="*", help="parts of the names of the files to be broken")
    arguments = parser.parse_args()
    try:
        faults = all_faults(arguments.patterns)
    except BadFault as error:
        sys.exit(f"error: {error}")
    if arguments.check:
        print(f"{len(faults)} faults, each with its one place")
        return 0
    campaign = Campaign(faults, max(1, arguments.jobs))
    campaign.run()
    return campaign.report()


sys.exit(main())
