#pragma once

#include "runtime/error_codes.h"

#include <array>
#include <charconv>
#include <initializer_list>
#include <string_view>

/// Status codes to messages, and the reporters that record them on an IVI session. The table is constant: any thread
/// may read it, with or without a session.
namespace drivekit
{

/// A template with printf's "%s" for each argument; empty for a code that the table does not hold. The text behind the
/// view ends in a NUL.
std::string_view GetErrorMessage(ViStatus code);

/// Texts for the places of a template, in order. A template with fewer places ignores the rest; one with more leaves
/// those empty.
using MessageArguments = std::initializer_list<std::string_view>;

/// A number as a message argument, in decimal.
class DecimalArgument
{
public:
    template <class Integer>
    explicit DecimalArgument(Integer number)
    {
        const auto end = std::to_chars(text_.data(), text_.data() + text_.size(), number).ptr;
        length_ = static_cast<std::size_t>(end - text_.data());
    }

    operator std::string_view() const { return {text_.data(), length_}; } // NOLINT(google-explicit-constructor)

private:
    std::array<char, 24> text_{};
    std::size_t length_ = 0;
};

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

} // namespace drivekit
