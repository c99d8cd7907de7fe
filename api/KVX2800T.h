/**
 * @file KVX2800T.h
 * @brief IVI-C driver for the KVX2800T family of programmable multi-channel DC power supplies.
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
 * getters take exactly one name. Letter case counts.
 *
 * @par Status
 * Every function returns 0 (VI_SUCCESS), a positive warning or a negative error. Unless a function says otherwise, an
 * error has been recorded on the session together with a text: KVX2800T_GetError reads both. The first error stays
 * until it is read or cleared. An error of VISA or of the IVI shared components that reaches the caller keeps its code.
 *
 * @par Exceptions
 * A reply that the driver cannot read as the number or switch it has asked for, and a channel range with a number
 * beyond 32 bits, leave as a C++ standard exception (std::invalid_argument, std::out_of_range), with nothing recorded
 * and the session still locked by the calling thread. One that leaves init has stored the session in Vi, which can be
 * closed.
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
 * @name Attributes
 * Of one channel each; for the KVX2800T_GetAttributeVi... functions.
 * @{
 */
/** ViReal64, volts: the voltage setting of a channel. */
#define KVX2800T_ATTR_VOLTAGE_LEVEL 1250001
/** ViInt32, KVX2800T_VAL_CURRENT_...: what a channel does at its current limit. */
#define KVX2800T_ATTR_CURRENT_LIMIT_BEHAVIOR 1250004
/** ViReal64, amperes: the current limit of a channel. */
#define KVX2800T_ATTR_CURRENT_LIMIT 1250005
/** ViBoolean: whether a channel's output is on. */
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
 * @name Sessions
 * @{
 */

/**
 * @brief Opens a session without options.
 *
 * @param ResourceName  VISA resource descriptor of the instrument; null is "".
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
 * @param ResourceName  as for KVX2800T_init; ignored when simulating.
 * @param IdQuery       as for KVX2800T_init.
 * @param Reset         as for KVX2800T_init.
 * @param OptionString  "Name=Value" pairs separated by commas, in any letter case; null is "". Names: Cache,
 *                      InterchangeCheck, QueryInstrStatus, RangeCheck, RecordCoercions, Simulate. Values: True,
 *                      VI_TRUE, 1, False, VI_FALSE, 0. "DriverSetup=..." comes last and holds "Name:Value" pairs, of
 *                      which "Model" has an effect. Without an entry: Cache and RangeCheck are on, the others off.
 *                      With QueryInstrStatus on, the instrument's event status is checked after every configuration.
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
 * @return 0, or KVX2800T_ERROR_INVALID_SESSION_HANDLE (nothing recorded).
 */
ViStatus _VI_FUNC KVX2800T_close(ViSession Vi);

/**
 * @brief Keeps the session to the calling thread until KVX2800T_UnlockSession, across several calls.
 *
 * @param Vi             the session.
 * @param CallerHasLock  null; or a variable, VI_FALSE at first, that lets a function lock on several paths and unlock
 *                       once: VI_TRUE means that nothing is to be done (IVI-3.2 section 6.13).
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

/** @} */

/**
 * @name Attribute access
 *
 * Each getter asks the instrument for the present value: ":SOUR1:VOLT?", ":SOUR1:CURR?", ":SOUR1:CURR:PROT:STAT?",
 * ":OUTP:STAT? CH1". The source mode is not changed. The value stays as it was when the call fails.
 *
 * Status codes: 0xBFFA0058 for a null AttributeValue, 0xBFFA000C for an unknown AttributeID, 0xBFFA0015 for an
 * attribute of another type, 0xBFFA0044 and 0xBFFA0063 to 0xBFFA0067 for a RepCapIdentifier that does not name exactly
 * one channel, 0xBFFA0059 for a reply that names no value of the attribute, KVX2800T_ERROR_IO.
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

/** @} */

#ifdef __cplusplus
}
#endif

#endif
