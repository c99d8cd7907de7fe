#include "virtual_instrument/supply/output_channel.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace kvxvirtual
{

OutputChannel::OutputChannel(const ChannelLimits& limits) : limits_(&limits), list_(limits)
{
    reset();
}

void OutputChannel::advance(Duration from, Duration to)
{
    settle(from);
    std::optional<CycleStart> lastStart;
    for (auto next = nextEvent(); next && *next <= to; next = nextEvent()) {
        // What trips at the moment of a step trips before it.
        settle(*next);
        const bool cycleBegins = step(*next);
        settle(*next);
        if (!cycleBegins)
            continue;
        const CycleStart start{overCurrentSince_ ? std::optional(*next - *overCurrentSince_) : std::nullopt,
                               lastCondition_};
        if (start == lastStart)
            skipCycles(to);
        lastStart = start;
    }
}

void OutputChannel::reset()
{
    const int powerOnState = settings_.powerOnState;
    settings_ = ChannelSettings();
    settings_.powerOnState = powerOnState;
    settings_.overVoltageLevel = limits_->overVoltageLevel;
    settings_.overCurrentLevel = limits_->overCurrentLevel;
    list_ = ListProgram(*limits_);
    delay_ = DelayProgram();
    overVoltageTrip_ = false;
    overCurrentTrip_ = false;
    overCurrentSince_.reset();
}

void OutputChannel::powerCycle(bool live)
{
    const auto state = static_cast<PowerOnState>(settings_.powerOnState);
    const bool wasOn = settings_.outputOn;
    if (state == PowerOnState::Reset)
        reset();
    abandonPrograms();
    overVoltageTrip_ = false;
    overCurrentTrip_ = false;
    overCurrentSince_.reset();
    settings_.outputOn = state == PowerOnState::Last && wasOn && live;
    lastCondition_ = 0;
    event_ = 0;
}

void OutputChannel::switchOn()
{
    settings_.outputOn = true;
    overVoltageTrip_ = false;
    overCurrentTrip_ = false;
}

void OutputChannel::switchOff()
{
    settings_.outputOn = false;
    delay_.run().stop();
}

Measurement OutputChannel::measure() const
{
    if (!settings_.outputOn)
        return {};
    const auto set = levels();
    const auto demanded = demand();
    if (demanded <= set.amperes)
        return {set.volts, demanded, false};
    return {set.amperes * *loadOhms_, set.amperes, true};
}

unsigned int OutputChannel::questionableCondition() const
{
    unsigned int condition = 0;
    if (settings_.outputOn)
        condition |= measure().constantCurrent ? questionable::kConstantCurrent : questionable::kConstantVoltage;
    if (overVoltageTrip_)
        condition |= questionable::kOverVoltageTrip;
    if (overCurrentTrip_)
        condition |= questionable::kOverCurrentTrip;
    return condition;
}

unsigned int OutputChannel::takeQuestionableEvent()
{
    return std::exchange(event_, 0U);
}

ErrorCode OutputChannel::startList()
{
    if (list_.run().active())
        return ErrorCode::None;
    return delay_.run().active() ? ErrorCode::SettingsConflict : list_.arm();
}

void OutputChannel::stopList()
{
    if (list_.run().active())
        endList();
    list_.run().stop();
}

ErrorCode OutputChannel::startDelay(Duration now)
{
    if (delay_.run().active())
        return ErrorCode::None;
    const auto error = list_.run().active() ? ErrorCode::SettingsConflict : delay_.arm();
    if (error != ErrorCode::None)
        return error;
    delay_.run().proceed(now);
    setOutput(delay_.presentGroup().on);
    return ErrorCode::None;
}

void OutputChannel::stopDelay()
{
    if (!delay_.run().active())
        return;
    endDelay();
    delay_.run().stop();
}

void OutputChannel::abandonPrograms()
{
    list_.run().stop();
    delay_.run().stop();
}

void OutputChannel::trigger(Duration now)
{
    if (list_.run().state() == RunState::Ready && settings_.outputOn)
        list_.run().proceed(now);
}

OutputChannel::Levels OutputChannel::levels() const
{
    if (list_.run().state() != RunState::Running)
        return {settings_.volts, settings_.amperes};
    return {list_.presentGroup().volts, list_.presentGroup().amperes};
}

/// The current that the load would draw at the set voltage, in amperes.
double OutputChannel::demand() const
{
    const double volts = levels().volts;
    if (!settings_.outputOn || !loadOhms_ || volts == 0.0)
        return 0.0;
    return *loadOhms_ == 0.0 ? std::numeric_limits<double>::infinity() : volts / *loadOhms_;
}

std::optional<OutputChannel::Duration> OutputChannel::nextEvent() const
{
    auto next = activeRun().groupEnd();
    if (overCurrentSince_) {
        const auto trip = *overCurrentSince_ + durationOf(settings_.overCurrentDelay);
        next = next ? std::min(*next, trip) : trip;
    }
    return next;
}

/// Makes everything agree with what has changed just now.
void OutputChannel::settle(Duration now)
{
    followOutput(now);
    protect(now);
    latchEvents();
}

/// A list runs only while the output is on.
void OutputChannel::followOutput(Duration now)
{
    auto& run = list_.run();
    const auto state = run.state();
    if (state == RunState::Running && !settings_.outputOn)
        run.pause(now);
    const bool mayRun = state == RunState::Paused || (state == RunState::Ready && !settings_.triggerInput);
    if (mayRun && settings_.outputOn)
        run.proceed(now);
}

void OutputChannel::protect(Duration now)
{
    if (settings_.overVoltageEnabled && measure().volts > settings_.overVoltageLevel)
        trip(overVoltageTrip_);
    if (!settings_.overCurrentEnabled || demand() <= settings_.overCurrentLevel) {
        overCurrentSince_.reset();
        return;
    }
    if (!overCurrentSince_)
        overCurrentSince_ = now;
    if (now - *overCurrentSince_ < durationOf(settings_.overCurrentDelay))
        return;
    trip(overCurrentTrip_);
    overCurrentSince_.reset();
}

void OutputChannel::trip(bool& latch)
{
    settings_.outputOn = false;
    abandonPrograms();
    latch = true;
}

void OutputChannel::latchEvents()
{
    const auto condition = questionableCondition();
    event_ |= condition & ~lastCondition_;
    lastCondition_ = condition;
}

bool OutputChannel::step(Duration now)
{
    if (activeRun().groupEnd() != now)
        return false;
    return (list_.run().active() ? stepList() : stepDelay()) == ProgramRun::Step::Cycle;
}

ProgramRun::Step OutputChannel::stepList()
{
    const auto step = list_.run().step();
    if (step == ProgramRun::Step::End)
        endList();
    return step;
}

ProgramRun::Step OutputChannel::stepDelay()
{
    const auto step = delay_.run().step();
    if (step == ProgramRun::Step::End)
        endDelay();
    else
        setOutput(delay_.presentGroup().on);
    return step;
}

void OutputChannel::skipCycles(Duration now)
{
    const auto skipped = activeRun().skipCycles(now);
    if (overCurrentSince_)
        *overCurrentSince_ += skipped;
}

void OutputChannel::endList()
{
    if (static_cast<ListEndState>(list_.endState()) == ListEndState::Off) {
        setOutput(false);
        return;
    }
    // A list that has not begun has no last group.
    if (list_.run().state() == RunState::Ready)
        return;
    settings_.volts = list_.presentGroup().volts;
    settings_.amperes = list_.presentGroup().amperes;
}

void OutputChannel::endDelay()
{
    const auto endState = static_cast<DelayEndState>(delay_.endState());
    if (endState != DelayEndState::Last)
        setOutput(endState == DelayEndState::On);
}

void OutputChannel::setOutput(bool on)
{
    if (on)
        switchOn();
    else
        settings_.outputOn = false;
}

} // namespace kvxvirtual
