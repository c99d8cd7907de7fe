#pragma once

#include "tests/support/failing_calls.h"
#include "tests/support/open_descriptors.h"
#include "tests/torture/tally.h"

#include <visa.h>

#include <array>
#include <chrono>
#include <span>
#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace kvxtest
{

/// A call of the system that is to fail: the n-th, from 1 on; 0 for none.
struct FailingCall
{
    unsigned long number = 0;
    int error = 0;
};

/// The life of a session of VISA in which one call of the system fails. A session that could be opened is used and
/// closed; what each call of VISA takes and returns is looked at.
class FailingLife
{
public:
    /// @param allowance what a call may take beyond the time-out that holds for it
    FailingLife(std::string resource, const FailingCall& failure, std::chrono::milliseconds allowance)
        : resource_(std::move(resource)), failure_(failure), allowance_(allowance)
    {
    }
    FailingLife(const FailingLife&) = delete;
    FailingLife& operator=(const FailingLife&) = delete;

    void run()
    {
        kvxArmFailingCall(failure_.number, failure_.error);
        open();
        if (session_ != VI_NULL)
            use();
        close();
        kvxDisarmFailingCall();
        expectNothingOpen();
    }

    /// Whether there were so many calls that one has failed.
    bool wasInjected() const { return wasInjected_; }
    bool hung() const { return hung_; }
    /// What was wrong first; empty when all was well.
    const std::string& fault() const { return fault_; }

protected:
    ~FailingLife() = default;

    virtual void use() = 0;

    ViSession session() const { return session_; }

    /// Runs a call of VISA, and looks at how long it takes and what it returns.
    template <class Call>
    ViStatus timed(const char* name, ViUInt32 timeoutMs, Call call)
    {
        const auto begin = std::chrono::steady_clock::now();
        const ViStatus status = call();
        if (std::chrono::steady_clock::now() - begin > std::chrono::milliseconds(timeoutMs) + allowance_)
            hung_ = true;
        wasInjected_ = wasInjected_ || kvxFailedCall() != nullptr;
        std::array<ViChar, 256> text{};
        if (viStatusDesc(manager_, status, text.data()) != VI_SUCCESS)
            blame(std::string(name) + " gave a status that is not VISA's");
        return status;
    }

    void blame(const std::string& fault)
    {
        if (fault_.empty())
            fault_ = fault + " (" + resource_ + ", call " + std::to_string(failure_.number) + " of " +
                     (kvxFailedCall() == nullptr ? "none" : kvxFailedCall()) + ", error " +
                     std::to_string(failure_.error) + ')';
    }

    void set(ViAttr attribute, ViAttrState value)
    {
        timed("viSetAttribute", 0, [=, this] { return viSetAttribute(session_, attribute, value); });
    }

    /// Writes a message; what was written is counted right.
    ViStatus write(const std::string& message, ViUInt32 timeoutMs)
    {
        ViUInt32 written = 0;
        const ViStatus status = timed("viWrite", timeoutMs, [&] {
            return viWrite(session_, reinterpret_cast<ViConstBuf>(message.data()),
                           static_cast<ViUInt32>(message.size()), &written);
        });
        if (written > message.size())
            blame("viWrite counted more than there was");
        return status;
    }

    /// Reads; a reply that comes must be `expected`.
    ViStatus read(const std::string& expected, ViUInt32 timeoutMs)
    {
        std::array<ViByte, 64> buffer{};
        ViUInt32 count = 0;
        const ViStatus status = timed("viRead", timeoutMs, [&] {
            return viRead(session_, buffer.data(), static_cast<ViUInt32>(buffer.size()), &count);
        });
        if (count > buffer.size()) {
            blame("viRead counted more than there was room for");
            return VI_ERROR_SYSTEM_ERROR;
        }
        const std::string reply(buffer.begin(), buffer.begin() + count);
        if (status >= 0 && reply != expected)
            blame("in place of " + expected + " came " + reply);
        return status;
    }

private:
    static constexpr ViUInt32 kOpenTimeoutMs = 2000;

    void open()
    {
        timed("viOpenDefaultRM", 0, [this] { return viOpenDefaultRM(&manager_); });
        if (manager_ != VI_NULL)
            timed("viOpen", kOpenTimeoutMs,
                  [this] { return viOpen(manager_, resource_.c_str(), VI_NULL, kOpenTimeoutMs, &session_); });
    }

    void close()
    {
        for (const ViSession session : {session_, manager_}) {
            if (session != VI_NULL && timed("viClose", 0, [session] { return viClose(session); }) < 0)
                blame("viClose failed");
        }
    }

    void expectNothingOpen()
    {
        ViUInt32 value = 0;
        for (const ViSession session : {session_, manager_}) {
            if (viGetAttribute(session, VI_ATTR_RM_SESSION, &value) != VI_ERROR_INV_OBJECT)
                blame("a session stayed open");
        }
    }

    const std::string resource_;
    const FailingCall failure_;
    const std::chrono::milliseconds allowance_;
    ViSession manager_ = VI_NULL;
    ViSession session_ = VI_NULL;
    bool wasInjected_ = false;
    bool hung_ = false;
    std::string fault_;
};

/// Fails every call once with each error, in lives that live(failingCall, look) leads: it calls look(life) at their
/// end. Adds what went wrong.
template <class Live>
void failEachCall(std::span<const int> errors, Tally& tally, Live live)
{
    // What the library keeps for good is there after the first session.
    live(FailingCall{}, [](const FailingLife& life) { EXPECT_EQ(life.fault(), ""); });
    const std::size_t before = openDescriptors();
    for (const int error : errors) {
        bool isOver = false;
        for (unsigned long number = 1; !isOver; ++number) {
            live(FailingCall{number, error}, [&](const FailingLife& life) {
                isOver = !life.wasInjected();
                tally.injections += isOver ? 0 : 1;
                tally.hangs += life.hung() ? 1 : 0;
                tally.expect(life.fault().empty(), life.fault());
            });
            const bool leaks = openDescriptors() != before;
            tally.leaks += leaks ? 1 : 0;
            ASSERT_FALSE(leaks) << "call " << number << ", error " << error;
        }
    }
}

} // namespace kvxtest
