#include "visa/transport/tcp/host_lookup.h"

#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <stdexcept>
#include <string>

namespace
{

using asio::ip::tcp;
using visa::Deadline;
using visa::HostEndpoints;
using visa::lookUpHost;
using visa::lookUpHostBy;

constexpr ViUInt32 kShortLookupMs = 5;
constexpr ViUInt32 kLongLookupMs = 60000;

asio::error_code never(const std::string&, const std::string&, HostEndpoints&)
{
    ADD_FAILURE() << "an address was looked up";
    return {};
}

TEST(VisaHostLookup, AddressesAreTakenAsTheyAre)
{
    for (const char* address : {"127.0.0.1", "192.0.2.7", "::1", "2001:db8::5"}) {
        HostEndpoints endpoints;
        EXPECT_FALSE(lookUpHostBy(never, address, 5025, Deadline(VI_TMO_IMMEDIATE), endpoints)) << address;
        ASSERT_EQ(endpoints.size(), 1U);
        EXPECT_EQ(endpoints.begin()->endpoint(), tcp::endpoint(asio::ip::make_address(address), 5025));
    }
}

TEST(VisaHostLookup, HostTellsTheAddressesOfAName)
{
    HostEndpoints endpoints;
    EXPECT_FALSE(lookUpHost("localhost", 5025, Deadline(kLongLookupMs), endpoints));
    ASSERT_FALSE(endpoints.empty());
    EXPECT_TRUE(endpoints.begin()->endpoint().address().is_loopback());
    EXPECT_EQ(endpoints.begin()->endpoint().port(), 5025);
}

TEST(VisaHostLookup, NameAndPortAreHandedOnAndTheOutcomeBack)
{
    std::string asked;
    const auto refuse = [&asked](const std::string& host, const std::string& port, HostEndpoints&) {
        asked = host + ' ' + port;
        return asio::error_code(asio::error::host_not_found);
    };
    HostEndpoints endpoints;
    EXPECT_EQ(lookUpHostBy(refuse, "psu.example", 4880, Deadline(kLongLookupMs), endpoints),
              asio::error_code(asio::error::host_not_found));
    EXPECT_EQ(asked, "psu.example 4880");
    EXPECT_TRUE(endpoints.empty());
}

TEST(VisaHostLookup, WantOfMemoryIsToldAsSuch)
{
    const auto fail = [](const std::string&, const std::string&, HostEndpoints&) -> asio::error_code {
        throw std::bad_alloc();
    };
    HostEndpoints endpoints;
    EXPECT_EQ(lookUpHostBy(fail, "psu.example", 4880, Deadline(kLongLookupMs), endpoints),
              asio::error_code(asio::error::no_memory));
}

/// A name server that answers when the test ends.
class SilentNameServer : public testing::Test
{
protected:
    void TearDown() override
    {
        release_.set_value();
        // Those left behind are gone when another one may take the last place.
        HostEndpoints endpoints;
        while (lookUpHostBy(atOnce, "psu.example", 1, Deadline(kLongLookupMs), endpoints) != asio::error_code())
            std::this_thread::yield();
    }

    static asio::error_code atOnce(const std::string&, const std::string&, HostEndpoints&) { return {}; }

    asio::error_code lookUp()
    {
        HostEndpoints endpoints;
        const auto wait = [released = released_](const std::string&, const std::string&, HostEndpoints&) {
            released.wait();
            return asio::error_code();
        };
        return lookUpHostBy(wait, "psu.example", 5025, Deadline(kShortLookupMs), endpoints);
    }

    std::promise<void> release_;
    std::shared_future<void> released_ = release_.get_future().share();
};

TEST_F(SilentNameServer, EndsTheWaitWithTheDeadline)
{
    EXPECT_EQ(lookUp(), asio::error_code(asio::error::timed_out));
}

TEST_F(SilentNameServer, LeavesOnlySoManyThreadsBehind)
{
    for (int i = 0; i < 64; ++i)
        EXPECT_EQ(lookUp(), asio::error_code(asio::error::timed_out)) << i;
    EXPECT_EQ(lookUp(), asio::error_code(asio::error::no_buffer_space));
}

} // namespace
