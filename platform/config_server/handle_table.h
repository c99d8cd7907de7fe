#pragma once

#include "platform/config_server/collection.h"
#include "platform/config_server/element.h"
#include "platform/config_server/kinds.h"
#include "platform/config_server/store.h"

#include <IviConfigServer.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <unordered_map>

namespace config_server
{

/// What a handle stands for; all but one of the pointers are null. What it points to outlives its store's handle.
struct Object
{
    Kinds kind;
    std::shared_ptr<Store> store{};            ///< of a store's handle
    Document element{};                        ///< of an object's
    std::shared_ptr<const Collection> items{}; ///< of a collection's
};

/// All live handles of the process with their kinds. A handle is a number, not an address, and is never handed out
/// twice, so that a stale one is recognised. Any thread.
class HandleTable
{
public:
    IviConfigHandle add(Object object);

    /// Nothing when the handle is not live or of none of these kinds.
    std::optional<Object> find(IviConfigHandle handle, Kinds kinds) const;

    /// @return false when the handle is not live or of none of these kinds
    bool remove(IviConfigHandle handle, Kinds kinds);

    /// The number of live handles.
    std::size_t size() const;

private:
    mutable std::mutex mutex_;
    std::unordered_map<std::uintptr_t, Object> objects_;
    std::uintptr_t lastNumber_ = 0;
};

/// The table of this process.
HandleTable& handles();

} // namespace config_server
