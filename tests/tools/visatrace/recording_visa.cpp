#include "tests/tools/visatrace/recording_visa.h"

#include "tools/visatrace/functions.h"

#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <type_traits>

// A VISA that does nothing but write down what it is called with.
namespace
{

using namespace kvxtest;

Recording& recording()
{
    thread_local Recording recording;
    return recording;
}

template <class T>
std::uint64_t asNumber(const T& value)
{
    if constexpr (std::is_pointer_v<T>)
        return reinterpret_cast<std::uintptr_t>(value);
    else
        return static_cast<std::uint64_t>(value);
}

template <class... Arguments>
ViStatus record(const char* function, const Arguments&... arguments)
{
    Recording& mine = recording();
    mine.calls.push_back({function, {asNumber(arguments)...}, errno});
    if (mine.store)
        mine.store(mine.calls.back().arguments);
    errno = mine.errnoAfter;
    return mine.status;
}

std::string formatted(ViConstString format, va_list params)
{
    std::array<char, 200> text{};
    std::vsnprintf(text.data(), text.size(), format, params);
    return text.data();
}

} // namespace

extern "C" Recording& recordingOfThread()
{
    return recording();
}

#define RECORD(result, name, parameters, arguments, ...)                                                               \
    result _VI_FUNC name parameters                                                                                    \
    {                                                                                                                  \
        const auto recordCall = [](const auto&... values) { return record(#name, values...); };                        \
        return static_cast<result>(recordCall arguments);                                                              \
    }
KVX_VISATRACE_FUNCTIONS(RECORD)

ViStatus _VI_FUNC viVPrintf(ViSession vi, ViConstString writeFmt, ViVAList params)
{
    recording().written = formatted(writeFmt, params);
    return record("viVPrintf", vi, writeFmt);
}

ViStatus _VI_FUNC viVSPrintf(ViSession vi, ViPBuf buf, ViConstString writeFmt, ViVAList params)
{
    const std::string text = formatted(writeFmt, params);
    text.copy(reinterpret_cast<char*>(buf), text.size());
    buf[text.size()] = 0;
    return record("viVSPrintf", vi, buf, writeFmt);
}

ViStatus _VI_FUNC viVScanf(ViSession vi, ViConstString readFmt, ViVAList params)
{
    std::vsscanf(recording().found.c_str(), readFmt, params);
    return record("viVScanf", vi, readFmt);
}

ViStatus _VI_FUNC viVSScanf(ViSession vi, ViConstBuf buf, ViConstString readFmt, ViVAList params)
{
    std::vsscanf(reinterpret_cast<const char*>(buf), readFmt, params);
    return record("viVSScanf", vi, buf, readFmt);
}

ViStatus _VI_FUNC viVQueryf(ViSession vi, ViConstString writeFmt, ViConstString readFmt, ViVAList params)
{
    recording().written = writeFmt;
    std::vsscanf(recording().found.c_str(), readFmt, params);
    return record("viVQueryf", vi, writeFmt, readFmt);
}
