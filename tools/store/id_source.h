#pragma once

#include "tools/store/xml_tree.h"

#include <string>
#include <unordered_set>

namespace store_tool
{

/// Ids that a store does not use: "p" and a number, like those it has. Names that only a reference uses are taken too:
/// a reference to nothing must not come to mean something.
class IdSource
{
public:
    explicit IdSource(const XmlElement& root);

    std::string next();

    /// Keeps an id from being given.
    void take(const std::string& id);

private:
    std::unordered_set<std::string> taken_;
    std::int64_t last_ = 0; ///< highest number seen or given
};

} // namespace store_tool
