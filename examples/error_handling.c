/* What can go wrong and how a program learns of it: statuses, recorded errors, warnings, the instrument's own errors.
 */
#include "KVX2800T.h"

#include <stdio.h>
#include <stdlib.h>

static unsigned long bits(ViStatus status)
{
    return (unsigned long)status & 0xFFFFFFFFUL;
}

/* Negative statuses are errors, positive ones warnings. A failed call leaves its text on the session, where the first
   error stays until it is read: read it at once, so that a later one finds its place. */
static void report(ViSession vi, ViStatus status, const char* what)
{
    ViChar text[1024] = "";
    if (status == VI_SUCCESS) {
        printf("%s: done\n", what);
    } else if (status > VI_SUCCESS) {
        KVX2800T_error_message(vi, status, text);
        printf("%s: warning 0x%08lX %s\n", what, bits(status), text);
    } else {
        KVX2800T_GetError(vi, NULL, sizeof text, text);
        printf("%s: error 0x%08lX %s\n", what, bits(status), text);
    }
}

/* Reads the instrument's error queue until it is empty. */
static void reportInstrumentErrors(ViSession vi)
{
    ViInt32 code = 0;
    ViChar message[256] = "";
    while (KVX2800T_error_query(vi, &code, message) == VI_SUCCESS && code != 0)
        printf("  the instrument says %ld %s\n", (long)code, message);
}

/* Refused by the driver: nothing is sent to the channel. */
static void makeMistakes(ViSession vi)
{
    ViReal64 volts = 0.0;
    report(vi, KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3", 16.0), "16 V on channel 3");
    report(vi, KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3", 16.5), "16.5 V on channel 3");
    report(vi, KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel9", 1.0), "1 V on channel 9");
    report(vi, KVX2800T_ConfigureVoltageLevel(vi, "", 1.0), "1 V without a channel");
    report(vi, KVX2800T_GetAttributeViReal64(vi, "OutputChannel3", KVX2800T_ATTR_OUTPUT_ENABLED, &volts),
           "the output switch as a number");
}

/* The first failure ends a call; channels in front of it keep the new setting. */
static void failHalfway(ViSession vi)
{
    ViReal64 volts = 0.0;
    report(vi, KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3,OutputChannel4", 7.0), "7 V on channels 3 and 4");
    KVX2800T_GetAttributeViReal64(vi, "OutputChannel3", KVX2800T_ATTR_VOLTAGE_LEVEL, &volts);
    printf("  channel 3 has %.1f V\n", volts);
}

static void meetAWarning(ViSession vi)
{
    ViInt16 result = 0;
    ViChar message[256] = "";
    report(vi, KVX2800T_self_test(vi, &result, message), "self test");
}

/* Refused by the instrument: unnoticed until somebody asks, unless the status is checked after every configuration. */
static void checkTheStatus(ViSession vi)
{
    report(vi, KVX2800T_ConfigureOVP(vi, "OutputChannel3", VI_TRUE, 1000.0), "1000 V protection, unchecked");
    reportInstrumentErrors(vi);
    report(vi, KVX2800T_SetAttributeViBoolean(vi, "", KVX2800T_ATTR_QUERY_INSTRUMENT_STATUS, VI_TRUE),
           "status checking on");
    report(vi, KVX2800T_ConfigureOVP(vi, "OutputChannel3", VI_TRUE, 1000.0), "1000 V protection, checked");
    reportInstrumentErrors(vi);
    report(vi, KVX2800T_ConfigureOVP(vi, "OutputChannel3", VI_TRUE, 10.0), "10 V protection, checked");
}

/* An unknown session has no place for a text: the table of messages has one. */
static void useAClosedSession(ViSession vi)
{
    ViChar text[256] = "";
    const ViStatus status = KVX2800T_reset(vi);
    KVX2800T_error_message(VI_NULL, status, text);
    printf("reset after close: error 0x%08lX %s\n", bits(status), text);
}

int main(int argc, char* argv[])
{
    ViSession vi = VI_NULL;
    ViStatus status = VI_SUCCESS;

    if (argc != 2) {
        fprintf(stderr, "usage: error_handling RESOURCE\n");
        return EXIT_FAILURE;
    }

    /* A failed open leaves its text with the thread, behind VI_NULL. */
    status = KVX2800T_init(argv[1], VI_TRUE, VI_TRUE, &vi);
    report(VI_NULL, status, "open");
    if (status < VI_SUCCESS)
        return EXIT_FAILURE;

    makeMistakes(vi);
    failHalfway(vi);
    meetAWarning(vi);
    checkTheStatus(vi);
    KVX2800T_close(vi);
    useAClosedSession(vi);
    return EXIT_SUCCESS;
}
