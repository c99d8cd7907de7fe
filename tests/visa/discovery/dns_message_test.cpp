#include "tests/support/visa/dns_bytes.h"
#include "visa/discovery/dns_message.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace
{

using kvxtest::DnsAnswer;
using visa::DnsRecord;
using visa::DnsType;

std::optional<std::vector<DnsRecord>> readAnswer(const std::string& bytes)
{
    const std::vector<std::uint8_t> message(bytes.begin(), bytes.end());
    return visa::readDnsAnswer(message);
}

std::string wireName(const std::string& dotted)
{
    return visa::dnsName(dotted);
}

/// An answer with one pointer whose target is these bytes; a name stands at 12.
std::optional<std::vector<DnsRecord>> readTarget(const std::string& target)
{
    return readAnswer(DnsAnswer().record("ab.cd", DnsAnswer::kPointer, target).bytes());
}

TEST(VisaDnsMessage, AsksForAllServicesInOneMessage)
{
    constexpr std::array<std::string_view, 2> kServices{"_lxi._tcp.local", "_vxi-11._tcp.local"};
    const auto query = visa::serviceQuery(kServices);
    using namespace std::string_literals;
    EXPECT_EQ(std::string(query.begin(), query.end()), "\0\0\0\0\0\2\0\0\0\0\0\0"
                                                       "\4_lxi\4_tcp\5local\0\0\x0C\x80\1"
                                                       "\7_vxi-11\4_tcp\5local\0\0\x0C\x80\1"s);
}

TEST(VisaDnsMessage, ReadsTheRecordsThatTellOfServices)
{
    const auto records = readAnswer(DnsAnswer()
                                        .pointer("_hislip._tcp.local", "A PSU._hislip._tcp.local")
                                        .service("a psu._HiSLIP._tcp.local", "psu.local", 4881)
                                        .record("a psu._hislip._tcp.local", DnsAnswer::kText, "\1x")
                                        .address("PSU.local", {192, 0, 2, 7})
                                        .bytes());
    ASSERT_TRUE(records);
    ASSERT_EQ(records->size(), 3U);
    EXPECT_EQ(records->at(0).type, DnsType::Pointer);
    EXPECT_EQ(records->at(0).name, wireName("_hislip._tcp.local"));
    EXPECT_EQ(records->at(0).target, wireName("a psu._hislip._tcp.local"));
    EXPECT_EQ(records->at(1).type, DnsType::Service);
    EXPECT_EQ(records->at(1).name, records->at(0).target);
    EXPECT_EQ(records->at(1).target, wireName("psu.local"));
    EXPECT_EQ(records->at(1).port, 4881);
    EXPECT_EQ(records->at(2).type, DnsType::Address);
    EXPECT_EQ(records->at(2).name, records->at(1).target);
    EXPECT_EQ(records->at(2).address, 0xC0000207U);
}

TEST(VisaDnsMessage, PassesOverQuestionsAndOtherClasses)
{
    std::string bytes = DnsAnswer().bytes();
    bytes[5] = 1;
    bytes += DnsAnswer::encoded("_lxi._tcp.local") + std::string("\0\x0C\0\1", 4);
    EXPECT_TRUE(readAnswer(bytes).value().empty());
    EXPECT_TRUE(readAnswer(DnsAnswer().record("a", DnsAnswer::kPointer, "\1b", 3).bytes()).value().empty());
}

TEST(VisaDnsMessage, NamesReferToWhatIsInFrontOfThem)
{
    using namespace std::string_literals;
    EXPECT_EQ(readTarget("\xC0\x0C"s).value().at(0).target, wireName("ab.cd"));
    EXPECT_EQ(readTarget("\1x\xC0\x0F"s).value().at(0).target, wireName("x.cd"));
}

TEST(VisaDnsMessage, ReferencesThatDoNotGoBackAreRefused)
{
    using namespace std::string_literals;
    // The target begins at 29.
    for (const std::string& target :
         {"\xC0\x1D"s, "\xC0\xFF"s, "\xC0\x1E\xC0\x1D"s, "\1x\xC0\x1D"s, "\xFF\xFF"s, "\xC0"s})
        EXPECT_TRUE(readTarget(target).value().empty()) << testing::PrintToString(target);
    // Two names that refer to each other: the one in front is refused.
    const std::string loop = DnsAnswer().record("a", DnsAnswer::kPointer, "\xC0\x1A\xC0\x19").bytes();
    EXPECT_TRUE(readAnswer(loop).value().empty());
}

TEST(VisaDnsMessage, NamesHaveALimit)
{
    std::string longest;
    for (int i = 0; i < 127; ++i)
        longest += "\1x";
    using namespace std::string_literals;
    EXPECT_EQ(readTarget(longest + "\0"s).value().at(0).target, longest);
    EXPECT_TRUE(readTarget("\1x" + longest + "\0"s).value().empty());
    EXPECT_TRUE(readTarget("\x40" + std::string(64, 'x') + "\0"s).value().empty());
    EXPECT_EQ(readTarget("\x3F" + std::string(63, 'x') + "\0"s).value().at(0).target.size(), 64U);
}

TEST(VisaDnsMessage, WhatIsCutOffEndsWithTheLastWholeRecord)
{
    const std::string whole =
        DnsAnswer().pointer("_lxi._tcp.local", "a._lxi._tcp.local").service("a._lxi._tcp.local", "a.local", 80).bytes();
    const std::size_t first = DnsAnswer().pointer("_lxi._tcp.local", "a._lxi._tcp.local").bytes().size();
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const auto records = readAnswer(whole.substr(0, size));
        EXPECT_EQ(records.has_value(), size >= 12) << size;
        EXPECT_EQ(records ? records->size() : 0, size < first ? 0U : 1U) << size;
    }
    EXPECT_EQ(readAnswer(whole)->size(), 2U);
}

TEST(VisaDnsMessage, QueriesAndFailuresAreNoAnswers)
{
    EXPECT_FALSE(readAnswer(DnsAnswer(0).bytes()));
    EXPECT_FALSE(readAnswer(DnsAnswer(0x8403).bytes()));
    EXPECT_TRUE(readAnswer(DnsAnswer(0x8000).bytes()));
}

} // namespace
