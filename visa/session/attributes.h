#pragma once

#include <visa.h>

#include <algorithm>
#include <array>
#include <atomic>
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

/// What the rows of the table are made of.
namespace rows
{
inline constexpr std::array<ViUInt32, 2> kProtocols{VI_PROT_NORMAL, VI_PROT_4882_STRS};
inline constexpr std::array<ViUInt32, 3> kStopBits{VI_ASRL_STOP_ONE, VI_ASRL_STOP_ONE5, VI_ASRL_STOP_TWO};

inline constexpr SessionClass kDevice = kSerial | kSocket;
inline constexpr SessionClass kAll = kManager | kDevice;

inline constexpr AllowedValues kAny{};
inline constexpr AllowedValues kFlag{0, 1};
inline constexpr AllowedValues kBaud{1, 0xFFFFFFFF};

inline constexpr ViUInt32 kBufferSize = 4096;
} // namespace rows

/// All attributes.
inline constexpr std::array<AttributeRow, 27> kAttributeRows{{
    {VI_ATTR_TMO_VALUE, ValueType::Long, rows::kDevice, Holder::Session, rows::kAny, 2000},
    {VI_ATTR_TERMCHAR, ValueType::Byte, rows::kDevice, Holder::Session, rows::kAny, '\n'},
    {VI_ATTR_TERMCHAR_EN, ValueType::Boolean, rows::kDevice, Holder::Session, rows::kFlag, VI_FALSE},
    {VI_ATTR_SEND_END_EN, ValueType::Boolean, rows::kDevice, Holder::Session, rows::kFlag, VI_TRUE},
    {VI_ATTR_SUPPRESS_END_EN, ValueType::Boolean, kSerial, Holder::Session, rows::kFlag, VI_FALSE},
    {VI_ATTR_ASRL_BAUD, ValueType::Long, kSerial, Holder::Connection, rows::kBaud, 9600},
    {VI_ATTR_ASRL_DATA_BITS, ValueType::Short, kSerial, Holder::Connection, {5, 8}, 8},
    {VI_ATTR_ASRL_PARITY, ValueType::Short, kSerial, Holder::Connection, {0, VI_ASRL_PAR_SPACE}, VI_ASRL_PAR_NONE},
    {VI_ATTR_ASRL_STOP_BITS, ValueType::Short, kSerial, Holder::Connection, {0, 0, rows::kStopBits}, VI_ASRL_STOP_ONE},
    {VI_ATTR_ASRL_FLOW_CNTRL, ValueType::Short, kSerial, Holder::Connection, {0, 7}, VI_ASRL_FLOW_NONE},
    {VI_ATTR_ASRL_END_IN, ValueType::Short, kSerial, Holder::Session, {0, VI_ASRL_END_TERMCHAR}, VI_ASRL_END_TERMCHAR},
    {VI_ATTR_ASRL_END_OUT, ValueType::Short, kSerial, Holder::Session, {0, VI_ASRL_END_BREAK}, VI_ASRL_END_NONE},
    {VI_ATTR_ASRL_AVAIL_NUM, ValueType::Long, kSerial, Holder::Fact, rows::kAny, 0},
    {VI_ATTR_RD_BUF_SIZE, ValueType::Long, rows::kDevice, Holder::Fact, rows::kAny, rows::kBufferSize},
    {VI_ATTR_WR_BUF_SIZE, ValueType::Long, rows::kDevice, Holder::Fact, rows::kAny, rows::kBufferSize},
    {VI_ATTR_IO_PROT, ValueType::Short, rows::kDevice, Holder::Session, {0, 0, rows::kProtocols}, VI_PROT_NORMAL},
    {VI_ATTR_TCPIP_NODELAY, ValueType::Boolean, kSocket, Holder::Connection, rows::kFlag, VI_TRUE},
    {VI_ATTR_TCPIP_KEEPALIVE, ValueType::Boolean, kSocket, Holder::Connection, rows::kFlag, VI_FALSE},
    {VI_ATTR_TCPIP_ADDR, ValueType::Text, kSocket, Holder::Fact, rows::kAny, 0},
    {VI_ATTR_TCPIP_HOSTNAME, ValueType::Text, kSocket, Holder::Fact, rows::kAny, 0},
    {VI_ATTR_TCPIP_PORT, ValueType::Short, kSocket, Holder::Fact, rows::kAny, 0},
    {VI_ATTR_RSRC_CLASS, ValueType::Text, rows::kAll, Holder::Fact, rows::kAny, 0},
    {VI_ATTR_RSRC_NAME, ValueType::Text, rows::kAll, Holder::Fact, rows::kAny, 0},
    {VI_ATTR_RM_SESSION, ValueType::Long, rows::kAll, Holder::Fact, rows::kAny, 0},
    {VI_ATTR_INTF_TYPE, ValueType::Short, rows::kDevice, Holder::Fact, rows::kAny, 0},
    {VI_ATTR_INTF_NUM, ValueType::Short, rows::kDevice, Holder::Fact, rows::kAny, 0},
    {VI_ATTR_KVX_DISCARD_STALE_INPUT, ValueType::Boolean, rows::kDevice, Holder::Session, rows::kFlag, VI_TRUE},
}};

/// The place of an attribute among the rows; their number for one that has no row.
constexpr std::size_t indexOf(ViAttr attribute)
{
    const auto row = std::find_if(kAttributeRows.begin(), kAttributeRows.end(),
                                  [attribute](const AttributeRow& r) { return r.attribute == attribute; });
    return static_cast<std::size_t>(row - kAttributeRows.begin());
}

/// The row of an attribute for one class of session; null when that class does not have the attribute.
const AttributeRow* findAttribute(ViAttr attribute, SessionClass sessionClass);

/// The value as the attribute's type sees it: a register may carry a sign-extended number.
ViUInt32 reduced(ViAttrState value, ValueType type);

/// Stores a number in the caller's variable, in the width of the attribute's type.
void storeNumber(ViUInt32 value, ValueType type, void* target);

/// Stores a text of at most 255 characters in the caller's buffer; the rest of a longer one is left out.
void storeText(std::string_view text, void* target);

/// The values of one session, by attribute; those of the table at first. Any thread may read while one changes a value.
class AttributeValues
{
public:
    AttributeValues();

    ViUInt32 get(ViAttr attribute) const { return values_[indexOf(attribute)].load(std::memory_order_relaxed); }
    void set(ViAttr attribute, ViUInt32 value) { values_[indexOf(attribute)].store(value, std::memory_order_relaxed); }

    /// The value of an attribute that is known when this is compiled: nothing is searched.
    template <ViAttr attribute>
    ViUInt32 get() const
    {
        constexpr std::size_t kIndex = indexOf(attribute);
        static_assert(kIndex < kAttributeRows.size());
        return values_[kIndex].load(std::memory_order_relaxed);
    }

private:
    std::array<std::atomic<ViUInt32>, kAttributeRows.size()> values_{};
};

} // namespace visa
