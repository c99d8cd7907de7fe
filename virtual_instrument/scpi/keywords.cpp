#include "virtual_instrument/scpi/keywords.h"

#include "virtual_instrument/scpi/text.h"

#include <algorithm>

namespace kvxvirtual
{

std::optional<int> keywordIndex(KeywordTable table, std::string_view text)
{
    if (text.empty())
        return std::nullopt;
    const auto found = std::find_if(table.begin(), table.end(), [text](const Keyword& keyword) {
        return equalIgnoringCase(text, keyword.usual) || equalIgnoringCase(text, keyword.alternate);
    });
    if (found == table.end())
        return std::nullopt;
    return static_cast<int>(found - table.begin());
}

std::optional<int> channelNamed(std::string_view text)
{
    const auto index = keywordIndex(keywords::kChannels, text);
    return index ? std::optional(*index + 1) : std::nullopt;
}

} // namespace kvxvirtual
