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

TEST(PlatformExports, VisaExportsTheFunctionsOfItsSpecificationAndNothingElse)
{
    const std::vector<std::string> expected{"viAssertIntrSignal",
                                            "viAssertTrigger",
                                            "viAssertUtilSignal",
                                            "viBufRead",
                                            "viBufWrite",
                                            "viClear",
                                            "viClose",
                                            "viDisableEvent",
                                            "viDiscardEvents",
                                            "viEnableEvent",
                                            "viFindNext",
                                            "viFindRsrc",
                                            "viFlush",
                                            "viGetAttribute",
                                            "viGetDefaultRM",
                                            "viGpibCommand",
                                            "viGpibControlATN",
                                            "viGpibControlREN",
                                            "viGpibPassControl",
                                            "viGpibSendIFC",
                                            "viIn16",
                                            "viIn16Ex",
                                            "viIn32",
                                            "viIn32Ex",
                                            "viIn64",
                                            "viIn64Ex",
                                            "viIn8",
                                            "viIn8Ex",
                                            "viInstallHandler",
                                            "viLock",
                                            "viMapAddress",
                                            "viMapAddressEx",
                                            "viMapTrigger",
                                            "viMemAlloc",
                                            "viMemAllocEx",
                                            "viMemFree",
                                            "viMemFreeEx",
                                            "viMove",
                                            "viMoveAsync",
                                            "viMoveAsyncEx",
                                            "viMoveEx",
                                            "viMoveIn16",
                                            "viMoveIn16Ex",
                                            "viMoveIn32",
                                            "viMoveIn32Ex",
                                            "viMoveIn64",
                                            "viMoveIn64Ex",
                                            "viMoveIn8",
                                            "viMoveIn8Ex",
                                            "viMoveOut16",
                                            "viMoveOut16Ex",
                                            "viMoveOut32",
                                            "viMoveOut32Ex",
                                            "viMoveOut64",
                                            "viMoveOut64Ex",
                                            "viMoveOut8",
                                            "viMoveOut8Ex",
                                            "viOpen",
                                            "viOpenDefaultRM",
                                            "viOut16",
                                            "viOut16Ex",
                                            "viOut32",
                                            "viOut32Ex",
                                            "viOut64",
                                            "viOut64Ex",
                                            "viOut8",
                                            "viOut8Ex",
                                            "viParseRsrc",
                                            "viParseRsrcEx",
                                            "viPeek16",
                                            "viPeek32",
                                            "viPeek64",
                                            "viPeek8",
                                            "viPoke16",
                                            "viPoke32",
                                            "viPoke64",
                                            "viPoke8",
                                            "viPrintf",
                                            "viPxiReserveTriggers",
                                            "viQueryf",
                                            "viRead",
                                            "viReadAsync",
                                            "viReadSTB",
                                            "viReadToFile",
                                            "viSPrintf",
                                            "viSScanf",
                                            "viScanf",
                                            "viSetAttribute",
                                            "viSetBuf",
                                            "viStatusDesc",
                                            "viTerminate",
                                            "viUninstallHandler",
                                            "viUnlock",
                                            "viUnmapAddress",
                                            "viUnmapTrigger",
                                            "viUsbControlIn",
                                            "viUsbControlOut",
                                            "viVPrintf",
                                            "viVQueryf",
                                            "viVSPrintf",
                                            "viVSScanf",
                                            "viVScanf",
                                            "viVxiCommandQuery",
                                            "viWaitOnEvent",
                                            "viWrite",
                                            "viWriteAsync",
                                            "viWriteFromFile"};
    EXPECT_EQ(expected.size(), 107U);
    EXPECT_THAT(exportsOf(VISA_LIBRARY), testing::UnorderedElementsAreArray(expected));
}

TEST(PlatformExports, ConfigServerExportsItsFortySevenFunctionsAndNothingElse)
{
    const std::vector<std::string> expected{"IviConfig_Initialize",
                                            "IviConfig_Close",
                                            "IviConfig_DisposeHandle",
                                            "IviConfig_ClearError",
                                            "IviConfig_GetError",
                                            "IviConfig_Deserialize",
                                            "IviConfig_GetConfigStorePropertyViString",
                                            "IviConfig_GetDriverSession",
                                            "IviConfig_GetConfigStoreDriverSessionCollection",
                                            "IviConfig_GetConfigStoreLogicalNameCollection",
                                            "IviConfig_GetConfigStoreSoftwareModuleCollection",
                                            "IviConfig_GetSoftwareModuleItemByName",
                                            "IviConfig_GetSoftwareModulePhysicalNameCollection",
                                            "IviConfig_GetPhysicalNameCount",
                                            "IviConfig_GetPhysicalNameItemByIndex",
                                            "IviConfig_GetPhysicalNamePropertyViString",
                                            "IviConfig_GetSessionSoftwareModuleReference",
                                            "IviConfig_GetSessionHardwareAssetReference",
                                            "IviConfig_GetSessionPropertyViString",
                                            "IviConfig_GetHardwareAssetPropertyViString",
                                            "IviConfig_GetDriverSessionCount",
                                            "IviConfig_GetDriverSessionItemByIndex",
                                            "IviConfig_GetDriverSessionItemByName",
                                            "IviConfig_GetDriverSessionPropertyViBoolean",
                                            "IviConfig_GetDriverSessionPropertyViString",
                                            "IviConfig_GetLogicalNameCount",
                                            "IviConfig_GetLogicalNameItemByIndex",
                                            "IviConfig_GetLogicalNameItemByName",
                                            "IviConfig_GetLogicalNamePropertyViString",
                                            "IviConfig_GetLogicalNameSessionReference",
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
    EXPECT_EQ(expected.size(), 47U);
    EXPECT_THAT(exportsOf(CONFIG_SERVER_LIBRARY), testing::UnorderedElementsAreArray(expected));
}

TEST(PlatformHeaders, StatusCodesAreTheSameNumberInCAndInCpp)
{
    EXPECT_EQ(kvxTimeoutStatusSeenFromC(), -1073807339);
}

} // namespace
