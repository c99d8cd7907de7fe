#include "runtime_fixture.h"

#include <algorithm>

namespace
{

using namespace kvxtest;
using testing::Contains;
using testing::Not;

constexpr ViStatus kFailed = code(0xBFFA1777);

/// Whether the calls hold these, in this order, with others between them or not.
void expectCallsInOrder(const std::vector<std::string>& expected)
{
    const std::vector<std::string> made = calls();
    auto from = made.begin();
    for (const std::string& call : expected) {
        from = std::find(from, made.end(), call);
        ASSERT_NE(from, made.end()) << call << " in " << testing::PrintToString(made);
        ++from;
    }
}

class ConfigurationStoreTest : public RuntimeTest
{
public:
    ViStatus resolve(const std::string& options = "") { return session.ResolveConfiguration("resource", options); }

    static StoredDriverSession& storeDriverSession() { return configurationStore().driverSession.emplace(); }

    TestSession session{vi};
};

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

TEST_F(ConfigurationStoreTest, EachFlagOfAnEntryReachesItsOption)
{
    struct Flag
    {
        ViBoolean StoredDriverSession::*stored;
        bool (drivekit::DriverSession::*current)() const;
        bool (drivekit::DriverSession::*initial)() const;
    };
    using Session = drivekit::DriverSession;
    const Flag flags[] = {
        {&StoredDriverSession::cache, &Session::cache, &Session::initialCache},
        {&StoredDriverSession::interchangeCheck, &Session::interchangeCheck, &Session::initialInterchangeCheck},
        {&StoredDriverSession::queryInstrumentStatus, &Session::queryInstrumentStatus,
         &Session::initialQueryInstrumentStatus},
        {&StoredDriverSession::rangeCheck, &Session::rangeCheck, &Session::initialRangeCheck},
        {&StoredDriverSession::recordCoercions, &Session::recordCoercions, &Session::initialRecordCoercions},
        {&StoredDriverSession::simulate, &Session::simulate, &Session::initialSimulate},
    };
    for (const Flag& chosen : flags) {
        storeDriverSession().*chosen.stored = VI_TRUE;
        TestSession fresh(vi);
        EXPECT_EQ(fresh.ResolveConfiguration("", ""), VI_SUCCESS);
        for (const Flag& other : flags) {
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

TEST_F(ConfigurationStoreTest, AnEntryIsReadInTheOrderAssetFlagsSetup)
{
    storeDriverSession().ioResourceDescriptor = "ASRL1::INSTR";
    EXPECT_EQ(resolve(), VI_SUCCESS);
    expectCallsInOrder({
        "IviConfig_GetDriverSession(store, \"KVX2800T\")",
        "IviConfig_GetSessionHardwareAssetReference(driverSession)",
        "IviConfig_GetHardwareAssetPropertyViString(hardwareAsset, 3, 1024)",
        "IviConfig_GetDriverSessionPropertyViBoolean(driverSession, 4)",
        "IviConfig_GetDriverSessionPropertyViBoolean(driverSession, 5)",
        "IviConfig_GetDriverSessionPropertyViBoolean(driverSession, 6)",
        "IviConfig_GetDriverSessionPropertyViBoolean(driverSession, 7)",
        "IviConfig_GetDriverSessionPropertyViBoolean(driverSession, 8)",
        "IviConfig_GetDriverSessionPropertyViBoolean(driverSession, 9)",
        "IviConfig_GetDriverSessionPropertyViString(driverSession, 10, 1024)",
        "IviConfig_DisposeHandle(driverSession)",
        "IviConfig_Close(store)",
    });
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

TEST_F(ConfigurationStoreTest, ASetupTextThatIsTooLongIsCut)
{
    storeDriverSession().driverSetup = std::string(2000, 'x');
    EXPECT_EQ(resolve(), VI_SUCCESS);
    EXPECT_EQ(session.driverSetup(), std::string(1023, 'x'));
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
    EXPECT_EQ(resolve("QueryInstrStatus=1"), VI_SUCCESS);
    session.setQueryInstrumentStatus(false);
    EXPECT_TRUE(session.initialQueryInstrumentStatus());
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

/// Whether a failure of this call is one of the resolution; forgetting an expected error cannot fail it.
bool matters(const std::string& call)
{
    return call.starts_with("IviConfig_") && !call.starts_with("IviConfig_ClearError");
}

bool releases(const std::string& call)
{
    return call.starts_with("IviConfig_DisposeHandle") || call.starts_with("IviConfig_Close");
}

TEST_F(ConfigurationStoreTest, EveryFailureOfTheServerIsRecordedOnceAndReturned)
{
    storeDriverSession().ioResourceDescriptor = "ASRL1::INSTR";
    ASSERT_EQ(resolve(), VI_SUCCESS);
    const std::vector<std::string> sequence = calls();
    for (std::size_t n = 1; n <= sequence.size(); ++n) {
        const std::string& failing = sequence[n - 1];
        if (!matters(failing))
            continue;
        SCOPED_TRACE(failing + ", call " + std::to_string(n));
        startOver();
        storeDriverSession().ioResourceDescriptor = "ASRL1::INSTR";
        TestSession fresh(vi);
        failNthCall(n, kFailed);
        EXPECT_EQ(fresh.ResolveConfiguration("", ""), kFailed);
        EXPECT_TRUE(failureHappened());
        EXPECT_EQ(recorded(), (ErrorEntry{kFailed, ""}));
        EXPECT_EQ(errorOf(VI_NULL), (ErrorEntry{kFailed, failing.substr(0, failing.find('(')) + " failed"}));
        EXPECT_EQ(timesRecorded(), 1U);
        EXPECT_EQ(openConfigHandles(), releases(failing) ? 1U : 0U);
    }
}

TEST_F(ConfigurationStoreTest, AFailedClearOfAnExpectedErrorIsIgnored)
{
    failCall("IviConfig_ClearError", kFailed);
    EXPECT_EQ(resolve("Simulate=1"), VI_SUCCESS);
    EXPECT_TRUE(session.simulate());
    EXPECT_EQ(openConfigHandles(), 0U);
}

TEST_F(ConfigurationStoreTest, OfSeveralFailuresTheFirstIsReturned)
{
    storeDriverSession();
    failCall("IviConfig_GetDriverSessionPropertyViBoolean", kFailed);
    failCall("IviConfig_DisposeHandle", code(0xBFFA1220));
    failCall("IviConfig_Close", code(0xBFFA1220));
    EXPECT_EQ(resolve(), kFailed);
    EXPECT_EQ(recorded(), (ErrorEntry{kFailed, ""}));
    EXPECT_EQ(errorOf(VI_NULL), (ErrorEntry{kFailed, "IviConfig_GetDriverSessionPropertyViBoolean failed"}));
}

TEST_F(ConfigurationStoreTest, AnEarlierErrorOfTheThreadStays)
{
    const ErrorEntry earlier{VI_ERROR_TMO, "an earlier error of another driver"};
    IviSession_SetError(VI_NULL, earlier.code, earlier.text.c_str());
    failCall("IviConfig_Deserialize", kFailed);
    EXPECT_EQ(resolve(), kFailed);
    EXPECT_EQ(recorded(), (ErrorEntry{kFailed, ""}));
    EXPECT_EQ(errorOf(VI_NULL), earlier);
}

} // namespace
