#include "tests/support/driver/api_fixture.h"
#include "tests/support/driver/attribute_rows.h"

#include <algorithm>
#include <initializer_list>
#include <limits>

namespace
{

using namespace kvxtest;
using testing::ElementsAre;
using testing::IsEmpty;

class InherentAttributes : public ApiTest
{
public:
    void openOn(const std::string& resource, const std::string& options = "")
    {
        ASSERT_EQ(initOn(resource, options, &vi), VI_SUCCESS);
        clearLog();
    }

    ViBoolean flag(ViAttr id) const
    {
        ViBoolean value = 99;
        EXPECT_EQ(KVX2800T_GetAttributeViBoolean(vi, "", id, &value), VI_SUCCESS) << id;
        return value;
    }

    ViStatus set(ViAttr id, ViBoolean value) const { return KVX2800T_SetAttributeViBoolean(vi, "", id, value); }
};

TEST_F(InherentAttributes, SwitchesOfWhatTheDriverDoesNotDoTakeEveryValueAndKeepTheirOwn)
{
    open();
    const std::pair<ViAttr, ViBoolean> fixed[] = {{KVX2800T_ATTR_RANGE_CHECK, VI_TRUE},
                                                  {KVX2800T_ATTR_CACHE, VI_FALSE},
                                                  {KVX2800T_ATTR_RECORD_COERCIONS, VI_FALSE},
                                                  {KVX2800T_ATTR_INTERCHANGE_CHECK, VI_FALSE}};
    for (const auto& [id, own] : fixed)
        for (const ViBoolean value : std::initializer_list<ViBoolean>{VI_FALSE, VI_TRUE, 2, 0xFFFF}) {
            EXPECT_EQ(set(id, value), VI_SUCCESS) << id;
            EXPECT_EQ(flag(id), own) << id;
        }
    EXPECT_THAT(calls("vi"), IsEmpty());
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_F(InherentAttributes, FixedSwitchesReadTheirOwnWhateverTheOptionsSay)
{
    open("Cache=1, RangeCheck=0, RecordCoercions=1");
    EXPECT_EQ(flag(KVX2800T_ATTR_RANGE_CHECK), VI_TRUE);
    EXPECT_EQ(flag(KVX2800T_ATTR_CACHE), VI_FALSE);
    EXPECT_EQ(flag(KVX2800T_ATTR_RECORD_COERCIONS), VI_FALSE);
    EXPECT_EQ(flag(KVX2800T_ATTR_INTERCHANGE_CHECK), VI_FALSE);
}

TEST_F(InherentAttributes, RangeCheckSwitchedOffStillChecksLevels)
{
    open();
    EXPECT_EQ(set(KVX2800T_ATTR_RANGE_CHECK, VI_FALSE), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3", 16.1), kOutOfRange);
    EXPECT_THAT(written(), IsEmpty());
}

TEST_F(InherentAttributes, QueryInstrumentStatusSwitchesTheStatusCheck)
{
    open();
    EXPECT_EQ(flag(KVX2800T_ATTR_QUERY_INSTRUMENT_STATUS), VI_FALSE);
    for (const ViBoolean value : std::initializer_list<ViBoolean>{VI_TRUE, 2, 0xFFFF}) {
        EXPECT_EQ(set(KVX2800T_ATTR_QUERY_INSTRUMENT_STATUS, value), VI_SUCCESS);
        EXPECT_EQ(flag(KVX2800T_ATTR_QUERY_INSTRUMENT_STATUS), VI_TRUE);
        clearLog();
        EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3", 1.0), VI_SUCCESS);
        EXPECT_THAT(written(), ElementsAre(":SOUR3:VOLT 1.000000\n", "*ESR?\n"));
    }
    EXPECT_EQ(set(KVX2800T_ATTR_QUERY_INSTRUMENT_STATUS, VI_FALSE), VI_SUCCESS);
    EXPECT_EQ(flag(KVX2800T_ATTR_QUERY_INSTRUMENT_STATUS), VI_FALSE);
    clearLog();
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3", 1.0), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAre(":SOUR3:VOLT 1.000000\n"));
}

TEST_F(InherentAttributes, QueryInstrumentStatusStartsAsTheOptionSays)
{
    open("QueryInstrStatus=1");
    EXPECT_EQ(flag(KVX2800T_ATTR_QUERY_INSTRUMENT_STATUS), VI_TRUE);
}

TEST_F(InherentAttributes, TheIdentityIsTheInstruments)
{
    answer("*IDN?", "Maker of supplies,KVX9999T,SN7,V9.87 beta");
    open();
    EXPECT_EQ(text(KVX2800T_ATTR_INSTRUMENT_MANUFACTURER), "Maker of supplies");
    EXPECT_EQ(text(KVX2800T_ATTR_INSTRUMENT_MODEL), "KVX9999T");
    EXPECT_EQ(text(KVX2800T_ATTR_INSTRUMENT_FIRMWARE_REVISION), "V9.87 beta");
    EXPECT_EQ(text(KVX2800T_ATTR_SUPPORTED_INSTRUMENT_MODELS), "KVX2833T");
    EXPECT_THAT(calls("vi"), IsEmpty());
}

TEST_F(InherentAttributes, TheModelOfTheSetupIsNotTheInstruments)
{
    open("DriverSetup=Model:KVX1");
    EXPECT_EQ(text(KVX2800T_ATTR_INSTRUMENT_MODEL), "KVX2833T");
    EXPECT_EQ(text(KVX2800T_ATTR_DRIVER_SETUP), "Model:KVX1");
}

TEST_F(InherentAttributes, AnInstrumentThatDoesNotSayWhoItIsHasEmptyTexts)
{
    answer("*IDN?", "A,B,C");
    open();
    EXPECT_EQ(text(KVX2800T_ATTR_INSTRUMENT_MANUFACTURER), "");
    EXPECT_EQ(text(KVX2800T_ATTR_INSTRUMENT_MODEL), "");
    EXPECT_EQ(text(KVX2800T_ATTR_INSTRUMENT_FIRMWARE_REVISION), "");
}

TEST_F(InherentAttributes, TheSimulatedInstrumentHasAnIdentityOfItsOwn)
{
    open("Simulate=1, DriverSetup=Model:KVX2833T");
    EXPECT_EQ(text(KVX2800T_ATTR_INSTRUMENT_MANUFACTURER), "Tessaro Instruments");
    EXPECT_EQ(text(KVX2800T_ATTR_INSTRUMENT_MODEL), "KVX2803T");
    EXPECT_EQ(text(KVX2800T_ATTR_INSTRUMENT_FIRMWARE_REVISION), "V1.00");
}

TEST_F(InherentAttributes, WithoutAStoreEntryTheDescriptorIsTheResourceName)
{
    openOn("ASRL3::INSTR");
    EXPECT_EQ(text(KVX2800T_ATTR_LOGICAL_NAME), "");
    EXPECT_EQ(text(KVX2800T_ATTR_IO_RESOURCE_DESCRIPTOR), "ASRL3::INSTR");
    EXPECT_EQ(text(KVX2800T_ATTR_DRIVER_SETUP), "");
}

TEST_F(InherentAttributes, ANameThatTheStoreDoesNotKnowIsTheDescriptor)
{
    openOn("BenchSupply");
    EXPECT_EQ(text(KVX2800T_ATTR_LOGICAL_NAME), "");
    EXPECT_EQ(text(KVX2800T_ATTR_IO_RESOURCE_DESCRIPTOR), "BenchSupply");
}

TEST_F(InherentAttributes, AnEntryOfTheStoreGivesNameAndDescriptor)
{
    StoredDriverSession& bench = configurationStore().furtherSessions.emplace_back();
    bench.name = "BenchSupply";
    bench.ioResourceDescriptor = "ASRL2::INSTR";
    bench.driverSetup = "Model:KVX2833T";
    openOn("BenchSupply");
    EXPECT_EQ(text(KVX2800T_ATTR_LOGICAL_NAME), "BenchSupply");
    EXPECT_EQ(text(KVX2800T_ATTR_IO_RESOURCE_DESCRIPTOR), "ASRL2::INSTR");
    EXPECT_EQ(text(KVX2800T_ATTR_DRIVER_SETUP), "Model:KVX2833T");
}

TEST_F(InherentAttributes, AnEntryOfTheStoreMayHaveRangesAndSettingsOfEveryType)
{
    StoredDriverSession& bench = configurationStore().furtherSessions.emplace_back();
    bench.name = "BenchSupply";
    bench.ioResourceDescriptor = "ASRL2::INSTR";
    bench.virtualNames = {{"Rail", "OutputChannel", {{11, 14, 1}}}};
    bench.settings() = {integerComponent("Integer", 1), realComponent("Real", 1.5), booleanComponent("Switch", VI_TRUE),
                        stringComponent("Model", "KVX2833T")};
    openOn("BenchSupply");
    ViReal64 volts = 0.0;
    answer(":SOUR3:VOLT?", "1.5");
    EXPECT_EQ(KVX2800T_GetAttributeViReal64(vi, "Rail13", KVX2800T_ATTR_VOLTAGE_LEVEL, &volts), VI_SUCCESS);
    EXPECT_EQ(volts, 1.5);
}

TEST_F(InherentAttributes, ALogicalNameIsToldAsItWasGiven)
{
    StoredDriverSession& bench = configurationStore().furtherSessions.emplace_back();
    bench.name = "BenchSupply";
    bench.ioResourceDescriptor = "ASRL2::INSTR";
    configurationStore().logicalNames["Supply"] = "BenchSupply";
    openOn("Supply");
    EXPECT_EQ(text(KVX2800T_ATTR_LOGICAL_NAME), "Supply");
    EXPECT_EQ(text(KVX2800T_ATTR_IO_RESOURCE_DESCRIPTOR), "ASRL2::INSTR");
}

TEST_F(InherentAttributes, AnEntryWithoutADescriptorGivesNoName)
{
    configurationStore().furtherSessions.emplace_back().name = "BenchSupply";
    openOn("BenchSupply");
    EXPECT_EQ(text(KVX2800T_ATTR_LOGICAL_NAME), "");
    EXPECT_EQ(text(KVX2800T_ATTR_IO_RESOURCE_DESCRIPTOR), "BenchSupply");
}

TEST_F(InherentAttributes, TheEntryOfTheDriverItselfCountsWhenItIsNamed)
{
    configurationStore().driverSession.emplace().ioResourceDescriptor = "ASRL1::INSTR";
    openOn("KVX2800T");
    EXPECT_EQ(text(KVX2800T_ATTR_LOGICAL_NAME), "KVX2800T");
    EXPECT_EQ(text(KVX2800T_ATTR_IO_RESOURCE_DESCRIPTOR), "ASRL1::INSTR");
}

TEST_F(InherentAttributes, AnExplicitDescriptorIsNeverReplaced)
{
    configurationStore().driverSession.emplace().ioResourceDescriptor = "ASRL1::INSTR";
    openOn("ASRL7::INSTR");
    EXPECT_EQ(text(KVX2800T_ATTR_LOGICAL_NAME), "");
    EXPECT_EQ(text(KVX2800T_ATTR_IO_RESOURCE_DESCRIPTOR), "ASRL7::INSTR");
}

TEST_F(InherentAttributes, ASetupOfTheOptionStringReplacesTheStores)
{
    configurationStore().driverSession.emplace().driverSetup = "Model:A";
    openOn("ASRL7::INSTR", "Cache=0, DriverSetup= Model:B ,Trace=1");
    EXPECT_EQ(text(KVX2800T_ATTR_DRIVER_SETUP), " Model:B ,Trace=1");
}

TEST_F(InherentAttributes, ChannelCountIsTheSameForEveryModel)
{
    for (const char* identity : {"Tessaro Instruments,KVX2833T,1,V1", "Tessaro Instruments,KVX2803T,1,V1", "a,b,c,d"}) {
        answer("*IDN?", identity);
        open();
        ViInt32 count = 0;
        EXPECT_EQ(KVX2800T_GetAttributeViInt32(vi, nullptr, KVX2800T_ATTR_CHANNEL_COUNT, &count), VI_SUCCESS);
        EXPECT_EQ(count, 6);
        KVX2800T_close(vi);
    }
    vi = VI_NULL;
}

// Texts and buffers

/// Every text attribute.
class TextAttributes : public InherentAttributes, public testing::WithParamInterface<AttributeRow>
{
public:
    TextAttributes() { open("DriverSetup=Model:KVX2833T"); }

    static constexpr ViInt32 kEnough = 4096;
    static constexpr std::size_t kBuffer = 5000;

    /// Reads into a buffer of '#' and gives the status.
    ViStatus readInto(ViInt32 size)
    {
        std::fill(buffer.begin(), buffer.end(), '#');
        return KVX2800T_GetAttributeViString(vi, "", GetParam().id, size, buffer.data());
    }

    /// Expects that exactly this text and its NUL have been written.
    void expectWritten(const std::string& expected) const
    {
        EXPECT_STREQ(buffer.data(), expected.c_str());
        EXPECT_TRUE(untouchedFrom(expected.size() + 1));
    }

    bool untouchedFrom(std::size_t position) const
    {
        return std::all_of(buffer.begin() + static_cast<std::ptrdiff_t>(position), buffer.end(),
                           [](ViChar c) { return c == '#'; });
    }

    std::vector<ViChar> buffer = std::vector<ViChar>(kBuffer, '#');
};

TEST_P(TextAttributes, ABufferOfEverySizeGetsWhatItHolds)
{
    const std::string value = text(GetParam().id);
    for (std::size_t size = 1; size <= value.size() + 3; ++size) {
        SCOPED_TRACE(size);
        // A text that fills the buffer to its end might be a cut one.
        EXPECT_EQ(readInto(static_cast<ViInt32>(size)), size <= value.size() + 1 ? kEnough : VI_SUCCESS);
        expectWritten(value.substr(0, size - 1));
    }
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_P(TextAttributes, ASizeOfZeroAsksForTheLargestSizeAndReadsNothing)
{
    EXPECT_EQ(readInto(0), kEnough);
    EXPECT_TRUE(untouchedFrom(0));
    EXPECT_EQ(KVX2800T_GetAttributeViString(vi, "", GetParam().id, 0, nullptr), kEnough);
    EXPECT_THAT(calls(), IsEmpty());
}

TEST_P(TextAttributes, ANegativeSizeIsABufferForEveryText)
{
    const std::string value = text(GetParam().id);
    for (const ViInt32 size : std::initializer_list<ViInt32>{-1, -4096, std::numeric_limits<ViInt32>::min()}) {
        EXPECT_EQ(readInto(size), VI_SUCCESS);
        expectWritten(value);
    }
}

TEST_P(TextAttributes, NoBufferIsAnErrorForEverySizeButZero)
{
    for (const ViInt32 size : std::initializer_list<ViInt32>{1, 10, -1, std::numeric_limits<ViInt32>::max(),
                                                             std::numeric_limits<ViInt32>::min()})
    {
        forget();
        EXPECT_EQ(KVX2800T_GetAttributeViString(vi, "", GetParam().id, size, nullptr), kNullPointer);
        expectRecordedOnce(kNullPointer, "Null pointer passed for function 'GetAttributeViString', parameter "
                                         "'AttributeValueBufferSize'.");
    }
}

std::vector<AttributeRow> textRows()
{
    std::vector<AttributeRow> rows;
    std::copy_if(kAttributeRows.begin(), kAttributeRows.end(), std::back_inserter(rows),
                 [](const AttributeRow& row) { return row.type == "ViString"; });
    return rows;
}

INSTANTIATE_TEST_SUITE_P(Attributes, TextAttributes, testing::ValuesIn(textRows()),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(InherentAttributes, ATextOfNineCharactersNeedsElevenBytesToBeSureOfIt)
{
    answer("*IDN?", "maker,NineChars,1,V1");
    open();
    std::array<ViChar, 11> buffer{};
    EXPECT_EQ(KVX2800T_GetAttributeViString(vi, "", KVX2800T_ATTR_INSTRUMENT_MODEL, 10, buffer.data()), 4096);
    EXPECT_STREQ(buffer.data(), "NineChars");
    EXPECT_EQ(KVX2800T_GetAttributeViString(vi, "", KVX2800T_ATTR_INSTRUMENT_MODEL, 11, buffer.data()), VI_SUCCESS);
    EXPECT_STREQ(buffer.data(), "NineChars");
}

TEST_F(InherentAttributes, ATextEndsAtANulOfItsOwnAndNothingIsWrittenBehindIt)
{
    answer("*IDN?", std::string("a,b\0c,d,e", 9));
    open();
    std::array<ViChar, 8> buffer{};
    for (const ViInt32 size : {8, 4, 3, -1}) {
        buffer.fill('#');
        EXPECT_EQ(KVX2800T_GetAttributeViString(vi, "", KVX2800T_ATTR_INSTRUMENT_MODEL, size, buffer.data()),
                  VI_SUCCESS);
        EXPECT_EQ(std::string_view(buffer.data(), buffer.size()), std::string_view("b\0######", 8)) << size;
    }
}

TEST_F(InherentAttributes, ATextBeyondTheLargestSizeIsCutForABufferOfUnknownSize)
{
    const std::string setup = "Trace:" + std::string(5000, 'x');
    open("DriverSetup=" + setup);
    std::vector<ViChar> buffer(6000, '#');
    EXPECT_EQ(KVX2800T_GetAttributeViString(vi, "", KVX2800T_ATTR_DRIVER_SETUP, -1, buffer.data()), VI_SUCCESS);
    EXPECT_EQ(buffer.data(), setup.substr(0, 4095));
    EXPECT_EQ(buffer[4096], '#');
    EXPECT_EQ(KVX2800T_GetAttributeViString(vi, "", KVX2800T_ATTR_DRIVER_SETUP, 6000, buffer.data()), VI_SUCCESS);
    EXPECT_EQ(buffer.data(), setup);
}

} // namespace
