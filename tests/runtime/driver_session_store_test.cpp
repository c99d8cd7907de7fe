#include "tests/support/driver/configuration_store_fixture.h"

#include <algorithm>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

namespace
{

using namespace kvxtest;
using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;
using testing::Pointee;
using testing::SizeIs;

TEST_F(ConfigurationStoreTest, WithoutAnEntryTheDefaultsHold)
{
    EXPECT_EQ(resolve(), VI_SUCCESS);
    EXPECT_TRUE(session.cache());
    EXPECT_FALSE(session.interchangeCheck());
    EXPECT_FALSE(session.queryInstrumentStatus());
    EXPECT_TRUE(session.rangeCheck());
    EXPECT_FALSE(session.recordCoercions());
    EXPECT_FALSE(session.simulate());
    EXPECT_EQ(session.logicalName(), "");
    EXPECT_EQ(session.ioResourceDescriptor(), "");
    EXPECT_EQ(session.driverSetup(), "");
    EXPECT_EQ(session.model(), "");
}

TEST_F(ConfigurationStoreTest, WithoutAnEntryNoErrorAndNoHandleIsLeft)
{
    EXPECT_EQ(resolve(), VI_SUCCESS);
    EXPECT_EQ(openConfigHandles(), 0U);
    EXPECT_EQ(recorded(), ErrorEntry());
    EXPECT_EQ(errorOf(VI_NULL), ErrorEntry());
}

TEST_F(ConfigurationStoreTest, TheStoreIsLoadedFromTheProcessesLocation)
{
    EXPECT_EQ(resolve(), VI_SUCCESS);
    expectCallsInOrder({"IviConfig_Initialize()", "IviConfig_GetConfigStorePropertyViString(store, 5, 260)",
                        "IviConfig_Deserialize(store, \"/store/process.xml\")",
                        "IviConfig_GetDriverSession(store, \"KVX2800T\")", "IviConfig_ClearError()",
                        "IviConfig_Close(store)"});
    EXPECT_THAT(calls(), Not(Contains("IviConfig_GetConfigStorePropertyViString(store, 3, 260)")));
}

TEST_F(ConfigurationStoreTest, WithoutALocationOfTheProcessTheMasterStoreIsLoaded)
{
    configurationStore().processDefaultLocation = "";
    EXPECT_EQ(resolve(), VI_SUCCESS);
    expectCallsInOrder({"IviConfig_GetConfigStorePropertyViString(store, 5, 260)",
                        "IviConfig_GetConfigStorePropertyViString(store, 3, 260)",
                        "IviConfig_Deserialize(store, \"/store/master.xml\")"});
}

TEST_F(ConfigurationStoreTest, TheEntryIsLookedUpByTheDriversPrefixWhateverTheResourceName)
{
    storeDriverSession().simulate = VI_TRUE;
    EXPECT_EQ(session.ResolveConfiguration("myPowerSupply", ""), VI_SUCCESS);
    EXPECT_TRUE(session.simulate());
    EXPECT_THAT(calls(), Contains("IviConfig_GetDriverSession(store, \"KVX2800T\")"));
}

TEST_F(ConfigurationStoreTest, AnEntryOfAnotherNameIsNotRead)
{
    StoredDriverSession& entry = storeDriverSession();
    entry.name = "kvx2800t";
    entry.simulate = VI_TRUE;
    EXPECT_EQ(resolve(), VI_SUCCESS);
    EXPECT_FALSE(session.simulate());
}

/// A flag of an entry, and the option that it reaches.
struct Flag
{
    ViBoolean StoredDriverSession::*stored;
    bool (drivekit::DriverSession::*current)() const;
    bool (drivekit::DriverSession::*initial)() const;
    void (drivekit::DriverSession::*set)(bool);
};

using Session = drivekit::DriverSession;

const Flag kFlags[] = {
    {&StoredDriverSession::cache, &Session::cache, &Session::initialCache, &Session::setCache},
    {&StoredDriverSession::interchangeCheck, &Session::interchangeCheck, &Session::initialInterchangeCheck,
     &Session::setInterchangeCheck},
    {&StoredDriverSession::queryInstrumentStatus, &Session::queryInstrumentStatus,
     &Session::initialQueryInstrumentStatus, &Session::setQueryInstrumentStatus},
    {&StoredDriverSession::rangeCheck, &Session::rangeCheck, &Session::initialRangeCheck, &Session::setRangeCheck},
    {&StoredDriverSession::recordCoercions, &Session::recordCoercions, &Session::initialRecordCoercions,
     &Session::setRecordCoercions},
    {&StoredDriverSession::simulate, &Session::simulate, &Session::initialSimulate, &Session::setSimulate},
};

TEST_F(ConfigurationStoreTest, EachFlagOfAnEntryReachesItsOption)
{
    for (const Flag& chosen : kFlags) {
        storeDriverSession().*chosen.stored = VI_TRUE;
        TestSession fresh(vi);
        EXPECT_EQ(fresh.ResolveConfiguration("", ""), VI_SUCCESS);
        for (const Flag& other : kFlags) {
            const bool expected = other.stored == chosen.stored;
            EXPECT_EQ((fresh.*other.current)(), expected);
            EXPECT_EQ((fresh.*other.initial)(), expected);
        }
    }
}

TEST_F(ConfigurationStoreTest, OnlyExactlyTrueIsTrue)
{
    for (const ViBoolean value : std::initializer_list<ViBoolean>{2, 0xFFFF, 256}) {
        StoredDriverSession& entry = storeDriverSession();
        entry.simulate = value;
        entry.cache = value;
        EXPECT_EQ(resolve(), VI_SUCCESS);
        EXPECT_FALSE(session.simulate()) << value;
        EXPECT_FALSE(session.cache()) << value;
    }
}

TEST_F(ConfigurationStoreTest, TheHardwareAssetsDescriptorIsKept)
{
    storeDriverSession().ioResourceDescriptor = "TCPIP0::10.0.0.1::5025::SOCKET";
    EXPECT_EQ(resolve(), VI_SUCCESS);
    EXPECT_EQ(session.ioResourceDescriptor(), "TCPIP0::10.0.0.1::5025::SOCKET");
    EXPECT_EQ(openConfigHandles(), 0U);
}

TEST_F(ConfigurationStoreTest, AnEntryWithoutAnAssetHasNoDescriptor)
{
    storeDriverSession().ioResourceDescriptor = "ASRL1::INSTR";
    EXPECT_EQ(resolve(), VI_SUCCESS);
    storeDriverSession();
    EXPECT_EQ(resolve(), VI_SUCCESS);
    EXPECT_EQ(session.ioResourceDescriptor(), "");
}

TEST_F(ConfigurationStoreTest, TheSetupTextOfAnEntryIsParsed)
{
    storeDriverSession().driverSetup = "Model:KVX2803T, Trace:1";
    EXPECT_EQ(resolve(), VI_SUCCESS);
    EXPECT_EQ(session.driverSetup(), "Model:KVX2803T, Trace:1");
    EXPECT_EQ(session.model(), "KVX2803T");
}

TEST_F(ConfigurationStoreTest, ABadSetupTextOfAnEntryFails)
{
    storeDriverSession().driverSetup = "A:1,A:2";
    EXPECT_EQ(resolve(), code(0xBFFA0000));
    EXPECT_EQ(recorded(), (ErrorEntry{code(0xBFFA0000),
                                      "Failure cannot recover.  DriverSetup option 'A' appears more than once."}));
    EXPECT_EQ(timesRecorded(), 1U);
    EXPECT_EQ(openConfigHandles(), 0U);
}

TEST_F(ConfigurationStoreTest, TheOptionStringOverridesTheEntry)
{
    StoredDriverSession& entry = storeDriverSession();
    entry.simulate = VI_TRUE;
    entry.driverSetup = "Model:A";
    EXPECT_EQ(resolve("Simulate=0, Cache=1, DriverSetup=Model:B"), VI_SUCCESS);
    EXPECT_FALSE(session.simulate());
    EXPECT_TRUE(session.cache());
    EXPECT_EQ(session.driverSetup(), "Model:B");
    EXPECT_EQ(session.model(), "B");
}

TEST_F(ConfigurationStoreTest, TheOptionStringOverridesTheDefaults)
{
    EXPECT_EQ(resolve("Cache=0, RangeCheck=0, RecordCoercions=1"), VI_SUCCESS);
    EXPECT_FALSE(session.cache());
    EXPECT_FALSE(session.rangeCheck());
    EXPECT_TRUE(session.recordCoercions());
    EXPECT_TRUE(session.initialRecordCoercions());
    EXPECT_FALSE(session.initialCache());
}

TEST_F(ConfigurationStoreTest, LaterChangesLeaveTheInitialFlags)
{
    EXPECT_EQ(resolve(), VI_SUCCESS);
    for (const Flag& flag : kFlags) {
        const bool initial = (session.*flag.current)();
        (session.*flag.set)(!initial);
        EXPECT_EQ((session.*flag.current)(), !initial);
        EXPECT_EQ((session.*flag.initial)(), initial);
    }
}

TEST_F(ConfigurationStoreTest, ASimulatedSessionWithoutAModelGetsTheDefaultOne)
{
    EXPECT_EQ(resolve("Simulate=1"), VI_SUCCESS);
    EXPECT_EQ(session.model(), "KVX2833T");
}

TEST_F(ConfigurationStoreTest, ASimulatedSessionKeepsItsModel)
{
    EXPECT_EQ(resolve("Simulate=1, DriverSetup=Model:KVX2803T"), VI_SUCCESS);
    EXPECT_EQ(session.model(), "KVX2803T");
}

TEST_F(ConfigurationStoreTest, ABadOptionStringFailsAndReleasesEverything)
{
    storeDriverSession().ioResourceDescriptor = "ASRL1::INSTR";
    EXPECT_EQ(resolve("Simulate=maybe"), code(0xBFFA004C));
    EXPECT_EQ(recorded(), (ErrorEntry{code(0xBFFA004C), "The 'maybe' value in the option string is unknown."}));
    EXPECT_EQ(timesRecorded(), 1U);
    EXPECT_EQ(openConfigHandles(), 0U);
}

TEST_F(ConfigurationStoreTest, AFlagOfAnEntryIsNoOptionThatWasGiven)
{
    StoredDriverSession& entry = storeDriverSession();
    entry.simulate = VI_TRUE;
    entry.interchangeCheck = VI_TRUE;
    EXPECT_EQ(resolve("Simulate=0, InterchangeCheck=0, Cache=0, RangeCheck=0, RecordCoercions=0, QueryInstrStatus=0"),
              VI_SUCCESS);
    EXPECT_FALSE(session.simulate());
    EXPECT_FALSE(session.interchangeCheck());
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_F(ConfigurationStoreTest, TheOptionTableHoldsTheOptionStringsOptionsOnly)
{
    storeDriverSession().simulate = VI_TRUE;
    EXPECT_EQ(resolve("Cache=VI_FALSE"), VI_SUCCESS);
    EXPECT_THAT(session.inherentOptionTable(), ElementsAre(Pair("cache", "vi_false")));
}

TEST_F(ConfigurationStoreTest, TheSetupOptionsOfAnEntryCanBeLookedUp)
{
    storeDriverSession().driverSetup = "Model:A,Trace=1";
    EXPECT_EQ(resolve(), VI_SUCCESS);
    EXPECT_THAT(session.driverSetupOptions(), ElementsAre(Pair("Model", "A"), Pair("Trace", "1")));
    EXPECT_THAT(session.driverSetupOption("Trace"), Pointee(std::string("1")));
    EXPECT_EQ(session.driverSetupOption("trace"), nullptr);
}

TEST_F(ConfigurationStoreTest, ASetupOfTheOptionStringReplacesThatOfAnEntryAsAWhole)
{
    storeDriverSession().driverSetup = "Model:A,Trace=1";
    EXPECT_EQ(resolve("DriverSetup=Model:B"), VI_SUCCESS);
    EXPECT_THAT(session.driverSetupOptions(), ElementsAre(Pair("Model", "B")));
}

TEST_F(ConfigurationStoreTest, AConfiguredModelComesBetweenTheEntrysAndTheOptionStrings)
{
    StoredDriverSession& entry = storeDriverSession();
    entry.driverSetup = "Model:OfSetup";
    EXPECT_EQ(resolve(), VI_SUCCESS);
    EXPECT_EQ(session.model(), "OfSetup");
    entry.settings() = {stringComponent("model", "OfSettings")};
    EXPECT_EQ(resolve(), VI_SUCCESS);
    EXPECT_EQ(session.model(), "OfSettings");
    EXPECT_EQ(resolve("DriverSetup=Model:OfOptions"), VI_SUCCESS);
    EXPECT_EQ(session.model(), "OfOptions");
}

TEST_F(ConfigurationStoreTest, OnlyAStringSettingCalledModelInLowerCaseIsAModel)
{
    storeDriverSession().settings() = {stringComponent("Model", "A"), integerComponent("model", 7)};
    EXPECT_EQ(resolve(), VI_SUCCESS);
    EXPECT_EQ(session.model(), "");
}

TEST_F(ConfigurationStoreTest, AModelOfTheModulesSettingsIsAConfiguredModel)
{
    storeSoftwareModule().settings() = {stringComponent("model", "OfModule")};
    EXPECT_EQ(resolve("Simulate=1"), VI_SUCCESS);
    EXPECT_EQ(session.model(), "OfModule");
}

TEST_F(ConfigurationStoreTest, ApplyingAConfiguredModelWithoutOneLeavesTheModel)
{
    EXPECT_EQ(session.ApplyDriverSetupOption("Model", "A"), VI_SUCCESS);
    EXPECT_EQ(session.ApplyConfiguredModel(), VI_SUCCESS);
    EXPECT_EQ(session.model(), "A");
}

TEST_F(ConfigurationStoreTest, AnEntryThatSimulatesWithoutAModelGetsTheDefaultOne)
{
    storeDriverSession().simulate = VI_TRUE;
    EXPECT_EQ(resolve(), VI_SUCCESS);
    EXPECT_EQ(session.model(), "KVX2833T");
}

TEST_F(ConfigurationStoreTest, WithoutSimulationAModelStaysEmpty)
{
    storeDriverSession().simulate = VI_TRUE;
    EXPECT_EQ(resolve("Simulate=0"), VI_SUCCESS);
    EXPECT_EQ(session.model(), "");
}

TEST_F(ConfigurationStoreTest, AFailedResolutionLeavesTheInitialFlags)
{
    EXPECT_EQ(resolve("Cache=0, Simulate=1, Foo=1"), code(0xBFFA004B));
    EXPECT_TRUE(session.simulate());
    EXPECT_FALSE(session.initialSimulate());
}

TEST_F(ConfigurationStoreTest, EveryResolutionStartsFromNothing)
{
    storeRichEntry();
    EXPECT_EQ(session.ResolveConfiguration("KVX2800T", ""), VI_SUCCESS);
    configurationStore() = {};
    EXPECT_EQ(resolve(), VI_SUCCESS);
    EXPECT_EQ(session.logicalName(), "");
    EXPECT_EQ(session.ioResourceDescriptor(), "");
    EXPECT_EQ(session.connectionDescriptor(), "resource");
    EXPECT_FALSE(session.namesStoreEntry());
    EXPECT_THAT(session.configuredBooleans(), IsEmpty());
    EXPECT_THAT(session.configuredIntegers(), IsEmpty());
    EXPECT_THAT(session.configuredReals(), IsEmpty());
    EXPECT_THAT(session.configuredStrings(), IsEmpty());
    EXPECT_THAT(session.physicalNames(), IsEmpty());
    EXPECT_TRUE(session.virtualNames().empty());
    EXPECT_TRUE(session.cache());
}

// ---- Texts longer than the buffers they are first read into

/// A length that a text has more than its first buffer, and whether the server ends a text that it cuts with a NUL.
struct TextLength
{
    int beyondBuffer;
    bool endsWithNul;
};

void PrintTo(const TextLength& length, std::ostream* stream)
{
    *stream << length.beyondBuffer << (length.endsWithNul ? "" : ", without a NUL");
}

constexpr std::size_t kLongest = 65535;

class StoredTexts : public ConfigurationStoreTest, public testing::WithParamInterface<TextLength>
{
public:
    StoredTexts()
    {
        if (!GetParam().endsWithNul)
            fillBuffersWithoutNul();
    }

    /// A text that is so much longer than a buffer of this size; no two places in a row are alike.
    static std::string textFor(int bufferSize)
    {
        std::string text;
        while (text.size() < static_cast<std::size_t>(bufferSize + GetParam().beyondBuffer))
            text += static_cast<char>('a' + text.size() % 26);
        return text;
    }

    /// The sizes of the reads of one text.
    static std::vector<std::size_t> readsOf(const std::string& text, std::size_t firstSize)
    {
        if (text.size() < firstSize)
            return {firstSize};
        return {firstSize, std::min(text.size() + 1, kLongest + 1)};
    }

    void expectLocation(const std::string& property, const std::string& text)
    {
        constexpr std::size_t kLocationSize = 260;
        EXPECT_EQ(resolve(), VI_SUCCESS);
        EXPECT_THAT(calls("IviConfig_Deserialize"),
                    ElementsAre("IviConfig_Deserialize(store, \"" + text.substr(0, kLongest) + "\")"));
        std::vector<std::string> reads;
        for (const std::size_t size : readsOf(text, kLocationSize))
            reads.push_back("IviConfig_GetConfigStorePropertyViString(store, " + property + ", " +
                            std::to_string(size) + ")");
        EXPECT_THAT(calls("IviConfig_GetConfigStorePropertyViString(store, " + property), ElementsAreArray(reads));
        EXPECT_EQ(timesRecorded(), 0U);
        clearLog();
    }
};

TEST_P(StoredTexts, AreReadWholeUpTo64KiB)
{
    const std::string text = textFor(1024);
    const std::string whole = text.substr(0, kLongest);
    StoredDriverSession& entry = storeRichEntry();
    entry.ioResourceDescriptor = text;
    entry.driverSetup = text;
    entry.virtualNames = {{"Core", text, {}}, {text, "OutputChannel3", {}}};
    entry.settings() = {stringComponent(text, text)};
    configurationStore().softwareModules.front().physicalNames = {{text, text}};
    EXPECT_EQ(resolve(), VI_SUCCESS);
    EXPECT_EQ(session.ioResourceDescriptor(), whole);
    EXPECT_EQ(session.driverSetup(), whole);
    EXPECT_THAT(session.configuredStrings(), ElementsAre(Pair(whole, whole)));
    EXPECT_THAT(session.physicalNames(), ElementsAre(Pair(whole, ElementsAre(whole))));
    std::string mapped;
    EXPECT_TRUE(session.mappedText("Core", mapped));
    EXPECT_EQ(mapped, whole);
    mapped.clear();
    EXPECT_TRUE(session.mappedText(whole, mapped));
    EXPECT_EQ(mapped, "OutputChannel3");
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_P(StoredTexts, OfLocationsAreReadWholeUpTo64KiB)
{
    configurationStore().processDefaultLocation = textFor(260);
    expectLocation("5", textFor(260));
    configurationStore().processDefaultLocation = "";
    configurationStore().masterLocation = textFor(260);
    expectLocation("3", textFor(260));
}

INSTANTIATE_TEST_SUITE_P(Lengths, StoredTexts,
                         testing::Values(TextLength{-2, true}, TextLength{-1, true}, TextLength{0, true},
                                         TextLength{1, true}, TextLength{1000, true}, TextLength{64511, true},
                                         TextLength{65276, true}, TextLength{90000, true}, TextLength{0, false},
                                         TextLength{1, false}, TextLength{1000, false}, TextLength{90000, false}));

TEST_F(ConfigurationStoreTest, APositiveStatusUpToTheSizeOfTheBufferIsAccepted)
{
    storeRichEntry().driverSetup = "Model:KVX2833T";
    for (const ViStatus status : {1, 1023, 1024}) {
        failNthCallOf("IviConfig_GetDriverSessionPropertyViString", 1, status);
        EXPECT_EQ(resolve(), VI_SUCCESS);
        EXPECT_EQ(session.driverSetup(), "Model:KVX2833T");
        EXPECT_THAT(calls("IviConfig_GetDriverSessionPropertyViString"), SizeIs(1));
        clearLog();
    }
}

TEST_F(ConfigurationStoreTest, ATextIsReadTwiceAtMostWhateverTheServerSaysOfItsSize)
{
    storeRichEntry().driverSetup = "Model:KVX2833T";
    failCall("IviConfig_GetDriverSessionPropertyViString", std::numeric_limits<ViStatus>::max());
    EXPECT_EQ(resolve(), VI_SUCCESS);
    EXPECT_EQ(session.driverSetup(), "Model:KVX2833T");
    EXPECT_THAT(calls("IviConfig_GetDriverSessionPropertyViString"),
                ElementsAre("IviConfig_GetDriverSessionPropertyViString(driverSession, 10, 1024)",
                            "IviConfig_GetDriverSessionPropertyViString(driverSession, 10, 65536)"));
}

TEST_F(ConfigurationStoreTest, AFailureOfTheSecondReadOfATextIsRecorded)
{
    constexpr ViStatus kSecondFailed = code(0xBFFA1777);
    storeRichEntry().driverSetup = std::string(1024, 'x');
    failNthCallOf("IviConfig_GetDriverSessionPropertyViString", 2, kSecondFailed);
    EXPECT_EQ(resolve(), kSecondFailed);
    EXPECT_EQ(timesRecorded(), 1U);
    EXPECT_EQ(openConfigHandles(), 0U);
}

} // namespace
