#include "tests/support/driver/driver_end_to_end.h"
#include "tests/support/platform/generated_store.h"
#include "tests/support/platform/store_fixture.h"
#include "tests/support/store/store_tool_process.h"

#include <gmock/gmock.h>

#include <array>
#include <filesystem>
#include <fstream>

// Sessions that are opened by a name of a configuration store, with the store's file, the configuration server and the
// instrument as a test engineer has them.

namespace kvxtest
{
namespace
{

using testing::Contains;
using testing::StartsWith;

/// A store with the driver session "Bench 1", which the logical name "BenchSupply" stands for.
std::string benchStore(const std::string& resource,
                       const std::string& flags = "<Cache>1</Cache><RangeCheck>1</RangeCheck>",
                       const std::string& driverSetup = "")
{
    return R"(<?xml version="1.0" encoding="UTF-8"?>
<IviConfigStore>
  <SoftwareModules>
    <IviSoftwareModule id="p1"><Name>KVX2800T</Name><Prefix>KVX2800T</Prefix></IviSoftwareModule>
  </SoftwareModules>
  <HardwareAssets>
    <IviHardwareAsset id="p2"><Name>Supply</Name><IOResourceDescriptor>)" +
           resource + R"(</IOResourceDescriptor></IviHardwareAsset>
  </HardwareAssets>
  <DriverSessions>
    <IviDriverSession id="p3"><Name>Bench 1</Name>
      <DataComponents><IviStructure id="p4"><Name>Configurable Initial Settings</Name><Type>Structure</Type>
        <DataComponents>
          <IviString id="p5"><Name>model</Name><Type>String</Type><Value>KVX2833T</Value></IviString>
        </DataComponents></IviStructure></DataComponents>
      <IviHardwareAsset idref="p2"/><IviSoftwareModuleRef idref="p1"/>
      <VirtualNames>
        <IviVirtualName id="p6"><Name>Core</Name><MapTo>OutputChannel1</MapTo></IviVirtualName>
        <IviVirtualName id="p7"><Name>Pair</Name><MapTo>OutputChannel3,OutputChannel4</MapTo></IviVirtualName>
        <IviVirtualName id="p8"><Name>Rail</Name><MapTo>OutputChannel</MapTo><VirtualRanges>
          <IviVirtualRange id="p9"><Name>Rails</Name><Max>3</Max><Min>1</Min><StartingPhysicalIndex>2</StartingPhysicalIndex></IviVirtualRange>
        </VirtualRanges></IviVirtualName>
      </VirtualNames>
      )" + flags +
           "<DriverSetup>" + driverSetup + R"(</DriverSetup>
    </IviDriverSession>
  </DriverSessions>
  <LogicalNames><IviLogicalName id="p10"><Name>BenchSupply</Name><IviDriverSession idref="p3"/></IviLogicalName></LogicalNames>
</IviConfigStore>
)";
}

class StoreEndToEnd : public DriverEndToEnd
{
public:
    StoreEndToEnd() { std::filesystem::create_directory(folder_); }
    StoreEndToEnd(const StoreEndToEnd&) = delete;
    StoreEndToEnd& operator=(const StoreEndToEnd&) = delete;
    ~StoreEndToEnd() override { std::filesystem::remove_all(folder_); }

    const std::string& storePath() const { return file_; }

    void writeStore(const std::string& text) const { std::ofstream(file_, std::ios::binary) << text; }

    ViStatus openByName(std::string name, const std::string& options = "")
    {
        return KVX2800T_InitWithOptions(name.data(), VI_FALSE, VI_FALSE, options.c_str(), &vi);
    }

    std::string text(ViAttr attribute) const
    {
        std::array<ViChar, 4096> value{};
        EXPECT_EQ(
            KVX2800T_GetAttributeViString(vi, nullptr, attribute, static_cast<ViInt32>(value.size()), value.data()),
            VI_SUCCESS);
        return value.data();
    }

    /// The voltage settings that the instrument has received, and nothing else of the session's lines.
    Lines voltageLines()
    {
        Lines lines = newLines();
        std::erase_if(lines, [](const std::string& line) { return line.find("VOLT") == std::string::npos; });
        return lines;
    }

private:
    std::filesystem::path folder_ =
        std::filesystem::temp_directory_path() / ("kvx-store-end-to-end-" + std::to_string(instrument.port()));
    std::string file_ = (folder_ / "IviConfigurationStore.xml").string();
    EnvironmentVariable master_{"IVI_MASTER_STORE", file_.c_str()};
    EnvironmentVariable noProcessDefault_{"IVICONFIGSERVERDEFAULT", nullptr};
};

TEST_F(StoreEndToEnd, ALogicalNameReachesTheInstrument)
{
    writeStore(benchStore(instrument.resource()));
    ASSERT_EQ(openByName("BenchSupply"), VI_SUCCESS) << recordedError(VI_NULL).text;
    EXPECT_EQ(newLines(), Lines{"*IDN?"});
    EXPECT_EQ(text(KVX2800T_ATTR_LOGICAL_NAME), "BenchSupply");
    EXPECT_EQ(text(KVX2800T_ATTR_IO_RESOURCE_DESCRIPTOR), instrument.resource());
}

TEST_F(StoreEndToEnd, ADriverSessionsOwnNameReachesTheInstrument)
{
    writeStore(benchStore(instrument.resource()));
    ASSERT_EQ(openByName("Bench 1"), VI_SUCCESS) << recordedError(VI_NULL).text;
    EXPECT_EQ(newLines(), Lines{"*IDN?"});
    EXPECT_EQ(text(KVX2800T_ATTR_LOGICAL_NAME), "Bench 1");
}

TEST_F(StoreEndToEnd, AnExplicitDescriptorIsUsedAsItIs)
{
    writeStore(benchStore("TCPIP0::127.0.0.1::1::SOCKET"));
    open();
    EXPECT_EQ(newLines(), Lines{"*IDN?"});
    EXPECT_EQ(text(KVX2800T_ATTR_LOGICAL_NAME), "");
    EXPECT_EQ(text(KVX2800T_ATTR_IO_RESOURCE_DESCRIPTOR), instrument.resource());
}

TEST_F(StoreEndToEnd, VirtualNamesStandForChannels)
{
    writeStore(benchStore(instrument.resource()));
    ASSERT_EQ(openByName("BenchSupply"), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "Core", 1.0), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "Pair", 2.0), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "Rail1-Rail3", 3.0), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "CH4,Rail2", 4.0), VI_SUCCESS);
    EXPECT_EQ(voltageLines(),
              (Lines{":SOUR1:VOLT 1.000000", ":SOUR3:VOLT 2.000000", ":SOUR4:VOLT 2.000000", ":SOUR2:VOLT 3.000000",
                     ":SOUR3:VOLT 3.000000", ":SOUR4:VOLT 3.000000", ":SOUR4:VOLT 4.000000", ":SOUR3:VOLT 4.000000"}));
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "Rail", 5.0), status(0xBFFA0067));
    EXPECT_EQ(recordedError(vi), (RecordedError{status(0xBFFA0067), "The identifier 'Rail' is not defined for repeated "
                                                                    "capability 'OutputChannel'."}));
}

#ifdef KVX_STORE_TOOL // which a vendor's platform does not have
TEST_F(StoreEndToEnd, AnEntryOfTheStoreToolReachesItsChannels)
{
    const Outcome added =
        runStoreTool({"--store", storePath(), "add", "Bench 1", "--create", "--logical", "BenchSupply", "--resource",
                      instrument.resource(), "--virtual-range", "Rail=OutputChannel:1-3@2", "--virtual", "Aux=CH4"});
    ASSERT_EQ(added.exitCode, 0) << added.errors;
    std::string name = "BenchSupply";
    ASSERT_EQ(KVX2800T_init(name.data(), VI_TRUE, VI_FALSE, &vi), VI_SUCCESS) << recordedError(VI_NULL).text;
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "Rail1,Aux", 3.0), VI_SUCCESS);
    EXPECT_EQ(voltageLines(), (Lines{":SOUR2:VOLT 3.000000", ":SOUR4:VOLT 3.000000"}));
}

TEST_F(StoreEndToEnd, TheStoreToolWarnsOfVirtualNamesThatTheDriverRefusesAndOfNoOthers)
{
    Lines arguments{"--store", storePath(), "add", "Bench 1", "--create", "--resource", "x", "--simulate", "1"};
    const Lines targets{"OutputChannel6",
                        "CH1",
                        "CH1-3",
                        "CH4-OutputChannel6",
                        "[CH1,CH2]",
                        "[CH1",
                        "CH5,CH1-4",
                        "OutputChannel01-03",
                        "OutputChannel2-outputchannel4",
                        "OutputChannel7",
                        "CH0",
                        "ch1",
                        "CH",
                        "3",
                        "A0",
                        "outputchannel1-OutputChannel2",
                        "CH3-1",
                        "CH2-2",
                        "CH1-7",
                        "CH1,CH1",
                        "CH1-3,CH2",
                        "CH1:CH2",
                        "CH1,",
                        "CH1;2",
                        "OutputChannel01"};
    for (std::size_t i = 0; i < targets.size(); ++i)
        arguments.insert(arguments.end(), {"--virtual", "A" + std::to_string(i) + '=' + targets[i]});
    const Outcome added = runStoreTool(arguments);
    ASSERT_EQ(added.exitCode, 0) << added.errors;
    ASSERT_EQ(openByName("Bench 1"), VI_SUCCESS) << recordedError(VI_NULL).text;
    for (std::size_t i = 0; i < targets.size(); ++i) {
        const std::string name = "A" + std::to_string(i);
        const bool isWarned = added.errors.find("IviVirtualName '" + name + "': maps to ") != std::string::npos;
        EXPECT_EQ(KVX2800T_ConfigureOutputEnabled(vi, name.c_str(), VI_TRUE) < 0, isWarned) << targets[i];
    }
}

TEST_F(StoreEndToEnd, TheStoreToolWarnsOfOptionsThatNoSessionOpensWithAndOfNoOthers)
{
    for (const std::string setup :
         {"Model:KVX2833T", "Profile:Bench,IoTimeout:Infinite", "Simulate:1", "Own:x,own:y,Own", "BaudRate:fast",
          "IoTimeout", "BaudRate:1,BAUDRATE:1", "Own:1,Own:1", "CheckedOptions:1,Simulate=1", "InterchangeCheck"})
    {
        const bool checks = setup == "InterchangeCheck";
        const Outcome added = runStoreTool({"--store", storePath(), "add", "Bench 1", "--create", "--replace",
                                            "--resource", "x", "--simulate", "1", "--interchange-check",
                                            checks ? "1" : "0", "--driver-setup", checks ? "Model:KVX2833T" : setup});
        ASSERT_EQ(added.exitCode, 0) << added.errors;
        const bool isWarned = added.errors.find("no session opens with it") != std::string::npos;
        EXPECT_EQ(openByName("Bench 1") < 0, isWarned) << setup;
        KVX2800T_close(vi);
    }
}
#endif

TEST_F(StoreEndToEnd, TheStoresOptionsHoldUntilTheOptionStringOverridesThem)
{
    writeStore(benchStore(instrument.resource(), "<QueryInstrStatus>1</QueryInstrStatus>", "Model:FromTheStore"));
    ASSERT_EQ(openByName("BenchSupply"), VI_SUCCESS);
    EXPECT_EQ(newLines(), (Lines{"*IDN?", "*CLS", "*ESR?"}));
    EXPECT_EQ(text(KVX2800T_ATTR_DRIVER_SETUP), "Model:FromTheStore");
    ASSERT_EQ(KVX2800T_close(vi), VI_SUCCESS);

    ASSERT_EQ(openByName("BenchSupply", "QueryInstrStatus=0, DriverSetup=Model:FromTheOptions"), VI_SUCCESS);
    EXPECT_EQ(newLines(), (Lines{"*IDN?"}));
    EXPECT_EQ(text(KVX2800T_ATTR_DRIVER_SETUP), "Model:FromTheOptions");
}

TEST_F(StoreEndToEnd, ASimulatedEntryContactsNothing)
{
    writeStore(benchStore(instrument.resource(), "<Simulate>1</Simulate>"));
    ASSERT_EQ(openByName("BenchSupply"), VI_SUCCESS);
    EXPECT_EQ(newLines(), Lines{});
    EXPECT_EQ(text(KVX2800T_ATTR_INSTRUMENT_MODEL), "KVX2803T");
}

TEST_F(StoreEndToEnd, AnUnknownNameIsLeftToVisa)
{
    writeStore(benchStore(instrument.resource()));
    EXPECT_EQ(openByName("NoSuchBench"), status(0xBFFA4214));
    EXPECT_EQ(recordedError(VI_NULL),
              (RecordedError{status(0xBFFA4214),
                             "I/O error.  Insufficient location information or resource not present in the system"}));
    EXPECT_EQ(newLines(), Lines{});
}

TEST_F(StoreEndToEnd, AMissingOrDamagedStoreIsAFailedInit)
{
    EXPECT_EQ(openByName("BenchSupply"), status(0xBFFA1206));
    EXPECT_EQ(recordedError(VI_NULL).code, status(0xBFFA1206));
    const std::string whole = benchStore(instrument.resource());
    writeStore(whole.substr(0, whole.size() / 2));
    EXPECT_EQ(openByName("BenchSupply"), status(0xBFFA1200));
    EXPECT_THAT(recordedError(VI_NULL).text, StartsWith("IviConfigServer.IviConfigStore.1: "));
    EXPECT_EQ(newLines(), Lines{});
}

TEST_F(StoreEndToEnd, OneOfTenThousandEntriesIsFound)
{
    std::string store = generateStore(10'000);
    const std::string wanted = "TCPIP0::127.0.0.1::9999::SOCKET";
    store.replace(store.find(wanted), wanted.size(), instrument.resource());
    writeStore(store);
    ASSERT_EQ(openByName("Bench9999"), VI_SUCCESS) << recordedError(VI_NULL).text;
    EXPECT_EQ(newLines(), Lines{"*IDN?"});
}

} // namespace
} // namespace kvxtest
