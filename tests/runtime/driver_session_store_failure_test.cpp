#include "tests/support/driver/configuration_store_fixture.h"

#include <memory>
#include <new>
#include <ostream>
#include <sstream>

// What becomes of a resolution when the configuration server fails.

namespace
{

using namespace kvxtest;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

constexpr ViStatus kFailed = code(0xBFFA1777);
constexpr ViStatus kWarning = code(0x3FFA1777);

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

/// Whether this status of a function says that something is not there, which need not be.
bool isAbsence(const std::string& call, ViStatus status)
{
    const std::string function = functionOf(call);
    if (status == IVICONFIG_ERROR_SESSION_NOT_FOUND)
        return function == "IviConfig_GetDriverSession";
    return status == IVICONFIG_ERROR_NOT_EXIST &&
           (function == "IviConfig_GetSoftwareModuleItemByName" || function == "IviConfig_GetDataComponentItemByName");
}

std::string orDash(const std::string& text)
{
    return text.empty() ? "-" : text;
}

/// What a token of a selector stands for.
std::string meaning(const drivekit::DriverSession& session, const char* token)
{
    std::string text;
    session.mappedText(token, text);
    return orDash(text);
}

/// What a resolution has found out, in one text.
std::string findings(const drivekit::DriverSession& session)
{
    std::ostringstream text;
    text << session.cache() << session.interchangeCheck() << session.queryInstrumentStatus() << session.rangeCheck()
         << session.recordCoercions() << session.simulate() << session.initialCache() << session.namesStoreEntry()
         << ' ' << session.connectionDescriptor() << ' ' << session.logicalName() << ' '
         << session.ioResourceDescriptor() << ' ' << session.driverSetup() << ' ' << session.model() << ' '
         << testing::PrintToString(session.configuredBooleans()) << testing::PrintToString(session.configuredIntegers())
         << testing::PrintToString(session.configuredReals()) << testing::PrintToString(session.configuredStrings())
         << testing::PrintToString(session.physicalNames());
    for (const char* name : {"Core", "Rail", "Rail2"})
        text << ' ' << meaning(session, name);
    return text.str();
}

class ConfigurationStoreTorture : public ConfigurationStoreTest, public testing::WithParamInterface<Scene>
{
public:
    /// Resolves in a fresh scene, with the platform prepared behind it.
    template <class Prepare>
    ViStatus resolveWith(Prepare prepare)
    {
        startOver();
        GetParam().store();
        prepare();
        fresh = std::make_unique<TestSession>(vi);
        return fresh->ResolveConfiguration(GetParam().resourceName, "Cache=0");
    }

    ViStatus resolveAnew(std::size_t callWithStatus, ViStatus status = kFailed)
    {
        return resolveWith([=] {
            if (callWithStatus > 0)
                failNthCall(callWithStatus, status);
        });
    }

    std::vector<std::string> undisturbedCalls()
    {
        EXPECT_EQ(resolveAnew(0), VI_SUCCESS);
        return calls();
    }

    std::unique_ptr<TestSession> fresh;
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

TEST_P(ConfigurationStoreTorture, OfSeveralFailuresTheFirstIsReturned)
{
    const std::vector<std::string> sequence = undisturbedCalls();
    std::size_t disposals = 0;
    for (std::size_t n = 2; n <= sequence.size(); ++n) {
        const std::string& failing = sequence[n - 1];
        disposals += failing.starts_with("IviConfig_DisposeHandle") ? 1 : 0;
        if (!matters(failing) || failing.starts_with("IviConfig_Close"))
            continue;
        SCOPED_TRACE(failing + ", call " + std::to_string(n));
        const ViStatus status = resolveWith([&] {
            failNthCall(n, kFailed);
            failNthCallOf("IviConfig_DisposeHandle", disposals + 1, IVICONFIG_ERROR_INVALID_HANDLE);
            failCall("IviConfig_Close", IVICONFIG_ERROR_INVALID_HANDLE);
        });
        EXPECT_EQ(status, kFailed);
        EXPECT_EQ(recorded(), (ErrorEntry{kFailed, ""}));
        EXPECT_EQ(timesRecorded(), 1U);
    }
}

TEST_P(ConfigurationStoreTorture, AnAbsenceIsAFailureUnlessSomethingWasLookedUp)
{
    const std::vector<std::string> sequence = undisturbedCalls();
    for (const ViStatus absence : {IVICONFIG_ERROR_SESSION_NOT_FOUND, IVICONFIG_ERROR_NOT_EXIST})
        for (std::size_t n = 1; n <= sequence.size(); ++n) {
            const std::string& failing = sequence[n - 1];
            SCOPED_TRACE(failing + ", call " + std::to_string(n));
            const bool isFailure = matters(failing) && !isAbsence(failing, absence);
            EXPECT_EQ(resolveAnew(n, absence), isFailure ? absence : VI_SUCCESS);
            EXPECT_EQ(recorded(), isFailure ? (ErrorEntry{absence, ""}) : ErrorEntry());
            EXPECT_EQ(timesRecorded(), isFailure ? 1U : 0U);
            const bool isForgotten = isAbsence(failing, absence);
            EXPECT_TRUE(!isForgotten || errorOf(VI_NULL) == ErrorEntry());
            EXPECT_EQ(openConfigHandles(), releases(failing) ? 1U : 0U);
        }
}

/// The calls when the n-th returns a warning, which is a size that no buffer has had: a text is read once more.
std::vector<std::string> withWarning(std::vector<std::string> sequence, std::size_t n)
{
    std::string again = sequence[n - 1];
    if (again.find("PropertyViString") == std::string::npos)
        return sequence;
    again.replace(again.rfind(' '), std::string::npos, " 65536)");
    sequence.insert(sequence.begin() + static_cast<std::ptrdiff_t>(n), again);
    return sequence;
}

TEST_P(ConfigurationStoreTorture, AWarningChangesNothing)
{
    const std::vector<std::string> sequence = undisturbedCalls();
    const std::string found = findings(*fresh);
    for (std::size_t n = 1; n <= sequence.size(); ++n) {
        SCOPED_TRACE(sequence[n - 1] + ", call " + std::to_string(n));
        EXPECT_EQ(resolveAnew(n, kWarning), VI_SUCCESS);
        EXPECT_TRUE(failureHappened());
        EXPECT_EQ(calls(), withWarning(sequence, n));
        EXPECT_EQ(findings(*fresh), found);
        EXPECT_EQ(openConfigHandles(), 0U);
    }
}

TEST_P(ConfigurationStoreTorture, AWarningHidesNoFailureBehindIt)
{
    const std::vector<std::string> sequence = undisturbedCalls();
    for (std::size_t n = 1; n < sequence.size(); ++n) {
        if (!matters(sequence[n]))
            continue;
        SCOPED_TRACE(sequence[n] + ", call " + std::to_string(n + 1));
        const ViStatus status = resolveWith([n] {
            failNthCall(n, kWarning);
            failNthCall(n + 1, kFailed);
        });
        EXPECT_EQ(status, kFailed);
        EXPECT_EQ(recorded(), (ErrorEntry{kFailed, ""}));
    }
}

TEST_P(ConfigurationStoreTorture, ANullHandleIsNothingToRead)
{
    const std::vector<std::string> sequence = undisturbedCalls();
    // The first call opens the store, without which nothing can be read.
    for (std::size_t n = 2; n <= sequence.size(); ++n) {
        SCOPED_TRACE(sequence[n - 1] + ", call " + std::to_string(n));
        EXPECT_EQ(resolveWith([n] { giveNullAtNthCall(n); }), VI_SUCCESS);
        EXPECT_TRUE(failureHappened());
        EXPECT_THAT(calls(), Not(Contains(HasSubstr("null"))));
        EXPECT_EQ(timesRecorded(), 0U);
        EXPECT_EQ(errorOf(VI_NULL), ErrorEntry());
        EXPECT_EQ(openConfigHandles(), 0U);
    }
}

TEST_P(ConfigurationStoreTorture, ANullStoreIsTheServersToRefuse)
{
    EXPECT_EQ(resolveWith([] { giveNull("IviConfig_Initialize"); }), IVICONFIG_ERROR_INVALID_HANDLE);
    EXPECT_EQ(recorded(), (ErrorEntry{IVICONFIG_ERROR_INVALID_HANDLE, ""}));
    EXPECT_EQ(timesRecorded(), 1U);
    EXPECT_EQ(calls().back(), "IviConfig_Close(null)");
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

TEST_F(ConfigurationStoreFailure, OfANullHandleNothingIsTaken)
{
    // Descriptor, "Core", "Rail", "Rail2", settings, physical names.
    const std::pair<const char*, const char*> findingsWithout[] = {
        {"none of them", "ASRL1::INSTR OutputChannel1 - OutputChannel3 1 2"},
        {"IviConfig_GetDriverSession", "- - - - 0 2"},
        {"IviConfig_GetSessionHardwareAssetReference", "- OutputChannel1 - OutputChannel3 1 2"},
        {"IviConfig_GetSessionVirtualNameCollection", "ASRL1::INSTR - - - 1 2"},
        {"IviConfig_GetVirtualNameItemByIndex", "ASRL1::INSTR - - - 1 2"},
        {"IviConfig_GetVirtualNameVirtualRangeCollection", "ASRL1::INSTR OutputChannel1 OutputChannel - 1 2"},
        {"IviConfig_GetVirtualRangeItemByIndex", "ASRL1::INSTR OutputChannel1 OutputChannel - 1 2"},
        {"IviConfig_GetConfigComponentDataComponentCollection", "ASRL1::INSTR OutputChannel1 - OutputChannel3 0 2"},
        {"IviConfig_GetDataComponentItemByName", "ASRL1::INSTR OutputChannel1 - OutputChannel3 0 2"},
        {"IviConfig_GetStructureDataComponentCollection", "ASRL1::INSTR OutputChannel1 - OutputChannel3 0 2"},
        {"IviConfig_GetDataComponentItemByIndex", "ASRL1::INSTR OutputChannel1 - OutputChannel3 0 2"},
        {"IviConfig_GetSessionSoftwareModuleReference", "ASRL1::INSTR OutputChannel1 - OutputChannel3 1 0"},
        {"IviConfig_GetSoftwareModulePhysicalNameCollection", "ASRL1::INSTR OutputChannel1 - OutputChannel3 1 0"},
        {"IviConfig_GetPhysicalNameItemByIndex", "ASRL1::INSTR OutputChannel1 - OutputChannel3 1 0"},
    };
    for (const auto& [function, expected] : findingsWithout) {
        startOver();
        storeRichEntry();
        giveNull(function);
        TestSession fresh(vi);
        EXPECT_EQ(fresh.ResolveConfiguration("KVX2800T", ""), VI_SUCCESS) << function;
        const auto* const physicalNames = drivekit::valueOf(fresh.physicalNames(), "OutputChannel");
        std::ostringstream found;
        found << orDash(fresh.ioResourceDescriptor()) << ' ' << meaning(fresh, "Core") << ' ' << meaning(fresh, "Rail")
              << ' ' << meaning(fresh, "Rail2") << ' ' << fresh.configuredStrings().size() << ' '
              << (physicalNames == nullptr ? 0 : physicalNames->size());
        EXPECT_EQ(found.str(), expected) << function;
    }
}

TEST_F(ConfigurationStoreFailure, WithoutAModuleOrItsCollectionThereIsNoneToRead)
{
    for (const char* function :
         {"IviConfig_GetConfigStoreSoftwareModuleCollection", "IviConfig_GetSoftwareModuleItemByName"})
    {
        startOver();
        storeRichEntry();
        configurationStore().driverSession.reset();
        giveNull(function);
        EXPECT_EQ(resolve(), VI_SUCCESS) << function;
        EXPECT_THAT(session.physicalNames(), testing::IsEmpty()) << function;
    }
}

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
    for (const ViStatus opened : {VI_SUCCESS, kWarning})
        for (const char* step : {"ReadVirtualNames", "ApplyConfiguredModel", "ParseOptionString", "ReadPhysicalNames"})
        {
            SCOPED_TRACE(step);
            startOver();
            storeRichEntry();
            storeRichFurtherSession();
            failCall("IviConfig_Initialize", opened);
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
