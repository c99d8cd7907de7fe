#include "instrument/command_port.h"

#include <utility>

namespace TSRO
{
namespace
{

constexpr std::size_t kUsualLineLength = 128;

// Completion codes and warnings of VISA end at this layer.
constexpr ViStatus ioStatus(ViStatus connectionStatus)
{
    return connectionStatus < 0 ? base::kErrorIo : VI_SUCCESS;
}

} // namespace

ViStatus parseReply(std::string_view reply, bool& value)
{
    value = parseBoolean(reply);
    return VI_SUCCESS;
}

ViStatus parseReply(std::string_view reply, double& value)
{
    value = parseDouble(reply);
    return VI_SUCCESS;
}

ViStatus parseReply(std::string_view reply, ViInt32& value)
{
    value = parseInt(reply);
    return VI_SUCCESS;
}

ViStatus parseReply(std::string_view reply, ChannelName& value)
{
    const auto channel = kChannelNames.value(reply);
    if (!channel)
        return base::kErrorUnexpectedResponse;
    value.channel = *channel;
    return VI_SUCCESS;
}

ViStatus parseReply(std::string_view reply, LongInteger& value)
{
    value.value = parseLong(reply);
    return VI_SUCCESS;
}

ViStatus parseReply(std::string_view reply, ErrorEntry& value)
{
    const ReplyFields fields(reply);
    value.isEntry = fields.count() == 2;
    if (!value.isEntry)
        return VI_SUCCESS;
    value.code = parseInt(fields[0]);
    value.message = fields[1];
    return VI_SUCCESS;
}

ViStatus parseReply(std::string_view reply, std::string& value)
{
    value = reply;
    return VI_SUCCESS;
}

CommandPort::CommandPort() : CommandPort(InstLink::ConnectionHolder{}) {}

CommandPort::CommandPort(InstLink::ConnectionHolder holder) : holder_(std::move(holder))
{
    line_.reserve(kUsualLineLength);
    reply_.reserve(kUsualLineLength);
}

void CommandPort::configure(const ConnectionSetup& setup)
{
    holder_.settings = setup.io;
    freshReplies_.enable(setup.freshReplies);
}

ViStatus CommandPort::connect(const std::string& resource)
{
    return ioStatus(noted(InstLink::connect(holder_, resource)));
}

void CommandPort::connect(std::shared_ptr<InstLink::VisaIO> connection)
{
    InstLink::connect(holder_, std::move(connection));
}

ViStatus CommandPort::close()
{
    const auto connection = holder_.connection;
    if (!connection)
        return VI_ERROR_INV_OBJECT;
    const ViStatus status = connection->close();
    if (status < 0)
        return status;
    holder_.connection.reset();
    return status;
}

bool CommandPort::isOpen() const
{
    return holder_.connection && holder_.connection->isOpen();
}

ViInt32 CommandPort::ioTimeout() const
{
    return holder_.connection ? holder_.connection->timeout() : static_cast<ViInt32>(holder_.settings.timeoutMs);
}

ViStatus CommandPort::setIoTimeout(ViInt32 milliseconds)
{
    const auto connection = holder_.connection;
    if (connection)
        return ioStatus(noted(connection->setTimeout(milliseconds)));
    holder_.settings.timeoutMs = milliseconds;
    return VI_SUCCESS;
}

ViStatus CommandPort::write(std::string_view command)
{
    const auto connection = holder_.connection;
    return connection ? transmit(*connection, command, false) : noted(VI_ERROR_INV_OBJECT);
}

ViStatus CommandPort::query(std::string_view command, std::string& reply)
{
    const auto connection = holder_.connection;
    if (!connection)
        return noted(VI_ERROR_INV_OBJECT);
    ViStatus status = transmit(*connection, command, true);
    if (status < 0)
        return status;
    try {
        status = connection->read(reply);
    } catch (...) {
        // Some of the reply may be taken, and its rest is the next read's.
        freshReplies_.suspect();
        throw;
    }
    if (status < 0 || status == VI_SUCCESS_MAX_CNT)
        freshReplies_.suspect();
    return noted(status);
}

ViStatus CommandPort::writeMessage(std::string_view message)
{
    const ViStatus status = write(message);
    if (status >= 0)
        freshReplies_.sent(message);
    return status;
}

ViStatus CommandPort::readMessage(std::span<ViByte> buffer, std::size_t& count)
{
    count = 0;
    const auto connection = holder_.connection;
    if (!connection)
        return noted(VI_ERROR_INV_OBJECT);
    const ViStatus status = noted(connection->readMessage(buffer, count));
    freshReplies_.received(status);
    return status == VI_SUCCESS_MAX_CNT ? base::kWarnArrayTruncated : status;
}

ViStatus CommandPort::send(const Header& header)
{
    line_.clear();
    header.appendTo(line_);
    return sendLine();
}

ViStatus CommandPort::transmit(InstLink::VisaIO& connection, std::string_view command, bool isQuery)
{
    ViStatus status = freshReplies_.prepare(connection, isQuery);
    if (status >= 0)
        status = connection.write(command);
    if (status < 0)
        freshReplies_.suspect();
    return noted(status);
}

ViStatus CommandPort::writeAtOnce(std::string_view command)
{
    const auto connection = holder_.connection;
    if (!connection)
        return noted(VI_ERROR_INV_OBJECT);
    ViStatus status = freshReplies_.prepareAtOnce(*connection);
    if (status >= 0)
        status = connection->write(command);
    if (status < 0)
        freshReplies_.suspect();
    return noted(status);
}

ViStatus CommandPort::sendLine()
{
    return ioStatus(write(line_));
}

ViStatus CommandPort::exchangeLine()
{
    reply_.clear();
    return ioStatus(query(line_, reply_));
}

} // namespace TSRO
