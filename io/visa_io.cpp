#include "io/visa_io.h"

#include <algorithm>
#include <chrono>
#include <limits>

namespace InstLink
{
namespace
{

/// How long the rest of a message may take to come although the time-out is shorter.
constexpr std::chrono::milliseconds kShortestPatience(100);

// VISA takes attribute values as unsigned numbers of the attribute's width: -1 ms is VI_TMO_INFINITE, not 64 set bits.
ViUInt32 lowBits(std::int64_t value)
{
    return static_cast<ViUInt32>(value);
}

} // namespace

ViStatus VisaIO::open(const std::string& resource)
{
    // What a failed call has left in its output is no session.
    ViStatus status = viOpenDefaultRM(&resourceManager_);
    if (status < 0) {
        resourceManager_ = VI_NULL;
        return status;
    }
    status = viOpen(resourceManager_, resource.c_str(), VI_NULL, lowBits(openTimeoutMs_), &session_);
    if (status < 0) {
        session_ = VI_NULL;
        return status;
    }
    status = applyAttributes();
    if (status >= 0)
        resourceName_ = resource;
    return status;
}

ViStatus VisaIO::write(std::string_view command)
{
    const char termChar = static_cast<char>(termChar_);
    writeBuffer_ = command;
    if (appendTermChar_ && !command.ends_with(termChar))
        writeBuffer_ += termChar;
    return send(writeBuffer_);
}

ViStatus VisaIO::send(std::string_view bytes)
{
    ViUInt32 count = 0;
    // VPP-4.3.2 types the bytes as unsigned char.
    return viWrite(session_, reinterpret_cast<ViConstBuf>(bytes.data()), static_cast<ViUInt32>(bytes.size()), &count);
}

ViStatus VisaIO::receive(std::span<ViByte> buffer, ViUInt32& count)
{
    const auto size = static_cast<ViUInt32>(buffer.size());
    const ViStatus status = viRead(session_, buffer.data(), size, &count);
    // A vendor's VISA may claim more than there was room for.
    count = std::min(count, size);
    return status;
}

ViStatus VisaIO::read(std::string& reply)
{
    ViUInt32 count = 0;
    const ViStatus status = receive(readBuffer_, count);
    if (status < 0 || count == 0)
        return status;
    std::string_view message(reinterpret_cast<const char*>(readBuffer_.data()), count);
    if (stripTermChar_ && message.back() == static_cast<char>(termChar_))
        message.remove_suffix(1);
    reply = message;
    return status;
}

ViStatus VisaIO::readMessage(std::span<ViByte> buffer, std::size_t& count)
{
    const std::size_t size = std::min<std::size_t>(buffer.size(), std::numeric_limits<ViUInt32>::max());
    ViUInt32 received = 0;
    const ViStatus status = receive(buffer.first(size), received);
    count = received;
    return status == VI_SUCCESS_MAX_CNT ? dropRest() : status;
}

/// Reads on to the end of a message. An instrument that never ends one must not hold its caller for ever.
ViStatus VisaIO::dropRest()
{
    const auto patience = std::max(std::chrono::milliseconds(timeoutMs_), kShortestPatience);
    const auto begin = std::chrono::steady_clock::now();
    ViStatus status = VI_SUCCESS_MAX_CNT;
    do {
        ViUInt32 received = 0;
        status = receive(readBuffer_, received);
    } while (status == VI_SUCCESS_MAX_CNT && (timeoutMs_ < 0 || std::chrono::steady_clock::now() - begin < patience));
    if (status < 0)
        return status;
    return status == VI_SUCCESS_MAX_CNT ? VI_ERROR_TMO : VI_SUCCESS_MAX_CNT;
}

ViStatus VisaIO::close()
{
    if (!isOpen())
        return VI_SUCCESS;
    // Closing a resource manager session closes the sessions opened from it (VPP-4.3, rule 4.3.12).
    const ViStatus status = viClose(resourceManager_);
    if (status < 0)
        return status;
    session_ = VI_NULL;
    resourceManager_ = VI_NULL;
    return status;
}

bool VisaIO::isOpen() const
{
    return resourceManager_ != VI_NULL && session_ != VI_NULL;
}

void VisaIO::applySettings(const IoSettings& settings)
{
    termChar_ = settings.termChar;
    termCharEnabled_ = settings.termCharEnabled;
    openTimeoutMs_ = static_cast<ViInt32>(lowBits(settings.openTimeoutMs));
    setTimeout(static_cast<ViInt32>(lowBits(settings.timeoutMs)));
    appendTermChar_ = settings.appendTermChar;
    stripTermChar_ = settings.stripTermChar;
}

ViStatus VisaIO::setTimeout(ViInt32 milliseconds)
{
    timeoutMs_ = milliseconds;
    return session_ != VI_NULL ? apply({attribute(VI_ATTR_TMO_VALUE, timeoutMs_)}) : VI_SUCCESS;
}

void VisaIO::releaseSessions()
{
    if (resourceManager_ != VI_NULL)
        viClose(resourceManager_);
    session_ = VI_NULL;
    resourceManager_ = VI_NULL;
}

ViStatus VisaIO::reopen()
{
    releaseSessions();
    const ViStatus status = open(resourceName_);
    if (status < 0)
        releaseSessions();
    return status;
}

ViStatus VisaIO::applyAttributes()
{
    return apply({
        attribute(VI_ATTR_TMO_VALUE, timeoutMs_),
        buffer(VI_READ_BUF, readBufferSize_),
        buffer(VI_WRITE_BUF, writeBufferSize_),
    });
}

ViStatus VisaIO::apply(std::initializer_list<Setting> settings)
{
    ViStatus status = VI_SUCCESS;
    for (const Setting& setting : settings) {
        status = setting.kind == Setting::Kind::Attribute
                     ? viSetAttribute(session_, setting.id, setting.value)
                     : viSetBuf(session_, static_cast<ViUInt16>(setting.id), setting.value);
        if (status < 0)
            return status;
    }
    return status;
}

VisaIO::Setting VisaIO::attribute(ViAttr id, ViInt32 value)
{
    return {Setting::Kind::Attribute, id, lowBits(value)};
}

VisaIO::Setting VisaIO::buffer(ViUInt16 mask, ViUInt32 size)
{
    return {Setting::Kind::Buffer, mask, size};
}

ViStatus VisaTCPIPSocket::applyAttributes()
{
    const ViStatus status = VisaIO::applyAttributes();
    if (status < 0)
        return status;
    return apply({
        attribute(VI_ATTR_TERMCHAR, termChar()),
        attribute(VI_ATTR_TERMCHAR_EN, termCharEnabled() ? VI_TRUE : VI_FALSE),
        buffer(VI_IO_IN_BUF, readBufferSize()),
        buffer(VI_IO_OUT_BUF, writeBufferSize()),
    });
}

ViStatus VisaSerial::applyAttributes()
{
    const ViStatus status = VisaIO::applyAttributes();
    if (status < 0)
        return status;
    return apply({
        attribute(VI_ATTR_TERMCHAR, termChar()),
        attribute(VI_ATTR_TERMCHAR_EN, termCharEnabled() ? VI_TRUE : VI_FALSE),
        attribute(VI_ATTR_ASRL_END_IN, termCharEnabled() ? VI_ASRL_END_TERMCHAR : VI_ASRL_END_NONE),
        attribute(VI_ATTR_ASRL_END_OUT, VI_ASRL_END_NONE),
        buffer(VI_IO_IN_BUF, readBufferSize()),
        buffer(VI_IO_OUT_BUF, writeBufferSize()),
        attribute(VI_ATTR_ASRL_BAUD, parameters_.baudRate),
        attribute(VI_ATTR_ASRL_DATA_BITS, parameters_.dataBits),
        // Stop bits before parity.
        attribute(VI_ATTR_ASRL_STOP_BITS, parameters_.stopBits),
        attribute(VI_ATTR_ASRL_PARITY, parameters_.parity),
        attribute(VI_ATTR_ASRL_FLOW_CNTRL, parameters_.flowControl),
    });
}

} // namespace InstLink
