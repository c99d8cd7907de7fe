#include "tests/support/environment.h"

#include "platform/common/windows_environment.h"
#include "platform/common/windows_text.h"

#include <windows.h>

namespace kvxtest
{
namespace
{

std::wstring wide(const std::string& text)
{
    return platform::wideText(text).value();
}

std::optional<std::string> variable(const std::string& name)
{
    const auto value = platform::environmentVariable(wide(name));
    return value ? std::optional(platform::utf8Text(*value)) : std::nullopt;
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
