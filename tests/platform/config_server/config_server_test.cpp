#include "tests/support/platform/example_store.h"
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

using kvxtest::EnvironmentVariable;
using kvxtest::kBenchStore;

class ConfigServer : public kvxtest::StoreTest
{
protected:
    IviDriverSessionHandle session(const char* name)
    {
        IviDriverSessionHandle found = nullptr;
        EXPECT_EQ(IviConfig_GetDriverSession(store_, name, &found), VI_SUCCESS) << name;
        return found;
    }
};

TEST_F(ConfigServer, NewStoreIsEmpty)
{
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_NAME), "");
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_ACTUAL_LOCATION), "");
    IviDriverSessionHandle found = store_;
    EXPECT_EQ(IviConfig_GetDriverSession(store_, "KVX2800T", &found), IVICONFIG_ERROR_SESSION_NOT_FOUND);
    EXPECT_EQ(found, nullptr);
}

TEST_F(ConfigServer, StoreTextsComeFromTheFile)
{
    ASSERT_EQ(load(kBenchStore), VI_SUCCESS);
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_NAME), "Bench");
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_DESCRIPTION), "A bench & its store");
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_REVISION), "1.2.3.4");
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_VENDOR), "Workshop");
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_ACTUAL_LOCATION), folder_ / "store.xml");
}

TEST_F(ConfigServer, DriverSessionIsFoundByItsName)
{
    ASSERT_EQ(load(kBenchStore), VI_SUCCESS);
    const auto found = session("KVX2800T");
    EXPECT_EQ(sessionText(found, IVICONFIG_VAL_CONFIG_COMPONENT_NAME), "KVX2800T");
    EXPECT_EQ(sessionText(found, IVICONFIG_VAL_CONFIG_COMPONENT_DESCRIPTION), "left rack");
    EXPECT_EQ(sessionText(found, IVICONFIG_VAL_SESSION_SOFTWARE_MODULE_NAME), "KVX2800T");
    EXPECT_EQ(sessionText(found, IVICONFIG_VAL_DRIVER_SESSION_DRIVER_SETUP), "Model:KVX2833T");
    EXPECT_EQ(IviConfig_DisposeHandle(found), VI_SUCCESS);
}

struct LookUp
{
    const char* name;
    const char* found;
};

class ConfigServerLookUp : public ConfigServer, public testing::WithParamInterface<LookUp>
{
};

TEST_P(ConfigServerLookUp, LogicalNamesComeFirst)
{
    ASSERT_EQ(load(kBenchStore), VI_SUCCESS);
    const auto found = session(GetParam().name);
    EXPECT_EQ(sessionText(found, IVICONFIG_VAL_CONFIG_COMPONENT_NAME), GetParam().found);
    EXPECT_EQ(IviConfig_DisposeHandle(found), VI_SUCCESS);
}

INSTANTIATE_TEST_SUITE_P(Names, ConfigServerLookUp,
                         testing::Values(LookUp{"BenchSupply", "KVX2800T"}, LookUp{"Shadowed", "KVX2800T"},
                                         LookUp{"Plain", "Plain"}, LookUp{"Lost", "Lost"}),
                         [](const auto& instance) { return std::string(instance.param.name); });

TEST_F(ConfigServer, NamesThatLeadToNoDriverSessionAreNotFound)
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

TEST_F(ConfigServer, FlagsAreThoseOfTheFile)
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

TEST_F(ConfigServer, MissingEntriesHaveTheStoresDefaults)
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

TEST_F(ConfigServer, HardwareAssetOfASession)
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

TEST_F(ConfigServer, AbsentOrDanglingHardwareAssetIsANullHandle)
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

TEST_F(ConfigServer, UnknownPropertiesAndThoseOfAnotherTypeAreRefused)
{
    ASSERT_EQ(load(kBenchStore), VI_SUCCESS);
    const auto found = session("KVX2800T");
    IviHardwareAssetHandle asset = nullptr;
    ASSERT_EQ(IviConfig_GetSessionHardwareAssetReference(found, &asset), VI_SUCCESS);
    std::array<ViChar, 8> text{"before"};
    ViBoolean flag = 7;
    for (const ViInt32 property : {0, 8, 9, 10, -1, 1000})
        EXPECT_EQ(IviConfig_GetConfigStorePropertyViString(store_, property, 8, text.data()),
                  IVICONFIG_ERROR_INVALID_PROPERTY_ID);
    for (const ViInt32 property : {0, 4, 9, 11, -1})
        EXPECT_EQ(IviConfig_GetDriverSessionPropertyViString(found, property, 8, text.data()),
                  IVICONFIG_ERROR_INVALID_PROPERTY_ID);
    for (const ViInt32 property : {0, 1, 3, 10, 11})
        EXPECT_EQ(IviConfig_GetDriverSessionPropertyViBoolean(found, property, &flag),
                  IVICONFIG_ERROR_INVALID_PROPERTY_ID);
    for (const ViInt32 property : {0, 4})
        EXPECT_EQ(IviConfig_GetHardwareAssetPropertyViString(asset, property, 8, text.data()),
                  IVICONFIG_ERROR_INVALID_PROPERTY_ID);
    EXPECT_STREQ(text.data(), "before");
    EXPECT_EQ(flag, 7);
    EXPECT_EQ(static_cast<ViUInt32>(IVICONFIG_ERROR_INVALID_PROPERTY_ID), 0xBFFA1221U);
    EXPECT_EQ(IviConfig_DisposeHandle(asset), VI_SUCCESS);
    EXPECT_EQ(IviConfig_DisposeHandle(found), VI_SUCCESS);
}

TEST_F(ConfigServer, TextsFollowTheBufferRules)
{
    ASSERT_EQ(load(kBenchStore), VI_SUCCESS);
    std::array<ViChar, 8> text{};
    text.fill('#');
    EXPECT_EQ(IviConfig_GetConfigStorePropertyViString(store_, 1, 0, nullptr), 6);
    EXPECT_EQ(IviConfig_GetConfigStorePropertyViString(store_, 1, 4, text.data()), 6);
    EXPECT_STREQ(text.data(), "Ben");
    EXPECT_EQ(text[4], '#');
    EXPECT_EQ(IviConfig_GetConfigStorePropertyViString(store_, 1, 6, text.data()), VI_SUCCESS);
    EXPECT_STREQ(text.data(), "Bench");
    EXPECT_EQ(text[6], '#');
    text.fill('#');
    EXPECT_EQ(IviConfig_GetConfigStorePropertyViString(store_, 1, -1, text.data()), VI_SUCCESS);
    EXPECT_STREQ(text.data(), "Bench");
    EXPECT_EQ(errorText(), "") << "a cut text is no failure";
}

TEST_F(ConfigServer, NullPointersAreRefused)
{
    ASSERT_EQ(load(kBenchStore), VI_SUCCESS);
    const auto found = session("KVX2800T");
    EXPECT_EQ(IviConfig_Initialize(nullptr), IVI_ERROR_NULL_POINTER);
    EXPECT_EQ(IviConfig_Deserialize(store_, nullptr), IVI_ERROR_NULL_POINTER);
    EXPECT_EQ(IviConfig_GetConfigStorePropertyViString(store_, 1, 8, nullptr), IVI_ERROR_NULL_POINTER);
    EXPECT_EQ(IviConfig_GetDriverSession(store_, "x", nullptr), IVI_ERROR_NULL_POINTER);
    IviDriverSessionHandle other = found;
    EXPECT_EQ(IviConfig_GetDriverSession(store_, nullptr, &other), IVI_ERROR_NULL_POINTER);
    EXPECT_EQ(other, nullptr);
    EXPECT_EQ(IviConfig_GetDriverSessionPropertyViBoolean(found, 4, nullptr), IVI_ERROR_NULL_POINTER);
    EXPECT_EQ(IviConfig_GetDriverSessionPropertyViString(found, 1, -1, nullptr), IVI_ERROR_NULL_POINTER);
    EXPECT_EQ(IviConfig_GetSessionHardwareAssetReference(found, nullptr), IVI_ERROR_NULL_POINTER);
    EXPECT_EQ(IviConfig_DisposeHandle(found), VI_SUCCESS);
}

TEST_F(ConfigServer, HandlesOfAnotherKindAreRefused)
{
    ASSERT_EQ(load(kBenchStore), VI_SUCCESS);
    const auto found = session("KVX2800T");
    IviHardwareAssetHandle asset = nullptr;
    ASSERT_EQ(IviConfig_GetSessionHardwareAssetReference(found, &asset), VI_SUCCESS);
    std::array<ViChar, 8> text{};
    ViBoolean flag = VI_FALSE;
    IviConfigHandle other = nullptr;
    EXPECT_EQ(IviConfig_DisposeHandle(store_), IVICONFIG_ERROR_INVALID_HANDLE);
    EXPECT_EQ(IviConfig_Close(found), IVICONFIG_ERROR_INVALID_HANDLE);
    EXPECT_EQ(IviConfig_Deserialize(found, "/x"), IVICONFIG_ERROR_INVALID_HANDLE);
    EXPECT_EQ(IviConfig_GetDriverSession(asset, "KVX2800T", &other), IVICONFIG_ERROR_INVALID_HANDLE);
    EXPECT_EQ(IviConfig_GetDriverSessionPropertyViBoolean(asset, 4, &flag), IVICONFIG_ERROR_INVALID_HANDLE);
    EXPECT_EQ(IviConfig_GetDriverSessionPropertyViString(store_, 1, 8, text.data()), IVICONFIG_ERROR_INVALID_HANDLE);
    EXPECT_EQ(IviConfig_GetHardwareAssetPropertyViString(found, 1, 8, text.data()), IVICONFIG_ERROR_INVALID_HANDLE);
    EXPECT_EQ(IviConfig_GetSessionHardwareAssetReference(asset, &other), IVICONFIG_ERROR_INVALID_HANDLE);
    EXPECT_EQ(IviConfig_GetConfigStorePropertyViString(asset, 1, 8, text.data()), IVICONFIG_ERROR_INVALID_HANDLE);
    EXPECT_EQ(static_cast<ViUInt32>(IVICONFIG_ERROR_INVALID_HANDLE), 0xBFFA1220U);
    EXPECT_EQ(IviConfig_DisposeHandle(asset), VI_SUCCESS);
    EXPECT_EQ(IviConfig_DisposeHandle(found), VI_SUCCESS);
}

TEST_F(ConfigServer, DisposedClosedNullAndInventedHandlesAreRefused)
{
    ASSERT_EQ(load(kBenchStore), VI_SUCCESS);
    const auto disposed = session("KVX2800T");
    ASSERT_EQ(IviConfig_DisposeHandle(disposed), VI_SUCCESS);
    IviConfigStoreHandle closed = nullptr;
    ASSERT_EQ(IviConfig_Initialize(&closed), VI_SUCCESS);
    ASSERT_EQ(IviConfig_Close(closed), VI_SUCCESS);
    int dummy = 0;
    for (IviConfigHandle handle : {disposed, closed, IviConfigHandle{nullptr}, static_cast<IviConfigHandle>(&dummy)}) {
        std::array<ViChar, 8> text{};
        EXPECT_EQ(IviConfig_DisposeHandle(handle), IVICONFIG_ERROR_INVALID_HANDLE);
        EXPECT_EQ(IviConfig_Close(handle), IVICONFIG_ERROR_INVALID_HANDLE);
        EXPECT_EQ(IviConfig_Deserialize(handle, "/x"), IVICONFIG_ERROR_INVALID_HANDLE);
        EXPECT_EQ(IviConfig_GetDriverSessionPropertyViString(handle, 1, 8, text.data()),
                  IVICONFIG_ERROR_INVALID_HANDLE);
    }
}

TEST_F(ConfigServer, EachCallHandsOutAHandleOfItsOwn)
{
    ASSERT_EQ(load(kBenchStore), VI_SUCCESS);
    const auto first = session("KVX2800T");
    const auto second = session("KVX2800T");
    EXPECT_NE(first, second);
    EXPECT_EQ(IviConfig_DisposeHandle(first), VI_SUCCESS);
    EXPECT_EQ(sessionText(second, 1), "KVX2800T");
    EXPECT_EQ(IviConfig_DisposeHandle(second), VI_SUCCESS);
}

TEST_F(ConfigServer, ObjectsOutliveTheirStore)
{
    IviConfigStoreHandle store = nullptr;
    ASSERT_EQ(IviConfig_Initialize(&store), VI_SUCCESS);
    ASSERT_EQ(IviConfig_Deserialize(store, writeFile("s.xml", kBenchStore).c_str()), VI_SUCCESS);
    IviDriverSessionHandle found = nullptr;
    ASSERT_EQ(IviConfig_GetDriverSession(store, "KVX2800T", &found), VI_SUCCESS);
    ASSERT_EQ(IviConfig_Close(store), VI_SUCCESS);
    EXPECT_EQ(sessionText(found, 1), "KVX2800T");
    EXPECT_EQ(IviConfig_DisposeHandle(found), VI_SUCCESS);
}

TEST_F(ConfigServer, StoreIsLoadedOnce)
{
    ASSERT_EQ(load(kBenchStore), VI_SUCCESS);
    EXPECT_EQ(load(kBenchStore), IVICONFIG_ERROR_ALREADY_DESERIALIZED);
    EXPECT_EQ(static_cast<ViUInt32>(IVICONFIG_ERROR_ALREADY_DESERIALIZED), 0xBFFA1201U);
}

TEST_F(ConfigServer, AfterAFailureTheStoreIsAsNew)
{
    EXPECT_EQ(load("<IviConfigStore>"), IVICONFIG_ERROR_DESERIALIZE_FAILED);
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_ACTUAL_LOCATION), "");
    EXPECT_EQ(load(kBenchStore), VI_SUCCESS);
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_NAME), "Bench");
}

TEST_F(ConfigServer, FailuresAreToldInTheThreadsRecordFirstOneFirst)
{
    EXPECT_EQ(IviConfig_Deserialize(store_, "/no/such/store.xml"), IVICONFIG_ERROR_DESERIALIZE_FAILED);
    IviDriverSessionHandle found = nullptr;
    EXPECT_EQ(IviConfig_GetDriverSession(store_, "Gone", &found), IVICONFIG_ERROR_SESSION_NOT_FOUND);
    EXPECT_EQ(errorText(), "IviConfigServer.IviConfigStore.1: Deserialize '/no/such/store.xml': the file is missing or "
                           "not a configuration store");
    EXPECT_EQ(errorText(), "");
    EXPECT_EQ(IviConfig_GetDriverSession(store_, "Gone", &found), IVICONFIG_ERROR_SESSION_NOT_FOUND);
    EXPECT_EQ(errorText(),
              "IviConfigServer.IviConfigStore.1: GetDriverSession 'Gone': no driver session has this name");
}

TEST_F(ConfigServer, RecordIsSharedWithTheSessionService)
{
    IviDriverSessionHandle found = nullptr;
    EXPECT_EQ(IviConfig_GetDriverSession(store_, "Gone", &found), IVICONFIG_ERROR_SESSION_NOT_FOUND);
    ViStatus code = 0;
    EXPECT_GT(IviSession_GetError(VI_NULL, 0, &code, nullptr), 1);
    EXPECT_EQ(code, IVICONFIG_ERROR_SESSION_NOT_FOUND);
    EXPECT_EQ(IviConfig_ClearError(), VI_SUCCESS);
    EXPECT_EQ(IviSession_GetError(VI_NULL, 0, &code, nullptr), 1);
    EXPECT_EQ(code, IVI_SUCCESS);
    IviSession_SetError(VI_NULL, -3, "from elsewhere");
    EXPECT_EQ(errorText(), "from elsewhere");
}

TEST_F(ConfigServer, GetErrorFollowsTheBufferRules)
{
    IviSession_SetError(VI_NULL, -3, "abcdef");
    std::array<ViChar, 8> text{};
    EXPECT_EQ(IviConfig_GetError(0, nullptr), 7);
    EXPECT_EQ(IviConfig_GetError(4, nullptr), IVI_ERROR_NULL_POINTER);
    EXPECT_EQ(IviConfig_GetError(4, text.data()), 7);
    EXPECT_STREQ(text.data(), "abc");
    EXPECT_EQ(errorText(), "");
}

TEST_F(ConfigServer, ProcessDefaultLocationComesFromTheEnvironment)
{
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_PROC_DEFAULT_LOCATION), "");
    const EnvironmentVariable chosen("IVICONFIGSERVERDEFAULT", "/some/store.xml");
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_PROC_DEFAULT_LOCATION), "/some/store.xml");
}

TEST_F(ConfigServer, RegisteredMasterStoreThatIsMissingIsAnError)
{
    const EnvironmentVariable registered("IVI_MASTER_STORE", (folder_ / "missing.xml").c_str());
    std::array<ViChar, 8> text{"before"};
    EXPECT_EQ(
        IviConfig_GetConfigStorePropertyViString(store_, IVICONFIG_VAL_CONFIG_STORE_MASTER_LOCATION, 8, text.data()),
        IVICONFIG_ERROR_MASTER_NOT_FOUND);
    EXPECT_STREQ(text.data(), "before");
    EXPECT_EQ(static_cast<ViUInt32>(IVICONFIG_ERROR_MASTER_NOT_FOUND), 0xBFFA1206U);
}

TEST_F(ConfigServer, WithoutAnyStoreTheSystemsOneIsServedEmpty)
{
    const std::string system = kvxtest::usualMasterStore();
    if (std::filesystem::exists(kvxtest::fromUtf8(system)))
        GTEST_SKIP() << "this host has a store of its own";
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_MASTER_LOCATION), system);
    EXPECT_EQ(IviConfig_Deserialize(store_, system.c_str()), VI_SUCCESS);
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_ACTUAL_LOCATION), system);
    IviDriverSessionHandle found = nullptr;
    EXPECT_EQ(IviConfig_GetDriverSession(store_, "KVX2800T", &found), IVICONFIG_ERROR_SESSION_NOT_FOUND);
    EXPECT_EQ(IviConfig_Deserialize(store_, system.c_str()), IVICONFIG_ERROR_ALREADY_DESERIALIZED);
}

TEST_F(ConfigServer, LocationsAreTheStoresOwnWhateverTheFileSays)
{
    const EnvironmentVariable chosen("IVICONFIGSERVERDEFAULT", "/some/store.xml");
    ASSERT_EQ(load("<IviConfigStore><MasterLocation>/m</MasterLocation><ProcessDefaultLocation>/p"
                   "</ProcessDefaultLocation><ActualLocation>/a</ActualLocation></IviConfigStore>"),
              VI_SUCCESS);
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_MASTER_LOCATION), kvxtest::usualMasterStore());
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_PROC_DEFAULT_LOCATION), "/some/store.xml");
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_ACTUAL_LOCATION), folder_ / "store.xml");
}

TEST_F(ConfigServer, LocationsFollowTheBufferRules)
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

TEST_F(ConfigServer, StoresAreReadInParallel)
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

TEST_F(ConfigServer, OneStoreIsReadByManyThreads)
{
    const kvxtest::StoreNames names{{"BenchSupply", "KVX2800T"}, {"KVX2800T"}};
    ASSERT_EQ(load(kvxtest::kExampleStore), VI_SUCCESS);
    const std::string expected = kvxtest::listStore(store_, names);
    inParallel([&] {
        for (int round = 0; round < 20; ++round)
            EXPECT_EQ(kvxtest::listStore(store_, names), expected);
    });
}

TEST_F(ConfigServer, OneOfManyThreadsLoadsTheStore)
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

TEST_F(ConfigServer, ThreadsHaveErrorTextsOfTheirOwn)
{
    IviDriverSessionHandle found = nullptr;
    EXPECT_EQ(IviConfig_GetDriverSession(store_, "Gone", &found), IVICONFIG_ERROR_SESSION_NOT_FOUND);
    std::thread([] { EXPECT_EQ(errorText(), ""); }).join();
    EXPECT_NE(errorText(), "");
}

} // namespace
