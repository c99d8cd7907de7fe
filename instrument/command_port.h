#pragma once

#include "base/status_codes.h"
#include "instrument/command_text.h"
#include "instrument/connection_setup.h"
#include "instrument/fresh_replies.h"
#include "instrument/reply_parsing.h"
#include "io/visa_io.h"

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

namespace TSRO
{

/// A reply as the value a query asks for. 0, or base::kErrorUnexpectedResponse with `value` unchanged when the reply
/// names no keyword of an enumeration.
/// @throws the exceptions of reply_parsing.h.
ViStatus parseReply(std::string_view reply, bool& value);
ViStatus parseReply(std::string_view reply, double& value);
ViStatus parseReply(std::string_view reply, ViInt32& value);
ViStatus parseReply(std::string_view reply, ChannelName& value);

/// An integer that is read as parseLong() reads it.
struct LongInteger
{
    ViInt32 value = 0;
};
ViStatus parseReply(std::string_view reply, LongInteger& value);

/// An entry of the error queue; none when the reply has not exactly two fields.
struct ErrorEntry
{
    bool isEntry = false;
    ViInt32 code = 0;
    std::string message = {};
};
ViStatus parseReply(std::string_view reply, ErrorEntry& value);

ViStatus parseReply(std::string_view reply, std::string& value);

template <class Enumeration>
requires std::is_enum_v<Enumeration> ViStatus parseReply(std::string_view reply, Enumeration& value)
{
    const auto named = kKeywordTable<Enumeration>.value(reply);
    if (!named)
        return base::kErrorUnexpectedResponse;
    value = static_cast<Enumeration>(*named);
    return VI_SUCCESS;
}

/// A reply of several fields: each is parsed as a reply of its own into the value in its place. The first that cannot
/// be read, or is missing, ends it: the values before it are stored, it and those behind it are unchanged. Fields
/// beyond the values are ignored.
/// @throws std::out_of_range "invalid vector subscript" when a field is missing.
template <class First, class Second, class... Rest>
ViStatus parseReply(std::string_view reply, First& first, Second& second, Rest&... rest)
{
    const ReplyFields fields(reply);
    std::size_t index = 0;
    ViStatus status = VI_SUCCESS;
    const auto store = [&](auto& value) {
        status = parseReply(fields[index++], value);
        return status >= 0;
    };
    static_cast<void>(store(first) && store(second) && (store(rest) && ...));
    return status;
}

/// The instrument's side of its connection: one command out, one reply in.
///
/// The untyped write(), query(), readMessage() and close() return the connection's own status. Every other operation
/// returns 0 for any status >= 0 of the connection and base::kErrorIo for a negative one. Values that cannot be spelled
/// and replies that cannot be read leave as the exceptions of command_text.h and reply_parsing.h; outputs are then
/// unchanged, but for the fields that a reply of several had before the one that could not be read.
///
/// Not thread-safe: its caller serialises the calls. Each call holds a reference of its own to the connection.
class CommandPort
{
public:
    CommandPort();

    /// A port on a connection that is there already.
    explicit CommandPort(InstLink::ConnectionHolder holder);

    /// For connections to come.
    void configure(const ConnectionSetup& setup);

    /// Where they write down their messages; null: nowhere.
    const std::shared_ptr<InstLink::MessageLog>& messageLog() const { return holder_.settings.messageLog; }

    /// The instrument that answers on this connection.
    void expect(const Identity& identity) { freshReplies_.expect(identity); }

    /// Replaces the connection by one to `resource`; on a negative status the previous one stays.
    ViStatus connect(const std::string& resource);

    /// Replaces the connection by one that needs no resource.
    void connect(std::shared_ptr<InstLink::VisaIO> connection);

    /// Closes the connection and lets go of it; a negative status keeps it. VI_ERROR_INV_OBJECT when there is none.
    ViStatus close();

    bool isOpen() const;

    /// The time-out of the connection, or the one that the next connection starts with; milliseconds.
    ViInt32 ioTimeout() const;
    ViStatus setIoTimeout(ViInt32 milliseconds);

    /// The command as given. VI_ERROR_INV_OBJECT when there is no connection.
    ViStatus write(std::string_view command);

    /// As write(), for a command that must not wait until the connection is in step, such as one that switches off.
    ViStatus writeAtOnce(std::string_view command);

    /// As write(), then one read. `reply` changes only when bytes arrived.
    ViStatus query(std::string_view command, std::string& reply);

    /// As write(), for a message of the caller's own, whose reply it may read with readMessage().
    ViStatus writeMessage(std::string_view message);

    /// One whole message as it came; base::kWarnArrayTruncated when the rest of it has been dropped, otherwise as
    /// write(). `count` tells the bytes in the buffer.
    ViStatus readMessage(std::span<ViByte> buffer, std::size_t& count);

    /// The header alone.
    ViStatus send(const Header& header);

    /// The header, one blank, the arguments joined by commas.
    template <class... Arguments>
    ViStatus set(const Header& header, const Arguments&... arguments)
    {
        line_.clear();
        header.appendTo(line_);
        appendArguments(line_, arguments...);
        return sendLine();
    }

    /// The header as a query. One value is parsed from the whole reply, several from its comma-separated fields.
    template <class... Values>
    ViStatus get(const Header& header, Values&... values)
    {
        line_.clear();
        header.appendQueryTo(line_);
        return queryLine(values...);
    }

    /// As get(), with one argument behind the header.
    template <class Argument, class... Values>
    ViStatus getFor(const Header& header, const Argument& argument, Values&... values)
    {
        line_.clear();
        header.appendQueryTo(line_);
        appendArguments(line_, argument);
        return queryLine(values...);
    }

    /// The reply that a query has given as a text is not one to it.
    void distrust() { freshReplies_.suspect(); }

    /// What the last exchange of get() and getFor() has brought.
    std::string_view lastReply() const { return reply_; }

    /// The connection's own status of the last call: 0, a completion code, a failure of VISA, or base::kErrorIo when
    /// another instrument than the expected one answers.
    ViStatus connectionStatus() const { return connectionStatus_; }

private:
    /// A reply that cannot be read may have been meant for another query: it is suspect until it is accepted.
    class Doubt
    {
    public:
        explicit Doubt(FreshReplies& freshReplies) : freshReplies_(freshReplies) {}
        Doubt(const Doubt&) = delete;
        Doubt& operator=(const Doubt&) = delete;
        ~Doubt()
        {
            if (!isAccepted_)
                freshReplies_.suspect();
        }

        void accept() { isAccepted_ = true; }

    private:
        FreshReplies& freshReplies_;
        bool isAccepted_ = false;
    };

    ViStatus sendLine();
    ViStatus exchangeLine();
    ViStatus transmit(InstLink::VisaIO& connection, std::string_view command, bool isQuery);
    ViStatus noted(ViStatus connectionStatus) { return connectionStatus_ = connectionStatus; }

    template <class... Values>
    ViStatus queryLine(Values&... values)
    {
        ViStatus status = exchangeLine();
        if (status < 0)
            return status;
        Doubt doubt(freshReplies_);
        status = parseReply(reply_, values...);
        if (status >= 0)
            doubt.accept();
        return status;
    }

    InstLink::ConnectionHolder holder_;
    FreshReplies freshReplies_;
    ViStatus connectionStatus_ = VI_SUCCESS;
    // Kept between calls, so that a command that fits into them allocates nothing.
    std::string line_;
    std::string reply_;
};

} // namespace TSRO
