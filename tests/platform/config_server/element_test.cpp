#include "tests/support/platform/store_objects_fixture.h"

#include <gmock/gmock.h>

#include <limits>
#include <string>
#include <vector>

namespace
{

using namespace kvxtest;
using testing::ElementsAre;

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

} // namespace
