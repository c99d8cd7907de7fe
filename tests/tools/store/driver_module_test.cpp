#include "tools/store/driver_module.h"

#include "tests/support/store/store_tool_fixture.h"
#include "tools/store/store_check.h"

#include <gmock/gmock.h>

namespace
{

using namespace kvxtest;
using namespace store_tool;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

const XmlElement* driverModuleIn(const StoreText& store)
{
    return findNamed(store.root(), "SoftwareModules", "IviSoftwareModule", "KVX2800T");
}

const XmlElement* benchSessionIn(const StoreText& store)
{
    return findNamed(store.root(), "DriverSessions", "IviDriverSession", "KVX2800T");
}

/// A store of somebody else's driver, which offers what ours does.
std::string storeOfOthers()
{
    return storeWith(
        "\r\n\t<PublishedAPIs>"
        "<IviPublishedAPI id='a'><Name>IviDCPwr</Name><MajorVersion>3</MajorVersion><MinorVersion>0</MinorVersion>"
        "<Type>IVI-C</Type></IviPublishedAPI><!-- shared -->"
        "<IviPublishedAPI id='b'><Name>IviDriver</Name><MajorVersion>2</MajorVersion><MinorVersion>1</MinorVersion>"
        "<Type>IVI-C</Type></IviPublishedAPI></PublishedAPIs>\r\n"
        "\t<SoftwareModules><IviSoftwareModule id='p5'><Name>Other</Name><Own/><PublishedAPIs>"
        "<IviPublishedAPI idref='a'/></PublishedAPIs></IviSoftwareModule></SoftwareModules>"
        "<DriverSessions><IviDriverSession id='s'><Name>Theirs</Name><IviSoftwareModuleRef idref='p5'/>"
        "<SoftwareModuleName>Other</SoftwareModuleName></IviDriverSession></DriverSessions>"
        "<Sessions><IviDriverSession idref='s'/></Sessions>");
}

TEST(DriverModule, IsRegisteredWithAllThatAStoreSaysOfADriver)
{
    StoreText store(emptyStoreText());
    EXPECT_THAT(registerDriver(store), ElementsAre("added software module 'KVX2800T'"));
    EXPECT_THAT(check(store), IsEmpty());
    const XmlElement* const driver = driverModuleIn(store);
    ASSERT_NE(driver, nullptr);
    EXPECT_EQ(driver->textOf("Prefix"), "KVX2800T");
    EXPECT_EQ(driver->textOf("ModulePath"), "KVX2800T.dll");
    EXPECT_EQ(driver->textOf("ModulePath64"), "KVX2800T_64.dll");
    EXPECT_EQ(driver->textOf("ProgID"), "");
    EXPECT_EQ(driver->textOf("SupportedInstrumentModels"), "KVX2833T");
    const auto& names = driver->itemsOf("PhysicalNames");
    ASSERT_EQ(names.size(), 6U);
    EXPECT_EQ(names[0].textOf("Name"), "OutputChannel1");
    EXPECT_EQ(names[5].textOf("RCName"), "OutputChannel");
    const auto& apis = store.root().itemsOf("PublishedAPIs");
    ASSERT_EQ(apis.size(), 2U);
    EXPECT_EQ(apis[1].textOf("Name"), "IviDCPwr");
    EXPECT_EQ(apis[1].textOf("MajorVersion"), "3");
    EXPECT_EQ(apis[1].textOf("MinorVersion"), "0");
    EXPECT_EQ(driver->itemsOf("PublishedAPIs").at(1).idref, apis[1].id);
}

TEST(DriverModule, ComesAndGoesAmongOthersWithoutATrace)
{
    const std::string text = storeOfOthers();
    StoreText store(text);
    registerDriver(store);
    EXPECT_EQ(store.root().itemsOf("PublishedAPIs").size(), 2U);
    EXPECT_THAT(store.text(), HasSubstr("<IviPublishedAPI idref=\"b\"/><IviPublishedAPI idref=\"a\"/>"));
    EXPECT_THAT(unregisterDriver(store), ElementsAre("removed software module 'KVX2800T'"));
    EXPECT_EQ(store.text(), text);
}

TEST(DriverModule, LeavesThePublishedApisThatItHasBrought)
{
    StoreText store(emptyStoreText());
    registerDriver(store);
    unregisterDriver(store);
    EXPECT_EQ(driverModuleIn(store), nullptr);
    EXPECT_EQ(store.root().itemsOf("PublishedAPIs").size(), 2U);
    EXPECT_THAT(check(store), IsEmpty());
}

TEST(DriverModule, LeavesSessionsThatRememberIt)
{
    const std::string before = exampleStore();
    StoreText store(before);
    EXPECT_THAT(unregisterDriver(store),
                ElementsAre("removed software module 'KVX2800T'", "kept session 'KVX2800T', which remembers it"));
    EXPECT_THAT(check(store), IsEmpty());
    ASSERT_NE(benchSessionIn(store), nullptr);
    EXPECT_EQ(benchSessionIn(store)->child("IviSoftwareModuleRef"), nullptr);
    EXPECT_EQ(benchSessionIn(store)->textOf("SoftwareModuleName"), "KVX2800T");
    EXPECT_EQ(store.text().substr(store.text().find("<HardwareAssets>")),
              replaced(before.substr(before.find("<HardwareAssets>")), "<IviSoftwareModuleRef idref=\"p3\"/>", ""));
}

TEST(DriverModule, FindsItsSessionsAgain)
{
    StoreText store(exampleStore());
    unregisterDriver(store);
    EXPECT_THAT(registerDriver(store),
                ElementsAre("added software module 'KVX2800T'", "connected session 'KVX2800T' with it"));
    EXPECT_THAT(check(store), IsEmpty());
    EXPECT_EQ(benchSessionIn(store)->referenceOf("IviSoftwareModuleRef"), driverModuleIn(store)->id);
    const std::string once = store.text();
    unregisterDriver(store);
    registerDriver(store);
    EXPECT_EQ(store.text(), once);
}

TEST(DriverModule, IsRenewedUnderItsIdAndLeavesSessionsAlone)
{
    const std::string before = exampleStore();
    StoreText store(replaced(before, "<ModulePath>KVX2800T.dll", "<ModulePath>old.dll"));
    EXPECT_THAT(registerDriver(store), ElementsAre("renewed software module 'KVX2800T'"));
    EXPECT_THAT(check(store), IsEmpty());
    EXPECT_EQ(driverModuleIn(store)->id, "p3");
    EXPECT_EQ(driverModuleIn(store)->textOf("ModulePath"), "KVX2800T.dll");
    EXPECT_THAT(store.text(), Not(HasSubstr("old.dll")));
    EXPECT_EQ(store.text().substr(store.text().find("<HardwareAssets>")),
              before.substr(before.find("<HardwareAssets>")));
}

TEST(DriverModule, IsRenewedToTheSameBytesAgainAndAgain)
{
    StoreText store(emptyStoreText());
    registerDriver(store);
    const std::string once = store.text();
    registerDriver(store);
    EXPECT_EQ(store.text(), once);
}

TEST(DriverModule, KeepsItsIdForItself)
{
    StoreText store(storeWith("<SoftwareModules><IviSoftwareModule id='p4'><Name>KVX2800T</Name></IviSoftwareModule>"
                              "</SoftwareModules>"));
    registerDriver(store);
    EXPECT_EQ(driverModuleIn(store)->id, "p4");
    EXPECT_THAT(check(store), IsEmpty());
}

TEST(DriverModule, GivesItsNameToSessionsThatWouldForgetIt)
{
    for (const std::string name : {"", "<SoftwareModuleName>Other</SoftwareModuleName>"}) {
        StoreText store(replaced(exampleStore(), "<SoftwareModuleName>KVX2800T</SoftwareModuleName>", name));
        unregisterDriver(store);
        EXPECT_EQ(benchSessionIn(store)->textOf("SoftwareModuleName"), "KVX2800T");
        EXPECT_THAT(check(store), IsEmpty());
    }
}

TEST(DriverModule, LeavesSessionsThatAreNoDriverSessionsToo)
{
    StoreText store(replaced(exampleStore(), "<Sessions>",
                             "<Sessions><IviSession id='x'><Name>Bench</Name><IviSoftwareModuleRef idref='p3'/>"
                             "</IviSession>"));
    EXPECT_THAT(unregisterDriver(store),
                ElementsAre("removed software module 'KVX2800T'", "kept session 'KVX2800T', which remembers it",
                            "kept session 'Bench', which remembers it"));
    EXPECT_THAT(store.text(), HasSubstr("<Name>Bench</Name><SoftwareModuleName>KVX2800T</SoftwareModuleName>"));
    EXPECT_THAT(registerDriver(store),
                ElementsAre("added software module 'KVX2800T'", "connected session 'KVX2800T' with it",
                            "connected session 'Bench' with it"));
    EXPECT_THAT(check(store), IsEmpty());
}

TEST(DriverModule, IsNotTakenOutWhereItIsNotOrCannotBeToldFromOthers)
{
    StoreText others(storeOfOthers());
    EXPECT_EQ(complaint([&] { unregisterDriver(others); }), "there is no software module 'KVX2800T'");
    StoreText doubled(replaced(exampleStore(), "id=\"p15\"", "id=\"p3\""));
    EXPECT_EQ(complaint([&] { unregisterDriver(doubled); }), "'KVX2800T' has no id of its own");
    EXPECT_EQ(complaint([&] { registerDriver(doubled); }), "'KVX2800T' has no id of its own");
}

} // namespace
