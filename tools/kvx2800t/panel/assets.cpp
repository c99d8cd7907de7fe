#include "tools/kvx2800t/panel/assets.h"

#include <algorithm>
#include <array>
#include <utility>

namespace panel
{
namespace
{

constexpr std::array<std::pair<std::string_view, std::string_view>, 6> kMediaTypes = {{
    {".html", "text/html; charset=utf-8"},
    {".css", "text/css; charset=utf-8"},
    {".js", "text/javascript; charset=utf-8"},
    {".svg", "image/svg+xml"},
    {".json", "application/json"},
    {".txt", "text/plain; charset=utf-8"},
}};

bool endsWith(std::string_view text, std::string_view ending)
{
    return text.size() >= ending.size() && text.substr(text.size() - ending.size()) == ending;
}

} // namespace

std::string_view mediaType(std::string_view path)
{
    const auto* const row = std::find_if(kMediaTypes.begin(), kMediaTypes.end(),
                                         [path](const auto& type) { return endsWith(path, type.first); });
    return row == kMediaTypes.end() ? "application/octet-stream" : row->second;
}

const Asset* findAsset(std::string_view path)
{
    const auto& all = assets();
    const auto found = std::find_if(all.begin(), all.end(), [path](const Asset& asset) { return asset.path == path; });
    return found == all.end() ? nullptr : &*found;
}

} // namespace panel
