#pragma once

#include <IviVisaType.h>

#include <algorithm>
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

/// The name of a value type, as messages call it.
template <class Value>
inline constexpr std::string_view kTypeName = {};
template <>
inline constexpr std::string_view kTypeName<ViInt32> = "ViInt32";
template <>
inline constexpr std::string_view kTypeName<ViReal64> = "ViReal64";
template <>
inline constexpr std::string_view kTypeName<ViBoolean> = "ViBoolean";

/// One attribute: its ID, its name and its functions, which fix its value type.
struct AttributeInfo
{
    ViAttr id;
    std::string_view name;
    std::variant<Accessors<ViInt32>, Accessors<ViReal64>, Accessors<ViBoolean>> accessors;

    constexpr std::string_view typeName() const
    {
        return std::visit([]<class Value>(const Accessors<Value>&) { return kTypeName<Value>; }, accessors);
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
        const auto row = std::lower_bound(attributes_.begin(), attributes_.end(), id,
                                          [](const AttributeInfo& info, ViAttr wanted) { return info.id < wanted; });
        return row != attributes_.end() && row->id == id ? &*row : nullptr;
    }

private:
    std::span<const AttributeInfo> attributes_;
};

} // namespace drivekit
