#!/usr/bin/python3
"""Writes the help: make_help.py XML PROJECT VERSION HELP BOOK, with the folder of Doxygen's XML of the headers.

HELP gets html/ with a page for each chapter, and the Introduction as a file of its own. BOOK gets book.html and
title.html, which htmldoc makes the PDF of: the same chapters as one page.
"""

from __future__ import annotations

import re
import sys
import textwrap
from collections.abc import Callable, Mapping
from pathlib import Path

import guides
from chapters import CHAPTERS, SUBJECT, TITLE, Chapter, Content
from reference import Reference

STYLE = Path(__file__).resolve().parent / "help.css"
INTRODUCTION = "___Introduction to KVX2800T___.html"
FOLDING = textwrap.TextWrapper(
    96, subsequent_indent="    ", drop_whitespace=False, replace_whitespace=False, break_on_hyphens=False
)
# Headings, code and what is a link already is left as it is.
LEFT_ALONE = re.compile(r"(<(a|pre|h\d)\b.*?</\2>|<[^>]+>)", re.S)
MENTIONED = re.compile(r"\b(?:KVX2800T_\w+_\.\.\.|(?:KVX2800T|IVI)_\w+|0x[0-9A-F]{8}\b)")
MESSAGE = re.compile(r'"([:*][^"<]+)"')


class DeadLink(Exception):
    """A link to nothing."""


class Help:
    """All chapters, and where their anchors are."""

    def __init__(self, contents: Mapping[str, Content], names: Mapping[str, str], version: str) -> None:
        self._version = version
        self._names = names
        self._bodies = {chapter.name: self._body(contents[chapter.name]) for chapter in CHAPTERS}
        self._sections = {name: content.sections for name, content in contents.items()}
        self._pages = {name: name for name in self._bodies}
        for name, body in self._bodies.items():
            for anchor in re.findall(r'\bid="([^"]+)"', body):
                if self._pages.setdefault(anchor, name) != name:
                    raise DeadLink(f"{anchor} is in two places: {name}, {self._pages[anchor]}")

    def pages(self) -> dict[str, str]:
        """The files of the HTML help."""
        files = {f"{chapter.name}.html": self._page(chapter) for chapter in CHAPTERS}
        files["index.html"] = self._start()
        return files

    def introduction(self) -> str:
        """The chapter as a file of its own, beside the folder of the help."""
        body = f"<h1>Introduction to KVX2800T</h1>\n{self._bodies['introduction']}"
        style = STYLE.read_text(encoding="utf-8")
        body = self._linked(body, lambda page, anchor: f"html/{page}.html{anchor}")
        return _document("Introduction to KVX2800T", f"<style>\n{style}</style>", f"<main>\n{body}</main>")

    def book(self) -> str:
        """All chapters, whose code has lines that fit."""
        chapters = [f'<h1 id="{c.name}">{c.title}</h1>\n{self._bodies[c.name]}' for c in CHAPTERS]
        body = self._linked("".join(chapters), lambda page, anchor: anchor or f"#{page}")
        body = re.sub(r"<pre>(.*?)</pre>", lambda code: f"<pre>{_folded(code[1])}</pre>", body, flags=re.S)
        body = body.replace("<table>", '<table border="1" cellpadding="3" cellspacing="0" width="100%">')
        body = body.replace("</table>", "</table><br>")
        return _document(self._title, "", body)

    def title_page(self) -> str:
        """Of the book."""
        lead = f"<h1>{TITLE}</h1>\n<p>{SUBJECT}</p>\n<p>Version {self._version}</p>\n"
        return _document(self._title, "", f"<center>{lead}</center>\n{self._linked(self._notice(), lambda *_: '')}")

    @property
    def _title(self) -> str:
        return f"{TITLE} {self._version}"

    def _notice(self) -> str:
        """The first section of the notices, which the help shows where it begins."""
        return self._mentions(self._sections["notice"][0].body)

    def _body(self, content: Content) -> str:
        sections = [f'<h2 id="{s.anchor}">{s.title}</h2>\n{s.body}' for s in content.sections]
        return self._mentions("".join([content.lead, *sections]))

    def _mentions(self, html: str) -> str:
        """Names of the driver lead to their places, messages to the instrument are code."""
        parts = LEFT_ALONE.split(html)
        # The pattern has two groups: a text, what is left alone, the name of its element, a text ...
        return "".join(
            self._text(part) if place % 3 == 0 else part for place, part in enumerate(parts) if place % 3 != 2
        )

    def _text(self, text: str) -> str:
        text = MESSAGE.sub(r"<code>\1</code>", text)
        return MENTIONED.sub(lambda name: self._mention(name[0]), text)

    def _mention(self, name: str) -> str:
        return f'<a href="#{self._names[name]}">{name}</a>' if name in self._names else name

    def _linked(self, html: str, address: Callable[[str, str], str]) -> str:
        """With links by the address that a page and an anchor have where the text is read."""

        def link(match: re.Match[str]) -> str:
            anchor = match[1]
            if anchor not in self._pages:
                raise DeadLink(anchor)
            page = self._pages[anchor]
            return f'href="{address(page, "" if page == anchor else "#" + anchor)}"'

        return re.sub(r'href="#([^"]+)"', link, html)

    def _page(self, chapter: Chapter) -> str:
        body = f"<h1>{chapter.title}</h1>\n{self._bodies[chapter.name]}"
        return self._framed(f"{chapter.title} - {self._title}", body, chapter.name)

    def _start(self) -> str:
        items = "".join(f'<li><a href="#{chapter.name}">{chapter.title}</a></li>\n' for chapter in CHAPTERS)
        body = f"<h1>{self._title}</h1>\n<p>{SUBJECT}</p>\n<ol>\n{items}</ol>\n<h2>Notice</h2>\n{self._notice()}"
        return self._framed(self._title, body, "index")

    def _framed(self, title: str, body: str, current: str) -> str:
        nav = f"<nav>\n{self._navigation(current)}</nav>\n"
        page = self._linked(nav + f"<main>\n{body}</main>", lambda page, anchor: _address(page, anchor, current))
        return _document(title, '<link rel="stylesheet" href="help.css">', page)

    def _navigation(self, current: str) -> str:
        """All chapters, and the sections of this one."""
        entries = "".join(self._entry(chapter, chapter.name == current) for chapter in CHAPTERS)
        return f'<p><a href="index.html">{TITLE}</a></p>\n<ol>\n{entries}</ol>\n'

    def _entry(self, chapter: Chapter, is_current: bool) -> str:
        link = f'<a href="#{chapter.name}">{chapter.title}</a>'
        if not is_current:
            return f"<li>{link}</li>\n"
        sections = "".join(f'<li><a href="#{s.anchor}">{s.title}</a></li>\n' for s in self._sections[chapter.name])
        return f'<li class="current">{link}\n' + (f"<ul>\n{sections}</ul>\n" if sections else "") + "</li>\n"


def _address(page: str, anchor: str, current: str) -> str:
    return anchor if page == current and anchor else f"{page}.html{anchor}"


def _folded(code: str) -> str:
    return "\n".join(line for text in code.split("\n") for line in FOLDING.wrap(text) or [""])


def _document(title: str, head: str, body: str) -> str:
    return (
        f'<!DOCTYPE html>\n<html lang="en">\n<head>\n<meta charset="utf-8">\n<title>{title}</title>\n'
        f'<meta name="viewport" content="width=device-width">\n{head}\n</head>\n<body>\n{body}\n</body>\n</html>\n'
    )


def _parts(reference: Reference) -> dict[str, str]:
    """What guides take from the headers, by the words of the comment in its place."""
    titles = ("Channels", "Sessions that forgive")
    return {f"KVX2800T.h: {title}": reference.part("KVX2800T.h", title) for title in titles} | {
        "commands of the driver": reference.commands()
    }


def main() -> None:
    """Writes the files."""
    xml, project, version, folder, book = sys.argv[1:]
    reference = Reference(Path(xml))
    parts = _parts(reference)
    contents = reference.chapters()
    contents |= {chapter.name: guides.read(Path(project), chapter, parts) for chapter in CHAPTERS if chapter.guide}
    pages = Help(contents, reference.names(), version)
    files = {Path(folder, "html", name): text for name, text in pages.pages().items()} | {
        Path(folder, "html", STYLE.name): STYLE.read_text(encoding="utf-8"),
        Path(folder, INTRODUCTION): pages.introduction(),
        Path(book, "book.html"): pages.book(),
        Path(book, "title.html"): pages.title_page(),
    }
    for path, text in files.items():
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8", newline="\n")


if __name__ == "__main__":
    main()
