"""examples/kvx2800t.py against the virtual instrument: each exported function, texts, exceptions.

Run by ctest, with the module on PYTHONPATH and the files of the build in the environment.
"""

import ctypes
import os
import socket
import subprocess
import threading
import unittest
import unittest.mock
import warnings

import kvx2800t
from kvx2800t import Attribute, CurrentLimitBehavior, MeasurementType, OutputState, RangeType, Session

OUT_OF_RANGE = "Attribute or function parameter value is invalid (out of range or not supported)."
NO_INSTRUMENT = "I/O error.  Insufficient location information or resource not present in the system"


class VirtualInstrument:
    """A virtual instrument with its test control; it ends with this process at the latest."""

    def __init__(self):
        self._process = subprocess.Popen(
            [os.environ["KVX_VIRTUAL_INSTRUMENT"], "--port", "0", "--control-port", "0", "--until-stdin-closes"],
            stdin=subprocess.PIPE,
            stdout=subprocess.PIPE,
            stderr=subprocess.DEVNULL,
            text=True,
        )
        self.resource = f"TCPIP0::127.0.0.1::{self._announced_port('listening on ')}::SOCKET"
        self._control = socket.create_connection(("127.0.0.1", self._announced_port("test control on ")))
        self._answers = self._control.makefile("r", encoding="ascii")

    def _announced_port(self, start):
        for line in self._process.stdout:
            if line.startswith(start):
                return int(line.rsplit(":", 1)[1])
        raise RuntimeError("the virtual instrument does not come up")

    def control(self, command):
        self._control.sendall(command.encode() + b"\n")
        answer = self._answers.readline().split()
        if not answer or answer[0] != "ok":
            raise RuntimeError(f"{command}: {answer}")
        return answer[1:]

    def new_lines(self):
        """What it has received since the last call."""
        lines = [self._answers.readline().rstrip("\n") for _ in range(int(self.control("log")[0]))]
        self.control("clear-log")
        return lines

    def close(self):
        self._answers.close()
        self._control.close()
        self._process.communicate()


class InstrumentTest(unittest.TestCase):
    """A virtual instrument for each test."""

    maxDiff = None

    def setUp(self):
        self.instrument = VirtualInstrument()
        self.addCleanup(self.instrument.close)

    def open(self, *arguments, **keywords):
        supply = Session(self.instrument.resource, *arguments, **keywords)
        self.addCleanup(supply.__exit__)
        return supply

    def expect_lines(self, *lines):
        self.assertEqual(list(lines), self.instrument.new_lines())

    def expect_error(self, code, text, function, *arguments, **keywords):
        with self.assertRaises(kvx2800t.Error) as raised:
            function(*arguments, **keywords)
        self.assertEqual((code, text), (raised.exception.code, raised.exception.text))


class Functions(InstrumentTest):
    """One test for each exported function, named after it."""

    def setUp(self):
        super().setUp()
        self.supply = self.open()
        self.instrument.new_lines()

    def test_init(self):
        self.open(reset=True, id_query=True)
        self.expect_lines("*IDN?", "*RST")

    def test_InitWithOptions(self):
        supply = self.open("QueryInstrStatus=1")
        self.expect_lines("*IDN?", "*CLS", "*ESR?")
        self.assertIs(supply.get(Attribute.QUERY_INSTRUMENT_STATUS), True)

    def test_close(self):
        self.supply.close()
        self.assertEqual(0, self.supply.handle)
        self.expect_error(0xBFFA1190, "Invalid session handle.", self.supply.reset)
        self.expect_error(0xBFFA1190, "Invalid session handle.", self.supply.close)

    def test_LockSession(self):
        self.supply.lock_session()
        other = threading.Thread(target=self.supply.configure_voltage_level, args=("OutputChannel4", 1.0))
        other.start()
        for _ in range(20):
            self.supply.configure_voltage_level("OutputChannel3", 2.0)
        self.expect_lines(*[":SOUR3:VOLT 2.000000"] * 20)
        self.supply.unlock_session()
        other.join()
        self.expect_lines(":SOUR4:VOLT 1.000000")

    def test_UnlockSession(self):
        self.supply.lock_session()
        self.supply.lock_session()
        self.supply.unlock_session()
        self.supply.unlock_session()
        other = threading.Thread(target=self.supply.disable)
        other.start()
        other.join()
        self.expect_lines(":OUTPut:STATe ALL,OFF")

    def fail_unread(self):
        """Leaves an error on the session."""
        status = self.supply.library.ConfigureVoltageLevel(self.supply.handle, b"OutputChannel3", 16.5)
        self.assertEqual(0xBFFA4217, status & 0xFFFFFFFF)

    def test_GetError(self):
        self.fail_unread()
        self.assertEqual((0xBFFA4217, OUT_OF_RANGE), self.supply.get_error())
        self.assertEqual((0, ""), self.supply.get_error())

    def test_ClearError(self):
        self.fail_unread()
        self.supply.clear_error()
        self.assertEqual((0, ""), self.supply.get_error())

    def test_error_message(self):
        self.assertEqual("Attribute '%s' is read-only.", self.supply.error_message(0xBFFA000D))
        self.expect_error(
            0xBFFA0010,
            "Invalid value '5' for function 'error_message', parameter 'ErrorCode'.  "
            "The error code supplied is not defined by the driver.",
            self.supply.error_message,
            5,
        )

    def test_error_query(self):
        self.instrument.control('inject -350 "Queue overflow"')
        self.assertEqual((-350, '"Queue overflow"'), self.supply.error_query())
        self.assertEqual((0, '"No error"'), self.supply.error_query())

    def test_reset(self):
        self.supply.reset()
        self.expect_lines("*RST")

    def test_ResetWithDefaults(self):
        self.supply.reset_with_defaults()
        self.expect_lines("*RST")

    def test_Disable(self):
        self.supply.disable()
        self.expect_lines(":OUTPut:STATe ALL,OFF")

    def test_self_test(self):
        with warnings.catch_warnings():
            warnings.simplefilter("error")
            self.assertIsNone(self.supply.self_test())
        self.expect_lines()

    def test_revision_query(self):
        self.assertEqual(("1.0.0.0", "V1.00"), self.supply.revision_query())

    def test_InvalidateAllAttributes(self):
        self.supply.invalidate_all_attributes()
        self.expect_lines()

    def test_ConfigureOutputEnabled(self):
        self.supply.configure_output_enabled("OutputChannel3,OutputChannel4", True)
        self.supply.configure_output_enabled("OutputChannel3", False)
        self.expect_lines(":OUTP:STAT CH3,ON", ":OUTP:STAT CH4,ON", ":OUTP:STAT CH3,OFF")

    def test_ConfigureVoltageLevel(self):
        self.supply.configure_voltage_level("OutputChannel3-4", 2)
        self.expect_lines(":SOUR3:VOLT 2.000000", ":SOUR4:VOLT 2.000000")

    def test_ConfigureCurrentLimit(self):
        self.supply.configure_current_limit("OutputChannel4", CurrentLimitBehavior.TRIP, 10.5)
        self.expect_lines(":SOUR4:CURR 10.500000", ":SOUR4:CURR:PROT 10.500000", ":SOUR4:CURR:PROT:STAT ON")

    def test_ConfigureOVP(self):
        self.supply.configure_ovp("OutputChannel3", True, 12.5)
        self.expect_lines(":SOUR3:VOLT:PROT 12.500000", ":SOUR3:VOLT:PROT:STAT ON")

    def test_ConfigureOutputRange(self):
        self.supply.configure_output_range("OutputChannel3", RangeType.VOLTAGE, 10.0)
        self.expect_lines()

    def test_ResetOutputProtection(self):
        self.supply.reset_output_protection("OutputChannel3")
        self.expect_lines()

    def test_QueryMaxCurrentLimit(self):
        self.assertEqual(10.5, self.supply.query_max_current_limit("OutputChannel4", 0.0))

    def test_QueryMaxVoltageLevel(self):
        self.assertEqual(66.0, self.supply.query_max_voltage_level("OutputChannel5", 0.0))

    def test_QueryOutputState(self):
        self.supply.configure_output_enabled("OutputChannel3", True)
        self.instrument.new_lines()
        self.assertIs(self.supply.query_output_state("OutputChannel3", OutputState.CONSTANT_VOLTAGE), True)
        self.assertIs(self.supply.query_output_state("OutputChannel3", OutputState.UNREGULATED), False)
        self.expect_lines(":STATus:QUEStionable:INSTrument:ISUMmary3:CONDition?")

    def test_Measure(self):
        self.supply.configure_voltage_level("OutputChannel3", 7.25)
        self.instrument.new_lines()
        self.assertEqual(7.25, self.supply.measure("OutputChannel3", MeasurementType.VOLTAGE))
        self.assertEqual(0.1, self.supply.measure("OutputChannel3", MeasurementType.CURRENT))
        self.expect_lines(":SOUR3:VOLT?", ":SOUR3:CURR?")

    def test_GetChannelName(self):
        self.assertEqual([f"OutputChannel{number}" for number in range(1, 7)], self.supply.channel_names())
        self.expect_error(
            0xBFFA0010,
            "Invalid value '6' for function 'GetOutputChannelName', parameter 'Index'.",
            self.supply.get_channel_name,
            7,
        )

    def test_GetAttributeViInt32(self):
        self.assertEqual(6, self.supply.get_int32(Attribute.CHANNEL_COUNT))

    def test_GetAttributeViReal64(self):
        self.assertEqual(17.6, self.supply.get_real64(Attribute.OVP_LIMIT, "OutputChannel3"))
        self.expect_lines(":SOUR3:VOLT:PROT?")

    def test_GetAttributeViBoolean(self):
        self.assertIs(self.supply.get_boolean(Attribute.OUTPUT_ENABLED, "OutputChannel3"), False)
        self.assertIs(self.supply.get_boolean(Attribute.RANGE_CHECK), True)

    def test_GetAttributeViSession(self):
        self.expect_error(
            0xBFFA0015,
            "GetAttributeViSession called for attribute 'KVX2800T_ATTR_VOLTAGE_LEVEL' of type 'ViReal64'.",
            self.supply.get_session,
            Attribute.VOLTAGE_LEVEL,
        )

    def test_GetAttributeViString(self):
        self.assertEqual("Tessaro Instruments", self.supply.get_string(Attribute.INSTRUMENT_MANUFACTURER))
        self.expect_error(0xBFFA000C, "Attribute ID '1' not recognized.", self.supply.get_string, 1)

    def test_SetAttributeViInt32(self):
        self.supply.set_int32(Attribute.CURRENT_LIMIT_BEHAVIOR, CurrentLimitBehavior.TRIP, "OutputChannel3")
        self.expect_lines(":SOUR3:CURR:PROT:STAT ON")

    def test_SetAttributeViReal64(self):
        self.supply.set_real64(Attribute.VOLTAGE_LEVEL, 6.2, "OutputChannel4")
        self.expect_lines(":SOUR4:VOLT 6.200000")

    def test_SetAttributeViBoolean(self):
        self.supply.set_boolean(Attribute.OUTPUT_ENABLED, True, "OutputChannel4")
        self.expect_lines(":OUTP:STAT CH4,ON")

    def test_SetAttributeViSession(self):
        self.expect_error(
            0xBFFA0015,
            "SetAttributeViSession called for attribute 'KVX2800T_ATTR_CACHE' of type 'ViBoolean'.",
            self.supply.set_session,
            Attribute.CACHE,
            1,
        )

    def test_SetAttributeViString(self):
        self.expect_error(
            0xBFFA000D,
            "Attribute 'KVX2800T_ATTR_INSTRUMENT_MODEL' is read-only.",
            self.supply.set_string,
            Attribute.INSTRUMENT_MODEL,
            "other",
        )

    def test_every_exported_function_has_its_test(self):
        with open(os.environ["KVX_EXPORTS"], encoding="ascii") as exports:
            names = [name.replace("KVX2800T_", "", 1) for name in exports.read().split()]
        self.assertEqual(169, len(names))
        for name in names[:36]:
            self.assertTrue(hasattr(self, "test_" + name), name)
        for name in names:
            self.assertTrue(hasattr(self.supply.library, name), name)

    def test_functions_of_the_instrument_are_called_through_the_library(self):
        library, handle = self.supply.library, self.supply.handle
        levels = (ctypes.c_double * 2)(1.5, 2.5)
        library.check(library.LoadList(handle, b"OutputChannel3", 2, levels, levels, levels), handle)
        volts, amperes, seconds = ctypes.c_double(), ctypes.c_double(), ctypes.c_double()
        library.check(
            library.QueryListGroup(
                handle, b"OutputChannel3", 2, ctypes.byref(volts), ctypes.byref(amperes), ctypes.byref(seconds)
            ),
            handle,
        )
        self.assertEqual((2.5, 2.5, 2.5), (volts.value, amperes.value, seconds.value))
        with self.assertRaises(kvx2800t.Error) as raised:
            library.check(library.ConfigureListGroup(handle, b"OutputChannel3", 1, 99.0, 1.0, 1.0), handle)
        self.assertEqual(0xBFFA4217, raised.exception.code)
        self.assertEqual(f"{OUT_OF_RANGE}  OutputChannel3 takes 0 V to 16 V, not 99 V.", raised.exception.text)


class Attributes(InstrumentTest):
    def test_each_is_read_as_the_type_it_has(self):
        supply = self.open()
        values = {attribute.name: supply.get(attribute, "OutputChannel3") for attribute in Attribute}
        self.assertEqual(
            {
                "SPECIFIC_DRIVER_DESCRIPTION": "IVI-C Driver for KVX2800T",
                "SPECIFIC_DRIVER_PREFIX": "KVX2800T",
                "SPECIFIC_DRIVER_VENDOR": "Tessaro Instruments",
                "SPECIFIC_DRIVER_REVISION": "1.0.0.0",
                "SPECIFIC_DRIVER_CLASS_SPEC_MAJOR_VERSION": 3,
                "SPECIFIC_DRIVER_CLASS_SPEC_MINOR_VERSION": 0,
                "GROUP_CAPABILITIES": "IviDCPwrBase,IviDCPwrMeasurement",
                "SUPPORTED_INSTRUMENT_MODELS": "KVX2833T",
                "CHANNEL_COUNT": 6,
                "RANGE_CHECK": True,
                "QUERY_INSTRUMENT_STATUS": False,
                "CACHE": False,
                "SIMULATE": False,
                "RECORD_COERCIONS": False,
                "INTERCHANGE_CHECK": False,
                "LOGICAL_NAME": "",
                "IO_RESOURCE_DESCRIPTOR": self.instrument.resource,
                "DRIVER_SETUP": "",
                "INSTRUMENT_MANUFACTURER": "Tessaro Instruments",
                "INSTRUMENT_MODEL": "KVX2833T",
                "INSTRUMENT_FIRMWARE_REVISION": "V1.00",
                "VOLTAGE_LEVEL": 0.0,
                "OVP_ENABLED": False,
                "OVP_LIMIT": 17.6,
                "CURRENT_LIMIT_BEHAVIOR": 0,
                "CURRENT_LIMIT": 0.1,
                "OUTPUT_ENABLED": False,
            },
            values,
        )

    def test_those_of_channels_can_be_set(self):
        supply = self.open()
        for attribute, value in (
            (Attribute.VOLTAGE_LEVEL, 5.5),
            (Attribute.OVP_ENABLED, True),
            (Attribute.OVP_LIMIT, 6.0),
            (Attribute.CURRENT_LIMIT_BEHAVIOR, 1),
            (Attribute.CURRENT_LIMIT, 0.5),
            (Attribute.OUTPUT_ENABLED, True),
        ):
            with self.subTest(attribute):
                supply.set(attribute, value, "OutputChannel3,OutputChannel4")
                self.assertEqual(value, supply.get(attribute, "OutputChannel4"))


class Texts(unittest.TestCase):
    """Sessions without an instrument."""

    @staticmethod
    def driver_setup(text):
        with Session("", "Simulate=1,DriverSetup=" + text) as supply:
            return supply.get(Attribute.DRIVER_SETUP)

    def test_keep_letters_beyond_ascii(self):
        self.assertEqual("Tag:Pr\u00fcfstand", self.driver_setup("Tag:Pr\u00fcfstand"))

    def test_that_fill_the_largest_buffer_come_whole(self):
        text = "Tag:" + "x" * 4091
        self.assertEqual(text, self.driver_setup(text))

    def test_beyond_the_largest_buffer_are_cut(self):
        text = "Tag:" + "x" * 5000
        self.assertEqual(text[:4095], self.driver_setup(text))

    def test_with_a_nul_are_refused(self):
        with Session("", "Simulate=1") as supply, self.assertRaises(ValueError):
            supply.configure_voltage_level("OutputChannel3\0OutputChannel4", 1.0)


class Numbers(unittest.TestCase):
    def test_beyond_32_bits_are_refused(self):
        with Session("", "Simulate=1") as supply:
            for number in (2**31, -(2**31) - 1, 2**32 + 1):
                with self.subTest(number), self.assertRaises(OverflowError):
                    supply.configure_current_limit("OutputChannel3", number, 1.0)

    def test_that_are_none_are_refused(self):
        with Session("", "Simulate=1") as supply, self.assertRaises(ctypes.ArgumentError):
            supply.configure_voltage_level("OutputChannel3", "much")


class Errors(InstrumentTest):
    def test_of_opening_have_the_recorded_text(self):
        self.expect_error(0xBFFA4214, NO_INSTRUMENT, Session, "BANANA")
        self.expect_error(
            0xBFFA004B, "The 'banana' name in the option string is unknown.", Session, "", "Simulate=1,Banana=1"
        )

    def test_of_opening_are_not_hidden_by_an_older_one(self):
        supply = self.open()
        self.expect_error(0xBFFA4217, OUT_OF_RANGE, supply.configure_voltage_level, "OutputChannel3", 16.5)
        with unittest.mock.patch.dict(os.environ, IVI_MASTER_STORE="/no-such-folder/IviConfigurationStore.xml"):
            self.expect_error(
                0xBFFA1206,
                "IviConfigServer.IviConfigStore.1: GetConfigStorePropertyViString: "
                "the master configuration store is missing",
                Session,
                "BenchSupply",
            )

    def test_show_code_and_text(self):
        supply = self.open()
        with self.assertRaises(kvx2800t.Error) as raised:
            supply.configure_voltage_level("OutputChannel3", 16.5)
        self.assertEqual("0xBFFA4217 " + OUT_OF_RANGE, str(raised.exception))

    def test_are_read_by_the_exception(self):
        supply = self.open()
        self.expect_error(0xBFFA4217, OUT_OF_RANGE, supply.configure_voltage_level, "OutputChannel3", 16.5)
        self.assertEqual((0, ""), supply.get_error())

    def test_leave_a_session_to_its_context(self):
        with self.assertRaises(kvx2800t.Error):
            with Session(self.instrument.resource) as supply:
                supply.configure_voltage_level("OutputChannel3", 16.5)
        self.assertEqual(0, supply.handle)

    def test_of_the_library(self):
        with self.assertRaises(OSError):
            Session("", library="/no-such-folder/libKVX2800T.so")

    def test_of_unknown_functions(self):
        with self.assertRaisesRegex(AttributeError, "the driver has no function KVX2800T_Banana"):
            self.open().library.Banana()


class Warnings(unittest.TestCase):
    def test_are_those_of_python(self):
        library = kvx2800t.Library()
        with self.assertWarnsRegex(
            kvx2800t.StatusWarning, "^0x3FFA0066 Reset is not supported by this instrument.$"
        ):
            self.assertEqual(0x3FFA0066, library.check(0x3FFA0066))


if __name__ == "__main__":
    unittest.main()
