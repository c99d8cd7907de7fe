#include "virtual_instrument/transport/http_guard.h"

#include <gtest/gtest.h>

namespace
{

using kvxvirtual::HttpGuard;

bool detectsInOnePiece(std::string_view bytes)
{
    return HttpGuard().detects(bytes);
}

bool detectsByteForByte(std::string_view bytes)
{
    HttpGuard guard;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (guard.detects(bytes.substr(i, 1)))
            return true;
    }
    return false;
}

TEST(HttpGuard, DetectsRequestsHoweverTheyArrive)
{
    for (const std::string_view request :
         {"GET / HTTP/1.1\r\n", "HEAD / HTTP/1.0\r\n", "POST /x HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n*RST\n",
          "PUT / HTTP/1.1\r\n", "DELETE / HTTP/1.1\r\n", "CONNECT 127.0.0.1:5025 HTTP/1.1\r\n",
          "OPTIONS * HTTP/1.1\r\n", "TRACE / HTTP/1.1\r\n", "PATCH / HTTP/1.1\r\n", "Host: 127.0.0.1\r\n",
          "get / http/1.1\r\n", "\r\n\r\nGET / HTTP/1.1\r\n"})
    {
        EXPECT_TRUE(detectsInOnePiece(request)) << request;
        EXPECT_TRUE(detectsByteForByte(request)) << request;
    }
}

TEST(HttpGuard, DetectsARequestWhoseFirstLineHasNoEnd)
{
    EXPECT_TRUE(detectsInOnePiece("POST /" + std::string(100'000, 'x')));
}

TEST(HttpGuard, LetsMessagesPass)
{
    for (const std::string_view message :
         {"*IDN?\n", "GET\n", "GETS /\n", ":SOUR1:VOLT 5\n", "sync\n", "HOST\n", "log\n", "\n", "", "TRACE:DATA?\n"})
    {
        EXPECT_FALSE(detectsInOnePiece(message)) << message;
        EXPECT_FALSE(detectsByteForByte(message)) << message;
    }
}

TEST(HttpGuard, LooksAtTheFirstLineAlone)
{
    EXPECT_FALSE(detectsInOnePiece("*CLS\nGET / HTTP/1.1\n"));
    EXPECT_FALSE(detectsByteForByte("*CLS\nGET / HTTP/1.1\n"));
}

} // namespace
