#include "tests/support/processes/own_network.h"
#include "tests/support/processes/virtual_instrument_process.h"
#include "tests/support/visa/rpc_bytes.h"
#include "tests/support/visa/visa_fixture.h"

#include <asio.hpp>

#include <array>
#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <thread>

namespace
{

using namespace kvxtest;
using asio::ip::tcp;

constexpr ViUInt32 kLongMs = 60000;

class VisaVxi11 : public VisaTest
{
protected:
    void SetUp() override
    {
        if (const std::string complaint = enterOwnNetwork(); !complaint.empty())
            GTEST_SKIP() << complaint;
        VisaTest::SetUp();
        instrument_ = std::make_unique<VirtualInstrumentProcess>(std::vector<std::string>{"--vxi11"});
        session_ = openDevice();
    }

    void TearDown() override
    {
        if (manager_ != VI_NULL)
            VisaTest::TearDown();
    }

    ViSession openDevice()
    {
        const ViSession session = open("TCPIP0::127.0.0.1::inst0::INSTR");
        EXPECT_EQ(viSetAttribute(session, VI_ATTR_TMO_VALUE, kLongMs), VI_SUCCESS);
        return session;
    }

    ViStatus statusOfOpening(const std::string& resource)
    {
        ViSession session = VI_NULL;
        return viOpen(manager_, resource.c_str(), VI_NULL, kLongMs, &session);
    }

    ViUInt16 statusByte()
    {
        ViUInt16 byte = 0xFFFF;
        EXPECT_EQ(viReadSTB(session_, &byte), VI_SUCCESS);
        return byte;
    }

    std::unique_ptr<VirtualInstrumentProcess> instrument_;
    ViSession session_ = VI_NULL;
};

TEST_F(VisaVxi11, AsksAndSets)
{
    EXPECT_EQ(write(session_, "*IDN?\n"), VI_SUCCESS);
    EXPECT_EQ(read(session_, 200), (ReadResult{VI_SUCCESS, "Tessaro Instruments,KVX2833T,VIRT0000001,V1.00\n"}));
    EXPECT_EQ(write(session_, ":SOUR1:VOLT 5;VOLT?"), VI_SUCCESS);
    EXPECT_EQ(read(session_, 3), (ReadResult{VI_SUCCESS_MAX_CNT, "5.0"}));
    EXPECT_EQ(read(session_, 200), (ReadResult{VI_SUCCESS, "00000\n"}));
}

TEST_F(VisaVxi11, EndsAMessageWithEndAlone)
{
    EXPECT_EQ(viSetAttribute(session_, VI_ATTR_SEND_END_EN, VI_FALSE), VI_SUCCESS);
    EXPECT_EQ(write(session_, "*T"), VI_SUCCESS);
    EXPECT_EQ(viSetAttribute(session_, VI_ATTR_SEND_END_EN, VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(write(session_, "ST?"), VI_SUCCESS);
    EXPECT_EQ(read(session_, 200), (ReadResult{VI_SUCCESS, "0\n"}));
}

TEST_F(VisaVxi11, EndsAReadAtTheTerminationCharacter)
{
    EXPECT_EQ(viSetAttribute(session_, VI_ATTR_TERMCHAR, ';'), VI_SUCCESS);
    EXPECT_EQ(viSetAttribute(session_, VI_ATTR_TERMCHAR_EN, VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(write(session_, "*OPC?;*TST?\n"), VI_SUCCESS);
    EXPECT_EQ(read(session_, 200), (ReadResult{VI_SUCCESS_TERM_CHAR, "1;"}));
    EXPECT_EQ(read(session_, 200), (ReadResult{VI_SUCCESS, "0\n"}));
}

TEST_F(VisaVxi11, PollsAndClears)
{
    constexpr ViUInt16 kMessageAvailable = 0x10;
    EXPECT_EQ(statusByte(), 0);
    EXPECT_EQ(write(session_, "*IDN?\n"), VI_SUCCESS);
    EXPECT_EQ(statusByte(), kMessageAvailable);
    EXPECT_EQ(viClear(session_), VI_SUCCESS);
    EXPECT_EQ(statusByte(), 0);
}

TEST_F(VisaVxi11, TriggersAndGoesToRemoteAndLocal)
{
    instrument_->clearLog();
    EXPECT_EQ(viAssertTrigger(session_, VI_TRIG_PROT_DEFAULT), VI_SUCCESS);
    EXPECT_EQ(viGpibControlREN(session_, VI_GPIB_REN_ADDRESS_GTL), VI_SUCCESS);
    EXPECT_EQ(instrument_->control("panel"), "ok local");
    EXPECT_EQ(viGpibControlREN(session_, VI_GPIB_REN_ASSERT_ADDRESS), VI_SUCCESS);
    EXPECT_EQ(instrument_->control("panel"), "ok remote");
}

TEST_F(VisaVxi11, AReadWithoutAnAnswerEndsWithTheTimeOut)
{
    EXPECT_EQ(viSetAttribute(session_, VI_ATTR_TMO_VALUE, 20), VI_SUCCESS);
    EXPECT_EQ(read(session_, 200), (ReadResult{VI_ERROR_TMO, ""}));
    EXPECT_EQ(viSetAttribute(session_, VI_ATTR_TMO_VALUE, kLongMs), VI_SUCCESS);
    EXPECT_EQ(write(session_, ":SYST:ERR?\n"), VI_SUCCESS);
    EXPECT_EQ(read(session_, 200), (ReadResult{VI_SUCCESS, "-420,\"Query UNTERMINATED\"\n"}));
}

TEST_F(VisaVxi11, TerminateEndsAReadOverTheAbortChannel)
{
    std::atomic<bool> isOver = false;
    std::thread reading([&] {
        EXPECT_EQ(read(session_, 200), (ReadResult{VI_ERROR_ABORT, ""}));
        isOver = true;
    });
    while (!isOver)
        EXPECT_EQ(viTerminate(session_, VI_NULL, VI_NULL), VI_SUCCESS);
    reading.join();
    EXPECT_EQ(write(session_, "*TST?\n"), VI_SUCCESS);
    EXPECT_EQ(read(session_, 200), (ReadResult{VI_SUCCESS, "0\n"}));
}

TEST_F(VisaVxi11, LocksTheDeviceAgainstOtherProcesses)
{
    EXPECT_EQ(viLock(session_, VI_EXCLUSIVE_LOCK, kLongMs, nullptr, nullptr), VI_SUCCESS);
    // Another name, and so another resource to this process, as that of another one would be.
    const ViSession other = open("TCPIP0::localhost::inst0::INSTR");
    EXPECT_EQ(write(other, "*RST\n"), VI_ERROR_RSRC_LOCKED);
    EXPECT_EQ(viLock(other, VI_EXCLUSIVE_LOCK, 20, nullptr, nullptr), VI_ERROR_TMO);
    EXPECT_EQ(viUnlock(session_), VI_SUCCESS);
    EXPECT_EQ(viLock(other, VI_EXCLUSIVE_LOCK, kLongMs, nullptr, nullptr), VI_SUCCESS);
    EXPECT_EQ(write(other, "*RST\n"), VI_SUCCESS);
}

TEST_F(VisaVxi11, ADeviceThatIsNotThereIsNotFound)
{
    EXPECT_EQ(statusOfOpening("TCPIP0::127.0.0.1::inst7::INSTR"), VI_ERROR_RSRC_NFOUND);
    EXPECT_EQ(statusOfOpening("TCPIP0::127.0.0.2::inst0::INSTR"), VI_ERROR_RSRC_NFOUND);
}

TEST_F(VisaVxi11, AStringWithoutADeviceTriesVxi11First)
{
    const ViSession session = open("TCPIP0::127.0.0.1::INSTR");
    ViBoolean isHislip = VI_TRUE;
    EXPECT_EQ(viGetAttribute(session, VI_ATTR_TCPIP_IS_HISLIP, &isHislip), VI_SUCCESS);
    EXPECT_EQ(isHislip, VI_FALSE);
}

TEST_F(VisaVxi11, AStringWithoutADeviceFallsBackToHislip)
{
    instrument_.reset();
    const VirtualInstrumentProcess hislip({"--hislip"});
    const ViSession session = open("TCPIP0::127.0.0.1::INSTR");
    ViBoolean isHislip = VI_FALSE;
    EXPECT_EQ(viGetAttribute(session, VI_ATTR_TCPIP_IS_HISLIP, &isHislip), VI_SUCCESS);
    EXPECT_EQ(isHislip, VI_TRUE);
}

/// A portmapper that a test has in its hand.
class Portmapper
{
public:
    Portmapper() : udp_(context_, {asio::ip::address_v4::loopback(), 111}) {}

    /// Connections are taken, and nothing is answered.
    void listenInSilence() { tcp_.emplace(context_, tcp::endpoint(asio::ip::address_v4::loopback(), 111)); }

    /// Answers the datagrams that come, the first one not at all.
    void answer(std::uint32_t port)
    {
        receive();
        const std::string call = receive();
        EXPECT_EQ(call.substr(4), words({0, 2, 100000, 2, 3, 0, 0, 0, 0, 0x0607AF, 1, 6, 0}));
        send("no reply");
        send(words({wordIn(call, 0) + 1, 1, 0, 0, 0, 0, 1}));
        receive();
        send(words({wordIn(call, 0), 1, 0, 0, 0, 0, port}));
    }

private:
    std::string receive()
    {
        std::string message(1000, '\0');
        message.resize(udp_.receive_from(asio::buffer(message), sender_));
        return message;
    }

    void send(const std::string& message) { udp_.send_to(asio::buffer(message), sender_); }

    asio::io_context context_;
    asio::ip::udp::socket udp_;
    std::optional<tcp::acceptor> tcp_;
    asio::ip::udp::endpoint sender_;
};

TEST_F(VisaVxi11, APortmapperWithoutTcpIsAskedByUdpUntilItAnswers)
{
    instrument_.reset();
    Portmapper portmapper;
    const VirtualInstrumentProcess instrument({"--vxi11"});
    std::thread answering([&] { portmapper.answer(instrument.vxi11Port()); });
    ViSession session = VI_NULL;
    EXPECT_EQ(viOpen(manager_, "TCPIP0::127.0.0.1::inst0::INSTR", VI_NULL, kLongMs, &session), VI_SUCCESS);
    answering.join();
    EXPECT_EQ(write(session, "*TST?\n"), VI_SUCCESS);
    EXPECT_EQ(read(session, 100), (ReadResult{VI_SUCCESS, "0\n"}));
}

TEST_F(VisaVxi11, APortThatIsNoneIsNotFound)
{
    for (const std::uint32_t port : {0U, 0x10000U, 0xFFFFFFFFU}) {
        instrument_.reset();
        Portmapper portmapper;
        std::thread answering([&] { portmapper.answer(port); });
        EXPECT_EQ(statusOfOpening("TCPIP0::127.0.0.1::inst0::INSTR"), VI_ERROR_RSRC_NFOUND) << port;
        answering.join();
    }
}

TEST_F(VisaVxi11, ASilentPortmapperLeavesTimeForHislip)
{
    instrument_.reset();
    Portmapper portmapper;
    portmapper.listenInSilence();
    const VirtualInstrumentProcess hislip({"--hislip"});
    ViSession session = VI_NULL;
    EXPECT_EQ(viOpen(manager_, "TCPIP0::127.0.0.1::inst0::INSTR", VI_NULL, 100, &session), VI_ERROR_TMO);
    EXPECT_EQ(viOpen(manager_, "TCPIP0::127.0.0.1::INSTR", VI_NULL, 2000, &session), VI_SUCCESS);
    ViBoolean isHislip = VI_FALSE;
    EXPECT_EQ(viGetAttribute(session, VI_ATTR_TCPIP_IS_HISLIP, &isHislip), VI_SUCCESS);
    EXPECT_EQ(isHislip, VI_TRUE);
}

TEST_F(VisaVxi11, AnInstrumentThatDiesIsALostConnection)
{
    instrument_->kill();
    EXPECT_EQ(write(session_, "*IDN?\n"), VI_ERROR_CONN_LOST);
}

} // namespace
