#pragma once

#include "tests/support/driver/runtime_fixture.h"

#include <algorithm>
#include <string>
#include <vector>

namespace kvxtest
{

/// A driver session on the fake configuration store.
class ConfigurationStoreTest : public RuntimeTest
{
public:
    ViStatus resolve(const std::string& options = "") { return session.ResolveConfiguration("resource", options); }

    /// A fresh entry of the driver.
    static StoredDriverSession& storeDriverSession() { return configurationStore().driverSession.emplace(); }

    /// A further driver session.
    static StoredDriverSession& storeFurtherSession(std::string name)
    {
        StoredDriverSession& stored = configurationStore().furtherSessions.emplace_back();
        stored.name = std::move(name);
        return stored;
    }

    /// A fresh software module; tests store no more than one under a name.
    static StoredSoftwareModule& storeSoftwareModule(std::string name = "KVX2800T")
    {
        StoredSoftwareModule& stored = configurationStore().softwareModules.emplace_back();
        stored.name = std::move(name);
        return stored;
    }

    /// The entry of the driver with something of everything.
    static StoredDriverSession& storeRichEntry()
    {
        storeSoftwareModule().physicalNames = {{"OutputChannel1"}, {"OutputChannel2"}};
        StoredDriverSession& entry = storeDriverSession();
        entry.ioResourceDescriptor = "ASRL1::INSTR";
        entry.virtualNames = {{"Core", "OutputChannel1", {}}, {"Rail", "OutputChannel", {{1, 3, 2}}}};
        entry.settings() = {booleanComponent("Trace", VI_TRUE), integerComponent("Retries", 3),
                            realComponent("Settling Time", 0.25), stringComponent("Station", "line 4")};
        entry.softwareModule = "KVX2800T";
        return entry;
    }

    /// A further driver session with something of everything.
    static StoredDriverSession& storeRichFurtherSession()
    {
        storeSoftwareModule("Bench module").physicalNames = {{"OutputChannel3"}};
        StoredDriverSession& further = storeFurtherSession("BenchSupply");
        further.ioResourceDescriptor = "ASRL2::INSTR";
        further.virtualNames = {{"Core", "OutputChannel2", {}}};
        further.settings() = {stringComponent("Station", "bench")};
        further.softwareModule = "Bench module";
        return further;
    }

    TestSession session{vi};
};

/// The calls of the configuration server but those that give handles back.
inline std::vector<std::string> callsButDisposals()
{
    std::vector<std::string> made = calls("IviConfig_");
    std::erase_if(made, [](const std::string& call) { return call.starts_with("IviConfig_DisposeHandle"); });
    return made;
}

/// Whether the calls hold these, in this order, with others between them or not.
inline void expectCallsInOrder(const std::vector<std::string>& expected)
{
    const std::vector<std::string> made = calls();
    auto from = made.begin();
    for (const std::string& call : expected) {
        from = std::find(from, made.end(), call);
        ASSERT_NE(from, made.end()) << call << " in " << testing::PrintToString(made);
        ++from;
    }
}

} // namespace kvxtest
