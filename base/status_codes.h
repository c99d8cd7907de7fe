#pragma once

#include <IviVisaType.h>

/// The status codes that the driver has a message for, in one list. A code's name here is that of the public header in
/// another spelling: IVI_ERROR_NULL_POINTER is kErrorNullPointer. The messages are in runtime/error_messages.cpp.
namespace base
{

/// The status whose bit pattern is `bits`: published codes are unsigned literals, `ViStatus` is signed.
constexpr ViStatus statusCode(ViUInt32 bits)
{
    return static_cast<ViStatus>(bits);
}

inline constexpr ViStatus kSuccess = statusCode(0x00000000U);

// The driver's own.
inline constexpr ViStatus kErrorInvalidSessionHandle = statusCode(0xBFFA1190U);
inline constexpr ViStatus kErrorIo = statusCode(0xBFFA4214U);
inline constexpr ViStatus kErrorIoTimeout = statusCode(0xBFFA4215U);
inline constexpr ViStatus kErrorOperationNotSupported = statusCode(0xBFFA4216U);
inline constexpr ViStatus kErrorValueOutOfRange = statusCode(0xBFFA4217U);
inline constexpr ViStatus kWarnArrayTruncated = statusCode(0x3FFA4001U);

// Errors that all IVI drivers share (IVI-3.2 section 11, IVI-3.1 for selectors).
inline constexpr ViStatus kErrorCannotRecover = statusCode(0xBFFA0000U);
inline constexpr ViStatus kErrorInstrumentStatus = statusCode(0xBFFA0001U);
inline constexpr ViStatus kErrorCannotOpenFile = statusCode(0xBFFA0002U);
inline constexpr ViStatus kErrorReadingFile = statusCode(0xBFFA0003U);
inline constexpr ViStatus kErrorWritingFile = statusCode(0xBFFA0004U);
inline constexpr ViStatus kErrorInvalidPathname = statusCode(0xBFFA000BU);
inline constexpr ViStatus kErrorInvalidAttribute = statusCode(0xBFFA000CU);
inline constexpr ViStatus kErrorIviAttrNotWritable = statusCode(0xBFFA000DU);
inline constexpr ViStatus kErrorIviAttrNotReadable = statusCode(0xBFFA000EU);
inline constexpr ViStatus kErrorInvalidValue = statusCode(0xBFFA0010U);
inline constexpr ViStatus kErrorFunctionNotSupported = statusCode(0xBFFA0011U);
inline constexpr ViStatus kErrorAttributeNotSupported = statusCode(0xBFFA0012U);
inline constexpr ViStatus kErrorValueNotSupported = statusCode(0xBFFA0013U);
inline constexpr ViStatus kErrorTypesDoNotMatch = statusCode(0xBFFA0015U);
inline constexpr ViStatus kErrorNotInitialized = statusCode(0xBFFA001DU);
inline constexpr ViStatus kErrorUnknownChannelName = statusCode(0xBFFA0020U);
inline constexpr ViStatus kErrorTooManyOpenFiles = statusCode(0xBFFA0023U);
inline constexpr ViStatus kErrorChannelNameRequired = statusCode(0xBFFA0044U);
inline constexpr ViStatus kErrorMissingOptionName = statusCode(0xBFFA0049U);
inline constexpr ViStatus kErrorMissingOptionValue = statusCode(0xBFFA004AU);
inline constexpr ViStatus kErrorBadOptionName = statusCode(0xBFFA004BU);
inline constexpr ViStatus kErrorBadOptionValue = statusCode(0xBFFA004CU);
inline constexpr ViStatus kErrorOutOfMemory = statusCode(0xBFFA0056U);
inline constexpr ViStatus kErrorOperationPending = statusCode(0xBFFA0057U);
inline constexpr ViStatus kErrorNullPointer = statusCode(0xBFFA0058U);
inline constexpr ViStatus kErrorUnexpectedResponse = statusCode(0xBFFA0059U);
inline constexpr ViStatus kErrorFileNotFound = statusCode(0xBFFA005BU);
inline constexpr ViStatus kErrorInvalidFileFormat = statusCode(0xBFFA005CU);
inline constexpr ViStatus kErrorStatusNotAvailable = statusCode(0xBFFA005DU);
inline constexpr ViStatus kErrorIdQueryFailed = statusCode(0xBFFA005EU);
inline constexpr ViStatus kErrorResetFailed = statusCode(0xBFFA005FU);
inline constexpr ViStatus kErrorResourceUnknown = statusCode(0xBFFA0060U);
inline constexpr ViStatus kErrorAlreadyInitialized = statusCode(0xBFFA0061U);
inline constexpr ViStatus kErrorCannotChangeSimulationState = statusCode(0xBFFA0062U);
inline constexpr ViStatus kErrorInvalidNumberOfLevelsInSelector = statusCode(0xBFFA0063U);
inline constexpr ViStatus kErrorInvalidRangeInSelector = statusCode(0xBFFA0064U);
inline constexpr ViStatus kErrorUnknownNameInSelector = statusCode(0xBFFA0065U);
inline constexpr ViStatus kErrorBadlyFormedSelector = statusCode(0xBFFA0066U);
inline constexpr ViStatus kErrorUnknownPhysicalIdentifier = statusCode(0xBFFA0067U);
inline constexpr ViStatus kErrorTriggerNotSoftware = statusCode(0xBFFA1001U);

// Warnings that all IVI drivers share.
inline constexpr ViStatus kWarnNsupIdQuery = statusCode(0x3FFA0065U);
inline constexpr ViStatus kWarnNsupReset = statusCode(0x3FFA0066U);
inline constexpr ViStatus kWarnNsupSelfTest = statusCode(0x3FFA0067U);
inline constexpr ViStatus kWarnNsupErrorQuery = statusCode(0x3FFA0068U);
inline constexpr ViStatus kWarnNsupRevQuery = statusCode(0x3FFA0069U);

} // namespace base
