#include "tests/support/open_descriptors.h"
#include "tests/support/processes/virtual_instrument_process.h"
#include "tests/torture/tally.h"

#include <KVX2800T.h>

#include <malloc.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

// Sessions that work for a long time on an instrument that drops the link again and again: what they hold stays the
// same. A few seconds, or as many minutes as KVX_SOAK_MINUTES says; a drop every minute then.

namespace kvxtest
{
namespace
{

using Clock = std::chrono::steady_clock;

constexpr std::size_t kSessions = 4;
constexpr std::chrono::milliseconds kPause(5);

/// How long, how many drops, and what is between them.
struct Plan
{
    int drops = 3;
    std::chrono::milliseconds interval{1000};
};

Plan plan()
{
    const char* const minutes = std::getenv("KVX_SOAK_MINUTES"); // NOLINT(concurrency-mt-unsafe)
    if (minutes == nullptr)
        return {};
    return {std::max(2, std::atoi(minutes)), std::chrono::minutes(1)}; // NOLINT(cert-err34-c)
}

/// What the process holds.
struct Holding
{
    std::size_t bytes = mallinfo2().uordblks;
    std::size_t descriptors = openDescriptors();
};

/// A program with one channel. Those that forgive keep their session, the others open a new one after a failure.
class Worker
{
public:
    Worker(std::string resource, std::size_t number)
        : resource_(std::move(resource)), channel_("OutputChannel" + std::to_string(number + 1)),
          forgives_(number % 2 == 0)
    {
    }

    void work(const std::atomic<bool>& isOver)
    {
        while (!isOver) {
            if (vi_ == VI_NULL)
                open();
            else if (!takeTurn() && !forgives_)
                close();
            std::this_thread::sleep_for(kPause);
        }
        close();
    }

    std::size_t turns = 0;
    std::size_t failures = 0;
    std::size_t wrongResults = 0;

private:
    void open()
    {
        const char* const options =
            forgives_ ? "DriverSetup=Profile:Bench,IoTimeout:500" : "QueryInstrStatus=1,DriverSetup=IoTimeout:500";
        if (KVX2800T_InitWithOptions(resource_.data(), VI_TRUE, VI_FALSE, options, &vi_) < 0)
            ++failures;
    }

    void close()
    {
        if (vi_ != VI_NULL)
            KVX2800T_close(vi_);
        vi_ = VI_NULL;
    }

    /// Sets something new and asks for it, and uses what else there is.
    bool takeTurn()
    {
        ++turns;
        const double volts = static_cast<double>(turns % 600) / 100.0;
        ViReal64 level = -1.0;
        ViReal64 measured = 0.0;
        ViBoolean state = VI_FALSE;
        ViInt32 code = 0;
        std::array<ViChar, 256> text{};
        const char* const channel = channel_.c_str();
        const bool isSet = succeeds(KVX2800T_ConfigureVoltageLevel(vi_, channel, volts));
        const bool isAsked =
            isSet && succeeds(KVX2800T_GetAttributeViReal64(vi_, channel, KVX2800T_ATTR_VOLTAGE_LEVEL, &level));
        if (isAsked && level != volts)
            ++wrongResults;
        return isAsked && succeeds(KVX2800T_ConfigureOutputEnabled(vi_, channel, VI_TRUE)) &&
               succeeds(KVX2800T_Measure(vi_, channel, KVX2800T_VAL_MEASURE_VOLTAGE, &measured)) &&
               succeeds(KVX2800T_QueryOutputState(vi_, channel, KVX2800T_VAL_OUTPUT_CONSTANT_VOLTAGE, &state)) &&
               succeeds(KVX2800T_GetAttributeViBoolean(vi_, channel, KVX2800T_ATTR_OUTPUT_ENABLED, &state)) &&
               succeeds(KVX2800T_error_query(vi_, &code, text.data())) &&
               succeeds(KVX2800T_GetAttributeViString(vi_, "", KVX2800T_ATTR_INSTRUMENT_MODEL, 256, text.data()));
    }

    bool succeeds(ViStatus status)
    {
        if (status >= 0)
            return true;
        ++failures;
        std::array<ViChar, 256> text{};
        KVX2800T_GetError(vi_, &status, 256, text.data());
        return false;
    }

    std::string resource_;
    std::string channel_;
    bool forgives_;
    ViSession vi_ = VI_NULL;
};

class Soak : public testing::Test
{
public:
    Soak()
    {
        openAndClose();
        before_ = openDescriptors();
        for (std::size_t i = 0; i < kSessions; ++i)
            workers_.emplace_back(instrument_.resource(), i);
        for (Worker& worker : workers_)
            threads_.emplace_back([&] { worker.work(isOver_); });
    }

    void end()
    {
        isOver_ = true;
        for (std::thread& thread : threads_)
            thread.join();
    }

    std::size_t sum(std::size_t Worker::*number) const
    {
        std::size_t all = 0;
        for (const Worker& worker : workers_)
            all += worker.*number;
        return all;
    }

    VirtualInstrumentProcess instrument_;
    std::size_t before_ = 0;

private:
    /// What the libraries keep for the rest of the process they take now.
    void openAndClose()
    {
        std::string resource = instrument_.resource();
        ViSession vi = VI_NULL;
        EXPECT_EQ(KVX2800T_init(resource.data(), VI_TRUE, VI_FALSE, &vi), VI_SUCCESS);
        EXPECT_EQ(KVX2800T_close(vi), VI_SUCCESS);
    }

    std::vector<Worker> workers_;
    std::vector<std::thread> threads_;
    std::atomic<bool> isOver_ = false;
};

/// Beyond what the allocator and the threads may keep for later.
constexpr std::size_t kGrowth = 65536;

TEST_F(Soak, OfSessionsOnALinkThatIsDroppedHoldsNoMoreAtItsEnd)
{
    Tally tally("soak: the link is dropped");
    const Plan planned = plan();
    // As long as it takes, which is longer than a test may.
    ::alarm(0);
    Holding early;
    for (int drop = 0; drop < planned.drops; ++drop) {
        std::this_thread::sleep_for(planned.interval);
        EXPECT_EQ(instrument_.control("disconnect"), "ok");
        instrument_.clearLog();
        ++tally.injections;
        const Holding now;
        if (drop == 0)
            early = now;
        std::cout << "drop " << drop + 1 << ": " << now.bytes << " bytes, " << now.descriptors << " descriptors\n"
                  << std::flush;
    }
    std::this_thread::sleep_for(planned.interval);
    const Holding late;
    end();
    tally.leaks += late.bytes > early.bytes + kGrowth ? 1 : 0;
    tally.leaks += openDescriptors() == before_ ? 0 : 1;
    tally.expect(sum(&Worker::turns) > 10 * kSessions, "nobody works");
    tally.expect(sum(&Worker::failures) > 0, "nobody notices the drops");
    tally.wrongResults += sum(&Worker::wrongResults);
    std::cout << sum(&Worker::turns) << " turns, " << sum(&Worker::failures) << " failures, " << early.bytes
              << " bytes and " << early.descriptors << " descriptors early, " << late.bytes << " and "
              << late.descriptors << " late\n";
}

} // namespace
} // namespace kvxtest
