#include "visa/transport/usb/usbtmc_messages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

using namespace visa::usbtmc;
using testing::ElementsAre;
using visa::TransferOutcome;
using Bytes = std::vector<ViByte>;

/// A transfer that answers with this data.
Bytes transferOf(ViByte tag, std::size_t size, ViByte attributes, const std::string& data)
{
    Bytes bytes{2, tag, static_cast<ViByte>(~tag), 0};
    for (unsigned i = 0; i < 4; ++i)
        bytes.push_back(static_cast<ViByte>(size >> (8 * i)));
    bytes.insert(bytes.end(), {attributes, 0, 0, 0});
    bytes.insert(bytes.end(), data.begin(), data.end());
    return bytes;
}

std::string textOf(const Reply& reply)
{
    return {reply.data.begin(), reply.data.end()};
}

TEST(UsbtmcMessages, HeaderOfAMessageOut)
{
    EXPECT_THAT(deviceDependentOut(5, 0x01020304, true), ElementsAre(1, 5, 0xFA, 0, 4, 3, 2, 1, 1, 0, 0, 0));
    EXPECT_THAT(deviceDependentOut(255, 7, false), ElementsAre(1, 255, 0, 0, 7, 0, 0, 0, 0, 0, 0, 0));
}

TEST(UsbtmcMessages, HeaderOfARequestForAMessage)
{
    EXPECT_THAT(requestDeviceDependentIn(1, 10, std::nullopt), ElementsAre(2, 1, 0xFE, 0, 10, 0, 0, 0, 0, 0, 0, 0));
    EXPECT_THAT(requestDeviceDependentIn(2, 65536, ViByte{'\n'}), ElementsAre(2, 2, 0xFD, 0, 0, 0, 1, 0, 2, 10, 0, 0));
}

TEST(UsbtmcMessages, HeaderOfATrigger)
{
    EXPECT_THAT(trigger(0x80), ElementsAre(128, 0x80, 0x7F, 0, 0, 0, 0, 0, 0, 0, 0, 0));
}

TEST(UsbtmcMessages, MessagesArePaddedToMultiplesOfFour)
{
    for (const auto& [size, padded] :
         std::vector<std::pair<std::size_t, std::size_t>>{{0, 12}, {1, 16}, {3, 16}, {4, 16}, {5, 20}, {65536, 65548}})
        EXPECT_EQ(paddedSize(size), padded) << size;
}

TEST(UsbtmcMessages, TagsGoRound)
{
    EXPECT_EQ(nextMessageTag(0), 1);
    EXPECT_EQ(nextMessageTag(254), 255);
    EXPECT_EQ(nextMessageTag(255), 1);
    EXPECT_EQ(nextStatusTag(1), 2);
    EXPECT_EQ(nextStatusTag(126), 127);
    EXPECT_EQ(nextStatusTag(127), 2);
}

TEST(UsbtmcMessages, ReplyWithAndWithoutEnd)
{
    const Bytes whole = transferOf(3, 4, 1, "12.5");
    EXPECT_EQ(parseReply(whole, 3, 100).status, VI_SUCCESS);
    EXPECT_EQ(textOf(parseReply(whole, 3, 100)), "12.5");
    EXPECT_TRUE(parseReply(whole, 3, 4).endsMessage);
    EXPECT_FALSE(parseReply(transferOf(3, 4, 0, "12.5"), 3, 4).endsMessage);
    EXPECT_FALSE(parseReply(transferOf(3, 4, 2, "12.5"), 3, 4).endsMessage);
}

TEST(UsbtmcMessages, WhatFollowsTheDataIsPadding)
{
    EXPECT_EQ(textOf(parseReply(transferOf(3, 1, 1, "1???"), 3, 100)), "1");
    EXPECT_EQ(parseReply(transferOf(3, 0, 1, ""), 3, 100).status, VI_SUCCESS);
}

TEST(UsbtmcMessages, TransfersThatAreNoAnswerHaveNoData)
{
    const Bytes good = transferOf(3, 4, 1, "12.5");
    for (std::size_t at = 0; at < 3; ++at) {
        Bytes bad = good;
        bad[at] = static_cast<ViByte>(bad[at] + 1);
        EXPECT_EQ(parseReply(bad, 3, 100).status, VI_ERROR_INP_PROT_VIOL) << at;
        EXPECT_EQ(textOf(parseReply(bad, 3, 100)), "") << at;
    }
    EXPECT_EQ(parseReply(good, 4, 100).status, VI_ERROR_INP_PROT_VIOL);
    for (std::size_t size = 0; size < kHeaderSize; ++size)
        EXPECT_EQ(parseReply(std::span(good).first(size), 3, 100).status, VI_ERROR_INP_PROT_VIOL) << size;
}

TEST(UsbtmcMessages, ReplyOfLessThanItsSizeKeepsWhatCame)
{
    const Bytes transfer = transferOf(3, 8, 1, "12.5");
    const Reply reply = parseReply(transfer, 3, 100);
    EXPECT_EQ(reply.status, VI_ERROR_INP_PROT_VIOL);
    EXPECT_EQ(textOf(reply), "12.5");
    EXPECT_FALSE(reply.endsMessage);
    EXPECT_EQ(parseReply(transferOf(3, 0xFFFFFFFF, 1, "12.5"), 3, 100).status, VI_ERROR_INP_PROT_VIOL);
}

TEST(UsbtmcMessages, ReplyOfMoreThanAskedForKeepsWhatWasAskedFor)
{
    const Bytes transfer = transferOf(3, 4, 1, "12.5");
    const Reply reply = parseReply(transfer, 3, 3);
    EXPECT_EQ(reply.status, VI_ERROR_INP_PROT_VIOL);
    EXPECT_EQ(textOf(reply), "12.");
}

TEST(UsbtmcMessages, EveryStatusHasOneOfVisa)
{
    for (int number = 0; number < 256; ++number) {
        const ViStatus expected = number == 1                     ? VI_SUCCESS
                                  : number == 2 || number == 0x20 ? VI_ERROR_TMO
                                  : number >= 0x80                ? VI_ERROR_IO
                                                                  : VI_ERROR_INP_PROT_VIOL;
        EXPECT_EQ(visaStatus(static_cast<Status>(number)), expected) << number;
    }
}

TEST(UsbtmcMessages, EveryOutcomeHasAStatusOfVisa)
{
    EXPECT_EQ(visaStatus(TransferOutcome::Complete), VI_SUCCESS);
    EXPECT_EQ(visaStatus(TransferOutcome::TimedOut), VI_ERROR_TMO);
    EXPECT_EQ(visaStatus(TransferOutcome::Stalled), VI_ERROR_IO);
    EXPECT_EQ(visaStatus(TransferOutcome::Cancelled), VI_ERROR_ABORT);
    EXPECT_EQ(visaStatus(TransferOutcome::Overflow), VI_ERROR_INP_PROT_VIOL);
    EXPECT_EQ(visaStatus(TransferOutcome::Gone), VI_ERROR_CONN_LOST);
    EXPECT_EQ(visaStatus(TransferOutcome::Failed), VI_ERROR_IO);
}

TEST(UsbtmcMessages, CapabilitiesAreBits)
{
    struct Case
    {
        std::size_t at;
        ViByte value;
        bool endsAtTermChar, is4882, hasRemoteLocal, hasTrigger;
    };
    for (const Case& one : {Case{5, 1, true, false, false, false}, Case{14, 4, false, true, false, false},
                            Case{14, 2, false, false, true, false}, Case{14, 1, false, false, false, true},
                            Case{4, 7, false, false, false, false}, Case{15, 15, false, false, false, false}})
    {
        Bytes answer(24, 0);
        answer[one.at] = one.value;
        const Capabilities told = parseCapabilities(answer, 1);
        EXPECT_EQ(told.endsAtTermChar, one.endsAtTermChar) << one.at;
        EXPECT_EQ(told.is4882, one.is4882) << one.at;
        EXPECT_EQ(told.hasRemoteLocal, one.hasRemoteLocal) << one.at;
        EXPECT_EQ(told.hasTrigger, one.hasTrigger) << one.at;
    }
}

TEST(UsbtmcMessages, OnlyUsb488HasItsCapabilities)
{
    const Capabilities told = parseCapabilities(Bytes(24, 0xFF), 0);
    EXPECT_TRUE(told.endsAtTermChar);
    EXPECT_FALSE(told.is4882 || told.hasRemoteLocal || told.hasTrigger);
}

TEST(UsbtmcMessages, CapabilitiesThatAreLeftOutAreNone)
{
    for (std::size_t size = 0; size < 15; ++size) {
        const Capabilities told = parseCapabilities(Bytes(size, 0xFF), 1);
        EXPECT_EQ(told.endsAtTermChar, size > 5) << size;
        EXPECT_FALSE(told.is4882 || told.hasRemoteLocal || told.hasTrigger) << size;
    }
}

} // namespace
