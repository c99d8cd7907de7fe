#pragma once

#include <cstddef>
#include <string>

namespace kvxtest
{

/// What stands between the tags of a store's root element.
inline std::string storeWith(const std::string& content)
{
    return "<IviConfigStore>" + content + "</IviConfigStore>";
}

inline std::string repeated(const std::string& text, std::size_t times)
{
    std::string all;
    all.reserve(text.size() * times);
    for (std::size_t i = 0; i < times; ++i)
        all += text;
    return all;
}

} // namespace kvxtest
