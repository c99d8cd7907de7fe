#include "tests/support/driver/driver_end_to_end.h"
#include "tests/support/open_descriptors.h"

#include "tests/support/driver/attribute_reading.h"

#include <map>

namespace kvxtest
{
namespace
{

class AttributesEndToEnd : public DriverEndToEnd
{
public:
    explicit AttributesEndToEnd(const Lines& instrumentOptions = {}) : DriverEndToEnd(instrumentOptions) {}

    /// Every attribute's value, by its name.
    std::map<std::string, std::string> readAll(const char* channel) const
    {
        std::map<std::string, std::string> values;
        for (const AttributeRow& row : kAttributeRows)
            values[row.name] = readAttribute(vi, channel, row);
        return values;
    }

    std::string read(const char* channel, const char* name) const { return readAll(channel).at(name); }

    /// Sets every attribute of a channel.
    void configure(const char* channel) const
    {
        EXPECT_EQ(KVX2800T_SetAttributeViReal64(vi, channel, KVX2800T_ATTR_VOLTAGE_LEVEL, 5.25), VI_SUCCESS);
        EXPECT_EQ(KVX2800T_SetAttributeViReal64(vi, channel, KVX2800T_ATTR_CURRENT_LIMIT, 1.5), VI_SUCCESS);
        EXPECT_EQ(
            KVX2800T_SetAttributeViInt32(vi, channel, KVX2800T_ATTR_CURRENT_LIMIT_BEHAVIOR, KVX2800T_VAL_CURRENT_TRIP),
            VI_SUCCESS);
        EXPECT_EQ(KVX2800T_SetAttributeViReal64(vi, channel, KVX2800T_ATTR_OVP_LIMIT, 6.5), VI_SUCCESS);
        EXPECT_EQ(KVX2800T_SetAttributeViBoolean(vi, channel, KVX2800T_ATTR_OVP_ENABLED, VI_TRUE), VI_SUCCESS);
        EXPECT_EQ(KVX2800T_SetAttributeViBoolean(vi, channel, KVX2800T_ATTR_OUTPUT_ENABLED, VI_TRUE), VI_SUCCESS);
    }
};

TEST_F(AttributesEndToEnd, AllAreReadFromAFreshSession)
{
    open("DriverSetup=Model:KVX2833T");
    EXPECT_EQ(newLines(), Lines{"*IDN?"});
    std::map<std::string, std::string> expected = {
        {"QUERY_INSTRUMENT_STATUS", "0"},
        {"SIMULATE", "0"},
        {"LOGICAL_NAME", ""},
        {"IO_RESOURCE_DESCRIPTOR", instrument.resource()},
        {"DRIVER_SETUP", "Model:KVX2833T"},
        {"INSTRUMENT_FIRMWARE_REVISION", "V1.00"},
        {"INSTRUMENT_MANUFACTURER", "Tessaro Instruments"},
        {"INSTRUMENT_MODEL", "KVX2833T"},
        {"CURRENT_LIMIT_BEHAVIOR", "0"},
        {"CURRENT_LIMIT", "0.100000"},
        {"OUTPUT_ENABLED", "0"},
        {"OVP_ENABLED", "0"},
        {"OVP_LIMIT", "17.600000"},
        {"VOLTAGE_LEVEL", "0.000000"},
    };
    for (const AttributeRow& row : kAttributeRows)
        if (row.value != nullptr)
            expected[row.name] = row.value;
    EXPECT_EQ(expected.size(), kAttributeRows.size());
    EXPECT_EQ(readAll("OutputChannel3"), expected);
    EXPECT_EQ(newLines(), (Lines{":SOUR3:CURR:PROT:STAT?", ":SOUR3:CURR?", ":OUTP:STAT? CH3", ":SOUR3:VOLT:PROT:STAT?",
                                 ":SOUR3:VOLT:PROT?", ":SOUR3:VOLT?"}));
}

TEST_F(AttributesEndToEnd, ChannelSettingsReachTheInstrumentAndReadBack)
{
    open("QueryInstrStatus=1");
    newLines();
    configure("OutputChannel3");
    EXPECT_EQ(newLines(), (Lines{":SOUR3:VOLT 5.250000", "*ESR?", ":SOUR3:CURR 1.500000", ":SOUR3:CURR:PROT 1.500000",
                                 "*ESR?", ":SOUR3:CURR:PROT:STAT ON", "*ESR?", ":SOUR3:VOLT:PROT 6.500000", "*ESR?",
                                 ":SOUR3:VOLT:PROT:STAT ON", "*ESR?", ":OUTP:STAT CH3,ON", "*ESR?"}));
    const auto values = readAll("OutputChannel3");
    EXPECT_EQ(values.at("VOLTAGE_LEVEL"), "5.250000");
    EXPECT_EQ(values.at("CURRENT_LIMIT"), "1.500000");
    EXPECT_EQ(values.at("CURRENT_LIMIT_BEHAVIOR"), "1");
    EXPECT_EQ(values.at("OVP_LIMIT"), "6.500000");
    EXPECT_EQ(values.at("OVP_ENABLED"), "1");
    EXPECT_EQ(values.at("OUTPUT_ENABLED"), "1");
}

TEST_F(AttributesEndToEnd, ASettingOfSeveralChannelsGoesToEachInTheOrderOfTheirNames)
{
    open("QueryInstrStatus=1");
    newLines();
    EXPECT_EQ(KVX2800T_SetAttributeViReal64(vi, "OutputChannel4,OutputChannel1-2", KVX2800T_ATTR_CURRENT_LIMIT, 2.0),
              VI_SUCCESS);
    EXPECT_EQ(newLines(), (Lines{":SOUR4:CURR 2.000000", ":SOUR4:CURR:PROT 2.000000", ":SOUR:Mode?",
                                 ":SOUR1:CURR 2.000000", ":SOUR1:CURR:PROT 2.000000", ":SOUR:Mode?",
                                 ":SOUR2:CURR 2.000000", ":SOUR2:CURR:PROT 2.000000", "*ESR?"}));
}

TEST_F(AttributesEndToEnd, TheParallelChannelIsUsableRightAfterTheModeChange)
{
    open("QueryInstrStatus=1");
    newLines();
    EXPECT_EQ(KVX2800T_SetAttributeViReal64(vi, "OutputChannel6", KVX2800T_ATTR_CURRENT_LIMIT, 6.4), VI_SUCCESS);
    EXPECT_EQ(newLines(),
              (Lines{":SOUR:Mode?", ":SOUR:Mode PARA", ":SOUR6:CURR 6.400000", ":SOUR6:CURR:PROT 6.400000", "*ESR?"}));
}

TEST_F(AttributesEndToEnd, AProtectionLevelThatTheInstrumentRefusesIsFoundByStatusChecking)
{
    open();
    EXPECT_EQ(KVX2800T_SetAttributeViReal64(vi, "OutputChannel3", KVX2800T_ATTR_OVP_LIMIT, 99.0), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_SetAttributeViBoolean(vi, "", KVX2800T_ATTR_QUERY_INSTRUMENT_STATUS, VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_SetAttributeViReal64(vi, "OutputChannel3", KVX2800T_ATTR_OVP_LIMIT, 99.0), status(0xBFFA0001));
    ViInt32 code = 0;
    char message[256] = "";
    EXPECT_EQ(KVX2800T_error_query(vi, &code, message), VI_SUCCESS);
    EXPECT_EQ(code, -222);
}

TEST_F(AttributesEndToEnd, SimulateEndsTheConnectionOfALiveSession)
{
    open();
    KVX2800T_close(vi);
    const std::size_t withoutConnection = openDescriptors();
    open();
    EXPECT_GT(openDescriptors(), withoutConnection);
    newLines();
    EXPECT_EQ(KVX2800T_SetAttributeViBoolean(vi, "", KVX2800T_ATTR_SIMULATE, VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(openDescriptors(), withoutConnection);
    EXPECT_EQ(read("OutputChannel3", "INSTRUMENT_MODEL"), "KVX2803T");
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3", 5.0), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_reset(vi), VI_SUCCESS);
    EXPECT_EQ(newLines(), Lines{});
    EXPECT_EQ(KVX2800T_SetAttributeViBoolean(vi, "", KVX2800T_ATTR_SIMULATE, VI_FALSE), status(0xBFFA0062));
    EXPECT_EQ(recordedError(vi), (RecordedError{status(0xBFFA0062), "The simulation state cannot be changed."}));
}

class WordyInstrument : public AttributesEndToEnd
{
protected:
    WordyInstrument() : AttributesEndToEnd({"--boolean-words", "--alternate-keywords"}) {}
};

TEST_F(WordyInstrument, SwitchesInWordsReadAsNumbers)
{
    open();
    configure("OutputChannel4");
    const auto values = readAll("OutputChannel4");
    EXPECT_EQ(values.at("CURRENT_LIMIT_BEHAVIOR"), "1");
    EXPECT_EQ(values.at("OVP_ENABLED"), "1");
    EXPECT_EQ(values.at("OUTPUT_ENABLED"), "1");
}

} // namespace
} // namespace kvxtest
