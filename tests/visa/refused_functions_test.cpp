#include "tests/support/visa/session_fixtures.h"
#include "visa/refused_functions.h"

#include <functional>
#include <string>
#include <vector>

namespace
{

using namespace kvxtest;

template <class... Parameters>
ViStatus callWithNothing(ViStatus(_VI_FUNC* function)(ViSession, Parameters...), ViSession session)
{
    return function(session, Parameters{}...);
}

// The variadic functions have a convention of their own where _VI_FUNC and _VI_FUNCC differ.
ViStatus callVariadic(const std::string& name, ViSession session)
{
    if (name == "viPrintf")
        return viPrintf(session, "%d", 1);
    if (name == "viScanf")
        return viScanf(session, "%d", nullptr);
    if (name == "viSPrintf")
        return viSPrintf(session, nullptr, "%d", 1);
    if (name == "viSScanf")
        return viSScanf(session, nullptr, "%d", nullptr);
    return viQueryf(session, "%d", "%d", 1, nullptr);
}

struct Refused
{
    std::string name;
    ViStatus status;
    std::function<ViStatus(ViSession)> call;
};

template <class Function>
std::function<ViStatus(ViSession)> caller(const std::string& name, Function function)
{
    if constexpr (requires { callWithNothing(function, ViSession{}); })
        return [function](ViSession session) { return callWithNothing(function, session); };
    else
        return [name](ViSession session) { return callVariadic(name, session); };
}

std::vector<Refused> refusedFunctions()
{
#define KVX_REFUSED(name, convention, status, ...) {#name, status, caller(#name, &(name))},
    return {KVX_VISA_REFUSED_FUNCTIONS(KVX_REFUSED)};
#undef KVX_REFUSED
}

class RefusedFunctions : public VisaSocket
{
};

TEST_F(RefusedFunctions, AnswerWithTheStatusOfTheirTable)
{
    const auto functions = refusedFunctions();
    EXPECT_GE(functions.size(), 75U);
    for (const auto& [name, status, call] : functions) {
        EXPECT_EQ(status, name == "viEnableEvent" ? VI_ERROR_INV_EVENT : VI_ERROR_NSUP_OPER) << name;
        EXPECT_EQ(call(session_), status) << name;
        EXPECT_EQ(call(manager_), status) << name;
    }
}

TEST_F(RefusedFunctions, KnowAHandleThatIsNotOpen)
{
    for (const auto& [name, status, call] : refusedFunctions()) {
        EXPECT_EQ(call(VI_NULL), VI_ERROR_INV_OBJECT) << name;
        EXPECT_EQ(call(session_ + 1000), VI_ERROR_INV_OBJECT) << name;
    }
}

TEST_F(RefusedFunctions, ThoseWithoutAStatusTouchNothing)
{
    ViUInt64 memory = 0x1122334455667788;
    ViUInt64 read = 17;
    viPoke8(session_, &memory, 1);
    viPoke16(session_, &memory, 2);
    viPoke32(session_, &memory, 3);
    viPoke64(session_, &memory, 4);
    viPeek64(session_, &memory, &read);
    EXPECT_EQ(memory, 0x1122334455667788U);
    EXPECT_EQ(read, 17U);
}

TEST_F(RefusedFunctions, NoEventIsEverEnabled)
{
    EXPECT_EQ(viEnableEvent(session_, VI_EVENT_SERVICE_REQ, VI_QUEUE, VI_NULL), VI_ERROR_INV_EVENT);
    EXPECT_EQ(viDisableEvent(session_, VI_EVENT_SERVICE_REQ, VI_ALL_MECH), VI_SUCCESS_EVENT_DIS);
    EXPECT_EQ(viDiscardEvents(session_, VI_ALL_ENABLED_EVENTS, VI_ALL_MECH), VI_SUCCESS_QUEUE_EMPTY);
    EXPECT_EQ(viDisableEvent(VI_NULL, VI_EVENT_SERVICE_REQ, VI_ALL_MECH), VI_ERROR_INV_OBJECT);
    EXPECT_EQ(viDiscardEvents(VI_NULL, VI_EVENT_SERVICE_REQ, VI_ALL_MECH), VI_ERROR_INV_OBJECT);
}

TEST_F(RefusedFunctions, WhatASocketsProtocolLacksIsNotSupported)
{
    ViUInt16 status = 17;
    EXPECT_EQ(viReadSTB(session_, &status), VI_ERROR_NSUP_OPER);
    EXPECT_EQ(viReadSTB(session_, nullptr), VI_ERROR_INV_PARAMETER);
    EXPECT_EQ(viReadSTB(manager_, &status), VI_ERROR_NSUP_OPER);
    EXPECT_EQ(status, 17);
    EXPECT_EQ(viAssertTrigger(session_, VI_TRIG_PROT_DEFAULT), VI_ERROR_NSUP_OPER);
    EXPECT_EQ(viAssertTrigger(session_, VI_TRIG_PROT_ON), VI_ERROR_INV_PROT);
    EXPECT_EQ(viGpibControlREN(session_, VI_GPIB_REN_ASSERT), VI_ERROR_NSUP_OPER);
    EXPECT_EQ(viGpibControlREN(session_, VI_GPIB_REN_ADDRESS_GTL + 1), VI_ERROR_INV_MODE);
}

TEST_F(RefusedFunctions, TerminateKnowsNeitherDegreesNorJobs)
{
    EXPECT_EQ(viTerminate(session_, 1, VI_NULL), VI_ERROR_INV_DEGREE);
    EXPECT_EQ(viTerminate(session_, VI_NULL, 1), VI_ERROR_INV_JOB_ID);
    EXPECT_EQ(viTerminate(manager_, VI_NULL, VI_NULL), VI_ERROR_NSUP_OPER);
    EXPECT_EQ(viTerminate(VI_NULL, VI_NULL, VI_NULL), VI_ERROR_INV_OBJECT);
}

TEST_F(RefusedFunctions, FlushDropsWhatHasArrivedAndRefusesUnknownBuffers)
{
    set(VI_ATTR_TERMCHAR_EN, VI_TRUE);
    for (const int mask : {VI_IO_IN_BUF, VI_IO_IN_BUF_DISCARD, VI_READ_BUF | VI_IO_IN_BUF_DISCARD}) {
        peer_.send("old\nolder\n");
        EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS_TERM_CHAR, "old\n"}));
        EXPECT_EQ(viFlush(session_, static_cast<ViUInt16>(mask)), VI_SUCCESS);
        peer_.send("new\n");
        EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS_TERM_CHAR, "new\n"}));
    }
    peer_.send("kept\n");
    for (const int mask :
         {VI_IO_OUT_BUF, VI_IO_OUT_BUF_DISCARD, VI_READ_BUF, VI_READ_BUF_DISCARD, VI_WRITE_BUF, VI_WRITE_BUF_DISCARD})
        EXPECT_EQ(viFlush(session_, static_cast<ViUInt16>(mask)), VI_SUCCESS);
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS_TERM_CHAR, "kept\n"}));
    for (const int mask : {0, 256, 0xFFFF})
        EXPECT_EQ(viFlush(session_, static_cast<ViUInt16>(mask)), VI_ERROR_INV_MASK);
    EXPECT_EQ(viFlush(manager_, VI_IO_IN_BUF), VI_ERROR_NSUP_OPER);
}

TEST_F(RefusedFunctions, OlderNameOpensAResourceManagerToo)
{
    ViSession manager = VI_NULL;
    ASSERT_EQ(viGetDefaultRM(&manager), VI_SUCCESS);
    EXPECT_EQ(viClose(manager), VI_SUCCESS);
}

} // namespace
