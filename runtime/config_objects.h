#pragma once

#include <IviConfigServer.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <utility>
#include <vector>

/// The configuration server's objects as C++ values: handles that are given back, texts, items of collections.
/// Functions return the server's statuses.
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

/// The sizes of the buffers that a text is read with: first this one, which nearly all fit in.
inline constexpr std::size_t kTextSize = 1024;
/// A longer text once more with the size that it needs; but what is longer than this is cut.
inline constexpr std::size_t kLargestStoreText = 65536;

/// Reads a text property into `text`, which changes only on success. A status beyond the size of the buffer is the size
/// that the text needs (IVI-3.2, section 3.1.2.1).
template <std::size_t firstSize = kTextSize, class Get>
ViStatus readText(Get get, IviConfigHandle object, ViInt32 property, std::string& text)
{
    std::array<ViChar, firstSize> first{};
    std::vector<ViChar> second;
    std::span<ViChar> buffer = first;
    const auto read = [&] { return get(object, property, static_cast<ViInt32>(buffer.size()), buffer.data()); };
    ViStatus status = read();
    if (status > 0 && static_cast<std::size_t>(status) > firstSize) {
        second.resize(std::min(static_cast<std::size_t>(status), kLargestStoreText));
        buffer = second;
        status = read();
    }
    if (status < 0)
        return status;
    buffer.back() = '\0';
    text = buffer.data();
    return VI_SUCCESS;
}

} // namespace drivekit
