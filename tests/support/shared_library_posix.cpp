#include "tests/support/shared_library.h"

#include <dlfcn.h>

#include <stdexcept>

namespace kvxtest
{
namespace
{

/// What dlopen or dlsym has returned; throws what they complain about.
void* checked(void* found)
{
    if (found == nullptr)
        throw std::runtime_error(dlerror()); // NOLINT(concurrency-mt-unsafe): glibc keeps one for each thread
    return found;
}

} // namespace

SharedLibrary::SharedLibrary(const std::string& file) : handle_(checked(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL))) {}

SharedLibrary::~SharedLibrary()
{
    dlclose(handle_);
}

void* SharedLibrary::address(const char* name) const
{
    return checked(dlsym(handle_, name));
}

} // namespace kvxtest
