"""The package against the virtual instrument: each exported function, texts, exceptions.

Run by ctest, with the package on PYTHONPATH and the files of the build in the environment.
"""

import ctypes
import os
import pathlib
import re
import threading
import unittest
import unittest.mock
import warnings

from virtual_instrument import VirtualInstrument

import kvx2800t
from kvx2800t import Attribute, CurrentLimitBehavior, MeasurementType, OutputState, RangeType, Supply

OUT_OF_RANGE = "Attribute or function parameter value is invalid (out of range or not supported)."
NO_INSTRUMENT = "I/O error.  Insufficient location information or resource not present in the system"


class InstrumentTest(unittest.TestCase):
    """A virtual instrument for each test."""

    maxDiff = None

    def setUp(self):
        self.instrument = VirtualInstrument()
        self.addCleanup(self.instrument.close)

    def open(self, profile=False, **options):
        """What the plain driver does, unless the profile is asked for."""
        supply = Supply(self.instrument.resource, profile=profile, **options)
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
        supply = self.open(query_instrument_status=True)
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
        self.assertEqual(170, len(names))
        for name in names[:36]:
            self.assertTrue(hasattr(self, "test_" + name), name)
        for name in names:
            self.assertTrue(hasattr(self.supply.library, name), name)

    def test_each_but_those_for_attributes_is_called_by_name(self):
        modules = pathlib.Path(kvx2800t.__file__).parent.glob("*.py")
        source = "".join(path.read_text(encoding="utf-8") for path in modules if path.name != "_interface.py")
        uncalled = [name for name in kvx2800t._interface.FUNCTIONS if not self.is_called(name, source)]
        self.assertEqual([], uncalled)

    @staticmethod
    def is_called(name, source):
        """As a function of the library, by its name in quotes, or by what stands behind Configure and Query."""
        stem = re.sub("^(Configure|Query)", "", name)
        calls = (f"library.{name}(", f"library.{name}, ", f"self.{name}(", f'_call("{name}"', f'_record("{name}"')
        queries = (f', "{name}"', f'("{name}", ', f'"{name}")', f'Setting("{stem}"', f'Readable("{stem}"')
        return any(call in source for call in calls + queries)

    def test_functions_are_called_through_the_library(self):
        library, handle = self.supply.library, self.supply.handle
        library.check(library.ConfigureTracking(handle, b"OutputChannel3", 1), handle)
        self.expect_lines(":OUTP:TRAC:STAT CH3,ON")
        self.expect_error(
            0xBFFA4217,
            f"{OUT_OF_RANGE}  OutputChannel3 takes 0 V to 16 V, not 99 V.",
            lambda: library.check(library.ConfigureListGroup(handle, b"OutputChannel3", 1, 99.0, 1.0, 1.0), handle),
        )


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
    def driver_setup(model):
        with Supply("", simulate=True, model=model, profile=False) as supply:
            return supply.get(Attribute.DRIVER_SETUP)

    def test_keep_letters_beyond_ascii(self):
        self.assertEqual("Model:Pr\u00fcfstand", self.driver_setup("Pr\u00fcfstand"))

    def test_that_fill_the_largest_buffer_come_whole(self):
        self.assertEqual("Model:" + "x" * 4089, self.driver_setup("x" * 4089))

    def test_beyond_the_largest_buffer_are_cut(self):
        self.assertEqual("Model:" + "x" * 4089, self.driver_setup("x" * 5000))

    def test_with_a_nul_are_refused(self):
        with Supply("", simulate=True) as supply:
            with self.assertRaises(ValueError):
                supply.configure_voltage_level("OutputChannel3\0OutputChannel4", 1.0)
            with self.assertRaises(ValueError):
                supply.channels["CH3\0"].tracking = True


class Numbers(unittest.TestCase):
    def test_beyond_32_bits_are_refused(self):
        with Supply("", simulate=True) as supply:
            for number in (2**31, -(2**31) - 1, 2**32 + 1):
                with self.subTest(number):
                    with self.assertRaises(OverflowError):
                        supply.configure_current_limit("OutputChannel3", number, 1.0)
                    with self.assertRaises(OverflowError):
                        supply.channels["CH3"].list.cycles = number
                    with self.assertRaises(OverflowError):
                        supply.channels["CH3"].list.group(number)

    def test_that_are_none_are_refused(self):
        with Supply("", simulate=True) as supply:
            with self.assertRaises(ctypes.ArgumentError):
                supply.configure_voltage_level("OutputChannel3", "much")
            for value in ("3", 2.5):
                with self.subTest(value), self.assertRaises(TypeError):
                    supply.channels["CH3"].list.cycles = value


class Options(InstrumentTest):
    def expect_options(self, text, **options):
        self.assertEqual(text, kvx2800t.option_string(**options))

    def test_are_the_profile_unless_told_otherwise(self):
        self.expect_options("DriverSetup=Profile:Bench")
        self.expect_options("", profile=False)

    def test_put_the_inherent_ones_in_front(self):
        self.expect_options(
            "Cache=1,InterchangeCheck=0,QueryInstrStatus=1,RangeCheck=0,RecordCoercions=0,Simulate=1,"
            "DriverSetup=Profile:Bench",
            cache=True,
            interchange_check=False,
            query_instrument_status=True,
            range_check=False,
            record_coercions=False,
            simulate=True,
        )
        self.expect_options("Simulate=0", simulate=False, profile=False)

    def test_have_every_key(self):
        self.expect_options(
            "DriverSetup=Model:KVX2833T,Profile:Bench,SafeErrors:1,FreshReplies:0,DetailedErrors:1,TrueReadings:0,"
            "CheckedOptions:1,StatefulSimulation:0,OpenTimeout:3000,IoTimeout:Infinite,BaudRate:115200,DataBits:7,"
            "Parity:Even,StopBits:1.5,FlowControl:RtsCts,MessageLog:100",
            model="KVX2833T",
            safe_errors=True,
            fresh_replies=False,
            detailed_errors=True,
            true_readings=False,
            checked_options=True,
            stateful_simulation=False,
            open_timeout=3000,
            io_timeout=kvx2800t.INFINITE,
            baud_rate=115200,
            data_bits=7,
            parity=kvx2800t.Parity.EVEN,
            stop_bits=kvx2800t.StopBits.ONE_AND_HALF,
            flow_control=kvx2800t.FlowControl.RTS_CTS,
            message_log=100,
        )

    def test_spell_every_word(self):
        for keyword, key, words in (
            ("parity", "Parity", ("None", "Odd", "Even", "Mark", "Space")),
            ("stop_bits", "StopBits", ("1", "1.5", "2")),
            ("flow_control", "FlowControl", ("None", "XonXoff", "RtsCts", "DtrDsr")),
        ):
            for word in words:
                self.expect_options(f"DriverSetup={key}:{word}", profile=False, **{keyword: word})

    def test_refuse_what_cannot_be_said(self):
        for model in ("", "A,B", "A;B", "A:B", "A=B", '"A"', "'A'", "A\nB", "A\r", "A\tB", "A\0B", "A\x7f", " A", "A "):
            with self.subTest(model), self.assertRaises(ValueError):
                kvx2800t.option_string(model=model)
        for keyword, value, error in (
            ("simulate", "off", TypeError),
            ("simulate", 1, TypeError),
            ("profile", "Bench", TypeError),
            ("safe_errors", "0,TrueReadings:1", TypeError),
            ("open_timeout", -1, ValueError),
            ("io_timeout", 1.5, TypeError),
            ("io_timeout", True, TypeError),
            ("baud_rate", "9600", TypeError),
            ("data_bits", 9, ValueError),
            ("data_bits", 4, ValueError),
            ("parity", "Odd,Model:A", ValueError),
            ("stop_bits", 1, ValueError),
            ("flow_control", "rts", ValueError),
            ("banana", 1, TypeError),
        ):
            with self.subTest(f"{keyword} {value}"), self.assertRaises(error):
                kvx2800t.option_string(**{keyword: value})

    def test_reach_the_driver(self):
        self.assertEqual("Profile:Bench", self.open(True).get(Attribute.DRIVER_SETUP))
        self.assertEqual("Profile:Bench,SafeErrors:0", self.open(True, safe_errors=False).get(Attribute.DRIVER_SETUP))
        self.assertEqual("", self.open().get(Attribute.DRIVER_SETUP))

    def test_are_all_known_to_the_driver(self):
        words = [("parity", word) for word in kvx2800t.Parity]
        words += [("stop_bits", word) for word in kvx2800t.StopBits]
        words += [("flow_control", word) for word in kvx2800t.FlowControl]
        for keyword, word in words:
            with self.subTest(word):
                Supply("", simulate=True, **{keyword: word}).close()
        Supply("", simulate=True, open_timeout=kvx2800t.INFINITE, baud_rate=9600, data_bits=5).close()
        self.assertEqual(250, self.open(io_timeout=250).io_timeout)

    def test_are_refused_before_the_driver_is_called(self):
        with self.assertRaises(ValueError):
            self.open(model="A,B")
        with self.assertRaises(TypeError):
            Supply(self.instrument.resource, "Simulate=1")
        self.expect_lines()


class Channels(InstrumentTest):
    """Channel 3 of a session with the profile on, whose output 10 ohms load."""

    def setUp(self):
        super().setUp()
        self.instrument.control("load CH3 10")
        self.supply = self.open(profile=True)
        self.channel = self.supply.channels["CH3"]
        self.instrument.new_lines()

    def expect_kept(self, target, *rows, selected=()):
        """Each value is sent by one line, asked for by another, and comes back."""
        for name, value, sent, asked in rows:
            with self.subTest(name):
                setattr(target, name, value)
                self.assertEqual(value, getattr(target, name))
                self.assertIs(type(value), type(getattr(target, name)))
                self.expect_lines(*selected, sent, *selected, asked, *selected, asked)

    def expect_kept_of_program(self, target, *rows):
        self.expect_kept(target, *rows, selected=(":INST:SELE CH3",))

    def switch_on(self):
        self.channel.voltage_level = 5.0
        self.channel.current_limit = 1.0
        self.channel.output_enabled = True
        self.instrument.new_lines()

    def test_have_names(self):
        self.assertEqual("CH3", self.channel.name)
        self.assertEqual("OutputChannel3", self.supply.channels["OutputChannel3"].name)

    def test_keep_their_settings(self):
        self.expect_kept(
            self.channel,
            ("voltage_level", 5.0, ":SOUR3:VOLT 5.000000", ":SOUR3:VOLT?"),
            ("current_limit_behavior", CurrentLimitBehavior.TRIP, ":SOUR3:CURR:PROT:STAT ON", ":SOUR3:CURR:PROT:STAT?"),
            ("output_enabled", True, ":OUTP:STAT CH3,ON", ":OUTP:STAT? CH3"),
            ("remote_sense", True, ":SOUR3:VOLT:SENS ON", ":SOUR3:VOLT:SENS?"),
            ("output_sense", False, ":OUTP:SENS:STAT CH3,OFF", ":OUTP:SENS:STAT? CH3"),
            ("power_on_state", kvx2800t.PowerOnState.LAST_OFF, ":OUTP:PONS:STAT CH3,LOFF", ":OUTP:PONS:STAT? CH3"),
            ("pairing", kvx2800t.Pairing.PARALLEL, ":OUTP:PAIR CH3,PAR", ":OUTP:PAIR? CH3"),
            ("tracking", True, ":OUTP:TRAC:STAT CH3,ON", ":OUTP:TRAC:STAT? CH3"),
            ("output_off_mode", kvx2800t.OutputOffMode.BLEEDER_OFF, ":OUTP:OFFM CH3,BLEOFF", ":OUTP:OFFM? CH3"),
            ("trigger_input", True, ":TRIG:IN:ENAB CH3,ON", ":TRIG:IN:ENAB? CH3"),
            ("current_range", kvx2800t.CurrentRange.HIGH, ":MEAS:CURR:RANG CH3,HIGH", ":MEAS:CURR:RANG? CH3"),
            ("current_rate", kvx2800t.CurrentRate.RATE_8000, ":MEAS:CURR:RATE CH3,8000", ":MEAS:CURR:RATE? CH3"),
        )

    def test_limit_their_current(self):
        self.channel.current_limit = 0.5
        self.assertEqual(0.5, self.channel.current_limit)
        self.expect_lines(":SOUR3:CURR 0.500000", ":SOUR3:CURR:PROT 0.500000", ":SOUR3:CURR?")
        self.channel.configure_current_limit(CurrentLimitBehavior.REGULATE, 1.5)
        self.expect_lines(":SOUR3:CURR 1.500000", ":SOUR3:CURR:PROT 1.500000", ":SOUR3:CURR:PROT:STAT OFF")
        self.assertEqual((16.0, 3.2), (self.channel.max_voltage_level(), self.channel.max_current_limit()))
        self.channel.configure_output_range(RangeType.VOLTAGE, 5.0)
        self.expect_lines()

    def test_keep_their_protection(self):
        protection = self.channel.protection
        protection.configure_ovp(True, 6.0)
        self.expect_lines(":SOUR3:VOLT:PROT 6.000000", ":SOUR3:VOLT:PROT:STAT ON")
        scheduled, always = kvx2800t.ProtectionDelay.SCHEDULED, kvx2800t.ProtectionDelay.ANY
        self.expect_kept(
            protection,
            ("ovp_limit", 6.5, ":SOUR3:VOLT:PROT 6.500000", ":SOUR3:VOLT:PROT?"),
            ("ovp_enabled", False, ":SOUR3:VOLT:PROT:STAT OFF", ":SOUR3:VOLT:PROT:STAT?"),
            ("current_level", 1.25, ":SOUR3:CURR:PROT 1.250000", ":SOUR3:CURR:PROT?"),
            ("current_delay", 0.25, ":SOUR3:CURR:PROT:DEL 0.250000", ":SOUR3:CURR:PROT:DEL?"),
            ("current_delay_mode", scheduled, ":SOUR3:CURR:PROT:DEL:MODE SCH", ":SOUR3:CURR:PROT:DEL:MODE?"),
            ("output_ovp_value", 7.0, ":OUTP:OVP:VAL CH3,7.000000", ":OUTP:OVP:VAL? CH3"),
            ("output_ovp_enabled", True, ":OUTP:OVP:STAT CH3,ON", ":OUTP:OVP:STAT? CH3"),
            ("output_ocp_value", 1.5, ":OUTP:OCP:VAL CH3,1.500000", ":OUTP:OCP:VAL? CH3"),
            ("output_ocp_enabled", True, ":OUTP:OCP:STAT CH3,ON", ":OUTP:OCP:STAT? CH3"),
            ("output_ocp_delay", 0.5, ":OUTP:OCP:DEL CH3,0.500000", ":OUTP:OCP:DEL? CH3"),
            ("output_ocp_delay_mode", always, ":OUTP:OCP:DEL:MODE CH3,ANY", ":OUTP:OCP:DEL:MODE? CH3"),
        )

    def test_tell_what_has_tripped(self):
        self.assertEqual((False, False), self.channel.protection.state)
        self.assertFalse(self.channel.protection.state)
        self.channel.protection.configure_ovp(True, 4.0)
        self.switch_on()
        self.assertEqual((True, False), self.channel.protection.state)
        self.assertTrue(self.channel.protection.state)
        self.assertEqual(kvx2800t.Questionable.OVER_VOLTAGE, self.channel.state.condition)

    def test_reset_no_protection_without_a_word(self):
        self.open().channels["CH3"].protection.reset()
        self.expect_lines("*IDN?")

    def test_tell_what_they_do(self):
        self.switch_on()
        state = self.channel.state
        self.assertIs(kvx2800t.Regulation.CONSTANT_VOLTAGE, state.regulation)
        self.assertEqual(kvx2800t.Questionable.CONSTANT_VOLTAGE, state.condition)
        self.assertEqual(kvx2800t.Questionable.CONSTANT_VOLTAGE, state.event())
        register = ":STATus:QUEStionable:INSTrument:ISUMmary3:"
        self.expect_lines(":OUTP:CVCC? CH3", register + "CONDition?", register + "EVENt?")
        self.assertIs(state.is_in(OutputState.CONSTANT_VOLTAGE), True)
        self.assertIs(state.is_in(OutputState.CONSTANT_CURRENT), False)

    def test_measure(self):
        self.switch_on()
        self.assertEqual((5.0, 0.5, 2.5), self.channel.measure())
        self.assertEqual(2.5, self.channel.measure().watts)
        self.assertEqual(5.0, self.channel.meter(MeasurementType.VOLTAGE))
        self.assertEqual(0.5, self.channel.meter(MeasurementType.CURRENT))
        self.assertEqual(2.5, self.channel.meter(MeasurementType.POWER))
        self.expect_lines(
            ":MEAS:ALL? CH3", ":MEAS:ALL? CH3", ":MEAS:VOLT? CH3", ":MEAS:CURR? CH3", ":MEAS:POWE? CH3"
        )

    def test_are_measured_at_once(self):
        self.switch_on()
        self.assertEqual([(0.0, 0.0, 0.0), (5.0, 0.5, 2.5)], self.supply.measure_all("CH4,CH3"))
        self.expect_lines(":MEAS:ALL? CH4", ":MEAS:ALL? CH3")

    def test_load_and_run_lists(self):
        program = self.channel.list
        program.load([(5.0, 1.0, 0.5), kvx2800t.ListGroup(4.0, 1.0, 3600.0)])
        self.expect_lines(
            ":INST:SELE CH3",
            ":LIST:GROUP:CLE",
            ":LIST:GROUP:PARA 1,5.000000,1.000000,0.500000",
            ":LIST:GROUP:PARA 2,4.000000,1.000000,3600.000000",
        )
        self.expect_kept_of_program(
            program,
            ("cycles", 3, ":LIST:CYCLE 3", ":LIST:CYCLE?"),
            ("end_state", kvx2800t.ListEnd.LAST, ":LIST:ENDS LAST", ":LIST:ENDS?"),
        )
        program.run()
        self.expect_lines(":INST:SELE CH3", ":LIST:STAT ON", ":OUTP:STAT CH3,ON")
        self.instrument.control("advance 500")
        status = program.status
        self.assertEqual((kvx2800t.ListState.RUNNING, 2, 3), (status.state, status.group, status.remaining_cycles))
        self.assertIs(program.enabled, True)
        self.expect_lines(":INST:SELE CH3", ":LIST:STATUS?", ":INST:SELE CH3", ":LIST:STAT?")
        program.pause()
        self.expect_lines(":INST:SELE CH3", ":OUTP:STAT CH3,OFF")
        self.assertIs(kvx2800t.ListState.PAUSED, program.status.state)
        program.stop()
        self.assertIs(kvx2800t.ListState.STOPPED, program.status.state)

    def test_edit_lists(self):
        program = self.channel.list
        program.set_group(1, 5.0, 1.0, 0.5)
        program.insert_group(1)
        self.assertEqual(2, program.group_count)
        self.assertEqual((5.0, 1.0, 0.5), program.group(2))
        program.delete_group(1)
        self.assertEqual(1, program.group_count)
        program.clear()
        self.assertEqual(0, program.group_count)
        program.load([])
        self.assertEqual(0, program.group_count)

    def test_make_lists_of_templates(self):
        template = self.channel.list_template
        self.expect_kept_of_program(
            template,
            ("waveform", kvx2800t.Waveform.UP_DOWN, ":LIST:TEMP:SEL UPDN", ":LIST:TEMP:SEL?"),
            ("maximum", 5.0, ":LIST:TEMP:MAXV 5.000000", ":LIST:TEMP:MAXV?"),
            ("minimum", 1.0, ":LIST:TEMP:MINV 1.000000", ":LIST:TEMP:MINV?"),
            ("period", 2.0, ":LIST:TEMP:PERI 2.000000", ":LIST:TEMP:PERI?"),
            ("interval", 0.5, ":LIST:TEMP:INTE 0.500000", ":LIST:TEMP:INTE?"),
            ("cycles", 4, ":LIST:TEMP:CYCLE 4", ":LIST:TEMP:CYCLE?"),
            ("inverted", True, ":LIST:TEMP:INVE ON", ":LIST:TEMP:INVE?"),
            ("pulse_width", 0.25, ":LIST:TEMP:WIDT 0.250000", ":LIST:TEMP:WIDT?"),
            ("pulse_count", 8, ":LIST:TEMP:PULSECount 8", ":LIST:TEMP:PULSECount?"),
            ("symmetry", 40, ":LIST:TEMP:SYMM 40", ":LIST:TEMP:SYMM?"),
            ("start", 2, ":LIST:TEMP:STAI 2", ":LIST:TEMP:STAI?"),
            ("expp", 20, ":LIST:TEMP:EXPP 20", ":LIST:TEMP:EXPP?"),
            ("expr", 5, ":LIST:TEMP:EXPR 5", ":LIST:TEMP:EXPR?"),
        )
        template.object = kvx2800t.ListObject.VOLTAGE, 0.75
        self.assertEqual((kvx2800t.ListObject.VOLTAGE, 0.75), template.object)
        self.assertEqual(4, template.points)
        self.instrument.new_lines()
        template.construct()
        self.expect_lines(":INST:SELE CH3", ":LIST:TEMP:CONSTruct 1")
        self.assertEqual(4, self.channel.list.group_count)

    def test_load_and_run_delay_programs(self):
        program = self.channel.delay
        program.load([(False, 0.5), kvx2800t.DelayGroup(True, 3600.0)])
        self.expect_lines(
            ":INST:SELE CH3",
            ":DELAY:GROUP:CLEar",
            ":DELAY:GROUP:PARAmeter 1,OFF,0.500000",
            ":DELAY:GROUP:PARAmeter 2,ON,3600.000000",
        )
        self.expect_kept_of_program(
            program,
            ("cycles", 2, ":DELAY:CYCLEs 2", ":DELAY:CYCLEs?"),
            ("end_state", kvx2800t.DelayEnd.ON, ":DELAY:ENDState ON", ":DELAY:ENDState?"),
        )
        program.start()
        self.expect_lines(":INST:SELE CH3", ":DELAY:STATe ON")
        self.instrument.control("advance 500")
        status = program.status
        self.assertEqual((kvx2800t.DelayState.RUNNING, 2, 2), (status.state, status.group, status.remaining_cycles))
        self.assertIs(program.enabled, True)
        program.stop()
        self.assertIs(kvx2800t.DelayState.STOPPED, program.status.state)

    def test_edit_delay_programs(self):
        program = self.channel.delay
        program.set_group(1, True, 0.5)
        program.insert_group(1)
        self.assertEqual(2, program.group_count)
        self.assertEqual((True, 0.5), program.group(2))
        self.assertIs(program.group(1).on, False)
        program.delete_group(1)
        self.assertEqual(1, program.group_count)
        program.clear()
        self.assertEqual(0, program.group_count)
        program.load([])
        self.assertEqual(0, program.group_count)

    def test_generate_delay_programs(self):
        generator = self.channel.delay_generator
        increasing, on_off = kvx2800t.DelayTimes.INCREASING, kvx2800t.DelayPattern.ON_OFF
        self.expect_kept_of_program(
            generator,
            ("times", increasing, ":DELAY:GENerate:SELect INC", ":DELAY:GENerate:SELect?"),
            ("pattern", on_off, ":DELAY:GENerate:PATT 10P", ":DELAY:GENerate:PATT?"),
            ("points", 8, ":DELAY:GENerate:POINTs 8", ":DELAY:GENerate:POINTs?"),
            ("on_time", 0.5, ":DELAY:GENerate:TIMe:ON 0.500000", ":DELAY:GENerate:TIMe:ON?"),
            ("off_time", 0.25, ":DELAY:GENerate:TIMe:OFF 0.250000", ":DELAY:GENerate:TIMe:OFF?"),
            ("base_time", 1.5, ":DELAY:GENerate:TIMe:BASE 1.500000", ":DELAY:GENerate:TIMe:BASE?"),
            ("time_step", 0.125, ":DELAY:GENerate:TIMe:STEP 0.125000", ":DELAY:GENerate:TIMe:STEP?"),
        )
        generator.construct()
        self.expect_lines(":INST:SELE CH3", ":DELAY:GENerate:CONSTruct 1")
        self.assertEqual(8, self.channel.delay.group_count)

    def test_are_set_together_and_read_alone(self):
        both = self.supply.channels["OutputChannel3-4"]
        both.tracking = True
        self.expect_lines(":OUTP:TRAC:STAT CH3,ON", ":OUTP:TRAC:STAT CH4,ON")
        with self.assertRaises(kvx2800t.Error) as raised:
            print(both.tracking)
        self.assertEqual(kvx2800t.ERROR_BADLY_FORMED_SELECTOR, raised.exception.code)

    def test_refuse_values_of_other_types_and_names_that_are_none(self):
        for target, name, value, error in (
            (self.channel, "tracking", 1, TypeError),
            (self.channel, "output_enabled", "off", TypeError),
            (self.channel, "pairing", 3, ValueError),
            (self.channel, "voltage", 5.0, AttributeError),
            (self.channel.list, "cycels", 5, AttributeError),
            (self.channel.list, "group_count", 5, AttributeError),
        ):
            with self.subTest(name), self.assertRaises(error):
                setattr(target, name, value)
        self.expect_lines()

    def test_explain_themselves(self):
        for group in kvx2800t.Selection.__subclasses__():
            for name in vars(group):
                if not name.startswith("_"):
                    self.assertTrue(getattr(group, name).__doc__, f"{group.__name__}.{name}")


class Instrument(InstrumentTest):
    def setUp(self):
        super().setUp()
        self.supply = self.open(profile=True)
        self.instrument.new_lines()

    def test_has_status_registers(self):
        self.supply.clear_status()
        self.instrument.control('inject -222 "Data out of range"')
        self.assertEqual(kvx2800t.EventStatus.EXECUTION_ERROR, self.supply.event_status())
        self.expect_lines("*CLS", "*ESR?")

    def test_has_a_source_mode_a_bleeder_and_a_selected_channel(self):
        self.supply.source_mode = kvx2800t.SourceMode.NORMAL
        self.assertIs(kvx2800t.SourceMode.NORMAL, self.supply.source_mode)
        self.supply.bleeder = True
        self.assertIs(self.supply.bleeder, True)
        self.supply.select_channel("OutputChannel4")
        self.assertEqual(4, self.supply.selected_channel)
        self.expect_lines(
            ":SOUR:Mode?", ":SOUR:Mode?", ":SOUR:BLE ON", ":SOUR:BLE?", ":INST:SELE CH4", ":INST:SELE?"
        )

    def test_takes_messages_of_the_programs_own(self):
        self.assertEqual("1", self.supply.query("*OPC?"))
        self.supply.write(b"*OPC?\n")
        self.assertEqual(b"1\n", self.supply.read_response())
        self.supply.write("*IDN?")
        with self.assertRaises(kvx2800t.Error) as raised:
            self.supply.read_response(4)
        self.assertEqual(kvx2800t.WARN_ARRAY_TRUNCATED, raised.exception.code)
        self.assertEqual("1", self.supply.query("*OPC?"))
        self.expect_lines("*OPC?", "*OPC?", "*IDN?", "*OPC?")

    def test_has_a_time_out(self):
        self.supply.io_timeout = 1234
        self.assertEqual(1234, self.supply.io_timeout)

    def test_remembers_messages_that_it_is_asked_to_remember(self):
        with Supply(self.instrument.resource, message_log=10) as supply:
            while supply.get_next_message_record():
                pass
            self.assertEqual("1", supply.query("*OPC?"))
            supply.write(2000 * " " + "*CLS")
            records = [supply.get_next_message_record() for _ in range(4)]
            self.assertEqual(["> *OPC?", "< 1", "> " + 1018 * " " + "...", ""], records)

    def test_has_no_records(self):
        self.assertEqual("", self.supply.get_next_message_record())
        self.assertEqual("", self.supply.get_next_coercion_record())
        self.assertEqual("", self.supply.get_next_interchange_warning())
        self.supply.reset_interchange_check()
        self.supply.clear_interchange_warnings()
        self.expect_lines()


class Errors(InstrumentTest):
    def test_of_opening_have_the_recorded_text(self):
        self.expect_error(0xBFFA4214, NO_INSTRUMENT, Supply, "BANANA", profile=False)

    def test_of_opening_are_not_hidden_by_an_older_one(self):
        supply = self.open()
        self.expect_error(0xBFFA4217, OUT_OF_RANGE, supply.configure_voltage_level, "OutputChannel3", 16.5)
        with unittest.mock.patch.dict(os.environ, IVI_MASTER_STORE="/no-such-folder/IviConfigurationStore.xml"):
            self.expect_error(
                0xBFFA1206,
                "IviConfigServer.IviConfigStore.1: GetConfigStorePropertyViString: "
                "the master configuration store is missing",
                Supply,
                "BenchSupply",
                profile=False,
            )

    def test_show_code_and_text(self):
        supply = self.open()
        with self.assertRaises(kvx2800t.Error) as raised:
            supply.configure_voltage_level("OutputChannel3", 16.5)
        self.assertEqual("KVX2800T_ConfigureVoltageLevel: 0xBFFA4217 " + OUT_OF_RANGE, str(raised.exception))

    def test_are_read_by_the_exception(self):
        supply = self.open()
        self.expect_error(0xBFFA4217, OUT_OF_RANGE, supply.configure_voltage_level, "OutputChannel3", 16.5)
        self.assertEqual((0, ""), supply.get_error())

    def test_leave_a_session_to_its_context(self):
        with self.assertRaises(kvx2800t.Error):
            with Supply(self.instrument.resource) as supply:
                supply.configure_voltage_level("OutputChannel3", 16.5)
        self.assertEqual(0, supply.handle)

    def test_of_the_library(self):
        with self.assertRaises(OSError):
            Supply("", library="/no-such-folder/libKVX2800T.so")

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
