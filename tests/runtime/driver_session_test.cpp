#include "tests/support/driver/runtime_fixture.h"
#include "tests/support/driver/virtual_places.h"

#include <map>
#include <vector>

namespace
{

using namespace kvxtest;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr ViStatus kOperationFailed = code(0xBFFA1777);

/// A session that writes down the steps of its life and takes their statuses from a test.
class SteppedSession : public drivekit::DriverSession
{
public:
    explicit SteppedSession(ViSession vi) : DriverSession(vi, kNoAttributes) {}

    ViStatus OpenInstrument() override { return step("OpenInstrument"); }
    ViStatus CloseInstrument() override { return step("CloseInstrument"); }
    ViStatus InitializeStatus() override { return step("InitializeStatus"); }
    ViStatus ReadIdentity(std::string& manufacturer, std::string& model, std::string& serialNumber,
                          std::string& firmwareRevision) override
    {
        manufacturer = "maker";
        model = identifiedModel;
        serialNumber = "serial";
        firmwareRevision = "firmware";
        return step("ReadIdentity");
    }
    ViStatus CheckStatus() override { return step("CheckStatus"); }
    ViStatus StartSimulation() override { return step("StartSimulation"); }
    ViStatus ResolveConfiguration(const std::string& resourceName, const std::string& optionString) override
    {
        resolvedWith = resourceName + "|" + optionString;
        setQueryInstrumentStatus(queryStatus);
        setInterchangeCheck(checkInterchange);
        return step("ResolveConfiguration");
    }

    std::map<std::string, ViStatus> statuses;
    std::vector<std::string> steps;
    std::string resolvedWith;
    std::string identifiedModel = "KVX2833T";
    bool queryStatus = false;
    bool checkInterchange = false;

private:
    ViStatus step(const std::string& name)
    {
        steps.push_back(name);
        return statuses[name];
    }
};

class DriverSessionTest : public RuntimeTest
{
public:
    ViStatus initialize(bool idQuery = false) { return session.Initialize("resource", idQuery, false, "options"); }

    SteppedSession session{vi};
};

TEST_F(DriverSessionTest, ANewSessionHasItsSettings)
{
    EXPECT_EQ(session.GetViSession(), vi);
    EXPECT_EQ(session.openTimeoutMs(), 2000);
    EXPECT_EQ(session.ioTimeoutMs(), 2000);
    EXPECT_EQ(session.closeTimeoutMs(), 2000);
    EXPECT_EQ(session.settlingTimeMs(), 1000);
    EXPECT_FALSE(session.interchangeCheckSupported());
    EXPECT_FALSE(session.idQuery());
    EXPECT_FALSE(session.reset());
    EXPECT_EQ(session.instrument(), nullptr);
    EXPECT_EQ(session.model(), "");
}

TEST(DriverIdentity, IsWhatTheDriverSaysOfItself)
{
    EXPECT_EQ(drivekit::kDriverPrefix, "KVX2800T");
    EXPECT_EQ(drivekit::kDriverVendor, "Tessaro Instruments");
    EXPECT_EQ(drivekit::kDriverDescription, "IVI-C Driver for KVX2800T");
    EXPECT_EQ(drivekit::kDriverRevision, "1.0.0.0");
    EXPECT_EQ(drivekit::kGroupCapabilities, "IviDCPwrBase,IviDCPwrMeasurement");
    EXPECT_EQ(drivekit::kSupportedModels, "KVX2833T");
}

TEST_F(DriverSessionTest, FlagsKeepWhatTheirSettersAreGiven)
{
    for (const bool value : {true, false}) {
        session.setCache(value);
        EXPECT_EQ(session.cache(), value);
        session.setInterchangeCheck(value);
        EXPECT_EQ(session.interchangeCheck(), value);
        session.setQueryInstrumentStatus(value);
        EXPECT_EQ(session.queryInstrumentStatus(), value);
        session.setRangeCheck(value);
        EXPECT_EQ(session.rangeCheck(), value);
        session.setRecordCoercions(value);
        EXPECT_EQ(session.recordCoercions(), value);
        session.setSimulate(value);
        EXPECT_EQ(session.simulate(), value);
    }
}

TEST_F(DriverSessionTest, InitializeKeepsItsArguments)
{
    for (const bool idQuery : {true, false})
        for (const bool reset : {true, false}) {
            EXPECT_EQ(session.Initialize("resource", idQuery, reset, "options"), VI_SUCCESS);
            EXPECT_EQ(session.resourceName(), "resource");
            EXPECT_EQ(session.optionString(), "options");
            EXPECT_EQ(session.idQuery(), idQuery);
            EXPECT_EQ(session.reset(), reset);
            EXPECT_EQ(session.resolvedWith, "resource|options");
        }
}

TEST_F(DriverSessionTest, InitializeResolvesOpensAndIdentifies)
{
    EXPECT_EQ(initialize(), VI_SUCCESS);
    EXPECT_THAT(session.steps, ElementsAre("ResolveConfiguration", "OpenInstrument", "ReadIdentity"));
    EXPECT_EQ(session.manufacturer(), "maker");
    EXPECT_EQ(session.model(), "KVX2833T");
    EXPECT_EQ(session.serialNumber(), "serial");
    EXPECT_EQ(session.firmwareRevision(), "firmware");
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_F(DriverSessionTest, InitializeInitialisesTheStatusWhenStatusCheckingIsOn)
{
    session.queryStatus = true;
    EXPECT_EQ(initialize(), VI_SUCCESS);
    EXPECT_THAT(session.steps,
                ElementsAre("ResolveConfiguration", "OpenInstrument", "InitializeStatus", "ReadIdentity"));
}

TEST_F(DriverSessionTest, AFailedResolutionEndsWithoutCleanUp)
{
    session.statuses["ResolveConfiguration"] = kOperationFailed;
    EXPECT_EQ(initialize(), kOperationFailed);
    EXPECT_THAT(session.steps, ElementsAre("ResolveConfiguration"));
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_F(DriverSessionTest, InterchangeCheckingIsRefusedBeforeAnythingIsOpened)
{
    session.checkInterchange = true;
    EXPECT_EQ(initialize(), code(0xBFFA004C));
    EXPECT_THAT(session.steps, ElementsAre("ResolveConfiguration"));
    EXPECT_EQ(recorded(), (ErrorEntry{code(0xBFFA004C), "The 'True' value in the option string is unknown.  "
                                                        "Interchange checking is not supported by the driver."}));
}

TEST_F(DriverSessionTest, AFailedOpenClosesTheInstrument)
{
    session.statuses["OpenInstrument"] = kOperationFailed;
    EXPECT_EQ(initialize(), kOperationFailed);
    EXPECT_THAT(session.steps, ElementsAre("ResolveConfiguration", "OpenInstrument", "CloseInstrument"));
}

TEST_F(DriverSessionTest, AFailedStatusInitialisationClosesTheInstrument)
{
    session.queryStatus = true;
    session.statuses["InitializeStatus"] = kOperationFailed;
    EXPECT_EQ(initialize(), kOperationFailed);
    EXPECT_THAT(session.steps,
                ElementsAre("ResolveConfiguration", "OpenInstrument", "InitializeStatus", "CloseInstrument"));
}

TEST_F(DriverSessionTest, AFailedIdentificationClosesTheInstrument)
{
    session.statuses["ReadIdentity"] = kOperationFailed;
    EXPECT_EQ(initialize(), kOperationFailed);
    EXPECT_THAT(session.steps,
                ElementsAre("ResolveConfiguration", "OpenInstrument", "ReadIdentity", "CloseInstrument"));
}

TEST_F(DriverSessionTest, AFailedCloseDoesNotReplaceTheStatusOfTheFailure)
{
    session.statuses["OpenInstrument"] = kOperationFailed;
    session.statuses["CloseInstrument"] = VI_ERROR_IO;
    EXPECT_EQ(initialize(), kOperationFailed);
}

TEST_F(DriverSessionTest, WarningsDoNotEndTheInitialisation)
{
    session.queryStatus = true;
    for (const char* step : {"ResolveConfiguration", "OpenInstrument", "InitializeStatus", "ReadIdentity"})
        session.statuses[step] = 1;
    EXPECT_EQ(initialize(true), VI_SUCCESS);
    EXPECT_EQ(session.steps.size(), 4U);
}

TEST_F(DriverSessionTest, AnUnsupportedModelFailsTheIdQuery)
{
    session.identifiedModel = "KVX2803T";
    EXPECT_EQ(initialize(true), code(0xBFFA005E));
    EXPECT_EQ(recorded(), (ErrorEntry{code(0xBFFA005E), "Instrument ID query failed."}));
    EXPECT_THAT(session.steps,
                ElementsAre("ResolveConfiguration", "OpenInstrument", "ReadIdentity", "CloseInstrument"));
}

TEST_F(DriverSessionTest, WithoutIdQueryAnyModelIsAccepted)
{
    for (const char* model : {"", "KVX2803T", "something else"}) {
        session.identifiedModel = model;
        EXPECT_EQ(initialize(false), VI_SUCCESS);
        EXPECT_EQ(session.model(), model);
    }
}

TEST_F(DriverSessionTest, TheSupportedModelIsComparedWithItsLetterCase)
{
    session.identifiedModel = "kvx2833t";
    EXPECT_EQ(initialize(true), code(0xBFFA005E));
    session.identifiedModel = "KVX2833T ";
    EXPECT_EQ(initialize(true), code(0xBFFA005E));
    session.identifiedModel = "KVX2833T";
    EXPECT_EQ(initialize(true), VI_SUCCESS);
}

TEST_F(DriverSessionTest, TheModelTableKnowsModelsAndFamilies)
{
    EXPECT_TRUE(drivekit::DriverSession::IsModelOfFamily("KVX2833T", "KVX2800T"));
    EXPECT_FALSE(drivekit::DriverSession::IsModelOfFamily("KVX2833T", "KVX2833T"));
    EXPECT_FALSE(drivekit::DriverSession::IsModelOfFamily("KVX2833T", ""));
    EXPECT_FALSE(drivekit::DriverSession::IsModelOfFamily("KVX2800T", "KVX2800T"));
    EXPECT_FALSE(drivekit::DriverSession::IsModelOfFamily("", ""));
    EXPECT_FALSE(drivekit::DriverSession::IsModelOfFamily("kvx2833t", "KVX2800T"));
}

TEST_F(DriverSessionTest, ItsModelIsTheIdentifiedOne)
{
    EXPECT_FALSE(session.IsModelSupported());
    initialize();
    EXPECT_TRUE(session.IsModelSupported());
    EXPECT_TRUE(session.IsModel("KVX2833T"));
    EXPECT_FALSE(session.IsModel("KVX2833"));
    EXPECT_FALSE(session.IsModel("kvx2833t"));
}

TEST_F(DriverSessionTest, CloseClosesTheInstrumentAndReturnsItsStatus)
{
    session.statuses["CloseInstrument"] = kOperationFailed;
    EXPECT_EQ(session.Close(), kOperationFailed);
    EXPECT_THAT(session.steps, ElementsAre("CloseInstrument"));
}

TEST(DriverSessionOperations, StandInTheirOrder)
{
    if (!kPlacesAreKnown)
        GTEST_SKIP();
    using D = drivekit::DriverSession;
    expectConsecutive({
        placeOf(&D::OpenInstrument),
        placeOf(&D::CloseInstrument),
        placeOf(&D::InitializeStatus),
        placeOf(&D::ReadIdentity),
        placeOf(&D::CheckStatus),
        placeOf(&D::Initialize),
        placeOf(&D::Close),
        placeOf(&D::GetViSession),
        placeOf(&D::cache),
        placeOf(&D::interchangeCheck),
        placeOf(&D::queryInstrumentStatus),
        placeOf(&D::rangeCheck),
        placeOf(&D::recordCoercions),
        placeOf(&D::simulate),
        placeOf(&D::initialCache),
        placeOf(&D::initialInterchangeCheck),
        placeOf(&D::initialQueryInstrumentStatus),
        placeOf(&D::initialRangeCheck),
        placeOf(&D::initialRecordCoercions),
        placeOf(&D::initialSimulate),
        placeOf(&D::setCache),
        placeOf(&D::setInterchangeCheck),
        placeOf(&D::setQueryInstrumentStatus),
        placeOf(&D::setRangeCheck),
        placeOf(&D::setRecordCoercions),
        placeOf(&D::setSimulate),
        placeOf(&D::optionString),
        placeOf(&D::resourceName),
        placeOf(&D::idQuery),
        placeOf(&D::reset),
        placeOf(&D::logicalName),
        placeOf(&D::ioResourceDescriptor),
        placeOf(&D::driverSetup),
        placeOf(&D::manufacturer),
        placeOf(&D::model),
        placeOf(&D::serialNumber),
        placeOf(&D::firmwareRevision),
        placeOf(&D::openTimeoutMs),
        placeOf(&D::ioTimeoutMs),
        placeOf(&D::closeTimeoutMs),
        placeOf(&D::interchangeCheckSupported),
        placeOf(&D::settlingTimeMs),
        placeOf(&D::configuredBooleans),
        placeOf(&D::configuredIntegers),
        placeOf(&D::configuredReals),
        placeOf(&D::configuredStrings),
        placeOf(&D::configuredString),
        placeOf(&D::configuredInteger),
        placeOf(&D::configuredReal),
        placeOf(&D::configuredBoolean),
        placeOf(&D::virtualNames),
        placeOf(&D::physicalNames),
        placeOf(&D::mappedText),
        placeOf(&D::driverSetupOptions),
        placeOf(&D::inherentOptionTable),
        placeOf(&D::driverSetupOption),
        placeOf(&D::IsModelSupported),
        placeOf(&D::namesStoreEntry),
        placeOf(&D::IsModel),
        // IsModelOfFamily, the sixtieth operation, is static and has no place.
        placeOf(&D::connectionDescriptor),
        placeOf(&D::ReportError),
        placeOf(&D::ReportErrorWithElaboration),
        placeOf(&D::ReportConfigurationError),
        placeOf(&D::InvalidateAllAttributes),
        placeOf(&D::ResolveConfiguration),
        placeOf(&D::ReadDriverSession),
        placeOf(&D::ReadConfigurableInitialSettings),
        placeOf(&D::ApplyConfiguredModel),
        placeOf(&D::ParseOptionString),
        placeOf(&D::ParseDriverSetup),
        placeOf(&D::ApplyDriverSetupOption),
        placeOf(&D::ParseInherentOptions),
        placeOf(&D::ParseBooleanOptionValue),
        placeOf(&D::ReadVirtualNames),
        placeOf(&D::ReadPhysicalNames),
        // Those added later.
        placeOf(&D::ReportErrorText),
        placeOf(&D::StartSimulation),
    });
}

TEST_F(DriverSessionTest, InvalidatingAttributesAsksNothing)
{
    session.InvalidateAllAttributes();
    EXPECT_THAT(session.steps, IsEmpty());
    EXPECT_THAT(calls(), IsEmpty());
}

} // namespace
