#pragma once

#include "visa/transport/stream.h"

#include <cstddef>
#include <cstring>
#include <deque>
#include <span>
#include <string>
#include <vector>

namespace kvxtest
{

/// A connection that gives what a test has prepared and writes down what it is asked for.
class ScriptedStream : public visa::Stream
{
public:
    /// What one readSome gives.
    struct Arrival
    {
        ViStatus status = VI_SUCCESS;
        std::string bytes{};
        /// Told beside the bytes that there are.
        std::size_t excess = 0;
    };

    ViStatus readSome(std::span<ViByte> buffer, const visa::Deadline&, std::size_t& count) noexcept override
    {
        if (arrivals.empty())
            return VI_ERROR_TMO;
        const Arrival arrival = arrivals.front();
        arrivals.pop_front();
        std::memcpy(buffer.data(), arrival.bytes.data(), arrival.bytes.size());
        count = arrival.bytes.size() + arrival.excess;
        return arrival.status;
    }

    ViStatus writeAll(std::span<const ViByte> bytes, const visa::Deadline&, std::size_t& count) noexcept override
    {
        calls.push_back("write " + std::string(bytes.begin(), bytes.end()));
        count = bytes.size();
        return VI_SUCCESS;
    }

    ViStatus discardInput(const visa::Deadline& deadline) noexcept override
    {
        calls.emplace_back("discardInput");
        discardMs = deadline.remainingMs(100000);
        if (discardStatus >= 0)
            arrivals.clear();
        return discardStatus;
    }

    ViStatus clearDevice(const visa::Deadline&) noexcept override
    {
        calls.emplace_back("clearDevice");
        return clearStatus;
    }

    ViStatus setAttribute(ViAttr, ViUInt32) noexcept override { return VI_SUCCESS; }
    void interrupt() noexcept override {}

    std::deque<Arrival> arrivals;
    std::vector<std::string> calls;
    ViStatus discardStatus = VI_SUCCESS;
    ViStatus clearStatus = VI_SUCCESS;
    int discardMs = -1;
};

} // namespace kvxtest
