#include "platform/common/windows_environment.h"

#include <windows.h>

namespace platform
{

std::optional<std::wstring> environmentVariable(const std::wstring& name)
{
    DWORD size = GetEnvironmentVariableW(name.c_str(), nullptr, 0);
    if (size == 0)
        return std::nullopt;
    std::wstring value;
    // Another thread may lengthen it between two calls.
    while (size > value.size()) {
        value.resize(size);
        size = GetEnvironmentVariableW(name.c_str(), value.data(), size);
    }
    value.resize(size);
    return value;
}

} // namespace platform
