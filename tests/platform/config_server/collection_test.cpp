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
    constexpr ViInt32 kItems = 20000;
    std::string items;
    for (ViInt32 item = 1; item <= kItems; ++item) {
        const std::string number = std::to_string(item);
        items.append("<IviInteger><Name>n").append(number).append("</Name><Value>").append(number);
        items += "</Value></IviInteger>";
    }
    ASSERT_EQ(load(sessionOf("<DataComponents>" + items + "</DataComponents>")), VI_SUCCESS);
    const OwnedHandle components = obtain(IviConfig_GetConfigComponentDataComponentCollection, session());
    for (ViInt32 item = 1; item <= kItems; ++item) {
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
