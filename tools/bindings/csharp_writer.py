"""The C# declarations: P/Invoke signatures, enumerations, attributes and status codes.

`Native` is partial: the project that takes this file says in a part of its own what `Library` is called.
"""

from __future__ import annotations

from collections.abc import Iterator
from xml.sax.saxutils import escape

from model import Direction, Function, Interface, Parameter

HEAD = """// What the driver's headers declare: made from them by the build, not by hand.
using System.Runtime.InteropServices;

namespace Kvx2800t
{"""

TYPES = {
    "ViStatus": "int",
    "ViInt16": "short",
    "ViInt32": "int",
    "ViInt64": "long",
    "ViReal64": "double",
    "ViBoolean": "ushort",
    "ViByte": "byte",
    "ViAttr": "uint",
    "ViSession": "uint",
    # Texts are bytes, with a NUL at their end: marshalled as strings they would be recoded.
    "ViChar": "byte",
    "ViConstString": "byte[]",
    "ViRsrc": "byte[]",
}
WORDS = {Direction.OUT: "out ", Direction.IN_OUT: "ref ", Direction.IN: ""}
KEYWORDS = {"event", "in", "is", "object", "out", "params", "ref", "string"}


def write(interface: Interface) -> str:
    """The text of the file."""
    parts = [HEAD, *_codes(interface), *_attributes(interface), *_enumerations(interface), *_functions(interface)]
    return "\n".join([*parts, "}", ""])


def _summary(text: str, indent: str) -> str:
    return f"{indent}/// <summary>{escape(text)}</summary>"


def _pascal(name: str) -> str:
    """A constant's name as C# writes it."""
    return "".join(word.capitalize() for word in name.split("_"))


def _codes(interface: Interface) -> Iterator[str]:
    yield _summary("The status codes by name.", "    ") + "\n    public static class StatusCode\n    {"
    for status in interface.statuses:
        yield _summary(status.doc, " " * 8)
        yield f"        public const int {_pascal(status.name)} = unchecked((int)0x{status.code:08X});"
    yield "    }"


def _attributes(interface: Interface) -> Iterator[str]:
    yield "\n" + _summary("The attributes by name.", "    ") + "\n    public enum AttributeId : uint\n    {"
    for attribute in interface.attributes:
        yield _summary(attribute.doc, " " * 8)
        yield f"        {_pascal(attribute.name)} = {attribute.id},"
    yield "    }"


def _enumerations(interface: Interface) -> Iterator[str]:
    for enumeration in interface.enumerations:
        yield "\n" + _summary(enumeration.doc, "    ") + f"\n    public enum {enumeration.name}\n    {{"
        for value in enumeration.values:
            yield _summary(value.doc, " " * 8)
            yield f"        {_pascal(value.name)} = {value.value},"
        yield "    }"


def _functions(interface: Interface) -> Iterator[str]:
    yield "\n" + _summary("The exported functions; all return a status.", "    ")
    yield "    internal static partial class Native\n    {"
    for function in interface.functions:
        yield _summary(function.brief, " " * 8)
        yield f'        [DllImport(Library, EntryPoint = "{function.name}", ExactSpelling = true)]'
        yield f"        internal static extern int {function.short_name}({_parameters(function)});\n"
    yield "    }"


def _parameters(function: Function) -> str:
    return ", ".join(_parameter(parameter) for parameter in function.parameters)


def _parameter(parameter: Parameter) -> str:
    name = "@" + parameter.name if parameter.name in KEYWORDS else parameter.name
    if parameter.is_array:
        marshalling = "[Out] " if parameter.direction is Direction.OUT else ""
        return f"{marshalling}{TYPES[parameter.type]}[] {name}"
    return f"{WORDS[parameter.direction]}{TYPES[parameter.type]} {name}"
