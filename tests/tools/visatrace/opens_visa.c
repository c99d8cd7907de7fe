/* Loads libvisa.so as the loader finds it, opens a resource manager and prints the status. */
#include <visa.h>

#include <dlfcn.h>
#include <stdio.h>

int main(void)
{
    union
    {
        void* address;
        ViStatus (*call)(ViPSession);
    } function;
    ViSession manager = 0;
    void* const library = dlopen("libvisa.so", RTLD_NOW);
    if (library == NULL) {
        fprintf(stderr, "%s\n", dlerror());
        return 1;
    }
    function.address = dlsym(library, "viOpenDefaultRM");
    printf("0x%08lX\n", (unsigned long)(ViUInt32)function.call(&manager));
    return 0;
}
