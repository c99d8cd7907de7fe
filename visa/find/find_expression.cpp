#include "visa/find/find_expression.h"

#include <utility>

namespace visa
{
namespace
{

/// Where the condition begins: at the first brace that is neither escaped nor in a list; the end where there is none.
std::size_t findCondition(std::string_view text)
{
    bool isListed = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\')
            ++i;
        else if (text[i] == '[')
            isListed = true;
        else if (text[i] == ']')
            isListed = false;
        else if (text[i] == '{' && !isListed)
            return i;
    }
    return text.size();
}

} // namespace

FindExpression::FindExpression(NamePattern pattern, std::optional<AttributeCondition> condition)
    : pattern_(std::move(pattern)), condition_(std::move(condition))
{
}

std::optional<FindExpression> FindExpression::parse(std::string_view text)
{
    if (text.size() > kLongest)
        return std::nullopt;
    const std::size_t braced = findCondition(text);
    auto pattern = NamePattern::parse(text.substr(0, braced));
    if (!pattern)
        return std::nullopt;
    if (braced == text.size())
        return FindExpression(std::move(*pattern), std::nullopt);
    if (!text.ends_with('}'))
        return std::nullopt;
    auto condition = AttributeCondition::parse(text.substr(braced + 1, text.size() - braced - 2));
    if (!condition)
        return std::nullopt;
    return FindExpression(std::move(*pattern), std::move(condition));
}

} // namespace visa
