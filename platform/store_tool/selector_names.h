#pragma once

#include "xml_tree.h"

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace store_tool
{

/// A range of indexes, both ends included.
struct IndexRange
{
    std::int32_t min;
    std::int32_t max;
};

/// The range that a physical or virtual range element tells; nothing when it is none.
std::optional<IndexRange> rangeOf(const XmlElement& element);

/// A physical or virtual name and what follows it: the name alone without ranges, otherwise only name and index.
struct SelectorName
{
    std::string name;
    bool isRanged;
    std::vector<IndexRange> ranges; ///< those that are readable
};

/// The physical names of a software module at all levels.
class PhysicalNames
{
public:
    explicit PhysicalNames(const XmlElement& softwareModule);

    /// An identifier that the virtual name and a physical name both stand for; empty when there is none. Ranges are
    /// compared with names and with ranges of the same name.
    std::string sharedWith(const XmlElement& virtualName) const;

private:
    std::string sharedWithPlain(const SelectorName& virtualName) const;

    std::vector<std::string> plain_; ///< in the order of the file
    std::unordered_set<std::string> plainSet_;
    std::vector<SelectorName> ranged_;
};

} // namespace store_tool
