#include "platform/config_server/handle_table.h"
#include "platform/config_server/store_file.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/platform/example_store.h"
#include "tests/support/platform/store_listing.h"

#include <IviCShared.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace
{

using config_server::handles;
using kvxtest::obtain;
using kvxtest::OwnedHandle;

const kvxtest::StoreNames kNames{{"BenchSupply", "KVX2800T", "Gone"}, {"KVX2800T", "Gone"}};

/// A store that holds a text without a file.
IviConfigStoreHandle storeOf(const std::string& text)
{
    return handles().add({.kind = config_server::kStore,
                          .store = std::make_shared<config_server::Store>(config_server::parseStore(text))});
}

class Handles : public testing::Test
{
protected:
    void TearDown() override
    {
        IviConfig_ClearError();
        EXPECT_EQ(handles().size(), 0U) << "live handles";
    }
};

TEST_F(Handles, NoneIsLeftWhenAllAreGivenBack)
{
    const IviConfigStoreHandle store = storeOf(kvxtest::kExampleStore);
    EXPECT_EQ(handles().size(), 1U);
    EXPECT_NE(kvxtest::listStore(store, kNames), "");
    EXPECT_EQ(handles().size(), 1U);
    EXPECT_EQ(IviConfig_Close(store), VI_SUCCESS);
}

TEST_F(Handles, RefusedCallsLeaveNone)
{
    const IviConfigStoreHandle store = storeOf(kvxtest::kExampleStore);
    {
        const OwnedHandle session = obtain(IviConfig_GetDriverSession, store, "KVX2800T");
        IviConfigHandle result = nullptr;
        IviConfig_GetDriverSession(store, "Gone", &result);
        IviConfig_GetSessionVirtualNameCollection(store, &result);
        IviConfig_GetSessionVirtualNameCollection(session, nullptr);
        IviConfig_GetVirtualNameItemByIndex(session, 1, &result);
        IviConfig_Initialize(nullptr);
        EXPECT_EQ(handles().size(), 2U);
    }
    EXPECT_EQ(IviConfig_Close(store), VI_SUCCESS);
}

TEST_F(Handles, AbsentReferenceTakesNone)
{
    const IviConfigStoreHandle store = storeOf("<IviConfigStore><DriverSessions><IviDriverSession><Name>S</Name>"
                                               "</IviDriverSession></DriverSessions></IviConfigStore>");
    {
        const OwnedHandle session = obtain(IviConfig_GetDriverSession, store, "S");
        EXPECT_EQ(static_cast<IviConfigHandle>(obtain(IviConfig_GetSessionHardwareAssetReference, session)), nullptr);
        EXPECT_EQ(handles().size(), 2U);
    }
    EXPECT_EQ(IviConfig_Close(store), VI_SUCCESS);
}

TEST_F(Handles, LastHandleFreesTheFilesElements)
{
    config_server::Document document = config_server::parseStore(kvxtest::kExampleStore);
    const std::weak_ptr<const config_server::Element> observed = document;
    const IviConfigStoreHandle store = handles().add(
        {.kind = config_server::kStore, .store = std::make_shared<config_server::Store>(std::move(document))});
    {
        const OwnedHandle modules = obtain(IviConfig_GetConfigStoreSoftwareModuleCollection, store);
        EXPECT_EQ(IviConfig_Close(store), VI_SUCCESS);
        EXPECT_FALSE(observed.expired());
    }
    EXPECT_TRUE(observed.expired());
}

TEST_F(Handles, PlainSessionsAreSessions)
{
    const auto document = config_server::parseStore(
        "<IviConfigStore><HardwareAssets><IviHardwareAsset id='h'><Name>H</Name></IviHardwareAsset></HardwareAssets>"
        "<SoftwareModules><IviSoftwareModule id='m'><Name>M</Name></IviSoftwareModule></SoftwareModules>"
        "<Sessions><IviSession id='s'><Name>S</Name><DataComponents><IviString/></DataComponents>"
        "<IviHardwareAsset idref='h'/><IviSoftwareModuleRef idref='m'/>"
        "<VirtualNames><IviVirtualName/></VirtualNames></IviSession></Sessions></IviConfigStore>");
    ASSERT_NE(document, nullptr);
    const config_server::Document element(document, document->child("Sessions")->child("IviSession"));
    const OwnedHandle session(handles().add({.kind = config_server::kSession, .element = element}));
    const OwnedHandle asset = obtain(IviConfig_GetSessionHardwareAssetReference, session);
    EXPECT_EQ(kvxtest::readText(IviConfig_GetHardwareAssetPropertyViString, asset, 1), "H");
    EXPECT_NE(static_cast<IviConfigHandle>(obtain(IviConfig_GetSessionSoftwareModuleReference, session)), nullptr);
    ViInt32 count = 0;
    const OwnedHandle names = obtain(IviConfig_GetSessionVirtualNameCollection, session);
    EXPECT_EQ(IviConfig_GetVirtualNameCount(names, &count), VI_SUCCESS);
    EXPECT_EQ(count, 1);
    const OwnedHandle data = obtain(IviConfig_GetConfigComponentDataComponentCollection, session);
    EXPECT_EQ(IviConfig_GetDataComponentCount(data, &count), VI_SUCCESS);
    EXPECT_EQ(count, 1);
    ViBoolean flag = 7;
    EXPECT_EQ(IviConfig_GetDriverSessionPropertyViBoolean(session, 4, &flag), IVICONFIG_ERROR_INVALID_HANDLE);
    EXPECT_EQ(flag, 7);
}

/// How many allocations of the call can fail; each failure is told and leaves no handle.
template <class Function>
std::size_t failuresOf(Function list, IviConfigStoreHandle store)
{
    for (std::size_t nth = 1;; ++nth) {
        IviConfigHandle items = store;
        ViStatus status = VI_SUCCESS;
        {
            const kvxtest::NthAllocationFailure failure(nth);
            status = list(store, &items);
        }
        const OwnedHandle owned(items);
        if (status == VI_SUCCESS)
            return nth - 1;
        EXPECT_EQ(status, IVI_ERROR_OUT_OF_MEMORY);
        EXPECT_EQ(items, nullptr);
        EXPECT_EQ(handles().size(), 1U);
    }
}

TEST_F(Handles, ListingFailsAtAnyAllocationWithoutLeavingAHandle)
{
    const IviConfigStoreHandle store = storeOf(kvxtest::kExampleStore);
    EXPECT_GT(failuresOf(IviConfig_GetConfigStoreDriverSessionCollection, store), 2U);
    EXPECT_GT(failuresOf(IviConfig_GetConfigStoreLogicalNameCollection, store), 2U);
    EXPECT_EQ(IviConfig_Close(store), VI_SUCCESS);
}

TEST_F(Handles, FunctionsWithoutMemorySaySo)
{
    const IviConfigStoreHandle store = storeOf(kvxtest::kExampleStore);
    {
        const OwnedHandle session = obtain(IviConfig_GetDriverSession, store, "KVX2800T");
        const OwnedHandle names = obtain(IviConfig_GetSessionVirtualNameCollection, session);
        const OwnedHandle data = obtain(IviConfig_GetConfigComponentDataComponentCollection, session);
        const OwnedHandle sessions = obtain(IviConfig_GetConfigStoreDriverSessionCollection, store);
        const OwnedHandle logicalNames = obtain(IviConfig_GetConfigStoreLogicalNameCollection, store);
        const OwnedHandle logicalName = obtain(IviConfig_GetLogicalNameItemByIndex, logicalNames, 1);
        const auto expectNoMemory = [](auto function, auto... arguments) {
            int dummy = 0;
            IviConfigHandle result = &dummy;
            ViStatus status = VI_SUCCESS;
            {
                const kvxtest::AllocationFailure failure(1);
                status = function(arguments..., &result);
            }
            EXPECT_EQ(status, IVI_ERROR_OUT_OF_MEMORY);
            EXPECT_EQ(result, nullptr);
        };
        const IviConfigHandle sessionHandle = session;
        const IviConfigHandle namesHandle = names;
        const IviConfigHandle dataHandle = data;
        const IviConfigHandle sessionsHandle = sessions;
        const IviConfigHandle logicalNamesHandle = logicalNames;
        const IviConfigHandle logicalNameHandle = logicalName;
        expectNoMemory(IviConfig_Initialize);
        expectNoMemory(IviConfig_GetDriverSession, store, "KVX2800T");
        expectNoMemory(IviConfig_GetConfigStoreSoftwareModuleCollection, store);
        expectNoMemory(IviConfig_GetConfigStoreDriverSessionCollection, store);
        expectNoMemory(IviConfig_GetConfigStoreLogicalNameCollection, store);
        expectNoMemory(IviConfig_GetDriverSessionItemByIndex, sessionsHandle, 1);
        expectNoMemory(IviConfig_GetDriverSessionItemByName, sessionsHandle, "KVX2800T");
        expectNoMemory(IviConfig_GetLogicalNameItemByIndex, logicalNamesHandle, 1);
        expectNoMemory(IviConfig_GetLogicalNameItemByName, logicalNamesHandle, "BenchSupply");
        expectNoMemory(IviConfig_GetLogicalNameSessionReference, logicalNameHandle);
        expectNoMemory(IviConfig_GetSessionSoftwareModuleReference, sessionHandle);
        expectNoMemory(IviConfig_GetSessionVirtualNameCollection, sessionHandle);
        expectNoMemory(IviConfig_GetVirtualNameItemByIndex, namesHandle, 1);
        expectNoMemory(IviConfig_GetDataComponentItemByName, dataHandle, "Configurable Initial Settings");
        EXPECT_EQ(handles().size(), 7U);
    }
    EXPECT_EQ(IviConfig_Close(store), VI_SUCCESS);
}

} // namespace
