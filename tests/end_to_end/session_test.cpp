#include "tests/support/driver/driver_end_to_end.h"

namespace kvxtest
{
namespace
{

class Session : public DriverEndToEnd
{
};

TEST_F(Session, InitAsksForTheIdentityAndNothingElse)
{
    open();
    EXPECT_EQ(newLines(), Lines{"*IDN?"});
}

TEST_F(Session, InitWithStatusCheckingAndResetClearsChecksAndResetsInThatOrder)
{
    open("QueryInstrStatus=1", VI_TRUE, VI_TRUE);
    EXPECT_EQ(newLines(), (Lines{"*IDN?", "*CLS", "*ESR?", "*RST"}));
}

TEST_F(Session, AnyNonZeroResetResets)
{
    open("", VI_FALSE, 2);
    EXPECT_EQ(newLines(), (Lines{"*IDN?", "*RST"}));
}

TEST_F(Session, ConfiguredSettingsReachTheInstrumentAndReadBack)
{
    open();
    newLines();

    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel1", 5.0), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureCurrentLimit(vi, "OutputChannel1", KVX2800T_VAL_CURRENT_TRIP, 2.5), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureOutputEnabled(vi, "OutputChannel1", VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(newLines(),
              (Lines{":SOUR:Mode?", ":SOUR1:VOLT 5.000000", ":SOUR:Mode?", ":SOUR1:CURR 2.500000",
                     ":SOUR1:CURR:PROT 2.500000", ":SOUR1:CURR:PROT:STAT ON", ":SOUR:Mode?", ":OUTP:STAT CH1,ON"}));

    ViReal64 volts = 0.0;
    ViReal64 amperes = 0.0;
    ViInt32 behavior = -1;
    ViBoolean enabled = 0xAAAA;
    EXPECT_EQ(KVX2800T_GetAttributeViReal64(vi, "OutputChannel1", KVX2800T_ATTR_VOLTAGE_LEVEL, &volts), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_GetAttributeViReal64(vi, "OutputChannel1", KVX2800T_ATTR_CURRENT_LIMIT, &amperes), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_GetAttributeViInt32(vi, "OutputChannel1", KVX2800T_ATTR_CURRENT_LIMIT_BEHAVIOR, &behavior),
              VI_SUCCESS);
    EXPECT_EQ(KVX2800T_GetAttributeViBoolean(vi, "OutputChannel1", KVX2800T_ATTR_OUTPUT_ENABLED, &enabled), VI_SUCCESS);
    EXPECT_EQ(newLines(), (Lines{":SOUR1:VOLT?", ":SOUR1:CURR?", ":SOUR1:CURR:PROT:STAT?", ":OUTP:STAT? CH1"}));
    EXPECT_EQ(volts, 5.0);
    EXPECT_EQ(amperes, 2.5);
    EXPECT_EQ(behavior, KVX2800T_VAL_CURRENT_TRIP);
    EXPECT_EQ(enabled, VI_TRUE);
}

TEST_F(Session, RegulateSwitchesTheCurrentProtectionOff)
{
    open();
    newLines();
    EXPECT_EQ(KVX2800T_ConfigureCurrentLimit(vi, "OutputChannel3", KVX2800T_VAL_CURRENT_REGULATE, 0.5), VI_SUCCESS);
    EXPECT_EQ(newLines(), (Lines{":SOUR3:CURR 0.500000", ":SOUR3:CURR:PROT 0.500000", ":SOUR3:CURR:PROT:STAT OFF"}));
}

TEST_F(Session, ChannelsThreeAndFourNeverAskForTheSourceMode)
{
    open();
    newLines();
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3,OutputChannel4", 6.0), VI_SUCCESS);
    EXPECT_EQ(newLines(), (Lines{":SOUR3:VOLT 6.000000", ":SOUR4:VOLT 6.000000"}));
}

TEST_F(Session, TheSeriesChannelIsUsableRightAfterTheModeChange)
{
    // The virtual instrument refuses settings for half a second after a change of the source mode.
    open("QueryInstrStatus=1");
    newLines();
    EXPECT_EQ(KVX2800T_ConfigureOutputEnabled(vi, "OutputChannel5", VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(newLines(), (Lines{":SOUR:Mode?", ":SOUR:Mode SER", ":OUTP:STAT SER,ON", "*ESR?"}));

    ViBoolean enabled = VI_FALSE;
    EXPECT_EQ(KVX2800T_GetAttributeViBoolean(vi, "OutputChannel5", KVX2800T_ATTR_OUTPUT_ENABLED, &enabled), VI_SUCCESS);
    EXPECT_EQ(enabled, VI_TRUE);
    EXPECT_EQ(newLines(), Lines{":OUTP:STAT? SER"});
}

TEST_F(Session, DisableSwitchesEveryOutputOff)
{
    open();
    ASSERT_EQ(KVX2800T_ConfigureOutputEnabled(vi, "OutputChannel3", VI_TRUE), VI_SUCCESS);
    newLines();
    EXPECT_EQ(KVX2800T_Disable(vi), VI_SUCCESS);
    ViBoolean enabled = VI_TRUE;
    EXPECT_EQ(KVX2800T_GetAttributeViBoolean(vi, "OutputChannel3", KVX2800T_ATTR_OUTPUT_ENABLED, &enabled), VI_SUCCESS);
    EXPECT_EQ(enabled, VI_FALSE);
    EXPECT_EQ(newLines(), (Lines{":OUTPut:STATe ALL,OFF", ":OUTP:STAT? CH3"}));
}

TEST_F(Session, ResetAndResetWithDefaultsSendTheSame)
{
    open();
    newLines();
    EXPECT_EQ(KVX2800T_reset(vi), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ResetWithDefaults(vi), VI_SUCCESS);
    EXPECT_EQ(newLines(), (Lines{"*RST", "*RST"}));
}

TEST_F(Session, RevisionQueryTellsTheFirmwareReadAtInit)
{
    open();
    newLines();
    char driver[256] = "";
    char firmware[256] = "";
    EXPECT_EQ(KVX2800T_revision_query(vi, driver, firmware), VI_SUCCESS);
    EXPECT_STREQ(driver, "1.0.0.0");
    EXPECT_STREQ(firmware, "V1.00");
    EXPECT_EQ(newLines(), Lines{});
}

TEST_F(Session, ErrorQueryReadsOneEntryOfTheQueue)
{
    open();
    instrument.control("inject -113 \"Undefined header\"");
    newLines();
    ViInt32 code = 1;
    char message[256] = "";
    EXPECT_EQ(KVX2800T_error_query(vi, &code, message), VI_SUCCESS);
    EXPECT_EQ(code, -113);
    EXPECT_STREQ(message, "\"Undefined header\"");
    EXPECT_EQ(KVX2800T_error_query(vi, &code, message), VI_SUCCESS);
    EXPECT_EQ(code, 0);
    EXPECT_STREQ(message, "\"No error\"");
    EXPECT_EQ(newLines(), (Lines{":SYSTem:ERRor?", ":SYSTem:ERRor?"}));
}

TEST_F(Session, ClosedSessionsAreUnknown)
{
    open();
    EXPECT_EQ(KVX2800T_close(vi), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_reset(vi), KVX2800T_ERROR_INVALID_SESSION_HANDLE);
    EXPECT_EQ(KVX2800T_close(vi), KVX2800T_ERROR_INVALID_SESSION_HANDLE);
    vi = VI_NULL;
}

TEST_F(Session, SessionsFollowEachOtherOnOneInstrument)
{
    for (int round = 0; round < 20; ++round) {
        open();
        EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel4", 1.0), VI_SUCCESS);
        EXPECT_EQ(KVX2800T_close(vi), VI_SUCCESS);
    }
    vi = VI_NULL;
}

class ModelUnknown : public DriverEndToEnd
{
protected:
    ModelUnknown() : DriverEndToEnd({"--idn", "Tessaro Instruments,KVX9999T,1,V2.50"}) {}
};

TEST_F(ModelUnknown, IdQueryRefusesItAndClosesTheConnection)
{
    std::string resource = instrument.resource();
    EXPECT_EQ(KVX2800T_init(resource.data(), VI_TRUE, VI_FALSE, &vi), status(0xBFFA005E));
    EXPECT_EQ(vi, static_cast<ViSession>(VI_NULL));
    EXPECT_EQ(recordedError(VI_NULL), (RecordedError{status(0xBFFA005E), "Instrument ID query failed."}));
}

TEST_F(ModelUnknown, WithoutIdQueryItOpens)
{
    open();
    char driver[256] = "";
    char firmware[256] = "";
    EXPECT_EQ(KVX2800T_revision_query(vi, driver, firmware), VI_SUCCESS);
    EXPECT_STREQ(firmware, "V2.50");
}

} // namespace
} // namespace kvxtest
