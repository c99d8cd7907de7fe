#include "tests/support/driver/api_fixture.h"
#include "tests/support/driver/attribute_reading.h"
#include "tests/support/driver/attribute_rows.h"

#include <algorithm>

// Every attribute with every function that reads or sets attributes.

namespace
{

using namespace kvxtest;
using testing::ElementsAre;
using testing::IsEmpty;

/// A function that reads or sets attributes of one type, with a value that the attributes of the type take.
struct AccessFunction
{
    std::string_view direction;
    std::string_view type;
    ViStatus (*call)(ViSession vi, ViConstString channel, ViAttr id);
    /// The same with a null pointer for the value; only of those that get numbers.
    ViStatus (*callWithNull)(ViSession vi, ViConstString channel, ViAttr id) = nullptr;

    bool gets() const { return direction == "Get"; }
    std::string name() const { return std::string(direction) + "Attribute" + std::string(type); }
};

constexpr ViInt32 kTextSize = 64;

template <class Value>
using Getter = ViStatus(_VI_FUNC*)(ViSession, ViConstString, ViAttr, Value*);

template <class Value, Getter<Value> get>
ViStatus callGetter(ViSession vi, ViConstString channel, ViAttr id)
{
    constexpr auto kMark = static_cast<Value>(99);
    Value value = kMark;
    const ViStatus status = get(vi, channel, id, &value);
    EXPECT_TRUE(status >= 0 || value == kMark) << "a failure leaves the value";
    return status;
}

template <class Value, Getter<Value> get>
ViStatus callGetterWithNull(ViSession vi, ViConstString channel, ViAttr id)
{
    return get(vi, channel, id, nullptr);
}

template <class Value, Getter<Value> get>
constexpr AccessFunction getterOf(std::string_view type)
{
    return {"Get", type, callGetter<Value, get>, callGetterWithNull<Value, get>};
}

ViStatus getText(ViSession vi, ViConstString channel, ViAttr id)
{
    std::array<ViChar, kTextSize> text{};
    text.fill('#');
    const ViStatus status = KVX2800T_GetAttributeViString(vi, channel, id, kTextSize, text.data());
    EXPECT_TRUE(status >= 0 || std::all_of(text.begin(), text.end(), [](ViChar c) { return c == '#'; }))
        << "a failure leaves the buffer";
    return status;
}

const std::array kAccessFunctions = {
    getterOf<ViInt32, KVX2800T_GetAttributeViInt32>("ViInt32"),
    getterOf<ViReal64, KVX2800T_GetAttributeViReal64>("ViReal64"),
    getterOf<ViBoolean, KVX2800T_GetAttributeViBoolean>("ViBoolean"),
    getterOf<ViSession, KVX2800T_GetAttributeViSession>("ViSession"),
    AccessFunction{"Get", "ViString", getText},
    AccessFunction{"Set", "ViInt32",
                   [](ViSession vi, ViConstString channel, ViAttr id) {
                       return KVX2800T_SetAttributeViInt32(vi, channel, id, 1);
                   }},
    AccessFunction{"Set", "ViReal64",
                   [](ViSession vi, ViConstString channel, ViAttr id) {
                       return KVX2800T_SetAttributeViReal64(vi, channel, id, 1.0);
                   }},
    AccessFunction{"Set", "ViBoolean",
                   [](ViSession vi, ViConstString channel, ViAttr id) {
                       return KVX2800T_SetAttributeViBoolean(vi, channel, id, VI_TRUE);
                   }},
    AccessFunction{"Set", "ViSession",
                   [](ViSession vi, ViConstString channel, ViAttr id) {
                       return KVX2800T_SetAttributeViSession(vi, channel, id, 1);
                   }},
    AccessFunction{"Set", "ViString",
                   [](ViSession vi, ViConstString channel, ViAttr id) {
                       return KVX2800T_SetAttributeViString(vi, channel, id, "text");
                   }},
};

/// What an attribute reads on the session of these tests, through the function of its type.
std::string expectedValue(const AttributeRow& row)
{
    static const std::map<std::string_view, std::string> kValues = {
        {"QUERY_INSTRUMENT_STATUS", "0"},
        {"SIMULATE", "0"},
        {"LOGICAL_NAME", ""},
        {"IO_RESOURCE_DESCRIPTOR", "TCPIP0::host::1::SOCKET"},
        {"DRIVER_SETUP", "Model:KVX2833T, Trace=1"},
        {"INSTRUMENT_FIRMWARE_REVISION", "V2.34"},
        {"INSTRUMENT_MANUFACTURER", "Tessaro Instruments"},
        {"INSTRUMENT_MODEL", "KVX2833T"},
        {"CURRENT_LIMIT_BEHAVIOR", "1"},
        {"CURRENT_LIMIT", "1.500000"},
        {"OUTPUT_ENABLED", "1"},
        {"OVP_ENABLED", "1"},
        {"OVP_LIMIT", "17.500000"},
        {"VOLTAGE_LEVEL", "5.250000"},
    };
    return row.value != nullptr ? row.value : kValues.at(row.name);
}

bool isRegistered(ViAttr id)
{
    return std::any_of(kAttributeRows.begin(), kAttributeRows.end(),
                       [id](const AttributeRow& row) { return row.id == id; });
}

class AttributeAccess : public ApiTest, public testing::WithParamInterface<AttributeRow>
{
public:
    AttributeAccess()
    {
        answer(":SOUR3:VOLT?", "5.25");
        answer(":SOUR3:VOLT:PROT?", "17.5");
        answer(":SOUR3:VOLT:PROT:STAT?", "ON");
        answer(":SOUR3:CURR?", "1.5");
        answer(":SOUR3:CURR:PROT:STAT?", "ON");
        answer(":OUTP:STAT? CH3", "ON");
        open("DriverSetup=Model:KVX2833T, Trace=1");
    }

    static const AttributeRow& row() { return GetParam(); }

    static bool fits(const AccessFunction& function)
    {
        return function.type == row().type && (function.gets() || row().canBeSet);
    }

    /// Expects that a call has been refused with this record and has called nothing else.
    void expectRefused(ViStatus returned, ViStatus status, const std::string& text) const
    {
        EXPECT_EQ(returned, status);
        EXPECT_EQ(recorded(), (ErrorEntry{status, text}));
        EXPECT_EQ(calls().size(), 1U);
        forget();
    }

    static constexpr const char* kChannel = "OutputChannel3";
};

TEST_P(AttributeAccess, ReadsTheValue)
{
    EXPECT_EQ(readAttribute(vi, kChannel, row()), expectedValue(row()));
    EXPECT_EQ(timesRecorded(), 0U);
    EXPECT_EQ(calls("vi").empty(), !row().ofChannel);
}

TEST_P(AttributeAccess, TheFunctionsOfItsTypeLookTheSessionUpLockAndUnlock)
{
    for (const AccessFunction& function : kAccessFunctions) {
        if (!fits(function))
            continue;
        SCOPED_TRACE(function.name());
        clearLog();
        EXPECT_EQ(function.call(vi, kChannel, row().id), VI_SUCCESS);
        const std::vector<std::string> made = calls();
        ASSERT_GE(made.size(), 3U);
        EXPECT_EQ(made[0], "IviSession_GetDataPtr(1001)");
        EXPECT_EQ(made[1], "IviSession_Lock(1001, null)");
        EXPECT_EQ(made.back(), "IviSession_Unlock(1001, null)");
        EXPECT_EQ(lockDepth(vi), 0U);
        EXPECT_EQ(timesRecorded(), 0U);
    }
}

TEST_P(AttributeAccess, ALockThatCannotBeTakenEndsTheCall)
{
    for (const AccessFunction& function : kAccessFunctions) {
        if (!fits(function))
            continue;
        SCOPED_TRACE(function.name());
        clearLog();
        failNthCallOf("IviSession_Lock", 1, kInjected);
        EXPECT_EQ(function.call(vi, kChannel, row().id), kInjected);
        EXPECT_THAT(calls(), ElementsAre("IviSession_GetDataPtr(1001)", "IviSession_Lock(1001, null)"));
    }
}

TEST_P(AttributeAccess, TheFunctionsOfOtherTypesNameItsOwn)
{
    for (const AccessFunction& function : kAccessFunctions) {
        if (function.type == row().type)
            continue;
        SCOPED_TRACE(function.name());
        clearLog();
        expectRefused(function.call(vi, kChannel, row().id), code(0xBFFA0015),
                      function.name() + " called for attribute '" + row().constant() + "' of type '" +
                          std::string(row().type) + "'.");
    }
}

TEST_P(AttributeAccess, SettingAReadOnlyOneIsRefused)
{
    for (const AccessFunction& function : kAccessFunctions) {
        if (function.gets() || function.type != row().type || row().canBeSet)
            continue;
        clearLog();
        expectRefused(function.call(vi, kChannel, row().id), code(0xBFFA000D),
                      "Attribute '" + row().constant() + "' is read-only.");
    }
}

TEST_P(AttributeAccess, ANullNumberIsReportedWhateverItsType)
{
    for (const AccessFunction& function : kAccessFunctions) {
        if (function.callWithNull == nullptr)
            continue;
        SCOPED_TRACE(function.name());
        clearLog();
        expectRefused(function.callWithNull(vi, kChannel, row().id), kNullPointer,
                      "Null pointer passed for function 'KVX2800T_" + function.name() +
                          "', parameter 'AttributeValue'.");
    }
}

TEST_P(AttributeAccess, ANullTextIsReportedOnlyOfATextAttribute)
{
    const ViStatus status = KVX2800T_GetAttributeViString(vi, kChannel, row().id, 10, nullptr);
    if (row().type == "ViString")
        expectRefused(status, kNullPointer,
                      "Null pointer passed for function 'GetAttributeViString', parameter "
                      "'AttributeValueBufferSize'.");
    else
        expectRefused(status, code(0xBFFA0015),
                      "GetAttributeViString called for attribute '" + row().constant() + "' of type '" +
                          std::string(row().type) + "'.");
}

TEST_P(AttributeAccess, ASetTextIsRefusedBeforeItsPointerIsLookedAt)
{
    const ViStatus status = KVX2800T_SetAttributeViString(vi, kChannel, row().id, nullptr);
    EXPECT_EQ(status, row().type == "ViString" ? code(0xBFFA000D) : code(0xBFFA0015));
    EXPECT_EQ(recorded().code, status);
}

TEST_P(AttributeAccess, ItsNeighboursAreUnknown)
{
    for (const ViAttr id : {row().id - 1, row().id + 1}) {
        if (isRegistered(id))
            continue;
        for (const AccessFunction& function : kAccessFunctions) {
            SCOPED_TRACE(function.name() + " of " + std::to_string(id));
            clearLog();
            expectRefused(function.call(vi, kChannel, id), code(0xBFFA000C),
                          "Attribute ID '" + std::to_string(id) + "' not recognized.");
        }
    }
}

TEST_P(AttributeAccess, OfAClosedSessionIsRefusedWithoutARecordWhereTheFunctionFits)
{
    KVX2800T_close(vi);
    for (const AccessFunction& function : kAccessFunctions) {
        if (!fits(function))
            continue;
        SCOPED_TRACE(function.name());
        clearLog();
        EXPECT_EQ(function.call(vi, kChannel, row().id), kInvalidSession);
        EXPECT_THAT(calls(), ElementsAre("IviSession_GetDataPtr(1001)"));
        EXPECT_EQ(errorOf(VI_NULL), ErrorEntry());
    }
    vi = VI_NULL;
}

TEST_P(AttributeAccess, OfAClosedSessionIsRefusedByTheSessionServiceWhereTheFunctionDoesNotFit)
{
    KVX2800T_close(vi);
    for (const AccessFunction& function : kAccessFunctions) {
        if (fits(function))
            continue;
        SCOPED_TRACE(function.name());
        clearLog();
        EXPECT_EQ(function.call(vi, kChannel, row().id), kInvalidSession);
        EXPECT_EQ(calls().size(), 1U);
        EXPECT_EQ(timesRecorded(), 1U);
    }
    vi = VI_NULL;
}

TEST_P(AttributeAccess, OnlyAChannelsAttributeLooksAtTheChannel)
{
    for (const char* channel :
         {static_cast<const char*>(nullptr), "", " ", "OutputChannel1-2", "OutputChannel9", "a:b:c", "]["})
    {
        forget();
        const std::string value = readAttribute(vi, channel, row());
        if (!row().ofChannel) {
            EXPECT_EQ(value, expectedValue(row()));
            EXPECT_EQ(timesRecorded(), 0U);
            continue;
        }
        EXPECT_LT(recorded().code, 0);
        EXPECT_EQ(value, "status " + std::to_string(recorded().code));
        EXPECT_THAT(calls("vi"), IsEmpty());
        EXPECT_EQ(lockDepth(vi), 0U);
    }
}

INSTANTIATE_TEST_SUITE_P(Attributes, AttributeAccess, testing::ValuesIn(kAttributeRows),
                         [](const auto& row) { return std::string(row.param.name); });

class AttributeIds : public ApiTest
{
public:
    AttributeIds() { open(); }
};

TEST_F(AttributeIds, AnUnknownOneIsWrittenAsAnUnsignedDecimalNumber)
{
    for (const ViAttr id : {ViAttr{0}, ViAttr{1250099}, ViAttr{0x80000000}, ViAttr{0xFFFFFFFF}})
        for (const AccessFunction& function : kAccessFunctions) {
            forget();
            EXPECT_EQ(function.call(vi, "OutputChannel3", id), code(0xBFFA000C));
            expectRecordedOnce(code(0xBFFA000C), "Attribute ID '" + std::to_string(id) + "' not recognized.");
            EXPECT_EQ(calls().size(), 1U);
        }
}

TEST_F(AttributeIds, ANullValueIsReportedOnTheHandleWhateverThatIs)
{
    KVX2800T_close(vi);
    vi = VI_NULL;
    // The session service refuses a record on a handle that it does not know; on none, the thread has the record.
    for (const auto& [handle, status] :
         {std::pair(kFirstSession, kInvalidSession), std::pair(kUnknownSession, kInvalidSession),
          std::pair(ViSession{VI_NULL}, kNullPointer)})
    {
        const auto record = [handle = handle](const std::string& function, const char* parameter) {
            return "IviSession_SetError(" + std::to_string(handle) +
                   ", 0xBFFA0058, \"Null pointer passed for function '" + function + "', parameter '" + parameter +
                   "'.\")";
        };
        for (const AccessFunction& function : kAccessFunctions) {
            if (function.callWithNull == nullptr)
                continue;
            clearLog();
            EXPECT_EQ(function.callWithNull(handle, "OutputChannel3", KVX2800T_ATTR_VOLTAGE_LEVEL), status);
            EXPECT_THAT(calls(), ElementsAre(record("KVX2800T_" + function.name(), "AttributeValue")));
        }
        clearLog();
        EXPECT_EQ(KVX2800T_GetAttributeViString(handle, "", KVX2800T_ATTR_INSTRUMENT_MODEL, 10, nullptr), status);
        EXPECT_THAT(calls(), ElementsAre(record("GetAttributeViString", "AttributeValueBufferSize")));
    }
}

TEST_F(AttributeIds, AnUnknownTextIsReportedBeforeItsBuffer)
{
    EXPECT_EQ(KVX2800T_GetAttributeViString(vi, "", 0, 0, nullptr), code(0xBFFA000C));
    EXPECT_EQ(KVX2800T_GetAttributeViString(vi, "", 0, 10, nullptr), code(0xBFFA000C));
}

TEST_F(AttributeIds, ThereAreNoMoreThanTheKnownOnes)
{
    // The inherent attributes and those of the class, with some room around them.
    for (const ViAttr base : {ViAttr{1050000}, ViAttr{1150000}, ViAttr{1250000}})
        for (ViAttr id = base; id < base + 1000; ++id) {
            ViSession value = 0;
            const ViStatus status = KVX2800T_GetAttributeViSession(vi, "", id, &value);
            EXPECT_EQ(status, isRegistered(id) ? code(0xBFFA0015) : code(0xBFFA000C)) << id;
        }
}

} // namespace
