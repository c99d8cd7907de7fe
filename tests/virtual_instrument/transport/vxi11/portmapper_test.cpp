#include "virtual_instrument/transport/vxi11/portmapper.h"

#include "tests/support/visa/rpc_bytes.h"

#include <gtest/gtest.h>

namespace
{

using namespace kvxvirtual::vxi11;
using kvxtest::words;

constexpr std::uint32_t kPortmapper = 100000;
constexpr std::uint32_t kTcp = 6;
constexpr std::uint32_t kUdp = 17;

const std::vector<PortMapping> kMappings{{0x0607AF, 1, 12345}};

std::string answered(Acceptance acceptance, std::uint32_t version, std::uint32_t procedure,
                     const std::string& arguments, std::uint32_t program = kPortmapper)
{
    const RpcAnswer answer =
        answerPortmapper(kvxvirtual::vxi11::RpcCall{1, program, version, procedure, arguments}, kMappings);
    EXPECT_EQ(answer.acceptance, acceptance);
    return answer.result;
}

TEST(Vxi11Portmapper, TellsThePortOfTheProgramThatItKnows)
{
    EXPECT_EQ(answered(Acceptance::Success, 2, 3, words({0x0607AF, 1, kTcp, 0})), words({12345}));
    EXPECT_EQ(answered(Acceptance::Success, 2, 3, words({0x0607AF, 2, kTcp, 0})), words({0}));
    EXPECT_EQ(answered(Acceptance::Success, 2, 3, words({0x0607AF, 1, kUdp, 0})), words({0}));
    EXPECT_EQ(answered(Acceptance::Success, 2, 3, words({0x0607B0, 1, kTcp, 0})), words({0}));
}

TEST(Vxi11Portmapper, ListsWhatItKnowsAndTakesNothingElse)
{
    EXPECT_EQ(answered(Acceptance::Success, 2, 0, ""), "");
    EXPECT_EQ(answered(Acceptance::Success, 2, 4, ""), words({1, 0x0607AF, 1, kTcp, 12345, 0}));
    EXPECT_EQ(answered(Acceptance::Success, 2, 1, words({1, 1, kTcp, 1})), words({0}));
    EXPECT_EQ(answered(Acceptance::Success, 2, 2, words({1, 1, kTcp, 1})), words({0}));
}

TEST(Vxi11Portmapper, RefusesWhatIsNotItsOwn)
{
    EXPECT_EQ(answered(Acceptance::ProgramUnavailable, 2, 3, "", kPortmapper + 1), "");
    EXPECT_EQ(answered(Acceptance::ProgramMismatch, 4, 3, ""), words({2, 2}));
    EXPECT_EQ(answered(Acceptance::ProcedureUnavailable, 2, 5, ""), "");
    EXPECT_EQ(answered(Acceptance::GarbageArguments, 2, 3, words({0x0607AF, 1})), "");
}

} // namespace
