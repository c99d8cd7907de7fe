// The commands that run often, from the operation down to VISA: none of them allocates.

#include "instrument/kvx2800t.h"

#include "tests/support/allocation_count.h"

#include <cstring>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace
{

using kvxtest::allocationCount;

std::string_view nextReply;

} // namespace

// ---- A VISA that answers with the next reply

ViStatus _VI_FUNC viOpenDefaultRM(ViPSession vi)
{
    *vi = 1;
    return VI_SUCCESS;
}

ViStatus _VI_FUNC viOpen(ViSession, ViConstRsrc, ViAccessMode, ViUInt32, ViPSession vi)
{
    *vi = 2;
    return VI_SUCCESS;
}

ViStatus _VI_FUNC viClose(ViObject)
{
    return VI_SUCCESS;
}

ViStatus _VI_FUNC viSetAttribute(ViObject, ViAttr, ViAttrState)
{
    return VI_SUCCESS;
}

ViStatus _VI_FUNC viSetBuf(ViSession, ViUInt16, ViUInt32)
{
    return VI_SUCCESS;
}

ViStatus _VI_FUNC viWrite(ViSession, ViConstBuf, ViUInt32 count, ViPUInt32 written)
{
    *written = count;
    return VI_SUCCESS;
}

ViStatus _VI_FUNC viRead(ViSession, ViPBuf buffer, ViUInt32, ViPUInt32 count)
{
    std::memcpy(buffer, nextReply.data(), nextReply.size());
    *count = static_cast<ViUInt32>(nextReply.size());
    return VI_SUCCESS;
}

namespace
{

struct Command
{
    const char* name;
    std::string_view reply;
    ViStatus (*run)(TSRO::InstBase& instrument);
};

void PrintTo(const Command& command, std::ostream* stream)
{
    *stream << command.name;
}

class FrequentCommand : public testing::TestWithParam<Command>
{
};

TEST_P(FrequentCommand, AllocatesNothingOnceAConnectionIsInUse)
{
    TSRO::KVX2800T instrument;
    nextReply = "Tessaro Instruments,KVX2833T,VIRT0000001,V1.00\n";
    ASSERT_EQ(instrument.open("TCPIP0::127.0.0.1::5025::SOCKET", ""), 0);
    nextReply = GetParam().reply;
    // The buffers of the connection grow with the first commands.
    ASSERT_EQ(GetParam().run(instrument), 0);
    const std::size_t before = allocationCount();
    const ViStatus status = GetParam().run(instrument);
    const std::size_t after = allocationCount();
    EXPECT_EQ(status, 0);
    EXPECT_EQ(after - before, 0U);
}

INSTANTIATE_TEST_SUITE_P(
    Operations, FrequentCommand,
    testing::Values(Command{"setVoltageLevel", "", [](TSRO::InstBase& i) { return i.setVoltageLevel(3, 5.0); }},
                    Command{"voltageLevel", "5.000000\n",
                            [](TSRO::InstBase& i) {
                                double volts = 0.0;
                                return i.voltageLevel(3, volts);
                            }},
                    Command{"setCurrentLevel", "", [](TSRO::InstBase& i) { return i.setCurrentLevel(4, 2.5); }},
                    Command{"currentLevel", "2.500000\n",
                            [](TSRO::InstBase& i) {
                                double amperes = 0.0;
                                return i.currentLevel(4, amperes);
                            }},
                    Command{"setOutputEnabled", "", [](TSRO::InstBase& i) { return i.setOutputEnabled(1, true); }},
                    Command{"outputEnabled", "1\n",
                            [](TSRO::InstBase& i) {
                                bool enabled = false;
                                return i.outputEnabled(1, enabled);
                            }},
                    Command{"questionableCondition", "2\n",
                            [](TSRO::InstBase& i) {
                                ViInt32 value = 0;
                                return i.questionableCondition(2, value);
                            }},
                    Command{"measureVoltage", "5.000\n",
                            [](TSRO::InstBase& i) {
                                double volts = 0.0;
                                return i.measureVoltage(1, volts);
                            }}),
    [](const testing::TestParamInfo<Command>& command) { return std::string(command.param.name); });

TEST(AllocationCount, SeesAnAllocation)
{
    const std::size_t before = allocationCount();
    // A direct call: a compiler may leave a new expression out.
    void* const memory = ::operator new(100);
    EXPECT_EQ(allocationCount() - before, 1U);
    ::operator delete(memory);
}

} // namespace
