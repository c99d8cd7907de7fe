#pragma once

#include <visa.h>

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

namespace visa
{

/// The classes of sessions, as bits so that an attribute's row can name several.
using SessionClass = unsigned;
inline constexpr SessionClass kManager = 1;
inline constexpr SessionClass kSerial = 2;
inline constexpr SessionClass kSocket = 4;

/// How an attribute's value is passed; the widths differ, and writing more would overwrite the caller's memory.
enum class ValueType
{
    Byte,
    Short,
    Boolean,
    Long,
    Text
};

/// Where an attribute's value lives.
enum class Holder
{
    Session,    ///< among the session's values; viSetAttribute changes it
    Connection, ///< as Session, and the connection has to accept it first
    Fact        ///< told by the session; read only
};

/// The values that viSetAttribute accepts: a range, or a list where there is one.
struct AllowedValues
{
    ViUInt32 smallest = 0;
    ViUInt32 largest = 0xFFFFFFFF;
    std::span<const ViUInt32> list{};

    bool contains(ViUInt32 value) const;
};

struct AttributeRow
{
    ViAttr attribute;
    ValueType type;
    SessionClass classes;
    Holder holder;
    AllowedValues allowed;
    ViUInt32 initial;
};

inline constexpr std::size_t kAttributeCount = 26;

/// All attributes.
std::span<const AttributeRow> attributeRows();

/// The row of an attribute for one class of session; null when that class does not have the attribute.
const AttributeRow* findAttribute(ViAttr attribute, SessionClass sessionClass);

/// The value as the attribute's type sees it: a register may carry a sign-extended number.
ViUInt32 reduced(ViAttrState value, ValueType type);

/// Stores a number in the caller's variable, in the width of the attribute's type.
void storeNumber(ViUInt32 value, ValueType type, void* target);

/// Stores a text of at most 255 characters in the caller's buffer; the rest of a longer one is left out.
void storeText(std::string_view text, void* target);

/// The values of one session, by attribute; those of the table at first. Its owner serialises access.
class AttributeValues
{
public:
    AttributeValues();

    ViUInt32 get(ViAttr attribute) const;
    void set(ViAttr attribute, ViUInt32 value);

private:
    std::array<ViUInt32, kAttributeCount> values_{};
};

} // namespace visa
