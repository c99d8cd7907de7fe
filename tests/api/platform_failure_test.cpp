#include "tests/support/driver/exported_calls.h"

// Every exported function with one platform call failing, again and again with the next one, until none is left. Init
// has a test of its own.

namespace
{

using namespace kvxtest;

class PlatformFailure : public ApiTest, public testing::WithParamInterface<ExportedCall>
{
public:
    /// Makes the call on a fresh session while its n-th platform call fails.
    ViStatus callFailing(std::size_t n)
    {
        startOver();
        answerExportedCalls();
        open("QueryInstrStatus=1");
        failNthCall(n, kInjected);
        const ViStatus status = GetParam().call(vi);
        happened = failureHappened();
        failing = happened ? calls()[n - 1] : "";
        isLast = calls().size() == n;
        clearFailures();
        return status;
    }

    bool fails(const char* function) const { return failing.starts_with(std::string(function) + "("); }

    /// Failures that the function has nothing to say about.
    bool isPassedOver() const
    {
        const std::string name = GetParam().name;
        return (fails("IviSession_Unlock") && isLast) || fails("viClose") || (name == "Disable" && fails("viWrite"));
    }

    /// Whether the session is one that can be closed.
    bool isOpen() const { return GetParam().name != std::string("close") || fails("IviSession_GetDataPtr"); }

    bool happened = false;
    std::string failing;
    bool isLast = false;
};

TEST_P(PlatformFailure, OfEachCallGivesAStatusAndLeavesNothingLockedOrOpen)
{
    std::size_t n = 1;
    for (;; ++n) {
        const ViStatus status = callFailing(n);
        if (!happened) {
            EXPECT_EQ(status, GetParam().success);
            break;
        }
        SCOPED_TRACE(failing + ", call " + std::to_string(n));
        EXPECT_TRUE(isPassedOver() ? status == GetParam().success : status < 0) << status;
        EXPECT_TRUE(fails("IviSession_Unlock") || lockDepth(vi) == 0);
        EXPECT_TRUE(!isOpen() || KVX2800T_close(vi) == VI_SUCCESS);
        vi = VI_NULL;
        EXPECT_EQ(openVisaSessions(), fails("viClose") ? 2U : 0U);
        EXPECT_EQ(openIviSessions(), fails("IviSession_Dispose") ? 1U : 0U);
        EXPECT_EQ(openConfigHandles(), 0U);
    }
    EXPECT_GT(n, 1U) << "every function calls the platform";
}

INSTANTIATE_TEST_SUITE_P(Functions, PlatformFailure, testing::ValuesIn(kExportedCalls),
                         [](const auto& call) { return std::string(call.param.name); });

/// Attributes of the session, which have work of their own.
const ExportedCall kSessionAttributes[] = {
    {"SIMULATE", [](ViSession vi) { return KVX2800T_SetAttributeViBoolean(vi, "", KVX2800T_ATTR_SIMULATE, VI_TRUE); }},
    {"QUERY_INSTRUMENT_STATUS",
     [](ViSession vi) {
         return KVX2800T_SetAttributeViBoolean(vi, "", KVX2800T_ATTR_QUERY_INSTRUMENT_STATUS, VI_FALSE);
     }},
    {"CACHE", [](ViSession vi) { return KVX2800T_SetAttributeViBoolean(vi, "", KVX2800T_ATTR_CACHE, VI_TRUE); }},
};

INSTANTIATE_TEST_SUITE_P(SessionAttributes, PlatformFailure, testing::ValuesIn(kSessionAttributes),
                         [](const auto& call) { return std::string(call.param.name); });

} // namespace
