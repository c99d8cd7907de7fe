#include "runtime/attribute_dispatch.h"

#include "tests/support/driver/runtime_fixture.h"

#include <array>
#include <cstring>
#include <limits>
#include <optional>

namespace
{

using namespace kvxtest;
using drivekit::Accessors;
using drivekit::AttributeInfo;
using drivekit::getAttribute;
using drivekit::getStringAttribute;
using drivekit::setAttribute;

/// What an accessor was called with last.
struct Call
{
    ViSession vi = VI_NULL;
    ViConstString channel = nullptr;
    double number = 0;
    ViConstString text = nullptr;
    ViInt32 bufferSize = 0;
};
std::optional<Call> lastCall;
/// What accessors do next.
ViStatus nextStatus = VI_SUCCESS;
std::string nextText;

template <class Value>
ViStatus _VI_FUNC getSeven(ViSession vi, ViConstString channel, Value* value)
{
    lastCall = Call{vi, channel};
    *value = 7;
    return nextStatus;
}

template <class Value>
ViStatus _VI_FUNC setNumber(ViSession vi, ViConstString channel, Value value)
{
    lastCall = Call{vi, channel, static_cast<double>(value)};
    return nextStatus;
}

/// Cuts the text to the buffer, as every getter of text does.
ViStatus _VI_FUNC getText(ViSession vi, ViConstString channel, ViInt32 bufferSize, ViChar value[])
{
    lastCall = Call{vi, channel, 0, nullptr, bufferSize};
    value[nextText.copy(value, static_cast<std::size_t>(bufferSize) - 1)] = '\0';
    return nextStatus;
}

ViStatus _VI_FUNC setText(ViSession vi, ViConstString channel, ViConstString value)
{
    lastCall = Call{vi, channel, 0, value};
    return nextStatus;
}

constexpr std::array kAttributes = {
    AttributeInfo{10, "WHOLE", Accessors<ViInt32>{getSeven<ViInt32>, setNumber<ViInt32>}},
    AttributeInfo{20, "REAL", Accessors<ViReal64>{getSeven<ViReal64>, setNumber<ViReal64>}},
    AttributeInfo{30, "FLAG", Accessors<ViBoolean>{getSeven<ViBoolean>, setNumber<ViBoolean>}},
    AttributeInfo{40, "MUTE", Accessors<ViReal64>{}},
    AttributeInfo{50, "TEXT", Accessors<ViString>{getText, setText}},
    AttributeInfo{60, "MUTE_TEXT", Accessors<ViString>{}},
    AttributeInfo{70, "MUTE_WHOLE", Accessors<ViInt32>{}},
    AttributeInfo{80, "MUTE_FLAG", Accessors<ViBoolean>{}},
    AttributeInfo{90, "FIXED", Accessors<ViInt32>{getSeven<ViInt32>, nullptr}},
    AttributeInfo{100, "SECRET", Accessors<ViInt32>{nullptr, setNumber<ViInt32>}},
};
constexpr drivekit::AttributeRegistry kRegistry{kAttributes};

constexpr ViStatus kUnknown = code(0xBFFA000C);
constexpr ViStatus kReadOnly = code(0xBFFA000D);
constexpr ViStatus kWriteOnly = code(0xBFFA000E);
constexpr ViStatus kOtherType = code(0xBFFA0015);
constexpr ViStatus kNullPointer = code(0xBFFA0058);

class AttributeDispatch : public RuntimeTest
{
public:
    AttributeDispatch()
    {
        lastCall = std::nullopt;
        nextStatus = VI_SUCCESS;
        nextText = "";
    }

    template <class Value>
    ViStatus get(ViAttr id, Value& value)
    {
        return getAttribute(kRegistry, vi, "channel", id, &value);
    }

    template <class Value>
    ViStatus set(ViAttr id, Value value)
    {
        return setAttribute<Value>(kRegistry, vi, "channel", id, value);
    }

    ViStatus setString(ViAttr id, ViConstString value)
    {
        return setAttribute<ViString>(kRegistry, vi, "channel", id, value);
    }

    ViStatus getString(ViAttr id, ViInt32 size, ViChar* buffer)
    {
        return getStringAttribute(kRegistry, vi, "channel", id, size, buffer);
    }

    /// What the dispatch has just refused: it recorded this and called nobody, neither the session's lock nor an
    /// accessor.
    void expectRefused(ViStatus returned, ViStatus status, const std::string& text)
    {
        EXPECT_EQ(returned, status);
        EXPECT_EQ(recorded(), (ErrorEntry{status, text}));
        EXPECT_FALSE(lastCall);
        EXPECT_EQ(calls().size(), 1U);
        EXPECT_EQ(timesRecorded(), 1U);
        IviSession_ClearError(vi);
        clearLog();
    }

    template <class Value>
    void expectNoGet(ViAttr id, ViStatus status, const std::string& text)
    {
        Value value{};
        expectRefused(get(id, value), status, text);
        EXPECT_EQ(value, Value{});
    }

    template <class Value>
    void expectNoSet(ViAttr id, ViStatus status, const std::string& text)
    {
        expectRefused(set<Value>(id, Value{1}), status, text);
    }

    /// Reading text is refused whatever the buffer, and leaves the buffer.
    void expectNoGetOfText(ViAttr id, ViStatus status, const std::string& text)
    {
        char buffer[] = "before";
        for (const ViInt32 size : {7, 0, -1})
            expectRefused(getString(id, size, buffer), status, text);
        expectRefused(getString(id, 7, nullptr), status, text);
        expectRefused(getString(id, 0, nullptr), status, text);
        EXPECT_STREQ(buffer, "before");
    }

    template <class Value>
    void expectValue(ViAttr id)
    {
        Value value{};
        EXPECT_EQ(get(id, value), VI_SUCCESS);
        EXPECT_EQ(value, Value{7});
        EXPECT_THAT(calls(), testing::IsEmpty());
    }
};

// ---- The registry

TEST_F(AttributeDispatch, TheRegistryFindsEveryRowAndNothingElse)
{
    for (const AttributeInfo& row : kAttributes)
        EXPECT_EQ(kRegistry.find(row.id), &row);
    for (const ViAttr id : {0U, 9U, 11U, 35U, 41U, 81U, 0xFFFFFFFFU})
        EXPECT_EQ(kRegistry.find(id), nullptr) << id;
    EXPECT_EQ(drivekit::AttributeRegistry({}).find(10), nullptr);
    EXPECT_EQ(kRegistry.size(), kAttributes.size());
}

TEST_F(AttributeDispatch, ARowKnowsTheNameOfItsType)
{
    EXPECT_EQ(kAttributes[0].typeName(), "ViInt32");
    EXPECT_EQ(kAttributes[1].typeName(), "ViReal64");
    EXPECT_EQ(kAttributes[2].typeName(), "ViBoolean");
    EXPECT_EQ(kAttributes[4].typeName(), "ViString");
}

// ---- Calls that reach their accessor

TEST_F(AttributeDispatch, TheGetterOfTheMatchingTypeIsCalled)
{
    expectValue<ViInt32>(10);
    expectValue<ViReal64>(20);
    expectValue<ViBoolean>(30);
}

TEST_F(AttributeDispatch, TheSetterOfTheMatchingTypeIsCalled)
{
    EXPECT_EQ(set<ViInt32>(10, -3), VI_SUCCESS);
    EXPECT_EQ(lastCall->number, -3);
    EXPECT_EQ(set<ViReal64>(20, 2.5), VI_SUCCESS);
    EXPECT_EQ(lastCall->number, 2.5);
    EXPECT_EQ(set<ViBoolean>(30, 0xFFFF), VI_SUCCESS);
    EXPECT_EQ(lastCall->number, 0xFFFF);
    EXPECT_THAT(calls(), testing::IsEmpty());
}

TEST_F(AttributeDispatch, ATextReachesItsSetterUntouched)
{
    for (const char* const text : {"value", "", static_cast<const char*>(nullptr)}) {
        EXPECT_EQ(setString(50, text), VI_SUCCESS);
        EXPECT_EQ(lastCall->text, text);
    }
    EXPECT_THAT(calls(), testing::IsEmpty());
}

TEST_F(AttributeDispatch, SessionAndChannelReachTheAccessorUntouched)
{
    char buffer[8];
    ViInt32 value = 0;
    for (const char* const channel : {" not a selector ", "", static_cast<const char*>(nullptr)}) {
        getAttribute(kRegistry, 4711, channel, 10, &value);
        EXPECT_EQ(lastCall->vi, 4711U);
        EXPECT_EQ(lastCall->channel, channel);
        setAttribute<ViInt32>(kRegistry, 4712, channel, 10, value);
        EXPECT_EQ(lastCall->vi, 4712U);
        EXPECT_EQ(lastCall->channel, channel);
        getStringAttribute(kRegistry, 4713, channel, 50, 8, buffer);
        EXPECT_EQ(lastCall->vi, 4713U);
        EXPECT_EQ(lastCall->channel, channel);
        setAttribute<ViString>(kRegistry, 4714, channel, 50, "value");
        EXPECT_EQ(lastCall->vi, 4714U);
        EXPECT_EQ(lastCall->channel, channel);
    }
}

TEST_F(AttributeDispatch, AnAccessorsStatusIsReturnedUnchangedAndUnrecorded)
{
    char buffer[8];
    ViInt32 value = 0;
    for (const ViStatus status : {code(0xBFFA4214), code(0x3FFA4001), ViStatus{1}, ViStatus{-1}}) {
        nextStatus = status;
        EXPECT_EQ(get(10, value), status);
        EXPECT_EQ(set<ViInt32>(10, 1), status);
        EXPECT_EQ(setString(50, "value"), status);
        EXPECT_EQ(getString(50, 8, buffer), status);
    }
    EXPECT_THAT(calls(), testing::IsEmpty());
}

// ---- Refusals

TEST_F(AttributeDispatch, AnUnknownIdIsNamedInDecimal)
{
    expectNoGet<ViInt32>(0, kUnknown, "Attribute ID '0' not recognized.");
    expectNoGet<ViReal64>(1250099, kUnknown, "Attribute ID '1250099' not recognized.");
    expectNoGet<ViBoolean>(0xFFFFFFFF, kUnknown, "Attribute ID '4294967295' not recognized.");
    expectNoGet<ViSession>(11, kUnknown, "Attribute ID '11' not recognized.");
    expectNoGetOfText(1250099, kUnknown, "Attribute ID '1250099' not recognized.");
    expectNoSet<ViInt32>(0, kUnknown, "Attribute ID '0' not recognized.");
    expectNoSet<ViReal64>(1, kUnknown, "Attribute ID '1' not recognized.");
    expectNoSet<ViBoolean>(2, kUnknown, "Attribute ID '2' not recognized.");
    expectNoSet<ViSession>(3, kUnknown, "Attribute ID '3' not recognized.");
    expectRefused(setString(4, "value"), kUnknown, "Attribute ID '4' not recognized.");
}

TEST_F(AttributeDispatch, AReadOfAnotherTypeIsNamedWithTheAttributesOwn)
{
    expectNoGet<ViInt32>(20, kOtherType, "GetAttributeViInt32 called for attribute 'REAL' of type 'ViReal64'.");
    expectNoGet<ViInt32>(30, kOtherType, "GetAttributeViInt32 called for attribute 'FLAG' of type 'ViBoolean'.");
    expectNoGet<ViInt32>(50, kOtherType, "GetAttributeViInt32 called for attribute 'TEXT' of type 'ViString'.");
    expectNoGet<ViReal64>(30, kOtherType, "GetAttributeViReal64 called for attribute 'FLAG' of type 'ViBoolean'.");
    expectNoGet<ViBoolean>(10, kOtherType, "GetAttributeViBoolean called for attribute 'WHOLE' of type 'ViInt32'.");
    for (const AttributeInfo& row : {kAttributes[0], kAttributes[1], kAttributes[2]})
        expectNoGetOfText(row.id, kOtherType,
                          "GetAttributeViString called for attribute '" + std::string(row.name) + "' of type '" +
                              std::string(row.typeName()) + "'.");
}

TEST_F(AttributeDispatch, AWriteOfAnotherTypeIsNamedWithTheAttributesOwn)
{
    expectNoSet<ViReal64>(30, kOtherType, "SetAttributeViReal64 called for attribute 'FLAG' of type 'ViBoolean'.");
    expectNoSet<ViInt32>(20, kOtherType, "SetAttributeViInt32 called for attribute 'REAL' of type 'ViReal64'.");
    expectNoSet<ViBoolean>(50, kOtherType, "SetAttributeViBoolean called for attribute 'TEXT' of type 'ViString'.");
    expectRefused(setString(10, "value"), kOtherType,
                  "SetAttributeViString called for attribute 'WHOLE' of type 'ViInt32'.");
}

TEST_F(AttributeDispatch, NoAttributeIsASession)
{
    for (const AttributeInfo& row : kAttributes) {
        const std::string rest = "AttributeViSession called for attribute '" + std::string(row.name) + "' of type '" +
                                 std::string(row.typeName()) + "'.";
        expectNoGet<ViSession>(row.id, kOtherType, "Get" + rest);
        expectNoSet<ViSession>(row.id, kOtherType, "Set" + rest);
    }
}

TEST_F(AttributeDispatch, AnAttributeWithoutAGetterIsWriteOnly)
{
    expectNoGet<ViReal64>(40, kWriteOnly, "Attribute 'MUTE' is write-only.");
    expectNoGet<ViInt32>(70, kWriteOnly, "Attribute 'MUTE_WHOLE' is write-only.");
    expectNoGet<ViBoolean>(80, kWriteOnly, "Attribute 'MUTE_FLAG' is write-only.");
    expectNoGetOfText(60, kWriteOnly, "Attribute 'MUTE_TEXT' is write-only.");
}

TEST_F(AttributeDispatch, AnAttributeWithoutASetterIsReadOnly)
{
    expectNoSet<ViReal64>(40, kReadOnly, "Attribute 'MUTE' is read-only.");
    expectNoSet<ViInt32>(70, kReadOnly, "Attribute 'MUTE_WHOLE' is read-only.");
    expectNoSet<ViBoolean>(80, kReadOnly, "Attribute 'MUTE_FLAG' is read-only.");
    expectRefused(setString(60, "value"), kReadOnly, "Attribute 'MUTE_TEXT' is read-only.");
}

TEST_F(AttributeDispatch, AnAttributeWithOneAccessorHasTheUseOfThat)
{
    expectNoSet<ViInt32>(90, kReadOnly, "Attribute 'FIXED' is read-only.");
    expectNoGet<ViInt32>(100, kWriteOnly, "Attribute 'SECRET' is write-only.");
    expectValue<ViInt32>(90);
    EXPECT_EQ(set<ViInt32>(100, 3), VI_SUCCESS);
    EXPECT_EQ(lastCall->number, 3);
}

TEST_F(AttributeDispatch, AnotherTypeComesBeforeAMissingAccessor)
{
    expectNoGet<ViInt32>(40, kOtherType, "GetAttributeViInt32 called for attribute 'MUTE' of type 'ViReal64'.");
    expectNoSet<ViInt32>(40, kOtherType, "SetAttributeViInt32 called for attribute 'MUTE' of type 'ViReal64'.");
    expectNoGetOfText(70, kOtherType, "GetAttributeViString called for attribute 'MUTE_WHOLE' of type 'ViInt32'.");
}

TEST_F(AttributeDispatch, ARefusalThatCannotBeRecordedReturnsWhyNot)
{
    failCall("IviSession_SetError", code(0xBFFA0056));
    ViInt32 value = 0;
    EXPECT_EQ(get(0, value), code(0xBFFA0056));
    EXPECT_EQ(set<ViInt32>(70, 1), code(0xBFFA0056));
}

// ---- The buffer protocol of texts

TEST_F(AttributeDispatch, ATextInALargerBufferIsGiven)
{
    nextText = "nine char";
    char buffer[64];
    for (const ViInt32 size : {11, 12, 64}) {
        std::memset(buffer, 'x', sizeof buffer);
        EXPECT_EQ(getString(50, size, buffer), VI_SUCCESS) << size;
        EXPECT_STREQ(buffer, "nine char");
        EXPECT_EQ(lastCall->bufferSize, size);
    }
    EXPECT_THAT(calls(), testing::IsEmpty());
}

TEST_F(AttributeDispatch, ATextThatFillsItsBufferAsksForALargerOne)
{
    nextText = "nine char";
    char buffer[64];
    for (const ViInt32 size : {1, 2, 9, 10}) {
        EXPECT_EQ(getString(50, size, buffer), 4096) << size;
        EXPECT_EQ(buffer, nextText.substr(0, static_cast<std::size_t>(size) - 1));
        EXPECT_EQ(lastCall->bufferSize, size);
    }
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_F(AttributeDispatch, AnEmptyTextFillsABufferOfOne)
{
    char buffer[4];
    EXPECT_EQ(getString(50, 1, buffer), 4096);
    EXPECT_EQ(getString(50, 2, buffer), VI_SUCCESS);
    EXPECT_STREQ(buffer, "");
}

TEST_F(AttributeDispatch, ABufferOfSizeZeroAsksForALargerOneWithoutTheGetter)
{
    char buffer[] = "before";
    EXPECT_EQ(getString(50, 0, buffer), 4096);
    EXPECT_EQ(getString(50, 0, nullptr), 4096);
    EXPECT_STREQ(buffer, "before");
    EXPECT_FALSE(lastCall);
    EXPECT_THAT(calls(), testing::IsEmpty());
}

TEST_F(AttributeDispatch, ANegativeSizeIsOneOf4096)
{
    nextText = std::string(4095, 'x');
    std::string buffer(4097, '\0');
    for (const ViInt32 size : {ViInt32{-1}, ViInt32{-2}, std::numeric_limits<ViInt32>::min()}) {
        EXPECT_EQ(getString(50, size, buffer.data()), VI_SUCCESS);
        EXPECT_EQ(lastCall->bufferSize, 4096);
        EXPECT_STREQ(buffer.c_str(), nextText.c_str());
    }
    nextStatus = code(0x3FFA4001);
    EXPECT_EQ(getString(50, -1, buffer.data()), code(0x3FFA4001));
}

TEST_F(AttributeDispatch, ANullBufferOfAnySizeButZeroIsANullPointer)
{
    for (const ViInt32 size : {ViInt32{10}, ViInt32{1}, ViInt32{-1}, std::numeric_limits<ViInt32>::max()})
        expectRefused(getString(50, size, nullptr), kNullPointer,
                      "Null pointer passed for function 'GetAttributeViString', parameter 'AttributeValueBufferSize'.");
}

TEST_F(AttributeDispatch, AFailureOfTheGetterComesBeforeTheSizeOfTheBuffer)
{
    nextText = "nine char";
    nextStatus = code(0xBFFA1190);
    char buffer[10];
    EXPECT_EQ(getString(50, 10, buffer), code(0xBFFA1190));
    EXPECT_EQ(getString(50, -1, std::string(4096, '\0').data()), code(0xBFFA1190));
    nextStatus = code(0x3FFA4001);
    EXPECT_EQ(getString(50, 10, buffer), 4096);
}

// ---- Remembered values

class AttributeCaches : public RuntimeTest
{
public:
    template <class Value>
    const drivekit::CachedValue<Value>* cached(ViAttr id, std::string_view channel)
    {
        return session.attributeCaches().of<Value>().find(id, channel);
    }

    /// Invalidating one channel of `row` makes an invalid entry in the cache of its type.
    template <class Value>
    void expectEntryOf(const AttributeInfo& row)
    {
        EXPECT_EQ(cached<Value>(row.id, "OutputChannel1"), nullptr);
        row.invalidate(session.attributeCaches(), false, "OutputChannel1");
        ASSERT_NE(cached<Value>(row.id, "OutputChannel1"), nullptr);
        EXPECT_FALSE(cached<Value>(row.id, "OutputChannel1")->valid);
        EXPECT_EQ(cached<Value>(row.id, "OutputChannel2"), nullptr);
        EXPECT_EQ(cached<Value>(row.id + 1, "OutputChannel1"), nullptr);
    }

    TestSession session{vi, kRegistry};
};

TEST_F(AttributeCaches, AreEmptyInANewSession)
{
    for (const AttributeInfo& row : kAttributes) {
        EXPECT_EQ(cached<ViInt32>(row.id, ""), nullptr);
        EXPECT_EQ(cached<ViReal64>(row.id, ""), nullptr);
        EXPECT_EQ(cached<ViBoolean>(row.id, ""), nullptr);
        EXPECT_EQ(cached<ViString>(row.id, ""), nullptr);
    }
}

TEST_F(AttributeCaches, HoldAnInvalidEntryOfTheirTypeAfterAChannelIsInvalidated)
{
    expectEntryOf<ViInt32>(kAttributes[0]);
    expectEntryOf<ViReal64>(kAttributes[1]);
    expectEntryOf<ViBoolean>(kAttributes[2]);
    expectEntryOf<ViString>(kAttributes[4]);
    EXPECT_EQ(cached<ViReal64>(10, "OutputChannel1"), nullptr);
    EXPECT_EQ(cached<ViString>(10, "OutputChannel1"), nullptr);
}

TEST_F(AttributeCaches, KeepOneEntryForEachChannel)
{
    kAttributes[1].invalidate(session.attributeCaches(), false, "");
    kAttributes[1].invalidate(session.attributeCaches(), false, "OutputChannel2");
    EXPECT_NE(cached<ViReal64>(20, ""), nullptr);
    EXPECT_NE(cached<ViReal64>(20, "OutputChannel2"), nullptr);
    EXPECT_NE(cached<ViReal64>(20, ""), cached<ViReal64>(20, "OutputChannel2"));
}

TEST_F(AttributeCaches, LoseEveryChannelOfTheAttributeWhenAllAreInvalidated)
{
    for (const char* channel : {"", "OutputChannel1", "OutputChannel2"}) {
        kAttributes[1].invalidate(session.attributeCaches(), false, channel);
        kAttributes[3].invalidate(session.attributeCaches(), false, channel);
    }
    kAttributes[1].invalidate(session.attributeCaches(), true, "OutputChannel1");
    for (const char* channel : {"", "OutputChannel1", "OutputChannel2"}) {
        EXPECT_EQ(cached<ViReal64>(20, channel), nullptr);
        EXPECT_NE(cached<ViReal64>(40, channel), nullptr);
    }
}

TEST_F(AttributeCaches, LoseEverythingWhenTheSessionInvalidatesAllAttributes)
{
    for (const AttributeInfo& row : kAttributes)
        row.invalidate(session.attributeCaches(), false, "OutputChannel1");
    session.InvalidateAllAttributes();
    EXPECT_EQ(cached<ViInt32>(10, "OutputChannel1"), nullptr);
    EXPECT_EQ(cached<ViReal64>(20, "OutputChannel1"), nullptr);
    EXPECT_EQ(cached<ViBoolean>(30, "OutputChannel1"), nullptr);
    EXPECT_EQ(cached<ViString>(50, "OutputChannel1"), nullptr);
    EXPECT_THAT(calls(), testing::IsEmpty());
}

TEST_F(AttributeCaches, BelongToOneSession)
{
    TestSession other(vi, kRegistry);
    kAttributes[0].invalidate(other.attributeCaches(), false, "");
    EXPECT_EQ(cached<ViInt32>(10, ""), nullptr);
}

TEST_F(AttributeCaches, AreNotFilledByReading)
{
    ViInt32 value = 0;
    getAttribute(kRegistry, vi, "OutputChannel1", 10, &value);
    EXPECT_EQ(cached<ViInt32>(10, "OutputChannel1"), nullptr);
    EXPECT_EQ(cached<ViInt32>(10, ""), nullptr);
}

} // namespace
