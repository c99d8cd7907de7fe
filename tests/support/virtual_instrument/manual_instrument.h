#pragma once

#include "virtual_instrument/scpi/virtual_instrument.h"
#include "virtual_instrument/transport/test_control.h"

#include <string>
#include <string_view>
#include <vector>

namespace kvxtest
{

/// A virtual instrument in the test's own process whose clock stands still until the test advances it.
class ManualInstrument
{
public:
    explicit ManualInstrument(kvxvirtual::InstrumentSettings settings = {})
        : instrument_(std::move(settings), [] { return kvxvirtual::InstrumentClock::Duration(0); }),
          control_(instrument_, [this] { ++disconnects_; })
    {
    }

    /// Executes a message and returns everything that comes back, line end included; empty when nothing does.
    std::string exchange(std::string_view message)
    {
        const auto response = instrument_.receive(message);
        return response ? response->bytes : std::string();
    }

    /// The next error as the instrument words it.
    std::string error() { return exchange("SYST:ERR?"); }

    /// Executes a message that must leave no reply, and returns the error it caused.
    std::string errorOf(std::string_view message)
    {
        const auto reply = exchange(message);
        return reply.empty() ? error() : "replied " + reply;
    }

    /// What `program` ("LIST" or "DELAY") of the selected channel answers about each of its groups, without line ends.
    std::vector<std::string> groups(const std::string& program)
    {
        const int count = std::stoi(exchange(program + ":GROUP:NUM?"));
        std::vector<std::string> answers;
        for (int number = 1; number <= count; ++number) {
            answers.push_back(exchange(program + ":GROUP:PARA? " + std::to_string(number)));
            answers.back().pop_back();
        }
        return answers;
    }

    std::string control(std::string_view line) { return control_.execute(line); }
    kvxvirtual::VirtualInstrument& instrument() { return instrument_; }
    int disconnects() const { return disconnects_; }

private:
    kvxvirtual::VirtualInstrument instrument_;
    kvxvirtual::TestControl control_;
    int disconnects_ = 0;
};

inline constexpr const char* kNoError = "0,\"No error\"\n";
inline constexpr const char* kSettingsConflict = "-221,\"Settings conflict\"\n";
inline constexpr const char* kOutOfRange = "-222,\"Data out of range\"\n";

} // namespace kvxtest
