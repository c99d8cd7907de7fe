#include "visa/discovery/get_port_message.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

using namespace std::string_literals;

std::optional<std::uint16_t> readPort(const std::string& bytes)
{
    const std::vector<std::uint8_t> message(bytes.begin(), bytes.end());
    return visa::readGetPortReply(message, 0x11223344);
}

const std::string kHead = "\x11\x22\x33\x44\0\0\0\1\0\0\0\0"s;
const std::string kNoVerifier = std::string(8, '\0');
const std::string kSuccess = std::string(4, '\0');

TEST(VisaGetPort, AsksForTheCoreChannelOverTcp)
{
    const auto call = visa::getPortCall(0x11223344);
    EXPECT_EQ(std::string(call.begin(), call.end()), "\x11\x22\x33\x44\0\0\0\0\0\0\0\2\0\1\x86\xA0\0\0\0\2\0\0\0\3"s +
                                                         std::string(16, '\0') + "\0\6\7\xAF\0\0\0\1\0\0\0\6\0\0\0\0"s);
}

TEST(VisaGetPort, ReadsThePort)
{
    EXPECT_EQ(readPort(kHead + kNoVerifier + kSuccess + "\0\0\x04\x01"s), 1025);
    EXPECT_EQ(readPort(kHead + "\0\0\0\1\0\0\0\5abcdefgh"s + kSuccess + "\0\0\xFF\xFF"s), 65535);
}

TEST(VisaGetPort, NoServerAndNoAnswerHaveNoPort)
{
    EXPECT_FALSE(readPort(kHead + kNoVerifier + kSuccess + "\0\0\0\0"s)) << "not registered";
    EXPECT_FALSE(readPort(kHead + kNoVerifier + kSuccess + "\0\1\0\0"s)) << "no port";
    EXPECT_FALSE(readPort(kHead + kNoVerifier + "\0\0\0\1\0\0\x04\x01"s)) << "no such program";
    EXPECT_FALSE(readPort("\x11\x22\x33\x45"s + kHead.substr(4) + kNoVerifier + kSuccess + "\0\0\x04\x01"s))
        << "another's";
    EXPECT_FALSE(readPort(kHead.substr(0, 7) + "\0\0\0\0\0"s + kNoVerifier + kSuccess + "\0\0\x04\x01"s)) << "a call";
    EXPECT_FALSE(readPort(kHead.substr(0, 8) + "\0\0\0\1"s + kNoVerifier + kSuccess + "\0\0\x04\x01"s)) << "refused";
    EXPECT_FALSE(readPort(kHead + "\0\0\0\0\xFF\xFF\xFF\xFF"s + kSuccess + "\0\0\x04\x01"s)) << "endless verifier";
}

TEST(VisaGetPort, WhatIsCutOffHasNoPort)
{
    const std::string whole = kHead + kNoVerifier + kSuccess + "\0\0\x04\x01"s;
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_FALSE(readPort(whole.substr(0, size))) << size;
}

} // namespace
