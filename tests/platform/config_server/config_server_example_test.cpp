#include "tests/support/platform/example_store.h"
#include "tests/support/platform/store_fixture.h"
#include "tests/support/platform/store_listing.h"

#include <string>
#include <vector>

namespace
{

using kvxtest::obtain;
using kvxtest::OwnedHandle;
using kvxtest::readText;

class ExampleStore : public kvxtest::StoreTest
{
protected:
    void SetUp() override
    {
        StoreTest::SetUp();
        ASSERT_EQ(load(kvxtest::kExampleStore), VI_SUCCESS);
    }
};

/// The four settings, as the module has them and as the session does.
std::string settings(const std::string& readOnly, const std::vector<std::string>& values)
{
    const std::string common = "    UsedInSession=Required\n";
    const auto heading = [&](const std::string& name, const std::string& description, const std::string& type,
                             const std::string& key) {
        return "    component \n      Name=" + name + "\n      Description=" + description +
               "\n      UsedInSession=Required\n      Type=" + type +
               "\n      HelpFilePath=\n      SoftwareModuleKey=" + key +
               "\n      HelpContextID=0\n      ReadOnly=" + readOnly + "\n";
    };
    return "  component \n    Name=Configurable Initial Settings\n    Description=\n" + common +
           "    Type=Structure\n    HelpFilePath=\n    SoftwareModuleKey=\n    HelpContextID=0\n    ReadOnly=" +
           readOnly + "\n" + heading("Trace", "log each call", "Boolean", "TRACE") + "      Boolean=" + values[0] +
           "\n" + heading("Retries", "", "Integer", "RETRIES") + "      Units=\n      Integer=" + values[1] + "\n" +
           heading("Settling Time", "", "Real", "SETTLE") + "      Units=s\n      Real=" + values[2] + "\n" +
           heading("Station", "", "String", "STATION") + "      String=" + values[3] + "\n";
}

std::string moduleListing()
{
    std::string text;
    for (const char* const number : {"1", "2", "3", "4", "5", "6"})
        text += std::string("  physical name OutputChannel") + number + " = OutputChannel\n";
    return text + settings("1", {"0", "0", "0.1", ""});
}

std::string sessionListing(const std::string& lookedUp)
{
    return "session " + lookedUp +
           "\n  Name=KVX2800T\n  Description=\n  SoftwareModuleName=KVX2800T\n  DriverSetup=\n"
           "  Cache=1\n  InterchangeCheck=0\n  QueryInstrStatus=0\n  RangeCheck=1\n  RecordCoercions=0\n  Simulate=0\n"
           "  asset \n    Name=Bench supply 1\n    Description=\n"
           "    IOResourceDescriptor=TCPIP0::127.0.0.1::5025::SOCKET\n" +
           moduleListing() +
           "  virtual name Core = OutputChannel1\n"
           "  virtual name Pair = OutputChannel1,OutputChannel2\n"
           "  virtual name Rail = OutputChannel\n"
           "    range 1 to 3 at 2\n" +
           settings("0", {"1", "3", "0.25", "line 4"});
}

TEST_F(ExampleStore, IsReadCompletely)
{
    EXPECT_EQ(kvxtest::listStore(store_, {{"KVX2800T", "BenchSupply", "Other"}, {"KVX2800T", "Other"}}),
              "Name=IVI Configuration Server\nDescription=Example store\nRevision=1.0.0.0\n"
              "Vendor=IVI Foundation, Inc.\n" +
                  sessionListing("KVX2800T") + sessionListing("BenchSupply") + "module KVX2800T\n" + moduleListing());
    EXPECT_EQ(errorText(), "");
}

TEST_F(ExampleStore, SettingsAreFoundByTheirNames)
{
    const OwnedHandle session = obtain(IviConfig_GetDriverSession, store_, "BenchSupply");
    const OwnedHandle components = obtain(IviConfig_GetConfigComponentDataComponentCollection, session);
    const OwnedHandle structure =
        obtain(IviConfig_GetDataComponentItemByName, components, "Configurable Initial Settings");
    const OwnedHandle inner = obtain(IviConfig_GetStructureDataComponentCollection, structure);
    const OwnedHandle settling = obtain(IviConfig_GetDataComponentItemByName, inner, "Settling Time");
    ViReal64 seconds = 0.0;
    EXPECT_EQ(IviConfig_GetDataComponentPropertyViReal64(settling, IVICONFIG_VAL_DATA_COMPONENT_VALUE, &seconds),
              VI_SUCCESS);
    EXPECT_DOUBLE_EQ(seconds, 0.25);
    EXPECT_EQ(readText(IviConfig_GetDataComponentPropertyViString, settling, IVICONFIG_VAL_DATA_COMPONENT_TYPE),
              "Real");
    const OwnedHandle module = obtain(IviConfig_GetSessionSoftwareModuleReference, session);
    const OwnedHandle moduleData = obtain(IviConfig_GetConfigComponentDataComponentCollection, module);
    ViInt32 count = 0;
    EXPECT_EQ(IviConfig_GetDataComponentCount(moduleData, &count), VI_SUCCESS);
    EXPECT_EQ(count, 1);
}

} // namespace
