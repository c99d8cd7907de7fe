#include "tools/visatrace/library_behind.h"

#include "tools/visatrace/line.h"
#include "tools/visatrace/trace_file.h"

#include <atomic>
#include <climits>
#include <cstdlib>
#include <dlfcn.h>
#include <elf.h>
#include <link.h>
#include <memory>
#include <string>
#include <string_view>
#include <unistd.h>

namespace visatrace
{
namespace
{

constexpr const char* kStandardNames[] = {"libvisa.so.0", "libvisa.so"};

/// The library's own name for itself, whatever its file is called.
std::string_view ownName(const link_map& library)
{
    const char* texts = nullptr;
    ElfW(Xword) place = 0;
    for (const ElfW(Dyn)* entry = library.l_ld; entry->d_tag != DT_NULL; ++entry) {
        if (entry->d_tag == DT_STRTAB)
            texts = reinterpret_cast<const char*>(entry->d_un.d_ptr);
        else if (entry->d_tag == DT_SONAME)
            place = entry->d_un.d_val;
    }
    return texts == nullptr || place == 0 ? std::string_view() : texts + place;
}

/// This library, or a copy of it: the two would forward to each other for ever.
bool isTrace(void* handle)
{
    link_map* library = nullptr;
    return dlinfo(handle, RTLD_DI_LINKMAP, &library) == 0 && ownName(*library) == KVX_VISATRACE_NAME;
}

/// Null when it cannot be loaded or is this library.
void* loadAnother(const char* file)
{
    // What the library calls of its own must not come back here, which is where the program's symbols lead.
    void* const handle = dlopen(file, RTLD_NOW | RTLD_LOCAL | KVX_VISATRACE_BINDING);
    if (handle == nullptr || !isTrace(handle))
        return handle;
    dlclose(handle);
    return nullptr;
}

/// The next library of a standard name in the folders where the loader looks: this one may have taken the first place.
void* loadNext()
{
    Dl_info here;
    if (dladdr(reinterpret_cast<const void*>(&isTrace), &here) == 0)
        return nullptr;
    void* const self = dlopen(here.dli_fname, RTLD_LAZY | RTLD_NOLOAD);
    Dl_serinfo size;
    if (self == nullptr || dlinfo(self, RTLD_DI_SERINFOSIZE, &size) != 0)
        return nullptr;
    const auto bytes = std::make_unique<std::byte[]>(size.dls_size);
    auto* const folders = reinterpret_cast<Dl_serinfo*>(bytes.get());
    *folders = size;
    if (dlinfo(self, RTLD_DI_SERINFO, folders) != 0)
        return nullptr;
    for (unsigned index = 0; index < folders->dls_cnt; ++index)
        for (const char* const name : kStandardNames)
            if (void* const found =
                    loadAnother((std::string(folders->dls_serpath[index].dls_name) + '/' + name).c_str()))
                return found;
    return nullptr;
}

void* loadStandard()
{
    for (const char* const name : kStandardNames)
        if (void* const found = loadAnother(name))
            return found;
    return loadNext();
}

class LibraryBehind
{
public:
    LibraryBehind()
    {
        const char* const file = std::getenv("KVX_VISATRACE_LIBRARY");
        if (file != nullptr)
            std::string_view(file).copy(file_, sizeof(file_) - 1);
    }

    void* handle()
    {
        void* known = handle_.load(std::memory_order_acquire);
        if (known == nullptr) {
            void* const loaded = load();
            if (handle_.compare_exchange_strong(known, loaded)) {
                known = loaded;
                if (loaded == &kAbsent)
                    tellAbsence();
            }
        }
        return known == &kAbsent ? nullptr : known;
    }

private:
    void* load() const
    {
        void* const loaded = *file_ == '\0' ? loadStandard() : loadAnother(file_);
        return loaded == nullptr ? &kAbsent : loaded;
    }

    void tellAbsence() const
    {
        Line line;
        line.seconds(microsecondsSinceLoading());
        line.text(" [");
        line.number(static_cast<std::uint64_t>(gettid()));
        line.text("] no VISA to forward to: ");
        if (*file_ == '\0')
            line.text("the loader finds no libvisa.so.0 and no libvisa.so but this library");
        else {
            const char* const reason = dlerror();
            line.text(file_);
            line.text(reason == nullptr ? " is this library" : " cannot be loaded: ");
            line.text(reason == nullptr ? "" : reason);
        }
        writeLine(line.finish());
    }

    static inline char kAbsent = 0;

    char file_[PATH_MAX] = "";
    std::atomic<void*> handle_ = nullptr;
};

LibraryBehind libraryBehind;

} // namespace

bool hasLibraryBehind()
{
    return libraryBehind.handle() != nullptr;
}

void* functionBehind(const char* name)
{
    void* const handle = libraryBehind.handle();
    return handle == nullptr ? nullptr : dlsym(handle, name);
}

} // namespace visatrace
