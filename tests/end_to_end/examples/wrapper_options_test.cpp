#include "tests/support/driver/driver_end_to_end.h"

#include <kvx2800t.hpp>

#include <gtest/gtest.h>

#include <chrono>
#include <stdexcept>
#include <string>

namespace kvxtest
{
namespace
{

using namespace std::chrono_literals;
using kvx2800t::FlowControl;
using kvx2800t::Options;
using kvx2800t::Parity;
using kvx2800t::Session;
using kvx2800t::StopBits;

TEST(WrapperOptions, AreTheProfileUnlessToldOtherwise)
{
    EXPECT_EQ(Options{}.text(), "DriverSetup=Profile:Bench");
    EXPECT_EQ(Options{.profile = false}.text(), "");
}

TEST(WrapperOptions, PutTheInherentOnesInFront)
{
    EXPECT_EQ((Options{.cache = true,
                       .interchangeCheck = false,
                       .queryInstrumentStatus = true,
                       .rangeCheck = false,
                       .recordCoercions = false,
                       .simulate = true}
                   .text()),
              "Cache=1,InterchangeCheck=0,QueryInstrStatus=1,RangeCheck=0,RecordCoercions=0,Simulate=1,"
              "DriverSetup=Profile:Bench");
    EXPECT_EQ((Options{.simulate = false, .profile = false}.text()), "Simulate=0");
}

TEST(WrapperOptions, HaveEveryKey)
{
    EXPECT_EQ((Options{.model = "KVX2833T",
                       .safeErrors = true,
                       .freshReplies = false,
                       .detailedErrors = true,
                       .trueReadings = false,
                       .checkedOptions = true,
                       .statefulSimulation = false,
                       .openTimeout = 3s,
                       .ioTimeout = 250ms,
                       .baudRate = 115200,
                       .dataBits = 7,
                       .parity = Parity::even,
                       .stopBits = StopBits::oneAndHalf,
                       .flowControl = FlowControl::rtsCts,
                       .messageLog = 100}
                   .text()),
              "DriverSetup=Model:KVX2833T,Profile:Bench,SafeErrors:1,FreshReplies:0,DetailedErrors:1,TrueReadings:0,"
              "CheckedOptions:1,StatefulSimulation:0,OpenTimeout:3000,IoTimeout:250,BaudRate:115200,DataBits:7,"
              "Parity:Even,StopBits:1.5,FlowControl:RtsCts,MessageLog:100");
}

TEST(WrapperOptions, SpellEveryWord)
{
    const auto parity = [](Parity value) { return Options{.profile = false, .parity = value}.text(); };
    EXPECT_EQ(parity(Parity::none), "DriverSetup=Parity:None");
    EXPECT_EQ(parity(Parity::odd), "DriverSetup=Parity:Odd");
    EXPECT_EQ(parity(Parity::even), "DriverSetup=Parity:Even");
    EXPECT_EQ(parity(Parity::mark), "DriverSetup=Parity:Mark");
    EXPECT_EQ(parity(Parity::space), "DriverSetup=Parity:Space");
    const auto stopBits = [](StopBits value) { return Options{.profile = false, .stopBits = value}.text(); };
    EXPECT_EQ(stopBits(StopBits::one), "DriverSetup=StopBits:1");
    EXPECT_EQ(stopBits(StopBits::oneAndHalf), "DriverSetup=StopBits:1.5");
    EXPECT_EQ(stopBits(StopBits::two), "DriverSetup=StopBits:2");
    const auto flowControl = [](FlowControl value) { return Options{.profile = false, .flowControl = value}.text(); };
    EXPECT_EQ(flowControl(FlowControl::none), "DriverSetup=FlowControl:None");
    EXPECT_EQ(flowControl(FlowControl::xonXoff), "DriverSetup=FlowControl:XonXoff");
    EXPECT_EQ(flowControl(FlowControl::rtsCts), "DriverSetup=FlowControl:RtsCts");
    EXPECT_EQ(flowControl(FlowControl::dtrDsr), "DriverSetup=FlowControl:DtrDsr");
}

TEST(WrapperOptions, HaveTimeOutsThatNeverCome)
{
    EXPECT_EQ((Options{.profile = false, .openTimeout = kvx2800t::infinite, .ioTimeout = 0ms}.text()),
              "DriverSetup=OpenTimeout:Infinite,IoTimeout:0");
}

TEST(WrapperOptions, RefuseWhatCannotBeSaid)
{
    for (const std::string& model :
         {std::string(), std::string("A,SafeErrors:0"), std::string("A;B"), std::string("A:B"), std::string("A=B"),
          std::string("\"A\""), std::string("'A'"), std::string("A\nB"), std::string("A\r"), std::string("A\tB"),
          std::string("A\0B", 3), std::string("A\x7F"), std::string(" A"), std::string("A ")})
        EXPECT_THROW((Options{.model = model}.text()), std::invalid_argument) << model;
    EXPECT_EQ((Options{.model = "KVX 2833T-\u00e4", .profile = false}.text()), "DriverSetup=Model:KVX 2833T-\u00e4");
    EXPECT_THROW((Options{.openTimeout = -1ms}.text()), std::invalid_argument);
    EXPECT_THROW((Options{.ioTimeout = -1ms}.text()), std::invalid_argument);
    EXPECT_THROW((Options{.dataBits = 4}.text()), std::invalid_argument);
    EXPECT_THROW((Options{.dataBits = 9}.text()), std::invalid_argument);
    EXPECT_EQ((Options{.profile = false, .dataBits = 5}.text()), "DriverSetup=DataBits:5");
    EXPECT_EQ((Options{.profile = false, .dataBits = 8}.text()), "DriverSetup=DataBits:8");
}

TEST(WrapperOptions, AreAllKnownToTheDriver)
{
    for (const Parity parity : {Parity::none, Parity::odd, Parity::even, Parity::mark, Parity::space})
        EXPECT_NO_THROW(Session("", {.simulate = true, .parity = parity}));
    for (const StopBits bits : {StopBits::one, StopBits::oneAndHalf, StopBits::two})
        EXPECT_NO_THROW(Session("", {.simulate = true, .stopBits = bits}));
    for (const FlowControl control :
         {FlowControl::none, FlowControl::xonXoff, FlowControl::rtsCts, FlowControl::dtrDsr})
        EXPECT_NO_THROW(Session("", {.simulate = true, .flowControl = control}));
    EXPECT_NO_THROW(Session("", {.simulate = true,
                                 .model = "KVX2833T",
                                 .openTimeout = kvx2800t::infinite,
                                 .ioTimeout = 250ms,
                                 .baudRate = 115200,
                                 .dataBits = 5}));
}

using OptionsOfASession = DriverEndToEnd;

TEST_F(OptionsOfASession, SetItsTimeOut)
{
    const Session supply(instrument.resource(), {.ioTimeout = 250ms});
    EXPECT_EQ(supply.ioTimeout().get(), 250);
}

TEST_F(OptionsOfASession, ReachTheDriver)
{
    const Session bench(instrument.resource());
    EXPECT_EQ(bench.get(kvx2800t::attribute::driverSetup), "Profile:Bench");
    const Session checked(instrument.resource(), {.queryInstrumentStatus = true, .safeErrors = false});
    EXPECT_EQ(checked.get(kvx2800t::attribute::driverSetup), "Profile:Bench,SafeErrors:0");
    EXPECT_TRUE(checked.get(kvx2800t::attribute::queryInstrumentStatus));
    const Session plain(instrument.resource(), {.profile = false});
    EXPECT_EQ(plain.get(kvx2800t::attribute::driverSetup), "");
}

TEST_F(OptionsOfASession, AreRefusedBeforeTheDriverIsCalled)
{
    EXPECT_THROW(Session(instrument.resource(), {.model = "A,B"}), std::invalid_argument);
    EXPECT_THROW(Session(instrument.resource() + std::string(1, '\0')), std::invalid_argument);
    EXPECT_EQ(newLines(), Lines{});
}

} // namespace
} // namespace kvxtest
