#pragma once

#include <string>

namespace TSRO
{

/// Who the instrument says it is: the four fields of an IEEE 488.2 "*IDN?" reply, as they stand in it.
struct Identity
{
    std::string manufacturer;
    std::string model;
    std::string serialNumber;
    std::string firmwareRevision;
};

} // namespace TSRO
