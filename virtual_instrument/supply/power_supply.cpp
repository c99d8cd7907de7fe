#include "virtual_instrument/supply/power_supply.h"

#include <algorithm>

namespace kvxvirtual
{
namespace
{

/// Outputs 1 and 2 and their combinations share the relays that a source mode switches.
constexpr bool dependsOnSourceMode(int channel)
{
    return channel != 3 && channel != 4;
}

} // namespace

PowerSupply::PowerSupply(const InstrumentClock& clock, Duration settleTime)
    : clock_(clock), settleTime_(settleTime), channels_{OutputChannel(limitsOf(1)), OutputChannel(limitsOf(2)),
                                                        OutputChannel(limitsOf(3)), OutputChannel(limitsOf(4)),
                                                        OutputChannel(limitsOf(5)), OutputChannel(limitsOf(6))},
      settledAt_(clock.now()), updatedAt_(settledAt_)
{
}

void PowerSupply::update()
{
    const auto now = clock_.now();
    for (auto& channel : channels_)
        channel.advance(updatedAt_, now);
    updatedAt_ = now;
}

void PowerSupply::reset()
{
    for (auto& channel : channels_)
        channel.reset();
    resetCommonSettings();
}

void PowerSupply::powerCycle()
{
    resetCommonSettings();
    for (int number = 1; number <= kChannelCount; ++number)
        at(number).powerCycle(live(number));
}

void PowerSupply::setSourceMode(SourceMode mode)
{
    if (mode == sourceMode_)
        return;
    for (int number = 1; number <= kChannelCount; ++number) {
        if (!dependsOnSourceMode(number))
            continue;
        at(number).switchOff();
        at(number).abandonPrograms();
    }
    sourceMode_ = mode;
    settledAt_ = clock_.now() + settleTime_;
}

ErrorCode PowerSupply::setLevel(int channel, double ChannelSettings::*level, double ChannelLimits::*limit, double value)
{
    if (!(value >= 0.0 && value <= limitsOf(channel).*limit))
        return ErrorCode::DataOutOfRange;
    return setProtection(channel, level, value);
}

ErrorCode PowerSupply::switchOutput(int channel, bool on)
{
    if (on && !ready(channel))
        return ErrorCode::SettingsConflict;
    if (on)
        at(channel).switchOn();
    else
        at(channel).switchOff();
    return ErrorCode::None;
}

ErrorCode PowerSupply::switchAllOutputs(bool on)
{
    for (int number = 1; on && number <= kChannelCount; ++number) {
        if (live(number) && !ready(number))
            return ErrorCode::SettingsConflict;
    }
    for (int number = 1; number <= kChannelCount; ++number) {
        if (!on || live(number))
            switchOutput(number, on);
    }
    return ErrorCode::None;
}

Measurement PowerSupply::measure(int channel) const
{
    const bool isPart = channel == 1 || channel == 2;
    if (isPart && sourceMode_ == SourceMode::Series) {
        auto whole = at(kSeriesChannel).measure();
        whole.volts /= 2;
        return whole;
    }
    if (isPart && sourceMode_ == SourceMode::Parallel) {
        auto whole = at(kParallelChannel).measure();
        whole.amperes /= 2;
        return whole;
    }
    return at(channel).measure();
}

void PowerSupply::clearQuestionableEvents()
{
    for (auto& channel : channels_)
        channel.clearQuestionableEvent();
}

bool PowerSupply::hasQuestionableEvent() const
{
    return std::any_of(channels_.begin(), channels_.end(),
                       [](const OutputChannel& channel) { return channel.hasQuestionableEvent(); });
}

bool PowerSupply::programActive() const
{
    return std::any_of(channels_.begin(), channels_.end(),
                       [](const OutputChannel& channel) { return channel.programActive(); });
}

ErrorCode PowerSupply::switchList(bool on)
{
    auto& channel = at(selectedChannel_);
    if (on)
        return ready(selectedChannel_) ? channel.startList() : ErrorCode::SettingsConflict;
    channel.stopList();
    return ErrorCode::None;
}

ErrorCode PowerSupply::switchDelay(bool on)
{
    auto& channel = at(selectedChannel_);
    if (on)
        return ready(selectedChannel_) ? channel.startDelay(updatedAt_) : ErrorCode::SettingsConflict;
    channel.stopDelay();
    return ErrorCode::None;
}

void PowerSupply::trigger()
{
    for (auto& channel : channels_)
        channel.trigger(updatedAt_);
}

bool PowerSupply::live(int channel) const
{
    switch (channel) {
    case 1:
    case 2:
        return sourceMode_ == SourceMode::Normal;
    case kSeriesChannel:
        return sourceMode_ == SourceMode::Series;
    case kParallelChannel:
        return sourceMode_ == SourceMode::Parallel;
    default:
        return true;
    }
}

bool PowerSupply::ready(int channel) const
{
    return live(channel) && (!dependsOnSourceMode(channel) || clock_.now() >= settledAt_);
}

void PowerSupply::resetCommonSettings()
{
    sourceMode_ = SourceMode::Normal;
    settledAt_ = clock_.now();
    bleEnabled_ = false;
    selectedChannel_ = 1;
}

} // namespace kvxvirtual
