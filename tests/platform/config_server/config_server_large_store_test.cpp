#include "tests/support/platform/generated_store.h"
#include "tests/support/platform/store_fixture.h"
#include "tests/support/platform/store_listing.h"

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

TEST_F(LargeStore, EverySessionIsFoundByItsLogicalNameAndByItsOwnAndByNoOther)
{
    for (std::size_t bench = 1; bench <= kBenches; ++bench) {
        const std::string number = std::to_string(bench);
        for (const std::string& name : {"Bench" + number, "Session" + number}) {
            const OwnedHandle session = obtain(IviConfig_GetDriverSession, store_, name.c_str());
            ASSERT_EQ(readText(IviConfig_GetDriverSessionPropertyViString, session, 1), "Session" + number);
            ASSERT_EQ(descriptorOf(session), "TCPIP0::127.0.0.1::" + number + "::SOCKET");
        }
    }
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

} // namespace
