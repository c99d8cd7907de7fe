#include "support/virtual_instrument_process.h"

#include <KVX2800T.h>

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace kvxtest
{
namespace
{

struct CloseLibrary
{
    void operator()(void* library) const { dlclose(library); }
};

using Library = std::unique_ptr<void, CloseLibrary>;

Library load()
{
    return Library(dlopen(KVX_DRIVER_FILE, RTLD_NOW | RTLD_LOCAL));
}

template <class Function>
Function* find(const Library& library, const char* name)
{
    return reinterpret_cast<Function*>(dlsym(library.get(), name));
}

// decltype only: the test program itself does not link the driver.
#define FIND(library, function) find<decltype(function)>(library, #function)

TEST(LoadedLibrary, FindsThePlatformBesideItself)
{
    const Library library = load();
    ASSERT_NE(library, nullptr) << dlerror();
    auto* const message = FIND(library, KVX2800T_error_message);
    ASSERT_NE(message, nullptr);
    char text[256] = "";
    EXPECT_EQ(message(VI_NULL, KVX2800T_ERROR_IO, text), VI_SUCCESS);
    EXPECT_STREQ(text, "I/O error.");
}

TEST(LoadedLibrary, WorksAgainAfterItWasUnloaded)
{
    for (int round = 0; round < 10; ++round) {
        const Library library = load();
        ASSERT_NE(library, nullptr) << dlerror();
        ViSession vi = VI_NULL;
        EXPECT_EQ(FIND(library, KVX2800T_InitWithOptions)(nullptr, VI_FALSE, VI_FALSE, "Simulate=1", &vi), VI_SUCCESS);
        EXPECT_EQ(FIND(library, KVX2800T_close)(vi), VI_SUCCESS);
    }
}

TEST(LoadedLibrary, ExceptionsCrossItsBorder)
{
    VirtualInstrumentProcess instrument;
    const Library library = load();
    ASSERT_NE(library, nullptr) << dlerror();
    std::string resource = instrument.resource();
    ViSession vi = VI_NULL;
    ASSERT_EQ(FIND(library, KVX2800T_init)(resource.data(), VI_FALSE, VI_FALSE, &vi), VI_SUCCESS);
    instrument.control("answer 1e999");
    ViReal64 volts = -1.0;
    try {
        FIND(library, KVX2800T_GetAttributeViReal64)(vi, "OutputChannel1", KVX2800T_ATTR_VOLTAGE_LEVEL, &volts);
        FAIL() << "no exception";
    } catch (const std::out_of_range& exception) {
        EXPECT_STREQ(exception.what(), "stod argument out of range");
    }
    EXPECT_EQ(FIND(library, KVX2800T_UnlockSession)(vi, nullptr), VI_SUCCESS);
    EXPECT_EQ(FIND(library, KVX2800T_close)(vi), VI_SUCCESS);
}

} // namespace
} // namespace kvxtest
