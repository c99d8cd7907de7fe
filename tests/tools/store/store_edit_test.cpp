#include "tests/support/store/store_tool_fixture.h"
#include "tools/store/store_check.h"
#include "tools/store/store_edit.h"

#include <gmock/gmock.h>

#include <random>
#include <set>

namespace
{

using namespace kvxtest;
using namespace store_tool;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

SessionEntry entryNamed(const std::string& name)
{
    SessionEntry entry;
    entry.name = name;
    entry.resource = "TCPIP0::10.0.0.5::5025::SOCKET";
    return entry;
}

SessionEntry fullEntry()
{
    SessionEntry entry = entryNamed("Rack & <2>");
    entry.description = "second \"rack\"";
    entry.asset = "Supply 2";
    entry.logicalNames = {"RackSupply", "Second"};
    entry.driverSetup = "Model:KVX2833T";
    entry.flags = {true, false, true, false, true, false};
    entry.virtualNames = {{"Core", "OutputChannel1"}, {"Rail", "OutputChannel", {{1, 3, 2}, {5, 6, 1}}}};
    entry.settings = {{settingTypeOf("string"), "model", " a<b "}};
    return entry;
}

Deeds add(StoreText& store, const SessionEntry& entry)
{
    return addSession(store, entry, false);
}

/// Every form of content next to which a session may be put, with things that a tool may not know.
std::string unusualStore()
{
    std::string text = exampleStore();
    text = replaced(text, "<IviConfigStore ",
                    "<!DOCTYPE IviConfigStore [ <!ELEMENT a (b)> ]>\n<?own data?>\n<IviConfigStore own='&lt;1>' ");
    text = replaced(text, "<DriverSessions>",
                    "<DriverSessions  own = \"x\" ><!-- before --><Own><![CDATA[<a></b>]]></Own>");
    text = replaced(text, "<HardwareAssets>", "<HardwareAssets><?own?>\t");
    text = replaced(text, "</LogicalNames>", "\n\n  <!-- last -->\t</LogicalNames>");
    text = replaced(text, "<Simulate>0</Simulate>", "<Simulate> 0<!-- no --></Simulate><Own a='1'>&#65;</Own>");
    return text + "\n<!-- end -->\n\n";
}

TEST(StoreEdit, AddsAllThatBelongsToASession)
{
    StoreText store(exampleStore());
    EXPECT_THAT(add(store, fullEntry()),
                ElementsAre("added hardware asset 'Supply 2'", "added driver session 'Rack & <2>'",
                            "added logical name 'RackSupply'", "added logical name 'Second'"));
    EXPECT_THAT(check(store), IsEmpty());
    const XmlElement* const session = findNamed(store.root(), "DriverSessions", "IviDriverSession", "Rack & <2>");
    ASSERT_NE(session, nullptr);
    EXPECT_EQ(session->textOf("Description"), "second \"rack\"");
    EXPECT_EQ(session->textOf("DriverSetup"), "Model:KVX2833T");
    for (const auto& [element, value] :
         {std::pair("Cache", "1"), std::pair("InterchangeCheck", "0"), std::pair("QueryInstrStatus", "1"),
          std::pair("RangeCheck", "0"), std::pair("RecordCoercions", "1"), std::pair("Simulate", "0")})
        EXPECT_EQ(session->textOf(element), value) << element;
    EXPECT_EQ(session->referenceOf("IviSoftwareModuleRef"), "p3");
    const XmlElement* const asset = findNamed(store.root(), "HardwareAssets", "IviHardwareAsset", "Supply 2");
    ASSERT_NE(asset, nullptr);
    EXPECT_EQ(asset->textOf("IOResourceDescriptor"), "TCPIP0::10.0.0.5::5025::SOCKET");
    EXPECT_EQ(session->referenceOf("IviHardwareAsset"), asset->id);
    const XmlElement* const logicalName = findNamed(store.root(), "LogicalNames", "IviLogicalName", "Second");
    ASSERT_NE(logicalName, nullptr);
    EXPECT_EQ(logicalName->referenceOf("IviDriverSession"), session->id);
    EXPECT_EQ(store.root().itemsOf("Sessions").back().idref, session->id);
    const XmlElement* const range =
        findNamed(session->itemsOf("VirtualNames").at(1), "VirtualRanges", "IviVirtualRange", "Rail 1-3");
    ASSERT_NE(range, nullptr);
    EXPECT_EQ(range->textOf("StartingPhysicalIndex"), "2");
}

TEST(StoreEdit, GivesASessionTheSettingsThatItsModuleRequires)
{
    StoreText store(replaced(settingsStore(),
                             "<ReadOnly>1</ReadOnly><UsedInSession>Required</UsedInSession><Type>Boolean",
                             "<ReadOnly>1</ReadOnly><UsedInSession>optional</UsedInSession><Type>Boolean"));
    SessionEntry entry = entryNamed("Rack");
    entry.softwareModule = "Meter";
    entry.settings = {{settingTypeOf("real"), "Settling Time", "0.5"}, {settingTypeOf("string"), "Note", " a<b "}};
    add(store, entry);
    const auto settings = settingsOf(*findNamed(store.root(), "DriverSessions", "IviDriverSession", "Rack"));
    ASSERT_EQ(settings.size(), 4U);
    EXPECT_EQ(settings[0].name, "Retries");
    EXPECT_EQ(settings[0].value, "0");
    EXPECT_EQ(settings[0].key, "RETRIES");
    EXPECT_EQ(settings[1].name, "Settling Time");
    EXPECT_EQ(settings[1].value, "0.5");
    EXPECT_EQ(settings[1].units, "s");
    EXPECT_EQ(settings[2].name, "Station");
    EXPECT_EQ(settings[3].name, "Note");
    EXPECT_EQ(settings[3].value, " a<b ");
}

TEST(StoreEdit, RefusesASettingOfAnotherTypeThanTheModules)
{
    StoreText store(settingsStore());
    SessionEntry entry = entryNamed("Rack");
    entry.softwareModule = "Meter";
    entry.settings = {{settingTypeOf("string"), "Retries", "3"}};
    EXPECT_EQ(complaint([&] { add(store, entry); }),
              "the setting 'Retries' has the type integer in the software module");
}

TEST(StoreEdit, RefusesASettingThatIsGivenTwice)
{
    const auto refusal = [](const std::string& name, const std::string& otherType) {
        StoreText store(settingsStore());
        SessionEntry entry = entryNamed("Rack");
        entry.softwareModule = "Meter";
        entry.settings = {{settingTypeOf("real"), name, "1"}, {settingTypeOf(otherType), name, "2"}};
        return complaint([&] { add(store, entry); });
    };
    EXPECT_EQ(refusal("Settling Time", "real"), "the setting 'Settling Time' is given twice");
    EXPECT_EQ(refusal("Note", "real"), "the setting 'Note' is given twice");
    EXPECT_EQ(refusal("Note", "string"), "the setting 'Note' is given twice");
}

TEST(StoreEdit, AddsTheSoftwareModuleWhereItIsMissing)
{
    StoreText store(emptyStoreText());
    EXPECT_THAT(
        add(store, entryNamed("Rack")),
        ElementsAre("added software module 'KVX2800T'", "added hardware asset 'Rack'", "added driver session 'Rack'"));
    EXPECT_THAT(check(store), IsEmpty());
    const XmlElement* const driver = findNamed(store.root(), "SoftwareModules", "IviSoftwareModule", "KVX2800T");
    ASSERT_NE(driver, nullptr);
    EXPECT_EQ(driver->textOf("Prefix"), "KVX2800T");
    EXPECT_EQ(driver->textOf("SupportedInstrumentModels"), "KVX2833T");
    ASSERT_EQ(driver->itemsOf("PhysicalNames").size(), 6U);
    EXPECT_EQ(driver->itemsOf("PhysicalNames")[5].textOf("Name"), "OutputChannel6");
    EXPECT_EQ(driver->itemsOf("PhysicalNames")[5].textOf("RCName"), "OutputChannel");
    EXPECT_EQ(driver->itemsOf("PublishedAPIs").size(), 2U);
    EXPECT_EQ(store.root().itemsOf("PublishedAPIs").at(1).textOf("Name"), "IviDCPwr");
}

TEST(StoreEdit, SharesPublishedApisThatAreThere)
{
    StoreText store(
        storeWith("<PublishedAPIs><IviPublishedAPI id='d'><Name>IviDriver</Name><MajorVersion>2</MajorVersion>"
                  "<MinorVersion>1</MinorVersion><Type>IVI-C</Type></IviPublishedAPI></PublishedAPIs>"));
    add(store, entryNamed("Rack"));
    EXPECT_THAT(check(store), IsEmpty());
    EXPECT_EQ(store.root().itemsOf("PublishedAPIs").size(), 2U);
    EXPECT_THAT(store.text(), HasSubstr("<IviPublishedAPI idref=\"d\"/>"));
}

TEST(StoreEdit, GivesIdsThatNothingUses)
{
    StoreText store(storeWith("<Own id='p7' idref='p9'/><Own id='p10x'/><Own id='q'/>"));
    add(store, fullEntry());
    std::multiset<std::string> ids;
    forEach(store.root(), [&ids](const XmlElement& element) {
        if (element.id)
            ids.insert(*element.id);
    });
    for (const std::string& id : ids)
        EXPECT_EQ(ids.count(id), 1U) << id;
    EXPECT_FALSE(ids.contains("p9"));
    EXPECT_TRUE(ids.contains("p10"));
}

TEST(StoreEdit, SharesAHardwareAssetOfTheSameResource)
{
    StoreText store(exampleStore());
    SessionEntry entry = entryNamed("Rack");
    entry.asset = "Bench supply 1";
    EXPECT_EQ(complaint([&] { add(store, entry); }),
              "the hardware asset 'Bench supply 1' has the resource 'TCPIP0::127.0.0.1::5025::SOCKET'");
    entry.resource = std::nullopt;
    EXPECT_THAT(add(store, entry), ElementsAre("added driver session 'Rack'"));
    EXPECT_THAT(check(store), IsEmpty());
    entry.name = "Third";
    entry.asset = "none";
    EXPECT_EQ(complaint([&] { add(store, entry); }),
              "there is no hardware asset 'none', and no resource to make it with");
}

TEST(StoreEdit, RefusesNamesThatAreTaken)
{
    const auto refusal = [](const SessionEntry& entry) {
        StoreText store(exampleStore());
        return complaint([&] { add(store, entry); });
    };
    EXPECT_EQ(refusal(entryNamed("KVX2800T")), "there is a driver session 'KVX2800T' already");
    EXPECT_EQ(refusal(entryNamed("BenchSupply")), "there is a logical name 'BenchSupply' already");
    SessionEntry entry = entryNamed("Rack");
    entry.logicalNames = {"BenchSupply"};
    EXPECT_EQ(refusal(entry), "there is a logical name 'BenchSupply' already");
    entry.logicalNames = {};
    entry.softwareModule = "Other";
    EXPECT_EQ(refusal(entry), "there is no software module 'Other'");
}

TEST(StoreEdit, ReplacesWhatHasTheNames)
{
    StoreText store(exampleStore());
    SessionEntry entry = entryNamed("KVX2800T");
    entry.asset = "Bench supply 1";
    entry.logicalNames = {"Left"};
    EXPECT_THAT(addSession(store, entry, true),
                ElementsAre("removed driver session 'KVX2800T'", "removed logical name 'BenchSupply'",
                            "removed hardware asset 'Bench supply 1'", "added hardware asset 'Bench supply 1'",
                            "added driver session 'KVX2800T'", "added logical name 'Left'"));
    EXPECT_THAT(check(store), IsEmpty());
    EXPECT_THAT(store.text(), Not(HasSubstr("127.0.0.1")));
    entry.resource = std::nullopt;
    EXPECT_THAT(addSession(store, entry, true),
                ElementsAre("removed driver session 'KVX2800T'", "removed logical name 'Left'",
                            "added driver session 'KVX2800T'", "added logical name 'Left'"));
    EXPECT_THAT(check(store), IsEmpty());
}

TEST(StoreEdit, ReplacingLeavesNoHardwareAssetThatNothingUses)
{
    StoreText store(exampleStore());
    add(store, entryNamed("Rack"));
    SessionEntry entry;
    entry.name = "KVX2800T";
    entry.asset = "Rack";
    EXPECT_THAT(addSession(store, entry, true),
                ElementsAre("removed driver session 'KVX2800T'", "removed logical name 'BenchSupply'",
                            "removed hardware asset 'Bench supply 1'", "added driver session 'KVX2800T'"));
    EXPECT_THAT(check(store), IsEmpty());
    EXPECT_EQ(store.root().itemsOf("HardwareAssets").size(), 1U);
    entry.asset = "Bench supply 1";
    EXPECT_EQ(complaint([&] { addSession(store, entry, true); }),
              "there is no hardware asset 'Bench supply 1', and no resource to make it with");
}

TEST(StoreEdit, AddingAndRemovingGivesTheSameBytes)
{
    for (const std::string& text : {exampleStore(), unusualStore()}) {
        StoreText store(text);
        add(store, fullEntry());
        EXPECT_NE(store.text(), text);
        removeNamed(store, "Rack & <2>");
        EXPECT_EQ(store.text(), text);
    }
}

TEST(StoreEdit, AddingOnlyPutsBytesIn)
{
    const std::string text = unusualStore();
    StoreText store(text);
    add(store, fullEntry());
    std::size_t place = 0;
    for (const char c : text) {
        place = store.text().find(c, place);
        ASSERT_NE(place, std::string::npos);
        ++place;
    }
}

TEST(StoreEdit, RemovingTheOnlySessionLeavesTheRestByteForByte)
{
    StoreText store(exampleStore());
    EXPECT_THAT(removeNamed(store, "KVX2800T"),
                ElementsAre("removed driver session 'KVX2800T'", "removed logical name 'BenchSupply'",
                            "removed hardware asset 'Bench supply 1'"));
    const std::string text = exampleStore();
    EXPECT_EQ(
        store.text(),
        text.substr(0, text.find("<HardwareAssets>")) +
            "<HardwareAssets/>\n  <DriverSessions/>\n  <Sessions></Sessions>\n  <LogicalNames/></IviConfigStore>\n");
    EXPECT_THAT(check(store), IsEmpty());
}

TEST(StoreEdit, KeepsAHardwareAssetThatIsStillInUse)
{
    StoreText store(exampleStore());
    SessionEntry entry;
    entry.name = "Other";
    entry.asset = "Bench supply 1";
    add(store, entry);
    EXPECT_THAT(removeNamed(store, "KVX2800T"),
                ElementsAre("removed driver session 'KVX2800T'", "removed logical name 'BenchSupply'"));
    EXPECT_THAT(removeNamed(store, "Other"),
                ElementsAre("removed driver session 'Other'", "removed hardware asset 'Bench supply 1'"));
}

TEST(StoreEdit, RemovesALogicalNameAlone)
{
    const std::string left =
        replaced(exampleStore(),
                 "\n    <IviLogicalName id=\"p26\"><Name>BenchSupply</Name><Description></Description>"
                 "<IviDriverSession idref=\"p16\"/></IviLogicalName>\n  </LogicalNames>",
                 "");
    StoreText store(exampleStore());
    EXPECT_THAT(removeNamed(store, "BenchSupply"), ElementsAre("removed logical name 'BenchSupply'"));
    EXPECT_EQ(store.text(), replaced(left, "<LogicalNames>", "<LogicalNames/>"));
    EXPECT_EQ(complaint([&] { removeNamed(store, "BenchSupply"); }),
              "there is no driver session or logical name 'BenchSupply'");
    EXPECT_EQ(complaint([&] { removeLogicalName(store, "KVX2800T"); }), "there is no logical name 'KVX2800T'");
}

TEST(StoreEdit, RefusesToRemoveWhatItCannotTellFromOthers)
{
    StoreText store(replaced(exampleStore(), "id=\"p15\"", "id=\"p16\""));
    EXPECT_EQ(complaint([&] { removeNamed(store, "KVX2800T"); }), "'KVX2800T' has no id of its own");
}

/// The store after a session was added and removed; nothing when it is refused.
std::optional<std::string> cycled(const std::string& text)
{
    try {
        StoreText store(text);
        check(store);
        add(store, fullEntry());
        removeNamed(store, "Rack & <2>");
        return store.text();
    } catch (const StoreError&) {
        return std::nullopt;
    }
}

TEST(StoreEdit, DamagedStoresAreRefusedOrComeBackByteForByte)
{
    std::mt19937 random(1);
    const std::string text = unusualStore();
    const std::string bytes = "<>/&;\"'= !?-[]x\n";
    int accepted = 0;
    for (int round = 0; round < 500; ++round) {
        std::string damaged = text;
        for (int change = 0; change < 1 + round % 3; ++change)
            damaged[random() % damaged.size()] = bytes[random() % bytes.size()];
        // What was missing is made the first time.
        const auto once = cycled(damaged);
        if (!once)
            continue;
        ++accepted;
        ASSERT_EQ(cycled(*once), once) << damaged;
    }
    EXPECT_GT(accepted, 20);
    EXPECT_LT(accepted, 480);
}

} // namespace
