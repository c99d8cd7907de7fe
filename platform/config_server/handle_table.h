#pragma once

#include "element.h"
#include "property_rows.h"
#include "store.h"

#include <IviConfigServer.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <unordered_map>

namespace config_server
{

/// What a handle stands for. An element keeps its whole document, so it outlives its store's handle.
struct Object
{
    Kinds kind;
    std::shared_ptr<Store> store; ///< of a store's handle only
    Document element;             ///< of every other handle
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

private:
    mutable std::mutex mutex_;
    std::unordered_map<std::uintptr_t, Object> objects_;
    std::uintptr_t lastNumber_ = 0;
};

} // namespace config_server
