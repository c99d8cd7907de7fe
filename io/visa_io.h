#pragma once

#include "io/io_settings.h"

#include <visa.h>

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// VISA connections: messages in, messages out. Nothing here knows SCPI or IVI sessions. Every operation returns the
/// VISA status it got, completion codes and warnings included. No object locks: its caller serialises the calls.
namespace InstLink
{

/// A connection to one instrument.
class VisaIOBase
{
public:
    VisaIOBase() = default;
    VisaIOBase(const VisaIOBase&) = delete;
    VisaIOBase& operator=(const VisaIOBase&) = delete;
    virtual ~VisaIOBase() = default;

    /// Sends one message.
    virtual ViStatus write(std::string_view command) = 0;

    /// Receives one message. `reply` changes only when bytes arrived.
    virtual ViStatus read(std::string& reply) = 0;

    /// Ends the connection; 0 when none was open.
    virtual ViStatus close() = 0;

    virtual bool isOpen() const = 0;

protected:
    /// Sets the attributes of the interface on a session that was just opened.
    virtual ViStatus applyAttributes() = 0;
};

/// The connection of every interface that needs no settings of its own.
class VisaIO : public VisaIOBase
{
public:
    /// Opens a resource manager session and, from it, the instrument's, then applies the interface's attributes. Stops
    /// at the first negative status and leaves open what was opened; releaseSessions() cleans up.
    ViStatus open(const std::string& resource);

    /// One viWrite of the command, ended by the termination character.
    ViStatus write(std::string_view command) override;

    /// One viRead of at most readBufferSize bytes; one termination character at the end is removed. What a longer reply
    /// has left stays with the instrument for the next read.
    ViStatus read(std::string& reply) override;

    /// Reads one whole message as it came, termination character included. Of one that is longer than the buffer the
    /// rest is read and dropped, for one time-out and a tenth of a second at least, and VI_SUCCESS_MAX_CNT returned.
    /// `count` tells the bytes in the buffer, also after a failure.
    ViStatus readMessage(std::span<ViByte> buffer, std::size_t& count);

    /// A negative status keeps the sessions.
    ViStatus close() override;

    /// Whether both sessions, the resource manager's and the instrument's, are there.
    bool isOpen() const override;

    /// Takes over termination and time-outs, not the buffer sizes; an open session gets the new time-out at once.
    void applySettings(const IoSettings& settings);

    /// The time-out of reads and writes in milliseconds.
    ViInt32 timeout() const { return timeoutMs_; }

    /// An open session gets the new time-out at once; the status is then the attribute's, otherwise 0.
    ViStatus setTimeout(ViInt32 milliseconds);

    /// Closes whatever open() has left open, whether or not it got as far as the instrument.
    void releaseSessions();

    /// Closes the sessions and opens the same resource again. A negative status leaves none open.
    virtual ViStatus reopen();

    /// Whether nothing that was on its way arrives any more once the connection has been opened again.
    virtual bool startsAnew() const { return false; }

protected:
    ViStatus applyAttributes() override;

    /// One attribute or buffer size of the interface, as applyAttributes() sets them.
    struct Setting
    {
        enum class Kind
        {
            Attribute,
            Buffer,
        };
        Kind kind;
        /// The attribute's ID or the buffer's mask.
        ViUInt32 id;
        ViUInt32 value;
    };

    /// Applies the settings in order and stops at the first negative status; returns the last status.
    ViStatus apply(std::initializer_list<Setting> settings);

    // What reads and writes are made of; viWrite and viRead here. A connection that is not VISA's replaces these two,
    // close() and isOpen(), and is never opened by open().

    /// Sends bytes as they are.
    virtual ViStatus send(std::string_view bytes);

    /// Receives bytes up to the end of a message or of the buffer, the latter with VI_SUCCESS_MAX_CNT. `count` tells
    /// how many, also after a failure.
    virtual ViStatus receive(std::span<ViByte> buffer, ViUInt32& count);

    /// A value of a signed settings field as VISA takes it.
    static Setting attribute(ViAttr id, ViInt32 value);
    static Setting buffer(ViUInt16 mask, ViUInt32 size);

    ViUInt8 termChar() const { return termChar_; }
    bool termCharEnabled() const { return termCharEnabled_; }
    ViUInt32 readBufferSize() const { return readBufferSize_; }
    ViUInt32 writeBufferSize() const { return writeBufferSize_; }

private:
    ViStatus dropRest();

    std::string resourceName_;
    ViUInt8 termChar_ = '\n';
    bool termCharEnabled_ = true;
    ViInt32 openTimeoutMs_ = 2000;
    ViInt32 timeoutMs_ = 2000;
    bool appendTermChar_ = true;
    bool stripTermChar_ = true;
    ViUInt32 readBufferSize_ = 1024;
    ViUInt32 writeBufferSize_ = 1024;
    ViSession resourceManager_ = VI_NULL;
    ViSession session_ = VI_NULL;
    std::vector<ViUInt8> readBuffer_ = std::vector<ViUInt8>(readBufferSize_);
    std::string writeBuffer_;
};

/// Raw sockets ("TCPIP...::SOCKET"): the termination character ends a read.
class VisaTCPIPSocket : public VisaIO
{
public:
    bool startsAnew() const override { return true; }

protected:
    ViStatus applyAttributes() override;
};

/// The line parameters of a serial connection, with the values of VISA's ASRL attributes.
struct SerialParameters
{
    ViInt32 baudRate = 9600;
    ViInt32 dataBits = 8;
    ViInt32 flowControl = VI_ASRL_FLOW_NONE;
    ViInt32 parity = VI_ASRL_PAR_NONE;
    ViInt32 stopBits = VI_ASRL_STOP_ONE;
};

/// Serial lines ("ASRL...").
class VisaSerial : public VisaIO
{
public:
    explicit VisaSerial(const SerialParameters& parameters = {}) : parameters_(parameters) {}

protected:
    ViStatus applyAttributes() override;

private:
    SerialParameters parameters_;
};

/// LAN instruments that are no raw sockets ("TCPIP...").
class VisaTCPIP : public VisaIO
{
};

/// "GPIB...".
class VisaGPIB : public VisaIO
{
};

/// "USB...".
class VisaUSB : public VisaIO
{
};

/// Where an instrument keeps its connection, beside the settings that its next one starts with.
struct ConnectionHolder
{
    std::shared_ptr<VisaIO> connection;
    IoSettings settings;
};

/// The connection object for a resource descriptor, by the interface its text begins with, in any letter case; with
/// the settings applied, not opened.
std::shared_ptr<VisaIO> makeConnection(const std::string& resource, const IoSettings& settings);

/// Opens a connection to `resource` and, when that succeeds, puts it in the holder in place of the previous one, which
/// is closed. On a negative status the holder is as before and no VISA session is left behind.
ViStatus connect(ConnectionHolder& holder, const std::string& resource);

/// Puts a connection that needs no resource into the holder, with the holder's settings applied, in place of the
/// previous one, which is closed.
void connect(ConnectionHolder& holder, std::shared_ptr<VisaIO> connection);

} // namespace InstLink
