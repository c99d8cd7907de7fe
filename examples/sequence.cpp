/// A test sequence: two rails are powered up in order, checked and switched off, whatever happens in between.
#include "kvx2800t.hpp"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <exception>

namespace
{

struct Rail
{
    const char* channel;
    double volts;
    double amperes;
};

constexpr std::array<Rail, 2> kRails = {{
    {"OutputChannel3", 3.3, 0.5},
    {"OutputChannel4", 1.8, 2.0},
}};

void powerUp(kvx2800t::Session& supply, const Rail& rail)
{
    supply.configureVoltageLevel(rail.channel, rail.volts);
    supply.configureCurrentLimit(rail.channel, kvx2800t::CurrentLimitBehavior::trip, rail.amperes);
    supply.configureOvp(rail.channel, true, rail.volts * 1.1);
    supply.configureOutputEnabled(rail.channel, true);
}

/// Whether the rail is on and holds its voltage.
bool verify(kvx2800t::Session& supply, const Rail& rail)
{
    const double volts = supply.get(kvx2800t::attribute::voltageLevel, rail.channel);
    const double amperes = supply.get(kvx2800t::attribute::currentLimit, rail.channel);
    const bool holds = supply.queryOutputState(rail.channel, kvx2800t::OutputState::constantVoltage);
    std::printf("%s: %.2f V, at most %.2f A: %s\n", rail.channel, volts, amperes, holds ? "good" : "bad");
    return holds;
}

/// A level that the channel does not take is refused before anything is sent.
void tryTooMuch(kvx2800t::Session& supply, const Rail& rail)
{
    const double most = supply.queryMaxVoltageLevel(rail.channel, rail.amperes);
    std::printf("%s takes up to %.1f V\n", rail.channel, most);
    try {
        supply.configureVoltageLevel(rail.channel, most + 1.0);
    } catch (const kvx2800t::Error& error) {
        if (error.code() != KVX2800T_ERROR_VALUE_OUT_OF_RANGE)
            throw;
        std::printf("refused: %s\n", error.text().c_str());
    }
}

bool runSequence(kvx2800t::Session& supply)
{
    const kvx2800t::OutputsOff atTheEnd(supply);
    bool good = true;
    for (const Rail& rail : kRails)
        powerUp(supply, rail);
    for (const Rail& rail : kRails)
        good = verify(supply, rail) && good;
    tryTooMuch(supply, kRails.front());
    return good;
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc != 2) {
        static_cast<void>(std::fprintf(stderr, "usage: sequence RESOURCE\n"));
        return EXIT_FAILURE;
    }
    try {
        kvx2800t::Options options;
        options.idQuery = true;
        options.reset = true;
        options.queryInstrumentStatus = true;
        kvx2800t::Session supply(argv[1], options);
        std::printf("%s, firmware %s\n", supply.get(kvx2800t::attribute::instrumentModel).c_str(),
                    supply.revisions().instrument.c_str());
        const bool good = runSequence(supply);
        supply.close();
        return good ? EXIT_SUCCESS : EXIT_FAILURE;
    } catch (const std::exception& exception) {
        static_cast<void>(std::fprintf(stderr, "sequence: %s\n", exception.what()));
        return EXIT_FAILURE;
    }
}
