"""The description of the type library in IDL, which widl turns into one for each width of the DLL.

Constants are enumerations in it; that something is not written (`const`) cannot be said.
"""

from __future__ import annotations

from collections.abc import Iterator

from model import PREFIX, Direction, Function, Interface, Parameter

# The library's own, for ever: programs that have imported it find a newer one by it.
LIBRARY_ID = "6f0f8f4e-5f0b-4d55-9d3c-2b3a7c1d2800"

TYPES = {
    "ViStatus": "long",
    "ViInt16": "short",
    "ViInt32": "long",
    "ViInt64": "hyper",
    "ViReal64": "double",
    "ViBoolean": "unsigned short",
    "ViByte": "unsigned char",
    "ViAttr": "unsigned long",
    "ViSession": "unsigned long",
    "ViChar": "char",
    "ViConstString": "LPSTR",
    "ViRsrc": "LPSTR",
}


def write(interface: Interface, version: str, dll: str) -> str:
    """The text of the IDL for a DLL of this name."""
    return "\n".join([*_head(version), *_constants(interface), *_functions(interface, dll), "};", ""])


def _quoted(text: str) -> str:
    return '"' + text.replace("\\", "\\\\").replace('"', "'") + '"'


def _head(version: str) -> Iterator[str]:
    major_minor = ".".join(version.split(".")[:2])
    yield "// What the driver's headers declare: made from them by the build, not by hand."
    yield f'[uuid({LIBRARY_ID}), version({major_minor}), helpstring("KVX2800T: IVI-C driver {version}")]'
    yield "library KVX2800T\n{"
    yield "    typedef [string] char *LPSTR;"


def _constants(interface: Interface) -> Iterator[str]:
    attributes = [(attribute.constant, str(attribute.id)) for attribute in interface.attributes]
    yield _enumeration("Attribute", "The attributes by name.", attributes)
    statuses = [(status.constant, str(_signed(status.code))) for status in interface.statuses]
    yield _enumeration("StatusCode", "The status codes by name.", statuses)
    for enumeration in interface.enumerations:
        values = [(value.constant, str(value.value)) for value in enumeration.values]
        yield _enumeration(enumeration.name, enumeration.doc, values)


def _signed(code: int) -> int:
    return code - 2**32 if code >= 2**31 else code


def _enumeration(name: str, doc: str, values: list[tuple[str, str]]) -> str:
    """Type libraries of several drivers may be imported side by side: the name has this driver's prefix."""
    rows = ",\n".join(f"        {constant} = {value}" for constant, value in values)
    own = PREFIX + name
    return f"    typedef [helpstring({_quoted(doc)})] enum {own}\n    {{\n{rows}\n    }} {own};"


def _functions(interface: Interface, dll: str) -> Iterator[str]:
    yield f'    [dllname("{dll}"), helpstring("The exported functions; all return a status.")]'
    yield "    module Functions\n    {"
    for function in interface.functions:
        yield f'        [entry("{function.name}"), helpstring({_quoted(function.brief)})]'
        yield f"        long __stdcall {function.name}({_parameters(function)});"
    yield "    };"


def _parameters(function: Function) -> str:
    return ", ".join(_parameter(parameter) for parameter in function.parameters)


def _parameter(parameter: Parameter) -> str:
    # An array that is written comes from the caller, as large as it says.
    ways = {Direction.IN: "in", Direction.OUT: "in, out" if parameter.is_array else "out", Direction.IN_OUT: "in, out"}
    pointer = "*" if parameter.is_reference else ""
    return f"[{ways[parameter.direction]}] {TYPES[parameter.type]} {pointer}{parameter.name}"
