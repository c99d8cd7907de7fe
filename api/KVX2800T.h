/**
 * @file KVX2800T.h
 * @brief IVI-C driver for the KVX2800T family of programmable multi-channel DC power supplies.
 *
 * It includes IviVisaType.h, which the IVI Shared Components have beside it. Without them the compiler looks in the
 * driver's own folder for it, too: on Windows Drivers/KVX2800T/Platform/Include, elsewhere include/kvx2800t.
 *
 * The driver follows the IviDCPwr instrument class (IVI-4.4), capability groups IviDCPwrBase and IviDCPwrMeasurement.
 * A program opens a session, configures channels, reads settings and closes the session:
 *
 * @code
 * ViSession vi;
 * if (KVX2800T_init("TCPIP0::192.168.1.20::5025::SOCKET", VI_TRUE, VI_FALSE, &vi) >= 0) {
 *     KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel1", 5.0);
 *     KVX2800T_ConfigureOutputEnabled(vi, "OutputChannel1", VI_TRUE);
 *     KVX2800T_close(vi);
 * }
 * @endcode
 *
 * @par Channels
 * A channel parameter names outputs by their physical names: OutputChannel1 to OutputChannel4 are the outputs of the
 * instrument, OutputChannel5 is the series and OutputChannel6 the parallel combination of outputs 1 and 2. Functions
 * that configure take one name, a list ("OutputChannel1,OutputChannel3") or a range ("OutputChannel1-3"); attribute
 * getters take exactly one name. "CH1" to "CH6" stand for the six names, and virtual names of the IVI configuration
 * store for what they map to, which may be any of these. Letter case counts.
 *
 * @par Status
 * Every function returns 0 (VI_SUCCESS), a positive warning or a negative error. Unless a function says otherwise, an
 * error has been recorded on the session together with a text: KVX2800T_GetError reads both. The first error stays
 * until it is read or cleared. An error of VISA or of the IVI shared components that reaches the caller keeps its code.
 * Nothing is recorded where there is no session to record on: when the session service refuses a new handle
 * (IviSession_New), the session's lock (IviSession_Lock) or, at the beginning of a function, the session behind a
 * handle (IviSession_GetDataPtr).
 *
 * @par Exceptions
 * A reply that the driver cannot read as the number or switch it has asked for, and a channel range with a number
 * beyond 32 bits, leave as a C++ standard exception (std::invalid_argument, std::out_of_range), with nothing recorded
 * and the session still locked by the calling thread. One that leaves init, which takes no lock, has stored the session
 * in Vi; it can be closed. The functions of KVX2800TInstrument.h, which is included below, return a status instead, and
 * so do all functions of a session with SafeErrors.
 *
 * @par Lack of memory
 * is a status in every session, IVI_ERROR_OUT_OF_MEMORY: recorded, with the lock given back; a record may be without
 * its text then. An init that fails so leaves nothing open. KVX2800T_close needs no memory.
 *
 * @par Sessions that forgive
 * DriverSetup keys change what a session does; without them everything in this manual holds as it stands. Pairs are
 * separated by commas ("DriverSetup=Profile:Bench, FreshReplies:0"). Names are compared without regard to letter case,
 * trailing blanks of values do not count; switches take 1, 0, true, false. Another value fails init with 0xBFFA004C
 * once the configuration is resolved, a key in two spellings with 0xBFFA0000. The DriverSetup of an option string
 * replaces the configuration store's whole text.
 *
 * <table>
 * <tr><th>key</th><th>what it does</th></tr>
 * <tr><td>Profile</td><td>"Bench" switches the six keys below on; a key beside it wins.</td></tr>
 * <tr><td>SafeErrors</td><td>No function throws: a reply that cannot be read is 0xBFFA0059 with the reply in the text,
 * a value without a keyword KVX2800T_ERROR_VALUE_OUT_OF_RANGE, a number beyond 32 bits in a selector 0xBFFA0064,
 * anything else 0xBFFA0000; recorded, with the lock given back. An init that fails so leaves nothing open.</td></tr>
 * <tr><td>FreshReplies</td><td>A reply never answers another query. After an exchange that failed, timed out, was cut
 * or could not be read, the next command first brings the connection into step: a raw socket is closed and opened
 * again; elsewhere what comes is read until nothing has come for one time-out, and "*IDN?" is asked until the known
 * identity returns. Another model or serial number is KVX2800T_ERROR_IO. This also finds an instrument again whose
 * cable was pulled. Until the instrument answers, commands fail and are not sent, each after several time-outs;
 * KVX2800T_Disable alone is sent at once, on a raw socket once it is open again. An instrument that is late by more
 * than five time-outs and then is not can be mistaken, but for one on a raw socket.</td></tr>
 * <tr><td>DetailedErrors</td><td>Texts of a failed opening or transfer name the resource and VISA's status; a time-out
 * is KVX2800T_ERROR_IO_TIMEOUT, but for KVX2800T_viRead and KVX2800T_viWrite, which keep VISA's code. A value out of
 * range is recorded with channel and limits, a bad selector with its item, an unknown word with the reply.</td></tr>
 * <tr><td>TrueReadings</td><td>KVX2800T_Measure reads the meters. KVX2800T_QueryOutputState tells over-voltage and
 * over-current from the registers, and unregulated when the output is on and in none of the four other states.
 * KVX2800T_ResetOutputProtection is KVX2800T_ERROR_OPERATION_NOT_SUPPORTED: no command does nothing but clear a trip.
 * KVX2800T_Disable reports a failed write.</td></tr>
 * <tr><td>CheckedOptions</td><td>The option string is read to the letter: "Simulate" or "Simulate=" is 0xBFFA004A, "=1"
 * 0xBFFA0049, the name of an inherent option inside DriverSetup 0xBFFA004B. An instrument whose identification cannot
 * be read or has no model is 0xBFFA005E. Levels that are no finite numbers are refused.</td></tr>
 * <tr><td>StatefulSimulation</td><td>With Simulate=1 the session drives a KVX2833T inside the process: what is set is
 * read back, limits hold, lists and delays run on the clock. Its status is not checked, as in every simulation:
 * KVX2800T_error_query tells what it has refused.</td></tr>
 * <tr><td>OpenTimeout, IoTimeout</td><td>Milliseconds, or Infinite, in place of 2000.</td></tr>
 * <tr><td>BaudRate, DataBits, Parity, StopBits, FlowControl</td><td>Of a serial line, in place of 9600, 8, None, 1,
 * None. DataBits 5 to 8; None, Odd, Even, Mark, Space; 1, 1.5, 2; None, XonXoff, RtsCts, DtrDsr.</td></tr>
 * <tr><td>MessageLog</td><td>1 to 10000: so many of the last messages are remembered, sent and received, until
 * KVX2800T_GetNextMessageRecord gets them. The profile does not ask for it.</td></tr>
 * </table>
 *
 * @par Threads
 * Any function may be called from any thread. Calls on one session run one after the other; calls on different
 * sessions run side by side. KVX2800T_close must not run while another call on the same session does.
 */
#ifndef KVX2800T_H
#define KVX2800T_H

#include <IviVisaType.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @name Status codes
 * Compare a returned status with these by name.
 * @{
 */
/** I/O error: the instrument could not be reached, or does not answer. */
#define KVX2800T_ERROR_IO ((ViStatus)0xBFFA4214UL)
/** I/O timeout error. */
#define KVX2800T_ERROR_IO_TIMEOUT ((ViStatus)0xBFFA4215UL)
/** The operation (attribute or function) is not supported. */
#define KVX2800T_ERROR_OPERATION_NOT_SUPPORTED ((ViStatus)0xBFFA4216UL)
/** A value is out of range or not supported. */
#define KVX2800T_ERROR_VALUE_OUT_OF_RANGE ((ViStatus)0xBFFA4217UL)
/** The session handle is unknown or closed. */
#define KVX2800T_ERROR_INVALID_SESSION_HANDLE ((ViStatus)0xBFFA1190UL)
/** A text or an array did not fit into its buffer. */
#define KVX2800T_WARN_ARRAY_TRUNCATED ((ViStatus)0x3FFA4001UL)
/** @} */

/**
 * @name Status codes of the IVI specifications
 * Those that the driver returns, by their names in IVI-3.2 section 11 (also defined by the IVI headers).
 * @{
 */
#ifndef IVI_ERROR_CANNOT_RECOVER
/** The failure cannot be recovered from; the recorded text says which it was. */
#define IVI_ERROR_CANNOT_RECOVER ((ViStatus)0xBFFA0000UL)
#endif
#ifndef IVI_ERROR_INSTRUMENT_STATUS
/** The instrument has noted an error; KVX2800T_error_query tells which. */
#define IVI_ERROR_INSTRUMENT_STATUS ((ViStatus)0xBFFA0001UL)
#endif
#ifndef IVI_ERROR_INVALID_ATTRIBUTE
/** The attribute ID is unknown. */
#define IVI_ERROR_INVALID_ATTRIBUTE ((ViStatus)0xBFFA000CUL)
#endif
#ifndef IVI_ERROR_IVI_ATTR_NOT_WRITABLE
/** The attribute is read-only. */
#define IVI_ERROR_IVI_ATTR_NOT_WRITABLE ((ViStatus)0xBFFA000DUL)
#endif
#ifndef IVI_ERROR_IVI_ATTR_NOT_READABLE
/** The attribute is write-only. */
#define IVI_ERROR_IVI_ATTR_NOT_READABLE ((ViStatus)0xBFFA000EUL)
#endif
#ifndef IVI_ERROR_INVALID_VALUE
/** A parameter has an invalid value. */
#define IVI_ERROR_INVALID_VALUE ((ViStatus)0xBFFA0010UL)
#endif
#ifndef IVI_ERROR_TYPES_DO_NOT_MATCH
/** The attribute has another type. */
#define IVI_ERROR_TYPES_DO_NOT_MATCH ((ViStatus)0xBFFA0015UL)
#endif
#ifndef IVI_ERROR_NOT_INITIALIZED
/** There is no connection to the instrument: an exception has ended init. */
#define IVI_ERROR_NOT_INITIALIZED ((ViStatus)0xBFFA001DUL)
#endif
#ifndef IVI_ERROR_CHANNEL_NAME_REQUIRED
/** No channel is named, and there is more than one. */
#define IVI_ERROR_CHANNEL_NAME_REQUIRED ((ViStatus)0xBFFA0044UL)
#endif
#ifndef IVI_ERROR_BAD_OPTION_NAME
/** The option string has an unknown name. */
#define IVI_ERROR_BAD_OPTION_NAME ((ViStatus)0xBFFA004BUL)
#endif
#ifndef IVI_ERROR_BAD_OPTION_VALUE
/** The option string has an unknown value. */
#define IVI_ERROR_BAD_OPTION_VALUE ((ViStatus)0xBFFA004CUL)
#endif
#ifndef IVI_ERROR_OUT_OF_MEMORY
/** There is not enough memory; the IVI shared components return it, too. */
#define IVI_ERROR_OUT_OF_MEMORY ((ViStatus)0xBFFA0056UL)
#endif
#ifndef IVI_ERROR_NULL_POINTER
/** A pointer is null. */
#define IVI_ERROR_NULL_POINTER ((ViStatus)0xBFFA0058UL)
#endif
#ifndef IVI_ERROR_UNEXPECTED_RESPONSE
/** The instrument's reply names no value that the driver knows. */
#define IVI_ERROR_UNEXPECTED_RESPONSE ((ViStatus)0xBFFA0059UL)
#endif
#ifndef IVI_ERROR_ID_QUERY_FAILED
/** The instrument's model is not supported. */
#define IVI_ERROR_ID_QUERY_FAILED ((ViStatus)0xBFFA005EUL)
#endif
#ifndef IVI_ERROR_CANNOT_CHANGE_SIMULATION_STATE
/** A simulated session stays simulated. */
#define IVI_ERROR_CANNOT_CHANGE_SIMULATION_STATE ((ViStatus)0xBFFA0062UL)
#endif
#ifndef IVI_ERROR_INVALID_NUMBER_OF_LEVELS_IN_SELECTOR
/** The channel selector has more than one level. */
#define IVI_ERROR_INVALID_NUMBER_OF_LEVELS_IN_SELECTOR ((ViStatus)0xBFFA0063UL)
#endif
#ifndef IVI_ERROR_INVALID_RANGE_IN_SELECTOR
/** The channel selector has an invalid range. */
#define IVI_ERROR_INVALID_RANGE_IN_SELECTOR ((ViStatus)0xBFFA0064UL)
#endif
#ifndef IVI_ERROR_BADLY_FORMED_SELECTOR
/** The channel selector is badly formed, names a channel twice, or names several where one is needed. */
#define IVI_ERROR_BADLY_FORMED_SELECTOR ((ViStatus)0xBFFA0066UL)
#endif
#ifndef IVI_ERROR_UNKNOWN_PHYSICAL_IDENTIFIER
/** The channel selector names an unknown channel. */
#define IVI_ERROR_UNKNOWN_PHYSICAL_IDENTIFIER ((ViStatus)0xBFFA0067UL)
#endif
#ifndef IVI_WARN_NSUP_SELF_TEST
/** The instrument has no self test. */
#define IVI_WARN_NSUP_SELF_TEST ((ViStatus)0x3FFA0067UL)
#endif
/** @} */

/**
 * @name Further status codes of the IVI specifications
 * The driver has messages for them (KVX2800T_error_message), but returns none of its own accord.
 * @{
 */
#ifndef IVI_ERROR_CANNOT_OPEN_FILE
/** A file cannot be opened. */
#define IVI_ERROR_CANNOT_OPEN_FILE ((ViStatus)0xBFFA0002UL)
#endif
#ifndef IVI_ERROR_READING_FILE
/** A file cannot be read. */
#define IVI_ERROR_READING_FILE ((ViStatus)0xBFFA0003UL)
#endif
#ifndef IVI_ERROR_WRITING_FILE
/** A file cannot be written. */
#define IVI_ERROR_WRITING_FILE ((ViStatus)0xBFFA0004UL)
#endif
#ifndef IVI_ERROR_INVALID_PATHNAME
/** A path is invalid. */
#define IVI_ERROR_INVALID_PATHNAME ((ViStatus)0xBFFA000BUL)
#endif
#ifndef IVI_ERROR_FUNCTION_NOT_SUPPORTED
/** A function of the instrument class is not supported. */
#define IVI_ERROR_FUNCTION_NOT_SUPPORTED ((ViStatus)0xBFFA0011UL)
#endif
#ifndef IVI_ERROR_ATTRIBUTE_NOT_SUPPORTED
/** An attribute of the instrument class is not supported. */
#define IVI_ERROR_ATTRIBUTE_NOT_SUPPORTED ((ViStatus)0xBFFA0012UL)
#endif
#ifndef IVI_ERROR_VALUE_NOT_SUPPORTED
/** A value that the instrument class defines is not supported. */
#define IVI_ERROR_VALUE_NOT_SUPPORTED ((ViStatus)0xBFFA0013UL)
#endif
#ifndef IVI_ERROR_UNKNOWN_CHANNEL_NAME
/** The channel is unknown. */
#define IVI_ERROR_UNKNOWN_CHANNEL_NAME ((ViStatus)0xBFFA0020UL)
#endif
#ifndef IVI_ERROR_TOO_MANY_OPEN_FILES
/** Too many files are open. */
#define IVI_ERROR_TOO_MANY_OPEN_FILES ((ViStatus)0xBFFA0023UL)
#endif
#ifndef IVI_ERROR_MISSING_OPTION_NAME
/** The option string lacks the name of an option. */
#define IVI_ERROR_MISSING_OPTION_NAME ((ViStatus)0xBFFA0049UL)
#endif
#ifndef IVI_ERROR_MISSING_OPTION_VALUE
/** The option string lacks the value of an option. */
#define IVI_ERROR_MISSING_OPTION_VALUE ((ViStatus)0xBFFA004AUL)
#endif
#ifndef IVI_ERROR_OPERATION_PENDING
/** An operation is under way. */
#define IVI_ERROR_OPERATION_PENDING ((ViStatus)0xBFFA0057UL)
#endif
#ifndef IVI_ERROR_FILE_NOT_FOUND
/** There is no such file. */
#define IVI_ERROR_FILE_NOT_FOUND ((ViStatus)0xBFFA005BUL)
#endif
#ifndef IVI_ERROR_INVALID_FILE_FORMAT
/** The format of a file is invalid. */
#define IVI_ERROR_INVALID_FILE_FORMAT ((ViStatus)0xBFFA005CUL)
#endif
#ifndef IVI_ERROR_STATUS_NOT_AVAILABLE
/** The status of the instrument is not available. */
#define IVI_ERROR_STATUS_NOT_AVAILABLE ((ViStatus)0xBFFA005DUL)
#endif
#ifndef IVI_ERROR_RESET_FAILED
/** The instrument could not be reset. */
#define IVI_ERROR_RESET_FAILED ((ViStatus)0xBFFA005FUL)
#endif
#ifndef IVI_ERROR_RESOURCE_UNKNOWN
/** The resource is unknown. */
#define IVI_ERROR_RESOURCE_UNKNOWN ((ViStatus)0xBFFA0060UL)
#endif
#ifndef IVI_ERROR_ALREADY_INITIALIZED
/** The driver is initialized already. */
#define IVI_ERROR_ALREADY_INITIALIZED ((ViStatus)0xBFFA0061UL)
#endif
#ifndef IVI_ERROR_UNKNOWN_NAME_IN_SELECTOR
/** A selector names something unknown. */
#define IVI_ERROR_UNKNOWN_NAME_IN_SELECTOR ((ViStatus)0xBFFA0065UL)
#endif
#ifndef IVI_ERROR_TRIGGER_NOT_SOFTWARE
/** The trigger source is not the software trigger. */
#define IVI_ERROR_TRIGGER_NOT_SOFTWARE ((ViStatus)0xBFFA1001UL)
#endif
#ifndef IVI_WARN_NSUP_ID_QUERY
/** The instrument cannot be identified. */
#define IVI_WARN_NSUP_ID_QUERY ((ViStatus)0x3FFA0065UL)
#endif
#ifndef IVI_WARN_NSUP_RESET
/** The instrument cannot be reset. */
#define IVI_WARN_NSUP_RESET ((ViStatus)0x3FFA0066UL)
#endif
#ifndef IVI_WARN_NSUP_ERROR_QUERY
/** The instrument cannot be asked for its errors. */
#define IVI_WARN_NSUP_ERROR_QUERY ((ViStatus)0x3FFA0068UL)
#endif
#ifndef IVI_WARN_NSUP_REV_QUERY
/** The instrument does not tell the revision of its firmware. */
#define IVI_WARN_NSUP_REV_QUERY ((ViStatus)0x3FFA0069UL)
#endif
/** @} */

/**
 * @name Attributes of the driver
 * Read-only; a channel is ignored.
 * @{
 */
/** ViString: "IVI-C Driver for KVX2800T". */
#define KVX2800T_ATTR_SPECIFIC_DRIVER_DESCRIPTION 1050514
/** ViString: "KVX2800T". */
#define KVX2800T_ATTR_SPECIFIC_DRIVER_PREFIX 1050302
/** ViString: "Tessaro Instruments". */
#define KVX2800T_ATTR_SPECIFIC_DRIVER_VENDOR 1050513
/** ViString: "1.0.0.0". */
#define KVX2800T_ATTR_SPECIFIC_DRIVER_REVISION 1050551
/** ViInt32: 3, of the IviDCPwr class specification. */
#define KVX2800T_ATTR_SPECIFIC_DRIVER_CLASS_SPEC_MAJOR_VERSION 1050515
/** ViInt32: 0. */
#define KVX2800T_ATTR_SPECIFIC_DRIVER_CLASS_SPEC_MINOR_VERSION 1050516
/** ViString: "IviDCPwrBase,IviDCPwrMeasurement". */
#define KVX2800T_ATTR_GROUP_CAPABILITIES 1050401
/** ViString: "KVX2833T". */
#define KVX2800T_ATTR_SUPPORTED_INSTRUMENT_MODELS 1050327
/** ViInt32: 6, the number of channels, for every model. */
#define KVX2800T_ATTR_CHANNEL_COUNT 1050203
/** @} */

/**
 * @name Attributes of the session
 * A channel is ignored. Switches of things that the driver does not do take every value and keep their own.
 * @{
 */
/** ViBoolean: always VI_TRUE; a value set is ignored. Levels are checked in any case. */
#define KVX2800T_ATTR_RANGE_CHECK 1050002
/** ViBoolean: whether the event status is checked ("*ESR?") after channels were configured or queried. Can be set. */
#define KVX2800T_ATTR_QUERY_INSTRUMENT_STATUS 1050003
/** ViBoolean: always VI_FALSE; a value set is ignored. Every read goes to the instrument. */
#define KVX2800T_ATTR_CACHE 1050004
/**
 * ViBoolean: whether the session is simulated. VI_TRUE replaces a real instrument, whose connection is closed, by a
 * simulated one; VI_FALSE is refused from then on (0xBFFA0062).
 */
#define KVX2800T_ATTR_SIMULATE 1050005
/** ViBoolean: always VI_FALSE; a value set is ignored. */
#define KVX2800T_ATTR_RECORD_COERCIONS 1050006
/** ViBoolean: always VI_FALSE; a value set is ignored. */
#define KVX2800T_ATTR_INTERCHANGE_CHECK 1050021
/** ViString, read-only: the name that the session was opened with, if the configuration store gave its descriptor. */
#define KVX2800T_ATTR_LOGICAL_NAME 1050305
/** ViString, read-only: the VISA resource descriptor that the connection was opened on. */
#define KVX2800T_ATTR_IO_RESOURCE_DESCRIPTOR 1050304
/** ViString, read-only: the DriverSetup text of the option string or, without one, of the configuration store. */
#define KVX2800T_ATTR_DRIVER_SETUP 1050007
/** @} */

/**
 * @name Attributes of the instrument
 * ViString, read-only, as the instrument identified itself ("*IDN?") when the session was opened; a channel is ignored.
 * @{
 */
/** The maker. */
#define KVX2800T_ATTR_INSTRUMENT_MANUFACTURER 1050511
/** The model. */
#define KVX2800T_ATTR_INSTRUMENT_MODEL 1050512
/** The revision of the firmware. */
#define KVX2800T_ATTR_INSTRUMENT_FIRMWARE_REVISION 1050510
/** @} */

/**
 * @name Attributes of the channels
 * They can be read, of one channel, and set, of several. In quotes: what setting one sends for channel 1; what reading
 * it asks.
 * @{
 */
/**
 * ViReal64, volts: the voltage setting, as KVX2800T_ConfigureVoltageLevel takes it.
 * ":SOUR1:VOLT 5.000000"; ":SOUR1:VOLT?"
 */
#define KVX2800T_ATTR_VOLTAGE_LEVEL 1250001
/** ViBoolean: whether the over-voltage protection is on. ":SOUR1:VOLT:PROT:STAT ON"; ":SOUR1:VOLT:PROT:STAT?" */
#define KVX2800T_ATTR_OVP_ENABLED 1250002
/**
 * ViReal64, volts: the level of the over-voltage protection, which the instrument judges.
 * ":SOUR1:VOLT:PROT 6.000000"; ":SOUR1:VOLT:PROT?"
 */
#define KVX2800T_ATTR_OVP_LIMIT 1250003
/**
 * ViInt32, KVX2800T_VAL_CURRENT_...: what the output does at its current limit; no other value can be set.
 * ":SOUR1:CURR:PROT:STAT OFF"; ":SOUR1:CURR:PROT:STAT?"
 */
#define KVX2800T_ATTR_CURRENT_LIMIT_BEHAVIOR 1250004
/**
 * ViReal64, amperes: the current limit, as KVX2800T_ConfigureCurrentLimit takes it. Setting it sets the level of the
 * over-current protection, too. ":SOUR1:CURR 1.000000" and ":SOUR1:CURR:PROT 1.000000"; ":SOUR1:CURR?"
 */
#define KVX2800T_ATTR_CURRENT_LIMIT 1250005
/** ViBoolean: whether the output is on. ":OUTP:STAT CH1,ON"; ":OUTP:STAT? CH1" */
#define KVX2800T_ATTR_OUTPUT_ENABLED 1250006
/** @} */

/**
 * @name Values of the current limit behavior
 * @{
 */
/** The output turns into a constant-current source. */
#define KVX2800T_VAL_CURRENT_REGULATE 0
/** The output switches off. */
#define KVX2800T_VAL_CURRENT_TRIP 1
/** @} */

/**
 * @name Values of the range type
 * @{
 */
/** The range is one of currents. */
#define KVX2800T_VAL_RANGE_CURRENT 0
/** The range is one of voltages. */
#define KVX2800T_VAL_RANGE_VOLTAGE 1
/** @} */

/**
 * @name Values of the output state
 * @{
 */
/** The output holds its voltage. */
#define KVX2800T_VAL_OUTPUT_CONSTANT_VOLTAGE 0
/** The output holds its current. */
#define KVX2800T_VAL_OUTPUT_CONSTANT_CURRENT 1
/** The over-voltage protection has tripped. */
#define KVX2800T_VAL_OUTPUT_OVER_VOLTAGE 2
/** The over-current protection has tripped. */
#define KVX2800T_VAL_OUTPUT_OVER_CURRENT 3
/** The output holds neither its voltage nor its current. */
#define KVX2800T_VAL_OUTPUT_UNREGULATED 4
/** @} */

/**
 * @name Values of the measurement type
 * @{
 */
/** Current, in amperes. */
#define KVX2800T_VAL_MEASURE_CURRENT 0
/** Voltage, in volts. */
#define KVX2800T_VAL_MEASURE_VOLTAGE 1
/** @} */

/**
 * @name Sessions
 * @{
 */

/**
 * @brief Opens a session without options.
 *
 * @param ResourceName  VISA resource descriptor of the instrument, or the name of a driver session or a logical name of
 *                      the IVI configuration store, which supplies the descriptor; null is "".
 * @param IdQuery       VI_TRUE: fail unless the instrument's model is one the driver supports (KVX2833T). The simulated
 *                      instrument's model is not.
 * @param Reset         not VI_FALSE: send "*RST". Init succeeds even when the reset fails.
 * @param Vi            receives the session, or 0 on failure.
 *
 * Connects, sends "*IDN?" and, with Reset, "*RST".
 *
 * @return 0; 0xBFFA0058 when Vi is null (nothing recorded); KVX2800T_ERROR_IO when the instrument cannot be opened or
 *         identified; 0xBFFA005E when the model is not supported; errors of the configuration server. The text of a
 *         failed init is read with KVX2800T_GetError on VI_NULL, in the same thread.
 */
ViStatus _VI_FUNC KVX2800T_init(ViRsrc ResourceName, ViBoolean IdQuery, ViBoolean Reset, ViSession* Vi);

/**
 * @brief Opens a session with options.
 *
 * @param ResourceName  as for KVX2800T_init; when simulating, nothing is opened on it.
 * @param IdQuery       as for KVX2800T_init.
 * @param Reset         as for KVX2800T_init.
 * @param OptionString  "Name=Value" pairs separated by commas, in any letter case; null is "". Names: Cache,
 *                      InterchangeCheck, QueryInstrStatus, RangeCheck, RecordCoercions, Simulate. Values: True,
 *                      VI_TRUE, 1, False, VI_FALSE, 0. "DriverSetup=..." comes last and holds "Name:Value" pairs:
 *                      "Model", and the keys of "Sessions that forgive". Without an entry: Cache and RangeCheck are on,
 *                      the others off.
 *                      With QueryInstrStatus on, the instrument's event status is checked after every function that
 *                      configures channels and, in this header, after every one that queries them.
 * @param Vi            receives the session, or 0 on failure.
 *
 * @return as KVX2800T_init; 0xBFFA004B and 0xBFFA004C for an unknown option name or value, and for InterchangeCheck,
 *         which the driver does not support; 0xBFFA0000 for an option given twice.
 */
ViStatus _VI_FUNC KVX2800T_InitWithOptions(ViRsrc ResourceName, ViBoolean IdQuery, ViBoolean Reset,
                                           ViConstString OptionString, ViSession* Vi);

/**
 * @brief Closes a session and its connection. The handle is unknown afterwards.
 *
 * @param Vi  the session.
 * @return 0, or KVX2800T_ERROR_INVALID_SESSION_HANDLE (nothing recorded). When the session service refuses to dispose
 * of the handle, its status: the session is closed all the same, and the handle leads to none.
 */
ViStatus _VI_FUNC KVX2800T_close(ViSession Vi);

/**
 * @brief Keeps the session to the calling thread until KVX2800T_UnlockSession, across several calls.
 *
 * @param Vi             the session.
 * @param CallerHasLock  null; or a variable, VI_FALSE at first, that lets a function lock on several paths and unlock
 *                       once: VI_TRUE means that nothing is to be done (IVI-3.2 section 6.18).
 * @return 0, or the session service's status.
 */
ViStatus _VI_FUNC KVX2800T_LockSession(ViSession Vi, ViBoolean* CallerHasLock);

/**
 * @brief Takes one KVX2800T_LockSession of the calling thread back.
 *
 * @param Vi             the session.
 * @param CallerHasLock  as for KVX2800T_LockSession: VI_FALSE means that nothing is to be done.
 * @return 0, or the session service's status.
 */
ViStatus _VI_FUNC KVX2800T_UnlockSession(ViSession Vi, ViBoolean* CallerHasLock);

/** @} */

/**
 * @name Errors
 * @{
 */

/**
 * @brief Reads and clears the error recorded on a session.
 *
 * @param Vi                          the session; VI_NULL: the first error of the calling thread, of all IVI drivers.
 * @param ErrorCode                   receives the status code; may be null.
 * @param ErrorDescriptionBufferSize  bytes in ErrorDescription, the NUL included. 0: nothing is read or cleared, and
 *                                    the size needed is returned. Negative: the buffer is large enough for any text.
 * @param ErrorDescription            receives the text; may be null when the size is 0.
 * @return 0; the size needed, a positive number, when the text was cut; 0xBFFA1190 for an unknown session.
 */
ViStatus _VI_FUNC KVX2800T_GetError(ViSession Vi, ViStatus* ErrorCode, ViInt32 ErrorDescriptionBufferSize,
                                    ViChar ErrorDescription[]);

/**
 * @brief Clears the error recorded on a session.
 *
 * @param Vi  the session; VI_NULL: the calling thread's error.
 * @return 0, or 0xBFFA1190 for an unknown session.
 */
ViStatus _VI_FUNC KVX2800T_ClearError(ViSession Vi);

/**
 * @brief Translates a status code of the driver into its message. Takes no lock and needs no session.
 *
 * @param Vi            the session to record a failure on, or VI_NULL.
 * @param ErrorCode     the code.
 * @param ErrorMessage  receives the message, with "%s" where a recorded error has its details; at least 256 bytes.
 * @return 0; 0xBFFA0058 when ErrorMessage is null; 0xBFFA0010 for a code that the driver does not define, VISA's
 *         included (recorded only on a session).
 */
ViStatus _VI_FUNC KVX2800T_error_message(ViSession Vi, ViStatus ErrorCode, ViChar ErrorMessage[]);

/**
 * @brief Reads one entry of the instrument's error queue; sends ":SYSTem:ERRor?".
 *
 * @param Vi            the session.
 * @param ErrorCode     receives the instrument's code, 0 when the queue is empty.
 * @param ErrorMessage  receives the message in its quotes, cut to 255 characters; at least 256 bytes.
 *
 * A reply that is not a code and a message gives 0 and "".
 *
 * @return 0; 0xBFFA0058 for a null pointer; KVX2800T_ERROR_IO.
 */
ViStatus _VI_FUNC KVX2800T_error_query(ViSession Vi, ViInt32* ErrorCode, ViChar ErrorMessage[]);

/** @} */

/**
 * @name Utilities
 * @{
 */

/**
 * @brief Puts the instrument into its default state; sends "*RST".
 *
 * @param Vi  the session.
 * @return 0, or KVX2800T_ERROR_IO.
 */
ViStatus _VI_FUNC KVX2800T_reset(ViSession Vi);

/**
 * @brief The same as KVX2800T_reset: no configured initial settings are applied afterwards.
 *
 * @param Vi  the session.
 * @return 0, or KVX2800T_ERROR_IO.
 */
ViStatus _VI_FUNC KVX2800T_ResetWithDefaults(ViSession Vi);

/**
 * @brief Switches all outputs off; sends ":OUTPut:STATe ALL,OFF".
 *
 * @param Vi  the session.
 * @return 0, whether or not the instrument took the command.
 */
ViStatus _VI_FUNC KVX2800T_Disable(ViSession Vi);

/**
 * @brief The instrument has no self test.
 *
 * @param Vi           the session.
 * @param TestResult   is not written.
 * @param TestMessage  is not written.
 * @return 0x3FFA0067 (not supported), a warning; 0xBFFA0058 for a null pointer.
 */
ViStatus _VI_FUNC KVX2800T_self_test(ViSession Vi, ViInt16* TestResult, ViChar TestMessage[]);

/**
 * @brief Tells the revisions of the driver and of the instrument's firmware; sends nothing.
 *
 * @param Vi         the session.
 * @param DriverRev  receives "1.0.0.0"; at least 256 bytes.
 * @param InstrRev   receives the revision that the instrument gave when the session was opened, or "Sim1.0.0.0" when
 *                   simulating; at least 256 bytes.
 * @return 0; 0xBFFA0058 for a null pointer.
 */
ViStatus _VI_FUNC KVX2800T_revision_query(ViSession Vi, ViChar DriverRev[], ViChar InstrRev[]);

/**
 * @brief Forgets cached attribute values. The driver reads every attribute from the instrument anyway.
 *
 * @param Vi  the session.
 * @return 0.
 */
ViStatus _VI_FUNC KVX2800T_InvalidateAllAttributes(ViSession Vi);

/** @} */

/**
 * @name Output configuration
 *
 * Each function applies a setting to every channel that channelName selects, in that order. OutputChannel1, 2, 5 and 6
 * need a source mode of the instrument: it is asked with ":SOUR:Mode?" and, when another one is needed, changed, which
 * takes a second. The first failure ends the call; channels in front of it keep the new setting.
 *
 * Common status codes: 0xBFFA0044 for an empty channelName, 0xBFFA0063 to 0xBFFA0067 for one that does not name
 * channels, KVX2800T_ERROR_IO, and 0xBFFA0001 when status checking is on and the instrument has noted an error.
 * @{
 */

/**
 * @brief Switches outputs on or off; sends ":OUTP:STAT CH1,ON".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param enabled      VI_FALSE: off; anything else: on.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureOutputEnabled(ViSession vi, ViConstString channelName, ViBoolean enabled);

/**
 * @brief Sets the voltage; sends ":SOUR1:VOLT 5.000000".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param level        volts, from 0 to 33 (channels 1, 2 and 6), 16 (3), 6.2 (4) or 66 (5).
 * @return 0; KVX2800T_ERROR_VALUE_OUT_OF_RANGE, with nothing sent to that channel; or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureVoltageLevel(ViSession vi, ViConstString channelName, ViReal64 level);

/**
 * @brief Sets the current limit and what happens there; sends ":SOUR1:CURR 1.000000", ":SOUR1:CURR:PROT 1.000000" and
 *        ":SOUR1:CURR:PROT:STAT OFF".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param behavior     KVX2800T_VAL_CURRENT_TRIP switches the over-current protection on, every other value off.
 * @param limit        amperes, from 0 to 3.2 (channels 1, 2, 3 and 5), 10.5 (4) or 6.4 (6).
 * @return 0; KVX2800T_ERROR_VALUE_OUT_OF_RANGE, with nothing sent to that channel; or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureCurrentLimit(ViSession vi, ViConstString channelName, ViInt32 behavior,
                                                 ViReal64 limit);

/**
 * @brief Sets the over-voltage protection; sends ":SOUR1:VOLT:PROT 6.000000" and ":SOUR1:VOLT:PROT:STAT ON".
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param enabled      VI_FALSE: off; anything else: on.
 * @param limit        volts; sent to the instrument also when the protection is switched off, and judged by it alone.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureOVP(ViSession vi, ViConstString channelName, ViBoolean enabled, ViReal64 limit);

/**
 * @brief Does nothing: the channels have one range each. Sends nothing; channelName is checked.
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param rangeType    any value.
 * @param range        any value.
 * @return 0, or a common status code for channelName.
 */
ViStatus _VI_FUNC KVX2800T_ConfigureOutputRange(ViSession vi, ViConstString channelName, ViInt32 rangeType,
                                                ViReal64 range);

/**
 * @brief Does nothing: switching an output on ends a trip. Sends nothing; channelName is checked.
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @return 0, or a common status code for channelName; with TrueReadings KVX2800T_ERROR_OPERATION_NOT_SUPPORTED.
 */
ViStatus _VI_FUNC KVX2800T_ResetOutputProtection(ViSession vi, ViConstString channelName);

/** @} */

/**
 * @name Queries and measurement
 *
 * Each function asks every channel that channelName selects, in that order; the result is the last channel's. The first
 * failure ends the call, and the result is then the last one that was read. The source mode is not changed.
 *
 * Common status codes: 0xBFFA0058 for a null result pointer, 0xBFFA0044 and 0xBFFA0063 to 0xBFFA0067 for channelName,
 * KVX2800T_ERROR_IO, and 0xBFFA0001 when status checking is on and the instrument has noted an error.
 * @{
 */

/**
 * @brief Tells the largest current that a channel takes; asks the instrument nothing but, with status checking
 *        on, its event status.
 *
 * @param vi               the session.
 * @param channelName      the channels.
 * @param voltageLevel     any value: the limit is the same at every voltage.
 * @param maxCurrentLimit  receives amperes: 3.2 (channels 1, 2, 3 and 5), 10.5 (4) or 6.4 (6).
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryMaxCurrentLimit(ViSession vi, ViConstString channelName, ViReal64 voltageLevel,
                                                ViReal64* maxCurrentLimit);

/**
 * @brief Tells the largest voltage that a channel takes; asks the instrument nothing but, with status checking
 *        on, its event status.
 *
 * @param vi               the session.
 * @param channelName      the channels.
 * @param currentLimit     any value: the limit is the same at every current.
 * @param maxVoltageLevel  receives volts: 33 (channels 1, 2 and 6), 16 (3), 6.2 (4) or 66 (5).
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryMaxVoltageLevel(ViSession vi, ViConstString channelName, ViReal64 currentLimit,
                                                ViReal64* maxVoltageLevel);

/**
 * @brief Tells whether an output is in a state.
 *
 * @param vi           the session.
 * @param channelName  the channels.
 * @param outputState  KVX2800T_VAL_OUTPUT_... Constant voltage and constant current are asked of the instrument
 *                     (":STATus:QUEStionable:INSTrument:ISUMmary1:CONDition?"); the other three are never reported.
 *                     Another value is no error and leaves inState as it is.
 * @param inState      receives VI_TRUE or VI_FALSE.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryOutputState(ViSession vi, ViConstString channelName, ViInt32 outputState,
                                            ViBoolean* inState);

/**
 * @brief Reads the level that is set: ":SOUR1:CURR?" or ":SOUR1:VOLT?". The output's meters are not read.
 *
 * @param vi               the session.
 * @param channelName      the channels.
 * @param measurementType  KVX2800T_VAL_MEASURE_...
 * @param measurement      receives amperes or volts.
 * @return 0; KVX2800T_ERROR_VALUE_OUT_OF_RANGE for another measurementType; or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_Measure(ViSession vi, ViConstString channelName, ViInt32 measurementType,
                                   ViReal64* measurement);

/**
 * @brief Tells the name of a channel by its number; asks nothing of the instrument.
 *
 * @param vi          the session.
 * @param index       1 to 6.
 * @param bufferSize  bytes in name. A name that does not fit is cut without a word; for 0 or less, nothing is written.
 * @param name        receives "OutputChannel1" to "OutputChannel6".
 * @return 0; 0xBFFA0058 when name is null; 0xBFFA0010 for another index, with index - 1 in the recorded text.
 */
ViStatus _VI_FUNC KVX2800T_GetChannelName(ViSession vi, ViInt32 index, ViInt32 bufferSize, ViChar name[]);

/** @} */

/**
 * @name Attribute access
 *
 * Getters of channel attributes ask the instrument for the present value: ":SOUR1:VOLT?", ":SOUR1:VOLT:PROT:STAT?",
 * ":SOUR1:VOLT:PROT?", ":SOUR1:CURR:PROT:STAT?", ":SOUR1:CURR?", ":OUTP:STAT? CH1"; the source mode is not changed, and
 * the value stays as it was when the call fails. Setters work like the functions that configure outputs: several
 * channels, source mode, status check.
 *
 * Status codes: 0xBFFA0058 for a null AttributeValue, 0xBFFA000C for an unknown AttributeID, 0xBFFA0015 for an
 * attribute of another type, 0xBFFA000D for setting a read-only one, 0xBFFA0044 and 0xBFFA0063 to 0xBFFA0067 for a
 * RepCapIdentifier that does not name channels (getters: exactly one), KVX2800T_ERROR_VALUE_OUT_OF_RANGE for a value
 * that the channel does not take, KVX2800T_ERROR_IO.
 * @{
 */

/**
 * @brief Reads a ViInt32 attribute.
 *
 * @param Vi                the session.
 * @param RepCapIdentifier  the channel.
 * @param AttributeID       the attribute, one of KVX2800T_ATTR_...
 * @param AttributeValue    receives the value.
 * @return 0, or a status code of the group.
 */
ViStatus _VI_FUNC KVX2800T_GetAttributeViInt32(ViSession Vi, ViConstString RepCapIdentifier, ViAttr AttributeID,
                                               ViInt32* AttributeValue);

/**
 * @brief Reads a ViReal64 attribute.
 *
 * @param Vi                the session.
 * @param RepCapIdentifier  the channel.
 * @param AttributeID       the attribute, one of KVX2800T_ATTR_...
 * @param AttributeValue    receives the value.
 * @return 0, or a status code of the group.
 */
ViStatus _VI_FUNC KVX2800T_GetAttributeViReal64(ViSession Vi, ViConstString RepCapIdentifier, ViAttr AttributeID,
                                                ViReal64* AttributeValue);

/**
 * @brief Reads a ViBoolean attribute.
 *
 * @param Vi                the session.
 * @param RepCapIdentifier  the channel.
 * @param AttributeID       the attribute, one of KVX2800T_ATTR_...
 * @param AttributeValue    receives the value.
 * @return 0, or a status code of the group.
 */
ViStatus _VI_FUNC KVX2800T_GetAttributeViBoolean(ViSession Vi, ViConstString RepCapIdentifier, ViAttr AttributeID,
                                                 ViBoolean* AttributeValue);

/**
 * @brief Reads a ViSession attribute. The driver has none: every known attribute is of another type.
 *
 * @param Vi                the session.
 * @param RepCapIdentifier  the channel.
 * @param AttributeID       the attribute, one of KVX2800T_ATTR_...
 * @param AttributeValue    is not written.
 * @return a status code of the group.
 */
ViStatus _VI_FUNC KVX2800T_GetAttributeViSession(ViSession Vi, ViConstString RepCapIdentifier, ViAttr AttributeID,
                                                 ViSession* AttributeValue);

/**
 * @brief Reads a ViString attribute.
 *
 * @param Vi                        the session.
 * @param RepCapIdentifier          ignored.
 * @param AttributeID               the attribute, one of KVX2800T_ATTR_...
 * @param AttributeValueBufferSize  bytes in AttributeValue, the NUL included. 0: nothing is read. Negative: the buffer
 * is large enough for any text.
 * @param AttributeValue            receives the text, cut if need be; may be null when the size is 0.
 * @return 0; 4096, which is enough for every text but a long DriverSetup, when the size is 0 or the text fills the
 *         buffer to its end, cut or not; or a status code of the group. Of a DriverSetup of 4096 characters or more, a
 *         buffer of 4096 bytes receives the first 4095 (with 4096 returned, for a negative size 0); a larger one all
 *         that fits.
 */
ViStatus _VI_FUNC KVX2800T_GetAttributeViString(ViSession Vi, ViConstString RepCapIdentifier, ViAttr AttributeID,
                                                ViInt32 AttributeValueBufferSize, ViChar AttributeValue[]);

/**
 * @brief Sets a ViInt32 attribute.
 *
 * @param Vi                the session.
 * @param RepCapIdentifier  the channels; ignored by attributes that have none.
 * @param AttributeID       the attribute, one of KVX2800T_ATTR_...
 * @param AttributeValue    the value.
 * @return 0, or a status code of the group.
 */
ViStatus _VI_FUNC KVX2800T_SetAttributeViInt32(ViSession Vi, ViConstString RepCapIdentifier, ViAttr AttributeID,
                                               ViInt32 AttributeValue);

/**
 * @brief Sets a ViReal64 attribute.
 *
 * @param Vi                the session.
 * @param RepCapIdentifier  the channels; ignored by attributes that have none.
 * @param AttributeID       the attribute, one of KVX2800T_ATTR_...
 * @param AttributeValue    the value.
 * @return 0, or a status code of the group.
 */
ViStatus _VI_FUNC KVX2800T_SetAttributeViReal64(ViSession Vi, ViConstString RepCapIdentifier, ViAttr AttributeID,
                                                ViReal64 AttributeValue);

/**
 * @brief Sets a ViBoolean attribute; for KVX2800T_ATTR_SIMULATE only VI_TRUE is true, elsewhere everything but
 * VI_FALSE.
 *
 * @param Vi                the session.
 * @param RepCapIdentifier  the channels; ignored by attributes that have none.
 * @param AttributeID       the attribute, one of KVX2800T_ATTR_...
 * @param AttributeValue    the value.
 * @return 0, or a status code of the group.
 */
ViStatus _VI_FUNC KVX2800T_SetAttributeViBoolean(ViSession Vi, ViConstString RepCapIdentifier, ViAttr AttributeID,
                                                 ViBoolean AttributeValue);

/**
 * @brief Sets a ViSession attribute. The driver has none.
 *
 * @param Vi                the session.
 * @param RepCapIdentifier  the channels; ignored by attributes that have none.
 * @param AttributeID       the attribute, one of KVX2800T_ATTR_...
 * @param AttributeValue    the value.
 * @return 0, or a status code of the group.
 */
ViStatus _VI_FUNC KVX2800T_SetAttributeViSession(ViSession Vi, ViConstString RepCapIdentifier, ViAttr AttributeID,
                                                 ViSession AttributeValue);

/**
 * @brief Sets a ViString attribute. The driver's are all read-only.
 *
 * @param Vi                the session.
 * @param RepCapIdentifier  the channels; ignored by attributes that have none.
 * @param AttributeID       the attribute, one of KVX2800T_ATTR_...
 * @param AttributeValue    the value.
 * @return 0, or a status code of the group.
 */
ViStatus _VI_FUNC KVX2800T_SetAttributeViString(ViSession Vi, ViConstString RepCapIdentifier, ViAttr AttributeID,
                                                ViConstString AttributeValue);

/** @} */

#ifdef __cplusplus
}
#endif

#include "KVX2800TInstrument.h"

#endif
