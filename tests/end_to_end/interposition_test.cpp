#include <KVX2800T.h>

#include <visa.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

// This program's VISA functions come before those of any library: the driver must use them.

namespace
{

std::vector<std::string> calls;

ViStatus note(const char* function)
{
    calls.emplace_back(function);
    return VI_SUCCESS;
}

} // namespace

extern "C" {

ViStatus _VI_FUNC viOpenDefaultRM(ViPSession sesn)
{
    *sesn = 1;
    return note("viOpenDefaultRM");
}

ViStatus _VI_FUNC viOpen(ViSession /*sesn*/, ViConstRsrc name, ViAccessMode /*mode*/, ViUInt32 /*timeout*/,
                         ViPSession vi)
{
    *vi = 2;
    return note(("viOpen " + std::string(name)).c_str());
}

ViStatus _VI_FUNC viClose(ViObject /*vi*/)
{
    return note("viClose");
}

ViStatus _VI_FUNC viSetAttribute(ViObject /*vi*/, ViAttr /*attrName*/, ViAttrState /*attrValue*/)
{
    return note("viSetAttribute");
}

ViStatus _VI_FUNC viSetBuf(ViSession /*vi*/, ViUInt16 /*mask*/, ViUInt32 /*size*/)
{
    return note("viSetBuf");
}

ViStatus _VI_FUNC viWrite(ViSession /*vi*/, ViConstBuf buf, ViUInt32 cnt, ViPUInt32 retCnt)
{
    *retCnt = cnt;
    return note(("viWrite " + std::string(reinterpret_cast<const char*>(buf), cnt - 1)).c_str());
}

ViStatus _VI_FUNC viRead(ViSession /*vi*/, ViPBuf buf, ViUInt32 /*cnt*/, ViPUInt32 retCnt)
{
    const std::string reply = "Tessaro Instruments,KVX2833T,1,V3.00\n";
    reply.copy(reinterpret_cast<char*>(buf), reply.size());
    *retCnt = static_cast<ViUInt32>(reply.size());
    return note("viRead");
}

} // extern "C"

namespace
{

TEST(Interposition, VisaOfTheProgramServesARealSession)
{
    calls.clear();
    ViSession vi = VI_NULL;
    char resource[] = "PXI0::1::INSTR";
    ASSERT_EQ(KVX2800T_init(resource, VI_TRUE, VI_FALSE, &vi), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_close(vi), VI_SUCCESS);
    EXPECT_EQ(calls, (std::vector<std::string>{"viOpenDefaultRM", "viOpen PXI0::1::INSTR", "viSetAttribute", "viSetBuf",
                                               "viSetBuf", "viWrite *IDN?", "viRead", "viClose"}));
}

TEST(Interposition, SimulatedSessionNeverCallsVisa)
{
    calls.clear();
    ViSession vi = VI_NULL;
    char resource[] = "TCPIP0::127.0.0.1::5025::SOCKET";
    ASSERT_EQ(KVX2800T_InitWithOptions(resource, VI_FALSE, VI_TRUE, "Simulate=1,QueryInstrStatus=1", &vi), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3", 5.0), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureCurrentLimit(vi, "OutputChannel3", KVX2800T_VAL_CURRENT_TRIP, 1.0), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureOutputEnabled(vi, "OutputChannel4", VI_TRUE), VI_SUCCESS);
    ViReal64 volts = -1.0;
    EXPECT_EQ(KVX2800T_GetAttributeViReal64(vi, "OutputChannel4", KVX2800T_ATTR_VOLTAGE_LEVEL, &volts), VI_SUCCESS);
    EXPECT_GE(volts, 0.0);
    EXPECT_LE(volts, 6.2);
    ViInt32 code = 1;
    char text[256] = "";
    char revision[256] = "";
    EXPECT_EQ(KVX2800T_error_query(vi, &code, text), VI_SUCCESS);
    EXPECT_EQ(code, 0);
    EXPECT_STREQ(text, "No error");
    EXPECT_EQ(KVX2800T_revision_query(vi, text, revision), VI_SUCCESS);
    EXPECT_STREQ(text, "1.0.0.0");
    EXPECT_STREQ(revision, "Sim1.0.0.0");
    EXPECT_EQ(KVX2800T_Disable(vi), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_reset(vi), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_close(vi), VI_SUCCESS);
    EXPECT_EQ(calls, std::vector<std::string>{});
}

} // namespace
