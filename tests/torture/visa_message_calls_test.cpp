// Every call that VISA makes to the host fails once, in the life of a session by HiSLIP and by VXI-11.
#include "tests/support/processes/own_network.h"
#include "tests/support/processes/virtual_instrument_process.h"
#include "tests/torture/failing_life.h"

#include <cerrno>
#include <vector>

namespace
{

constexpr ViUInt32 kTimeoutMs = 200;
/// What a protocol may take beyond the time-out: VXI-11's answers have a second, those to HiSLIP's locks two.
constexpr std::chrono::milliseconds kAllowance{3000};

/// It ends in a session that works, or one that says that its connection is lost.
class MessageLife final : public kvxtest::FailingLife
{
public:
    MessageLife(const std::string& resource, const kvxtest::FailingCall& failure)
        : FailingLife(resource, failure, kAllowance)
    {
    }

private:
    void use() override
    {
        ViUInt16 byte = 0;
        set(VI_ATTR_TMO_VALUE, kTimeoutMs);
        ask();
        timed("viReadSTB", kTimeoutMs, [&] { return viReadSTB(session(), &byte); });
        timed("viLock", kTimeoutMs,
              [this] { return viLock(session(), VI_EXCLUSIVE_LOCK, kTimeoutMs, VI_NULL, VI_NULL); });
        ask();
        timed("viUnlock", kTimeoutMs, [this] { return viUnlock(session()); });
        timed("viAssertTrigger", kTimeoutMs, [this] { return viAssertTrigger(session(), VI_TRIG_PROT_DEFAULT); });
        clear();
        expectUse();
    }

    /// Each question has an answer of its own.
    ViStatus ask()
    {
        const std::string level = std::to_string(++number_ % 30);
        const ViStatus status = write(":SOUR1:VOLT " + level + ";VOLT?\n", kTimeoutMs);
        return status < 0 ? status : read(level + ".000000\n", kTimeoutMs);
    }

    void clear()
    {
        timed("viClear", kTimeoutMs, [this] { return viClear(session()); });
    }

    void expectUse()
    {
        ViStatus status = ask();
        for (int trial = 0; trial < 2 && status < 0 && status != VI_ERROR_CONN_LOST; ++trial) {
            clear();
            status = ask();
        }
        if (status < 0 && status != VI_ERROR_CONN_LOST)
            blame("the session is of no use any more");
    }

    int number_ = 0;
};

void attackSessions(const std::string& resource, const char* name)
{
    kvxtest::Tally tally(name);
    std::vector<int> errors{EINTR, ECONNRESET, kShortTransfer};
    if (kvxtest::isWholeTorture())
        errors.insert(errors.end(), {EAGAIN, EMFILE});
    kvxtest::failEachCall(errors, tally, [&](const kvxtest::FailingCall& failure, auto look) {
        MessageLife life(resource, failure);
        life.run();
        look(life);
    });
}

TEST(VisaTorture, CallsOfAHislipSessionThatFailOnceLeaveNothingBehindAndNoWrongReply)
{
    const kvxtest::VirtualInstrumentProcess instrument({"--hislip", "0"});
    attackSessions("TCPIP0::127.0.0.1::hislip0," + std::to_string(instrument.hislipPort()) + "::INSTR",
                   "VISA: the n-th call of the system fails, HiSLIP");
}

TEST(VisaTorture, CallsOfAVxi11SessionThatFailOnceLeaveNothingBehindAndNoWrongReply)
{
    if (const std::string complaint = kvxtest::enterOwnNetwork(); !complaint.empty())
        GTEST_SKIP() << complaint;
    const kvxtest::VirtualInstrumentProcess instrument({"--vxi11"});
    attackSessions("TCPIP0::127.0.0.1::inst0::INSTR", "VISA: the n-th call of the system fails, VXI-11");
}

} // namespace
