#include "tests/support/driver/reply_oracle.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <exception>
#include <limits>
#include <ostream>
#include <stdexcept>
#include <typeinfo>

namespace kvxtest
{
namespace
{

constexpr ViStatus kUnexpectedResponse = static_cast<ViStatus>(0xBFFA0059);
constexpr int kErrorQueue = 15;

std::string describe(const std::exception& thrown)
{
    const std::string name = typeid(thrown) == typeid(std::invalid_argument) ? "std::invalid_argument"
                             : typeid(thrown) == typeid(std::out_of_range)   ? "std::out_of_range"
                                                                             : typeid(thrown).name();
    return name + ": " + thrown.what();
}

double toNumber(const std::string& text)
{
    char* end = nullptr;
    errno = 0;
    const double number = std::strtod(text.c_str(), &end);
    if (end == text.c_str())
        throw std::invalid_argument("invalid stod argument");
    // That digits of a subnormal number are lost does not put it out of range.
    if (errno == ERANGE && (number == 0.0 || std::isinf(number)))
        throw std::out_of_range("stod argument out of range");
    return number;
}

ViInt32 toInteger(const std::string& text, const std::string& conversion)
{
    char* end = nullptr;
    errno = 0;
    const long long number = std::strtoll(text.c_str(), &end, 10);
    if (end == text.c_str())
        throw std::invalid_argument("invalid " + conversion + " argument");
    if (errno == ERANGE || number < std::numeric_limits<ViInt32>::min() || number > std::numeric_limits<ViInt32>::max())
        throw std::out_of_range(conversion + " argument out of range");
    return static_cast<ViInt32>(number);
}

bool toBoolean(const std::string& text)
{
    const std::string word = text.substr(0, text.find_first_not_of("ONOFF10"));
    if (word != "ON" && word != "1" && word != "OFF" && word != "0")
        throw std::invalid_argument("Visa::parseBool Unknown ret:" + text);
    return word == "ON" || word == "1";
}

bool sameIgnoringCase(const std::string& left, const std::string& right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](unsigned char a, unsigned char b) { return std::toupper(a) == std::toupper(b); });
}

/// False when no keyword is the text.
bool toKeyword(const Keywords& keywords, const std::string& text, Value& value)
{
    const auto found = std::find_if(keywords.begin(), keywords.end(),
                                    [&](const auto& keyword) { return sameIgnoringCase(keyword.first, text); });
    if (found == keywords.end())
        return false;
    value = found->second;
    return true;
}

/// Reads one field; the status is negative when it names no keyword.
ViStatus readField(const Field& field, const std::string& text, Value& value)
{
    switch (field.kind) {
    case FieldKind::Boolean:
        value = toBoolean(text);
        break;
    case FieldKind::Number:
        value = toNumber(text);
        break;
    case FieldKind::Integer:
        value = toInteger(text, "stoi");
        break;
    case FieldKind::Long:
        value = toInteger(text, "stol");
        break;
    case FieldKind::Keyword:
        return toKeyword(field.keywords, text, value) ? VI_SUCCESS : kUnexpectedResponse;
    case FieldKind::Text:
        value = text;
        break;
    }
    return VI_SUCCESS;
}

std::vector<std::string> fieldsOf(const std::string& reply)
{
    std::vector<std::string> fields;
    for (const char c : reply) {
        if (fields.empty())
            fields.emplace_back();
        if (c == ',')
            fields.emplace_back();
        else
            fields.back() += c;
    }
    return fields;
}

ViStatus readFields(const std::vector<Field>& fields, const std::vector<std::string>& texts, Values& values)
{
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (i >= texts.size())
            throw std::out_of_range("invalid vector subscript");
        const ViStatus status = readField(fields[i], texts[i], values[i]);
        if (status < 0)
            return status;
    }
    return VI_SUCCESS;
}

ViStatus readReply(const Operation& query, const std::string& reply, Values& values)
{
    if (query.fields.size() == 1)
        return readField(query.fields.front(), reply, values.front());
    const std::vector<std::string> texts = fieldsOf(reply);
    if (query.number == kErrorQueue && texts.size() != query.fields.size())
        return VI_SUCCESS;
    return readFields(query.fields, texts, values);
}

bool equal(const Value& left, const Value& right)
{
    const double* const a = std::get_if<double>(&left);
    const double* const b = std::get_if<double>(&right);
    return left == right || (a != nullptr && b != nullptr && std::isnan(*a) && std::isnan(*b));
}

} // namespace

bool operator==(const Outcome& left, const Outcome& right)
{
    return left.status == right.status && left.thrown == right.thrown &&
           std::equal(left.outputs.begin(), left.outputs.end(), right.outputs.begin(), right.outputs.end(), equal);
}

void PrintTo(const Outcome& outcome, std::ostream* stream)
{
    *stream << "status 0x" << std::hex << static_cast<ViUInt32>(outcome.status) << std::dec << ", thrown \""
            << outcome.thrown << "\", outputs";
    for (const Value& value : outcome.outputs)
        std::visit([stream](const auto& each) { *stream << ' ' << each; }, value);
}

Outcome outcomeOf(const Operation& operation, TSRO::InstBase& instrument)
{
    Outcome outcome;
    try {
        outcome.status = operation.run(instrument, outcome.outputs);
    } catch (const std::exception& thrown) {
        outcome.thrown = describe(thrown);
    }
    return outcome;
}

Outcome expectedOutcome(const Operation& query, const std::string& reply)
{
    Outcome outcome;
    outcome.outputs = query.before;
    try {
        outcome.status = readReply(query, reply, outcome.outputs);
    } catch (const std::exception& thrown) {
        outcome.thrown = describe(thrown);
    }
    return outcome;
}

} // namespace kvxtest
