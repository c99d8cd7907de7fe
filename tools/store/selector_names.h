#pragma once

#include "tools/store/xml_tree.h"

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
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

/// Indexes in ranges. Looking one up takes few steps however many there are.
class IndexSet
{
public:
    void add(IndexRange range);

    /// Puts the ranges in order; to be called between adding and looking up.
    void finish();

    /// The first index in a range; nothing when there is none.
    std::optional<std::int32_t> firstIn(IndexRange range) const;

private:
    std::vector<IndexRange> ranges_; ///< once finished, in order and apart
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
    void add(const XmlElement& physicalName);
    std::string sharedRange(const std::string& name, const XmlElement& virtualName) const;
    bool contains(const std::string& identifier) const;

    std::unordered_set<std::string> names_;             ///< without ranges
    std::unordered_map<std::string, IndexSet> indexes_; ///< what follows a name, be it ranges or the end of other names
};

} // namespace store_tool
