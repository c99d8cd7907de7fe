#include "tests/support/platform/store_fixture.h"

#include "tests/support/utf8_path.h"

#include <array>
#include <filesystem>
#include <fstream>

namespace kvxtest
{
namespace
{

template <class Read>
std::string textOf(Read read)
{
    std::array<ViChar, 1024> text{};
    EXPECT_EQ(read(static_cast<ViInt32>(text.size()), text.data()), VI_SUCCESS);
    return text.data();
}

} // namespace

void StoreTest::SetUp()
{
    IviConfig_ClearError();
    ASSERT_EQ(IviConfig_Initialize(&store_), VI_SUCCESS);
}

void StoreTest::TearDown()
{
    IviConfig_Close(store_);
    IviConfig_ClearError();
}

std::string StoreTest::writeFile(const std::string& name, const std::string& text) const
{
    const std::filesystem::path path = fromUtf8(folder_ / name);
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
    return toUtf8(path);
}

ViStatus StoreTest::load(const std::string& text)
{
    return IviConfig_Deserialize(store_, writeFile("store.xml", text).c_str());
}

std::string StoreTest::storeText(ViInt32 property) const
{
    return textOf([&](ViInt32 size, ViChar* text) {
        return IviConfig_GetConfigStorePropertyViString(store_, property, size, text);
    });
}

std::string StoreTest::sessionText(IviDriverSessionHandle session, ViInt32 property)
{
    return textOf([&](ViInt32 size, ViChar* text) {
        return IviConfig_GetDriverSessionPropertyViString(session, property, size, text);
    });
}

std::string StoreTest::assetText(IviHardwareAssetHandle asset, ViInt32 property)
{
    return textOf([&](ViInt32 size, ViChar* text) {
        return IviConfig_GetHardwareAssetPropertyViString(asset, property, size, text);
    });
}

std::string StoreTest::errorText()
{
    return textOf([](ViInt32 size, ViChar* text) { return IviConfig_GetError(size, text); });
}

const char* const kBenchStore = R"(<?xml version="1.0" encoding="UTF-8"?>
<!-- <IviConfigStore> in a comment -->
<IviConfigStore xmlns:dt="urn:schemas-microsoft-com:datatypes">
  <Name>Bench</Name><Description> A bench &amp; its store </Description><Vendor>Workshop</Vendor>
  <Revision>1.2.3.4</Revision><SpecificationMajorVersion>2</SpecificationMajorVersion>
  <LogicalNames>
    <IviLogicalName id="n1"><Name>BenchSupply</Name><IviDriverSession idref="s1"/></IviLogicalName>
    <IviLogicalName id="n2"><Name>Shadowed</Name><IviDriverSession idref="s1"/></IviLogicalName>
    <IviLogicalName id="n3"><Name>Plain</Name><IviSession idref="s3"/></IviLogicalName>
    <IviLogicalName id="n4"><Name>Dangling</Name><IviDriverSession idref="nowhere"/></IviLogicalName>
    <IviLogicalName id="n5"><Name>WrongKind</Name><IviDriverSession idref="a1"/></IviLogicalName>
  </LogicalNames>
  <DriverSessions>
    <IviDriverSession id="s1"><Name>KVX2800T</Name><Description>left rack</Description>
      <IviHardwareAsset idref="a1"/><SoftwareModuleName>KVX2800T</SoftwareModuleName>
      <Cache>1</Cache><DriverSetup> Model:KVX2833T </DriverSetup><InterchangeCheck>0</InterchangeCheck>
      <QueryInstrStatus>true</QueryInstrStatus><RangeCheck> 1 </RangeCheck><RecordCoercions>false</RecordCoercions>
      <Simulate></Simulate><Unknown kind="x"><Deep/></Unknown>
    </IviDriverSession>
    <IviDriverSession id="s2"><Name>Shadowed</Name></IviDriverSession>
    <IviDriverSession id="s4"><Name>Plain</Name><Description>found by its own name</Description></IviDriverSession>
    <IviDriverSession id="s5"><Name>Lost</Name><IviHardwareAsset idref="gone"/></IviDriverSession>
  </DriverSessions>
  <Sessions><IviDriverSession idref="s1"/><IviSession id="s3"><Name>Other</Name></IviSession></Sessions>
  <HardwareAssets>
    <IviHardwareAsset id="a1"><Name>Supply 1</Name><Description><![CDATA[<left>]]></Description>
      <IOResourceDescriptor>TCPIP0::127.0.0.1::5025::SOCKET</IOResourceDescriptor></IviHardwareAsset>
  </HardwareAssets>
</IviConfigStore>
)";

} // namespace kvxtest
