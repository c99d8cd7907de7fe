#include "tests/support/driver/api_fixture.h"
#include "tests/support/driver/message_rows.h"

namespace
{

using namespace kvxtest;
using testing::ElementsAre;
using testing::IsEmpty;

class ErrorFunctions : public ApiTest
{
public:
    ErrorFunctions() { open(); }

    /// A buffer with a mark behind its 256 bytes.
    std::array<ViChar, 300> text = [] {
        std::array<ViChar, 300> marked{};
        marked.fill('#');
        return marked;
    }();
    ViInt32 number = 4321;

    ViStatus errorQuery() { return KVX2800T_error_query(vi, &number, text.data()); }

    void expectOutputsUntouched() const
    {
        EXPECT_EQ(number, 4321);
        EXPECT_THAT(text, testing::Each('#'));
    }
};

TEST_F(ErrorFunctions, GetErrorPassesEverythingToTheSessionService)
{
    IviSession_SetError(vi, kIoError, "I/O error.");
    clearLog();
    ViStatus status = 0;
    EXPECT_EQ(KVX2800T_GetError(vi, &status, 256, text.data()), VI_SUCCESS);
    EXPECT_EQ(status, kIoError);
    EXPECT_STREQ(text.data(), "I/O error.");
    EXPECT_THAT(calls(), ElementsAre("IviSession_GetError(1001, 256)"));
    EXPECT_EQ(recorded(), ErrorEntry());
}

TEST_F(ErrorFunctions, GetErrorAsksForTheSizeWithZero)
{
    IviSession_SetError(vi, kIoError, "I/O error.");
    EXPECT_EQ(KVX2800T_GetError(vi, nullptr, 0, nullptr), 11);
    EXPECT_EQ(recorded().code, kIoError);
    EXPECT_EQ(KVX2800T_GetError(vi, nullptr, 4, text.data()), 11);
    EXPECT_STREQ(text.data(), "I/O");
    EXPECT_EQ(text[4], '#');
}

TEST_F(ErrorFunctions, GetErrorReturnsTheServicesStatus)
{
    EXPECT_EQ(KVX2800T_GetError(kUnknownSession, &number, 256, text.data()), kInvalidSession);
    EXPECT_EQ(KVX2800T_GetError(vi, &number, 256, nullptr), kNullPointer);
}

TEST_F(ErrorFunctions, ClearErrorPassesTheSessionOn)
{
    IviSession_SetError(vi, kIoError, "I/O error.");
    clearLog();
    EXPECT_EQ(KVX2800T_ClearError(vi), VI_SUCCESS);
    EXPECT_THAT(calls(), ElementsAre("IviSession_ClearError(1001)"));
    EXPECT_EQ(recorded(), ErrorEntry());
    EXPECT_EQ(KVX2800T_ClearError(kUnknownSession), kInvalidSession);
    EXPECT_EQ(errorOf(VI_NULL).code, kIoError);
    EXPECT_EQ(KVX2800T_ClearError(VI_NULL), VI_SUCCESS);
    EXPECT_EQ(errorOf(VI_NULL), ErrorEntry());
}

TEST_F(ErrorFunctions, ErrorMessageGivesEveryTemplateUnfilledWithAndWithoutASession)
{
    for (const MessageRow& row : kMessageRows)
        for (const ViSession any : {vi, ViSession{VI_NULL}, kUnknownSession}) {
            text.fill('#');
            EXPECT_EQ(KVX2800T_error_message(any, row.code, text.data()), VI_SUCCESS);
            EXPECT_EQ(text.data(), row.text);
            EXPECT_EQ(text[row.text.size() + 1], '#');
        }
    EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(ErrorFunctions, ErrorMessageReportsAnUnknownCodeOnTheSession)
{
    EXPECT_EQ(KVX2800T_error_message(vi, 5, text.data()), code(0xBFFA0010));
    EXPECT_EQ(recorded(), (ErrorEntry{code(0xBFFA0010), "Invalid value '5' for function 'error_message', parameter "
                                                        "'ErrorCode'.  The error code supplied is not defined by the "
                                                        "driver."}));
    EXPECT_EQ(calls().size(), 1U);
    expectOutputsUntouched();
}

TEST_F(ErrorFunctions, ErrorMessageWritesAnUnknownCodeAsASignedNumber)
{
    EXPECT_EQ(KVX2800T_error_message(vi, VI_ERROR_TMO, text.data()), code(0xBFFA0010));
    EXPECT_EQ(recorded().text, "Invalid value '-1073807339' for function 'error_message', parameter 'ErrorCode'.  The "
                               "error code supplied is not defined by the driver.");
}

TEST_F(ErrorFunctions, ErrorMessageRecordsNothingWithoutASession)
{
    EXPECT_EQ(KVX2800T_error_message(VI_NULL, 12345, text.data()), code(0xBFFA0010));
    EXPECT_THAT(calls(), IsEmpty());
    expectOutputsUntouched();
}

TEST_F(ErrorFunctions, ErrorMessageReturnsTheReportersStatus)
{
    EXPECT_EQ(KVX2800T_error_message(kUnknownSession, 12345, text.data()), kInvalidSession);
}

TEST_F(ErrorFunctions, ErrorMessageReportsANullBuffer)
{
    EXPECT_EQ(KVX2800T_error_message(vi, 0, nullptr), kNullPointer);
    EXPECT_EQ(recorded(), (ErrorEntry{kNullPointer, "Null pointer passed for function 'KVX2800T_error_message', "
                                                    "parameter 'ErrorMessage'."}));
    EXPECT_EQ(calls().size(), 1U);
    clearThreadError();
    EXPECT_EQ(KVX2800T_error_message(VI_NULL, 0, nullptr), kNullPointer);
    EXPECT_EQ(errorOf(VI_NULL).code, kNullPointer);
}

TEST_F(ErrorFunctions, ErrorQueryReadsOneEntryOfTheQueue)
{
    answer(":SYSTem:ERRor?", "-113,\"Undefined header\"");
    EXPECT_EQ(errorQuery(), VI_SUCCESS);
    EXPECT_EQ(number, -113);
    EXPECT_STREQ(text.data(), "\"Undefined header\"");
    EXPECT_THAT(written(), ElementsAre(":SYSTem:ERRor?\n"));
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_F(ErrorFunctions, ErrorQueryOfAReplyWithoutTwoFieldsGivesNoError)
{
    for (const char* reply : {"-113,\"a,b\"", "-113", "x", ",,"}) {
        number = 4321;
        text.fill('#');
        answer(":SYSTem:ERRor?", reply);
        EXPECT_EQ(errorQuery(), VI_SUCCESS) << reply;
        EXPECT_EQ(number, 0) << reply;
        EXPECT_STREQ(text.data(), "") << reply;
        EXPECT_EQ(text[1], '#') << reply;
    }
}

TEST_F(ErrorFunctions, ErrorQueryCutsAMessageTo255Characters)
{
    answer(":SYSTem:ERRor?", "1," + std::string(255, 'x'));
    EXPECT_EQ(errorQuery(), VI_SUCCESS);
    EXPECT_EQ(text.data(), std::string(255, 'x'));
    answer(":SYSTem:ERRor?", "2," + std::string(256, 'y'));
    EXPECT_EQ(errorQuery(), VI_SUCCESS);
    EXPECT_EQ(text.data(), std::string(255, 'y'));
    EXPECT_EQ(text[256], '#');
    answer(":SYSTem:ERRor?", "3," + std::string(900, 'z'));
    EXPECT_EQ(errorQuery(), VI_SUCCESS);
    EXPECT_EQ(text.data(), std::string(255, 'z'));
    EXPECT_EQ(text[256], '#');
}

TEST_F(ErrorFunctions, ErrorQueryWritesNothingBehindANulOfTheMessage)
{
    answer(":SYSTem:ERRor?", std::string("1,x\0y", 5));
    EXPECT_EQ(errorQuery(), VI_SUCCESS);
    EXPECT_STREQ(text.data(), "x");
    EXPECT_EQ(text[2], '#');
}

TEST_F(ErrorFunctions, ErrorQueryRecordsAFailureOnceAndWritesNothing)
{
    for (const char* function : {"viWrite", "viRead"}) {
        failCall(function, VI_ERROR_TMO);
        clearLog();
        EXPECT_EQ(errorQuery(), kIoError);
        EXPECT_EQ(recorded(), (ErrorEntry{kIoError, "I/O error."}));
        EXPECT_EQ(timesRecorded(), 1U);
        expectOutputsUntouched();
        clearFailures();
        IviSession_ClearError(vi);
    }
}

TEST_F(ErrorFunctions, ErrorQueryReportsTheFirstNullPointerInsideTheFrame)
{
    const auto expectNull = [this](ViInt32* numberPointer, ViChar* textPointer, const char* parameter) {
        clearLog();
        IviSession_ClearError(vi);
        EXPECT_EQ(KVX2800T_error_query(vi, numberPointer, textPointer), kNullPointer);
        EXPECT_EQ(recorded(), (ErrorEntry{kNullPointer, std::string("Null pointer passed for function "
                                                                    "'KVX2800T_error_query', parameter '") +
                                                            parameter + "'."}));
        EXPECT_EQ(calls("IviSession_Lock").size(), 1U);
        EXPECT_THAT(written(), IsEmpty());
    };
    expectNull(nullptr, text.data(), "ErrorCode");
    expectNull(&number, nullptr, "ErrorMessage");
    expectNull(nullptr, nullptr, "ErrorCode");
    expectOutputsUntouched();
}

TEST_F(ErrorFunctions, ErrorQueryOfAnUnreadableCodeLeavesAsAnException)
{
    answer(":SYSTem:ERRor?", "abc,\"x\"");
    expectException<std::invalid_argument>(vi, "invalid stoi argument", [this] { errorQuery(); });
    answer(":SYSTem:ERRor?", "99999999999,\"x\"");
    expectException<std::out_of_range>(vi, "stoi argument out of range", [this] { errorQuery(); });
    expectOutputsUntouched();
}

TEST_F(ErrorFunctions, ErrorQueryOfASimulatedInstrumentFindsNoError)
{
    KVX2800T_close(vi);
    open("Simulate=1");
    EXPECT_EQ(errorQuery(), VI_SUCCESS);
    EXPECT_EQ(number, 0);
}

} // namespace
