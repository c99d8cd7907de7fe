#pragma once

#include <algorithm>
#include <string>
#include <vector>

namespace kvxtest
{

/// What an instrument has received, without the looks at its event status that follow what configures it.
inline std::vector<std::string> withoutStatusChecks(std::vector<std::string> lines)
{
    std::erase(lines, "*ESR?");
    return lines;
}

/// Without a query of list or delay mode that a program repeats while it waits, and the selections in front of it.
inline std::vector<std::string> withoutPolls(std::vector<std::string> lines, const std::string& query)
{
    for (auto poll = std::find(lines.begin(), lines.end(), query); poll != lines.end();
         poll = std::find(lines.begin(), lines.end(), query))
        lines.erase(poll - 1, poll + 1);
    return lines;
}

} // namespace kvxtest
