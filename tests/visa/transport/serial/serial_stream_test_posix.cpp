#include "tests/support/failing_calls.h"
#include "tests/support/visa/session_fixtures.h"

#include <cerrno>

namespace
{

using namespace kvxtest;

/// While it lives, every call of this function by this thread fails with this error.
class FailingFunction
{
public:
    FailingFunction(const char* function, int error) { kvxArmFailingFunction(function, error); }
    ~FailingFunction() { kvxDisarmFailingCall(); }
    FailingFunction(const FailingFunction&) = delete;
    FailingFunction& operator=(const FailingFunction&) = delete;
};

/// With something to read and room to write, so that every wait ends at once.
class VisaSerialDeadline : public VisaSerial, public testing::WithParamInterface<ViUInt32>
{
protected:
    void SetUp() override
    {
        VisaSerial::SetUp();
        peer_.send("reply\n");
        while (attribute<ViUInt32>(session_, VI_ATTR_ASRL_AVAIL_NUM) < 6)
            std::this_thread::yield();
        set(VI_ATTR_TMO_VALUE, GetParam());
    }
};

TEST_P(VisaSerialDeadline, EndsAReadThatTheHostNeverLetsThrough)
{
    for (const char* const function : {"read", "poll"}) {
        for (const int error : {EINTR, EAGAIN}) {
            if (std::string(function) == "poll" && error == EAGAIN)
                continue;
            const FailingFunction failure(function, error);
            EXPECT_EQ(read(session_, 100), (ReadResult{VI_ERROR_TMO, ""})) << function;
        }
    }
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS, "reply\n"}));
}

TEST_P(VisaSerialDeadline, EndsAWriteThatTheHostNeverLetsThrough)
{
    for (const int error : {EINTR, EAGAIN}) {
        const FailingFunction failure("write", error);
        ViUInt32 written = 7;
        EXPECT_EQ(write(session_, "x", &written), VI_ERROR_TMO);
        EXPECT_EQ(written, 0U);
    }
}

TEST_P(VisaSerialDeadline, EndsABreakThatIsAlwaysInterrupted)
{
    set(VI_ATTR_ASRL_END_OUT, VI_ASRL_END_BREAK);
    const FailingFunction failure("tcsendbreak", EINTR);
    EXPECT_EQ(write(session_, "x"), VI_ERROR_TMO);
}

INSTANTIATE_TEST_SUITE_P(Timeouts, VisaSerialDeadline, testing::Values(VI_TMO_IMMEDIATE, kShortMs));

TEST_F(VisaSerial, PortWithoutModemLinesDoesNotKnowThemAndDrivesNone)
{
    for (const ViAttr line : {VI_ATTR_ASRL_CTS_STATE, VI_ATTR_ASRL_DCD_STATE, VI_ATTR_ASRL_DSR_STATE,
                              VI_ATTR_ASRL_RI_STATE, VI_ATTR_ASRL_DTR_STATE, VI_ATTR_ASRL_RTS_STATE})
        EXPECT_EQ(attribute<ViInt16>(session_, line), VI_STATE_UNKNOWN) << std::hex << line;
    for (const ViAttr line : {VI_ATTR_ASRL_DTR_STATE, VI_ATTR_ASRL_RTS_STATE}) {
        EXPECT_EQ(viSetAttribute(session_, line, VI_STATE_ASSERTED), VI_ERROR_NSUP_ATTR_STATE) << std::hex << line;
        EXPECT_EQ(viSetAttribute(session_, line, VI_STATE_UNASSERTED), VI_ERROR_NSUP_ATTR_STATE) << std::hex << line;
    }
}

TEST_F(VisaSerial, ClearThatTheHostRefusesTellsSo)
{
    for (const char* const function : {"tcflush", "tcsendbreak"}) {
        {
            const FailingFunction failure(function, EINVAL);
            EXPECT_EQ(viClear(session_), VI_ERROR_IO) << function;
        }
        const FailingFunction failure(function, EIO);
        EXPECT_EQ(viClear(session_), VI_ERROR_CONN_LOST) << function;
    }
    EXPECT_EQ(viClear(session_), VI_SUCCESS);
}

TEST_F(VisaSerial, NothingIsWrittenWhileOldInputCannotBeDiscarded)
{
    set(VI_ATTR_TMO_VALUE, kShortMs);
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_ERROR_TMO, ""}));
    {
        const FailingFunction failure("tcflush", EINTR);
        EXPECT_EQ(write(session_, "1"), VI_ERROR_IO);
    }
    EXPECT_EQ(write(session_, "2"), VI_SUCCESS);
    EXPECT_EQ(peer_.receive(1), "2");
}

} // namespace
