#include "tools/kvx2800t/panel/hub.h"

#include "tests/support/processes/virtual_instrument_process.h"

#include <algorithm>
#include <condition_variable>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

using namespace panel;
using kvxtest::VirtualInstrumentProcess;

namespace
{

/// Keeps what the hub tells, and waits for it.
class Recorder : public HubListener
{
    // In front of what returns what they do.
    template <class Change>
    void record(Change change)
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        change();
        changed_.notify_all();
    }

    template <class Look>
    auto await(Look look)
    {
        std::unique_lock<std::mutex> lock(mutex_);
        auto found = look();
        const auto until = std::chrono::steady_clock::now() + kvxtest::kHangGuard;
        while (!found) {
            if (changed_.wait_until(lock, until) == std::cv_status::timeout)
                throw std::runtime_error("the hub does not say it");
            found = look();
        }
        return *found;
    }

public:
    void onSnapshot(const Snapshot& snapshot) override
    {
        record([&] { snapshots_.push_back(snapshot); });
    }
    void onErrors(const ErrorReport& report) override
    {
        record([&] { errors_.push_back(report); });
    }
    void onResult(PageId page, const Result& result) override
    {
        record([&] { results_[{page, result.id}] = result; });
    }
    void onLines(PageId page, const Lines& lines) override
    {
        record([&] { lines_[{page, lines.id}] = lines; });
    }
    void onList(const LoadedList& list) override
    {
        record([&] { lists_.push_back(list); });
    }

    /// The first snapshot, of those from `sequence` on, that is as wanted.
    Snapshot snapshot(const std::function<bool(const Snapshot&)>& wanted, std::uint64_t sequence = 0)
    {
        return await([&]() -> std::optional<Snapshot> {
            for (const Snapshot& snapshot : snapshots_)
                if (snapshot.sequence >= sequence && wanted(snapshot))
                    return snapshot;
            return std::nullopt;
        });
    }

    Snapshot connected()
    {
        return snapshot([](const Snapshot& told) { return told.instrument.has_value(); });
    }

    Result result(std::int64_t id, PageId page = 1)
    {
        return await([&]() -> std::optional<Result> {
            const auto found = results_.find({page, id});
            return found == results_.end() ? std::nullopt : std::optional(found->second);
        });
    }

    Lines lines(std::int64_t id, PageId page = 1)
    {
        return await([&]() -> std::optional<Lines> {
            const auto found = lines_.find({page, id});
            return found == lines_.end() ? std::nullopt : std::optional(found->second);
        });
    }

    ErrorReport errors(const std::function<bool(const ErrorReport&)>& wanted)
    {
        return await([&]() -> std::optional<ErrorReport> {
            const auto found = std::find_if(errors_.begin(), errors_.end(), wanted);
            return found == errors_.end() ? std::nullopt : std::optional(*found);
        });
    }

    LoadedList list(std::size_t index = 0)
    {
        return await([&]() -> std::optional<LoadedList> {
            return lists_.size() <= index ? std::nullopt : std::optional(lists_[index]);
        });
    }

    LinkState lastLink()
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        return snapshots_.back().link.state;
    }

    std::uint64_t lastSequence()
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        return snapshots_.empty() ? 0 : snapshots_.back().sequence;
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<Snapshot> snapshots_;
    std::vector<ErrorReport> errors_;
    std::map<std::pair<PageId, std::int64_t>, Result> results_;
    std::map<std::pair<PageId, std::int64_t>, Lines> lines_;
    std::vector<LoadedList> lists_;
};

Action action(ActionKind kind, int channel = 1, double value = 0.0, bool on = false)
{
    Action made;
    made.kind = kind;
    made.channel = channel;
    made.value = value;
    made.on = on;
    return made;
}

HubSettings settings(const std::string& resource)
{
    HubSettings made;
    made.resource = resource;
    made.period = std::chrono::milliseconds(20);
    made.retry = std::chrono::milliseconds(50);
    made.silence = std::chrono::milliseconds(500);
    return made;
}

const ChannelState& channelOf(const Snapshot& snapshot, int channel)
{
    return snapshot.instrument->channels.at(static_cast<std::size_t>(channel - 1));
}

/// A hub on a simulated instrument.
class PanelHub : public testing::Test
{
public:
    Result done(const Action& asked)
    {
        hub.submit(1, {++id, asked});
        return recorder.result(id);
    }

    Recorder recorder;
    Hub hub{settings(""), recorder};
    std::int64_t id = 0;
};

/// A hub on a virtual instrument in a process of its own.
class PanelHubOnTcp : public testing::Test
{
public:
    Result done(const Action& asked)
    {
        hub.submit(1, {++id, asked});
        return recorder.result(id);
    }

    VirtualInstrumentProcess instrument;
    Recorder recorder;
    Hub hub{settings(instrument.resource()), recorder};
    std::int64_t id = 0;
};

} // namespace

TEST_F(PanelHub, SaysThatItConnectsAndThenWhatTheInstrumentIs)
{
    const Snapshot first = recorder.snapshot([](const Snapshot&) { return true; });
    EXPECT_EQ(first.sequence, 1U);
    EXPECT_EQ(first.link.state, LinkState::Connecting);
    EXPECT_FALSE(first.instrument.has_value());
    const Snapshot state = recorder.connected();
    EXPECT_EQ(state.link.state, LinkState::Connected);
    EXPECT_EQ(state.instrument->identity.model, "KVX2833T");
    EXPECT_EQ(state.instrument->sourceMode, kvx2800t::SourceMode::normal);
    EXPECT_EQ(channelOf(state, 1).settings.maxVoltage, 33.0);
    EXPECT_EQ(channelOf(state, 4).settings.maxCurrent, 10.5);
    EXPECT_EQ(channelOf(state, 5).settings.maxVoltage, 66.0);
}

TEST_F(PanelHub, ALevelThatIsSetIsReadBackAndMeasured)
{
    const Result set = done(action(ActionKind::SetVoltage, 3, 2.5));
    EXPECT_TRUE(set.ok);
    EXPECT_FALSE(set.code.has_value());
    EXPECT_TRUE(done(action(ActionKind::SetOutput, 3, 0.0, true)).ok);
    const Snapshot state = recorder.snapshot([](const Snapshot& told) {
        return told.instrument && channelOf(told, 3).outputEnabled && channelOf(told, 3).reading.volts > 2.0;
    });
    EXPECT_EQ(channelOf(state, 3).settings.voltageLevel, 2.5);
    EXPECT_DOUBLE_EQ(channelOf(state, 3).reading.volts, 2.5);
    EXPECT_TRUE(channelOf(state, 3).condition.constantVoltage());
    const Lines lines = recorder.lines(1);
    EXPECT_EQ(lines.scpi, (std::vector<std::string>{"> :SOUR3:VOLT 2.500000"}));
    EXPECT_EQ(lines.c.at(0), "KVX2800T_ConfigureVoltageLevel(vi, \"OutputChannel3\", 2.5);");
    EXPECT_EQ(lines.python.at(0), "supply.channels[\"CH3\"].voltage_level = 2.5");
}

TEST_F(PanelHub, WhatTheDriverRefusesIsTheResult)
{
    const Result refused = done(action(ActionKind::SetVoltage, 4, 7.0));
    EXPECT_FALSE(refused.ok);
    EXPECT_EQ(refused.code, KVX2800T_ERROR_VALUE_OUT_OF_RANGE);
    EXPECT_EQ(refused.name, "KVX2800T_ERROR_VALUE_OUT_OF_RANGE");
    EXPECT_NE(refused.text.find("6.2"), std::string::npos) << refused.text;
    EXPECT_EQ(done(action(ActionKind::ResetProtection, 1)).name, "KVX2800T_ERROR_OPERATION_NOT_SUPPORTED");
}

TEST_F(PanelHub, EverySettingIsReadBack)
{
    EXPECT_TRUE(done(action(ActionKind::SetCurrent, 3, 0.75)).ok);
    EXPECT_TRUE(done(action(ActionKind::SetOvp, 3, 6.5, true)).ok);
    EXPECT_TRUE(done(action(ActionKind::SetOcp, 3, 1.25, true)).ok);
    const auto last = recorder.lastSequence();
    const Snapshot state = recorder.snapshot(
        [](const Snapshot& told) { return told.instrument && channelOf(told, 3).settings.ocpEnabled; }, last);
    EXPECT_EQ(channelOf(state, 3).settings.currentLimit, 0.75);
    EXPECT_TRUE(channelOf(state, 3).settings.ovpEnabled);
    EXPECT_EQ(channelOf(state, 3).settings.ovpLimit, 6.5);
    EXPECT_EQ(channelOf(state, 3).settings.ocpLevel, 1.25);
}

TEST_F(PanelHub, TheSourceModeIsSet)
{
    Action series = action(ActionKind::SetSourceMode);
    series.mode = kvx2800t::SourceMode::series;
    EXPECT_TRUE(done(series).ok);
    recorder.snapshot([](const Snapshot& told) {
        return told.instrument && told.instrument->sourceMode == kvx2800t::SourceMode::series;
    });
}

TEST_F(PanelHub, AllOffSwitchesEveryOutputOff)
{
    EXPECT_TRUE(done(action(ActionKind::SetOutput, 3, 0.0, true)).ok);
    EXPECT_TRUE(done(action(ActionKind::SetOutput, 4, 0.0, true)).ok);
    EXPECT_TRUE(done(action(ActionKind::AllOff)).ok);
    const Snapshot state = recorder.snapshot([](const Snapshot& told) { return told.instrument.has_value(); },
                                             recorder.lastSequence() + 1);
    for (const ChannelState& channel : state.instrument->channels)
        EXPECT_FALSE(channel.outputEnabled);
}

TEST_F(PanelHub, AListIsLoadedRunAndFollowed)
{
    Action load = action(ActionKind::LoadList, 3);
    load.groups = {{1.0, 0.5, 0.3}, {2.0, 0.5, 0.3}};
    load.cycles = 2;
    load.end = kvx2800t::ListEnd::last;
    EXPECT_TRUE(done(load).ok);
    const LoadedList loaded = recorder.list();
    EXPECT_EQ(loaded.channel, 3);
    ASSERT_EQ(loaded.groups.size(), 2U);
    EXPECT_EQ(loaded.groups[1].volts, 2.0);
    EXPECT_EQ(loaded.cycles, 2);
    EXPECT_EQ(loaded.end, kvx2800t::ListEnd::last);

    EXPECT_TRUE(done(action(ActionKind::RunList, 3)).ok);
    const auto inState = [this](kvx2800t::ListState state) {
        return recorder.snapshot(
            [state](const Snapshot& told) {
                return told.instrument && told.instrument->lists.size() == 1 &&
                       told.instrument->lists[0].status.state == state;
            },
            recorder.lastSequence());
    };
    const Snapshot running = inState(kvx2800t::ListState::running);
    EXPECT_EQ(running.instrument->lists[0].channel, 3);
    EXPECT_EQ(running.instrument->lists[0].groups, 2);
    EXPECT_EQ(running.instrument->lists[0].cycles, 2);
    inState(kvx2800t::ListState::stopped);
    EXPECT_TRUE(done(action(ActionKind::StopList, 3)).ok);
    EXPECT_TRUE(done(action(ActionKind::ReadList, 4)).ok);
    EXPECT_EQ(recorder.list(1).channel, 4);
    EXPECT_TRUE(recorder.list(1).groups.empty());
    EXPECT_TRUE(done(action(ActionKind::Reset)).ok);
    EXPECT_EQ(recorder.list(2).channel, 3);
    EXPECT_TRUE(recorder.list(2).groups.empty());
}

TEST_F(PanelHub, ReconnectingOpensTheSessionAnew)
{
    recorder.connected();
    const Result result = done(action(ActionKind::Reconnect));
    EXPECT_TRUE(result.ok);
    const Snapshot connecting =
        recorder.snapshot([](const Snapshot& told) { return told.link.state == LinkState::Connecting; }, 2);
    EXPECT_FALSE(connecting.instrument.has_value());
    recorder.snapshot([](const Snapshot& told) { return told.instrument.has_value(); }, connecting.sequence);
    EXPECT_EQ(recorder.lines(1).c.size(), 2U);
}

TEST_F(PanelHubOnTcp, TellsOfTheErrorsOfTheInstrument)
{
    recorder.connected();
    ASSERT_EQ(instrument.control("inject -350 \"Queue overflow\""), "ok");
    const ErrorReport report = recorder.errors([](const ErrorReport& told) { return !told.entries.empty(); });
    EXPECT_FALSE(report.cleared);
    EXPECT_EQ(report.entries[0].code, -350);
    EXPECT_EQ(report.entries[0].message, "Queue overflow");
    EXPECT_TRUE(done(action(ActionKind::ClearErrors)).ok);
    EXPECT_TRUE(recorder.errors([](const ErrorReport& told) { return told.cleared; }).entries.empty());
}

TEST_F(PanelHubOnTcp, LinesHaveWhatWasSentAndReceivedForTheActionAlone)
{
    recorder.connected();
    EXPECT_TRUE(done(action(ActionKind::SetOutput, 1, 0.0, true)).ok);
    EXPECT_EQ(recorder.lines(1).scpi, (std::vector<std::string>{"> :SOUR:Mode?", "< NORMAL", "> :OUTP:STAT CH1,ON"}));
}

TEST_F(PanelHubOnTcp, AnOverCurrentIsSeenToTrip)
{
    ASSERT_EQ(instrument.control("load CH3 1"), "ok");
    EXPECT_TRUE(done(action(ActionKind::SetVoltage, 3, 3.0)).ok);
    EXPECT_TRUE(done(action(ActionKind::SetOcp, 3, 0.5, true)).ok);
    EXPECT_TRUE(done(action(ActionKind::SetOutput, 3, 0.0, true)).ok);
    const Snapshot tripped = recorder.snapshot(
        [](const Snapshot& told) { return told.instrument && channelOf(told, 3).condition.overCurrent(); });
    EXPECT_FALSE(channelOf(tripped, 3).condition.overVoltage());
}

TEST_F(PanelHubOnTcp, ALostLinkHasNoValuesAndIsConnectedAgain)
{
    const Snapshot before = recorder.connected();
    ASSERT_EQ(instrument.control("disconnect"), "ok");
    const Snapshot lost =
        recorder.snapshot([](const Snapshot& told) { return told.link.state == LinkState::Lost; }, before.sequence);
    EXPECT_FALSE(lost.instrument.has_value());
    EXPECT_NE(lost.link.text, "");
    const Snapshot after =
        recorder.snapshot([](const Snapshot& told) { return told.instrument.has_value(); }, lost.sequence);
    EXPECT_EQ(after.link.state, LinkState::Connected);
    EXPECT_EQ(after.link.text, "");
}

TEST_F(PanelHubOnTcp, ActionsFailAtOnceWhileThereIsNoInstrument)
{
    const Snapshot before = recorder.connected();
    instrument.kill();
    recorder.snapshot([](const Snapshot& told) { return told.link.state == LinkState::Lost; }, before.sequence);
    for (const ActionKind kind : {ActionKind::AllOff, ActionKind::SetOutput, ActionKind::Reconnect}) {
        const Result refused = done(action(kind));
        EXPECT_FALSE(refused.ok);
        EXPECT_EQ(refused.name, "KVX2800T_ERROR_IO");
        EXPECT_NE(refused.text, "");
    }
}

TEST_F(PanelHubOnTcp, SilenceIsToldOfBeforeTheTimeOutIs)
{
    const Snapshot before = recorder.connected();
    hub.tellOfSilence(); // there is none
    ASSERT_EQ(instrument.control("delay 1900"), "ok");
    while (recorder.lastLink() == LinkState::Connected) {
        hub.tellOfSilence();
        std::this_thread::sleep_for(kvxtest::kPollInterval);
    }
    const Snapshot lost =
        recorder.snapshot([](const Snapshot& told) { return told.link.state == LinkState::Lost; }, before.sequence);
    EXPECT_FALSE(lost.instrument.has_value());
    EXPECT_EQ(lost.link.text, "the instrument does not answer");
    ASSERT_EQ(instrument.control("clear-faults"), "ok");
}

TEST_F(PanelHubOnTcp, AllOffCancelsWhatWaits)
{
    recorder.connected();
    ASSERT_EQ(instrument.control("delay 100"), "ok");
    // In the midst of a reading, or the first is carried out and the others wait.
    for (std::int64_t i = 1; i <= 3; ++i)
        hub.submit(i == 3 ? 2 : 1, {i, action(ActionKind::SetOutput, 3, 0.0, true)});
    hub.submit(1, {4, action(ActionKind::AllOff)});
    for (const auto& [cancelled, page] : {std::pair<std::int64_t, PageId>{2, 1}, {3, 2}}) {
        EXPECT_EQ(recorder.result(cancelled, page).name, "CANCELLED");
        EXPECT_EQ(recorder.result(cancelled, page).text, "all outputs were switched off first");
    }
    ASSERT_EQ(instrument.control("clear-faults"), "ok");
    EXPECT_TRUE(recorder.result(4).ok);
    const Snapshot state = recorder.snapshot([](const Snapshot& told) { return told.instrument.has_value(); },
                                             recorder.lastSequence() + 1);
    EXPECT_FALSE(channelOf(state, 3).outputEnabled);
}

TEST_F(PanelHubOnTcp, MoreThanCanWaitAreRefused)
{
    recorder.connected();
    ASSERT_EQ(instrument.control("delay 100"), "ok");
    constexpr auto kAll = static_cast<std::int64_t>(Hub::kMostWaiting) + 2;
    for (std::int64_t i = 1; i <= kAll; ++i)
        hub.submit(1, {i, action(ActionKind::SetVoltage, 3, 1.0)});
    EXPECT_EQ(recorder.result(kAll).name, "BUSY");
    EXPECT_EQ(recorder.result(kAll).text, "too many actions wait for the instrument");
    ASSERT_EQ(instrument.control("clear-faults"), "ok");
    EXPECT_TRUE(recorder.result(kAll - 2).ok);
}
