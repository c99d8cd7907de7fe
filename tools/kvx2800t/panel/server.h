#pragma once

#include "tools/kvx2800t/panel/gatekeeper.h"
#include "tools/kvx2800t/panel/hub.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace panel
{

/// What pages do. Called by the thread that is in Server::run.
class PageListener
{
public:
    PageListener() = default;
    virtual ~PageListener() = default;
    PageListener(const PageListener&) = delete;
    PageListener& operator=(const PageListener&) = delete;

    /// What a page that has just connected is told first.
    virtual std::vector<std::string> greeting() = 0;

    /// A text message of a page. False ends the connection: the message is none of our pages'.
    virtual bool onMessage(PageId page, std::string_view text) = 0;

    /// Twice a second.
    virtual void onTick() = 0;
};

/// Serves the page and its assets by HTTP, and messages by WebSocket, to whom its Gatekeeper lets in.
///
/// Requests have 8 KiB and no body, messages of pages 64 KiB; 64 connections are served. Whoever says nothing for ten
/// seconds before a page is served, or does not answer a ping of a WebSocket's within half a minute, is cut off, and so
/// is a page that leaves a megabyte of messages unread.
class Server
{
public:
    /// Listens; 0 is any free port. Throws std::runtime_error when the address or the port is not to be had.
    Server(const std::string& address, unsigned short port);
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    const Gatekeeper& gatekeeper() const;
    unsigned short port() const;

    /// Serves until stop(), or one of these signals.
    void run(PageListener& listener, const std::vector<int>& signals = {});

    /// @name From any thread
    /// @{
    void stop();
    void send(PageId page, std::string message);
    /// To every page but `except`.
    void sendAll(std::string message, PageId except = 0);
    /// The instrument's state, to every page that takes it before there is a newer one.
    void sendState(std::string message);
    /// @}

private:
    class Implementation;
    std::unique_ptr<Implementation> implementation_;
};

} // namespace panel
