#include "api/attribute_table.h"

#include "api/KVX2800T.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string_view>

namespace
{

/// A row as the manual has it.
struct Row
{
    ViAttr id;
    ViAttr constant;
    std::string_view name;
    std::string_view type;
    bool isWritable;
};

#define KVX_ROW(id, name, type, isWritable)                                                                            \
    {                                                                                                                  \
        id, KVX2800T_ATTR_##name, "KVX2800T_ATTR_" #name, type, isWritable                                             \
    }

constexpr Row kRows[] = {
    KVX_ROW(1050514, SPECIFIC_DRIVER_DESCRIPTION, "ViString", false),
    KVX_ROW(1050302, SPECIFIC_DRIVER_PREFIX, "ViString", false),
    KVX_ROW(1050513, SPECIFIC_DRIVER_VENDOR, "ViString", false),
    KVX_ROW(1050551, SPECIFIC_DRIVER_REVISION, "ViString", false),
    KVX_ROW(1050515, SPECIFIC_DRIVER_CLASS_SPEC_MAJOR_VERSION, "ViInt32", false),
    KVX_ROW(1050516, SPECIFIC_DRIVER_CLASS_SPEC_MINOR_VERSION, "ViInt32", false),
    KVX_ROW(1050002, RANGE_CHECK, "ViBoolean", true),
    KVX_ROW(1050003, QUERY_INSTRUMENT_STATUS, "ViBoolean", true),
    KVX_ROW(1050004, CACHE, "ViBoolean", true),
    KVX_ROW(1050005, SIMULATE, "ViBoolean", true),
    KVX_ROW(1050006, RECORD_COERCIONS, "ViBoolean", true),
    KVX_ROW(1050021, INTERCHANGE_CHECK, "ViBoolean", true),
    KVX_ROW(1050305, LOGICAL_NAME, "ViString", false),
    KVX_ROW(1050304, IO_RESOURCE_DESCRIPTOR, "ViString", false),
    KVX_ROW(1050007, DRIVER_SETUP, "ViString", false),
    KVX_ROW(1050401, GROUP_CAPABILITIES, "ViString", false),
    KVX_ROW(1050327, SUPPORTED_INSTRUMENT_MODELS, "ViString", false),
    KVX_ROW(1050510, INSTRUMENT_FIRMWARE_REVISION, "ViString", false),
    KVX_ROW(1050511, INSTRUMENT_MANUFACTURER, "ViString", false),
    KVX_ROW(1050512, INSTRUMENT_MODEL, "ViString", false),
    KVX_ROW(1250004, CURRENT_LIMIT_BEHAVIOR, "ViInt32", true),
    KVX_ROW(1250005, CURRENT_LIMIT, "ViReal64", true),
    KVX_ROW(1250006, OUTPUT_ENABLED, "ViBoolean", true),
    KVX_ROW(1250002, OVP_ENABLED, "ViBoolean", true),
    KVX_ROW(1250003, OVP_LIMIT, "ViReal64", true),
    KVX_ROW(1250001, VOLTAGE_LEVEL, "ViReal64", true),
    KVX_ROW(1050203, CHANNEL_COUNT, "ViInt32", false),
};

#undef KVX_ROW

bool isReadable(const drivekit::AttributeInfo& info)
{
    return std::visit([](const auto& accessors) { return accessors.getter != nullptr; }, info.accessors);
}

bool isWritable(const drivekit::AttributeInfo& info)
{
    return std::visit([](const auto& accessors) { return accessors.setter != nullptr; }, info.accessors);
}

TEST(AttributeTable, HasExactly27Rows)
{
    EXPECT_EQ(api::attributeRegistry().size(), 27U);
    EXPECT_EQ(std::size(kRows), 27U);
}

TEST(AttributeTable, HasEachAttributeWithItsNameTypeAndAccess)
{
    for (const Row& row : kRows) {
        EXPECT_EQ(row.constant, row.id) << row.name;
        const drivekit::AttributeInfo* const info = api::attributeRegistry().find(row.id);
        ASSERT_NE(info, nullptr) << row.name;
        EXPECT_EQ(info->id, row.id);
        EXPECT_EQ(info->name, row.name);
        EXPECT_EQ(info->typeName(), row.type) << row.name;
        EXPECT_TRUE(isReadable(*info)) << row.name;
        EXPECT_EQ(isWritable(*info), row.isWritable) << row.name;
    }
}

TEST(AttributeTable, HasNoOtherIds)
{
    for (const ViAttr id : {0U, 1U, 1050001U, 1050022U, 1250000U, 1250007U, 1250099U, 0xFFFFFFFFU})
        EXPECT_EQ(api::attributeRegistry().find(id), nullptr) << id;
}

TEST(AttributeTable, IsInTheOrderOfItsIds)
{
    const drivekit::AttributeRegistry& registry = api::attributeRegistry();
    EXPECT_TRUE(std::is_sorted(registry.begin(), registry.end(),
                               [](const auto& left, const auto& right) { return left.id < right.id; }));
}

} // namespace
