#include "power_supply.h"

#include <chrono>
#include <limits>
#include <utility>

namespace kvxvirtual
{

namespace
{

constexpr double kLongestOverCurrentDelay = 10.0;

/// Protection levels go to 1.1 times what the channel delivers; written out, so that the limits are exact.
constexpr std::array<ChannelLimits, kChannelCount> kLimits = {{
    {33.0, 3.2, 36.3, 3.52, kLongestOverCurrentDelay},
    {33.0, 3.2, 36.3, 3.52, kLongestOverCurrentDelay},
    {16.0, 3.2, 17.6, 3.52, kLongestOverCurrentDelay},
    {6.2, 10.5, 6.82, 11.55, kLongestOverCurrentDelay},
    {66.0, 3.2, 72.6, 3.52, kLongestOverCurrentDelay},
    {33.0, 6.4, 36.3, 7.04, kLongestOverCurrentDelay},
}};

/// Outputs 1 and 2 and their combinations share the relays that a source mode switches.
constexpr bool dependsOnSourceMode(int channel)
{
    return channel != 3 && channel != 4;
}

} // namespace

const ChannelLimits& limitsOf(int channel)
{
    return kLimits[static_cast<std::size_t>(channel - 1)];
}

PowerSupply::PowerSupply(const InstrumentClock& clock, Duration settleTime)
    : clock_(clock), settleTime_(settleTime), settledAt_(clock.now())
{
    reset();
}

void PowerSupply::update()
{
    for (auto& channel : channels_) {
        protect(channel);
        const auto condition = conditionOf(channel);
        channel.event |= condition & ~channel.lastCondition;
        channel.lastCondition = condition;
    }
}

void PowerSupply::reset()
{
    for (int number = 1; number <= kChannelCount; ++number)
        restoreDefaults(at(number), number);
    sourceMode_ = SourceMode::Normal;
    settledAt_ = clock_.now();
    bleEnabled_ = false;
    selectedChannel_ = 1;
}

void PowerSupply::powerCycle()
{
    const auto before = channels_;
    reset();
    for (int number = 1; number <= kChannelCount; ++number) {
        const auto& last = before[static_cast<std::size_t>(number - 1)].settings;
        auto& channel = at(number);
        const auto state = static_cast<PowerOnState>(last.powerOnState);
        if (state != PowerOnState::Reset)
            channel.settings = last;
        channel.settings.outputOn = state == PowerOnState::Last && last.outputOn && live(number);
        channel.lastCondition = 0;
        channel.event = 0;
    }
}

void PowerSupply::setSourceMode(SourceMode mode)
{
    if (mode == sourceMode_)
        return;
    for (int number = 1; number <= kChannelCount; ++number) {
        if (dependsOnSourceMode(number))
            at(number).settings.outputOn = false;
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
    auto& target = at(channel);
    target.settings.outputOn = on;
    if (on) {
        target.overVoltageTrip = false;
        target.overCurrentTrip = false;
    }
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
        auto whole = regulate(at(kSeriesChannel));
        whole.volts /= 2;
        return whole;
    }
    if (isPart && sourceMode_ == SourceMode::Parallel) {
        auto whole = regulate(at(kParallelChannel));
        whole.amperes /= 2;
        return whole;
    }
    return regulate(at(channel));
}

unsigned int PowerSupply::questionableCondition(int channel) const
{
    return conditionOf(at(channel));
}

unsigned int PowerSupply::takeQuestionableEvent(int channel)
{
    return std::exchange(at(channel).event, 0U);
}

void PowerSupply::clearQuestionableEvents()
{
    for (auto& channel : channels_)
        channel.event = 0;
}

void PowerSupply::setLoad(int channel, std::optional<double> ohms)
{
    at(channel).loadOhms = ohms;
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

void PowerSupply::restoreDefaults(Channel& channel, int number)
{
    const int powerOnState = channel.settings.powerOnState;
    channel.settings = ChannelSettings();
    channel.settings.powerOnState = powerOnState;
    channel.settings.overVoltageLevel = limitsOf(number).overVoltageLevel;
    channel.settings.overCurrentLevel = limitsOf(number).overCurrentLevel;
    channel.overVoltageTrip = false;
    channel.overCurrentTrip = false;
    channel.overCurrentSince.reset();
}

/// The current that the load would draw at the set voltage, in amperes.
double PowerSupply::demandOf(const Channel& channel)
{
    if (!channel.settings.outputOn || !channel.loadOhms || channel.settings.volts == 0.0)
        return 0.0;
    if (*channel.loadOhms == 0.0)
        return std::numeric_limits<double>::infinity();
    return channel.settings.volts / *channel.loadOhms;
}

Measurement PowerSupply::regulate(const Channel& channel)
{
    if (!channel.settings.outputOn)
        return {};
    const auto demand = demandOf(channel);
    if (demand <= channel.settings.amperes)
        return {channel.settings.volts, demand, false};
    return {channel.settings.amperes * *channel.loadOhms, channel.settings.amperes, true};
}

unsigned int PowerSupply::conditionOf(const Channel& channel)
{
    unsigned int condition = 0;
    if (channel.settings.outputOn)
        condition |=
            regulate(channel).constantCurrent ? questionable::kConstantCurrent : questionable::kConstantVoltage;
    if (channel.overVoltageTrip)
        condition |= questionable::kOverVoltageTrip;
    if (channel.overCurrentTrip)
        condition |= questionable::kOverCurrentTrip;
    return condition;
}

void PowerSupply::protect(Channel& channel) const
{
    auto& settings = channel.settings;
    if (settings.overVoltageEnabled && regulate(channel).volts > settings.overVoltageLevel) {
        settings.outputOn = false;
        channel.overVoltageTrip = true;
    }
    if (!settings.overCurrentEnabled || demandOf(channel) <= settings.overCurrentLevel) {
        channel.overCurrentSince.reset();
        return;
    }
    const auto now = clock_.now();
    if (!channel.overCurrentSince)
        channel.overCurrentSince = now;
    const std::chrono::duration<double> delay(settings.overCurrentDelay);
    if (now - *channel.overCurrentSince >= std::chrono::round<Duration>(delay)) {
        settings.outputOn = false;
        channel.overCurrentTrip = true;
        channel.overCurrentSince.reset();
    }
}

} // namespace kvxvirtual
