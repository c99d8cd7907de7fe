#include "tests/support/virtual_instrument/manual_instrument.h"

#include <gtest/gtest.h>

namespace
{

using namespace kvxtest;

struct SettingCase
{
    const char* set;
    const char* query;
    const char* reply;
};

void expectToReadBack(ManualInstrument& device, const SettingCase& setting)
{
    EXPECT_EQ(device.errorOf(setting.set), kNoError) << setting.set;
    EXPECT_EQ(device.exchange(setting.query), setting.reply) << setting.query;
}

TEST(ListCommands, ReadBackWhatWasSet)
{
    ManualInstrument device;
    for (const auto& setting : {
             SettingCase{":LIST:CYCLE 10", ":LIST:CYCLE?", "10\n"},
             SettingCase{":LIST:CYCLE 99999", ":LIST:CYCLE?", "99999\n"},
             SettingCase{":LIST:CYCLE 0", ":LIST:CYCLE?", "0\n"},
             SettingCase{":LIST:ENDS LAST", ":LIST:ENDS?", "LAST\n"},
             SettingCase{":LIST:ENDS OFF", ":LIST:ENDS?", "OFF\n"},
             SettingCase{":LIST:TEMP:SEL DN", ":LIST:TEMP:SEL?", "DN\n"},
             SettingCase{":LIST:TEMP:SEL updn", ":LIST:TEMP:SEL?", "UPDN\n"},
             SettingCase{":LIST:TEMP:OBJ V,5.000000", ":LIST:TEMP:OBJ?", "V,5.000000\n"},
             SettingCase{":LIST:TEMP:OBJ C,1.5", ":LIST:TEMP:OBJ?", "C,1.500000\n"},
             SettingCase{":LIST:TEMP:MAXV 10.000000", ":LIST:TEMP:MAXV?", "10.000000\n"},
             SettingCase{":LIST:TEMP:MINV 1.000000", ":LIST:TEMP:MINV?", "1.000000\n"},
             SettingCase{":LIST:TEMP:PERI 2.000000", ":LIST:TEMP:PERI?", "2.000000\n"},
             SettingCase{":LIST:TEMP:INTE 0.100000", ":LIST:TEMP:INTE?", "0.100000\n"},
             SettingCase{":LIST:TEMP:CYCLE 4", ":LIST:TEMP:CYCLE?", "4\n"},
             SettingCase{":LIST:TEMP:INVE ON", ":LIST:TEMP:INVE?", "1\n"},
             SettingCase{":LIST:TEMP:WIDT 0.500000", ":LIST:TEMP:WIDT?", "0.500000\n"},
             SettingCase{":LIST:TEMP:PULSECount 8", ":LIST:TEMP:PULSECount?", "8\n"},
             SettingCase{":LIST:TEMP:SYMM 50", ":LIST:TEMP:SYMM?", "50\n"},
             SettingCase{":LIST:TEMP:STAI 10", ":LIST:TEMP:STAI?", "10\n"},
             SettingCase{":LIST:TEMP:EXPP 20", ":LIST:TEMP:EXPP?", "20\n"},
             SettingCase{":LIST:TEMP:EXPR 3", ":LIST:TEMP:EXPR?", "3\n"},
             SettingCase{":LIST:GROUP:PARA 1,5.000000,1.000000,0.100000", ":LIST:GROUP:PARA? 1",
                         "5.000000,1.000000,0.100000\n"},
             SettingCase{":LIST:GROUP:PARA 1,0,0,3600", ":LIST:GROUP:PARA? 1", "0.000000,0.000000,3600.000000\n"},
         })
        expectToReadBack(device, setting);
}

TEST(DelayCommands, ReadBackWhatWasSet)
{
    ManualInstrument device;
    for (const auto& setting : {
             SettingCase{":DELAY:CYCLEs 3", ":DELAY:CYCLEs?", "3\n"},
             SettingCase{":DELAY:CYCLEs 0", ":DELAY:CYCLEs?", "0\n"},
             SettingCase{":DELAY:ENDState LAST", ":DELAY:ENDState?", "LAST\n"},
             SettingCase{":DELAY:ENDState ON", ":DELAY:ENDState?", "ON\n"},
             SettingCase{":DELAY:GENerate:SELect INC", ":DELAY:GENerate:SELect?", "INC\n"},
             SettingCase{":DELAY:GENerate:PATT 10P", ":DELAY:GENerate:PATT?", "10P\n"},
             SettingCase{":DELAY:GENerate:PATT 01p", ":DELAY:GENerate:PATT?", "01P\n"},
             SettingCase{":DELAY:GENerate:POINTs 8", ":DELAY:GENerate:POINTs?", "8\n"},
             SettingCase{":DELAY:GENerate:TIMe:ON 0.200000", ":DELAY:GENerate:TIMe:ON?", "0.200000\n"},
             SettingCase{":DELAY:GENerate:TIMe:OFF 0.300000", ":DELAY:GENerate:TIMe:OFF?", "0.300000\n"},
             SettingCase{":DELAY:GENerate:TIMe:BASE 1.500000", ":DELAY:GENerate:TIMe:BASE?", "1.500000\n"},
             SettingCase{":DELAY:GENerate:TIMe:STEP 0.001", ":DELAY:GENerate:TIMe:STEP?", "0.001000\n"},
             SettingCase{":DELAY:GROUP:PARAmeter 1,ON,0.500000", ":DELAY:GROUP:PARAmeter? 1", "1,0.500000\n"},
             SettingCase{":DELAY:GROUP:PARAmeter 1,0,2", ":DELAY:GROUP:PARAmeter? 1", "0,2.000000\n"},
         })
        expectToReadBack(device, setting);
}

TEST(ProgramCommands, StartWithTheirFirstKeywordsAndNoGroups)
{
    ManualInstrument device;
    EXPECT_EQ(device.exchange("LIST:STAT?;STATUS?;CYCLE?;ENDS?;GROUP:NUM?"), "0;STOPPED,0.000000,0,0;1;OFF;0\n");
    EXPECT_EQ(device.exchange("LIST:TEMP:SEL?;OBJ?;MAXV?;MINV?;PERI?;INTE?;CYCLE?;INVE?"),
              "SINE;V,0.100000;1.000000;0.000000;1.000000;0.100000;1;0\n");
    EXPECT_EQ(device.exchange("LIST:TEMP:WIDT?;PULSECount?;SYMM?;STAI?;EXPP?;EXPR?;POINTs?"),
              "0.500000;1;50;1;10;3;10\n");
    EXPECT_EQ(device.exchange("DELAY:STAT?;STATUS?;CYCLEs?;ENDS?;GROUP:NUM?"), "0;STOPPED,0.000000,0,0;1;OFF;0\n");
    EXPECT_EQ(device.exchange("DELAY:GEN:SEL?;PATT?;POINTs?;TIM:ON?;OFF?;BASE?;STEP?"),
              "FIX;01P;2;1.000000;1.000000;1.000000;0.100000\n");
}

TEST(ProgramCommands, TakeShortLongAndDriversOwnSpellings)
{
    ManualInstrument device;
    device.exchange("LIST:GROUP:PARA 1,1,1,1;:DELAY:GROUP:PARA 1,ON,1");
    for (const auto* const query : {
             "LIST:STATE?",
             "list:stat?",
             "LIST:CYCL?",
             "LIST:CYCLES?",
             "LIST:ENDSTATE?",
             "LIST:GRO:NUMBER?",
             "LIST:GROUP:PARAMETER? 1",
             "LIST:GRO:PAR? 1",
             "LIST:TEMPLATE:SELECT?",
             "LIST:TEMP:SELE?",
             "LIST:TEMP:OBJECT?",
             "LIST:TEMP:MAXVALUE?",
             "LIST:TEMP:MINVALUE?",
             "LIST:TEMP:PER?",
             "LIST:TEMP:PERIOD?",
             "LIST:TEMP:INT?",
             "LIST:TEMP:INTERVAL?",
             "LIST:TEMP:CYCLES?",
             "LIST:TEMP:INV?",
             "LIST:TEMP:INVERT?",
             "LIST:TEMP:WIDTH?",
             "LIST:TEMP:PULSEC?",
             "LIST:TEMP:SYMMETRY?",
             "LIST:TEMP:POIN?",
             "LIST:TEMP:POINT?",
             "DEL:STAT?",
             "DEL:STATE?",
             "DELAY:CYCL?",
             "DELAY:CYCLE?",
             "DELAY:ENDS?",
             "DELAY:GRO:NUM?",
             "DELAY:GROUP:PAR? 1",
             "DELAY:GEN:SEL?",
             "DELAY:GENERATE:SELE?",
             "DELAY:GEN:PATTERN?",
             "DELAY:GEN:POIN?",
             "DELAY:GEN:TIM:ON?",
             "DELAY:GEN:TIME:BASE?",
         })
        EXPECT_NE(device.exchange(query), "") << query;
    for (const auto* const command : {
             "LIST:GROUP:INSERT 1",
             "LIST:GROUP:INS 1",
             "LIST:GROUP:DELETE 1",
             "LIST:GROUP:DEL 1",
             "LIST:TEMP:CONSTRUCT 1",
             "LIST:TEMP:CONST 1",
             "LIST:TEMP:CONS 1",
             "LIST:GROUP:CLEAR",
             "LIST:GROUP:CLE",
             "DELAY:GROUP:INS 1",
             "DELAY:GROUP:DEL 1",
             "DELAY:GEN:CONSTRUCT 1",
             "DELAY:GEN:CONS 1",
             "DELAY:GROUP:CLE",
         })
        EXPECT_EQ(device.errorOf(command), kNoError) << command;
    EXPECT_EQ(device.error(), kNoError);
}

TEST(ProgramCommands, StatusIsAskedForOnlyInFull)
{
    ManualInstrument device;
    EXPECT_EQ(device.exchange(":list:status?"), "STOPPED,0.000000,0,0\n");
    EXPECT_EQ(device.exchange(":DELAY:STATUS?"), "STOPPED,0.000000,0,0\n");
    for (const auto* const header : {"LIST:STATU?", "DELAY:STATU?", "LIST:STATUS", "DELAY:STATUS 1"})
        EXPECT_EQ(device.errorOf(header), "-113,\"Undefined header\"\n") << header;
}

struct RefusedCase
{
    const char* message;
    const char* error;
};

TEST(ProgramCommands, NameWhatIsWrongAndChangeNothing)
{
    const char* const kWrongType = "-104,\"Data type error\"\n";
    const char* const kNotInList = "-141,\"Invalid character data\"\n";
    const RefusedCase kCases[] = {
        {"LIST:STAT 2", "-224,\"Illegal parameter value\"\n"},
        {"LIST:CYCLE -1", kOutOfRange},
        {"LIST:CYCLE 100000", kOutOfRange},
        {"LIST:CYCLE nan", kOutOfRange},
        {"LIST:ENDS ON", kNotInList},
        {"LIST:GROUP:PARA 1,33.000001,1,1", kOutOfRange},
        {"LIST:GROUP:PARA 1,-0.1,1,1", kOutOfRange},
        {"LIST:GROUP:PARA 1,1,3.200001,1", kOutOfRange},
        {"LIST:GROUP:PARA 1,1,1,0.0009", kOutOfRange},
        {"LIST:GROUP:PARA 1,1,1,3600.1", kOutOfRange},
        {"LIST:GROUP:PARA 1,1,1,inf", kOutOfRange},
        {"LIST:GROUP:PARA 0,1,1,1", kOutOfRange},
        {"LIST:GROUP:PARA 2,1,1,1", kOutOfRange},
        {"LIST:GROUP:PARA 1,1,1", "-109,\"Missing parameter\"\n"},
        {"LIST:GROUP:PARA 1,1,1,1,1", "-108,\"Parameter not allowed\"\n"},
        {"LIST:GROUP:PARA? 1", kOutOfRange},
        {"LIST:GROUP:INS 2", kOutOfRange},
        {"LIST:GROUP:INS 0", kOutOfRange},
        {"LIST:GROUP:DEL 1", kOutOfRange},
        {"LIST:TEMP:SEL SQUARE", kNotInList},
        {"LIST:TEMP:SEL 1", kWrongType},
        {"LIST:TEMP:OBJ V,33.1", kOutOfRange},
        {"LIST:TEMP:OBJ V,-1", kOutOfRange},
        {"LIST:TEMP:OBJ W,1", kNotInList},
        {"LIST:TEMP:OBJ V", "-109,\"Missing parameter\"\n"},
        {"LIST:TEMP:MAXV 33.1", kOutOfRange},
        {"LIST:TEMP:MINV -0.1", kOutOfRange},
        {"LIST:TEMP:PERI 0.0009", kOutOfRange},
        {"LIST:TEMP:INTE 3600.1", kOutOfRange},
        {"LIST:TEMP:CYCLE 100000", kOutOfRange},
        {"LIST:TEMP:WIDT 0", kOutOfRange},
        {"LIST:TEMP:PULSEC 0", kOutOfRange},
        {"LIST:TEMP:PULSEC 257", kOutOfRange},
        {"LIST:TEMP:SYMM -1", kOutOfRange},
        {"LIST:TEMP:SYMM 101", kOutOfRange},
        {"LIST:TEMP:STAI 0", kOutOfRange},
        {"LIST:TEMP:STAI 513", kOutOfRange},
        {"LIST:TEMP:EXPP 0", kOutOfRange},
        {"LIST:TEMP:EXPP 513", kOutOfRange},
        {"LIST:TEMP:EXPR -1", kOutOfRange},
        {"LIST:TEMP:EXPR 11", kOutOfRange},
        {"LIST:TEMP:CONST 0", kOutOfRange},
        {"LIST:TEMP:CONST 2", kOutOfRange},
        {"LIST:TEMP:POINTs 5", "-113,\"Undefined header\"\n"},
        {"DELAY:CYCLEs 100000", kOutOfRange},
        {"DELAY:ENDS MAYBE", kNotInList},
        {"DELAY:GROUP:PARA 1,ON,0.0009", kOutOfRange},
        {"DELAY:GROUP:PARA 1,MAYBE,1", kNotInList},
        {"DELAY:GROUP:PARA 2,ON,1", kOutOfRange},
        {"DELAY:GROUP:PARA? 1", kOutOfRange},
        {"DELAY:GROUP:INS 2", kOutOfRange},
        {"DELAY:GROUP:DEL 1", kOutOfRange},
        {"DELAY:GEN:SEL INCR", kNotInList},
        {"DELAY:GEN:PATT 11P", "-224,\"Illegal parameter value\"\n"},
        {"DELAY:GEN:POINTs 0", kOutOfRange},
        {"DELAY:GEN:POINTs 513", kOutOfRange},
        {"DELAY:GEN:TIM:ON 0", kOutOfRange},
        {"DELAY:GEN:TIM:OFF 3601", kOutOfRange},
        {"DELAY:GEN:TIM:BASE -1", kOutOfRange},
        {"DELAY:GEN:TIM:STEP nan", kOutOfRange},
        {"DELAY:GEN:CONST 2", kOutOfRange},
    };
    ManualInstrument device;
    for (const auto& [message, error] : kCases)
        EXPECT_EQ(device.errorOf(message), error) << message;
    EXPECT_EQ(device.exchange("LIST:CYCLE?;GROUP:NUM?;:LIST:ENDS?;TEMP:WIDT?;PULSEC?;SYMM?;STAI?;EXPP?;EXPR?"),
              "1;0;OFF;0.500000;1;50;1;10;3\n");
    EXPECT_EQ(device.exchange("LIST:TEMP:OBJ?;MAXV?;MINV?;PERI?;INTE?;CYCLE?"),
              "V,0.100000;1.000000;0.000000;1.000000;0.100000;1\n");
    EXPECT_EQ(device.exchange("DELAY:CYCLEs?;GROUP:NUM?;:DELAY:ENDS?;GEN:SEL?;PATT?;POINTs?;TIM:ON?;OFF?;BASE?;STEP?"),
              "1;0;OFF;FIX;01P;2;1.000000;1.000000;1.000000;0.100000\n");
    EXPECT_EQ(device.error(), kNoError);
}

TEST(Groups, HaveTheLimitsOfTheSelectedChannel)
{
    struct Case
    {
        const char* channel;
        const char* fits;
        const char* tooMuchVoltage;
        const char* tooMuchCurrent;
    };
    ManualInstrument device;
    for (const auto& [channel, fits, tooMuchVoltage, tooMuchCurrent] :
         {Case{"CH3", "16,3.2", "16.1,1", "1,3.3"}, Case{"CH4", "6.2,10.5", "6.3,1", "1,10.6"},
          Case{"SER", "66,3.2", "66.1,1", "1,3.3"}, Case{"PAR", "33,6.4", "33.1,1", "1,6.5"}})
    {
        const auto groupOf = [](const char* levels) { return std::string("LIST:GROUP:PARA 1,") + levels + ",1"; };
        device.exchange(std::string("INST:SELE ") + channel);
        EXPECT_EQ(device.errorOf(groupOf(fits)), kNoError) << channel;
        EXPECT_EQ(device.errorOf(groupOf(tooMuchVoltage)), kOutOfRange) << channel;
        EXPECT_EQ(device.errorOf(groupOf(tooMuchCurrent)), kOutOfRange) << channel;
    }
}

TEST(Groups, BelongToTheSelectedChannel)
{
    ManualInstrument device;
    device.exchange("LIST:GROUP:PARA 1,1,1,1;:DELAY:GROUP:PARA 1,ON,1;:LIST:CYCLE 7;:DELAY:CYCLE 8");
    EXPECT_EQ(device.exchange("INST:SELE CH2;:LIST:GROUP:NUM?;:DELAY:GROUP:NUM?;:LIST:CYCLE?;:DELAY:CYCLE?"),
              "0;0;1;1\n");
    EXPECT_EQ(device.exchange("INST:SELE CH1;:LIST:GROUP:NUM?;:DELAY:GROUP:NUM?;:LIST:CYCLE?;:DELAY:CYCLE?"),
              "1;1;7;8\n");
}

TEST(Groups, AreAppendedInsertedAndDeleted)
{
    ManualInstrument device;
    device.exchange("LIST:GROUP:PARA 1,1,1,1;PARA 2,2,1,1;PARA 3,3,1,1");
    device.exchange("LIST:GROUP:INS 2;INS 5;DEL 1;PARA 2,9,0.5,2");
    EXPECT_EQ(device.exchange("LIST:GROUP:NUM?"), "4\n");
    EXPECT_EQ(device.exchange("LIST:GROUP:PARA? 1;PARA? 2;PARA? 3;PARA? 4"),
              "0.000000,0.100000,1.000000;9.000000,0.500000,2.000000;3.000000,1.000000,1.000000;"
              "0.000000,0.100000,1.000000\n");
    device.exchange("DELAY:GROUP:PARA 1,ON,2;INS 1;PARA 3,1,3;DEL 2");
    EXPECT_EQ(device.exchange("DELAY:GROUP:NUM?;PARA? 1;PARA? 2"), "2;0,1.000000;1,3.000000\n");
    EXPECT_EQ(device.exchange("LIST:GROUP:CLE;NUM?;:DELAY:GROUP:CLE;NUM?"), "0;0\n");
    EXPECT_EQ(device.error(), kNoError);
}

TEST(Groups, AreAtMost512)
{
    const char* const kTooMany = "-223,\"Too much data\"\n";
    ManualInstrument device;
    for (int i = 1; i <= 512; ++i) {
        const auto number = std::to_string(i);
        device.exchange("LIST:GROUP:PARA " + number + ",1,1,1;:DELAY:GROUP:PARA " + number + ",ON,1");
    }
    EXPECT_EQ(device.errorOf("LIST:GROUP:PARA 513,1,1,1"), kTooMany);
    EXPECT_EQ(device.errorOf("LIST:GROUP:INS 1"), kTooMany);
    EXPECT_EQ(device.errorOf("LIST:TEMP:CONST 513"), kTooMany);
    EXPECT_EQ(device.errorOf("DELAY:GROUP:PARA 513,ON,1"), kTooMany);
    EXPECT_EQ(device.errorOf("DELAY:GROUP:INS 513"), kTooMany);
    EXPECT_EQ(device.errorOf("DELAY:GEN:CONST 512"), kTooMany);
    EXPECT_EQ(device.errorOf("LIST:GROUP:PARA 514,1,1,1"), kOutOfRange);
    EXPECT_EQ(device.errorOf("LIST:GROUP:PARA 512,2,1,1"), kNoError);
    EXPECT_EQ(device.exchange("LIST:GROUP:NUM?;:DELAY:GROUP:NUM?"), "512;512\n");
}

} // namespace
