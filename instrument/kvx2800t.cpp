#include "instrument/kvx2800t.h"

#include "base/ascii.h"

namespace TSRO
{
namespace
{

void readInherentOptions(std::string_view text, base::InherentOptions& options)
{
    const std::string lower = base::lowerCased(text);
    std::string_view rest = lower;
    while (const auto option = base::nextInherentOption(rest)) {
        const auto flag = base::inherentOption(option->name);
        const auto value = base::parseOptionValue(option->value);
        if (flag != nullptr && value)
            options.*flag = *value;
    }
}

void readDriverSetup(std::string_view text, std::string& model)
{
    while (const auto option = base::nextDriverSetupOption(text))
        if (base::ascii::equalIgnoringCase(option->name, base::kModelKey))
            model = option->value;
}

/// The session has checked the text and reported what is wrong with it; what is left to do here is to read it.
InstrumentOptions readOptions(const std::string& optionString)
{
    InstrumentOptions options{base::kDefaultOptions};
    const base::OptionText text = base::splitOptionString(optionString);
    readInherentOptions(text.inherent, options);
    readDriverSetup(text.driverSetup.value_or(""), options.model);
    return options;
}

} // namespace

ViInt32 KVX2800T::ioTimeout()
{
    return port_.ioTimeout();
}

ViStatus KVX2800T::setIoTimeout(ViInt32 milliseconds)
{
    return port_.setIoTimeout(milliseconds);
}

ViStatus KVX2800T::open(const std::string& resource, const std::string& options)
{
    setOptions(readOptions(options));
    const ViStatus status = connect(resource);
    return status < 0 ? status : identify();
}

ViStatus KVX2800T::connect(const std::string& resource)
{
    return port_.connect(resource);
}

ViStatus KVX2800T::close()
{
    return port_.close();
}

bool KVX2800T::isOpen()
{
    return port_.isOpen();
}

ViStatus KVX2800T::writeRaw(const std::string& command)
{
    port_.writeAtOnce(command);
    return VI_SUCCESS;
}

ViStatus KVX2800T::queryRaw(const std::string& command, std::string& reply)
{
    port_.query(command, reply);
    return VI_SUCCESS;
}

ViStatus KVX2800T::identify()
{
    std::string reply;
    const ViStatus status = port_.get("*IDN?", reply);
    const ReplyFields fields(reply);
    if (status < 0 || fields.count() != 4)
        return status;
    mutableIdentity() = {std::string(fields[0]), std::string(fields[1]), std::string(fields[2]),
                         std::string(fields[3])};
    port_.expect(*identity());
    return status;
}

} // namespace TSRO
