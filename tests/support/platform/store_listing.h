#pragma once

#include <IviConfigServer.h>

#include <string>
#include <utility>
#include <vector>

namespace kvxtest
{

/// A handle other than a store's, which is given back at the end.
class OwnedHandle
{
public:
    explicit OwnedHandle(IviConfigHandle handle) : handle_(handle) {}
    OwnedHandle(OwnedHandle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    OwnedHandle(const OwnedHandle&) = delete;
    OwnedHandle& operator=(const OwnedHandle&) = delete;
    ~OwnedHandle();

    operator IviConfigHandle() const { return handle_; } // NOLINT(google-explicit-constructor)

private:
    IviConfigHandle handle_;
};

/// @throws std::runtime_error when the status is not VI_SUCCESS
void require(ViStatus status, const char* what);

/// What a function of the configuration server hands out behind its other arguments; may be null.
/// @throws std::runtime_error when it fails
template <class Function, class... Arguments>
OwnedHandle obtain(Function function, const Arguments&... arguments)
{
    IviConfigHandle handle = nullptr;
    require(function(arguments..., &handle), "obtaining a handle");
    return OwnedHandle(handle);
}

using TextGetter = ViStatus(_VI_FUNC*)(IviConfigHandle handle, ViInt32 propertyID, ViInt32 bufferSize, ViChar value[]);

/// A text property of any length.
/// @throws std::runtime_error when it cannot be read, or not by the rules for buffers
std::string readText(TextGetter get, IviConfigHandle handle, ViInt32 property);

/// Names to look up in a store.
struct StoreNames
{
    std::vector<std::string> sessions;
    std::vector<std::string> modules;
};

/// Reads everything that a store hands out, beginning with the entries of these names as far as they exist: one line
/// for each property and each object, indented by containment. Leaves no handle and no error behind.
/// @throws std::runtime_error when a call fails that has no reason to
std::string listStore(IviConfigStoreHandle store, const StoreNames& names);

} // namespace kvxtest
