"""A session with the virtual instrument through PyVISA, as a user's script would hold one.

Takes the resource name of an instrument that nothing has been set on yet and that has 10 ohms at channel 1, and the
VISA library to use, PyVISA-py without one. Ends with an exception where the instrument does not answer as it should.
"""

import sys

import pyvisa

TIMEOUT_MS = 60_000
LINE_FEED = "\n"


def expect(expected, actual):
    if expected != actual:
        raise AssertionError(f"expected {expected!r}, not {actual!r}")


def expect_no_error(instrument):
    expect('0,"No error"', instrument.query(":SYST:ERR?"))


def identify(instrument):
    fields = instrument.query("*IDN?").split(",")
    expect(["Tessaro Instruments", "KVX2833T", "VIRT0000001", "V1.00"], fields)


def set_and_measure(instrument):
    instrument.write(":SOUR1:VOLT 5.000000")
    instrument.write(":SOUR1:CURR 1.000000")
    instrument.write(":OUTP:STAT CH1,ON")
    expect("1", instrument.query("*OPC?"))
    expect("5.000000;1.000000", instrument.query(":SOUR1:VOLT?;CURR?"))
    expect([5.0, 0.5, 2.5], instrument.query_ascii_values(":MEAS:ALL? CH1"))
    expect(2, int(instrument.query(":STATus:QUEStionable:INSTrument:ISUMmary1:CONDition?")))
    expect_no_error(instrument)


def read_errors(instrument):
    instrument.write("*CLS")
    instrument.write(":SOUR1:VOLT 50")
    instrument.write(":NO:SUCH:COMMAND")
    expect('-222,"Data out of range"', instrument.query(":SYST:ERR?"))
    expect('-113,"Undefined header"', instrument.query(":SYST:ERR?"))
    expect_no_error(instrument)
    expect(16 + 32, int(instrument.query("*ESR?")))


def run_a_list(instrument):
    instrument.write(":INST:SELE CH1")
    instrument.write(":LIST:GROUP:PARA 1,7.000000,1.000000,3600.000000")
    instrument.write(":LIST:STAT ON")
    state, remaining, group, cycles = instrument.query(":LIST:STATUS?").split(",")
    expect(("RUNNING", "1", "1"), (state, group, cycles))
    expect(True, 0.0 < float(remaining) <= 3600.0)
    expect(7.0, float(instrument.query(":MEAS:VOLT? CH1")))
    instrument.write(":LIST:STAT OFF")
    expect("STOPPED,0.000000,0,0", instrument.query(":LIST:STATUS?"))
    expect_no_error(instrument)


def make_a_long_list(instrument):
    instrument.write(":LIST:TEMP:SEL UP;PERI 0.512;INTE 0.001;MAXV 10;CONSTruct 1")
    expect("512", instrument.query(":LIST:GROUP:NUM?"))
    expect([10.0, 0.1, 0.001], instrument.query_ascii_values(":LIST:GROUP:PARA? 512"))
    expect_no_error(instrument)


def answer_in_order(instrument):
    for _ in range(50):
        instrument.write("*OPC?;*TST?")
    for _ in range(50):
        expect("1;0", instrument.read())


def main(resource, library="@py"):
    manager = pyvisa.ResourceManager(library)
    instrument = manager.open_resource(
        resource, read_termination=LINE_FEED, write_termination=LINE_FEED, timeout=TIMEOUT_MS
    )
    identify(instrument)
    set_and_measure(instrument)
    read_errors(instrument)
    run_a_list(instrument)
    make_a_long_list(instrument)
    answer_in_order(instrument)
    instrument.close()
    manager.close()
    print("done")


main(*sys.argv[1:])
