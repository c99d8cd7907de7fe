#include "tests/support/visa/reference_name_pattern.h"
#include "visa/find/name_pattern.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>

// The pattern of resource names against the plain reader, on expressions that are made up and on well formed ones.

namespace
{

using kvxtest::ReferenceNamePattern;
using visa::NamePattern;

std::optional<bool> resultOf(const std::string& expression, const std::string& text)
{
    const auto pattern = NamePattern::parse(expression);
    return pattern ? std::optional(pattern->fits(text)) : std::nullopt;
}

rc::Gen<std::string> anyText(const std::string& alphabet)
{
    return rc::gen::container<std::string>(rc::gen::elementOf(alphabet));
}

/// A well formed expression, as deep as `depth` says.
rc::Gen<std::string> expression(int depth)
{
    auto item = rc::gen::element<std::string>("a", "B", "?", "[ab]", "[^b]", "[a-c]", "\\a", "\\*");
    if (depth == 0)
        return item;
    const auto inner = expression(depth - 1);
    return rc::gen::oneOf(
        item, rc::gen::map(rc::gen::pair(inner, inner), [](const auto& both) { return both.first + both.second; }),
        rc::gen::map(rc::gen::pair(inner, inner), [](const auto& both) { return both.first + '|' + both.second; }),
        rc::gen::map(inner, [](const std::string& one) { return '(' + one + ")*"; }),
        rc::gen::map(inner, [](const std::string& one) { return '(' + one + ")+"; }),
        rc::gen::map(inner, [](const std::string& one) { return one + '*'; }));
}

RC_GTEST_PROP(VisaNamePatternOracle, AnyTextIsReadAsThePlainReaderDoes, ())
{
    const std::string text = *anyText("abAB*c");
    const std::string made = *anyText("ab?*+|()[]^-\\B");
    RC_ASSERT(resultOf(made, text) == ReferenceNamePattern::fits(made, text));
}

RC_GTEST_PROP(VisaNamePatternOracle, WellFormedExpressionsFitWhatThePlainReaderSays, ())
{
    const std::string text = *anyText("abAB*c");
    const std::string made = *expression(3);
    const auto wanted = ReferenceNamePattern::fits(made, text);
    RC_ASSERT(wanted.has_value());
    RC_CLASSIFY(*wanted, "fits");
    RC_ASSERT(resultOf(made, text) == wanted);
}

RC_GTEST_PROP(VisaNamePatternOracle, EveryBeginningOfANameThatFitsMayFit, ())
{
    const std::string text = *anyText("abAB*c");
    const std::string made = *expression(3);
    RC_PRE(resultOf(made, text) == true);
    const auto pattern = NamePattern::parse(made);
    for (std::size_t size = 0; size <= text.size(); ++size)
        RC_ASSERT(pattern->fitsBeginning(text.substr(0, size)));
}

} // namespace
