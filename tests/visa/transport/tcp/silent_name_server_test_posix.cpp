#include "tests/support/visa/visa_fixture.h"

#include <dlfcn.h>
#include <netdb.h>

#include <cstring>
#include <future>

namespace
{

constexpr auto kSilentHost = "silent.invalid";

std::promise<void>& release()
{
    static std::promise<void> promise;
    return promise;
}

std::promise<void>& left()
{
    static std::promise<void> promise;
    return promise;
}

} // namespace

/// In place of the C library's: one host's name server says nothing until it is told to.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name): the host has it "pai"
extern "C" int getaddrinfo(const char* host, const char* service, const addrinfo* hints, addrinfo** found)
{
    if (host == nullptr || std::strcmp(host, kSilentHost) != 0) {
        static auto* const real = reinterpret_cast<decltype(&getaddrinfo)>(dlsym(RTLD_NEXT, "getaddrinfo"));
        return real(host, service, hints, found);
    }
    release().get_future().wait();
    left().set_value();
    return EAI_AGAIN;
}

namespace
{

using VisaSilentNameServer = kvxtest::VisaTest;

TEST_F(VisaSilentNameServer, OpeningEndsWithItsTimeout)
{
    ViSession session = 17;
    const std::string resource = std::string("TCPIP0::") + kSilentHost + "::5025::SOCKET";
    EXPECT_EQ(viOpen(manager_, resource.c_str(), VI_NULL, 20, &session), VI_ERROR_TMO);
    EXPECT_EQ(session, static_cast<ViSession>(VI_NULL));
    release().set_value();
    left().get_future().wait();
}

} // namespace
