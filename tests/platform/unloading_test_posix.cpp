#include <gtest/gtest.h>

#include <dlfcn.h>

namespace
{

TEST(PlatformUnloading, LibrariesStayLoadedWithTheirSessions)
{
    for (const char* const library : {SESSION_SERVICE_LIBRARY, VISA_LIBRARY, CONFIG_SERVER_LIBRARY}) {
        void* const loaded = ::dlopen(library, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(loaded, nullptr) << library;
        EXPECT_EQ(::dlclose(loaded), 0);
        EXPECT_NE(::dlopen(library, RTLD_NOW | RTLD_NOLOAD), nullptr) << library;
    }
}

} // namespace
