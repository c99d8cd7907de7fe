#include "tests/support/platform/store_fixture.h"
#include "tests/support/platform/store_listing.h"
#include "tests/support/store/store_tool_process.h"

#include <gmock/gmock.h>

#include <array>

namespace
{

using namespace kvxtest;
using testing::HasSubstr;

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

    /// All that the configuration server reads of a session.
    std::string listing(const std::string& name) const
    {
        EXPECT_EQ(IviConfig_Deserialize(store_, path().c_str()), VI_SUCCESS);
        return listStore(store_, {{name}, {}});
    }

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

TEST_F(WrittenStore, GivesVirtualNamesAndRangesAsTheyWereChosen)
{
    add({"Rack", "--create", "--resource", "x", "--virtual", "Core=OutputChannel1", "--virtual-range",
         "Rail=OutputChannel:1-3@2", "--virtual", "Pair=OutputChannel1,OutputChannel2", "--virtual-range",
         "Rail=OutputChannel:5-6@1", "--virtual-range", "=OutputChannel:10-11@5"});
    EXPECT_THAT(listing("Rack"), HasSubstr("  virtual name Core = OutputChannel1\n"
                                           "  virtual name Pair = OutputChannel1,OutputChannel2\n"
                                           "  virtual name Rail = OutputChannel\n"
                                           "    range 1 to 3 at 2\n"
                                           "    range 5 to 6 at 1\n"
                                           "  virtual name  = OutputChannel\n"
                                           "    range 10 to 11 at 5\n"));
}

TEST_F(WrittenStore, GivesSettingsOfEveryTypeWithTheirValues)
{
    add({"Rack", "--create", "--resource", "x", "--set", "boolean:Trace=true", "--set", "integer:Retries=-2147483648",
         "--set", "real:Settling Time=2.5e-1", "--set", "string:Station= line <4> & \"5\"  "});
    const auto component = [](const std::string& indent, const std::string& name, const std::string& type) {
        std::string text = indent + "component \n";
        for (const std::string& line :
             {"Name=" + name, std::string("Description="), std::string("UsedInSession=Required"), "Type=" + type,
              std::string("HelpFilePath="), std::string("SoftwareModuleKey="), std::string("HelpContextID=0"),
              std::string("ReadOnly=0")})
            text += indent + "  " + line + "\n";
        return text;
    };
    EXPECT_THAT(listing("Rack"),
                HasSubstr(component("  ", "Configurable Initial Settings", "Structure") +
                          component("    ", "Trace", "Boolean") + "      Boolean=1\n" +
                          component("    ", "Retries", "Integer") + "      Units=\n      Integer=-2147483648\n" +
                          component("    ", "Settling Time", "Real") + "      Units=\n      Real=0.25\n" +
                          component("    ", "Station", "String") + "      String= line <4> & \"5\"  \n"));
}

TEST_F(WrittenStore, GivesThePhysicalNamesOfTheSoftwareModule)
{
    add({"Rack", "--create", "--resource", "x"});
    std::string names;
    for (const std::string number : {"1", "2", "3", "4", "5", "6"})
        names += "  physical name OutputChannel" + number + " = OutputChannel\n";
    EXPECT_THAT(listing("Rack"), HasSubstr("    IOResourceDescriptor=x\n" + names));
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
