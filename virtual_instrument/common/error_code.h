#pragma once

#include <string_view>

namespace kvxvirtual
{

/// The SCPI-99 errors that the instrument raises by itself.
enum class ErrorCode
{
    None = 0,
    InvalidCharacter = -101,
    SyntaxError = -102,
    DataTypeError = -104,
    ParameterNotAllowed = -108,
    MissingParameter = -109,
    UndefinedHeader = -113,
    HeaderSuffixOutOfRange = -114,
    InvalidCharacterInNumber = -121,
    InvalidCharacterData = -141,
    SettingsConflict = -221,
    DataOutOfRange = -222,
    TooMuchData = -223,
    IllegalParameterValue = -224,
    QueueOverflow = -350,
    InputBufferOverrun = -363,
    QueryInterrupted = -410,
    QueryUnterminated = -420,
};

/// The standard's text for `code`, without quotes. None of them holds a comma, which clients split replies at.
std::string_view errorText(ErrorCode code);

} // namespace kvxvirtual
