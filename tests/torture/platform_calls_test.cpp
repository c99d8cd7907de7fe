#include "tests/support/driver/exported_calls.h"
#include "tests/torture/session_life.h"
#include "tests/torture/tally.h"

#include <chrono>
#include <iostream>
#include <stdexcept>

// Whole lives of sessions in which one call of the platform does not do what it should, again and again with the next
// call, until none is left.

namespace
{

using namespace kvxtest;

constexpr ViStatus kWarning = 0x3FFF0084;
constexpr ViStatus kMoreToCome = 0x3FFF0006;

/// What is wrong with one call.
struct Attack
{
    const char* name;
    /// The functions that it can happen to begin so.
    const char* functions;
    void (*plan)(std::size_t n);
};

const Attack kAttacks[] = {
    {"platform: the n-th call fails", "", [](std::size_t n) { failNthCall(n, kInjected); }},
    {"platform: the n-th call gives garbage", "", [](std::size_t n) { giveGarbageAtNthCall(n); }},
    {"platform: the n-th call gives null", "IviConfig_", [](std::size_t n) { giveNullAtNthCall(n); }},
    {"platform: the n-th call is late", "vi", [](std::size_t n) { delayNthCall(n); }},
    {"platform: the n-th call warns", "", [](std::size_t n) { failNthCall(n, kWarning); }},
    {"platform: the n-th call tells of more", "vi", [](std::size_t n) { failNthCall(n, kMoreToCome); }},
};

void PrintTo(const Attack& attack, std::ostream* stream)
{
    *stream << attack.name;
}

void prepare(const Scenario& scenario)
{
    reset();
    answer("*IDN?", "Tessaro Instruments,KVX2833T,SN1,V2.34");
    answerExportedCalls();
    for (const auto& [line, reply] : preparedReplies())
        answer(line, reply);
    if (std::string(scenario.resource) == "BenchSupply") {
        StoredSoftwareModule& module = configurationStore().softwareModules.emplace_back();
        module.physicalNames = {{"OutputChannel1"}, {"OutputChannel2"}};
        StoredDriverSession& entry = configurationStore().furtherSessions.emplace_back();
        entry.name = "BenchSupply";
        entry.ioResourceDescriptor = "TCPIP0::host::1::SOCKET";
        entry.virtualNames = {{"Core", "OutputChannel1", {}}, {"Rail", "OutputChannel", {{1, 3, 2}}}};
        entry.settings() = {booleanComponent("Trace", VI_TRUE), stringComponent("Station", "bench")};
        entry.softwareModule = "KVX2800T";
    }
}

/// A life and what is seen of it from outside.
class Life
{
public:
    /// @param injected  the call that is attacked, as the log of an undisturbed life has it; empty in that
    Life(const Scenario& scenario, const std::vector<Step>& steps, std::string injected, Tally& tally)
        : scenario_(scenario), steps_(steps), injected_(std::move(injected)), tally_(tally)
    {
    }

    void live()
    {
        begin();
        for (std::size_t i = 0; vi_ != VI_NULL && i < steps_.size(); ++i) {
            if (scenario_.isReplaced && i == steps_.size() / 2)
                take(replacement());
            take(steps_[i]);
        }
        end();
    }

private:
    static Step replacement()
    {
        Step step;
        step.name = "replacement";
        step.call = [](ViSession vi, ViStatus& status) {
            status = KVX2800T_SetAttributeViBoolean(vi, "", KVX2800T_ATTR_SIMULATE, VI_TRUE);
            return true;
        };
        step.mayThrow = true;
        return step;
    }

    bool isInjected(std::string_view function) const { return injected_.starts_with(function); }

    void wrong(const std::string& step, const std::string& what) { tally_.expect(false, step + ": " + what); }

    void leak(const std::string& what)
    {
        ++tally_.leaks;
        ADD_FAILURE() << what;
    }

    void begin()
    {
        std::string resource = scenario_.resource;
        try {
            const ViStatus status =
                KVX2800T_InitWithOptions(resource.data(), VI_FALSE, scenario_.reset, scenario_.options, &vi_);
            isBorn_ = status >= 0;
            if (status < 0 && vi_ != VI_NULL && !isInjected("IviSession_GetDataPtr"))
                wrong("init", "fails and gives a session");
            if (status < 0 && !isInjected("IviSession_") && errorOf(VI_NULL).code != status)
                wrong("init", "fails without a record");
        } catch (const std::invalid_argument& error) {
            thrown("init", error.what());
        } catch (const std::out_of_range& error) {
            thrown("init", error.what());
        } catch (...) {
            ++tally_.crashes;
        }
        first_ = errorOf(vi_).code;
    }

    void thrown(const std::string& step, const char* what)
    {
        if (!scenario_.forgives())
            return;
        ++tally_.crashes;
        ADD_FAILURE() << step << " throws " << what;
    }

    void take(const Step& step)
    {
        ViStatus status = VI_SUCCESS;
        bool hasThrown = false;
        const auto begin = std::chrono::steady_clock::now();
        try {
            const bool isRight = step.call(vi_, status);
            if (!isRight && scenario_.isAnswered && scenario_.forgives())
                wrong(step.name, "an answer to another question");
        } catch (const std::invalid_argument& error) {
            hasThrown = true;
            thrown(step.name, error.what());
        } catch (const std::out_of_range& error) {
            hasThrown = true;
            thrown(step.name, error.what());
        } catch (...) {
            ++tally_.crashes;
            ADD_FAILURE() << step.name << " throws";
        }
        // The fakes never wait.
        tally_.hangs += std::chrono::steady_clock::now() - begin > std::chrono::seconds(3) ? 1 : 0;
        if (hasThrown) {
            if (!step.mayThrow)
                ++tally_.crashes;
            KVX2800T_UnlockSession(vi_, nullptr);
        }
        check(step, hasThrown ? VI_SUCCESS : status);
    }

    /// The first failure since the record was taken last is on record, and no other.
    void check(const Step& step, ViStatus status)
    {
        const ViStatus record = errorOf(vi_).code;
        const bool isRecorded = status < 0 && !step.recordsNothing && status != kInvalidSession;
        if (step.takesError)
            first_ = record;
        else if (isRecorded && first_ >= 0)
            first_ = status;
        // The session service itself may have kept a record away.
        if (record != first_ && !isInjected("IviSession_"))
            wrong(step.name, "record " + std::to_string(record) + ", status " + std::to_string(status));
        first_ = record;
        if (lockDepth(vi_) != 0 && !isInjected("IviSession_Unlock"))
            leak(step.name + " leaves the session locked");
        while (lockDepth(vi_) != 0)
            IviSession_Unlock(vi_, nullptr);
    }

    void end()
    {
        const ViSession handle = vi_;
        KVX2800T_close(handle);
        const ViStatus again = KVX2800T_close(handle);
        if (again < 0 && again != kInvalidSession && !isInjected("IviSession_"))
            wrong("second close", std::to_string(again));
        if (openVisaSessions() != 0 && !isInjected("viClose"))
            leak("VISA sessions");
        if (openConfigHandles() != 0 && !isInjected("IviConfig_DisposeHandle") && !isInjected("IviConfig_Close"))
            leak("handles of the configuration server");
        // The handle of a failed init stays with the session service.
        if (isBorn_ && openIviSessions() != 0 && !isInjected("IviSession_"))
            leak("IVI sessions");
    }

    const Scenario& scenario_;
    const std::vector<Step>& steps_;
    std::string injected_;
    Tally& tally_;
    ViSession vi_ = VI_NULL;
    bool isBorn_ = false;
    ViStatus first_ = VI_SUCCESS;
};

class PlatformCalls : public testing::TestWithParam<Attack>
{
public:
    void TearDown() override { reset(); }

    void attack(const Scenario& scenario, const std::vector<Step>& steps)
    {
        prepare(scenario);
        Life(scenario, steps, "", tally).live();
        const std::vector<std::string> undisturbed = calls();
        for (std::size_t n = 1; n <= undisturbed.size(); n += stride()) {
            if (!undisturbed[n - 1].starts_with(GetParam().functions))
                continue;
            SCOPED_TRACE(undisturbed[n - 1] + ", call " + std::to_string(n));
            prepare(scenario);
            GetParam().plan(n);
            Life(scenario, steps, undisturbed[n - 1], tally).live();
            EXPECT_TRUE(failureHappened());
            ++tally.injections;
            if (HasFailure())
                return;
        }
    }

    /// How many calls on the next one is that is attacked: in a short run two to four.
    std::size_t stride() { return isWholeTorture() ? 1 : 2 + ++steps_ % 3; }

    Tally tally{GetParam().name};

private:
    std::size_t steps_ = 0;
};

TEST_P(PlatformCalls, LeaveARecordAndNothingElse)
{
    std::vector<Step> all = classSteps();
    for (const auto& more : {instrumentSteps(isWholeTorture()), levelSteps()})
        all.insert(all.end(), more.begin(), more.end());
    for (const Scenario& scenario : scenarios()) {
        SCOPED_TRACE(scenario.name);
        attack(scenario, all);
    }
}

INSTANTIATE_TEST_SUITE_P(Attacks, PlatformCalls, testing::ValuesIn(kAttacks),
                         [](const auto& attack) { return std::string(1, static_cast<char>('A' + attack.index)); });

} // namespace
