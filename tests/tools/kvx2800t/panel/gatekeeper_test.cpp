#include "tools/kvx2800t/panel/gatekeeper.h"
#include "tools/kvx2800t/panel/outbox.h"

#include <gtest/gtest.h>
#include <string>

using namespace panel;

namespace
{

class PanelGatekeeper : public testing::Test
{
public:
    HttpRequest request(std::string_view target)
    {
        HttpRequest made;
        made.method = "GET";
        made.target = target;
        made.host = "127.0.0.1:8080";
        made.cookie = cookie;
        return made;
    }

    HttpRequest upgrade(std::string_view origin)
    {
        HttpRequest made = request(withToken);
        made.isUpgrade = true;
        made.origin = origin;
        return made;
    }

    /// What a browser shows of it.
    std::string cookieOf(const Gatekeeper& other) const { return other.cookie().substr(0, other.cookie().find(';')); }

    Gatekeeper gatekeeper{"127.0.0.1", 8080};
    std::string cookie = "other=1; " + cookieOf(gatekeeper) + "; more=2";
    std::string withToken = "/ws?token=" + gatekeeper.token();
};

} // namespace

TEST_F(PanelGatekeeper, TokensAre128BitsAndNoTwoAreTheSame)
{
    EXPECT_EQ(gatekeeper.token().size(), 32U);
    EXPECT_EQ(gatekeeper.token().find_first_not_of("0123456789abcdef"), std::string::npos);
    EXPECT_NE(gatekeeper.token(), Gatekeeper("127.0.0.1", 8080).token());
    EXPECT_EQ(gatekeeper.pageAddress(), "http://127.0.0.1:8080/?token=" + gatekeeper.token());
    EXPECT_EQ(gatekeeper.cookie().find("kvx2800t-8080="), 0U);
    EXPECT_EQ(gatekeeper.cookie().find(gatekeeper.token()), std::string::npos);
    EXPECT_EQ(gatekeeper.cookie().substr(14 + 32), "; HttpOnly; SameSite=Strict; Path=/");
}

TEST_F(PanelGatekeeper, TheTokenLetsInByAddressAndByCookie)
{
    EXPECT_EQ(gatekeeper.judge(request("/")).path, "/index.html");
    EXPECT_EQ(gatekeeper.judge(request("/style.css")).path, "/style.css");
    cookie.clear();
    const std::string address = "/?token=" + gatekeeper.token();
    EXPECT_EQ(gatekeeper.judge(request(address)).status, 200U);
    EXPECT_EQ(gatekeeper.judge(request(address + "&x=1")).status, 200U);
    EXPECT_EQ(gatekeeper.judge(request("/?x=1&token=" + gatekeeper.token())).status, 200U);
}

TEST_F(PanelGatekeeper, WithoutItNothingIsServedNotEvenWhatThereIsNot)
{
    cookie = "kvx2800t-8081=" + cookieOf(gatekeeper).substr(14) + "; kvx2800t-8080=" + gatekeeper.token();
    std::string wrong = gatekeeper.token();
    wrong.back() = wrong.back() == '0' ? '1' : '0';
    for (const std::string& target :
         {std::string("/"), std::string("/nothing"), "/?token=" + wrong, "/?token=" + gatekeeper.token() + '0',
          std::string("/?token="), "/?nottoken=" + gatekeeper.token(), '/' + gatekeeper.token()})
        EXPECT_EQ(gatekeeper.judge(request(target)).status, 403U) << target;
    cookie.clear();
    EXPECT_EQ(gatekeeper.judge(request("/ws")).status, 403U);
}

TEST_F(PanelGatekeeper, OnlyItsOwnHostsAreAnswered)
{
    HttpRequest made = request("/");
    for (const char* host : {"127.0.0.1:8080", "localhost:8080", "[::1]:8080"}) {
        made.host = host;
        EXPECT_EQ(gatekeeper.judge(made).status, 200U) << host;
    }
    for (const char* host : {"", "127.0.0.1", "127.0.0.1:8081", "evil.example:8080", "localhost.evil.example:8080",
                             "192.168.1.20:8080", "127.0.0.1:8080:8080", ":8080", "127.0.0.1:80800"})
    {
        made.host = host;
        EXPECT_EQ(gatekeeper.judge(made).status, 403U) << host;
        EXPECT_EQ(gatekeeper.judge(made).text, "this is not the host of the panel");
    }
}

TEST_F(PanelGatekeeper, OtherMachinesReachItByAddressesAndNotByNames)
{
    gatekeeper = Gatekeeper("0.0.0.0", 8080);
    EXPECT_TRUE(gatekeeper.isOpen());
    EXPECT_EQ(gatekeeper.pageAddress(), "http://127.0.0.1:8080/?token=" + gatekeeper.token());
    cookie = cookieOf(gatekeeper);
    HttpRequest made = request("/");
    made.host = "192.168.1.20:8080";
    EXPECT_EQ(gatekeeper.judge(made).status, 200U);
    made.host = "[fe80::1]:8080";
    EXPECT_EQ(gatekeeper.judge(made).status, 200U);
    made.host = "evil.example:8080";
    EXPECT_EQ(gatekeeper.judge(made).status, 403U);
    EXPECT_EQ(Gatekeeper("::", 80).visitAddress().substr(0, 21), "http://[::1]:80/?toke");
    EXPECT_FALSE(Gatekeeper("::1", 80).isOpen());
    EXPECT_FALSE(Gatekeeper("127.0.0.2", 80).isOpen());
}

TEST_F(PanelGatekeeper, BrowsersLeaveTheDefaultPortOut)
{
    gatekeeper = Gatekeeper("127.0.0.1", 80);
    withToken = "/ws?token=" + gatekeeper.token();
    HttpRequest made = upgrade("http://127.0.0.1");
    const auto status = [this, &made](const std::string& host) {
        const std::string origin = "http://" + host;
        made.host = host;
        made.origin = origin;
        return gatekeeper.judge(made).status;
    };
    for (const char* host : {"127.0.0.1", "127.0.0.1:80", "localhost", "[::1]"})
        EXPECT_EQ(status(host), 101U) << host;
    for (const char* host : {"evil.example", "", "80", ":80", "127.0.0.1:81"})
        EXPECT_EQ(status(host), 403U) << host;
}

TEST_F(PanelGatekeeper, AWebSocketIsForPagesOfThePanel)
{
    EXPECT_EQ(gatekeeper.judge(upgrade("http://127.0.0.1:8080")).status, 101U);
    for (const char* origin : {"", "null", "http://evil.example", "http://127.0.0.1:8081", "https://127.0.0.1:8080",
                               "http://localhost:8080", "127.0.0.1:8080"})
    {
        EXPECT_EQ(gatekeeper.judge(upgrade(origin)).status, 403U) << origin;
        EXPECT_EQ(gatekeeper.judge(upgrade(origin)).text, "this is not a page of the panel");
    }
    EXPECT_EQ(gatekeeper.judge(request(withToken)).status, 404U);
    withToken = "/ws"; // the cookie is for assets
    EXPECT_EQ(gatekeeper.judge(upgrade("http://127.0.0.1:8080")).status, 403U);
}

TEST_F(PanelGatekeeper, APageOfAnotherOriginGetsNothing)
{
    HttpRequest made = request("/style.css");
    made.origin = "http://evil.example";
    EXPECT_EQ(gatekeeper.judge(made).status, 403U);
    made.origin = "http://127.0.0.1:8080";
    EXPECT_EQ(gatekeeper.judge(made).status, 200U);
}

TEST_F(PanelGatekeeper, OtherMethodsAreRefused)
{
    HttpRequest made = request("/");
    for (const char* method : {"POST", "HEAD", "PUT", "get", ""}) {
        made.method = method;
        EXPECT_EQ(gatekeeper.judge(made).status, 405U) << method;
    }
}

TEST_F(PanelGatekeeper, AVisitIsForOneTime)
{
    const std::string address = gatekeeper.visitAddress();
    const std::string target = address.substr(address.find("/?"));
    EXPECT_EQ(target.find(gatekeeper.token()), std::string::npos);
    cookie.clear();
    EXPECT_EQ(gatekeeper.judge(request("/ws" + target.substr(1))).status, 403U);
    EXPECT_EQ(gatekeeper.judge(request(target)).status, 303U);
    EXPECT_EQ(gatekeeper.judge(request(target)).status, 403U);
    EXPECT_EQ(gatekeeper.judge(request("/?token=")).status, 403U);
}

TEST(PanelOutbox, MessagesKeepTheirOrderAndOfStatesTheNewestIsLeft)
{
    const auto text = [](const char* word) { return std::make_shared<const std::string>(word); };
    Outbox outbox;
    EXPECT_EQ(outbox.take(), nullptr);
    outbox.setState(text("state 1"));
    EXPECT_TRUE(outbox.add(text("a")));
    outbox.setState(text("state 2"));
    EXPECT_TRUE(outbox.add(text("b")));
    EXPECT_EQ(*outbox.take(), "a");
    EXPECT_EQ(*outbox.take(), "b");
    EXPECT_EQ(*outbox.take(), "state 2");
    EXPECT_EQ(outbox.take(), nullptr);
}

TEST(PanelOutbox, HasRoomForAMegabyte)
{
    const auto half = std::make_shared<const std::string>(Outbox::kMostBytes / 2, 'x');
    Outbox outbox;
    EXPECT_TRUE(outbox.add(half));
    EXPECT_TRUE(outbox.add(half));
    EXPECT_FALSE(outbox.add(std::make_shared<const std::string>("y")));
    outbox = Outbox();
    EXPECT_TRUE(outbox.add(half));
    outbox.take();
    EXPECT_TRUE(outbox.add(half));
    EXPECT_TRUE(outbox.add(half));
}
