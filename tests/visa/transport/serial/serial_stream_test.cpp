#include "tests/support/visa/serial_settings.h"
#include "tests/support/visa/session_fixtures.h"

#include <chrono>
#include <thread>

namespace
{

using namespace kvxtest;

TEST_F(VisaSerial, TheLineIsRaw)
{
    const std::string bytes("\x03\x04\r\n\x11\x13\x7F\x00\xFF", 9);
    set(VI_ATTR_ASRL_END_IN, VI_ASRL_END_NONE);
    EXPECT_EQ(write(session_, bytes), VI_SUCCESS);
    EXPECT_EQ(peer_.receive(9), bytes);
    peer_.send(bytes);
    EXPECT_EQ(read(session_, 9), (ReadResult{VI_SUCCESS_MAX_CNT, bytes}));
}

TEST_F(VisaSerial, BreakOnASlowLineStaysWithinTheUsualTimeout)
{
    constexpr ViUInt32 kUsualMs = 2000;
    set(VI_ATTR_TMO_VALUE, kUsualMs);
    set(VI_ATTR_ASRL_BAUD, 300);
    set(VI_ATTR_ASRL_END_OUT, VI_ASRL_END_BREAK);
    ViUInt32 written = 0;
    EXPECT_EQ(write(session_, "abc", &written), VI_SUCCESS);
    EXPECT_EQ(written, 3U);
    EXPECT_EQ(peer_.receive(3), "abc");
}

TEST_F(VisaSerial, WriteThatNobodyReadsEndsWithATimeoutAndTellsWhatWentOut)
{
    set(VI_ATTR_TMO_VALUE, kShortMs);
    ViUInt32 written = 0;
    const std::string bytes(kMebibyte, 'w');
    EXPECT_EQ(write(session_, bytes, &written), VI_ERROR_TMO);
    EXPECT_GT(written, 0U);
    EXPECT_LT(written, bytes.size());
}

TEST_F(VisaSerial, ReadWithoutInputEndsWithATimeout)
{
    set(VI_ATTR_TMO_VALUE, kShortMs);
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_ERROR_TMO, ""}));
    set(VI_ATTR_TMO_VALUE, VI_TMO_IMMEDIATE);
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_ERROR_TMO, ""}));
}

TEST_F(VisaSerial, ReadThatNeverWaitsTakesWhatHasArrived)
{
    peer_.send("one\ntwo\n");
    while (attribute<ViUInt32>(session_, VI_ATTR_ASRL_AVAIL_NUM) < 8)
        std::this_thread::yield();
    set(VI_ATTR_TMO_VALUE, VI_TMO_IMMEDIATE);
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS, "one\n"}));
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS, "two\n"}));
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_ERROR_TMO, ""}));
}

TEST_F(VisaSerial, AnswerThatCameTooLateIsNotTheNextOne)
{
    set(VI_ATTR_TMO_VALUE, kShortMs);
    peer_.send("fir");
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_ERROR_TMO, "fir"}));
    peer_.send("st\n");
    while (attribute<ViUInt32>(session_, VI_ATTR_ASRL_AVAIL_NUM) < 6)
        std::this_thread::yield();
    set(VI_ATTR_TMO_VALUE, kLongMs);
    EXPECT_EQ(write(session_, "2"), VI_SUCCESS);
    EXPECT_EQ(peer_.receive(1), "2");
    peer_.send("second\n");
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS, "second\n"}));
}

TEST_F(VisaSerial, ClearDropsWhatHasArrived)
{
    peer_.send("old\nolder\n");
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS, "old\n"}));
    EXPECT_EQ(viClear(session_), VI_SUCCESS);
    peer_.send("new\n");
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS, "new\n"}));
}

TEST_F(VisaSerial, HungUpLineIsLost)
{
    peer_.hangUp();
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_ERROR_CONN_LOST, ""}));
    EXPECT_EQ(write(session_, "x"), VI_ERROR_CONN_LOST);
    EXPECT_LT(viClear(session_), VI_SUCCESS);
}

TEST_F(VisaSerial, LineThatHangsUpDuringAReadIsLost)
{
    std::thread leaver([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        peer_.hangUp();
    });
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_ERROR_CONN_LOST, ""}));
    leaver.join();
}

TEST_F(VisaSerial, CloseByAnotherThreadEndsAnInfiniteRead)
{
    set(VI_ATTR_TMO_VALUE, VI_TMO_INFINITE);
    EXPECT_EQ(statusOnClose([&] { return read(session_, 100).status; }), VI_ERROR_INV_OBJECT);
}

class VisaSerialSetting : public VisaSerial, public testing::WithParamInterface<SettingCase>
{
};

TEST_P(VisaSerialSetting, IsTakenOrLeavesTheOldValue)
{
    const SettingCase& param = GetParam();
    const bool isLong = param.attribute == VI_ATTR_ASRL_BAUD;
    const auto current = [&] {
        return isLong ? attribute<ViUInt32>(session_, param.attribute) : attribute<ViUInt16>(session_, param.attribute);
    };
    const ViUInt32 before = current();
    EXPECT_EQ(viSetAttribute(session_, param.attribute, param.value), param.status);
    EXPECT_EQ(current(), param.status < 0 ? before : param.value);
}

INSTANTIATE_TEST_SUITE_P(
    Values, VisaSerialSetting,
    testing::Values(SettingCase{"Baud115200", VI_ATTR_ASRL_BAUD, 115200, VI_SUCCESS},
                    SettingCase{"Baud300", VI_ATTR_ASRL_BAUD, 300, VI_SUCCESS},
                    SettingCase{"Baud0", VI_ATTR_ASRL_BAUD, 0, VI_ERROR_NSUP_ATTR_STATE},
                    SettingCase{"DataBits4", VI_ATTR_ASRL_DATA_BITS, 4, VI_ERROR_NSUP_ATTR_STATE},
                    SettingCase{"DataBits5", VI_ATTR_ASRL_DATA_BITS, 5, VI_SUCCESS},
                    SettingCase{"DataBits9", VI_ATTR_ASRL_DATA_BITS, 9, VI_ERROR_NSUP_ATTR_STATE},
                    SettingCase{"ParityOdd", VI_ATTR_ASRL_PARITY, VI_ASRL_PAR_ODD, VI_SUCCESS},
                    SettingCase{"ParityEven", VI_ATTR_ASRL_PARITY, VI_ASRL_PAR_EVEN, VI_SUCCESS},
                    SettingCase{"Parity5", VI_ATTR_ASRL_PARITY, 5, VI_ERROR_NSUP_ATTR_STATE},
                    SettingCase{"StopTwo", VI_ATTR_ASRL_STOP_BITS, VI_ASRL_STOP_TWO, VI_SUCCESS},
                    SettingCase{"Stop11", VI_ATTR_ASRL_STOP_BITS, 11, VI_ERROR_NSUP_ATTR_STATE},
                    SettingCase{"FlowXonXoff", VI_ATTR_ASRL_FLOW_CNTRL, VI_ASRL_FLOW_XON_XOFF, VI_SUCCESS},
                    SettingCase{"FlowRtsCts", VI_ATTR_ASRL_FLOW_CNTRL, VI_ASRL_FLOW_RTS_CTS, VI_SUCCESS},
                    SettingCase{"Flow8", VI_ATTR_ASRL_FLOW_CNTRL, 8, VI_ERROR_NSUP_ATTR_STATE},
                    SettingCase{"EndInNone", VI_ATTR_ASRL_END_IN, VI_ASRL_END_NONE, VI_SUCCESS},
                    SettingCase{"EndInBreak", VI_ATTR_ASRL_END_IN, VI_ASRL_END_BREAK, VI_ERROR_NSUP_ATTR_STATE},
                    SettingCase{"EndOutBreak", VI_ATTR_ASRL_END_OUT, VI_ASRL_END_BREAK, VI_SUCCESS},
                    SettingCase{"EndOut4", VI_ATTR_ASRL_END_OUT, 4, VI_ERROR_NSUP_ATTR_STATE}),
    [](const auto& instance) { return std::string(instance.param.name); });

INSTANTIATE_TEST_SUITE_P(ValuesOfTheHost, VisaSerialSetting, testing::ValuesIn(hostSettings()),
                         [](const auto& instance) { return std::string(instance.param.name); });

TEST_F(VisaSerial, BoardNumberIsNamedByTheEnvironment)
{
    SerialPeer other;
    other.publishAs("VISA_ASRL42");
    const ViSession session = open("asrl42::instr");
    EXPECT_EQ(write(session, "x"), VI_SUCCESS);
    EXPECT_EQ(other.receive(1), "x");
    EXPECT_EQ(textAttribute(session, VI_ATTR_RSRC_NAME), "ASRL42::INSTR");
    EXPECT_EQ(attribute<ViUInt16>(session, VI_ATTR_INTF_NUM), 42);
}

TEST_F(VisaSerial, MissingDevicesAreNotFound)
{
    for (const char* resource : {"ASRL/dev/no-such-port::INSTR", "ASRL65535::INSTR", "ASRL::INSTR", "ASRL/dev/null"}) {
        ViSession session = 17;
        EXPECT_EQ(viOpen(manager_, resource, VI_NULL, 0, &session), VI_ERROR_RSRC_NFOUND) << resource;
        EXPECT_EQ(session, 0U);
    }
}

} // namespace
