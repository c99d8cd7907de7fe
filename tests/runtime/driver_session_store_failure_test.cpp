#include "tests/support/driver/configuration_store_fixture.h"

#include <new>
#include <ostream>

// What becomes of a resolution when the configuration server fails.

namespace
{

using namespace kvxtest;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

constexpr ViStatus kFailed = code(0xBFFA1777);

/// A store, and a resource name to resolve with it.
struct Scene
{
    const char* name;
    const char* resourceName;
    void (*store)();
};

void PrintTo(const Scene& scene, std::ostream* stream)
{
    *stream << scene.name;
}

/// A store in which a name is hidden by a logical name, and only the master store's location is known.
void storeLogicalName()
{
    configurationStore().processDefaultLocation = "";
    configurationStore().logicalNames["Supply of bench 4"] = "BenchSupply";
    ConfigurationStoreTest::storeRichFurtherSession();
}

const Scene kScenes[] = {
    {"Empty", "resource", [] {}},
    {"EmptyWithDescriptor", "ASRL1::INSTR", [] {}},
    {"ModuleOnly", "resource",
     [] { ConfigurationStoreTest::storeSoftwareModule().physicalNames = {{"OutputChannel1"}}; }},
    {"PoorEntry", "KVX2800T", [] { ConfigurationStoreTest::storeDriverSession(); }},
    {"RichEntry", "KVX2800T", [] { ConfigurationStoreTest::storeRichEntry(); }},
    {"OtherEntry", "BenchSupply", [] { ConfigurationStoreTest::storeRichFurtherSession(); }},
    {"BothEntries", "BenchSupply",
     [] {
         ConfigurationStoreTest::storeRichEntry();
         ConfigurationStoreTest::storeRichFurtherSession();
     }},
    {"LogicalName", "Supply of bench 4", storeLogicalName},
};

/// Forgetting an expected error is no step of a resolution.
bool matters(const std::string& call)
{
    return !call.starts_with("IviConfig_ClearError");
}

bool releases(const std::string& call)
{
    return call.starts_with("IviConfig_DisposeHandle") || call.starts_with("IviConfig_Close");
}

std::string functionOf(const std::string& call)
{
    return call.substr(0, call.find('('));
}

class ConfigurationStoreTorture : public ConfigurationStoreTest, public testing::WithParamInterface<Scene>
{
public:
    /// Resolves in a fresh scene.
    ViStatus resolveAnew(std::size_t failingCall)
    {
        startOver();
        GetParam().store();
        if (failingCall > 0)
            failNthCall(failingCall, kFailed);
        TestSession fresh(vi);
        return fresh.ResolveConfiguration(GetParam().resourceName, "Cache=0");
    }

    std::vector<std::string> undisturbedCalls()
    {
        EXPECT_EQ(resolveAnew(0), VI_SUCCESS);
        return calls();
    }
};

TEST_P(ConfigurationStoreTorture, EveryFailureOfTheServerIsRecordedOnceAndReturned)
{
    const std::vector<std::string> sequence = undisturbedCalls();
    for (std::size_t n = 1; n <= sequence.size(); ++n) {
        const std::string& failing = sequence[n - 1];
        SCOPED_TRACE(failing + ", call " + std::to_string(n));
        const ViStatus status = resolveAnew(n);
        EXPECT_TRUE(failureHappened());
        EXPECT_EQ(status, matters(failing) ? kFailed : VI_SUCCESS);
        EXPECT_EQ(timesRecorded(), matters(failing) ? 1U : 0U);
        EXPECT_EQ(recorded(), matters(failing) ? (ErrorEntry{kFailed, ""}) : ErrorEntry());
    }
    EXPECT_EQ(resolveAnew(sequence.size() + 1), VI_SUCCESS);
    EXPECT_FALSE(failureHappened());
}

TEST_P(ConfigurationStoreTorture, EveryFailureLeavesTheServersOwnTextWithTheThread)
{
    const std::vector<std::string> sequence = undisturbedCalls();
    for (std::size_t n = 1; n <= sequence.size(); ++n) {
        const std::string& failing = sequence[n - 1];
        if (!matters(failing))
            continue;
        SCOPED_TRACE(failing + ", call " + std::to_string(n));
        resolveAnew(n);
        EXPECT_EQ(errorOf(VI_NULL), (ErrorEntry{kFailed, functionOf(failing) + " failed"}));
    }
}

TEST_P(ConfigurationStoreTorture, EveryFailureGivesEveryHandleBackAndClosesTheStoreLast)
{
    const std::vector<std::string> sequence = undisturbedCalls();
    for (std::size_t n = 1; n <= sequence.size(); ++n) {
        const std::string& failing = sequence[n - 1];
        SCOPED_TRACE(failing + ", call " + std::to_string(n));
        resolveAnew(n);
        // What the server does not take back stays with it; it is not offered twice.
        EXPECT_EQ(openConfigHandles(), releases(failing) ? 1U : 0U);
        EXPECT_THAT(calls(), Not(Contains(HasSubstr("unknown"))));
        EXPECT_THAT(calls(), Not(Contains(HasSubstr("null"))));
        const bool opened = n > 1;
        EXPECT_THAT(calls("IviConfig_Close"), SizeIs(opened ? 1 : 0));
        EXPECT_EQ(calls("IviConfig_").back(), opened ? "IviConfig_Close(store)" : "IviConfig_Initialize()");
    }
}

TEST_P(ConfigurationStoreTorture, NothingIsReadBehindAFailure)
{
    const std::vector<std::string> sequence = undisturbedCalls();
    for (std::size_t n = 1; n <= sequence.size(); ++n) {
        const std::string& failing = sequence[n - 1];
        if (!matters(failing) || releases(failing))
            continue;
        SCOPED_TRACE(failing + ", call " + std::to_string(n));
        resolveAnew(n);
        const std::vector<std::string> made = calls("IviConfig_");
        ASSERT_GE(made.size(), n);
        for (std::size_t later = n; later < made.size(); ++later)
            EXPECT_TRUE(releases(made[later])) << made[later];
    }
}

TEST_P(ConfigurationStoreTorture, OfTwoFailuresTheFirstIsReturned)
{
    const std::vector<std::string> sequence = undisturbedCalls();
    for (std::size_t n = 2; n <= sequence.size(); ++n) {
        const std::string& failing = sequence[n - 1];
        if (!matters(failing) || releases(failing))
            continue;
        SCOPED_TRACE(failing + ", call " + std::to_string(n));
        startOver();
        GetParam().store();
        failNthCall(n, kFailed);
        failCall("IviConfig_Close", IVICONFIG_ERROR_INVALID_HANDLE);
        TestSession fresh(vi);
        EXPECT_EQ(fresh.ResolveConfiguration(GetParam().resourceName, ""), kFailed);
        EXPECT_EQ(recorded(), (ErrorEntry{kFailed, ""}));
        EXPECT_EQ(timesRecorded(), 1U);
    }
}

INSTANTIATE_TEST_SUITE_P(Stores, ConfigurationStoreTorture, testing::ValuesIn(kScenes),
                         [](const auto& scene) { return std::string(scene.param.name); });

class ConfigurationStoreFailure : public ConfigurationStoreTest
{
public:
    void expectFailure(const std::string& resourceName, ViStatus status)
    {
        EXPECT_EQ(session.ResolveConfiguration(resourceName, ""), status);
        EXPECT_EQ(recorded(), (ErrorEntry{status, ""}));
        EXPECT_EQ(timesRecorded(), 1U);
        EXPECT_EQ(openConfigHandles(), 0U);
    }
};

TEST_F(ConfigurationStoreFailure, AFailedClearOfAnExpectedErrorIsIgnored)
{
    failCall("IviConfig_ClearError", kFailed);
    EXPECT_EQ(resolve("Simulate=1"), VI_SUCCESS);
    EXPECT_TRUE(session.simulate());
    EXPECT_EQ(openConfigHandles(), 0U);
}

TEST_F(ConfigurationStoreFailure, OfAFailureAndThoseOfTheCleaningUpTheFirstIsReturned)
{
    storeDriverSession();
    failCall("IviConfig_GetSessionVirtualNameCollection", kFailed);
    failCall("IviConfig_DisposeHandle", code(0xBFFA1220));
    failCall("IviConfig_Close", code(0xBFFA1220));
    EXPECT_EQ(resolve(), kFailed);
    EXPECT_EQ(recorded(), (ErrorEntry{kFailed, ""}));
    EXPECT_EQ(errorOf(VI_NULL), (ErrorEntry{kFailed, "IviConfig_GetSessionVirtualNameCollection failed"}));
}

TEST_F(ConfigurationStoreFailure, AnEarlierErrorOfTheThreadStays)
{
    const ErrorEntry earlier{VI_ERROR_TMO, "an earlier error of another driver"};
    IviSession_SetError(VI_NULL, earlier.code, earlier.text.c_str());
    failCall("IviConfig_Deserialize", kFailed);
    EXPECT_EQ(resolve(), kFailed);
    EXPECT_EQ(recorded(), (ErrorEntry{kFailed, ""}));
    EXPECT_EQ(errorOf(VI_NULL), earlier);
}

TEST_F(ConfigurationStoreFailure, OnlyTheLookUpsOfEntriesMayFindNoSession)
{
    storeRichEntry();
    for (const char* function : {"IviConfig_Deserialize", "IviConfig_GetSessionVirtualNameCollection",
                                 "IviConfig_GetDataComponentItemByName", "IviConfig_GetSessionHardwareAssetReference"})
    {
        SCOPED_TRACE(function);
        failNthCallOf(function, 1, IVICONFIG_ERROR_SESSION_NOT_FOUND);
        expectFailure("resource", IVICONFIG_ERROR_SESSION_NOT_FOUND);
        IviSession_ClearError(vi);
        clearLog();
    }
}

TEST_F(ConfigurationStoreFailure, OnlyTheModuleAndTheSettingsMayBeNoSuchItem)
{
    storeRichEntry();
    for (const char* function : {"IviConfig_GetDriverSession", "IviConfig_GetVirtualNameItemByIndex",
                                 "IviConfig_GetDataComponentItemByIndex", "IviConfig_GetPhysicalNameItemByIndex"})
    {
        SCOPED_TRACE(function);
        failNthCallOf(function, 1, IVICONFIG_ERROR_NOT_EXIST);
        expectFailure("resource", IVICONFIG_ERROR_NOT_EXIST);
        IviSession_ClearError(vi);
        clearLog();
    }
}

TEST_F(ConfigurationStoreFailure, AModuleThatCannotBeLookedUpIsAFailure)
{
    failCall("IviConfig_GetSoftwareModuleItemByName", IVICONFIG_ERROR_SESSION_NOT_FOUND);
    expectFailure("resource", IVICONFIG_ERROR_SESSION_NOT_FOUND);
}

TEST_F(ConfigurationStoreFailure, AResourceNameThatCannotBeLookedUpIsAFailure)
{
    storeRichEntry();
    failNthCallOf("IviConfig_GetDriverSession", 2, IVICONFIG_ERROR_NOT_EXIST);
    expectFailure("BenchSupply", IVICONFIG_ERROR_NOT_EXIST);
}

TEST_F(ConfigurationStoreFailure, ASettingThatIsNotOfItsTypeIsAFailure)
{
    const std::vector<std::string> types = {"String", "Integer", "Real", "Boolean"};
    for (const std::string& type : types)
        for (StoredDataComponent setting : {stringComponent("S", ""), integerComponent("I", 1), realComponent("R", 1.0),
                                            booleanComponent("B", VI_TRUE)})
        {
            if (setting.type == type)
                continue;
            SCOPED_TRACE(setting.type + " called " + type);
            startOver();
            setting.type = type;
            storeDriverSession().settings() = {setting};
            expectFailure("resource", IVICONFIG_ERROR_INVALID_PROPERTY_ID);
        }
}

TEST_F(ConfigurationStoreFailure, SettingsThatAreNoStructureAreAFailure)
{
    storeDriverSession().dataComponents = {stringComponent("Configurable Initial Settings", "")};
    expectFailure("resource", IVICONFIG_ERROR_INVALID_HANDLE);
}

TEST_F(ConfigurationStoreFailure, ABadSetupTextOfTheSecondEntryFails)
{
    storeRichEntry();
    storeRichFurtherSession().driverSetup = "A:1,A:2";
    EXPECT_EQ(session.ResolveConfiguration("BenchSupply", ""), code(0xBFFA0000));
    EXPECT_EQ(recorded(), (ErrorEntry{code(0xBFFA0000),
                                      "Failure cannot recover.  DriverSetup option 'A' appears more than once."}));
    EXPECT_EQ(timesRecorded(), 1U);
    EXPECT_EQ(openConfigHandles(), 0U);
}

TEST_F(ConfigurationStoreFailure, InitFailsWithoutTouchingAnInstrument)
{
    storeRichEntry();
    failCall("IviConfig_GetVirtualNameCount", kFailed);
    EXPECT_EQ(session.Initialize("KVX2800T", false, false, ""), kFailed);
    EXPECT_EQ(session.instrument(), nullptr);
    EXPECT_THAT(calls("vi"), testing::IsEmpty());
}

TEST_F(ConfigurationStoreFailure, AReportedFailureIsRecordedWithoutATextAndReturned)
{
    for (const ViStatus status : {code(0xBFFA1200), code(0xBFFA1206), code(0xBFFA1220)}) {
        EXPECT_EQ(session.ReportConfigurationError(status), status);
        EXPECT_EQ(recorded(), (ErrorEntry{status, ""}));
        IviSession_ClearError(vi);
    }
}

TEST_F(ConfigurationStoreFailure, AFailureThatCannotBeRecordedIsOneOfTheRecording)
{
    failCall("IviConfig_Deserialize", kFailed);
    failCall("IviSession_SetError", code(0xBFFA0056));
    EXPECT_EQ(resolve(), code(0xBFFA0056));
    EXPECT_EQ(openConfigHandles(), 0U);
}

/// A session whose virtual names cannot be read.
class NamelessSession : public TestSession
{
public:
    using TestSession::TestSession;

    ViStatus ReadVirtualNames(IviDriverSessionHandle /*configured*/) override { return kFailed; }
};

TEST_F(ConfigurationStoreFailure, AFailureOfTheVirtualNamesEndsTheReadingOfAnEntry)
{
    storeRichEntry();
    NamelessSession nameless(vi);
    EXPECT_EQ(nameless.ResolveConfiguration("resource", ""), kFailed);
    // Who fails has recorded it already.
    EXPECT_EQ(timesRecorded(), 0U);
    EXPECT_EQ(calls("IviConfig_GetSessionHardwareAssetReference").size(), 0U);
    EXPECT_EQ(openConfigHandles(), 0U);
}

/// A session of which one step of a resolution leaves by an exception.
class ThrowingSession : public TestSession
{
public:
    ThrowingSession(ViSession vi, std::string step) : TestSession(vi), throwing_(std::move(step)) {}

    ViStatus ReadVirtualNames(IviDriverSessionHandle entry) override
    {
        return reach("ReadVirtualNames"), TestSession::ReadVirtualNames(entry);
    }
    ViStatus ApplyConfiguredModel() override
    {
        return reach("ApplyConfiguredModel"), TestSession::ApplyConfiguredModel();
    }
    ViStatus ParseOptionString(const std::string& options) override
    {
        return reach("ParseOptionString"), TestSession::ParseOptionString(options);
    }
    ViStatus ReadPhysicalNames(IviSoftwareModuleHandle module) override
    {
        return reach("ReadPhysicalNames"), TestSession::ReadPhysicalNames(module);
    }

private:
    void reach(std::string_view step) const
    {
        if (step == throwing_)
            throw std::bad_alloc();
    }

    std::string throwing_;
};

TEST_F(ConfigurationStoreFailure, AnExceptionGivesEveryHandleBackAndClosesTheStoreLast)
{
    for (const char* step : {"ReadVirtualNames", "ApplyConfiguredModel", "ParseOptionString", "ReadPhysicalNames"}) {
        SCOPED_TRACE(step);
        startOver();
        storeRichEntry();
        storeRichFurtherSession();
        ThrowingSession throwing(vi, step);
        EXPECT_THROW(throwing.ResolveConfiguration("BenchSupply", ""), std::bad_alloc);
        EXPECT_EQ(openConfigHandles(), 0U);
        EXPECT_THAT(calls("IviConfig_Close"), SizeIs(1));
        EXPECT_EQ(calls().back(), "IviConfig_Close(store)");
        EXPECT_EQ(timesRecorded(), 0U);
    }
}

TEST_F(ConfigurationStoreFailure, HandlesOfTheWrongKindAreFailuresOfEachReader)
{
    const std::vector<ViStatus (drivekit::DriverSession::*)(IviConfigHandle)> readers = {
        &drivekit::DriverSession::ReadDriverSession, &drivekit::DriverSession::ReadConfigurableInitialSettings,
        &drivekit::DriverSession::ReadVirtualNames, &drivekit::DriverSession::ReadPhysicalNames};
    IviConfigStoreHandle store = nullptr;
    ASSERT_EQ(IviConfig_Initialize(&store), VI_SUCCESS);
    for (const auto reader : readers) {
        EXPECT_EQ((session.*reader)(store), IVICONFIG_ERROR_INVALID_HANDLE);
        EXPECT_EQ(recorded(), (ErrorEntry{IVICONFIG_ERROR_INVALID_HANDLE, ""}));
        EXPECT_EQ(timesRecorded(), 1U);
        IviSession_ClearError(vi);
        clearLog();
    }
    EXPECT_EQ(openConfigHandles(), 1U);
}

} // namespace
