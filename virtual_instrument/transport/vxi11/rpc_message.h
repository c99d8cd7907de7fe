#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace kvxvirtual::vxi11
{

/// A call as it came in (ONC RPC, RFC 5531); credentials are not looked at.
struct RpcCall
{
    std::uint32_t number = 0;
    std::uint32_t program = 0;
    std::uint32_t version = 0;
    std::uint32_t procedure = 0;
    std::string arguments{};
};

/// What becomes of a call that was accepted, with the protocol's numbers.
enum class Acceptance : std::uint32_t
{
    Success = 0,
    ProgramUnavailable = 1,
    ProgramMismatch = 2,
    ProcedureUnavailable = 3,
    GarbageArguments = 4,
};

/// An answer without the number of the call.
struct RpcAnswer
{
    Acceptance acceptance = Acceptance::Success;
    std::string result{};
};

/// The answer to a call of another version than this one.
RpcAnswer versionMismatch(std::uint32_t version);

/// A message read: a call to be carried out, or one that is answered without (the version of RPC). Neither when it is
/// no call at all.
struct ReadMessage
{
    std::optional<RpcCall> call;
    std::string reply;
};
ReadMessage readMessage(std::string_view message);

/// The message that answers a call.
std::string replyTo(std::uint32_t number, const RpcAnswer& answer);

/// The message of a call of ours.
std::string encodeCall(const RpcCall& call);

/// The message as a record of one fragment, as it travels on a stream.
std::string asRecord(std::string_view message);

/// Puts the fragments of records together.
class RecordAssembler
{
public:
    /// No message is longer.
    static constexpr std::size_t kLongestRecord = (std::size_t{1} << 20) + 1024;

    void append(std::string_view bytes);

    /// The next complete record. With overrun(), nothing more comes.
    std::optional<std::string> next();

    /// Whether a record is longer than it may be: where the next one begins is of no interest then.
    bool overrun() const { return overrun_; }

    std::size_t waitingBytes() const { return input_.size() - begin_; }

private:
    std::string input_;
    std::size_t begin_ = 0; ///< of what has not been looked at
    std::string record_;
    bool overrun_ = false;
};

} // namespace kvxvirtual::vxi11
