#pragma once

#include <IviVisaType.h>

namespace TSRO
{

/// The status whose bit pattern is `bits`: published codes are unsigned literals, `ViStatus` is signed.
constexpr ViStatus statusCode(ViUInt32 bits)
{
    return static_cast<ViStatus>(bits);
}

/// "I/O error.": a write to or a read from the instrument failed.
inline constexpr ViStatus kIoError = statusCode(0xBFFA4214U);
/// "Attribute or function parameter value is invalid (out of range or not supported)."
inline constexpr ViStatus kValueOutOfRange = statusCode(0xBFFA4217U);
/// "Unexpected response from instrument.": a reply names a keyword that the setting does not have.
inline constexpr ViStatus kUnexpectedResponse = statusCode(0xBFFA0059U);

} // namespace TSRO
