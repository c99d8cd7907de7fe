"""What the package adds to the driver: channels by name, exceptions, the log, what is refused."""

import asyncio
import copy
import logging
import os
import pathlib
import pickle
import re
import subprocess
import sys
import threading

import pytest

import kvx2800t
from kvx2800t import Attribute, Error, Supply


def test_channels_are_named():
    with Supply("", simulate=True) as supply:
        assert supply.channels["CH1"].name == "CH1"
        assert supply.channels["OutputChannel2"].name == "OutputChannel2"
        assert supply.channels["CH1", "OutputChannel3"].name == "CH1,OutputChannel3"
        assert repr(supply.channels["Core"].protection) == "<Protection 'Core'>"
        assert len(supply.channels) == 6
        assert [channel.name for channel in supply.channels][:2] == ["OutputChannel1", "OutputChannel2"]


def test_a_range_of_channels_has_both_of_its_ends(supply, instrument):
    supply.channels[3:4].voltage_level = 2.5
    assert instrument.new_lines() == [":SOUR3:VOLT 2.500000", ":SOUR4:VOLT 2.500000", "*ESR?"]
    assert supply.channels[2:2].name == "CH2-2"


@pytest.mark.parametrize("key", [1, 0, -1, 1.0, None, True, b"CH1", ("CH1", 2)])
def test_what_is_no_name_is_refused(supply, key):
    wrong = key[1] if isinstance(key, tuple) else key
    text = f'channels have names, such as "CH1" or "OutputChannel1": {wrong!r} is none'
    with pytest.raises(TypeError, match="^" + re.escape(text) + "$"):
        supply.channels[key]
    if not isinstance(key, tuple):
        with pytest.raises(TypeError, match="^" + re.escape(text) + "$"):
            supply.configure_voltage_level(key, 1.0)
        with pytest.raises(TypeError, match="^" + re.escape(text) + "$"):
            supply.get(Attribute.VOLTAGE_LEVEL, key)


@pytest.mark.parametrize("ends", [(None, 3), (1, None), (1, 3, 1), ("CH1", "CH3"), (True, 3), (None, None)])
def test_a_range_has_two_numbers(supply, ends):
    with pytest.raises(TypeError, match=r"^a range of channels is two numbers, such as \[1:3\], both of them in it$"):
        supply.channels[slice(*ends)]


@pytest.mark.parametrize("first, last", [(0, 3), (3, 1), (-2, -1)])
def test_a_range_goes_up_from_1(supply, first, last):
    text = rf"^\[{first}:{last}\] is no range of channels: they count from 1, and the lower one comes first$"
    with pytest.raises(ValueError, match=text):
        supply.channels[first:last]


def test_each_error_of_the_driver_has_its_exception(supply):
    errors = {code: error for code, error in kvx2800t._interface.ERRORS.items() if code != 0xBFFA1190}
    assert len(errors) == 44
    for code, error in errors.items():
        with pytest.raises(error) as raised:
            supply.library.check(code - 2**32, supply.handle, "reset")
        assert type(raised.value) is error
        assert (raised.value.code, raised.value.function) == (code, "KVX2800T_reset")
        assert raised.value.text == supply.error_message(code)


def test_a_status_that_is_not_the_drivers_is_an_error():
    with Supply("", simulate=True) as supply, pytest.raises(Error) as raised:
        supply.library.check(0xBFFF0015 - 2**32, supply.handle, "viRead")
    assert type(raised.value) is Error
    assert str(raised.value) == "KVX2800T_viRead: 0xBFFF0015 "


@pytest.mark.parametrize(
    "error, function, call",
    [
        (kvx2800t.UnknownPhysicalIdentifierError, "GetAttributeViReal64", lambda s: s.channels["CH9"].voltage_level),
        (kvx2800t.IoTimeoutError, "QueryListGroup", lambda s: s.channels["CH3"].list.group(600)),
        (kvx2800t.InvalidAttributeError, "GetAttributeViString", lambda s: s.get_string(1)),
        (kvx2800t.BadlyFormedSelectorError, "ConfigureVoltageLevel", lambda s: s.configure_voltage_level("CH3-4-5", 1)),
        (kvx2800t.IoError, "InitWithOptions", lambda s: Supply("BANANA")),
        (kvx2800t.IoError, "init", lambda s: Supply("BANANA", profile=False)),
    ],
)
def test_an_error_names_its_function(supply, error, function, call):
    supply.io_timeout = 100
    with pytest.raises(error) as raised:
        call(supply)
    assert raised.value.function == "KVX2800T_" + function


def test_an_error_can_be_pickled():
    error = kvx2800t.IoError(0xBFFA4214, "I/O error.", "KVX2800T_reset")
    again = pickle.loads(pickle.dumps(error))
    assert type(again) is kvx2800t.IoError
    assert (again.code, again.text, again.function) == (0xBFFA4214, "I/O error.", "KVX2800T_reset")
    assert str(again) == "KVX2800T_reset: 0xBFFA4214 I/O error."


@pytest.mark.parametrize("take", [pickle.dumps, copy.copy, copy.deepcopy])
@pytest.mark.parametrize("what", [lambda supply: supply, lambda supply: [supply]])
def test_a_supply_is_not_pickled(supply, take, what):
    if take is copy.copy and isinstance(what(supply), list):
        return
    with pytest.raises(TypeError, match="^a Supply is a connection and cannot be pickled or copied: open one in each"):
        take(what(supply))


def test_a_channel_is_not_pickled(supply):
    with pytest.raises(TypeError, match="^a Supply is a connection"):
        pickle.dumps(supply.channels["CH1"])


def described_attributes():
    """What the attribute file says: name, type, access."""
    text = pathlib.Path(os.environ["BINDINGS"], "KVX2800T.sub").read_text(encoding="utf-8")
    return re.findall(r'^\d all "[^"]+" KVX2800T_ATTR_(\w+) Vi(\w+) (\w+)', text, re.M)


@pytest.mark.parametrize("name, kind, access", described_attributes())
def test_the_driver_takes_attributes_as_they_are_described(supply, name, kind, access):
    attribute = Attribute[name]
    value = getattr(supply, "get_" + kind.lower())(attribute, "CH3")
    if access == "g":
        with pytest.raises(kvx2800t.AttributeNotWritableError):
            supply.set(attribute, value, "CH3")
    else:
        assert access == "gs"
        supply.set(attribute, value, "CH3")


def test_each_call_is_logged(supply, caplog):
    with caplog.at_level(logging.DEBUG, "kvx2800t"):
        supply.channels["CH3"].measure()
        supply.revision_query()
        with pytest.raises(Error):
            supply.configure_voltage_level("CH3", 99)
    lines = [re.sub(r"\(\d+, ", "(vi, ", record.getMessage()) for record in caplog.records]
    assert {record.levelname for record in caplog.records} == {"DEBUG"}
    assert lines[:3] == [
        "KVX2800T_MeasureAll(vi, b'CH3', 1, 0.0, 0.0, 0.0, 1) = 0x00000000",
        "KVX2800T_revision_query(vi, b'1.0.0.0', b'V1.00') = 0x00000000",
        "KVX2800T_ConfigureVoltageLevel(vi, b'CH3', 99) = 0xBFFA4217",
    ]
    assert lines[3] == "KVX2800T_GetError(vi, None, 0, None) = 0x0000007F"
    assert lines[4].startswith("KVX2800T_GetError(vi, -1074118121, 127, b'Attribute or function parameter value is ")


def test_nothing_is_logged_unless_asked_for(supply, caplog):
    with caplog.at_level(logging.INFO, "kvx2800t"):
        supply.disable()
    assert caplog.records == []


def run(program, **environment):
    """A Python of its own, with the package, and without the variable that names the driver."""
    return subprocess.run(
        [sys.executable, "-B", "-c", program],
        env={"PYTHONPATH": str(pathlib.Path(kvx2800t.__file__).parent.parent), **environment},
        capture_output=True,
        text=True,
    )


@pytest.mark.parametrize(
    "library, environment",
    [("None", {"KVX2800T_LIBRARY": "/no-such-folder/driver.so"}), ("'/no-such-folder/driver.so'", {})],
)
def test_a_driver_that_is_named_and_not_there_is_not_looked_for_elsewhere(library, environment):
    program = f"import kvx2800t; kvx2800t.Supply('', library={library})"
    ended = run(program, **environment)
    assert ended.returncode == 1
    assert ended.stderr.split("kvx2800t.DriverNotInstalled: ")[1] == (
        "the KVX2800T driver is not installed, or its library cannot be loaded. Looked at:\n"
        "  /no-such-folder/driver.so: there is no such file\n"
        "Install the driver, or name its library by the environment variable KVX2800T_LIBRARY.\n"
    )


def test_a_driver_that_is_nowhere_is_said_to_be(tmp_path):
    package = pathlib.Path(kvx2800t.__file__).parent
    (tmp_path / "kvx2800t").mkdir()
    for module in package.glob("*.py"):
        (tmp_path / "kvx2800t" / module.name).write_bytes(module.read_bytes())
    ended = run("import kvx2800t; kvx2800t.Library()", PYTHONPATH=str(tmp_path))
    assert ended.stderr.split("kvx2800t.DriverNotInstalled: ")[1] == (
        "the KVX2800T driver is not installed, or its library cannot be loaded. Looked at:\n"
        f"  {tmp_path}/kvx2800t/lib/libKVX2800T.so.1: there is no such file\n"
        "  libKVX2800T.so.1: libKVX2800T.so.1: cannot open shared object file: No such file or directory\n"
        "Install the driver, or name its library by the environment variable KVX2800T_LIBRARY.\n"
    )


def test_a_file_that_is_no_library_is_told(tmp_path):
    (tmp_path / "driver.so").write_text("no library")
    with pytest.raises(kvx2800t.DriverNotInstalled) as raised:
        kvx2800t.Library(str(tmp_path / "driver.so"))
    assert isinstance(raised.value, OSError)
    assert raised.value.places == [(f"{tmp_path}/driver.so", f"{tmp_path}/driver.so: file too short")]


def test_the_package_finds_the_driver_that_it_has(tmp_path):
    program = "import kvx2800t; print(kvx2800t.Library())"
    library = pathlib.Path(kvx2800t.__file__).parent / "lib" / "libKVX2800T.so.1"
    assert run(program).stdout == f"<Library '{library}'>\n"


def test_locked_keeps_other_threads_out(supply, instrument):
    with supply.locked():
        other = threading.Thread(target=supply.configure_voltage_level, args=("CH4", 1.0))
        other.start()
        for _ in range(20):
            supply.configure_voltage_level("CH3", 2.0)
        own = [line for line in instrument.new_lines() if "VOLT" in line]
    other.join()
    assert own == [":SOUR3:VOLT 2.000000"] * 20
    assert [line for line in instrument.new_lines() if "VOLT" in line] == [":SOUR4:VOLT 1.000000"]


def test_locked_ends_with_an_exception(supply):
    with pytest.raises(Error), supply.locked():
        supply.configure_voltage_level("CH3", 99.0)
    other = threading.Thread(target=supply.disable)
    other.start()
    other.join()


def test_the_loop_of_asyncio_goes_on_during_a_call(supply):
    async def count_while(call):
        turns, task = 0, asyncio.create_task(asyncio.to_thread(call))
        while not task.done():
            turns += 1
            await asyncio.sleep(0.001)
        return turns

    def wait_for_no_answer():
        supply.io_timeout = 100
        with pytest.raises(Error):
            supply.read_response()

    assert asyncio.run(count_while(wait_for_no_answer)) > 1


def test_everything_explains_itself():
    for name in kvx2800t.__all__:
        what = getattr(kvx2800t, name)
        if isinstance(what, type):
            assert what.__doc__, name


def test_settings_in_units_name_them():
    for group in (kvx2800t.Channel, kvx2800t.Protection, kvx2800t.ListTemplate, kvx2800t.DelayGenerator):
        for name, setting in vars(group).items():
            if getattr(setting, "_kind", None) is float:
                assert re.search("in (volts|amperes|seconds)", setting.__doc__), f"{group.__name__}.{name}"
