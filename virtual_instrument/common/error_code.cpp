#include "virtual_instrument/common/error_code.h"

namespace kvxvirtual
{

std::string_view errorText(ErrorCode code)
{
    switch (code) {
    case ErrorCode::None:
        return "No error";
    case ErrorCode::InvalidCharacter:
        return "Invalid character";
    case ErrorCode::SyntaxError:
        return "Syntax error";
    case ErrorCode::DataTypeError:
        return "Data type error";
    case ErrorCode::ParameterNotAllowed:
        return "Parameter not allowed";
    case ErrorCode::MissingParameter:
        return "Missing parameter";
    case ErrorCode::UndefinedHeader:
        return "Undefined header";
    case ErrorCode::HeaderSuffixOutOfRange:
        return "Header suffix out of range";
    case ErrorCode::InvalidCharacterInNumber:
        return "Invalid character in number";
    case ErrorCode::InvalidCharacterData:
        return "Invalid character data";
    case ErrorCode::SettingsConflict:
        return "Settings conflict";
    case ErrorCode::DataOutOfRange:
        return "Data out of range";
    case ErrorCode::TooMuchData:
        return "Too much data";
    case ErrorCode::IllegalParameterValue:
        return "Illegal parameter value";
    case ErrorCode::QueueOverflow:
        return "Queue overflow";
    case ErrorCode::InputBufferOverrun:
        return "Input buffer overrun";
    case ErrorCode::QueryInterrupted:
        return "Query INTERRUPTED";
    case ErrorCode::QueryUnterminated:
        return "Query UNTERMINATED";
    }
    return "";
}

} // namespace kvxvirtual
