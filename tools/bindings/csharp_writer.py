"""The C# declarations: enumerations, attributes, status codes and their exceptions, and the exported functions.

The functions are delegates, not DllImports, since the library's name depends on host and width. `Session` is partial: the
project that takes this file has in a part of its own what methods here use, and the functions with arrays.
"""

from __future__ import annotations

from collections.abc import Iterator
from xml.sax.saxutils import escape

from model import Direction, Function, Interface, Parameter, Status

HEAD = """// What the driver's headers declare: made from them by the build, not by hand.
using System;
using System.Reflection;
using System.Runtime.InteropServices;

[assembly: AssemblyVersion("{version}")]

namespace Kvx2800t
{{"""

TYPES = {
    "ViStatus": "int",
    "ViInt16": "short",
    "ViInt32": "int",
    "ViInt64": "long",
    "ViReal64": "double",
    "ViBoolean": "ushort",
    "ViByte": "byte",
    "ViAttr": "AttributeId",
    "ViSession": "uint",
    # Texts are bytes, with a NUL at their end: marshalled as strings they would be recoded.
    "ViChar": "byte",
    "ViConstString": "byte[]",
    "ViRsrc": "byte[]",
}
WORDS = {Direction.OUT: "out ", Direction.IN_OUT: "ref ", Direction.IN: ""}
KEYWORDS = {"event", "in", "is", "object", "out", "params", "ref", "string"}
# Exceptions that System has, too: a program that uses both could not name them.
OF_SYSTEM = {"FileNotFound", "OutOfMemory"}


def write(interface: Interface, version: str) -> str:
    """The text of the file."""
    parts = [HEAD.format(version=version), *_codes(interface), *_attributes(interface), *_enumerations(interface), *_exceptions(interface)]
    return "\n".join([*parts, *_functions(interface), *_session(interface), "}", ""])


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


def _exceptions(interface: Interface) -> Iterator[str]:
    errors = [status for status in interface.statuses if status.is_error]
    for status in errors:
        name = _exception(status)
        yield "\n" + _summary(status.doc, "    ") + f"\n    public sealed class {name} : DriverException\n    {{"
        yield f"        internal {name}(string text, string function)"
        yield f"            : base(StatusCode.{_pascal(status.name)}, text, function)\n        {{\n        }}\n    }}"
    yield "\n    public partial class DriverException\n    {"
    yield _summary("The exception of a status.", " " * 8)
    yield "        internal static DriverException Of(int status, string text, string function)\n        {"
    yield "            switch (status)\n            {"
    for status in errors:
        yield f"                case StatusCode.{_pascal(status.name)}: return new {_exception(status)}(text, function);"
    yield "                default: return new DriverException(status, text, function);\n            }\n        }\n    }"


def _exception(status: Status) -> str:
    """ERROR_IO_TIMEOUT is IoTimeoutException."""
    name = _pascal(status.name)[len("Error") :]
    return f"{'Kvx' if name in OF_SYSTEM else ''}{name}Exception"


def _functions(interface: Interface) -> Iterator[str]:
    yield "\n" + _summary("The exported functions; all return a status.", "    ")
    yield "    internal sealed class Functions\n    {"
    for function in interface.functions:
        yield f"        internal delegate int {function.short_name}Function({_parameters(function)});\n"
        yield _summary(function.brief, " " * 8)
        yield f"        internal readonly {function.short_name}Function {function.short_name};\n"
    yield "        internal Functions(Func<string, Type, Delegate> find)\n        {"
    for function in interface.functions:
        kind = f"{function.short_name}Function"
        yield f'            {function.short_name} = ({kind})find("{function.name}", typeof({kind}));'
    yield "        }\n    }"


def _parameters(function: Function) -> str:
    return ", ".join(_parameter(parameter) for parameter in function.parameters)


def _parameter(parameter: Parameter) -> str:
    name = _name(parameter)
    if _is_session(parameter):
        return f"SessionHandle {name}"
    if parameter.is_array:
        marshalling = "[Out] " if parameter.direction is Direction.OUT else ""
        return f"{marshalling}{TYPES[parameter.type]}[] {name}"
    return f"{WORDS[parameter.direction]}{TYPES[parameter.type]} {name}"


def _name(parameter: Parameter) -> str:
    return "@" + parameter.name if parameter.name in KEYWORDS else parameter.name


def _is_session(parameter: Parameter) -> bool:
    """Whether it is the session that a function is about."""
    return parameter.direction is Direction.IN and parameter.name.lower() in ("vi", "driversession")


def _session(interface: Interface) -> Iterator[str]:
    yield "\n" + _summary("The functions of a session; they throw.", "    ")
    yield "    internal sealed partial class Session\n    {"
    for function in interface.functions:
        if _is_session(function.parameters[0]) and all(map(_is_simple, function.parameters)):
            yield from _method(function)
    yield "    }"


def _is_simple(parameter: Parameter) -> bool:
    return not parameter.is_array and parameter.direction is not Direction.IN_OUT


def _method(function: Function) -> Iterator[str]:
    inputs = [p for p in function.parameters[1:] if p.direction is Direction.IN]
    outputs = [p for p in function.parameters if p.direction is Direction.OUT]
    arguments = ["handle", *map(_argument, function.parameters[1:])]
    taken = ", ".join(f"{_friendly_type(p)} {_name(p)}" for p in inputs)
    yield _summary(function.brief, " " * 8)
    yield f"        internal {_returned_type(outputs)} {function.short_name}({taken})\n        {{"
    yield f'            Check("{function.short_name}", functions.{function.short_name}({", ".join(arguments)}));'
    if outputs:
        yield f"            return {_in_one([_returned(p) for p in outputs])};"
    yield "        }\n"


def _friendly_type(parameter: Parameter) -> str:
    special = {"ViBoolean": "bool", "ViConstString": "string", "ViRsrc": "string"}
    return special.get(parameter.type, TYPES[parameter.type])


def _argument(parameter: Parameter) -> str:
    name = _name(parameter)
    if parameter.direction is Direction.OUT:
        return f"out {TYPES[parameter.type]} {name}"
    if parameter.type == "ViBoolean":
        return f"Switch({name})"
    return f"Text.In({name})" if _friendly_type(parameter) == "string" else name


def _returned(parameter: Parameter) -> str:
    return _name(parameter) + (" != 0" if parameter.type == "ViBoolean" else "")


def _returned_type(outputs: list[Parameter]) -> str:
    return _in_one([_friendly_type(p) for p in outputs]) if outputs else "void"


def _in_one(parts: list[str]) -> str:
    """Several are a tuple."""
    return parts[0] if len(parts) == 1 else f"({', '.join(parts)})"
