// Where the master store is on Windows: the variable, the registry, the common folder for data.

#include "tests/support/platform/host_places.h"
#include "tests/support/platform/own_registry_windows.h"
#include "tests/support/platform/store_fixture.h"
#include "tests/support/utf8_path.h"

#include <array>

namespace
{

using namespace kvxtest;

class MasterStore : public StoreTest
{
protected:
    std::string masterLocation() const { return storeText(IVICONFIG_VAL_CONFIG_STORE_MASTER_LOCATION); }

    /// Expects that the master location cannot be told, for the reason that the thread's error text gives.
    void expectNone(ViStatus status, const std::string& reason) const
    {
        std::array<ViChar, 8> text{"before"};
        EXPECT_EQ(IviConfig_GetConfigStorePropertyViString(store_, IVICONFIG_VAL_CONFIG_STORE_MASTER_LOCATION, 8,
                                                           text.data()),
                  status);
        EXPECT_STREQ(text.data(), "before");
        EXPECT_EQ(errorText(), "IviConfigServer.IviConfigStore.1: GetConfigStorePropertyViString: " + reason);
    }

    /// The path of something in the test's folder, for the registry.
    std::wstring wide(const std::string& name) const { return fromUtf8(folder_ / name).wstring(); }

    OwnRegistry registry_;
};

TEST_F(MasterStore, IsInTheRegisteredFolder)
{
    const std::string path = writeFile("ivi\\IviConfigurationStore.xml", kBenchStore);
    OwnRegistry::setFolder(wide("ivi"));
    EXPECT_EQ(masterLocation(), path);
    EXPECT_EQ(IviConfig_Deserialize(store_, masterLocation().c_str()), VI_SUCCESS);
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_NAME), "Bench");
}

TEST_F(MasterStore, IsFoundInAFolderWithLettersOfAnyScript)
{
    const std::string name = "\xCE\xA4\xCF\x81\xCE\xBF\xCF\x86\xCE\xAE \xE9\x9B\xBB\xE6\xBA\x90";
    const std::string path = writeFile(name + "\\IviConfigurationStore.xml", kBenchStore);
    OwnRegistry::setFolder(wide(name));
    EXPECT_EQ(masterLocation(), path);
    EXPECT_EQ(IviConfig_Deserialize(store_, path.c_str()), VI_SUCCESS);
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_ACTUAL_LOCATION), path);
}

TEST_F(MasterStore, IsServedEmptyWhenTheRegisteredFolderHasNone)
{
    OwnRegistry::setFolder(wide("none"));
    const std::string path = folder_ / "none\\IviConfigurationStore.xml";
    EXPECT_EQ(masterLocation(), path);
    EXPECT_EQ(IviConfig_Deserialize(store_, path.c_str()), VI_SUCCESS);
    IviDriverSessionHandle found = nullptr;
    EXPECT_EQ(IviConfig_GetDriverSession(store_, "KVX2800T", &found), IVICONFIG_ERROR_SESSION_NOT_FOUND);
}

TEST_F(MasterStore, NameInTheEnvironmentComesFirst)
{
    writeFile("ivi\\IviConfigurationStore.xml", kBenchStore);
    OwnRegistry::setFolder(wide("ivi"));
    const std::string own = writeFile("\xE5\x80\x89\xE5\xBA\xAB/own.xml", kBenchStore);
    {
        const EnvironmentVariable registered("IVI_MASTER_STORE", own.c_str());
        EXPECT_EQ(masterLocation(), own);
    }
    const EnvironmentVariable empty("IVI_MASTER_STORE", "");
    EXPECT_EQ(masterLocation(), folder_ / "ivi\\IviConfigurationStore.xml");
}

TEST_F(MasterStore, SeparatorsAtTheEndOfTheRegisteredFolderDoNotCount)
{
    OwnRegistry::setFolder(wide("ivi") + L"\\/");
    EXPECT_EQ(masterLocation(), folder_ / "ivi\\IviConfigurationStore.xml");
}

TEST_F(MasterStore, VariablesInTheRegisteredFolderAreReplaced)
{
    const EnvironmentVariable place("KVX_TEST_PLACE", toUtf8(folder_.path()).c_str());
    OwnRegistry::setFolder(L"%KVX_TEST_PLACE%\\ivi", REG_EXPAND_SZ);
    EXPECT_EQ(masterLocation(), folder_ / "ivi\\IviConfigurationStore.xml");
}

TEST_F(MasterStore, IsInTheCommonFolderForDataWithoutARegisteredOne)
{
    EXPECT_EQ(masterLocation(), usualMasterStore());
    OwnRegistry::setFolder(L"");
    EXPECT_EQ(masterLocation(), usualMasterStore());
    const DWORD number = 42;
    OwnRegistry::setFolder(REG_DWORD, &number, sizeof number);
    EXPECT_EQ(masterLocation(), usualMasterStore());
}

TEST_F(MasterStore, ProcessDefaultMayHaveLettersOfAnyScript)
{
    const std::string path = "C:\\\xCE\xA4\xCF\x81\xCE\xBF\xCF\x86\xCE\xAE\\\xE9\x9B\xBB\xE6\xBA\x90.xml";
    const EnvironmentVariable chosen("IVICONFIGSERVERDEFAULT", path.c_str());
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_PROC_DEFAULT_LOCATION), path);
}

TEST_F(MasterStore, IsTheRegisteredFileOfEitherView)
{
    const std::string path = writeFile("ivi\\bench.xml", kBenchStore);
    for (const View view : {View::Bits64, View::Bits32}) {
        OwnRegistry::setStore(View::Bits32, L"");
        OwnRegistry::setStore(View::Bits64, L"");
        EXPECT_EQ(masterLocation(), usualMasterStore());
        OwnRegistry::setStore(view, wide("ivi\\bench.xml"));
        EXPECT_EQ(masterLocation(), path);
    }
    EXPECT_EQ(IviConfig_Deserialize(store_, path.c_str()), VI_SUCCESS);
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_NAME), "Bench");
}

TEST_F(MasterStore, IsTheRegisteredFileOfOneViewWhenTheOtherHasNoValue)
{
    const std::string path = writeFile("bench.xml", kBenchStore);
    OwnRegistry::setStore(View::Bits32, wide("bench.xml"));
    EXPECT_EQ(masterLocation(), path);
}

TEST_F(MasterStore, MayBeRegisteredInBothViews)
{
    const std::string path = writeFile("bench.xml", kBenchStore);
    OwnRegistry::setStore(View::Bits32, wide("bench.xml"));
    OwnRegistry::setStore(View::Bits64, wide("bench.xml"));
    EXPECT_EQ(masterLocation(), path);
    OwnRegistry::setStore(View::Bits32, wide("BENCH.XML"));
    OwnRegistry::setStore(View::Bits64, wide("bench.xml"));
    EXPECT_EQ(masterLocation(), path);
}

TEST_F(MasterStore, RegisteredDifferentlyInBothViewsIsAConflict)
{
    if (!OwnRegistry::hasTwoViews())
        GTEST_SKIP() << "this host has one view of the test's registry";
    OwnRegistry::setStore(View::Bits32, fromUtf8(writeFile("32.xml", kBenchStore)).wstring());
    OwnRegistry::setStore(View::Bits64, fromUtf8(writeFile("64.xml", kBenchStore)).wstring());
    expectNone(IVICONFIG_ERROR_MASTER_REGISTRY_CONFLICT,
               "the registry names different master configuration stores for programs of 32 and 64 bits");
    EXPECT_EQ(static_cast<ViUInt32>(IVICONFIG_ERROR_MASTER_REGISTRY_CONFLICT), 0xBFFA1223U);
    const std::string own = writeFile("own.xml", kBenchStore);
    const EnvironmentVariable chosen("IVI_MASTER_STORE", own.c_str());
    EXPECT_EQ(masterLocation(), own);
}

TEST_F(MasterStore, RegisteredFileComesBeforeTheRegisteredFolder)
{
    writeFile("ivi\\IviConfigurationStore.xml", kBenchStore);
    OwnRegistry::setFolder(wide("ivi"));
    const std::string path = writeFile("bench.xml", kBenchStore);
    OwnRegistry::setStore(View::Bits64, wide("bench.xml"));
    EXPECT_EQ(masterLocation(), path);
}

TEST_F(MasterStore, RegisteredFileThatIsMissingIsAnError)
{
    OwnRegistry::setFolder(wide("ivi"));
    OwnRegistry::setStore(View::Bits64, wide("missing.xml"));
    expectNone(IVICONFIG_ERROR_MASTER_NOT_FOUND, "the master configuration store is missing");
}

TEST_F(MasterStore, VariablesInTheRegisteredFileAreReplaced)
{
    const std::string path = writeFile("bench.xml", kBenchStore);
    const EnvironmentVariable place("KVX_TEST_PLACE", toUtf8(folder_.path()).c_str());
    OwnRegistry::setStore(View::Bits32, L"%KVX_TEST_PLACE%\\bench.xml", REG_EXPAND_SZ);
    EXPECT_EQ(masterLocation(), path);
}

TEST_F(MasterStore, RegisteredFileThatIsNoTextDoesNotCount)
{
    const DWORD number = 42;
    OwnRegistry::setStore(View::Bits64, REG_DWORD, &number, sizeof number);
    OwnRegistry::setFolder(wide("ivi"));
    EXPECT_EQ(masterLocation(), folder_ / "ivi\\IviConfigurationStore.xml");
}

} // namespace
