#pragma once

#include <IviCShared.h>
#include <IviConfigServer.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace kvxtest
{

/// Sets an environment variable, or removes it, and puts it back at the end. For tests with one thread.
class EnvironmentVariable
{
public:
    EnvironmentVariable(const char* name, const char* value);
    ~EnvironmentVariable();
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;
    EnvironmentVariable(EnvironmentVariable&&) = delete;
    EnvironmentVariable& operator=(EnvironmentVariable&&) = delete;

private:
    std::string name_;
    std::string before_;
    bool wasSet_;
};

/// An empty configuration store, a folder for store files, and an environment that names no store.
class StoreTest : public testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    /// Writes a file into the test's folder and tells its full path.
    std::string writeFile(const std::string& name, const std::string& text) const;

    /// Deserialize of a file with this text.
    ViStatus load(const std::string& text);

    std::string storeText(ViInt32 property) const;
    static std::string sessionText(IviDriverSessionHandle session, ViInt32 property);
    static std::string assetText(IviHardwareAssetHandle asset, ViInt32 property);

    /// The thread's error text, which is cleared.
    static std::string errorText();

    std::filesystem::path folder_;
    IviConfigStoreHandle store_ = nullptr;

private:
    EnvironmentVariable noMaster_{"IVI_MASTER_STORE", nullptr};
    EnvironmentVariable noProcessDefault_{"IVICONFIGSERVERDEFAULT", nullptr};
    EnvironmentVariable noUserConfig_{"XDG_CONFIG_HOME", "/no-such-folder"};
};

/// A store with one hardware asset, two driver sessions and logical names.
extern const char* const kBenchStore;

} // namespace kvxtest
