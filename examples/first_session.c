/* A first session: opens a supply, configures channels 1 and 3, reads the settings back, shows a recorded error. */
#include "KVX2800T.h"

#include <stdio.h>
#include <stdlib.h>

/* Prints what was recorded for a failed call and ends the program. On VI_NULL it is the thread's first error. */
static void check(ViSession vi, ViStatus status, const char* call)
{
    ViStatus code = VI_SUCCESS;
    ViChar text[256] = "";
    if (status >= VI_SUCCESS)
        return;
    KVX2800T_GetError(vi, &code, sizeof text, text);
    fprintf(stderr, "%s: 0x%08lX %s\n", call, (unsigned long)status & 0xFFFFFFFFUL, text);
    exit(EXIT_FAILURE);
}

static void configure(ViSession vi, const char* channel, double volts, double amperes)
{
    check(vi, KVX2800T_ConfigureVoltageLevel(vi, channel, volts), "ConfigureVoltageLevel");
    check(vi, KVX2800T_ConfigureCurrentLimit(vi, channel, KVX2800T_VAL_CURRENT_REGULATE, amperes),
          "ConfigureCurrentLimit");
    check(vi, KVX2800T_ConfigureOutputEnabled(vi, channel, VI_TRUE), "ConfigureOutputEnabled");
}

static void show(ViSession vi, const char* channel)
{
    ViReal64 volts = 0.0;
    ViReal64 amperes = 0.0;
    ViBoolean enabled = VI_FALSE;
    check(vi, KVX2800T_GetAttributeViReal64(vi, channel, KVX2800T_ATTR_VOLTAGE_LEVEL, &volts), "VOLTAGE_LEVEL");
    check(vi, KVX2800T_GetAttributeViReal64(vi, channel, KVX2800T_ATTR_CURRENT_LIMIT, &amperes), "CURRENT_LIMIT");
    check(vi, KVX2800T_GetAttributeViBoolean(vi, channel, KVX2800T_ATTR_OUTPUT_ENABLED, &enabled), "OUTPUT_ENABLED");
    printf("%s: %.3f V, %.3f A, output %s\n", channel, volts, amperes, enabled ? "on" : "off");
}

int main(int argc, char* argv[])
{
    ViSession vi = VI_NULL;
    ViStatus status = VI_SUCCESS;
    ViStatus code = VI_SUCCESS;
    ViChar driverRevision[256];
    ViChar firmwareRevision[256];
    ViChar text[256];

    if (argc != 2) {
        fprintf(stderr, "usage: first_session RESOURCE\n");
        return EXIT_FAILURE;
    }

    check(VI_NULL, KVX2800T_InitWithOptions(argv[1], VI_TRUE, VI_TRUE, "QueryInstrStatus=1", &vi), "InitWithOptions");
    check(vi, KVX2800T_revision_query(vi, driverRevision, firmwareRevision), "revision_query");
    printf("driver %s, firmware %s\n", driverRevision, firmwareRevision);

    configure(vi, "OutputChannel1", 5.0, 1.0);
    configure(vi, "OutputChannel3", 3.3, 0.5);
    show(vi, "OutputChannel1");
    show(vi, "OutputChannel3");

    status = KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3", 16.5);
    KVX2800T_GetError(vi, &code, sizeof text, text);
    printf("16.5 V on OutputChannel3: 0x%08lX %s\n", (unsigned long)status & 0xFFFFFFFFUL, text);

    check(vi, KVX2800T_ConfigureOutputEnabled(vi, "OutputChannel1,OutputChannel3", VI_FALSE), "ConfigureOutputEnabled");
    check(VI_NULL, KVX2800T_close(vi), "close");
    printf("closed\n");
    return status == KVX2800T_ERROR_VALUE_OUT_OF_RANGE && code == status ? EXIT_SUCCESS : EXIT_FAILURE;
}
