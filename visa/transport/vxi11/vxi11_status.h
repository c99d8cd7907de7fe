#pragma once

#include <visa.h>

#include <cstdint>

namespace visa
{

/// What an error that a device answers with is to VISA; VI_ERROR_IO for numbers that VXI-11 does not have.
ViStatus statusOfVxi11(std::int32_t error);

} // namespace visa
