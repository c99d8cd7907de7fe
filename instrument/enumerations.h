#pragma once

#include <IviVisaType.h>

/// The enumerated settings of the instrument. Their keywords on the wire are in keyword_tables.h.
namespace TSRO
{

/// How outputs 1 and 2 are combined; the combinations are channels 5 (series) and 6 (parallel).
enum class SourceMode : ViInt32
{
    Normal = 0,
    Series = 1,
    Parallel = 2,
};

enum class RegulationState : ViInt32
{
    ConstantVoltage = 0,
    ConstantCurrent = 1,
};

/// Range of the current measurement.
enum class CurrentRange : ViInt32
{
    Auto = 0,
    Low = 1,
    High = 2,
};

/// Rate of the current measurement, in samples per second.
enum class CurrentRate : ViInt32
{
    Rate62 = 0,
    Rate4000 = 1,
    Rate8000 = 2,
};

/// Digital output groups. No command uses them.
enum class OutputGroup : ViInt32
{
    D1 = 1,
    D2 = 2,
    D3 = 3,
    D4 = 4,
};

enum class ProtectionDelayMode : ViInt32
{
    Any = 0,
    Scheduled = 1,
};

/// What an output does when the instrument is switched on.
enum class PowerOnState : ViInt32
{
    Reset = 0,
    Last = 1,
    LastOff = 2,
};

enum class Pairing : ViInt32
{
    Off = 0,
    Series = 1,
    Parallel = 2,
};

enum class OutputOffMode : ViInt32
{
    BleOn = 0,
    BleOff = 1,
};

enum class ListRunState : ViInt32
{
    Stopped = 0,
    Ready = 1,
    Running = 2,
    Paused = 3,
};

enum class ListEndState : ViInt32
{
    Off = 0,
    Last = 1,
};

enum class ListWaveform : ViInt32
{
    Sine = 0,
    Pulse = 1,
    Ramp = 2,
    Up = 3,
    Down = 4,
    UpDown = 5,
    Rise = 6,
    Fall = 7,
};

/// The quantity that a list template shapes.
enum class ListTemplateObject : ViInt32
{
    Voltage = 0,
    Current = 1,
};

enum class DelayRunState : ViInt32
{
    Stopped = 0,
    Running = 1,
};

enum class DelayEndState : ViInt32
{
    Off = 0,
    On = 1,
    Last = 2,
};

enum class DelayGenerateMode : ViInt32
{
    Fixed = 0,
    Increasing = 1,
    Decreasing = 2,
};

enum class DelayPattern : ViInt32
{
    OffOn = 0,
    OnOff = 1,
};

} // namespace TSRO
