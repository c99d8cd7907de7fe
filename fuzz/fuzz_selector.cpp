// Any text as a channel selector: it names channels, or is refused with one of the documented codes.
#include "api/KVX2800T.h"

#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace
{

ViSession simulatedSession()
{
    ViSession vi = VI_NULL;
    if (KVX2800T_InitWithOptions(nullptr, VI_FALSE, VI_FALSE, "Simulate=1", &vi) < 0)
        std::abort();
    return vi;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const ViSession vi = simulatedSession();
    const std::string selector(reinterpret_cast<const char*>(data), size);
    ViReal64 volts = 0.0;
    try {
        switch (static_cast<std::uint32_t>(
            KVX2800T_GetAttributeViReal64(vi, selector.c_str(), KVX2800T_ATTR_VOLTAGE_LEVEL, &volts)))
        {
        case 0:
        case 0xBFFA0044U:
        case 0xBFFA0063U:
        case 0xBFFA0064U:
        case 0xBFFA0066U:
        case 0xBFFA0067U:
            break;
        default:
            std::abort();
        }
    } catch (const std::out_of_range&) {
        // A number beyond 32 bits; the call has left the session locked by this thread.
        KVX2800T_UnlockSession(vi, nullptr);
    }
    KVX2800T_ClearError(vi);
    return 0;
}
