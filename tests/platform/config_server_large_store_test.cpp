#include "generated_store.h"
#include "store_fixture.h"
#include "store_listing.h"

#include <string>

namespace
{

using kvxtest::obtain;
using kvxtest::OwnedHandle;
using kvxtest::readText;

constexpr std::size_t kBenches = 10000;

/// A store of ten thousand benches, as a large test site has it.
class LargeStore : public kvxtest::StoreTest
{
protected:
    void SetUp() override
    {
        StoreTest::SetUp();
        ASSERT_EQ(load(kvxtest::generateStore(kBenches)), VI_SUCCESS);
    }

    static std::string descriptorOf(const OwnedHandle& session)
    {
        const OwnedHandle asset = obtain(IviConfig_GetSessionHardwareAssetReference, session);
        return readText(IviConfig_GetHardwareAssetPropertyViString, asset, IVICONFIG_VAL_HARDWARE_ASSET_IO_DESCRIPTOR);
    }
};

TEST_F(LargeStore, EverySessionIsFoundByItsLogicalNameAndByItsOwn)
{
    for (std::size_t bench = 1; bench <= kBenches; ++bench) {
        const std::string number = std::to_string(bench);
        for (const std::string& name : {"Bench" + number, "Session" + number}) {
            const OwnedHandle session = obtain(IviConfig_GetDriverSession, store_, name.c_str());
            ASSERT_EQ(readText(IviConfig_GetDriverSessionPropertyViString, session, 1), "Session" + number);
            ASSERT_EQ(descriptorOf(session), "TCPIP0::127.0.0.1::" + number + "::SOCKET");
        }
    }
}

TEST_F(LargeStore, NamesThatItLacksAreNotFound)
{
    for (const char* const name : {"Bench0", "Bench10001", "Session", "Session00001", ""}) {
        IviDriverSessionHandle session = store_;
        EXPECT_EQ(IviConfig_GetDriverSession(store_, name, &session), IVICONFIG_ERROR_SESSION_NOT_FOUND) << name;
        EXPECT_EQ(session, nullptr);
    }
}

TEST_F(LargeStore, SessionsHaveTheirVirtualNamesAndSettings)
{
    for (const std::size_t bench : {std::size_t{1}, std::size_t{5000}, kBenches}) {
        const std::string number = std::to_string(bench);
        const std::string listing = kvxtest::listStore(store_, {{"Bench" + number}, {}});
        for (const char* const line : {"\n  virtual name Core = OutputChannel1\n",
                                       "\n  virtual name Rail = OutputChannel\n    range 1 to 3 at 2\n",
                                       "\n  physical name OutputChannel6 = OutputChannel\n"})
            EXPECT_NE(listing.find(line), std::string::npos) << line;
        EXPECT_NE(listing.find("\n      Integer=" + number + "\n"), std::string::npos);
        EXPECT_NE(listing.find("\n      String=line " + number + "\n"), std::string::npos);
    }
}

TEST_F(LargeStore, CollectionsOfAnyLengthAreReadByIndexAndByName)
{
    constexpr ViInt32 kItems = 50000;
    std::string names;
    for (ViInt32 item = 1; item <= kItems; ++item)
        names += "<IviInteger><Name>n" + std::to_string(item) + "</Name><Value>" + std::to_string(item) +
                 "</Value></IviInteger>";
    IviConfigStoreHandle store = nullptr;
    ASSERT_EQ(IviConfig_Initialize(&store), VI_SUCCESS);
    ASSERT_EQ(IviConfig_Deserialize(store, writeFile("wide.xml", "<IviConfigStore><DriverSessions><IviDriverSession>"
                                                                 "<Name>S</Name><DataComponents>" +
                                                                     names +
                                                                     "</DataComponents></IviDriverSession>"
                                                                     "</DriverSessions></IviConfigStore>")
                                               .c_str()),
              VI_SUCCESS);
    const OwnedHandle components =
        obtain(IviConfig_GetConfigComponentDataComponentCollection, obtain(IviConfig_GetDriverSession, store, "S"));
    for (ViInt32 item = 1; item <= kItems; ++item) {
        const OwnedHandle byIndex = obtain(IviConfig_GetDataComponentItemByIndex, components, item);
        const std::string name = "n" + std::to_string(item);
        ASSERT_EQ(readText(IviConfig_GetDataComponentPropertyViString, byIndex, 1), name);
        const OwnedHandle byName = obtain(IviConfig_GetDataComponentItemByName, components, name.c_str());
        ViInt32 value = 0;
        ASSERT_EQ(IviConfig_GetDataComponentPropertyViInt32(byName, 9, &value), VI_SUCCESS);
        ASSERT_EQ(value, item);
    }
    EXPECT_EQ(IviConfig_Close(store), VI_SUCCESS);
}

} // namespace
