#include "virtual_instrument/transport/console.h"

#include <asio.hpp>
#include <gtest/gtest.h>

#include <csignal>

namespace
{

TEST(StopSignals, EachOfThemIsHeard)
{
    const std::vector<int> expected = kvxvirtual::stopSignals();
    EXPECT_GE(expected.size(), 2U);
    for (const int signal : expected) {
        asio::io_context context(1);
        asio::signal_set signals(context, signal);
        int heard = 0;
        signals.async_wait([&heard](asio::error_code, int number) { heard = number; });
        ASSERT_EQ(std::raise(signal), 0);
        context.run();
        EXPECT_EQ(heard, signal);
    }
}

} // namespace
