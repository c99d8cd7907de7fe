#include "tests/support/platform/store_objects_fixture.h"

#include <gmock/gmock.h>

#include <string>

namespace
{

using namespace kvxtest;
using testing::ElementsAre;

TEST_F(StoreObjects, MissingCollectionsAreEmpty)
{
    ASSERT_EQ(load("<IviConfigStore><SoftwareModules><IviSoftwareModule id='m'><Name>M</Name></IviSoftwareModule>"
                   "</SoftwareModules><DriverSessions><IviDriverSession id='s'><Name>S</Name>"
                   "<IviSoftwareModuleRef idref='m'/></IviDriverSession></DriverSessions></IviConfigStore>"),
              VI_SUCCESS);
    EXPECT_THAT(virtualNames(session()), ElementsAre());
    EXPECT_THAT(componentNames(obtain(IviConfig_GetConfigComponentDataComponentCollection, session())), ElementsAre());
    EXPECT_THAT(physicalNames(obtain(IviConfig_GetSessionSoftwareModuleReference, session())), ElementsAre());
}

TEST_F(StoreObjects, NewStoreListsNothing)
{
    EXPECT_THAT(driverSessions(), ElementsAre());
    EXPECT_THAT(logicalNames(), ElementsAre());
}

TEST_F(StoreObjects, StoreWithoutNamesListsNothing)
{
    ASSERT_EQ(load("<IviConfigStore><DriverSessions/><LogicalNames>text</LogicalNames></IviConfigStore>"), VI_SUCCESS);
    EXPECT_THAT(driverSessions(), ElementsAre());
    EXPECT_THAT(logicalNames(), ElementsAre());
}

TEST_F(StoreObjects, DriverSessionsAndLogicalNamesAreListedInTheOrderOfTheFile)
{
    ASSERT_EQ(load(kBenchStore), VI_SUCCESS);
    EXPECT_THAT(driverSessions(), ElementsAre("KVX2800T", "Shadowed", "Plain", "Lost"));
    EXPECT_THAT(logicalNames(), ElementsAre("BenchSupply", "Shadowed", "Plain", "Dangling", "WrongKind"));
}

TEST_F(StoreObjects, ListedDriverSessionsAreThoseOfTheFileWhateverLogicalNamesLeadTo)
{
    ASSERT_EQ(load(kBenchStore), VI_SUCCESS);
    const OwnedHandle sessions = obtain(IviConfig_GetConfigStoreDriverSessionCollection, store_);
    const OwnedHandle first = obtain(IviConfig_GetDriverSessionItemByIndex, sessions, 1);
    EXPECT_EQ(sessionText(first, IVICONFIG_VAL_DRIVER_SESSION_DRIVER_SETUP), "Model:KVX2833T");
    EXPECT_EQ(assetText(obtain(IviConfig_GetSessionHardwareAssetReference, first),
                        IVICONFIG_VAL_HARDWARE_ASSET_IO_DESCRIPTOR),
              "TCPIP0::127.0.0.1::5025::SOCKET");
    const OwnedHandle shadowed = obtain(IviConfig_GetDriverSessionItemByName, sessions, "Shadowed");
    EXPECT_EQ(sessionText(shadowed, IVICONFIG_VAL_SESSION_SOFTWARE_MODULE_NAME), "");
    EXPECT_EQ(static_cast<IviConfigHandle>(obtain(IviConfig_GetSessionHardwareAssetReference, shadowed)), nullptr);
}

TEST_F(StoreObjects, LogicalNamesLeadToDriverSessionsToSessionsOrNowhere)
{
    ASSERT_EQ(load(kBenchStore), VI_SUCCESS);
    const OwnedHandle names = obtain(IviConfig_GetConfigStoreLogicalNameCollection, store_);
    const auto target = [&names](const char* name) {
        const OwnedHandle session =
            obtain(IviConfig_GetLogicalNameSessionReference, obtain(IviConfig_GetLogicalNameItemByName, names, name));
        return session == nullptr ? "nowhere" : readText(IviConfig_GetSessionPropertyViString, session, 1);
    };
    EXPECT_EQ(target("BenchSupply"), "KVX2800T");
    EXPECT_EQ(target("Shadowed"), "KVX2800T");
    EXPECT_EQ(target("Plain"), "Other");
    EXPECT_EQ(target("Dangling"), "nowhere");
    EXPECT_EQ(target("WrongKind"), "nowhere");
    EXPECT_EQ(errorText(), "");
}

TEST_F(StoreObjects, LogicalNameThatLeadsToADriverSessionOpensIt)
{
    ASSERT_EQ(load(kBenchStore), VI_SUCCESS);
    const OwnedHandle names = obtain(IviConfig_GetConfigStoreLogicalNameCollection, store_);
    const OwnedHandle driverSession =
        obtain(IviConfig_GetLogicalNameSessionReference, obtain(IviConfig_GetLogicalNameItemByIndex, names, 1));
    EXPECT_EQ(sessionText(driverSession, IVICONFIG_VAL_DRIVER_SESSION_DRIVER_SETUP), "Model:KVX2833T");
    const OwnedHandle session =
        obtain(IviConfig_GetLogicalNameSessionReference, obtain(IviConfig_GetLogicalNameItemByIndex, names, 3));
    EXPECT_EQ(IviConfig_GetDriverSessionPropertyViString(session, 1, 0, nullptr), IVICONFIG_ERROR_INVALID_HANDLE);
}

TEST_F(StoreObjects, LogicalNamesAreReadWithTheirDescriptions)
{
    ASSERT_EQ(load("<IviConfigStore><LogicalNames><IviLogicalName><Name> Rack </Name><Description>left</Description>"
                   "</IviLogicalName><IviLogicalName idref='x'><Name>Refers</Name></IviLogicalName><IviSession>"
                   "<Name>None</Name></IviSession><IviLogicalName/></LogicalNames></IviConfigStore>"),
              VI_SUCCESS);
    EXPECT_THAT(logicalNames(), ElementsAre("Rack", ""));
    const OwnedHandle first =
        obtain(IviConfig_GetLogicalNameItemByIndex, obtain(IviConfig_GetConfigStoreLogicalNameCollection, store_), 1);
    EXPECT_EQ(readText(IviConfig_GetLogicalNamePropertyViString, first, IVICONFIG_VAL_LOGICAL_NAME_DESCRIPTION),
              "left");
}

TEST_F(StoreObjects, DriverSessionThatIsReferredToStandsForItself)
{
    ASSERT_EQ(load("<IviConfigStore><DriverSessions><IviDriverSession idref='s'/><IviDriverSession idref='gone'/>"
                   "<IviSession><Name>P</Name></IviSession></DriverSessions>"
                   "<Sessions><IviDriverSession id='s'><Name>S</Name></IviDriverSession></Sessions></IviConfigStore>"),
              VI_SUCCESS);
    EXPECT_THAT(driverSessions(), ElementsAre("S"));
}

TEST_F(StoreObjects, NewStoreHasNoSoftwareModules)
{
    const OwnedHandle modules = obtain(IviConfig_GetConfigStoreSoftwareModuleCollection, store_);
    IviSoftwareModuleHandle module = store_;
    EXPECT_EQ(IviConfig_GetSoftwareModuleItemByName(modules, "KVX2800T", &module), IVICONFIG_ERROR_NOT_EXIST);
    EXPECT_EQ(module, nullptr);
}

TEST_F(StoreObjects, CollectionHandedOutBeforeLoadingStaysAsItWas)
{
    const OwnedHandle before = obtain(IviConfig_GetConfigStoreSoftwareModuleCollection, store_);
    ASSERT_EQ(load("<IviConfigStore><SoftwareModules><IviSoftwareModule id='m'><Name>M</Name></IviSoftwareModule>"
                   "</SoftwareModules></IviConfigStore>"),
              VI_SUCCESS);
    IviSoftwareModuleHandle module = nullptr;
    EXPECT_EQ(IviConfig_GetSoftwareModuleItemByName(before, "M", &module), IVICONFIG_ERROR_NOT_EXIST);
    const OwnedHandle after = obtain(IviConfig_GetConfigStoreSoftwareModuleCollection, store_);
    EXPECT_NE(static_cast<IviConfigHandle>(obtain(IviConfig_GetSoftwareModuleItemByName, after, "M")), nullptr);
}

TEST_F(StoreObjects, ItemsKeepTheOrderOfTheFileAndUnknownElementsAreNone)
{
    ASSERT_EQ(load(sessionOf("<VirtualNames>text<Unknown><Name>u</Name></Unknown>"
                             "<IviVirtualName><Name>b</Name></IviVirtualName><IviPhysicalName><Name>p</Name>"
                             "</IviPhysicalName><IviVirtualName><Name> a </Name></IviVirtualName>"
                             "<IviVirtualName/></VirtualNames>")),
              VI_SUCCESS);
    EXPECT_THAT(virtualNames(session()), ElementsAre("b", "a", ""));
}

TEST_F(StoreObjects, FirstOfSeveralItemsWithTheSameNameIsFound)
{
    ASSERT_EQ(load(sessionOf("<DataComponents><IviInteger><Name>n</Name><Value>1</Value></IviInteger>"
                             "<IviInteger><Name>n</Name><Value>2</Value></IviInteger></DataComponents>")),
              VI_SUCCESS);
    const OwnedHandle found = obtain(IviConfig_GetDataComponentItemByName,
                                     obtain(IviConfig_GetConfigComponentDataComponentCollection, session()), "n");
    ViInt32 value = 0;
    EXPECT_EQ(IviConfig_GetDataComponentPropertyViInt32(found, 9, &value), VI_SUCCESS);
    EXPECT_EQ(value, 1);
}

TEST_F(StoreObjects, ManyItemsAreReadByIndexAndByName)
{
    constexpr ViInt32 kMany = 20000;
    std::string items;
    for (ViInt32 item = 1; item <= kMany; ++item) {
        const std::string number = std::to_string(item);
        items.append("<IviInteger><Name>n").append(number).append("</Name><Value>").append(number);
        items += "</Value></IviInteger>";
    }
    ASSERT_EQ(load(sessionOf("<DataComponents>" + items + "</DataComponents>")), VI_SUCCESS);
    const OwnedHandle components = obtain(IviConfig_GetConfigComponentDataComponentCollection, session());
    for (ViInt32 item = 1; item <= kMany; ++item) {
        const std::string name = "n" + std::to_string(item);
        const OwnedHandle byIndex = obtain(IviConfig_GetDataComponentItemByIndex, components, item);
        ASSERT_EQ(readText(IviConfig_GetDataComponentPropertyViString, byIndex, 1), name);
        const OwnedHandle byName = obtain(IviConfig_GetDataComponentItemByName, components, name.c_str());
        ViInt32 value = 0;
        ASSERT_EQ(IviConfig_GetDataComponentPropertyViInt32(byName, 9, &value), VI_SUCCESS);
        ASSERT_EQ(value, item);
    }
}

TEST_F(StoreObjects, PhysicalNamesAreTheModulesOwnWithoutNestedOnes)
{
    ASSERT_EQ(load("<IviConfigStore><SoftwareModules><IviSoftwareModule id='m'><Name>M</Name><PhysicalNames>"
                   "<IviPhysicalName><Name>A</Name><RCName>Outer</RCName><PhysicalNames><IviPhysicalName>"
                   "<Name>A1</Name></IviPhysicalName></PhysicalNames><PhysicalRanges><IviPhysicalRange><Name>r</Name>"
                   "<Max>2</Max><Min>1</Min></IviPhysicalRange></PhysicalRanges></IviPhysicalName>"
                   "<IviPhysicalName><Name>B</Name></IviPhysicalName></PhysicalNames></IviSoftwareModule>"
                   "</SoftwareModules></IviConfigStore>"),
              VI_SUCCESS);
    const OwnedHandle module = obtain(IviConfig_GetSoftwareModuleItemByName,
                                      obtain(IviConfig_GetConfigStoreSoftwareModuleCollection, store_), "M");
    EXPECT_THAT(physicalNames(module), ElementsAre("A", "B"));
}

TEST_F(StoreObjects, StructureCannotContainItself)
{
    ASSERT_EQ(load(sessionOf("<DataComponents><IviStructure id='t'><Name>outer</Name><DataComponents>"
                             "<IviStructure idref='t'/><IviStructure id='u'><Name>inner</Name></IviStructure>"
                             "</DataComponents></IviStructure></DataComponents>")),
              VI_SUCCESS);
    const OwnedHandle inner = obtain(IviConfig_GetStructureDataComponentCollection, firstComponent());
    EXPECT_THAT(componentNames(inner), ElementsAre("inner"));
}

TEST_F(StoreObjects, StructuresNest)
{
    const std::string deepest = component("IviInteger", "<Value>42</Value>");
    ASSERT_EQ(loadComponent("IviStructure",
                            "<DataComponents>" +
                                component("IviStructure", "<DataComponents>" + deepest + "</DataComponents>") +
                                "</DataComponents>"),
              VI_SUCCESS);
    const OwnedHandle middle = obtain(IviConfig_GetDataComponentItemByIndex,
                                      obtain(IviConfig_GetStructureDataComponentCollection, firstComponent()), 1);
    const OwnedHandle number =
        obtain(IviConfig_GetDataComponentItemByIndex, obtain(IviConfig_GetStructureDataComponentCollection, middle), 1);
    ViInt32 value = 0;
    EXPECT_EQ(IviConfig_GetDataComponentPropertyViInt32(number, 9, &value), VI_SUCCESS);
    EXPECT_EQ(value, 42);
}

TEST_F(StoreObjects, ComponentsOfAnAssetAreRead)
{
    ASSERT_EQ(load("<IviConfigStore><HardwareAssets><IviHardwareAsset id='h'><Name>H</Name><DataComponents>" +
                   component("IviReal", "<Units>V</Units>") +
                   "</DataComponents></IviHardwareAsset></HardwareAssets><DriverSessions><IviDriverSession id='s'>"
                   "<Name>S</Name><IviHardwareAsset idref='h'/></IviDriverSession></DriverSessions></IviConfigStore>"),
              VI_SUCCESS);
    const OwnedHandle asset = obtain(IviConfig_GetSessionHardwareAssetReference, session());
    EXPECT_THAT(componentNames(obtain(IviConfig_GetConfigComponentDataComponentCollection, asset)),
                ElementsAre("IviReal"));
}

} // namespace
