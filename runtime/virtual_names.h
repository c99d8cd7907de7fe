#pragma once

#include <IviVisaType.h>

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace drivekit
{

/// The virtual names of a session (IVI-3.5 section 2.9): each stands for a piece of selector text.
///
/// A name with ranges is not a name by itself; followed by an index of one of its ranges it is one. Where two meanings
/// fit a token, the one added last holds. Letter case counts.
class VirtualNames
{
public:
    void add(const std::string& name, std::string mapTo);

    /// name + i stands for mapTo + (startingPhysicalIndex + (i - minimum)), for every i from minimum to maximum;
    /// indexes are plain decimal numbers. Bounds in the wrong order change places.
    void addRange(const std::string& name, std::string mapTo, ViInt32 minimum, ViInt32 maximum,
                  ViInt32 startingPhysicalIndex);

    /// Appends what `token` stands for; false, and nothing appended, when it is no virtual name.
    bool append(std::string_view token, std::string& text) const;

    bool empty() const { return names_.empty() && ranges_.empty(); }

private:
    struct Name
    {
        std::string mapTo;
        std::size_t order = 0;
    };

    /// What the indexes from a minimum, its key, to a maximum stand for.
    struct Range
    {
        std::string mapTo;
        std::int64_t maximum = 0;
        /// The index that the minimum stands for.
        std::int64_t physicalIndex = 0;
        std::size_t order = 0;
    };

    /// The ranges of one name, disjoint: a later one has taken its indexes from the earlier ones.
    using Ranges = std::map<std::int64_t, Range>;

    /// A range, its minimum, and the index in it that a token names.
    struct RangeMatch
    {
        const Range* range = nullptr;
        std::int64_t minimum = 0;
        std::int64_t index = 0;
    };

    static void splitAt(Ranges& ranges, std::int64_t index);
    RangeMatch findRange(std::string_view token) const;

    std::map<std::string, Name, std::less<>> names_;
    std::map<std::string, Ranges, std::less<>> ranges_;
    std::size_t count_ = 0;
};

} // namespace drivekit
