#include "virtual_instrument/transport/mdns/service_records.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

using namespace std::string_literals;
using kvxvirtual::mdns::Asker;
using kvxvirtual::mdns::Bytes;
using kvxvirtual::mdns::ServiceRecords;

constexpr std::uint32_t kOwnAddress = 0x7F000001;
const std::string kOwnType = "\x09_scpi-raw\4_tcp\5local\0"s;
const std::string kOwnInstance = "\3psu" + kOwnType;
const std::string kOwnHost = "\3psu\5local\0"s;
const std::string kOwnTexts = "\x09txtvers=1\x0EManufacturer=A\7Model=B\x0ESerialNumber=C\x11"s + "FirmwareVersion=D";

Bytes dnsBytes(const std::string& text)
{
    return {text.begin(), text.end()};
}

std::string dnsQuestion(const std::string& name, int type, int classBits = 1, const std::string& flags = "\0\0"s)
{
    return "\x12\x34"s + flags + "\0\1\0\0\0\0\0\0"s + name + '\0' + static_cast<char>(type) +
           static_cast<char>(classBits >> 8) + static_cast<char>(classBits);
}

std::string dnsRecord(const std::string& name, int type, const std::string& contents, bool isUnique, int seconds)
{
    return name + '\0' + static_cast<char>(type) + (isUnique ? "\x80\1"s : "\0\1"s) + "\0\0\0"s +
           static_cast<char>(seconds) + '\0' + static_cast<char>(contents.size()) + contents;
}

class VirtualServiceRecords : public testing::Test
{
protected:
    /// What is answered; empty for nothing.
    std::string answer(const std::string& asked, Asker asker = Asker::Program)
    {
        const auto answer = records_.answer(dnsBytes(asked), asker, kOwnAddress);
        isAlone_ = answer && answer->toAskerAlone;
        return answer ? std::string(answer->message.begin(), answer->message.end()) : std::string();
    }

    ServiceRecords records_{{{"_scpi-raw._tcp", 5025}}, "A,B,C,D", "psu"};
    bool isAlone_ = false;
};

TEST_F(VirtualServiceRecords, ProgramLearnsEverythingOfAServiceAtOnce)
{
    const std::string asked = dnsQuestion(kOwnType, 12, 0x8001);
    EXPECT_EQ(answer(asked),
              "\x12\x34\x84\0\0\1\0\1\0\0\0\3"s + asked.substr(12) + dnsRecord(kOwnType, 12, kOwnInstance, false, 10) +
                  dnsRecord(kOwnInstance, 33, "\0\0\0\0\x13\xA1"s + kOwnHost, false, 10) +
                  dnsRecord(kOwnInstance, 16, kOwnTexts, false, 10) + dnsRecord(kOwnHost, 1, "\x7F\0\0\1"s, false, 10));
    EXPECT_TRUE(isAlone_);
}

TEST_F(VirtualServiceRecords, ResponderIsAnsweredForAllUnlessItWantsToBeAlone)
{
    EXPECT_EQ(answer(dnsQuestion(kOwnHost, 1), Asker::Responder),
              "\0\0\x84\0\0\0\0\1\0\0\0\0"s + dnsRecord(kOwnHost, 1, "\x7F\0\0\1"s, true, 120));
    EXPECT_FALSE(isAlone_);
    answer(dnsQuestion(kOwnHost, 1, 0x8001), Asker::Responder);
    EXPECT_TRUE(isAlone_);
}

TEST_F(VirtualServiceRecords, NamesAreTheSameInLettersOfAnyCase)
{
    EXPECT_FALSE(answer(dnsQuestion("\x09_SCPI-Raw\4_TCP\5Local\0"s, 12)).empty());
    EXPECT_FALSE(answer(dnsQuestion("\3PSU\5local\0"s, 255, 255)).empty());
    EXPECT_FALSE(answer(dnsQuestion("\x09_services\7_dns-sd\4_udp\5local\0"s, 12)).empty());
}

TEST_F(VirtualServiceRecords, WhatIsNotHereIsNotAnswered)
{
    EXPECT_EQ(answer(dnsQuestion("\7_hislip\4_tcp\5local\0"s, 12)), "");
    EXPECT_EQ(answer(dnsQuestion(kOwnHost, 28)), "") << "no IPv6";
    EXPECT_EQ(answer(dnsQuestion(kOwnHost, 1, 3)), "") << "another class";
    EXPECT_EQ(answer(dnsQuestion(kOwnHost, 1, 1, "\x84\0"s)), "") << "an answer";
}

TEST_F(VirtualServiceRecords, NamesMayReferToEarlierOnes)
{
    const std::string two = "\x12\x34\0\0\0\2\0\0\0\0\0\0"s + "\3foo\5local\0\0\1\0\1"s + "\3psu\xC0\x10\0\1\0\1"s;
    EXPECT_FALSE(answer(two).empty());
}

TEST_F(VirtualServiceRecords, WhatCannotBeReadIsNotAnswered)
{
    const std::string whole = dnsQuestion(kOwnType, 12);
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_EQ(answer(whole.substr(0, size)), "") << size;
    for (const std::string& name : {"\xC0\x0C"s, "\xC0\xFF"s, "\1x\xC0\x0C"s, "\x40x"s, "\xFF"s})
        EXPECT_EQ(answer(dnsQuestion(name, 255, 255)), "") << testing::PrintToString(name);
    std::string endless;
    for (int i = 0; i < 200; ++i)
        endless += "\1x";
    EXPECT_EQ(answer(dnsQuestion(endless + '\0', 255, 255)), "");
}

TEST_F(VirtualServiceRecords, AnnouncementHasEverything)
{
    const Bytes told = records_.announcement(kOwnAddress);
    const std::string text(told.begin(), told.end());
    EXPECT_EQ(text.substr(0, 12), "\0\0\x84\0\0\0\0\5\0\0\0\0"s);
    EXPECT_NE(text.find(dnsRecord(kOwnType, 12, kOwnInstance, false, 120)), std::string::npos);
    EXPECT_TRUE(text.ends_with(dnsRecord(kOwnHost, 1, "\x7F\0\0\1"s, true, 120)));
}

} // namespace
