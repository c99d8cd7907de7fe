#pragma once

#include <IviVisaType.h>

#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>

namespace drivekit
{

template <class Value>
struct CachedValue
{
    std::conditional_t<std::is_same_v<Value, ViString>, std::string, Value> value{};
    bool valid = false;
};

/// A session's remembered values of the attributes of one type, by attribute and channel ("" for an attribute without
/// channels). Nothing fills it: each read goes to the instrument. Used under the session lock.
template <class Value>
class AttributeCache
{
public:
    /// Marks one value invalid; it is there afterwards.
    void invalidate(ViAttr id, std::string_view channel) { values_[id][std::string(channel)].valid = false; }

    /// Forgets the values of every channel.
    void invalidateAll(ViAttr id) { values_.erase(id); }

    /// Null for a value that is not there.
    const CachedValue<Value>* find(ViAttr id, std::string_view channel) const
    {
        const auto channels = values_.find(id);
        if (channels == values_.end())
            return nullptr;
        const auto found = channels->second.find(channel);
        return found == channels->second.end() ? nullptr : &found->second;
    }

private:
    std::map<ViAttr, std::map<std::string, CachedValue<Value>, std::less<>>> values_;
};

/// What a session remembers: a cache for each type that attributes have.
class AttributeCaches
{
public:
    template <class Value>
    AttributeCache<Value>& of()
    {
        return std::get<AttributeCache<Value>>(caches_);
    }

private:
    std::tuple<AttributeCache<ViInt32>, AttributeCache<ViReal64>, AttributeCache<ViBoolean>, AttributeCache<ViString>>
        caches_;
};

} // namespace drivekit
