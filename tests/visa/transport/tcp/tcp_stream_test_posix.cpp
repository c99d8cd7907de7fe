#include "tests/support/failing_calls.h"
#include "tests/support/open_descriptors.h"
#include "tests/support/visa/session_fixtures.h"

#include <cerrno>

namespace
{

using kvxtest::openDescriptors;
using kvxtest::TcpPeer;

/// The limit of the process is left alone, since sanitizers need descriptors too.
class VisaExhaustion : public kvxtest::VisaTest
{
protected:
    ViStatus tryToOpen() const
    {
        ViSession session = 17;
        const ViStatus status = viOpen(manager_, peer_.resource().c_str(), VI_NULL, 0, &session);
        kvxDisarmFailingCall();
        if (status < 0) {
            EXPECT_EQ(session, static_cast<ViSession>(VI_NULL));
        }
        viClose(session);
        return status;
    }

    const TcpPeer peer_;
};

TEST_F(VisaExhaustion, OfTheHostIsLackOfResources)
{
    for (const char* const function : {"epoll_create1", "socket"}) {
        for (const int error : {EMFILE, ENFILE, ENOMEM}) {
            kvxArmFailingFunction(function, error);
            EXPECT_EQ(tryToOpen(), VI_ERROR_ALLOC) << function << ' ' << error;
        }
    }
    EXPECT_EQ(tryToOpen(), VI_SUCCESS);
}

TEST_F(VisaExhaustion, LeavesNoDescriptorBehindWhicheverCallFails)
{
    // The library keeps a few for good.
    EXPECT_EQ(tryToOpen(), VI_SUCCESS);
    kvxArmFailingCall(0, 0);
    EXPECT_EQ(tryToOpen(), VI_SUCCESS);
    const unsigned long calls = kvxCountedCalls();
    EXPECT_GT(calls, 10U);
    const std::size_t before = openDescriptors();
    for (unsigned long call = 1; call <= calls; ++call) {
        kvxArmFailingCall(call, ENOMEM);
        tryToOpen();
        EXPECT_EQ(openDescriptors(), before) << kvxFailedCall() << ", call " << call;
    }
}

class VisaDiscard : public kvxtest::VisaSocket, public testing::WithParamInterface<ViStatus (*)(ViSession session)>
{
};

TEST_P(VisaDiscard, EndsWithAsManyBytesAsAHostCanKeep)
{
    set(VI_ATTR_TMO_VALUE, VI_TMO_INFINITE);
    kvxArmFailingFunction("recv", kClaimedTransfer);
    EXPECT_EQ(GetParam()(session_), VI_ERROR_TMO);
    EXPECT_EQ(kvxCountedCalls(), 1024U);
    kvxDisarmFailingCall();
}

TEST_P(VisaDiscard, EndsWithTheTimeoutWhileSignalsKeepItFromTheInput)
{
    set(VI_ATTR_TMO_VALUE, kvxtest::kShortMs);
    kvxArmFailingFunction("recv", EINTR);
    EXPECT_EQ(GetParam()(session_), VI_ERROR_TMO);
    kvxDisarmFailingCall();
}

TEST_P(VisaDiscard, SucceedsAfterOneSignal)
{
    peer_.send("old");
    kvxArmFailingCall(1, EINTR);
    EXPECT_GE(GetParam()(session_), VI_SUCCESS);
    kvxDisarmFailingCall();
    peer_.send("new");
    EXPECT_EQ(kvxtest::read(session_, 3), (kvxtest::ReadResult{VI_SUCCESS_MAX_CNT, "new"}));
}

INSTANTIATE_TEST_SUITE_P(Functions, VisaDiscard,
                         testing::Values([](ViSession session) { return viSetBuf(session, VI_IO_IN_BUF, 1024); },
                                         [](ViSession session) { return viClear(session); }));

using VisaSocket = kvxtest::VisaSocket;

TEST_F(VisaSocket, ExchangeIsOneCallOfTheHostForEachTransfer)
{
    endAt('\n');
    EXPECT_EQ(kvxtest::write(session_, "1"), VI_SUCCESS);
    peer_.send("one\n");
    EXPECT_EQ(kvxtest::read(session_, 100).bytes, "one\n");
    kvxArmFailingCall(0, 0);
    EXPECT_EQ(kvxtest::write(session_, "2"), VI_SUCCESS);
    EXPECT_EQ(kvxCountedCalls(), 1U);
    kvxDisarmFailingCall();
    peer_.send("two\n");
    kvxResumeFailingCall();
    EXPECT_EQ(kvxtest::read(session_, 100).bytes, "two\n");
    EXPECT_EQ(kvxCountedCalls(), 2U);
    kvxDisarmFailingCall();
}

TEST_F(VisaSocket, DiscardBeforeAWriteIsOneMoreCallWhereNothingHasArrived)
{
    set(VI_ATTR_TMO_VALUE, VI_TMO_IMMEDIATE);
    EXPECT_EQ(kvxtest::read(session_, 100).status, VI_ERROR_TMO);
    kvxArmFailingCall(0, 0);
    EXPECT_EQ(kvxtest::write(session_, "1"), VI_SUCCESS);
    EXPECT_EQ(kvxCountedCalls(), 2U);
    EXPECT_EQ(kvxtest::write(session_, "2"), VI_SUCCESS);
    EXPECT_EQ(kvxCountedCalls(), 3U);
    kvxDisarmFailingCall();
}

} // namespace
