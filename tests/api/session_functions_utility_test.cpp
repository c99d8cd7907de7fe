#include "tests/support/driver/api_fixture.h"

namespace
{

using namespace kvxtest;
using testing::ElementsAre;
using testing::IsEmpty;

/// A buffer that shows what was written to it.
std::array<ViChar, 300> markedBuffer()
{
    std::array<ViChar, 300> buffer{};
    buffer.fill('#');
    return buffer;
}

class UtilityFunctions : public ApiTest
{
public:
    std::array<ViChar, 300> driver = markedBuffer();
    std::array<ViChar, 300> instrument = markedBuffer();
};

TEST_F(UtilityFunctions, BothResetsSendTheSameCommand)
{
    open();
    EXPECT_EQ(KVX2800T_reset(vi), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ResetWithDefaults(vi), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAre("*RST\n", "*RST\n"));
}

TEST_F(UtilityFunctions, AFailedResetIsRecordedOnceAndReturned)
{
    open();
    failCall("viWrite", VI_ERROR_CONN_LOST);
    for (const auto resetFunction : {KVX2800T_reset, KVX2800T_ResetWithDefaults}) {
        clearLog();
        EXPECT_EQ(resetFunction(vi), kIoError);
        EXPECT_EQ(recorded(), (ErrorEntry{kIoError, "I/O error."}));
        EXPECT_EQ(timesRecorded(), 1U);
        IviSession_ClearError(vi);
    }
}

TEST_F(UtilityFunctions, NeitherResetNorDisableChecksTheStatus)
{
    open("QueryInstrStatus=1");
    EXPECT_EQ(KVX2800T_reset(vi), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_Disable(vi), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAre("*RST\n", ":OUTPut:STATe ALL,OFF\n"));
}

TEST_F(UtilityFunctions, DisableSwitchesAllOutputsOff)
{
    open();
    EXPECT_EQ(KVX2800T_Disable(vi), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAre(":OUTPut:STATe ALL,OFF\n"));
}

TEST_F(UtilityFunctions, DisableSucceedsWhateverTheConnectionSays)
{
    open();
    failCall("viWrite", VI_ERROR_CONN_LOST);
    EXPECT_EQ(KVX2800T_Disable(vi), VI_SUCCESS);
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_F(UtilityFunctions, SelfTestIsNotSupportedAndWritesNothing)
{
    open();
    ViInt16 result = 77;
    EXPECT_EQ(KVX2800T_self_test(vi, &result, driver.data()), code(0x3FFA0067));
    EXPECT_EQ(result, 77);
    EXPECT_THAT(driver, testing::Each('#'));
    EXPECT_EQ(timesRecorded(), 0U);
    EXPECT_THAT(calls("vi"), IsEmpty());
}

TEST_F(UtilityFunctions, SelfTestReportsNullPointersInOrder)
{
    open();
    ViInt16 result = 77;
    EXPECT_EQ(KVX2800T_self_test(vi, &result, nullptr), kNullPointer);
    EXPECT_EQ(recorded(), (ErrorEntry{kNullPointer, "Null pointer passed for function 'KVX2800T_self_test', parameter "
                                                    "'TestMessage'."}));
    IviSession_ClearError(vi);
    EXPECT_EQ(KVX2800T_self_test(vi, nullptr, nullptr), kNullPointer);
    EXPECT_EQ(recorded(), (ErrorEntry{kNullPointer, "Null pointer passed for function 'KVX2800T_self_test', parameter "
                                                    "'TestResult'."}));
    EXPECT_EQ(result, 77);
    EXPECT_EQ(lockDepth(vi), 0U);
}

TEST_F(UtilityFunctions, RevisionQueryTellsTheDriversAndTheFirmwaresRevision)
{
    open();
    EXPECT_EQ(KVX2800T_revision_query(vi, driver.data(), instrument.data()), VI_SUCCESS);
    EXPECT_STREQ(driver.data(), "1.0.0.0");
    EXPECT_STREQ(instrument.data(), "V2.34");
    EXPECT_EQ(instrument[6], '#');
    EXPECT_THAT(calls("vi"), IsEmpty());
}

TEST_F(UtilityFunctions, RevisionQueryOfASimulatedInstrumentSaysSo)
{
    open("Simulate=1");
    EXPECT_EQ(KVX2800T_revision_query(vi, driver.data(), instrument.data()), VI_SUCCESS);
    EXPECT_STREQ(driver.data(), "1.0.0.0");
    EXPECT_STREQ(instrument.data(), "Sim1.0.0.0");
}

TEST_F(UtilityFunctions, RevisionQueryCutsALongRevision)
{
    answer("*IDN?", "a,b,c," + std::string(500, 'r'));
    open();
    EXPECT_EQ(KVX2800T_revision_query(vi, driver.data(), instrument.data()), VI_SUCCESS);
    EXPECT_EQ(instrument.data(), std::string(255, 'r'));
    EXPECT_EQ(instrument[256], '#');
}

TEST_F(UtilityFunctions, RevisionQueryWritesNothingBehindANulOfTheRevision)
{
    answer("*IDN?", std::string("a,b,c,d\0e", 9));
    open();
    EXPECT_EQ(KVX2800T_revision_query(vi, driver.data(), instrument.data()), VI_SUCCESS);
    EXPECT_STREQ(instrument.data(), "d");
    EXPECT_EQ(instrument[2], '#');
}

TEST_F(UtilityFunctions, RevisionQueryReportsNullPointersInOrder)
{
    open();
    const auto expectNull = [this](ViChar* driverRevision, ViChar* instrumentRevision, const char* parameter) {
        IviSession_ClearError(vi);
        EXPECT_EQ(KVX2800T_revision_query(vi, driverRevision, instrumentRevision), kNullPointer);
        EXPECT_EQ(recorded(), (ErrorEntry{kNullPointer, std::string("Null pointer passed for function "
                                                                    "'KVX2800T_revision_query', parameter '") +
                                                            parameter + "'."}));
    };
    expectNull(nullptr, instrument.data(), "DriverRev");
    expectNull(driver.data(), nullptr, "InstrRev");
    expectNull(nullptr, nullptr, "DriverRev");
    EXPECT_THAT(driver, testing::Each('#'));
    EXPECT_THAT(instrument, testing::Each('#'));
}

TEST_F(UtilityFunctions, InvalidatingAttributesSendsNothing)
{
    open();
    EXPECT_EQ(KVX2800T_InvalidateAllAttributes(vi), VI_SUCCESS);
    EXPECT_THAT(calls("vi"), IsEmpty());
}

} // namespace
