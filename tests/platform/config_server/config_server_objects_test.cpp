#include "tests/support/platform/store_fixture.h"
#include "tests/support/platform/store_listing.h"

#include <gmock/gmock.h>

#include <array>
#include <limits>
#include <string>
#include <vector>

namespace
{

using kvxtest::obtain;
using kvxtest::OwnedHandle;
using kvxtest::readText;
using testing::ElementsAre;

/// A store with one driver session "S" of this content.
std::string sessionOf(const std::string& content)
{
    return "<IviConfigStore><DriverSessions><IviDriverSession id='s'><Name>S</Name>" + content +
           "</IviDriverSession></DriverSessions></IviConfigStore>";
}

std::string component(const std::string& element, const std::string& content)
{
    return "<" + element + "><Name>" + element + "</Name>" + content + "</" + element + ">";
}

class StoreObjects : public kvxtest::StoreTest
{
protected:
    /// The names of a collection's items in order.
    template <class Count, class Item>
    static std::vector<std::string> namesOf(const OwnedHandle& collection, Count getCount, Item getItem,
                                            kvxtest::TextGetter getText)
    {
        ViInt32 count = -1;
        EXPECT_EQ(getCount(collection, &count), VI_SUCCESS);
        std::vector<std::string> names;
        for (ViInt32 index = 1; index <= count; ++index)
            names.push_back(readText(getText, obtain(getItem, collection, index), 1));
        return names;
    }

    static std::vector<std::string> componentNames(const OwnedHandle& collection)
    {
        return namesOf(collection, IviConfig_GetDataComponentCount, IviConfig_GetDataComponentItemByIndex,
                       IviConfig_GetDataComponentPropertyViString);
    }

    static std::vector<std::string> virtualNames(IviSessionHandle session)
    {
        return namesOf(obtain(IviConfig_GetSessionVirtualNameCollection, session), IviConfig_GetVirtualNameCount,
                       IviConfig_GetVirtualNameItemByIndex, IviConfig_GetVirtualNamePropertyViString);
    }

    static std::vector<std::string> physicalNames(IviSoftwareModuleHandle module)
    {
        return namesOf(obtain(IviConfig_GetSoftwareModulePhysicalNameCollection, module),
                       IviConfig_GetPhysicalNameCount, IviConfig_GetPhysicalNameItemByIndex,
                       IviConfig_GetPhysicalNamePropertyViString);
    }

    OwnedHandle session() const { return obtain(IviConfig_GetDriverSession, store_, "S"); }

    /// The first data component of the driver session "S".
    OwnedHandle firstComponent() const
    {
        return obtain(IviConfig_GetDataComponentItemByIndex,
                      obtain(IviConfig_GetConfigComponentDataComponentCollection, session()), 1);
    }

    ViStatus loadComponent(const std::string& element, const std::string& content)
    {
        return load(sessionOf("<DataComponents>" + component(element, content) + "</DataComponents>"));
    }
};

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

TEST_F(StoreObjects, AbsentDanglingAndMistakenReferencesAreNullHandles)
{
    for (const char* const references :
         {"", "<IviHardwareAsset idref='none'/><IviSoftwareModuleRef idref='none'/>",
          "<IviHardwareAsset idref='s'/><IviSoftwareModuleRef idref='s'/>",
          "<IviHardwareAsset/><IviSoftwareModuleRef/>", "<IviHardwareAsset idref=''/><IviSoftwareModuleRef idref=''/>"})
    {
        IviConfigStoreHandle store = nullptr;
        ASSERT_EQ(IviConfig_Initialize(&store), VI_SUCCESS);
        ASSERT_EQ(IviConfig_Deserialize(store, writeFile("r.xml", sessionOf(references)).c_str()), VI_SUCCESS);
        const OwnedHandle found = obtain(IviConfig_GetDriverSession, store, "S");
        for (const auto get : {IviConfig_GetSessionHardwareAssetReference, IviConfig_GetSessionSoftwareModuleReference})
        {
            IviConfigHandle result = store;
            EXPECT_EQ(get(found, &result), VI_SUCCESS) << references;
            EXPECT_EQ(result, nullptr) << references;
        }
        EXPECT_EQ(IviConfig_Close(store), VI_SUCCESS);
    }
    EXPECT_EQ(errorText(), "");
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

TEST_F(StoreObjects, DriverSessionIsFoundWhereverItIsDefined)
{
    ASSERT_EQ(load("<IviConfigStore><Sessions><IviDriverSession id='s'><Name>S</Name></IviDriverSession></Sessions>"
                   "<DriverSessions><IviDriverSession idref='s'/><IviDriverSession idref='gone'/></DriverSessions>"
                   "</IviConfigStore>"),
              VI_SUCCESS);
    EXPECT_EQ(sessionText(session(), 1), "S");
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

TEST_F(StoreObjects, RangesReadAnyThirtyTwoBitNumber)
{
    ASSERT_EQ(load(sessionOf("<VirtualNames><IviVirtualName><Name>V</Name><VirtualRanges><IviVirtualRange>"
                             "<Max> 2147483647 </Max><Min>-2147483648</Min><StartingPhysicalIndex>+7"
                             "</StartingPhysicalIndex></IviVirtualRange></VirtualRanges></IviVirtualName>"
                             "</VirtualNames>")),
              VI_SUCCESS);
    const OwnedHandle name =
        obtain(IviConfig_GetVirtualNameItemByIndex, obtain(IviConfig_GetSessionVirtualNameCollection, session()), 1);
    const OwnedHandle range =
        obtain(IviConfig_GetVirtualRangeItemByIndex, obtain(IviConfig_GetVirtualNameVirtualRangeCollection, name), 1);
    std::vector<ViInt32> numbers(3);
    for (const ViInt32 property : {2, 3, 4})
        EXPECT_EQ(IviConfig_GetVirtualRangePropertyViInt32(range, property,
                                                           &numbers.at(static_cast<std::size_t>(property) - 2)),
                  VI_SUCCESS);
    EXPECT_THAT(numbers, ElementsAre(std::numeric_limits<ViInt32>::min(), std::numeric_limits<ViInt32>::max(), 7));
}

struct Stored
{
    const char* element;
    const char* content;
    const char* value;
};

class StoredText : public StoreObjects, public testing::WithParamInterface<Stored>
{
};

TEST_P(StoredText, ValueKeepsItsBlanksInAStringOnly)
{
    ASSERT_EQ(loadComponent(GetParam().element, GetParam().content), VI_SUCCESS);
    EXPECT_EQ(readText(IviConfig_GetDataComponentPropertyViString, firstComponent(), 9), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(
    Values, StoredText,
    testing::Values(Stored{"IviString", "<Value>  line 4 \n</Value>", "  line 4 \n"},
                    Stored{"IviString", "<Value></Value>", ""}, Stored{"IviString", "<Value/>", ""},
                    Stored{"IviString", "", ""}, Stored{"IviString", "<Value> \n\t </Value>", ""},
                    Stored{"IviString", "<Value><![CDATA[  ]]></Value>", "  "},
                    Stored{"IviString", "<Value>&#32;&lt;&amp;&gt;&quot;&apos;&#x41;&unknown;</Value>",
                           " <&>\"'A&unknown;"},
                    Stored{"IviString", "<Value>a<!-- not --> b<x/><![CDATA[ <c>]]></Value>", "a b <c>"},
                    Stored{"IviString", "<Value>\xC2\xB5V</Value>", "\xC2\xB5V"},
                    Stored{"IviAPIReference", "<Value> api </Value>", "api"}));

TEST_F(StoreObjects, TextsDividedByNestedTextsStayApart)
{
    ASSERT_EQ(loadComponent("IviString", "<Value>1<x>2<y>3</y>4<z>5</z>6</x>7</Value>"), VI_SUCCESS);
    EXPECT_EQ(readText(IviConfig_GetDataComponentPropertyViString, firstComponent(), 9), "17");
}

TEST_F(StoreObjects, OtherTextsLoseTheBlanksAroundThem)
{
    ASSERT_EQ(loadComponent("IviString", "<Description>\n a b\t</Description><Type> String </Type>"), VI_SUCCESS);
    EXPECT_EQ(readText(IviConfig_GetDataComponentPropertyViString, firstComponent(), 2), "a b");
    EXPECT_EQ(readText(IviConfig_GetDataComponentPropertyViString, firstComponent(), 7), "String");
}

TEST_F(StoreObjects, ValuesThatAreMissingAreZero)
{
    ASSERT_EQ(load(sessionOf("<DataComponents><IviBoolean/><IviInteger/><IviReal/></DataComponents>")), VI_SUCCESS);
    const OwnedHandle components = obtain(IviConfig_GetConfigComponentDataComponentCollection, session());
    ViBoolean flag = 7;
    ViInt32 integer = 7;
    ViReal64 real = 7.0;
    EXPECT_EQ(IviConfig_GetDataComponentPropertyViBoolean(obtain(IviConfig_GetDataComponentItemByIndex, components, 1),
                                                          9, &flag),
              VI_SUCCESS);
    EXPECT_EQ(IviConfig_GetDataComponentPropertyViInt32(obtain(IviConfig_GetDataComponentItemByIndex, components, 2), 9,
                                                        &integer),
              VI_SUCCESS);
    EXPECT_EQ(IviConfig_GetDataComponentPropertyViReal64(obtain(IviConfig_GetDataComponentItemByIndex, components, 3),
                                                         9, &real),
              VI_SUCCESS);
    EXPECT_EQ(flag, VI_FALSE);
    EXPECT_EQ(integer, 0);
    EXPECT_EQ(real, 0.0);
}

class UnreadableValue : public StoreObjects, public testing::WithParamInterface<Stored>
{
};

TEST_P(UnreadableValue, MakesTheStoreUnreadable)
{
    EXPECT_EQ(loadComponent(GetParam().element, GetParam().content), IVICONFIG_ERROR_DESERIALIZE_FAILED);
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_ACTUAL_LOCATION), "");
}

INSTANTIATE_TEST_SUITE_P(Values, UnreadableValue,
                         testing::Values(Stored{"IviBoolean", "<Value>yes</Value>", ""},
                                         Stored{"IviBoolean", "<ReadOnly>2</ReadOnly>", ""},
                                         Stored{"IviInteger", "<Value>1.5</Value>", ""},
                                         Stored{"IviInteger", "<Value>2147483648</Value>", ""},
                                         Stored{"IviString", "<HelpContextID>x</HelpContextID>", ""},
                                         Stored{"IviReal", "<Value>0,5</Value>", ""},
                                         Stored{"IviReal", "<Value>nan</Value>", ""},
                                         Stored{"IviString", "<Value>a&#0;b</Value>", ""}));

TEST_F(StoreObjects, UnreadableRangeOrVersionMakesTheStoreUnreadable)
{
    EXPECT_EQ(load(sessionOf("<VirtualNames><IviVirtualName><VirtualRanges><IviVirtualRange><Min>one</Min>"
                             "</IviVirtualRange></VirtualRanges></IviVirtualName></VirtualNames>")),
              IVICONFIG_ERROR_DESERIALIZE_FAILED);
    EXPECT_EQ(load("<IviConfigStore><SpecificationMajorVersion>two</SpecificationMajorVersion></IviConfigStore>"),
              IVICONFIG_ERROR_DESERIALIZE_FAILED);
}

} // namespace
