#include "tools/kvx2800t/command_line/commands/commands.h"
#include "tools/kvx2800t/command_line/failure.h"
#include "tools/kvx2800t/command_line/interruption.h"
#include "tools/kvx2800t/command_line/sampling.h"
#include "tools/kvx2800t/command_line/status_names.h"
#include "tools/kvx2800t/command_line/supply.h"
#include "tools/kvx2800t/command_line/units.h"

#include <charconv>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <ostream>
#include <system_error>

namespace command_line::commands
{
namespace
{

using Readings = std::vector<kvx2800t::Reading>;

std::string seconds(double time)
{
    return decimalText(time, 3);
}

/// How a log is written.
class LogFormat
{
public:
    explicit LogFormat(std::vector<std::string> channels) : channels_(std::move(channels)) {}
    virtual ~LogFormat() = default;
    LogFormat(const LogFormat&) = delete;
    LogFormat& operator=(const LogFormat&) = delete;

    /// What stands in front; with its line's end, as all texts.
    virtual std::string title() const = 0;
    virtual std::string row(double time, const Readings& readings) const = 0;
    virtual std::string gap(const Gap& gap) const = 0;

protected:
    const std::vector<std::string>& channels() const { return channels_; }

private:
    std::vector<std::string> channels_;
};

/// A table has rows of readings alone: a gap is where their times leap.
class CsvFormat : public LogFormat
{
public:
    using LogFormat::LogFormat;

    std::string title() const override
    {
        std::string text = "seconds";
        for (const std::string& channel : channels())
            for (const char* const unit : {" V", " A", " W"})
                text.append(",").append(channel).append(unit);
        return text + '\n';
    }

    std::string row(double time, const Readings& readings) const override
    {
        std::string text = seconds(time);
        for (const kvx2800t::Reading& reading : readings)
            text += ',' + decimalText(reading.volts, 3) + ',' + decimalText(reading.amperes, 3) + ',' +
                    decimalText(reading.watts, 3);
        return text + '\n';
    }

    std::string gap(const Gap& /*gap*/) const override { return ""; }
};

/// Numbers have three decimals in texts, and no more in JSON.
double rounded(double value)
{
    return std::round(value * 1000.0) / 1000.0;
}

/// An object on each line.
class JsonFormat : public LogFormat
{
public:
    using LogFormat::LogFormat;

    std::string title() const override { return ""; }

    std::string row(double time, const Readings& readings) const override
    {
        Document::Array items;
        for (std::size_t i = 0; i < readings.size(); ++i)
            items.emplace_back(Document::Object{{"channel", channels().at(i)},
                                                {"voltage", readings[i].volts},
                                                {"current", readings[i].amperes},
                                                {"power", readings[i].watts}});
        return line(Document::Object{{"time", rounded(time)}, {"channels", std::move(items)}});
    }

    std::string gap(const Gap& gap) const override
    {
        return line(Document::Object{{"gap", Document::Object{{"from", rounded(gap.from)},
                                                              {"to", rounded(gap.to)},
                                                              {"missed", std::int64_t{gap.missed}},
                                                              {"reason", gap.reason}}}});
    }

private:
    static std::string line(const Document& document) { return jsonText(document, Layout::OneLine) + '\n'; }
};

/// The file of a log, or the standard output for "-".
class LogFile
{
public:
    LogFile(const std::string& path, bool mayReplace, std::ostream& standardOutput) : path_(path), out_(standardOutput)
    {
        if (path == "-")
            return;
        // The path is UTF-8 on every host.
        const std::filesystem::path file(std::u8string(path.begin(), path.end()));
        std::error_code ignored;
        if (!mayReplace && std::filesystem::exists(file, ignored))
            throw Failure(ExitCode::File, path + ": is there already; --force replaces it");
        file_.open(file, std::ios::binary | std::ios::trunc);
        if (!file_)
            throw Failure(ExitCode::File, path + ": cannot be written");
    }

    bool isStandardOutput() const { return path_ == "-"; }

    /// What has been written is in the file.
    void write(const std::string& text)
    {
        std::ostream& stream = isStandardOutput() ? out_ : file_;
        if (!(stream << text << std::flush))
            throw Failure(ExitCode::File, path_ + ": cannot be written any more");
    }

private:
    std::string path_;
    std::ostream& out_;
    std::ofstream file_;
};

struct LogSettings
{
    double period = 1.0;
    double duration = std::numeric_limits<double>::infinity();
    std::int64_t count = std::numeric_limits<std::int64_t>::max(); ///< of readings
    std::string file = "-";
    bool isJson = false;
};

double timeOption(const Arguments& arguments, const std::string& name, double byDefault, double least)
{
    const auto text = arguments.one(name);
    if (!text)
        return byDefault;
    const auto time = parseQuantity(*text, Quantity::Time);
    if (!time || *time < least)
        throw UsageError(name + ": not " + std::string(example(Quantity::Time)) + ", of " + decimalText(least, 3) +
                         " s or more: " + *text);
    return *time;
}

std::int64_t countOption(const Arguments& arguments, std::int64_t byDefault)
{
    const auto text = arguments.one("--count");
    if (!text)
        return byDefault;
    std::int64_t count = 0;
    const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), count);
    if (error != std::errc() || end != text->data() + text->size() || count < 1)
        throw UsageError("--count: not a number of readings: " + *text);
    return count;
}

LogSettings settingsOf(const Arguments& arguments)
{
    if (arguments.has("--csv") && arguments.has("--json"))
        throw UsageError("--csv or --json, not both");
    LogSettings settings;
    settings.period = timeOption(arguments, "--every", settings.period, 0.001);
    settings.duration = timeOption(arguments, "--for", settings.duration, 0.0);
    settings.count = countOption(arguments, settings.count);
    settings.isJson = arguments.has("--json");
    settings.file = arguments.one(settings.isJson ? "--json" : "--csv").value_or("-");
    return settings;
}

std::unique_ptr<LogFormat> formatOf(bool isJson, const std::vector<std::string>& channels)
{
    if (isJson)
        return std::make_unique<JsonFormat>(channels);
    return std::make_unique<CsvFormat>(channels);
}

std::string selectorOf(const std::vector<std::string>& channels)
{
    std::string selector;
    for (const std::string& channel : channels)
        selector += (selector.empty() ? "" : ",") + channel;
    return selector;
}

/// A log while it is written.
class Log
{
public:
    Log(const kvx2800t::Session& supply, const std::vector<std::string>& channels, const LogSettings& settings,
        bool mayReplace, Console& console)
        : supply_(supply), selector_(selectorOf(channels)), settings_(settings), console_(console),
          format_(formatOf(settings.isJson, channels)), file_(settings.file, mayReplace, console.out),
          progress_(console), schedule_(settings.period)
    {
    }

    void run()
    {
        start_ = Clock::now();
        file_.write(format_->title());
        while (!isOver()) {
            interruption_.waitUntil(
                start_ + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(schedule_.due())));
            if (isOver())
                break;
            takeReading();
            gaps_.miss(schedule_.advance(now()), "the readings before took too long");
            showProgress();
        }
        progress_.wipe();
        report(gaps_.end(now()));
        summarise();
    }

private:
    using Clock = std::chrono::steady_clock;

    double now() const { return std::chrono::duration<double>(Clock::now() - start_).count(); }

    bool isOver() const
    {
        return interruption_.isRequested() || taken_ >= settings_.count || schedule_.due() > settings_.duration;
    }

    void takeReading()
    {
        const double time = now();
        try {
            const Readings readings = supply_.measureAll(selector_);
            report(gaps_.read(time));
            file_.write(format_->row(time, readings));
            ++taken_;
        } catch (const kvx2800t::Error& error) {
            const ExitCode code = exitCodeOf(error.code(), Phase::Working);
            if (code != ExitCode::LinkFailed && code != ExitCode::WrongInstrument)
                throw;
            // With the profile the next reading looks for the instrument by itself.
            gaps_.miss(1, statusText(error.code()) + ": " + error.text());
        }
    }

    void report(const std::optional<Gap>& gap)
    {
        if (!gap)
            return;
        progress_.wipe();
        file_.write(format_->gap(*gap));
        console_.errors << "gap from " << seconds(gap->from) << " s to " << seconds(gap->to) << " s, "
                        << counted(gap->missed, "reading") << " missing: " << gap->reason << '\n'
                        << std::flush;
    }

    void showProgress()
    {
        if (!file_.isStandardOutput())
            progress_.show(seconds(now()) + " s, " + counted(taken_, "reading") + ", " + counted(gaps_.gaps(), "gap"));
    }

    void summarise()
    {
        console_.errors << counted(taken_, "reading") << " in " << seconds(now()) << " s, "
                        << counted(gaps_.gaps(), "gap") << ", " << counted(gaps_.missed(), "reading") << " missing\n";
    }

    const kvx2800t::Session& supply_;
    std::string selector_;
    LogSettings settings_;
    Console& console_;
    std::unique_ptr<LogFormat> format_;
    LogFile file_;
    Progress progress_;
    Interruption interruption_;
    Schedule schedule_;
    GapWatch gaps_;
    Clock::time_point start_;
    std::int64_t taken_ = 0;
};

} // namespace

void log(const Arguments& arguments, Console& console)
{
    const LogSettings settings = settingsOf(arguments);
    const kvx2800t::Session supply = openSupply(arguments);
    const auto channels = channelsOf(supply, arguments.one("CHANNELS").value_or(""));
    // A selector that is wrong is no gap, and takes away no log that is there.
    static_cast<void>(supply.measureAll(selectorOf(channels)));
    Log(supply, channels, settings, arguments.has("--force"), console).run();
}

} // namespace command_line::commands
