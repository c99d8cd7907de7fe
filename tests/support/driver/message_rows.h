#pragma once

#include <IviVisaType.h>

#include <array>
#include <string_view>

namespace kvxtest
{

/// A status code that the driver has a message for, and the message.
struct MessageRow
{
    ViStatus code;
    std::string_view text;
};

// In decimal, as a caller's log shows the codes.
inline constexpr std::array<MessageRow, 52> kMessageRows = {{
    {-1074118124, "I/O error."},
    {-1074118123, "I/O timeout error."},
    {-1074135040, "Failure cannot recover."},
    {-1074135039, "Instrument error detected.  Use ErrorQuery() to determine the error(s)."},
    {-1074135038, "Cannot open file."},
    {-1074135037, "Error reading file."},
    {-1074135036, "Error writing file."},
    {-1074135029, "The pathname is invalid."},
    {-1074135028, "Attribute ID '%s' not recognized."},
    {-1074135027, "Attribute '%s' is read-only."},
    {-1074135026, "Attribute '%s' is write-only."},
    {-1074135024, "Invalid value '%s' for function '%s', parameter '%s'."},
    {-1074135023, "Does not support this class-compliant feature: function '%s'"},
    {-1074135022, "Does not support this class-compliant feature: attribute '%s'."},
    {-1074135021, "Does not support this class-compliant feature:  Enumeration value '%s' passed as the value for "
                  "parameter '%s' in function '%s'."},
    {-1074135019, "%sAttribute%s called for attribute '%s' of type '%s'."},
    {-1074135011, "A connection to the instrument has not been established."},
    {-1074135008, "Unknown channel name."},
    {-1074135005, "Too many files are open."},
    {-1074134972, "A channel name is required."},
    {-1074134967, "The option string is missing an option name."},
    {-1074134966, "The option string is missing an option value."},
    {-1074134965, "The '%s' name in the option string is unknown."},
    {-1074134964, "The '%s' value in the option string is unknown."},
    {-1074134954, "Could not allocate necessary memory."},
    {-1074134953, "Operation in progress."},
    {-1074134952, "Null pointer passed for function '%s', parameter '%s'."},
    {-1074134951, "Unexpected response from instrument."},
    {-1074134949, "File not found."},
    {-1074134948, "Invalid file format."},
    {-1074134947, "The instrument status is not available."},
    {-1074134946, "Instrument ID query failed."},
    {-1074134945, "Instrument reset failed."},
    {-1074134944, "Unknown resource."},
    {-1074134943, "The driver is already initialized."},
    {-1074134942, "The simulation state cannot be changed."},
    {-1074134941, "The number of levels in the selector is not valid for the '%s' repeated capability."},
    {-1074134940, "The range '%s' is not valid for the repeated capability '%s'."},
    {-1074134939, "Unknown name in selector."},
    {-1074134938, "The repeated capability selector is badly-formed."},
    {-1074134937, "Unknown physical repeated capability selector."},
    {-1074130544, "Invalid session handle."},
    {-1074118122, "The operation (attribute or function) is not supported."},
    {-1074118121, "Attribute or function parameter value is invalid (out of range or not supported)."},
    {-1074130943, "The trigger source is not set to software trigger."},
    {0, "Success."},
    {1073348709, "ID Query is not supported by this instrument."},
    {1073348710, "Reset is not supported by this instrument."},
    {1073348711, "Self test is not supported by this instrument."},
    {1073348712, "Error query is not supported by this instrument."},
    {1073348713, "Firmware revision query is not supported by this instrument."},
    {1073364993, "Array data truncated. Parameter not large enough for data. Required size:"},
}};

} // namespace kvxtest
