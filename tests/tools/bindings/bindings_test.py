"""What tools/bindings makes of the driver's headers, and of headers with something more in them.

Environment: that of made_up_headers.py, GENERATOR, BINDINGS (what the build has made).
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

from made_up_headers import FUSE, HEADERS, manual_of

OUTPUTS = ("_interface.py", "Interface.cs", "KVX2800T.sub", "KVX2800T.idl")

def generate(manual, output):
    return subprocess.run(
        [sys.executable, "-B", os.environ["GENERATOR"], manual / "xml", "1.2.3", "KVX2800T_64.dll", output],
        capture_output=True,
        text=True,
    )


class OfTheHeaders(unittest.TestCase):
    """What the build has made, compared with names that are searched in the headers' text."""

    @classmethod
    def setUpClass(cls):
        text = "".join(path.read_text(encoding="utf-8") for path in HEADERS.glob("KVX2800T*.h"))
        cls.functions = re.findall(r"^ViStatus _VI_FUNC (KVX2800T_\w+)", text, re.M)
        number = r"(?:\(\(ViStatus\))?(\w+?)(?:UL\))?"
        cls.constants = dict(re.findall(rf"^#define ((?:KVX2800T|IVI)_\w+) {number}$", text, re.M))
        cls.outputs = {name: pathlib.Path(os.environ["BINDINGS"], name).read_text(encoding="utf-8") for name in OUTPUTS}

    def named(self, kind):
        names = {name: value for name, value in self.constants.items() if kind in name}
        self.assertTrue(names)
        return names

    def test_every_function_is_in_python_csharp_and_the_type_library(self):
        self.assertEqual(170, len(self.functions))
        names = [name.replace("KVX2800T_", "", 1) for name in self.functions]
        self.assertEqual(names, re.findall(r'^    "(\w+)": \[', self.outputs["_interface.py"], re.M))
        self.assertEqual(names, re.findall(r" delegate int (\w+)Function\(", self.outputs["Interface.cs"]))
        self.assertEqual(self.functions, re.findall(r"long __stdcall (\w+)\(", self.outputs["KVX2800T.idl"]))
        self.assertEqual(self.functions, re.findall(r'entry\("(\w+)"\)', self.outputs["KVX2800T.idl"]))
        self.assertEqual(self.functions, re.findall(r'\)find\("(\w+)"', self.outputs["Interface.cs"]))

    def test_every_attribute_is_in_all_of_them(self):
        attributes = self.named("_ATTR_")
        attributes = {name: value for name, value in attributes.items() if name.startswith("KVX2800T")}
        self.assertEqual(27, len(attributes))
        described = re.findall(r'^\d all "[^"]+" (KVX2800T_ATTR_\w+) ', self.outputs["KVX2800T.sub"], re.M)
        self.assertEqual(sorted(attributes), sorted(described))
        for name, value in attributes.items():
            short = name.replace("KVX2800T_ATTR_", "")
            self.assertRegex(self.outputs["_interface.py"], rf"(?m)^    {short} = {value}  # ")
            self.assertRegex(self.outputs["_interface.py"], rf"(?m)^    Attribute\.{short}: \"")
            self.assertIn(f" {short.title().replace('_', '')} = {value},", self.outputs["Interface.cs"])
            self.assertIn(f" {name} = {value}", self.outputs["KVX2800T.idl"])

    def test_every_value_is_in_an_enumeration(self):
        for name, value in self.named("_VAL_").items():
            self.assertRegex(self.outputs["KVX2800T.idl"], rf"{name} = {value}\b")
        members = re.findall(r"^    [A-Z]\w* = \d  # ", self.outputs["_interface.py"], re.M)
        self.assertEqual(len(self.named("_VAL_")), len(members))

    def test_every_status_has_its_code_and_every_error_its_exception(self):
        statuses = {**self.named("_ERROR_"), **self.named("_WARN_")}
        self.assertEqual(51, len(statuses))
        for name, code in statuses.items():
            short = name.split("_", 1)[1].replace("IVI_ATTR_", "ATTRIBUTE_")
            self.assertRegex(self.outputs["_interface.py"], rf"(?m)^{short} = {code}  # \w")
            self.assertIn(f"unchecked((int){code})", self.outputs["Interface.cs"])
            case = f"case StatusCode.{short.title().replace('_', '')}: "
            self.assertEqual(short.startswith("ERROR_"), case in self.outputs["Interface.cs"], name)
            self.assertRegex(self.outputs["KVX2800T.idl"], rf"{name} = -?\d+")
            self.assertEqual(short.startswith("ERROR_"), f"    {short}: " in self.outputs["_interface.py"], name)


class OfTheAttributeFile(unittest.TestCase):
    """The rules of VPP-3.3 section 7."""

    def setUp(self):
        text = pathlib.Path(os.environ["BINDINGS"], "KVX2800T.sub").read_text(encoding="utf-8")
        self.head, self.rest = text.split("\n\n", 1)

    def test_it_has_the_header(self):
        self.assertEqual('FPAttributeValueFile\nn SubType="IVI"\nn SubVersion="1"', self.head)

    def test_its_items_have_their_order(self):
        firsts = "".join(line[0] for line in self.rest.splitlines() if line and line[0] != " ")
        self.assertRegex(firsts, r"^v+0+[1-7]+$")

    def test_accessors_have_the_places_that_are_recommended(self):
        accessors = re.findall(r"^0 KVX2800T_(.etAttribute\w+) (\d \d) false (.) DataType=\"(\w+)\"$", self.rest, re.M)
        self.assertEqual(10, len(accessors))
        for name, places, mode, kind in accessors:
            self.assertEqual(("3 5" if name == "GetAttributeViString" else "3 4"), places)
            self.assertEqual({"s": "Set", "g": "Get"}[mode] + "Attribute" + kind, name)

    def test_attributes_can_be_set_and_have_values_as_the_driver_has_them(self):
        self.assertRegex(self.rest, r'(?m)^2 all "Voltage Level" KVX2800T_ATTR_VOLTAGE_LEVEL ViReal64 gs$')
        self.assertRegex(self.rest, r'(?m)^3 all "Cache" KVX2800T_ATTR_CACHE ViBoolean gs Boolean_values$')
        self.assertRegex(self.rest, r'(?m)^3 all "Logical Name" KVX2800T_ATTR_LOGICAL_NAME ViString g$')
        self.assertIn(" ViInt32 gs CurrentLimitBehavior_values\n", self.rest)

    def test_classes_are_those_of_the_standards(self):
        classes = re.findall(r'^(\d) all "([^"]+)"$', self.rest, re.M)
        self.assertEqual(
            [
                ("1", "Inherent IVI Attributes"),
                ("2", "User Options"),
                ("2", "Driver Identification"),
                ("2", "Driver Capabilities"),
                ("2", "Instrument Identification"),
                ("2", "Advanced Session Information"),
                ("1", "Output"),
            ],
            classes,
        )


class OfAnAddition(unittest.TestCase):
    """A function, attributes, values and a status that are made up."""

    @classmethod
    def setUpClass(cls):
        cls._folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls._folder.cleanup)
        cls.manual = manual_of(pathlib.Path(cls._folder.name), FUSE)
        ended = generate(cls.manual, cls.manual / "bindings")
        if ended.returncode:
            raise RuntimeError(ended.stderr)

    def output(self, name):
        return (self.manual / "bindings" / name).read_text(encoding="utf-8")

    def expect_in(self, name, *texts):
        for text in texts:
            self.assertIn(text, self.output(name))

    def test_python_has_it(self):
        self.expect_in(
            "_interface.py",
            '"QueryFuse": [c_uint32, c_char_p, c_double, POINTER(c_double), POINTER(c_int32)],',
            "FUSE_MODE = 1150001  # ViInt32: what a channel does when the fuse of another one blows.",
            'Attribute.FUSE_MODE: "int32",',
            'Attribute.FUSE_MAKER: "string",',
            'class FuseMode(enum.IntEnum):\n    """Values of the fuse mode."""\n\n    STAYS_ON = 0  # It stays on.\n',
            "    SWITCHES_OFF = 1  # It switches off.",
            "ERROR_FUSE_BLOWN = 0xBFFA4FFF  # The fuse has blown.",
            'class FuseBlownError(Error):\n    """The fuse has blown."""',
            "ERROR_FUSE_BLOWN: FuseBlownError,",
        )

    def test_csharp_has_it(self):
        self.expect_in(
            "Interface.cs",
            "internal delegate int QueryFuseFunction("
            "SessionHandle vi, byte[] channelName, double limit, double[] times, out int @event);",
            'QueryFuse = (QueryFuseFunction)find("KVX2800T_QueryFuse", typeof(QueryFuseFunction));',
            "internal delegate int QueryFusesFunction(SessionHandle vi, ushort blown, out double limit, out ushort @event);",
            "internal (double, bool) QueryFuses(bool blown)\n        {\n"
            '            Check("QueryFuses", functions.QueryFuses(handle, Switch(blown), out double limit, out ushort @event));\n'
            "            return (limit, @event != 0);",
            'public sealed class FuseBlownException : DriverException',
            "case StatusCode.ErrorFuseBlown: return new FuseBlownException(text, function);",
            '[assembly: AssemblyVersion("1.2.3")]',
            "FuseMode = 1150001,",
            "public enum FuseMode",
            "SwitchesOff = 1,",
            "ErrorFuseBlown = unchecked((int)0xBFFA4FFF);",
        )

    def test_the_attribute_file_has_it(self):
        self.expect_in(
            "KVX2800T.sub",
            'v FuseMode_values DataType="i"\n KVX2800T_VAL_FUSE_STAYS_ON (0) "It stays on."\n',
            '1 all "Attributes of the fuses"\n2 all "Fuse Mode" KVX2800T_ATTR_FUSE_MODE ViInt32 gs FuseMode_values\n'
            ' "ViInt32: what a channel does when the fuse of another one blows."\n',
            'KVX2800T_ATTR_FUSE_MAKER ViString g\n "ViString, read-only: the \\"maker\\" of the fuses."',
        )

    def test_the_type_library_has_it(self):
        self.expect_in(
            "KVX2800T.idl",
            '[entry("KVX2800T_QueryFuse"), helpstring("Tells how fuses have blown.")]\n'
            "        long __stdcall KVX2800T_QueryFuse([in] unsigned long vi, [in] LPSTR channelName, [in] double limit, "
            "[in] double *times, [out] long *event);",
            "KVX2800T_ATTR_FUSE_MODE = 1150001",
            "KVX2800T_VAL_FUSE_STAYS_ON = 0,\n        KVX2800T_VAL_FUSE_SWITCHES_OFF = 1\n    } KVX2800T_FuseMode;",
            "enum KVX2800T_FuseMode\n",
            "KVX2800T_ERROR_FUSE_BLOWN = -1074114561",
            "version(1.2)",
        )


class OfWhatIsUnclear(unittest.TestCase):
    """Additions whose comments do not say what C does not."""

    def expect_refused(self, reason, addition):
        with tempfile.TemporaryDirectory() as folder:
            manual = manual_of(pathlib.Path(folder), addition)
            ended = generate(manual, manual / "bindings")
        self.assertEqual(1, ended.returncode)
        self.assertEqual(f"HeaderError: {reason}", ended.stderr.splitlines()[-1].split(".", 1)[1])

    def test_an_attribute_without_a_type_is_refused(self):
        self.expect_refused(
            "KVX2800T_ATTR_FUSE_MODE: neither its comment nor its group's begins with a type",
            FUSE.replace("ViInt32: what a channel", "What a channel"),
        )

    def test_values_of_nothing_are_refused(self):
        self.expect_refused(
            'KVX2800T_VAL_FUSE_STAYS_ON: its group "Fuses" does not say what it is a value of',
            FUSE.replace("Values of the fuse mode", "Fuses"),
        )

    def test_a_parameter_that_cannot_be_what_it_is_said_to_be_is_refused(self):
        self.expect_refused(
            "limit: receives amperes. But it cannot be written", FUSE.replace("  amperes.", "  receives amperes.")
        )

    def test_a_type_that_no_language_has_is_refused(self):
        self.expect_refused("void ** event: the type of a parameter", FUSE.replace("ViInt32* event", "void** event"))


if __name__ == "__main__":
    unittest.main()
