#pragma once

#include "api/KVX2800T.h"
#include "tests/support/fakes/platform_fakes.h"

#include <gmock/gmock.h>

#include <array>
#include <string>
#include <vector>

// What tests of exported functions share. They see nothing of the driver but its header, and so run on the objects of
// the driver, with a clock that does not make them wait, and on the shared library alike.

namespace kvxtest
{

inline constexpr ViStatus kIoError = code(0xBFFA4214);
inline constexpr ViStatus kInvalidSession = code(0xBFFA1190);
inline constexpr ViStatus kNullPointer = code(0xBFFA0058);
inline constexpr ViStatus kOutOfRange = code(0xBFFA4217);
inline constexpr const char* kOutOfRangeText =
    "Attribute or function parameter value is invalid (out of range or not supported).";
/// A status that only a test can have made.
inline constexpr ViStatus kInjected = code(0xBFFA1777);
inline constexpr ViSession kUnknownSession = 4711;
/// The handle of the first session.
inline constexpr ViSession kFirstSession = 1001;

/// VISA's text type is not const; the driver does not write to it.
inline ViStatus initOn(std::string resource, const std::string& options, ViSession* vi, ViBoolean idQuery = VI_FALSE,
                       ViBoolean reset = VI_FALSE)
{
    return KVX2800T_InitWithOptions(resource.data(), idQuery, reset, options.c_str(), vi);
}

inline ViStatus init(const std::string& options, ViSession* vi, ViBoolean idQuery = VI_FALSE,
                     ViBoolean reset = VI_FALSE)
{
    return initOn("TCPIP0::host::1::SOCKET", options, vi, idQuery, reset);
}

/// A fresh platform with an instrument that answers its identification and is in the normal source mode.
class ApiTest : public testing::Test
{
public:
    ApiTest() { startOver(); }

    void TearDown() override
    {
        clearFailures();
        if (vi != VI_NULL)
            KVX2800T_close(vi);
        reset();
    }

    static void startOver()
    {
        reset();
        answer("*IDN?", "Tessaro Instruments,KVX2833T,SN1,V2.34");
        answer("*ESR?", "0");
        answer(":SOUR:Mode?", "NORMAL");
    }

    /// Opens the session that tests call on.
    void open(const std::string& options = "")
    {
        ASSERT_EQ(init(options, &vi), VI_SUCCESS);
        clearLog();
    }

    ErrorEntry recorded() const { return errorOf(vi); }

    /// The value of a text attribute.
    std::string text(ViAttr id) const
    {
        std::vector<ViChar> buffer(8192, '#');
        const auto size = static_cast<ViInt32>(buffer.size());
        EXPECT_EQ(KVX2800T_GetAttributeViString(vi, "", id, size, buffer.data()), VI_SUCCESS) << id;
        return buffer.data();
    }

    static std::size_t timesRecorded() { return calls("IviSession_SetError").size(); }

    /// What KVX2800T_GetError gives for the thread.
    static ErrorEntry threadError()
    {
        ErrorEntry error;
        std::array<ViChar, 1024> text{};
        EXPECT_EQ(KVX2800T_GetError(VI_NULL, &error.code, static_cast<ViInt32>(text.size()), text.data()), VI_SUCCESS);
        error.text = text.data();
        return error;
    }

    /// Expects that a call has failed with this record, made once, and has given the lock back.
    void expectRecordedOnce(ViStatus status, const std::string& text) const
    {
        EXPECT_EQ(recorded(), (ErrorEntry{status, text}));
        EXPECT_EQ(timesRecorded(), 1U);
        EXPECT_EQ(lockDepth(vi), 0U);
    }

    /// Forgets calls and errors, before the next step of a test.
    void forget() const
    {
        clearFailures();
        IviSession_ClearError(vi);
        clearThreadError();
        clearLog();
    }

    ViSession vi = VI_NULL;
};

/// Expects that a call leaves with an exception of this kind and text, the lock still held and nothing recorded; takes
/// the lock off again.
template <class Exception, class Call>
void expectException(ViSession vi, const std::string& text, Call call)
{
    clearLog();
    try {
        call();
        ADD_FAILURE() << "no exception";
    } catch (const Exception& error) {
        EXPECT_EQ(error.what(), text);
    }
    EXPECT_EQ(lockDepth(vi), 1U);
    EXPECT_EQ(calls("IviSession_SetError").size(), 0U);
    EXPECT_EQ(errorOf(vi), ErrorEntry());
    IviSession_Unlock(vi, VI_NULL);
}

} // namespace kvxtest
