/**
 * @file kvx2800t.hpp
 * The driver for C++17 programs and later: sessions that close themselves, channels as objects, statuses as exceptions.
 *
 * @code
 * kvx2800t::Session supply("TCPIP0::192.168.1.20::5025::SOCKET");
 * kvx2800t::Channel rail = supply.channel(1);
 * rail.voltageLevel().set(5.0);
 * rail.outputEnabled().set(true);
 * auto [volts, amperes, watts] = rail.measure();
 * @endcode
 *
 * Options have types, and names that say what they do. C++20 has designated initialisers for them:
 *
 * @code
 * kvx2800t::Session supply("BenchSupply", {.reset = true, .queryInstrumentStatus = true, .ioTimeout = 500ms});
 * @endcode
 *
 * A call that fails throws kvx2800t::Error. One that ends with a warning does not: functions without another result
 * return it, a positive number, and VI_SUCCESS otherwise. An argument that the driver could not be told, such as a text
 * with a NUL in it, is std::invalid_argument, and the driver is not called. Without Options::safeErrors the driver's
 * own exceptions pass through unchanged and leave the session locked by the thread, as KVX2800T.h says. What a function
 * does, and which channels, values and units it takes, is said in KVX2800T.h and KVX2800TInstrument.h, whose functions
 * have the same names.
 */
#pragma once

#include <KVX2800T.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <functional>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace kvx2800t
{

/// A call that has failed.
class Error : public std::runtime_error
{
public:
    Error(ViStatus code, std::string text)
        : std::runtime_error(hexadecimal(code) + " " + text), code_(code), text_(std::move(text))
    {
    }

    /// The status, to be compared with the names in KVX2800T.h.
    ViStatus code() const noexcept { return code_; }

    /// What was recorded for it; what() has the code in front.
    const std::string& text() const noexcept { return text_; }

private:
    static std::string hexadecimal(ViStatus code)
    {
        std::array<char, 16> text{};
        static_cast<void>(
            std::snprintf(text.data(), text.size(), "0x%08lX", static_cast<unsigned long>(code) & 0xFFFFFFFFUL));
        return text.data();
    }

    ViStatus code_;
    std::string text_;
};

enum class CurrentLimitBehavior : ViInt32
{
    regulate = KVX2800T_VAL_CURRENT_REGULATE,
    trip = KVX2800T_VAL_CURRENT_TRIP,
};

enum class RangeType : ViInt32
{
    current = KVX2800T_VAL_RANGE_CURRENT,
    voltage = KVX2800T_VAL_RANGE_VOLTAGE,
};

enum class OutputState : ViInt32
{
    constantVoltage = KVX2800T_VAL_OUTPUT_CONSTANT_VOLTAGE,
    constantCurrent = KVX2800T_VAL_OUTPUT_CONSTANT_CURRENT,
    overVoltage = KVX2800T_VAL_OUTPUT_OVER_VOLTAGE,
    overCurrent = KVX2800T_VAL_OUTPUT_OVER_CURRENT,
    unregulated = KVX2800T_VAL_OUTPUT_UNREGULATED,
};

enum class MeasurementType : ViInt32
{
    current = KVX2800T_VAL_MEASURE_CURRENT,
    voltage = KVX2800T_VAL_MEASURE_VOLTAGE,
    power = KVX2800T_VAL_MEASURE_POWER, ///< for Channel::measure only
};

enum class SourceMode : ViInt32
{
    normal = KVX2800T_VAL_SOURCE_MODE_NORMAL,
    series = KVX2800T_VAL_SOURCE_MODE_SERIES,
    parallel = KVX2800T_VAL_SOURCE_MODE_PARALLEL,
};

enum class Regulation : ViInt32
{
    constantVoltage = KVX2800T_VAL_REGULATION_CONSTANT_VOLTAGE,
    constantCurrent = KVX2800T_VAL_REGULATION_CONSTANT_CURRENT,
};

enum class CurrentRange : ViInt32
{
    automatic = KVX2800T_VAL_CURRENT_RANGE_AUTO,
    low = KVX2800T_VAL_CURRENT_RANGE_LOW,
    high = KVX2800T_VAL_CURRENT_RANGE_HIGH,
};

/// Samples per second.
enum class CurrentRate : ViInt32
{
    rate62 = KVX2800T_VAL_CURRENT_RATE_62,
    rate4000 = KVX2800T_VAL_CURRENT_RATE_4000,
    rate8000 = KVX2800T_VAL_CURRENT_RATE_8000,
};

enum class ProtectionDelay : ViInt32
{
    any = KVX2800T_VAL_PROTECTION_DELAY_ANY,
    scheduled = KVX2800T_VAL_PROTECTION_DELAY_SCHEDULED,
};

enum class PowerOnState : ViInt32
{
    reset = KVX2800T_VAL_POWER_ON_RESET,
    last = KVX2800T_VAL_POWER_ON_LAST,
    lastOff = KVX2800T_VAL_POWER_ON_LAST_OFF,
};

enum class Pairing : ViInt32
{
    off = KVX2800T_VAL_PAIRING_OFF,
    series = KVX2800T_VAL_PAIRING_SERIES,
    parallel = KVX2800T_VAL_PAIRING_PARALLEL,
};

enum class OutputOffMode : ViInt32
{
    bleederOn = KVX2800T_VAL_OUTPUT_OFF_BLEEDER_ON,
    bleederOff = KVX2800T_VAL_OUTPUT_OFF_BLEEDER_OFF,
};

enum class ListState : ViInt32
{
    stopped = KVX2800T_VAL_LIST_STOPPED,
    ready = KVX2800T_VAL_LIST_READY,
    running = KVX2800T_VAL_LIST_RUNNING,
    paused = KVX2800T_VAL_LIST_PAUSED,
};

enum class ListEnd : ViInt32
{
    off = KVX2800T_VAL_LIST_END_OFF,
    last = KVX2800T_VAL_LIST_END_LAST,
};

enum class Waveform : ViInt32
{
    sine = KVX2800T_VAL_LIST_WAVEFORM_SINE,
    pulse = KVX2800T_VAL_LIST_WAVEFORM_PULSE,
    ramp = KVX2800T_VAL_LIST_WAVEFORM_RAMP,
    up = KVX2800T_VAL_LIST_WAVEFORM_UP,
    down = KVX2800T_VAL_LIST_WAVEFORM_DOWN,
    upDown = KVX2800T_VAL_LIST_WAVEFORM_UP_DOWN,
    rise = KVX2800T_VAL_LIST_WAVEFORM_RISE,
    fall = KVX2800T_VAL_LIST_WAVEFORM_FALL,
};

/// What follows the waveform of a list template.
enum class ListObject : ViInt32
{
    voltage = KVX2800T_VAL_LIST_OBJECT_VOLTAGE,
    current = KVX2800T_VAL_LIST_OBJECT_CURRENT,
};

enum class DelayState : ViInt32
{
    stopped = KVX2800T_VAL_DELAY_STOPPED,
    running = KVX2800T_VAL_DELAY_RUNNING,
};

enum class DelayEnd : ViInt32
{
    off = KVX2800T_VAL_DELAY_END_OFF,
    on = KVX2800T_VAL_DELAY_END_ON,
    last = KVX2800T_VAL_DELAY_END_LAST,
};

/// How the times of generated groups change.
enum class DelayTimes : ViInt32
{
    fixed = KVX2800T_VAL_DELAY_GENERATE_FIXED,
    increasing = KVX2800T_VAL_DELAY_GENERATE_INCREASING,
    decreasing = KVX2800T_VAL_DELAY_GENERATE_DECREASING,
};

enum class DelayPattern : ViInt32
{
    offOn = KVX2800T_VAL_DELAY_PATTERN_OFF_ON,
    onOff = KVX2800T_VAL_DELAY_PATTERN_ON_OFF,
};

enum class Parity
{
    none,
    odd,
    even,
    mark,
    space,
};

enum class StopBits
{
    one,
    oneAndHalf,
    two,
};

enum class FlowControl
{
    none,
    xonXoff,
    rtsCts,
    dtrDsr,
};

/// A time-out that never comes.
inline constexpr std::chrono::milliseconds infinite = (std::chrono::milliseconds::max)();

/// How a session is opened. What is not set is left to the driver and to the configuration store.
struct Options
{
    /// Whether to fail unless the driver supports the instrument's model.
    bool idQuery = false;
    bool reset = false;

    std::optional<bool> cache{};
    std::optional<bool> interchangeCheck{};
    std::optional<bool> queryInstrumentStatus{};
    std::optional<bool> rangeCheck{};
    std::optional<bool> recordCoercions{};
    std::optional<bool> simulate{};

    std::optional<std::string> model{};

    /// Switches the six behaviours below on, each unless it is set here. They, the model and the settings of the
    /// connection take the place of all that the configuration store's DriverSetup says; without any of them it holds.
    bool profile = true;
    std::optional<bool> safeErrors{};         ///< the driver throws nothing and leaves no session locked
    std::optional<bool> freshReplies{};       ///< no reply answers another query; a lost connection is made anew
    std::optional<bool> detailedErrors{};     ///< texts of errors name resource, channel, value and limits
    std::optional<bool> trueReadings{};       ///< measure reads the meters, output states are the registers'
    std::optional<bool> checkedOptions{};     ///< options and identities that make no sense fail the opening
    std::optional<bool> statefulSimulation{}; ///< a simulated instrument keeps what it is set to

    std::optional<std::chrono::milliseconds> openTimeout{}; ///< or `infinite`
    std::optional<std::chrono::milliseconds> ioTimeout{};   ///< or `infinite`

    std::optional<unsigned> baudRate{};
    std::optional<unsigned> dataBits{}; ///< 5 to 8
    std::optional<Parity> parity{};
    std::optional<StopBits> stopBits{};
    std::optional<FlowControl> flowControl{};

    std::optional<unsigned> messageLog{}; ///< so many of the last messages are remembered: 1 to 10000

    /// The option string of KVX2800T_InitWithOptions. Throws std::invalid_argument for what cannot be said in it.
    std::string text() const;
};

namespace detail
{

/// Entries of an option string, with commas in between.
class OptionList
{
public:
    explicit OptionList(char assignment) : assignment_(assignment) {}

    const std::string& text() const { return text_; }

    void add(const char* name, const std::string& value)
    {
        text_ += (text_.empty() ? "" : ",") + (name + (assignment_ + value));
    }

    void add(const char* name, std::optional<bool> value)
    {
        if (value)
            add(name, std::string(*value ? "1" : "0"));
    }

    void add(const char* name, std::optional<unsigned> value)
    {
        if (value)
            add(name, std::to_string(*value));
    }

    void add(const char* name, std::optional<std::chrono::milliseconds> value)
    {
        if (value && value->count() < 0)
            throw std::invalid_argument("a time-out is not negative");
        if (value)
            add(name, *value == infinite ? "Infinite" : std::to_string(value->count()));
    }

    /// One of a list of words.
    template <class Enumeration>
    void add(const char* name, std::optional<Enumeration> value, const std::vector<std::string>& words)
    {
        if (value)
            add(name, words.at(static_cast<std::size_t>(*value)));
    }

private:
    char assignment_;
    std::string text_;
};

/// A value in an option string ends at a comma, the string at a line's end or a NUL; blanks around it are no part of
/// it.
inline const std::string& optionWord(const std::string& word)
{
    const auto isControl = [](unsigned char c) { return c < 0x20 || c == 0x7F; };
    if (word.empty() || word.front() == ' ' || word.back() == ' ' ||
        word.find_first_of(",;:=\"'") != std::string::npos || std::any_of(word.begin(), word.end(), isControl))
        throw std::invalid_argument("no separators, quotes, control characters or blanks at its ends in an option");
    return word;
}

inline unsigned dataBits(unsigned count)
{
    if (count < 5 || count > 8)
        throw std::invalid_argument("a character has 5 to 8 data bits");
    return count;
}

} // namespace detail

inline std::string Options::text() const
{
    detail::OptionList setup(':');
    if (model)
        setup.add("Model", detail::optionWord(*model));
    if (profile)
        setup.add("Profile", std::string("Bench"));
    setup.add("SafeErrors", safeErrors);
    setup.add("FreshReplies", freshReplies);
    setup.add("DetailedErrors", detailedErrors);
    setup.add("TrueReadings", trueReadings);
    setup.add("CheckedOptions", checkedOptions);
    setup.add("StatefulSimulation", statefulSimulation);
    setup.add("OpenTimeout", openTimeout);
    setup.add("IoTimeout", ioTimeout);
    setup.add("BaudRate", baudRate);
    if (dataBits)
        setup.add("DataBits", std::optional<unsigned>(detail::dataBits(*dataBits)));
    setup.add("Parity", parity, {"None", "Odd", "Even", "Mark", "Space"});
    setup.add("StopBits", stopBits, {"1", "1.5", "2"});
    setup.add("FlowControl", flowControl, {"None", "XonXoff", "RtsCts", "DtrDsr"});
    setup.add("MessageLog", messageLog);

    detail::OptionList options('=');
    options.add("Cache", cache);
    options.add("InterchangeCheck", interchangeCheck);
    options.add("QueryInstrStatus", queryInstrumentStatus);
    options.add("RangeCheck", rangeCheck);
    options.add("RecordCoercions", recordCoercions);
    options.add("Simulate", simulate);
    if (!setup.text().empty())
        options.add("DriverSetup", setup.text());
    return options.text();
}

/// An attribute that can only be read.
template <class Value>
struct Fact
{
    ViAttr id;
};

/// An attribute of the session that can be read and set.
template <class Value>
struct Setting
{
    ViAttr id;
};

/// An attribute that can be read of one channel and set on several.
template <class Value>
struct ChannelSetting
{
    ViAttr id;
};

/// Every attribute with its type, so that a wrong one does not compile.
namespace attribute
{
inline constexpr Fact<std::string> specificDriverDescription{KVX2800T_ATTR_SPECIFIC_DRIVER_DESCRIPTION};
inline constexpr Fact<std::string> specificDriverPrefix{KVX2800T_ATTR_SPECIFIC_DRIVER_PREFIX};
inline constexpr Fact<std::string> specificDriverVendor{KVX2800T_ATTR_SPECIFIC_DRIVER_VENDOR};
inline constexpr Fact<std::string> specificDriverRevision{KVX2800T_ATTR_SPECIFIC_DRIVER_REVISION};
inline constexpr Fact<ViInt32> classSpecMajorVersion{KVX2800T_ATTR_SPECIFIC_DRIVER_CLASS_SPEC_MAJOR_VERSION};
inline constexpr Fact<ViInt32> classSpecMinorVersion{KVX2800T_ATTR_SPECIFIC_DRIVER_CLASS_SPEC_MINOR_VERSION};
inline constexpr Fact<std::string> groupCapabilities{KVX2800T_ATTR_GROUP_CAPABILITIES};
inline constexpr Fact<std::string> supportedInstrumentModels{KVX2800T_ATTR_SUPPORTED_INSTRUMENT_MODELS};
inline constexpr Fact<ViInt32> channelCount{KVX2800T_ATTR_CHANNEL_COUNT};
inline constexpr Fact<std::string> logicalName{KVX2800T_ATTR_LOGICAL_NAME};
inline constexpr Fact<std::string> ioResourceDescriptor{KVX2800T_ATTR_IO_RESOURCE_DESCRIPTOR};
inline constexpr Fact<std::string> driverSetup{KVX2800T_ATTR_DRIVER_SETUP};
inline constexpr Fact<std::string> instrumentManufacturer{KVX2800T_ATTR_INSTRUMENT_MANUFACTURER};
inline constexpr Fact<std::string> instrumentModel{KVX2800T_ATTR_INSTRUMENT_MODEL};
inline constexpr Fact<std::string> instrumentFirmwareRevision{KVX2800T_ATTR_INSTRUMENT_FIRMWARE_REVISION};

inline constexpr Setting<bool> rangeCheck{KVX2800T_ATTR_RANGE_CHECK};
inline constexpr Setting<bool> queryInstrumentStatus{KVX2800T_ATTR_QUERY_INSTRUMENT_STATUS};
inline constexpr Setting<bool> cache{KVX2800T_ATTR_CACHE};
inline constexpr Setting<bool> simulate{KVX2800T_ATTR_SIMULATE};
inline constexpr Setting<bool> recordCoercions{KVX2800T_ATTR_RECORD_COERCIONS};
inline constexpr Setting<bool> interchangeCheck{KVX2800T_ATTR_INTERCHANGE_CHECK};

inline constexpr ChannelSetting<double> voltageLevel{KVX2800T_ATTR_VOLTAGE_LEVEL};
inline constexpr ChannelSetting<bool> ovpEnabled{KVX2800T_ATTR_OVP_ENABLED};
inline constexpr ChannelSetting<double> ovpLimit{KVX2800T_ATTR_OVP_LIMIT};
inline constexpr ChannelSetting<CurrentLimitBehavior> currentLimitBehavior{KVX2800T_ATTR_CURRENT_LIMIT_BEHAVIOR};
inline constexpr ChannelSetting<double> currentLimit{KVX2800T_ATTR_CURRENT_LIMIT};
inline constexpr ChannelSetting<bool> outputEnabled{KVX2800T_ATTR_OUTPUT_ENABLED};
} // namespace attribute

struct Revisions
{
    std::string driver;
    std::string instrument;
};

/// An entry of the instrument's error queue; code 0 when it is empty.
struct InstrumentError
{
    ViInt32 code = 0;
    std::string message;
};

struct SelfTestResult
{
    int code = 0;
    std::string message;
};

/// What the meters of an output read.
struct Reading
{
    double volts = 0.0;
    double amperes = 0.0;
    double watts = 0.0;
};

/// The standard event status register.
struct EventStatus
{
    ViInt32 bits = 0;

    bool queryError() const { return (bits & 4) != 0; }
    bool deviceError() const { return (bits & 8) != 0; }
    bool executionError() const { return (bits & 16) != 0; }
    bool commandError() const { return (bits & 32) != 0; }
};

/// A questionable register of a channel.
struct QuestionableStatus
{
    ViInt32 bits = 0;

    bool constantCurrent() const { return (bits & 1) != 0; }
    bool constantVoltage() const { return (bits & 2) != 0; }
    bool overVoltage() const { return (bits & 4) != 0; }
    bool overCurrent() const { return (bits & 8) != 0; }
};

/// Which protections have switched an output off.
struct ProtectionState
{
    bool overVoltage = false;
    bool overCurrent = false;

    bool tripped() const { return overVoltage || overCurrent; }
};

/// The levels of an output for a time.
struct ListGroup
{
    double volts = 0.0;
    double amperes = 0.0;
    double seconds = 0.0;
};

/// An output on or off for a time.
struct DelayGroup
{
    bool on = false;
    double seconds = 0.0;
};

/// How far a list or a delay program has come; group 0 when it is stopped.
template <class State>
struct ProgramStatus
{
    State state{};
    double remainingSeconds = 0.0;
    ViInt32 group = 0;
    ViInt32 remainingCycles = 0; ///< the present one included; 0 without end, too
};

/// What a list template's waveform moves, and the level of the other quantity.
struct ListTemplateObject
{
    ListObject object = ListObject::voltage;
    double level = 0.0; ///< amperes when the object is the voltage, volts when it is the current
};

namespace detail
{

/// For functions that take a buffer without its size.
using Text = std::array<char, 256>;

/// How the driver passes a value: switches and enumerations have types of their own.
template <class Type>
using Raw = std::conditional_t<std::is_same_v<Type, bool>, ViBoolean,
                               std::conditional_t<std::is_same_v<Type, double>, ViReal64, ViInt32>>;

template <class Type>
constexpr Raw<Type> toDriver(Type value)
{
    if constexpr (std::is_same_v<Type, bool>)
        return value ? VI_TRUE : VI_FALSE;
    else
        return static_cast<Raw<Type>>(value);
}

template <class Type>
constexpr Type fromDriver(Raw<Type> value)
{
    if constexpr (std::is_same_v<Type, bool>)
        return value != VI_FALSE;
    else
        return static_cast<Type>(value);
}

/// A text for the driver, which would end at a NUL without a word.
inline const char* terminated(const std::string& text)
{
    if (text.find('\0') != std::string::npos)
        throw std::invalid_argument("a text for the driver cannot have a NUL in it");
    return text.c_str();
}

/// A count for the driver.
inline ViInt32 countOf(std::size_t count)
{
    if (count > 0x7FFFFFFF)
        throw std::invalid_argument("a count for the driver has 31 bits");
    return static_cast<ViInt32>(count);
}

/// The driver's own message for a status; of VISA's it has none.
inline std::string messageOf(ViStatus status)
{
    Text text{};
    if (KVX2800T_error_message(VI_NULL, status, text.data()) < VI_SUCCESS)
        return "";
    return text.data();
}

/// What the session, or the thread for VI_NULL, has recorded for a status; reading clears it.
inline std::string recordedText(ViSession vi, ViStatus status)
{
    const ViInt32 size = KVX2800T_GetError(vi, nullptr, 0, nullptr);
    if (size <= 0)
        return messageOf(status);
    std::string text(static_cast<std::size_t>(size), '\0');
    ViStatus code = VI_SUCCESS;
    KVX2800T_GetError(vi, &code, size, text.data());
    text.resize(std::strlen(text.c_str()));
    return code == status ? text : messageOf(status);
}

/// Throws for an error; returns a warning.
inline ViStatus check(ViSession vi, ViStatus status)
{
    if (status < VI_SUCCESS)
        throw Error(status, recordedText(vi, status));
    return status;
}

/// A text attribute of any length: a positive status of its function is the size that is needed.
inline std::string readString(ViSession vi, const char* channel, ViAttr id)
{
    std::string text;
    ViInt32 needed = check(vi, KVX2800T_GetAttributeViString(vi, channel, id, 0, nullptr));
    while (needed > static_cast<ViInt32>(text.size())) {
        text.resize(static_cast<std::size_t>(needed));
        needed = check(vi, KVX2800T_GetAttributeViString(vi, channel, id, needed, text.data()));
    }
    text.resize(std::strlen(text.c_str()));
    return text;
}

inline ViStatus readNumber(ViSession vi, const char* channel, ViAttr id, ViBoolean* value)
{
    return KVX2800T_GetAttributeViBoolean(vi, channel, id, value);
}

inline ViStatus readNumber(ViSession vi, const char* channel, ViAttr id, ViReal64* value)
{
    return KVX2800T_GetAttributeViReal64(vi, channel, id, value);
}

inline ViStatus readNumber(ViSession vi, const char* channel, ViAttr id, ViInt32* value)
{
    return KVX2800T_GetAttributeViInt32(vi, channel, id, value);
}

inline ViStatus writeNumber(ViSession vi, const char* channels, ViAttr id, ViBoolean value)
{
    return KVX2800T_SetAttributeViBoolean(vi, channels, id, value);
}

inline ViStatus writeNumber(ViSession vi, const char* channels, ViAttr id, ViReal64 value)
{
    return KVX2800T_SetAttributeViReal64(vi, channels, id, value);
}

inline ViStatus writeNumber(ViSession vi, const char* channels, ViAttr id, ViInt32 value)
{
    return KVX2800T_SetAttributeViInt32(vi, channels, id, value);
}

template <class Type>
Type read(ViSession vi, const char* channel, ViAttr id)
{
    if constexpr (std::is_same_v<Type, std::string>)
        return readString(vi, channel, id);
    else {
        Raw<Type> value{};
        check(vi, readNumber(vi, channel, id, &value));
        return fromDriver<Type>(value);
    }
}

template <class Type>
ViStatus write(ViSession vi, const char* channels, ViAttr id, Type value)
{
    return check(vi, writeNumber(vi, channels, id, toDriver(value)));
}

} // namespace detail

/// Something that can be read and set: `supply.channel(3).remoteSense().set(true)`.
template <class Type>
class Value
{
public:
    using Raw = detail::Raw<Type>;

    Value(ViSession vi, std::function<ViStatus(Raw)> setter, std::function<ViStatus(Raw*)> getter)
        : vi_(vi), setter_(std::move(setter)), getter_(std::move(getter))
    {
    }

    Type get() const
    {
        Raw value{};
        detail::check(vi_, getter_(&value));
        return detail::fromDriver<Type>(value);
    }

    ViStatus set(Type value) const { return detail::check(vi_, setter_(detail::toDriver(value))); }

private:
    ViSession vi_;
    std::function<ViStatus(Raw)> setter_;
    std::function<ViStatus(Raw*)> getter_;
};

/// Channels of a session, and how functions of the driver are called on them.
class Selection
{
public:
    Selection(ViSession vi, std::string channels) : vi_(vi), channels_(std::move(channels)) {}

    const std::string& name() const { return channels_; }

protected:
    /// Calls a function with the channels and further arguments.
    template <class Function, class... Arguments>
    ViStatus call(Function function, Arguments... arguments) const
    {
        return detail::check(vi_, function(vi_, detail::terminated(channels_), arguments...));
    }

    /// Calls a function whose one output is behind its other arguments.
    template <class Type, class Function, class... Arguments>
    Type query(Function function, Arguments... arguments) const
    {
        detail::Raw<Type> value{};
        call(function, arguments..., &value);
        return detail::fromDriver<Type>(value);
    }

    template <class Type, class Setter, class Getter>
    Value<Type> value(Setter setter, Getter getter) const
    {
        using Raw = detail::Raw<Type>;
        return {vi_,
                [vi = vi_, channels = channels_, setter](Raw value) {
                    return setter(vi, detail::terminated(channels), value);
                },
                [vi = vi_, channels = channels_, getter](Raw* value) {
                    return getter(vi, detail::terminated(channels), value);
                }};
    }

    template <class Type>
    Value<Type> value(ChannelSetting<Type> attribute) const
    {
        using Raw = detail::Raw<Type>;
        return {vi_,
                [vi = vi_, channels = channels_, attribute](Raw value) {
                    return detail::writeNumber(vi, detail::terminated(channels), attribute.id, value);
                },
                [vi = vi_, channels = channels_, attribute](Raw* value) {
                    return detail::readNumber(vi, detail::terminated(channels), attribute.id, value);
                }};
    }

    template <class Group>
    Group group() const
    {
        return Group(vi_, channels_);
    }

private:
    ViSession vi_;
    std::string channels_;
};

/// The protections of a channel. The instrument has commands of its source for them and, with "output" in front of the
/// name, of its outputs.
class Protection : public Selection
{
public:
    using Selection::Selection;

    ViStatus configureOvp(bool enabled, double volts) const
    {
        return call(KVX2800T_ConfigureOVP, detail::toDriver(enabled), volts);
    }

    /// Volts.
    Value<double> ovpLimit() const { return value(attribute::ovpLimit); }
    Value<bool> ovpEnabled() const { return value(attribute::ovpEnabled); }

    /// Amperes.
    Value<double> currentLevel() const
    {
        return value<double>(KVX2800T_ConfigureCurrentProtectionLevel, KVX2800T_QueryCurrentProtectionLevel);
    }
    /// Seconds.
    Value<double> currentDelay() const
    {
        return value<double>(KVX2800T_ConfigureCurrentProtectionDelay, KVX2800T_QueryCurrentProtectionDelay);
    }
    Value<ProtectionDelay> currentDelayMode() const
    {
        return value<ProtectionDelay>(KVX2800T_ConfigureCurrentProtectionDelayMode,
                                      KVX2800T_QueryCurrentProtectionDelayMode);
    }

    /// Volts.
    Value<double> outputOvpValue() const { return value<double>(KVX2800T_ConfigureOVPValue, KVX2800T_QueryOVPValue); }
    Value<bool> outputOvpEnabled() const { return value<bool>(KVX2800T_ConfigureOVPEnabled, KVX2800T_QueryOVPEnabled); }
    /// Amperes.
    Value<double> outputOcpValue() const { return value<double>(KVX2800T_ConfigureOCPValue, KVX2800T_QueryOCPValue); }
    Value<bool> outputOcpEnabled() const { return value<bool>(KVX2800T_ConfigureOCPEnabled, KVX2800T_QueryOCPEnabled); }
    /// Seconds.
    Value<double> outputOcpDelay() const { return value<double>(KVX2800T_ConfigureOCPDelay, KVX2800T_QueryOCPDelay); }
    Value<ProtectionDelay> outputOcpDelayMode() const
    {
        return value<ProtectionDelay>(KVX2800T_ConfigureOCPDelayMode, KVX2800T_QueryOCPDelayMode);
    }

    /// What has tripped. Switching the output on ends a trip.
    ProtectionState state() const
    {
        ViBoolean overVoltage = VI_FALSE;
        ViBoolean overCurrent = VI_FALSE;
        call(KVX2800T_QueryProtectionState, &overVoltage, &overCurrent);
        return {detail::fromDriver<bool>(overVoltage), detail::fromDriver<bool>(overCurrent)};
    }

    /// There is no way to end a trip but to switch the output on: throws 0xBFFA4216 with the profile, and changes
    /// nothing without it.
    ViStatus reset() const { return call(KVX2800T_ResetOutputProtection); }
};

/// What a channel is doing, from its registers.
class ChannelState : public Selection
{
public:
    using Selection::Selection;

    bool is(OutputState state) const { return query<bool>(KVX2800T_QueryOutputState, detail::toDriver(state)); }
    Regulation regulation() const { return query<Regulation>(KVX2800T_QueryRegulationState); }

    QuestionableStatus condition() const { return {query<ViInt32>(KVX2800T_QueryQuestionableCondition)}; }
    /// What the condition has been since this was read last.
    QuestionableStatus event() const { return {query<ViInt32>(KVX2800T_QueryQuestionableEvent)}; }
};

/// Groups of levels that the output takes one after the other.
class ListProgram : public Selection
{
public:
    using Selection::Selection;

    /// Replaces all groups.
    ViStatus load(const std::vector<ListGroup>& groups) const
    {
        std::vector<double> volts;
        std::vector<double> amperes;
        std::vector<double> seconds;
        for (const ListGroup& group : groups) {
            volts.push_back(group.volts);
            amperes.push_back(group.amperes);
            seconds.push_back(group.seconds);
        }
        return call(KVX2800T_LoadList, detail::countOf(groups.size()), volts.data(), amperes.data(), seconds.data());
    }

    /// Switches the list and the output on, also to let a paused list go on.
    ViStatus run() const { return call(KVX2800T_RunList); }
    /// Switches the output off.
    ViStatus pause() const { return call(KVX2800T_PauseList); }
    /// Applies the end state.
    ViStatus stop() const { return enabled().set(false); }

    ProgramStatus<ListState> status() const
    {
        ViInt32 state = 0;
        ProgramStatus<ListState> status;
        call(KVX2800T_QueryListStatus, &state, &status.remainingSeconds, &status.group, &status.remainingCycles);
        status.state = static_cast<ListState>(state);
        return status;
    }

    Value<bool> enabled() const { return value<bool>(KVX2800T_ConfigureListEnabled, KVX2800T_QueryListEnabled); }
    /// 0: without end.
    Value<ViInt32> cycles() const { return value<ViInt32>(KVX2800T_ConfigureListCycles, KVX2800T_QueryListCycles); }
    Value<ListEnd> endState() const
    {
        return value<ListEnd>(KVX2800T_ConfigureListEndState, KVX2800T_QueryListEndState);
    }

    ViInt32 groupCount() const { return query<ViInt32>(KVX2800T_QueryListGroupCount); }
    /// Groups count from 1.
    ListGroup group(ViInt32 number) const
    {
        ListGroup group;
        call(KVX2800T_QueryListGroup, number, &group.volts, &group.amperes, &group.seconds);
        return group;
    }
    /// One more than there are groups appends.
    ViStatus setGroup(ViInt32 number, const ListGroup& group) const
    {
        return call(KVX2800T_ConfigureListGroup, number, group.volts, group.amperes, group.seconds);
    }
    ViStatus insertGroup(ViInt32 number) const { return call(KVX2800T_InsertListGroup, number); }
    ViStatus deleteGroup(ViInt32 number) const { return call(KVX2800T_DeleteListGroup, number); }
    ViStatus clear() const { return call(KVX2800T_ClearListGroups); }
};

/// A waveform that the groups of a list are made from.
class ListTemplate : public Selection
{
public:
    using Selection::Selection;

    Value<Waveform> waveform() const
    {
        return value<Waveform>(KVX2800T_ConfigureListTemplateWaveform, KVX2800T_QueryListTemplateWaveform);
    }

    ListTemplateObject object() const
    {
        ViInt32 object = 0;
        double level = 0.0;
        call(KVX2800T_QueryListTemplateObject, &object, &level);
        return {static_cast<ListObject>(object), level};
    }
    ViStatus setObject(const ListTemplateObject& object) const
    {
        return call(KVX2800T_ConfigureListTemplateObject, detail::toDriver(object.object), object.level);
    }

    /// Volts or amperes.
    Value<double> maximum() const
    {
        return value<double>(KVX2800T_ConfigureListTemplateMaximum, KVX2800T_QueryListTemplateMaximum);
    }
    /// Volts or amperes.
    Value<double> minimum() const
    {
        return value<double>(KVX2800T_ConfigureListTemplateMinimum, KVX2800T_QueryListTemplateMinimum);
    }
    /// Seconds.
    Value<double> period() const
    {
        return value<double>(KVX2800T_ConfigureListTemplatePeriod, KVX2800T_QueryListTemplatePeriod);
    }
    /// Seconds of one group.
    Value<double> interval() const
    {
        return value<double>(KVX2800T_ConfigureListTemplateInterval, KVX2800T_QueryListTemplateInterval);
    }
    /// 0: without end.
    Value<ViInt32> cycles() const
    {
        return value<ViInt32>(KVX2800T_ConfigureListTemplateCycles, KVX2800T_QueryListTemplateCycles);
    }
    Value<bool> inverted() const
    {
        return value<bool>(KVX2800T_ConfigureListTemplateInverted, KVX2800T_QueryListTemplateInverted);
    }
    /// Seconds.
    Value<double> pulseWidth() const
    {
        return value<double>(KVX2800T_ConfigureListTemplatePulseWidth, KVX2800T_QueryListTemplatePulseWidth);
    }
    Value<ViInt32> pulseCount() const
    {
        return value<ViInt32>(KVX2800T_ConfigureListTemplatePulseCount, KVX2800T_QueryListTemplatePulseCount);
    }
    /// Percent of the period.
    Value<ViInt32> symmetry() const
    {
        return value<ViInt32>(KVX2800T_ConfigureListTemplateSymmetry, KVX2800T_QueryListTemplateSymmetry);
    }
    /// The point of the waveform that becomes the first group.
    Value<ViInt32> start() const
    {
        return value<ViInt32>(KVX2800T_ConfigureListTemplateStart, KVX2800T_QueryListTemplateStart);
    }
    /// Of the exponential waveforms, as expr().
    Value<ViInt32> expp() const
    {
        return value<ViInt32>(KVX2800T_ConfigureListTemplateExpp, KVX2800T_QueryListTemplateExpp);
    }
    Value<ViInt32> expr() const
    {
        return value<ViInt32>(KVX2800T_ConfigureListTemplateExpr, KVX2800T_QueryListTemplateExpr);
    }

    /// How many groups it gives.
    ViInt32 points() const { return query<ViInt32>(KVX2800T_QueryListTemplatePoints); }
    /// Makes it the list from a group on.
    ViStatus construct(ViInt32 group = 1) const { return call(KVX2800T_ConstructList, group); }
};

/// Groups of times that the output is on or off.
class DelayProgram : public Selection
{
public:
    using Selection::Selection;

    /// Replaces all groups.
    ViStatus load(const std::vector<DelayGroup>& groups) const
    {
        std::vector<ViBoolean> on;
        std::vector<double> seconds;
        for (const DelayGroup& group : groups) {
            on.push_back(detail::toDriver(group.on));
            seconds.push_back(group.seconds);
        }
        return call(KVX2800T_LoadDelay, detail::countOf(groups.size()), on.data(), seconds.data());
    }

    ViStatus start() const { return enabled().set(true); }
    /// Applies the end state.
    ViStatus stop() const { return enabled().set(false); }

    ProgramStatus<DelayState> status() const
    {
        ViInt32 state = 0;
        ProgramStatus<DelayState> status;
        call(KVX2800T_QueryDelayStatus, &state, &status.remainingSeconds, &status.group, &status.remainingCycles);
        status.state = static_cast<DelayState>(state);
        return status;
    }

    Value<bool> enabled() const { return value<bool>(KVX2800T_ConfigureDelayEnabled, KVX2800T_QueryDelayEnabled); }
    /// 0: without end.
    Value<ViInt32> cycles() const { return value<ViInt32>(KVX2800T_ConfigureDelayCycles, KVX2800T_QueryDelayCycles); }
    Value<DelayEnd> endState() const
    {
        return value<DelayEnd>(KVX2800T_ConfigureDelayEndState, KVX2800T_QueryDelayEndState);
    }

    ViInt32 groupCount() const { return query<ViInt32>(KVX2800T_QueryDelayGroupCount); }
    /// Groups count from 1.
    DelayGroup group(ViInt32 number) const
    {
        ViBoolean on = VI_FALSE;
        double seconds = 0.0;
        call(KVX2800T_QueryDelayGroup, number, &on, &seconds);
        return {detail::fromDriver<bool>(on), seconds};
    }
    /// One more than there are groups appends.
    ViStatus setGroup(ViInt32 number, const DelayGroup& group) const
    {
        return call(KVX2800T_ConfigureDelayGroup, number, detail::toDriver(group.on), group.seconds);
    }
    ViStatus insertGroup(ViInt32 number) const { return call(KVX2800T_InsertDelayGroup, number); }
    ViStatus deleteGroup(ViInt32 number) const { return call(KVX2800T_DeleteDelayGroup, number); }
    ViStatus clear() const { return call(KVX2800T_ClearDelayGroups); }
};

/// Times that the groups of a delay program are made from.
class DelayGenerator : public Selection
{
public:
    using Selection::Selection;

    Value<DelayTimes> times() const
    {
        return value<DelayTimes>(KVX2800T_ConfigureDelayGenerateMode, KVX2800T_QueryDelayGenerateMode);
    }
    Value<DelayPattern> pattern() const
    {
        return value<DelayPattern>(KVX2800T_ConfigureDelayGeneratePattern, KVX2800T_QueryDelayGeneratePattern);
    }
    /// How many groups it gives.
    Value<ViInt32> points() const
    {
        return value<ViInt32>(KVX2800T_ConfigureDelayGeneratePoints, KVX2800T_QueryDelayGeneratePoints);
    }
    /// Seconds, where times are fixed.
    Value<double> onTime() const { return value<double>(KVX2800T_ConfigureDelayOnTime, KVX2800T_QueryDelayOnTime); }
    /// Seconds, where times are fixed.
    Value<double> offTime() const { return value<double>(KVX2800T_ConfigureDelayOffTime, KVX2800T_QueryDelayOffTime); }
    /// Seconds of the first group, where times change.
    Value<double> baseTime() const
    {
        return value<double>(KVX2800T_ConfigureDelayBaseTime, KVX2800T_QueryDelayBaseTime);
    }
    /// Seconds from group to group, where times change.
    Value<double> timeStep() const
    {
        return value<double>(KVX2800T_ConfigureDelayTimeStep, KVX2800T_QueryDelayTimeStep);
    }

    /// Makes them the delay program from a group on.
    ViStatus construct(ViInt32 group = 1) const { return call(KVX2800T_ConstructDelay, group); }
};

/// A channel of a session; made by Session::channel. It stays valid when the session object is moved, not when it is
/// closed. One that names several channels can be set, but not read.
class Channel : public Selection
{
public:
    using Selection::Selection;

    /// Volts.
    Value<double> voltageLevel() const { return value(attribute::voltageLevel); }
    /// Amperes.
    Value<double> currentLimit() const { return value(attribute::currentLimit); }
    Value<CurrentLimitBehavior> currentLimitBehavior() const { return value(attribute::currentLimitBehavior); }
    Value<bool> outputEnabled() const { return value(attribute::outputEnabled); }

    ViStatus configureCurrentLimit(CurrentLimitBehavior behavior, double amperes) const
    {
        return call(KVX2800T_ConfigureCurrentLimit, detail::toDriver(behavior), amperes);
    }
    ViStatus configureOutputRange(RangeType type, double range) const
    {
        return call(KVX2800T_ConfigureOutputRange, detail::toDriver(type), range);
    }
    /// Volts.
    double maxVoltageLevel(double amperes = 0.0) const { return query<double>(KVX2800T_QueryMaxVoltageLevel, amperes); }
    /// Amperes.
    double maxCurrentLimit(double volts = 0.0) const { return query<double>(KVX2800T_QueryMaxCurrentLimit, volts); }

    Value<bool> remoteSense() const { return value<bool>(KVX2800T_ConfigureRemoteSense, KVX2800T_QueryRemoteSense); }
    /// The same by the output's command.
    Value<bool> outputSense() const { return value<bool>(KVX2800T_ConfigureOutputSense, KVX2800T_QueryOutputSense); }
    Value<PowerOnState> powerOnState() const
    {
        return value<PowerOnState>(KVX2800T_ConfigurePowerOnState, KVX2800T_QueryPowerOnState);
    }
    Value<Pairing> pairing() const { return value<Pairing>(KVX2800T_ConfigurePairing, KVX2800T_QueryPairing); }
    Value<bool> tracking() const { return value<bool>(KVX2800T_ConfigureTracking, KVX2800T_QueryTracking); }
    Value<OutputOffMode> outputOffMode() const
    {
        return value<OutputOffMode>(KVX2800T_ConfigureOutputOffMode, KVX2800T_QueryOutputOffMode);
    }
    Value<bool> triggerInput() const { return value<bool>(KVX2800T_ConfigureTriggerInput, KVX2800T_QueryTriggerInput); }

    /// What the meters read.
    Reading measure() const
    {
        Reading reading;
        ViInt32 count = 0;
        call(KVX2800T_MeasureAll, ViInt32{1}, &reading.volts, &reading.amperes, &reading.watts, &count);
        return reading;
    }
    /// One quantity of them: amperes, volts or watts.
    double measure(MeasurementType type) const { return query<double>(KVX2800T_MeasureOutput, detail::toDriver(type)); }
    Value<CurrentRange> currentRange() const
    {
        return value<CurrentRange>(KVX2800T_ConfigureCurrentRange, KVX2800T_QueryCurrentRange);
    }
    Value<CurrentRate> currentRate() const
    {
        return value<CurrentRate>(KVX2800T_ConfigureCurrentRate, KVX2800T_QueryCurrentRate);
    }

    Protection protection() const { return group<Protection>(); }
    ChannelState state() const { return group<ChannelState>(); }
    ListProgram list() const { return group<ListProgram>(); }
    ListTemplate listTemplate() const { return group<ListTemplate>(); }
    DelayProgram delay() const { return group<DelayProgram>(); }
    DelayGenerator delayGenerator() const { return group<DelayGenerator>(); }
};

/// A session, closed by its destructor. It may be used from several threads, but not be moved or closed meanwhile.
/// std::lock_guard<Session> keeps it to one thread across several calls.
class Session
{
public:
    /// Opens a VISA resource descriptor or a logical name of the configuration store.
    explicit Session(std::string resource, const Options& options = {})
    {
        // The thread keeps its first error until it is read; an older one would stand in the way.
        KVX2800T_ClearError(VI_NULL);
        static_cast<void>(detail::terminated(resource));
        check(KVX2800T_InitWithOptions(resource.data(), boolean(options.idQuery), boolean(options.reset),
                                       options.text().c_str(), &vi_));
    }

    ~Session() { release(); }

    Session(Session&& other) noexcept : vi_(std::exchange(other.vi_, VI_NULL)) {}
    Session& operator=(Session&& other) noexcept
    {
        if (this != &other) {
            release();
            vi_ = std::exchange(other.vi_, VI_NULL);
        }
        return *this;
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// For functions of KVX2800T.h; VI_NULL when it is closed or has been moved from.
    ViSession handle() const noexcept { return vi_; }

    /// Closes it before its destructor does, to learn of a failure.
    void close()
    {
        const ViSession vi = std::exchange(vi_, VI_NULL);
        const ViStatus status = KVX2800T_close(vi);
        if (status < VI_SUCCESS)
            throw Error(status, detail::messageOf(status));
    }

    /// OutputChannel1 to OutputChannel6, by its number.
    Channel channel(int number) const { return {vi_, "OutputChannel" + std::to_string(number)}; }

    /// By its physical or virtual name. A list or a range of channels can be set all at once.
    Channel channel(const std::string& name) const { return {vi_, name}; }

    void lock() { check(KVX2800T_LockSession(vi_, nullptr)); }
    void unlock() { check(KVX2800T_UnlockSession(vi_, nullptr)); }

    template <class Value>
    Value get(Fact<Value> attribute) const
    {
        return detail::read<Value>(vi_, "", attribute.id);
    }

    template <class Value>
    Value get(Setting<Value> attribute) const
    {
        return detail::read<Value>(vi_, "", attribute.id);
    }

    template <class Value>
    Value get(ChannelSetting<Value> attribute, const std::string& channel) const
    {
        return detail::read<Value>(vi_, detail::terminated(channel), attribute.id);
    }

    ViStatus set(Setting<bool> attribute, bool value) { return detail::write(vi_, "", attribute.id, value); }

    ViStatus set(ChannelSetting<bool> attribute, const std::string& channels, bool value)
    {
        return detail::write(vi_, detail::terminated(channels), attribute.id, value);
    }

    ViStatus set(ChannelSetting<double> attribute, const std::string& channels, double value)
    {
        return detail::write(vi_, detail::terminated(channels), attribute.id, value);
    }

    ViStatus set(ChannelSetting<CurrentLimitBehavior> attribute, const std::string& channels,
                 CurrentLimitBehavior value)
    {
        return detail::write(vi_, detail::terminated(channels), attribute.id, value);
    }

    ViStatus configureOutputEnabled(const std::string& channels, bool enabled)
    {
        return check(KVX2800T_ConfigureOutputEnabled(vi_, detail::terminated(channels), boolean(enabled)));
    }

    ViStatus configureVoltageLevel(const std::string& channels, double volts)
    {
        return check(KVX2800T_ConfigureVoltageLevel(vi_, detail::terminated(channels), volts));
    }

    ViStatus configureCurrentLimit(const std::string& channels, CurrentLimitBehavior behavior, double amperes)
    {
        return check(
            KVX2800T_ConfigureCurrentLimit(vi_, detail::terminated(channels), detail::toDriver(behavior), amperes));
    }

    ViStatus configureOvp(const std::string& channels, bool enabled, double volts)
    {
        return check(KVX2800T_ConfigureOVP(vi_, detail::terminated(channels), boolean(enabled), volts));
    }

    ViStatus configureOutputRange(const std::string& channels, RangeType type, double range)
    {
        return check(KVX2800T_ConfigureOutputRange(vi_, detail::terminated(channels), detail::toDriver(type), range));
    }

    ViStatus resetOutputProtection(const std::string& channels)
    {
        return check(KVX2800T_ResetOutputProtection(vi_, detail::terminated(channels)));
    }

    /// Amperes.
    double queryMaxCurrentLimit(const std::string& channels, double volts) const
    {
        double limit = 0.0;
        check(KVX2800T_QueryMaxCurrentLimit(vi_, detail::terminated(channels), volts, &limit));
        return limit;
    }

    /// Volts.
    double queryMaxVoltageLevel(const std::string& channels, double amperes) const
    {
        double level = 0.0;
        check(KVX2800T_QueryMaxVoltageLevel(vi_, detail::terminated(channels), amperes, &level));
        return level;
    }

    bool queryOutputState(const std::string& channels, OutputState state) const
    {
        ViBoolean inState = VI_FALSE;
        check(KVX2800T_QueryOutputState(vi_, detail::terminated(channels), detail::toDriver(state), &inState));
        return inState != VI_FALSE;
    }

    /// Volts or amperes.
    double measure(const std::string& channels, MeasurementType type) const
    {
        double measurement = 0.0;
        check(KVX2800T_Measure(vi_, detail::terminated(channels), detail::toDriver(type), &measurement));
        return measurement;
    }

    /// Of a number from 1 to attribute::channelCount.
    std::string channelName(ViInt32 index) const
    {
        Text name{};
        check(KVX2800T_GetChannelName(vi_, index, static_cast<ViInt32>(name.size()), name.data()));
        return name.data();
    }

    std::vector<std::string> channelNames() const
    {
        const ViInt32 count = get(attribute::channelCount);
        std::vector<std::string> names;
        for (ViInt32 index = 1; index <= count; ++index)
            names.push_back(channelName(index));
        return names;
    }

    Revisions revisions() const
    {
        Text driver{};
        Text instrument{};
        check(KVX2800T_revision_query(vi_, driver.data(), instrument.data()));
        return {driver.data(), instrument.data()};
    }

    /// Takes one entry from the instrument's error queue.
    InstrumentError nextInstrumentError()
    {
        ViInt32 code = 0;
        Text message{};
        check(KVX2800T_error_query(vi_, &code, message.data()));
        return {code, message.data()};
    }

    /// Nothing when the instrument has no self test.
    std::optional<SelfTestResult> selfTest()
    {
        ViInt16 code = 0;
        Text message{};
        if (check(KVX2800T_self_test(vi_, &code, message.data())) == IVI_WARN_NSUP_SELF_TEST)
            return std::nullopt;
        return SelfTestResult{code, message.data()};
    }

    /// Clears the event registers and the error queue.
    ViStatus clearStatus() { return check(KVX2800T_ClearStatus(vi_)); }

    /// Reading clears it.
    EventStatus eventStatus() { return {read<ViInt32>(KVX2800T_QueryEventStatus)}; }

    /// How outputs 1 and 2 are combined.
    Value<SourceMode> sourceMode() const
    {
        return value<SourceMode>(KVX2800T_ConfigureSourceMode, KVX2800T_QuerySourceMode);
    }

    /// Whether the bleeder discharges the outputs.
    Value<bool> bleeder() const { return value<bool>(KVX2800T_ConfigureBleeder, KVX2800T_QueryBleeder); }

    /// The channel that messages of the program's own about lists and delays act on.
    ViStatus selectChannel(const std::string& channel)
    {
        return check(KVX2800T_SelectChannel(vi_, detail::terminated(channel)));
    }

    /// Its number.
    ViInt32 selectedChannel() const { return read<ViInt32>(KVX2800T_QuerySelectedChannel); }

    /// What the meters of all channels of a selector read, in its order.
    std::vector<Reading> measureAll(const std::string& channels) const
    {
        const ViInt32 size = get(attribute::channelCount);
        std::vector<double> volts(static_cast<std::size_t>(size));
        std::vector<double> amperes(volts.size());
        std::vector<double> watts(volts.size());
        ViInt32 count = 0;
        check(KVX2800T_MeasureAll(vi_, detail::terminated(channels), size, volts.data(), amperes.data(), watts.data(),
                                  &count));
        std::vector<Reading> readings;
        for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
            readings.push_back({volts[i], amperes[i], watts[i]});
        return readings;
    }

    /// Sends a message of the program's own; its line feed is added.
    void write(const std::string& message)
    {
        std::vector<ViByte> bytes(message.begin(), message.end());
        ViInt64 written = 0;
        bytes.push_back(0); // an empty message has an address, too
        check(KVX2800T_viWrite(vi_, bytes.data(), static_cast<ViInt64>(message.size()), &written));
    }

    /// Reads one response, with its line feed. One of more bytes is an error, KVX2800T_WARN_ARRAY_TRUNCATED.
    std::string readResponse(std::size_t largest = 65536)
    {
        std::vector<ViByte> bytes(largest);
        ViInt64 count = 0;
        const ViStatus status = check(KVX2800T_viRead(vi_, static_cast<ViInt64>(largest), bytes.data(), &count));
        if (status == KVX2800T_WARN_ARRAY_TRUNCATED)
            throw Error(status, detail::messageOf(status));
        return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count)};
    }

    /// Sends a message and reads its response, without the line feed.
    std::string query(const std::string& message)
    {
        const std::lock_guard<Session> alone(*this);
        write(message);
        std::string response = readResponse();
        if (!response.empty() && response.back() == '\n')
            response.pop_back();
        return response;
    }

    /// Milliseconds that a read or a write waits.
    Value<ViInt32> ioTimeout() const { return value<ViInt32>(KVX2800T_SetIoTimeout, KVX2800T_GetIoTimeout); }

    /// The oldest message that is remembered (Options::messageLog), which is forgotten then; "" when there is none.
    std::string nextMessageRecord() { return nextRecord<1024>(KVX2800T_GetNextMessageRecord); }

    std::string nextCoercionRecord() { return nextRecord(KVX2800T_GetNextCoercionRecord); }
    std::string nextInterchangeWarning() { return nextRecord(KVX2800T_GetNextInterchangeWarning); }
    ViStatus resetInterchangeCheck() { return check(KVX2800T_ResetInterchangeCheck(vi_)); }
    ViStatus clearInterchangeWarnings() { return check(KVX2800T_ClearInterchangeWarnings(vi_)); }

    ViStatus reset() { return check(KVX2800T_reset(vi_)); }
    ViStatus resetWithDefaults() { return check(KVX2800T_ResetWithDefaults(vi_)); }
    ViStatus disable() { return check(KVX2800T_Disable(vi_)); }
    ViStatus invalidateAllAttributes() { return check(KVX2800T_InvalidateAllAttributes(vi_)); }

private:
    using Text = detail::Text;

    static constexpr ViBoolean boolean(bool value) { return detail::toDriver(value); }

    void release() noexcept
    {
        if (vi_ != VI_NULL)
            KVX2800T_close(std::exchange(vi_, VI_NULL));
    }

    ViStatus check(ViStatus status) const { return detail::check(vi_, status); }

    template <class Type, class Getter>
    Type read(Getter getter) const
    {
        detail::Raw<Type> value{};
        check(getter(vi_, &value));
        return detail::fromDriver<Type>(value);
    }

    template <class Type, class Setter, class Getter>
    Value<Type> value(Setter setter, Getter getter) const
    {
        using Raw = detail::Raw<Type>;
        return {vi_, [vi = vi_, setter](Raw value) { return setter(vi, value); },
                [vi = vi_, getter](Raw* value) { return getter(vi, value); }};
    }

    template <std::size_t size = std::tuple_size<Text>::value, class Function>
    std::string nextRecord(Function function)
    {
        std::array<ViChar, size> text{};
        check(function(vi_, static_cast<ViInt32>(text.size()), text.data()));
        return text.data();
    }

    ViSession vi_ = VI_NULL;
};

/// Switches every output off at its end, also when an exception ends it. The session must stay where it is meanwhile.
class OutputsOff
{
public:
    explicit OutputsOff(const Session& supply) : supply_(supply) {}
    ~OutputsOff() { KVX2800T_Disable(supply_.handle()); }
    OutputsOff(const OutputsOff&) = delete;
    OutputsOff& operator=(const OutputsOff&) = delete;

private:
    const Session& supply_;
};

} // namespace kvx2800t
