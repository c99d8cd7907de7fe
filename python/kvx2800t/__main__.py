"""python3 -m kvx2800t RESOURCE runs a short demonstration."""

from __future__ import annotations

import argparse
import sys

from . import Attribute, Channel, CurrentLimitBehavior, Error, Supply


def _demonstrate(supply: Supply, channel: Channel) -> None:
    print(f"{supply.get(Attribute.INSTRUMENT_MODEL)}, firmware {supply.revision_query().instrument}")
    channel.voltage_level = 3.3
    channel.configure_current_limit(CurrentLimitBehavior.REGULATE, 0.5)
    channel.output_enabled = True
    try:
        _show(channel)
    finally:
        supply.disable()


def _show(channel: Channel) -> None:
    levels = f"{channel.voltage_level:.3f} V, {channel.current_limit:.3f} A"
    print(f"{channel.name}: {levels}, output {'on' if channel.output_enabled else 'off'}")
    try:
        channel.voltage_level = 100.0
    except Error as error:
        print(f"100 V: {error}")


def main() -> int:
    """The demonstration; returns the exit code."""
    parser = argparse.ArgumentParser(prog="kvx2800t", description="Runs a short demonstration of the KVX2800T driver.")
    parser.add_argument("resource", help="VISA resource descriptor or logical name")
    parser.add_argument("--channel", default="OutputChannel3", help="a physical or a virtual name")
    parser.add_argument("--simulate", action="store_true", help="without an instrument")
    parser.add_argument("--no-profile", action="store_true", help="the plain driver, without what a bench needs")
    parser.add_argument("--library", help="the driver's library; default: KVX2800T_LIBRARY, then the system's")
    arguments = parser.parse_args()
    try:
        with Supply(
            arguments.resource,
            simulate=arguments.simulate or None,
            profile=not arguments.no_profile,
            library=arguments.library,
        ) as supply:
            _demonstrate(supply, supply.channels[arguments.channel])
    except (Error, OSError) as error:
        print(f"kvx2800t: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
