#include "tests/support/driver/configuration_store_fixture.h"

#include <map>

// In which order the configuration server is asked, and what is given back to it.

namespace
{

using namespace kvxtest;
using testing::ElementsAreArray;
using testing::IsEmpty;

using Calls = std::vector<std::string>;

Calls operator+(Calls left, const Calls& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

const Calls kOpening = {
    "IviConfig_Initialize()",
    "IviConfig_GetConfigStorePropertyViString(store, 5, 260)",
    "IviConfig_Deserialize(store, \"/store/process.xml\")",
    "IviConfig_GetDriverSession(store, \"KVX2800T\")",
};

const Calls kClosing = {"IviConfig_Close(store)"};

const Calls kModuleLookup = {
    "IviConfig_ClearError()",
    "IviConfig_GetConfigStoreSoftwareModuleCollection(store)",
    "IviConfig_GetSoftwareModuleItemByName(softwareModules, \"KVX2800T\")",
    "IviConfig_ClearError()",
};

Calls noVirtualNames(const std::string& entry)
{
    return {"IviConfig_GetSessionVirtualNameCollection(" + entry + ")", "IviConfig_GetVirtualNameCount(virtualNames)"};
}

Calls flagsAndSetup(const std::string& entry)
{
    Calls made;
    for (const char* property : {"4", "5", "6", "7", "8", "9"})
        made.push_back("IviConfig_GetDriverSessionPropertyViBoolean(" + entry + ", " + property + ")");
    made.push_back("IviConfig_GetDriverSessionPropertyViString(" + entry + ", 10, 1024)");
    return made;
}

Calls noAsset(const std::string& entry)
{
    return {"IviConfig_GetSessionHardwareAssetReference(" + entry + ")"};
}

Calls noSettings(const std::string& owner)
{
    return {"IviConfig_GetConfigComponentDataComponentCollection(" + owner + ")",
            "IviConfig_GetDataComponentItemByName(dataComponents, \"Configurable Initial Settings\")",
            "IviConfig_ClearError()"};
}

Calls module(const std::string& entry)
{
    return {"IviConfig_GetSessionSoftwareModuleReference(" + entry + ")"};
}

/// What is read of an entry that has nothing but flags and a setup text.
Calls poorEntry(const std::string& entry)
{
    return noVirtualNames(entry) + noAsset(entry) + flagsAndSetup(entry) + noSettings(entry) + module(entry);
}

const Calls kRichVirtualNames = {
    "IviConfig_GetSessionVirtualNameCollection(driverSession)",
    "IviConfig_GetVirtualNameCount(virtualNames)",
    "IviConfig_GetVirtualNameItemByIndex(virtualNames, 1)",
    "IviConfig_GetVirtualNamePropertyViString(virtualName[Core], 1, 1024)",
    "IviConfig_GetVirtualNamePropertyViString(virtualName[Core], 2, 1024)",
    "IviConfig_GetVirtualNameVirtualRangeCollection(virtualName[Core])",
    "IviConfig_GetVirtualRangeCount(virtualRanges)",
    "IviConfig_GetVirtualNameItemByIndex(virtualNames, 2)",
    "IviConfig_GetVirtualNamePropertyViString(virtualName[Rail], 1, 1024)",
    "IviConfig_GetVirtualNamePropertyViString(virtualName[Rail], 2, 1024)",
    "IviConfig_GetVirtualNameVirtualRangeCollection(virtualName[Rail])",
    "IviConfig_GetVirtualRangeCount(virtualRanges)",
    "IviConfig_GetVirtualRangeItemByIndex(virtualRanges, 1)",
    "IviConfig_GetVirtualRangePropertyViInt32(virtualRange, 2)",
    "IviConfig_GetVirtualRangePropertyViInt32(virtualRange, 3)",
    "IviConfig_GetVirtualRangePropertyViInt32(virtualRange, 4)",
};

const Calls kRichAsset = {
    "IviConfig_GetSessionHardwareAssetReference(driverSession)",
    "IviConfig_GetHardwareAssetPropertyViString(hardwareAsset, 3, 1024)",
};

const Calls kRichSettings = {
    "IviConfig_GetConfigComponentDataComponentCollection(driverSession)",
    "IviConfig_GetDataComponentItemByName(dataComponents, \"Configurable Initial Settings\")",
    "IviConfig_GetStructureDataComponentCollection(dataComponent[Configurable Initial Settings])",
    "IviConfig_GetDataComponentCount(dataComponents)",
    "IviConfig_GetDataComponentItemByIndex(dataComponents, 1)",
    "IviConfig_GetDataComponentPropertyViString(dataComponent[Trace], 1, 1024)",
    "IviConfig_GetDataComponentPropertyViString(dataComponent[Trace], 7, 1024)",
    "IviConfig_GetDataComponentPropertyViBoolean(dataComponent[Trace], 9)",
    "IviConfig_GetDataComponentItemByIndex(dataComponents, 2)",
    "IviConfig_GetDataComponentPropertyViString(dataComponent[Retries], 1, 1024)",
    "IviConfig_GetDataComponentPropertyViString(dataComponent[Retries], 7, 1024)",
    "IviConfig_GetDataComponentPropertyViInt32(dataComponent[Retries], 9)",
    "IviConfig_GetDataComponentItemByIndex(dataComponents, 3)",
    "IviConfig_GetDataComponentPropertyViString(dataComponent[Settling Time], 1, 1024)",
    "IviConfig_GetDataComponentPropertyViString(dataComponent[Settling Time], 7, 1024)",
    "IviConfig_GetDataComponentPropertyViReal64(dataComponent[Settling Time], 9)",
    "IviConfig_GetDataComponentItemByIndex(dataComponents, 4)",
    "IviConfig_GetDataComponentPropertyViString(dataComponent[Station], 1, 1024)",
    "IviConfig_GetDataComponentPropertyViString(dataComponent[Station], 7, 1024)",
    "IviConfig_GetDataComponentPropertyViString(dataComponent[Station], 9, 1024)",
};

const Calls kRichPhysicalNames = {
    "IviConfig_GetSoftwareModulePhysicalNameCollection(softwareModule[KVX2800T])",
    "IviConfig_GetPhysicalNameCount(physicalNames)",
    "IviConfig_GetPhysicalNameItemByIndex(physicalNames, 1)",
    "IviConfig_GetPhysicalNamePropertyViString(physicalName[OutputChannel1], 1, 1024)",
    "IviConfig_GetPhysicalNamePropertyViString(physicalName[OutputChannel1], 2, 1024)",
    "IviConfig_GetPhysicalNameItemByIndex(physicalNames, 2)",
    "IviConfig_GetPhysicalNamePropertyViString(physicalName[OutputChannel2], 1, 1024)",
    "IviConfig_GetPhysicalNamePropertyViString(physicalName[OutputChannel2], 2, 1024)",
};

class ConfigurationStoreCalls : public ConfigurationStoreTest
{
public:
    void expectCalls(const std::string& resourceName, const Calls& expected)
    {
        EXPECT_EQ(session.ResolveConfiguration(resourceName, ""), VI_SUCCESS);
        EXPECT_THAT(callsButDisposals(), ElementsAreArray(expected));
        EXPECT_EQ(openConfigHandles(), 0U);
        EXPECT_EQ(timesRecorded(), 0U);
        EXPECT_EQ(errorOf(VI_NULL), ErrorEntry());
    }
};

TEST_F(ConfigurationStoreCalls, WithoutEntryAndModuleBothAreLookedUpOnce)
{
    expectCalls("TCPIP0::host::1::SOCKET", kOpening + kModuleLookup + kClosing);
}

TEST_F(ConfigurationStoreCalls, WithAModuleOnlyItsSettingsAndPhysicalNamesAreRead)
{
    storeSoftwareModule();
    expectCalls("TCPIP0::host::1::SOCKET",
                kOpening + kModuleLookup + noSettings("softwareModule[KVX2800T]") +
                    Calls{"IviConfig_GetSoftwareModulePhysicalNameCollection(softwareModule[KVX2800T])",
                          "IviConfig_GetPhysicalNameCount(physicalNames)"} +
                    kClosing);
}

TEST_F(ConfigurationStoreCalls, WithAnEntryOnlyItsSettingsAreReadAgain)
{
    storeDriverSession();
    expectCalls("TCPIP0::host::1::SOCKET",
                kOpening + poorEntry("driverSession") + noSettings("driverSession") + kClosing);
}

TEST_F(ConfigurationStoreCalls, ARichEntryIsReadFromVirtualNamesToPhysicalNames)
{
    storeRichEntry();
    expectCalls("TCPIP0::host::1::SOCKET", kOpening + kRichVirtualNames + kRichAsset + flagsAndSetup("driverSession") +
                                               kRichSettings + module("driverSession") + kRichSettings +
                                               kRichPhysicalNames + kClosing);
}

TEST_F(ConfigurationStoreCalls, ASecondEntryIsReadBehindTheDriversOwn)
{
    storeDriverSession();
    storeFurtherSession("BenchSupply");
    expectCalls("BenchSupply",
                kOpening + poorEntry("driverSession") + Calls{"IviConfig_GetDriverSession(store, \"BenchSupply\")"} +
                    poorEntry("driverSession[BenchSupply]") + noSettings("driverSession[BenchSupply]") + kClosing);
}

TEST_F(ConfigurationStoreCalls, ASecondEntryIsReadWithoutTheDriversOwn)
{
    storeFurtherSession("BenchSupply");
    expectCalls("BenchSupply", kOpening + kModuleLookup + Calls{"IviConfig_GetDriverSession(store, \"BenchSupply\")"} +
                                   poorEntry("driverSession[BenchSupply]") + noSettings("driverSession[BenchSupply]") +
                                   kClosing);
}

TEST_F(ConfigurationStoreCalls, AnUnknownResourceNameIsForgotten)
{
    storeDriverSession();
    expectCalls("ALIAS", kOpening + poorEntry("driverSession") +
                             Calls{"IviConfig_GetDriverSession(store, \"ALIAS\")", "IviConfig_ClearError()"} +
                             noSettings("driverSession") + kClosing);
}

TEST_F(ConfigurationStoreCalls, WithoutAnyEntryAnUnknownResourceNameIsForgotten)
{
    expectCalls("ALIAS", kOpening + kModuleLookup +
                             Calls{"IviConfig_GetDriverSession(store, \"ALIAS\")", "IviConfig_ClearError()"} +
                             kClosing);
}

TEST_F(ConfigurationStoreCalls, NoSecondEntryIsLookedUpForADescriptorTheEmptyNameOrThePrefix)
{
    for (const char* name : {"", "KVX2800T", "ASRL1::INSTR", "::", "a::b"}) {
        startOver();
        expectCalls(name, kOpening + kModuleLookup + kClosing);
    }
}

TEST_F(ConfigurationStoreCalls, ANameThatOnlyResemblesADescriptorOrThePrefixIsLookedUp)
{
    for (const std::string name : {"kvx2800t", "KVX2800T ", "a:b", " ", "GPIB0"}) {
        startOver();
        expectCalls(name, kOpening + kModuleLookup +
                              Calls{"IviConfig_GetDriverSession(store, \"" + name + "\")", "IviConfig_ClearError()"} +
                              kClosing);
    }
}

TEST_F(ConfigurationStoreCalls, AnItemIsGivenBackBeforeTheNextIsFetched)
{
    storeRichEntry();
    ASSERT_EQ(resolve(), VI_SUCCESS);
    expectCallsInOrder({
        "IviConfig_GetVirtualNameItemByIndex(virtualNames, 1)",
        "IviConfig_DisposeHandle(virtualRanges)",
        "IviConfig_DisposeHandle(virtualName[Core])",
        "IviConfig_GetVirtualNameItemByIndex(virtualNames, 2)",
        "IviConfig_GetVirtualRangeItemByIndex(virtualRanges, 1)",
        "IviConfig_DisposeHandle(virtualRange)",
        "IviConfig_DisposeHandle(virtualRanges)",
        "IviConfig_DisposeHandle(virtualName[Rail])",
        "IviConfig_DisposeHandle(virtualNames)",
        "IviConfig_DisposeHandle(hardwareAsset)",
        "IviConfig_GetDataComponentItemByIndex(dataComponents, 1)",
        "IviConfig_DisposeHandle(dataComponent[Trace])",
        "IviConfig_GetDataComponentItemByIndex(dataComponents, 2)",
        "IviConfig_GetPhysicalNameItemByIndex(physicalNames, 1)",
        "IviConfig_DisposeHandle(physicalName[OutputChannel1])",
        "IviConfig_GetPhysicalNameItemByIndex(physicalNames, 2)",
        "IviConfig_Close(store)",
    });
}

TEST_F(ConfigurationStoreCalls, EveryHandleIsGivenBackOnceAndTheStoreLast)
{
    storeRichEntry();
    storeRichFurtherSession();
    ASSERT_EQ(session.ResolveConfiguration("BenchSupply", ""), VI_SUCCESS);
    std::map<std::string, int> disposals;
    for (const std::string& call : calls("IviConfig_DisposeHandle"))
        ++disposals[call];
    const std::map<std::string, int> expected = {
        {"IviConfig_DisposeHandle(driverSession)", 1},
        {"IviConfig_DisposeHandle(driverSession[BenchSupply])", 1},
        {"IviConfig_DisposeHandle(hardwareAsset)", 1},
        {"IviConfig_DisposeHandle(hardwareAsset[BenchSupply])", 1},
        {"IviConfig_DisposeHandle(softwareModule[KVX2800T])", 1},
        {"IviConfig_DisposeHandle(softwareModule[Bench module])", 1},
        {"IviConfig_DisposeHandle(virtualNames)", 2},
        {"IviConfig_DisposeHandle(virtualName[Core])", 2},
        {"IviConfig_DisposeHandle(virtualName[Rail])", 1},
        {"IviConfig_DisposeHandle(virtualRanges)", 3},
        {"IviConfig_DisposeHandle(virtualRange)", 1},
        // Each of the three readings takes the component's collection and the structure's.
        {"IviConfig_DisposeHandle(dataComponents)", 6},
        {"IviConfig_DisposeHandle(dataComponent[Configurable Initial Settings])", 3},
        {"IviConfig_DisposeHandle(dataComponent[Trace])", 1},
        {"IviConfig_DisposeHandle(dataComponent[Retries])", 1},
        {"IviConfig_DisposeHandle(dataComponent[Settling Time])", 1},
        {"IviConfig_DisposeHandle(dataComponent[Station])", 3},
        {"IviConfig_DisposeHandle(physicalNames)", 1},
        {"IviConfig_DisposeHandle(physicalName[OutputChannel3])", 1},
    };
    EXPECT_EQ(disposals, expected);
    EXPECT_THAT(calls("IviConfig_Close"), ElementsAreArray({"IviConfig_Close(store)"}));
    EXPECT_EQ(calls().back(), "IviConfig_Close(store)");
}

TEST_F(ConfigurationStoreCalls, NothingIsKnownOfTheStoreBehindAResolution)
{
    storeRichEntry();
    ASSERT_EQ(resolve(), VI_SUCCESS);
    clearLog();
    std::string text;
    session.mappedText("Core", text);
    EXPECT_EQ(text, "OutputChannel1");
    EXPECT_THAT(calls(), IsEmpty());
}

/// A session that writes down which of its operations a resolution calls.
class WrittenDownSession : public TestSession
{
public:
    using TestSession::TestSession;

    ViStatus ReadDriverSession(IviDriverSessionHandle configured) override
    {
        operations.emplace_back("ReadDriverSession");
        return TestSession::ReadDriverSession(configured);
    }
    ViStatus ReadVirtualNames(IviDriverSessionHandle configured) override
    {
        operations.emplace_back("ReadVirtualNames");
        return TestSession::ReadVirtualNames(configured);
    }
    ViStatus ReadConfigurableInitialSettings(IviConfigComponentHandle component) override
    {
        operations.emplace_back("ReadConfigurableInitialSettings");
        return TestSession::ReadConfigurableInitialSettings(component);
    }
    ViStatus ApplyConfiguredModel() override
    {
        operations.emplace_back("ApplyConfiguredModel");
        return TestSession::ApplyConfiguredModel();
    }
    ViStatus ParseOptionString(const std::string& optionString) override
    {
        operations.push_back("ParseOptionString(" + optionString + ")");
        return TestSession::ParseOptionString(optionString);
    }
    ViStatus ParseDriverSetup(const std::string& driverSetup) override
    {
        operations.push_back("ParseDriverSetup(" + driverSetup + ")");
        return TestSession::ParseDriverSetup(driverSetup);
    }
    ViStatus ReadPhysicalNames(IviSoftwareModuleHandle module) override
    {
        operations.emplace_back("ReadPhysicalNames");
        return TestSession::ReadPhysicalNames(module);
    }

    Calls operations;
};

TEST_F(ConfigurationStoreCalls, AResolutionIsMadeOfTheSessionsOperations)
{
    storeRichEntry().driverSetup = "Trace:1";
    WrittenDownSession written(vi);
    EXPECT_EQ(written.ResolveConfiguration("resource", "Cache=1"), VI_SUCCESS);
    const Calls expected = {"ReadDriverSession",
                            "ReadVirtualNames",
                            "ParseDriverSetup(Trace:1)",
                            "ReadConfigurableInitialSettings",
                            "ReadConfigurableInitialSettings",
                            "ApplyConfiguredModel",
                            "ParseOptionString(Cache=1)",
                            "ReadPhysicalNames"};
    EXPECT_EQ(written.operations, expected);
}

} // namespace
