#pragma once

#include "virtual_instrument/common/error_code.h"
#include "virtual_instrument/scpi/keywords.h"

#include <string_view>
#include <variant>
#include <vector>

namespace kvxvirtual
{

/// What a command expects in one place of its parameters.
struct Parameter
{
    enum class Kind
    {
        Channel,
        ChannelOrAll,
        Boolean,
        Integer,
        Number,
        Keyword
    };
    Kind kind;
    /// For the command list: what the value means, with its unit.
    std::string_view name;
    /// Of a Keyword.
    KeywordTable keywords{};
};

/// The parameters that commands have in common.
namespace parameters
{
inline constexpr Parameter kChannel{Parameter::Kind::Channel, "channel"};
inline constexpr Parameter kChannelOrAll{Parameter::Kind::ChannelOrAll, "channel or ALL"};
inline constexpr Parameter kOnOff{Parameter::Kind::Boolean, "ON or OFF"};
inline constexpr Parameter kRegister{Parameter::Kind::Integer, "register value"};
inline constexpr Parameter kVolts{Parameter::Kind::Number, "volts"};
inline constexpr Parameter kAmperes{Parameter::Kind::Number, "amperes"};
inline constexpr Parameter kSeconds{Parameter::Kind::Number, "seconds"};

constexpr Parameter keywordOf(KeywordTable table, std::string_view name)
{
    return {Parameter::Kind::Keyword, name, table};
}
} // namespace parameters

/// In place of a channel's number: every channel.
inline constexpr int kAllChannels = 0;

/// The parameters of one command, converted as its row in the command table says.
class Arguments
{
public:
    /// From the header's suffix or from a Channel parameter; kAllChannels only from a ChannelOrAll parameter.
    int channel = 1;

    /// The n-th parameter that is no channel, counted from 0; it must be of the kind that is asked for.
    bool boolean(std::size_t n) const { return std::get<bool>(values_[n]); }
    int integer(std::size_t n) const { return std::get<int>(values_[n]); }
    double number(std::size_t n) const { return std::get<double>(values_[n]); }
    /// A keyword's place in its table.
    int choice(std::size_t n) const { return std::get<int>(values_[n]); }

    /// Converts one parameter as it was sent and appends it, or returns what is wrong with it.
    ErrorCode add(const Parameter& expected, std::string_view sent);

private:
    ErrorCode addChannel(std::string_view sent, bool allowAll);
    ErrorCode addBoolean(std::string_view sent);
    ErrorCode addInteger(std::string_view sent);
    ErrorCode addNumber(std::string_view sent);
    ErrorCode addKeyword(KeywordTable table, std::string_view sent);

    std::vector<std::variant<bool, int, double>> values_;
};

} // namespace kvxvirtual
