#include "driver_end_to_end.h"

#include <cstdlib>

namespace kvxtest
{
namespace
{

class Serial : public DriverEndToEnd
{
protected:
    Serial() : DriverEndToEnd({"--serial"}) {}

    /// Opens, works and closes over a resource, and expects what goes over the line.
    void expectSessionOver(std::string resource)
    {
        ASSERT_EQ(KVX2800T_init(resource.data(), VI_TRUE, VI_FALSE, &vi), VI_SUCCESS) << recordedError(VI_NULL).text;
        EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel4", 3.25), VI_SUCCESS);
        ViReal64 volts = 0.0;
        EXPECT_EQ(KVX2800T_GetAttributeViReal64(vi, "OutputChannel4", KVX2800T_ATTR_VOLTAGE_LEVEL, &volts), VI_SUCCESS);
        EXPECT_EQ(volts, 3.25);
        EXPECT_EQ(KVX2800T_close(vi), VI_SUCCESS);
        vi = VI_NULL;
        EXPECT_EQ(newLines(), (Lines{"*IDN?", ":SOUR4:VOLT 3.250000", ":SOUR4:VOLT?"}));
    }
};

TEST_F(Serial, SessionOverADeviceNamedInTheResource)
{
    expectSessionOver("ASRL" + instrument.serialPath() + "::INSTR");
}

TEST_F(Serial, SessionOverANumberedLine)
{
    ASSERT_EQ(setenv("VISA_ASRL7", instrument.serialPath().c_str(), 1), 0);
    expectSessionOver("asrl7::INSTR");
    unsetenv("VISA_ASRL7");
}

TEST_F(Serial, ReplyThatNeverComesIsAnIoError)
{
    std::string resource = "ASRL" + instrument.serialPath() + "::INSTR";
    ASSERT_EQ(KVX2800T_init(resource.data(), VI_FALSE, VI_FALSE, &vi), VI_SUCCESS);
    instrument.control("swallow 1");
    ViReal64 volts = -1.0;
    EXPECT_EQ(KVX2800T_GetAttributeViReal64(vi, "OutputChannel4", KVX2800T_ATTR_VOLTAGE_LEVEL, &volts),
              KVX2800T_ERROR_IO);
    EXPECT_EQ(volts, -1.0);
}

} // namespace
} // namespace kvxtest
