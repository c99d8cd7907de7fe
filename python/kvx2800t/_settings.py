"""Attributes of Python's objects that are settings of the instrument."""

from __future__ import annotations

import operator
from ctypes import c_double, c_int32, c_uint16
from typing import Any, Generic, Optional, Protocol, TypeVar, Union, overload

from ._interface import Attribute
from ._library import int32_in

T = TypeVar("T")


def c_type(kind: Any) -> Any:
    """How the driver passes a value of a type; enumerations are integers."""
    return {bool: c_uint16, float: c_double}.get(kind, c_int32)


def switch_in(value: bool) -> bool:
    """Checked, since the text "off" would be a true one."""
    if not isinstance(value, bool):
        raise TypeError(f"{value!r} is not True or False")
    return value


def to_driver(kind: Any, value: Any) -> Any:
    """A value as the driver takes it, of its type."""
    if kind is bool:
        return switch_in(value)
    if kind is float:
        return value
    return int32_in(operator.index(value) if kind is int else kind(value))


class Target(Protocol):
    """What has settings: it calls functions, and such as tell one value."""

    def _call(self, function: str, *arguments: Any) -> object: ...

    def _query(self, kind: Any, function: str, *arguments: Any) -> Any: ...


class Readable(Generic[T]):
    """What a function of one value, KVX2800T_Query..., tells."""

    def __init__(self, name: str, kind: type[T], doc: str) -> None:
        self._name = name
        self._kind = kind
        self.__doc__ = doc

    @overload
    def __get__(self, target: None, owner: Any) -> Readable[T]: ...

    @overload
    def __get__(self, target: Target, owner: Any) -> T: ...

    def __get__(self, target: Optional[Target], owner: Any) -> Union[Readable[T], T]:
        return self if target is None else self._read(target)

    def _read(self, target: Any) -> T:
        value: T = target._query(self._kind, "Query" + self._name)
        return value


class Setting(Readable[T]):
    """What a pair of functions, KVX2800T_Configure... and KVX2800T_Query..., is about."""

    def __set__(self, target: Target, value: T) -> None:
        self._write(target, to_driver(self._kind, value))

    def _write(self, target: Any, value: Any) -> None:
        target._call("Configure" + self._name, value)


class ChannelAttribute(Setting[T]):
    """What an attribute of channels is about."""

    def __init__(self, attribute: Attribute, kind: type[T], doc: str) -> None:
        super().__init__(attribute.name, kind, doc)
        self._attribute = attribute

    def _read(self, target: Any) -> T:
        value: T = self._kind(target._session.get(self._attribute, target.name))  # type: ignore[call-arg]
        return value

    def _write(self, target: Any, value: Any) -> None:
        target._session.set(self._attribute, value, target.name)
