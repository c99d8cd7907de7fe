#pragma once

#include "visa/resource/resource_name.h"

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace visa
{

/// What an attribute of a resource is, or is compared with.
struct ConditionValue
{
    bool isText = false;
    std::int64_t number = 0;
    std::string text{};

    bool operator==(const ConditionValue&) const = default;
};

/// A condition on the attributes of a resource (VPP-4.3 Table 4.4.7), such as
///     VI_ATTR_INTF_TYPE == 6 && !(VI_ATTR_TCPIP_PORT < 0x400 || VI_ATTR_RSRC_CLASS == "INSTR")
/// "!" binds closest, "||" least. Numbers are compared with any of the six operators, texts with == and != alone, and
/// letter for letter.
///
/// Attributes are those that can be told of a resource that is not open; the table in the source has them all. Of one
/// that a resource does not have, every comparison is false. Any thread.
class AttributeCondition
{
public:
    /// @return nothing for what is not well formed, has an attribute that is not in the table, or compares it with a
    ///         value of the other type
    static std::optional<AttributeCondition> parse(std::string_view text);

    bool holds(const ResourceName& name) const;

private:
    friend class AttributeConditionParser;

    enum class Operator
    {
        Equal,
        Unequal,
        Less,
        Greater,
        LessOrEqual,
        GreaterOrEqual,
        Not,
        And,
        Or,
        Group ///< a bracket that is open
    };
    using Teller = std::optional<ConditionValue> (*)(const ResourceName&);

    /// A comparison, or an operator over the results in front of it.
    struct Step
    {
        Operator operation = Operator::Equal;
        Teller teller = nullptr; ///< of a comparison
        ConditionValue value{};
    };

    AttributeCondition() = default;

    std::vector<Step> steps_{}; ///< each operator behind what it works on
};

} // namespace visa
