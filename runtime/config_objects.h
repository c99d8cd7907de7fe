#pragma once

#include <IviConfigServer.h>

#include <array>
#include <string>
#include <utility>

/// The configuration server's objects as C++ values: handles that are given back, texts, items of collections.
/// Functions return the server's statuses; a positive one of a text says that it was cut, which is accepted.
namespace drivekit
{

/// A handle that this object owns; null when it owns none.
class ConfigHandle
{
public:
    ConfigHandle() = default;
    ConfigHandle(const ConfigHandle&) = delete;
    ConfigHandle& operator=(const ConfigHandle&) = delete;
    ~ConfigHandle() { dispose(); }

    IviConfigHandle get() const { return handle_; }
    explicit operator bool() const { return handle_ != nullptr; }

    /// Gives the handle back to the server. VI_SUCCESS when there is none.
    ViStatus dispose()
    {
        IviConfigHandle const handle = std::exchange(handle_, nullptr);
        return handle == nullptr ? VI_SUCCESS : IviConfig_DisposeHandle(handle);
    }

    /// Owns what `getter(arguments..., &handle)` hands out: nothing when it fails. Owns nothing before.
    template <class Getter, class... Arguments>
    ViStatus obtain(Getter getter, Arguments... arguments)
    {
        const ViStatus status = getter(arguments..., &handle_);
        if (status < 0)
            handle_ = nullptr;
        return status;
    }

private:
    IviConfigHandle handle_ = nullptr;
};

/// A configuration store that this object has opened.
class ConfigStore
{
public:
    ConfigStore() = default;
    ConfigStore(const ConfigStore&) = delete;
    ConfigStore& operator=(const ConfigStore&) = delete;
    ~ConfigStore()
    {
        if (isOpen_)
            close();
    }

    /// Opens an empty store; nothing is open after a failure. Nothing is open before.
    ViStatus open()
    {
        const ViStatus status = IviConfig_Initialize(&handle_);
        isOpen_ = status >= 0;
        return status;
    }

    ViStatus close()
    {
        isOpen_ = false;
        return IviConfig_Close(handle_);
    }

    IviConfigStoreHandle get() const { return handle_; }

private:
    IviConfigStoreHandle handle_ = nullptr;
    bool isOpen_ = false;
};

/// The first failure of two statuses.
inline ViStatus firstFailure(ViStatus earlier, ViStatus later)
{
    return earlier < 0 ? earlier : later;
}

/// Runs `body` on the object that `get(owner, &object)` hands out, if there is one.
template <class Get, class Body>
ViStatus withObject(Get get, IviConfigHandle owner, Body body)
{
    ConfigHandle object;
    ViStatus status = object.obtain(get, owner);
    if (status >= 0 && object)
        status = body(object.get());
    return firstFailure(status, object.dispose());
}

/// Runs `body` on each item of a collection, in order, until one fails.
template <class GetCount, class GetItem, class Body>
ViStatus forEachItem(IviConfigHandle collection, GetCount getCount, GetItem getItem, Body body)
{
    ViInt32 count = 0;
    ViStatus status = getCount(collection, &count);
    for (ViInt32 before = 0; status >= 0 && before < count; ++before) {
        const auto getNext = [&](IviConfigHandle owner, IviConfigHandle* item) {
            return getItem(owner, before + 1, item);
        };
        status = withObject(getNext, collection, body);
    }
    return status;
}

/// Reads a text property into `text`, which changes only on success.
template <class Get>
ViStatus readText(Get get, IviConfigHandle object, ViInt32 property, std::string& text)
{
    std::array<ViChar, 1024> buffer{};
    const ViStatus status = get(object, property, static_cast<ViInt32>(buffer.size()), buffer.data());
    if (status < 0)
        return status;
    buffer.back() = '\0';
    text = buffer.data();
    return VI_SUCCESS;
}

} // namespace drivekit
