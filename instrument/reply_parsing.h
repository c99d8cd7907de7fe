#pragma once

#include <IviVisaType.h>

#include <cstddef>
#include <string_view>

/// Replies to values. All functions read numbers in the C locale, whatever locale the process has chosen, and ignore
/// what follows the number.
namespace TSRO
{

/// "ON" or "1": true; "OFF" or "0": false. The scan ends at the first character that is none of "ONOFF10".
/// @throws std::invalid_argument "Visa::parseBool Unknown ret:" and the whole reply for anything else.
bool parseBoolean(std::string_view reply);

/// Decimal and hexadecimal floating-point numbers, infinities and NaN, as C's strtod reads them.
/// @throws std::invalid_argument "invalid stod argument", std::out_of_range "stod argument out of range".
double parseDouble(std::string_view reply);

/// A decimal integer of 32 bits.
/// @throws std::invalid_argument "invalid stoi argument", std::out_of_range "stoi argument out of range".
ViInt32 parseInt(std::string_view reply);

/// As parseInt, with the messages of a conversion to long; 32 bits on every host.
/// @throws std::invalid_argument "invalid stol argument", std::out_of_range "stol argument out of range".
ViInt32 parseLong(std::string_view reply);

/// The comma-separated fields of a reply; a view of it, not a copy. An empty reply has no fields, any other one more
/// than it has commas.
class ReplyFields
{
public:
    explicit ReplyFields(std::string_view reply) : reply_(reply) {}

    std::size_t count() const;

    /// The field at `index`, counted from 0, with its blanks.
    /// @throws std::out_of_range "invalid vector subscript" when the reply has no such field.
    std::string_view operator[](std::size_t index) const;

private:
    std::string_view reply_;
};

} // namespace TSRO
