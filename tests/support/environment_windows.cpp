#include "tests/support/environment.h"

#include "tests/support/utf8_path.h"

#include <windows.h>

namespace kvxtest
{
namespace
{

std::wstring wide(const std::string& text)
{
    return fromUtf8(text).wstring();
}

std::optional<std::string> variable(const std::string& name)
{
    std::wstring value(32768, L'\0');
    SetLastError(ERROR_SUCCESS);
    const DWORD size = GetEnvironmentVariableW(wide(name).c_str(), value.data(), static_cast<DWORD>(value.size()));
    if (size == 0 && GetLastError() == ERROR_ENVVAR_NOT_FOUND)
        return std::nullopt;
    return toUtf8(value.substr(0, size));
}

} // namespace

EnvironmentVariable::EnvironmentVariable(const char* name, const char* value) : name_(name), before_(variable(name))
{
    SetEnvironmentVariableW(wide(name_).c_str(), value == nullptr ? nullptr : wide(value).c_str());
}

EnvironmentVariable::~EnvironmentVariable()
{
    SetEnvironmentVariableW(wide(name_).c_str(), before_ ? wide(*before_).c_str() : nullptr);
}

} // namespace kvxtest
