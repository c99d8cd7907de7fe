// Arbitrary replies to every operation that asks: only the documented statuses, exceptions and outputs.

#include "instrument/kvx2800t.h"

#include "tests/support/driver/operation_table.h"
#include "tests/support/driver/reply_oracle.h"
#include "tests/support/driver/scripted_connection.h"
#include "tests/support/driver/visa_statuses.h"

#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace
{

using kvxtest::expectedOutcome;
using kvxtest::kTimedOut;
using kvxtest::Operation;
using kvxtest::Outcome;
using kvxtest::outcomeOf;
using kvxtest::portOn;
using kvxtest::ScriptedConnection;

constexpr ViStatus kReadError = static_cast<ViStatus>(0xBFFA4214);
constexpr ViStatus kCountReached = 0x3FFF0006;

class Replies
{
public:
    explicit Replies(const Operation& query) : query_(query) {}

    std::string next()
    {
        std::string reply = below(3) == 0 ? query_.reply.substr(0, below(query_.reply.size() + 1)) : std::string();
        for (std::size_t count = below(7); count > 0; --count)
            reply += piece();
        if (below(4) == 0)
            reply.insert(below(reply.size() + 1), 1, static_cast<char>(below(256)));
        return reply;
    }

    ViStatus status()
    {
        static constexpr ViStatus kStatuses[] = {VI_SUCCESS, VI_SUCCESS, VI_SUCCESS, kCountReached, kTimedOut};
        return kStatuses[below(std::size(kStatuses))];
    }

private:
    std::size_t below(std::size_t count) { return std::uniform_int_distribution<std::size_t>(0, count - 1)(random_); }

    std::string piece()
    {
        static const std::vector<std::string> kPieces = {
            "ON", "OFF", "1",          "0",  "5.000000", "12.5", "-113", "\"No error\"", ",", ",",
            "\r", "\n",  "9999999999", "1e", "308",      "nan",  "0x",   "-inf",         " ", ""};
        if (below(50) == 0)
            return std::string(2000, 'x');
        const auto& keywords = query_.fields.front().keywords;
        return !keywords.empty() && below(4) == 0 ? keywords[below(keywords.size())].first
                                                  : kPieces[below(kPieces.size())];
    }

    const Operation& query_;
    std::mt19937 random_{20240611};
};

class ArbitraryReplies : public testing::TestWithParam<Operation>
{
};

TEST_P(ArbitraryReplies, GiveDocumentedResultsAndNothingElse)
{
    const Operation& query = GetParam();
    const auto connection = std::make_shared<ScriptedConnection>();
    TSRO::KVX2800T instrument(portOn(connection));
    Replies replies(query);
    for (int i = 0; i < 3000 && !HasFailure(); ++i) {
        const std::string reply = replies.next();
        const ViStatus readStatus = replies.status();
        connection->replies.clear();
        connection->answer(reply, readStatus);
        const Outcome expected =
            readStatus < 0 ? Outcome{.status = kReadError, .outputs = query.before} : expectedOutcome(query, reply);
        EXPECT_EQ(outcomeOf(query, instrument), expected) << testing::PrintToString(reply);
    }
}

INSTANTIATE_TEST_SUITE_P(Operations, ArbitraryReplies, testing::ValuesIn(kvxtest::queries()),
                         [](const testing::TestParamInfo<Operation>& query) { return query.param.name; });

} // namespace
