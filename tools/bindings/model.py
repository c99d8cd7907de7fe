"""What the driver's public headers declare, in no language."""

from __future__ import annotations

import enum
from dataclasses import dataclass
from typing import Optional

PREFIX = "KVX2800T_"


class Direction(enum.Enum):
    """Which way the value of a parameter goes."""

    IN = "in"
    OUT = "out"
    IN_OUT = "in out"


@dataclass(frozen=True)
class Parameter:
    """`type` is VISA's name of the value's type, such as ViReal64; that of an array's elements, too."""

    name: str
    type: str
    direction: Direction
    is_array: bool
    doc: str

    @property
    def is_reference(self) -> bool:
        """Whether its address is passed: of an array, or of a value that is written."""
        return self.is_array or self.direction is not Direction.IN


@dataclass(frozen=True)
class Function:
    """An exported function. `brief` is its first sentence, `returned` what is said of its status."""

    name: str
    type: str
    parameters: tuple[Parameter, ...]
    brief: str
    returned: str

    @property
    def short_name(self) -> str:
        """Without the driver's prefix."""
        return self.name[len(PREFIX) :]


@dataclass(frozen=True)
class Value:
    """A constant of an enumeration: its name in C, and the one that it has within the enumeration."""

    constant: str
    name: str
    value: int
    doc: str


@dataclass(frozen=True)
class Enumeration:
    """The values of one thing."""

    name: str
    doc: str
    values: tuple[Value, ...]


@dataclass(frozen=True)
class Attribute:
    """`group` is the heading that it stands below; `enumeration` names that of its values, where it has one."""

    constant: str
    id: int
    type: str
    is_settable: bool
    is_of_channels: bool
    enumeration: Optional[str]
    group: str
    doc: str

    @property
    def name(self) -> str:
        """Without KVX2800T_ATTR_."""
        return self.constant.split("_ATTR_", 1)[1]


@dataclass(frozen=True)
class Status:
    """`code` as the headers write it: 32 bits, without a sign."""

    constant: str
    code: int
    doc: str

    @property
    def is_error(self) -> bool:
        """Otherwise it is a warning."""
        return self.code >= 0x80000000

    @property
    def name(self) -> str:
        """Without the prefix of the driver or of IVI, which no two names differ in."""
        return self.constant.split("_", 1)[1].replace("IVI_ATTR_", "ATTRIBUTE_")


@dataclass(frozen=True)
class Interface:
    """All of it, in the headers' order."""

    functions: tuple[Function, ...]
    attributes: tuple[Attribute, ...]
    enumerations: tuple[Enumeration, ...]
    statuses: tuple[Status, ...]

    def enumeration(self, name: str) -> Enumeration:
        """The one of this name."""
        return next(enumeration for enumeration in self.enumerations if enumeration.name == name)
