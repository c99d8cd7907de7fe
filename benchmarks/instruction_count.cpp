#include "api/KVX2800T.h"

#include <IviCShared.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>

// One kind of call, as often as it is told to: a program to count the instructions of.

namespace
{

void lockBaseline(ViSession vi)
{
    ViAddr data = nullptr;
    IviSession_GetDataPtr(vi, &data);
    IviSession_Lock(vi, VI_NULL);
    IviSession_Unlock(vi, VI_NULL);
}

void configureVoltageLevel(ViSession vi)
{
    KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3", 5.0);
}

void getVoltageLevel(ViSession vi)
{
    ViReal64 volts = 0.0;
    KVX2800T_GetAttributeViReal64(vi, "OutputChannel3", KVX2800T_ATTR_VOLTAGE_LEVEL, &volts);
}

struct Call
{
    const char* name;
    void (*make)(ViSession vi);
};

constexpr std::array kCalls = {
    Call{"lockBaseline", lockBaseline},
    Call{"configureVoltageLevel", configureVoltageLevel},
    Call{"getVoltageLevel", getVoltageLevel},
};

const Call* findCall(const char* name)
{
    for (const Call& call : kCalls)
        if (std::strcmp(call.name, name) == 0)
            return &call;
    return nullptr;
}

} // namespace

int main(int argc, char* argv[])
{
    // Without a resource the instrument is simulated.
    const Call* const call = argc >= 3 ? findCall(argv[1]) : nullptr;
    if (call == nullptr) {
        std::fputs("usage: instruction_count CALL COUNT [RESOURCE]\n", stderr);
        return EXIT_FAILURE;
    }
    ViSession vi = VI_NULL;
    const bool simulates = argc < 4;
    const ViStatus opened =
        KVX2800T_InitWithOptions(simulates ? nullptr : argv[3], VI_FALSE, VI_FALSE, simulates ? "Simulate=1" : "", &vi);
    if (opened != VI_SUCCESS)
        return EXIT_FAILURE;
    for (long left = std::strtol(argv[2], nullptr, 10); left > 0; --left)
        call->make(vi);
    return KVX2800T_close(vi) == VI_SUCCESS ? EXIT_SUCCESS : EXIT_FAILURE;
}
