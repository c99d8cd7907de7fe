// Every call that VISA makes to the host fails once, in the life of a session by HiSLIP and by VXI-11.
#include "tests/support/failing_calls.h"
#include "tests/support/open_descriptors.h"
#include "tests/support/processes/own_network.h"
#include "tests/support/processes/virtual_instrument_process.h"
#include "tests/torture/tally.h"

#include <visa.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace
{

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr ViUInt32 kTimeoutMs = 200;
constexpr ViUInt32 kOpenTimeoutMs = 2000;
/// What a protocol may take beyond the time-out: VXI-11's answers have a second, those to HiSLIP's locks two.
constexpr milliseconds kAllowance{3000};

/// One call that is to fail.
struct Failure
{
    unsigned long call = 0;
    int error = 0;
};

/// The life of a session in which one call fails. It ends in a session that works, or one that says that its
/// connection is lost.
class MessageLife
{
public:
    MessageLife(std::string resource, const Failure& failure) : resource_(std::move(resource)), failure_(failure) {}

    void run()
    {
        kvxArmFailingCall(failure_.call, failure_.error);
        open();
        if (session_ != VI_NULL) {
            use();
            expectUse();
        }
        close();
        kvxDisarmFailingCall();
    }

    bool wasInjected() const { return wasInjected_; }
    bool hung() const { return hung_; }
    /// What was wrong; empty when all was well.
    const std::string& fault() const { return fault_; }

private:
    /// Runs a call of VISA, and looks at how long it takes and what it returns.
    template <class Call>
    ViStatus timed(ViUInt32 timeoutMs, Call call)
    {
        const auto begin = steady_clock::now();
        const ViStatus status = call();
        if (steady_clock::now() - begin > milliseconds(timeoutMs) + kAllowance)
            hung_ = true;
        wasInjected_ = wasInjected_ || kvxFailedCall() != nullptr;
        std::array<ViChar, 256> text{};
        if (viStatusDesc(manager_, status, text.data()) != VI_SUCCESS)
            blame("a status that is not VISA's");
        return status;
    }

    void blame(const std::string& fault)
    {
        if (fault_.empty())
            fault_ = fault + " (" + resource_ + ", call " + std::to_string(failure_.call) + " of " +
                     (kvxFailedCall() == nullptr ? "none" : kvxFailedCall()) + ", error " +
                     std::to_string(failure_.error) + ')';
    }

    void open()
    {
        timed(0, [this] { return viOpenDefaultRM(&manager_); });
        if (manager_ == VI_NULL)
            return;
        timed(kOpenTimeoutMs,
              [this] { return viOpen(manager_, resource_.c_str(), VI_NULL, kOpenTimeoutMs, &session_); });
        if (session_ != VI_NULL)
            viSetAttribute(session_, VI_ATTR_TMO_VALUE, kTimeoutMs);
    }

    /// Each question has an answer of its own.
    ViStatus ask()
    {
        const std::string level = std::to_string(++number_ % 30);
        const std::string question = ":SOUR1:VOLT " + level + ";VOLT?\n";
        ViUInt32 count = 0;
        ViStatus status = timed(kTimeoutMs, [&] {
            return viWrite(session_, reinterpret_cast<ViConstBuf>(question.data()),
                           static_cast<ViUInt32>(question.size()), &count);
        });
        if (count > question.size())
            blame("viWrite counted more than there was");
        if (status < 0)
            return status;
        std::array<ViByte, 64> reply{};
        status = timed(kTimeoutMs, [&] { return viRead(session_, reply.data(), reply.size(), &count); });
        if (count > reply.size())
            blame("viRead counted more than there was room for");
        else if (const std::string text(reply.begin(), reply.begin() + count);
                 status >= 0 && text != level + ".000000\n")
            blame("question " + level + " got " + text);
        return status;
    }

    void use()
    {
        ViUInt16 byte = 0;
        ask();
        timed(kTimeoutMs, [&] { return viReadSTB(session_, &byte); });
        timed(kTimeoutMs, [this] { return viLock(session_, VI_EXCLUSIVE_LOCK, kTimeoutMs, VI_NULL, VI_NULL); });
        ask();
        timed(kTimeoutMs, [this] { return viUnlock(session_); });
        timed(kTimeoutMs, [this] { return viAssertTrigger(session_, VI_TRIG_PROT_DEFAULT); });
        timed(kTimeoutMs, [this] { return viClear(session_); });
    }

    void expectUse()
    {
        ViStatus status = ask();
        for (int trial = 0; trial < 2 && status < 0 && status != VI_ERROR_CONN_LOST; ++trial) {
            timed(kTimeoutMs, [this] { return viClear(session_); });
            status = ask();
        }
        if (status < 0 && status != VI_ERROR_CONN_LOST)
            blame("the session is of no use any more");
    }

    void close()
    {
        for (const ViSession session : {session_, manager_}) {
            if (session != VI_NULL && timed(0, [session] { return viClose(session); }) < 0)
                blame("viClose failed");
        }
    }

    const std::string resource_;
    const Failure failure_;
    ViSession manager_ = VI_NULL;
    ViSession session_ = VI_NULL;
    int number_ = 0;
    bool wasInjected_ = false;
    bool hung_ = false;
    std::string fault_;
};

/// Fails every call once with each error, and adds what went wrong.
void attackSessions(const std::string& resource, kvxtest::Tally& tally)
{
    // What the library keeps for good is there after the first session.
    MessageLife first(resource, {});
    first.run();
    ASSERT_EQ(first.fault(), "");
    const std::size_t before = kvxtest::openDescriptors();
    std::vector<int> errors{EINTR, ECONNRESET, kShortTransfer};
    if (kvxtest::isWholeTorture())
        errors.insert(errors.end(), {EAGAIN, EMFILE});
    for (const int error : errors) {
        bool isOver = false;
        for (unsigned long call = 1; !isOver; ++call) {
            MessageLife life(resource, {call, error});
            life.run();
            isOver = !life.wasInjected();
            tally.injections += isOver ? 0 : 1;
            tally.hangs += life.hung() ? 1 : 0;
            tally.expect(life.fault().empty(), life.fault());
            const bool leaks = kvxtest::openDescriptors() != before;
            tally.leaks += leaks ? 1 : 0;
            ASSERT_FALSE(leaks) << "call " << call << ", error " << error;
        }
    }
}

TEST(VisaTorture, CallsOfAHislipSessionThatFailOnceLeaveNothingBehindAndNoWrongReply)
{
    const kvxtest::VirtualInstrumentProcess instrument({"--hislip", "0"});
    kvxtest::Tally tally("VISA: the n-th call of the system fails, HiSLIP");
    attackSessions("TCPIP0::127.0.0.1::hislip0," + std::to_string(instrument.hislipPort()) + "::INSTR", tally);
}

TEST(VisaTorture, CallsOfAVxi11SessionThatFailOnceLeaveNothingBehindAndNoWrongReply)
{
    if (const std::string complaint = kvxtest::enterOwnNetwork(); !complaint.empty())
        GTEST_SKIP() << complaint;
    const kvxtest::VirtualInstrumentProcess instrument({"--vxi11"});
    kvxtest::Tally tally("VISA: the n-th call of the system fails, VXI-11");
    attackSessions("TCPIP0::127.0.0.1::inst0::INSTR", tally);
}

} // namespace
