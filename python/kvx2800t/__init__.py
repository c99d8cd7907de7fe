"""The KVX2800T driver for Python 3.9 and later, through ctypes.

    from kvx2800t import Supply

    with Supply("TCPIP0::192.168.1.20::5025::SOCKET", query_instrument_status=True) as supply:
        rail = supply.channels["CH1"]
        rail.voltage_level = 5.0
        rail.output_enabled = True
        print(rail.measure().watts)

A channel has its settings as attributes, and in groups: `protection`, `state`, `list`, `list_template`, `delay`,
`delay_generator`. Supplies take the functions of KVX2800T.h as methods, too.

A call that fails raises the exception of its status, such as ValueOutOfRangeError, or Error where the status is not the
driver's own; each is an Error with the status code, the recorded text and the function. One that ends with a warning
warns with StatusWarning. Each call is a line of the logger "kvx2800t" at the level DEBUG. What a function does, and
which channels, values and units it takes, is said in KVX2800T.h and KVX2800TInstrument.h, after whose functions
everything is named. With safe_errors off, a C++ exception of the driver, as said there, ends a Python program.

The library is the one that `library` or the environment variable KVX2800T_LIBRARY names, or else that of this package,
where it brings one, or the one that the system finds by its usual name. DriverNotInstalled says where it was looked
for.

A supply may be used by several threads: the driver lets one call in at a time, and Python's other threads run
meanwhile. Supply.locked keeps several calls together. With asyncio, calls are made by asyncio.to_thread.
"""

from . import _interface
from ._channels import (
    Channel,
    Channels,
    ChannelState,
    DelayGenerator,
    DelayProgram,
    ListProgram,
    ListTemplate,
    Protection,
    Selection,
)
from ._errors import DriverNotInstalled, Error, StatusWarning
from ._interface import *
from ._library import Library
from ._options import option_string
from ._supply import Supply
from ._values import (
    INFINITE,
    DelayGroup,
    DelayStatus,
    EventStatus,
    FlowControl,
    InstrumentError,
    ListGroup,
    ListStatus,
    ListTemplateObject,
    Parity,
    ProtectionState,
    Questionable,
    Reading,
    Revisions,
    SelfTestResult,
    StopBits,
    Value,
)

__all__ = [
    "Channel",
    "Channels",
    "ChannelState",
    "DelayGenerator",
    "DelayGroup",
    "DelayProgram",
    "DelayStatus",
    "DriverNotInstalled",
    "Error",
    "EventStatus",
    "FlowControl",
    "INFINITE",
    "InstrumentError",
    "Library",
    "ListGroup",
    "ListProgram",
    "ListStatus",
    "ListTemplate",
    "ListTemplateObject",
    "option_string",
    "Parity",
    "Protection",
    "ProtectionState",
    "Questionable",
    "Reading",
    "Revisions",
    "Selection",
    "SelfTestResult",
    "StatusWarning",
    "StopBits",
    "Supply",
    "Value",
]
__all__ += _interface.__all__

# Tracebacks, help and pickles name what programs import, not the module that it is in.
for _name in __all__:
    if isinstance(globals()[_name], type):
        globals()[_name].__module__ = __name__
