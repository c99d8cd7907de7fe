#pragma once

#include <visa.h>

#include <vector>

namespace kvxtest
{

/// An attribute of a serial line, a value for it, and what setting it gives.
struct SettingCase
{
    const char* name;
    ViAttr attribute;
    ViUInt32 value;
    ViStatus status;
};

/// Values that hosts differ about.
std::vector<SettingCase> hostSettings();

} // namespace kvxtest
