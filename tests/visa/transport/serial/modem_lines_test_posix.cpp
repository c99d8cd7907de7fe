// The lines of a serial port, on a host that has the port's bits in memory.
#include "visa/transport/serial/serial_native_posix.h"

#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>

#include <gtest/gtest.h>

namespace
{

/// The descriptor of the port that is played here; the host has no such one.
constexpr int kPort = 1234567;

int& portLines()
{
    static int bits = 0;
    return bits;
}

bool changeLines(unsigned long request, int bits)
{
    switch (request) {
    case TIOCMBIS:
        portLines() |= bits;
        return true;
    case TIOCMBIC:
        portLines() &= ~bits;
        return true;
    default:
        return false;
    }
}

} // namespace

/// In place of the host's: for the port, the requests about its lines; for the rest, as ever.
extern "C" int ioctl(int fd, unsigned long request, ...) noexcept // NOLINT(cert-dcl50-cpp): the host's own form
{
    std::va_list arguments;
    va_start(arguments, request);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    if (fd != kPort)
        return static_cast<int>(::syscall(SYS_ioctl, fd, request, argument));
    int& bits = *static_cast<int*>(argument);
    if (request == TIOCMGET)
        bits = portLines();
    else if (!changeLines(request, bits)) {
        errno = ENOTTY;
        return -1;
    }
    return 0;
}

namespace
{

struct Line
{
    ViAttr attribute;
    int bit;
};

class SerialModemLine : public testing::TestWithParam<Line>
{
protected:
    void SetUp() override { portLines() = 0; }
};

TEST_P(SerialModemLine, IsItsOwnBitOfThePorts)
{
    const auto [attribute, bit] = GetParam();
    EXPECT_EQ(visa::modemLine(kPort, attribute), static_cast<ViUInt32>(VI_STATE_UNASSERTED));
    portLines() = bit;
    EXPECT_EQ(visa::modemLine(kPort, attribute), static_cast<ViUInt32>(VI_STATE_ASSERTED));
    portLines() = ~bit;
    EXPECT_EQ(visa::modemLine(kPort, attribute), static_cast<ViUInt32>(VI_STATE_UNASSERTED));
    portLines() = ~0;
    EXPECT_EQ(visa::modemLine(kPort, attribute), static_cast<ViUInt32>(VI_STATE_ASSERTED));
}

INSTANTIATE_TEST_SUITE_P(Lines, SerialModemLine,
                         testing::Values(Line{VI_ATTR_ASRL_CTS_STATE, TIOCM_CTS},
                                         Line{VI_ATTR_ASRL_DCD_STATE, TIOCM_CD},
                                         Line{VI_ATTR_ASRL_DSR_STATE, TIOCM_DSR}, Line{VI_ATTR_ASRL_RI_STATE, TIOCM_RI},
                                         Line{VI_ATTR_ASRL_DTR_STATE, TIOCM_DTR},
                                         Line{VI_ATTR_ASRL_RTS_STATE, TIOCM_RTS}));

class SerialDrivenLine : public SerialModemLine
{
};

TEST_P(SerialDrivenLine, IsSetWithoutTheOthers)
{
    const auto [attribute, bit] = GetParam();
    portLines() = TIOCM_CTS | TIOCM_DSR;
    EXPECT_EQ(visa::setModemLine(kPort, attribute, true), visa::TransferState::Done);
    EXPECT_EQ(portLines(), TIOCM_CTS | TIOCM_DSR | bit);
    EXPECT_EQ(visa::setModemLine(kPort, attribute, false), visa::TransferState::Done);
    EXPECT_EQ(portLines(), TIOCM_CTS | TIOCM_DSR);
}

INSTANTIATE_TEST_SUITE_P(Lines, SerialDrivenLine,
                         testing::Values(Line{VI_ATTR_ASRL_DTR_STATE, TIOCM_DTR},
                                         Line{VI_ATTR_ASRL_RTS_STATE, TIOCM_RTS}));

TEST(SerialModemLines, OtherAttributesAndPortsThatAreNoneAreUnknown)
{
    constexpr auto kUnknown = static_cast<ViUInt32>(VI_STATE_UNKNOWN);
    portLines() = ~0;
    EXPECT_EQ(visa::modemLine(kPort, VI_ATTR_ASRL_BAUD), kUnknown);
    EXPECT_EQ(visa::modemLine(-1, VI_ATTR_ASRL_CTS_STATE), kUnknown);
    EXPECT_EQ(visa::setModemLine(-1, VI_ATTR_ASRL_DTR_STATE, true), visa::TransferState::Failed);
}

} // namespace
