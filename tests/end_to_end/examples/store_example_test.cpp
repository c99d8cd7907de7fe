#include "tests/support/platform/store_file.h"
#include "tests/support/processes/finished_program.h"

#include "tests/support/processes/virtual_instrument_process.h"

#include <gtest/gtest.h>

#include <string>

namespace kvxtest
{
namespace
{

TEST(StoreExample, OpensByItsLogicalName)
{
    const VirtualInstrumentProcess instrument;
    const StoreFile store(instrument.resource());
    const FinishedProgram program =
        runProgram(KVX_ALL_ATTRIBUTES, {"BenchSupply"}, {{"IVI_MASTER_STORE", store.path()}});
    EXPECT_EQ(program.exitCode, 0);
    EXPECT_EQ(program.errorOutput, "");
    const std::string session = "\nQUERY_INSTRUMENT_STATUS                  true\n"
                                "CACHE                                    false\n"
                                "SIMULATE                                 false\n"
                                "RECORD_COERCIONS                         false\n"
                                "INTERCHANGE_CHECK                        false\n"
                                "LOGICAL_NAME                             \"BenchSupply\"\n"
                                "IO_RESOURCE_DESCRIPTOR                   \"" +
                                instrument.resource() + "\"\n";
    EXPECT_NE(program.output.find(session), std::string::npos) << program.output;
}

TEST(StoreExample, AnotherNameIsNoInstrument)
{
    const VirtualInstrumentProcess instrument;
    const StoreFile store(instrument.resource());
    EXPECT_EQ(runProgram(KVX_ALL_ATTRIBUTES, {"Banana"}, {{"IVI_MASTER_STORE", store.path()}}),
              (FinishedProgram{1, "",
                               "all_attributes: 0xBFFA4214 I/O error.  Insufficient location information or resource "
                               "not present in the system\n"}));
}

} // namespace
} // namespace kvxtest
