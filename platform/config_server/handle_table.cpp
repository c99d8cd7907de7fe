#include "platform/config_server/handle_table.h"

#include <bit>

namespace config_server
{

IviConfigHandle HandleTable::add(Object object)
{
    const std::lock_guard guard(mutex_);
    const std::uintptr_t number = ++lastNumber_;
    objects_.emplace(number, std::move(object));
    return std::bit_cast<IviConfigHandle>(number);
}

std::optional<Object> HandleTable::find(IviConfigHandle handle, Kinds kinds) const
{
    const std::lock_guard guard(mutex_);
    const auto found = objects_.find(std::bit_cast<std::uintptr_t>(handle));
    if (found == objects_.end() || (found->second.kind & kinds) == 0)
        return std::nullopt;
    return found->second;
}

bool HandleTable::remove(IviConfigHandle handle, Kinds kinds)
{
    const std::lock_guard guard(mutex_);
    const auto found = objects_.find(std::bit_cast<std::uintptr_t>(handle));
    if (found == objects_.end() || (found->second.kind & kinds) == 0)
        return false;
    objects_.erase(found);
    return true;
}

std::size_t HandleTable::size() const
{
    const std::lock_guard guard(mutex_);
    return objects_.size();
}

HandleTable& handles()
{
    // Never destroyed: drivers may give handles back while the process ends.
    static HandleTable& table = *new HandleTable;
    return table;
}

} // namespace config_server
