#include "tools/kvx2800t/command_line/document.h"

#include <nlohmann/json.hpp>

namespace command_line
{
namespace
{

using Json = nlohmann::ordered_json;

Json jsonOf(const Document& document);

/// How each alternative of a value becomes JSON.
struct Conversion
{
    Json operator()(const Document::Array& items) const
    {
        Json json = Json::array();
        for (const Document& item : items)
            json.push_back(jsonOf(item));
        return json;
    }

    Json operator()(const Document::Object& members) const
    {
        Json json = Json::object();
        for (const auto& [name, value] : members)
            json[name] = jsonOf(value);
        return json;
    }

    template <class Scalar>
    Json operator()(const Scalar& value) const
    {
        return value;
    }
};

Json jsonOf(const Document& document) // NOLINT(misc-no-recursion): as deep as what is printed
{
    return std::visit(Conversion{}, document.value());
}

} // namespace

std::string jsonText(const Document& document, Layout layout)
{
    return jsonOf(document).dump(layout == Layout::Lines ? 2 : -1, ' ', false, Json::error_handler_t::replace);
}

} // namespace command_line
