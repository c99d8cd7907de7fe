#include "tests/support/driver/driver_end_to_end.h"
#include "tests/support/processes/serial_device.h"

#include "tests/support/environment.h"

namespace kvxtest
{
namespace
{

class Serial : public DriverEndToEnd
{
protected:
    Serial() : DriverEndToEnd({"--serial"}), device_(instrument.serialPath()) {}

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

    const SerialDevice device_;
};

TEST_F(Serial, SessionOverTheLineOfTheResource)
{
    expectSessionOver(device_.resource());
}

TEST_F(Serial, SessionOverALineThatAVariableNames)
{
    const EnvironmentVariable variable("VISA_ASRL7", device_.name().c_str());
    expectSessionOver("asrl7::INSTR");
}

TEST_F(Serial, ReplyThatNeverComesIsAnIoError)
{
    std::string resource = device_.resource();
    ASSERT_EQ(KVX2800T_init(resource.data(), VI_FALSE, VI_FALSE, &vi), VI_SUCCESS);
    instrument.control("swallow 1");
    ViReal64 volts = -1.0;
    EXPECT_EQ(KVX2800T_GetAttributeViReal64(vi, "OutputChannel4", KVX2800T_ATTR_VOLTAGE_LEVEL, &volts),
              KVX2800T_ERROR_IO);
    EXPECT_EQ(volts, -1.0);
}

} // namespace
} // namespace kvxtest
