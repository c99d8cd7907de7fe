"""Values that the driver's headers have no constants for, and what methods return."""

from __future__ import annotations

import enum
import math
from typing import NamedTuple, Union

from ._interface import DelayState, ListObject, ListState


class EventStatus(enum.IntFlag):
    """The standard event status register."""

    QUERY_ERROR = 4
    DEVICE_ERROR = 8
    EXECUTION_ERROR = 16
    COMMAND_ERROR = 32


class Questionable(enum.IntFlag):
    """A questionable register of a channel; the last two are protections that have tripped."""

    CONSTANT_CURRENT = 1
    CONSTANT_VOLTAGE = 2
    OVER_VOLTAGE = 4
    OVER_CURRENT = 8


class Parity(str, enum.Enum):
    """The parity of a serial line."""

    NONE = "None"
    ODD = "Odd"
    EVEN = "Even"
    MARK = "Mark"
    SPACE = "Space"


class StopBits(str, enum.Enum):
    """The stop bits of a serial line."""

    ONE = "1"
    ONE_AND_HALF = "1.5"
    TWO = "2"


class FlowControl(str, enum.Enum):
    """The flow control of a serial line."""

    NONE = "None"
    XON_XOFF = "XonXoff"
    RTS_CTS = "RtsCts"
    DTR_DSR = "DtrDsr"


INFINITE = math.inf  # a time-out that never comes


class Revisions(NamedTuple):
    """The revisions of the driver and of the instrument's firmware."""

    driver: str
    instrument: str


class InstrumentError(NamedTuple):
    """An entry of the instrument's error queue; code 0 when it is empty."""

    code: int
    message: str


class SelfTestResult(NamedTuple):
    """What a self test has found."""

    code: int
    message: str


class Reading(NamedTuple):
    """What the meters of an output read."""

    volts: float
    amperes: float
    watts: float


class ProtectionState(NamedTuple):
    """Which protections have switched an output off; true when one has."""

    over_voltage: bool
    over_current: bool

    def __bool__(self) -> bool:
        return self.over_voltage or self.over_current


class ListGroup(NamedTuple):
    """The levels of an output for a time."""

    volts: float
    amperes: float
    seconds: float


class DelayGroup(NamedTuple):
    """An output on or off for a time."""

    on: bool
    seconds: float


class ListStatus(NamedTuple):
    """How far a list has come: group 0 when it is stopped, remaining_cycles 0 when it has no end, too."""

    state: ListState
    remaining_seconds: float
    group: int
    remaining_cycles: int


class DelayStatus(NamedTuple):
    """How far a delay program has come: group 0 when it is stopped, remaining_cycles 0 when it has no end, too."""

    state: DelayState
    remaining_seconds: float
    group: int
    remaining_cycles: int


class ListTemplateObject(NamedTuple):
    """What follows the waveform of a list template, and the level of the other quantity."""

    object: ListObject
    level: float


Value = Union[int, float, bool, str]
