#pragma once

#include "tests/support/visa/rpc_bytes.h"
#include "tests/support/visa/tcp_peer.h"

#include <atomic>
#include <chrono>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace kvxtest
{

/// A server of RPC that does what a test tells it: calls are noted, and each is answered with what the next of the
/// answers makes of it, byte for byte. Without an answer it is silent. Serves one connection after the other.
class RpcPeer
{
public:
    /// The bytes to send after a call.
    using Answer = std::function<std::string(const RpcCall& call)>;

    RpcPeer() : serving_([this] { serve(); }) {}

    ~RpcPeer()
    {
        isOver_ = true;
        // A connection of its own ends the wait for one.
        asio::io_context context;
        asio::ip::tcp::socket knock(context);
        asio::error_code error;
        knock.connect({asio::ip::address_v4::loopback(), tcp_.port()}, error);
        knock.close(error);
        serving_.join();
    }

    RpcPeer(const RpcPeer&) = delete;
    RpcPeer& operator=(const RpcPeer&) = delete;

    unsigned short port() const { return tcp_.port(); }

    void answer(Answer answer) { add({std::move(answer), false}); }

    /// The connection ends behind the answer.
    void answerAndEnd(Answer answer) { add({std::move(answer), true}); }

    /// Answers a call with a result, in a record as it should be.
    void answerWith(const std::string& result)
    {
        answer([result](const RpcCall& call) { return reply(call.number, result); });
    }

    void forgetAnswers()
    {
        const std::lock_guard guard(mutex_);
        steps_.clear();
    }

    /// The calls so far.
    std::vector<RpcCall> calls()
    {
        const std::lock_guard guard(mutex_);
        return calls_;
    }

    RpcCall lastCall() { return calls().at(calls().size() - 1); }

    /// Waits until there were as many.
    void awaitCalls(std::size_t count)
    {
        while (calls().size() < count)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }

private:
    struct Step
    {
        Answer answer;
        bool isLast = false;
    };

    void add(Step step)
    {
        const std::lock_guard guard(mutex_);
        steps_.push_back(std::move(step));
    }

    void serve()
    {
        while (!isOver_) {
            tcp_.accept();
            while (serveCall())
                ;
        }
    }

    bool serveCall()
    {
        const std::string mark = tcp_.receive(4);
        if (mark.size() < 4)
            return false;
        const std::string record = tcp_.receive(wordIn(mark, 0) & 0x7FFFFFFFU);
        const RpcCall call = callIn(record);
        Step step;
        {
            const std::lock_guard guard(mutex_);
            calls_.push_back(call);
            if (steps_.empty())
                return true;
            step = std::move(steps_.front());
            steps_.pop_front();
        }
        const bool isTaken = tcp_.sends(step.answer(call));
        if (step.isLast)
            tcp_.close();
        return isTaken && !step.isLast;
    }

    TcpPeer tcp_;
    std::mutex mutex_;
    std::deque<Step> steps_;
    std::vector<RpcCall> calls_;
    std::atomic<bool> isOver_ = false;
    std::thread serving_;
};

} // namespace kvxtest
