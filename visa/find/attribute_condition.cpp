#include "visa/find/attribute_condition.h"

#include "visa/attribute/attributes.h"
#include "visa/host/network.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace visa
{
namespace
{

using Value = std::optional<ConditionValue>;

Value number(std::int64_t value)
{
    return ConditionValue{false, value};
}

Value text(std::string_view value)
{
    return ConditionValue{true, 0, std::string(value)};
}

bool isTcpip(const ResourceName& name)
{
    return interfaceType(name.kind) == VI_INTF_TCPIP;
}

/// What every session has when it is opened.
template <ViAttr attribute>
Value initialOfSerial(const ResourceName& name)
{
    constexpr ViAttrState kInitial = kAttributeRows[indexOf(attribute)].initial;
    return name.kind == ResourceKind::Serial ? number(static_cast<std::int64_t>(kInitial)) : std::nullopt;
}

template <auto member, ResourceKind kind>
Value numberOf(const ResourceName& name)
{
    return name.kind == kind ? number(name.*member) : std::nullopt;
}

template <auto member, ResourceKind kind>
Value textOf(const ResourceName& name)
{
    return name.kind == kind ? text(name.*member) : std::nullopt;
}

bool isNumericAddress(const std::string& host)
{
    asio::error_code error;
    asio::ip::make_address(host, error);
    return !error;
}

Value tcpipAddress(const ResourceName& name)
{
    return isTcpip(name) && isNumericAddress(name.address) ? text(name.address) : std::nullopt;
}

Value tcpipHostName(const ResourceName& name)
{
    return isTcpip(name) ? text(name.address) : std::nullopt;
}

Value usbInterface(const ResourceName& name)
{
    return name.kind == ResourceKind::Usb && name.interfaceNumber ? number(*name.interfaceNumber) : std::nullopt;
}

/// Of interfaces that this library does not reach.
Value ofNone(const ResourceName&)
{
    return std::nullopt;
}

struct AttributeTeller
{
    std::string_view name;
    ViAttr attribute;
    Value (*tell)(const ResourceName& name);

    constexpr bool isText() const { return (attribute & 0x80000000U) != 0; }
};

#define KVX_TELLER(attribute, ...)                                                                                     \
    AttributeTeller                                                                                                    \
    {                                                                                                                  \
#attribute, attribute, __VA_ARGS__                                                                             \
    }

/// The attributes that a condition may have. All are global.
constexpr std::array kTellers{
    KVX_TELLER(VI_ATTR_RSRC_NAME, [](const ResourceName& name) { return text(name.canonical); }),
    KVX_TELLER(VI_ATTR_RSRC_CLASS, [](const ResourceName& name) { return text(name.resourceClass); }),
    KVX_TELLER(VI_ATTR_INTF_TYPE, [](const ResourceName& name) { return number(interfaceType(name.kind)); }),
    KVX_TELLER(VI_ATTR_INTF_NUM, [](const ResourceName& name) { return number(name.board); }),
    KVX_TELLER(VI_ATTR_TCPIP_ADDR, tcpipAddress),
    KVX_TELLER(VI_ATTR_TCPIP_HOSTNAME, tcpipHostName),
    KVX_TELLER(VI_ATTR_TCPIP_PORT, numberOf<&ResourceName::port, ResourceKind::TcpipSocket>),
    KVX_TELLER(VI_ATTR_TCPIP_DEVICE_NAME, textOf<&ResourceName::device, ResourceKind::TcpipInstrument>),
    KVX_TELLER(VI_ATTR_MANF_ID, numberOf<&ResourceName::vendorId, ResourceKind::Usb>),
    KVX_TELLER(VI_ATTR_MODEL_CODE, numberOf<&ResourceName::productId, ResourceKind::Usb>),
    KVX_TELLER(VI_ATTR_USB_SERIAL_NUM, textOf<&ResourceName::serialNumber, ResourceKind::Usb>),
    KVX_TELLER(VI_ATTR_USB_INTFC_NUM, usbInterface),
    KVX_TELLER(VI_ATTR_ASRL_BAUD, initialOfSerial<VI_ATTR_ASRL_BAUD>),
    KVX_TELLER(VI_ATTR_ASRL_DATA_BITS, initialOfSerial<VI_ATTR_ASRL_DATA_BITS>),
    KVX_TELLER(VI_ATTR_ASRL_PARITY, initialOfSerial<VI_ATTR_ASRL_PARITY>),
    KVX_TELLER(VI_ATTR_ASRL_STOP_BITS, initialOfSerial<VI_ATTR_ASRL_STOP_BITS>),
    KVX_TELLER(VI_ATTR_ASRL_FLOW_CNTRL, initialOfSerial<VI_ATTR_ASRL_FLOW_CNTRL>),
    KVX_TELLER(VI_ATTR_GPIB_PRIMARY_ADDR, ofNone),
    KVX_TELLER(VI_ATTR_GPIB_SECONDARY_ADDR, ofNone),
    KVX_TELLER(VI_ATTR_INTF_PARENT_NUM, ofNone),
    KVX_TELLER(VI_ATTR_VXI_LA, ofNone),
    KVX_TELLER(VI_ATTR_VXI_DEV_CLASS, ofNone),
    KVX_TELLER(VI_ATTR_CMDR_LA, ofNone),
    KVX_TELLER(VI_ATTR_MAINFRAME_LA, ofNone),
    KVX_TELLER(VI_ATTR_IMMEDIATE_SERV, ofNone),
    KVX_TELLER(VI_ATTR_SLOT, ofNone),
    KVX_TELLER(VI_ATTR_PXI_BUS_NUM, ofNone),
    KVX_TELLER(VI_ATTR_PXI_DEV_NUM, ofNone),
    KVX_TELLER(VI_ATTR_PXI_FUNC_NUM, ofNone),
    KVX_TELLER(VI_ATTR_PXI_CHASSIS, ofNone),
    KVX_TELLER(VI_ATTR_PXI_SLOTPATH, ofNone),
};

#undef KVX_TELLER

const AttributeTeller* findTeller(std::string_view name)
{
    const auto* const found =
        std::find_if(kTellers.begin(), kTellers.end(), [name](const AttributeTeller& row) { return row.name == name; });
    return found == kTellers.end() ? nullptr : found;
}

constexpr bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f';
}

constexpr bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

constexpr bool isNameCharacter(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || isDigit(c) || c == '_';
}

} // namespace

/// Puts operators behind what they work on, with those that wait for their right side on a stack.
class AttributeConditionParser
{
public:
    explicit AttributeConditionParser(std::string_view text) : rest_(text) {}

    std::optional<AttributeCondition> parse()
    {
        while (isGood_ && !atEnd())
            needsOperand_ ? readOperand() : readOperator();
        finishDownTo(kGroupRank);
        if (!isGood_ || needsOperand_ || !waiting_.empty())
            return std::nullopt;
        return std::move(condition_);
    }

private:
    using Operator = AttributeCondition::Operator;

    struct Spelling
    {
        std::string_view text;
        Operator operation;
    };
    /// The longer ones first.
    static constexpr std::array<Spelling, 6> kComparisons{{
        {"==", Operator::Equal},
        {"!=", Operator::Unequal},
        {"<=", Operator::LessOrEqual},
        {">=", Operator::GreaterOrEqual},
        {"<", Operator::Less},
        {">", Operator::Greater},
    }};
    static constexpr int kGroupRank = 0;

    /// Those that bind closer rank higher.
    static constexpr int rankOf(Operator operation)
    {
        switch (operation) {
        case Operator::Group:
            return kGroupRank;
        case Operator::Or:
            return 1;
        case Operator::And:
            return 2;
        default:
            return 3;
        }
    }

    void skipBlanks()
    {
        while (!rest_.empty() && isBlank(rest_.front()))
            rest_.remove_prefix(1);
    }

    bool atEnd()
    {
        skipBlanks();
        return rest_.empty();
    }

    bool take(std::string_view token)
    {
        skipBlanks();
        if (!rest_.starts_with(token))
            return false;
        rest_.remove_prefix(token.size());
        return true;
    }

    std::string_view takeWhile(bool (*isPart)(char))
    {
        const auto* const end = std::find_if_not(rest_.begin(), rest_.end(), isPart);
        const std::string_view taken(rest_.begin(), end);
        rest_.remove_prefix(taken.size());
        return taken;
    }

    void readOperand()
    {
        if (take("("))
            waiting_.push_back(Operator::Group);
        else if (take("!"))
            waiting_.push_back(Operator::Not);
        else
            readComparison();
    }

    void readOperator()
    {
        if (take(")")) {
            finishDownTo(kGroupRank);
            isGood_ = isGood_ && !waiting_.empty();
            if (isGood_)
                waiting_.pop_back();
        } else if (take("&&")) {
            addBinary(Operator::And);
        } else {
            isGood_ = isGood_ && take("||");
            addBinary(Operator::Or);
        }
    }

    void addBinary(Operator operation)
    {
        finishDownTo(rankOf(operation) - 1);
        waiting_.push_back(operation);
        needsOperand_ = true;
    }

    /// Moves those that bind closer than this rank behind their operands.
    void finishDownTo(int rank)
    {
        for (; !waiting_.empty() && rankOf(waiting_.back()) > rank; waiting_.pop_back())
            condition_.steps_.push_back({waiting_.back()});
    }

    void readComparison()
    {
        const AttributeTeller* const teller = findTeller(takeWhile(isNameCharacter));
        const std::optional<Operator> comparison = readComparisonOperator();
        Value value = comparison ? readValue() : std::nullopt;
        isGood_ = teller != nullptr && value && fit(*teller, *comparison, *value);
        if (isGood_)
            condition_.steps_.push_back({*comparison, teller->tell, std::move(*value)});
        needsOperand_ = false;
    }

    static bool fit(const AttributeTeller& teller, Operator comparison, const ConditionValue& value)
    {
        const bool isOrdering = comparison != Operator::Equal && comparison != Operator::Unequal;
        return teller.isText() == value.isText && !(value.isText && isOrdering);
    }

    std::optional<Operator> readComparisonOperator()
    {
        const auto* const found = std::find_if(kComparisons.begin(), kComparisons.end(),
                                               [this](const Spelling& spelling) { return take(spelling.text); });
        return found == kComparisons.end() ? std::nullopt : std::optional(found->operation);
    }

    Value readValue()
    {
        if (take("\""))
            return readText();
        if (take("0x") || take("0X"))
            return readNumber(false, 16);
        const bool isNegative = take("-");
        return readNumber(isNegative, 10);
    }

    Value readText()
    {
        const std::size_t end = rest_.find('"');
        if (end == std::string_view::npos)
            return std::nullopt;
        Value read = text(rest_.substr(0, end));
        rest_.remove_prefix(end + 1);
        return read;
    }

    Value readNumber(bool isNegative, int base)
    {
        const std::string_view digits = takeWhile(isNameCharacter);
        std::uint32_t value = 0;
        const char* const end = digits.data() + digits.size();
        const auto [stopped, error] = std::from_chars(digits.data(), end, value, base);
        if (error != std::errc{} || stopped != end)
            return std::nullopt;
        return number(isNegative ? -std::int64_t{value} : std::int64_t{value});
    }

    std::string_view rest_;
    bool isGood_ = true;
    bool needsOperand_ = true;
    std::vector<Operator> waiting_{};
    AttributeCondition condition_{};
};

std::optional<AttributeCondition> AttributeCondition::parse(std::string_view text)
{
    return AttributeConditionParser(text).parse();
}

namespace
{

/// Texts are equal or not; the parser lets no other operator stand between them.
template <class Operation>
bool compare(Operation operation, const ConditionValue& told, const ConditionValue& wanted)
{
    switch (operation) {
    case Operation::Equal:
        return told == wanted;
    case Operation::Unequal:
        return told != wanted;
    case Operation::Less:
        return told.number < wanted.number;
    case Operation::Greater:
        return told.number > wanted.number;
    case Operation::LessOrEqual:
        return told.number <= wanted.number;
    default:
        return told.number >= wanted.number;
    }
}

bool takeResult(std::vector<bool>& results)
{
    const bool result = results.back();
    results.pop_back();
    return result;
}

} // namespace

bool AttributeCondition::holds(const ResourceName& name) const
{
    std::vector<bool> results;
    for (const Step& step : steps_) {
        if (step.teller != nullptr) {
            const Value told = step.teller(name);
            results.push_back(told && compare(step.operation, *told, step.value));
            continue;
        }
        const bool right = takeResult(results);
        if (step.operation == Operator::Not) {
            results.push_back(!right);
            continue;
        }
        const bool left = takeResult(results);
        results.push_back(step.operation == Operator::And ? left && right : left || right);
    }
    return takeResult(results);
}

} // namespace visa
