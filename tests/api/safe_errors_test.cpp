#include "tests/support/driver/exported_calls.h"
#include "tests/support/driver/instrument_calls.h"

#include <functional>
#include <string>
#include <vector>

// Whatever an instrument answers, no function of a session with SafeErrors throws, keeps the lock or fails without a
// record.

namespace
{

using namespace kvxtest;

struct SafeCall
{
    std::string name;
    std::function<ViStatus(ViSession vi)> call;
};

void PrintTo(const SafeCall& call, std::ostream* stream)
{
    *stream << call.name;
}

std::vector<SafeCall> everyCall()
{
    std::vector<SafeCall> every;
    for (const ExportedCall& call : kExportedCalls)
        if (call.isFramed)
            every.push_back({call.name, call.call});
    for (const InstrumentCall& call : instrumentCalls())
        every.push_back({call.name, [&call](ViSession vi) { return call(vi); }});
    return every;
}

/// Replies that no query of the instrument has, or that few have.
const std::vector<std::string>& strangeReplies()
{
    static const std::vector<std::string> replies = {
        "",
        ",",
        ",,,",
        "garbage",
        "1e999",
        "-1e999",
        "99999999999",
        "nan",
        "NORMAL,",
        "1",
        "0x1p-2000",
        "+0,\"No error\"",
        "ON,OFF,ON,OFF,ON",
        "1,2,3",
        std::string(2000, '9'),
        std::string("1\0002", 3),
        std::string("\xFF\xFE"),
    };
    return replies;
}

class SafeErrors : public ApiTest, public testing::WithParamInterface<SafeCall>
{
public:
    /// Calls with `reply` to everything that is asked.
    void callWith(const std::string& options, const std::string& reply)
    {
        startOver();
        open(options);
        for (int i = 0; i < 20; ++i)
            queueReply(reply + "\n");
        clearLog();
        const ViStatus status = GetParam().call(vi);
        EXPECT_EQ(lockDepth(vi), 0U) << reply;
        if (status < 0) {
            EXPECT_EQ(errorOf(vi).code, status) << reply;
            EXPECT_EQ(timesRecorded(), 1U) << reply;
        } else {
            EXPECT_EQ(timesRecorded(), 0U) << reply;
        }
        EXPECT_EQ(KVX2800T_close(vi), VI_SUCCESS);
        vi = VI_NULL;
        EXPECT_EQ(openVisaSessions(), 0U);
    }
};

TEST_P(SafeErrors, LetNothingOutButAStatus)
{
    for (const std::string& reply : strangeReplies()) {
        callWith("DriverSetup=SafeErrors:1", reply);
        callWith("QueryInstrStatus=1,DriverSetup=Profile:Bench", reply);
    }
}

INSTANTIATE_TEST_SUITE_P(Functions, SafeErrors, testing::ValuesIn(everyCall()),
                         [](const auto& call) { return std::to_string(call.index) + "_" + call.param.name; });

} // namespace
