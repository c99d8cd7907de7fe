// Where the master store is on Windows: the variable, the registry, the common folder for data.

#include "host_places.h"
#include "store_fixture.h"
#include "utf8_path.h"

#include <windows.h>

#include <memory>

namespace
{

using namespace kvxtest;

/// Shows this process, and nobody else, a local machine's registry that is empty but for what the test writes.
class OwnRegistry
{
public:
    OwnRegistry()
    {
        HKEY key = nullptr;
        EXPECT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, name_.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS,
                                  nullptr, &key, nullptr),
                  ERROR_SUCCESS);
        EXPECT_EQ(RegOverridePredefKey(HKEY_LOCAL_MACHINE, key), ERROR_SUCCESS);
        RegCloseKey(key);
    }
    ~OwnRegistry()
    {
        EXPECT_EQ(RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr), ERROR_SUCCESS);
        EXPECT_EQ(RegDeleteTreeW(HKEY_CURRENT_USER, name_.c_str()), ERROR_SUCCESS);
    }
    OwnRegistry(const OwnRegistry&) = delete;
    OwnRegistry(OwnRegistry&&) = delete;
    OwnRegistry& operator=(const OwnRegistry&) = delete;
    OwnRegistry& operator=(OwnRegistry&&) = delete;

    /// The value that names the folder of the master store.
    static void setFolder(DWORD type, const void* value, std::size_t bytes)
    {
        HKEY key = nullptr;
        ASSERT_EQ(RegCreateKeyExW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\IVI", 0, nullptr, REG_OPTION_VOLATILE, KEY_SET_VALUE,
                                  nullptr, &key, nullptr),
                  ERROR_SUCCESS);
        EXPECT_EQ(
            RegSetValueExW(key, L"IviDataDir", 0, type, static_cast<const BYTE*>(value), static_cast<DWORD>(bytes)),
            ERROR_SUCCESS);
        RegCloseKey(key);
    }

    static void setFolder(const std::wstring& folder, DWORD type = REG_SZ)
    {
        setFolder(type, folder.c_str(), (folder.size() + 1) * sizeof(wchar_t));
    }

private:
    std::wstring name_ = L"Software\\kvx-test-" + std::to_wstring(GetCurrentProcessId());
};

class MasterStore : public StoreTest
{
protected:
    std::string masterLocation() const { return storeText(IVICONFIG_VAL_CONFIG_STORE_MASTER_LOCATION); }

    std::wstring folder(const std::string& name) const { return fromUtf8(folder_ / name).wstring(); }

    OwnRegistry registry_;
};

TEST_F(MasterStore, IsInTheRegisteredFolder)
{
    const std::string path = writeFile("ivi\\IviConfigurationStore.xml", kBenchStore);
    OwnRegistry::setFolder(folder("ivi"));
    EXPECT_EQ(masterLocation(), path);
    EXPECT_EQ(IviConfig_Deserialize(store_, masterLocation().c_str()), VI_SUCCESS);
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_NAME), "Bench");
}

TEST_F(MasterStore, IsFoundInAFolderWithLettersOfAnyScript)
{
    const std::string name = "\xCE\xA4\xCF\x81\xCE\xBF\xCF\x86\xCE\xAE \xE9\x9B\xBB\xE6\xBA\x90";
    const std::string path = writeFile(name + "\\IviConfigurationStore.xml", kBenchStore);
    OwnRegistry::setFolder(folder(name));
    EXPECT_EQ(masterLocation(), path);
    EXPECT_EQ(IviConfig_Deserialize(store_, path.c_str()), VI_SUCCESS);
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_ACTUAL_LOCATION), path);
}

TEST_F(MasterStore, IsServedEmptyWhenTheRegisteredFolderHasNone)
{
    OwnRegistry::setFolder(folder("none"));
    const std::string path = folder_ / "none\\IviConfigurationStore.xml";
    EXPECT_EQ(masterLocation(), path);
    EXPECT_EQ(IviConfig_Deserialize(store_, path.c_str()), VI_SUCCESS);
    IviDriverSessionHandle found = nullptr;
    EXPECT_EQ(IviConfig_GetDriverSession(store_, "KVX2800T", &found), IVICONFIG_ERROR_SESSION_NOT_FOUND);
}

TEST_F(MasterStore, NameInTheEnvironmentComesFirst)
{
    writeFile("ivi\\IviConfigurationStore.xml", kBenchStore);
    OwnRegistry::setFolder(folder("ivi"));
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
    OwnRegistry::setFolder(folder("ivi") + L"\\/");
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

} // namespace
