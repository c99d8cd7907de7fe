#include "tests/support/allocation_failure.h"
#include "tests/support/driver/recorded_error.h"
#include "tests/support/environment.h"
#include "tests/support/open_descriptors.h"
#include "tests/support/processes/serial_device.h"
#include "tests/support/processes/virtual_instrument_process.h"
#include "tests/support/temporary_folder.h"
#include "tests/torture/session_life.h"
#include "tests/torture/tally.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <fstream>
#include <mutex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

// Whole lives of sessions with the platform's libraries and an instrument, in which there is no memory: for the n-th
// allocation, or for all from the n-th on.

namespace kvxtest
{
namespace
{

constexpr ViStatus kInvalidSessionHandle = status(0xBFFA1190);
constexpr ViStatus kOutOfMemory = status(0xBFFA0056);
/// The most allocations of IviSession_New.
constexpr std::size_t kService = 3;

/// A store in which "BenchSupply" leads to the instrument.
std::string benchStore(const std::string& resource)
{
    return R"(<?xml version="1.0" encoding="UTF-8"?>
<IviConfigStore>
  <SoftwareModules><IviSoftwareModule id="p1"><Name>KVX2800T</Name></IviSoftwareModule></SoftwareModules>
  <HardwareAssets><IviHardwareAsset id="p2"><Name>Supply</Name><IOResourceDescriptor>)" +
           resource + R"(</IOResourceDescriptor></IviHardwareAsset></HardwareAssets>
  <DriverSessions><IviDriverSession id="p3"><Name>Bench 1</Name>
    <IviHardwareAsset idref="p2"/><IviSoftwareModuleRef idref="p1"/>
    <VirtualNames><IviVirtualName id="p6"><Name>Core</Name><MapTo>OutputChannel1</MapTo></IviVirtualName></VirtualNames>
    <Cache>1</Cache><RangeCheck>1</RangeCheck><DriverSetup>IoTimeout:300</DriverSetup></IviDriverSession></DriverSessions>
  <LogicalNames><IviLogicalName id="p10"><Name>BenchSupply</Name><IviDriverSession idref="p3"/></IviLogicalName></LogicalNames>
</IviConfigStore>
)";
}

/// Functions of the instrument with what takes memory: lists, messages of any length, texts.
struct FurtherCall
{
    const char* name;
    ViStatus (*call)(ViSession vi);
};

constexpr std::array<ViReal64, 3> kValues = {1.0, 0.5, 0.25};

const FurtherCall kFurtherCalls[] = {
    {"LoadList",
     [](ViSession vi) {
         return KVX2800T_LoadList(vi, "OutputChannel3", 3, kValues.data(), kValues.data(), kValues.data());
     }},
    {"MeasureAll",
     [](ViSession vi) {
         std::array<ViReal64, 2> volts{};
         std::array<ViReal64, 2> amperes{};
         std::array<ViReal64, 2> watts{};
         ViInt32 count = 0;
         return KVX2800T_MeasureAll(vi, "OutputChannel3,CH4", 2, volts.data(), amperes.data(), watts.data(), &count);
     }},
    {"viWrite and viRead",
     [](ViSession vi) {
         std::array<ViByte, 6> message = {'*', 'I', 'D', 'N', '?', '\n'};
         std::array<ViByte, 256> reply{};
         ViInt64 count = 0;
         const ViStatus status = KVX2800T_viWrite(vi, message.data(), message.size(), &count);
         return status < 0 ? status : KVX2800T_viRead(vi, reply.size(), reply.data(), &count);
     }},
};

/// A scenario on the instrument of the test.
struct Place
{
    std::string name;
    std::string resource;
    std::string options;
    ViBoolean reset = VI_FALSE;
    bool isReplaced = false;
};

/// Takes a session's lock in a thread of its own, for which there is memory.
class LockProbe
{
public:
    LockProbe() : thread_([this] { probe(); }) {}
    LockProbe(const LockProbe&) = delete;
    LockProbe& operator=(const LockProbe&) = delete;
    ~LockProbe()
    {
        ask(kEnd);
        thread_.join();
    }

    /// Whether another thread gets the lock within a second. Takes no memory.
    bool isFree(ViSession vi)
    {
        ask(vi);
        std::unique_lock guard(mutex_);
        return answered_.wait_for(guard, std::chrono::seconds(1), [this] { return wanted_ == VI_NULL; });
    }

private:
    static constexpr ViSession kEnd = 0xFFFFFFFF;

    void ask(ViSession vi)
    {
        const std::lock_guard guard(mutex_);
        wanted_ = vi;
        asked_.notify_one();
    }

    void probe()
    {
        std::unique_lock guard(mutex_);
        for (;;) {
            asked_.wait(guard, [this] { return wanted_ != VI_NULL; });
            const ViSession vi = wanted_;
            if (vi == kEnd)
                return;
            guard.unlock();
            if (KVX2800T_LockSession(vi, nullptr) >= 0)
                KVX2800T_UnlockSession(vi, nullptr);
            guard.lock();
            wanted_ = VI_NULL;
            answered_.notify_one();
        }
    }

    std::mutex mutex_;
    std::condition_variable asked_;
    std::condition_variable answered_;
    ViSession wanted_ = VI_NULL;
    std::thread thread_;
};

/// What lack of memory may be: the driver's and the session service's own, VISA's as the driver's failed transfer or as
/// it is (direct I/O), and the configuration server's.
bool isLackOfMemory(ViStatus failed)
{
    constexpr std::array kStatuses = {kOutOfMemory, status(0xBFFA4214), status(0xBFFF003C)};
    return std::find(kStatuses.begin(), kStatuses.end(), failed) != kStatuses.end();
}

class Allocations : public testing::TestWithParam<bool>
{
public:
    Allocations()
    {
        std::ofstream(folder_ / "store.xml") << benchStore(instrument_.resource());
        for (const FurtherCall& call : kFurtherCalls) {
            Step& step = steps_.emplace_back();
            step.name = call.name;
            step.call = [run = call.call](ViSession vi, ViStatus& status) {
                status = run(vi);
                return true;
            };
        }
        // What the libraries keep for the rest of the process they take now.
        for (const Place& place : places())
            live(place, 0);
        isWarm_ = true;
    }

    std::vector<Place> places() const
    {
        const std::string socket = instrument_.resource();
        return {
            {"socket", socket, "QueryInstrStatus=1,DriverSetup=IoTimeout:300"},
            {"serial", line_.resource(), "DriverSetup=IoTimeout:300"},
            {"store entry", "BenchSupply", ""},
            {"simulated", socket, "Simulate=1"},
            {"replaced", socket, "DriverSetup=IoTimeout:300", VI_FALSE, true},
            {"reset", socket, "DriverSetup=IoTimeout:300", VI_TRUE},
            {"socket, Bench", socket, "QueryInstrStatus=1,DriverSetup=Profile:Bench,IoTimeout:300"},
            {"simulation that remembers", socket, "Simulate=1,DriverSetup=StatefulSimulation:1"},
            {"socket, logged", socket, "DriverSetup=MessageLog:20,IoTimeout:300"},
        };
    }

    /// Lives a life with every allocation that the failure lets through.
    /// @return how many allocations there were
    std::size_t live(const Place& place, std::size_t n)
    {
        const std::size_t before = openDescriptors();
        std::size_t count = 0;
        resource_ = place.resource;
        call_ = 0;
        isUndisturbed_ = n == 0;
        if (isUndisturbed_) {
            usual_.clear();
            usual_.reserve(2 * steps_.size());
        }
        {
            KVX2800T_ClearError(VI_NULL);
            const NthAllocationFailure failure(n, GetParam());
            begin(place);
            for (std::size_t i = 0; vi_ != VI_NULL && i < steps_.size(); ++i) {
                if (place.isReplaced && i == steps_.size() / 2)
                    take("replacement", true, [](ViSession vi) {
                        return KVX2800T_SetAttributeViBoolean(vi, "", KVX2800T_ATTR_SIMULATE, VI_TRUE);
                    });
                take(steps_[i].name, steps_[i].mayThrow, [&](ViSession vi) {
                    ViStatus status = VI_SUCCESS;
                    steps_[i].call(vi, status);
                    return status;
                });
            }
            end();
            count = NthAllocationFailure::count();
        }
        if (openDescriptors() != before && isWarm_)
            leak("descriptors");
        return count;
    }

    Tally tally{GetParam() ? "memory: all allocations from the n-th on fail" : "memory: the n-th allocation fails"};

private:
    void leak(const std::string& what)
    {
        ++tally.leaks;
        ADD_FAILURE() << what;
    }

    /// Calls with the exceptions that functions of the instrument class let out.
    template <class Call>
    void take(std::string_view name, bool mayThrow, Call call)
    {
        const auto begin = std::chrono::steady_clock::now();
        try {
            const ViStatus status = call(vi_);
            checkRecord(name, status);
        } catch (const std::logic_error& error) {
            if (!mayThrow)
                crash(name, error.what());
            KVX2800T_UnlockSession(vi_, nullptr);
        } catch (const std::exception& error) {
            crash(name, error.what());
        }
        // Two exchanges may be out of time in one call, and a session may be brought into step again.
        if (std::chrono::steady_clock::now() - begin > std::chrono::seconds(5)) {
            ++tally.hangs;
            ADD_FAILURE() << name << " hangs";
        }
    }

    void crash(std::string_view name, const char* what)
    {
        ++tally.crashes;
        ADD_FAILURE() << name << " throws " << what;
    }

    /// Nothing here takes memory, unless something is wrong.
    void checkRecord(std::string_view name, ViStatus failed)
    {
        const bool isUsual = noteUsual(failed);
        if (failed >= 0 || failed == kInvalidSessionHandle)
            return;
        ViStatus code = VI_SUCCESS;
        char text[256] = "";
        KVX2800T_GetError(vi_, &code, sizeof text, text);
        // The session service has no handle to record on.
        const bool isService = vi_ == VI_NULL && NthAllocationFailure::count() <= kService;
        // A record for whose text there is no memory is refused with that status, and kept without.
        const bool isKept = code == failed || (code < 0 && failed == kOutOfMemory);
        if (!isKept && !isService)
            wrong(name, failed, "is not recorded");
        if (!isUsual && !isLackOfMemory(failed))
            wrong(name, failed, "is no lack of memory");
        if (vi_ != VI_NULL && !probe_.isFree(vi_)) {
            leak("the lock");
            while (!probe_.isFree(vi_))
                KVX2800T_UnlockSession(vi_, nullptr);
        }
    }

    /// Whether a call has ended as in a life with memory, which is told first. Takes none.
    bool noteUsual(ViStatus status)
    {
        const std::size_t place = call_++;
        if (isUndisturbed_)
            usual_.push_back(status);
        return place < usual_.size() && usual_[place] == status;
    }

    void wrong(std::string_view name, ViStatus status, const char* what)
    {
        tally.expect(false, std::string(name) + ", " + std::to_string(status) + ": " + what);
    }

    void begin(const Place& place)
    {
        vi_ = VI_NULL;
        take("init", true, [&](ViSession /*none*/) {
            return KVX2800T_InitWithOptions(resource_.data(), VI_FALSE, place.reset, place.options.c_str(), &vi_);
        });
    }

    void end()
    {
        if (vi_ == VI_NULL)
            return;
        const ViSession handle = vi_;
        take("close", false, [](ViSession vi) { return KVX2800T_close(vi); });
        take("second close", false, [](ViSession vi) { return KVX2800T_close(vi); });
        ViInt16 result = 0;
        char text[256] = "";
        if (KVX2800T_self_test(handle, &result, text) != kInvalidSessionHandle)
            leak("a session that cannot be closed");
    }

    const TemporaryFolder folder_;
    const EnvironmentVariable master_{"IVI_MASTER_STORE", (folder_ / "store.xml").c_str()};
    const EnvironmentVariable noProcessDefault_{"IVICONFIGSERVERDEFAULT", nullptr};
    VirtualInstrumentProcess instrument_{{"--serial"}};
    const SerialDevice line_{instrument_.serialPath()};
    std::vector<Step> steps_ = classSteps();
    std::string resource_;
    ViSession vi_ = VI_NULL;
    LockProbe probe_;
    std::vector<ViStatus> usual_;
    std::size_t call_ = 0;
    bool isUndisturbed_ = false;
    bool isWarm_ = false;
};

TEST_P(Allocations, ThatFailLeaveARecordAndNothingElse)
{
    for (const Place& place : places()) {
        SCOPED_TRACE(place.name);
        const std::size_t count = live(place, 0);
        for (std::size_t n = 1; n <= count && !HasFailure(); ++n) {
            SCOPED_TRACE("allocation " + std::to_string(n) + " of " + std::to_string(count));
            live(place, n);
            ++tally.injections;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Attacks, Allocations, testing::Bool(),
                         [](const auto& andAfter) { return std::string(andAfter.param ? "AllFromTheNth" : "TheNth"); });

} // namespace
} // namespace kvxtest
