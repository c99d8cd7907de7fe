#include "tests/support/driver/driver_end_to_end.h"
#include "tests/support/processes/serial_device.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <string>

// What DriverSetup keys change, with an instrument that answers late, wrongly, or not at all, or trips.

namespace kvxtest
{
namespace
{

class DriverSetupSession : public DriverEndToEnd
{
public:
    explicit DriverSetupSession(const Lines& instrumentOptions = {"--load", "CH3=10"})
        : DriverEndToEnd(instrumentOptions)
    {
    }

    void openWith(const std::string& keys) { open("DriverSetup=" + keys); }

    /// The level of an output; -1 when it cannot be read.
    ViReal64 level(const char* channel) const
    {
        ViReal64 volts = -1.0;
        KVX2800T_GetAttributeViReal64(vi, channel, KVX2800T_ATTR_VOLTAGE_LEVEL, &volts);
        return volts;
    }

    /// Sets a level of its own for each of two outputs.
    void setLevels() const
    {
        ASSERT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3", 3.0), VI_SUCCESS);
        ASSERT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel4", 4.0), VI_SUCCESS);
    }

    /// Asks for both levels in turn; each is the output's own or not there.
    void expectNoStrangeLevels(int times) const
    {
        for (int i = 0; i < times; ++i) {
            const ViReal64 third = level("OutputChannel3");
            const ViReal64 fourth = level("OutputChannel4");
            EXPECT_TRUE(third == 3.0 || third == -1.0) << third;
            EXPECT_TRUE(fourth == 4.0 || fourth == -1.0) << fourth;
        }
    }

    /// Lets the instrument answer that many milliseconds late, one delay after the other, and in time again after each.
    void expectFreshReplies(std::initializer_list<int> delays, int times)
    {
        setLevels();
        for (const int delay : delays) {
            instrument.control("delay " + std::to_string(delay));
            expectNoStrangeLevels(times);
            instrument.control("delay 0");
            expectNoStrangeLevels(1);
        }
        EXPECT_EQ(level("OutputChannel3"), 3.0);
        EXPECT_EQ(level("OutputChannel4"), 4.0);
    }

    ViBoolean isInState(ViInt32 state) const
    {
        ViBoolean inState = 77;
        EXPECT_EQ(KVX2800T_QueryOutputState(vi, "OutputChannel3", state, &inState), VI_SUCCESS);
        return inState;
    }
};

TEST_F(DriverSetupSession, FreshRepliesHoldForEveryDelayAroundTheTimeout)
{
    openWith("FreshReplies:1,IoTimeout:100");
    expectFreshReplies({0, 50, 90, 98, 100, 102, 110, 150, 200, 250}, 2);
}

TEST_F(DriverSetupSession, FreshRepliesFindALostInstrumentAgain)
{
    openWith("FreshReplies:1,SafeErrors:1");
    setLevels();
    instrument.control("disconnect");
    EXPECT_EQ(level("OutputChannel3"), -1.0);
    EXPECT_EQ(level("OutputChannel3"), 3.0);
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3", 2.0), VI_SUCCESS);
    EXPECT_EQ(level("OutputChannel3"), 2.0);
}

TEST_F(DriverSetupSession, FreshRepliesTakeAReplyCutInTwoForWhatItIs)
{
    openWith("FreshReplies:1,IoTimeout:100");
    setLevels();
    instrument.control("answer-bytes 3.0");
    EXPECT_EQ(level("OutputChannel3"), -1.0);
    EXPECT_EQ(level("OutputChannel4"), 4.0);
    EXPECT_EQ(level("OutputChannel3"), 3.0);
}

TEST_F(DriverSetupSession, AReplyThatCannotBeReadIsAStatusAndTheSessionGoesOn)
{
    openWith("SafeErrors:1");
    setLevels();
    instrument.control("answer volts");
    ViReal64 volts = -1.0;
    EXPECT_EQ(KVX2800T_GetAttributeViReal64(vi, "OutputChannel3", KVX2800T_ATTR_VOLTAGE_LEVEL, &volts),
              status(0xBFFA0059));
    EXPECT_EQ(volts, -1.0);
    EXPECT_EQ(recordedError(vi),
              (RecordedError{status(0xBFFA0059), "Unexpected response from instrument.  The reply was 'volts'."}));
    ViBoolean held = VI_TRUE;
    EXPECT_EQ(KVX2800T_UnlockSession(vi, &held), VI_SUCCESS);
    EXPECT_EQ(level("OutputChannel3"), 3.0);
}

TEST_F(DriverSetupSession, DetailedErrorsTellATimeoutFromALostLink)
{
    openWith("DetailedErrors:1,IoTimeout:100");
    const std::string resource = "Resource '" + instrument.resource() + "': ";
    instrument.control("swallow 1");
    ViReal64 volts = -1.0;
    EXPECT_EQ(KVX2800T_GetAttributeViReal64(vi, "OutputChannel3", KVX2800T_ATTR_VOLTAGE_LEVEL, &volts),
              status(0xBFFA4215));
    EXPECT_EQ(recordedError(vi), (RecordedError{status(0xBFFA4215), "I/O timeout error.  " + resource +
                                                                        "VI_ERROR_TMO, the time-out is over."}));
    instrument.control("disconnect");
    EXPECT_EQ(KVX2800T_GetAttributeViReal64(vi, "OutputChannel3", KVX2800T_ATTR_VOLTAGE_LEVEL, &volts),
              KVX2800T_ERROR_IO);
    EXPECT_EQ(recordedError(vi), (RecordedError{KVX2800T_ERROR_IO, "I/O error.  " + resource +
                                                                       "VI_ERROR_CONN_LOST, the connection is lost."}));
}

TEST_F(DriverSetupSession, TrueReadingsTellARunningOutputFromATrip)
{
    openWith("TrueReadings:1");
    ASSERT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3", 5.0), VI_SUCCESS);
    ASSERT_EQ(KVX2800T_ConfigureCurrentLimit(vi, "OutputChannel3", KVX2800T_VAL_CURRENT_REGULATE, 1.0), VI_SUCCESS);
    ASSERT_EQ(KVX2800T_ConfigureOutputEnabled(vi, "OutputChannel3", VI_TRUE), VI_SUCCESS);
    ViReal64 value = -1.0;
    EXPECT_EQ(KVX2800T_Measure(vi, "OutputChannel3", KVX2800T_VAL_MEASURE_CURRENT, &value), VI_SUCCESS);
    EXPECT_EQ(value, 0.5);
    EXPECT_EQ(isInState(KVX2800T_VAL_OUTPUT_CONSTANT_VOLTAGE), VI_TRUE);
    EXPECT_EQ(isInState(KVX2800T_VAL_OUTPUT_UNREGULATED), VI_FALSE);
    // Above the protection level that is set now.
    ASSERT_EQ(KVX2800T_ConfigureOVP(vi, "OutputChannel3", VI_TRUE, 3.0), VI_SUCCESS);
    EXPECT_EQ(isInState(KVX2800T_VAL_OUTPUT_OVER_VOLTAGE), VI_TRUE);
    EXPECT_EQ(isInState(KVX2800T_VAL_OUTPUT_OVER_CURRENT), VI_FALSE);
    EXPECT_EQ(isInState(KVX2800T_VAL_OUTPUT_CONSTANT_VOLTAGE), VI_FALSE);
    EXPECT_EQ(isInState(KVX2800T_VAL_OUTPUT_UNREGULATED), VI_FALSE);
    EXPECT_EQ(KVX2800T_Measure(vi, "OutputChannel3", KVX2800T_VAL_MEASURE_VOLTAGE, &value), VI_SUCCESS);
    EXPECT_EQ(value, 0.0);
}

TEST_F(DriverSetupSession, TheBenchProfileSendsWhatASessionWithoutKeysSends)
{
    const auto linesOf = [this](const std::string& options) {
        open(options, VI_TRUE, VI_TRUE);
        setLevels();
        EXPECT_EQ(level("OutputChannel3"), 3.0);
        EXPECT_EQ(KVX2800T_ConfigureOutputEnabled(vi, "OutputChannel1-4", VI_TRUE), VI_SUCCESS);
        KVX2800T_close(vi);
        vi = VI_NULL;
        return newLines();
    };
    newLines();
    const Lines plain = linesOf("QueryInstrStatus=1");
    EXPECT_EQ(linesOf("QueryInstrStatus=1,DriverSetup=Profile:Bench"), plain);
    EXPECT_GT(plain.size(), 10U);
}

class DriverSetupSerial : public DriverSetupSession
{
public:
    DriverSetupSerial() : DriverSetupSession({"--serial"}), device_(instrument.serialPath()) {}

    void openLine(const std::string& keys)
    {
        std::string resource = device_.resource();
        ASSERT_EQ(KVX2800T_InitWithOptions(resource.data(), VI_FALSE, VI_FALSE, ("DriverSetup=" + keys).c_str(), &vi),
                  VI_SUCCESS);
    }

private:
    const SerialDevice device_;
};

TEST_F(DriverSetupSerial, FreshRepliesHoldForEveryDelayAroundTheTimeout)
{
    openLine("FreshReplies:1,IoTimeout:100");
    expectFreshReplies({0, 90, 98, 102, 110, 150, 250}, 1);
}

TEST_F(DriverSetupSerial, WithoutFreshRepliesALateOneAnswersTheNextQuery)
{
    openLine("IoTimeout:100");
    setLevels();
    instrument.control("delay 150");
    EXPECT_EQ(level("OutputChannel3"), -1.0);
    instrument.control("delay 0");
    EXPECT_EQ(level("OutputChannel4"), 3.0);
}

} // namespace
} // namespace kvxtest
