"""The KVX2800T driver for Python 3.9 and later, through ctypes.

    from kvx2800t import Attribute, Session

    with Session("TCPIP0::192.168.1.20::5025::SOCKET") as supply:
        supply.configure_voltage_level("OutputChannel1", 5.0)
        supply.set(Attribute.OUTPUT_ENABLED, True, "OutputChannel1")
        print(supply.get(Attribute.VOLTAGE_LEVEL, "OutputChannel1"))

A call that fails raises Error, with the status code and the recorded text. One that ends with a warning warns with
StatusWarning. The methods are named after the functions of KVX2800T.h, which says what each does and which channels,
values and units it takes. The functions of KVX2800TInstrument.h are those of `Session.library`; they take
`Session.handle`, and `Library.check` makes exceptions of their statuses. A C++ exception of the driver, as said there, ends a Python program.

The library is the one that `library` or the environment variable KVX2800T_LIBRARY names, or else the one that the
system finds by its usual name.

    python3 kvx2800t.py RESOURCE

runs a short demonstration.
"""

from __future__ import annotations

import argparse
import ctypes
import enum
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
from typing import Any, NamedTuple, Optional, Union

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
    # Those of KVX2800TInstrument.h, which Session has no methods for: they are called as functions of `library`.
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


class Session:
    """A session with an instrument. A context manager that closes it at its end."""

    def __init__(
        self,
        resource: str,
        options: Optional[str] = None,
        *,
        id_query: bool = False,
        reset: bool = False,
        library: Union[Library, str, None] = None,
    ) -> None:
        """Opens a VISA resource descriptor or a logical name of the configuration store.

        options: such as "QueryInstrStatus=1"; library: loaded, or its path.
        """
        self._vi = 0
        self.library = library if isinstance(library, Library) else Library(library)
        # The thread keeps its first error until it is read; an older one would stand in the way.
        self.library.ClearError(0)
        vi = _Session()
        if options is None:
            status = self.library.init(_text_in(resource), bool(id_query), bool(reset), byref(vi))
        else:
            status = self.library.InitWithOptions(
                _text_in(resource), bool(id_query), bool(reset), _text_in(options), byref(vi)
            )
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

    def _query(self, kind: Any, name: str, *arguments: Any) -> Any:
        """Calls a function whose last parameter receives the result."""
        result = kind()
        self._call(name, *arguments, byref(result))
        return result.value

    def close(self) -> None:
        """Closes the session."""
        vi, self._vi = self._vi, 0
        self.library.check(self.library.close(vi), vi)

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
        return self._query(_Real64, "QueryMaxCurrentLimit", _text_in(channels), volts)

    def query_max_voltage_level(self, channels: str, amperes: float) -> float:
        """The largest voltage that a channel takes, in volts."""
        return self._query(_Real64, "QueryMaxVoltageLevel", _text_in(channels), amperes)

    def query_output_state(self, channels: str, state: int) -> bool:
        """Whether an output is in an OutputState."""
        return bool(self._query(_Boolean, "QueryOutputState", _text_in(channels), _int32(state)))

    def measure(self, channels: str, measurement: int) -> float:
        """The level that is set, in volts or amperes; takes a MeasurementType."""
        return self._query(_Real64, "Measure", _text_in(channels), _int32(measurement))

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
        return self._query(_Int32, "GetAttributeViInt32", _text_in(channel), attribute)

    def get_real64(self, attribute: int, channel: str = "") -> float:
        """Reads a ViReal64 attribute."""
        return self._query(_Real64, "GetAttributeViReal64", _text_in(channel), attribute)

    def get_boolean(self, attribute: int, channel: str = "") -> bool:
        """Reads a ViBoolean attribute."""
        return bool(self._query(_Boolean, "GetAttributeViBoolean", _text_in(channel), attribute))

    def get_session(self, attribute: int, channel: str = "") -> int:
        """Reads a ViSession attribute; the driver has none."""
        return self._query(_Session, "GetAttributeViSession", _text_in(channel), attribute)

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


def _demonstrate(supply: Session, channel: str) -> None:
    print(f"{supply.get(Attribute.INSTRUMENT_MODEL)}, firmware {supply.revision_query().instrument}")
    supply.configure_voltage_level(channel, 3.3)
    supply.configure_current_limit(channel, CurrentLimitBehavior.REGULATE, 0.5)
    supply.configure_output_enabled(channel, True)
    try:
        _show(supply, channel)
    finally:
        supply.disable()


def _show(supply: Session, channel: str) -> None:
    volts = supply.get(Attribute.VOLTAGE_LEVEL, channel)
    amperes = supply.get(Attribute.CURRENT_LIMIT, channel)
    enabled = supply.get(Attribute.OUTPUT_ENABLED, channel)
    print(f"{channel}: {volts:.3f} V, {amperes:.3f} A, output {'on' if enabled else 'off'}")
    try:
        supply.configure_voltage_level(channel, 100.0)
    except Error as error:
        print(f"100 V: {error}")


def main() -> int:
    """The demonstration; returns the exit code."""
    parser = argparse.ArgumentParser(description="Runs a short demonstration of the KVX2800T driver.")
    parser.add_argument("resource", help="VISA resource descriptor or logical name")
    parser.add_argument("--channel", default="OutputChannel3", help="a physical or a virtual name")
    parser.add_argument("--options", help='such as "Simulate=1"')
    parser.add_argument("--library", help="the driver's library; default: KVX2800T_LIBRARY, then the system's")
    arguments = parser.parse_args()
    try:
        with Session(arguments.resource, arguments.options, library=arguments.library) as supply:
            _demonstrate(supply, arguments.channel)
    except (Error, OSError) as error:
        print(f"kvx2800t.py: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
