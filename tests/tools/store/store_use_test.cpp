#include "tests/support/store/store_tool_fixture.h"
#include "tools/store/store_check.h"

#include <gmock/gmock.h>

namespace
{

using namespace kvxtest;
using namespace store_tool;
using testing::ElementsAre;
using testing::IsEmpty;

/// What fails or has no effect in a store that follows the format, as LINE: PLACE: TEXT.
std::vector<std::string> problems(const std::string& text)
{
    std::vector<std::string> texts;
    for (const Finding& finding : check(StoreText(text))) {
        EXPECT_EQ(finding.kind, FindingKind::Use) << finding.text;
        texts.push_back(std::to_string(finding.line) + ": " + finding.place + ": " + finding.text);
    }
    return texts;
}

std::vector<std::string> problemsWith(const std::string& from, const std::string& to)
{
    return problems(replaced(exampleStore(), from, to));
}

std::vector<std::string> problemsOfDescriptor(const std::string& text)
{
    return problemsWith("TCPIP0::127.0.0.1::5025::SOCKET", text);
}

std::vector<std::string> problemsOfDriverSetup(const std::string& text)
{
    return problemsWith("<DriverSetup></DriverSetup>", "<DriverSetup>" + text + "</DriverSetup>");
}

std::vector<std::string> problemsOfTarget(const std::string& mapTo)
{
    return problemsWith("<MapTo>OutputChannel1</MapTo>", "<MapTo>" + mapTo + "</MapTo>");
}

/// Of the virtual names Rail1 to Rail3.
std::vector<std::string> problemsOfRange(const std::string& mapTo, const std::string& start)
{
    return problems(replaced(replaced(exampleStore(), "<MapTo>OutputChannel</MapTo>", "<MapTo>" + mapTo + "</MapTo>"),
                             "<StartingPhysicalIndex>2<", "<StartingPhysicalIndex>" + start + "<"));
}

const std::string kUsedSession = "DriverSessions/IviDriverSession 'KVX2800T'";
const std::string kCore = "46: " + kUsedSession + "/VirtualNames/IviVirtualName 'Core': maps to ";
const std::string kRail = "48: " + kUsedSession + "/VirtualNames/IviVirtualName 'Rail': maps ";

TEST(StoreUse, FindsResourceDescriptorsThatAreMalformed)
{
    for (const std::string text :
         {"TCPIP0::127.0.0.1::SOCKET", "TCPIP0::127.0.0.1::0::SOCKET", "TCPIP0::127.0.0.1::70000::SOCKET",
          "TCPIP0::::5025::SOCKET", "TCPIP0::[fe80::x]::5025::SOCKET",
          "TCPIP0::127.0.0.1::5025::SOCKET::", "TCPIP0:127.0.0.1:5025:SOCKET", "tcpip:127.0.0.1", "GPIB0::31::INSTR",
          "GPIB0:5:INSTR", "ASRL1::INSTRUMENT", "USB0::0x1234::INSTR", "PXI0::x::INSTR", "VXI0::256::INSTR",
          "GPIB-VXI0::x", "TCP::127.0.0.1::5025::SOCKET", "::", "BenchSupply::1"})
        EXPECT_THAT(problemsOfDescriptor(text),
                    ElementsAre("32: HardwareAssets/IviHardwareAsset 'Bench supply 1'/IOResourceDescriptor: '" + text +
                                "' is no VISA resource name"));
}

TEST(StoreUse, LeavesResourceNamesAndAliasesAlone)
{
    for (const std::string text :
         {"TCPIP0::192.168.1.20::5025::SOCKET", "tcpip::supply.example::inst0::instr", "TCPIP::[::1]::5025::SOCKET",
          "TCPIP0::host::hislip0,4881::INSTR", "ASRL1::INSTR", "ASRL3", "ASRL/dev/ttyUSB0::INSTR", "GPIB0::5::INSTR",
          "USB0::0x1234::0x5678::SN1::INSTR", "PXI0::3-18.2::INSTR", "VXI0::8::INSTR", "BenchSupply", "TCPIP supply",
          "USB", "USB supply", "GPIB_5", "a:b", "/dev/x"})
        EXPECT_THAT(problemsOfDescriptor(text), IsEmpty()) << text;
}

TEST(StoreUse, FindsKeysOfDriverSetupWithValuesThatTheyDoNotTake)
{
    const std::string setup = "51: " + kUsedSession + "/DriverSetup: no session opens with it: ";
    const std::string bad = " is no value of its key (IVI_ERROR_BAD_OPTION_VALUE)";
    EXPECT_THAT(problemsOfDriverSetup("BaudRate:fast"), ElementsAre(setup + "'fast'" + bad));
    EXPECT_THAT(problemsOfDriverSetup("Model:KVX2833T, SafeErrors=yes"), ElementsAre(setup + "'yes'" + bad));
    EXPECT_THAT(problemsOfDriverSetup("Profile:Rack"), ElementsAre(setup + "'Rack'" + bad));
    EXPECT_THAT(problemsOfDriverSetup("IoTimeout"),
                ElementsAre(setup + "a key has no value (IVI_ERROR_BAD_OPTION_VALUE)"));
    EXPECT_THAT(problemsOfDriverSetup("IoTimeout:"),
                ElementsAre(setup + "a key has no value (IVI_ERROR_BAD_OPTION_VALUE)"));
}

TEST(StoreUse, FindsKeysOfDriverSetupThatAreThereTwice)
{
    const std::string setup = "51: " + kUsedSession + "/DriverSetup: no session opens with it: ";
    const std::string twice = " is there more than once (IVI_ERROR_CANNOT_RECOVER)";
    EXPECT_THAT(problemsOfDriverSetup("BaudRate:9600,BAUDRATE:19200"), ElementsAre(setup + "'BAUDRATE'" + twice));
    EXPECT_THAT(problemsOfDriverSetup("Model:KVX2833T,Model:KVX2833T"), ElementsAre(setup + "'Model'" + twice));
    EXPECT_THAT(problemsOfDriverSetup("Own:1,Own:2,BaudRate:fast"), ElementsAre(setup + "'Own'" + twice));
}

TEST(StoreUse, FindsOptionsInsideADriverSetupThatIsChecked)
{
    const std::string setup = "51: " + kUsedSession + "/DriverSetup: no session opens with it: ";
    const std::string option = "'Simulate' is an option, but no key of DriverSetup (IVI_ERROR_BAD_OPTION_NAME)";
    EXPECT_THAT(problemsOfDriverSetup("CheckedOptions:1,Simulate=1"), ElementsAre(setup + option));
    EXPECT_THAT(problemsOfDriverSetup("Simulate:1,Profile:Bench"), ElementsAre(setup + option));
    EXPECT_THAT(problemsOfDriverSetup("Simulate:1"), IsEmpty());
}

TEST(StoreUse, LeavesDriverSetupsAloneThatOpen)
{
    for (const std::string text : {"", "Model:KVX2833T", "Profile:bench, IoTimeout:Infinite", "Model:a,model:b",
                                   "Own:x,own:y,Own", "text", "StopBits=1.5,Parity=even,FlowControl:XonXoff"})
        EXPECT_THAT(problemsOfDriverSetup(text), IsEmpty()) << text;
}

TEST(StoreUse, FindsTheFlagThatTheDriverDoesNotHave)
{
    for (const std::string value : {"1", "true"})
        EXPECT_THAT(problemsWith("<InterchangeCheck>0<", "<InterchangeCheck>" + value + "<"),
                    ElementsAre("51: " + kUsedSession +
                                "/InterchangeCheck: no session opens with it: the driver has no such check "
                                "(IVI_ERROR_BAD_OPTION_VALUE)"));
}

TEST(StoreUse, FindsVirtualNamesThatMapToNoChannel)
{
    for (const std::string text : {"OutputChannel7", "OutputChannel0", "OutputChannel01", "outputchannel1", "CH7",
                                   "CH0", "ch1", "CH", "CH11", "OutputChannel", "Core", "Pair", "3"})
        EXPECT_THAT(problemsOfTarget(text), ElementsAre(kCore + "'" + text + "', which is no channel"));
    EXPECT_THAT(problemsOfTarget("CH1, CH9"), ElementsAre(kCore + "'CH9', which is no channel"));
}

TEST(StoreUse, FindsVirtualNamesThatMapToNoRangeOfChannels)
{
    for (const std::string text : {"OutputChannel1-7", "OutputChannel0-3", "OutputChannel3-1", "CH2-2", "Rail1-3",
                                   "OutputChannel1-Channel3", "CH1-99999999999", "outputchannel1-OutputChannel2"})
        EXPECT_THAT(problemsOfTarget(text), ElementsAre(kCore + "'" + text + "', which is no range of channels"));
}

TEST(StoreUse, FindsVirtualNamesThatMapToNoSelector)
{
    for (const std::string text : {"OutputChannel1;2", "Output Channel1", "CH1,", "-3", "CH1-", "CH1:CH2"})
        EXPECT_THAT(problemsOfTarget(text), ElementsAre(kCore + "'" + text + "', which is no selector of channels"))
            << text;
    for (const std::string text : {"CH1,OutputChannel1", "CH1-3,OutputChannel3", "OutputChannel1-4,CH4-6"})
        EXPECT_THAT(problemsOfTarget(text), ElementsAre(kCore + "'" + text + "', which has a channel twice"));
}

TEST(StoreUse, LeavesVirtualNamesOfChannelsAlone)
{
    for (const std::string text :
         {"OutputChannel6", "CH1", "CH6", "OutputChannel1,OutputChannel2", " CH3 , OutputChannel1 ", "[CH1,CH2]",
          "OutputChannel1-6", "OutputChannel1-OutputChannel3", "OutputChannel2-outputchannel4", "CH1-3", "CH1-CH3",
          "CH4-OutputChannel6", "OutputChannel01-03", "CH5,CH1-4"})
        EXPECT_THAT(problemsOfTarget(text), IsEmpty()) << text;
}

TEST(StoreUse, FindsTheFirstIndexThatMapsToNoChannel)
{
    EXPECT_THAT(problemsOfRange("OutputChannel", "5"),
                ElementsAre(kRail + "'Rail3' to 'OutputChannel7', which is no channel"));
    EXPECT_THAT(problemsOfRange("CH", "0"), ElementsAre(kRail + "'Rail1' to 'CH0', which is no channel"));
    EXPECT_THAT(problemsOfRange("Channel", "1"), ElementsAre(kRail + "'Rail1' to 'Channel1', which is no channel"));
    EXPECT_THAT(problemsOfRange("", "1"), ElementsAre(kRail + "'Rail1' to '1', which is no channel"));
    EXPECT_THAT(problemsOfRange("CH1-", "5"), ElementsAre(kRail + "'Rail3' to 'CH1-7', which is no range of channels"));
    EXPECT_THAT(problemsOfRange("CH2,CH", "1"), ElementsAre(kRail + "'Rail2' to 'CH2,CH2', which has a channel twice"));
    EXPECT_THAT(problems(replaced(exampleStore(), "<Max>3<", "<Max>2147483640<")),
                ElementsAre(kRail + "'Rail6' to 'OutputChannel7', which is no channel"));
}

TEST(StoreUse, LeavesRangesOfChannelsAlone)
{
    for (const auto& [mapTo, start] :
         {std::pair("OutputChannel", "4"), std::pair("CH", "1"), std::pair("CH1,CH", "2"), std::pair("CH1-", "4")})
        EXPECT_THAT(problemsOfRange(mapTo, start), IsEmpty()) << mapTo;
}

TEST(StoreUse, FindsSettingsThatNothingReads)
{
    const std::string structure = "/DataComponents/IviStructure 'Configurable Initial Settings'/DataComponents/";
    const std::string noEffect = ": has no effect: the driver reads the string 'model' alone";
    // Of the module, and of the session.
    const std::string upper = replaced(exampleStore(), "<Name>model<", "<Name>Model<");
    EXPECT_THAT(problems(upper), ElementsAre("17: SoftwareModules/IviSoftwareModule 'KVX2800T'" + structure +
                                             "IviString 'Model'" + noEffect));
    const std::string station =
        replaced(replaced(upper, "<Name>model<", "<Name>Station<"), "<Name>Model<", "<Name>model<");
    EXPECT_THAT(problems(station), ElementsAre("41: " + kUsedSession + structure + "IviString 'Station'" + noEffect));
    const std::string type = "<Type>Integer</Type><HelpContextID>0</HelpContextID>";
    const std::string integer =
        "<IviInteger id='i'><Name>model</Name>" + type + "<Value>3</Value></IviInteger></DataComponents>";
    EXPECT_THAT(
        problems(replaced(replaced(exampleStore(), "</IviString>\n        </DataComponents>", "</IviString>" + integer),
                          "<IviString id=\"p8\"><Name>model<", "<IviString id=\"p8\"><Name>x<")),
        ElementsAre("17: SoftwareModules/IviSoftwareModule 'KVX2800T'" + structure + "IviString 'x'" + noEffect,
                    "17: SoftwareModules/IviSoftwareModule 'KVX2800T'" + structure + "IviInteger 'model'" + noEffect));
}

TEST(StoreUse, LeavesDataThatAreNoInitialSettingsAlone)
{
    EXPECT_THAT(problemsWith("<DataComponents/><IOResource",
                             "<DataComponents><IviBoolean id='b'><Name>Own</Name><Type>Boolean</Type><Value>1</Value>"
                             "</IviBoolean></DataComponents><IOResource"),
                IsEmpty());
    EXPECT_THAT(problems(replaced(replaced(exampleStore(), "<Name>Configurable Initial Settings<", "<Name>Notes<"),
                                  "<Name>model<", "<Name>text<")),
                IsEmpty());
}

TEST(StoreUse, LooksAtTheDriversOwnSessionsAlone)
{
    std::string text = replaced(exampleStore(), "<DriverSetup></DriverSetup>", "<DriverSetup>IoTimeout</DriverSetup>");
    text = replaced(text, "<InterchangeCheck>0<", "<InterchangeCheck>1<");
    text = replaced(text, "<MapTo>OutputChannel1</MapTo>", "<MapTo>A</MapTo>");
    text = replaced(text, "<Name>model<", "<Name>x<");
    EXPECT_EQ(problems(text).size(), 4U);
    const std::string byPrefix =
        replaced(text, "<Name>KVX2800T</Name><Description>IVI", "<Name>Supply</Name><Description>IVI");
    EXPECT_EQ(problems(byPrefix).size(), 4U);
    EXPECT_EQ(problems(replaced(text, "<Prefix>KVX2800T<", "<Prefix>Other<")).size(), 4U);
    EXPECT_THAT(problems(replaced(byPrefix, "<Prefix>KVX2800T<", "<Prefix>Other<")), IsEmpty());
    EXPECT_EQ(problems(replaced(text, "<IviSoftwareModuleRef idref=\"p3\"/>", "")).size(), 1U);
}

} // namespace
