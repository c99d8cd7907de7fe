#pragma once

#include <visa.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <limits>
#include <span>
#include <string_view>

namespace visa
{

/// The classes of sessions, as bits so that an attribute's row can name several.
using SessionClass = unsigned;
inline constexpr SessionClass kManager = 1;
inline constexpr SessionClass kSerial = 2;
inline constexpr SessionClass kSocket = 4;
inline constexpr SessionClass kVxi11 = 8;
inline constexpr SessionClass kHislip = 16;
inline constexpr SessionClass kUsb = 32;

/// How an attribute's value is passed; the widths differ, and writing more would overwrite the caller's memory.
enum class ValueType
{
    Byte,
    Short,
    Boolean,
    Long,
    Address, ///< as wide as a pointer
    Text
};

/// Where an attribute's value lives. Only the first four can be set.
enum class Holder
{
    Session,       ///< among the session's values
    Suggested,     ///< as Session, and the connection tells the first one
    Connection,    ///< as Session, and the connection has to accept it first
    Line,          ///< in the connection, which is asked each time and has no first value
    Noted,         ///< among the session's values, which change on other ways
    Fact,          ///< told by the session
    Absent,        ///< an empty text: of secure connections, which there are none of
    ConnectionFact ///< told by the connection
};

/// The values that viSetAttribute accepts: a range, or a list where there is one.
struct AllowedValues
{
    ViAttrState smallest = 0;
    ViAttrState largest = std::numeric_limits<ViAttrState>::max();
    std::span<const ViUInt32> list{};

    bool contains(ViAttrState value) const;
};

struct AttributeRow
{
    ViAttr attribute;
    ValueType type;
    SessionClass classes;
    Holder holder;
    AllowedValues allowed;
    ViAttrState initial;
};

/// VI_ATTR_RSRC_MANF_NAME
inline constexpr const char* kManufacturerName = "KVX2800T stand-in VISA";

/// What the rows of the table are made of.
namespace rows
{
inline constexpr std::array<ViUInt32, 2> kProtocols{VI_PROT_NORMAL, VI_PROT_4882_STRS};
inline constexpr std::array<ViUInt32, 2> kReadFlushes{VI_FLUSH_ON_ACCESS, VI_FLUSH_DISABLE};
inline constexpr std::array<ViUInt32, 3> kStopBits{VI_ASRL_STOP_ONE, VI_ASRL_STOP_ONE5, VI_ASRL_STOP_TWO};

inline constexpr SessionClass kMessage = kVxi11 | kHislip | kUsb;
inline constexpr SessionClass kTcpip = kSocket | kVxi11 | kHislip;
inline constexpr SessionClass kInstr = kSerial | kMessage;
inline constexpr SessionClass kDevice = kInstr | kSocket;
inline constexpr SessionClass kAll = kManager | kDevice;

inline constexpr AllowedValues kAny{};
inline constexpr AllowedValues kFlag{0, 1};
inline constexpr AllowedValues kOff{0, 0};
inline constexpr AllowedValues kAtLeastOne{1, 0xFFFFFFFF};
inline constexpr AllowedValues kSoftwareTrigger{0xFFFF, 0xFFFF}; ///< VI_TRIG_SW
inline constexpr ViUInt32 kUnknown = 0xFFFF;                     ///< -1 in 16 bits

inline constexpr ViUInt32 kBufferSize = 4096;
inline constexpr ViUInt32 kQueueLength = 50;
inline constexpr ViUInt32 kXon = 0x11;
inline constexpr ViUInt32 kXoff = 0x13;
/// 1.0.0, and a number that no manufacturer of VXI devices has.
inline constexpr ViUInt32 kImplementation = 0x00100000;
inline constexpr ViUInt32 kManufacturer = 0x3FFF;
} // namespace rows

/// All attributes.
inline constexpr auto kAttributeRows = std::to_array<AttributeRow>({
    {VI_ATTR_TMO_VALUE, ValueType::Long, rows::kDevice, Holder::Session, rows::kAny, 2000},
        {VI_ATTR_TERMCHAR, ValueType::Byte, rows::kDevice, Holder::Session, rows::kAny, '\n'},
        {VI_ATTR_TERMCHAR_EN, ValueType::Boolean, rows::kDevice, Holder::Session, rows::kFlag, VI_FALSE},
        {VI_ATTR_SEND_END_EN, ValueType::Boolean, rows::kDevice, Holder::Session, rows::kFlag, VI_TRUE},
        {VI_ATTR_SUPPRESS_END_EN, ValueType::Boolean, rows::kInstr, Holder::Session, rows::kFlag, VI_FALSE},
        {VI_ATTR_ASRL_BAUD, ValueType::Long, kSerial, Holder::Connection, rows::kAtLeastOne, 9600},
        {VI_ATTR_ASRL_DATA_BITS, ValueType::Short, kSerial, Holder::Connection, {5, 8}, 8},
        {VI_ATTR_ASRL_PARITY, ValueType::Short, kSerial, Holder::Connection, {0, VI_ASRL_PAR_SPACE}, VI_ASRL_PAR_NONE},
        {VI_ATTR_ASRL_STOP_BITS, ValueType::Short,        kSerial,
         Holder::Connection,     {0, 0, rows::kStopBits}, VI_ASRL_STOP_ONE},
        {VI_ATTR_ASRL_FLOW_CNTRL, ValueType::Short, kSerial, Holder::Connection, {0, 7}, VI_ASRL_FLOW_NONE},
        {VI_ATTR_ASRL_END_IN, ValueType::Short,          kSerial,
         Holder::Session,     {0, VI_ASRL_END_TERMCHAR}, VI_ASRL_END_TERMCHAR},
        {VI_ATTR_ASRL_END_OUT, ValueType::Short, kSerial, Holder::Session, {0, VI_ASRL_END_BREAK}, VI_ASRL_END_NONE},
        {VI_ATTR_ASRL_AVAIL_NUM, ValueType::Long, kSerial, Holder::ConnectionFact, rows::kAny, 0},
        {VI_ATTR_RD_BUF_SIZE, ValueType::Long, rows::kDevice, Holder::Noted, rows::kAny, rows::kBufferSize},
        {VI_ATTR_WR_BUF_SIZE, ValueType::Long, rows::kDevice, Holder::Noted, rows::kAny, rows::kBufferSize},
        {VI_ATTR_IO_PROT, ValueType::Short, rows::kDevice, Holder::Session, {0, 0, rows::kProtocols}, VI_PROT_NORMAL},
        {VI_ATTR_TCPIP_NODELAY, ValueType::Boolean, kSocket | kHislip, Holder::Connection, rows::kFlag, VI_TRUE},
        {VI_ATTR_TCPIP_KEEPALIVE, ValueType::Boolean, kSocket | kHislip, Holder::Connection, rows::kFlag, VI_FALSE},
        {VI_ATTR_TCPIP_ADDR, ValueType::Text, rows::kTcpip, Holder::ConnectionFact, rows::kAny, 0},
        {VI_ATTR_TCPIP_HOSTNAME, ValueType::Text, rows::kTcpip, Holder::Fact, rows::kAny, 0},
        {VI_ATTR_TCPIP_PORT, ValueType::Short, kSocket | kHislip, Holder::Fact, rows::kAny, 0},
        {VI_ATTR_TCPIP_DEVICE_NAME, ValueType::Text, kVxi11 | kHislip, Holder::Fact, rows::kAny, 0},
        {VI_ATTR_TCPIP_IS_HISLIP, ValueType::Boolean, kVxi11 | kHislip, Holder::Fact, rows::kAny, 0},
        {VI_ATTR_TCPIP_HISLIP_OVERLAP_EN, ValueType::Boolean, kHislip, Holder::Connection, rows::kFlag, VI_FALSE},
        {VI_ATTR_TCPIP_HISLIP_VERSION, ValueType::Long, kHislip, Holder::ConnectionFact, rows::kAny, 0},
        {VI_ATTR_TCPIP_HISLIP_MAX_MESSAGE_KB, ValueType::Long, kHislip, Holder::Connection, rows::kAny, 1024},
        {VI_ATTR_TCPIP_HISLIP_ENCRYPTION_EN, ValueType::Boolean, kHislip, Holder::Connection, rows::kOff, VI_FALSE},
        {VI_ATTR_MANF_ID, ValueType::Short, kUsb, Holder::ConnectionFact, rows::kAny, 0},
        {VI_ATTR_MODEL_CODE, ValueType::Short, kUsb, Holder::ConnectionFact, rows::kAny, 0},
        {VI_ATTR_MANF_NAME, ValueType::Text, kUsb, Holder::ConnectionFact, rows::kAny, 0},
        {VI_ATTR_MODEL_NAME, ValueType::Text, kUsb, Holder::ConnectionFact, rows::kAny, 0},
        {VI_ATTR_4882_COMPLIANT, ValueType::Boolean, kUsb, Holder::ConnectionFact, rows::kAny, 0},
        {VI_ATTR_USB_SERIAL_NUM, ValueType::Text, kUsb, Holder::ConnectionFact, rows::kAny, 0},
        {VI_ATTR_USB_INTFC_NUM, ValueType::Short, kUsb, Holder::ConnectionFact, rows::kAny, 0},
        {VI_ATTR_USB_MAX_INTR_SIZE, ValueType::Short, kUsb, Holder::Suggested, rows::kAny, 0},
        {VI_ATTR_USB_PROTOCOL, ValueType::Short, kUsb, Holder::ConnectionFact, rows::kAny, 0},
        {VI_ATTR_ASRL_CTS_STATE, ValueType::Short, kSerial, Holder::ConnectionFact, rows::kAny, rows::kUnknown},
        {VI_ATTR_ASRL_DCD_STATE, ValueType::Short, kSerial, Holder::ConnectionFact, rows::kAny, rows::kUnknown},
        {VI_ATTR_ASRL_DSR_STATE, ValueType::Short, kSerial, Holder::ConnectionFact, rows::kAny, rows::kUnknown},
        {VI_ATTR_ASRL_RI_STATE, ValueType::Short, kSerial, Holder::ConnectionFact, rows::kAny, rows::kUnknown},
        {VI_ATTR_ASRL_DTR_STATE, ValueType::Short, kSerial, Holder::Line, rows::kFlag, rows::kUnknown},
        {VI_ATTR_ASRL_RTS_STATE, ValueType::Short, kSerial, Holder::Line, rows::kFlag, rows::kUnknown},
        {VI_ATTR_ASRL_REPLACE_CHAR, ValueType::Byte, kSerial, Holder::Connection, rows::kAny, 0},
        {VI_ATTR_ASRL_XON_CHAR, ValueType::Byte, kSerial, Holder::Connection, rows::kAny, rows::kXon},
        {VI_ATTR_ASRL_XOFF_CHAR, ValueType::Byte, kSerial, Holder::Connection, rows::kAny, rows::kXoff},
        {VI_ATTR_TRIG_ID, ValueType::Short, rows::kInstr, Holder::Session, rows::kSoftwareTrigger, rows::kUnknown},
        {VI_ATTR_DMA_ALLOW_EN, ValueType::Boolean, rows::kDevice, Holder::Session, rows::kFlag, VI_FALSE},
        {VI_ATTR_FILE_APPEND_EN, ValueType::Boolean, rows::kDevice, Holder::Session, rows::kFlag, VI_FALSE},
        {VI_ATTR_RD_BUF_OPER_MODE, ValueType::Short,           rows::kDevice,
         Holder::Session,          {0, 0, rows::kReadFlushes}, VI_FLUSH_DISABLE},
        {VI_ATTR_WR_BUF_OPER_MODE,
         ValueType::Short,
         rows::kDevice,
         Holder::Session,
         {VI_FLUSH_ON_ACCESS, VI_FLUSH_WHEN_FULL},
         VI_FLUSH_WHEN_FULL},
        {VI_ATTR_INTF_INST_NAME, ValueType::Text, rows::kDevice, Holder::Fact, rows::kAny, 0},
        {VI_ATTR_TCPIP_SERVER_CERT, ValueType::Text, rows::kTcpip, Holder::Absent, rows::kAny, 0},
        {VI_ATTR_TCPIP_SERVER_CERT_SIZE, ValueType::Long, rows::kTcpip, Holder::Noted, rows::kAny, 0},
        {VI_ATTR_TCPIP_SERVER_CERT_ISSUER_NAME, ValueType::Text, rows::kTcpip, Holder::Absent, rows::kAny, 0},
        {VI_ATTR_TCPIP_SERVER_CERT_SUBJECT_NAME, ValueType::Text, rows::kTcpip, Holder::Absent, rows::kAny, 0},
        {VI_ATTR_TCPIP_SERVER_CERT_EXPIRATION_DATE, ValueType::Text, rows::kTcpip, Holder::Absent, rows::kAny, 0},
        {VI_ATTR_TCPIP_SERVER_CERT_IS_PERPETUAL, ValueType::Boolean, rows::kTcpip, Holder::Noted, rows::kAny, VI_FALSE},
        {VI_ATTR_TCPIP_SASL_MECHANISM, ValueType::Text, kVxi11 | kHislip, Holder::Absent, rows::kAny, 0},
        {VI_ATTR_TCPIP_TLS_CIPHER_SUITE, ValueType::Text, rows::kTcpip, Holder::Absent, rows::kAny, 0},
        {VI_ATTR_RSRC_IMPL_VERSION, ValueType::Long, rows::kAll, Holder::Noted, rows::kAny, rows::kImplementation},
        {VI_ATTR_RSRC_SPEC_VERSION, ValueType::Long, rows::kAll, Holder::Noted, rows::kAny, VI_SPEC_VERSION},
        {VI_ATTR_RSRC_MANF_ID, ValueType::Short, rows::kAll, Holder::Noted, rows::kAny, rows::kManufacturer},
        {VI_ATTR_RSRC_MANF_NAME, ValueType::Text, rows::kAll, Holder::Fact, rows::kAny, 0},
        {VI_ATTR_MAX_QUEUE_LENGTH, ValueType::Long, rows::kAll, Holder::Session, rows::kAtLeastOne, rows::kQueueLength},
        {VI_ATTR_USER_DATA_32, ValueType::Long, rows::kAll, Holder::Session, rows::kAny, 0},
#if defined(_VISA_ENV_IS_64_BIT)
        {VI_ATTR_USER_DATA_64, ValueType::Address, rows::kAll, Holder::Session, rows::kAny, 0},
#endif
        {VI_ATTR_RSRC_LOCK_STATE, ValueType::Long, rows::kAll, Holder::Fact, rows::kAny, VI_NO_LOCK},
        {VI_ATTR_RSRC_CLASS, ValueType::Text, rows::kAll, Holder::Fact, rows::kAny, 0},
        {VI_ATTR_RSRC_NAME, ValueType::Text, rows::kAll, Holder::Fact, rows::kAny, 0},
        {VI_ATTR_RM_SESSION, ValueType::Long, rows::kAll, Holder::Fact, rows::kAny, 0},
        {VI_ATTR_INTF_TYPE, ValueType::Short, rows::kDevice, Holder::Fact, rows::kAny, 0},
        {VI_ATTR_INTF_NUM, ValueType::Short, rows::kDevice, Holder::Fact, rows::kAny, 0},
        {VI_ATTR_KVX_DISCARD_STALE_INPUT, ValueType::Boolean, rows::kDevice, Holder::Session, rows::kFlag, VI_TRUE},
});

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
ViAttrState reduced(ViAttrState value, ValueType type);

/// Stores a number in the caller's variable, in the width of the attribute's type.
void storeNumber(ViAttrState value, ValueType type, void* target);

/// Stores a text of at most 255 characters in the caller's buffer; the rest of a longer one is left out.
void storeText(std::string_view text, void* target);

/// The values of one session, by attribute; those of the table at first. Any thread may read while one changes a value.
class AttributeValues
{
public:
    AttributeValues();

    ViAttrState get(ViAttr attribute) const { return values_[indexOf(attribute)].load(std::memory_order_relaxed); }
    void set(ViAttr attribute, ViAttrState value)
    {
        values_[indexOf(attribute)].store(value, std::memory_order_relaxed);
    }

    /// The value of an attribute that is known when this is compiled: nothing is searched.
    template <ViAttr attribute>
    ViUInt32 get() const
    {
        constexpr std::size_t kIndex = indexOf(attribute);
        static_assert(kIndex < kAttributeRows.size());
        return static_cast<ViUInt32>(values_[kIndex].load(std::memory_order_relaxed));
    }

private:
    std::array<std::atomic<ViAttrState>, kAttributeRows.size()> values_{};
};

} // namespace visa
