/// Readings that go on after the connection was lost: the program waits for the instrument, looks whether it still has
/// its settings, and repeats the reading that failed.
#include "kvx2800t.hpp"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <optional>
#include <string>
#include <thread>
#include <utility>

namespace
{

constexpr double kVolts = 3.3;
constexpr double kAmperes = 0.5;
constexpr double kProtection = 4.0;

struct Plan
{
    int readings = 10;
    std::chrono::milliseconds pause{1000};
    /// Open a new session at once, instead of giving that of before a chance to connect again.
    bool reopen = false;
};

/// The connection was lost, or what comes over it makes no sense: the instrument may be back in a moment.
bool mayPass(const kvx2800t::Error& error)
{
    return error.code() == KVX2800T_ERROR_IO || error.code() == KVX2800T_ERROR_IO_TIMEOUT ||
           error.code() == IVI_ERROR_UNEXPECTED_RESPONSE;
}

/// One line at once, also into a pipe.
void say(const std::string& line)
{
    std::printf("%s\n", line.c_str());
    static_cast<void>(std::fflush(stdout));
}

std::string withThreeDigits(double value)
{
    char text[32] = "";
    static_cast<void>(std::snprintf(text, sizeof text, "%.3f", value));
    return text;
}

std::string hexadecimal(ViStatus code)
{
    char text[16] = "";
    static_cast<void>(std::snprintf(text, sizeof text, "0x%08lX", static_cast<unsigned long>(code) & 0xFFFFFFFFUL));
    return text;
}

void configure(const kvx2800t::Channel& channel)
{
    channel.voltageLevel().set(kVolts);
    channel.configureCurrentLimit(kvx2800t::CurrentLimitBehavior::regulate, kAmperes);
    channel.protection().configureOvp(true, kProtection);
    channel.outputEnabled().set(true);
}

/// The instrument sends levels with six decimals.
bool isAbout(double value, double expected)
{
    return value > expected - 1e-6 && value < expected + 1e-6;
}

bool isConfigured(const kvx2800t::Channel& channel)
{
    return isAbout(channel.voltageLevel().get(), kVolts) && isAbout(channel.currentLimit().get(), kAmperes) &&
           channel.currentLimitBehavior().get() == kvx2800t::CurrentLimitBehavior::regulate &&
           isAbout(channel.protection().ovpLimit().get(), kProtection) && channel.protection().ovpEnabled().get() &&
           channel.outputEnabled().get();
}

/// A supply whose connection may be lost.
class Rail
{
public:
    Rail(std::string resource, const Plan& plan) : resource_(std::move(resource)), plan_(plan)
    {
        options_.openTimeout = std::chrono::seconds(1);
        options_.ioTimeout = std::chrono::seconds(1);
        if (plan.reopen)
            options_.freshReplies = false;
        session_.emplace(resource_, options_);
        configure(channel());
    }

    /// Switches the output off, however the readings end.
    ~Rail()
    {
        if (session_)
            KVX2800T_Disable(session_->handle());
    }
    Rail(const Rail&) = delete;
    Rail& operator=(const Rail&) = delete;

    kvx2800t::Reading measure() { return channel().measure(); }

    /// Waits for the instrument and sees to its settings. Throws what stood in the way last.
    void recover()
    {
        for (int attempt = 1; !isBack(attempt); ++attempt)
            ;
    }

private:
    kvx2800t::Channel channel() { return session_->channel(3); }

    /// With FreshReplies the session connects again by itself; it is replaced when that does not help.
    bool isBack(int attempt)
    {
        constexpr int kAttemptsOfASession = 3;
        constexpr int kAttempts = 10;
        std::this_thread::sleep_for(plan_.pause);
        if (plan_.reopen || attempt > kAttemptsOfASession)
            session_.reset();
        try {
            connect();
            return true;
        } catch (const kvx2800t::Error& error) {
            if (!mayPass(error) || attempt == kAttempts)
                throw;
            return false;
        }
    }

    /// An instrument that was without power in between has lost its settings.
    void connect()
    {
        if (!session_)
            session_.emplace(resource_, options_);
        const bool kept = isConfigured(channel());
        if (!kept)
            configure(channel());
        say(kept ? "connected again, settings as they were" : "connected again, settings were lost and are set again");
    }

    std::string resource_;
    Plan plan_;
    kvx2800t::Options options_;
    std::optional<kvx2800t::Session> session_;
};

/// Whether the reading was good; after one that was not, the instrument is back.
bool read(Rail& rail, const std::string& name)
{
    try {
        const kvx2800t::Reading reading = rail.measure();
        say(name + ": " + withThreeDigits(reading.volts) + " V, " + withThreeDigits(reading.amperes) + " A");
        return true;
    } catch (const kvx2800t::Error& error) {
        if (!mayPass(error))
            throw;
        say(name + ": failed with " + hexadecimal(error.code()) + ", waiting for the instrument");
    }
    rail.recover();
    return false;
}

void run(const std::string& resource, const Plan& plan)
{
    Rail rail(resource, plan);
    for (int number = 1; number <= plan.readings; ++number) {
        const std::string name = "reading " + std::to_string(number);
        while (!read(rail, name))
            ;
        std::this_thread::sleep_for(plan.pause);
    }
}

} // namespace

int main(int argc, char* argv[])
{
    const std::string last = argc > 2 ? argv[argc - 1] : "";
    const int numbers = argc - (last == "--reopen" ? 3 : 2);
    if (numbers < 0 || numbers > 2) {
        static_cast<void>(std::fprintf(stderr, "usage: pulled_cable RESOURCE [READINGS [MILLISECONDS]] [--reopen]\n"));
        return EXIT_FAILURE;
    }
    try {
        Plan plan;
        plan.reopen = last == "--reopen";
        if (numbers > 0)
            plan.readings = std::stoi(argv[2]);
        if (numbers > 1)
            plan.pause = std::chrono::milliseconds(std::stoi(argv[3]));
        run(argv[1], plan);
        return EXIT_SUCCESS;
    } catch (const std::exception& exception) {
        static_cast<void>(std::fprintf(stderr, "pulled_cable: %s\n", exception.what()));
        return EXIT_FAILURE;
    }
}
