#pragma once

#include "tests/support/environment.h"
#include "tests/support/temporary_folder.h"

#include <IviCShared.h>
#include <IviConfigServer.h>

#include <gtest/gtest.h>

#include <string>

namespace kvxtest
{

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

    TemporaryFolder folder_;
    IviConfigStoreHandle store_ = nullptr;

private:
    EnvironmentVariable noMaster_{"IVI_MASTER_STORE", nullptr};
    EnvironmentVariable noProcessDefault_{"IVICONFIGSERVERDEFAULT", nullptr};
    EnvironmentVariable noUserConfig_{"XDG_CONFIG_HOME", "/no-such-folder"};
};

/// A store with one hardware asset, two driver sessions and logical names.
extern const char* const kBenchStore;

} // namespace kvxtest
