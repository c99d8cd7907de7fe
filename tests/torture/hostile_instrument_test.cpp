#include "tests/torture/hostile_instrument.h"

#include "tests/support/open_descriptors.h"
#include "tests/torture/tally.h"

#include <KVX2800T.h>

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <mutex>
#include <thread>
#include <vector>

// Sessions on instruments that are late, talk too much or too little, and go away, in each phase of a session.

namespace kvxtest
{
namespace
{

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kTimeout(100);
constexpr const char* kPlain = "DriverSetup=IoTimeout:100";
constexpr const char* kForgiving = "DriverSetup=Profile:Bench,IoTimeout:100";

/// The time-out and a second, and as much again for a busy machine; beyond that, a call that brings a session into step
/// again has many time-outs.
constexpr milliseconds kHang = 3 * (kTimeout + milliseconds(1000));
constexpr milliseconds kForgivingHang = 30 * kTimeout + kHang;

struct Attack
{
    std::string name;
    Malice malice;
};

Malice lateBy(milliseconds delay)
{
    return [delay](HostileLine& line, const std::string& reply) {
        std::this_thread::sleep_for(delay);
        line.send(reply);
    };
}

void trickle(HostileLine& line, const std::string& reply)
{
    for (const char byte : reply) {
        std::this_thread::sleep_for(kTimeout / 4);
        line.send({byte});
    }
}

/// What no end of a line ends.
void flood(HostileLine& line, const std::string& /*reply*/)
{
    const std::string much(65536, '7');
    for (const auto end = Clock::now() + 5 * kTimeout; Clock::now() < end;) {
        line.send(much.substr(0, 4096));
        std::this_thread::sleep_for(milliseconds(1));
    }
}

std::vector<Attack> attacks()
{
    std::vector<Attack> all;
    for (const int percent : {50, 90, 100, 110, 150, 200, 300, 510})
        all.push_back({"late by " + std::to_string(percent) + "% of the time-out", lateBy(kTimeout * percent / 100)});
    const auto sending = [](auto change) {
        return [change](HostileLine& line, const std::string& reply) { line.send(change(reply)); };
    };
    all.push_back({"mute", [](HostileLine&, const std::string&) {}});
    all.push_back({"half", sending([](const std::string& reply) { return reply.substr(0, reply.size() / 2); })});
    all.push_back({"over-long", sending([](const std::string& reply) { return std::string(5000, '1') + reply; })});
    all.push_back({"with NUL bytes", sending([](std::string reply) { return reply.insert(2, 3, '\0'); })});
    all.push_back({"NUL bytes alone", sending([](const std::string&) { return std::string(7, '\0') + '\n'; })});
    all.push_back({"empty", sending([](const std::string&) { return std::string("\n"); })});
    all.push_back({"trickle", trickle});
    all.push_back({"flood", flood});
    all.push_back({"reset", [](HostileLine& line, const std::string&) { line.hangUp(true); }});
    all.push_back({"close", [](HostileLine& line, const std::string&) { line.hangUp(false); }});
    all.push_back({"half and close", [](HostileLine& line, const std::string& reply) {
                       line.send(reply.substr(0, reply.size() / 2));
                       line.hangUp(false);
                   }});
    return all;
}

struct Case
{
    const Attack* attack;
    std::unique_ptr<HostileLine> (*line)();
    const char* options;
    std::size_t attackedQuery;

    bool forgives() const { return options == kForgiving; }
};

/// The life of a session on a hostile instrument.
class Life
{
public:
    explicit Life(const Case& hostile)
        : case_(hostile), instrument_(hostile.line(), hostile.attackedQuery, hostile.attack->malice)
    {
    }

    void live()
    {
        std::string resource = instrument_.resource();
        timed([&] { return KVX2800T_InitWithOptions(resource.data(), VI_FALSE, VI_FALSE, case_.options, &vi_); });
        constexpr int kRounds = 3;
        for (int round = 0; vi_ != VI_NULL && round < kRounds; ++round)
            for (const int channel : {3, 4})
                ask(channel);
        const ViSession handle = vi_;
        timed([handle] { return KVX2800T_close(handle); });
    }

    bool hung = false;
    std::string fault;

private:
    template <class Call>
    ViStatus timed(Call call)
    {
        const auto begin = Clock::now();
        const ViStatus status = call();
        hung = hung || Clock::now() - begin > (case_.forgives() ? kForgivingHang : kHang);
        return status;
    }

    void ask(int channel)
    {
        const std::string name = "OutputChannel" + std::to_string(channel);
        const std::size_t before = instrument_.queries();
        const bool allHasArrived = isQuiet();
        ++asked_;
        ViReal64 level = 0.0;
        bool hasThrown = false;
        const ViStatus status = timed([&]() -> ViStatus {
            try {
                return KVX2800T_GetAttributeViReal64(vi_, name.c_str(), KVX2800T_ATTR_VOLTAGE_LEVEL, &level);
            } catch (const std::exception& error) {
                hasThrown = true;
                if (case_.forgives())
                    fault += std::string(" throws ") + error.what();
                KVX2800T_UnlockSession(vi_, nullptr);
                return KVX2800T_ERROR_IO;
            }
        });
        if (status == VI_SUCCESS)
            check(channel, before, level, allHasArrived);
        if (status < 0 && !hasThrown)
            checkRecord(status);
        if (status != VI_SUCCESS)
            letArrive();
    }

    /// A reply must be to a query of this call. Without FreshReplies one may be older that comes only now, or that
    /// nobody could know to be wrong: no read has failed.
    void check(int channel, std::size_t before, double level, bool allHasArrived)
    {
        const LevelReply reply = HostileInstrument::read(level);
        const bool isOwn = reply.channel == channel && reply.number > before;
        const bool isExcused = !case_.forgives() && (!allHasArrived || !hasFailed_ || isTooMuch());
        if (!isOwn && !isExcused && !isMangled())
            fault += " " + std::to_string(level) + " for channel " + std::to_string(channel) + " after " +
                     std::to_string(before) + " queries";
    }

    /// More than fits into the buffer of a read that succeeds; the rest is the next one's.
    bool isTooMuch() const { return case_.attack->name == "over-long" || case_.attack->name == "flood"; }

    /// What the instrument has made of its own reply, nobody can tell from another one.
    bool isMangled() const
    {
        const std::string& name = case_.attack->name;
        return instrument_.queries() == case_.attackedQuery && (name == "over-long" || name.find("NUL") == 5);
    }

    void checkRecord(ViStatus status)
    {
        ViStatus code = VI_SUCCESS;
        std::array<ViChar, 1024> text{};
        KVX2800T_GetError(vi_, &code, static_cast<ViInt32>(text.size()), text.data());
        if (code != status)
            fault += " fails with " + std::to_string(status) + " and records " + std::to_string(code);
    }

    /// After a failure: until all that the attack has sent is there.
    void letArrive()
    {
        hasFailed_ = true;
        const auto end = Clock::now() + 6 * kTimeout;
        while (!isQuiet() && Clock::now() < end)
            std::this_thread::sleep_for(milliseconds(5));
        std::this_thread::sleep_for(milliseconds(50));
    }

    /// Whether each query of a plain session has come and is answered.
    bool isQuiet() const { return instrument_.queries() >= asked_ && instrument_.answered() == instrument_.queries(); }

    const Case case_;
    HostileInstrument instrument_;
    ViSession vi_ = VI_NULL;
    bool hasFailed_ = false;
    /// The queries of a session that is not brought into step: one for its identity, then one for each call.
    std::size_t asked_ = 1;
};

class HostileInstruments : public testing::TestWithParam<std::unique_ptr<HostileLine> (*)()>
{
public:
    /// Lives are mostly waiting: many at a time.
    void liveAll(const std::vector<Case>& cases)
    {
        constexpr std::size_t kAtOnce = 16;
        std::vector<std::thread> threads;
        for (std::size_t i = 0; i < kAtOnce; ++i)
            threads.emplace_back([&] { liveSome(cases); });
        for (std::thread& thread : threads)
            thread.join();
    }

    Tally tally{GetParam() == &hostileSocket ? "instrument: hostile, over a socket"
                                             : "instrument: hostile, over a serial line"};

private:
    void liveSome(const std::vector<Case>& cases)
    {
        for (;;) {
            const std::size_t i = next_++;
            if (i >= cases.size())
                return;
            Life life(cases[i]);
            life.live();
            const std::lock_guard guard(mutex_);
            ++tally.injections;
            tally.hangs += life.hung ? 1 : 0;
            tally.expect(life.fault.empty(), cases[i].attack->name + " at query " +
                                                 std::to_string(cases[i].attackedQuery) + ", " + cases[i].options +
                                                 ":" + life.fault);
        }
    }

    std::atomic<std::size_t> next_ = 0;
    std::mutex mutex_;
};

TEST_P(HostileInstruments, GetNoReplyUsedForAnotherQuery)
{
    const std::vector<Attack> all = attacks();
    std::vector<Case> cases;
    for (const Attack& attack : all)
        for (const char* const options : {kPlain, kForgiving})
            for (const std::size_t query : {1U, 2U, 3U, 5U})
                cases.push_back({&attack, GetParam(), options, query});
    // What the libraries keep for the rest of the process they take now; no query is attacked.
    Life({all.data(), GetParam(), kPlain, 0}).live();
    const std::size_t before = openDescriptors();
    liveAll(cases);
    tally.leaks = openDescriptors() == before ? 0 : 1;
}

INSTANTIATE_TEST_SUITE_P(Lines, HostileInstruments, testing::Values(&hostileSocket, &hostileTerminal),
                         [](const auto& line) { return std::string(line.index == 0 ? "Socket" : "Terminal"); });

} // namespace
} // namespace kvxtest
