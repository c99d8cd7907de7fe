// Any text as an option string of a simulated session: it opens, or refuses with one of the documented codes.
#include "api/KVX2800T.h"

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // A text that ends in a valid option: whatever comes first, no instrument is contacted.
    const std::string options = std::string(reinterpret_cast<const char*>(data), size) + ",Simulate=1";
    ViSession vi = VI_NULL;
    const ViStatus status = KVX2800T_InitWithOptions(nullptr, VI_FALSE, VI_FALSE, options.c_str(), &vi);
    if (status >= 0)
        KVX2800T_close(vi);
    switch (static_cast<std::uint32_t>(status)) {
    case 0:
    case 0xBFFA0000U:
    case 0xBFFA004BU:
    case 0xBFFA004CU:
    case 0xBFFA4214U: // DriverSetup has swallowed "Simulate=1": there is no instrument at "".
        break;
    default:
        std::abort();
    }
    KVX2800T_ClearError(VI_NULL);
    return 0;
}
