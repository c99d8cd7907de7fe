"""Channels of a supply, and the groups of their settings."""

from __future__ import annotations

from ctypes import c_double, c_uint16
from typing import TYPE_CHECKING, Any, Iterable, Iterator, Sequence, Union

from ._interface import (
    Attribute,
    CurrentLimitBehavior,
    CurrentRange,
    CurrentRate,
    DelayEnd,
    DelayPattern,
    DelayState,
    DelayTimes,
    ListEnd,
    ListObject,
    ListState,
    MeasurementType,
    OutputOffMode,
    OutputState,
    Pairing,
    PowerOnState,
    ProtectionDelay,
    RangeType,
    Regulation,
    Waveform,
)
from ._library import channels_in, int32_in
from ._settings import ChannelAttribute, Readable, Setting, T, to_driver
from ._values import (
    DelayGroup,
    DelayStatus,
    ListGroup,
    ListStatus,
    ListTemplateObject,
    ProtectionState,
    Questionable,
    Reading,
)

if TYPE_CHECKING:
    from ._supply import Supply


class Selection:
    """Channels of a supply. Its attributes can be set on several and read of one."""

    __slots__ = ("_session", "_name")

    def __init__(self, session: Supply, name: str) -> None:
        self._session = session
        self._name = name

    def __repr__(self) -> str:
        return f"<{type(self).__name__} {self._name!r}>"

    @property
    def name(self) -> str:
        """The channels, as the driver's functions take them."""
        return self._name

    def _call(self, function: str, *arguments: Any) -> None:
        self._session._call(function, channels_in(self._name), *arguments)

    def _outputs(self, kinds: Sequence[Any], function: str, *arguments: Any) -> list[Any]:
        return self._session._outputs(kinds, function, channels_in(self._name), *arguments)

    def _query(self, kind: type[T], function: str, *arguments: Any) -> T:
        return self._session._query(kind, function, channels_in(self._name), *arguments)


class Protection(Selection):
    """The protections of a channel.

    The instrument has commands of its source for them and, here with output_ in front of the name, of its outputs.
    """

    __slots__ = ()

    ovp_limit = ChannelAttribute(Attribute.OVP_LIMIT, float, "The level of the over-voltage protection, in volts.")
    ovp_enabled = ChannelAttribute(Attribute.OVP_ENABLED, bool, "Whether the over-voltage protection is on.")
    current_level = Setting("CurrentProtectionLevel", float, "The level of the over-current protection, in amperes.")
    current_delay = Setting("CurrentProtectionDelay", float, "How long an over-current lasts first, in seconds.")
    current_delay_mode = Setting("CurrentProtectionDelayMode", ProtectionDelay, "When that delay applies.")
    output_ovp_value = Setting("OVPValue", float, "The level of the over-voltage protection, in volts.")
    output_ovp_enabled = Setting("OVPEnabled", bool, "Whether the over-voltage protection is on.")
    output_ocp_value = Setting("OCPValue", float, "The level of the over-current protection, in amperes.")
    output_ocp_enabled = Setting("OCPEnabled", bool, "Whether the over-current protection is on.")
    output_ocp_delay = Setting("OCPDelay", float, "How long an over-current lasts first, in seconds.")
    output_ocp_delay_mode = Setting("OCPDelayMode", ProtectionDelay, "When that delay applies.")

    def configure_ovp(self, enabled: bool, volts: float) -> None:
        """Sets the over-voltage protection."""
        self._call("ConfigureOVP", to_driver(bool, enabled), volts)

    @property
    def state(self) -> ProtectionState:
        """What has tripped. Switching the output on ends a trip."""
        return ProtectionState(*self._outputs([bool, bool], "QueryProtectionState"))

    def reset(self) -> None:
        """Raises OperationNotSupportedError with the profile; without it nothing is done: switching on ends a trip."""
        self._call("ResetOutputProtection")


class ChannelState(Selection):
    """What a channel is doing, from its registers."""

    __slots__ = ()

    regulation = Readable("RegulationState", Regulation, "What the output holds.")
    condition = Readable("QuestionableCondition", Questionable, "What is the case now.")

    def event(self) -> Questionable:
        """What has been the case since this was read last."""
        return self._query(Questionable, "QueryQuestionableEvent")

    def is_in(self, state: OutputState) -> bool:
        """Whether the output is in a state."""
        return self._query(bool, "QueryOutputState", to_driver(OutputState, state))


class ListProgram(Selection):
    """Groups of levels that the output takes one after the other; they count from 1."""

    __slots__ = ()

    enabled = Setting("ListEnabled", bool, "Whether it is on; it runs once the output is on, too.")
    cycles = Setting("ListCycles", int, "How often it runs; 0: without end.")
    end_state = Setting("ListEndState", ListEnd, "What the output does once it has run.")
    group_count = Readable("ListGroupCount", int, "How many groups it has.")

    def load(self, groups: Iterable[Sequence[float]]) -> None:
        """Replaces all groups; each is volts, amperes and seconds."""
        columns = list(zip(*(ListGroup(*group) for group in groups))) or [(), (), ()]
        arrays = [(c_double * len(column))(*column) for column in columns]
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
        return ListGroup(*self._outputs([float, float, float], "QueryListGroup", int32_in(number)))

    def set_group(self, number: int, volts: float, amperes: float, seconds: float) -> None:
        """Sets a group; one more than there are groups appends."""
        self._call("ConfigureListGroup", int32_in(number), volts, amperes, seconds)

    def insert_group(self, number: int) -> None:
        """Inserts a group, which gets this number."""
        self._call("InsertListGroup", int32_in(number))

    def delete_group(self, number: int) -> None:
        """Deletes a group."""
        self._call("DeleteListGroup", int32_in(number))

    def clear(self) -> None:
        """Deletes all groups."""
        self._call("ClearListGroups")


class ListTemplate(Selection):
    """A waveform that the groups of a list are made from."""

    __slots__ = ()

    waveform = Setting("ListTemplateWaveform", Waveform, "The waveform.")
    maximum = Setting("ListTemplateMaximum", float, "The highest level, in volts or amperes.")
    minimum = Setting("ListTemplateMinimum", float, "The lowest level, in volts or amperes.")
    period = Setting("ListTemplatePeriod", float, "The period, in seconds.")
    interval = Setting("ListTemplateInterval", float, "The time of one group, in seconds.")
    cycles = Setting("ListTemplateCycles", int, "The cycles that the list gets; 0: without end.")
    inverted = Setting("ListTemplateInverted", bool, "Whether the waveform is upside down.")
    pulse_width = Setting("ListTemplatePulseWidth", float, "The width of a pulse, in seconds.")
    pulse_count = Setting("ListTemplatePulseCount", int, "The number of pulses.")
    symmetry = Setting("ListTemplateSymmetry", int, "The rising part of a ramp, in percent.")
    start = Setting("ListTemplateStart", int, "The point of the waveform that becomes the first group.")
    expp = Setting("ListTemplateExpp", int, "EXPP of the exponential waveforms.")
    expr = Setting("ListTemplateExpr", int, "EXPR of the exponential waveforms.")
    points = Readable("ListTemplatePoints", int, "How many groups it gives.")

    @property
    def object(self) -> ListTemplateObject:
        """What follows the waveform, and the level of the other quantity: amperes or volts."""
        return ListTemplateObject(*self._outputs([ListObject, float], "QueryListTemplateObject"))

    @object.setter
    def object(self, value: tuple[ListObject, float]) -> None:
        what, level = value
        self._call("ConfigureListTemplateObject", to_driver(ListObject, what), level)

    def construct(self, group: int = 1) -> None:
        """Makes it the list from a group on."""
        self._call("ConstructList", int32_in(group))


class DelayProgram(Selection):
    """Groups of times that the output is on or off; they count from 1."""

    __slots__ = ()

    enabled = Setting("DelayEnabled", bool, "Whether it runs.")
    cycles = Setting("DelayCycles", int, "How often it runs; 0: without end.")
    end_state = Setting("DelayEndState", DelayEnd, "What the output does once it has run.")
    group_count = Readable("DelayGroupCount", int, "How many groups it has.")

    def load(self, groups: Iterable[tuple[bool, float]]) -> None:
        """Replaces all groups; each is the output on or off and seconds."""
        pairs = [(to_driver(bool, on), seconds) for on, seconds in groups]
        states = (c_uint16 * len(pairs))(*(on for on, _ in pairs))
        times = (c_double * len(pairs))(*(seconds for _, seconds in pairs))
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
        return DelayGroup(*self._outputs([bool, float], "QueryDelayGroup", int32_in(number)))

    def set_group(self, number: int, on: bool, seconds: float) -> None:
        """Sets a group; one more than there are groups appends."""
        self._call("ConfigureDelayGroup", int32_in(number), to_driver(bool, on), seconds)

    def insert_group(self, number: int) -> None:
        """Inserts a group, which gets this number."""
        self._call("InsertDelayGroup", int32_in(number))

    def delete_group(self, number: int) -> None:
        """Deletes a group."""
        self._call("DeleteDelayGroup", int32_in(number))

    def clear(self) -> None:
        """Deletes all groups."""
        self._call("ClearDelayGroups")


class DelayGenerator(Selection):
    """Times that the groups of a delay program are made from."""

    __slots__ = ()

    times = Setting("DelayGenerateMode", DelayTimes, "How the times change.")
    pattern = Setting("DelayGeneratePattern", DelayPattern, "What the groups begin with.")
    points = Setting("DelayGeneratePoints", int, "How many groups it gives.")
    on_time = Setting("DelayOnTime", float, "The time of groups that are on, where times are fixed, in seconds.")
    off_time = Setting("DelayOffTime", float, "The time of groups that are off, where times are fixed, in seconds.")
    base_time = Setting("DelayBaseTime", float, "The time of the first group, where times change, in seconds.")
    time_step = Setting("DelayTimeStep", float, "The change from group to group, where times change, in seconds.")

    def construct(self, group: int = 1) -> None:
        """Makes them the delay program from a group on."""
        self._call("ConstructDelay", int32_in(group))


class Channel(Selection):
    """A channel of a supply; from Supply.channels. One that names several channels can be set, but not read."""

    __slots__ = ()

    voltage_level = ChannelAttribute(Attribute.VOLTAGE_LEVEL, float, "The voltage setting, in volts.")
    current_limit = ChannelAttribute(Attribute.CURRENT_LIMIT, float, "The current limit, in amperes.")
    current_limit_behavior = ChannelAttribute(
        Attribute.CURRENT_LIMIT_BEHAVIOR, CurrentLimitBehavior, "What the output does at its current limit."
    )
    output_enabled = ChannelAttribute(Attribute.OUTPUT_ENABLED, bool, "Whether the output is on.")
    remote_sense = Setting("RemoteSense", bool, "Whether the voltage is sensed at the load.")
    output_sense = Setting("OutputSense", bool, "The same by the output's command.")
    power_on_state = Setting("PowerOnState", PowerOnState, "What it does when the instrument is switched on.")
    pairing = Setting("Pairing", Pairing, "The pairing.")
    tracking = Setting("Tracking", bool, "Whether it follows the channel that it is tracked to.")
    output_off_mode = Setting("OutputOffMode", OutputOffMode, "What the bleeder does while the output is off.")
    trigger_input = Setting("TriggerInput", bool, "Whether its list waits for a trigger.")
    current_range = Setting("CurrentRange", CurrentRange, "The range of the current measurement.")
    current_rate = Setting("CurrentRate", CurrentRate, "The rate of the current measurement.")

    def configure_current_limit(self, behavior: CurrentLimitBehavior, amperes: float) -> None:
        """Sets the current limit and what happens there."""
        self._call("ConfigureCurrentLimit", to_driver(CurrentLimitBehavior, behavior), amperes)

    def configure_output_range(self, range_type: RangeType, value: float) -> None:
        """Changes nothing; channels have one range each."""
        self._call("ConfigureOutputRange", to_driver(RangeType, range_type), value)

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
        return self._query(float, "MeasureOutput", to_driver(MeasurementType, measurement))

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


class Channels:
    """The channels of a supply, by their physical or virtual names, one or several.

    >>> supply = Supply("BenchSupply")
    >>> supply.channels["CH1"]
    <Channel 'CH1'>
    >>> supply.channels["CH1", "CH3"]
    <Channel 'CH1,CH3'>

    A range is that of the driver, which has both of its ends:

    >>> supply.channels[1:3]
    <Channel 'CH1-3'>

    A number alone is refused, since it would count from 1 here and from 0 elsewhere in Python:

    >>> supply.channels[1]
    Traceback (most recent call last):
    TypeError: channels have names, such as "CH1" or "OutputChannel1": 1 is none
    >>> [channel.name for channel in supply.channels][4:]
    ['OutputChannel5', 'OutputChannel6']
    >>> supply.close()
    """

    __slots__ = ("_session",)

    def __init__(self, session: Supply) -> None:
        self._session = session

    def __getitem__(self, names: Union[str, slice, tuple[str, ...]]) -> Channel:
        """What the names are of shows when the channel is used: the driver knows them."""
        if isinstance(names, slice):
            return Channel(self._session, _range(names))
        each = names if isinstance(names, tuple) else (names,)
        for name in each:
            channels_in(name)
        return Channel(self._session, ",".join(each))

    def __iter__(self) -> Iterator[Channel]:
        return (self[name] for name in self._session.channel_names())

    def __len__(self) -> int:
        return self._session.get_int32(Attribute.CHANNEL_COUNT)


def _range(numbers: slice) -> str:
    first, last = numbers.start, numbers.stop
    if numbers.step is not None or not all(type(end) is int for end in (first, last)):
        raise TypeError("a range of channels is two numbers, such as [1:3], both of them in it")
    if not 1 <= first <= last:
        raise ValueError(f"[{first}:{last}] is no range of channels: they count from 1, and the lower one comes first")
    return f"CH{first}-{last}"
