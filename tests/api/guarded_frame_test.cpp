#include "api/guarded_frame.h"

#include "base/failures.h"
#include "tests/support/driver/instrument_calls.h"
#include "tests/support/driver/operation_table.h"
#include "tests/support/driver/session_fixture.h"

#include <algorithm>
#include <new>
#include <set>
#include <stdexcept>

namespace
{

using namespace kvxtest;
using testing::Throw;

constexpr ViStatus kWarning = 5;

class GuardedFrame : public ScriptedInstrumentTest
{
public:
    /// Lets the meter of channel 3 throw, and expects this record and the lock given back.
    template <class Exception>
    void expectRecord(const Exception& exception, ViStatus status, const std::string& text)
    {
        EXPECT_CALL(*instrument, measureVoltage(3, testing::_)).WillOnce(Throw(exception));
        ViReal64 volts = kUntouched;
        EXPECT_EQ(KVX2800T_MeasureOutput(vi, "OutputChannel3", KVX2800T_VAL_MEASURE_VOLTAGE, &volts), status);
        EXPECT_EQ(volts, kUntouched);
        expectRecordedOnce(status, text);
        forget();
    }
};

TEST_F(GuardedFrame, MakesAStatusOfWhateverIsThrown)
{
    expectRecord(std::bad_alloc(), code(0xBFFA0056), "Could not allocate necessary memory.");
    expectRecord(std::out_of_range(base::kInvalidKey), kOutOfRange, kOutOfRangeText);
    expectRecord(std::out_of_range("invalid vector subscript"), code(0xBFFA0059),
                 "Unexpected response from instrument.  The reply was ''.");
    expectRecord(std::invalid_argument("invalid stod argument"), code(0xBFFA0059),
                 "Unexpected response from instrument.  The reply was ''.");
    expectRecord(std::runtime_error("the bench is %s on fire"), code(0xBFFA0000),
                 "Failure cannot recover.  the bench is %s on fire");
    expectRecord(42, code(0xBFFA0000), "Failure cannot recover.");
}

/// A function of the instrument class, in a session with SafeErrors.
class SafeFrame : public ScriptedInstrumentTest
{
public:
    SafeFrame()
    {
        drivekit::SessionSettings settings;
        settings.safeErrors = true;
        session->setSettings(settings);
    }

    template <class Exception>
    void expectRecord(const Exception& exception, ViStatus status, const std::string& text)
    {
        EXPECT_CALL(*instrument, setOutputEnabled(3, true)).WillOnce(Throw(exception));
        EXPECT_EQ(KVX2800T_ConfigureOutputEnabled(vi, "OutputChannel3", VI_TRUE), status);
        expectRecordedOnce(status, text);
        forget();
        EXPECT_CALL(*instrument, currentLevel(4, testing::_)).WillOnce(Throw(exception));
        ViReal64 amperes = kUntouched;
        EXPECT_EQ(KVX2800T_GetAttributeViReal64(vi, "OutputChannel4", KVX2800T_ATTR_CURRENT_LIMIT, &amperes), status);
        EXPECT_EQ(amperes, kUntouched);
        expectRecordedOnce(status, text);
        forget();
    }
};

TEST_F(SafeFrame, MakesAStatusOfWhateverIsThrown)
{
    expectRecord(std::bad_alloc(), code(0xBFFA0056), "Could not allocate necessary memory.");
    expectRecord(std::out_of_range(base::kInvalidKey), kOutOfRange, kOutOfRangeText);
    expectRecord(std::out_of_range("stoi argument out of range"), code(0xBFFA0059),
                 "Unexpected response from instrument.  The reply was ''.");
    expectRecord(std::invalid_argument("Visa::parseBool Unknown ret:"), code(0xBFFA0059),
                 "Unexpected response from instrument.  The reply was ''.");
    expectRecord(std::runtime_error("smoke"), code(0xBFFA0000), "Failure cannot recover.  smoke");
    expectRecord(42, code(0xBFFA0000), "Failure cannot recover.");
}

class SafeClose : public ApiTest
{
};

TEST_F(SafeClose, EndsASessionWhateverItsInstrumentThrows)
{
    const auto instrument = std::make_shared<StrictInstrument>();
    EXPECT_CALL(*instrument, close).WillOnce(Throw(std::bad_alloc()));
    IviSession_New(&vi);
    auto* const session = new TestSession(vi);
    drivekit::SessionSettings settings;
    settings.safeErrors = true;
    session->setSettings(settings);
    session->setInstrument(instrument, false);
    IviSession_SetDataPtr(vi, static_cast<drivekit::DriverSession*>(session));
    EXPECT_EQ(KVX2800T_close(vi), VI_SUCCESS);
    EXPECT_EQ(openIviSessions(), 0U);
    vi = VI_NULL;
}

TEST_F(GuardedFrame, AFailureOfTheLastChannelsSettingComesBeforeTheStatusCheck)
{
    EXPECT_CALL(*instrument, setTrackingEnabled(3, true)).WillOnce(testing::Return(VI_SUCCESS));
    EXPECT_CALL(*instrument, setTrackingEnabled(4, true)).WillOnce(Throw(std::bad_alloc()));
    EXPECT_EQ(KVX2800T_ConfigureTracking(vi, "OutputChannel3-4", VI_TRUE), code(0xBFFA0056));
    expectRecordedOnce(code(0xBFFA0056), "Could not allocate necessary memory.");
}

TEST_F(GuardedFrame, AWarningEndsACallUnrecordedAndUnchecked)
{
    EXPECT_CALL(*instrument, setTrackingEnabled(3, true)).WillOnce(testing::Return(kWarning));
    EXPECT_EQ(KVX2800T_ConfigureTracking(vi, "OutputChannel3-4", VI_TRUE), kWarning);
    EXPECT_CALL(*instrument, setBleEnabled(false)).WillOnce(testing::Return(kWarning));
    EXPECT_EQ(KVX2800T_ConfigureBleeder(vi, VI_FALSE), kWarning);
    EXPECT_CALL(*instrument, selectChannel(4)).WillOnce(testing::Return(kWarning));
    EXPECT_EQ(KVX2800T_RunList(vi, "OutputChannel4"), kWarning);
    EXPECT_CALL(*instrument, measurePower(4, testing::_)).WillOnce(testing::Return(kWarning));
    ViReal64 watts = kUntouched;
    EXPECT_EQ(KVX2800T_MeasureOutput(vi, "OutputChannel4", KVX2800T_VAL_MEASURE_POWER, &watts), kWarning);
    EXPECT_EQ(watts, kUntouched);
    EXPECT_EQ(timesRecorded(), 0U);
    EXPECT_EQ(lockDepth(vi), 0U);
}

/// A session that an exception has left before it had an instrument.
class SessionWithoutInstrument : public ApiTest, public testing::WithParamInterface<InstrumentCall>
{
public:
    SessionWithoutInstrument()
    {
        IviSession_New(&vi);
        IviSession_SetDataPtr(vi, static_cast<drivekit::DriverSession*>(new TestSession(vi)));
        clearLog();
    }
};

INSTANTIATE_TEST_SUITE_P(All, SessionWithoutInstrument, testing::ValuesIn(instrumentCalls()),
                         [](const auto& call) { return std::to_string(call.index) + "_" + call.param.name; });

TEST_P(SessionWithoutInstrument, IsAStatusOfEveryFunction)
{
    EXPECT_EQ(GetParam()(vi), code(0xBFFA001D));
    expectRecordedOnce(code(0xBFFA001D), "A connection to the instrument has not been established.");
}

/// A line without what differs from channel to channel and from value to value.
std::string headerOf(const std::string& line)
{
    std::string header = line.substr(0, line.find(' '));
    std::erase_if(header, [](char c) { return c >= '0' && c <= '9'; });
    return header;
}

TEST(InstrumentOperations, AreEachSentByAFunctionOfTheInstrumentOrByOneOfTheClass)
{
    // Reset, error queue, levels, the protections by the source's commands, and the output.
    const std::set<int> ofTheClass = {10, 15, 22, 23, 24, 25, 26, 27, 30, 31, 34, 35, 40, 41};
    for (const Operation& operation : operations()) {
        if (ofTheClass.contains(operation.number))
            continue;
        const auto sendsIt = [&](const InstrumentCall& call) {
            return std::ranges::find(call.operations, operation.number) != call.operations.end() &&
                   std::ranges::any_of(
                       call.lines, [&](const std::string& line) { return headerOf(line) == headerOf(operation.line); });
        };
        EXPECT_TRUE(std::ranges::any_of(instrumentCalls(), sendsIt)) << operation.number << ' ' << operation.name;
    }
}

} // namespace
