#pragma once

#include <optional>
#include <string>

namespace platform
{

/// The variable's value; nothing when it is not set. Asked of the system: each C library in the process keeps its own
/// copy of the environment, which later changes do not reach.
std::optional<std::wstring> environmentVariable(const std::wstring& name);

} // namespace platform
