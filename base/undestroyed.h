#pragma once

namespace base
{

/// An object for the life of the process, which is never destroyed: others may use it from their own clean-up while the
/// process ends. As a constant-initialised global it costs no guard.
template <class Object>
union Undestroyed
{
    constexpr Undestroyed() : object() {}
    Undestroyed(const Undestroyed&) = delete;
    Undestroyed& operator=(const Undestroyed&) = delete;
    ~Undestroyed() {} // NOLINT(modernize-use-equals-default): that would be deleted

    Object object;
};

} // namespace base
