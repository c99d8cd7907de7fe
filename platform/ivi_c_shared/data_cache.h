#pragma once

#include <IviCShared.h>

#include <array>
#include <atomic>
#include <cstddef>

namespace ivi_c_shared
{

/// Data pointers of sessions by handle, to be read without a lock: drivers ask for them several times in every call.
///
/// A session has its place by its handle; one whose place is taken does without. Changes of one session must not
/// overlap, nor changes of sessions that share a place. find() may run at any time: handles never come back, so a place
/// that has the handle before and after the pointer was read has had it in between.
class DataCache
{
public:
    static constexpr std::size_t kPlaces = 1024;

    /// Enters a session, with a null pointer, if its place is free.
    void add(ViSession handle)
    {
        Place& place = placeOf(handle);
        if (place.handle != VI_NULL)
            return;
        place.data = nullptr;
        place.handle = handle;
    }

    void set(ViSession handle, ViAddr data)
    {
        Place& place = placeOf(handle);
        if (place.handle == handle)
            place.data = data;
    }

    void remove(ViSession handle)
    {
        Place& place = placeOf(handle);
        if (place.handle == handle)
            place.handle = VI_NULL;
    }

    /// @return false when the session is not here, which does not mean that it is unknown
    bool find(ViSession handle, ViAddr& data) const
    {
        const Place& place = places_[handle % kPlaces];
        if (handle == VI_NULL || place.handle != handle)
            return false;
        ViAddr const found = place.data;
        if (place.handle != handle)
            return false;
        data = found;
        return true;
    }

private:
    struct Place
    {
        std::atomic<ViSession> handle = VI_NULL;
        std::atomic<ViAddr> data = nullptr;
    };

    Place& placeOf(ViSession handle) { return places_[handle % kPlaces]; }

    std::array<Place, kPlaces> places_;
};

} // namespace ivi_c_shared
