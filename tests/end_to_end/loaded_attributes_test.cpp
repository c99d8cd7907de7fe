#include "tests/support/driver/loaded_driver.h"

#include "tests/support/driver/attribute_rows.h"

#include <algorithm>

namespace kvxtest
{
namespace
{

constexpr const char* kChannel = "OutputChannel3";
constexpr ViInt32 kTextSize = 256;

/// One of the ten functions, with a value that every attribute of its type takes on a session that is not simulated.
struct AccessFunction
{
    std::string_view direction;
    std::string_view type;
    ViStatus (*call)(const LoadedDriver& driver, ViSession vi, ViAttr id);

    std::string name() const { return std::string(direction) + "Attribute" + std::string(type); }
    bool takes(const AttributeRow& row) const { return row.type == type && (direction == "Get" || row.canBeSet); }
};

template <auto function, class Value>
ViStatus getNumber(const LoadedDriver& driver, ViSession vi, ViAttr id)
{
    Value value = 99;
    const ViStatus returned = (driver.*function)(vi, kChannel, id, &value);
    EXPECT_TRUE(returned >= 0 || value == Value{99}) << "a failure leaves the value";
    return returned;
}

ViStatus getText(const LoadedDriver& driver, ViSession vi, ViAttr id)
{
    std::array<ViChar, kTextSize> text{"as it was"};
    const ViStatus returned = driver.GetAttributeViString(vi, kChannel, id, kTextSize, text.data());
    EXPECT_TRUE(returned >= 0 || text.data() == std::string("as it was")) << "a failure leaves the buffer";
    return returned;
}

template <auto function, class Value>
ViStatus setNumber(const LoadedDriver& driver, ViSession vi, ViAttr id)
{
    return (driver.*function)(vi, kChannel, id, Value{0});
}

ViStatus setText(const LoadedDriver& driver, ViSession vi, ViAttr id)
{
    return driver.SetAttributeViString(vi, kChannel, id, "text");
}

constexpr std::array kAccessFunctions = {
    AccessFunction{"Get", "ViInt32", getNumber<&LoadedDriver::GetAttributeViInt32, ViInt32>},
    AccessFunction{"Get", "ViReal64", getNumber<&LoadedDriver::GetAttributeViReal64, ViReal64>},
    AccessFunction{"Get", "ViBoolean", getNumber<&LoadedDriver::GetAttributeViBoolean, ViBoolean>},
    AccessFunction{"Get", "ViSession", getNumber<&LoadedDriver::GetAttributeViSession, ViSession>},
    AccessFunction{"Get", "ViString", getText},
    AccessFunction{"Set", "ViInt32", setNumber<&LoadedDriver::SetAttributeViInt32, ViInt32>},
    AccessFunction{"Set", "ViReal64", setNumber<&LoadedDriver::SetAttributeViReal64, ViReal64>},
    AccessFunction{"Set", "ViBoolean", setNumber<&LoadedDriver::SetAttributeViBoolean, ViBoolean>},
    AccessFunction{"Set", "ViSession", setNumber<&LoadedDriver::SetAttributeViSession, ViSession>},
    AccessFunction{"Set", "ViString", setText},
};

class LoadedAttributes : public LoadedDriverTest
{
public:
    LoadedAttributes() { open(); }

    ViBoolean readBoolean(ViAttr id) const
    {
        ViBoolean value = 77;
        EXPECT_EQ(driver.GetAttributeViBoolean(vi, nullptr, id, &value), VI_SUCCESS);
        return value;
    }

    ViStatus readText(ViAttr id, ViInt32 size, ViChar text[]) const
    {
        return driver.GetAttributeViString(vi, nullptr, id, size, text);
    }
};

TEST_F(LoadedAttributes, EachIsReadAndSetByTheFunctionsOfItsTypeOnly)
{
    for (const AttributeRow& row : kAttributeRows)
        for (const AccessFunction& function : kAccessFunctions) {
            SCOPED_TRACE(function.name() + " " + row.name);
            const ViStatus returned = function.call(driver, vi, row.id);
            if (function.takes(row))
                EXPECT_EQ(returned, VI_SUCCESS);
            else if (row.type == function.type)
                expectRefused(returned, IVI_ERROR_IVI_ATTR_NOT_WRITABLE,
                              "Attribute '" + row.constant() + "' is read-only.");
            else
                expectRefused(returned, IVI_ERROR_TYPES_DO_NOT_MATCH,
                              function.name() + " called for attribute '" + row.constant() + "' of type '" +
                                  std::string(row.type) + "'.");
        }
}

TEST_F(LoadedAttributes, UnknownIdsAreRefusedByEveryFunction)
{
    for (const auto& [id, text] :
         {std::pair(0U, "0"), std::pair(1250099U, "1250099"), std::pair(0xFFFFFFFFU, "4294967295")})
        for (const AccessFunction& function : kAccessFunctions)
            expectRefused(function.call(driver, vi, id), IVI_ERROR_INVALID_ATTRIBUTE,
                          "Attribute ID '" + std::string(text) + "' not recognized.");
}

TEST_F(LoadedAttributes, NoFunctionTakesAClosedSession)
{
    const ViSession gone = closed();
    for (const AttributeRow& row : kAttributeRows)
        for (const AccessFunction& function : kAccessFunctions)
            EXPECT_EQ(function.call(driver, gone, row.id), KVX2800T_ERROR_INVALID_SESSION_HANDLE)
                << function.name() << ' ' << row.name;
}

TEST_F(LoadedAttributes, NullValuesAreRefusedBeforeAnythingElse)
{
    expectNullPointerRefused(driver.GetAttributeViInt32(vi, "", 0, nullptr), "KVX2800T_GetAttributeViInt32",
                             "AttributeValue");
    expectNullPointerRefused(driver.GetAttributeViReal64(vi, "", 0, nullptr), "KVX2800T_GetAttributeViReal64",
                             "AttributeValue");
    expectNullPointerRefused(driver.GetAttributeViBoolean(vi, "", 0, nullptr), "KVX2800T_GetAttributeViBoolean",
                             "AttributeValue");
    expectNullPointerRefused(driver.GetAttributeViSession(vi, "", 0, nullptr), "KVX2800T_GetAttributeViSession",
                             "AttributeValue");
    expectNullPointerRefused(readText(KVX2800T_ATTR_INSTRUMENT_MODEL, 10, nullptr), "GetAttributeViString",
                             "AttributeValueBufferSize");
    expectRefused(driver.GetAttributeViString(vi, "", 0, 10, nullptr), IVI_ERROR_INVALID_ATTRIBUTE,
                  "Attribute ID '0' not recognized.");
    EXPECT_EQ(newLines(), Lines{});
}

TEST_F(LoadedAttributes, TextsFollowTheBufferRules)
{
    constexpr ViStatus kSizeNeeded = 4096;
    const ViAttr model = KVX2800T_ATTR_INSTRUMENT_MODEL; // of eight characters
    std::array<ViChar, 4096> text{};
    EXPECT_EQ(readText(model, 0, nullptr), kSizeNeeded);
    text.fill('#');
    EXPECT_EQ(readText(model, 0, text.data()), kSizeNeeded);
    EXPECT_EQ(text[0], '#');
    EXPECT_EQ(readText(model, 5, text.data()), kSizeNeeded);
    EXPECT_STREQ(text.data(), "KVX2");
    EXPECT_EQ(text[5], '#');
    EXPECT_EQ(readText(model, 9, text.data()), kSizeNeeded);
    EXPECT_STREQ(text.data(), "KVX2833T");
    EXPECT_EQ(text[9], '#');
    EXPECT_EQ(readText(model, 10, text.data()), VI_SUCCESS);
    EXPECT_EQ(text[9], '#');
    text.fill('#');
    EXPECT_EQ(readText(model, -1, text.data()), VI_SUCCESS);
    EXPECT_STREQ(text.data(), "KVX2833T");
}

TEST_F(LoadedAttributes, SwitchesWithoutEffectTakeEveryValueAndKeepTheirOwn)
{
    for (const ViBoolean value : std::initializer_list<ViBoolean>{VI_TRUE, VI_FALSE, 0xFFFF}) {
        for (const int id : {KVX2800T_ATTR_RANGE_CHECK, KVX2800T_ATTR_CACHE, KVX2800T_ATTR_RECORD_COERCIONS,
                             KVX2800T_ATTR_INTERCHANGE_CHECK})
            EXPECT_EQ(driver.SetAttributeViBoolean(vi, "", static_cast<ViAttr>(id), value), VI_SUCCESS);
        EXPECT_EQ(readBoolean(KVX2800T_ATTR_RANGE_CHECK), VI_TRUE);
        EXPECT_EQ(readBoolean(KVX2800T_ATTR_CACHE), VI_FALSE);
        EXPECT_EQ(readBoolean(KVX2800T_ATTR_RECORD_COERCIONS), VI_FALSE);
        EXPECT_EQ(readBoolean(KVX2800T_ATTR_INTERCHANGE_CHECK), VI_FALSE);
    }
    EXPECT_EQ(newLines(), Lines{});
}

TEST_F(LoadedAttributes, StatusCheckingIsSwitchedByItsAttribute)
{
    EXPECT_EQ(driver.SetAttributeViBoolean(vi, "", KVX2800T_ATTR_QUERY_INSTRUMENT_STATUS, 5), VI_SUCCESS);
    EXPECT_EQ(readBoolean(KVX2800T_ATTR_QUERY_INSTRUMENT_STATUS), VI_TRUE);
    instrument.control("inject -222 \"Data out of range\"");
    expectRefused(driver.SetAttributeViReal64(vi, kChannel, KVX2800T_ATTR_VOLTAGE_LEVEL, 1.0),
                  IVI_ERROR_INSTRUMENT_STATUS,
                  "Instrument error detected.  Use ErrorQuery() to determine the error(s).");
    EXPECT_EQ(driver.SetAttributeViBoolean(vi, "", KVX2800T_ATTR_QUERY_INSTRUMENT_STATUS, VI_FALSE), VI_SUCCESS);
    EXPECT_EQ(driver.SetAttributeViReal64(vi, kChannel, KVX2800T_ATTR_VOLTAGE_LEVEL, 2.0), VI_SUCCESS);
    EXPECT_EQ(newLines(), (Lines{":SOUR3:VOLT 1.000000", "*ESR?", ":SOUR3:VOLT 2.000000"}));
}

TEST_F(LoadedAttributes, SimulationIsSwitchedOnForGood)
{
    EXPECT_EQ(driver.SetAttributeViBoolean(vi, "", KVX2800T_ATTR_SIMULATE, 2), VI_SUCCESS);
    EXPECT_EQ(readBoolean(KVX2800T_ATTR_SIMULATE), VI_FALSE);
    EXPECT_EQ(driver.SetAttributeViBoolean(vi, "", KVX2800T_ATTR_SIMULATE, VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(driver.SetAttributeViBoolean(vi, "", KVX2800T_ATTR_SIMULATE, VI_TRUE), VI_SUCCESS);
    expectRefused(driver.SetAttributeViBoolean(vi, "", KVX2800T_ATTR_SIMULATE, VI_FALSE),
                  IVI_ERROR_CANNOT_CHANGE_SIMULATION_STATE, "The simulation state cannot be changed.");
    EXPECT_EQ(readBoolean(KVX2800T_ATTR_SIMULATE), VI_TRUE);
    EXPECT_EQ(driver.SetAttributeViReal64(vi, kChannel, KVX2800T_ATTR_VOLTAGE_LEVEL, 1.0), VI_SUCCESS);
    EXPECT_EQ(newLines(), Lines{});
}

TEST_F(LoadedAttributes, SettersTakeSeveralChannelsAndGettersOne)
{
    EXPECT_EQ(driver.SetAttributeViReal64(vi, "OutputChannel1,OutputChannel3", KVX2800T_ATTR_VOLTAGE_LEVEL, 2.5),
              VI_SUCCESS);
    EXPECT_EQ(newLines(), (Lines{":SOUR:Mode?", ":SOUR1:VOLT 2.500000", ":SOUR3:VOLT 2.500000"}));
    ViReal64 volts = -1.0;
    EXPECT_EQ(driver.GetAttributeViReal64(vi, kChannel, KVX2800T_ATTR_VOLTAGE_LEVEL, &volts), VI_SUCCESS);
    EXPECT_EQ(volts, 2.5);
    EXPECT_EQ(newLines(), Lines{":SOUR3:VOLT?"});
    volts = -1.0;
    expectRefused(driver.GetAttributeViReal64(vi, "OutputChannel1-2", KVX2800T_ATTR_VOLTAGE_LEVEL, &volts),
                  IVI_ERROR_BADLY_FORMED_SELECTOR,
                  "Only a single repeated capability identifier can be specified for the current operation.");
    EXPECT_EQ(volts, -1.0);
    EXPECT_EQ(newLines(), Lines{});
}

TEST_F(LoadedAttributes, SelectorsThatNameNoChannelAreRefused)
{
    const auto refuse = [this](const char* selector, ViStatus expected, const std::string& text) {
        expectRefused(driver.SetAttributeViReal64(vi, selector, KVX2800T_ATTR_VOLTAGE_LEVEL, 1.0), expected, text);
        ViReal64 volts = -1.0;
        expectRefused(driver.GetAttributeViReal64(vi, selector, KVX2800T_ATTR_VOLTAGE_LEVEL, &volts), expected, text);
        EXPECT_EQ(volts, -1.0);
    };
    const std::string noSelector =
        "No selector was specified for repeated capability 'OutputChannel'.  The repeated capability identifier can be "
        "null or empty only when there is exactly one physical name defined.  Repeated capability 'OutputChannel' has "
        "6 physical names defined.";
    refuse(nullptr, IVI_ERROR_CHANNEL_NAME_REQUIRED, noSelector);
    refuse("", IVI_ERROR_CHANNEL_NAME_REQUIRED, noSelector);
    refuse("OutputChannel1;2", IVI_ERROR_BADLY_FORMED_SELECTOR, "The repeated capability selector is badly-formed.");
    refuse("OutputChannel1:OutputChannel2", IVI_ERROR_INVALID_NUMBER_OF_LEVELS_IN_SELECTOR,
           "The number of levels in the selector is not valid for the 'OutputChannel' repeated capability.");
    refuse("OutputChannel3-1", IVI_ERROR_INVALID_RANGE_IN_SELECTOR, "The start index must be less than the end index.");
    refuse("OutputChannel7", IVI_ERROR_UNKNOWN_PHYSICAL_IDENTIFIER,
           "The identifier 'OutputChannel7' is not defined for repeated capability 'OutputChannel'.");
    EXPECT_EQ(newLines(), Lines{});
}

TEST_F(LoadedAttributes, ABadBehaviorIsRefusedAfterTheSourceModeWasChanged)
{
    expectRefused(driver.SetAttributeViInt32(vi, "OutputChannel5", KVX2800T_ATTR_CURRENT_LIMIT_BEHAVIOR, 2),
                  KVX2800T_ERROR_VALUE_OUT_OF_RANGE, kOutOfRangeText);
    EXPECT_EQ(newLines(), (Lines{":SOUR:Mode?", ":SOUR:Mode SER"}));
}

TEST_F(LoadedAttributes, AnIoErrorIsRecordedAndLeavesTheValue)
{
    instrument.control("disconnect");
    ViReal64 volts = -1.0;
    expectRefused(driver.GetAttributeViReal64(vi, kChannel, KVX2800T_ATTR_VOLTAGE_LEVEL, &volts), KVX2800T_ERROR_IO,
                  "I/O error.");
    EXPECT_EQ(volts, -1.0);
    expectRefused(driver.SetAttributeViReal64(vi, kChannel, KVX2800T_ATTR_CURRENT_LIMIT, 1.0), KVX2800T_ERROR_IO,
                  "I/O error.");
}

} // namespace
} // namespace kvxtest
