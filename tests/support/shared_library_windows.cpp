#include "tests/support/shared_library.h"

#include "tests/support/utf8_path.h"

#include <windows.h>

#include <stdexcept>
#include <system_error>

namespace kvxtest
{
namespace
{

/// What LoadLibrary or GetProcAddress has returned; throws what the system says of it.
void* checked(void* found, const std::string& what)
{
    if (found == nullptr)
        throw std::runtime_error(what + ": " + std::system_category().message(static_cast<int>(GetLastError())));
    return found;
}

} // namespace

SharedLibrary::SharedLibrary(const std::string& file)
    : handle_(checked(LoadLibraryW(fromUtf8(file).make_preferred().c_str()), file))
{
}

SharedLibrary::~SharedLibrary()
{
    FreeLibrary(static_cast<HMODULE>(handle_));
}

void* SharedLibrary::address(const char* name) const
{
    return checked(reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle_), name)), name);
}

} // namespace kvxtest
