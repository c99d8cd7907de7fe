#pragma once

#include "virtual_instrument/scpi/message_parser.h"

#include <string_view>

namespace kvxvirtual
{

/// What the suffix of a header addresses when nothing was sent: SCPI-99 makes it 1.
inline constexpr int kDefaultSuffix = 1;

/// The outcome of holding a header against a pattern.
struct HeaderMatch
{
    enum class Kind
    {
        None,
        /// The names match, but a suffix is outside 1 to 6 or stands where none belongs.
        BadSuffix,
        Full
    };
    Kind kind = Kind::None;
    int suffix = kDefaultSuffix;
};

/// A command's header as SCPI writes it: `SOURce<n>:VOLTage?`. A node matches in its long form or in its short form,
/// which is its capitals, ignoring case; `|` adds further spellings; `<n>` allows a channel suffix; a trailing `?`
/// makes it a query.
class HeaderPattern
{
public:
    /// `pattern` must outlive the object.
    explicit constexpr HeaderPattern(std::string_view pattern) : pattern_(pattern) {}

    HeaderMatch match(const MessageUnit& unit) const;

private:
    std::string_view pattern_;
};

} // namespace kvxvirtual
