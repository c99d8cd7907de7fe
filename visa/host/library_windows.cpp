#include "visa/host/library.h"

#include <windows.h>

namespace visa
{

void keepLibraryLoaded() noexcept
{
    HMODULE ignored = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                       reinterpret_cast<LPCWSTR>(&keepLibraryLoaded), &ignored);
}

} // namespace visa
