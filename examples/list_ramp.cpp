/// A voltage ramp that the instrument runs by itself: a list of levels is loaded, started, and watched to its end.
#include "kvx2800t.hpp"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace
{

constexpr int kSteps = 10;
constexpr double kAmperes = 0.5;

struct Ramp
{
    double volts = 5.0;
    double seconds = 2.0;
};

/// Steps of equal height and length; the last one has the full voltage.
std::vector<kvx2800t::ListGroup> groupsOf(const Ramp& ramp)
{
    std::vector<kvx2800t::ListGroup> groups;
    for (int step = 1; step <= kSteps; ++step)
        groups.push_back({ramp.volts * step / kSteps, kAmperes, ramp.seconds / kSteps});
    return groups;
}

void load(const kvx2800t::Channel& channel, const Ramp& ramp)
{
    channel.configureCurrentLimit(kvx2800t::CurrentLimitBehavior::trip, kAmperes);
    const kvx2800t::ListProgram list = channel.list();
    list.load(groupsOf(ramp));
    list.cycles().set(1);
    list.endState().set(kvx2800t::ListEnd::last);
    std::printf("%s: %d steps up to %.2f V, %.3f s each\n", channel.name().c_str(), kSteps, ramp.volts,
                ramp.seconds / kSteps);
}

/// A list that a trip has stopped looks like one that has come to its end.
void throwIfTripped(const kvx2800t::Channel& channel)
{
    const kvx2800t::ProtectionState state = channel.protection().state();
    if (state.overCurrent)
        throw std::runtime_error("the over-current protection has tripped");
    if (state.overVoltage)
        throw std::runtime_error("the over-voltage protection has tripped");
}

void runToItsEnd(const kvx2800t::Channel& channel, const Ramp& ramp)
{
    constexpr std::chrono::milliseconds kBetweenLooks{50};
    constexpr std::chrono::seconds kGrace{5};
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(ramp.seconds) + kGrace;
    channel.list().run();
    while (channel.list().status().state != kvx2800t::ListState::stopped) {
        if (std::chrono::steady_clock::now() > end)
            throw std::runtime_error("the list does not come to its end");
        std::this_thread::sleep_for(kBetweenLooks);
    }
    throwIfTripped(channel);
}

void run(const std::string& resource, const Ramp& ramp)
{
    kvx2800t::Options options;
    options.reset = true;
    options.queryInstrumentStatus = true;
    kvx2800t::Session supply(resource, options);
    const kvx2800t::OutputsOff atTheEnd(supply);
    const kvx2800t::Channel channel = supply.channel(3);
    load(channel, ramp);
    runToItsEnd(channel, ramp);
    const kvx2800t::Reading reading = channel.measure();
    std::printf("at its end: %.3f V, %.3f A, %.3f W\n", reading.volts, reading.amperes, reading.watts);
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc < 2 || argc > 4) {
        static_cast<void>(std::fprintf(stderr, "usage: list_ramp RESOURCE [VOLTS [SECONDS]]\n"));
        return EXIT_FAILURE;
    }
    try {
        Ramp ramp;
        if (argc > 2)
            ramp.volts = std::stod(argv[2]);
        if (argc > 3)
            ramp.seconds = std::stod(argv[3]);
        run(argv[1], ramp);
        return EXIT_SUCCESS;
    } catch (const std::exception& exception) {
        static_cast<void>(std::fprintf(stderr, "list_ramp: %s\n", exception.what()));
        return EXIT_FAILURE;
    }
}
