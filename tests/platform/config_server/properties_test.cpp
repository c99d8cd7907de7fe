#include "platform/config_server/properties.h"
#include "platform/config_server/store_file.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

using config_server::findProperty;
using config_server::PropertyType;

std::string moduleText(ViInt32 property)
{
    const auto store = config_server::parseStore(
        "<IviConfigStore><IviSoftwareModule><Name>M</Name><Description>d</Description><ModulePath>m.dll</ModulePath>"
        "<Prefix>P</Prefix><ProgID>I</ProgID><SupportedInstrumentModels>A,B</SupportedInstrumentModels>"
        "<ModulePath64> m64.dll </ModulePath64><AssemblyQualifiedClassName>C</AssemblyQualifiedClassName>"
        "</IviSoftwareModule></IviConfigStore>");
    const auto* const row = findProperty(config_server::kSoftwareModule, property, PropertyType::Text);
    if (store == nullptr || row == nullptr)
        return "none";
    return std::string(textOf(*store->child("IviSoftwareModule"), *row));
}

TEST(SoftwareModuleProperties, AreThoseOfTheFile)
{
    EXPECT_EQ(moduleText(IVICONFIG_VAL_CONFIG_COMPONENT_NAME), "M");
    EXPECT_EQ(moduleText(IVICONFIG_VAL_CONFIG_COMPONENT_DESCRIPTION), "d");
    EXPECT_EQ(moduleText(IVICONFIG_VAL_SW_MODULE_PREFIX), "P");
    EXPECT_EQ(moduleText(IVICONFIG_VAL_SW_MODULE_PROGID), "I");
    EXPECT_EQ(moduleText(IVICONFIG_VAL_SW_MODULE_SUPPORTED_INSTR_MODELS), "A,B");
    EXPECT_EQ(moduleText(IVICONFIG_VAL_SW_MODULE_PATH_32), "m.dll");
    EXPECT_EQ(moduleText(IVICONFIG_VAL_SW_MODULE_PATH_64), "m64.dll");
    EXPECT_EQ(moduleText(IVICONFIG_VAL_SW_MODULE_ASMBLY_QLFD_CLASS_NAME), "C");
    EXPECT_EQ(moduleText(10), "none");
}

TEST(SoftwareModuleProperties, PathIsTheOneForTheProgramsPointerWidth)
{
    EXPECT_EQ(moduleText(IVICONFIG_VAL_SW_MODULE_PATH), sizeof(void*) == 8 ? "m64.dll" : "m.dll");
}

TEST(StoreProperties, AreFoundByKindNumberAndType)
{
    using namespace config_server;
    EXPECT_NE(findProperty(kDriverSession, IVICONFIG_VAL_DRIVER_SESSION_CACHE, PropertyType::Flag), nullptr);
    EXPECT_EQ(findProperty(kDriverSession, IVICONFIG_VAL_DRIVER_SESSION_CACHE, PropertyType::Text), nullptr);
    EXPECT_EQ(findProperty(kSession, IVICONFIG_VAL_DRIVER_SESSION_CACHE, PropertyType::Flag), nullptr);
    EXPECT_NE(findProperty(kSession, IVICONFIG_VAL_SESSION_SOFTWARE_MODULE_NAME, PropertyType::Text), nullptr);
    EXPECT_EQ(findProperty(kStructure, IVICONFIG_VAL_DATA_COMPONENT_VALUE, PropertyType::Text), nullptr);
}

} // namespace
