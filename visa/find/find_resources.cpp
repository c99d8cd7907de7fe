#include "visa/find/find_resources.h"

#include "visa/transport/transports.h"

#include <set>

namespace visa
{

std::vector<std::string> findResources(const FindExpression& expression)
{
    std::vector<std::string> found;
    std::set<std::string> known;
    const auto canBegin = [&expression](std::string_view beginning) { return expression.fitsBeginning(beginning); };
    for (const std::string& text : presentResources(canBegin)) {
        const auto name = parseResourceName(text);
        if (name && expression.fits(*name) && known.insert(name->canonical).second)
            found.push_back(name->canonical);
    }
    return found;
}

} // namespace visa
