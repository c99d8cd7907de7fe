#include "tests/support/driver/api_fixture.h"

// Messages of the program's own.

namespace
{

using namespace kvxtest;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr ViStatus kTruncatedRead = code(0x3FFA4001);
constexpr ViStatus kInvalidSize = code(0xBFFA0010);
constexpr ViStatus kNotSupported = code(0xBFFA4216);

std::string transferFailed(const char* status)
{
    return std::string("The transfer has failed with VISA's status ") + status + ".";
}

class DirectIo : public ApiTest
{
public:
    ViStatus read(ViInt64 size)
    {
        buffer = std::string(16, '#');
        count = 77;
        return KVX2800T_viRead(vi, size, reinterpret_cast<ViByte*>(buffer.data()), &count);
    }

    ViStatus write(std::string bytes)
    {
        count = 77;
        return KVX2800T_viWrite(vi, reinterpret_cast<ViByte*>(bytes.data()), static_cast<ViInt64>(bytes.size()),
                                &count);
    }

    std::string buffer;
    ViInt64 count = 0;
};

TEST_F(DirectIo, ACommandIsSentWithItsTerminator)
{
    open();
    for (const char* command : {"*TRG", "*TRG\n"}) {
        EXPECT_EQ(write(command), VI_SUCCESS);
        EXPECT_EQ(count, static_cast<ViInt64>(std::string(command).size()));
    }
    EXPECT_EQ(write(std::string("a\0b\r", 4)), VI_SUCCESS);
    EXPECT_EQ(write(""), VI_SUCCESS);
    EXPECT_EQ(count, 0);
    EXPECT_THAT(written(), ElementsAre("*TRG\n", "*TRG\n", std::string("a\0b\r\n", 5), "\n"));
    EXPECT_EQ(timesRecorded(), 0U);
    EXPECT_EQ(lockDepth(vi), 0U);
}

TEST_F(DirectIo, AResponseIsReadAsItCame)
{
    open();
    queueReply("+1.5,2\r\n");
    EXPECT_EQ(read(16), VI_SUCCESS);
    EXPECT_EQ(count, 8);
    EXPECT_EQ(buffer, "+1.5,2\r\n########");
    queueReply(std::string("a\0\n", 3));
    EXPECT_EQ(read(3), VI_SUCCESS);
    EXPECT_EQ(count, 3);
    EXPECT_EQ(buffer.substr(0, 4), std::string("a\0\n#", 4));
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_F(DirectIo, WhatExceedsTheBufferIsDiscarded)
{
    open();
    queueReply("0123456789" + std::string(5000, 'x') + "\n");
    queueReply("next\n");
    EXPECT_EQ(read(4), kTruncatedRead);
    EXPECT_EQ(count, 4);
    EXPECT_EQ(buffer, "0123############");
    EXPECT_EQ(timesRecorded(), 0U);
    EXPECT_EQ(read(5), VI_SUCCESS);
    EXPECT_EQ(buffer, "next\n###########");
}

TEST_F(DirectIo, AFailureOfVisaKeepsItsCode)
{
    open();
    ASSERT_EQ(write("*TRG"), VI_SUCCESS);
    EXPECT_EQ(read(16), VI_ERROR_TMO);
    EXPECT_EQ(count, 0);
    expectRecordedOnce(VI_ERROR_TMO, transferFailed("0xBFFF0015"));
    forget();
    queueReply("cut", VI_ERROR_CONN_LOST);
    EXPECT_EQ(read(16), VI_ERROR_CONN_LOST);
    EXPECT_EQ(count, 3);
    EXPECT_EQ(buffer, "cut#############");
    expectRecordedOnce(VI_ERROR_CONN_LOST, transferFailed("0xBFFF00A6"));
    forget();
    failCall("viWrite", VI_ERROR_TMO);
    EXPECT_EQ(write("*TRG"), VI_ERROR_TMO);
    EXPECT_EQ(count, 0);
    expectRecordedOnce(VI_ERROR_TMO, transferFailed("0xBFFF0015"));
}

TEST_F(DirectIo, AFailureBehindTheBufferIsOneToo)
{
    open();
    queueReply(std::string(20, 'y'), VI_ERROR_TMO);
    EXPECT_EQ(read(4), VI_ERROR_TMO);
    EXPECT_EQ(count, 4);
    EXPECT_EQ(buffer, "yyyy############");
    EXPECT_EQ(timesRecorded(), 1U);
}

TEST_F(DirectIo, AResponseWithoutAnEndIsGivenUpAfterATimeout)
{
    open();
    ASSERT_EQ(KVX2800T_SetIoTimeout(vi, 0), VI_SUCCESS);
    ASSERT_EQ(write("*TRG"), VI_SUCCESS);
    answer("*TRG", "more");
    failCall("viRead", VI_SUCCESS_MAX_CNT);
    clearLog();
    EXPECT_EQ(read(4), VI_ERROR_TMO);
    EXPECT_GT(calls("viRead").size(), 2U);
    EXPECT_EQ(count, 4);
    EXPECT_EQ(buffer, "more############");
    EXPECT_EQ(timesRecorded(), 1U);
}

TEST_F(DirectIo, ARestThatHasArrivedIsDroppedWhateverTheTimeout)
{
    open();
    ASSERT_EQ(KVX2800T_SetIoTimeout(vi, 0), VI_SUCCESS);
    queueReply(std::string(5000, 'z') + "\n");
    queueReply("next\n");
    EXPECT_EQ(read(4), kTruncatedRead);
    EXPECT_EQ(read(5), VI_SUCCESS);
    EXPECT_EQ(buffer, "next\n###########");
}

TEST_F(DirectIo, ArgumentsAreChecked)
{
    open();
    ViByte byte = 0;
    const auto refusedAt = [this](ViStatus status, const std::string& function, const std::string& parameter) {
        EXPECT_EQ(status, kNullPointer);
        expectRecordedOnce(kNullPointer,
                           "Null pointer passed for function '" + function + "', parameter '" + parameter + "'.");
        forget();
    };
    refusedAt(KVX2800T_viRead(vi, 1, nullptr, &count), "KVX2800T_viRead", "Buffer");
    refusedAt(KVX2800T_viRead(vi, 1, &byte, nullptr), "KVX2800T_viRead", "ReturnCount");
    refusedAt(KVX2800T_viWrite(vi, nullptr, 1, &count), "KVX2800T_viWrite", "Buffer");
    refusedAt(KVX2800T_viWrite(vi, &byte, 1, nullptr), "KVX2800T_viWrite", "ReturnCount");
    for (const ViInt64 size : std::initializer_list<ViInt64>{0, -1, std::numeric_limits<ViInt64>::min()}) {
        EXPECT_EQ(read(size), kInvalidSize);
        EXPECT_EQ(count, 0);
        expectRecordedOnce(kInvalidSize, "Invalid value '" + std::to_string(size) +
                                             "' for function 'viRead', parameter 'BufferSize'.");
        forget();
    }
    count = 77;
    for (const ViInt64 size : std::initializer_list<ViInt64>{-1, 0xFFFFFFFF, std::numeric_limits<ViInt64>::max()}) {
        EXPECT_EQ(KVX2800T_viWrite(vi, &byte, size, &count), kInvalidSize);
        EXPECT_EQ(count, 0);
        expectRecordedOnce(kInvalidSize,
                           "Invalid value '" + std::to_string(size) + "' for function 'viWrite', parameter 'Count'.");
        forget();
    }
    EXPECT_THAT(written(), IsEmpty());
    EXPECT_EQ(KVX2800T_viRead(kUnknownSession, 1, &byte, &count), kInvalidSession);
    EXPECT_EQ(KVX2800T_viWrite(kUnknownSession, &byte, 1, &count), kInvalidSession);
}

TEST_F(DirectIo, ASimulatedInstrumentHasNone)
{
    open("Simulate=1");
    EXPECT_EQ(read(16), kNotSupported);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(buffer, std::string(16, '#'));
    expectRecordedOnce(kNotSupported, "The operation (attribute or function) is not supported.");
    forget();
    EXPECT_EQ(write("*TRG"), kNotSupported);
    EXPECT_EQ(count, 0);
    expectRecordedOnce(kNotSupported, "The operation (attribute or function) is not supported.");
}

} // namespace
