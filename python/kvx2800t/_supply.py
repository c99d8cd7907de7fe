"""A session with an instrument."""

from __future__ import annotations

from contextlib import contextmanager
from ctypes import byref, c_double, c_int16, c_int32, c_int64, c_uint8, c_uint32, create_string_buffer
from typing import Any, Iterator, NoReturn, Optional, Sequence, Union

from ._channels import Channels
from ._interface import ATTRIBUTE_TYPES, WARN_ARRAY_TRUNCATED, WARN_NSUP_SELF_TEST, Attribute, SourceMode
from ._library import TEXT_SIZE, Library, channels_in, int32_in, text_in, text_out
from ._options import DRIVER_SETUP, INHERENT_OPTIONS, option_string
from ._settings import Readable, Setting, T, c_type
from ._values import (
    EventStatus,
    FlowControl,
    InstrumentError,
    Parity,
    Reading,
    Revisions,
    SelfTestResult,
    StopBits,
    Value,
)


class Supply:
    """A session with an instrument. A context manager that closes it at its end.

    >>> with Supply("BenchSupply") as supply:
    ...     rail = supply.channels["CH1"]
    ...     rail.voltage_level = 5.0
    ...     rail.voltage_level
    5.0
    """

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
        message_log: Optional[int] = None,
        library: Union[Library, str, None] = None,
    ) -> None:
        """Opens a VISA resource descriptor or a logical name of the configuration store.

        What is None is left to the driver and to the store. Everything from model to message_log takes the place of
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
        message_log: how many of its last messages the session remembers, 1 to 10000
        library: loaded, or its path
        """
        options = option_string(
            **{name: value for name, value in locals().items() if name in INHERENT_OPTIONS or name in DRIVER_SETUP}
        )
        self._vi = 0
        self._resource = resource
        self.library = library if isinstance(library, Library) else Library(library)
        # The thread keeps its first error until it is read; an older one would stand in the way.
        self.library.ClearError(0)
        vi = c_uint32()
        function, texts = ("InitWithOptions", [text_in(options)]) if options else ("init", [])
        init = getattr(self.library, function)
        status = init(text_in(resource), bool(id_query), bool(reset), *texts, byref(vi))
        self.library.check(status, 0, function)
        self._vi = vi.value

    def __enter__(self) -> Supply:
        return self

    def __exit__(self, *_: object) -> None:
        if self._vi:
            self.close()

    def __repr__(self) -> str:
        return f"<Supply {self._resource!r}{'' if self._vi else ', closed'}>"

    def __reduce__(self) -> NoReturn:
        raise TypeError("a Supply is a connection and cannot be pickled or copied: open one in each process")

    @property
    def handle(self) -> int:
        """For functions of `library`; 0 when it is closed."""
        return self._vi

    def _call(self, name: str, *arguments: Any) -> int:
        return self.library.check(getattr(self.library, name)(self._vi, *arguments), self._vi, name)

    def _outputs(self, kinds: Sequence[Any], name: str, *arguments: Any) -> list[Any]:
        """Calls a function whose last parameters receive values of these types."""
        outputs = [c_type(kind)() for kind in kinds]
        self._call(name, *arguments, *map(byref, outputs))
        return [kind(output.value) for kind, output in zip(kinds, outputs)]

    def _query(self, kind: type[T], name: str, *arguments: Any) -> T:
        """The same with one."""
        value: T = self._outputs([kind], name, *arguments)[0]
        return value

    def close(self) -> None:
        """Closes the session."""
        vi, self._vi = self._vi, 0
        self.library.check(self.library.close(vi), vi, "close")

    @property
    def channels(self) -> Channels:
        """Its channels, by their names."""
        return Channels(self)

    source_mode = Setting("SourceMode", SourceMode, "How outputs 1 and 2 are combined.")
    bleeder = Setting("Bleeder", bool, "Whether the bleeder discharges the outputs.")
    selected_channel = Readable("SelectedChannel", int, "What messages about lists and delays act on, its number.")

    def select_channel(self, channel: str) -> None:
        """Selects what messages of the program's own about lists and delays act on."""
        self._call("SelectChannel", channels_in(channel))

    def clear_status(self) -> None:
        """Clears the event registers and the error queue."""
        self._call("ClearStatus")

    def event_status(self) -> EventStatus:
        """Reads the standard event status register, and clears it."""
        return self._query(EventStatus, "QueryEventStatus")

    def measure_all(self, channels: str) -> list[Reading]:
        """What the meters of all these channels read, in their order."""
        size = self.get_int32(Attribute.CHANNEL_COUNT)
        columns = [(c_double * size)() for _ in Reading._fields]
        count = c_int32()
        self._call("MeasureAll", channels_in(channels), size, *columns, byref(count))
        return [Reading(*reading) for reading in zip(*columns)][: count.value]

    def write(self, message: Union[str, bytes]) -> None:
        """Sends a message of the program's own; its line feed is added."""
        data = message if isinstance(message, bytes) else message.encode("utf-8", "surrogateescape")
        self._call("viWrite", (c_uint8 * len(data)).from_buffer_copy(data), len(data), byref(c_int64()))

    def read_response(self, largest: int = 65536) -> bytes:
        """Reads one response, with its line feed. One of more bytes is an Error, WARN_ARRAY_TRUNCATED."""
        data, count = (c_uint8 * largest)(), c_int64()
        status = self.library.viRead(self._vi, largest, data, byref(count))
        if status == WARN_ARRAY_TRUNCATED:
            raise self.library.error(status, self.library.error_text(status), "viRead")
        self.library.check(status, self._vi, "viRead")
        return bytes(data[: count.value])

    def query(self, message: Union[str, bytes]) -> str:
        """Sends a message and reads its response, without the line feed."""
        with self.locked():
            self.write(message)
            return self.read_response().decode("utf-8", "surrogateescape").rstrip("\r\n")

    @property
    def io_timeout(self) -> int:
        """Milliseconds that a read or a write waits."""
        return self._query(int, "GetIoTimeout")

    @io_timeout.setter
    def io_timeout(self, milliseconds: int) -> None:
        self._call("SetIoTimeout", int32_in(milliseconds))

    def _record(self, function: str, size: int = TEXT_SIZE) -> str:
        text = create_string_buffer(size)
        self._call(function, size, text)
        return text_out(text)

    def get_next_message_record(self) -> str:
        """The oldest message that is remembered (option message_log), which is forgotten then; empty when none is."""
        return self._record("GetNextMessageRecord", 1024)

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

    @contextmanager
    def locked(self) -> Iterator[None]:
        """Keeps the session to the calling thread for the calls within."""
        self.lock_session()
        try:
            yield
        finally:
            self.unlock_session()

    def get_error(self) -> tuple[int, str]:
        """Reads and clears the recorded error. One that was raised as Error has been read already."""
        return self.library.recorded_error(self._vi)

    def clear_error(self) -> None:
        """Clears the recorded error."""
        self._call("ClearError")

    def error_message(self, code: int) -> str:
        """The driver's message for a status code; an error for a code that is not its own."""
        text = create_string_buffer(TEXT_SIZE)
        self._call("error_message", c_int32(code).value, text)
        return text_out(text)

    def error_query(self) -> InstrumentError:
        """Takes one entry from the instrument's error queue."""
        code = c_int32()
        message = create_string_buffer(TEXT_SIZE)
        self._call("error_query", byref(code), message)
        return InstrumentError(code.value, text_out(message))

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
        result = c_int16()
        message = create_string_buffer(TEXT_SIZE)
        status = self.library.self_test(self._vi, byref(result), message)
        if status == WARN_NSUP_SELF_TEST:
            return None
        self.library.check(status, self._vi, "self_test")
        return SelfTestResult(result.value, text_out(message))

    def revision_query(self) -> Revisions:
        """The revisions of the driver and of the instrument's firmware."""
        driver = create_string_buffer(TEXT_SIZE)
        instrument = create_string_buffer(TEXT_SIZE)
        self._call("revision_query", driver, instrument)
        return Revisions(text_out(driver), text_out(instrument))

    def invalidate_all_attributes(self) -> None:
        """Forgets cached attribute values."""
        self._call("InvalidateAllAttributes")

    def configure_output_enabled(self, channels: str, enabled: bool) -> None:
        """Switches outputs on or off."""
        self._call("ConfigureOutputEnabled", channels_in(channels), bool(enabled))

    def configure_voltage_level(self, channels: str, volts: float) -> None:
        """Sets the voltage."""
        self._call("ConfigureVoltageLevel", channels_in(channels), volts)

    def configure_current_limit(self, channels: str, behavior: int, amperes: float) -> None:
        """Sets the current limit and what happens there, a CurrentLimitBehavior."""
        self._call("ConfigureCurrentLimit", channels_in(channels), int32_in(behavior), amperes)

    def configure_ovp(self, channels: str, enabled: bool, volts: float) -> None:
        """Sets the over-voltage protection."""
        self._call("ConfigureOVP", channels_in(channels), bool(enabled), volts)

    def configure_output_range(self, channels: str, range_type: int, value: float) -> None:
        """Checks the channels; they have one range each."""
        self._call("ConfigureOutputRange", channels_in(channels), int32_in(range_type), value)

    def reset_output_protection(self, channels: str) -> None:
        """Checks the channels; switching an output on ends a trip."""
        self._call("ResetOutputProtection", channels_in(channels))

    def query_max_current_limit(self, channels: str, volts: float) -> float:
        """The largest current that a channel takes, in amperes."""
        return self._query(float, "QueryMaxCurrentLimit", channels_in(channels), volts)

    def query_max_voltage_level(self, channels: str, amperes: float) -> float:
        """The largest voltage that a channel takes, in volts."""
        return self._query(float, "QueryMaxVoltageLevel", channels_in(channels), amperes)

    def query_output_state(self, channels: str, state: int) -> bool:
        """Whether an output is in an OutputState."""
        return self._query(bool, "QueryOutputState", channels_in(channels), int32_in(state))

    def measure(self, channels: str, measurement: int) -> float:
        """The level that is set, in volts or amperes; takes a MeasurementType."""
        return self._query(float, "Measure", channels_in(channels), int32_in(measurement))

    def get_channel_name(self, index: int) -> str:
        """The name of a channel by its number, from 1."""
        name = create_string_buffer(TEXT_SIZE)
        self._call("GetChannelName", int32_in(index), TEXT_SIZE, name)
        return text_out(name)

    def channel_names(self) -> list[str]:
        """The names of all channels."""
        return [self.get_channel_name(index + 1) for index in range(self.get_int32(Attribute.CHANNEL_COUNT))]

    def get(self, attribute: Attribute, channel: str = "") -> Value:
        """Reads an attribute, as the type it has."""
        value: Value = getattr(self, "get_" + ATTRIBUTE_TYPES[attribute])(attribute, channel)
        return value

    def set(self, attribute: Attribute, value: Value, channels: str = "") -> None:
        """Sets an attribute, as the type it has."""
        getattr(self, "set_" + ATTRIBUTE_TYPES[attribute])(attribute, value, channels)

    def get_int32(self, attribute: int, channel: str = "") -> int:
        """Reads a ViInt32 attribute."""
        return self._query(int, "GetAttributeViInt32", channels_in(channel), attribute)

    def get_real64(self, attribute: int, channel: str = "") -> float:
        """Reads a ViReal64 attribute."""
        return self._query(float, "GetAttributeViReal64", channels_in(channel), attribute)

    def get_boolean(self, attribute: int, channel: str = "") -> bool:
        """Reads a ViBoolean attribute."""
        return self._query(bool, "GetAttributeViBoolean", channels_in(channel), attribute)

    def get_session(self, attribute: int, channel: str = "") -> int:
        """Reads a ViSession attribute; the driver has none."""
        value = c_uint32()
        self._call("GetAttributeViSession", channels_in(channel), attribute, byref(value))
        return value.value

    def get_string(self, attribute: int, channel: str = "") -> str:
        """Reads a ViString attribute of any length: a positive status of its function is the size that is needed."""
        function, name = self.library.GetAttributeViString, channels_in(channel)
        text = create_string_buffer(1)
        needed = function(self._vi, name, attribute, 0, None)
        while needed > len(text):
            text = create_string_buffer(needed)
            needed = function(self._vi, name, attribute, needed, text)
        if needed < 0:
            self.library.check(needed, self._vi, "GetAttributeViString")
        return text_out(text)

    def set_int32(self, attribute: int, value: int, channels: str = "") -> None:
        """Sets a ViInt32 attribute."""
        self._call("SetAttributeViInt32", channels_in(channels), attribute, int32_in(value))

    def set_real64(self, attribute: int, value: float, channels: str = "") -> None:
        """Sets a ViReal64 attribute."""
        self._call("SetAttributeViReal64", channels_in(channels), attribute, value)

    def set_boolean(self, attribute: int, value: bool, channels: str = "") -> None:
        """Sets a ViBoolean attribute."""
        self._call("SetAttributeViBoolean", channels_in(channels), attribute, bool(value))

    def set_session(self, attribute: int, value: int, channels: str = "") -> None:
        """Sets a ViSession attribute; the driver has none."""
        self._call("SetAttributeViSession", channels_in(channels), attribute, value)

    def set_string(self, attribute: int, value: str, channels: str = "") -> None:
        """Sets a ViString attribute; the driver's are all read-only."""
        self._call("SetAttributeViString", channels_in(channels), attribute, text_in(value))
