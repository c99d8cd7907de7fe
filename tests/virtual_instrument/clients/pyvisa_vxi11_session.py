"""A session by VXI-11 through PyVISA: messages, status byte, clear, trigger, locks and time-outs.

Takes the resource name of an instrument that has 10 ohms at channel 1, and the VISA library to use, PyVISA-py without
one. Ends with an exception where the instrument does not answer as it should.
"""

import sys

import pyvisa

TIMEOUT_MS = 60_000
MESSAGE_AVAILABLE = 16


def expect(expected, actual):
    if expected != actual:
        raise AssertionError(f"expected {expected!r}, not {actual!r}")


def set_and_measure(instrument):
    instrument.write(":SOUR1:VOLT 5")
    instrument.write(":SOUR1:CURR 1")
    instrument.write(":OUTP:STAT CH1,ON")
    expect("5.000000;1.000000", instrument.query(":SOUR1:VOLT?;CURR?"))
    expect([5.0, 0.5, 2.5], instrument.query_ascii_values(":MEAS:ALL? CH1"))


def poll(instrument):
    expect(0, instrument.read_stb() & MESSAGE_AVAILABLE)
    instrument.write("*IDN?")
    expect(MESSAGE_AVAILABLE, instrument.read_stb() & MESSAGE_AVAILABLE)
    instrument.clear()
    expect(0, instrument.read_stb() & MESSAGE_AVAILABLE)


def run_out_of_time(instrument):
    instrument.write("*CLS")
    instrument.timeout = 50
    try:
        instrument.read()
        raise AssertionError("nothing was asked")
    except pyvisa.errors.VisaIOError as error:
        expect(pyvisa.constants.StatusCode.error_timeout, error.error_code)
    instrument.timeout = TIMEOUT_MS
    expect('-420,"Query UNTERMINATED"', instrument.query(":SYST:ERR?"))


def read_in_pieces(instrument):
    instrument.write("*IDN?")
    expect(b"Tess", instrument.read_bytes(4))
    expect("aro Instruments,KVX2833T,VIRT0000001,V1.00", instrument.read())


def lock(instrument):
    instrument.lock_excl()
    expect("0", instrument.query("*TST?"))
    instrument.unlock()


def main(resource, library="@py"):
    manager = pyvisa.ResourceManager(library)
    instrument = manager.open_resource(
        resource, read_termination="\n", write_termination="\n", timeout=TIMEOUT_MS
    )
    set_and_measure(instrument)
    poll(instrument)
    run_out_of_time(instrument)
    read_in_pieces(instrument)
    lock(instrument)
    instrument.assert_trigger()
    instrument.close()
    manager.close()
    print("done")


main(*sys.argv[1:])
