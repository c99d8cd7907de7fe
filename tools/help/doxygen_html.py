"""Turns the descriptions in Doxygen's XML into HTML."""

from __future__ import annotations

import re
import xml.etree.ElementTree as ET
from html import escape
from typing import Optional

INLINE = {"computeroutput": "code", "bold": "b", "emphasis": "i"}
TEXTS = {"ndash": "-", "mdash": "-", "nonbreakablespace": " ", "linebreak": "<br>", "sp": " "}
# Said elsewhere: of a function's parameters and of what it returns.
ELSEWHERE = {"parameterlist"}


class UnknownElement(Exception):
    """Doxygen has written something that has no place here."""


def description(element: Optional[ET.Element], skipped: frozenset[str] = frozenset({"par", "return"})) -> str:
    """The paragraphs of a description; of its marked ones (@par, @return) those whose kind is not skipped."""
    if element is None:
        return ""
    return "".join(_paragraph(paragraph, skipped) for paragraph in element.findall("para"))


def inline(element: Optional[ET.Element]) -> str:
    """A description of one paragraph, as running text."""
    return re.sub(r"</?p>", "", description(element)).strip()


def titled(element: Optional[ET.Element]) -> dict[str, str]:
    """The marked paragraphs (@par) of a description by their titles, each with the blocks that follow it."""
    parts: dict[str, str] = {}
    title = None
    for block in element.iterfind("para/*") if element is not None else ():
        if block.get("kind") == "par":
            title = _text(block.find("title"))
            parts[title] = description(block, frozenset())
        elif title is not None:
            parts[title] += _block(block, frozenset()) or ""
    return parts


def returned(element: Optional[ET.Element]) -> str:
    """What @return says."""
    part = element.find(".//simplesect[@kind='return']") if element is not None else None
    return inline(part)


def _text(element: Optional[ET.Element]) -> str:
    return "" if element is None else "".join(element.itertext()).strip()


def _paragraph(paragraph: ET.Element, skipped: frozenset[str]) -> str:
    """A paragraph, and the blocks within it behind one another."""
    html, running = [], escape(paragraph.text or "", quote=False)
    for child in paragraph:
        block = _block(child, skipped)
        if block is None:
            running += _inline(child)
        else:
            html += [_closed(running), block]
            running = ""
        running += escape(child.tail or "", quote=False)
    return "".join([*html, _closed(running)])


def _closed(running: str) -> str:
    return f"<p>{running.strip()}</p>\n" if running.strip() else ""


def _block(element: ET.Element, skipped: frozenset[str]) -> Optional[str]:
    """None of what stands within a line."""
    if element.tag in ELSEWHERE:
        return ""
    if element.tag == "simplesect":
        if element.get("kind") in skipped:
            return ""
        return f"<h4>{_text(element.find('title'))}</h4>\n" + description(element, skipped)
    if element.tag == "programlisting":
        return f"<pre>{escape(_listing(element), quote=False)}</pre>\n"
    if element.tag == "table":
        return "<table>\n" + "".join(_row(row) for row in element.findall("row")) + "</table>\n"
    return None


def _row(row: ET.Element) -> str:
    return "<tr>" + "".join(_cell(entry) for entry in row.findall("entry")) + "</tr>\n"


def _cell(entry: ET.Element) -> str:
    kind = "th" if entry.get("thead") == "yes" else "td"
    return f"<{kind}>{inline(entry)}</{kind}>"


def _listing(element: ET.Element) -> str:
    return "\n".join("".join(_code(part) for part in line) for line in element.findall("codeline"))


def _code(element: ET.Element) -> str:
    if element.tag == "sp":
        return " " + (element.tail or "")
    return (element.text or "") + "".join(_code(child) for child in element) + (element.tail or "")


def _inline(element: ET.Element) -> str:
    if element.tag in TEXTS:
        return TEXTS[element.tag]
    text = escape(element.text or "", quote=False)
    text += "".join(_inline(child) + escape(child.tail or "", quote=False) for child in element)
    if element.tag in INLINE:
        return f"<{INLINE[element.tag]}>{text}</{INLINE[element.tag]}>"
    if element.tag == "ref":
        return text
    raise UnknownElement(element.tag)
