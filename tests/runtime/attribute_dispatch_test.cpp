#include "runtime/attribute_dispatch.h"

#include "runtime_fixture.h"

#include <array>

namespace
{

using namespace kvxtest;
using drivekit::Accessors;
using drivekit::AttributeInfo;
using drivekit::getAttribute;

/// What the getters were called with last.
struct Call
{
    ViSession vi = VI_NULL;
    ViConstString channel = nullptr;
};
Call lastCall;
ViStatus nextStatus = VI_SUCCESS;

template <class Value>
ViStatus _VI_FUNC getSeven(ViSession vi, ViConstString channel, Value* value)
{
    lastCall = {vi, channel};
    *value = 7;
    return nextStatus;
}

constexpr std::array kAttributes = {
    AttributeInfo{10, "WHOLE", Accessors<ViInt32>{.getter = getSeven<ViInt32>}},
    AttributeInfo{20, "REAL", Accessors<ViReal64>{.getter = getSeven<ViReal64>}},
    AttributeInfo{30, "FLAG", Accessors<ViBoolean>{.getter = getSeven<ViBoolean>}},
    AttributeInfo{40, "MUTE", Accessors<ViReal64>{}},
};
constexpr drivekit::AttributeRegistry kRegistry{kAttributes};

class AttributeDispatch : public RuntimeTest
{
public:
    AttributeDispatch()
    {
        lastCall = {};
        nextStatus = VI_SUCCESS;
    }

    template <class Value>
    void expectRefusal(ViAttr id, ViStatus status, const std::string& text)
    {
        Value value{};
        EXPECT_EQ(getAttribute(kRegistry, vi, "channel", id, &value), status);
        EXPECT_EQ(value, Value{});
        EXPECT_EQ(recorded(), (ErrorEntry{status, text}));
        EXPECT_EQ(lastCall.vi, ViSession{VI_NULL});
        // The dispatch neither looks the session up nor locks it.
        EXPECT_EQ(calls().size(), timesRecorded());
        EXPECT_EQ(timesRecorded(), 1U);
        IviSession_ClearError(vi);
        clearLog();
    }

    template <class Value>
    void expectValue(ViAttr id)
    {
        Value value{};
        EXPECT_EQ(getAttribute(kRegistry, vi, "channel", id, &value), VI_SUCCESS);
        EXPECT_EQ(value, Value{7});
        EXPECT_THAT(calls(), testing::IsEmpty());
    }
};

TEST_F(AttributeDispatch, TheRegistryFindsEveryRowAndNothingElse)
{
    for (const AttributeInfo& row : kAttributes)
        EXPECT_EQ(kRegistry.find(row.id), &row);
    for (const ViAttr id : {0U, 9U, 11U, 35U, 41U, 0xFFFFFFFFU})
        EXPECT_EQ(kRegistry.find(id), nullptr) << id;
    EXPECT_EQ(drivekit::AttributeRegistry({}).find(10), nullptr);
}

TEST_F(AttributeDispatch, ARowKnowsTheNameOfItsType)
{
    EXPECT_EQ(kAttributes[0].typeName(), "ViInt32");
    EXPECT_EQ(kAttributes[1].typeName(), "ViReal64");
    EXPECT_EQ(kAttributes[2].typeName(), "ViBoolean");
}

TEST_F(AttributeDispatch, TheGetterOfTheMatchingTypeIsCalled)
{
    expectValue<ViInt32>(10);
    expectValue<ViReal64>(20);
    expectValue<ViBoolean>(30);
}

TEST_F(AttributeDispatch, SessionAndChannelReachTheGetterUntouched)
{
    const char* const channel = " not a selector ";
    ViInt32 value = 0;
    getAttribute(kRegistry, 4711, channel, 10, &value);
    EXPECT_EQ(lastCall.vi, 4711U);
    EXPECT_EQ(lastCall.channel, channel);
    getAttribute(kRegistry, 4711, nullptr, 10, &value);
    EXPECT_EQ(lastCall.channel, nullptr);
}

TEST_F(AttributeDispatch, TheGettersStatusIsReturnedUnchangedAndUnrecorded)
{
    ViInt32 value = 0;
    for (const ViStatus status : {code(0xBFFA4214), code(0x3FFA4001)}) {
        nextStatus = status;
        EXPECT_EQ(getAttribute(kRegistry, vi, "", 10, &value), status);
    }
    EXPECT_THAT(calls(), testing::IsEmpty());
}

TEST_F(AttributeDispatch, AnUnknownIdIsNamedInDecimal)
{
    expectRefusal<ViInt32>(0, code(0xBFFA000C), "Attribute ID '0' not recognized.");
    expectRefusal<ViReal64>(1250099, code(0xBFFA000C), "Attribute ID '1250099' not recognized.");
    expectRefusal<ViBoolean>(0xFFFFFFFF, code(0xBFFA000C), "Attribute ID '4294967295' not recognized.");
}

TEST_F(AttributeDispatch, AnotherTypeIsNamedWithTheAttributesOwn)
{
    expectRefusal<ViInt32>(20, code(0xBFFA0015), "GetAttributeViInt32 called for attribute 'REAL' of type 'ViReal64'.");
    expectRefusal<ViReal64>(30, code(0xBFFA0015),
                            "GetAttributeViReal64 called for attribute 'FLAG' of type 'ViBoolean'.");
    expectRefusal<ViBoolean>(10, code(0xBFFA0015),
                             "GetAttributeViBoolean called for attribute 'WHOLE' of type 'ViInt32'.");
}

TEST_F(AttributeDispatch, AnAttributeWithoutAGetterIsWriteOnly)
{
    expectRefusal<ViReal64>(40, code(0xBFFA000E), "Attribute 'MUTE' is write-only.");
}

TEST_F(AttributeDispatch, AnotherTypeComesBeforeAMissingGetter)
{
    expectRefusal<ViInt32>(40, code(0xBFFA0015), "GetAttributeViInt32 called for attribute 'MUTE' of type 'ViReal64'.");
}

} // namespace
