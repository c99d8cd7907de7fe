#include "tests/support/driver/api_fixture.h"

namespace
{

using namespace kvxtest;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kCannotChange = "The simulation state cannot be changed.";

class SimulateAttribute : public ApiTest
{
public:
    ViStatus simulate(ViBoolean value) const
    {
        return KVX2800T_SetAttributeViBoolean(vi, nullptr, KVX2800T_ATTR_SIMULATE, value);
    }

    ViBoolean simulates() const
    {
        ViBoolean value = 99;
        EXPECT_EQ(KVX2800T_GetAttributeViBoolean(vi, nullptr, KVX2800T_ATTR_SIMULATE, &value), VI_SUCCESS);
        return value;
    }

    std::string instrumentRevision() const
    {
        std::array<ViChar, 256> driver{};
        std::array<ViChar, 256> instrument{};
        EXPECT_EQ(KVX2800T_revision_query(vi, driver.data(), instrument.data()), VI_SUCCESS);
        EXPECT_STREQ(driver.data(), "1.0.0.0");
        return instrument.data();
    }

    void expectRefusedToGoBack() const
    {
        forget();
        EXPECT_EQ(simulate(VI_FALSE), code(0xBFFA0062));
        expectRecordedOnce(code(0xBFFA0062), kCannotChange);
        IviSession_ClearError(vi);
    }

    /// Expects that the session works without calling VISA.
    void expectWorksWithoutVisa() const
    {
        clearLog();
        ViReal64 volts = -1.0;
        EXPECT_EQ(KVX2800T_GetAttributeViReal64(vi, "OutputChannel3", KVX2800T_ATTR_VOLTAGE_LEVEL, &volts), VI_SUCCESS);
        EXPECT_GE(volts, 0.0);
        EXPECT_LE(volts, 16.0);
        EXPECT_EQ(KVX2800T_ConfigureOutputEnabled(vi, "OutputChannel3-4", VI_TRUE), VI_SUCCESS);
        EXPECT_EQ(KVX2800T_reset(vi), VI_SUCCESS);
        EXPECT_EQ(KVX2800T_Disable(vi), VI_SUCCESS);
        EXPECT_THAT(calls("vi"), IsEmpty());
    }
};

TEST_F(SimulateAttribute, TellsWhetherTheSessionWasOpenedSimulated)
{
    open();
    EXPECT_EQ(simulates(), VI_FALSE);
    KVX2800T_close(vi);
    open("Simulate=1");
    EXPECT_EQ(simulates(), VI_TRUE);
}

TEST_F(SimulateAttribute, SetTrueClosesTheConnectionAndLeavesNoVisaSession)
{
    open();
    EXPECT_EQ(openVisaSessions(), 2U);
    EXPECT_EQ(simulate(VI_TRUE), VI_SUCCESS);
    EXPECT_THAT(calls("vi"), ElementsAre("viClose(1)"));
    EXPECT_EQ(calls().front(), "IviSession_GetDataPtr(1001)");
    EXPECT_EQ(calls().back(), "IviSession_Unlock(1001, null)");
    EXPECT_EQ(openVisaSessions(), 0U);
    EXPECT_EQ(timesRecorded(), 0U);
    EXPECT_EQ(simulates(), VI_TRUE);
    expectWorksWithoutVisa();
}

TEST_F(SimulateAttribute, SetTrueAsksTheInstrumentNothing)
{
    open("QueryInstrStatus=1");
    EXPECT_EQ(simulate(VI_TRUE), VI_SUCCESS);
    EXPECT_THAT(written(), IsEmpty());
    expectWorksWithoutVisa();
}

TEST_F(SimulateAttribute, SetTrueTwiceIsFineAndFalseIsRefusedFromThenOn)
{
    open();
    EXPECT_EQ(simulate(VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(simulate(VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(timesRecorded(), 0U);
    expectRefusedToGoBack();
    EXPECT_EQ(simulates(), VI_TRUE);
    expectWorksWithoutVisa();
}

TEST_F(SimulateAttribute, FalseIsRefusedOfASessionThatWasOpenedSimulated)
{
    open("Simulate=1");
    expectRefusedToGoBack();
    EXPECT_EQ(simulate(VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(simulates(), VI_TRUE);
}

TEST_F(SimulateAttribute, FalseLeavesARealSessionAsItIs)
{
    open();
    EXPECT_EQ(simulate(VI_FALSE), VI_SUCCESS);
    EXPECT_EQ(simulates(), VI_FALSE);
    EXPECT_THAT(calls("vi"), IsEmpty());
    EXPECT_EQ(KVX2800T_reset(vi), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAre("*RST\n"));
}

TEST_F(SimulateAttribute, OnlyExactlyTrueStartsTheSimulation)
{
    open();
    for (const ViBoolean value : std::initializer_list<ViBoolean>{2, 0xFFFF}) {
        EXPECT_EQ(simulate(value), VI_SUCCESS);
        EXPECT_EQ(simulates(), VI_FALSE);
    }
    EXPECT_EQ(openVisaSessions(), 2U);
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_F(SimulateAttribute, AnotherValueClearsTheFlagOfASimulatedSessionWhichStaysSimulated)
{
    open("Simulate=1, QueryInstrStatus=1");
    EXPECT_EQ(simulate(2), VI_SUCCESS);
    EXPECT_EQ(simulates(), VI_FALSE);
    expectWorksWithoutVisa();
    expectRefusedToGoBack();
    EXPECT_EQ(simulates(), VI_FALSE);
    EXPECT_EQ(simulate(VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(simulates(), VI_TRUE);
    EXPECT_THAT(calls("vi"), IsEmpty());
}

TEST_F(SimulateAttribute, AConnectionThatRefusesToCloseStopsNothing)
{
    open();
    failCall("viClose", VI_ERROR_CLOSING_FAILED);
    EXPECT_EQ(simulate(VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(timesRecorded(), 0U);
    EXPECT_EQ(simulates(), VI_TRUE);
    EXPECT_EQ(lockDepth(vi), 0U);
}

TEST_F(SimulateAttribute, TheIdentityIsThatOfTheInstrumentThatIsThereNow)
{
    answer("*IDN?", "Maker,KVX2833T,SN1,V2.34");
    open();
    EXPECT_EQ(text(KVX2800T_ATTR_INSTRUMENT_MANUFACTURER), "Maker");
    EXPECT_EQ(text(KVX2800T_ATTR_INSTRUMENT_MODEL), "KVX2833T");
    EXPECT_EQ(text(KVX2800T_ATTR_INSTRUMENT_FIRMWARE_REVISION), "V2.34");
    EXPECT_EQ(simulate(VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(text(KVX2800T_ATTR_INSTRUMENT_MANUFACTURER), "Tessaro Instruments");
    EXPECT_EQ(text(KVX2800T_ATTR_INSTRUMENT_MODEL), "KVX2803T");
    EXPECT_EQ(text(KVX2800T_ATTR_INSTRUMENT_FIRMWARE_REVISION), "V1.00");
}

TEST_F(SimulateAttribute, TheRevisionQueryFollowsTheFlagAndOtherwiseTellsTheInstrumentsThatIsThereNow)
{
    open();
    EXPECT_EQ(simulate(2), VI_SUCCESS);
    EXPECT_EQ(instrumentRevision(), "V2.34");
    EXPECT_EQ(simulate(VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(instrumentRevision(), "Sim1.0.0.0");
    EXPECT_EQ(simulate(2), VI_SUCCESS);
    EXPECT_EQ(instrumentRevision(), "V1.00");
    KVX2800T_close(vi);
    open("Simulate=1");
    EXPECT_EQ(simulate(2), VI_SUCCESS);
    EXPECT_EQ(instrumentRevision(), "V1.00");
}

TEST_F(SimulateAttribute, TheDescriptorStaysWhatTheConnectionWasOpenedOn)
{
    open();
    EXPECT_EQ(simulate(VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(text(KVX2800T_ATTR_IO_RESOURCE_DESCRIPTOR), "TCPIP0::host::1::SOCKET");
}

TEST_F(SimulateAttribute, OfOneSessionLeavesTheOthers)
{
    open();
    ViSession other = VI_NULL;
    ASSERT_EQ(init("", &other), VI_SUCCESS);
    clearLog();
    EXPECT_EQ(simulate(VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(openVisaSessions(), 2U);
    EXPECT_EQ(KVX2800T_reset(other), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAre("*RST\n"));
    EXPECT_EQ(KVX2800T_close(other), VI_SUCCESS);
}

TEST_F(SimulateAttribute, ClosingASwappedSessionClosesNoConnectionAgain)
{
    open();
    EXPECT_EQ(simulate(VI_TRUE), VI_SUCCESS);
    clearLog();
    EXPECT_EQ(KVX2800T_close(vi), VI_SUCCESS);
    EXPECT_THAT(calls("vi"), IsEmpty());
    EXPECT_EQ(openIviSessions(), 0U);
    vi = VI_NULL;
}

} // namespace
