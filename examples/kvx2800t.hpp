/**
 * @file kvx2800t.hpp
 * The driver for C++17 programs: sessions that close themselves, statuses as exceptions, attributes with types.
 *
 * @code
 * kvx2800t::Session supply("TCPIP0::192.168.1.20::5025::SOCKET");
 * supply.configureVoltageLevel("OutputChannel1", 5.0);
 * supply.set(kvx2800t::attribute::outputEnabled, "OutputChannel1", true);
 * double volts = supply.get(kvx2800t::attribute::voltageLevel, "OutputChannel1");
 * @endcode
 *
 * A call that fails throws kvx2800t::Error. One that ends with a warning does not: functions without another result
 * return it, a positive number, and VI_SUCCESS otherwise. The driver's own exceptions pass through unchanged and leave
 * the session locked by the thread, as KVX2800T.h says. What a function does, and which channels, values and units it
 * takes, is said in KVX2800T.h, whose functions have the same names.
 */
#pragma once

#include <KVX2800T.h>

#include <array>
#include <cstdio>
#include <cstring>
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
};

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

/// How a session is opened.
struct Opening
{
    bool idQuery = false;
    bool reset = false;
    std::string options; ///< such as "QueryInstrStatus=1"
};

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

/// A session, closed by its destructor. It may be used from several threads, but not be moved or closed meanwhile.
/// std::lock_guard<Session> keeps it to one thread across several calls.
class Session
{
public:
    /// Opens a VISA resource descriptor or a logical name of the configuration store.
    explicit Session(std::string resource, const Opening& opening = {})
    {
        // The thread keeps its first error until it is read; an older one would stand in the way.
        KVX2800T_ClearError(VI_NULL);
        check(KVX2800T_InitWithOptions(resource.data(), boolean(opening.idQuery), boolean(opening.reset),
                                       opening.options.c_str(), &vi_));
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
            throw Error(status, messageOf(status));
    }

    void lock() { check(KVX2800T_LockSession(vi_, nullptr)); }
    void unlock() { check(KVX2800T_UnlockSession(vi_, nullptr)); }

    template <class Value>
    Value get(Fact<Value> attribute) const
    {
        return read<Value>("", attribute.id);
    }

    template <class Value>
    Value get(Setting<Value> attribute) const
    {
        return read<Value>("", attribute.id);
    }

    template <class Value>
    Value get(ChannelSetting<Value> attribute, const std::string& channel) const
    {
        return read<Value>(channel.c_str(), attribute.id);
    }

    ViStatus set(Setting<bool> attribute, bool value) { return write("", attribute.id, value); }

    ViStatus set(ChannelSetting<bool> attribute, const std::string& channels, bool value)
    {
        return write(channels.c_str(), attribute.id, value);
    }

    ViStatus set(ChannelSetting<double> attribute, const std::string& channels, double value)
    {
        return check(KVX2800T_SetAttributeViReal64(vi_, channels.c_str(), attribute.id, value));
    }

    ViStatus set(ChannelSetting<CurrentLimitBehavior> attribute, const std::string& channels,
                 CurrentLimitBehavior value)
    {
        return check(KVX2800T_SetAttributeViInt32(vi_, channels.c_str(), attribute.id, static_cast<ViInt32>(value)));
    }

    ViStatus configureOutputEnabled(const std::string& channels, bool enabled)
    {
        return check(KVX2800T_ConfigureOutputEnabled(vi_, channels.c_str(), boolean(enabled)));
    }

    ViStatus configureVoltageLevel(const std::string& channels, double volts)
    {
        return check(KVX2800T_ConfigureVoltageLevel(vi_, channels.c_str(), volts));
    }

    ViStatus configureCurrentLimit(const std::string& channels, CurrentLimitBehavior behavior, double amperes)
    {
        return check(KVX2800T_ConfigureCurrentLimit(vi_, channels.c_str(), static_cast<ViInt32>(behavior), amperes));
    }

    ViStatus configureOvp(const std::string& channels, bool enabled, double volts)
    {
        return check(KVX2800T_ConfigureOVP(vi_, channels.c_str(), boolean(enabled), volts));
    }

    ViStatus configureOutputRange(const std::string& channels, RangeType type, double range)
    {
        return check(KVX2800T_ConfigureOutputRange(vi_, channels.c_str(), static_cast<ViInt32>(type), range));
    }

    ViStatus resetOutputProtection(const std::string& channels)
    {
        return check(KVX2800T_ResetOutputProtection(vi_, channels.c_str()));
    }

    /// Amperes.
    double queryMaxCurrentLimit(const std::string& channels, double volts) const
    {
        double limit = 0.0;
        check(KVX2800T_QueryMaxCurrentLimit(vi_, channels.c_str(), volts, &limit));
        return limit;
    }

    /// Volts.
    double queryMaxVoltageLevel(const std::string& channels, double amperes) const
    {
        double level = 0.0;
        check(KVX2800T_QueryMaxVoltageLevel(vi_, channels.c_str(), amperes, &level));
        return level;
    }

    bool queryOutputState(const std::string& channels, OutputState state) const
    {
        ViBoolean inState = VI_FALSE;
        check(KVX2800T_QueryOutputState(vi_, channels.c_str(), static_cast<ViInt32>(state), &inState));
        return inState != VI_FALSE;
    }

    /// Volts or amperes.
    double measure(const std::string& channels, MeasurementType type) const
    {
        double measurement = 0.0;
        check(KVX2800T_Measure(vi_, channels.c_str(), static_cast<ViInt32>(type), &measurement));
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

    ViStatus reset() { return check(KVX2800T_reset(vi_)); }
    ViStatus resetWithDefaults() { return check(KVX2800T_ResetWithDefaults(vi_)); }
    ViStatus disable() { return check(KVX2800T_Disable(vi_)); }
    ViStatus invalidateAllAttributes() { return check(KVX2800T_InvalidateAllAttributes(vi_)); }

private:
    /// For functions that take a buffer without its size.
    using Text = std::array<char, 256>;

    static constexpr ViBoolean boolean(bool value) { return value ? VI_TRUE : VI_FALSE; }

    void release() noexcept
    {
        if (vi_ != VI_NULL)
            KVX2800T_close(std::exchange(vi_, VI_NULL));
    }

    /// The driver's own message for a status; of VISA's it has none.
    static std::string messageOf(ViStatus status)
    {
        Text text{};
        if (KVX2800T_error_message(VI_NULL, status, text.data()) < VI_SUCCESS)
            return "";
        return text.data();
    }

    /// What the session, or the thread for VI_NULL, has recorded for a status; reading clears it.
    std::string recordedText(ViStatus status) const
    {
        const ViInt32 size = KVX2800T_GetError(vi_, nullptr, 0, nullptr);
        if (size <= 0)
            return messageOf(status);
        std::string text(static_cast<std::size_t>(size), '\0');
        ViStatus code = VI_SUCCESS;
        KVX2800T_GetError(vi_, &code, size, text.data());
        text.resize(std::strlen(text.c_str()));
        return code == status ? text : messageOf(status);
    }

    /// Throws for an error; returns a warning.
    ViStatus check(ViStatus status) const
    {
        if (status < VI_SUCCESS)
            throw Error(status, recordedText(status));
        return status;
    }

    template <class Value>
    Value read(const char* channel, ViAttr id) const
    {
        if constexpr (std::is_same_v<Value, std::string>)
            return readString(channel, id);
        else if constexpr (std::is_same_v<Value, bool>)
            return readNumber<ViBoolean>(KVX2800T_GetAttributeViBoolean, channel, id) != VI_FALSE;
        else if constexpr (std::is_same_v<Value, double>)
            return readNumber<ViReal64>(KVX2800T_GetAttributeViReal64, channel, id);
        else
            return static_cast<Value>(readNumber<ViInt32>(KVX2800T_GetAttributeViInt32, channel, id));
    }

    template <class Number, class Getter>
    Number readNumber(Getter getter, const char* channel, ViAttr id) const
    {
        Number value{};
        check(getter(vi_, channel, id, &value));
        return value;
    }

    /// A positive status of this function is the size that is needed.
    std::string readString(const char* channel, ViAttr id) const
    {
        std::string text;
        ViInt32 needed = check(KVX2800T_GetAttributeViString(vi_, channel, id, 0, nullptr));
        while (needed > static_cast<ViInt32>(text.size())) {
            text.resize(static_cast<std::size_t>(needed));
            needed = check(KVX2800T_GetAttributeViString(vi_, channel, id, needed, text.data()));
        }
        text.resize(std::strlen(text.c_str()));
        return text;
    }

    ViStatus write(const char* channels, ViAttr id, bool value)
    {
        return check(KVX2800T_SetAttributeViBoolean(vi_, channels, id, boolean(value)));
    }

    ViSession vi_ = VI_NULL;
};

} // namespace kvx2800t
