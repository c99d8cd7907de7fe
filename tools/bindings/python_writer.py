"""The Python package's module of prototypes, enumerations, status codes and their exceptions."""

from __future__ import annotations

import builtins
from collections.abc import Iterator

from model import Attribute, Interface, Parameter, Status

HEAD = '''"""What the driver's headers declare: made from them by the build, not by hand."""

from __future__ import annotations

import enum
from ctypes import POINTER, c_char_p, c_double, c_int16, c_int32, c_int64, c_uint8, c_uint16, c_uint32
from typing import Any

from ._errors import Error

# What programs may use; the rest is the package's own.
__all__ = [
'''

C_TYPES = {
    "ViStatus": "c_int32",
    "ViInt16": "c_int16",
    "ViInt32": "c_int32",
    "ViInt64": "c_int64",
    "ViReal64": "c_double",
    "ViBoolean": "c_uint16",
    "ViByte": "c_uint8",
    "ViAttr": "c_uint32",
    "ViSession": "c_uint32",
    "ViChar": "c_char_p",
    "ViConstString": "c_char_p",
    "ViRsrc": "c_char_p",
}


def write(interface: Interface) -> str:
    """The text of the module."""
    names = [f'    "{name}",' for name in _public_names(interface)]
    parts = [HEAD + "\n".join(names) + "\n]\n", *_codes(interface), *_attributes(interface), *_enumerations(interface)]
    return "\n".join([*parts, *_functions(interface), *_exceptions(interface)])


def _public_names(interface: Interface) -> Iterator[str]:
    yield "Attribute"
    yield from (enumeration.name for enumeration in interface.enumerations)
    for status in interface.statuses:
        yield status.name
        if status.is_error:
            yield _exception(status)


def _codes(interface: Interface) -> Iterator[str]:
    for status in interface.statuses:
        yield f"{status.name} = 0x{status.code:08X}  # {status.doc}"


def _attributes(interface: Interface) -> Iterator[str]:
    yield '\n\nclass Attribute(enum.IntEnum):\n    """The attributes by name."""\n'
    for attribute in interface.attributes:
        yield f"    {attribute.name} = {attribute.id}  # {attribute.doc}"
    yield "\n\n# The type of each attribute's values.\nATTRIBUTE_TYPES: dict[Attribute, str] = {"
    for attribute in interface.attributes:
        yield f'    Attribute.{attribute.name}: "{_kind(attribute)}",'
    yield "}"


def _kind(attribute: Attribute) -> str:
    return attribute.type[len("Vi") :].lower()


def _enumerations(interface: Interface) -> Iterator[str]:
    for enumeration in interface.enumerations:
        yield f'\n\nclass {enumeration.name}(enum.IntEnum):\n    """{enumeration.doc}"""\n'
        for value in enumeration.values:
            yield f"    {value.name} = {value.value}  # {value.doc}"


def _functions(interface: Interface) -> Iterator[str]:
    yield "\n\n# Every exported function with the types of its parameters; all return a status."
    yield "FUNCTIONS: dict[str, list[Any]] = {"
    for function in interface.functions:
        yield f'    "{function.short_name}": [{", ".join(_c_type(parameter) for parameter in function.parameters)}],'
    yield "}"


def _c_type(parameter: Parameter) -> str:
    c_type = C_TYPES[parameter.type]
    return f"POINTER({c_type})" if parameter.is_reference and parameter.type != "ViChar" else c_type


def _exceptions(interface: Interface) -> Iterator[str]:
    errors = [status for status in interface.statuses if status.is_error]
    for status in errors:
        yield f'\n\nclass {_exception(status)}(Error):\n    """{status.doc}"""'
    yield "\n\n# The exception of each status.\nERRORS: dict[int, type[Error]] = {"
    for status in errors:
        yield f"    {status.name}: {_exception(status)},"
    yield "}\n"


def _exception(status: Status) -> str:
    """ERROR_IO_TIMEOUT is IoTimeoutError. What Python itself has gets Kvx in front."""
    name = "".join(word.capitalize() for word in status.name.split("_")[1:]) + "Error"
    return "Kvx" + name if hasattr(builtins, name) else name
