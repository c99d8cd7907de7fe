#include "tests/support/comma_locale.h"

#include "base/option_grammar.h"
#include "instrument/command_text.h"
#include "instrument/kvx2800t.h"
#include "instrument/reply_parsing.h"
#include "tests/support/driver/operation_table.h"
#include "tests/support/driver/scripted_connection.h"
#include "tests/support/thrown.h"

#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using kvxtest::CommaLocale;
using kvxtest::ScriptedConnection;
using kvxtest::throwsExactly;

class InACommaLocale : public testing::Test
{
public:
    static void SetUpTestSuite() { sharedLocale = std::make_unique<CommaLocale>(); }
    static void TearDownTestSuite() { sharedLocale.reset(); }

    void SetUp() override
    {
        if (!sharedLocale->problem().empty())
            GTEST_SKIP() << sharedLocale->problem();
        char half[8];
        std::snprintf(half, sizeof half, "%.1f", 0.5);
        ASSERT_STREQ(half, "0,5");
    }

private:
    static inline std::unique_ptr<CommaLocale> sharedLocale;
};

TEST_F(InACommaLocale, CommandsKeepTheDecimalPoint)
{
    std::string line;
    TSRO::appendArguments(line, 5.25, ViInt32{1234567}, -1234567.5);
    EXPECT_EQ(line, " 5.250000,1234567,-1234567.500000");
}

TEST_F(InACommaLocale, RepliesAreReadWithTheDecimalPoint)
{
    EXPECT_EQ(TSRO::parseDouble("1.5"), 1.5);
    EXPECT_EQ(TSRO::parseDouble("0x1.8p1"), 3.0);
    EXPECT_EQ(TSRO::parseDouble("1,5"), 1.0);
    EXPECT_EQ(TSRO::parseInt("1.234"), 1);
    EXPECT_EQ(TSRO::parseLong("1.234"), 1);
    EXPECT_TRUE(throwsExactly<std::invalid_argument>("invalid stod argument", [] { TSRO::parseDouble(",5"); }));
}

TEST_F(InACommaLocale, EveryOperationSendsAndReadsTheSameBytes)
{
    for (const kvxtest::Operation& operation : kvxtest::operations()) {
        SCOPED_TRACE(operation.name);
        const auto connection = std::make_shared<ScriptedConnection>();
        TSRO::KVX2800T instrument(portOn(connection));
        connection->answer(operation.reply);
        kvxtest::Values outputs;
        EXPECT_EQ(operation.run(instrument, outputs), 0);
        EXPECT_EQ(connection->written, std::vector<std::string>{operation.line});
        if (operation.isQuery()) {
            EXPECT_EQ(outputs, operation.results);
        }
    }
}

TEST_F(InACommaLocale, LettersOutsideASCIIStayAsTheyAre)
{
    EXPECT_EQ(base::lowerCased("\xC3\x84\xC4Z"), "\xC3\x84\xC4z");
}

} // namespace
