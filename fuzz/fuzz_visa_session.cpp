// A VISA session on a connection that gives what the input says: arrivals, failures, and between them reads, writes,
// clears and settings. No byte is lost or comes out of turn, except where something discards what has arrived, and no
// read goes on beyond its end.
#include "fuzz/input.h"
#include "tests/support/visa/scripted_stream.h"
#include "visa/session/instrument_session.h"
#include "visa/transport/stream_transport.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace
{

using kvxfuzz::Input;
using kvxfuzz::require;

/// The session beside a plain account of what it has to give.
class Session
{
public:
    void arrive(const std::string& bytes)
    {
        if (bytes.empty())
            return;
        stream_.arrivals.push_back({VI_SUCCESS, bytes});
        pending_ += bytes;
    }

    void fail(std::uint8_t which, const std::string& bytes)
    {
        constexpr std::array<ViStatus, 4> kStatuses{VI_ERROR_TMO, VI_ERROR_IO, VI_ERROR_CONN_LOST, VI_ERROR_ALLOC};
        stream_.arrivals.push_back({kStatuses[which % kStatuses.size()], bytes});
        pending_ += bytes;
    }

    void read(std::size_t size)
    {
        static std::array<ViByte, 65536> buffer;
        const auto room = std::span(buffer).first(std::min(size, buffer.size()));
        std::size_t count = 0;
        const ViStatus status = session_.read(room, count);
        require(count <= room.size());
        const std::string_view received(reinterpret_cast<const char*>(buffer.data()), count);
        require(pending_.starts_with(received));
        const std::size_t end = isEnding_ ? received.find(end_) : std::string_view::npos;
        if (status == VI_SUCCESS_TERM_CHAR)
            require(end == count - 1);
        else
            require(end == std::string_view::npos &&
                    (status < 0 || (status == VI_SUCCESS_MAX_CNT && count == room.size())));
        lastReadFailed_ = status < 0;
        if (!lastReadFailed_)
            pending_.erase(0, count);
    }

    void write()
    {
        const ViByte byte = '?';
        std::size_t count = 0;
        require(session_.write({&byte, 1}, count) == VI_SUCCESS && count == 1);
        if (lastReadFailed_ && isDiscarding_)
            forget();
    }

    void clear()
    {
        require(session_.clear() == VI_SUCCESS);
        forget();
    }

    void flush()
    {
        require(session_.setBuffer(VI_IO_IN_BUF, 1024) == VI_WARN_NSUP_BUF);
        forget();
    }

    void endAt(bool isEnding, char end)
    {
        isEnding_ = isEnding;
        end_ = end;
        set(VI_ATTR_TERMCHAR_EN, isEnding ? VI_TRUE : VI_FALSE);
        set(VI_ATTR_TERMCHAR, static_cast<ViByte>(end));
    }

    void discard(bool isDiscarding)
    {
        isDiscarding_ = isDiscarding;
        set(VI_ATTR_KVX_DISCARD_STALE_INPUT, isDiscarding ? VI_TRUE : VI_FALSE);
    }

    /// Everything that is left can be read in the end.
    void expectAll()
    {
        endAt(false, end_);
        while (!stream_.arrivals.empty() || !pending_.empty()) {
            const std::size_t before = stream_.arrivals.size() + pending_.size();
            read(pending_.size() + (stream_.arrivals.empty() ? 0 : 1));
            require(stream_.arrivals.size() + pending_.size() < before);
        }
    }

private:
    static visa::InstrumentSession::Identity identity()
    {
        visa::ResourceName name;
        name.kind = visa::ResourceKind::TcpipSocket;
        return {2, 1, name};
    }

    void set(ViAttr attribute, ViAttrState value) { require(session_.setAttribute(attribute, value) == VI_SUCCESS); }

    void forget()
    {
        pending_.clear();
        lastReadFailed_ = false;
    }

    kvxtest::ScriptedStream& stream_ = *new kvxtest::ScriptedStream;
    visa::InstrumentSession session_{
        identity(),
        {std::make_unique<visa::StreamTransport>(std::unique_ptr<visa::Stream>(&stream_), visa::Framing::None),
         visa::kSocket},
        std::make_shared<visa::ResourceLock>()};
    std::string pending_;
    bool lastReadFailed_ = false;
    bool isDiscarding_ = true;
    bool isEnding_ = false;
    char end_ = '\n';
};

void step(Session& session, Input& input)
{
    constexpr std::size_t kLargeRead = 40000;
    switch (input.number() % 9) {
    case 0:
        return session.arrive(input.take<std::string>(input.number()));
    case 1:
        return session.arrive(std::string(std::size_t{16} * input.number(), 'x'));
    case 2:
        return session.fail(input.number(), input.take<std::string>(input.number()));
    case 3:
        return session.read(input.number());
    case 4:
        return session.read(kLargeRead);
    case 5:
        return session.write();
    case 6:
        return input.number() % 2 == 0 ? session.clear() : session.flush();
    case 7:
        return session.discard(input.number() % 2 == 0);
    default:
        return session.endAt(input.number() % 2 == 0, static_cast<char>(input.number()));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Session session;
    Input input({data, size});
    while (!input.isOver())
        step(session, input);
    session.expectAll();
    return 0;
}
