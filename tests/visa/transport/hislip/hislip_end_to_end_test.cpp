#include "tests/support/processes/virtual_instrument_process.h"
#include "tests/support/visa/session_fixtures.h"

#include <array>
#include <string>

namespace
{

using namespace kvxtest;

constexpr auto kIdentity = "Tessaro Instruments,KVX2833T,VIRT0000001,V1.00\n";

/// Sessions with the virtual instrument, which knows nothing of this library's code.
class VisaHislipInstrument : public VisaTest
{
protected:
    void SetUp() override
    {
        VisaTest::SetUp();
        session_ = openOne();
    }

    ViSession openOne()
    {
        const ViSession session = open(resource());
        EXPECT_EQ(viSetAttribute(session, VI_ATTR_TMO_VALUE, kLongMs), VI_SUCCESS);
        return session;
    }

    std::string resource(const std::string& device = "hislip0") const
    {
        return "TCPIP0::127.0.0.1::" + device + ',' + std::to_string(instrument_.hislipPort()) + "::INSTR";
    }

    static ReadResult query(ViSession session, const std::string& question)
    {
        EXPECT_EQ(write(session, question), VI_SUCCESS);
        return read(session, 100000);
    }

    static void expectReply(ViSession session, const std::string& question, const std::string& reply)
    {
        EXPECT_EQ(query(session, question), (ReadResult{VI_SUCCESS, reply})) << question;
    }

    static ViUInt16 statusByte(ViSession session)
    {
        ViUInt16 status = 0xEEEE;
        EXPECT_EQ(viReadSTB(session, &status), VI_SUCCESS);
        return status;
    }

    VirtualInstrumentProcess instrument_{{"--hislip", "0"}};
    ViSession session_ = VI_NULL;
};

TEST_F(VisaHislipInstrument, AnswersQuestions)
{
    expectReply(session_, "*IDN?", kIdentity);
    expectReply(session_, "*OPC?\n", "1\n");
    EXPECT_EQ(write(session_, "SOUR3:VOLT 4.5"), VI_SUCCESS);
    expectReply(session_, "SOUR3:VOLT?", "4.500000\n");
    expectReply(session_, "SYST:ERR?", "0,\"No error\"\n");
    EXPECT_EQ(attribute<ViUInt32>(session_, VI_ATTR_TCPIP_HISLIP_VERSION), 0x00200000U);
    EXPECT_EQ(attribute<ViUInt16>(session_, VI_ATTR_TCPIP_PORT), instrument_.hislipPort());
}

TEST_F(VisaHislipInstrument, ThousandsOfQuestionsLeaveNoError)
{
    for (int i = 0; i < 2000; ++i)
        ASSERT_EQ(query(session_, "*OPC?"), (ReadResult{VI_SUCCESS, "1\n"}));
    expectReply(session_, "SYST:ERR?", "0,\"No error\"\n");
}

TEST_F(VisaHislipInstrument, HasNoOtherDevice)
{
    ViSession session = VI_NULL;
    EXPECT_EQ(viOpen(manager_, resource("hislip1").c_str(), VI_NULL, 0, &session), VI_ERROR_RSRC_NFOUND);
}

TEST_F(VisaHislipInstrument, ServesThirtyTwoClients)
{
    for (int i = 1; i < 32; ++i)
        openOne();
    ViSession session = VI_NULL;
    EXPECT_EQ(viOpen(manager_, resource().c_str(), VI_NULL, 0, &session), VI_ERROR_RSRC_BUSY);
    expectReply(session_, "*OPC?", "1\n");
}

TEST_F(VisaHislipInstrument, AQuestionThatIsNotReadIsInterrupted)
{
    EXPECT_EQ(write(session_, "*IDN?"), VI_SUCCESS);
    expectReply(session_, "*OPC?", "1\n");
    expectReply(session_, "SYST:ERR?", "-410,\"Query INTERRUPTED\"\n");
    expectReply(session_, "SYST:ERR?", "0,\"No error\"\n");
}

TEST_F(VisaHislipInstrument, AnOverlappedSessionReadsAllReplies)
{
    ASSERT_EQ(viSetAttribute(session_, VI_ATTR_TCPIP_HISLIP_OVERLAP_EN, VI_TRUE), VI_SUCCESS);
    for (const char* question : {"*IDN?", "*OPC?", "*TST?"})
        EXPECT_EQ(write(session_, question), VI_SUCCESS);
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS, kIdentity}));
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS, "1\n"}));
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS, "0\n"}));
    EXPECT_EQ(statusByte(session_), 0);
    ASSERT_EQ(viSetAttribute(session_, VI_ATTR_TCPIP_HISLIP_OVERLAP_EN, VI_FALSE), VI_SUCCESS);
    expectReply(session_, "*OPC?", "1\n");
}

TEST_F(VisaHislipInstrument, AReplyThatComesTooLateIsNotTakenForTheNext)
{
    instrument_.control("delay 300");
    EXPECT_EQ(write(session_, "*IDN?"), VI_SUCCESS);
    ASSERT_EQ(viSetAttribute(session_, VI_ATTR_TMO_VALUE, kShortMs), VI_SUCCESS);
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_ERROR_TMO, ""}));
    instrument_.control("delay 0");
    ASSERT_EQ(viSetAttribute(session_, VI_ATTR_TMO_VALUE, kLongMs), VI_SUCCESS);
    expectReply(session_, "*OPC?", "1\n");
}

TEST_F(VisaHislipInstrument, AClearDropsTheReplyAndTheBeginningOfAMessage)
{
    EXPECT_EQ(write(session_, "*IDN?"), VI_SUCCESS);
    EXPECT_EQ(read(session_, 5), (ReadResult{VI_SUCCESS_MAX_CNT, "Tessa"}));
    EXPECT_EQ(viClear(session_), VI_SUCCESS);
    ASSERT_EQ(viSetAttribute(session_, VI_ATTR_SEND_END_EN, VI_FALSE), VI_SUCCESS);
    EXPECT_EQ(write(session_, "NONSENSE"), VI_SUCCESS);
    ASSERT_EQ(viSetAttribute(session_, VI_ATTR_SEND_END_EN, VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(viClear(session_), VI_SUCCESS);
    expectReply(session_, "SYST:ERR?", "0,\"No error\"\n");
}

TEST_F(VisaHislipInstrument, TellsItsStatus)
{
    EXPECT_EQ(write(session_, "*SRE 4"), VI_SUCCESS);
    EXPECT_EQ(instrument_.control("inject -300 \"made\""), "ok");
    EXPECT_EQ(statusByte(session_), 64 | 4);
    EXPECT_EQ(statusByte(session_), 4);
    expectReply(session_, "*IDN?", kIdentity);
    EXPECT_EQ(statusByte(session_), 4);
    expectReply(session_, "SYST:ERR?", "-300,\"made\"\n");
    EXPECT_EQ(statusByte(session_), 0);
}

TEST_F(VisaHislipInstrument, Triggers)
{
    EXPECT_EQ(write(session_, "LIST:GROUP:PARA 1,10,1,100;:LIST:STAT ON;:TRIG:IN:ENAB CH1,ON;:OUTP:STAT CH1,ON"),
              VI_SUCCESS);
    EXPECT_EQ(query(session_, "LIST:STATUS?").bytes.substr(0, 5), "READY");
    EXPECT_EQ(viAssertTrigger(session_, VI_TRIG_PROT_DEFAULT), VI_SUCCESS);
    EXPECT_EQ(query(session_, "LIST:STATUS?").bytes.substr(0, 7), "RUNNING");
}

TEST_F(VisaHislipInstrument, GoesToRemoteAndLocal)
{
    EXPECT_EQ(viGpibControlREN(session_, VI_GPIB_REN_ASSERT_ADDRESS_LLO), VI_SUCCESS);
    EXPECT_EQ(instrument_.control("panel"), "ok remote locked-out");
    EXPECT_EQ(viGpibControlREN(session_, VI_GPIB_REN_ADDRESS_GTL), VI_SUCCESS);
    EXPECT_EQ(instrument_.control("panel"), "ok local locked-out");
    EXPECT_EQ(viGpibControlREN(session_, VI_GPIB_REN_DEASSERT), VI_SUCCESS);
    EXPECT_EQ(instrument_.control("panel"), "ok local disabled");
}

TEST_F(VisaHislipInstrument, ItsLocksAreHeldAndGivenBack)
{
    EXPECT_EQ(viLock(session_, VI_EXCLUSIVE_LOCK, kLongMs, VI_NULL, VI_NULL), VI_SUCCESS);
    EXPECT_EQ(attribute<ViUInt32>(session_, VI_ATTR_RSRC_LOCK_STATE), static_cast<ViUInt32>(VI_EXCLUSIVE_LOCK));
    expectReply(session_, "*OPC?", "1\n");
    EXPECT_EQ(viUnlock(session_), VI_SUCCESS);
    std::array<ViChar, 256> key{};
    EXPECT_EQ(viLock(session_, VI_SHARED_LOCK, kLongMs, "key", key.data()), VI_SUCCESS);
    EXPECT_EQ(attribute<ViUInt32>(session_, VI_ATTR_RSRC_LOCK_STATE), static_cast<ViUInt32>(VI_SHARED_LOCK));
    EXPECT_EQ(viUnlock(session_), VI_SUCCESS);
    EXPECT_EQ(attribute<ViUInt32>(session_, VI_ATTR_RSRC_LOCK_STATE), static_cast<ViUInt32>(VI_NO_LOCK));
}

TEST_F(VisaHislipInstrument, LocksOfOtherResourceNamesAreSeenThroughTheInstrument)
{
    const ViSession other = open(resource("HISLIP0"));
    EXPECT_EQ(viLock(other, VI_EXCLUSIVE_LOCK, kLongMs, VI_NULL, VI_NULL), VI_SUCCESS);
    EXPECT_EQ(viLock(session_, VI_EXCLUSIVE_LOCK, kShortMs, VI_NULL, VI_NULL), VI_ERROR_TMO);
    EXPECT_EQ(viLock(session_, VI_EXCLUSIVE_LOCK, VI_TMO_IMMEDIATE, VI_NULL, VI_NULL), VI_ERROR_RSRC_LOCKED);
    EXPECT_EQ(write(session_, "*IDN?"), VI_SUCCESS);
    EXPECT_EQ(viClose(other), VI_SUCCESS);
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS, kIdentity}));
}

TEST_F(VisaHislipInstrument, ItsEndIsALostConnection)
{
    instrument_.kill();
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_ERROR_CONN_LOST, ""}));
    ViUInt16 status = 0;
    EXPECT_EQ(viReadSTB(session_, &status), VI_ERROR_CONN_LOST);
}

} // namespace
