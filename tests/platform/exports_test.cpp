#include "tests/support/platform/library_exports.h"

#include <visatype.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

extern "C" ViStatus kvxTimeoutStatusSeenFromC();

namespace
{

using kvxtest::exportsOf;
using testing::UnorderedElementsAre;

TEST(PlatformExports, SessionServiceExportsItsNineFunctionsAndNothingElse)
{
    EXPECT_THAT(exportsOf(SESSION_SERVICE_LIBRARY),
                UnorderedElementsAre("IviSession_New", "IviSession_Dispose", "IviSession_SetDataPtr",
                                     "IviSession_GetDataPtr", "IviSession_Lock", "IviSession_Unlock",
                                     "IviSession_SetError", "IviSession_GetError", "IviSession_ClearError"));
}

TEST(PlatformExports, VisaExportsItsTenFunctionsAndNothingElse)
{
    EXPECT_THAT(exportsOf(VISA_LIBRARY),
                UnorderedElementsAre("viOpenDefaultRM", "viOpen", "viClose", "viGetAttribute", "viSetAttribute",
                                     "viStatusDesc", "viRead", "viWrite", "viClear", "viSetBuf"));
}

TEST(PlatformExports, ConfigServerExportsItsThirtySixFunctionsAndNothingElse)
{
    const std::vector<std::string> expected{"IviConfig_Initialize",
                                            "IviConfig_Close",
                                            "IviConfig_DisposeHandle",
                                            "IviConfig_ClearError",
                                            "IviConfig_GetError",
                                            "IviConfig_Deserialize",
                                            "IviConfig_GetConfigStorePropertyViString",
                                            "IviConfig_GetDriverSession",
                                            "IviConfig_GetConfigStoreSoftwareModuleCollection",
                                            "IviConfig_GetSoftwareModuleItemByName",
                                            "IviConfig_GetSoftwareModulePhysicalNameCollection",
                                            "IviConfig_GetPhysicalNameCount",
                                            "IviConfig_GetPhysicalNameItemByIndex",
                                            "IviConfig_GetPhysicalNamePropertyViString",
                                            "IviConfig_GetSessionSoftwareModuleReference",
                                            "IviConfig_GetSessionHardwareAssetReference",
                                            "IviConfig_GetHardwareAssetPropertyViString",
                                            "IviConfig_GetDriverSessionPropertyViBoolean",
                                            "IviConfig_GetDriverSessionPropertyViString",
                                            "IviConfig_GetSessionVirtualNameCollection",
                                            "IviConfig_GetVirtualNameCount",
                                            "IviConfig_GetVirtualNameItemByIndex",
                                            "IviConfig_GetVirtualNamePropertyViString",
                                            "IviConfig_GetVirtualNameVirtualRangeCollection",
                                            "IviConfig_GetVirtualRangeCount",
                                            "IviConfig_GetVirtualRangeItemByIndex",
                                            "IviConfig_GetVirtualRangePropertyViInt32",
                                            "IviConfig_GetConfigComponentDataComponentCollection",
                                            "IviConfig_GetStructureDataComponentCollection",
                                            "IviConfig_GetDataComponentItemByName",
                                            "IviConfig_GetDataComponentCount",
                                            "IviConfig_GetDataComponentItemByIndex",
                                            "IviConfig_GetDataComponentPropertyViString",
                                            "IviConfig_GetDataComponentPropertyViInt32",
                                            "IviConfig_GetDataComponentPropertyViReal64",
                                            "IviConfig_GetDataComponentPropertyViBoolean"};
    EXPECT_THAT(exportsOf(CONFIG_SERVER_LIBRARY), testing::UnorderedElementsAreArray(expected));
}

TEST(PlatformHeaders, StatusCodesAreTheSameNumberInCAndInCpp)
{
    EXPECT_EQ(kvxTimeoutStatusSeenFromC(), -1073807339);
}

} // namespace
