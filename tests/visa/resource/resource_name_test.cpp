#include "tests/support/visa/visa_fixture.h"

#include <gmock/gmock.h>

#include <array>
#include <random>
#include <string>
#include <vector>

namespace
{

using testing::AnyOf;

class VisaResourceName : public kvxtest::VisaTest
{
protected:
    ViStatus statusOf(const std::string& resource)
    {
        ViSession session = 17;
        const ViStatus status = viOpen(manager_, resource.c_str(), VI_NULL, 1, &session);
        if (status < 0) {
            EXPECT_EQ(session, static_cast<ViSession>(VI_NULL)) << resource;
        } else {
            viClose(session);
        }
        return status;
    }

    /// To open one would reach out of this process.
    bool isLanInstrument(const std::string& resource)
    {
        ViUInt16 type = 0;
        ViUInt16 board = 0;
        std::array<ViChar, 256> resourceClass{};
        return viParseRsrcEx(manager_, resource.c_str(), &type, &board, resourceClass.data(), nullptr, nullptr) ==
                   VI_SUCCESS &&
               type == VI_INTF_TCPIP && std::string(resourceClass.data()) == "INSTR";
    }
};

TEST_F(VisaResourceName, KindsWithoutABackEndLackTheirLibrary)
{
    for (const char* resource : {"GPIB::5", "GPIB0::0::INSTR", "gpib1::30::31::instr"})
        EXPECT_EQ(statusOf(resource), VI_ERROR_LIBRARY_NFOUND) << resource;
}

TEST_F(VisaResourceName, LanInstrumentsAreUnderstood)
{
    for (const char* resource : {"TCPIP::192.0.2.1", "TCPIP0::host.example::INSTR", "TCPIP::h::inst0::INSTR",
                                 "tcpip3::h::hislip0,4880::instr", "TCPIP::[fe80::1]::hislip0", "TCPIP::[::1]::INSTR",
                                 "TCPIP::h::gpib0,5", "TCPIP::h::GPIB0,5,96::INSTR", "TCPIP::h::a[b::INSTR"})
        EXPECT_TRUE(isLanInstrument(resource)) << resource;
}

TEST_F(VisaResourceName, UsbInstrumentsThatAreNotPluggedInAreNotFound)
{
    for (const char* resource : {"USB::0x1234::0x5678::SN1", "USB0::0x1234::0xABCD::SN-1::INSTR",
                                 "usb2::4660::22136::A::0", "USB0::0x1::0x2::A::1::INSTR"})
        EXPECT_EQ(statusOf(resource), KVX_STATUS_OF_ABSENT_USB) << resource;
}

TEST_F(VisaResourceName, SecureConnectionsAreNeverOpenedInsecurely)
{
    for (const char* resource : {"TCPIP::@127.0.0.1::hislip0::INSTR", "TCPIP::user@127.0.0.1::5025::SOCKET",
                                 "TCPIP0::@[::1]::5025::SOCKET", "tcpip::cred@host"})
        EXPECT_EQ(statusOf(resource), VI_ERROR_INV_PROT) << resource;
}

TEST_F(VisaResourceName, MalformedStringsAreInvalidNames)
{
    const std::string overlong(100000, 'x');
    for (const std::string& resource : std::vector<std::string>{"",
                                                                "::",
                                                                ":",
                                                                "INSTR",
                                                                "COM1",
                                                                "PXI0::1::INSTR",
                                                                "VXI0::1::INSTR",
                                                                "ASRLx::INSTR",
                                                                "ASRL1::SOCKET",
                                                                "ASRL1::2::INSTR",
                                                                "ASRL-1",
                                                                "ASRL65536::INSTR",
                                                                "ASRL1::",
                                                                "ASRL/tmp/x",
                                                                "ASRL1 ::INSTR",
                                                                "GPIB",
                                                                "GPIB0",
                                                                "GPIB::31",
                                                                "GPIB::1::32",
                                                                "GPIB::1::2::3",
                                                                "GPIB::x",
                                                                "GPIB::1::INTFC",
                                                                "GPIB::::INSTR",
                                                                "USB::1::2",
                                                                "USB::0x1::0x2::",
                                                                "USB::0x1::0x2::A::x",
                                                                "USB::0x12345::0x2::A",
                                                                "USB::0x::0x2::A",
                                                                "USB::0x1::0x2::A::1::2",
                                                                "USB::0x1::0x2::A::RAW",
                                                                "TCPIP",
                                                                "TCPIP0",
                                                                "TCPIP::",
                                                                "TCPIP::INSTR::INSTR::",
                                                                "TCPIP::h::5025::SOCKET::INSTR",
                                                                "TCPIP::h::SOCKET",
                                                                "TCPIP::h::x::SOCKET",
                                                                "TCPIP::h::0::SOCKET",
                                                                "TCPIP::h::65536::SOCKET",
                                                                "TCPIP::h::-1::SOCKET",
                                                                "TCPIP::h::+1::SOCKET",
                                                                "TCPIP::h:: 1::SOCKET",
                                                                "TCPIP::::5025::SOCKET",
                                                                "TCPIP::a b::5025::SOCKET",
                                                                "TCPIP::h::5025::1::SOCKET",
                                                                "TCPIP::[::1::5025::SOCKET",
                                                                "TCPIP::[]::5025::SOCKET",
                                                                "TCPIP::[xyz]::5025::SOCKET",
                                                                "TCPIP::fe80::1::5025::SOCKET",
                                                                "TCPIP::@::5025::SOCKET",
                                                                "TCPIP::h::hislip0,::INSTR",
                                                                "TCPIP::h::hislip0,99999::INSTR",
                                                                "TCPIP::h::,4880",
                                                                "TCPIP::h::::INSTR",
                                                                "TCPIP::h::a::b::INSTR",
                                                                "TCPIP65536::h::5025::SOCKET",
                                                                "TCPIPx::h::5025::SOCKET",
                                                                overlong,
                                                                "ASRL" + overlong,
                                                                "ASRL/dev/" + overlong,
                                                                "TCPIP::" + overlong + "::5025::SOCKET",
                                                                "ASRL/dev/a\nb"})
        EXPECT_EQ(statusOf(resource), VI_ERROR_INV_RSRC_NAME) << resource.substr(0, 80);
}

TEST_F(VisaResourceName, ColonAtTheEndBelongsToNoName)
{
    for (const char* resource : {"ASRL/dev/ttyS0:", "USB::0x1::0x2::A:", "TCPIP::user:@h:", "TCPIP::h::inst0:"})
        EXPECT_EQ(statusOf(resource), VI_ERROR_INV_RSRC_NAME) << resource;
}

TEST_F(VisaResourceName, BracketThatIsNotClosedProtectsNothing)
{
    EXPECT_EQ(statusOf("USB::0x1::0x2::A[::0::INSTR"), KVX_STATUS_OF_ABSENT_USB);
}

TEST_F(VisaResourceName, NullNameIsInvalid)
{
    ViSession session = 17;
    EXPECT_EQ(viOpen(manager_, nullptr, VI_NULL, 0, &session), VI_ERROR_INV_RSRC_NAME);
    EXPECT_EQ(session, static_cast<ViSession>(VI_NULL));
}

TEST_F(VisaResourceName, MutatedStringsGiveADocumentedStatus)
{
    // Kinds that would reach out of this process are left out, so that a mutation never opens a connection elsewhere.
    const std::vector<std::string> seeds{"GPIB0::12::3::INSTR",
                                         "USB0::0x1234::0x5678::SN001::1::INSTR",
                                         "TCPIP0::[fe80::1]::hislip0,4880::INSTR",
                                         "TCPIP0::u@host::inst0::INSTR",
                                         "ASRL99::INSTR",
                                         "ASRL/dev/no-such-port::INSTR"};
    const std::string alphabet("::[]@,/0x9azAZ\x01\xFF .-");
    std::mt19937 random(20240607); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same strings each time
    const auto below = [&random](std::size_t limit) { return random() % limit; };
    for (int round = 0; round < 20000; ++round) {
        std::string name = seeds[below(seeds.size())];
        for (std::size_t change = 1 + below(4); change > 0 && !name.empty(); --change) {
            const std::size_t at = below(name.size());
            const char byte = alphabet[below(alphabet.size())];
            switch (below(4)) {
            case 0:
                name[at] = byte;
                break;
            case 1:
                name.insert(at, 1, byte);
                break;
            case 2:
                name.erase(at, 1 + below(3));
                break;
            default:
                name += name.substr(at);
                break;
            }
        }
        if (isLanInstrument(name))
            continue;
        EXPECT_THAT(statusOf(name), AnyOf(VI_ERROR_INV_RSRC_NAME, VI_ERROR_LIBRARY_NFOUND, VI_ERROR_INV_PROT,
                                          VI_ERROR_RSRC_NFOUND, VI_ERROR_RSRC_BUSY))
            << name;
    }
}

} // namespace
