"""The KVX2800T driver for Python 3.9 and later, through ctypes.

    from kvx2800t import Session

    with Session("TCPIP0::192.168.1.20::5025::SOCKET", query_instrument_status=True) as supply:
        rail = supply.channel(1)
        rail.voltage_level = 5.0
        rail.output_enabled = True
        print(rail.measure().watts)

A channel has its settings as attributes, and in groups: `protection`, `state`, `list`, `list_template`, `delay`,
`delay_generator`. Sessions take the functions of KVX2800T.h as methods, too.

A call that fails raises Error, with the status code and the recorded text. One that ends with a warning warns with
StatusWarning. What a function does, and which channels, values and units it takes, is said in KVX2800T.h and
KVX2800TInstrument.h, after whose functions everything is named. With safe_errors off, a C++ exception of the driver, as
said there, ends a Python program.

The library is the one that `library` or the environment variable KVX2800T_LIBRARY names, or else the one that the
system finds by its usual name.

    python3 kvx2800t.py RESOURCE

runs a short demonstration.
"""

from __future__ import annotations

import argparse
import ctypes
import enum
import math
import operator
import os
import struct
import sys
import warnings
from ctypes import (
    POINTER,
    byref,
    c_char_p,
    c_double,
    c_int16,
    c_int32,
    c_int64,
    c_uint8,
    c_uint16,
    c_uint32,
    create_string_buffer,
)
from typing import Any, Iterable, NamedTuple, Optional, Sequence, Union

ERROR_CANNOT_RECOVER = 0xBFFA0000
ERROR_INSTRUMENT_STATUS = 0xBFFA0001
ERROR_INVALID_ATTRIBUTE = 0xBFFA000C
ERROR_ATTRIBUTE_NOT_WRITABLE = 0xBFFA000D
ERROR_ATTRIBUTE_NOT_READABLE = 0xBFFA000E
ERROR_INVALID_VALUE = 0xBFFA0010
ERROR_TYPES_DO_NOT_MATCH = 0xBFFA0015
ERROR_CHANNEL_NAME_REQUIRED = 0xBFFA0044
ERROR_BAD_OPTION_NAME = 0xBFFA004B
ERROR_BAD_OPTION_VALUE = 0xBFFA004C
ERROR_NULL_POINTER = 0xBFFA0058
ERROR_UNEXPECTED_RESPONSE = 0xBFFA0059
ERROR_ID_QUERY_FAILED = 0xBFFA005E
ERROR_CANNOT_CHANGE_SIMULATION_STATE = 0xBFFA0062
ERROR_INVALID_NUMBER_OF_LEVELS_IN_SELECTOR = 0xBFFA0063
ERROR_INVALID_RANGE_IN_SELECTOR = 0xBFFA0064
ERROR_BADLY_FORMED_SELECTOR = 0xBFFA0066
ERROR_UNKNOWN_PHYSICAL_IDENTIFIER = 0xBFFA0067
ERROR_INVALID_SESSION_HANDLE = 0xBFFA1190
ERROR_IO = 0xBFFA4214
ERROR_IO_TIMEOUT = 0xBFFA4215
ERROR_OPERATION_NOT_SUPPORTED = 0xBFFA4216
ERROR_VALUE_OUT_OF_RANGE = 0xBFFA4217
WARN_NSUP_SELF_TEST = 0x3FFA0067
WARN_ARRAY_TRUNCATED = 0x3FFA4001


class Attribute(enum.IntEnum):
    """The attributes by name."""

    SPECIFIC_DRIVER_DESCRIPTION = 1050514
    SPECIFIC_DRIVER_PREFIX = 1050302
    SPECIFIC_DRIVER_VENDOR = 1050513
    SPECIFIC_DRIVER_REVISION = 1050551
    SPECIFIC_DRIVER_CLASS_SPEC_MAJOR_VERSION = 1050515
    SPECIFIC_DRIVER_CLASS_SPEC_MINOR_VERSION = 1050516
    GROUP_CAPABILITIES = 1050401
    SUPPORTED_INSTRUMENT_MODELS = 1050327
    CHANNEL_COUNT = 1050203
    RANGE_CHECK = 1050002
    QUERY_INSTRUMENT_STATUS = 1050003
    CACHE = 1050004
    SIMULATE = 1050005
    RECORD_COERCIONS = 1050006
    INTERCHANGE_CHECK = 1050021
    LOGICAL_NAME = 1050305
    IO_RESOURCE_DESCRIPTOR = 1050304
    DRIVER_SETUP = 1050007
    INSTRUMENT_MANUFACTURER = 1050511
    INSTRUMENT_MODEL = 1050512
    INSTRUMENT_FIRMWARE_REVISION = 1050510
    VOLTAGE_LEVEL = 1250001
    OVP_ENABLED = 1250002
    OVP_LIMIT = 1250003
    CURRENT_LIMIT_BEHAVIOR = 1250004
    CURRENT_LIMIT = 1250005
    OUTPUT_ENABLED = 1250006


class CurrentLimitBehavior(enum.IntEnum):
    """What an output does at its current limit."""

    REGULATE = 0
    TRIP = 1


class RangeType(enum.IntEnum):
    """What a range is one of."""

    CURRENT = 0
    VOLTAGE = 1


class OutputState(enum.IntEnum):
    """The states to ask an output for."""

    CONSTANT_VOLTAGE = 0
    CONSTANT_CURRENT = 1
    OVER_VOLTAGE = 2
    OVER_CURRENT = 3
    UNREGULATED = 4


class MeasurementType(enum.IntEnum):
    """What to measure."""

    CURRENT = 0
    VOLTAGE = 1
    POWER = 2  # of Channel.meter only


class SourceMode(enum.IntEnum):
    """How outputs 1 and 2 are combined."""

    NORMAL = 0
    SERIES = 1
    PARALLEL = 2


class Regulation(enum.IntEnum):
    """What an output holds."""

    CONSTANT_VOLTAGE = 0
    CONSTANT_CURRENT = 1


class CurrentRange(enum.IntEnum):
    """The range of the current measurement."""

    AUTO = 0
    LOW = 1
    HIGH = 2


class CurrentRate(enum.IntEnum):
    """The rate of the current measurement, in samples per second."""

    RATE_62 = 0
    RATE_4000 = 1
    RATE_8000 = 2


class ProtectionDelay(enum.IntEnum):
    """When the delay of the over-current protection applies."""

    ANY = 0
    SCHEDULED = 1


class PowerOnState(enum.IntEnum):
    """What a channel does when the instrument is switched on."""

    RESET = 0
    LAST = 1
    LAST_OFF = 2


class Pairing(enum.IntEnum):
    """The pairing of a channel."""

    OFF = 0
    SERIES = 1
    PARALLEL = 2


class OutputOffMode(enum.IntEnum):
    """What the bleeder does while an output is off."""

    BLEEDER_ON = 0
    BLEEDER_OFF = 1


class ListState(enum.IntEnum):
    """What a list is doing."""

    STOPPED = 0
    READY = 1
    RUNNING = 2
    PAUSED = 3


class ListEnd(enum.IntEnum):
    """What the output does once a list has run."""

    OFF = 0
    LAST = 1


class Waveform(enum.IntEnum):
    """The waveform of a list template."""

    SINE = 0
    PULSE = 1
    RAMP = 2
    UP = 3
    DOWN = 4
    UP_DOWN = 5
    RISE = 6
    FALL = 7


class ListObject(enum.IntEnum):
    """What follows the waveform of a list template."""

    VOLTAGE = 0
    CURRENT = 1


class DelayState(enum.IntEnum):
    """What a delay program is doing."""

    STOPPED = 0
    RUNNING = 1


class DelayEnd(enum.IntEnum):
    """What the output does once a delay program has run."""

    OFF = 0
    ON = 1
    LAST = 2


class DelayTimes(enum.IntEnum):
    """How the times of generated groups change."""

    FIXED = 0
    INCREASING = 1
    DECREASING = 2


class DelayPattern(enum.IntEnum):
    """What generated groups begin with."""

    OFF_ON = 0
    ON_OFF = 1


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


class Error(Exception):
    """A call that has failed: `code` as KVX2800T.h writes it, `text` as it was recorded."""

    def __init__(self, code: int, text: str) -> None:
        super().__init__(f"0x{code:08X} {text}")
        self.code = code
        self.text = text


class StatusWarning(UserWarning):
    """A call that has ended with a warning."""


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

_TEXT_SIZE = 256
_Session, _Status, _Attribute, _Int32, _Int16 = c_uint32, c_int32, c_uint32, c_int32, c_int16
_Int64, _Byte, _Real64, _Boolean, _String = c_int64, c_uint8, c_double, c_uint16, c_char_p

_CHANNELS = [_Session, _String]
_ATTRIBUTE = [_Session, _String, _Attribute]

# Every exported function with the types of its parameters; all return a status.
_FUNCTIONS: dict[str, list[Any]] = {
    "init": [_String, _Boolean, _Boolean, POINTER(_Session)],
    "InitWithOptions": [_String, _Boolean, _Boolean, _String, POINTER(_Session)],
    "close": [_Session],
    "LockSession": [_Session, POINTER(_Boolean)],
    "UnlockSession": [_Session, POINTER(_Boolean)],
    "GetError": [_Session, POINTER(_Status), _Int32, _String],
    "ClearError": [_Session],
    "error_message": [_Session, _Status, _String],
    "error_query": [_Session, POINTER(_Int32), _String],
    "reset": [_Session],
    "ResetWithDefaults": [_Session],
    "Disable": [_Session],
    "self_test": [_Session, POINTER(_Int16), _String],
    "revision_query": [_Session, _String, _String],
    "InvalidateAllAttributes": [_Session],
    "ConfigureOutputEnabled": [*_CHANNELS, _Boolean],
    "ConfigureVoltageLevel": [*_CHANNELS, _Real64],
    "ConfigureCurrentLimit": [*_CHANNELS, _Int32, _Real64],
    "ConfigureOVP": [*_CHANNELS, _Boolean, _Real64],
    "ConfigureOutputRange": [*_CHANNELS, _Int32, _Real64],
    "ResetOutputProtection": _CHANNELS,
    "QueryMaxCurrentLimit": [*_CHANNELS, _Real64, POINTER(_Real64)],
    "QueryMaxVoltageLevel": [*_CHANNELS, _Real64, POINTER(_Real64)],
    "QueryOutputState": [*_CHANNELS, _Int32, POINTER(_Boolean)],
    "Measure": [*_CHANNELS, _Int32, POINTER(_Real64)],
    "GetChannelName": [_Session, _Int32, _Int32, _String],
    "GetAttributeViInt32": [*_ATTRIBUTE, POINTER(_Int32)],
    "GetAttributeViReal64": [*_ATTRIBUTE, POINTER(_Real64)],
    "GetAttributeViBoolean": [*_ATTRIBUTE, POINTER(_Boolean)],
    "GetAttributeViSession": [*_ATTRIBUTE, POINTER(_Session)],
    "GetAttributeViString": [*_ATTRIBUTE, _Int32, _String],
    "SetAttributeViInt32": [*_ATTRIBUTE, _Int32],
    "SetAttributeViReal64": [*_ATTRIBUTE, _Real64],
    "SetAttributeViBoolean": [*_ATTRIBUTE, _Boolean],
    "SetAttributeViSession": [*_ATTRIBUTE, _Session],
    "SetAttributeViString": [*_ATTRIBUTE, _String],
    # Those of KVX2800TInstrument.h.
    "ClearStatus": [_Session],
    "QueryEventStatus": [_Session, POINTER(_Int32)],
    "QueryQuestionableCondition": [*_CHANNELS, POINTER(_Int32)],
    "QueryQuestionableEvent": [*_CHANNELS, POINTER(_Int32)],
    "QueryProtectionState": [*_CHANNELS, POINTER(_Boolean), POINTER(_Boolean)],
    "QueryRegulationState": [*_CHANNELS, POINTER(_Int32)],
    "ConfigureSourceMode": [_Session, _Int32],
    "QuerySourceMode": [_Session, POINTER(_Int32)],
    "ConfigureBleeder": [_Session, _Boolean],
    "QueryBleeder": [_Session, POINTER(_Boolean)],
    "SelectChannel": _CHANNELS,
    "QuerySelectedChannel": [_Session, POINTER(_Int32)],
    "ConfigureCurrentProtectionLevel": [*_CHANNELS, _Real64],
    "QueryCurrentProtectionLevel": [*_CHANNELS, POINTER(_Real64)],
    "ConfigureCurrentProtectionDelay": [*_CHANNELS, _Real64],
    "QueryCurrentProtectionDelay": [*_CHANNELS, POINTER(_Real64)],
    "ConfigureCurrentProtectionDelayMode": [*_CHANNELS, _Int32],
    "QueryCurrentProtectionDelayMode": [*_CHANNELS, POINTER(_Int32)],
    "ConfigureOVPValue": [*_CHANNELS, _Real64],
    "QueryOVPValue": [*_CHANNELS, POINTER(_Real64)],
    "ConfigureOVPEnabled": [*_CHANNELS, _Boolean],
    "QueryOVPEnabled": [*_CHANNELS, POINTER(_Boolean)],
    "ConfigureOCPValue": [*_CHANNELS, _Real64],
    "QueryOCPValue": [*_CHANNELS, POINTER(_Real64)],
    "ConfigureOCPEnabled": [*_CHANNELS, _Boolean],
    "QueryOCPEnabled": [*_CHANNELS, POINTER(_Boolean)],
    "ConfigureOCPDelay": [*_CHANNELS, _Real64],
    "QueryOCPDelay": [*_CHANNELS, POINTER(_Real64)],
    "ConfigureOCPDelayMode": [*_CHANNELS, _Int32],
    "QueryOCPDelayMode": [*_CHANNELS, POINTER(_Int32)],
    "ConfigureRemoteSense": [*_CHANNELS, _Boolean],
    "QueryRemoteSense": [*_CHANNELS, POINTER(_Boolean)],
    "ConfigureOutputSense": [*_CHANNELS, _Boolean],
    "QueryOutputSense": [*_CHANNELS, POINTER(_Boolean)],
    "ConfigurePowerOnState": [*_CHANNELS, _Int32],
    "QueryPowerOnState": [*_CHANNELS, POINTER(_Int32)],
    "ConfigurePairing": [*_CHANNELS, _Int32],
    "QueryPairing": [*_CHANNELS, POINTER(_Int32)],
    "ConfigureTracking": [*_CHANNELS, _Boolean],
    "QueryTracking": [*_CHANNELS, POINTER(_Boolean)],
    "ConfigureOutputOffMode": [*_CHANNELS, _Int32],
    "QueryOutputOffMode": [*_CHANNELS, POINTER(_Int32)],
    "ConfigureTriggerInput": [*_CHANNELS, _Boolean],
    "QueryTriggerInput": [*_CHANNELS, POINTER(_Boolean)],
    "MeasureOutput": [*_CHANNELS, _Int32, POINTER(_Real64)],
    "MeasureAll": [*_CHANNELS, _Int32, POINTER(_Real64), POINTER(_Real64), POINTER(_Real64), POINTER(_Int32)],
    "ConfigureCurrentRange": [*_CHANNELS, _Int32],
    "QueryCurrentRange": [*_CHANNELS, POINTER(_Int32)],
    "ConfigureCurrentRate": [*_CHANNELS, _Int32],
    "QueryCurrentRate": [*_CHANNELS, POINTER(_Int32)],
    "LoadList": [*_CHANNELS, _Int32, POINTER(_Real64), POINTER(_Real64), POINTER(_Real64)],
    "RunList": _CHANNELS,
    "PauseList": _CHANNELS,
    "ConfigureListEnabled": [*_CHANNELS, _Boolean],
    "QueryListEnabled": [*_CHANNELS, POINTER(_Boolean)],
    "QueryListStatus": [*_CHANNELS, POINTER(_Int32), POINTER(_Real64), POINTER(_Int32), POINTER(_Int32)],
    "ConfigureListCycles": [*_CHANNELS, _Int32],
    "QueryListCycles": [*_CHANNELS, POINTER(_Int32)],
    "ConfigureListEndState": [*_CHANNELS, _Int32],
    "QueryListEndState": [*_CHANNELS, POINTER(_Int32)],
    "QueryListGroupCount": [*_CHANNELS, POINTER(_Int32)],
    "InsertListGroup": [*_CHANNELS, _Int32],
    "DeleteListGroup": [*_CHANNELS, _Int32],
    "ClearListGroups": _CHANNELS,
    "ConfigureListGroup": [*_CHANNELS, _Int32, _Real64, _Real64, _Real64],
    "QueryListGroup": [*_CHANNELS, _Int32, POINTER(_Real64), POINTER(_Real64), POINTER(_Real64)],
    "ConfigureListTemplateWaveform": [*_CHANNELS, _Int32],
    "QueryListTemplateWaveform": [*_CHANNELS, POINTER(_Int32)],
    "ConfigureListTemplateObject": [*_CHANNELS, _Int32, _Real64],
    "QueryListTemplateObject": [*_CHANNELS, POINTER(_Int32), POINTER(_Real64)],
    "ConfigureListTemplateMaximum": [*_CHANNELS, _Real64],
    "QueryListTemplateMaximum": [*_CHANNELS, POINTER(_Real64)],
    "ConfigureListTemplateMinimum": [*_CHANNELS, _Real64],
    "QueryListTemplateMinimum": [*_CHANNELS, POINTER(_Real64)],
    "ConfigureListTemplatePeriod": [*_CHANNELS, _Real64],
    "QueryListTemplatePeriod": [*_CHANNELS, POINTER(_Real64)],
    "ConfigureListTemplateInterval": [*_CHANNELS, _Real64],
    "QueryListTemplateInterval": [*_CHANNELS, POINTER(_Real64)],
    "ConfigureListTemplateCycles": [*_CHANNELS, _Int32],
    "QueryListTemplateCycles": [*_CHANNELS, POINTER(_Int32)],
    "ConfigureListTemplateInverted": [*_CHANNELS, _Boolean],
    "QueryListTemplateInverted": [*_CHANNELS, POINTER(_Boolean)],
    "ConfigureListTemplatePulseWidth": [*_CHANNELS, _Real64],
    "QueryListTemplatePulseWidth": [*_CHANNELS, POINTER(_Real64)],
    "ConfigureListTemplatePulseCount": [*_CHANNELS, _Int32],
    "QueryListTemplatePulseCount": [*_CHANNELS, POINTER(_Int32)],
    "ConfigureListTemplateSymmetry": [*_CHANNELS, _Int32],
    "QueryListTemplateSymmetry": [*_CHANNELS, POINTER(_Int32)],
    "ConfigureListTemplateStart": [*_CHANNELS, _Int32],
    "QueryListTemplateStart": [*_CHANNELS, POINTER(_Int32)],
    "ConfigureListTemplateExpp": [*_CHANNELS, _Int32],
    "QueryListTemplateExpp": [*_CHANNELS, POINTER(_Int32)],
    "ConfigureListTemplateExpr": [*_CHANNELS, _Int32],
    "QueryListTemplateExpr": [*_CHANNELS, POINTER(_Int32)],
    "QueryListTemplatePoints": [*_CHANNELS, POINTER(_Int32)],
    "ConstructList": [*_CHANNELS, _Int32],
    "LoadDelay": [*_CHANNELS, _Int32, POINTER(_Boolean), POINTER(_Real64)],
    "ConfigureDelayEnabled": [*_CHANNELS, _Boolean],
    "QueryDelayEnabled": [*_CHANNELS, POINTER(_Boolean)],
    "QueryDelayStatus": [*_CHANNELS, POINTER(_Int32), POINTER(_Real64), POINTER(_Int32), POINTER(_Int32)],
    "ConfigureDelayCycles": [*_CHANNELS, _Int32],
    "QueryDelayCycles": [*_CHANNELS, POINTER(_Int32)],
    "ConfigureDelayEndState": [*_CHANNELS, _Int32],
    "QueryDelayEndState": [*_CHANNELS, POINTER(_Int32)],
    "QueryDelayGroupCount": [*_CHANNELS, POINTER(_Int32)],
    "InsertDelayGroup": [*_CHANNELS, _Int32],
    "DeleteDelayGroup": [*_CHANNELS, _Int32],
    "ClearDelayGroups": _CHANNELS,
    "ConfigureDelayGroup": [*_CHANNELS, _Int32, _Boolean, _Real64],
    "QueryDelayGroup": [*_CHANNELS, _Int32, POINTER(_Boolean), POINTER(_Real64)],
    "ConfigureDelayGenerateMode": [*_CHANNELS, _Int32],
    "QueryDelayGenerateMode": [*_CHANNELS, POINTER(_Int32)],
    "ConfigureDelayGeneratePattern": [*_CHANNELS, _Int32],
    "QueryDelayGeneratePattern": [*_CHANNELS, POINTER(_Int32)],
    "ConfigureDelayGeneratePoints": [*_CHANNELS, _Int32],
    "QueryDelayGeneratePoints": [*_CHANNELS, POINTER(_Int32)],
    "ConfigureDelayOnTime": [*_CHANNELS, _Real64],
    "QueryDelayOnTime": [*_CHANNELS, POINTER(_Real64)],
    "ConfigureDelayOffTime": [*_CHANNELS, _Real64],
    "QueryDelayOffTime": [*_CHANNELS, POINTER(_Real64)],
    "ConfigureDelayBaseTime": [*_CHANNELS, _Real64],
    "QueryDelayBaseTime": [*_CHANNELS, POINTER(_Real64)],
    "ConfigureDelayTimeStep": [*_CHANNELS, _Real64],
    "QueryDelayTimeStep": [*_CHANNELS, POINTER(_Real64)],
    "ConstructDelay": [*_CHANNELS, _Int32],
    "viRead": [_Session, _Int64, POINTER(_Byte), POINTER(_Int64)],
    "viWrite": [_Session, POINTER(_Byte), _Int64, POINTER(_Int64)],
    "GetIoTimeout": [_Session, POINTER(_Int32)],
    "SetIoTimeout": [_Session, _Int32],
    "GetNextCoercionRecord": [_Session, _Int32, _String],
    "GetNextInterchangeWarning": [_Session, _Int32, _String],
    "ResetInterchangeCheck": [_Session],
    "ClearInterchangeWarnings": [_Session],
}

_INTEGERS = {
    Attribute.SPECIFIC_DRIVER_CLASS_SPEC_MAJOR_VERSION,
    Attribute.SPECIFIC_DRIVER_CLASS_SPEC_MINOR_VERSION,
    Attribute.CHANNEL_COUNT,
    Attribute.CURRENT_LIMIT_BEHAVIOR,
}
_REALS = {Attribute.VOLTAGE_LEVEL, Attribute.OVP_LIMIT, Attribute.CURRENT_LIMIT}
_BOOLEANS = {
    Attribute.RANGE_CHECK,
    Attribute.QUERY_INSTRUMENT_STATUS,
    Attribute.CACHE,
    Attribute.SIMULATE,
    Attribute.RECORD_COERCIONS,
    Attribute.INTERCHANGE_CHECK,
    Attribute.OVP_ENABLED,
    Attribute.OUTPUT_ENABLED,
}


def _kind(attribute: Attribute) -> str:
    """The name of an attribute's type, as the methods that read and set it have it."""
    if attribute in _INTEGERS:
        return "int32"
    if attribute in _REALS:
        return "real64"
    return "boolean" if attribute in _BOOLEANS else "string"


def _text_in(text: str) -> bytes:
    """A text as the driver takes it. It would end at a NUL without a word."""
    if "\0" in text:
        raise ValueError("a text for the driver cannot have a NUL in it")
    return text.encode("utf-8", "surrogateescape")


def _text_out(buffer: ctypes.Array[ctypes.c_char]) -> str:
    return buffer.value.decode("utf-8", "surrogateescape")


def _int32(value: int) -> int:
    """ctypes would drop the upper bits of a larger number without a word."""
    if not -(2**31) <= value < 2**31:
        raise OverflowError(f"{value} does not fit into 32 bits")
    return value


def _switch(value: bool) -> str:
    """Checked, since the text "off" would be a true one."""
    if not isinstance(value, bool):
        raise TypeError(f"{value!r} is not True or False")
    return "1" if value else "0"


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


_INHERENT_OPTIONS = {
    "cache": "Cache",
    "interchange_check": "InterchangeCheck",
    "query_instrument_status": "QueryInstrStatus",
    "range_check": "RangeCheck",
    "record_coercions": "RecordCoercions",
    "simulate": "Simulate",
}

_DRIVER_SETUP = {
    "model": ("Model", _word),
    "profile": ("Profile", lambda value: "Bench"),
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
}


def option_string(*, profile: bool = True, **options: Any) -> str:
    """What a session with these keyword arguments is opened with. Raises ValueError or TypeError for a wrong one."""
    given = {name: value for name, value in options.items() if value is not None}
    unknown = given.keys() - _INHERENT_OPTIONS.keys() - _DRIVER_SETUP.keys()
    if unknown:
        raise TypeError(f"no such option: {', '.join(sorted(unknown))}")
    if _switch(profile) == "1":
        given["profile"] = True
    inherent = [f"{text}={_switch(given[name])}" for name, text in _INHERENT_OPTIONS.items() if name in given]
    setup = [f"{text}:{spell(given[name])}" for name, (text, spell) in _DRIVER_SETUP.items() if name in given]
    return ",".join(inherent + (["DriverSetup=" + ",".join(setup)] if setup else []))


def _c_type(kind: type) -> Any:
    """How the driver passes a value; enumerations are integers."""
    return {bool: _Boolean, float: _Real64}.get(kind, _Int32)


def _to_driver(kind: type, value: Any) -> Any:
    if kind is bool:
        return _switch(value) == "1"
    if kind is float:
        return value
    return _int32(operator.index(value) if kind is int else kind(value))


def _setting(name: str, kind: type, doc: str) -> Any:
    """What a pair of functions, KVX2800T_Configure... and KVX2800T_Query..., is about."""

    def read(target: Any) -> Any:
        return target._query(kind, "Query" + name)

    def write(target: Any, value: Any) -> None:
        target._call("Configure" + name, _to_driver(kind, value))

    return property(read, write, doc=doc)


def _reading(name: str, kind: type, doc: str) -> Any:
    """What a function of one value, KVX2800T_Query..., tells."""
    return property(lambda target: target._query(kind, "Query" + name), doc=doc)


def _attribute(attribute: Attribute, kind: type, doc: str) -> Any:
    """What an attribute of channels is about."""

    def read(target: Any) -> Any:
        return kind(target._session.get(attribute, target.name))

    def write(target: Any, value: Any) -> None:
        target._session.set(attribute, _to_driver(kind, value), target.name)

    return property(read, write, doc=doc)


def _default_library() -> str:
    if sys.platform == "win32":
        return "KVX2800T_64.dll" if struct.calcsize("P") == 8 else "KVX2800T.dll"
    return "libKVX2800T.so.1"


class Library:
    """The driver's library, loaded: its functions by name, without their prefix. They return statuses."""

    def __init__(self, path: Optional[str] = None) -> None:
        loader = ctypes.WinDLL if sys.platform == "win32" else ctypes.CDLL
        self._library = loader(path or os.environ.get("KVX2800T_LIBRARY") or _default_library())
        for name, parameters in _FUNCTIONS.items():
            function = getattr(self._library, "KVX2800T_" + name)
            function.argtypes = parameters
            function.restype = _Status
            setattr(self, name, function)

    def __getattr__(self, name: str) -> Any:
        raise AttributeError(f"the driver has no function KVX2800T_{name}")

    def error_text(self, code: int) -> str:
        """The driver's message for a status code, with "%s" for the details; "" for a code that is not its own."""
        text = create_string_buffer(_TEXT_SIZE)
        known = self.error_message(0, c_int32(code).value, text) >= 0
        return _text_out(text) if known else ""

    def recorded_error(self, vi: int = 0) -> tuple[int, str]:
        """Reads and clears what a session, or this thread for 0, has recorded: a code, 0 for none, and a text."""
        size = self.GetError(vi, None, 0, None)
        if size < 0:
            return 0, ""
        text = create_string_buffer(size)
        code = _Status()
        self.GetError(vi, byref(code), size, text)
        return code.value & 0xFFFFFFFF, _text_out(text)

    def check(self, status: int, vi: int = 0) -> int:
        """Raises Error for an error, warns of a warning. Returns the status."""
        if status == 0:
            return status
        code = status & 0xFFFFFFFF
        if status > 0:
            warnings.warn(f"0x{code:08X} {self.error_text(code)}", StatusWarning, stacklevel=4)
            return status
        recorded, text = self.recorded_error(vi)
        raise Error(code, text if recorded == code else self.error_text(code))


class Selection:
    """Channels of a session. Its attributes can be set on several and read of one."""

    __slots__ = ("_session", "_name")

    def __init__(self, session: Session, name: str) -> None:
        self._session = session
        self._name = name

    @property
    def name(self) -> str:
        """The channels, as the driver's functions take them."""
        return self._name

    def _call(self, function: str, *arguments: Any) -> None:
        self._session._call(function, _text_in(self._name), *arguments)

    def _outputs(self, kinds: Sequence[type], function: str, *arguments: Any) -> list[Any]:
        return self._session._outputs(kinds, function, _text_in(self._name), *arguments)

    def _query(self, kind: type, function: str, *arguments: Any) -> Any:
        return self._outputs([kind], function, *arguments)[0]


class Protection(Selection):
    """The protections of a channel.

    The instrument has commands of its source for them and, here with output_ in front of the name, of its outputs.
    """

    __slots__ = ()

    ovp_limit = _attribute(Attribute.OVP_LIMIT, float, "The level of the over-voltage protection, in volts.")
    ovp_enabled = _attribute(Attribute.OVP_ENABLED, bool, "Whether the over-voltage protection is on.")
    current_level = _setting("CurrentProtectionLevel", float, "The level of the over-current protection, in amperes.")
    current_delay = _setting("CurrentProtectionDelay", float, "How long an over-current lasts first, in seconds.")
    current_delay_mode = _setting("CurrentProtectionDelayMode", ProtectionDelay, "When that delay applies.")
    output_ovp_value = _setting("OVPValue", float, "The level of the over-voltage protection, in volts.")
    output_ovp_enabled = _setting("OVPEnabled", bool, "Whether the over-voltage protection is on.")
    output_ocp_value = _setting("OCPValue", float, "The level of the over-current protection, in amperes.")
    output_ocp_enabled = _setting("OCPEnabled", bool, "Whether the over-current protection is on.")
    output_ocp_delay = _setting("OCPDelay", float, "How long an over-current lasts first, in seconds.")
    output_ocp_delay_mode = _setting("OCPDelayMode", ProtectionDelay, "When that delay applies.")

    def configure_ovp(self, enabled: bool, volts: float) -> None:
        """Sets the over-voltage protection."""
        self._call("ConfigureOVP", _to_driver(bool, enabled), volts)

    @property
    def state(self) -> ProtectionState:
        """What has tripped. Switching the output on ends a trip."""
        return ProtectionState(*self._outputs([bool, bool], "QueryProtectionState"))

    def reset(self) -> None:
        """Raises 0xBFFA4216 with the profile and changes nothing without it: only switching the output on ends a trip."""
        self._call("ResetOutputProtection")


class ChannelState(Selection):
    """What a channel is doing, from its registers."""

    __slots__ = ()

    regulation = _reading("RegulationState", Regulation, "What the output holds.")
    condition = _reading("QuestionableCondition", Questionable, "What is the case now.")

    def event(self) -> Questionable:
        """What has been the case since this was read last."""
        return self._query(Questionable, "QueryQuestionableEvent")

    def is_in(self, state: OutputState) -> bool:
        """Whether the output is in a state."""
        return self._query(bool, "QueryOutputState", _to_driver(OutputState, state))


class ListProgram(Selection):
    """Groups of levels that the output takes one after the other; they count from 1."""

    __slots__ = ()

    enabled = _setting("ListEnabled", bool, "Whether it is on; it runs once the output is on, too.")
    cycles = _setting("ListCycles", int, "How often it runs; 0: without end.")
    end_state = _setting("ListEndState", ListEnd, "What the output does once it has run.")
    group_count = _reading("ListGroupCount", int, "How many groups it has.")

    def load(self, groups: Iterable[Sequence[float]]) -> None:
        """Replaces all groups; each is volts, amperes and seconds."""
        columns = list(zip(*(ListGroup(*group) for group in groups))) or [(), (), ()]
        arrays = [(_Real64 * len(column))(*column) for column in columns]
        self._call("LoadList", len(columns[0]), *arrays)

    def run(self) -> None:
        """Switches the list and the output on, also to let a paused list go on."""
        self._call("RunList")

    def pause(self) -> None:
        """Switches the output off."""
        self._call("PauseList")

    def stop(self) -> None:
        """Applies the end state."""
        self.enabled = False

    @property
    def status(self) -> ListStatus:
        """How far it has come."""
        return ListStatus(*self._outputs([ListState, float, int, int], "QueryListStatus"))

    def group(self, number: int) -> ListGroup:
        """Reads a group."""
        return ListGroup(*self._outputs([float, float, float], "QueryListGroup", _int32(number)))

    def set_group(self, number: int, volts: float, amperes: float, seconds: float) -> None:
        """Sets a group; one more than there are groups appends."""
        self._call("ConfigureListGroup", _int32(number), volts, amperes, seconds)

    def insert_group(self, number: int) -> None:
        """Inserts a group, which gets this number."""
        self._call("InsertListGroup", _int32(number))

    def delete_group(self, number: int) -> None:
        """Deletes a group."""
        self._call("DeleteListGroup", _int32(number))

    def clear(self) -> None:
        """Deletes all groups."""
        self._call("ClearListGroups")


class ListTemplate(Selection):
    """A waveform that the groups of a list are made from."""

    __slots__ = ()

    waveform = _setting("ListTemplateWaveform", Waveform, "The waveform.")
    maximum = _setting("ListTemplateMaximum", float, "The highest level, in volts or amperes.")
    minimum = _setting("ListTemplateMinimum", float, "The lowest level, in volts or amperes.")
    period = _setting("ListTemplatePeriod", float, "The period, in seconds.")
    interval = _setting("ListTemplateInterval", float, "The time of one group, in seconds.")
    cycles = _setting("ListTemplateCycles", int, "The cycles that the list gets; 0: without end.")
    inverted = _setting("ListTemplateInverted", bool, "Whether the waveform is upside down.")
    pulse_width = _setting("ListTemplatePulseWidth", float, "The width of a pulse, in seconds.")
    pulse_count = _setting("ListTemplatePulseCount", int, "The number of pulses.")
    symmetry = _setting("ListTemplateSymmetry", int, "The rising part of a ramp, in percent.")
    start = _setting("ListTemplateStart", int, "The point of the waveform that becomes the first group.")
    expp = _setting("ListTemplateExpp", int, "EXPP of the exponential waveforms.")
    expr = _setting("ListTemplateExpr", int, "EXPR of the exponential waveforms.")
    points = _reading("ListTemplatePoints", int, "How many groups it gives.")

    @property
    def object(self) -> ListTemplateObject:
        """What follows the waveform, and the level of the other quantity: amperes or volts."""
        return ListTemplateObject(*self._outputs([ListObject, float], "QueryListTemplateObject"))

    @object.setter
    def object(self, value: tuple[ListObject, float]) -> None:
        what, level = value
        self._call("ConfigureListTemplateObject", _to_driver(ListObject, what), level)

    def construct(self, group: int = 1) -> None:
        """Makes it the list from a group on."""
        self._call("ConstructList", _int32(group))


class DelayProgram(Selection):
    """Groups of times that the output is on or off; they count from 1."""

    __slots__ = ()

    enabled = _setting("DelayEnabled", bool, "Whether it runs.")
    cycles = _setting("DelayCycles", int, "How often it runs; 0: without end.")
    end_state = _setting("DelayEndState", DelayEnd, "What the output does once it has run.")
    group_count = _reading("DelayGroupCount", int, "How many groups it has.")

    def load(self, groups: Iterable[tuple[bool, float]]) -> None:
        """Replaces all groups; each is the output on or off and seconds."""
        pairs = [(_to_driver(bool, on), seconds) for on, seconds in groups]
        states = (_Boolean * len(pairs))(*(on for on, _ in pairs))
        times = (_Real64 * len(pairs))(*(seconds for _, seconds in pairs))
        self._call("LoadDelay", len(pairs), states, times)

    def start(self) -> None:
        """Starts it at once."""
        self.enabled = True

    def stop(self) -> None:
        """Applies the end state."""
        self.enabled = False

    @property
    def status(self) -> DelayStatus:
        """How far it has come."""
        return DelayStatus(*self._outputs([DelayState, float, int, int], "QueryDelayStatus"))

    def group(self, number: int) -> DelayGroup:
        """Reads a group."""
        return DelayGroup(*self._outputs([bool, float], "QueryDelayGroup", _int32(number)))

    def set_group(self, number: int, on: bool, seconds: float) -> None:
        """Sets a group; one more than there are groups appends."""
        self._call("ConfigureDelayGroup", _int32(number), _to_driver(bool, on), seconds)

    def insert_group(self, number: int) -> None:
        """Inserts a group, which gets this number."""
        self._call("InsertDelayGroup", _int32(number))

    def delete_group(self, number: int) -> None:
        """Deletes a group."""
        self._call("DeleteDelayGroup", _int32(number))

    def clear(self) -> None:
        """Deletes all groups."""
        self._call("ClearDelayGroups")


class DelayGenerator(Selection):
    """Times that the groups of a delay program are made from."""

    __slots__ = ()

    times = _setting("DelayGenerateMode", DelayTimes, "How the times change.")
    pattern = _setting("DelayGeneratePattern", DelayPattern, "What the groups begin with.")
    points = _setting("DelayGeneratePoints", int, "How many groups it gives.")
    on_time = _setting("DelayOnTime", float, "The time of groups that are on, where times are fixed, in seconds.")
    off_time = _setting("DelayOffTime", float, "The time of groups that are off, where times are fixed, in seconds.")
    base_time = _setting("DelayBaseTime", float, "The time of the first group, where times change, in seconds.")
    time_step = _setting("DelayTimeStep", float, "The change from group to group, where times change, in seconds.")

    def construct(self, group: int = 1) -> None:
        """Makes them the delay program from a group on."""
        self._call("ConstructDelay", _int32(group))


class Channel(Selection):
    """A channel of a session; made by Session.channel. One that names several channels can be set, but not read."""

    __slots__ = ()

    voltage_level = _attribute(Attribute.VOLTAGE_LEVEL, float, "The voltage setting, in volts.")
    current_limit = _attribute(Attribute.CURRENT_LIMIT, float, "The current limit, in amperes.")
    current_limit_behavior = _attribute(
        Attribute.CURRENT_LIMIT_BEHAVIOR, CurrentLimitBehavior, "What the output does at its current limit."
    )
    output_enabled = _attribute(Attribute.OUTPUT_ENABLED, bool, "Whether the output is on.")
    remote_sense = _setting("RemoteSense", bool, "Whether the voltage is sensed at the load.")
    output_sense = _setting("OutputSense", bool, "The same by the output's command.")
    power_on_state = _setting("PowerOnState", PowerOnState, "What it does when the instrument is switched on.")
    pairing = _setting("Pairing", Pairing, "The pairing.")
    tracking = _setting("Tracking", bool, "Whether it follows the channel that it is tracked to.")
    output_off_mode = _setting("OutputOffMode", OutputOffMode, "What the bleeder does while the output is off.")
    trigger_input = _setting("TriggerInput", bool, "Whether its list waits for a trigger.")
    current_range = _setting("CurrentRange", CurrentRange, "The range of the current measurement.")
    current_rate = _setting("CurrentRate", CurrentRate, "The rate of the current measurement.")

    def configure_current_limit(self, behavior: CurrentLimitBehavior, amperes: float) -> None:
        """Sets the current limit and what happens there."""
        self._call("ConfigureCurrentLimit", _to_driver(CurrentLimitBehavior, behavior), amperes)

    def configure_output_range(self, range_type: RangeType, value: float) -> None:
        """Changes nothing; channels have one range each."""
        self._call("ConfigureOutputRange", _to_driver(RangeType, range_type), value)

    def max_voltage_level(self, amperes: float = 0.0) -> float:
        """The largest voltage that it takes, in volts."""
        return self._query(float, "QueryMaxVoltageLevel", amperes)

    def max_current_limit(self, volts: float = 0.0) -> float:
        """The largest current that it takes, in amperes."""
        return self._query(float, "QueryMaxCurrentLimit", volts)

    def measure(self) -> Reading:
        """What the meters read."""
        return Reading(*self._outputs([float, float, float, int], "MeasureAll", 1)[:3])

    def meter(self, measurement: MeasurementType) -> float:
        """What one of them reads, in amperes, volts or watts."""
        return self._query(float, "MeasureOutput", _to_driver(MeasurementType, measurement))

    @property
    def protection(self) -> Protection:
        """Its protections."""
        return Protection(self._session, self._name)

    @property
    def state(self) -> ChannelState:
        """What it is doing."""
        return ChannelState(self._session, self._name)

    @property
    def list(self) -> ListProgram:
        """Its list."""
        return ListProgram(self._session, self._name)

    @property
    def list_template(self) -> ListTemplate:
        """The waveform that its list is made from."""
        return ListTemplate(self._session, self._name)

    @property
    def delay(self) -> DelayProgram:
        """Its delay program."""
        return DelayProgram(self._session, self._name)

    @property
    def delay_generator(self) -> DelayGenerator:
        """The times that its delay program is made from."""
        return DelayGenerator(self._session, self._name)


class Session:
    """A session with an instrument. A context manager that closes it at its end."""

    def __init__(
        self,
        resource: str,
        *,
        id_query: bool = False,
        reset: bool = False,
        cache: Optional[bool] = None,
        interchange_check: Optional[bool] = None,
        query_instrument_status: Optional[bool] = None,
        range_check: Optional[bool] = None,
        record_coercions: Optional[bool] = None,
        simulate: Optional[bool] = None,
        model: Optional[str] = None,
        profile: bool = True,
        safe_errors: Optional[bool] = None,
        fresh_replies: Optional[bool] = None,
        detailed_errors: Optional[bool] = None,
        true_readings: Optional[bool] = None,
        checked_options: Optional[bool] = None,
        stateful_simulation: Optional[bool] = None,
        open_timeout: Optional[float] = None,
        io_timeout: Optional[float] = None,
        baud_rate: Optional[int] = None,
        data_bits: Optional[int] = None,
        parity: Optional[Parity] = None,
        stop_bits: Optional[StopBits] = None,
        flow_control: Optional[FlowControl] = None,
        library: Union[Library, str, None] = None,
    ) -> None:
        """Opens a VISA resource descriptor or a logical name of the configuration store.

        What is None is left to the driver and to the store. Everything from model to flow_control takes the place of
        all that the store's DriverSetup says; without any of it, profile included, that holds.

        id_query: whether to fail unless the driver supports the instrument's model
        profile: switches the six behaviours below on, each unless it is given
        safe_errors: the driver throws nothing and leaves no session locked
        fresh_replies: no reply answers another query; a lost connection is made anew
        detailed_errors: texts of errors name resource, channel, value and limits
        true_readings: measure reads the meters, output states are the registers'
        checked_options: options and identities that make no sense fail the opening
        stateful_simulation: a simulated instrument keeps what it is set to
        open_timeout, io_timeout: milliseconds, or INFINITE
        data_bits: 5 to 8
        library: loaded, or its path
        """
        options = option_string(
            **{name: value for name, value in locals().items() if name in _INHERENT_OPTIONS or name in _DRIVER_SETUP}
        )
        self._vi = 0
        self.library = library if isinstance(library, Library) else Library(library)
        # The thread keeps its first error until it is read; an older one would stand in the way.
        self.library.ClearError(0)
        vi = _Session()
        if options:
            status = self.library.InitWithOptions(
                _text_in(resource), bool(id_query), bool(reset), _text_in(options), byref(vi)
            )
        else:
            status = self.library.init(_text_in(resource), bool(id_query), bool(reset), byref(vi))
        self.library.check(status)
        self._vi = vi.value

    def __enter__(self) -> Session:
        return self

    def __exit__(self, *_: object) -> None:
        if self._vi:
            self.close()

    @property
    def handle(self) -> int:
        """For functions of `library`; 0 when it is closed."""
        return self._vi

    def _call(self, name: str, *arguments: Any) -> int:
        return self.library.check(getattr(self.library, name)(self._vi, *arguments), self._vi)

    def _outputs(self, kinds: Sequence[type], name: str, *arguments: Any) -> list[Any]:
        """Calls a function whose last parameters receive values of these types."""
        outputs = [_c_type(kind)() for kind in kinds]
        self._call(name, *arguments, *map(byref, outputs))
        return [kind(output.value) for kind, output in zip(kinds, outputs)]

    def _query(self, kind: type, name: str, *arguments: Any) -> Any:
        """The same with one."""
        return self._outputs([kind], name, *arguments)[0]

    def close(self) -> None:
        """Closes the session."""
        vi, self._vi = self._vi, 0
        self.library.check(self.library.close(vi), vi)

    def channel(self, which: Union[int, str]) -> Channel:
        """A channel by its number, or by its physical or virtual name. Of a list or a range all are set at once."""
        return Channel(self, which if isinstance(which, str) else f"OutputChannel{which}")

    source_mode = _setting("SourceMode", SourceMode, "How outputs 1 and 2 are combined.")
    bleeder = _setting("Bleeder", bool, "Whether the bleeder discharges the outputs.")
    selected_channel = _reading("SelectedChannel", int, "What messages about lists and delays act on, its number.")

    def select_channel(self, channel: str) -> None:
        """Selects what messages of the program's own about lists and delays act on."""
        self._call("SelectChannel", _text_in(channel))

    def clear_status(self) -> None:
        """Clears the event registers and the error queue."""
        self._call("ClearStatus")

    def event_status(self) -> EventStatus:
        """Reads the standard event status register, and clears it."""
        return self._query(EventStatus, "QueryEventStatus")

    def measure_all(self, channels: str) -> list[Reading]:
        """What the meters of all these channels read, in their order."""
        size = self.get_int32(Attribute.CHANNEL_COUNT)
        columns = [(_Real64 * size)() for _ in Reading._fields]
        count = _Int32()
        self._call("MeasureAll", _text_in(channels), size, *columns, byref(count))
        return [Reading(*reading) for reading in zip(*columns)][: count.value]

    def write(self, message: Union[str, bytes]) -> None:
        """Sends a message of the program's own; its line feed is added."""
        data = message if isinstance(message, bytes) else message.encode("utf-8", "surrogateescape")
        self._call("viWrite", (_Byte * len(data)).from_buffer_copy(data), len(data), byref(_Int64()))

    def read_response(self, largest: int = 65536) -> bytes:
        """Reads one response, with its line feed. One of more bytes is an Error, WARN_ARRAY_TRUNCATED."""
        data, count = (_Byte * largest)(), _Int64()
        status = self.library.viRead(self._vi, largest, data, byref(count))
        if status == WARN_ARRAY_TRUNCATED:
            raise Error(status, self.library.error_text(status))
        self.library.check(status, self._vi)
        return bytes(data[: count.value])

    def query(self, message: Union[str, bytes]) -> str:
        """Sends a message and reads its response, without the line feed."""
        self.lock_session()
        try:
            self.write(message)
            return self.read_response().decode("utf-8", "surrogateescape").rstrip("\r\n")
        finally:
            self.unlock_session()

    @property
    def io_timeout(self) -> int:
        """Milliseconds that a read or a write waits."""
        return self._query(int, "GetIoTimeout")

    @io_timeout.setter
    def io_timeout(self, milliseconds: int) -> None:
        self._call("SetIoTimeout", _int32(milliseconds))

    def _record(self, function: str) -> str:
        text = create_string_buffer(_TEXT_SIZE)
        self._call(function, _TEXT_SIZE, text)
        return _text_out(text)

    def get_next_coercion_record(self) -> str:
        """The driver records none: always an empty text."""
        return self._record("GetNextCoercionRecord")

    def get_next_interchange_warning(self) -> str:
        """The driver records none: always an empty text."""
        return self._record("GetNextInterchangeWarning")

    def reset_interchange_check(self) -> None:
        """Forgets what interchangeability is checked against."""
        self._call("ResetInterchangeCheck")

    def clear_interchange_warnings(self) -> None:
        """Forgets the interchangeability warnings."""
        self._call("ClearInterchangeWarnings")

    def lock_session(self) -> None:
        """Keeps the session to the calling thread until unlock_session."""
        self._call("LockSession", None)

    def unlock_session(self) -> None:
        """Takes one lock_session of the calling thread back."""
        self._call("UnlockSession", None)

    def get_error(self) -> tuple[int, str]:
        """Reads and clears the recorded error. One that was raised as Error has been read already."""
        return self.library.recorded_error(self._vi)

    def clear_error(self) -> None:
        """Clears the recorded error."""
        self._call("ClearError")

    def error_message(self, code: int) -> str:
        """The driver's message for a status code; an error for a code that is not its own."""
        text = create_string_buffer(_TEXT_SIZE)
        self._call("error_message", c_int32(code).value, text)
        return _text_out(text)

    def error_query(self) -> InstrumentError:
        """Takes one entry from the instrument's error queue."""
        code = _Int32()
        message = create_string_buffer(_TEXT_SIZE)
        self._call("error_query", byref(code), message)
        return InstrumentError(code.value, _text_out(message))

    def reset(self) -> None:
        """Puts the instrument into its default state."""
        self._call("reset")

    def reset_with_defaults(self) -> None:
        """The same as reset."""
        self._call("ResetWithDefaults")

    def disable(self) -> None:
        """Switches all outputs off."""
        self._call("Disable")

    def self_test(self) -> Optional[SelfTestResult]:
        """None when the instrument has no self test."""
        result = _Int16()
        message = create_string_buffer(_TEXT_SIZE)
        status = self.library.self_test(self._vi, byref(result), message)
        if status == WARN_NSUP_SELF_TEST:
            return None
        self.library.check(status, self._vi)
        return SelfTestResult(result.value, _text_out(message))

    def revision_query(self) -> Revisions:
        """The revisions of the driver and of the instrument's firmware."""
        driver = create_string_buffer(_TEXT_SIZE)
        instrument = create_string_buffer(_TEXT_SIZE)
        self._call("revision_query", driver, instrument)
        return Revisions(_text_out(driver), _text_out(instrument))

    def invalidate_all_attributes(self) -> None:
        """Forgets cached attribute values."""
        self._call("InvalidateAllAttributes")

    def configure_output_enabled(self, channels: str, enabled: bool) -> None:
        """Switches outputs on or off."""
        self._call("ConfigureOutputEnabled", _text_in(channels), bool(enabled))

    def configure_voltage_level(self, channels: str, volts: float) -> None:
        """Sets the voltage."""
        self._call("ConfigureVoltageLevel", _text_in(channels), volts)

    def configure_current_limit(self, channels: str, behavior: int, amperes: float) -> None:
        """Sets the current limit and what happens there, a CurrentLimitBehavior."""
        self._call("ConfigureCurrentLimit", _text_in(channels), _int32(behavior), amperes)

    def configure_ovp(self, channels: str, enabled: bool, volts: float) -> None:
        """Sets the over-voltage protection."""
        self._call("ConfigureOVP", _text_in(channels), bool(enabled), volts)

    def configure_output_range(self, channels: str, range_type: int, value: float) -> None:
        """Checks the channels; they have one range each."""
        self._call("ConfigureOutputRange", _text_in(channels), _int32(range_type), value)

    def reset_output_protection(self, channels: str) -> None:
        """Checks the channels; switching an output on ends a trip."""
        self._call("ResetOutputProtection", _text_in(channels))

    def query_max_current_limit(self, channels: str, volts: float) -> float:
        """The largest current that a channel takes, in amperes."""
        return self._query(float, "QueryMaxCurrentLimit", _text_in(channels), volts)

    def query_max_voltage_level(self, channels: str, amperes: float) -> float:
        """The largest voltage that a channel takes, in volts."""
        return self._query(float, "QueryMaxVoltageLevel", _text_in(channels), amperes)

    def query_output_state(self, channels: str, state: int) -> bool:
        """Whether an output is in an OutputState."""
        return self._query(bool, "QueryOutputState", _text_in(channels), _int32(state))

    def measure(self, channels: str, measurement: int) -> float:
        """The level that is set, in volts or amperes; takes a MeasurementType."""
        return self._query(float, "Measure", _text_in(channels), _int32(measurement))

    def get_channel_name(self, index: int) -> str:
        """The name of a channel by its number, from 1."""
        name = create_string_buffer(_TEXT_SIZE)
        self._call("GetChannelName", _int32(index), _TEXT_SIZE, name)
        return _text_out(name)

    def channel_names(self) -> list[str]:
        """The names of all channels."""
        return [self.get_channel_name(index + 1) for index in range(self.get_int32(Attribute.CHANNEL_COUNT))]

    def get(self, attribute: Attribute, channel: str = "") -> Value:
        """Reads an attribute, as the type it has."""
        return getattr(self, "get_" + _kind(attribute))(attribute, channel)

    def set(self, attribute: Attribute, value: Value, channels: str = "") -> None:
        """Sets an attribute, as the type it has."""
        getattr(self, "set_" + _kind(attribute))(attribute, value, channels)

    def get_int32(self, attribute: int, channel: str = "") -> int:
        """Reads a ViInt32 attribute."""
        return self._query(int, "GetAttributeViInt32", _text_in(channel), attribute)

    def get_real64(self, attribute: int, channel: str = "") -> float:
        """Reads a ViReal64 attribute."""
        return self._query(float, "GetAttributeViReal64", _text_in(channel), attribute)

    def get_boolean(self, attribute: int, channel: str = "") -> bool:
        """Reads a ViBoolean attribute."""
        return self._query(bool, "GetAttributeViBoolean", _text_in(channel), attribute)

    def get_session(self, attribute: int, channel: str = "") -> int:
        """Reads a ViSession attribute; the driver has none."""
        value = _Session()
        self._call("GetAttributeViSession", _text_in(channel), attribute, byref(value))
        return value.value

    def get_string(self, attribute: int, channel: str = "") -> str:
        """Reads a ViString attribute of any length: a positive status of its function is the size that is needed."""
        function, name = self.library.GetAttributeViString, _text_in(channel)
        text = create_string_buffer(1)
        needed = function(self._vi, name, attribute, 0, None)
        while needed > len(text):
            text = create_string_buffer(needed)
            needed = function(self._vi, name, attribute, needed, text)
        if needed < 0:
            self.library.check(needed, self._vi)
        return _text_out(text)

    def set_int32(self, attribute: int, value: int, channels: str = "") -> None:
        """Sets a ViInt32 attribute."""
        self._call("SetAttributeViInt32", _text_in(channels), attribute, _int32(value))

    def set_real64(self, attribute: int, value: float, channels: str = "") -> None:
        """Sets a ViReal64 attribute."""
        self._call("SetAttributeViReal64", _text_in(channels), attribute, value)

    def set_boolean(self, attribute: int, value: bool, channels: str = "") -> None:
        """Sets a ViBoolean attribute."""
        self._call("SetAttributeViBoolean", _text_in(channels), attribute, bool(value))

    def set_session(self, attribute: int, value: int, channels: str = "") -> None:
        """Sets a ViSession attribute; the driver has none."""
        self._call("SetAttributeViSession", _text_in(channels), attribute, value)

    def set_string(self, attribute: int, value: str, channels: str = "") -> None:
        """Sets a ViString attribute; the driver's are all read-only."""
        self._call("SetAttributeViString", _text_in(channels), attribute, _text_in(value))


def _demonstrate(supply: Session, channel: Channel) -> None:
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
    parser = argparse.ArgumentParser(description="Runs a short demonstration of the KVX2800T driver.")
    parser.add_argument("resource", help="VISA resource descriptor or logical name")
    parser.add_argument("--channel", default="OutputChannel3", help="a physical or a virtual name")
    parser.add_argument("--simulate", action="store_true", help="without an instrument")
    parser.add_argument("--no-profile", action="store_true", help="the plain driver, without what a bench needs")
    parser.add_argument("--library", help="the driver's library; default: KVX2800T_LIBRARY, then the system's")
    arguments = parser.parse_args()
    try:
        with Session(
            arguments.resource,
            simulate=arguments.simulate or None,
            profile=not arguments.no_profile,
            library=arguments.library,
        ) as supply:
            _demonstrate(supply, supply.channel(arguments.channel))
    except (Error, OSError) as error:
        print(f"kvx2800t.py: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
