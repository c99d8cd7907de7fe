#pragma once

#include "instrument/keyword_table.h"

/// The enumerated settings of the instrument, a row for each value: its name here, its number, the keyword that is sent
/// and understood, and possibly a second one that is understood in replies.
namespace TSRO
{

/// How outputs 1 and 2 are combined; the combinations are channels 5 (series) and 6 (parallel).
#define KVX_SOURCE_MODE(ROW)                                                                                           \
    ROW(Normal, 0, "NORMAL")                                                                                           \
    ROW(Series, 1, "SER")                                                                                              \
    ROW(Parallel, 2, "PARA")
KVX_ENUMERATION(SourceMode, KVX_SOURCE_MODE)

#define KVX_REGULATION_STATE(ROW)                                                                                      \
    ROW(ConstantVoltage, 0, "CV")                                                                                      \
    ROW(ConstantCurrent, 1, "CC")
KVX_ENUMERATION(RegulationState, KVX_REGULATION_STATE)

/// Range of the current measurement.
#define KVX_CURRENT_RANGE(ROW)                                                                                         \
    ROW(Auto, 0, "AUTO")                                                                                               \
    ROW(Low, 1, "LOW")                                                                                                 \
    ROW(High, 2, "HIGH")
KVX_ENUMERATION(CurrentRange, KVX_CURRENT_RANGE)

/// Rate of the current measurement, in samples per second.
#define KVX_CURRENT_RATE(ROW)                                                                                          \
    ROW(Rate62, 0, "62")                                                                                               \
    ROW(Rate4000, 1, "4000", "4K")                                                                                     \
    ROW(Rate8000, 2, "8000", "8K")
KVX_ENUMERATION(CurrentRate, KVX_CURRENT_RATE)

/// Digital output groups. No command uses them.
#define KVX_OUTPUT_GROUP(ROW)                                                                                          \
    ROW(D1, 1, "D1")                                                                                                   \
    ROW(D2, 2, "D2")                                                                                                   \
    ROW(D3, 3, "D3")                                                                                                   \
    ROW(D4, 4, "D4")
KVX_ENUMERATION(OutputGroup, KVX_OUTPUT_GROUP)

#define KVX_PROTECTION_DELAY_MODE(ROW)                                                                                 \
    ROW(Any, 0, "ANY")                                                                                                 \
    ROW(Scheduled, 1, "SCH")
KVX_ENUMERATION(ProtectionDelayMode, KVX_PROTECTION_DELAY_MODE)

/// What an output does when the instrument is switched on.
#define KVX_POWER_ON_STATE(ROW)                                                                                        \
    ROW(Reset, 0, "RST")                                                                                               \
    ROW(Last, 1, "LAST")                                                                                               \
    ROW(LastOff, 2, "LOFF")
KVX_ENUMERATION(PowerOnState, KVX_POWER_ON_STATE)

#define KVX_PAIRING(ROW)                                                                                               \
    ROW(Off, 0, "OFF")                                                                                                 \
    ROW(Series, 1, "SER")                                                                                              \
    ROW(Parallel, 2, "PAR")
KVX_ENUMERATION(Pairing, KVX_PAIRING)

#define KVX_OUTPUT_OFF_MODE(ROW)                                                                                       \
    ROW(BleOn, 0, "BLEON")                                                                                             \
    ROW(BleOff, 1, "BLEOFF")
KVX_ENUMERATION(OutputOffMode, KVX_OUTPUT_OFF_MODE)

#define KVX_LIST_RUN_STATE(ROW)                                                                                        \
    ROW(Stopped, 0, "STOPPED")                                                                                         \
    ROW(Ready, 1, "READY")                                                                                             \
    ROW(Running, 2, "RUNNING")                                                                                         \
    ROW(Paused, 3, "PAUSED")
KVX_ENUMERATION(ListRunState, KVX_LIST_RUN_STATE)

#define KVX_LIST_END_STATE(ROW)                                                                                        \
    ROW(Off, 0, "OFF")                                                                                                 \
    ROW(Last, 1, "LAST")
KVX_ENUMERATION(ListEndState, KVX_LIST_END_STATE)

#define KVX_LIST_WAVEFORM(ROW)                                                                                         \
    ROW(Sine, 0, "SINE")                                                                                               \
    ROW(Pulse, 1, "PULSE")                                                                                             \
    ROW(Ramp, 2, "RAMP")                                                                                               \
    ROW(Up, 3, "UP")                                                                                                   \
    ROW(Down, 4, "DN")                                                                                                 \
    ROW(UpDown, 5, "UPDN")                                                                                             \
    ROW(Rise, 6, "RISE")                                                                                               \
    ROW(Fall, 7, "FALL")
KVX_ENUMERATION(ListWaveform, KVX_LIST_WAVEFORM)

/// The quantity that a list template shapes.
#define KVX_LIST_TEMPLATE_OBJECT(ROW)                                                                                  \
    ROW(Voltage, 0, "V")                                                                                               \
    ROW(Current, 1, "C")
KVX_ENUMERATION(ListTemplateObject, KVX_LIST_TEMPLATE_OBJECT)

#define KVX_DELAY_RUN_STATE(ROW)                                                                                       \
    ROW(Stopped, 0, "STOPPED")                                                                                         \
    ROW(Running, 1, "RUNNING")
KVX_ENUMERATION(DelayRunState, KVX_DELAY_RUN_STATE)

#define KVX_DELAY_END_STATE(ROW)                                                                                       \
    ROW(Off, 0, "OFF")                                                                                                 \
    ROW(On, 1, "ON")                                                                                                   \
    ROW(Last, 2, "LAST")
KVX_ENUMERATION(DelayEndState, KVX_DELAY_END_STATE)

#define KVX_DELAY_GENERATE_MODE(ROW)                                                                                   \
    ROW(Fixed, 0, "FIX")                                                                                               \
    ROW(Increasing, 1, "INC")                                                                                          \
    ROW(Decreasing, 2, "DEC")
KVX_ENUMERATION(DelayGenerateMode, KVX_DELAY_GENERATE_MODE)

#define KVX_DELAY_PATTERN(ROW)                                                                                         \
    ROW(OffOn, 0, "01P")                                                                                               \
    ROW(OnOff, 1, "10P")
KVX_ENUMERATION(DelayPattern, KVX_DELAY_PATTERN)

/// The names that commands use for the channels: 1 to 4 the outputs, 5 their series, 6 their parallel combination.
inline constexpr KeywordEntry kChannelNameEntries[] = {
    {1, "CH1"}, {2, "CH2"}, {3, "CH3"}, {4, "CH4"}, {5, "SER", "CH5"}, {6, "PAR", "CH6"},
};
inline constexpr KeywordTable kChannelNames{kChannelNameEntries};

} // namespace TSRO
