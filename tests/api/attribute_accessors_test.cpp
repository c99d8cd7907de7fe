#include "tests/support/driver/session_fixture.h"

#include "api/attribute_accessors.h"
#include "api/attribute_table.h"
#include "tests/support/driver/attribute_rows.h"

#include <algorithm>
#include <limits>

// The functions behind the attributes, called past the dispatch.

namespace
{

using namespace kvxtest;
using drivekit::Accessors;
using testing::ElementsAre;
using testing::IsEmpty;

const drivekit::AttributeInfo& registered(const AttributeRow& row)
{
    const drivekit::AttributeInfo* const info = api::attributeRegistry().find(row.id);
    if (info == nullptr)
        throw std::out_of_range(row.name);
    return *info;
}

/// Calls an attribute's getter with a null pointer for the value.
ViStatus getIntoNull(const AttributeRow& row, ViSession vi, ViConstString channel)
{
    return std::visit(
        [=]<class Value>(const Accessors<Value>& accessors) {
            if constexpr (std::is_same_v<Value, ViString>)
                return accessors.getter(vi, channel, 256, nullptr);
            else
                return accessors.getter(vi, channel, nullptr);
        },
        registered(row).accessors);
}

class AttributeAccessor : public ApiTest, public testing::WithParamInterface<AttributeRow>
{
public:
    AttributeAccessor() { open(); }
};

TEST_P(AttributeAccessor, IsRegisteredUnderItsNameWithItsTypeAndItsFunctions)
{
    const drivekit::AttributeInfo& info = registered(GetParam());
    EXPECT_EQ(info.name, GetParam().constant());
    EXPECT_EQ(info.typeName(), GetParam().type);
    std::visit(
        [](const auto& accessors) {
            EXPECT_NE(accessors.getter, nullptr);
            EXPECT_EQ(accessors.setter != nullptr, GetParam().canBeSet);
        },
        info.accessors);
}

TEST_P(AttributeAccessor, ReportsANullValueByItsOwnNameBeforeTheChannel)
{
    for (const char* channel : {"OutputChannel3", "", "OutputChannel9", static_cast<const char*>(nullptr)}) {
        forget();
        EXPECT_EQ(getIntoNull(GetParam(), vi, channel), kNullPointer);
        expectRecordedOnce(kNullPointer, std::string("Null pointer passed for function 'KVX2800T_get_") +
                                             GetParam().name + "', parameter 'AttributeValue'.");
        EXPECT_EQ(calls("IviSession_Unlock").size(), 1U);
        EXPECT_THAT(calls("vi"), IsEmpty());
    }
}

TEST_P(AttributeAccessor, LooksAtTheSessionAndTheLockBeforeTheValue)
{
    EXPECT_EQ(getIntoNull(GetParam(), kUnknownSession, ""), kInvalidSession);
    EXPECT_THAT(calls(), ElementsAre("IviSession_GetDataPtr(4711)"));
    failNthCallOf("IviSession_Lock", 1, kInjected);
    EXPECT_EQ(getIntoNull(GetParam(), vi, ""), kInjected);
    EXPECT_EQ(timesRecorded(), 0U);
    EXPECT_EQ(lockDepth(vi), 0U);
}

INSTANTIATE_TEST_SUITE_P(Attributes, AttributeAccessor, testing::ValuesIn(kAttributeRows),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(AttributeTable, HasNoOtherAttributesAndIsInTheOrderOfTheIds)
{
    const auto& registry = api::attributeRegistry();
    EXPECT_EQ(registry.size(), kAttributeRows.size());
    EXPECT_TRUE(std::is_sorted(registry.begin(), registry.end(),
                               [](const auto& left, const auto& right) { return left.id < right.id; }));
}

using NamedGetter = SessionTest;

TEST_F(NamedGetter, IsTheFunctionOfTheAttributesName)
{
    open();
    answer(":SOUR3:VOLT?", "5.25");
    ViReal64 volts = 0;
    EXPECT_EQ(api::KVX2800T_get_VOLTAGE_LEVEL(vi, "OutputChannel3", &volts), VI_SUCCESS);
    EXPECT_EQ(volts, 5.25);
    ViBoolean rangeCheck = VI_FALSE;
    EXPECT_EQ(api::KVX2800T_get_RANGE_CHECK(vi, nullptr, &rangeCheck), VI_SUCCESS);
    EXPECT_EQ(rangeCheck, VI_TRUE);
    ViInt32 count = 0;
    EXPECT_EQ(api::KVX2800T_get_CHANNEL_COUNT(vi, nullptr, &count), VI_SUCCESS);
    EXPECT_EQ(count, 6);
}

TEST_F(NamedGetter, SwitchingTheSimulationOnLeavesTheInitialOptions)
{
    open("QueryInstrStatus=1");
    EXPECT_EQ(api::KVX2800T_set_SIMULATE(vi, nullptr, VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(api::KVX2800T_set_QUERY_INSTRUMENT_STATUS(vi, nullptr, VI_FALSE), VI_SUCCESS);
    EXPECT_TRUE(session().simulate());
    EXPECT_TRUE(session().runsSimulated());
    EXPECT_FALSE(session().initialSimulate());
    EXPECT_FALSE(session().queryInstrumentStatus());
    EXPECT_TRUE(session().initialQueryInstrumentStatus());
}

TEST_F(NamedGetter, TheSwitchesThatAreIgnoredLeaveTheSessionsOptions)
{
    open("Cache=1, RangeCheck=1, RecordCoercions=0");
    EXPECT_EQ(api::ignoreValue(vi, nullptr, VI_FALSE), VI_SUCCESS);
    EXPECT_EQ(api::ignoreValue(vi, nullptr, VI_TRUE), VI_SUCCESS);
    EXPECT_TRUE(session().cache());
    EXPECT_TRUE(session().rangeCheck());
    EXPECT_FALSE(session().recordCoercions());
    EXPECT_FALSE(session().interchangeCheck());
    EXPECT_EQ(api::ignoreValue(kUnknownSession, nullptr, VI_TRUE), kInvalidSession);
}

TEST_F(NamedGetter, AnOpenSimulatorIsSwappedInBeforeTheConnectionIsClosed)
{
    open();
    const std::shared_ptr<TSRO::InstBase> real = session().instrument();
    EXPECT_EQ(api::KVX2800T_set_SIMULATE(vi, nullptr, VI_TRUE), VI_SUCCESS);
    EXPECT_NE(session().instrument(), real);
    EXPECT_TRUE(session().instrument()->isOpen());
    EXPECT_FALSE(real->isOpen());
}

} // namespace
