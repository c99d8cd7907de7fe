"""Turns the guides, which are Markdown, into chapters."""

from __future__ import annotations

import re
from collections.abc import Mapping
from pathlib import Path, PurePosixPath

import markdown
from chapters import CHAPTERS, Chapter, Content, Section

EXTENSIONS = ("tables", "fenced_code", "toc", "sane_lists")
PAGES = {chapter.guide: chapter.name for chapter in CHAPTERS if chapter.guide}
# A title's own "#" at its end is not taken for the end of its mark.
SHARP = re.compile(r"^(#+ .*[^ #])#$", re.M)
# A remark that is a link alone, "([why](...))".
REMARK = re.compile(r"\s*\(\[[^\]]*\]\((?P<target>[^)]*)\)\)")


def read(project: Path, chapter: Chapter, parts: Mapping[str, str]) -> Content:
    """The chapter of a guide. A comment in it that names one of the parts is where that stands."""
    guide = chapter.guide or ""
    text = (project / guide).read_text(encoding="utf-8")
    text = SHARP.sub(r"\1\\#", text)
    text = REMARK.sub(lambda remark: remark[0] if _page(guide, remark["target"]) else "", text)
    html = markdown.markdown(
        text, extensions=EXTENSIONS, extension_configs={"toc": {"slugify": _slug, "permalink": False}}
    )
    for name, part in parts.items():
        html = html.replace(f"<!-- {name} -->", part)
    html = re.sub(r'<pre><code(?: class="[^"]*")?>(.*?)\n?</code></pre>', r"<pre>\1</pre>", html, flags=re.S)
    html = re.sub(r'<a href="([^"]+)">(.*?)</a>', lambda link: _link(guide, link[1], link[2]), html, flags=re.S)
    return _content(html, chapter.name)


def _slug(title: str, separator: str) -> str:
    """As GitHub makes it."""
    return re.sub(r"[^\w\- ]", "", title.lower()).replace(" ", separator)


def _page(guide: str, target: str) -> str | None:
    """The chapter that a link leads to, or the web; none for what the help does not have."""
    if re.match(r"\w+:", target):
        return target
    file = target.partition("#")[0]
    return PAGES.get(_resolved(guide, file) if file else guide)


def _link(guide: str, target: str, text: str) -> str:
    """Leads to a chapter or to the web. What the help does not have is named without a link."""
    page = _page(guide, target)
    if page is None or page == target:
        return text if page is None else f'<a href="{target}">{text}</a>'
    fragment = target.partition("#")[2]
    return f'<a href="#{page}{"." + fragment if fragment else ""}">{text}</a>'


def _resolved(guide: str, target: str) -> str:
    parts: list[str] = []
    for part in (PurePosixPath(guide).parent / target).parts:
        if part == "..":
            parts.pop()
        else:
            parts.append(part)
    return "/".join(parts)


def _content(html: str, page: str) -> Content:
    """Split at its headings of the second level; the first one is the chapter's title."""
    html = re.sub(r"<h1[^>]*>.*?</h1>\s*", "", html)
    html = re.sub(r'<h(\d) id="([^"]*?)(?:_(\d+))?">', lambda h: _heading(h[1], page, h[2], h[3]), html)
    lead, *rest = re.split(r'<h2 id="([^"]+)">(.*?)</h2>\s*', html)
    sections = [Section(*rest[place : place + 3]) for place in range(0, len(rest), 3)]
    return Content(lead, tuple(sections))


def _heading(level: str, page: str, slug: str, number: str | None) -> str:
    """Anchors of one page are not those of another."""
    return f'<h{level} id="{page}.{slug}{"-" + number if number else ""}">'
