#include "tests/support/failing_calls.h"
#include "tests/support/open_descriptors.h"
#include "tests/support/platform/store_fixture.h"
#include "tests/torture/tally.h"

#include <cerrno>
#include <chrono>
#include <string>

// Every call that the configuration server makes to the host while a store is read fails once.

namespace kvxtest
{
namespace
{

class ConfigServerCalls : public StoreTest
{
public:
    /// Loads the store anew while a call fails, and looks up what a driver does.
    void attack(Tally& tally, unsigned long call, int error)
    {
        const std::size_t before = openDescriptors();
        IviConfigStoreHandle store = nullptr;
        IviDriverSessionHandle session = nullptr;
        const auto begin = std::chrono::steady_clock::now();
        kvxArmFailingCall(call, error);
        ViStatus status = IviConfig_Initialize(&store);
        if (status >= 0)
            status = IviConfig_Deserialize(store, path_.c_str());
        if (status >= 0)
            status = IviConfig_GetDriverSession(store, "KVX2800T", &session);
        kvxDisarmFailingCall();
        tally.hangs += std::chrono::steady_clock::now() - begin > std::chrono::seconds(3) ? 1 : 0;
        const std::string when = "call " + std::to_string(call) + ", error " + std::to_string(error);
        if (status >= 0)
            tally.expect(sessionText(session, IVICONFIG_VAL_CONFIG_COMPONENT_NAME) == "KVX2800T",
                         "no entry at " + when);
        else
            tally.expect(!errorText().empty(), "no text at " + when);
        wasInjected_ = kvxFailedCall() != nullptr;
        if (session != nullptr)
            IviConfig_DisposeHandle(session);
        if (store != nullptr)
            IviConfig_Close(store);
        tally.leaks += openDescriptors() == before ? 0 : 1;
    }

    bool wasInjected_ = false;
    const std::string path_ = writeFile("store.xml", kBenchStore);
};

TEST_F(ConfigServerCalls, ThatFailLeaveAStatusAndNothingOpen)
{
    Tally tally("configuration server: the n-th call of the system fails");
    // What the libraries keep is there after the first load.
    attack(tally, 0, 0);
    for (const int error :
         {EINTR, EAGAIN, ECONNRESET, ENOSPC, EIO, ENOENT, EMFILE, ENOMEM, static_cast<int>(kShortTransfer)})
        for (unsigned long call = 1;; ++call) {
            attack(tally, call, error);
            if (!wasInjected_)
                break;
            ++tally.injections;
        }
    attack(tally, 0, 0);
}

} // namespace
} // namespace kvxtest
