#include "tests/support/processes/finished_program.h"
#include "tests/support/processes/virtual_instrument_process.h"

#include <gtest/gtest.h>

namespace
{

using namespace kvxtest;

TEST(HislipServer, DoesWhatAClientThatKnowsTheStandardChecks)
{
    const auto outcome = runProgram(KVX_CLIENT_PYTHON, {"-B", KVX_CLIENT_SCRIPT, virtualInstrumentPath()});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errorOutput;
}

} // namespace
