// Any bytes as an instrument's reply: nothing but the documented exceptions comes out of the parsing.
#include "instrument/command_port.h"

#include <cstdint>
#include <cstdlib>
#include <stdexcept>

namespace
{

template <class Value>
void parse(std::string_view reply)
{
    Value value{};
    try {
        const ViStatus status = TSRO::parseReply(reply, value);
        if (status != VI_SUCCESS && status != base::kErrorUnexpectedResponse)
            std::abort();
    } catch (const std::invalid_argument&) {
    } catch (const std::out_of_range&) {
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view reply(reinterpret_cast<const char*>(data), size);
    parse<bool>(reply);
    parse<double>(reply);
    parse<ViInt32>(reply);
    parse<TSRO::ChannelName>(reply);
    parse<TSRO::SourceMode>(reply);
    const TSRO::ReplyFields fields(reply);
    for (std::size_t index = 0; index < fields.count() && index < 8; ++index)
        parse<double>(fields[index]);
    return 0;
}
