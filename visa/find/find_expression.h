#pragma once

#include "visa/find/attribute_condition.h"
#include "visa/find/name_pattern.h"

#include <optional>
#include <string_view>

namespace visa
{

/// What viFindRsrc is asked for: a pattern over names and, in braces behind it, a condition on attributes.
class FindExpression
{
public:
    /// Longer ones are taken for malformed.
    static constexpr std::size_t kLongest = 4096;

    /// @return nothing for what is not well formed
    static std::optional<FindExpression> parse(std::string_view text);

    bool fits(const ResourceName& name) const
    {
        return pattern_.fits(name.canonical) && (!condition_ || condition_->holds(name));
    }

    /// Whether a name that begins with this text may fit.
    bool fitsBeginning(std::string_view beginning) const { return pattern_.fitsBeginning(beginning); }

private:
    FindExpression(NamePattern pattern, std::optional<AttributeCondition> condition);

    NamePattern pattern_;
    std::optional<AttributeCondition> condition_;
};

} // namespace visa
