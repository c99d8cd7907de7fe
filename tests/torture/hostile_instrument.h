#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <thread>

/// An instrument at the other end of a real line that answers every query but one, with which it does as it is told.
namespace kvxtest
{

/// The instrument's end of the line.
class HostileLine
{
public:
    virtual ~HostileLine() = default;

    /// Waits for a program to connect; false when the line is shut.
    virtual bool accept() = 0;
    /// The next bytes; none at the end of the connection.
    virtual std::string receive() = 0;
    /// As many of these bytes as the other end takes.
    virtual void send(const std::string& bytes) = 0;
    /// Ends the connection, in order or abruptly.
    virtual void hangUp(bool abruptly) = 0;
    /// Ends everything that waits, from another thread.
    virtual void shut() = 0;
    /// The VISA resource descriptor of the other end.
    virtual std::string resource() const = 0;
};

std::unique_ptr<HostileLine> hostileSocket();
std::unique_ptr<HostileLine> hostileTerminal();

/// What is done in place of answering.
using Malice = std::function<void(HostileLine& line, const std::string& reply)>;

/// A reply to a query of a level, read back: the channel that was asked for, and which of all queries it was.
struct LevelReply
{
    int channel;
    std::size_t number;
};

class HostileInstrument
{
public:
    /// @param attacked  the query, counted from 1, that `malice` answers
    HostileInstrument(std::unique_ptr<HostileLine> line, std::size_t attacked, Malice malice);
    ~HostileInstrument();
    HostileInstrument(const HostileInstrument&) = delete;
    HostileInstrument& operator=(const HostileInstrument&) = delete;

    std::string resource() const { return line_->resource(); }

    /// The queries that have come so far.
    std::size_t queries() const { return queries_; }

    /// How many of them it has done with, their bytes on the way.
    std::size_t answered() const { return answered_; }

    static LevelReply read(double level);

private:
    void serve();
    void answer(const std::string& message);
    std::string replyTo(const std::string& message) const;

    std::unique_ptr<HostileLine> line_;
    const std::size_t attacked_;
    const Malice malice_;
    std::atomic<std::size_t> queries_ = 0;
    std::atomic<std::size_t> answered_ = 0;
    std::atomic<bool> isShut_ = false;
    std::thread server_;
};

} // namespace kvxtest
