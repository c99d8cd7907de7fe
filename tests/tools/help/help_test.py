"""The help that the build has made, as HTML and as PDF, compared with the driver's headers; that of made-up headers.

Environment: that of made_up_headers.py, MAKE_HELP, HELP (the folder of the help).
"""

import html
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from urllib.parse import unquote

from chapters import CHAPTERS
from made_up_headers import FUSE, HEADERS, manual_of

PROJECT = HEADERS.parent
HELP = pathlib.Path(os.environ["HELP"])
INTRODUCTION = "___Introduction to KVX2800T___.html"

# Functions that send nothing of their own.
SILENT = """InitWithOptions close LockSession UnlockSession GetError ClearError error_message ResetWithDefaults self_test
    revision_query InvalidateAllAttributes ConfigureOutputRange ResetOutputProtection QueryMaxCurrentLimit
    QueryMaxVoltageLevel GetChannelName GetAttributeViInt32 GetAttributeViReal64 GetAttributeViBoolean
    GetAttributeViSession GetAttributeViString SetAttributeViInt32 SetAttributeViReal64 SetAttributeViBoolean
    SetAttributeViSession SetAttributeViString viRead viWrite GetIoTimeout SetIoTimeout GetNextMessageRecord
    GetNextCoercionRecord GetNextInterchangeWarning ResetInterchangeCheck ClearInterchangeWarnings""".split()

# IVI-3.1 section 5.22.1.
NOTICE = """Content from the IVI specifications reproduced with permission from the IVI Foundation.
    The IVI Foundation and its member companies make no warranty of any kind with regard to this material, including,
    but not limited to, the implied warranties of merchantability and fitness for a particular purpose. The IVI
    Foundation and its member companies shall not be liable for errors contained herein or for incidental or
    consequential damages in connection with the furnishing, performance, or use of this material."""

# IVI-3.1 section 5.21.
OF_THE_INTRODUCTION = [
    "Driver Documentation",
    "Driver Source Code and Examples",
    "Connecting to the Instrument",
    "Configuring Instrument Settings",
    "Configuring Driver Settings",
    "Direct I/O",
    "Instrument Command Coverage",
    "Known Issues",
    "Contacting Support",
]

# IVI-3.1 section 5.23: sections with their items.
OF_THE_COMPLIANCE = {
    "Compliance Category": [
        "Compliance Category Name",
        "Class Specification Version",
        "IVI Generation",
        "Class Capability Groups",
        "Certification Statement",
    ],
    "Optional Features": ["Interchangeability Checking", "State Caching", "Coercion Recording"],
    "Driver Identification": ["Driver Revision", "Driver Vendor", "Prefix", "Description"],
    "Hardware Information": ["Instrument Manufacturer", "Supported Instrument Models", "Supported Bus Interfaces"],
    "32-bit Software Information": [
        "Supported Operating Systems",
        "Unsupported Operating Systems",
        "Support Software Required",
        "Source Code Availability",
    ],
    "64-bit Software Information": [
        "Supported Operating Systems",
        "Unsupported Operating Systems",
        "Support Software Required",
        "Source Code Availability",
    ],
    "Unit Testing": [
        "Test Setup 1",
        "Instrument Model (Firmware Revision)",
        "Bus Interface",
        "Operating System (Service Pack)",
        "OS Bitness/Application Bitness",
        "VISA Vendor and Version",
        "IVI Shared Components Version",
    ],
    "Driver Installation Testing": ["Operating System (Service Pack)", "OS Bitness"],
    "Driver Buildability": ["Operating System (Service Pack)", "OS Bitness"],
    "Driver Test Failures": ["Known Issues"],
    "Additional Compliance Information": [],
}


def one_line(text):
    return " ".join(text.split())


def plain(markup):
    """The text of HTML, on one line."""
    return one_line(html.unescape(re.sub(r"<[^>]+>", "", markup)))


def page(name):
    return (HELP / "html" / name).read_text(encoding="utf-8")


def sections_of(text):
    """The parts of a chapter by their headings."""
    _, *rest = re.split(r"<h2 [^>]*>(.*?)</h2>", text)
    return {plain(rest[place]): rest[place + 1] for place in range(0, len(rest), 2)}


def entries_of(text):
    """What stands below each heading of the third level, by its anchor."""
    _, *rest = re.split(r'<h3 id="([^"]+)">', text)
    return {rest[place]: rest[place + 1].split("<h2", 1)[0] for place in range(0, len(rest), 2)}


def anchors_of(text):
    return set(re.findall(r'\bid="([^"]+)"', text))


def without_spaces(text):
    return re.sub(r"\s", "", text)


class Names:
    """What the headers declare, found in their text."""

    def __init__(self):
        text = "".join(path.read_text(encoding="utf-8") for path in HEADERS.glob("KVX2800T*.h"))
        self.prototypes = dict(re.findall(r"^ViStatus _VI_FUNC (KVX2800T_\w+)(\([^;]*\));", text, re.M))
        number = r"(?:\(\(ViStatus\))?(\w+?)(?:UL\))?"
        self.constants = dict(re.findall(rf"^#define ((?:KVX2800T|IVI)_\w+_\w+) {number}$", text, re.M))
        self.attributes = [name for name in self.constants if name.startswith("KVX2800T_ATTR_")]
        self.channel_attributes = re.findall(
            r"#define (KVX2800T_ATTR_\w+)", text[text.index("@name Attributes of the channels") :].split("@}", 1)[0]
        )


class OfTheReference(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.names = Names()
        cls.functions = entries_of(page("functions.html"))
        cls.attributes = entries_of(page("attributes.html"))

    def test_every_function_has_its_prototype_parameters_and_statuses(self):
        self.assertEqual(170, len(self.names.prototypes))
        for name, parameters in self.names.prototypes.items():
            entry = self.functions[name]
            prototype = html.unescape(re.search("<pre>(.*?)</pre>", entry, re.S)[1])
            self.assertEqual(without_spaces(f"ViStatus {name}{parameters};"), without_spaces(prototype))
            described = re.findall(r"<tr><td><code>(\w+)</code></td><td>\w+</td><td>[\w, ]+</td><td>(.+?)</td>", entry)
            declared = re.findall(r"(\w+)(?:\[\])?[,)]", parameters)
            self.assertEqual(declared, [parameter for parameter, _ in described], name)
            self.assertRegex(plain(entry), r"Returns \w")
            self.assertRegex(entry, r"</h3>\n<p>\w", name)

    def test_every_function_names_its_commands(self):
        silent = [name for name, entry in self.functions.items() if not re.search("<code>[:*]", entry)]
        self.assertEqual(sorted("KVX2800T_" + name for name in SILENT), sorted(silent))

    def test_every_attribute_has_type_access_and_meaning(self):
        self.assertEqual(27, len(self.names.attributes))
        for name in self.names.attributes:
            entry = self.attributes[name]
            facts = dict(re.findall("<tr><th>(.*?)</th><td>(.*?)</td></tr>", entry))
            self.assertEqual(self.names.constants[name], facts["ID"])
            self.assertRegex(facts["type"], "^Vi(Int32|Real64|Boolean|String)$")
            self.assertRegex(facts["access"], "^(read-only|read, write)$")
            self.assertRegex(plain(entry.split("</table>", 1)[1]), r"^[\w:,. ]{4}")
        self.assertIn("KVX2800T_VAL_CURRENT_REGULATE", self.attributes["KVX2800T_ATTR_CURRENT_LIMIT_BEHAVIOR"])

    def test_attributes_of_channels_and_of_the_instrument_name_their_commands(self):
        self.assertEqual(6, len(self.names.channel_attributes))
        for name in self.names.channel_attributes:
            commands = re.findall("<code>(:[^<]+)</code>", self.attributes[name])
            self.assertEqual({True, False}, {"?" in command for command in commands}, name)
        self.assertIn("<code>*IDN?</code>", self.attributes["KVX2800T_ATTR_INSTRUMENT_MODEL"])

    def test_every_value_and_status_has_its_place_and_number(self):
        pages = {"_VAL_": page("values.html"), "_ERROR_": page("statuses.html"), "_WARN_": page("statuses.html")}
        for kind, text in pages.items():
            names = [name for name in self.names.constants if kind in name and "_ATTR_" not in name]
            self.assertTrue(names)
            for name in names:
                cell = rf'<a id="{name}">{name}</a></td><td>(<a [^>]*>)?{self.names.constants[name]}(</a>)?</td><td>\w'
                self.assertRegex(text, cell)

    def test_every_name_is_in_the_index(self):
        index = page("names.html")
        for name in [*self.names.prototypes, *self.names.constants]:
            self.assertIn(f">{name}</a></li>", index)


class OfThePdf(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.pdf = HELP / "KVX2800T.pdf"
        text = subprocess.run(["pdftotext", "-layout", cls.pdf, "-"], capture_output=True, check=True, text=True).stdout
        cls.pages = text.split("\f")
        cls.words = set(re.findall(r"\w+", text))

    def test_every_name_is_in_it(self):
        names = Names()
        for name in [*names.prototypes, *names.constants]:
            self.assertIn(name, self.words)

    def test_every_function_has_its_prototype(self):
        text = one_line(" ".join(self.pages))
        for name in Names().prototypes:
            self.assertIn(f"ViStatus {name}(", text)

    def test_it_has_the_chapters_of_the_html_help(self):
        self.assertEqual(chapters_of(page("index.html").split("<main>")[1]), outline_of(self.pdf.read_bytes())[1:])

    def test_the_first_page_has_the_notice(self):
        self.assertIn(one_line(NOTICE), one_line(self.pages[0]))


def chapters_of(markup):
    """The titles of the first list."""
    return [plain(item) for item in re.findall(r'<li><a href="\w+\.html">(.*?)</a>', markup.split("</ol>", 1)[0])]


def outline_of(pdf):
    """The titles of the first level of bookmarks, as htmldoc writes them: the table of contents and the chapters."""
    bookmarks = re.findall(rb"<</Parent (\d+) 0 R[^()]*/Title\((.*?)\)/Dest", pdf)
    return [title.decode() for parent, title in bookmarks if parent == bookmarks[0][0]]


class OfTheStructure(unittest.TestCase):
    def setUp(self):
        self.pages = {path.name: path.read_text(encoding="utf-8") for path in (HELP / "html").glob("*.html")}

    def test_every_page_leads_to_all_chapters_and_has_the_title_of_its_own(self):
        links = re.findall(r'<li><a href="(\w+\.html)">(.*?)</a>', self.pages["index.html"].split("<main>")[1])
        self.assertEqual(set(self.pages), {"index.html"} | {name for name, _ in links})
        for name, title in links:
            navigation = self.pages[name].split("</nav>")[0]
            self.assertEqual(links, re.findall(r'<li(?: class="current")?><a href="(\w+\.html)">(.*?)</a>', navigation))
            self.assertIn(f"<h1>{title}</h1>", self.pages[name])

    def test_every_link_leads_somewhere(self):
        files = {"html/" + name: text for name, text in self.pages.items()}
        files[INTRODUCTION] = (HELP / INTRODUCTION).read_text(encoding="utf-8")
        count = 0
        for name, text in files.items():
            for target in re.findall(r'\b(?:href|src)="([^"]+)"', text):
                if re.match(r"https?:", target):
                    continue
                file, _, anchor = unquote(target).partition("#")
                path = (HELP / name).parent / file if file else HELP / name
                self.assertTrue(path.is_file(), f"{name}: {target}")
                if anchor:
                    self.assertIn(anchor, anchors_of(path.read_text(encoding="utf-8")), f"{name}: {target}")
                count += 1
        self.assertLess(1000, count)

    def test_links_between_guides_of_the_help_are_kept(self):
        self.assertIn('<a href="troubleshooting.html">When it does not work</a>', self.pages["introduction.html"])
        self.assertIn('<a href="#environments.c-2">C#</a>', self.pages["environments.html"])
        self.assertNotIn(".md", "".join(re.findall(r'href="([^"]+)"', "".join(self.pages.values()))))

    def test_values_of_parameters_lead_to_their_tables(self):
        text = self.pages["functions.html"]
        mentioned = re.findall(r"KVX2800T_\w+_\.\.\.", text)
        self.assertLess(30, len(mentioned))
        linked = re.findall(r'<a href="(?:values|attributes)\.html(?:#values-\w+)?">(KVX2800T_\w+_\.\.\.)</a>', text)
        self.assertEqual(mentioned, linked)
        self.assertIn('<a href="values.html#values-ListEnd">KVX2800T_VAL_LIST_END_...</a>', text)

    def test_no_text_is_markdown(self):
        for name, text in self.pages.items():
            shown = re.sub(r"<(pre|code)>.*?</\1>", "", text, flags=re.S)
            self.assertNotRegex(plain(shown), r"\]\(|```|\|---|\*\*|(?<!\w)`", name)

    def test_names_and_codes_in_running_text_lead_to_the_reference(self):
        self.assertIn('<a href="functions.html#KVX2800T_viWrite">KVX2800T_viWrite</a>', self.pages["introduction.html"])
        self.assertIn('<a href="statuses.html#IVI_ERROR_NULL_POINTER">0xBFFA0058</a>', self.pages["functions.html"])


class OfTheDocuments(unittest.TestCase):
    def test_the_notice_is_where_the_help_begins(self):
        for name in ("index.html", "notice.html"):
            self.assertIn(one_line(NOTICE), plain(page(name)))

    def test_the_introduction_has_its_sections_as_a_page_and_as_a_file(self):
        file = (HELP / INTRODUCTION).read_text(encoding="utf-8")
        for text in (file, page("introduction.html")):
            self.assertEqual(OF_THE_INTRODUCTION, list(sections_of(text)))
        self.assertIn('<a href="html/compliance.html">', file)

    def test_the_compliance_document_has_all_items_in_their_sections(self):
        sections = sections_of(page("compliance.html"))
        self.assertEqual(list(OF_THE_COMPLIANCE), list(sections))
        for section, items in OF_THE_COMPLIANCE.items():
            for item in items:
                self.assertRegex(plain(sections[section]), rf"\b{re.escape(item)}(?!\w)", section)

    def test_the_compliance_document_identifies_the_driver(self):
        identity = dict(re.findall(r"<td>(.*?)</td>\s*<td>(.*?)</td>", page("compliance.html")))
        header = (HEADERS / "KVX2800T.h").read_text(encoding="utf-8")
        for item, attribute in {
            "Driver Revision": "SPECIFIC_DRIVER_REVISION",
            "Driver Vendor": "SPECIFIC_DRIVER_VENDOR",
            "Prefix": "SPECIFIC_DRIVER_PREFIX",
            "Description": "SPECIFIC_DRIVER_DESCRIPTION",
            "Supported Instrument Models": "SUPPORTED_INSTRUMENT_MODELS",
        }.items():
            value = re.search(rf'ViString: "(.*)"\. \*/\n#define KVX2800T_ATTR_{attribute} ', header)[1]
            self.assertEqual(value, plain(identity[item]))
        groups = re.search(r'ViString: "(.*)"\. \*/\n#define KVX2800T_ATTR_GROUP_CAPABILITIES ', header)[1]
        supported = [name for name, support in identity.items() if support == "Supported"]
        self.assertEqual(groups.split(","), supported)

    def test_every_key_of_driver_setup_is_among_the_options(self):
        source = (PROJECT / "runtime/session_settings.cpp").read_text(encoding="utf-8")
        keys = re.findall(r'^    \{"(\w+)", take', source, re.M)
        self.assertIn("SafeErrors", keys)
        section = sections_of(page("options.html"))["Keys of DriverSetup"]
        rows = re.findall("<tr><td>(.*?)</td><td>.+?</td></tr>", section, re.S)
        self.assertEqual(sorted(keys), sorted(key for row in rows for key in row.split(", ")))

    def test_virtual_names_are_advised(self):
        advice = plain(sections_of(page("channels.html"))["Virtual names"])
        self.assertIn("For interchangeability use virtual names.", advice)
        self.assertIn("specific to the test system, so that they are unlikely to be a physical name", advice)


class OfAnAddition(unittest.TestCase):
    """A function, attributes, values and a status that are made up."""

    @classmethod
    def setUpClass(cls):
        cls._folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls._folder.cleanup)
        cls.folder = pathlib.Path(cls._folder.name)
        cls.manual = manual_of(cls.folder, FUSE)

    def make(self, project=PROJECT):
        command = [sys.executable, "-B", os.environ["MAKE_HELP"], self.manual / "xml", project, "1.2.3"]
        return subprocess.run([*command, self.folder / "help", self.folder / "book"], capture_output=True, text=True)

    def test_the_help_has_it_as_pages_and_as_a_book(self):
        ended = self.make()
        self.assertEqual((0, ""), (ended.returncode, ended.stderr))
        book = (self.folder / "book/book.html").read_text(encoding="utf-8")
        for file, marks in {
            "functions.html": (
                '<h3 id="KVX2800T_QueryFuse">',
                "const ViReal64 times[]",
                "<p>Tells how fuses have blown.</p>",
            ),
            "attributes.html": ("Attributes of the fuses</h2>", '<h3 id="KVX2800T_ATTR_FUSE_MODE">', "Fuse Mode"),
            "values.html": ("Fuse mode</h2>", '<a id="KVX2800T_VAL_FUSE_STAYS_ON">'),
            "statuses.html": ('<a id="KVX2800T_ERROR_FUSE_BLOWN">', "<td>The fuse has blown.</td>"),
            "names.html": ('<a href="functions.html#KVX2800T_QueryFuse">', ">KVX2800T_ERROR_FUSE_BLOWN</a>"),
        }.items():
            text = (self.folder / "help/html" / file).read_text(encoding="utf-8")
            for mark in marks:
                self.assertIn(mark, text)
                self.assertIn(mark.replace('href="functions.html', 'href="'), book)

    def test_a_dead_link_in_a_guide_is_refused(self):
        project = self.folder / "project"
        for guide in filter(None, (chapter.guide for chapter in CHAPTERS)):
            (project / guide).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(PROJECT / guide, project / guide)
        with open(project / "docs/channels.md", "a", encoding="utf-8") as guide:
            guide.write("\n[more](options.md#what-there-is-not)\n")
        ended = self.make(project)
        self.assertEqual(1, ended.returncode)
        self.assertIn("DeadLink: options.what-there-is-not", ended.stderr)


if __name__ == "__main__":
    unittest.main()
