"""What the help consists of: its chapters in their order, and the hierarchies of the reference."""

from __future__ import annotations

from dataclasses import dataclass
from typing import Optional

TITLE = "KVX2800T driver"
SUBJECT = "IVI-C driver for the KVX2800T family of programmable multi-channel DC power supplies"


@dataclass(frozen=True)
class Chapter:
    """`name` is that of its page. A guide is a Markdown file of the project; the others are made of the headers."""

    name: str
    title: str
    guide: Optional[str] = None


CHAPTERS = (
    Chapter("introduction", "Introduction", "docs/introduction.md"),
    Chapter("windows", "Installing on Windows", "docs/installing_on_windows.md"),
    Chapter("linux", "Installing on Linux", "docs/installation.md"),
    Chapter("first_session", "A first session", "docs/first_session.md"),
    Chapter("channels", "Channels and virtual names", "docs/channels.md"),
    Chapter("options", "Options and DriverSetup", "docs/options.md"),
    Chapter("functions", "Functions"),
    Chapter("attributes", "Attributes"),
    Chapter("values", "Values"),
    Chapter("statuses", "Status codes"),
    Chapter("commands", "Instrument commands", "docs/commands.md"),
    Chapter("examples", "Examples", "examples/README.md"),
    Chapter("python", "Python", "python/README.md"),
    Chapter("csharp", "C#", "csharp/README.md"),
    Chapter("environments", "Languages and tools", "docs/environments.md"),
    Chapter("matlab", "MATLAB", "docs/matlab.md"),
    Chapter("labview", "LabVIEW", "docs/labview.md"),
    Chapter("program", "The program kvx2800t", "tools/kvx2800t/README.md"),
    Chapter("store", "The configuration store", "tools/store/README.md"),
    Chapter("reliability", "What can be relied on", "docs/reliability.md"),
    Chapter("troubleshooting", "When it does not work", "docs/troubleshooting.md"),
    Chapter("known_issues", "Known issues", "docs/known_issues.md"),
    Chapter("compliance", "Compliance", "docs/compliance.md"),
    Chapter("notice", "Notices", "docs/notice.md"),
    Chapter("names", "Index of names"),
)

# The functions' places in IVI-3.2 table 4-3 and IVI-4.4 table 12-4. What the instrument has beyond its class comes
# behind, by the groups of its header.
FUNCTION_HIERARCHY: dict[str, tuple[str, ...]] = {
    "Initialize": ("init", "InitWithOptions"),
    "Configuration": (
        "ConfigureVoltageLevel",
        "ConfigureOVP",
        "ConfigureCurrentLimit",
        "ConfigureOutputRange",
        "ConfigureOutputEnabled",
        "QueryMaxCurrentLimit",
        "QueryMaxVoltageLevel",
    ),
    "Attribute access": (
        "SetAttributeViInt32",
        "SetAttributeViReal64",
        "SetAttributeViBoolean",
        "SetAttributeViString",
        "SetAttributeViSession",
        "GetAttributeViInt32",
        "GetAttributeViReal64",
        "GetAttributeViBoolean",
        "GetAttributeViString",
        "GetAttributeViSession",
        "InvalidateAllAttributes",
    ),
    "Action": ("QueryOutputState", "ResetOutputProtection", "Measure"),
    "Channel names": ("GetChannelName",),
    "Utility": (
        "self_test",
        "reset",
        "ResetWithDefaults",
        "Disable",
        "revision_query",
        "error_query",
        "error_message",
        "GetError",
        "ClearError",
        "LockSession",
        "UnlockSession",
        "GetNextCoercionRecord",
        "GetNextInterchangeWarning",
        "ResetInterchangeCheck",
        "ClearInterchangeWarnings",
    ),
    "Close": ("close",),
}


@dataclass(frozen=True)
class Section:
    """Part of a chapter, as HTML without its heading."""

    anchor: str
    title: str
    body: str


@dataclass(frozen=True)
class Content:
    """A chapter's HTML, whose links lead to anchors ("#name") wherever these are; `lead` stands before the sections."""

    lead: str
    sections: tuple[Section, ...]
