// Arbitrary replies to every operation that asks: only the documented statuses and exceptions, and outputs that change
// with success alone.

#include "instrument/kvx2800t.h"

#include "scripted_connection.h"

#include <functional>
#include <memory>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <vector>

#include <gtest/gtest.h>

namespace
{

using kvxtest::portOn;
using kvxtest::ScriptedConnection;
using namespace TSRO;

constexpr ViStatus kTimedOut = static_cast<ViStatus>(0xBFFF0015);
constexpr ViStatus kMaxCount = 0x3FFF0006;
constexpr double kNumberBefore = -123456.75;
constexpr ViInt32 kIntegerBefore = -123456;

/// What may come out of a query, beside 0 and an I/O error.
struct Documented
{
    bool unexpectedResponse = false;
    /// The text of std::invalid_argument; the reply follows where `withReply` says so.
    std::string invalid = {};
    bool withReply = false;
    /// The text of std::out_of_range.
    std::string outOfRange = {};
};

const Documented kBoolean{.invalid = "Visa::parseBool Unknown ret:", .withReply = true};
const Documented kNumber{.invalid = "invalid stod argument", .outOfRange = "stod argument out of range"};
const Documented kInt{.invalid = "invalid stoi argument", .outOfRange = "stoi argument out of range"};
const Documented kLong{.invalid = "invalid stol argument", .outOfRange = "stol argument out of range"};
const Documented kKeyword{.unexpectedResponse = true};

/// The outputs of all queries.
struct Outputs
{
    bool boolean = true;
    double number = kNumberBefore;
    ViInt32 integer = kIntegerBefore;
    SourceMode mode = SourceMode::Parallel;
    std::string text = "before";

    bool operator==(const Outputs&) const = default;
};

struct Asking
{
    std::string name;
    std::function<ViStatus(KVX2800T&, Outputs&)> run;
    Documented documented;
};

const std::vector<Asking>& operations()
{
    static const std::vector<Asking> all = {
        {"EventStatus", [](KVX2800T& i, Outputs& o) { return i.eventStatus(o.integer); }, kLong},
        {"QuestionableCondition", [](KVX2800T& i, Outputs& o) { return i.questionableCondition(1, o.integer); }, kInt},
        {"QuestionableEvent", [](KVX2800T& i, Outputs& o) { return i.questionableEvent(1, o.integer); }, kInt},
        {"NextError", [](KVX2800T& i, Outputs& o) { return i.nextError(o.integer, o.text); }, kInt},
        {"SourceMode", [](KVX2800T& i, Outputs& o) { return i.sourceMode(o.mode); }, kKeyword},
        {"VoltageLevel", [](KVX2800T& i, Outputs& o) { return i.voltageLevel(1, o.number); }, kNumber},
        {"CurrentLevel", [](KVX2800T& i, Outputs& o) { return i.currentLevel(1, o.number); }, kNumber},
        {"CurrentProtectionLevel", [](KVX2800T& i, Outputs& o) { return i.currentProtectionLevel(1, o.number); },
         kNumber},
        {"CurrentProtectionEnabled", [](KVX2800T& i, Outputs& o) { return i.currentProtectionEnabled(1, o.boolean); },
         kBoolean},
        {"OutputEnabled", [](KVX2800T& i, Outputs& o) { return i.outputEnabled(1, o.boolean); }, kBoolean},
    };
    return all;
}

class Replies
{
public:
    explicit Replies(std::uint32_t seed) : random_(seed) {}

    std::string next()
    {
        std::string reply;
        for (std::size_t count = below(6); count > 0; --count)
            reply += piece();
        if (below(4) == 0)
            reply.insert(below(reply.size() + 1), 1, static_cast<char>(below(256)));
        return reply;
    }

    ViStatus status()
    {
        static constexpr ViStatus kStatuses[] = {VI_SUCCESS, VI_SUCCESS, VI_SUCCESS, kMaxCount, kTimedOut};
        return kStatuses[below(std::size(kStatuses))];
    }

private:
    std::size_t below(std::size_t count) { return std::uniform_int_distribution<std::size_t>(0, count - 1)(random_); }

    std::string piece()
    {
        static const std::vector<std::string> kPieces = {
            "ON",  "OFF",    "1",   "0",    "5.000000",   "12.5", "-113", "\"No error\"", ",",  ",",    "\r", "\n",
            "SER", "NORMAL", "PAR", "PARA", "9999999999", "1e",   "308",  "nan",          "0x", "-inf", " ",  ""};
        return below(50) == 0 ? std::string(2000, 'x') : kPieces[below(kPieces.size())];
    }

    std::mt19937 random_;
};

class ArbitraryReplies : public testing::TestWithParam<Asking>
{
public:
    /// Runs the operation; nothing when it left with a documented exception.
    std::optional<ViStatus> run(Outputs& outputs, const std::string& reply)
    {
        const Documented& documented = GetParam().documented;
        try {
            return GetParam().run(instrument, outputs);
        } catch (const std::exception& thrown) {
            const bool invalid = typeid(thrown) == typeid(std::invalid_argument) && !documented.invalid.empty() &&
                                 thrown.what() == textOf(documented, reply);
            const bool outOfRange = typeid(thrown) == typeid(std::out_of_range) && !documented.outOfRange.empty() &&
                                    thrown.what() == documented.outOfRange;
            EXPECT_TRUE(invalid || outOfRange) << typeid(thrown).name() << ": " << thrown.what();
            return std::nullopt;
        }
    }

    std::shared_ptr<ScriptedConnection> connection = std::make_shared<ScriptedConnection>();
    KVX2800T instrument{portOn(connection)};

private:
    /// As what() shows it: a NUL byte of the reply ends it.
    static std::string textOf(const Documented& documented, const std::string& reply)
    {
        const std::string text = documented.withReply ? documented.invalid + reply : documented.invalid;
        return text.substr(0, text.find('\0'));
    }
};

TEST_P(ArbitraryReplies, GiveDocumentedResultsAndNothingHalfDone)
{
    Replies replies(20240611);
    for (int i = 0; i < 10000 && !HasFailure(); ++i) {
        const std::string reply = replies.next();
        const ViStatus readStatus = replies.status();
        SCOPED_TRACE(testing::PrintToString(reply));
        connection->replies.clear();
        connection->written.clear();
        connection->answer(reply, readStatus);

        Outputs outputs;
        const auto status = run(outputs, reply);
        if (readStatus < 0) {
            EXPECT_EQ(status, kIoError);
        } else {
            EXPECT_TRUE(!status || *status == 0 ||
                        (GetParam().documented.unexpectedResponse && *status == kUnexpectedResponse));
        }
        if (!status || *status < 0) {
            EXPECT_EQ(outputs, Outputs());
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Operations, ArbitraryReplies, testing::ValuesIn(operations()),
                         [](const testing::TestParamInfo<Asking>& asking) { return asking.param.name; });

} // namespace
