#pragma once

#include "runtime/attribute_cache.h"

#include <IviVisaType.h>

#include <cstddef>
#include <span>
#include <string_view>
#include <variant>

namespace drivekit
{

/// The functions behind an attribute of one value type; a null setter makes it read-only, a null getter write-only.
template <class Value>
struct Accessors
{
    using Getter = ViStatus(_VI_FUNC*)(ViSession vi, ViConstString channel, Value* value);
    using Setter = ViStatus(_VI_FUNC*)(ViSession vi, ViConstString channel, Value value);

    Getter getter = nullptr;
    Setter setter = nullptr;
};

/// A getter of text fills a buffer of `bufferSize` bytes, cutting the text if need be.
template <>
struct Accessors<ViString>
{
    using Getter = ViStatus(_VI_FUNC*)(ViSession vi, ViConstString channel, ViInt32 bufferSize, ViChar value[]);
    using Setter = ViStatus(_VI_FUNC*)(ViSession vi, ViConstString channel, ViConstString value);

    Getter getter = nullptr;
    Setter setter = nullptr;
};

/// The name of a value type, as messages call it.
template <class Value>
inline constexpr std::string_view kTypeName = {};
template <>
inline constexpr std::string_view kTypeName<ViInt32> = "ViInt32";
template <>
inline constexpr std::string_view kTypeName<ViReal64> = "ViReal64";
template <>
inline constexpr std::string_view kTypeName<ViBoolean> = "ViBoolean";
template <>
inline constexpr std::string_view kTypeName<ViString> = "ViString";
/// No attribute has this type; functions that ask for it exist nevertheless.
template <>
inline constexpr std::string_view kTypeName<ViSession> = "ViSession";

/// One attribute: its ID, its name and its functions, which fix its value type.
struct AttributeInfo
{
    ViAttr id;
    std::string_view name;
    std::variant<Accessors<ViInt32>, Accessors<ViReal64>, Accessors<ViBoolean>, Accessors<ViString>> accessors;

    constexpr std::string_view typeName() const
    {
        return std::visit([]<class Value>(const Accessors<Value>&) { return kTypeName<Value>; }, accessors);
    }

    /// Marks what a session remembers of the attribute invalid: for one channel ("" without channels), or for all.
    void invalidate(AttributeCaches& caches, bool allChannels, std::string_view channel) const
    {
        std::visit(
            [&]<class Value>(const Accessors<Value>&) {
                auto& cache = caches.of<Value>();
                if (allChannels)
                    cache.invalidateAll(id);
                else
                    cache.invalidate(id, channel);
            },
            accessors);
    }
};

/// The attributes of a driver: rows in ascending order of their IDs. Constant: any thread may read.
class AttributeRegistry
{
public:
    constexpr explicit AttributeRegistry(std::span<const AttributeInfo> attributes) : attributes_(attributes) {}

    /// Null for an ID that no row has.
    const AttributeInfo* find(ViAttr id) const
    {
        // The last row with no larger ID is among as many rows as are left.
        const AttributeInfo* row = attributes_.data();
        for (std::size_t left = attributes_.size(); left > 1; left -= left / 2)
            row += row[left / 2].id <= id ? left / 2 : 0;
        return !attributes_.empty() && row->id == id ? row : nullptr;
    }

    auto begin() const { return attributes_.begin(); }
    auto end() const { return attributes_.end(); }
    std::size_t size() const { return attributes_.size(); }

private:
    std::span<const AttributeInfo> attributes_;
};

} // namespace drivekit
