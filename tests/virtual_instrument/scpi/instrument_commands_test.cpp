#include "tests/support/virtual_instrument/manual_instrument.h"

#include <gtest/gtest.h>

namespace
{

using namespace kvxtest;

TEST(CommonCommands, AnswerAsIeee488Says)
{
    ManualInstrument device;
    EXPECT_EQ(device.exchange("*IDN?"), "Tessaro Instruments,KVX2833T,VIRT0000001,V1.00\n");
    EXPECT_EQ(device.exchange("*ESR?"), "128\n");
    EXPECT_EQ(device.exchange("*OPC?"), "1\n");
    EXPECT_EQ(device.exchange("*TST?"), "0\n");
    EXPECT_EQ(device.exchange("SYST:VERS?"), "1999.0\n");
    EXPECT_EQ(device.exchange("*OPC;*WAI;*TRG"), "");
    EXPECT_EQ(device.exchange("*ESR?"), "1\n");
    EXPECT_EQ(device.exchange("*ESE 36;*SRE 48;*ESE?;*SRE?"), "36;48\n");
    EXPECT_EQ(device.errorOf("*ESE 256"), kOutOfRange);
    EXPECT_EQ(device.errorOf("*SRE -1"), kOutOfRange);
    EXPECT_EQ(device.exchange("*ESE?"), "36\n");
}

TEST(CommonCommands, IdentityIsAnOption)
{
    kvxvirtual::InstrumentSettings settings;
    settings.identity = "A,B,C";
    ManualInstrument device(settings);
    EXPECT_EQ(device.exchange("*IDN?"), "A,B,C\n");
}

TEST(ErrorQueue, IsClearedByClsButNotByRstOrEsr)
{
    ManualInstrument device;
    device.exchange("BAD");
    EXPECT_EQ(device.exchange("*RST;*ESR?"), "160\n");
    EXPECT_EQ(device.error(), "-113,\"Undefined header\"\n");
    EXPECT_EQ(device.error(), kNoError);
    EXPECT_EQ(device.exchange("BAD;*CLS;*ESR?;:SYST:ERR:NEXT?"), "0;0,\"No error\"\n");
}

TEST(Levels, GoToTheLimitsOfTheirChannel)
{
    struct Case
    {
        const char* mode;
        const char* source;
        const char* limits[4];
    };
    const Case kCases[] = {
        {"NORMAL", "SOUR1", {"33", "3.2", "36.3", "3.52"}}, {"NORMAL", "SOUR2", {"33", "3.2", "36.3", "3.52"}},
        {"NORMAL", "SOUR3", {"16", "3.2", "17.6", "3.52"}}, {"NORMAL", "SOUR4", {"6.2", "10.5", "6.82", "11.55"}},
        {"SER", "SOUR5", {"66", "3.2", "72.6", "3.52"}},    {"PARA", "SOUR6", {"33", "6.4", "36.3", "7.04"}},
    };
    const char* const kHeaders[4] = {":VOLT ", ":CURR ", ":VOLT:PROT ", ":CURR:PROT "};
    ManualInstrument device;
    for (const auto& [mode, source, limits] : kCases) {
        device.exchange(std::string("SOUR:MODE ") + mode);
        device.control("advance 500");
        for (std::size_t i = 0; i < 4; ++i) {
            const auto message = std::string(source) + kHeaders[i] + limits[i];
            EXPECT_EQ(device.errorOf(message), kNoError) << message;
            EXPECT_EQ(device.errorOf(message + "e1"), kOutOfRange) << message;
        }
    }
    EXPECT_EQ(device.errorOf("SOUR3:CURR:PROT:DEL 10"), kNoError);
    EXPECT_EQ(device.errorOf("SOUR3:CURR:PROT:DEL 10.1"), kOutOfRange);
}

TEST(Settings, ReadBackWhatWasSet)
{
    struct Case
    {
        const char* set;
        const char* query;
        const char* reply;
    };
    const Case kCases[] = {
        {":INST:SELE CH2", ":INST:SELE?", "CH2\n"},
        {":INST:SELE CH5", ":INST:SELE?", "SER\n"},
        {":SOUR:BLE ON", ":SOUR:BLE?", "1\n"},
        {":SOUR3:VOLT 5.000000", ":SOUR3:VOLT?", "5.000000\n"},
        {":source3:voltage +5.5E-1", ":SOURCE3:VOLTAGE?", "0.550000\n"},
        {":SOUR3:VOLT -0", ":SOUR3:VOLT?", "0.000000\n"},
        {":SOUR1:VOLT:PROT 12.500000", ":SOUR1:VOLT:PROT?", "12.500000\n"},
        {":SOUR1:VOLT:PROT:STAT ON", ":SOUR1:VOLT:PROT:STAT?", "1\n"},
        {":SOUR1:VOLT:SENS ON", ":SOUR1:VOLT:SENS?", "1\n"},
        {":SOUR4:CURR 2.500000", ":SOUR4:CURR?", "2.500000\n"},
        {":SOUR1:CURR:PROT 2.500000", ":SOUR1:CURR:PROT?", "2.500000\n"},
        {":SOUR1:CURR:PROT:STAT 1", ":SOUR1:CURR:PROT:STAT?", "1\n"},
        {":SOUR1:CURR:PROT:DEL 0.100000", ":SOUR1:CURR:PROT:DEL?", "0.100000\n"},
        {":SOUR2:CURR:PROT:DEL:MODE SCH", ":SOUR2:CURR:PROT:DEL:MODE?", "SCH\n"},
        {":OUTP:STAT CH1,ON", ":OUTP:STAT? CH1", "1\n"},
        {":OUTP:OVP:VAL CH1,11.5", ":SOUR1:VOLT:PROT?", "11.500000\n"},
        {":OUTP:OVP:STAT CH1,OFF", ":SOUR1:VOLT:PROT:STAT?", "0\n"},
        {":OUTP:OCP:VAL CH1,1.5", ":SOUR1:CURR:PROT?", "1.500000\n"},
        {":OUTP:OCP:STAT CH1,OFF", ":SOUR1:CURR:PROT:STAT?", "0\n"},
        {":OUTP:OCP:DEL CH1,0.05", ":SOUR1:CURR:PROT:DEL?", "0.050000\n"},
        {":OUTP:OCP:DEL:MODE CH2,ANY", ":SOUR2:CURR:PROT:DEL:MODE?", "ANY\n"},
        {":SOUR1:VOLT:PROT 12", ":OUTP:OVP:VAL? CH1", "12.000000\n"},
        {":SOUR1:VOLT:PROT:STAT ON", ":OUTP:OVP:STAT? CH1", "1\n"},
        {":SOUR1:CURR:PROT 2", ":OUTP:OCP:VAL? CH1", "2.000000\n"},
        {":SOUR1:CURR:PROT:STAT ON", ":OUTP:OCP:STAT? CH1", "1\n"},
        {":SOUR1:CURR:PROT:DEL 2", ":OUTP:OCP:DEL? CH1", "2.000000\n"},
        {":SOUR1:CURR:PROT:DEL:MODE SCH", ":OUTP:OCP:DEL:MODE? CH1", "SCH\n"},
        {":OUTP:PONS:STAT CH1,LOFF", ":OUTP:PONS:STAT? CH1", "LOFF\n"},
        {":OUTP:PAIR CH1,SER", ":OUTP:PAIR? CH1", "SER\n"},
        {":OUTP:SENS:STAT CH2,ON", ":SOUR2:VOLT:SENS?", "1\n"},
        {":OUTP:TRAC:STAT CH1,ON", ":OUTP:TRAC:STAT? CH1", "1\n"},
        {":OUTP:OFFM CH1,bleoff", ":OUTP:OFFM? CH1", "BLEOFF\n"},
        {":TRIG:IN:ENAB CH6,ON", ":TRIG:IN:ENAB? PAR", "1\n"},
        {":MEAS:CURR:RANG CH1,LOW", ":MEAS:CURR:RANG? CH1", "LOW\n"},
        {":MEAS:CURR:RATE CH2,8000", ":MEAS:CURR:RATE? CH2", "8000\n"},
        {":MEAS:CURR:RATE CH2,4k", ":MEAS:CURR:RATE? CH2", "4000\n"},
        {":SOUR:Mode SER", ":SOUR:Mode?", "SER\n"},
    };
    ManualInstrument device;
    for (const auto& [set, query, reply] : kCases) {
        EXPECT_EQ(device.errorOf(set), kNoError) << set;
        EXPECT_EQ(device.exchange(query), reply) << query;
    }
}

TEST(Settings, BelongToOneChannel)
{
    ManualInstrument device;
    device.exchange("SOUR2:VOLT 2;:OUTP:PAIR CH2,SER;:OUTP:STAT CH2,ON");
    EXPECT_EQ(device.exchange("SOUR1:VOLT?;:OUTP:PAIR? CH1;:OUTP:STAT? CH1"), "0.000000;OFF;0\n");
    EXPECT_EQ(device.exchange("SOUR2:VOLT?;:OUTP:PAIR? CH2;:OUTP:STAT? CH2"), "2.000000;SER;1\n");
}

TEST(Outputs, AllOffSwitchesEveryOutputOff)
{
    ManualInstrument device;
    device.exchange("OUTP:STAT ALL,ON");
    EXPECT_EQ(device.exchange("OUTP:STAT? CH1;STAT? CH2;STAT? CH3;STAT? CH4;STAT? CH5;STAT? CH6"), "1;1;1;1;0;0\n");
    EXPECT_EQ(device.errorOf("OUTP:STAT ALL,OFF"), kNoError);
    EXPECT_EQ(device.exchange("OUTP:STAT? CH1;STAT? CH2;STAT? CH3;STAT? CH4"), "0;0;0;0\n");
}

TEST(Wording, BooleansAndKeywordsHaveAnotherForm)
{
    kvxvirtual::InstrumentSettings settings;
    settings.wording = {true, true};
    ManualInstrument device(settings);
    device.exchange("OUTP:STAT CH1,ON;:INST:SELE PAR;:MEAS:CURR:RATE CH1,4000");
    EXPECT_EQ(device.exchange("OUTP:STAT? CH1;STAT? CH2"), "ON;OFF\n");
    EXPECT_EQ(device.exchange("INST:SELE?;:MEAS:CURR:RATE? CH1;:OUTP:CVCC? CH1"), "CH6;4K;CV\n");
}

} // namespace
