"""Options as types: what a session is opened with."""

from __future__ import annotations

from typing import Any, Callable

from ._settings import switch_in
from ._values import INFINITE, FlowControl, Parity, StopBits


def _switch(value: bool) -> str:
    return "1" if switch_in(value) else "0"


def _number(value: int) -> str:
    if isinstance(value, bool) or not isinstance(value, int):
        raise TypeError(f"{value!r} is not a whole number")
    if value < 0:
        raise ValueError(f"{value} is less than 0")
    return str(value)


def _milliseconds(value: float) -> str:
    return "Infinite" if value == INFINITE else _number(value)  # type: ignore[arg-type]


def _data_bits(value: int) -> str:
    if value not in (5, 6, 7, 8):
        raise ValueError(f"a character has 5 to 8 data bits, not {value!r}")
    return _number(value)


def _word(value: str) -> str:
    """A value in an option string ends at a comma, the string at a line's end or a NUL."""
    if not value or value != value.strip() or any(c in ",;:=\"'\x7f" or c < " " for c in value):
        raise ValueError(f"{value!r} has separators, quotes, control characters or blanks at its ends, or is empty")
    return value


INHERENT_OPTIONS = {
    "cache": "Cache",
    "interchange_check": "InterchangeCheck",
    "query_instrument_status": "QueryInstrStatus",
    "range_check": "RangeCheck",
    "record_coercions": "RecordCoercions",
    "simulate": "Simulate",
}

DRIVER_SETUP: dict[str, tuple[str, Callable[[Any], str]]] = {
    "model": ("Model", _word),
    "profile": ("Profile", lambda _: "Bench"),
    "safe_errors": ("SafeErrors", _switch),
    "fresh_replies": ("FreshReplies", _switch),
    "detailed_errors": ("DetailedErrors", _switch),
    "true_readings": ("TrueReadings", _switch),
    "checked_options": ("CheckedOptions", _switch),
    "stateful_simulation": ("StatefulSimulation", _switch),
    "open_timeout": ("OpenTimeout", _milliseconds),
    "io_timeout": ("IoTimeout", _milliseconds),
    "baud_rate": ("BaudRate", _number),
    "data_bits": ("DataBits", _data_bits),
    "parity": ("Parity", lambda value: Parity(value).value),
    "stop_bits": ("StopBits", lambda value: StopBits(value).value),
    "flow_control": ("FlowControl", lambda value: FlowControl(value).value),
    "message_log": ("MessageLog", _number),
}


def option_string(*, profile: bool = True, **options: Any) -> str:
    """What a session with these keyword arguments is opened with. Raises ValueError or TypeError for a wrong one.

    >>> option_string(simulate=True, io_timeout=500)
    'Simulate=1,DriverSetup=Profile:Bench,IoTimeout:500'
    """
    given = {name: value for name, value in options.items() if value is not None}
    unknown = given.keys() - INHERENT_OPTIONS.keys() - DRIVER_SETUP.keys()
    if unknown:
        raise TypeError(f"no such option: {', '.join(sorted(unknown))}")
    if _switch(profile) == "1":
        given["profile"] = True
    inherent = [f"{text}={_switch(given[name])}" for name, text in INHERENT_OPTIONS.items() if name in given]
    setup = [f"{text}:{spell(given[name])}" for name, (text, spell) in DRIVER_SETUP.items() if name in given]
    return ",".join(inherent + (["DriverSetup=" + ",".join(setup)] if setup else []))
