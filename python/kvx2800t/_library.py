"""The driver's library and what goes in and out of its functions."""

from __future__ import annotations

import ctypes
import logging
import os
import struct
import sys
import warnings
from ctypes import byref, c_int32, create_string_buffer
from pathlib import Path
from typing import Any, Optional

from ._errors import DriverNotInstalled, Error, StatusWarning
from ._interface import ERRORS, FUNCTIONS

TEXT_SIZE = 256

_PREFIX = "KVX2800T_"
_log = logging.getLogger("kvx2800t")


def text_in(text: str) -> bytes:
    """A text as the driver takes it. It would end at a NUL without a word."""
    if not isinstance(text, str):
        raise TypeError(f"{text!r} is no text")
    if "\0" in text:
        raise ValueError("a text for the driver cannot have a NUL in it")
    return text.encode("utf-8", "surrogateescape")


def channels_in(channels: str) -> bytes:
    """Names of channels as the driver takes them."""
    if not isinstance(channels, str):
        raise TypeError(f'channels have names, such as "CH1" or "OutputChannel1": {channels!r} is none')
    return text_in(channels)


def text_out(buffer: ctypes.Array[ctypes.c_char]) -> str:
    """What the driver has written into a buffer."""
    return buffer.value.decode("utf-8", "surrogateescape")


def int32_in(value: int) -> int:
    """ctypes would drop the upper bits of a larger number without a word."""
    if not -(2**31) <= value < 2**31:
        raise OverflowError(f"{value} does not fit into 32 bits")
    return value


class _Function:
    """A function of the library, which writes its calls into the log."""

    __slots__ = ("_function", "_name")

    def __init__(self, library: ctypes.CDLL, name: str, parameters: list[Any]) -> None:
        self._name = _PREFIX + name
        self._function = getattr(library, self._name)
        self._function.argtypes = parameters
        self._function.restype = c_int32

    def __call__(self, *arguments: Any) -> int:
        status: int = self._function(*arguments)
        if _log.isEnabledFor(logging.DEBUG):
            shown = ", ".join(map(_shown, arguments))
            _log.debug("%s(%s) = 0x%08X", self._name, shown, status & 0xFFFFFFFF)
        return status


def _shown(argument: Any) -> str:
    """An argument as the log has it, once the function has written what it writes."""
    if isinstance(argument, ctypes.Array):
        return repr(argument.value) if hasattr(argument, "value") else f"[{len(argument)}]"
    return repr(argument._obj.value) if hasattr(argument, "_obj") else repr(argument)


def _usual_places() -> list[str]:
    """Where the library is looked for, in this order: with a folder a file, without one as the system's loader does."""
    named = os.environ.get("KVX2800T_LIBRARY")
    if named:
        return [named]
    if sys.platform != "win32":
        return [str(Path(__file__).parent / "lib" / "libKVX2800T.so.1"), "libKVX2800T.so.1"]
    name, root = ("KVX2800T_64.dll", "IVIROOTDIR64") if struct.calcsize("P") == 8 else ("KVX2800T.dll", "IVIROOTDIR32")
    installed = [str(Path(os.environ[root], "Bin", name))] if root in os.environ else []
    return [*installed, name]


def _load(path: str) -> ctypes.CDLL:
    if sys.platform == "win32":
        # Mode 0: the search path counts, too.
        return ctypes.WinDLL(path, winmode=0)
    return ctypes.CDLL(path)


def _load_first(places: list[str]) -> ctypes.CDLL:
    failures = []
    for place in places:
        if os.path.dirname(place) and not os.path.exists(place):
            failures.append((place, "there is no such file"))
            continue
        try:
            return _load(place)
        except OSError as error:
            failures.append((place, str(error)))
    raise DriverNotInstalled(failures)


class Library:
    """The driver's library, loaded: its functions by name, without their prefix. They return statuses."""

    def __init__(self, path: Optional[str] = None) -> None:
        self._library = _load_first([os.fspath(path)] if path else _usual_places())
        for name, parameters in FUNCTIONS.items():
            setattr(self, name, _Function(self._library, name, parameters))

    def __getattr__(self, name: str) -> Any:
        raise AttributeError(f"the driver has no function KVX2800T_{name}")

    def __repr__(self) -> str:
        return f"<Library {self._library._name!r}>"

    def error_text(self, code: int) -> str:
        """The driver's message for a status code, with "%s" for the details; "" for a code that is not its own."""
        text = create_string_buffer(TEXT_SIZE)
        known = self.error_message(0, c_int32(code).value, text) >= 0
        return text_out(text) if known else ""

    def recorded_error(self, vi: int = 0) -> tuple[int, str]:
        """Reads and clears what a session, or this thread for 0, has recorded: a code, 0 for none, and a text."""
        size = self.GetError(vi, None, 0, None)
        if size < 0:
            return 0, ""
        text = create_string_buffer(size)
        code = c_int32()
        self.GetError(vi, byref(code), size, text)
        return code.value & 0xFFFFFFFF, text_out(text)

    def check(self, status: int, vi: int = 0, function: str = "") -> int:
        """Raises the exception of an error, warns of a warning. Returns the status."""
        if status == 0:
            return status
        code = status & 0xFFFFFFFF
        if status > 0:
            warnings.warn(f"0x{code:08X} {self.error_text(code)}", StatusWarning, stacklevel=4)
            return status
        recorded, text = self.recorded_error(vi)
        raise self.error(code, text if recorded == code else self.error_text(code), function)

    @staticmethod
    def error(code: int, text: str, function: str) -> Error:
        """The exception of a status, of a function without its prefix."""
        return ERRORS.get(code, Error)(code, text, _PREFIX + function if function else "")
