"""Reads Doxygen's XML of the driver's headers.

What C does not say is read from the comments, whose wording is therefore fixed in a few places: a parameter that is
written "receives ..." or "is not written"; an attribute's comment, or its group's, begins with the type; "read-only" in
either is what it says; attributes of channels are in a group that is read "of one channel"; the values of something are in
a group "Values of ..." or "Further values of ...". What fits nowhere is an error.
"""

from __future__ import annotations

import re
import xml.etree.ElementTree as ET
from collections.abc import Iterator
from pathlib import Path

from model import PREFIX, Attribute, Direction, Enumeration, Function, Interface, Parameter, Status, Value

# What is named otherwise than the headers' title suggests: the enumeration, and what its constants have in common
# behind KVX2800T_VAL_.
NAMES = {
    "current limit behavior": ("CurrentLimitBehavior", "CURRENT_"),
    "output state": ("OutputState", "OUTPUT_"),
    "measurement type": ("MeasurementType", "MEASURE_"),
    "range type": ("RangeType", "RANGE_"),
    "regulation state": ("Regulation", "REGULATION_"),
    "range of the current measurement": ("CurrentRange", "CURRENT_RANGE_"),
    "rate of the current measurement": ("CurrentRate", "CURRENT_"),
    "delay mode of the over-current protection": ("ProtectionDelay", "PROTECTION_DELAY_"),
    "power-on state": ("PowerOnState", "POWER_ON_"),
    "output-off mode": ("OutputOffMode", "OUTPUT_OFF_"),
    "state of a list": ("ListState", "LIST_"),
    "end state of a list": ("ListEnd", "LIST_END_"),
    "waveform of a list template": ("Waveform", "LIST_WAVEFORM_"),
    "object of a list template": ("ListObject", "LIST_OBJECT_"),
    "state of a delay program": ("DelayState", "DELAY_"),
    "end state of a delay program": ("DelayEnd", "DELAY_END_"),
    "times that a delay program is generated with": ("DelayTimes", "DELAY_GENERATE_"),
    "pattern that a delay program is generated with": ("DelayPattern", "DELAY_PATTERN_"),
}

TYPES = {"ViInt32", "ViReal64", "ViBoolean", "ViSession", "ViString"}


class HeaderError(Exception):
    """The headers say something that the model has no place for."""


def read(xml: Path) -> Interface:
    """Reads the folder that Doxygen has written its XML to."""
    sections = list(_sections(xml))
    return Interface(
        functions=tuple(_function(member) for _, member in _members(sections, "function")),
        attributes=tuple(_attributes(sections)),
        enumerations=tuple(_enumerations(sections)),
        statuses=tuple(_statuses(sections)),
    )


def _sections(xml: Path) -> Iterator[ET.Element]:
    """The groups of declarations, header by header in the order in which one includes the other."""
    for header in ("KVX2800T_8h.xml", "KVX2800TInstrument_8h.xml"):
        yield from ET.parse(xml / header).getroot().iter("sectiondef")


def _members(sections: list[ET.Element], kind: str) -> Iterator[tuple[ET.Element, ET.Element]]:
    for section in sections:
        for member in section.findall("memberdef"):
            if member.get("kind") == kind:
                yield section, member


def _defines(sections: list[ET.Element], pattern: str) -> Iterator[tuple[ET.Element, ET.Element]]:
    return ((section, member) for section, member in _members(sections, "define") if re.match(pattern, _name(member)))


def _text(element: ET.Element | None) -> str:
    """Its text, on one line."""
    return "" if element is None else " ".join("".join(element.itertext()).split())


def _name(member: ET.Element) -> str:
    return _text(member.find("name"))


def _title(section: ET.Element) -> str:
    return _text(section.find("header"))


def _doc(member: ET.Element) -> str:
    return _text(member.find("briefdescription")) + _text(member.find("detaileddescription"))


def _number(member: ET.Element) -> int:
    match = re.fullmatch(r"(?:\(\(ViStatus\))?(0x[0-9A-F]+|\d+)(?:UL\))?", _text(member.find("initializer")))
    if not match:
        raise HeaderError(f"{_name(member)} is no number")
    return int(match.group(1), 0)


def _function(member: ET.Element) -> Function:
    described = {
        _text(item.find("parameternamelist")): _text(item.find("parameterdescription"))
        for item in member.iter("parameteritem")
    }
    return Function(
        name=_name(member),
        type=_text(member.find("type")),
        parameters=tuple(_parameter(parameter, described) for parameter in member.findall("param")),
        brief=_text(member.find("briefdescription")),
        returned=_text(member.find(".//simplesect[@kind='return']")),
    )


def _parameter(parameter: ET.Element, described: dict[str, str]) -> Parameter:
    name = _text(parameter.find("declname"))
    match = re.fullmatch(r"(const )?(Vi\w+) ?(\*?)", _text(parameter.find("type")))
    if not match:
        raise HeaderError(f"{_text(parameter.find('type'))} {name}: the type of a parameter")
    doc, is_array = described.get(name, ""), parameter.find("array") is not None
    if re.match("receives |is not written", doc):
        direction = Direction.OUT
    else:
        direction = Direction.IN_OUT if match.group(3) else Direction.IN
    is_written = direction is not Direction.IN
    if is_written and (match.group(1) or not (match.group(3) or is_array)):
        raise HeaderError(f"{name}: {doc} But it cannot be written")
    return Parameter(name, match.group(2), direction, is_array, doc)


def _attributes(sections: list[ET.Element]) -> Iterator[Attribute]:
    enumerations = {title: name for title, (name, _) in _value_groups(sections).items()}
    for section, member in _defines(sections, PREFIX + "ATTR_"):
        group, doc, name = _text(section.find("description")), _doc(member), _name(member)
        types = [text.split(",")[0].split(":")[0].split(" ")[0] for text in (doc, group)]
        known = [type_name for type_name in types if type_name in TYPES]
        if not known:
            raise HeaderError(f"{name}: neither its comment nor its group's begins with a type")
        yield Attribute(
            constant=name,
            id=_number(member),
            type=known[0],
            is_settable="read-only" not in (doc + group).lower(),
            is_of_channels="of one channel" in group,
            enumeration=enumerations.get(name.split("_ATTR_")[1].lower().replace("_", " ")),
            group=_title(section),
            doc=doc,
        )


def _value_groups(sections: list[ET.Element]) -> dict[str, tuple[str, list[ET.Element]]]:
    """The values of each thing: by the thing, the name of their enumeration and the constants."""
    groups: dict[str, tuple[str, list[ET.Element]]] = {}
    for section, member in _defines(sections, PREFIX + "VAL_"):
        match = re.fullmatch(r"(?:Further values|Values) of the (.+)", _title(section))
        if not match:
            raise HeaderError(f'{_name(member)}: its group "{_title(section)}" does not say what it is a value of')
        thing = match.group(1)
        name = NAMES[thing][0] if thing in NAMES else _name_for(thing)
        groups.setdefault(thing, (name, []))[1].append(member)
    return groups


def _name_for(thing: str) -> str:
    """ "mode of a fuse" is FuseMode."""
    parts = re.split(r" of (?:an?|the) ", thing)
    return "".join(word.capitalize() for part in reversed(parts) for word in re.split("[ -]", part))


def _enumerations(sections: list[ET.Element]) -> Iterator[Enumeration]:
    for thing, (name, members) in _value_groups(sections).items():
        prefix = PREFIX + "VAL_" + (NAMES[thing][1] if thing in NAMES else _common_prefix(members))
        values = tuple(Value(_name(m), _name(m)[len(prefix) :], _number(m), _doc(m)) for m in members)
        if any(not value.constant.startswith(prefix) for value in values):
            raise HeaderError(f"the values of the {thing} do not begin with {prefix}")
        yield Enumeration(name, f"Values of the {thing}.", values)


def _common_prefix(members: list[ET.Element]) -> str:
    """The words that all of their names begin with, but for the last word of each."""
    words = [_name(member).split("_VAL_")[1].split("_")[:-1] for member in members]
    common = 0
    while all(len(name) > common and name[common] == words[0][common] for name in words):
        common += 1
    return "".join(word + "_" for word in words[0][:common])


def _statuses(sections: list[ET.Element]) -> Iterator[Status]:
    for _, member in _defines(sections, "(IVI|KVX2800T)_(ERROR|WARN)_"):
        yield Status(_name(member), _number(member), _doc(member))
