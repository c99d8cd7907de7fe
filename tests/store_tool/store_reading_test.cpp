#include "../platform/store_fixture.h"
#include "store_tool_process.h"

#include <array>

namespace
{

using namespace kvxtest;

/// What the configuration server reads of stores that the program has written.
class WrittenStore : public StoreTest
{
protected:
    void add(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), {"--store", path(), "add"});
        const Outcome outcome = runStoreTool(arguments);
        ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
    }

    std::string path() const { return folder_ / "store.xml"; }

    IviDriverSessionHandle find(const char* name) const
    {
        EXPECT_EQ(IviConfig_Deserialize(store_, path().c_str()), VI_SUCCESS);
        IviDriverSessionHandle session = nullptr;
        EXPECT_EQ(IviConfig_GetDriverSession(store_, name, &session), VI_SUCCESS);
        return session;
    }
};

TEST_F(WrittenStore, GivesASessionByItsLogicalName)
{
    add({"Rack <&> \xC3\xA4", "--create", "--resource", "TCPIP0::10.0.0.5::5025::SOCKET", "--logical", "BenchSupply",
         "--driver-setup", "Model:KVX2833T, Note:\"<a>&b\"", "--cache", "0", "--record-coercions", "1", "--description",
         "left 'rack'", "--virtual", "Core=OutputChannel1", "--set", "string:model=KVX2833T"});
    IviDriverSessionHandle session = find("BenchSupply");
    ASSERT_NE(session, nullptr);
    EXPECT_EQ(sessionText(session, IVICONFIG_VAL_CONFIG_COMPONENT_NAME), "Rack <&> \xC3\xA4");
    EXPECT_EQ(sessionText(session, IVICONFIG_VAL_CONFIG_COMPONENT_DESCRIPTION), "left 'rack'");
    EXPECT_EQ(sessionText(session, IVICONFIG_VAL_DRIVER_SESSION_DRIVER_SETUP), "Model:KVX2833T, Note:\"<a>&b\"");
    EXPECT_EQ(sessionText(session, IVICONFIG_VAL_SESSION_SOFTWARE_MODULE_NAME), "KVX2800T");
    IviHardwareAssetHandle asset = nullptr;
    ASSERT_EQ(IviConfig_GetSessionHardwareAssetReference(session, &asset), VI_SUCCESS);
    ASSERT_NE(asset, nullptr);
    EXPECT_EQ(assetText(asset, IVICONFIG_VAL_HARDWARE_ASSET_IO_DESCRIPTOR), "TCPIP0::10.0.0.5::5025::SOCKET");
    IviConfig_DisposeHandle(asset);
    IviConfig_DisposeHandle(session);
}

TEST_F(WrittenStore, GivesTheFlagsAsTheyWereChosen)
{
    constexpr std::array<std::pair<const char*, ViInt32>, 6> kFlags{{
        {"--cache", IVICONFIG_VAL_DRIVER_SESSION_CACHE},
        {"--interchange-check", IVICONFIG_VAL_DRIVER_SESSION_INTERCHANGE_CHECK},
        {"--query-instr-status", IVICONFIG_VAL_DRIVER_SESSION_QUERY_INSTR_STATUS},
        {"--range-check", IVICONFIG_VAL_DRIVER_SESSION_RANGE_CHECK},
        {"--record-coercions", IVICONFIG_VAL_DRIVER_SESSION_RECORD_COERCIONS},
        {"--simulate", IVICONFIG_VAL_DRIVER_SESSION_SIMULATE},
    }};
    for (const auto& [chosen, chosenProperty] : kFlags) {
        std::vector<std::string> arguments{"KVX2800T", "--create", "--replace", "--resource", "x"};
        for (const auto& [option, property] : kFlags)
            arguments.insert(arguments.end(), {option, option == chosen ? "1" : "0"});
        add(arguments);
        IviConfigStoreHandle store = nullptr;
        ASSERT_EQ(IviConfig_Initialize(&store), VI_SUCCESS);
        ASSERT_EQ(IviConfig_Deserialize(store, path().c_str()), VI_SUCCESS);
        IviDriverSessionHandle session = nullptr;
        ASSERT_EQ(IviConfig_GetDriverSession(store, "KVX2800T", &session), VI_SUCCESS);
        for (const auto& [option, property] : kFlags) {
            ViBoolean value = 2;
            EXPECT_EQ(IviConfig_GetDriverSessionPropertyViBoolean(session, property, &value), VI_SUCCESS);
            EXPECT_EQ(value, property == chosenProperty ? VI_TRUE : VI_FALSE) << chosen << ' ' << option;
        }
        IviConfig_DisposeHandle(session);
        IviConfig_Close(store);
    }
}

TEST_F(WrittenStore, HasTheDriversOwnFlagsWhenNoneAreChosen)
{
    add({"KVX2800T", "--create", "--resource", "x"});
    IviDriverSessionHandle session = find("KVX2800T");
    for (const ViInt32 property : {4, 5, 6, 7, 8, 9}) {
        const bool isOn =
            property == IVICONFIG_VAL_DRIVER_SESSION_CACHE || property == IVICONFIG_VAL_DRIVER_SESSION_RANGE_CHECK;
        ViBoolean value = 2;
        EXPECT_EQ(IviConfig_GetDriverSessionPropertyViBoolean(session, property, &value), VI_SUCCESS);
        EXPECT_EQ(value, isOn ? VI_TRUE : VI_FALSE) << property;
    }
    IviConfig_DisposeHandle(session);
}

} // namespace
