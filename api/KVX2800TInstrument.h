/**
 * @file KVX2800TInstrument.h
 * @brief Instrument-specific functions of the KVX2800T driver. KVX2800T.h includes it.
 *
 * What the instrument has beyond the IviDCPwr class: source mode, delays and modes of the protections, remote sense,
 * tracking, power-on states, meters, list mode, delay mode, status registers, and messages of the program's own.
 *
 * @code
 * const ViReal64 volts[] = {1.0, 2.0, 3.0};
 * const ViReal64 amperes[] = {0.5, 0.5, 0.5};
 * const ViReal64 seconds[] = {0.2, 0.2, 0.2};
 * KVX2800T_LoadList(vi, "OutputChannel1", 3, volts, amperes, seconds);
 * KVX2800T_RunList(vi, "OutputChannel1");
 * @endcode
 *
 * @par Channels
 * Functions that configure take one or several channels, in the order of channelName, and see to the source mode that
 * each needs, as those of KVX2800T.h. Functions that query take exactly one and leave the source mode alone.
 *
 * @par Status
 * Every function returns a status; no exception leaves it, and the session is never left locked. A reply that cannot be
 * read is IVI_ERROR_UNEXPECTED_RESPONSE, with the reply in the recorded text; lack of memory IVI_ERROR_OUT_OF_MEMORY.
 * Arguments are checked before anything is sent: numbers must be finite, enumerations one of their values
 * (KVX2800T_ERROR_VALUE_OUT_OF_RANGE otherwise). Only voltage and current levels have limits in the driver, the
 * instrument judges the rest: KVX2800T_error_query tells what it has refused, and with status checking on a function
 * that configures returns IVI_ERROR_INSTRUMENT_STATUS. A query that the instrument refuses has no reply: it is
 * KVX2800T_ERROR_IO once the time-out is over (KVX2800T_ERROR_IO_TIMEOUT with DetailedErrors).
 *
 * Common status codes: IVI_ERROR_NULL_POINTER, KVX2800T_ERROR_VALUE_OUT_OF_RANGE, 0xBFFA0044 and 0xBFFA0063 to
 * 0xBFFA0067 for channelName, KVX2800T_ERROR_IO, IVI_ERROR_UNEXPECTED_RESPONSE, IVI_ERROR_INSTRUMENT_STATUS. Outputs
 * change only when a function returns 0, unless it says otherwise.
 *
 * @par Threads
 * As for KVX2800T.h. A function of list or delay mode selects its channel and acts on it in one call, so that threads
 * do not disturb each other.
 */
#ifndef KVX2800T_INSTRUMENT_H
#define KVX2800T_INSTRUMENT_H

#include <IviVisaType.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @name Values of the source mode
 * @{
 */
/** Outputs 1 to 4 by themselves. */
#define KVX2800T_VAL_SOURCE_MODE_NORMAL 0
/** Outputs 1 and 2 in series: OutputChannel5. */
#define KVX2800T_VAL_SOURCE_MODE_SERIES 1
/** Outputs 1 and 2 in parallel: OutputChannel6. */
#define KVX2800T_VAL_SOURCE_MODE_PARALLEL 2
/** @} */

/**
 * @name Values of the regulation state
 * @{
 */
/** The output holds its voltage. */
#define KVX2800T_VAL_REGULATION_CONSTANT_VOLTAGE 0
/** The output holds its current. */
#define KVX2800T_VAL_REGULATION_CONSTANT_CURRENT 1
/** @} */

/**
 * @name Further values of the measurement type
 * @{
 */
/** Power, in watts; for KVX2800T_MeasureOutput only. */
#define KVX2800T_VAL_MEASURE_POWER 2
/** @} */

/**
 * @name Values of the range of the current measurement
 * @{
 */
/** The instrument chooses. */
#define KVX2800T_VAL_CURRENT_RANGE_AUTO 0
/** The low range. */
#define KVX2800T_VAL_CURRENT_RANGE_LOW 1
/** The high range. */
#define KVX2800T_VAL_CURRENT_RANGE_HIGH 2
/** @} */

/**
 * @name Values of the rate of the current measurement
 * @{
 */
/** 62 samples per second. */
#define KVX2800T_VAL_CURRENT_RATE_62 0
/** 4000 samples per second. */
#define KVX2800T_VAL_CURRENT_RATE_4000 1
/** 8000 samples per second. */
#define KVX2800T_VAL_CURRENT_RATE_8000 2
/** @} */

/**
 * @name Values of the delay mode of the over-current protection
 * @{
 */
/** The delay applies to every over-current. */
#define KVX2800T_VAL_PROTECTION_DELAY_ANY 0
/** The delay applies as the instrument has scheduled it. */
#define KVX2800T_VAL_PROTECTION_DELAY_SCHEDULED 1
/** @} */

/**
 * @name Values of the power-on state
 * @{
 */
/** The channel comes up with the settings of a reset. */
#define KVX2800T_VAL_POWER_ON_RESET 0
/** The channel comes up as it was. */
#define KVX2800T_VAL_POWER_ON_LAST 1
/** The channel comes up as it was, with its output off. */
#define KVX2800T_VAL_POWER_ON_LAST_OFF 2
/** @} */

/**
 * @name Values of the pairing
 * @{
 */
/** No pairing. */
#define KVX2800T_VAL_PAIRING_OFF 0
/** In series. */
#define KVX2800T_VAL_PAIRING_SERIES 1
/** In parallel. */
#define KVX2800T_VAL_PAIRING_PARALLEL 2
/** @} */

/**
 * @name Values of the output-off mode
 * @{
 */
/** The bleeder discharges the output while it is off. */
#define KVX2800T_VAL_OUTPUT_OFF_BLEEDER_ON 0
/** The bleeder is off with the output. */
#define KVX2800T_VAL_OUTPUT_OFF_BLEEDER_OFF 1
/** @} */

/**
 * @name Values of the state of a list
 * @{
 */
/** The list does not run. */
#define KVX2800T_VAL_LIST_STOPPED 0
/** The list is on and waits for its output or a trigger. */
#define KVX2800T_VAL_LIST_READY 1
/** The list runs. */
#define KVX2800T_VAL_LIST_RUNNING 2
/** The output was switched off on the way; the list goes on when it is on again. */
#define KVX2800T_VAL_LIST_PAUSED 3
/** @} */

/**
 * @name Values of the end state of a list
 * @{
 */
/** The output is switched off. */
#define KVX2800T_VAL_LIST_END_OFF 0
/** The output keeps the last levels. */
#define KVX2800T_VAL_LIST_END_LAST 1
/** @} */

/**
 * @name Values of the waveform of a list template
 * @{
 */
/** A sine. */
#define KVX2800T_VAL_LIST_WAVEFORM_SINE 0
/** Pulses. */
#define KVX2800T_VAL_LIST_WAVEFORM_PULSE 1
/** A ramp up and down. */
#define KVX2800T_VAL_LIST_WAVEFORM_RAMP 2
/** Steps up. */
#define KVX2800T_VAL_LIST_WAVEFORM_UP 3
/** Steps down. */
#define KVX2800T_VAL_LIST_WAVEFORM_DOWN 4
/** Steps up and down. */
#define KVX2800T_VAL_LIST_WAVEFORM_UP_DOWN 5
/** An exponential rise. */
#define KVX2800T_VAL_LIST_WAVEFORM_RISE 6
/** An exponential fall. */
#define KVX2800T_VAL_LIST_WAVEFORM_FALL 7
/** @} */

/**
 * @name Values of the object of a list template
 * @{
 */
/** The waveform is one of the voltage; the current is constant. */
#define KVX2800T_VAL_LIST_OBJECT_VOLTAGE 0
/** The waveform is one of the current; the voltage is constant. */
#define KVX2800T_VAL_LIST_OBJECT_CURRENT 1
/** @} */

/**
 * @name Values of the state of a delay program
 * @{
 */
/** The program does not run. */
#define KVX2800T_VAL_DELAY_STOPPED 0
/** The program runs. */
#define KVX2800T_VAL_DELAY_RUNNING 1
/** @} */

/**
 * @name Values of the end state of a delay program
 * @{
 */
/** The output is switched off. */
#define KVX2800T_VAL_DELAY_END_OFF 0
/** The output is switched on. */
#define KVX2800T_VAL_DELAY_END_ON 1
/** The output stays as the last group left it. */
#define KVX2800T_VAL_DELAY_END_LAST 2
/** @} */

/**
 * @name Values of the times that a delay program is generated with
 * @{
 */
/** All groups of one state have the same time. */
#define KVX2800T_VAL_DELAY_GENERATE_FIXED 0
/** Each group is longer than the one before. */
#define KVX2800T_VAL_DELAY_GENERATE_INCREASING 1
/** Each group is shorter than the one before. */
#define KVX2800T_VAL_DELAY_GENERATE_DECREASING 2
/** @} */

/**
 * @name Values of the pattern that a delay program is generated with
 * @{
 */
/** Off first, then on. */
#define KVX2800T_VAL_DELAY_PATTERN_OFF_ON 0
/** On first, then off. */
#define KVX2800T_VAL_DELAY_PATTERN_ON_OFF 1
/** @} */

/**
 * @name Status of the instrument
 * @{
 */

/**
 * @brief Clears the event registers and the error queue of the instrument; sends "*CLS".
 *
 * @param vi  the session.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ClearStatus(ViSession vi);

/**
 * @brief Reads the standard event status register of IEEE 488.2, and clears it; asks "*ESR?".
 *
 * @param vi           the session.
 * @param eventStatus  receives the register: 4, 8, 16 and 32 are query, device-dependent, execution and command errors.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryEventStatus(ViSession vi, ViInt32* eventStatus);

/**
 * @brief Reads the questionable condition register of a channel; asks
 *        ":STATus:QUEStionable:INSTrument:ISUMmary1:CONDition?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param condition    receives the register: 1 for constant current, 2 for constant voltage, 4 and 8 for an over-
 *                     voltage and an over-current that has tripped.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryQuestionableCondition(ViSession vi, ViConstString channelName, ViInt32* condition);

/**
 * @brief Reads the questionable event register of a channel, and clears it; asks
 *        ":STATus:QUEStionable:INSTrument:ISUMmary1:EVENt?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param event        receives what the condition has been since the register was read last, in the bits of the
 *                     condition.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryQuestionableEvent(ViSession vi, ViConstString channelName, ViInt32* event);

/**
 * @brief Tells whether a protection has tripped; asks ":STATus:QUEStionable:INSTrument:ISUMmary1:CONDition?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param overVoltage  receives VI_TRUE when the over-voltage protection has switched the output off.
 * @param overCurrent  receives VI_TRUE when the over-current protection has.
 *
 * A trip stays until the output is switched on again or the instrument is reset or powered up: first remove the cause,
 * then call KVX2800T_ConfigureOutputEnabled. Whatever else switches the output on ends a trip as well:
 * KVX2800T_RunList, and a group of a delay program that is on. No function does so behind the program's back.
 *
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryProtectionState(ViSession vi, ViConstString channelName, ViBoolean* overVoltage,
                                                ViBoolean* overCurrent);

/**
 * @brief Reads what an output holds; asks ":OUTP:CVCC? CH1".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param state        receives KVX2800T_VAL_REGULATION_...
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryRegulationState(ViSession vi, ViConstString channelName, ViInt32* state);

/** @} */

/**
 * @name Source mode, bleeder and selected channel
 *
 * They belong to the instrument, not to a channel.
 * @{
 */

/**
 * @brief Combines outputs 1 and 2, or lets them work by themselves; asks ":SOUR:Mode?" and, when another mode is asked
 *        for, sends ":SOUR:Mode SER" and waits a second.
 *
 * @param vi    the session.
 * @param mode  KVX2800T_VAL_SOURCE_MODE_...
 *
 * Functions that configure OutputChannel1, 2, 5 or 6 change the mode by themselves. A change switches these outputs
 * off.
 *
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureSourceMode(ViSession vi, ViInt32 mode);

/**
 * @brief Reads the source mode; asks ":SOUR:Mode?".
 *
 * @param vi    the session.
 * @param mode  receives KVX2800T_VAL_SOURCE_MODE_...
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QuerySourceMode(ViSession vi, ViInt32* mode);

/**
 * @brief Sets whether the bleeder discharges the outputs; sends ":SOUR:BLE ON".
 *
 * @param vi       the session.
 * @param enabled  VI_FALSE: off; anything else: on.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureBleeder(ViSession vi, ViBoolean enabled);

/**
 * @brief Reads whether the bleeder discharges the outputs; asks ":SOUR:BLE?".
 *
 * @param vi       the session.
 * @param enabled  receives VI_TRUE or VI_FALSE.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryBleeder(ViSession vi, ViBoolean* enabled);

/**
 * @brief Selects the channel that the list and delay commands of the instrument act on; sends ":INST:SELE CH1". The
 *        driver's functions select theirs by themselves.
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_SelectChannel(ViSession vi, ViConstString channelName);

/**
 * @brief Reads the selected channel; asks ":INST:SELE?".
 *
 * @param vi       the session.
 * @param channel  receives 1 to 6, the number in the physical name of the channel.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QuerySelectedChannel(ViSession vi, ViInt32* channel);

/** @} */

/**
 * @name Protection
 *
 * The over-voltage and the over-current protection have commands of the instrument's source (KVX2800T_ConfigureOVP and
 * KVX2800T_ConfigureCurrentLimit send those) and of its outputs.
 * @{
 */

/**
 * @brief Sets the level of the over-current protection by itself; sends ":SOUR1:CURR:PROT 1.000000".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param level        amperes.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureCurrentProtectionLevel(ViSession vi, ViConstString channelName, ViReal64 level);

/**
 * @brief Reads the level of the over-current protection by itself; asks ":SOUR1:CURR:PROT?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param level        receives amperes.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryCurrentProtectionLevel(ViSession vi, ViConstString channelName, ViReal64* level);

/**
 * @brief Sets how long an over-current lasts before the output trips; sends ":SOUR1:CURR:PROT:DEL 0.100000".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param delay        seconds.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureCurrentProtectionDelay(ViSession vi, ViConstString channelName, ViReal64 delay);

/**
 * @brief Reads how long an over-current lasts before the output trips; asks ":SOUR1:CURR:PROT:DEL?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param delay        receives seconds.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryCurrentProtectionDelay(ViSession vi, ViConstString channelName, ViReal64* delay);

/**
 * @brief Sets when the delay of the over-current protection applies; sends ":SOUR1:CURR:PROT:DEL:MODE SCH".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param mode         KVX2800T_VAL_PROTECTION_DELAY_...
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureCurrentProtectionDelayMode(ViSession vi, ViConstString channelName, ViInt32 mode);

/**
 * @brief Reads when the delay of the over-current protection applies; asks ":SOUR1:CURR:PROT:DEL:MODE?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param mode         receives KVX2800T_VAL_PROTECTION_DELAY_...
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryCurrentProtectionDelayMode(ViSession vi, ViConstString channelName, ViInt32* mode);

/**
 * @brief Sets the level of the over-voltage protection by the output's command; sends ":OUTP:OVP:VAL CH1,6.000000".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param level        volts.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureOVPValue(ViSession vi, ViConstString channelName, ViReal64 level);

/**
 * @brief Reads the level of the over-voltage protection by the output's command; asks ":OUTP:OVP:VAL? CH1".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param level        receives volts.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryOVPValue(ViSession vi, ViConstString channelName, ViReal64* level);

/**
 * @brief Switches the over-voltage protection by the output's command; sends ":OUTP:OVP:STAT CH1,ON".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param enabled      VI_FALSE: off; anything else: on.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureOVPEnabled(ViSession vi, ViConstString channelName, ViBoolean enabled);

/**
 * @brief Reads the over-voltage protection by the output's command; asks ":OUTP:OVP:STAT? CH1".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param enabled      receives VI_TRUE or VI_FALSE.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryOVPEnabled(ViSession vi, ViConstString channelName, ViBoolean* enabled);

/**
 * @brief Sets the level of the over-current protection by the output's command; sends ":OUTP:OCP:VAL CH1,1.000000".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param level        amperes.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureOCPValue(ViSession vi, ViConstString channelName, ViReal64 level);

/**
 * @brief Reads the level of the over-current protection by the output's command; asks ":OUTP:OCP:VAL? CH1".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param level        receives amperes.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryOCPValue(ViSession vi, ViConstString channelName, ViReal64* level);

/**
 * @brief Switches the over-current protection by the output's command; sends ":OUTP:OCP:STAT CH1,ON".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param enabled      VI_FALSE: off; anything else: on.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureOCPEnabled(ViSession vi, ViConstString channelName, ViBoolean enabled);

/**
 * @brief Reads the over-current protection by the output's command; asks ":OUTP:OCP:STAT? CH1".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param enabled      receives VI_TRUE or VI_FALSE.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryOCPEnabled(ViSession vi, ViConstString channelName, ViBoolean* enabled);

/**
 * @brief Sets the delay of the over-current protection by the output's command; sends ":OUTP:OCP:DEL CH1,0.100000".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param delay        seconds.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureOCPDelay(ViSession vi, ViConstString channelName, ViReal64 delay);

/**
 * @brief Reads the delay of the over-current protection by the output's command; asks ":OUTP:OCP:DEL? CH1".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param delay        receives seconds.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryOCPDelay(ViSession vi, ViConstString channelName, ViReal64* delay);

/**
 * @brief Sets when that delay applies, by the output's command; sends ":OUTP:OCP:DEL:MODE CH1,SCH".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param mode         KVX2800T_VAL_PROTECTION_DELAY_...
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureOCPDelayMode(ViSession vi, ViConstString channelName, ViInt32 mode);

/**
 * @brief Reads when that delay applies, by the output's command; asks ":OUTP:OCP:DEL:MODE? CH1".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param mode         receives KVX2800T_VAL_PROTECTION_DELAY_...
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryOCPDelayMode(ViSession vi, ViConstString channelName, ViInt32* mode);

/** @} */

/**
 * @name Outputs
 * @{
 */

/**
 * @brief Sets whether the voltage is sensed at the load; sends ":SOUR1:VOLT:SENS ON".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param enabled      VI_FALSE: off; anything else: on.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureRemoteSense(ViSession vi, ViConstString channelName, ViBoolean enabled);

/**
 * @brief Reads whether the voltage is sensed at the load; asks ":SOUR1:VOLT:SENS?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param enabled      receives VI_TRUE or VI_FALSE.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryRemoteSense(ViSession vi, ViConstString channelName, ViBoolean* enabled);

/**
 * @brief Sets whether the voltage is sensed at the load, by the output's command; sends ":OUTP:SENS:STAT CH1,ON".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param enabled      VI_FALSE: off; anything else: on.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureOutputSense(ViSession vi, ViConstString channelName, ViBoolean enabled);

/**
 * @brief Reads whether the voltage is sensed at the load, by the output's command; asks ":OUTP:SENS:STAT? CH1".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param enabled      receives VI_TRUE or VI_FALSE.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryOutputSense(ViSession vi, ViConstString channelName, ViBoolean* enabled);

/**
 * @brief Sets what a channel does when the instrument is switched on; sends ":OUTP:PONS:STAT CH1,LAST".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param state        KVX2800T_VAL_POWER_ON_...
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigurePowerOnState(ViSession vi, ViConstString channelName, ViInt32 state);

/**
 * @brief Reads what a channel does when the instrument is switched on; asks ":OUTP:PONS:STAT? CH1".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param state        receives KVX2800T_VAL_POWER_ON_...
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryPowerOnState(ViSession vi, ViConstString channelName, ViInt32* state);

/**
 * @brief Sets the pairing of a channel; sends ":OUTP:PAIR CH1,SER".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param pairing      KVX2800T_VAL_PAIRING_...
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigurePairing(ViSession vi, ViConstString channelName, ViInt32 pairing);

/**
 * @brief Reads the pairing of a channel; asks ":OUTP:PAIR? CH1".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param pairing      receives KVX2800T_VAL_PAIRING_...
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryPairing(ViSession vi, ViConstString channelName, ViInt32* pairing);

/**
 * @brief Sets whether a channel follows the one that it is tracked to; sends ":OUTP:TRAC:STAT CH1,ON".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param enabled      VI_FALSE: off; anything else: on.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureTracking(ViSession vi, ViConstString channelName, ViBoolean enabled);

/**
 * @brief Reads whether a channel follows the one that it is tracked to; asks ":OUTP:TRAC:STAT? CH1".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param enabled      receives VI_TRUE or VI_FALSE.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryTracking(ViSession vi, ViConstString channelName, ViBoolean* enabled);

/**
 * @brief Sets what the bleeder does while an output is off; sends ":OUTP:OFFM CH1,BLEOFF".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param mode         KVX2800T_VAL_OUTPUT_OFF_...
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureOutputOffMode(ViSession vi, ViConstString channelName, ViInt32 mode);

/**
 * @brief Reads what the bleeder does while an output is off; asks ":OUTP:OFFM? CH1".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param mode         receives KVX2800T_VAL_OUTPUT_OFF_...
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryOutputOffMode(ViSession vi, ViConstString channelName, ViInt32* mode);

/**
 * @brief Sets whether a list of the channel waits for a trigger; sends ":TRIG:IN:ENAB CH1,ON".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param enabled      VI_FALSE: off; anything else: on.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureTriggerInput(ViSession vi, ViConstString channelName, ViBoolean enabled);

/**
 * @brief Reads whether a list of the channel waits for a trigger; asks ":TRIG:IN:ENAB? CH1".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param enabled      receives VI_TRUE or VI_FALSE.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryTriggerInput(ViSession vi, ViConstString channelName, ViBoolean* enabled);

/** @} */

/**
 * @name Meters
 *
 * What the outputs give, as the instrument measures it; KVX2800T_Measure reads the levels that are set.
 * @{
 */

/**
 * @brief Measures one quantity of an output; asks ":MEAS:CURR? CH1", ":MEAS:VOLT? CH1" or ":MEAS:POWE? CH1".
 *
 * @param vi               the session.
 * @param channelName      the channel, one.
 * @param measurementType  KVX2800T_VAL_MEASURE_CURRENT, _VOLTAGE or _POWER.
 * @param measurement      receives amperes, volts or watts.
 * @return 0; KVX2800T_ERROR_VALUE_OUT_OF_RANGE for another measurementType; or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_MeasureOutput(ViSession vi, ViConstString channelName, ViInt32 measurementType,
                                         ViReal64* measurement);

/**
 * @brief Measures voltage, current and power of every channel that channelName selects, in its order; asks ":MEAS:ALL?
 *        CH1" for each.
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param size         elements in each of the three arrays; channels beyond are not measured.
 * @param volts        receives the voltages.
 * @param amperes      receives the currents.
 * @param watts        receives the powers.
 * @param count        receives how many channels have been measured, also after a failure.
 * @return 0; KVX2800T_WARN_ARRAY_TRUNCATED when channelName selects more channels than size; 0xBFFA0010 for a negative
 *         size; or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_MeasureAll(ViSession vi, ViConstString channelName, ViInt32 size, ViReal64 volts[],
                                      ViReal64 amperes[], ViReal64 watts[], ViInt32* count);

/**
 * @brief Sets the range of the current measurement; sends ":MEAS:CURR:RANG CH1,LOW".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param range        KVX2800T_VAL_CURRENT_RANGE_...
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureCurrentRange(ViSession vi, ViConstString channelName, ViInt32 range);

/**
 * @brief Reads the range of the current measurement; asks ":MEAS:CURR:RANG? CH1".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param range        receives KVX2800T_VAL_CURRENT_RANGE_...
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryCurrentRange(ViSession vi, ViConstString channelName, ViInt32* range);

/**
 * @brief Sets the rate of the current measurement; sends ":MEAS:CURR:RATE CH1,4000".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param rate         KVX2800T_VAL_CURRENT_RATE_...
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureCurrentRate(ViSession vi, ViConstString channelName, ViInt32 rate);

/**
 * @brief Reads the rate of the current measurement; asks ":MEAS:CURR:RATE? CH1".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param rate         receives KVX2800T_VAL_CURRENT_RATE_...
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryCurrentRate(ViSession vi, ViConstString channelName, ViInt32* rate);

/** @} */

/**
 * @name List mode
 *
 * A list is a sequence of groups, each a voltage and a current for a time; each channel has one. Every function selects
 * its channel first with ":INST:SELE CH1".
 * @{
 */

/**
 * @brief Replaces the list of a channel; sends ":LIST:GROUP:CLE" and ":LIST:GROUP:PARA 1,5.000000,1.000000,0.100000"
 *        for each group. Nothing is sent unless all values are in range.
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param count        groups, 0 to 512; 0 empties the list, and the arrays may be null.
 * @param volts        the voltages, within the limits of each channel.
 * @param amperes      the currents, within the limits of each channel.
 * @param seconds      the times.
 * @return 0; 0xBFFA0010 for another count; KVX2800T_ERROR_VALUE_OUT_OF_RANGE; or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_LoadList(ViSession vi, ViConstString channelName, ViInt32 count, const ViReal64 volts[],
                                    const ViReal64 amperes[], const ViReal64 seconds[]);

/**
 * @brief Switches the list and then the output on, and so starts a list or lets a paused one go on; sends
 *        ":LIST:STAT ON" and ":OUTP:STAT CH1,ON".
 *
 * With the trigger input enabled the list waits for a trigger, such as "*TRG" by KVX2800T_viWrite. Switching the output
 * on ends a trip; a list that a trip has stopped starts from its first group.
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_RunList(ViSession vi, ViConstString channelName);

/**
 * @brief Switches the output off, which pauses a list that runs; sends ":OUTP:STAT CH1,OFF".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_PauseList(ViSession vi, ViConstString channelName);

/**
 * @brief Switches the list; sends ":LIST:STAT ON".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param enabled      VI_FALSE stops the list, which applies its end state; anything else: it starts as soon as the
 *                     output is on.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureListEnabled(ViSession vi, ViConstString channelName, ViBoolean enabled);

/**
 * @brief Reads the list; asks ":LIST:STAT?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param enabled      receives VI_TRUE or VI_FALSE.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryListEnabled(ViSession vi, ViConstString channelName, ViBoolean* enabled);

/**
 * @brief Reads how far a list has come; asks ":LIST:STATUS?".
 *
 * @param vi                the session.
 * @param channelName       the channel, one.
 * @param state             receives KVX2800T_VAL_LIST_...
 * @param remainingSeconds  receives what is left of the group's time.
 * @param group             receives the group, from 1; 0 when the list is stopped.
 * @param remainingCycles   receives the cycles left, the present one included; 0 for a program without end and for one
 * that is stopped.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryListStatus(ViSession vi, ViConstString channelName, ViInt32* state,
                                           ViReal64* remainingSeconds, ViInt32* group, ViInt32* remainingCycles);

/**
 * @brief Sets how often the list runs; sends ":LIST:CYCLE 3".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param cycles       cycles; 0 for one without end.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureListCycles(ViSession vi, ViConstString channelName, ViInt32 cycles);

/**
 * @brief Reads how often the list runs; asks ":LIST:CYCLE?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param cycles       receives cycles.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryListCycles(ViSession vi, ViConstString channelName, ViInt32* cycles);

/**
 * @brief Sets what the output does once the last cycle has run; sends ":LIST:ENDS LAST".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param state        KVX2800T_VAL_LIST_END_...
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureListEndState(ViSession vi, ViConstString channelName, ViInt32 state);

/**
 * @brief Reads what the output does once the last cycle has run; asks ":LIST:ENDS?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param state        receives KVX2800T_VAL_LIST_END_...
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryListEndState(ViSession vi, ViConstString channelName, ViInt32* state);

/**
 * @brief Reads how many groups the list has; asks ":LIST:GROUP:NUM?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param count        receives groups.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryListGroupCount(ViSession vi, ViConstString channelName, ViInt32* count);

/**
 * @brief Inserts a group; sends ":LIST:GROUP:INS 2".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param group        the number that the new group gets, from 1.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_InsertListGroup(ViSession vi, ViConstString channelName, ViInt32 group);

/**
 * @brief Deletes a group; sends ":LIST:GROUP:DEL 2".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param group        its number, from 1.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_DeleteListGroup(ViSession vi, ViConstString channelName, ViInt32 group);

/**
 * @brief Deletes all groups; sends ":LIST:GROUP:CLE".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ClearListGroups(ViSession vi, ViConstString channelName);

/**
 * @brief Sets a group, or appends one; sends ":LIST:GROUP:PARA 1,5.000000,1.000000,0.100000".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param group        its number, from 1; one more than there are groups appends.
 * @param volts        the voltage, within the limits of each channel.
 * @param amperes      the current, within the limits of each channel.
 * @param seconds      the time.
 * @return 0; KVX2800T_ERROR_VALUE_OUT_OF_RANGE; or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureListGroup(ViSession vi, ViConstString channelName, ViInt32 group, ViReal64 volts,
                                              ViReal64 amperes, ViReal64 seconds);

/**
 * @brief Reads a group; asks ":LIST:GROUP:PARA? 1".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param group        its number, from 1.
 * @param volts        receives the voltage.
 * @param amperes      receives the current.
 * @param seconds      receives the time.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryListGroup(ViSession vi, ViConstString channelName, ViInt32 group, ViReal64* volts,
                                          ViReal64* amperes, ViReal64* seconds);

/** @} */

/**
 * @name Templates of lists
 *
 * A template gives the groups of a list their levels after a waveform; KVX2800T_ConstructList makes them.
 * @{
 */

/**
 * @brief Sets the waveform; sends ":LIST:TEMP:SEL SINE".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param waveform     KVX2800T_VAL_LIST_WAVEFORM_...
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureListTemplateWaveform(ViSession vi, ViConstString channelName, ViInt32 waveform);

/**
 * @brief Reads the waveform; asks ":LIST:TEMP:SEL?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param waveform     receives KVX2800T_VAL_LIST_WAVEFORM_...
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryListTemplateWaveform(ViSession vi, ViConstString channelName, ViInt32* waveform);

/**
 * @brief Sets the quantity that follows the waveform, and the level of the other one; sends ":LIST:TEMP:OBJ
 *        V,1.000000".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param object       KVX2800T_VAL_LIST_OBJECT_...
 * @param level        amperes when the object is the voltage, volts when it is the current; within the limits of each
 *                     channel.
 * @return 0; KVX2800T_ERROR_VALUE_OUT_OF_RANGE; or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureListTemplateObject(ViSession vi, ViConstString channelName, ViInt32 object,
                                                       ViReal64 level);

/**
 * @brief Reads the quantity that follows the waveform, and the level of the other one; asks ":LIST:TEMP:OBJ?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param object       receives KVX2800T_VAL_LIST_OBJECT_...
 * @param level        receives amperes or volts.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryListTemplateObject(ViSession vi, ViConstString channelName, ViInt32* object,
                                                   ViReal64* level);

/**
 * @brief Sets the highest level; sends ":LIST:TEMP:MAXV 5.000000".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param level        volts or amperes, whichever follows the waveform.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureListTemplateMaximum(ViSession vi, ViConstString channelName, ViReal64 level);

/**
 * @brief Reads the highest level; asks ":LIST:TEMP:MAXV?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param level        receives volts or amperes, whichever follows the waveform.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryListTemplateMaximum(ViSession vi, ViConstString channelName, ViReal64* level);

/**
 * @brief Sets the lowest level; sends ":LIST:TEMP:MINV 1.000000".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param level        volts or amperes, whichever follows the waveform.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureListTemplateMinimum(ViSession vi, ViConstString channelName, ViReal64 level);

/**
 * @brief Reads the lowest level; asks ":LIST:TEMP:MINV?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param level        receives volts or amperes, whichever follows the waveform.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryListTemplateMinimum(ViSession vi, ViConstString channelName, ViReal64* level);

/**
 * @brief Sets the period of the waveform; sends ":LIST:TEMP:PERI 2.000000".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param seconds      seconds.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureListTemplatePeriod(ViSession vi, ViConstString channelName, ViReal64 seconds);

/**
 * @brief Reads the period of the waveform; asks ":LIST:TEMP:PERI?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param seconds      receives seconds.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryListTemplatePeriod(ViSession vi, ViConstString channelName, ViReal64* seconds);

/**
 * @brief Sets the time of one group; sends ":LIST:TEMP:INTE 0.100000".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param seconds      seconds.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureListTemplateInterval(ViSession vi, ViConstString channelName, ViReal64 seconds);

/**
 * @brief Reads the time of one group; asks ":LIST:TEMP:INTE?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param seconds      receives seconds.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryListTemplateInterval(ViSession vi, ViConstString channelName, ViReal64* seconds);

/**
 * @brief Sets the cycles that the list gets; sends ":LIST:TEMP:CYCLE 4".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param cycles       cycles; 0 for one without end.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureListTemplateCycles(ViSession vi, ViConstString channelName, ViInt32 cycles);

/**
 * @brief Reads the cycles that the list gets; asks ":LIST:TEMP:CYCLE?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param cycles       receives cycles.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryListTemplateCycles(ViSession vi, ViConstString channelName, ViInt32* cycles);

/**
 * @brief Sets whether the waveform is upside down; sends ":LIST:TEMP:INVE ON".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param inverted     VI_FALSE: off; anything else: on.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureListTemplateInverted(ViSession vi, ViConstString channelName, ViBoolean inverted);

/**
 * @brief Reads whether the waveform is upside down; asks ":LIST:TEMP:INVE?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param inverted     receives VI_TRUE or VI_FALSE.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryListTemplateInverted(ViSession vi, ViConstString channelName, ViBoolean* inverted);

/**
 * @brief Sets the width of a pulse; sends ":LIST:TEMP:WIDT 0.500000".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param seconds      seconds.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureListTemplatePulseWidth(ViSession vi, ViConstString channelName, ViReal64 seconds);

/**
 * @brief Reads the width of a pulse; asks ":LIST:TEMP:WIDT?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param seconds      receives seconds.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryListTemplatePulseWidth(ViSession vi, ViConstString channelName, ViReal64* seconds);

/**
 * @brief Sets the number of pulses; sends ":LIST:TEMP:PULSECount 8".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param count        pulses.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureListTemplatePulseCount(ViSession vi, ViConstString channelName, ViInt32 count);

/**
 * @brief Reads the number of pulses; asks ":LIST:TEMP:PULSECount?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param count        receives pulses.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryListTemplatePulseCount(ViSession vi, ViConstString channelName, ViInt32* count);

/**
 * @brief Sets the rising part of a ramp; sends ":LIST:TEMP:SYMM 50".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param percent      percent of the period.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureListTemplateSymmetry(ViSession vi, ViConstString channelName, ViInt32 percent);

/**
 * @brief Reads the rising part of a ramp; asks ":LIST:TEMP:SYMM?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param percent      receives percent of the period.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryListTemplateSymmetry(ViSession vi, ViConstString channelName, ViInt32* percent);

/**
 * @brief Sets the point of the waveform that becomes the first group; sends ":LIST:TEMP:STAI 10".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param start        a point of the waveform.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureListTemplateStart(ViSession vi, ViConstString channelName, ViInt32 start);

/**
 * @brief Reads the point of the waveform that becomes the first group; asks ":LIST:TEMP:STAI?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param start        receives a point of the waveform.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryListTemplateStart(ViSession vi, ViConstString channelName, ViInt32* start);

/**
 * @brief Sets the exponent "EXPP" of the exponential waveforms, rise and fall; sends ":LIST:TEMP:EXPP 20".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param exponent     as the instrument's manual explains it.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureListTemplateExpp(ViSession vi, ViConstString channelName, ViInt32 exponent);

/**
 * @brief Reads the exponent "EXPP" of the exponential waveforms, rise and fall; asks ":LIST:TEMP:EXPP?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param exponent     receives the exponent.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryListTemplateExpp(ViSession vi, ViConstString channelName, ViInt32* exponent);

/**
 * @brief Sets the exponent "EXPR" of the exponential waveforms, rise and fall; sends ":LIST:TEMP:EXPR 3".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param exponent     as the instrument's manual explains it.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureListTemplateExpr(ViSession vi, ViConstString channelName, ViInt32 exponent);

/**
 * @brief Reads the exponent "EXPR" of the exponential waveforms, rise and fall; asks ":LIST:TEMP:EXPR?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param exponent     receives the exponent.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryListTemplateExpr(ViSession vi, ViConstString channelName, ViInt32* exponent);

/**
 * @brief Reads how many groups the template gives; asks ":LIST:TEMP:POINTs?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param points       receives groups.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryListTemplatePoints(ViSession vi, ViConstString channelName, ViInt32* points);

/**
 * @brief Makes the template the list; sends ":LIST:TEMP:CONSTruct 1".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param group        the group that the template begins at, from 1.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConstructList(ViSession vi, ViConstString channelName, ViInt32 group);

/** @} */

/**
 * @name Delay mode
 *
 * A delay program is a sequence of groups, each the output on or off for a time; each channel has one. Every function
 * selects its channel first with ":INST:SELE CH1".
 * @{
 */

/**
 * @brief Replaces the delay program of a channel; sends ":DELAY:GROUP:CLEar" and ":DELAY:GROUP:PARAmeter 1,ON,0.500000"
 *        for each group. Nothing is sent unless all times are finite.
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param count        groups, 0 to 512; 0 empties the program, and the arrays may be null.
 * @param on           the state of the output in each group: VI_FALSE is off, anything else on.
 * @param seconds      the times.
 * @return 0; 0xBFFA0010 for another count; KVX2800T_ERROR_VALUE_OUT_OF_RANGE; or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_LoadDelay(ViSession vi, ViConstString channelName, ViInt32 count, const ViBoolean on[],
                                     const ViReal64 seconds[]);

/**
 * @brief Switches the delay program; sends ":DELAY:STATe ON".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param enabled      VI_FALSE stops the program, which applies its end state; anything else starts it at once.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureDelayEnabled(ViSession vi, ViConstString channelName, ViBoolean enabled);

/**
 * @brief Reads the delay program; asks ":DELAY:STATe?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param enabled      receives VI_TRUE or VI_FALSE.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryDelayEnabled(ViSession vi, ViConstString channelName, ViBoolean* enabled);

/**
 * @brief Reads how far a delay program has come; asks ":DELAY:STATUS?".
 *
 * @param vi                the session.
 * @param channelName       the channel, one.
 * @param state             receives KVX2800T_VAL_DELAY_STOPPED or KVX2800T_VAL_DELAY_RUNNING.
 * @param remainingSeconds  receives what is left of the group's time.
 * @param group             receives the group, from 1; 0 when the program is stopped.
 * @param remainingCycles   receives the cycles left, the present one included; 0 for a program without end and for one
 * that is stopped.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryDelayStatus(ViSession vi, ViConstString channelName, ViInt32* state,
                                            ViReal64* remainingSeconds, ViInt32* group, ViInt32* remainingCycles);

/**
 * @brief Sets how often the delay program runs; sends ":DELAY:CYCLEs 3".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param cycles       cycles; 0 for one without end.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureDelayCycles(ViSession vi, ViConstString channelName, ViInt32 cycles);

/**
 * @brief Reads how often the delay program runs; asks ":DELAY:CYCLEs?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param cycles       receives cycles.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryDelayCycles(ViSession vi, ViConstString channelName, ViInt32* cycles);

/**
 * @brief Sets what the output does once the last cycle has run; sends ":DELAY:ENDState LAST".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param state        KVX2800T_VAL_DELAY_END_...
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureDelayEndState(ViSession vi, ViConstString channelName, ViInt32 state);

/**
 * @brief Reads what the output does once the last cycle has run; asks ":DELAY:ENDState?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param state        receives KVX2800T_VAL_DELAY_END_...
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryDelayEndState(ViSession vi, ViConstString channelName, ViInt32* state);

/**
 * @brief Reads how many groups the delay program has; asks ":DELAY:GROUP:NUM?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param count        receives groups.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryDelayGroupCount(ViSession vi, ViConstString channelName, ViInt32* count);

/**
 * @brief Inserts a group; sends ":DELAY:GROUP:INSert 2".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param group        the number that the new group gets, from 1.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_InsertDelayGroup(ViSession vi, ViConstString channelName, ViInt32 group);

/**
 * @brief Deletes a group; sends ":DELAY:GROUP:DELete 2".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param group        its number, from 1.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_DeleteDelayGroup(ViSession vi, ViConstString channelName, ViInt32 group);

/**
 * @brief Deletes all groups; sends ":DELAY:GROUP:CLEar".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ClearDelayGroups(ViSession vi, ViConstString channelName);

/**
 * @brief Sets a group, or appends one; sends ":DELAY:GROUP:PARAmeter 1,ON,0.500000".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param group        its number, from 1; one more than there are groups appends.
 * @param on           the output: VI_FALSE is off, anything else on.
 * @param seconds      the time.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureDelayGroup(ViSession vi, ViConstString channelName, ViInt32 group, ViBoolean on,
                                               ViReal64 seconds);

/**
 * @brief Reads a group; asks ":DELAY:GROUP:PARAmeter? 1".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param group        its number, from 1.
 * @param on           receives VI_TRUE or VI_FALSE.
 * @param seconds      receives the time.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryDelayGroup(ViSession vi, ViConstString channelName, ViInt32 group, ViBoolean* on,
                                           ViReal64* seconds);

/**
 * @brief Sets the times that groups are generated with; sends ":DELAY:GENerate:SELect INC".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param mode         KVX2800T_VAL_DELAY_GENERATE_...
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureDelayGenerateMode(ViSession vi, ViConstString channelName, ViInt32 mode);

/**
 * @brief Reads the times that groups are generated with; asks ":DELAY:GENerate:SELect?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param mode         receives KVX2800T_VAL_DELAY_GENERATE_...
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryDelayGenerateMode(ViSession vi, ViConstString channelName, ViInt32* mode);

/**
 * @brief Sets the pattern that groups are generated with; sends ":DELAY:GENerate:PATT 10P".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param pattern      KVX2800T_VAL_DELAY_PATTERN_...
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureDelayGeneratePattern(ViSession vi, ViConstString channelName, ViInt32 pattern);

/**
 * @brief Reads the pattern that groups are generated with; asks ":DELAY:GENerate:PATT?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param pattern      receives KVX2800T_VAL_DELAY_PATTERN_...
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryDelayGeneratePattern(ViSession vi, ViConstString channelName, ViInt32* pattern);

/**
 * @brief Sets how many groups are generated; sends ":DELAY:GENerate:POINTs 8".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param points       groups.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureDelayGeneratePoints(ViSession vi, ViConstString channelName, ViInt32 points);

/**
 * @brief Reads how many groups are generated; asks ":DELAY:GENerate:POINTs?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param points       receives groups.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryDelayGeneratePoints(ViSession vi, ViConstString channelName, ViInt32* points);

/**
 * @brief Sets the time of groups that are on, where times are fixed; sends ":DELAY:GENerate:TIMe:ON 0.500000".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param seconds      seconds.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureDelayOnTime(ViSession vi, ViConstString channelName, ViReal64 seconds);

/**
 * @brief Reads the time of groups that are on, where times are fixed; asks ":DELAY:GENerate:TIMe:ON?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param seconds      receives seconds.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryDelayOnTime(ViSession vi, ViConstString channelName, ViReal64* seconds);

/**
 * @brief Sets the time of groups that are off, where times are fixed; sends ":DELAY:GENerate:TIMe:OFF 0.500000".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param seconds      seconds.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureDelayOffTime(ViSession vi, ViConstString channelName, ViReal64 seconds);

/**
 * @brief Reads the time of groups that are off, where times are fixed; asks ":DELAY:GENerate:TIMe:OFF?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param seconds      receives seconds.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryDelayOffTime(ViSession vi, ViConstString channelName, ViReal64* seconds);

/**
 * @brief Sets the time of the first group, where times change; sends ":DELAY:GENerate:TIMe:BASE 0.500000".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param seconds      seconds.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureDelayBaseTime(ViSession vi, ViConstString channelName, ViReal64 seconds);

/**
 * @brief Reads the time of the first group, where times change; asks ":DELAY:GENerate:TIMe:BASE?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param seconds      receives seconds.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryDelayBaseTime(ViSession vi, ViConstString channelName, ViReal64* seconds);

/**
 * @brief Sets how much the times change from group to group; sends ":DELAY:GENerate:TIMe:STEP 0.500000".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param seconds      seconds.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureDelayTimeStep(ViSession vi, ViConstString channelName, ViReal64 seconds);

/**
 * @brief Reads how much the times change from group to group; asks ":DELAY:GENerate:TIMe:STEP?".
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param seconds      receives seconds.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryDelayTimeStep(ViSession vi, ViConstString channelName, ViReal64* seconds);

/**
 * @brief Makes the generated groups the delay program; sends ":DELAY:GENerate:CONSTruct 1".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param group        the group that the pattern begins at, from 1.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConstructDelay(ViSession vi, ViConstString channelName, ViInt32 group);

/** @} */

/**
 * @name Direct I/O
 *
 * Whole messages to and from the instrument (IVI-3.4 section 16), for what no function does. A failure of VISA keeps
 * its code. A simulated session has none, KVX2800T_ERROR_OPERATION_NOT_SUPPORTED, unless its simulation remembers.
 * @{
 */

/**
 * @brief Reads one complete response of the instrument, up to and including its termination character.
 *
 * What is longer than Buffer is read and discarded, for one time-out and a tenth of a second at least: a response
 * without an end, or with a very long one, is VISA's time-out error.
 *
 * @param DriverSession  the session.
 * @param BufferSize     bytes in Buffer, 1 or more.
 * @param Buffer         receives the response; no NUL is added.
 * @param ReturnCount    receives the number of bytes in Buffer, also after a failure that came behind the first of
 *                       them.
 * @return 0; KVX2800T_WARN_ARRAY_TRUNCATED when the response was longer than Buffer, what exceeds it is discarded;
 *         0xBFFA0058 for a null pointer; 0xBFFA0010 for another BufferSize; an error of VISA.
 */
ViStatus _VI_FUNC KVX2800T_viRead(ViSession DriverSession, ViInt64 BufferSize, ViByte Buffer[], ViInt64* ReturnCount);

/**
 * @brief Sends one complete command to the instrument.
 *
 * @param DriverSession  the session.
 * @param Buffer         the command; the termination character is appended unless it ends with it.
 * @param Count          bytes in Buffer.
 * @param ReturnCount    receives Count, or 0 when not all was sent.
 * @return 0; 0xBFFA0058 for a null pointer; 0xBFFA0010 for a negative Count and for one of 4 GiB or more; an error
 *         of VISA.
 */
ViStatus _VI_FUNC KVX2800T_viWrite(ViSession DriverSession, ViByte Buffer[], ViInt64 Count, ViInt64* ReturnCount);

/**
 * @brief Reads how long a read or a write waits.
 *
 * @param vi            the session.
 * @param milliseconds  receives the time-out.
 * @return 0; 0xBFFA0058 for a null pointer.
 */
ViStatus _VI_FUNC KVX2800T_GetIoTimeout(ViSession vi, ViInt32* milliseconds);

/**
 * @brief Sets how long a read or a write waits, of all functions of the session.
 *
 * A time-out that VISA refuses is kept all the same, as the one that KVX2800T_GetIoTimeout reads. A simulated
 * instrument that does not remember has none: every value is accepted, and 0 is read.
 *
 * @param vi            the session.
 * @param milliseconds  0 or more.
 * @return 0; KVX2800T_ERROR_VALUE_OUT_OF_RANGE for less; KVX2800T_ERROR_IO when VISA refuses it.
 */
ViStatus _VI_FUNC KVX2800T_SetIoTimeout(ViSession vi, ViInt32 milliseconds);

/** @} */

/**
 * @name Record of messages
 *
 * What a session says to its instrument, and what it hears, for people: a session with the DriverSetup key MessageLog
 * remembers that many of its last messages. Other sessions remember none.
 * @{
 */

/**
 * @brief Gives the oldest record of a message, and forgets it.
 *
 * "> text" was sent, "< text" was received; the termination character is not shown, and of a byte that does not print
 * its hexadecimal number stands there behind a backslash and an x, of a backslash too. "! text" tells in between what
 * failed, and how many records were lost because there were more than the session remembers. A record has at most 1023
 * bytes: of a longer message the beginning is kept, and "..." ends it. What was received in pieces has a record for
 * each. A simulated session exchanges messages if its simulation remembers.
 *
 * @param vi          the session.
 * @param bufferSize  bytes in record; 1024 hold every record. 0: nothing is written or forgotten. Negative: the buffer
 *                    is large enough.
 * @param record      receives the record, "" when there is none; may be null when the size is 0.
 * @return 0; the size needed, when the record did not fit and was cut; 0xBFFA0058 for a null pointer.
 */
ViStatus _VI_FUNC KVX2800T_GetNextMessageRecord(ViSession vi, ViInt32 bufferSize, ViChar record[]);

/** @} */

/**
 * @name Coercion records and interchangeability warnings
 *
 * Inherent functions of IVI-3.2 of a driver that records neither.
 * @{
 */

/**
 * @brief Gives the oldest coercion record: there is none.
 *
 * @param Vi                        the session.
 * @param CoercionRecordBufferSize  bytes in CoercionRecord. 0: nothing is written. Negative: the buffer is large
 *                                  enough.
 * @param CoercionRecord            receives ""; may be null when the size is 0.
 * @return 0; 1, the size needed, when the size is 0; 0xBFFA0058 for a null pointer.
 */
ViStatus _VI_FUNC KVX2800T_GetNextCoercionRecord(ViSession Vi, ViInt32 CoercionRecordBufferSize,
                                                 ViChar CoercionRecord[]);

/**
 * @brief Gives the oldest interchangeability warning: there is none.
 *
 * @param Vi                            the session.
 * @param InterchangeWarningBufferSize  bytes in InterchangeWarning. 0: nothing is written. Negative: the buffer is
 *                                      large enough.
 * @param InterchangeWarning            receives ""; may be null when the size is 0.
 * @return 0; 1, the size needed, when the size is 0; 0xBFFA0058 for a null pointer.
 */
ViStatus _VI_FUNC KVX2800T_GetNextInterchangeWarning(ViSession Vi, ViInt32 InterchangeWarningBufferSize,
                                                     ViChar InterchangeWarning[]);

/**
 * @brief Forgets what interchangeability is checked against: nothing.
 *
 * @param Vi  the session.
 * @return 0.
 */
ViStatus _VI_FUNC KVX2800T_ResetInterchangeCheck(ViSession Vi);

/**
 * @brief Forgets the interchangeability warnings: there are none.
 *
 * @param Vi  the session.
 * @return 0.
 */
ViStatus _VI_FUNC KVX2800T_ClearInterchangeWarnings(ViSession Vi);

/** @} */
#ifdef __cplusplus
}
#endif

#endif
