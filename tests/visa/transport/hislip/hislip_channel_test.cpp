#include "tests/support/visa/scripted_stream.h"
#include "visa/transport/hislip/hislip_channel.h"

#include <algorithm>
#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace
{

using visa::Deadline;
using visa::HislipType;

/// Takes so many bytes and no more.
class NarrowStream : public kvxtest::ScriptedStream
{
public:
    ViStatus writeAll(std::span<const ViByte> bytes, const Deadline&, std::size_t& count) noexcept override
    {
        count = std::min(room, bytes.size());
        room -= count;
        taken.append(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count));
        return count == bytes.size() ? VI_SUCCESS : VI_ERROR_TMO;
    }

    std::size_t room = 1000;
    std::string taken;
};

class HislipChannelTest : public testing::Test
{
protected:
    struct Sent
    {
        ViStatus status;
        std::size_t count;
        bool operator==(const Sent&) const = default;
    };

    Sent send(const std::string& text)
    {
        std::size_t count = 77;
        const ViStatus status =
            channel_.send({HislipType::DataEnd, 1, 2}, {reinterpret_cast<const ViByte*>(text.data()), text.size()},
                          Deadline(VI_TMO_IMMEDIATE), count);
        return {status, count};
    }

    static std::string header(char type, char control, char parameter, char length)
    {
        std::string bytes("HS\0\0\0\0\0\0\0\0\0\0\0\0\0\0", 16);
        bytes[2] = type;
        bytes[3] = control;
        bytes[7] = parameter;
        bytes[15] = length;
        return bytes;
    }

    NarrowStream& stream_ = *new NarrowStream;
    visa::HislipChannel channel_{std::unique_ptr<visa::Stream>(&stream_), 512};
};

TEST_F(HislipChannelTest, WhatIsToldInPartIsCompletedInFrontOfTheNextMessage)
{
    stream_.room = 5;
    channel_.tell({HislipType::Error, 3});
    EXPECT_FALSE(channel_.owesOutput());
    EXPECT_EQ(send("abc"), (Sent{VI_ERROR_TMO, 0}));
    EXPECT_FALSE(channel_.owesOutput());
    stream_.room = 1000;
    EXPECT_EQ(send("abc"), (Sent{VI_SUCCESS, 3}));
    EXPECT_EQ(stream_.taken, header(3, 3, 0, 0) + header(7, 1, 2, 3) + "abc");
}

TEST_F(HislipChannelTest, NothingIsToldInTheMiddleOfAMessageWhoseRestBecomesBlanks)
{
    stream_.room = 18;
    EXPECT_EQ(send("abcdef"), (Sent{VI_ERROR_TMO, 2}));
    EXPECT_TRUE(channel_.owesOutput());
    stream_.room = 1000;
    channel_.tell({HislipType::Error, 3});
    EXPECT_EQ(stream_.taken, header(7, 1, 2, 6) + "ab");
    EXPECT_EQ(channel_.sendOwed(Deadline(VI_TMO_IMMEDIATE)), VI_SUCCESS);
    EXPECT_FALSE(channel_.owesOutput());
    EXPECT_EQ(stream_.taken, header(7, 1, 2, 6) + "abcdef");
}

TEST_F(HislipChannelTest, LargeMessageThatIsCutEndsWithBlanks)
{
    stream_.room = 16 + 4095;
    EXPECT_EQ(send(std::string(6000, 'x')), (Sent{VI_ERROR_TMO, 4095}));
    stream_.room = 10000;
    EXPECT_EQ(channel_.sendOwed(Deadline(VI_TMO_IMMEDIATE)), VI_SUCCESS);
    EXPECT_EQ(stream_.taken.size(), 6016U);
    EXPECT_EQ(stream_.taken.substr(16), std::string(4095, 'x') + std::string(1905, ' '));
}

TEST_F(HislipChannelTest, MessageOfWhichNothingHasGoneIsNotOwed)
{
    stream_.room = 0;
    EXPECT_EQ(send("abc"), (Sent{VI_ERROR_TMO, 0}));
    channel_.tell({HislipType::Error, 3});
    EXPECT_FALSE(channel_.owesOutput());
    stream_.room = 1000;
    EXPECT_EQ(send("abc"), (Sent{VI_SUCCESS, 3}));
    EXPECT_EQ(stream_.taken, header(7, 1, 2, 3) + "abc");
}

} // namespace
