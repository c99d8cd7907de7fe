#pragma once

#include "base/status_codes.h"
#include "runtime/message_arguments.h"

#include <array>
#include <initializer_list>
#include <string_view>

/// Status codes to messages, and the reporters that record them on an IVI session. The table, in error_messages.cpp,
/// and the texts beside it are constant: any thread may read them, with or without a session.
namespace drivekit
{

/// A template with printf's "%s" for each argument; empty for a code that the table does not hold. The text behind the
/// view ends in a NUL.
std::string_view GetErrorMessage(ViStatus code);

/// The texts that stand behind a template of the table, as its elaboration.
namespace elaborations
{
inline constexpr std::string_view kUnknownCode = "The error code supplied is not defined by the driver.";
inline constexpr std::string_view kNoInterchangeCheck = "Interchange checking is not supported by the driver.";
inline constexpr std::string_view kNoInstrument =
    "Insufficient location information or resource not present in the system";
inline constexpr std::string_view kRepeatedDriverSetup = "DriverSetup option '%s' appears more than once.";
inline constexpr std::string_view kRepeatedInherentOption = "Inherent option '%s' appears more than once.";
inline constexpr std::string_view kUnreadReply = "The reply was '%s'.";
inline constexpr std::string_view kNotFinite = "%s is no finite number.";
inline constexpr std::string_view kNoMember = "%s is none of the values.";
inline constexpr std::string_view kLevelBeyondLimits = "%s%s takes %s %s to %s %s, not %s %s.";
inline constexpr std::string_view kThrown = "%s";
inline constexpr std::string_view kTransfer = "Resource '%s': %s.";
inline constexpr std::string_view kVisaStatus = "Resource '%s': %s, %s.";
inline constexpr std::string_view kAnotherInstrument = "Resource '%s': another instrument answers than before.";
inline constexpr std::string_view kFaultyItem = "The item is '%s'.";
} // namespace elaborations

/// The text of a status of VISA, which the table has none for.
inline constexpr std::string_view kTransferFailed = "The transfer has failed with VISA's status %s.";

/// The texts that take the place of the table's, for what is wrong with a selector.
namespace selector_texts
{
inline constexpr std::string_view kNoSelector =
    "No selector was specified for repeated capability '%s'.  The repeated capability identifier can be null or empty "
    "only when there is exactly one physical name defined.  Repeated capability '%s' has %s physical names defined.";
inline constexpr std::string_view kSeveralNames =
    "Only a single repeated capability identifier can be specified for the current operation.";
inline constexpr std::string_view kUnknownName = "The identifier '%s' is not defined for repeated capability '%s'.";
inline constexpr std::string_view kBaseNamesDiffer = "The base names do not match.";
inline constexpr std::string_view kEmptyRange = "The start index must be less than the end index.";
inline constexpr std::string_view kRangesOverlap = "An identifier in the range overlaps with another range.";
} // namespace selector_texts

/// Texts for the places of a template, in order. A template with fewer places ignores the rest; one with more leaves
/// those empty.
using MessageArguments = std::initializer_list<std::string_view>;

/// Records `code` with its message as the error of `vi` (VI_NULL: of the calling thread). A description has at most
/// 1023 characters. Never throws.
/// @return `code`, or the session service's status when it refuses the record.
ViStatus ReportError(ViSession vi, ViStatus code, MessageArguments arguments = {});

/// As ReportError, with two blanks and `elaboration` behind the message. The elaboration is part of the template: its
/// places take the arguments that the message has left.
ViStatus ReportErrorWithElaboration(ViSession vi, ViStatus code, std::string_view elaboration,
                                    MessageArguments arguments = {});

/// As ReportError, with a template of the caller's in place of the table's.
ViStatus ReportErrorText(ViSession vi, ViStatus code, std::string_view text, MessageArguments arguments = {});

/// As ReportError, with templates of the caller's, two blanks between them; those behind the first may be empty.
ViStatus ReportErrorTexts(ViSession vi, ViStatus code, const std::array<std::string_view, 3>& texts,
                          MessageArguments arguments = {});

} // namespace drivekit
