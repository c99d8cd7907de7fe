#include "attributes.h"

#include <algorithm>
#include <cstring>

namespace visa
{

namespace
{

constexpr std::array<ViUInt32, 2> kProtocols{VI_PROT_NORMAL, VI_PROT_4882_STRS};
constexpr std::array<ViUInt32, 3> kStopBits{VI_ASRL_STOP_ONE, VI_ASRL_STOP_ONE5, VI_ASRL_STOP_TWO};

constexpr SessionClass kDevice = kSerial | kSocket;
constexpr SessionClass kAll = kManager | kDevice;

constexpr AllowedValues kAny{};
constexpr AllowedValues kFlag{0, 1};
constexpr AllowedValues kBaud{1, 0xFFFFFFFF};

constexpr ViUInt32 kBufferSize = 4096;

constexpr std::array<AttributeRow, kAttributeCount> kRows{{
    {VI_ATTR_TMO_VALUE, ValueType::Long, kDevice, Holder::Session, kAny, 2000},
    {VI_ATTR_TERMCHAR, ValueType::Byte, kDevice, Holder::Session, kAny, '\n'},
    {VI_ATTR_TERMCHAR_EN, ValueType::Boolean, kDevice, Holder::Session, kFlag, VI_FALSE},
    {VI_ATTR_SEND_END_EN, ValueType::Boolean, kDevice, Holder::Session, kFlag, VI_TRUE},
    {VI_ATTR_SUPPRESS_END_EN, ValueType::Boolean, kSerial, Holder::Session, kFlag, VI_FALSE},
    {VI_ATTR_ASRL_BAUD, ValueType::Long, kSerial, Holder::Connection, kBaud, 9600},
    {VI_ATTR_ASRL_DATA_BITS, ValueType::Short, kSerial, Holder::Connection, {5, 8}, 8},
    {VI_ATTR_ASRL_PARITY, ValueType::Short, kSerial, Holder::Connection, {0, VI_ASRL_PAR_SPACE}, VI_ASRL_PAR_NONE},
    {VI_ATTR_ASRL_STOP_BITS, ValueType::Short, kSerial, Holder::Connection, {0, 0, kStopBits}, VI_ASRL_STOP_ONE},
    {VI_ATTR_ASRL_FLOW_CNTRL, ValueType::Short, kSerial, Holder::Connection, {0, 7}, VI_ASRL_FLOW_NONE},
    {VI_ATTR_ASRL_END_IN, ValueType::Short, kSerial, Holder::Session, {0, VI_ASRL_END_TERMCHAR}, VI_ASRL_END_TERMCHAR},
    {VI_ATTR_ASRL_END_OUT, ValueType::Short, kSerial, Holder::Session, {0, VI_ASRL_END_BREAK}, VI_ASRL_END_NONE},
    {VI_ATTR_ASRL_AVAIL_NUM, ValueType::Long, kSerial, Holder::Fact, kAny, 0},
    {VI_ATTR_RD_BUF_SIZE, ValueType::Long, kDevice, Holder::Fact, kAny, kBufferSize},
    {VI_ATTR_WR_BUF_SIZE, ValueType::Long, kDevice, Holder::Fact, kAny, kBufferSize},
    {VI_ATTR_IO_PROT, ValueType::Short, kDevice, Holder::Session, {0, 0, kProtocols}, VI_PROT_NORMAL},
    {VI_ATTR_TCPIP_NODELAY, ValueType::Boolean, kSocket, Holder::Connection, kFlag, VI_TRUE},
    {VI_ATTR_TCPIP_KEEPALIVE, ValueType::Boolean, kSocket, Holder::Connection, kFlag, VI_FALSE},
    {VI_ATTR_TCPIP_ADDR, ValueType::Text, kSocket, Holder::Fact, kAny, 0},
    {VI_ATTR_TCPIP_HOSTNAME, ValueType::Text, kSocket, Holder::Fact, kAny, 0},
    {VI_ATTR_TCPIP_PORT, ValueType::Short, kSocket, Holder::Fact, kAny, 0},
    {VI_ATTR_RSRC_CLASS, ValueType::Text, kAll, Holder::Fact, kAny, 0},
    {VI_ATTR_RSRC_NAME, ValueType::Text, kAll, Holder::Fact, kAny, 0},
    {VI_ATTR_RM_SESSION, ValueType::Long, kAll, Holder::Fact, kAny, 0},
    {VI_ATTR_INTF_TYPE, ValueType::Short, kDevice, Holder::Fact, kAny, 0},
    {VI_ATTR_INTF_NUM, ValueType::Short, kDevice, Holder::Fact, kAny, 0},
}};

std::size_t indexOf(ViAttr attribute)
{
    const auto* const row = std::find_if(kRows.begin(), kRows.end(),
                                         [attribute](const AttributeRow& r) { return r.attribute == attribute; });
    return static_cast<std::size_t>(row - kRows.begin());
}

} // namespace

bool AllowedValues::contains(ViUInt32 value) const
{
    if (!list.empty())
        return std::find(list.begin(), list.end(), value) != list.end();
    return value >= smallest && value <= largest;
}

std::span<const AttributeRow> attributeRows()
{
    return kRows;
}

const AttributeRow* findAttribute(ViAttr attribute, SessionClass sessionClass)
{
    const std::size_t index = indexOf(attribute);
    return index < kRows.size() && (kRows[index].classes & sessionClass) != 0 ? &kRows[index] : nullptr;
}

ViUInt32 reduced(ViAttrState value, ValueType type)
{
    switch (type) {
    case ValueType::Byte:
        return static_cast<ViUInt8>(value);
    case ValueType::Short:
    case ValueType::Boolean:
        return static_cast<ViUInt16>(value);
    case ValueType::Long:
    case ValueType::Text:
        break;
    }
    return static_cast<ViUInt32>(value);
}

void storeNumber(ViUInt32 value, ValueType type, void* target)
{
    const auto store = [target](auto number) { std::memcpy(target, &number, sizeof number); };
    switch (type) {
    case ValueType::Byte:
        return store(static_cast<ViUInt8>(value));
    case ValueType::Short:
    case ValueType::Boolean:
        return store(static_cast<ViUInt16>(value));
    case ValueType::Long:
    case ValueType::Text:
        break;
    }
    store(value);
}

void storeText(std::string_view text, void* target)
{
    constexpr std::size_t kLongest = 255;
    auto* const characters = static_cast<ViChar*>(target);
    characters[text.copy(characters, kLongest)] = '\0';
}

AttributeValues::AttributeValues()
{
    std::transform(kRows.begin(), kRows.end(), values_.begin(), [](const AttributeRow& row) { return row.initial; });
}

ViUInt32 AttributeValues::get(ViAttr attribute) const
{
    return values_[indexOf(attribute)];
}

void AttributeValues::set(ViAttr attribute, ViUInt32 value)
{
    values_[indexOf(attribute)] = value;
}

} // namespace visa
