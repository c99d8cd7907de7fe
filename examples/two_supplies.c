/* Two supplies in two threads: calls on different sessions run side by side. Needs C11 for its <threads.h>. */
#include "KVX2800T.h"

#include <stdio.h>
#include <stdlib.h>
#include <threads.h>

#define STEPS 5

/* What a thread is to do, and what came of it. No other thread looks at it while that one runs. */
typedef struct
{
    ViRsrc resource;
    ViReal64 highest;
    ViReal64 readings[STEPS];
    ViStatus status;
    ViChar error[1024];
} Supply;

/* Raises the voltage of channel 3 in equal steps and reads each back. */
static ViStatus ramp(ViSession vi, Supply* supply)
{
    ViStatus status = KVX2800T_ConfigureOutputEnabled(vi, "OutputChannel3", VI_TRUE);
    for (int step = 0; step < STEPS && status >= VI_SUCCESS; ++step) {
        status = KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3", supply->highest * (step + 1) / STEPS);
        if (status >= VI_SUCCESS)
            status = KVX2800T_Measure(vi, "OutputChannel3", KVX2800T_VAL_MEASURE_VOLTAGE, &supply->readings[step]);
    }
    return status;
}

/* The text of a failed open is the thread's own: it has to be read here. */
static void noteError(ViSession vi, Supply* supply)
{
    if (supply->status < VI_SUCCESS)
        KVX2800T_GetError(vi, NULL, sizeof supply->error, supply->error);
}

static int run(void* argument)
{
    Supply* const supply = argument;
    ViSession vi = VI_NULL;
    supply->status = KVX2800T_init(supply->resource, VI_TRUE, VI_TRUE, &vi);
    if (supply->status < VI_SUCCESS) {
        noteError(VI_NULL, supply);
        return EXIT_FAILURE;
    }
    supply->status = ramp(vi, supply);
    noteError(vi, supply);
    KVX2800T_Disable(vi);
    KVX2800T_close(vi);
    return supply->status < VI_SUCCESS ? EXIT_FAILURE : EXIT_SUCCESS;
}

static void show(const char* name, const Supply* supply)
{
    printf("%s:", name);
    if (supply->status < VI_SUCCESS) {
        printf(" 0x%08lX %s\n", (unsigned long)supply->status & 0xFFFFFFFFUL, supply->error);
        return;
    }
    for (int step = 0; step < STEPS; ++step)
        printf(" %.1f V", supply->readings[step]);
    printf("\n");
}

int main(int argc, char* argv[])
{
    if (argc != 3) {
        fprintf(stderr, "usage: two_supplies RESOURCE RESOURCE\n");
        return EXIT_FAILURE;
    }

    Supply first = {argv[1], 5.0, {0}, IVI_ERROR_CANNOT_RECOVER, "the thread did not start"};
    Supply second = {argv[2], 15.0, {0}, IVI_ERROR_CANNOT_RECOVER, "the thread did not start"};
    thrd_t firstThread;
    thrd_t secondThread;
    int firstResult = EXIT_FAILURE;
    int secondResult = EXIT_FAILURE;
    const int firstStarted = thrd_create(&firstThread, run, &first);
    const int secondStarted = thrd_create(&secondThread, run, &second);
    if (firstStarted == thrd_success)
        thrd_join(firstThread, &firstResult);
    if (secondStarted == thrd_success)
        thrd_join(secondThread, &secondResult);

    show("first", &first);
    show("second", &second);
    return firstResult == EXIT_SUCCESS && secondResult == EXIT_SUCCESS ? EXIT_SUCCESS : EXIT_FAILURE;
}
