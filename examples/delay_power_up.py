"""Powers rails up one after the other, by delay programs that the instrument runs by itself.

    python3 delay_power_up.py RESOURCE --rail CH4=1.8 --rail CH3=3.3 --gap 0.5

Each rail is a channel and its volts. They come up in this order and stay on; when one of them does not hold its voltage,
all are switched off.
"""

import argparse
import sys
import time

from kvx2800t import CurrentLimitBehavior, DelayEnd, DelayState, Error, Regulation, Supply

ON_SECONDS = 0.1  # of the last group, behind which the end state leaves the output on
GRACE_SECONDS = 5.0


class Failure(Exception):
    """What went wrong, for the one who runs the program."""


def rail(text):
    """A channel's name and its volts."""
    channel, volts = text.split("=")
    return channel, float(volts)


def load(channel, volts, amperes, start):
    """Sets the levels, and the program that leaves the output off until its turn."""
    channel.voltage_level = volts
    channel.configure_current_limit(CurrentLimitBehavior.TRIP, amperes)
    channel.delay.load([(False, start)] * (start > 0.0) + [(True, ON_SECONDS)])
    channel.delay.cycles = 1
    channel.delay.end_state = DelayEnd.ON
    print(f"{channel.name}: {volts:.3f} V after {start:.3f} s")


def wait_for_the_end(channels, seconds):
    """Returns when all programs have stopped."""
    end = time.monotonic() + seconds + GRACE_SECONDS
    while any(channel.delay.status.state is DelayState.RUNNING for channel in channels):
        if time.monotonic() > end:
            raise Failure("the programs do not come to their ends")
        time.sleep(0.05)


def verify(channel):
    """Shows what the output gives; fails unless it is on and holds its voltage."""
    tripped = channel.protection.state
    if tripped:
        raise Failure(f"{channel.name} has tripped: over-{'voltage' if tripped.over_voltage else 'current'}")
    if not channel.output_enabled or channel.state.regulation is not Regulation.CONSTANT_VOLTAGE:
        raise Failure(f"{channel.name} does not hold its voltage")
    reading = channel.measure()
    print(f"{channel.name}: {reading.volts:.3f} V, {reading.amperes:.3f} A")


def power_up(supply, rails, amperes, gap):
    """Loads all programs, starts them by one call, and looks at the outputs."""
    channels = [supply.channels[name] for name, _ in rails]
    for order, (channel, (_, volts)) in enumerate(zip(channels, rails)):
        load(channel, volts, amperes, order * gap)
    supply.channels[tuple(name for name, _ in rails)].delay.start()
    wait_for_the_end(channels, len(rails) * gap)
    for channel in channels:
        verify(channel)
    print("power is up")


def main():
    """Returns the exit code."""
    parser = argparse.ArgumentParser(description="Powers rails up one after the other.")
    parser.add_argument("resource", help="VISA resource descriptor or logical name")
    parser.add_argument("--rail", type=rail, action="append", metavar="CHANNEL=VOLTS", help="default: OutputChannel4=1.8 and OutputChannel3=3.3")
    parser.add_argument("--amperes", type=float, default=0.5, help="what a rail may take; default: 0.5")
    parser.add_argument("--gap", type=float, default=0.5, metavar="SECONDS", help="from rail to rail; default: 0.5")
    arguments = parser.parse_args()
    try:
        with Supply(arguments.resource, reset=True, query_instrument_status=True) as supply:
            try:
                power_up(supply, arguments.rail or [("OutputChannel4", 1.8), ("OutputChannel3", 3.3)], arguments.amperes, arguments.gap)
            except BaseException:
                supply.disable()
                raise
    except (Error, Failure, OSError) as error:
        print(f"delay_power_up.py: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
