#pragma once

#include "api/KVX2800T.h"
#include "runtime/driver_session.h"
#include "runtime/runtime_fixture.h"
#include "runtime/scripted_clock.h"

#include <array>
#include <string>
#include <vector>

namespace kvxtest
{

inline constexpr ViStatus kIoError = code(0xBFFA4214);
inline constexpr ViStatus kInvalidSession = code(0xBFFA1190);
inline constexpr ViStatus kNullPointer = code(0xBFFA0058);
/// A status that only a test can have made.
inline constexpr ViStatus kInjected = code(0xBFFA1777);
inline constexpr ViSession kUnknownSession = 4711;
/// The handle of the first session.
inline constexpr ViSession kFirstSession = 1001;

/// VISA's text type is not const; the driver does not write to it.
inline ViStatus init(const std::string& options, ViSession* vi, ViBoolean idQuery = VI_FALSE,
                     ViBoolean reset = VI_FALSE)
{
    std::string resource = "TCPIP0::host::1::SOCKET";
    return KVX2800T_InitWithOptions(resource.data(), idQuery, reset, options.c_str(), vi);
}

/// A fresh platform with an instrument that answers its identification and is in the normal source mode; a clock that
/// does not make tests wait.
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

    drivekit::DriverSession& session() const
    {
        ViAddr data = nullptr;
        IviSession_GetDataPtr(vi, &data);
        return *static_cast<drivekit::DriverSession*>(data);
    }

    ErrorEntry recorded() const { return errorOf(vi); }

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

    ViSession vi = VI_NULL;

private:
    ScriptedClock clock_;
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
