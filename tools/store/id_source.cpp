#include "tools/store/id_source.h"

#include "tools/store/values.h"

#include <algorithm>

namespace store_tool
{
namespace
{

constexpr char kPrefix = 'p';

/// The number behind the prefix; 0 for an id of another form.
std::int64_t numberOf(const std::string& id)
{
    return id.empty() || id.front() != kPrefix ? 0 : parseInteger(std::string_view(id).substr(1)).value_or(0);
}

} // namespace

IdSource::IdSource(const XmlElement& root)
{
    forEach(root, [this](const XmlElement& element) {
        for (const auto& id : {element.id, element.idref}) {
            if (id)
                take(*id);
        }
    });
}

std::string IdSource::next()
{
    std::string id;
    do {
        id = kPrefix + std::to_string(++last_);
    } while (taken_.contains(id));
    return id;
}

void IdSource::take(const std::string& id)
{
    last_ = std::max(last_, numberOf(id));
    taken_.insert(id);
}

} // namespace store_tool
