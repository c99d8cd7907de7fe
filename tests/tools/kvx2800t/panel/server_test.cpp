#include "tools/kvx2800t/panel/server.h"

#include "tests/support/processes/child_process.h"
#include "tools/kvx2800t/panel/assets.h"
#include "tools/kvx2800t/panel/front.h"

#include <boost/asio.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket.hpp>
#include <chrono>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <thread>
#include <vector>

using namespace panel;

namespace
{

namespace net = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
namespace websocket = beast::websocket;
using Tcp = net::ip::tcp;
using boost::system::error_code;
using Response = http::response<http::string_body>;

/// Repeats what a page says; "bad" is no message of a page's.
class Echo : public PageListener
{
public:
    std::vector<std::string> greeting() override { return {"hello", "page"}; }

    bool onMessage(PageId page, std::string_view text) override
    {
        if (text == "bad")
            return false;
        server->send(page, "echo " + std::string(text));
        server->sendAll("to others", page);
        return true;
    }

    void onTick() override { ++ticks; }

    Server* server = nullptr;
    int ticks = 0;
};

/// A server on a free port.
class PanelServer : public testing::Test
{
public:
    PanelServer()
    {
        echo.server = &server;
        thread = std::thread([this] { server.run(echo); });
    }

    ~PanelServer() override
    {
        server.stop();
        thread.join();
    }

    PanelServer(const PanelServer&) = delete;
    PanelServer& operator=(const PanelServer&) = delete;

    Server server{"127.0.0.1", 0};
    Echo echo;
    std::thread thread;
};

std::string hostOf(const std::string& address)
{
    const std::string rest = address.substr(std::string("http://").size());
    return rest.substr(0, rest.find('/'));
}

std::string tokenIn(const std::string& address)
{
    return address.substr(address.find("token=") + 6);
}

Tcp::socket connected(net::io_context& context, const std::string& host)
{
    Tcp::socket socket(context);
    const auto port = static_cast<unsigned short>(std::stoi(host.substr(host.find(':') + 1)));
    socket.connect({net::ip::make_address("127.0.0.1"), port});
    return socket;
}

/// A client of HTTP, one request for each connection.
class Browser
{
public:
    explicit Browser(const Gatekeeper& gatekeeper) : Browser(hostOf(gatekeeper.pageAddress())) {}
    explicit Browser(std::string place) : host(place), place_(std::move(place)) {}

    Response get(const std::string& target, http::verb method = http::verb::get)
    {
        http::request<http::empty_body> request = described(target, method);
        request.keep_alive(false);
        return answerTo(request);
    }

    /// The status that the asking for a WebSocket is answered with.
    unsigned upgrade(const std::string& target)
    {
        http::request<http::empty_body> request = described(target, http::verb::get);
        request.set(http::field::connection, "Upgrade");
        request.set(http::field::upgrade, "websocket");
        request.set(http::field::sec_websocket_version, "13");
        request.set(http::field::sec_websocket_key, "dGhlIHNhbXBsZSBub25jZQ==");
        return answerTo(request).result_int();
    }

    Response answerTo(const std::string& bytes)
    {
        net::io_context context;
        Tcp::socket socket = connected(context, place_);
        error_code ignored;
        net::write(socket, net::buffer(bytes), ignored);
        return read(socket);
    }

    std::string host;
    std::string origin;
    std::string cookie;

private:
    http::request<http::empty_body> described(const std::string& target, http::verb method) const
    {
        http::request<http::empty_body> request(method, target, 11);
        request.set(http::field::host, host);
        if (!origin.empty())
            request.set(http::field::origin, origin);
        if (!cookie.empty())
            request.set(http::field::cookie, cookie);
        return request;
    }

    Response answerTo(const http::request<http::empty_body>& request)
    {
        net::io_context context;
        Tcp::socket socket = connected(context, place_);
        http::write(socket, request);
        return read(socket);
    }

    static Response read(Tcp::socket& socket)
    {
        beast::flat_buffer buffer;
        Response response;
        http::read(socket, buffer, response);
        return response;
    }

    std::string place_;
};

/// A page, as far as its messages go.
class TestPage
{
public:
    explicit TestPage(const Gatekeeper& gatekeeper) : socket_(connected(context_, hostOf(gatekeeper.pageAddress())))
    {
        const std::string host = hostOf(gatekeeper.pageAddress());
        socket_.set_option(websocket::stream_base::decorator(
            [&host](websocket::request_type& request) { request.set(http::field::origin, "http://" + host); }));
        socket_.handshake(host, "/ws?token=" + gatekeeper.token());
    }

    void say(const std::string& text, bool isText = true)
    {
        socket_.text(isText);
        error_code ignored; // of one that the other end has refused on the way
        socket_.write(net::buffer(text), ignored);
    }

    /// The next message.
    std::string hear()
    {
        beast::flat_buffer buffer;
        socket_.read(buffer);
        return beast::buffers_to_string(buffer.data());
    }

    /// The next message that has this in it.
    std::string hear(const std::string& part)
    {
        while (true) {
            const std::string text = hear();
            if (text.find(part) != std::string::npos)
                return text;
        }
    }

    /// Why the connection was closed; what comes before is not looked at.
    websocket::close_code closeCode()
    {
        error_code error;
        while (!error) {
            beast::flat_buffer buffer;
            socket_.read(buffer, error);
        }
        return static_cast<websocket::close_code>(socket_.reason().code);
    }

private:
    net::io_context context_;
    websocket::stream<Tcp::socket> socket_;
};

std::string fieldOf(const Response& response, http::field field)
{
    return std::string(response[field]);
}

std::string fieldOf(const Response& response, const char* field)
{
    return std::string(response[field]);
}

} // namespace

TEST_F(PanelServer, ServesThePageToWhoHasTheToken)
{
    Browser browser(server.gatekeeper());
    const Response page = browser.get("/?token=" + server.gatekeeper().token());
    EXPECT_EQ(page.result_int(), 200U);
    EXPECT_EQ(page.body(), findAsset("/index.html")->content);
    EXPECT_EQ(fieldOf(page, http::field::content_type), "text/html; charset=utf-8");
    EXPECT_EQ(fieldOf(page, http::field::cache_control), "no-store");
    EXPECT_EQ(fieldOf(page, "X-Content-Type-Options"), "nosniff");
    EXPECT_EQ(fieldOf(page, "Referrer-Policy"), "no-referrer");
    EXPECT_EQ(fieldOf(page, "Content-Security-Policy"),
              "default-src 'self'; connect-src 'self' ws://" + browser.host +
                  "; img-src 'self' data: blob:; base-uri 'none'; form-action 'none'; frame-ancestors 'none'; "
                  "object-src 'none'");
    const std::string cookie = fieldOf(page, http::field::set_cookie);
    EXPECT_EQ(cookie, server.gatekeeper().cookie());
    browser.cookie = cookie.substr(0, cookie.find(';'));
    for (const Asset& asset : assets()) {
        const Response served = browser.get(std::string(asset.path));
        EXPECT_EQ(served.result_int(), 200U) << asset.path;
        EXPECT_EQ(served.body(), asset.content);
        EXPECT_EQ(fieldOf(served, http::field::content_type), mediaType(asset.path));
    }
    EXPECT_EQ(browser.get("/nothing").result_int(), 404U);
    EXPECT_EQ(browser.get("/../panel.cpp").result_int(), 404U);
    const Response post = browser.get("/", http::verb::post);
    EXPECT_EQ(post.result_int(), 405U);
    EXPECT_EQ(fieldOf(post, http::field::allow), "GET");
}

TEST_F(PanelServer, RefusesWrongTokensHostsAndOrigins)
{
    Browser browser(server.gatekeeper());
    const std::string target = "/?token=" + server.gatekeeper().token();
    EXPECT_EQ(browser.get("/").result_int(), 403U);
    EXPECT_EQ(browser.get("/style.css").result_int(), 403U);
    EXPECT_EQ(browser.get("/?token=0123456789abcdef0123456789abcdef").result_int(), 403U);
    EXPECT_EQ(browser.get("/").body(),
              "the token is missing or wrong; the panel printed the address with it when it started\n");
    browser.origin = "http://evil.example";
    EXPECT_EQ(browser.get(target).result_int(), 403U);
    browser.origin.clear();
    browser.host = "evil.example:" + std::to_string(server.port());
    EXPECT_EQ(browser.get(target).result_int(), 403U);
    EXPECT_EQ(browser.get(target).body(), "this is not the host of the panel\n");
}

TEST_F(PanelServer, RefusesWebSocketsOfOtherPages)
{
    const Gatekeeper& gatekeeper = server.gatekeeper();
    const std::string own = hostOf(gatekeeper.pageAddress());
    const std::string target = "/ws?token=" + gatekeeper.token();
    Browser browser(gatekeeper);
    browser.origin = "http://" + own;
    EXPECT_EQ(browser.upgrade("/ws"), 403U);
    EXPECT_EQ(browser.upgrade("/ws?token=" + std::string(32, '0')), 403U);
    EXPECT_EQ(browser.upgrade(target), 101U);
    browser.origin.clear();
    EXPECT_EQ(browser.upgrade(target), 403U);
    browser.origin = "http://evil.example";
    EXPECT_EQ(browser.upgrade(target), 403U);
    browser.host = "evil.example";
    EXPECT_EQ(browser.upgrade(target), 403U);
    browser.host = own;
    browser.origin = "http://" + own;
    const std::string cookie = gatekeeper.cookie();
    browser.cookie = cookie.substr(0, cookie.find(';'));
    EXPECT_EQ(browser.upgrade("/ws"), 403U);
}

TEST_F(PanelServer, RequestsThatAreTooLargeOrNoneAreRefused)
{
    Browser browser(server.gatekeeper());
    const std::string begin = "GET / HTTP/1.1\r\nHost: " + browser.host + "\r\n";
    EXPECT_EQ(browser.answerTo(begin + "X: " + std::string(9000, 'x') + "\r\n\r\n").result_int(), 431U);
    EXPECT_EQ(browser.answerTo(begin + "Content-Length: 5\r\n\r\nhello").result_int(), 413U);
    EXPECT_EQ(browser.answerTo(std::string("\x16\x03\x01 hello\r\n\r\n")).result_int(), 400U);
    EXPECT_EQ(browser.answerTo(begin + "Host: other\r\n\r\n").result_int(), 403U);
    EXPECT_EQ(browser.get("/?token=" + server.gatekeeper().token()).result_int(), 200U);
}

TEST_F(PanelServer, ABrowserIsStartedWithAnAddressForOneVisit)
{
    Browser browser(server.gatekeeper());
    const std::string address = server.gatekeeper().visitAddress();
    const std::string target = "/?token=" + tokenIn(address);
    const Response visit = browser.get(target);
    EXPECT_EQ(visit.result_int(), 303U);
    EXPECT_EQ(fieldOf(visit, http::field::location), "/?token=" + server.gatekeeper().token());
    EXPECT_EQ(browser.get(target).result_int(), 403U);
}

TEST_F(PanelServer, ConnectionsAreKeptForFurtherRequests)
{
    net::io_context context;
    const std::string host = hostOf(server.gatekeeper().pageAddress());
    Tcp::socket socket = connected(context, host);
    beast::flat_buffer buffer;
    for (int i = 0; i < 3; ++i) {
        http::request<http::empty_body> request(http::verb::get, "/?token=" + server.gatekeeper().token(), 11);
        request.set(http::field::host, host);
        http::write(socket, request);
        Response response;
        http::read(socket, buffer, response);
        EXPECT_EQ(response.result_int(), 200U);
        EXPECT_TRUE(response.keep_alive());
    }
    http::request<http::empty_body> refused(http::verb::get, "/", 11);
    refused.set(http::field::host, host);
    http::write(socket, refused);
    Response response;
    http::read(socket, buffer, response);
    EXPECT_EQ(response.result_int(), 403U);
    EXPECT_FALSE(response.keep_alive());
    error_code error;
    http::read(socket, buffer, response, error);
    EXPECT_EQ(error, http::error::end_of_stream);
}

TEST_F(PanelServer, GreetsPagesAndPassesMessagesOn)
{
    TestPage one(server.gatekeeper());
    TestPage other(server.gatekeeper());
    for (TestPage* page : {&one, &other}) {
        EXPECT_EQ(page->hear(), "hello");
        EXPECT_EQ(page->hear(), "page");
    }
    one.say("a");
    EXPECT_EQ(one.hear(), "echo a");
    EXPECT_EQ(other.hear(), "to others");
    server.sendState("state 1");
    EXPECT_EQ(one.hear(), "state 1");
    EXPECT_EQ(other.hear(), "state 1");
    TestPage late(server.gatekeeper());
    late.hear("page");
    EXPECT_EQ(late.hear(), "state 1");
}

TEST_F(PanelServer, MessagesThatAreTooLargeOrNoTextEndTheConnection)
{
    TestPage large(server.gatekeeper());
    large.say(std::string(65536, 'x'));
    EXPECT_EQ(large.hear("echo").size(), 65536U + 5);
    large.say(std::string(65537, 'x'));
    EXPECT_EQ(large.closeCode(), websocket::close_code::too_big);

    TestPage binary(server.gatekeeper());
    binary.say("a", false);
    EXPECT_EQ(binary.closeCode(), websocket::close_code::unknown_data);

    TestPage foreign(server.gatekeeper());
    foreign.say("bad");
    EXPECT_EQ(foreign.closeCode(), websocket::close_code::bad_payload);

    TestPage noText(server.gatekeeper());
    noText.say("\xFF\xFE");
    EXPECT_EQ(noText.closeCode(), websocket::close_code::bad_payload);

    TestPage other(server.gatekeeper());
    other.say("still there");
    EXPECT_EQ(other.hear("echo"), "echo still there");
}

TEST_F(PanelServer, MoreConnectionsThanItHasAreClosedUntilOthersGo)
{
    std::vector<std::unique_ptr<TestPage>> pages;
    for (int i = 0; i < 64; ++i) {
        pages.push_back(std::make_unique<TestPage>(server.gatekeeper()));
        pages.back()->hear("page");
    }
    EXPECT_ANY_THROW(TestPage(server.gatekeeper()));
    pages.back()->say("a");
    EXPECT_EQ(pages.back()->hear("echo"), "echo a");
    pages.clear();
    std::unique_ptr<TestPage> next;
    while (!next) {
        try {
            next = std::make_unique<TestPage>(server.gatekeeper());
        } catch (const std::exception&) { // not gone yet
            std::this_thread::sleep_for(kvxtest::kPollInterval);
        }
    }
    EXPECT_EQ(next->hear(), "hello");
}

TEST_F(PanelServer, AnOldStateIsNotSentToAPageThatIsSlow)
{
    TestPage slow(server.gatekeeper());
    slow.hear("page");
    const std::string filling(50000, '.');
    constexpr int kStates = 1000; // 50 MB, more than the host keeps
    for (int i = 1; i <= kStates; ++i)
        server.sendState("state " + std::to_string(i) + ' ' + filling);
    TestPage quick(server.gatekeeper());
    quick.say("a");
    EXPECT_EQ(quick.hear("echo"), "echo a");
    int heard = 1;
    while (slow.hear("state").find("state " + std::to_string(kStates) + ' ') == std::string::npos)
        ++heard;
    EXPECT_LT(heard, kStates);
}

TEST_F(PanelServer, APageThatDoesNotReadItsMessagesIsCutOff)
{
    TestPage deaf(server.gatekeeper());
    deaf.hear("page");
    for (int i = 0; i < 200; ++i)
        server.sendAll(std::string(100000, 'x'));
    TestPage other(server.gatekeeper());
    other.say("a");
    EXPECT_EQ(other.hear("echo"), "echo a");
    EXPECT_EQ(deaf.closeCode(), websocket::close_code::none);
}

TEST_F(PanelServer, APortThatIsTakenIsNotHad)
{
    const std::string place = "127.0.0.1:" + std::to_string(server.port());
    try {
        const Server second("127.0.0.1", server.port());
        FAIL() << "a second server on one port";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(std::string(error.what()).find("cannot listen on " + place + ": "), 0U) << error.what();
    }
    EXPECT_THROW(Server("no address", 0), std::runtime_error);
}

/// The whole panel, on a simulated instrument.
class PanelFront : public testing::Test
{
public:
    PanelFront()
    {
        thread = std::thread([this] { front.run(); });
    }
    ~PanelFront() override
    {
        front.stop();
        thread.join();
    }
    PanelFront(const PanelFront&) = delete;
    PanelFront& operator=(const PanelFront&) = delete;

    Front front{"", "127.0.0.1", 0};
    std::thread thread;
};

TEST_F(PanelFront, TwoPagesSeeOneInstrument)
{
    TestPage one(front.gatekeeper());
    TestPage other(front.gatekeeper());
    for (TestPage* page : {&one, &other}) {
        EXPECT_EQ(page->hear().find(R"({"channels":[{"name":"CH1","physical":"OutputChannel1"})"), 0U);
        EXPECT_EQ(page->hear(), R"({"cleared":true,"entries":[],"type":"errors"})");
        page->hear(R"("link":{"state":"connected","text":""})");
    }
    one.say(R"({"id":1,"do":"setVoltage","channel":"CH3","value":2.5})");
    EXPECT_EQ(one.hear(R"("type":"lines")"),
              R"({"c":["KVX2800T_ConfigureVoltageLevel(vi, \"OutputChannel3\", 2.5);"],"id":1,"page":true,)"
              R"("python":["supply.channels[\"CH3\"].voltage_level = 2.5"],"scpi":["> :SOUR3:VOLT 2.500000"],)"
              R"("type":"lines"})");
    EXPECT_EQ(one.hear(R"("type":"result")"), R"({"id":1,"ok":true,"type":"result"})");
    EXPECT_NE(other.hear(R"("type":"lines")").find(R"("page":false)"), std::string::npos);
    for (TestPage* page : {&one, &other})
        page->hear(R"("voltageLevel":2.5)");
    TestPage late(front.gatekeeper());
    late.hear(R"("voltageLevel":2.5)");
}

TEST_F(PanelFront, WhatIsOutOfShapeIsRefusedAndWhatIsNoJsonEndsThePage)
{
    TestPage page(front.gatekeeper());
    page.say(R"({"id":3,"do":"setVoltage","channel":"CH9","value":1})");
    EXPECT_EQ(
        page.hear("result"),
        R"({"id":3,"name":"INVALID_MESSAGE","ok":false,"text":"\"channel\" is none of its words","type":"result"})");
    page.say(R"({"id":4,"do":"setVoltage","channel":"CH4","value":7})");
    const std::string refused = page.hear("result");
    EXPECT_NE(refused.find(R"("code":"0xBFFA4217","id":4,"name":"KVX2800T_ERROR_VALUE_OUT_OF_RANGE","ok":false)"),
              std::string::npos)
        << refused;
    page.say("hello");
    EXPECT_EQ(page.closeCode(), websocket::close_code::bad_payload);
}

TEST_F(PanelFront, APageThatComesLaterIsToldOfListsAndErrors)
{
    TestPage one(front.gatekeeper());
    one.say(R"({"id":1,"do":"loadList","channel":"CH3","groups":[{"voltage":1,"current":0.5,"duration":0.1}],)"
            R"("cycles":1,"end":"off"})");
    const std::string list = one.hear(R"("type":"list")");
    EXPECT_EQ(list,
              R"({"channel":"CH3","cycles":1,"end":"off","groups":[{"current":0.5,"duration":0.1,"voltage":1.0}],)"
              R"("type":"list"})");
    // The instrument refuses a group of no time.
    one.say(R"({"id":2,"do":"loadList","channel":"CH4","groups":[{"voltage":1,"current":0.5,"duration":0}],)"
            R"("cycles":1,"end":"off"})");
    one.hear(R"("entries":[{"code":-222)");
    TestPage late(front.gatekeeper());
    late.hear("hello");
    EXPECT_NE(late.hear().find(R"("cleared":true,"entries":[{"code":-222)"), std::string::npos);
    EXPECT_EQ(late.hear(), list);
    one.say(R"({"id":3,"do":"clearErrors"})");
    EXPECT_EQ(late.hear(R"("cleared":true)"), R"({"cleared":true,"entries":[],"type":"errors"})");
}

/// The program, as a process.
class PanelProgram : public testing::Test
{
public:
    static kvxtest::ChildProcess started(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), {"panel", "--no-browser", "--until-stdin-closes"});
        return {KVX_TOOL, arguments};
    }
};

TEST_F(PanelProgram, PrintsTheAddressAndServesUntilItsInputEnds)
{
    kvxtest::ChildProcess program = started({"--port", "0"});
    EXPECT_EQ(program.readLine(), "The panel of a simulated instrument is at");
    const std::string address = program.readLine().value();
    EXPECT_EQ(address.find("http://127.0.0.1:"), 0U) << address;
    Browser browser(hostOf(address));
    EXPECT_EQ(browser.get("/?token=" + tokenIn(address)).body(), findAsset("/index.html")->content);
    EXPECT_EQ(browser.get("/").result_int(), 403U);
    program.closeInput();
    EXPECT_EQ(program.wait(), 0);
    EXPECT_EQ(program.errorOutput(), "");
}

TEST_F(PanelProgram, EndsWithCtrlC)
{
    if (!kvxtest::ChildProcess::canInterrupt())
        GTEST_SKIP() << "there is no console";
    kvxtest::ChildProcess program = started({});
    program.readLine();
    const std::string address = program.readLine().value();
    // Served by then, and so no more just starting.
    EXPECT_EQ(Browser(hostOf(address)).get("/").result_int(), 403U);
    program.interrupt();
    EXPECT_EQ(program.wait(), 0);
}

TEST_F(PanelProgram, SaysWhenThePortIsTakenOrNone)
{
    const Server server("127.0.0.1", 0);
    const std::string port = std::to_string(server.port());
    kvxtest::ChildProcess taken = started({"--port", port});
    EXPECT_EQ(taken.wait(), 2);
    EXPECT_NE(taken.errorOutput().find("cannot listen on 127.0.0.1:" + port + ": "), std::string::npos);
    kvxtest::ChildProcess none = started({"--port", "65536"});
    EXPECT_EQ(none.wait(), 2);
    EXPECT_NE(none.errorOutput().find("--port: not a number from 0 to 65535: 65536"), std::string::npos);
}

TEST_F(PanelProgram, WarnsWhereOtherMachinesAreLetIn)
{
    kvxtest::ChildProcess program = started({"--bind", "0.0.0.0"});
    program.readLine();
    EXPECT_EQ(program.readLine().value().find("http://127.0.0.1:"), 0U);
    program.closeInput();
    EXPECT_EQ(program.wait(), 0);
    EXPECT_EQ(program.errorOutput().find("warning: who has this address"), 0U) << program.errorOutput();
}
