#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace command_line
{

/// What --json prints: a JSON value, whose objects keep the order of their members.
class Document
{
public:
    using Member = std::pair<std::string, Document>;
    using Array = std::vector<Document>;
    using Object = std::vector<Member>;
    using Value = std::variant<std::nullptr_t, bool, std::int64_t, double, std::string, Array, Object>;

    Document() = default;
    Document(bool value) : value_(value) {}
    Document(int value) : value_(std::int64_t{value}) {}
    Document(long value) : value_(std::int64_t{value}) {}
    Document(long long value) : value_(std::int64_t{value}) {}
    Document(double value) : value_(value) {}
    Document(const char* value) : value_(std::string(value)) {}
    Document(std::string value) : value_(std::move(value)) {}
    Document(Array value) : value_(std::move(value)) {}
    Document(Object value) : value_(std::move(value)) {}

    const Value& value() const { return value_; }

private:
    Value value_;
};

enum class Layout
{
    Lines, ///< indented
    OneLine
};

/// The value as JSON, without a line's end. Bytes that are no UTF-8 become U+FFFD, numbers that are not finite null.
std::string jsonText(const Document& document, Layout layout);

} // namespace command_line
