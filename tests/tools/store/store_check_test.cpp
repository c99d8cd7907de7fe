#include "tests/support/store/store_tool_fixture.h"
#include "tools/store/store_check.h"

#include <gmock/gmock.h>

#include <array>

namespace
{

using namespace kvxtest;
using namespace store_tool;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

/// The findings of one kind as LINE: PLACE: TEXT.
std::vector<std::string> findingsOf(FindingKind kind, const std::string& text)
{
    std::vector<std::string> texts;
    for (const Finding& finding : check(StoreText(text))) {
        if (finding.kind == kind)
            texts.push_back(std::to_string(finding.line) + ": " + finding.place + ": " + finding.text);
    }
    return texts;
}

/// Those about the format, which are all that there are.
std::vector<std::string> findings(const std::string& text)
{
    EXPECT_THAT(findingsOf(FindingKind::Use, text), IsEmpty());
    return findingsOf(FindingKind::Format, text);
}

/// The findings of the example store with one change.
std::vector<std::string> findingsWith(const std::string& from, const std::string& to)
{
    return findings(replaced(exampleStore(), from, to));
}

std::vector<std::string> findingsWithSetting(const std::string& from, const std::string& to)
{
    return findings(replaced(settingsStore(), from, to));
}

std::string isNot(const std::string& value, const std::string& kind)
{
    return "'" + value + "' is not " + kind;
}

const std::string kSession = "DriverSessions/IviDriverSession 'KVX2800T'";
const std::string kMeter = "DriverSessions/IviDriverSession 'Meter 1'";
const std::string kVirtual = kSession + "/VirtualNames/IviVirtualName ";

TEST(StoreCheck, FindsNothingInSoundStores)
{
    EXPECT_THAT(findings(exampleStore()), IsEmpty());
    EXPECT_THAT(findings(settingsStore()), IsEmpty());
    EXPECT_THAT(findings(installedStore()), IsEmpty());
    EXPECT_THAT(findings(emptyStoreText()), IsEmpty());
    EXPECT_THAT(findings("<IviConfigStore/>"), IsEmpty());
}

TEST(StoreCheck, FindsTextsThatManyDriversCut)
{
    const std::string longest(1023, 'x');
    const std::string finding = ": has 1024 bytes, of which many drivers read 1023";
    for (const std::string element : {"Name", "MapTo", "RCName", "IOResourceDescriptor", "DriverSetup", "Value"}) {
        const std::string text = exampleStore();
        const auto begin = text.find("<" + element + ">") + element.size() + 2;
        ASSERT_LT(begin, text.size()) << element;
        const auto end = text.find("</", begin);
        const auto withText = [&](const std::string& content) {
            return findingsOf(FindingKind::Format, text.substr(0, begin) + content + text.substr(end));
        };
        EXPECT_THAT(withText(longest), Not(Contains(testing::HasSubstr(" bytes, of which many drivers read "))))
            << element;
        EXPECT_THAT(withText(longest + 'x'), Contains(testing::EndsWith(element + finding))) << element;
    }
    EXPECT_THAT(findingsWith("<Description>", "<Description>" + longest + longest), IsEmpty());
}

TEST(StoreCheck, CountsWhiteSpaceAtTheEndsOfATextWhereDriversGetIt)
{
    const std::string space(1023, ' ');
    EXPECT_THAT(findingsWithSetting("<Value>0.25</Value>", "<Value>\n" + space + "0.25\n</Value>"), IsEmpty());
    EXPECT_THAT(findingsWith("<RCName>OutputChannel</RCName>", "<RCName>" + space + "OutputChannel</RCName>"),
                IsEmpty());
    EXPECT_THAT(findingsWithSetting("<Value>line 4</Value>", "<Value>" + space + "4</Value>"),
                ElementsAre(testing::EndsWith("Value: has 1024 bytes, of which many drivers read 1023")));
}

TEST(StoreCheck, FindsUnknownElements)
{
    EXPECT_THAT(findingsWith("<Cache>1</Cache>", "<Cash>1</Cash>"),
                ElementsAre("51: " + kSession + "/Cash: is not known here"));
    EXPECT_THAT(findingsWith("<PublishedAPIs>", "<Own><Own/></Own><PublishedAPIs>"),
                ElementsAre("6: Own: is not known here"));
    EXPECT_THAT(findingsWith("<Cache>1</Cache>", "<Cache>1<b/></Cache>"),
                ElementsAre("51: " + kSession + "/Cache/b: is not known here"));
    EXPECT_THAT(findingsWith("  <HardwareAssets>", "  <HardwareAssets><IviSession id='x'/>"),
                ElementsAre("31: HardwareAssets/IviSession: is not known here"));
}

TEST(StoreCheck, FindsElementsOutOfOrderOrTwice)
{
    EXPECT_THAT(
        findingsWith("<Cache>1</Cache><DriverSetup></DriverSetup>", "<DriverSetup></DriverSetup><Cache>1</Cache>"),
        ElementsAre("51: " + kSession + "/Cache: stands behind <DriverSetup>"));
    EXPECT_THAT(findingsWith("<Cache>1</Cache>", "<Cache>1</Cache><Cache>1</Cache>"),
                ElementsAre("51: " + kSession + "/Cache: is there twice"));
}

TEST(StoreCheck, FindsIdsThatAreMissingEmptyOrTaken)
{
    EXPECT_THAT(findingsWith("id=\"p15\"", "id=\"p9\""),
                ElementsAre("32: HardwareAssets/IviHardwareAsset 'Bench supply 1': has the id 'p9' of another element",
                            "44: " + kSession + "/IviHardwareAsset: refers to 'p15', which is nowhere"));
    EXPECT_THAT(findingsWith(" id=\"p26\"", ""),
                ElementsAre("56: LogicalNames/IviLogicalName 'BenchSupply': has no id"));
    EXPECT_THAT(findingsWith("id=\"p26\"", "id=\"\""),
                ElementsAre("56: LogicalNames/IviLogicalName 'BenchSupply': has an empty id"));
    EXPECT_THAT(findingsWith("id=\"p26\"", "id=\"p26\" idref=\"p16\""),
                ElementsAre("56: LogicalNames/IviLogicalName 'BenchSupply': has an idref, but is no reference"));
}

TEST(StoreCheck, FindsReferencesToNothingOrToOtherKinds)
{
    EXPECT_THAT(findingsWith("<IviHardwareAsset idref=\"p15\"/>", "<IviHardwareAsset idref=\"p3\"/>"),
                ElementsAre("44: " + kSession + "/IviHardwareAsset: refers to 'p3', which is <IviSoftwareModule>"));
    EXPECT_THAT(findingsWith("<IviHardwareAsset idref=\"p15\"/>", "<IviHardwareAsset/>"),
                ElementsAre("44: " + kSession + "/IviHardwareAsset: has no idref"));
    EXPECT_THAT(findingsWith("<IviPublishedAPI idref=\"p1\"/>", "<IviPublishedAPI idref=\"p1\">x</IviPublishedAPI>"),
                ElementsAre("29: SoftwareModules/IviSoftwareModule 'KVX2800T'/PublishedAPIs/IviPublishedAPI: is a "
                            "reference, but has more than an idref"));
    EXPECT_THAT(findingsWith("<PublishedAPIs>", "<Own idref='lost'/><PublishedAPIs>"),
                Contains("6: Own: refers to 'lost', which is nowhere"));
    EXPECT_THAT(findingsWith("<Description></Description><IviDriverSession idref=\"p16\"/>", ""),
                ElementsAre("56: LogicalNames/IviLogicalName 'BenchSupply': refers to no session"));
}

TEST(StoreCheck, FindsDriverSessionsThatAreNotListed)
{
    EXPECT_THAT(findingsWith("<Sessions><IviDriverSession idref=\"p16\"/></Sessions>", "<Sessions/>"),
                ElementsAre("35: " + kSession + ": is not listed in <Sessions>"));
}

TEST(StoreCheck, FindsBooleansThatAreNone)
{
    for (const std::string value : {"", "2", "TRUE", "01"}) {
        EXPECT_THAT(findingsWith("<Cache>1<", "<Cache>" + value + "<"),
                    ElementsAre("51: " + kSession + "/Cache: " + isNot(value, "a boolean")));
    }
    EXPECT_THAT(findingsWith("<Cache>1<", "<Cache> true <"), IsEmpty());
}

TEST(StoreCheck, FindsNumbersThatAreNone)
{
    const std::string settings =
        kMeter + "/DataComponents/IviStructure 'Configurable Initial Settings'/DataComponents/";
    for (const std::string value : {"", "3.0", "2147483648", "x"})
        EXPECT_THAT(findingsWithSetting("<Value>3<", "<Value>" + value + "<"),
                    ElementsAre("23: " + settings + "IviInteger 'Retries'/Value: " + isNot(value, "an integer")));
    for (const std::string value : {"", "0,25", "inf", "1e999"})
        EXPECT_THAT(findingsWithSetting("<Value>0.25<", "<Value>" + value + "<"),
                    ElementsAre("24: " + settings + "IviReal 'Settling Time'/Value: " + isNot(value, "a real number")));
}

TEST(StoreCheck, FindsWordsThatAreNone)
{
    EXPECT_THAT(findingsWith("<Type>String</Type>", "<Type>string</Type>"), IsEmpty());
    EXPECT_THAT(
        findings(replaced(exampleStore(), "<UsedInSession>Required<", "<UsedInSession>often<")),
        ElementsAre("12: SoftwareModules/IviSoftwareModule 'KVX2800T'/DataComponents/IviStructure 'Configurable "
                    "Initial Settings'/UsedInSession: 'often' is not Required, Optional or None"));
    EXPECT_THAT(
        findings(replaced(exampleStore(), "<Type>Structure<", "<Type>String<")),
        ElementsAre("12: SoftwareModules/IviSoftwareModule 'KVX2800T'/DataComponents/IviStructure 'Configurable "
                    "Initial Settings'/Type: 'String' is not Structure"));
}

TEST(StoreCheck, FindsSettingsWithoutTheirTypeOrValue)
{
    const std::string inSession = kMeter + "/DataComponents/IviStructure 'Configurable Initial Settings'";
    const std::string inModule =
        "SoftwareModules/IviSoftwareModule 'Meter'/DataComponents/IviStructure 'Configurable Initial Settings'";
    const std::array<std::pair<const char*, std::string>, 5> findingsWithout{{
        {"<Type>Structure</Type>", "5: " + inModule + ": has no <Type>"},
        {"<Type>String</Type>", "10: " + inModule + "/DataComponents/IviString 'Station': has no <Type>"},
        {"<Value>1</Value>", "22: " + inSession + "/DataComponents/IviBoolean 'Trace': has no <Value>"},
        {"<Value>3</Value>", "23: " + inSession + "/DataComponents/IviInteger 'Retries': has no <Value>"},
        {"<Value>0.25</Value>", "24: " + inSession + "/DataComponents/IviReal 'Settling Time': has no <Value>"},
    }};
    for (const auto& [element, finding] : findingsWithout)
        EXPECT_THAT(findingsWithSetting(element, ""), ElementsAre(finding));
    EXPECT_THAT(findingsWithSetting("<Value>line 4</Value>", ""), IsEmpty());
}

TEST(StoreCheck, FindsTextThatIsNone)
{
    EXPECT_THAT(findingsWith("<Description>Example store<", "<Description>Exa&#0;mple<"),
                ElementsAre("3: Description: has control characters or is not UTF-8"));
    EXPECT_THAT(findingsWith("<Description>Example store<", "<Description>two\n\tlines<"), IsEmpty());
    EXPECT_THAT(findingsWith("<LogicalNames>", "<LogicalNames>text"),
                ElementsAre("55: LogicalNames: has text between its elements"));
}

TEST(StoreCheck, FindsNamesThatAreMissingEmptyOrTaken)
{
    EXPECT_THAT(findingsWith("<Name>BenchSupply</Name>", ""),
                ElementsAre("56: LogicalNames/IviLogicalName: has no <Name>"));
    EXPECT_THAT(findingsWith("<Name>BenchSupply</Name>", "<Name> </Name>"),
                ElementsAre("56: LogicalNames/IviLogicalName ''/Name: is empty"));
    EXPECT_THAT(findingsWith("<Name>Pair</Name>", "<Name>Core</Name>"),
                ElementsAre("47: " + kVirtual + "'Core': has the name 'Core' of another one"));
    EXPECT_THAT(findingsWith("<Sessions>", "<Sessions><IviSession id='x'><Name>KVX2800T</Name></IviSession>"),
                ElementsAre("54: Sessions/IviDriverSession: has the name 'KVX2800T' of another one"));
    EXPECT_THAT(findingsWith("<Name>IviDCPwr</Name>", "<Name>IviDriver</Name>"), IsEmpty());
}

TEST(StoreCheck, FindsEmptyDescriptors)
{
    EXPECT_THAT(findingsWith("TCPIP0::127.0.0.1::5025::SOCKET", ""),
                ElementsAre("32: HardwareAssets/IviHardwareAsset 'Bench supply 1'/IOResourceDescriptor: is empty"));
    EXPECT_THAT(findingsWith("<IOResourceDescriptor>TCPIP0::127.0.0.1::5025::SOCKET</IOResourceDescriptor>", ""),
                ElementsAre("32: HardwareAssets/IviHardwareAsset 'Bench supply 1': has no <IOResourceDescriptor>"));
}

TEST(StoreCheck, FindsVirtualNamesThatSelectorsCannotHave)
{
    EXPECT_THAT(findingsWith("<Name>Core</Name>", "<Name>Co:re</Name>"),
                ElementsAre("46: " + kVirtual + "'Co:re'/Name: 'Co:re' has characters other than a-z A-Z 0-9 ! _"));
    EXPECT_THAT(findingsWith("<Name>Core</Name>", "<Name></Name>"),
                ElementsAre("46: " + kVirtual + "''/Name: is empty"));
    EXPECT_THAT(findingsWith("<MapTo>OutputChannel1</MapTo>", "<MapTo></MapTo>"),
                ElementsAre("46: " + kVirtual + "'Core'/MapTo: is empty"));
    EXPECT_THAT(
        findingsOf(FindingKind::Format, replaced(exampleStore(), "<Name>Rail</Name><MapTo>OutputChannel</MapTo>",
                                                 "<Name></Name><MapTo></MapTo>")),
        IsEmpty());
}

TEST(StoreCheck, FindsVirtualNamesThatArePhysicalNames)
{
    EXPECT_THAT(
        findingsWith("<Name>Core</Name>", "<Name>OutputChannel3</Name>"),
        ElementsAre("46: " + kVirtual + "'OutputChannel3': stands for 'OutputChannel3', which is a physical name"));
    EXPECT_THAT(
        findingsWith("<Name>Rail</Name>", "<Name>OutputChannel</Name>"),
        ElementsAre("48: " + kVirtual + "'OutputChannel': stands for 'OutputChannel1', which is a physical name"));
    EXPECT_THAT(findingsWith("<Name>Core</Name>", "<Name>OutputChannel03</Name>"), IsEmpty());
    const std::string ranged = replaced(
        exampleStore(), "<Name>OutputChannel6</Name><RCName>OutputChannel</RCName><PhysicalNames/><PhysicalRanges/>",
        "<Name>Rail</Name><RCName>OutputChannel</RCName><PhysicalNames/><PhysicalRanges><IviPhysicalRange id='r'>"
        "<Name>r</Name><Max>9</Max><Min>3</Min></IviPhysicalRange></PhysicalRanges>");
    EXPECT_THAT(findings(ranged),
                ElementsAre("48: " + kVirtual + "'Rail': stands for 'Rail3', which is a physical name"));
    EXPECT_THAT(findings(replaced(ranged, "<Min>3</Min>", "<Min>4</Min>")), IsEmpty());
    EXPECT_THAT(
        findings(replaced(replaced(ranged, "<Min>3</Min>", "<Min>4</Min>"), "<Name>Core</Name>", "<Name>Rail9</Name>")),
        ElementsAre("46: " + kVirtual + "'Rail9': stands for 'Rail9', which is a physical name"));
}

TEST(StoreCheck, FindsRangesThatAreNone)
{
    const std::string range = kVirtual + "'Rail'/VirtualRanges/IviVirtualRange 'Rails 1-3'";
    EXPECT_THAT(findingsWith("<Max>3</Max>", "<Max>0</Max>"),
                ElementsAre("49: " + range + ": has a Min 1 above its Max 0"));
    EXPECT_THAT(findingsWith("<Max>3</Max>", ""), ElementsAre("49: " + range + ": has no <Max>"));
    EXPECT_THAT(findingsWith("<Min>1</Min>", "<Min>-1</Min>"),
                ElementsAre("49: " + range + "/Min: '-1' is not an index"));
    const auto findingsFrom = [](const std::string& start) {
        return findingsOf(FindingKind::Format, replaced(exampleStore(), "<StartingPhysicalIndex>2<",
                                                        "<StartingPhysicalIndex>" + start + "<"));
    };
    EXPECT_THAT(findingsFrom("2147483646"), ElementsAre("49: " + range + ": ends behind the largest index"));
    EXPECT_THAT(findingsFrom("2147483645"), IsEmpty());
}

TEST(StoreCheck, FindsRangesThatOverlap)
{
    const std::string other =
        "<IviVirtualRange id=\"q\"><Name>more</Name><Max>5</Max><Min>3</Min><StartingPhysicalIndex>1"
        "</StartingPhysicalIndex></IviVirtualRange>";
    EXPECT_THAT(findingsWith("<VirtualRanges>\n", "<VirtualRanges>" + other + "\n"),
                ElementsAre("48: " + kVirtual + "'Rail': has ranges that overlap: 'more' and 'Rails 1-3'"));
    EXPECT_THAT(findingsWith("<VirtualRanges>\n", "<VirtualRanges>" + replaced(other, "<Min>3", "<Min>4") + "\n"),
                IsEmpty());
}

TEST(StoreCheck, TellsBothKindsInTheOrderOfTheFile)
{
    std::string text = replaced(exampleStore(), "<Cache>1<", "<Cache>x<");
    text = replaced(text, "TCPIP0::127.0.0.1::5025::SOCKET", "TCPIP0::5025::SOCKET");
    text = replaced(text, "<DriverSetup><", "<DriverSetup>IoTimeout<");
    text = replaced(text, "<InterchangeCheck>0<", "<InterchangeCheck>x<");
    std::vector<std::pair<FindingKind, std::size_t>> kindsAndLines;
    for (const Finding& finding : check(StoreText(text)))
        kindsAndLines.emplace_back(finding.kind, finding.line);
    EXPECT_THAT(kindsAndLines, ElementsAre(std::pair(FindingKind::Use, 32U), std::pair(FindingKind::Format, 51U),
                                           std::pair(FindingKind::Use, 51U), std::pair(FindingKind::Format, 51U)));
}

TEST(StoreCheck, TellsFaultsOfTheFileFromTerminalsAndKeepsThemShort)
{
    EXPECT_THAT(findings("<IviConfigStore><a\x1B/></IviConfigStore>"), ElementsAre("1: a\\x1B: is not known here"));
    const std::string longName(1'000'000, 'n');
    const std::string place = "56: LogicalNames/IviLogicalName '" + std::string(100, 'n') + "...'/";
    EXPECT_THAT(findingsWith("<Name>BenchSupply</Name>", "<Name>" + longName + "</Name><Own/>"),
                ElementsAre(place + "Name: has 1000000 bytes, of which many drivers read 1023",
                            place + "Own: is not known here"));
}

TEST(StoreCheck, LooksAtEveryElementOfALargeStore)
{
    EXPECT_EQ(findings(storeWith("<DriverSessions>" + repeated("<x/>\n", 50'000) + "</DriverSessions>")).size(),
              50'000U);
}

TEST(StoreCheck, TellsNewFindingsFromOldOnesWhoseLinesHaveMoved)
{
    const std::string faulty = replaced(exampleStore(), "<Cache>1<", "<Cache>x<");
    const auto before = check(StoreText(faulty));
    EXPECT_THAT(newFindings(before, check(StoreText(replaced(faulty, "<PublishedAPIs>", "\n<PublishedAPIs>")))),
                IsEmpty());
    const auto fresh = newFindings(before, check(StoreText(replaced(faulty, "<Simulate>0<", "<Simulate>x<"))));
    ASSERT_EQ(fresh.size(), 1U);
    EXPECT_EQ(fresh[0].place, kSession + "/Simulate");
}

} // namespace
