#pragma once

#include <string>

namespace kvxtest
{

/// A library that the test program loads while it runs, as class drivers and scripting languages do.
class SharedLibrary
{
public:
    /// Throws std::runtime_error with the host's reason when the file cannot be loaded.
    explicit SharedLibrary(const std::string& file);

    /// Unloads it: functions found in it must not be called any more.
    ~SharedLibrary();

    SharedLibrary(const SharedLibrary&) = delete;
    SharedLibrary& operator=(const SharedLibrary&) = delete;

    /// An exported function. Throws std::runtime_error when the library has none of that name.
    template <class Function>
    Function* find(const char* name) const
    {
        return reinterpret_cast<Function*>(address(name));
    }

private:
    void* address(const char* name) const;

    void* handle_;
};

} // namespace kvxtest
