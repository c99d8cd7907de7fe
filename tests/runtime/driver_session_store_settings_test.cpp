#include "tests/support/driver/configuration_store_fixture.h"

#include <limits>
#include <optional>

// What a session takes from driver sessions and software modules of the configuration store, and whose values hold.

namespace
{

using namespace kvxtest;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::Pointee;

class ConfiguredSettings : public ConfigurationStoreTest
{
public:
    ViStatus resolveName(const std::string& resourceName) { return session.ResolveConfiguration(resourceName, ""); }
};

TEST_F(ConfiguredSettings, EachTypeHasATableOfItsOwn)
{
    storeRichEntry();
    EXPECT_EQ(resolve(), VI_SUCCESS);
    EXPECT_THAT(session.configuredBooleans(), ElementsAre(Pair("Trace", true)));
    EXPECT_THAT(session.configuredIntegers(), ElementsAre(Pair("Retries", 3)));
    EXPECT_THAT(session.configuredReals(), ElementsAre(Pair("Settling Time", 0.25)));
    EXPECT_THAT(session.configuredStrings(), ElementsAre(Pair("Station", "line 4")));
}

TEST_F(ConfiguredSettings, ASettingIsLookedUpByItsExactNameAndType)
{
    storeRichEntry();
    EXPECT_EQ(resolve(), VI_SUCCESS);
    EXPECT_THAT(session.configuredBoolean("Trace"), Pointee(true));
    EXPECT_THAT(session.configuredInteger("Retries"), Pointee(3));
    EXPECT_THAT(session.configuredReal("Settling Time"), Pointee(0.25));
    EXPECT_THAT(session.configuredString("Station"), Pointee(std::string("line 4")));
    for (const char* name : {"", "trace", "TRACE", "Trace ", "Retries", "Station"})
        EXPECT_EQ(session.configuredBoolean(name), nullptr) << name;
    EXPECT_EQ(session.configuredInteger("Trace"), nullptr);
    EXPECT_EQ(session.configuredReal("Retries"), nullptr);
    EXPECT_EQ(session.configuredString("Settling Time"), nullptr);
}

TEST_F(ConfiguredSettings, OneNameMayHaveAValueOfEachType)
{
    storeDriverSession().settings() = {stringComponent("X", "text"), integerComponent("X", 1), realComponent("X", 2.5),
                                       booleanComponent("X", VI_TRUE)};
    EXPECT_EQ(resolve(), VI_SUCCESS);
    EXPECT_THAT(session.configuredString("X"), Pointee(std::string("text")));
    EXPECT_THAT(session.configuredInteger("X"), Pointee(1));
    EXPECT_THAT(session.configuredReal("X"), Pointee(2.5));
    EXPECT_THAT(session.configuredBoolean("X"), Pointee(true));
}

TEST_F(ConfiguredSettings, AWordForATypeIgnoresLetterCase)
{
    for (const char* word : {"string", "String", "STRING", "sTrInG"}) {
        StoredDataComponent setting = stringComponent("Station", word);
        setting.type = word;
        storeDriverSession().settings() = {setting};
        EXPECT_EQ(resolve(), VI_SUCCESS);
        EXPECT_THAT(session.configuredString("Station"), Pointee(std::string(word)));
    }
}

TEST_F(ConfiguredSettings, LowerCaseWordsAreTheFourTypes)
{
    std::vector<StoredDataComponent> settings = {stringComponent("A", "x"), integerComponent("B", -1),
                                                 realComponent("C", 1e-9), booleanComponent("D", VI_FALSE)};
    const std::vector<std::string> words = {"string", "integer", "real", "boolean"};
    for (std::size_t i = 0; i < words.size(); ++i)
        settings[i].type = words[i];
    storeDriverSession().settings() = settings;
    EXPECT_EQ(resolve(), VI_SUCCESS);
    EXPECT_THAT(session.configuredString("A"), Pointee(std::string("x")));
    EXPECT_THAT(session.configuredInteger("B"), Pointee(-1));
    EXPECT_THAT(session.configuredReal("C"), Pointee(1e-9));
    EXPECT_THAT(session.configuredBoolean("D"), Pointee(false));
}

TEST_F(ConfiguredSettings, OtherTypesAreSkippedWithoutReadingTheirValue)
{
    std::vector<StoredDataComponent> settings;
    for (const char* type : {"", "APIReference", "Strings", "Int32", " String", "bool"}) {
        StoredDataComponent setting = stringComponent("Odd", "value");
        setting.type = type;
        settings.push_back(setting);
    }
    settings.push_back(structureComponent("Nested", {stringComponent("Inner", "value")}));
    settings.push_back(stringComponent("Last", "read"));
    storeDriverSession().settings() = settings;
    EXPECT_EQ(resolve(), VI_SUCCESS);
    EXPECT_THAT(session.configuredStrings(), ElementsAre(Pair("Last", "read")));
    EXPECT_EQ(calls("IviConfig_GetDataComponentPropertyViString(dataComponent[Odd], 9").size(), 0U);
    EXPECT_EQ(timesRecorded(), 0U);
    EXPECT_EQ(openConfigHandles(), 0U);
}

TEST_F(ConfiguredSettings, ABooleanIsTrueOnlyIfItIsOne)
{
    for (const ViBoolean value : std::initializer_list<ViBoolean>{0, 1, 2, 255, 256, 0xFFFF}) {
        storeDriverSession().settings() = {booleanComponent("Trace", value)};
        EXPECT_EQ(resolve(), VI_SUCCESS);
        EXPECT_THAT(session.configuredBoolean("Trace"), Pointee(value == 1)) << value;
    }
}

TEST_F(ConfiguredSettings, NumbersKeepTheirExtremes)
{
    constexpr auto kLeast = std::numeric_limits<ViInt32>::min();
    constexpr auto kMost = std::numeric_limits<ViInt32>::max();
    constexpr auto kHuge = std::numeric_limits<ViReal64>::max();
    storeDriverSession().settings() = {integerComponent("Least", kLeast), integerComponent("Most", kMost),
                                       realComponent("Huge", kHuge)};
    EXPECT_EQ(resolve(), VI_SUCCESS);
    EXPECT_THAT(session.configuredIntegers(), ElementsAre(Pair("Least", kLeast), Pair("Most", kMost)));
    EXPECT_THAT(session.configuredReal("Huge"), Pointee(kHuge));
}

TEST_F(ConfiguredSettings, OfTwoSettingsOfOneNameTheLaterHolds)
{
    storeDriverSession().settings() = {stringComponent("Station", "first"), stringComponent("Station", "second")};
    EXPECT_EQ(resolve(), VI_SUCCESS);
    EXPECT_THAT(session.configuredStrings(), ElementsAre(Pair("Station", "second")));
}

TEST_F(ConfiguredSettings, WithoutTheirStructureThereAreNone)
{
    storeDriverSession().dataComponents = {
        stringComponent("Station", "line 4"),
        structureComponent("configurable initial settings", {stringComponent("Station", "line 4")})};
    EXPECT_EQ(resolve(), VI_SUCCESS);
    EXPECT_THAT(session.configuredStrings(), IsEmpty());
    EXPECT_EQ(timesRecorded(), 0U);
    EXPECT_EQ(errorOf(VI_NULL), ErrorEntry());
}

TEST_F(ConfiguredSettings, AnEmptyStructureHasNone)
{
    storeDriverSession().settings();
    EXPECT_EQ(resolve(), VI_SUCCESS);
    EXPECT_THAT(session.configuredStrings(), IsEmpty());
}

TEST_F(ConfiguredSettings, WithoutAnEntryThoseOfTheModuleHold)
{
    storeSoftwareModule().settings() = {stringComponent("Station", "module")};
    EXPECT_EQ(resolve(), VI_SUCCESS);
    EXPECT_THAT(session.configuredString("Station"), Pointee(std::string("module")));
}

TEST_F(ConfiguredSettings, WithAnEntryThoseOfTheModuleDoNotCount)
{
    storeRichEntry().settings() = {stringComponent("Station", "entry")};
    configurationStore().softwareModules.front().settings() = {stringComponent("Station", "module"),
                                                               stringComponent("Other", "module")};
    EXPECT_EQ(resolve(), VI_SUCCESS);
    EXPECT_THAT(session.configuredStrings(), ElementsAre(Pair("Station", "entry")));
}

TEST_F(ConfiguredSettings, AModuleOfAnotherNameDoesNotCount)
{
    storeSoftwareModule("kvx2800t").settings() = {stringComponent("Station", "module")};
    EXPECT_EQ(resolve(), VI_SUCCESS);
    EXPECT_THAT(session.configuredStrings(), IsEmpty());
}

TEST_F(ConfiguredSettings, ThoseOfANamedEntryReplaceThoseOfTheDriversOwn)
{
    storeDriverSession().settings() = {stringComponent("Station", "own"), stringComponent("Line", "own"),
                                       integerComponent("Retries", 1)};
    storeFurtherSession("BenchSupply").settings() = {stringComponent("Station", "bench"), realComponent("Limit", 2.0)};
    EXPECT_EQ(resolveName("BenchSupply"), VI_SUCCESS);
    EXPECT_THAT(session.configuredStrings(), ElementsAre(Pair("Line", "own"), Pair("Station", "bench")));
    EXPECT_THAT(session.configuredInteger("Retries"), Pointee(1));
    EXPECT_THAT(session.configuredReal("Limit"), Pointee(2.0));
}

// ---- Named entries

TEST_F(ConfiguredSettings, ANamedEntryIsWhereTheConnectionGoes)
{
    storeFurtherSession("BenchSupply").ioResourceDescriptor = "TCPIP0::10.0.0.1::5025::SOCKET";
    EXPECT_EQ(resolveName("BenchSupply"), VI_SUCCESS);
    EXPECT_TRUE(session.namesStoreEntry());
    EXPECT_EQ(session.logicalName(), "BenchSupply");
    EXPECT_EQ(session.ioResourceDescriptor(), "TCPIP0::10.0.0.1::5025::SOCKET");
    EXPECT_EQ(session.connectionDescriptor(), "TCPIP0::10.0.0.1::5025::SOCKET");
}

TEST_F(ConfiguredSettings, ALogicalNameLeadsToItsDriverSession)
{
    storeFurtherSession("Supply 4").ioResourceDescriptor = "ASRL4::INSTR";
    configurationStore().logicalNames["BenchSupply"] = "Supply 4";
    EXPECT_EQ(resolveName("BenchSupply"), VI_SUCCESS);
    EXPECT_EQ(session.logicalName(), "BenchSupply");
    EXPECT_EQ(session.connectionDescriptor(), "ASRL4::INSTR");
}

TEST_F(ConfiguredSettings, ALogicalNameMayLeadToTheDriversOwnEntry)
{
    storeDriverSession().ioResourceDescriptor = "ASRL1::INSTR";
    configurationStore().logicalNames["BenchSupply"] = "KVX2800T";
    EXPECT_EQ(resolveName("BenchSupply"), VI_SUCCESS);
    EXPECT_EQ(session.logicalName(), "BenchSupply");
    EXPECT_EQ(session.connectionDescriptor(), "ASRL1::INSTR");
    EXPECT_EQ(openConfigHandles(), 0U);
}

TEST_F(ConfiguredSettings, ThePrefixNamesTheDriversOwnEntry)
{
    storeDriverSession().ioResourceDescriptor = "ASRL1::INSTR";
    EXPECT_EQ(resolveName("KVX2800T"), VI_SUCCESS);
    EXPECT_TRUE(session.namesStoreEntry());
    EXPECT_EQ(session.logicalName(), "KVX2800T");
    EXPECT_EQ(session.connectionDescriptor(), "ASRL1::INSTR");
}

TEST_F(ConfiguredSettings, ThePrefixWithoutAnEntryIsAName)
{
    EXPECT_EQ(resolveName("KVX2800T"), VI_SUCCESS);
    EXPECT_FALSE(session.namesStoreEntry());
    EXPECT_EQ(session.logicalName(), "");
    EXPECT_EQ(session.connectionDescriptor(), "KVX2800T");
}

TEST_F(ConfiguredSettings, AnEntryWithoutADescriptorLeavesTheResourceNameAndTheDescriptorOfTheDriversOwn)
{
    const std::optional<std::string> descriptors[] = {std::nullopt, "", "ASRL1::INSTR"};
    for (const auto& own : descriptors)
        for (const bool hasAsset : {false, true}) {
            configurationStore() = {};
            storeDriverSession().ioResourceDescriptor = own;
            if (hasAsset)
                storeFurtherSession("BenchSupply").ioResourceDescriptor = "";
            else
                storeFurtherSession("BenchSupply");
            EXPECT_EQ(resolveName("BenchSupply"), VI_SUCCESS);
            EXPECT_TRUE(session.namesStoreEntry());
            EXPECT_EQ(session.logicalName(), "");
            EXPECT_EQ(session.connectionDescriptor(), "BenchSupply");
            EXPECT_EQ(session.ioResourceDescriptor(), own.value_or(""));
        }
}

TEST_F(ConfiguredSettings, TheDriversOwnEntryWithoutADescriptorLeavesThePrefix)
{
    for (const std::optional<std::string>& descriptor : {std::optional<std::string>(), std::optional<std::string>("")})
    {
        storeDriverSession().ioResourceDescriptor = descriptor;
        EXPECT_EQ(resolveName("KVX2800T"), VI_SUCCESS);
        EXPECT_TRUE(session.namesStoreEntry());
        EXPECT_EQ(session.logicalName(), "");
        EXPECT_EQ(session.connectionDescriptor(), "KVX2800T");
    }
}

TEST_F(ConfiguredSettings, AnUnknownNameIsAnAliasOfTheConnections)
{
    storeDriverSession().ioResourceDescriptor = "ASRL1::INSTR";
    EXPECT_EQ(resolveName("MYSUPPLY"), VI_SUCCESS);
    EXPECT_FALSE(session.namesStoreEntry());
    EXPECT_EQ(session.logicalName(), "");
    EXPECT_EQ(session.connectionDescriptor(), "MYSUPPLY");
    EXPECT_EQ(session.ioResourceDescriptor(), "ASRL1::INSTR");
}

TEST_F(ConfiguredSettings, AnExplicitDescriptorIsNeverReplaced)
{
    storeDriverSession().ioResourceDescriptor = "ASRL1::INSTR";
    storeFurtherSession("ASRL9::INSTR").ioResourceDescriptor = "ASRL2::INSTR";
    EXPECT_EQ(resolveName("ASRL9::INSTR"), VI_SUCCESS);
    EXPECT_FALSE(session.namesStoreEntry());
    EXPECT_EQ(session.logicalName(), "");
    EXPECT_EQ(session.connectionDescriptor(), "ASRL9::INSTR");
}

TEST_F(ConfiguredSettings, FlagsAndSetupOfANamedEntryReplaceThoseOfTheDriversOwn)
{
    StoredDriverSession& own = storeDriverSession();
    own.cache = VI_TRUE;
    own.recordCoercions = VI_TRUE;
    own.driverSetup = "Model:Own,Own:1";
    StoredDriverSession& bench = storeFurtherSession("BenchSupply");
    bench.recordCoercions = VI_FALSE;
    bench.queryInstrumentStatus = VI_TRUE;
    bench.driverSetup = "Model:Bench";
    EXPECT_EQ(resolveName("BenchSupply"), VI_SUCCESS);
    EXPECT_FALSE(session.cache());
    EXPECT_FALSE(session.recordCoercions());
    EXPECT_TRUE(session.queryInstrumentStatus());
    EXPECT_EQ(session.driverSetup(), "Model:Bench");
    EXPECT_THAT(session.driverSetupOptions(), ElementsAre(Pair("Model", "Bench")));
    EXPECT_EQ(session.model(), "Bench");
}

TEST_F(ConfiguredSettings, TheOptionStringOverridesANamedEntry)
{
    storeFurtherSession("BenchSupply").simulate = VI_TRUE;
    EXPECT_EQ(session.ResolveConfiguration("BenchSupply", "Simulate=0"), VI_SUCCESS);
    EXPECT_FALSE(session.simulate());
    EXPECT_FALSE(session.initialSimulate());
}

TEST_F(ConfiguredSettings, TheConnectionIsOpenedOnTheDescriptorOfTheEntry)
{
    answer("*IDN?", "Tessaro Instruments,KVX2833T,SN1,V2.34");
    storeFurtherSession("BenchSupply").ioResourceDescriptor = "TCPIP0::10.0.0.1::5025::SOCKET";
    EXPECT_EQ(session.Initialize("BenchSupply", true, false, ""), VI_SUCCESS);
    EXPECT_THAT(calls("viOpen("), ElementsAre("viOpen(1, \"TCPIP0::10.0.0.1::5025::SOCKET\", 0, 2000)"));
    EXPECT_EQ(session.resourceName(), "BenchSupply");
    EXPECT_EQ(session.Close(), VI_SUCCESS);
}

TEST_F(ConfiguredSettings, AnInterchangeCheckOfTheStoreIsRefusedUnlessTheOptionStringTurnsItOff)
{
    storeDriverSession().interchangeCheck = VI_TRUE;
    EXPECT_EQ(session.Initialize("", false, false, "Simulate=1"), code(0xBFFA004C));
    TestSession second(vi);
    EXPECT_EQ(second.Initialize("", false, false, "Simulate=1, InterchangeCheck=0"), VI_SUCCESS);
}

TEST_F(ConfiguredSettings, ASimulatedSessionIsOfTheDefaultModelUntilItIsIdentified)
{
    EXPECT_EQ(session.ResolveConfiguration("", "Simulate=1"), VI_SUCCESS);
    EXPECT_EQ(session.model(), "KVX2833T");
    EXPECT_EQ(session.Initialize("", true, false, "Cache=1"), code(0xBFFA4214));
    TestSession identified(vi);
    IviSession_ClearError(vi);
    EXPECT_EQ(identified.Initialize("", false, false, "Simulate=1"), VI_SUCCESS);
    EXPECT_EQ(identified.model(), "KVX2803T");
    TestSession queried(vi);
    EXPECT_EQ(queried.Initialize("", true, false, "Simulate=1"), code(0xBFFA005E));
    EXPECT_EQ(recorded(), (ErrorEntry{code(0xBFFA005E), "Instrument ID query failed."}));
}

// ---- Physical names

TEST_F(ConfiguredSettings, PhysicalNamesAreKeptByTheirRepeatedCapability)
{
    storeRichEntry();
    configurationStore().softwareModules.front().physicalNames = {
        {"OutputChannel2"}, {"Trigger1", "Trigger"}, {"OutputChannel1"}};
    EXPECT_EQ(resolve(), VI_SUCCESS);
    EXPECT_THAT(session.physicalNames(),
                ElementsAre(Pair("OutputChannel", ElementsAre("OutputChannel2", "OutputChannel1")),
                            Pair("Trigger", ElementsAre("Trigger1"))));
}

TEST_F(ConfiguredSettings, PhysicalNamesThatAreReadTwiceAreThereOnce)
{
    storeRichEntry();
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(resolve(), VI_SUCCESS);
        EXPECT_THAT(session.physicalNames(),
                    ElementsAre(Pair("OutputChannel", ElementsAre("OutputChannel1", "OutputChannel2"))));
    }
}

TEST_F(ConfiguredSettings, APhysicalNameThatTheStoreListsTwiceIsThereTwice)
{
    storeRichEntry();
    configurationStore().softwareModules.front().physicalNames = {{"B"}, {"A"}, {"B"}};
    EXPECT_EQ(resolve(), VI_SUCCESS);
    EXPECT_THAT(session.physicalNames(), ElementsAre(Pair("OutputChannel", ElementsAre("B", "A", "B"))));
}

TEST_F(ConfiguredSettings, WithoutAModuleThereAreNoPhysicalNames)
{
    storeDriverSession();
    storeSoftwareModule().physicalNames = {{"OutputChannel1"}};
    EXPECT_EQ(resolve(), VI_SUCCESS);
    EXPECT_THAT(session.physicalNames(), IsEmpty());
}

TEST_F(ConfiguredSettings, TheModuleOfANamedEntryIsTheOneUsed)
{
    storeRichEntry();
    storeRichFurtherSession();
    EXPECT_EQ(resolveName("BenchSupply"), VI_SUCCESS);
    EXPECT_THAT(session.physicalNames(), ElementsAre(Pair("OutputChannel", ElementsAre("OutputChannel3"))));
}

TEST_F(ConfiguredSettings, ANamedEntryWithoutASoftwareModuleLeavesNoPhysicalNames)
{
    storeRichEntry();
    storeRichFurtherSession().softwareModule.reset();
    EXPECT_EQ(resolveName("BenchSupply"), VI_SUCCESS);
    EXPECT_THAT(session.physicalNames(), IsEmpty());
    EXPECT_EQ(openConfigHandles(), 0U);
}

// ---- Operations on their own

class StoreReaders : public ConfigurationStoreTest
{
public:
    ~StoreReaders() override
    {
        IviConfig_DisposeHandle(entry);
        IviConfig_Close(store);
    }

    void open()
    {
        IviConfig_Initialize(&store);
        IviConfig_Deserialize(store, "/store/process.xml");
        IviConfig_GetDriverSession(store, "KVX2800T", &entry);
    }

    IviConfigStoreHandle store = nullptr;
    IviDriverSessionHandle entry = nullptr;
};

TEST_F(StoreReaders, TheReaderOfEntriesTakesAllButSettingsAndPhysicalNames)
{
    storeRichEntry().driverSetup = "Model:A";
    open();
    EXPECT_EQ(session.ReadDriverSession(entry), VI_SUCCESS);
    EXPECT_EQ(session.ioResourceDescriptor(), "ASRL1::INSTR");
    EXPECT_EQ(session.model(), "A");
    EXPECT_FALSE(session.virtualNames().empty());
    EXPECT_THAT(session.configuredStrings(), IsEmpty());
    EXPECT_THAT(session.physicalNames(), IsEmpty());
    EXPECT_EQ(openConfigHandles(), 2U);
}

TEST_F(StoreReaders, TheReaderOfSettingsTakesNothingElse)
{
    storeRichEntry();
    open();
    EXPECT_EQ(session.ReadConfigurableInitialSettings(entry), VI_SUCCESS);
    EXPECT_THAT(session.configuredIntegers(), ElementsAre(Pair("Retries", 3)));
    EXPECT_TRUE(session.virtualNames().empty());
    EXPECT_EQ(session.ioResourceDescriptor(), "");
    EXPECT_EQ(openConfigHandles(), 2U);
}

TEST_F(StoreReaders, TheReaderOfVirtualNamesTakesNothingElse)
{
    storeRichEntry();
    open();
    EXPECT_EQ(session.ReadVirtualNames(entry), VI_SUCCESS);
    std::string text;
    EXPECT_TRUE(session.mappedText("Rail3", text));
    EXPECT_EQ(text, "OutputChannel4");
    EXPECT_EQ(session.ioResourceDescriptor(), "");
    EXPECT_EQ(openConfigHandles(), 2U);
}

TEST_F(StoreReaders, TheReaderOfPhysicalNamesTakesThoseOfAModule)
{
    storeRichEntry();
    open();
    IviSoftwareModuleHandle module = nullptr;
    ASSERT_EQ(IviConfig_GetSessionSoftwareModuleReference(entry, &module), VI_SUCCESS);
    EXPECT_EQ(session.ReadPhysicalNames(module), VI_SUCCESS);
    IviConfig_DisposeHandle(module);
    EXPECT_THAT(session.physicalNames(),
                ElementsAre(Pair("OutputChannel", ElementsAre("OutputChannel1", "OutputChannel2"))));
    EXPECT_EQ(openConfigHandles(), 2U);
}

} // namespace
