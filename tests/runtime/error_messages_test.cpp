#include "runtime/error_messages.h"

#include "tests/support/driver/message_rows.h"
#include "tests/support/driver/runtime_fixture.h"

#include <algorithm>

namespace
{

using namespace kvxtest;
using drivekit::DecimalArgument;
using drivekit::GetErrorMessage;
using drivekit::ReportError;
using drivekit::ReportErrorText;
using drivekit::ReportErrorWithElaboration;

class ErrorMessages : public RuntimeTest
{
};

TEST_F(ErrorMessages, EveryCodeHasItsText)
{
    for (const MessageRow& row : kMessageRows)
        EXPECT_EQ(GetErrorMessage(row.code), row.text) << row.code;
}

TEST_F(ErrorMessages, EveryTextIsFollowedByANul)
{
    for (const MessageRow& row : kMessageRows)
        EXPECT_STREQ(GetErrorMessage(row.code).data(), std::string(row.text).c_str()) << row.code;
}

TEST_F(ErrorMessages, ACodeBesideThoseOfTheTableHasNone)
{
    for (const MessageRow& row : kMessageRows)
        for (const ViStatus neighbour : {row.code - 1, row.code + 1}) {
            const bool defined = std::any_of(kMessageRows.begin(), kMessageRows.end(),
                                             [neighbour](const MessageRow& other) { return other.code == neighbour; });
            EXPECT_EQ(GetErrorMessage(neighbour).empty(), !defined) << neighbour;
        }
    EXPECT_EQ(GetErrorMessage(VI_ERROR_TMO), "");
    EXPECT_EQ(GetErrorMessage(12345), "");
}

TEST_F(ErrorMessages, ALookUpCallsNothingOfThePlatform)
{
    GetErrorMessage(code(0xBFFA0001));
    EXPECT_THAT(calls(), testing::IsEmpty());
}

TEST_F(ErrorMessages, ReportErrorRecordsTheFilledTemplateAndReturnsTheCode)
{
    EXPECT_EQ(ReportError(vi, code(0xBFFA0010), {"7", "Function", "Parameter"}), code(0xBFFA0010));
    EXPECT_THAT(calls(), testing::ElementsAre("IviSession_SetError(1001, 0xBFFA0010, \"Invalid value '7' for function "
                                              "'Function', parameter 'Parameter'.\")"));
}

TEST_F(ErrorMessages, ArgumentsFillThePlacesOfATemplateInOrder)
{
    ReportError(vi, code(0xBFFA0015), {"Set", "ViReal64", "NAME", "ViBoolean"});
    EXPECT_EQ(recorded(),
              (ErrorEntry{code(0xBFFA0015), "SetAttributeViReal64 called for attribute 'NAME' of type 'ViBoolean'."}));
}

TEST_F(ErrorMessages, ExtraArgumentsAreIgnored)
{
    ReportError(vi, code(0xBFFA005E), {"Unrecognized model: X"});
    EXPECT_EQ(recorded(), (ErrorEntry{code(0xBFFA005E), "Instrument ID query failed."}));
}

TEST_F(ErrorMessages, PlacesWithoutAnArgumentStayEmpty)
{
    ReportError(vi, code(0xBFFA0010), {"7"});
    EXPECT_EQ(recorded(), (ErrorEntry{code(0xBFFA0010), "Invalid value '7' for function '', parameter ''."}));
}

TEST_F(ErrorMessages, APlaceInsideAnArgumentIsNoPlace)
{
    ReportError(vi, code(0xBFFA0058), {"%s%d%n", "b"});
    EXPECT_EQ(recorded(), (ErrorEntry{code(0xBFFA0058), "Null pointer passed for function '%s%d%n', parameter 'b'."}));
}

TEST_F(ErrorMessages, AnElaborationFollowsAfterTwoBlanks)
{
    ReportErrorWithElaboration(vi, code(0xBFFA4214), "More.");
    EXPECT_EQ(recorded(), (ErrorEntry{code(0xBFFA4214), "I/O error.  More."}));
}

TEST_F(ErrorMessages, PlacesOfAnElaborationTakeTheArgumentsThatAreLeft)
{
    ReportErrorWithElaboration(vi, code(0xBFFA004C), "About '%s'.", {"yes", "simulate"});
    EXPECT_EQ(recorded(),
              (ErrorEntry{code(0xBFFA004C), "The 'yes' value in the option string is unknown.  About 'simulate'."}));
}

TEST_F(ErrorMessages, AnEmptyElaborationLeavesTheTemplateAlone)
{
    EXPECT_EQ(ReportErrorWithElaboration(vi, code(0xBFFA004C), "", {"yes"}), code(0xBFFA004C));
    EXPECT_EQ(recorded(), (ErrorEntry{code(0xBFFA004C), "The 'yes' value in the option string is unknown."}));
}

TEST_F(ErrorMessages, AnUnknownCodeIsRecordedWithoutAText)
{
    EXPECT_EQ(ReportError(vi, VI_ERROR_TMO, {"argument"}), VI_ERROR_TMO);
    EXPECT_THAT(calls(), testing::ElementsAre("IviSession_SetError(1001, 0xBFFF0015, \"\")"));
}

TEST_F(ErrorMessages, AnUnknownCodeIsRecordedWithItsElaboration)
{
    ReportErrorWithElaboration(vi, VI_ERROR_TMO, "Late.");
    EXPECT_EQ(recorded(), (ErrorEntry{VI_ERROR_TMO, "  Late."}));
}

TEST_F(ErrorMessages, ATextOfTheCallerReplacesTheTemplate)
{
    EXPECT_EQ(ReportErrorText(vi, code(0xBFFA0067), "No '%s' in '%s'.", {"a", "b"}), code(0xBFFA0067));
    EXPECT_EQ(recorded(), (ErrorEntry{code(0xBFFA0067), "No 'a' in 'b'."}));
}

TEST_F(ErrorMessages, ADescriptionOf1023CharactersIsKept)
{
    const std::string text(1023, 'x');
    EXPECT_EQ(ReportErrorText(vi, code(0xBFFA0067), text), code(0xBFFA0067));
    EXPECT_EQ(recorded(), (ErrorEntry{code(0xBFFA0067), text}));
}

TEST_F(ErrorMessages, ALongerDescriptionIsCutWhereverItGetsTooLong)
{
    const std::string tooLong(1024, 'x');
    const std::string whole(1023, 'x');
    EXPECT_EQ(ReportErrorText(vi, code(0xBFFA0067), tooLong), code(0xBFFA0067));
    EXPECT_EQ(recorded().text, whole);
    IviSession_ClearError(vi);
    EXPECT_EQ(ReportErrorText(vi, code(0xBFFA0067), "%s and no more", {tooLong}), code(0xBFFA0067));
    EXPECT_EQ(recorded().text, whole);
    IviSession_ClearError(vi);
    EXPECT_EQ(ReportErrorWithElaboration(vi, code(0xBFFA4214), tooLong), code(0xBFFA4214));
    EXPECT_EQ(recorded().text, "I/O error.  " + std::string(1023 - 12, 'x'));
    IviSession_ClearError(vi);
    EXPECT_EQ(ReportErrorText(vi, code(0xBFFA0067), "%s", {std::string(10U << 20U, 'x')}), code(0xBFFA0067));
    EXPECT_EQ(recorded().text, whole);
}

TEST_F(ErrorMessages, AFailureToRecordIsReturnedInPlaceOfTheCode)
{
    failCall("IviSession_SetError", code(0xBFFA0056));
    EXPECT_EQ(ReportError(vi, code(0xBFFA4214)), code(0xBFFA0056));
    EXPECT_EQ(ReportErrorWithElaboration(vi, code(0xBFFA4214), "More."), code(0xBFFA0056));
    EXPECT_EQ(ReportErrorText(vi, code(0xBFFA4214), "Text."), code(0xBFFA0056));
}

TEST_F(ErrorMessages, AWarningOfTheSessionServiceIsNoFailureToRecord)
{
    failCall("IviSession_SetError", 5);
    EXPECT_EQ(ReportError(vi, code(0xBFFA4214)), code(0xBFFA4214));
}

TEST_F(ErrorMessages, AnUnknownSessionsStatusIsReturned)
{
    EXPECT_EQ(ReportError(4711, code(0xBFFA4214)), code(0xBFFA1190));
}

TEST_F(ErrorMessages, WithoutASessionTheThreadKeepsTheError)
{
    EXPECT_EQ(ReportError(VI_NULL, code(0xBFFA4214)), code(0xBFFA4214));
    EXPECT_EQ(errorOf(VI_NULL), (ErrorEntry{code(0xBFFA4214), "I/O error."}));
    EXPECT_EQ(recorded(), ErrorEntry());
}

TEST_F(ErrorMessages, NumbersAreWrittenInDecimal)
{
    EXPECT_EQ(std::string_view(DecimalArgument(-2147483647 - 1)), "-2147483648");
    EXPECT_EQ(std::string_view(DecimalArgument(4294967295U)), "4294967295");
    EXPECT_EQ(std::string_view(DecimalArgument(0)), "0");
}

TEST_F(ErrorMessages, TheReportersOfASessionRecordOnIt)
{
    TestSession session(vi);
    EXPECT_EQ(session.GetViSession(), vi);
    EXPECT_EQ(session.ReportError(code(0xBFFA0058), {"f", "p"}), code(0xBFFA0058));
    EXPECT_EQ(recorded(), (ErrorEntry{code(0xBFFA0058), "Null pointer passed for function 'f', parameter 'p'."}));
    IviSession_ClearError(vi);
    EXPECT_EQ(session.ReportErrorWithElaboration(code(0xBFFA4214), "See '%s'.", {"x"}), code(0xBFFA4214));
    EXPECT_EQ(recorded(), (ErrorEntry{code(0xBFFA4214), "I/O error.  See 'x'."}));
    IviSession_ClearError(vi);
    EXPECT_EQ(session.ReportErrorText(code(0xBFFA4214), "See '%s'.", {"x"}), code(0xBFFA4214));
    EXPECT_EQ(recorded(), (ErrorEntry{code(0xBFFA4214), "See 'x'."}));
}

} // namespace
