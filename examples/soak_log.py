"""Leaves outputs on for a long time and writes what they give into a CSV file.

    python3 soak_log.py RESOURCE soak.csv --channels OutputChannel3,OutputChannel4 --volts 5 --interval 10 --samples 8640

A row has the seconds since the start, by a clock that nobody sets, and volts, amperes and watts of each channel. Rows are
in the file as soon as they are measured. A trip ends the soak, and so does Ctrl-C; the outputs are switched off.
"""

import argparse
import csv
import sys
import time

from kvx2800t import CurrentLimitBehavior, Error, Supply


class Failure(Exception):
    """What went wrong, for the one who runs the program."""


def switch_on(supply, channels, volts, amperes):
    """Sets all channels and switches them on together."""
    rails = supply.channels[tuple(channels)]
    rails.voltage_level = volts
    rails.configure_current_limit(CurrentLimitBehavior.TRIP, amperes)
    rails.output_enabled = True
    print(f"{rails.name}: {volts:.3f} V, at most {amperes:.3f} A", flush=True)


def check(supply, channels):
    """Fails when a protection has switched an output off."""
    for name in channels:
        tripped = supply.channels[name].protection.state
        if tripped:
            raise Failure(f"{name} has tripped: over-{'voltage' if tripped.over_voltage else 'current'}")


def samples(supply, channels, interval, count):
    """Yields seconds and readings. Sample n is not taken before n intervals are over: delays do not add up."""
    start = time.monotonic()
    for number in range(count):
        time.sleep(max(0.0, start + number * interval - time.monotonic()))
        yield time.monotonic() - start, supply.measure_all(",".join(channels))


def log(supply, channels, interval, count, file):
    """Writes the samples."""
    writer = csv.writer(file)
    writer.writerow(["seconds"] + [f"{name} {unit}" for name in channels for unit in ("V", "A", "W")])
    for seconds, readings in samples(supply, channels, interval, count):
        writer.writerow([f"{value:.3f}" for value in (seconds, *(value for row in readings for value in row))])
        file.flush()
        check(supply, channels)
    print(f"{count} samples")


def main():
    """Returns the exit code."""
    parser = argparse.ArgumentParser(description="Logs what outputs give over a long time.")
    parser.add_argument("resource", help="VISA resource descriptor or logical name")
    parser.add_argument("csv", help="the file to write")
    parser.add_argument("--channels", default="OutputChannel3", help="names with commas; default: OutputChannel3")
    parser.add_argument("--volts", type=float, default=5.0, help="default: 5")
    parser.add_argument("--amperes", type=float, default=1.0, help="what a channel may take; default: 1")
    parser.add_argument("--interval", type=float, default=1.0, metavar="SECONDS", help="default: 1")
    parser.add_argument("--samples", type=int, default=10, help="default: 10")
    arguments = parser.parse_args()
    channels = arguments.channels.split(",")
    try:
        with open(arguments.csv, "w", encoding="utf-8", newline="") as file:
            with Supply(arguments.resource, reset=True, query_instrument_status=True) as supply:
                try:
                    switch_on(supply, channels, arguments.volts, arguments.amperes)
                    log(supply, channels, arguments.interval, arguments.samples, file)
                finally:
                    supply.disable()
    except KeyboardInterrupt:
        print("stopped by hand")
    except (Error, Failure, OSError) as error:
        print(f"soak_log.py: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
