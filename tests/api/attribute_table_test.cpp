#include "api/attribute_table.h"

#include "tests/support/driver/attribute_rows.h"
#include "tests/support/driver/session_fixture.h"

#include <algorithm>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <map>
#include <regex>

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

/// Calls an attribute's getter, past the dispatch, with a null pointer for the value.
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

class AttributeInTable : public ApiTest, public testing::WithParamInterface<AttributeRow>
{
public:
    AttributeInTable() { open(); }
};

TEST_P(AttributeInTable, IsRegisteredUnderItsNameWithItsTypeAndItsFunctions)
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

TEST_P(AttributeInTable, ReportsANullValueByItsOwnNameBeforeTheChannel)
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

TEST_P(AttributeInTable, LooksAtTheSessionAndTheLockBeforeTheValue)
{
    EXPECT_EQ(getIntoNull(GetParam(), kUnknownSession, ""), kInvalidSession);
    EXPECT_THAT(calls(), ElementsAre("IviSession_GetDataPtr(4711)"));
    failNthCallOf("IviSession_Lock", 1, kInjected);
    EXPECT_EQ(getIntoNull(GetParam(), vi, ""), kInjected);
    EXPECT_EQ(timesRecorded(), 0U);
    EXPECT_EQ(lockDepth(vi), 0U);
}

INSTANTIATE_TEST_SUITE_P(Attributes, AttributeInTable, testing::ValuesIn(kAttributeRows),
                         [](const auto& row) { return std::string(row.param.name); });

using NamesById = std::map<ViAttr, std::string>;

/// The IDs that the public header gives names to.
NamesById publishedAttributes()
{
    std::ifstream file(KVX_HEADER_FILE, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const std::regex definition(R"(#define (KVX2800T_ATTR_\w+) (\d+)\n)");
    NamesById names;
    for (std::sregex_iterator found(text.begin(), text.end(), definition), end; found != end; ++found)
        names.emplace(static_cast<ViAttr>(std::stoul((*found)[2])), (*found)[1]);
    return names;
}

TEST(AttributeTable, NamesEachIdAsThePublicHeaderDoesAndHasNoOther)
{
    NamesById names;
    for (const drivekit::AttributeInfo& info : api::attributeRegistry())
        names.emplace(info.id, info.name);
    EXPECT_EQ(names, publishedAttributes());
    EXPECT_EQ(api::attributeRegistry().size(), 27U);
}

TEST(AttributeTable, IsInTheOrderOfItsIds)
{
    const drivekit::AttributeRegistry& registry = api::attributeRegistry();
    EXPECT_TRUE(std::is_sorted(registry.begin(), registry.end(),
                               [](const auto& left, const auto& right) { return left.id < right.id; }));
}

TEST(AttributeTable, FindsNothingForOtherIds)
{
    for (const ViAttr id : {0U, 1U, 1050001U, 1050022U, 1250000U, 1250007U, 1250099U, 0xFFFFFFFFU})
        EXPECT_EQ(api::attributeRegistry().find(id), nullptr) << id;
}

/// Setting an attribute, and what the session has of it.
class SetAttribute : public SessionTest
{
public:
    ViStatus set(ViAttr id, ViBoolean value) const { return KVX2800T_SetAttributeViBoolean(vi, nullptr, id, value); }
};

TEST_F(SetAttribute, LeavesTheInitialOptions)
{
    open("QueryInstrStatus=1");
    EXPECT_EQ(set(KVX2800T_ATTR_SIMULATE, VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(set(KVX2800T_ATTR_QUERY_INSTRUMENT_STATUS, VI_FALSE), VI_SUCCESS);
    EXPECT_TRUE(session().simulate());
    EXPECT_TRUE(session().runsSimulated());
    EXPECT_FALSE(session().initialSimulate());
    EXPECT_FALSE(session().queryInstrumentStatus());
    EXPECT_TRUE(session().initialQueryInstrumentStatus());
}

TEST_F(SetAttribute, LeavesTheSessionsOptionsWhereTheAttributeIsIgnored)
{
    open("Cache=1, RangeCheck=1, RecordCoercions=0");
    for (const ViAttr id :
         std::initializer_list<ViAttr>{KVX2800T_ATTR_CACHE, KVX2800T_ATTR_RANGE_CHECK, KVX2800T_ATTR_RECORD_COERCIONS,
                                       KVX2800T_ATTR_INTERCHANGE_CHECK})
        for (const ViBoolean value : std::initializer_list<ViBoolean>{VI_TRUE, VI_FALSE}) {
            EXPECT_EQ(set(id, value), VI_SUCCESS);
            EXPECT_TRUE(session().cache());
            EXPECT_TRUE(session().rangeCheck());
            EXPECT_FALSE(session().recordCoercions());
            EXPECT_FALSE(session().interchangeCheck());
        }
}

TEST_F(SetAttribute, IsForgottenWhenAllAttributesAreInvalidated)
{
    open();
    auto& remembered = session().attributeCaches().of<ViReal64>();
    remembered.invalidate(KVX2800T_ATTR_VOLTAGE_LEVEL, "OutputChannel1");
    ASSERT_NE(remembered.find(KVX2800T_ATTR_VOLTAGE_LEVEL, "OutputChannel1"), nullptr);
    EXPECT_EQ(KVX2800T_InvalidateAllAttributes(vi), VI_SUCCESS);
    EXPECT_EQ(remembered.find(KVX2800T_ATTR_VOLTAGE_LEVEL, "OutputChannel1"), nullptr);
}

TEST_F(SetAttribute, SimulateSwapsAnOpenSimulatorInBeforeTheConnectionIsClosed)
{
    open();
    const std::shared_ptr<TSRO::InstBase> real = session().instrument();
    EXPECT_EQ(set(KVX2800T_ATTR_SIMULATE, VI_TRUE), VI_SUCCESS);
    EXPECT_NE(session().instrument(), real);
    EXPECT_TRUE(session().instrument()->isOpen());
    EXPECT_FALSE(real->isOpen());
}

} // namespace
