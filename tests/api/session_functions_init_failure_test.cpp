#include "tests/support/driver/api_fixture.h"

#include <stdexcept>

// Init with one platform call failing, again and again with the next one, until none is left.

namespace
{

using namespace kvxtest;

struct Way
{
    const char* name;
    const char* options;
    ViBoolean idQuery;
    ViBoolean reset;
    bool hasStoreEntry;
    bool checksStatus = false;
};

void PrintTo(const Way& way, std::ostream* stream)
{
    *stream << way.name;
}

class InitFailure : public ApiTest, public testing::WithParamInterface<Way>
{
public:
    static void prepare()
    {
        startOver();
        if (GetParam().hasStoreEntry)
            configurationStore().driverSession.emplace().ioResourceDescriptor = "ASRL1::INSTR";
    }

    ViStatus initialize() { return init(GetParam().options, &vi, GetParam().idQuery, GetParam().reset); }

    void closeSession()
    {
        clearFailures();
        EXPECT_EQ(KVX2800T_close(vi), VI_SUCCESS);
        vi = VI_NULL;
    }

    /// The calls of an init that succeeds.
    std::vector<std::string> successfulCalls()
    {
        prepare();
        EXPECT_EQ(initialize(), VI_SUCCESS);
        std::vector<std::string> sequence = calls();
        closeSession();
        return sequence;
    }

    /// What is sent last without a reset.
    static std::string lastCommandOfOpening() { return GetParam().checksStatus ? "*ESR?\n" : "*IDN?\n"; }

    static std::string functionOf(const std::string& call) { return call.substr(0, call.find('(')); }
};

/// A failure that init passes over: of the reset, and of forgetting an expected error.
bool isPassedOver(const std::string& call)
{
    return call.ends_with(R"("*RST\n"))") || call == "IviConfig_ClearError()";
}

/// What init has to record when a call fails; nothing where it has to pass the status on unrecorded.
ErrorEntry expectedRecord(const std::string& function, const std::string& lastCommand)
{
    if (function.starts_with("IviSession_"))
        return {};
    if (function.starts_with("IviConfig_"))
        return {kInjected, function + " failed"};
    const bool opening = lastCommand.empty() || lastCommand == "*IDN?\n";
    return {kIoError, opening ? "I/O error.  Insufficient location information or resource not present in the system"
                              : "I/O error."};
}

/// The command that a call has to do with: its own, or the one in front of a viRead.
std::string commandAt(const std::vector<std::string>& sequence, std::size_t index)
{
    for (std::size_t i = index + 1; i-- > 0;)
        for (const char* command : {"*IDN?", "*CLS", "*ESR?", "*RST"})
            if (sequence[i].find(std::string("\"") + command) != std::string::npos)
                return std::string(command) + "\n";
    return "";
}

TEST_P(InitFailure, OfEachCallIsReportedAndLeavesNothingOpen)
{
    const std::vector<std::string> sequence = successfulCalls();
    std::size_t n = 1;
    for (;; ++n) {
        prepare();
        failNthCall(n, kInjected);
        vi = 77;
        const ViStatus status = initialize();
        if (!failureHappened()) {
            closeSession();
            break;
        }
        ASSERT_LE(n, sequence.size());
        const std::string& failing = sequence[n - 1];
        const std::string function = functionOf(failing);
        SCOPED_TRACE(failing + ", call " + std::to_string(n));
        const bool releases = function == "IviConfig_DisposeHandle" || function == "IviConfig_Close";
        EXPECT_EQ(openConfigHandles(), releases ? 1U : 0U);
        if (isPassedOver(failing)) {
            EXPECT_EQ(status, VI_SUCCESS);
            EXPECT_EQ(timesRecorded(), 0U);
            closeSession();
            continue;
        }
        const ErrorEntry expected = expectedRecord(function, commandAt(sequence, n - 1));
        EXPECT_EQ(status, expected.code == VI_SUCCESS ? kInjected : expected.code);
        EXPECT_EQ(threadError(), expected);
        if (function == "IviSession_GetDataPtr") {
            // The session is complete by then; its handle is the caller's.
            EXPECT_EQ(vi, kFirstSession);
            closeSession();
        }
        EXPECT_EQ(vi, ViSession{VI_NULL});
        EXPECT_EQ(openVisaSessions(), 0U);
    }
    EXPECT_EQ(n, sequence.size() + 1);
}

TEST_P(InitFailure, LeavesAHandleThatLeadsToNoSession)
{
    for (const char* function : {"IviConfig_Initialize", "viOpen", "viSetBuf", "viWrite", "viRead"})
        for (const ViStatus ignored : {VI_SUCCESS, kInjected}) {
            SCOPED_TRACE(function);
            prepare();
            failCall(function, VI_ERROR_IO);
            failNthCallOf("IviSession_SetDataPtr", 2, ignored);
            EXPECT_LT(initialize(), 0);
            EXPECT_EQ(calls().back(), "IviSession_SetDataPtr(1001)");
            EXPECT_THAT(calls("IviSession_SetDataPtr"), testing::SizeIs(2));
            if (ignored < 0)
                continue;
            ViAddr data = this;
            EXPECT_EQ(IviSession_GetDataPtr(kFirstSession, &data), VI_SUCCESS);
            EXPECT_EQ(data, nullptr);
            EXPECT_EQ(KVX2800T_reset(kFirstSession), kInvalidSession);
            EXPECT_EQ(KVX2800T_close(kFirstSession), VI_SUCCESS);
            EXPECT_EQ(openIviSessions(), 1U);
        }
}

TEST_P(InitFailure, OfTheRegistrationIsNotFollowedByAnother)
{
    prepare();
    failCall("IviSession_SetDataPtr", kInjected);
    EXPECT_EQ(initialize(), kInjected);
    EXPECT_THAT(calls(), testing::ElementsAre("IviSession_New()", "IviSession_SetDataPtr(1001)"));
    EXPECT_EQ(vi, ViSession{VI_NULL});
}

TEST_P(InitFailure, OfTheCleanUpDoesNotReplaceTheFirstOne)
{
    for (const char* function : {"viSetBuf", "viWrite", "viRead"}) {
        prepare();
        failCall(function, VI_ERROR_IO);
        failCall("viClose", VI_ERROR_CLOSING_FAILED);
        vi = 77;
        EXPECT_EQ(initialize(), kIoError) << function;
        EXPECT_EQ(vi, ViSession{VI_NULL});
        EXPECT_EQ(threadError(), (ErrorEntry{kIoError, "I/O error.  Insufficient location information or resource not "
                                                       "present in the system"}))
            << function;
    }
}

TEST_P(InitFailure, ThatCannotBeRecordedReturnsTheSessionServicesStatus)
{
    prepare();
    failCall("viOpen", VI_ERROR_RSRC_NFOUND);
    failCall("IviSession_SetError", kInjected);
    vi = 77;
    EXPECT_EQ(initialize(), kInjected);
    EXPECT_EQ(vi, ViSession{VI_NULL});
    EXPECT_EQ(errorOf(kFirstSession), ErrorEntry());
    EXPECT_EQ(errorOf(VI_NULL), ErrorEntry());
    EXPECT_EQ(openVisaSessions(), 0U);
    EXPECT_EQ(openIviSessions(), 1U);
}

TEST_P(InitFailure, IsNoWarningOfTheSessionService)
{
    prepare();
    for (const char* function : {"IviSession_New", "IviSession_SetDataPtr", "IviSession_GetDataPtr"})
        failCall(function, 5);
    // That of the last look-up is the whole call's.
    EXPECT_EQ(initialize(), 5);
    EXPECT_EQ(vi, kFirstSession);
    EXPECT_EQ(written().back(), GetParam().reset == VI_FALSE ? lastCommandOfOpening() : "*RST\n");
    EXPECT_EQ(timesRecorded(), 0U);
    closeSession();
}

TEST_P(InitFailure, OfAHandleWithoutItsSessionLeavesTheHandleAndResetsNothing)
{
    prepare();
    giveNullDataPtr(1);
    EXPECT_EQ(initialize(), kInvalidSession);
    EXPECT_EQ(vi, kFirstSession);
    EXPECT_EQ(written().back(), lastCommandOfOpening());
    EXPECT_EQ(timesRecorded(), 0U);
    EXPECT_EQ(lockDepth(vi), 0U);
    closeSession();
}

class InitException : public ApiTest, public testing::WithParamInterface<const char*>
{
};

TEST_P(InitException, LeavesASessionThatCanBeClosedAndNothingOpenBehindIt)
{
    answer("*ESR?", GetParam());
    EXPECT_THROW(init("QueryInstrStatus=1", &vi, VI_TRUE, VI_TRUE), std::logic_error);
    EXPECT_THAT(written(), testing::ElementsAre("*IDN?\n", "*CLS\n", "*ESR?\n"));
    EXPECT_EQ(vi, kFirstSession);
    EXPECT_EQ(timesRecorded(), 0U);
    EXPECT_EQ(lockDepth(vi), 0U);
    EXPECT_EQ(openConfigHandles(), 0U);
    EXPECT_EQ(KVX2800T_close(vi), VI_SUCCESS);
    EXPECT_EQ(openVisaSessions(), 0U);
    EXPECT_EQ(openIviSessions(), 0U);
    vi = VI_NULL;
}

TEST_P(InitException, IsAStatusOfASessionWithSafeErrors)
{
    const std::string text = "Unexpected response from instrument.  The reply was '" + std::string(GetParam()) + "'.";
    for (const bool isStored : {false, true}) {
        startOver();
        answer("*ESR?", GetParam());
        if (isStored)
            configurationStore().driverSession.emplace().driverSetup = "SafeErrors:1";
        const std::string options = isStored ? "" : ",DriverSetup=SafeErrors:1";
        EXPECT_EQ(init("QueryInstrStatus=1" + options, &vi, VI_TRUE, VI_TRUE), code(0xBFFA0059));
        EXPECT_EQ(vi, ViSession{VI_NULL});
        EXPECT_EQ(errorOf(kFirstSession), (ErrorEntry{code(0xBFFA0059), text}));
        EXPECT_EQ(timesRecorded(), 1U);
        EXPECT_EQ(lockDepth(kFirstSession), 0U);
        EXPECT_EQ(openConfigHandles(), 0U);
        EXPECT_EQ(openVisaSessions(), 0U);
    }
}

INSTANTIATE_TEST_SUITE_P(Replies, InitException, testing::Values("no number", "", "99999999999"));

INSTANTIATE_TEST_SUITE_P(
    Ways, InitFailure,
    testing::Values(Way{"plain", "", VI_FALSE, VI_FALSE, false},
                    Way{"withStatusCheck", "queryinstrstatus=true", VI_FALSE, VI_FALSE, false, true},
                    Way{"withIdQuery", "", VI_TRUE, VI_FALSE, false}, Way{"withReset", "", VI_FALSE, VI_TRUE, false},
                    Way{"withStoreEntry", "", VI_FALSE, VI_FALSE, true}),
    [](const auto& way) { return std::string(way.param.name); });

} // namespace
