#include "tools/kvx2800t/panel/server.h"

#include "tools/kvx2800t/panel/assets.h"
#include "tools/kvx2800t/panel/outbox.h"

#include <boost/asio.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket.hpp>
#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <utility>

namespace panel
{
namespace
{

namespace net = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
namespace websocket = beast::websocket;
using Tcp = net::ip::tcp;
using boost::system::error_code;
using Request = http::request<http::empty_body>;
using Response = http::response<http::string_body>;

constexpr std::size_t kMostConnections = 64;
constexpr std::uint32_t kLargestHeader = 8192;
constexpr std::size_t kLargestMessage = 65536;
constexpr std::chrono::seconds kRequestTime{10};
constexpr std::chrono::seconds kSilenceTime{30};
constexpr std::chrono::milliseconds kTick{500};
/// What the host holds for a page that is slow is old when it gets it.
constexpr int kSendBuffer = 65536;

std::string_view viewOf(beast::string_view text)
{
    return {text.data(), text.size()};
}

/// A field that counts only where there is one of it.
std::string_view only(const Request& request, http::field field)
{
    return request.count(field) == 1 ? viewOf(request[field]) : std::string_view();
}

HttpRequest described(const Request& request)
{
    return {viewOf(request.method_string()),    viewOf(request.target()),           only(request, http::field::host),
            only(request, http::field::origin), only(request, http::field::cookie), websocket::is_upgrade(request)};
}

/// Scripts and styles are the panel's own, and nothing is asked of other hosts.
std::string contentPolicy(std::string_view host)
{
    return "default-src 'self'; connect-src 'self' ws://" + std::string(host) +
           "; img-src 'self' data: blob:; base-uri 'none'; form-action 'none'; frame-ancestors 'none'; "
           "object-src 'none'";
}

Response responseTo(const Request& request, http::status status, std::string_view type, std::string body)
{
    Response response(status, request.version());
    response.set(http::field::content_type, {type.data(), type.size()});
    response.set(http::field::cache_control, "no-store");
    response.set("Referrer-Policy", "no-referrer");
    response.set("X-Content-Type-Options", "nosniff");
    response.keep_alive(request.keep_alive());
    response.body() = std::move(body);
    response.prepare_payload();
    return response;
}

Response plainResponse(const Request& request, unsigned status, std::string_view text)
{
    return responseTo(request, http::int_to_status(status), "text/plain; charset=utf-8", std::string(text) + '\n');
}

/// Of a request that could not be read to its end: what it was is not known.
unsigned statusOf(const error_code& error)
{
    if (error == http::error::header_limit || error == http::error::buffer_overflow)
        return 431;
    return error == http::error::body_limit ? 413 : 400;
}

bool isOfRequest(const error_code& error)
{
    return error.category() == make_error_code(http::error::bad_method).category() &&
           error != http::error::end_of_stream && error != http::error::partial_message;
}

class Page;

/// What connections share. All of it is the thread's that runs the server.
struct Shared
{
    Gatekeeper gatekeeper;
    PageListener* listener = nullptr;
    std::size_t connections = 0;
    PageId lastPage = 0;
    std::map<PageId, std::shared_ptr<Page>> pages = {};
    Outbox::Message state = {};
};

struct Leave
{
    void operator()(Shared* shared) const { --shared->connections; }
};

/// Counts a connection for as long as it lives.
using Counted = std::unique_ptr<Shared, Leave>;

Counted countIn(Shared& shared)
{
    ++shared.connections;
    return Counted(&shared);
}

/// A page, once it speaks WebSocket.
class Page : public std::enable_shared_from_this<Page>
{
public:
    Page(Shared& shared, Counted counted, beast::tcp_stream stream)
        : shared_(shared), counted_(std::move(counted)), socket_(std::move(stream)), id_(++shared.lastPage)
    {
    }

    void accept(Request request)
    {
        request_ = std::move(request);
        beast::get_lowest_layer(socket_).expires_never();
        socket_.set_option(websocket::stream_base::timeout{kRequestTime, kSilenceTime, true});
        socket_.read_message_max(kLargestMessage);
        socket_.text(true);
        socket_.async_accept(request_, [self = shared_from_this()](const error_code& error) {
            if (!error)
                self->begin();
        });
    }

    /// A page without room for it is not read by anybody: it is cut off.
    void send(Outbox::Message message)
    {
        if (outbox_.add(std::move(message)))
            write();
        else
            cut();
    }

    void setState(Outbox::Message state)
    {
        outbox_.setState(std::move(state));
        write();
    }

private:
    void begin()
    {
        shared_.pages[id_] = shared_from_this();
        for (std::string& message : shared_.listener->greeting())
            send(std::make_shared<const std::string>(std::move(message)));
        if (shared_.state)
            setState(shared_.state);
        read();
    }

    void read()
    {
        socket_.async_read(buffer_, [self = shared_from_this()](const error_code& error, std::size_t) {
            if (error)
                self->leave();
            else
                self->take();
        });
    }

    void take()
    {
        if (!socket_.got_text()) {
            close(websocket::close_code::unknown_data);
            return;
        }
        const auto bytes = buffer_.cdata();
        const bool isOurs = shared_.listener->onMessage(id_, {static_cast<const char*>(bytes.data()), bytes.size()});
        buffer_.consume(buffer_.size());
        if (isOurs)
            read();
        else
            close(websocket::close_code::bad_payload);
    }

    void write()
    {
        if (written_)
            return;
        written_ = outbox_.take();
        if (!written_)
            return;
        socket_.async_write(net::buffer(*written_), [self = shared_from_this()](const error_code& error, std::size_t) {
            self->written_.reset();
            if (!error)
                self->write();
        });
    }

    /// Says why. The answer to it is waited for only as long as for any other word of the page.
    void close(websocket::close_code code)
    {
        leave();
        socket_.async_close(code, [self = shared_from_this()](const error_code&) {});
    }

    void cut()
    {
        leave();
        beast::get_lowest_layer(socket_).close();
    }

    void leave() { shared_.pages.erase(id_); }

    Shared& shared_;
    Counted counted_;
    websocket::stream<beast::tcp_stream> socket_;
    PageId id_;
    Request request_;
    beast::flat_buffer buffer_;
    Outbox outbox_;
    Outbox::Message written_; ///< on its way
};

/// A connection that speaks HTTP.
class Connection : public std::enable_shared_from_this<Connection>
{
public:
    Connection(Shared& shared, Tcp::socket socket)
        : shared_(shared), counted_(countIn(shared)), stream_(std::move(socket))
    {
    }

    void read()
    {
        parser_.emplace();
        parser_->header_limit(kLargestHeader);
        parser_->body_limit(0);
        stream_.expires_after(kRequestTime);
        http::async_read(stream_, buffer_, *parser_, [self = shared_from_this()](const error_code& error, std::size_t) {
            if (!error)
                self->answer();
            else if (isOfRequest(error))
                self->refuse(statusOf(error));
        });
    }

private:
    void refuse(unsigned status)
    {
        Request unread;
        unread.version(11);
        Response response = plainResponse(unread, status, "this request is too large, or none");
        response.keep_alive(false);
        write(std::move(response));
    }

    void answer()
    {
        Request request = parser_->release();
        const Verdict verdict = shared_.gatekeeper.judge(described(request));
        switch (verdict.status) {
        case 101:
            std::make_shared<Page>(shared_, std::move(counted_), std::move(stream_))->accept(std::move(request));
            break;
        case 200:
            serve(request, verdict.path);
            break;
        case 303:
            goOn(request);
            break;
        default: {
            Response response = plainResponse(request, verdict.status, verdict.text);
            if (verdict.status == 405)
                response.set(http::field::allow, "GET");
            // Whoever is not let in does not keep a connection from who is.
            response.keep_alive(false);
            write(std::move(response));
        }
        }
    }

    void serve(const Request& request, std::string_view path)
    {
        const Asset* asset = findAsset(path);
        if (asset == nullptr) {
            write(plainResponse(request, 404, "there is no such page"));
            return;
        }
        Response response = responseTo(request, http::status::ok, mediaType(path), std::string(asset->content));
        response.set("Content-Security-Policy", contentPolicy(described(request).host));
        if (path == "/index.html")
            response.set(http::field::set_cookie, shared_.gatekeeper.cookie());
        write(std::move(response));
    }

    void goOn(const Request& request)
    {
        Response response = plainResponse(request, 303, "the page is there");
        response.set(http::field::location, shared_.gatekeeper.pagePath());
        write(std::move(response));
    }

    void write(Response response)
    {
        response_ = std::move(response);
        stream_.expires_after(kRequestTime);
        http::async_write(stream_, response_, [self = shared_from_this()](const error_code& error, std::size_t) {
            if (error)
                return;
            if (self->response_.keep_alive())
                self->read();
            else
                self->stream_.socket().shutdown(Tcp::socket::shutdown_send, self->ignored_);
        });
    }

    Shared& shared_;
    Counted counted_;
    beast::tcp_stream stream_;
    beast::flat_buffer buffer_{std::size_t{2} * kLargestHeader};
    std::optional<http::request_parser<http::empty_body>> parser_;
    Response response_;
    error_code ignored_;
};

Tcp::acceptor listen(net::io_context& context, const std::string& address, unsigned short port)
{
    try {
        const Tcp::endpoint endpoint(net::ip::make_address(address), port);
        Tcp::acceptor acceptor(context, endpoint.protocol());
        acceptor.set_option(Tcp::acceptor::reuse_address(true));
        acceptor.bind(endpoint);
        acceptor.listen();
        return acceptor;
    } catch (const boost::system::system_error& error) {
        throw std::runtime_error("cannot listen on " + address + ':' + std::to_string(port) + ": " +
                                 error.code().message());
    }
}

} // namespace

class Server::Implementation
{
public:
    Implementation(const std::string& address, unsigned short port) : acceptor_(listen(context_, address, port))
    {
        shared_.emplace(Shared{Gatekeeper(address, this->port())});
    }

    const Gatekeeper& gatekeeper() const { return shared_->gatekeeper; }
    unsigned short port() const { return acceptor_.local_endpoint().port(); }

    void run(PageListener& listener, const std::vector<int>& signals)
    {
        shared_->listener = &listener;
        net::signal_set stops(context_);
        for (const int signal : signals)
            stops.add(signal);
        if (!signals.empty())
            stops.async_wait([this](const error_code& error, int) {
                if (!error)
                    stop();
            });
        accept();
        tick();
        context_.run();
        shared_->pages.clear();
    }

    void stop() { context_.stop(); }

    /// In the server's thread.
    template <class Work>
    void post(Work work)
    {
        net::post(context_, std::move(work));
    }

    void send(PageId id, Outbox::Message message)
    {
        post([this, id, message = std::move(message)] {
            const auto page = shared_->pages.find(id);
            if (page != shared_->pages.end())
                page->second->send(message);
        });
    }

    void sendAll(Outbox::Message message, PageId except)
    {
        post([this, except, message = std::move(message)] {
            // A page that is cut off leaves them.
            const auto pages = shared_->pages;
            for (const auto& [id, page] : pages)
                if (id != except)
                    page->send(message);
        });
    }

    void sendState(Outbox::Message message)
    {
        post([this, message = std::move(message)] {
            shared_->state = message;
            for (const auto& [id, page] : shared_->pages)
                page->setState(message);
        });
    }

private:
    void accept()
    {
        acceptor_.async_accept([this](const error_code& error, Tcp::socket socket) {
            if (!error)
                welcome(std::move(socket));
            if (error == net::error::operation_aborted)
                return;
            // Where the host is out of descriptors, the next one would fail at once, too.
            if (error)
                acceptLater();
            else
                accept();
        });
    }

    void acceptLater()
    {
        pause_.expires_after(kTick);
        pause_.async_wait([this](const error_code& error) {
            if (!error)
                accept();
        });
    }

    void welcome(Tcp::socket socket)
    {
        if (shared_->connections >= kMostConnections)
            return;
        error_code ignored;
        socket.set_option(Tcp::no_delay(true), ignored);
        socket.set_option(net::socket_base::send_buffer_size(kSendBuffer), ignored);
        std::make_shared<Connection>(*shared_, std::move(socket))->read();
    }

    void tick()
    {
        timer_.expires_after(kTick);
        timer_.async_wait([this](const error_code& error) {
            if (error)
                return;
            shared_->listener->onTick();
            tick();
        });
    }

    std::optional<Shared> shared_; ///< lives longer than the connections that handlers of the context hold
    net::io_context context_{1};
    Tcp::acceptor acceptor_;
    net::steady_timer timer_{context_};
    net::steady_timer pause_{context_};
};

Server::Server(const std::string& address, unsigned short port)
    : implementation_(std::make_unique<Implementation>(address, port))
{
}

Server::~Server() = default;

const Gatekeeper& Server::gatekeeper() const
{
    return implementation_->gatekeeper();
}

unsigned short Server::port() const
{
    return implementation_->port();
}

void Server::run(PageListener& listener, const std::vector<int>& signals)
{
    implementation_->run(listener, signals);
}

void Server::stop()
{
    implementation_->stop();
}

void Server::send(PageId page, std::string message)
{
    implementation_->send(page, std::make_shared<const std::string>(std::move(message)));
}

void Server::sendAll(std::string message, PageId except)
{
    implementation_->sendAll(std::make_shared<const std::string>(std::move(message)), except);
}

void Server::sendState(std::string message)
{
    implementation_->sendState(std::make_shared<const std::string>(std::move(message)));
}

} // namespace panel
