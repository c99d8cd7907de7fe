#include "virtual_instrument/scpi/virtual_instrument.h"

#include "virtual_instrument/scpi/command_interpreter.h"

#include <utility>

namespace kvxvirtual
{

VirtualInstrument::VirtualInstrument(InstrumentSettings settings, InstrumentClock::Source time)
    : clock_(std::move(time)), state_{PowerSupply(clock_, settings.settleTime), StatusModel(),
                                      std::move(settings.identity), settings.wording},
      keepsLog_(settings.keepsLog)
{
}

std::optional<Response> VirtualInstrument::receive(std::string_view line)
{
    if (keepsLog_)
        log_.add(line);
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    auto reply = replyTo(line);
    statusMayHaveChanged();
    if (!reply)
        return std::nullopt;
    if (repliesToSwallow_ > 0) {
        --repliesToSwallow_;
        return std::nullopt;
    }
    return Response{std::move(*reply), replyDelay_};
}

void VirtualInstrument::report(ErrorCode code)
{
    state_.status.report(code);
    statusMayHaveChanged();
}

void VirtualInstrument::trigger()
{
    state_.supply.update();
    state_.supply.trigger();
    state_.supply.update();
    statusMayHaveChanged();
}

unsigned int VirtualInstrument::statusByte()
{
    state_.supply.update();
    return state_.statusByte();
}

void VirtualInstrument::statusMayHaveChanged()
{
    if (statusObserver_)
        statusObserver_();
}

void VirtualInstrument::clearFaults()
{
    answers_.clear();
    repliesToSwallow_ = 0;
    replyDelay_ = std::chrono::milliseconds(0);
}

void VirtualInstrument::powerCycle()
{
    state_.supply.update();
    state_.supply.powerCycle();
    state_.status.powerOn();
    state_.supply.update();
}

void VirtualInstrument::advanceClock(InstrumentClock::Duration step)
{
    clock_.advance(step);
    state_.supply.update();
}

std::optional<std::string> VirtualInstrument::replyTo(std::string_view message)
{
    const auto units = parseMessage(message);
    if (!answers_.empty() && holdsQuery(units)) {
        auto answer = std::move(answers_.front());
        answers_.pop_front();
        return answer;
    }
    auto reply = execute(units, state_);
    if (reply)
        *reply += '\n';
    return reply;
}

} // namespace kvxvirtual
