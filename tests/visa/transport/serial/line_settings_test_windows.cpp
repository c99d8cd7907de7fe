#include "platform/common/windows_handle.h"
#include "tests/support/visa/serial_peer.h"
#include "tests/support/visa/visa_fixture.h"

#include <string>

namespace
{

using kvxtest::attribute;
using kvxtest::SerialPeer;

class VisaPort : public kvxtest::VisaTest
{
};

// Drivers refuse 1.5 stop bits with other than 5 data bits.
TEST_F(VisaPort, StartsWithItsDefaultsWhateverItsLastUserLeft)
{
    const SerialPeer peer;
    ViSession session = open(peer.resource());
    EXPECT_EQ(viSetAttribute(session, VI_ATTR_ASRL_BAUD, 300), VI_SUCCESS);
    EXPECT_EQ(viSetAttribute(session, VI_ATTR_ASRL_DATA_BITS, 5), VI_SUCCESS);
    EXPECT_EQ(viSetAttribute(session, VI_ATTR_ASRL_STOP_BITS, VI_ASRL_STOP_ONE5), VI_SUCCESS);
    EXPECT_EQ(viSetAttribute(session, VI_ATTR_ASRL_PARITY, VI_ASRL_PAR_MARK), VI_SUCCESS);
    EXPECT_EQ(viClose(session), VI_SUCCESS);

    session = open(peer.resource());
    EXPECT_EQ(attribute<ViUInt16>(session, VI_ATTR_ASRL_DATA_BITS), 8);
    EXPECT_EQ(attribute<ViUInt16>(session, VI_ATTR_ASRL_STOP_BITS), VI_ASRL_STOP_ONE);
    EXPECT_EQ(attribute<ViUInt16>(session, VI_ATTR_ASRL_PARITY), VI_ASRL_PAR_NONE);
    EXPECT_EQ(attribute<ViUInt32>(session, VI_ATTR_ASRL_BAUD), 9600U);
    EXPECT_EQ(viClose(session), VI_SUCCESS);

    // What the port itself has now.
    const std::wstring path = L"\\\\.\\COM" + std::to_wstring(peer.board());
    const auto port = platform::open(path, {GENERIC_READ | GENERIC_WRITE, 0, OPEN_EXISTING, 0});
    ASSERT_NE(port, nullptr);
    DCB line{};
    line.DCBlength = sizeof line;
    EXPECT_NE(GetCommState(port.get(), &line), 0);
    EXPECT_EQ(line.BaudRate, static_cast<DWORD>(CBR_9600));
    EXPECT_EQ(line.ByteSize, 8);
    EXPECT_EQ(line.StopBits, ONESTOPBIT);
    EXPECT_EQ(line.Parity, NOPARITY);
}

} // namespace
