#include "tests/support/platform/example_store.h"
#include "tests/support/platform/generated_store.h"
#include "tests/support/platform/host_places.h"
#include "tests/support/platform/store_fixture.h"
#include "tests/support/platform/store_listing.h"
#include "tests/support/utf8_path.h"

#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <thread>
#include <vector>

namespace
{

using namespace kvxtest;

class LoadedStore : public StoreTest
{
protected:
    IviDriverSessionHandle session(const char* name)
    {
        IviDriverSessionHandle found = nullptr;
        EXPECT_EQ(IviConfig_GetDriverSession(store_, name, &found), VI_SUCCESS) << name;
        return found;
    }
};

TEST_F(LoadedStore, NewStoreIsEmpty)
{
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_NAME), "");
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_ACTUAL_LOCATION), "");
    IviDriverSessionHandle found = store_;
    EXPECT_EQ(IviConfig_GetDriverSession(store_, "KVX2800T", &found), IVICONFIG_ERROR_SESSION_NOT_FOUND);
    EXPECT_EQ(found, nullptr);
}

TEST_F(LoadedStore, StoreTextsComeFromTheFile)
{
    ASSERT_EQ(load(kBenchStore), VI_SUCCESS);
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_NAME), "Bench");
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_DESCRIPTION), "A bench & its store");
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_REVISION), "1.2.3.4");
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_VENDOR), "Workshop");
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_ACTUAL_LOCATION), folder_ / "store.xml");
}

TEST_F(LoadedStore, DriverSessionIsFoundByItsName)
{
    ASSERT_EQ(load(kBenchStore), VI_SUCCESS);
    const auto found = session("KVX2800T");
    EXPECT_EQ(sessionText(found, IVICONFIG_VAL_CONFIG_COMPONENT_NAME), "KVX2800T");
    EXPECT_EQ(sessionText(found, IVICONFIG_VAL_CONFIG_COMPONENT_DESCRIPTION), "left rack");
    EXPECT_EQ(sessionText(found, IVICONFIG_VAL_SESSION_SOFTWARE_MODULE_NAME), "KVX2800T");
    EXPECT_EQ(sessionText(found, IVICONFIG_VAL_DRIVER_SESSION_DRIVER_SETUP), "Model:KVX2833T");
    EXPECT_EQ(IviConfig_DisposeHandle(found), VI_SUCCESS);
}

struct NameLookUp
{
    const char* name;
    const char* found;
};

class StoreLookUp : public LoadedStore, public testing::WithParamInterface<NameLookUp>
{
};

TEST_P(StoreLookUp, LogicalNamesComeFirst)
{
    ASSERT_EQ(load(kBenchStore), VI_SUCCESS);
    const auto found = session(GetParam().name);
    EXPECT_EQ(sessionText(found, IVICONFIG_VAL_CONFIG_COMPONENT_NAME), GetParam().found);
    EXPECT_EQ(IviConfig_DisposeHandle(found), VI_SUCCESS);
}

INSTANTIATE_TEST_SUITE_P(Names, StoreLookUp,
                         testing::Values(NameLookUp{"BenchSupply", "KVX2800T"}, NameLookUp{"Shadowed", "KVX2800T"},
                                         NameLookUp{"Plain", "Plain"}, NameLookUp{"Lost", "Lost"}),
                         [](const auto& instance) { return std::string(instance.param.name); });

TEST_F(LoadedStore, NamesThatLeadToNoDriverSessionAreNotFound)
{
    ASSERT_EQ(load(kBenchStore), VI_SUCCESS);
    const std::string overlong(100000, 'n');
    for (const char* name :
         {"", "Other", "Dangling", "WrongKind", "kvx2800t", "KVX2800T ", "Supply 1", overlong.c_str()}) {
        IviDriverSessionHandle found = store_;
        EXPECT_EQ(IviConfig_GetDriverSession(store_, name, &found), IVICONFIG_ERROR_SESSION_NOT_FOUND) << name;
        EXPECT_EQ(found, nullptr);
    }
    EXPECT_EQ(static_cast<ViUInt32>(IVICONFIG_ERROR_SESSION_NOT_FOUND), 0xBFFA1203U);
}

TEST_F(LoadedStore, DriverSessionIsFoundWhereverItIsDefined)
{
    ASSERT_EQ(load("<IviConfigStore><Sessions><IviDriverSession id='s'><Name>S</Name></IviDriverSession></Sessions>"
                   "<DriverSessions><IviDriverSession idref='s'/><IviDriverSession idref='gone'/></DriverSessions>"
                   "</IviConfigStore>"),
              VI_SUCCESS);
    EXPECT_EQ(sessionText(obtain(IviConfig_GetDriverSession, store_, "S"), 1), "S");
}

TEST_F(LoadedStore, FlagsAreThoseOfTheFile)
{
    struct Flag
    {
        ViInt32 property;
        ViBoolean value;
    };
    ASSERT_EQ(load(kBenchStore), VI_SUCCESS);
    const auto found = session("KVX2800T");
    for (const Flag flag : {Flag{IVICONFIG_VAL_DRIVER_SESSION_CACHE, VI_TRUE},
                            Flag{IVICONFIG_VAL_DRIVER_SESSION_INTERCHANGE_CHECK, VI_FALSE},
                            Flag{IVICONFIG_VAL_DRIVER_SESSION_QUERY_INSTR_STATUS, VI_TRUE},
                            Flag{IVICONFIG_VAL_DRIVER_SESSION_RANGE_CHECK, VI_TRUE},
                            Flag{IVICONFIG_VAL_DRIVER_SESSION_RECORD_COERCIONS, VI_FALSE},
                            Flag{IVICONFIG_VAL_DRIVER_SESSION_SIMULATE, VI_FALSE}})
    {
        ViBoolean value = 7;
        EXPECT_EQ(IviConfig_GetDriverSessionPropertyViBoolean(found, flag.property, &value), VI_SUCCESS);
        EXPECT_EQ(value, flag.value) << flag.property;
    }
    EXPECT_EQ(IviConfig_DisposeHandle(found), VI_SUCCESS);
}

TEST_F(LoadedStore, MissingEntriesHaveTheStoresDefaults)
{
    ASSERT_EQ(load(kBenchStore), VI_SUCCESS);
    const auto found = session("Plain");
    for (ViInt32 property = IVICONFIG_VAL_DRIVER_SESSION_CACHE; property <= IVICONFIG_VAL_DRIVER_SESSION_SIMULATE;
         ++property)
    {
        ViBoolean value = 7;
        EXPECT_EQ(IviConfig_GetDriverSessionPropertyViBoolean(found, property, &value), VI_SUCCESS);
        EXPECT_EQ(value, VI_FALSE);
    }
    EXPECT_EQ(sessionText(found, IVICONFIG_VAL_DRIVER_SESSION_DRIVER_SETUP), "");
    EXPECT_EQ(IviConfig_DisposeHandle(found), VI_SUCCESS);
}

TEST_F(LoadedStore, HardwareAssetOfASession)
{
    ASSERT_EQ(load(kBenchStore), VI_SUCCESS);
    const auto found = session("KVX2800T");
    IviHardwareAssetHandle asset = nullptr;
    ASSERT_EQ(IviConfig_GetSessionHardwareAssetReference(found, &asset), VI_SUCCESS);
    EXPECT_EQ(assetText(asset, IVICONFIG_VAL_CONFIG_COMPONENT_NAME), "Supply 1");
    EXPECT_EQ(assetText(asset, IVICONFIG_VAL_CONFIG_COMPONENT_DESCRIPTION), "<left>");
    EXPECT_EQ(assetText(asset, IVICONFIG_VAL_HARDWARE_ASSET_IO_DESCRIPTOR), "TCPIP0::127.0.0.1::5025::SOCKET");
    EXPECT_EQ(IviConfig_DisposeHandle(asset), VI_SUCCESS);
    EXPECT_EQ(IviConfig_DisposeHandle(found), VI_SUCCESS);
}

TEST_F(LoadedStore, AbsentOrDanglingHardwareAssetIsANullHandle)
{
    ASSERT_EQ(load(kBenchStore), VI_SUCCESS);
    for (const char* name : {"Plain", "Lost"}) {
        const auto found = session(name);
        IviHardwareAssetHandle asset = found;
        EXPECT_EQ(IviConfig_GetSessionHardwareAssetReference(found, &asset), VI_SUCCESS);
        EXPECT_EQ(asset, nullptr);
        EXPECT_EQ(IviConfig_DisposeHandle(found), VI_SUCCESS);
    }
}

TEST_F(LoadedStore, StoreIsLoadedOnce)
{
    ASSERT_EQ(load(kBenchStore), VI_SUCCESS);
    EXPECT_EQ(load(kBenchStore), IVICONFIG_ERROR_ALREADY_DESERIALIZED);
    EXPECT_EQ(static_cast<ViUInt32>(IVICONFIG_ERROR_ALREADY_DESERIALIZED), 0xBFFA1201U);
}

TEST_F(LoadedStore, AfterAFailureTheStoreIsAsNew)
{
    EXPECT_EQ(load("<IviConfigStore>"), IVICONFIG_ERROR_DESERIALIZE_FAILED);
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_ACTUAL_LOCATION), "");
    EXPECT_EQ(load(kBenchStore), VI_SUCCESS);
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_NAME), "Bench");
}

TEST_F(LoadedStore, ProcessDefaultLocationComesFromTheEnvironment)
{
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_PROC_DEFAULT_LOCATION), "");
    const EnvironmentVariable chosen("IVICONFIGSERVERDEFAULT", "/some/store.xml");
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_PROC_DEFAULT_LOCATION), "/some/store.xml");
}

TEST_F(LoadedStore, RegisteredMasterStoreThatIsMissingIsAnError)
{
    const EnvironmentVariable registered("IVI_MASTER_STORE", (folder_ / "missing.xml").c_str());
    std::array<ViChar, 8> text{"before"};
    EXPECT_EQ(
        IviConfig_GetConfigStorePropertyViString(store_, IVICONFIG_VAL_CONFIG_STORE_MASTER_LOCATION, 8, text.data()),
        IVICONFIG_ERROR_MASTER_NOT_FOUND);
    EXPECT_STREQ(text.data(), "before");
    EXPECT_EQ(static_cast<ViUInt32>(IVICONFIG_ERROR_MASTER_NOT_FOUND), 0xBFFA1206U);
}

TEST_F(LoadedStore, WithoutAnyStoreTheSystemsOneIsServedEmpty)
{
    const std::string system = usualMasterStore();
    if (std::filesystem::exists(fromUtf8(system)))
        GTEST_SKIP() << "this host has a store of its own";
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_MASTER_LOCATION), system);
    EXPECT_EQ(IviConfig_Deserialize(store_, system.c_str()), VI_SUCCESS);
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_ACTUAL_LOCATION), system);
    IviDriverSessionHandle found = nullptr;
    EXPECT_EQ(IviConfig_GetDriverSession(store_, "KVX2800T", &found), IVICONFIG_ERROR_SESSION_NOT_FOUND);
    EXPECT_EQ(IviConfig_Deserialize(store_, system.c_str()), IVICONFIG_ERROR_ALREADY_DESERIALIZED);
}

TEST_F(LoadedStore, LocationsAreTheStoresOwnWhateverTheFileSays)
{
    const EnvironmentVariable chosen("IVICONFIGSERVERDEFAULT", "/some/store.xml");
    ASSERT_EQ(load("<IviConfigStore><MasterLocation>/m</MasterLocation><ProcessDefaultLocation>/p"
                   "</ProcessDefaultLocation><ActualLocation>/a</ActualLocation></IviConfigStore>"),
              VI_SUCCESS);
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_MASTER_LOCATION), usualMasterStore());
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_PROC_DEFAULT_LOCATION), "/some/store.xml");
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_ACTUAL_LOCATION), folder_ / "store.xml");
}

TEST_F(LoadedStore, LocationsFollowTheBufferRules)
{
    const EnvironmentVariable chosen("IVICONFIGSERVERDEFAULT", "/some/store.xml");
    std::array<ViChar, 6> text{};
    EXPECT_EQ(IviConfig_GetConfigStorePropertyViString(store_, 5, 6, text.data()), 16);
    EXPECT_STREQ(text.data(), "/some");
}

/// Runs an action on several threads at once.
template <class Action>
void inParallel(Action action)
{
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int i = 0; i < 4; ++i)
        threads.emplace_back(action);
    for (std::thread& thread : threads)
        thread.join();
}

TEST_F(LoadedStore, StoresAreReadInParallel)
{
    const std::string path = writeFile("s.xml", kBenchStore);
    inParallel([&path] {
        for (int round = 0; round < 20; ++round) {
            IviConfigStoreHandle store = nullptr;
            IviDriverSessionHandle found = nullptr;
            ASSERT_EQ(IviConfig_Initialize(&store), VI_SUCCESS);
            ASSERT_EQ(IviConfig_Deserialize(store, path.c_str()), VI_SUCCESS);
            ASSERT_EQ(IviConfig_GetDriverSession(store, "BenchSupply", &found), VI_SUCCESS);
            ASSERT_EQ(sessionText(found, 1), "KVX2800T");
            ASSERT_EQ(IviConfig_DisposeHandle(found), VI_SUCCESS);
            ASSERT_EQ(IviConfig_Close(store), VI_SUCCESS);
        }
    });
}

TEST_F(LoadedStore, OneStoreIsReadByManyThreads)
{
    const StoreNames names{{"BenchSupply", "KVX2800T"}, {"KVX2800T"}};
    ASSERT_EQ(load(kExampleStore), VI_SUCCESS);
    const std::string expected = listStore(store_, names);
    inParallel([&] {
        for (int round = 0; round < 20; ++round)
            EXPECT_EQ(listStore(store_, names), expected);
    });
}

TEST_F(LoadedStore, OneOfManyThreadsLoadsTheStore)
{
    const std::string path = writeFile("s.xml", kBenchStore);
    std::atomic<int> loaded = 0;
    inParallel([&] {
        const ViStatus status = IviConfig_Deserialize(store_, path.c_str());
        loaded += status == VI_SUCCESS ? 1 : 0;
        EXPECT_THAT(status, testing::AnyOf(VI_SUCCESS, IVICONFIG_ERROR_ALREADY_DESERIALIZED));
        EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_NAME), "Bench");
    });
    EXPECT_EQ(loaded, 1);
}

class ExampleStore : public StoreTest
{
protected:
    void SetUp() override
    {
        StoreTest::SetUp();
        ASSERT_EQ(load(kExampleStore), VI_SUCCESS);
    }
};

/// The four settings, as the module has them and as the session does.
std::string settings(const std::string& readOnly, const std::vector<std::string>& values)
{
    const std::string common = "    UsedInSession=Required\n";
    const auto heading = [&](const std::string& name, const std::string& description, const std::string& type,
                             const std::string& key) {
        return "    component \n      Name=" + name + "\n      Description=" + description +
               "\n      UsedInSession=Required\n      Type=" + type +
               "\n      HelpFilePath=\n      SoftwareModuleKey=" + key +
               "\n      HelpContextID=0\n      ReadOnly=" + readOnly + "\n";
    };
    return "  component \n    Name=Configurable Initial Settings\n    Description=\n" + common +
           "    Type=Structure\n    HelpFilePath=\n    SoftwareModuleKey=\n    HelpContextID=0\n    ReadOnly=" +
           readOnly + "\n" + heading("Trace", "log each call", "Boolean", "TRACE") + "      Boolean=" + values[0] +
           "\n" + heading("Retries", "", "Integer", "RETRIES") + "      Units=\n      Integer=" + values[1] + "\n" +
           heading("Settling Time", "", "Real", "SETTLE") + "      Units=s\n      Real=" + values[2] + "\n" +
           heading("Station", "", "String", "STATION") + "      String=" + values[3] + "\n";
}

std::string moduleListing()
{
    std::string text;
    for (const char* const number : {"1", "2", "3", "4", "5", "6"})
        text += std::string("  physical name OutputChannel") + number + " = OutputChannel\n";
    return text + settings("1", {"0", "0", "0.1", ""});
}

std::string sessionListing(const std::string& lookedUp)
{
    return "session " + lookedUp +
           "\n  Name=KVX2800T\n  Description=\n  SoftwareModuleName=KVX2800T\n  DriverSetup=\n"
           "  Cache=1\n  InterchangeCheck=0\n  QueryInstrStatus=0\n  RangeCheck=1\n  RecordCoercions=0\n  Simulate=0\n"
           "  asset \n    Name=Bench supply 1\n    Description=\n"
           "    IOResourceDescriptor=TCPIP0::127.0.0.1::5025::SOCKET\n" +
           moduleListing() +
           "  virtual name Core = OutputChannel1\n"
           "  virtual name Pair = OutputChannel1,OutputChannel2\n"
           "  virtual name Rail = OutputChannel\n"
           "    range 1 to 3 at 2\n" +
           settings("0", {"1", "3", "0.25", "line 4"});
}

TEST_F(ExampleStore, IsReadCompletely)
{
    EXPECT_EQ(listStore(store_, {{"KVX2800T", "BenchSupply", "Other"}, {"KVX2800T", "Other"}}),
              "Name=IVI Configuration Server\nDescription=Example store\nRevision=1.0.0.0\n"
              "Vendor=IVI Foundation, Inc.\n"
              "driver session KVX2800T\nlogical name BenchSupply =  to KVX2800T\n" +
                  sessionListing("KVX2800T") + sessionListing("BenchSupply") + "module KVX2800T\n" + moduleListing());
    EXPECT_EQ(errorText(), "");
}

TEST_F(ExampleStore, SettingsAreFoundByTheirNames)
{
    const OwnedHandle session = obtain(IviConfig_GetDriverSession, store_, "BenchSupply");
    const OwnedHandle components = obtain(IviConfig_GetConfigComponentDataComponentCollection, session);
    const OwnedHandle structure =
        obtain(IviConfig_GetDataComponentItemByName, components, "Configurable Initial Settings");
    const OwnedHandle inner = obtain(IviConfig_GetStructureDataComponentCollection, structure);
    const OwnedHandle settling = obtain(IviConfig_GetDataComponentItemByName, inner, "Settling Time");
    ViReal64 seconds = 0.0;
    EXPECT_EQ(IviConfig_GetDataComponentPropertyViReal64(settling, IVICONFIG_VAL_DATA_COMPONENT_VALUE, &seconds),
              VI_SUCCESS);
    EXPECT_DOUBLE_EQ(seconds, 0.25);
    EXPECT_EQ(readText(IviConfig_GetDataComponentPropertyViString, settling, IVICONFIG_VAL_DATA_COMPONENT_TYPE),
              "Real");
    const OwnedHandle module = obtain(IviConfig_GetSessionSoftwareModuleReference, session);
    const OwnedHandle moduleData = obtain(IviConfig_GetConfigComponentDataComponentCollection, module);
    ViInt32 count = 0;
    EXPECT_EQ(IviConfig_GetDataComponentCount(moduleData, &count), VI_SUCCESS);
    EXPECT_EQ(count, 1);
}

constexpr std::size_t kBenches = 10000;

/// A store of ten thousand benches, as a large test site has it.
class LargeStore : public StoreTest
{
protected:
    void SetUp() override
    {
        StoreTest::SetUp();
        ASSERT_EQ(load(generateStore(kBenches)), VI_SUCCESS);
    }

    static std::string descriptorOf(const OwnedHandle& session)
    {
        const OwnedHandle asset = obtain(IviConfig_GetSessionHardwareAssetReference, session);
        return readText(IviConfig_GetHardwareAssetPropertyViString, asset, IVICONFIG_VAL_HARDWARE_ASSET_IO_DESCRIPTOR);
    }
};

TEST_F(LargeStore, EverySessionIsFoundByItsLogicalNameAndByItsOwnAndByNoOther)
{
    for (std::size_t bench = 1; bench <= kBenches; ++bench) {
        const std::string number = std::to_string(bench);
        for (const std::string& name : {"Bench" + number, "Session" + number}) {
            const OwnedHandle session = obtain(IviConfig_GetDriverSession, store_, name.c_str());
            ASSERT_EQ(readText(IviConfig_GetDriverSessionPropertyViString, session, 1), "Session" + number);
            ASSERT_EQ(descriptorOf(session), "TCPIP0::127.0.0.1::" + number + "::SOCKET");
        }
    }
    for (const char* const name : {"Bench0", "Bench10001", "Session", "Session00001", ""}) {
        IviDriverSessionHandle session = store_;
        EXPECT_EQ(IviConfig_GetDriverSession(store_, name, &session), IVICONFIG_ERROR_SESSION_NOT_FOUND) << name;
        EXPECT_EQ(session, nullptr);
    }
}

TEST_F(LargeStore, SessionsHaveTheirVirtualNamesAndSettings)
{
    for (const std::size_t bench : {std::size_t{1}, std::size_t{5000}, kBenches}) {
        const std::string number = std::to_string(bench);
        const std::string listing = listStore(store_, {{"Bench" + number}, {}});
        for (const char* const line : {"\n  virtual name Core = OutputChannel1\n",
                                       "\n  virtual name Rail = OutputChannel\n    range 1 to 3 at 2\n",
                                       "\n  physical name OutputChannel6 = OutputChannel\n"})
            EXPECT_NE(listing.find(line), std::string::npos) << line;
        EXPECT_NE(listing.find("\n      Integer=" + number + "\n"), std::string::npos);
        EXPECT_NE(listing.find("\n      String=line " + number + "\n"), std::string::npos);
    }
}

} // namespace
