#pragma once

#include <string_view>
#include <vector>

namespace panel
{

/// A file of the page, from page/; the build writes them into the program.
struct Asset
{
    std::string_view path; ///< "/style.css"
    std::string_view content;
};

const std::vector<Asset>& assets();

/// Null for a path that is none.
const Asset* findAsset(std::string_view path);

/// "text/css; charset=utf-8", by the ending of a path.
std::string_view mediaType(std::string_view path);

} // namespace panel
