#include "visa/transport/tcp/host_lookup.h"

#include "visa/host/library.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <limits>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

namespace visa
{
namespace
{

using asio::ip::tcp;

constexpr int kMostThreads = 64;
std::atomic<int> threads = 0;

/// Between the caller and the thread, whichever stays longer.
struct Lookup
{
    std::mutex mutex{};
    std::condition_variable ended{};
    std::optional<asio::error_code> outcome{};
    HostEndpoints endpoints{};
};

asio::error_code lookUpBySystem(const std::string& host, const std::string& port, HostEndpoints& endpoints)
{
    asio::io_context context(1);
    asio::error_code error;
    endpoints = tcp::resolver(context).resolve(host, port, tcp::resolver::numeric_service, error);
    return error;
}

asio::error_code run(const HostLookup& lookup, const std::string& host, const std::string& port,
                     HostEndpoints& endpoints) noexcept
{
    try {
        return lookup(host, port, endpoints);
    } catch (const std::bad_alloc&) {
        return asio::error::no_memory;
    } catch (const std::system_error& failure) {
        return failure.code();
    }
}

/// @param lookup outlives the thread: it is the thread's own
void startThread(const std::shared_ptr<Lookup>& shared, HostLookup lookup, std::string host, std::string port)
{
    std::thread([shared, lookup = std::move(lookup), host = std::move(host), port = std::move(port)] {
        HostEndpoints endpoints;
        const asio::error_code outcome = run(lookup, host, port, endpoints);
        {
            const std::lock_guard guard(shared->mutex);
            shared->outcome = outcome;
            shared->endpoints = std::move(endpoints);
        }
        --threads;
        shared->ended.notify_one();
    }).detach();
}

asio::error_code await(Lookup& shared, const Deadline& deadline, HostEndpoints& endpoints)
{
    std::unique_lock lock(shared.mutex);
    while (!shared.outcome) {
        constexpr int kLongestWaitMs = 1000000;
        const int waitMs = deadline.remainingMs(kLongestWaitMs);
        if (waitMs == 0)
            return asio::error::timed_out;
        shared.ended.wait_for(lock, std::chrono::milliseconds(waitMs));
    }
    endpoints = std::move(shared.endpoints);
    return *shared.outcome;
}

/// Not looked up: what is an address already.
std::optional<HostEndpoints> numericEndpoints(const std::string& host, std::uint16_t port)
{
    asio::error_code error;
    const auto address = asio::ip::make_address(host, error);
    if (error)
        return std::nullopt;
    return HostEndpoints::create(tcp::endpoint(address, port), host, std::to_string(port));
}

} // namespace

asio::error_code lookUpHostBy(const HostLookup& lookup, const std::string& host, std::uint16_t port,
                              const Deadline& deadline, HostEndpoints& endpoints)
{
    if (auto numeric = numericEndpoints(host, port)) {
        endpoints = std::move(*numeric);
        return {};
    }
    keepLibraryLoaded();
    const auto shared = std::make_shared<Lookup>();
    if (++threads > kMostThreads) {
        --threads;
        return asio::error::no_buffer_space;
    }
    try {
        startThread(shared, lookup, host, std::to_string(port));
    } catch (const std::exception&) {
        --threads;
        return asio::error::no_memory;
    }
    return await(*shared, deadline, endpoints);
}

asio::error_code lookUpHost(const std::string& host, std::uint16_t port, const Deadline& deadline,
                            HostEndpoints& endpoints)
{
    return lookUpHostBy(lookUpBySystem, host, port, deadline, endpoints);
}

} // namespace visa
