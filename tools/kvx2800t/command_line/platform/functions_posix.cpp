#include "tools/kvx2800t/command_line/platform/functions.h"

#include <dlfcn.h>

#include <climits>
#include <cstdlib>

namespace command_line
{

void* platformFunction(Library /*library*/, const char* name)
{
    // The driver's libraries are loaded with it.
    return dlsym(RTLD_DEFAULT, name);
}

std::string libraryFile(const void* function)
{
    Dl_info library;
    if (function == nullptr || dladdr(function, &library) == 0 || library.dli_fname == nullptr)
        return "";
    char path[PATH_MAX];
    return ::realpath(library.dli_fname, path) == nullptr ? library.dli_fname : path;
}

} // namespace command_line
