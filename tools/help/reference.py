"""The chapters that are made of the driver's headers."""

from __future__ import annotations

import re
import xml.etree.ElementTree as ET
from collections.abc import Iterator
from html import escape
from os.path import commonprefix
from pathlib import Path

import doxygen_html
import reader
from attribute_file_writer import HIERARCHY as ATTRIBUTE_HIERARCHY
from chapters import FUNCTION_HIERARCHY, Content, Section
from model import Attribute, Direction, Enumeration, Function, Interface, Status

HEADERS = {"KVX2800T.h": "KVX2800T_8h.xml", "KVX2800TInstrument.h": "KVX2800TInstrument_8h.xml"}
ACCESS = {Direction.IN: "in", Direction.OUT: "out", Direction.IN_OUT: "in, out"}
# Texts between quotation marks that are messages to the instrument, and not left to the program.
COMMAND = re.compile(r'"([:*][^"]+)"(?! by KVX2800T_viWrite)')


class Reference:
    """What Doxygen has written of the headers into a folder."""

    def __init__(self, xml: Path) -> None:
        self.interface: Interface = reader.read(xml)
        self._headers = {name: ET.parse(xml / file).getroot() for name, file in HEADERS.items()}
        self._members: dict[str, ET.Element] = {}
        self._sections: dict[str, ET.Element] = {}
        for root in self._headers.values():
            for section in root.iter("sectiondef"):
                for member in section.findall("memberdef"):
                    name = member.findtext("name", "")
                    self._members[name], self._sections[name] = member, section

    def chapters(self) -> dict[str, Content]:
        """Each by its name."""
        return {
            "functions": self._functions(),
            "attributes": self._attributes(),
            "values": self._values(),
            "statuses": self._statuses(),
            "names": self._names(),
        }

    def names(self) -> dict[str, str]:
        """What running text mentions, names, their beginnings and codes of statuses, with the anchor of each."""
        anchors = {name: name for name in self._documented()}
        codes = {f"0x{status.code:08X}": status.constant for status in self.interface.statuses}
        enumerations = self.interface.enumerations
        beginnings = {_prefix(e) + "...": "values-" + e.name for e in enumerations}
        beginnings |= {_common_words(e) + "...": "values-" + e.name for e in enumerations}
        return {"KVX2800T_ATTR_...": "attributes", **beginnings, **codes, **anchors}

    def part(self, header: str, title: str) -> str:
        """A titled paragraph of what a header says of itself."""
        return doxygen_html.titled(self._headers[header].find("compounddef/detaileddescription"))[title]

    def commands(self) -> str:
        """The table of what is sent to the instrument, and which functions and attributes send it."""
        users: dict[str, list[str]] = {}
        for name in self._documented():
            for command in COMMAND.findall(_said_of(self._members[name])):
                users.setdefault(_header_part(command), []).append(name)
        rows = "".join(
            f"<tr><td><code>{escape(command)}</code></td><td>{', '.join(dict.fromkeys(users[command]))}</td></tr>\n"
            for command in sorted(users, key=str.lower)
        )
        return f"<table>\n<tr><th>command</th><th>sent by</th></tr>\n{rows}</table>\n"

    def _documented(self) -> Iterator[str]:
        interface = self.interface
        yield from (function.name for function in interface.functions)
        yield from (attribute.constant for attribute in interface.attributes)
        yield from (value.constant for enumeration in interface.enumerations for value in enumeration.values)
        yield from (status.constant for status in interface.statuses)

    def _functions(self) -> Content:
        lead = "".join(
            f"<h4>{title}</h4>\n{self.part('KVX2800T.h', title)}"
            for title in ("Status", "Exceptions", "Lack of memory", "Threads")
        )
        return Content(lead, (*self._class_functions(), *self._instrument_functions()))

    def _class_functions(self) -> Iterator[Section]:
        for title, names in FUNCTION_HIERARCHY.items():
            functions = [f for name in names for f in self.interface.functions if f.short_name == name]
            yield self._group(title, functions)

    def _instrument_functions(self) -> Iterator[Section]:
        placed = {name for names in FUNCTION_HIERARCHY.values() for name in names}
        groups: dict[str, list[Function]] = {}
        for function in self.interface.functions:
            if function.short_name not in placed:
                groups.setdefault(self._group_title(function.name), []).append(function)
        common = self.part("KVX2800TInstrument.h", "Channels") + self.part("KVX2800TInstrument.h", "Status")
        yield Section("instrument-specific", "Beyond the instrument class", common)
        yield from (self._group(title, functions) for title, functions in groups.items())

    def _group_title(self, name: str) -> str:
        return self._sections[name].findtext("header", "").strip() or "Others"

    def _group(self, title: str, functions: list[Function]) -> Section:
        """What their groups in the header say of all of them stands before them."""
        notes = dict.fromkeys(self._group_note(function.name) for function in functions)
        body = "".join([*notes, *(self._function(function) for function in functions)])
        return Section("functions-" + _slug(title), title, body)

    def _group_note(self, name: str) -> str:
        return doxygen_html.description(self._sections[name].find("description"))

    def _function(self, function: Function) -> str:
        member = self._members[function.name]
        details = member.find("detaileddescription")
        return "".join(
            [
                _heading(function.name),
                doxygen_html.description(member.find("briefdescription")),
                f"<pre>{escape(_prototype(member), quote=False)}</pre>\n",
                _parameters(function, member),
                doxygen_html.description(details),
                f"<p><b>Returns</b> {doxygen_html.returned(details)}</p>\n",
            ]
        )

    def _attributes(self) -> Content:
        attributes = {attribute.name: attribute for attribute in self.interface.attributes}
        classes: dict[str, list[tuple[str, Attribute]]] = {}
        for path, names in ATTRIBUTE_HIERARCHY.items():
            placed = [(title, attributes.pop(name)) for name, title in names.items() if name in attributes]
            classes[": ".join(path)] = placed
        for attribute in attributes.values():
            classes.setdefault(attribute.group, []).append((attribute.name.replace("_", " ").title(), attribute))
        lead = (
            "<p>Attributes are read and set by the functions below "
            '<a href="#functions-attribute-access">Attribute access</a>, which also say which statuses they return. '
            "The prefix of all constants is <code>KVX2800T_ATTR_</code>; the numbers are those of the IVI "
            "specifications.</p>\n"
        )
        return Content(lead, tuple(self._attribute_class(title, members) for title, members in classes.items()))

    def _attribute_class(self, title: str, members: list[tuple[str, Attribute]]) -> Section:
        body = "".join(self._attribute(name, attribute) for name, attribute in members)
        return Section("attributes-" + _slug(title), title, body)

    def _attribute(self, title: str, attribute: Attribute) -> str:
        facts = [("name", title), ("ID", str(attribute.id)), ("type", attribute.type)]
        facts.append(("access", "read, write" if attribute.is_settable else "read-only"))
        facts.append(("channel", "read of one, set of several" if attribute.is_of_channels else "ignored"))
        if attribute.enumeration:
            values = [value.constant for value in self.interface.enumeration(attribute.enumeration).values]
            facts.append(("values", ", ".join(values)))
        elif attribute.type == "ViBoolean":
            facts.append(("values", "VI_TRUE, VI_FALSE"))
        doc = self._comment(attribute.constant)
        # Where the type is said of the whole group, so is what the attributes have in common.
        note = "" if attribute.doc.startswith(attribute.type) else self._group_note(attribute.constant)
        return _heading(attribute.constant) + _facts(facts) + doc + note

    def _comment(self, name: str) -> str:
        member = self._members[name]
        parts = (member.find("briefdescription"), member.find("detaileddescription"))
        return "".join(doxygen_html.description(part) for part in parts)

    def _values(self) -> Content:
        sections = []
        for enumeration in self.interface.enumerations:
            title = enumeration.doc.rstrip(".").replace("Values of the ", "", 1)
            rows = [(value.constant, str(value.value), self._comment(value.constant)) for value in enumeration.values]
            sections.append(Section("values-" + enumeration.name, title[0].upper() + title[1:], _rows("value", rows)))
        lead = "<p>What functions and attributes take and give where a number stands for something.</p>\n"
        return Content(lead, tuple(sections))

    def _statuses(self) -> Content:
        groups: dict[str, list[Status]] = {}
        for status in self.interface.statuses:
            groups.setdefault(self._group_title(status.constant), []).append(status)
        sections = []
        for title, statuses in groups.items():
            rows = [(s.constant, f"0x{s.code:08X}", self._comment(s.constant)) for s in statuses]
            note = self._group_note(statuses[0].constant)
            sections.append(Section("statuses-" + _slug(title), title, note + _rows("code", rows)))
        lead = self.part("KVX2800T.h", "Status") + "<p>VI_SUCCESS is 0. Errors are negative, warnings positive.</p>\n"
        return Content(lead, tuple(sections))

    def _names(self) -> Content:
        names = sorted(self._documented(), key=str.lower)
        items = "".join(f'<li><a href="#{name}">{name}</a></li>\n' for name in names)
        return Content(f"<ul>\n{items}</ul>\n", ())


def _prefix(enumeration: Enumeration) -> str:
    """What the names in C have in front of those in other languages."""
    return enumeration.values[0].constant.removesuffix(enumeration.values[0].name)


def _common_words(enumeration: Enumeration) -> str:
    """What the names of its values have in common, which may be more."""
    return commonprefix([value.constant for value in enumeration.values]).rpartition("_")[0] + "_"


def _said_of(member: ET.Element) -> str:
    parts = (member.find("briefdescription"), member.find("detaileddescription"))
    return " ".join(" ".join(part.itertext()) for part in parts if part is not None)


def _heading(name: str) -> str:
    return f'<h3 id="{name}">{name}</h3>\n'


def _slug(title: str) -> str:
    return re.sub(r"[^a-z0-9]+", "-", title.lower()).strip("-")


def _header_part(command: str) -> str:
    """Without arguments, and without the number of a channel, since that differs."""
    return re.sub(r"(?<=SOUR|mary)\d", "<n>", command.split(" ")[0])


def _prototype(member: ET.Element) -> str:
    """In C, a line for each parameter where one line would be long."""
    head = member.findtext("definition", "").replace("_VI_FUNC ", "") + "("
    declarations = member.findtext("argsstring", "")[1:-1].split(", ")
    line = head + ", ".join(declarations) + ");"
    return line if len(line) <= 88 else head + "\n    " + ",\n    ".join(declarations) + ");"


def _parameters(function: Function, member: ET.Element) -> str:
    described = {
        item.findtext("parameternamelist/parametername", ""): doxygen_html.inline(item.find("parameterdescription"))
        for item in member.iter("parameteritem")
    }
    rows = "".join(
        f"<tr><td><code>{parameter.name}</code></td><td>{parameter.type}</td><td>{ACCESS[parameter.direction]}</td>"
        f"<td>{described.get(parameter.name, '')}</td></tr>\n"
        for parameter in function.parameters
    )
    head = "<tr><th>parameter</th><th>type</th><th>direction</th><th>what</th></tr>\n"
    return f"<table>\n{head}{rows}</table>\n" if rows else ""


def _facts(facts: list[tuple[str, str]]) -> str:
    return "<table>\n" + "".join(f"<tr><th>{name}</th><td>{value}</td></tr>\n" for name, value in facts) + "</table>\n"


def _rows(kind: str, rows: list[tuple[str, str, str]]) -> str:
    """A table of constants, which links lead to."""
    html = "".join(
        f'<tr><td><a id="{name}">{name}</a></td><td>{number}</td><td>{re.sub("</?p>", "", doc).strip()}</td></tr>\n'
        for name, number, doc in rows
    )
    return f"<table>\n<tr><th>name</th><th>{kind}</th><th>meaning</th></tr>\n{html}</table>\n"
