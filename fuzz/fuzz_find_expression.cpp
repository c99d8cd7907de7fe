// An expression and, behind a line feed, a name: the expression is refused, or its pattern fits the name where the
// plain reader says so, and its condition can be asked. Short ones only, since the plain reader is slow.
#include "fuzz/input.h"
#include "tests/support/visa/reference_name_pattern.h"
#include "visa/find/find_expression.h"

#include <cstdint>

namespace
{

constexpr std::size_t kLongestCompared = 64;

using kvxfuzz::require;

void compare(const std::string& expression, const std::string& name)
{
    const auto pattern = visa::NamePattern::parse(expression);
    const auto wanted = kvxtest::ReferenceNamePattern::fits(expression, name);
    require(pattern.has_value() == wanted.has_value());
    if (!pattern)
        return;
    require(pattern->fits(name) == *wanted);
    require(!*wanted || pattern->fitsBeginning(name.substr(0, name.size() / 2)));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::size_t end = std::min(input.find('\n'), input.size());
    const std::string expression(input.substr(0, end));
    const std::string name(input.substr(std::min(end + 1, input.size())));
    if (size <= kLongestCompared)
        compare(expression, name);
    const auto parsed = visa::FindExpression::parse(expression);
    const auto resource = visa::parseResourceName(name);
    if (parsed && resource)
        static_cast<void>(parsed->fits(*resource));
    return 0;
}
