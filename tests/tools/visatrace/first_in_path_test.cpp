#include "tests/support/processes/finished_program.h"
#include "tests/support/temporary_folder.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <string>

namespace
{

using namespace kvxtest;
using testing::HasSubstr;

/// Folders with a library that a program finds as libvisa.so.
class VisaTraceInThePlaceOfVisa : public testing::Test
{
protected:
    VisaTraceInThePlaceOfVisa()
    {
        std::filesystem::create_directory(folder_ / "trace");
        std::filesystem::create_directory(folder_ / "visa");
        std::filesystem::copy_file(KVX_VISATRACE, folder_ / "trace/libvisa.so");
    }

    /// A program that loads libvisa.so and opens a resource manager.
    FinishedProgram run() const
    {
        const std::string folders = (folder_ / "trace") + ':' + (folder_ / "visa");
        return runProgram(KVX_OPENS_VISA, {}, {{"LD_LIBRARY_PATH", folders}, {"KVX_VISATRACE_FILE", folder_ / "log"}});
    }

    TemporaryFolder folder_;
};

TEST_F(VisaTraceInThePlaceOfVisa, ForwardsToTheNextInTheLoadersPath)
{
    for (const char* const name : {"visa/libvisa.so", "visa/libvisa.so.0"}) {
        std::filesystem::copy_file(KVX_RECORDING_VISA, folder_ / name);
        EXPECT_EQ(run(), (FinishedProgram{0, "0x00000000\n", ""})) << name;
        std::filesystem::remove(folder_ / name);
    }
}

TEST_F(VisaTraceInThePlaceOfVisa, IsNotForwardedToByItself)
{
    std::filesystem::copy_file(KVX_VISATRACE, folder_ / "visa/libvisa.so.0");
    EXPECT_EQ(run(), (FinishedProgram{0, "0xBFFF009E\n", ""}));
}

} // namespace
