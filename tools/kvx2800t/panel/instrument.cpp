#include "tools/kvx2800t/panel/instrument.h"

#include <algorithm>
#include <chrono>
#include <sstream>

namespace panel
{
namespace
{

kvx2800t::Options optionsFor(const std::string& resource)
{
    kvx2800t::Options options;
    if (resource.empty())
        options.simulate = true;
    return options;
}

/// The text of an error, which the instrument puts between quotation marks.
std::string unquoted(const std::string& text)
{
    if (text.size() < 2 || text.front() != '"' || text.back() != '"')
        return text;
    return text.substr(1, text.size() - 2);
}

/// Beyond what lines for programs say: what is shown of the messages, and how soon a lost link is one.
kvx2800t::Options ownOptionsFor(const std::string& resource)
{
    kvx2800t::Options options = optionsFor(resource);
    options.messageLog = 1000;
    options.ioTimeout = std::chrono::seconds(1);
    return options;
}

std::string allChannels()
{
    std::string names;
    for (int channel = 1; channel <= kChannelCount; ++channel)
        names += (channel == 1 ? "" : ",") + channelName(channel);
    return names;
}

/// The parts of "maker,model,serial number,firmware".
Identity identityIn(const std::string& reply)
{
    Identity identity;
    std::istringstream parts(reply);
    for (std::string* part : {&identity.manufacturer, &identity.model, &identity.serial, &identity.firmware})
        std::getline(parts, *part, ',');
    return identity;
}

ViStatus loadList(const kvx2800t::ListProgram& list, const Action& action)
{
    const ViStatus status = list.load(action.groups);
    list.cycles().set(action.cycles);
    list.endState().set(action.end);
    return status;
}

} // namespace

Instrument::Instrument(const std::string& resource) : session_(resource, ownOptionsFor(resource))
{
    state_.identity = readIdentity();
    readSettings();
    // To ask for lists selects channels, which others may go by.
    const ViInt32 selected = session_.selectedChannel();
    for (int channel = 1; channel <= kChannelCount; ++channel)
        noticeList(channel);
    session_.selectChannel(channelName(selected));
    readMeters(true);
}

SessionTexts Instrument::sessionTexts(const std::string& resource)
{
    return {resource, optionsFor(resource).text(), resource.empty()};
}

Identity Instrument::readIdentity()
{
    return identityIn(session_.query("*IDN?"));
}

std::vector<std::string> Instrument::takeMessages()
{
    std::vector<std::string> messages;
    for (std::string message = session_.nextMessageRecord(); !message.empty(); message = session_.nextMessageRecord())
        messages.push_back(std::move(message));
    return messages;
}

ViStatus Instrument::perform(const Action& action)
{
    const kvx2800t::Channel channel = session_.channel(action.channel);
    switch (action.kind) {
    case ActionKind::SetVoltage:
        return session_.configureVoltageLevel(channel.name(), action.value);
    case ActionKind::SetCurrent:
        return channel.currentLimit().set(action.value);
    case ActionKind::SetOutput:
        return session_.configureOutputEnabled(channel.name(), action.on);
    case ActionKind::AllOff:
        return session_.disable();
    case ActionKind::SetOvp:
        return channel.protection().configureOvp(action.on, action.value);
    case ActionKind::SetOcp:
        channel.protection().outputOcpValue().set(action.value);
        return channel.protection().outputOcpEnabled().set(action.on);
    case ActionKind::ResetProtection:
        return channel.protection().reset();
    case ActionKind::SetSourceMode:
        return session_.sourceMode().set(action.mode);
    case ActionKind::LoadList:
        return loadList(channel.list(), action);
    case ActionKind::RunList:
        return channel.list().run();
    case ActionKind::PauseList:
        return channel.list().pause();
    case ActionKind::StopList:
        return channel.list().stop();
    case ActionKind::ReadList:  // the list that is told to the pages afterwards
    case ActionKind::Reconnect: // the hub's
        return VI_SUCCESS;
    case ActionKind::ClearErrors:
        return session_.clearStatus();
    case ActionKind::Reset:
        return session_.reset();
    }
    return VI_SUCCESS;
}

ChannelSettings Instrument::readChannelSettings(int number) const
{
    const kvx2800t::Channel channel = session_.channel(number);
    const kvx2800t::Protection protection = channel.protection();
    ChannelSettings settings;
    settings.voltageLevel = channel.voltageLevel().get();
    settings.currentLimit = channel.currentLimit().get();
    settings.maxVoltage = channel.maxVoltageLevel();
    settings.maxCurrent = channel.maxCurrentLimit();
    settings.ovpEnabled = protection.outputOvpEnabled().get();
    settings.ovpLimit = protection.outputOvpValue().get();
    settings.ocpEnabled = protection.outputOcpEnabled().get();
    settings.ocpLevel = protection.outputOcpValue().get();
    return settings;
}

void Instrument::readSettings()
{
    state_.sourceMode = session_.sourceMode().get();
    for (int number = 1; number <= kChannelCount; ++number)
        state_.channels.at(static_cast<std::size_t>(number - 1)).settings = readChannelSettings(number);
}

void Instrument::readMeters(bool wholly)
{
    static const std::string kAllChannels = allChannels();
    const std::vector<kvx2800t::Reading> readings = session_.measureAll(kAllChannels);
    for (int number = 1; number <= kChannelCount; ++number) {
        const auto index = static_cast<std::size_t>(number - 1);
        const kvx2800t::Channel channel = session_.channel(number);
        ChannelState& state = state_.channels.at(index);
        state.reading = readings.at(index);
        state.condition = channel.state().condition();
        state.outputEnabled = channel.outputEnabled().get();
    }
    for (ListProgress& progress : state_.lists)
        if (wholly || progress.status.state != kvx2800t::ListState::stopped)
            readListProgress(progress);
}

void Instrument::readListProgress(ListProgress& progress) const
{
    progress.status = session_.channel(progress.channel).list().status();
}

std::vector<kvx2800t::InstrumentError> Instrument::takeErrors()
{
    // More than its queue holds: an instrument that goes on without end does not hold the panel up.
    constexpr std::size_t kMostAtOnce = 25;
    std::vector<kvx2800t::InstrumentError> errors;
    while (errors.size() < kMostAtOnce) {
        const kvx2800t::InstrumentError error = session_.nextInstrumentError();
        if (error.code == 0)
            break;
        errors.push_back({error.code, unquoted(error.message)});
    }
    return errors;
}

std::vector<int> Instrument::channelsWithLists() const
{
    std::vector<int> channels;
    std::transform(state_.lists.begin(), state_.lists.end(), std::back_inserter(channels),
                   [](const ListProgress& progress) { return progress.channel; });
    return channels;
}

LoadedList Instrument::readList(int channel)
{
    const kvx2800t::ListProgram list = session_.channel(channel).list();
    LoadedList loaded;
    loaded.channel = channel;
    const ViInt32 count = list.groupCount();
    for (ViInt32 number = 1; number <= count; ++number)
        loaded.groups.push_back(list.group(number));
    loaded.cycles = list.cycles().get();
    loaded.end = list.endState().get();
    return loaded;
}

void Instrument::noticeList(int channel)
{
    auto& lists = state_.lists;
    lists.erase(std::remove_if(lists.begin(), lists.end(),
                               [channel](const ListProgress& progress) { return progress.channel == channel; }),
                lists.end());
    const kvx2800t::ListProgram list = session_.channel(channel).list();
    const ViInt32 groups = list.groupCount();
    if (groups == 0)
        return;
    ListProgress progress;
    progress.channel = channel;
    progress.groups = groups;
    progress.cycles = list.cycles().get();
    readListProgress(progress);
    const auto behind = std::find_if(lists.begin(), lists.end(),
                                     [channel](const ListProgress& other) { return other.channel > channel; });
    lists.insert(behind, progress);
}

} // namespace panel
