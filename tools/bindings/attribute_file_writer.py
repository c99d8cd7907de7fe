"""The attribute information file, KVX2800T.sub, in the format of VPP-3.3 section 7."""

from __future__ import annotations

import textwrap
from collections.abc import Iterator

from model import Attribute, Enumeration, Interface

HEAD = 'FPAttributeValueFile\nn SubType="IVI"\nn SubVersion="1"\n'

INHERENT = "Inherent IVI Attributes"
# The standards' hierarchy (IVI-3.2 table 4-2, IVI-4.4 table 12-5): classes with the attributes that they have in it, by
# their descriptive names.
HIERARCHY: dict[tuple[str, ...], dict[str, str]] = {
    (INHERENT, "User Options"): {
        "RANGE_CHECK": "Range Check",
        "QUERY_INSTRUMENT_STATUS": "Query Instrument Status",
        "CACHE": "Cache",
        "SIMULATE": "Simulate",
        "RECORD_COERCIONS": "Record Value Coercions",
        "INTERCHANGE_CHECK": "Interchange Check",
    },
    (INHERENT, "Driver Identification"): {
        "SPECIFIC_DRIVER_DESCRIPTION": "Specific Driver Description",
        "SPECIFIC_DRIVER_PREFIX": "Specific Driver Prefix",
        "SPECIFIC_DRIVER_VENDOR": "Specific Driver Vendor",
        "SPECIFIC_DRIVER_REVISION": "Specific Driver Revision",
        "SPECIFIC_DRIVER_CLASS_SPEC_MAJOR_VERSION": "Specific Driver Class Spec Major Version",
        "SPECIFIC_DRIVER_CLASS_SPEC_MINOR_VERSION": "Specific Driver Class Spec Minor Version",
    },
    (INHERENT, "Driver Capabilities"): {
        "SUPPORTED_INSTRUMENT_MODELS": "Supported Instrument Models",
        "GROUP_CAPABILITIES": "Class Group Capabilities",
    },
    (INHERENT, "Instrument Identification"): {
        "INSTRUMENT_MANUFACTURER": "Instrument Manufacturer",
        "INSTRUMENT_MODEL": "Instrument Model",
        "INSTRUMENT_FIRMWARE_REVISION": "Instrument Firmware Revision",
    },
    (INHERENT, "Advanced Session Information"): {
        "LOGICAL_NAME": "Logical Name",
        "IO_RESOURCE_DESCRIPTOR": "I/O Resource Descriptor",
        "DRIVER_SETUP": "Driver Setup",
    },
    ("Output",): {
        "CURRENT_LIMIT": "Current Limit",
        "CURRENT_LIMIT_BEHAVIOR": "Current Limit Behavior",
        "CHANNEL_COUNT": "Output Channel Count",
        "OUTPUT_ENABLED": "Output Enabled",
        "OVP_ENABLED": "OVP Enabled",
        "OVP_LIMIT": "OVP Limit",
        "VOLTAGE_LEVEL": "Voltage Level",
    },
}
# What the driver alone has comes behind, below the group of the header that it is in.
STANDARD = {name for names in HIERARCHY.values() for name in names}

BOOLEANS = 'v Boolean_values DataType="i"\n VI_TRUE (1) "True"\n VI_FALSE (0) "False"\n'
ACCESSOR_TYPES = ("ViInt32", "ViReal64", "ViBoolean", "ViSession", "ViString")


def write(interface: Interface) -> str:
    """The text of the file."""
    return "\n".join([HEAD, BOOLEANS, *_value_sets(interface), *_accessors(interface), *_classes(interface)])


def _quoted(text: str) -> str:
    """As help text, which may go on over several lines."""
    lines = textwrap.wrap(text, 100, drop_whitespace=False, break_long_words=False) or [""]
    return "\n".join(' "' + line.replace("\\", "\\\\").replace('"', '\\"') + '"' for line in lines)


def _tag(enumeration: str) -> str:
    return enumeration + "_values"


def _value_sets(interface: Interface) -> Iterator[str]:
    used = {attribute.enumeration for attribute in interface.attributes if attribute.enumeration}
    return (_value_set(interface.enumeration(name)) for name in sorted(used))


def _value_set(enumeration: Enumeration) -> str:
    values = [f" {value.constant} ({value.value}){_quoted(value.doc)}" for value in enumeration.values]
    return "\n".join([f'v {_tag(enumeration.name)} DataType="i"', *values, ""])


def _accessors(interface: Interface) -> Iterator[str]:
    """The functions that set and get attributes, with the places of the attribute and of its value."""
    for function in interface.functions:
        name = function.short_name
        kind = name[len("SetAttribute") :]
        if name[:12] in ("SetAttribute", "GetAttribute") and kind in ACCESSOR_TYPES:
            names = [parameter.name for parameter in function.parameters]
            places = f'{names.index("AttributeID") + 1} {names.index("AttributeValue") + 1}'
            yield f'0 {function.name} {places} false {name[0].lower()} DataType="{kind}"'
    yield ""


def _classes(interface: Interface) -> Iterator[str]:
    attributes = {attribute.name: attribute for attribute in interface.attributes}
    entered: tuple[str, ...] = ()
    for path, names in {**HIERARCHY, **_own_classes(interface)}.items():
        for level in range(len(path)):
            if entered[: level + 1] != path[: level + 1]:
                yield f'{level + 1} all "{path[level]}"'
        entered = path
        for name, title in names.items():
            if name in attributes:
                yield _attribute(len(path) + 1, title, attributes[name])


def _own_classes(interface: Interface) -> dict[tuple[str, ...], dict[str, str]]:
    classes: dict[tuple[str, ...], dict[str, str]] = {}
    for attribute in interface.attributes:
        if attribute.name not in STANDARD:
            title = attribute.name.replace("_", " ").title()
            classes.setdefault((attribute.group,), {})[attribute.name] = title
    return classes


def _attribute(level: int, title: str, attribute: Attribute) -> str:
    values = {"ViBoolean": " Boolean_values"}.get(attribute.type, "")
    if attribute.enumeration:
        values = " " + _tag(attribute.enumeration)
    access = "gs" if attribute.is_settable else "g"
    head = f'{level} all "{title}" {attribute.constant} {attribute.type} {access}{values}'
    return f"{head}\n{_quoted(attribute.doc)}"
