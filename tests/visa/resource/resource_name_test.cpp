#include "tests/support/visa/visa_fixture.h"

#include <gmock/gmock.h>

#include <array>
#include <ostream>
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
    for (const char* resource : {"VXI0::1::INSTR", "PXI0::1::INSTR", "GPIB::INTFC", "TCPIP::SERVANT", "GPIB::5",
                                 "GPIB0::0::INSTR", "gpib1::30::31::instr"})
        EXPECT_EQ(statusOf(resource), VI_ERROR_LIBRARY_NFOUND) << resource;
}

TEST_F(VisaResourceName, UsbInstrumentsThatAreNotPluggedInAreNotFound)
{
    for (const char* resource : {"USB::0x1234::0x5678::SN1", "USB0::0x1234::0xABCD::SN-1::INSTR",
                                 "usb2::4660::22136::A::0", "USB0::0x1::0x2::A::1::INSTR"})
        EXPECT_EQ(statusOf(resource), KVX_STATUS_OF_ABSENT_USB) << resource;
}

TEST_F(VisaResourceName, LanInstrumentsAreUnderstood)
{
    for (const char* resource : {"TCPIP::192.0.2.1", "TCPIP0::host.example::INSTR", "TCPIP::h::inst0::INSTR",
                                 "tcpip3::h::hislip0,4880::instr", "TCPIP::[fe80::1]::hislip0", "TCPIP::[::1]::INSTR",
                                 "TCPIP::h::gpib0,5", "TCPIP::h::GPIB0,5,96::INSTR", "TCPIP::h::a[b::INSTR"})
        EXPECT_TRUE(isLanInstrument(resource)) << resource;
}

struct ParsedName
{
    ViUInt16 interfaceType;
    ViUInt16 board;
    std::string resourceClass;
    std::string full;
    bool operator==(const ParsedName&) const = default;
};

void PrintTo(const ParsedName& name, std::ostream* out)
{
    *out << name.interfaceType << ' ' << name.board << ' ' << name.resourceClass << ' ' << name.full;
}

class VisaParse : public VisaResourceName
{
protected:
    ParsedName parse(const std::string& resource)
    {
        ParsedName name{17, 17, {}, {}};
        std::array<ViChar, 256> resourceClass{};
        std::array<ViChar, 256> full{};
        std::array<ViChar, 256> alias{'x'};
        EXPECT_EQ(viParseRsrcEx(manager_, resource.c_str(), &name.interfaceType, &name.board, resourceClass.data(),
                                full.data(), alias.data()),
                  VI_SUCCESS)
            << resource;
        EXPECT_STREQ(alias.data(), "");
        name.resourceClass = resourceClass.data();
        name.full = full.data();
        ViUInt16 type = 17;
        ViUInt16 board = 17;
        EXPECT_EQ(viParseRsrc(manager_, resource.c_str(), &type, &board), VI_SUCCESS);
        EXPECT_EQ(type, name.interfaceType);
        EXPECT_EQ(board, name.board);
        return name;
    }
};

TEST_F(VisaParse, TellsInterfaceClassAndFullName)
{
    struct Row
    {
        const char* resource;
        ParsedName name;
    };
    for (const auto& [resource, name] : std::vector<Row>{
             {"asrl2", {VI_INTF_ASRL, 2, "INSTR", "ASRL2::INSTR"}},
             {"ASRL", {VI_INTF_ASRL, 0, "INSTR", "ASRL0::INSTR"}},
             {"asrl/dev/ttyUSB0", {VI_INTF_ASRL, 0, "INSTR", "ASRL/dev/ttyUSB0::INSTR"}},
             {"gpib::5", {VI_INTF_GPIB, 0, "INSTR", "GPIB0::5::INSTR"}},
             {"GPIB1::30::31::instr", {VI_INTF_GPIB, 1, "INSTR", "GPIB1::30::31::INSTR"}},
             {"gpib2::intfc", {VI_INTF_GPIB, 2, "INTFC", "GPIB2::INTFC"}},
             {"GPIB1::SERVANT", {VI_INTF_GPIB, 1, "SERVANT", "GPIB1::SERVANT"}},
             {"vxi::1", {VI_INTF_VXI, 0, "INSTR", "VXI0::1::INSTR"}},
             {"VXI3::255::INSTR", {VI_INTF_VXI, 3, "INSTR", "VXI3::255::INSTR"}},
             {"VXI::MEMACC", {VI_INTF_VXI, 0, "MEMACC", "VXI0::MEMACC"}},
             {"VXI::1::BACKPLANE", {VI_INTF_VXI, 0, "BACKPLANE", "VXI0::1::BACKPLANE"}},
             {"VXI::BACKPLANE", {VI_INTF_VXI, 0, "BACKPLANE", "VXI0::BACKPLANE"}},
             {"VXI0::SERVANT", {VI_INTF_VXI, 0, "SERVANT", "VXI0::SERVANT"}},
             {"gpib-vxi::9::instr", {VI_INTF_GPIB_VXI, 0, "INSTR", "GPIB-VXI0::9::INSTR"}},
             {"GPIB-VXI1::MEMACC", {VI_INTF_GPIB_VXI, 1, "MEMACC", "GPIB-VXI1::MEMACC"}},
             {"GPIB-VXI2::BACKPLANE", {VI_INTF_GPIB_VXI, 2, "BACKPLANE", "GPIB-VXI2::BACKPLANE"}},
             {"PXI::21", {VI_INTF_PXI, 0, "INSTR", "PXI0::21::0::INSTR"}},
             {"PXI2::21::7::INSTR", {VI_INTF_PXI, 2, "INSTR", "PXI2::21::7::INSTR"}},
             {"PXI0::3-18::INSTR", {VI_INTF_PXI, 0, "INSTR", "PXI0::3-18.0::INSTR"}},
             {"PXI0::3-18.2", {VI_INTF_PXI, 0, "INSTR", "PXI0::3-18.2::INSTR"}},
             {"pxi0::chassis1::slot4", {VI_INTF_PXI, 0, "INSTR", "PXI0::CHASSIS1::SLOT4::FUNC0::INSTR"}},
             {"PXI0::CHASSIS1::SLOT4::INDEX1::INSTR",
              {VI_INTF_PXI, 0, "INSTR", "PXI0::CHASSIS1::SLOT4::INDEX1::INSTR"}},
             {"PXI0::CHASSIS12::SLOT4::FUNC7", {VI_INTF_PXI, 0, "INSTR", "PXI0::CHASSIS12::SLOT4::FUNC7::INSTR"}},
             {"PXI0::MEMACC", {VI_INTF_PXI, 0, "MEMACC", "PXI0::MEMACC"}},
             {"PXI0::1::BACKPLANE", {VI_INTF_PXI, 0, "BACKPLANE", "PXI0::1::BACKPLANE"}},
             {"tcpip::h", {VI_INTF_TCPIP, 0, "INSTR", "TCPIP0::h::inst0::INSTR"}},
             {"TCPIP1::[fe80::1]::hislip0,4881", {VI_INTF_TCPIP, 1, "INSTR", "TCPIP1::[fe80::1]::hislip0,4881::INSTR"}},
             {"TCPIP::@h::5025::socket", {VI_INTF_TCPIP, 0, "SOCKET", "TCPIP0::@h::5025::SOCKET"}},
             {"TCPIP::servant", {VI_INTF_TCPIP, 0, "SERVANT", "TCPIP0::inst0::SERVANT"}},
             {"TCPIP2::gpib0::SERVANT", {VI_INTF_TCPIP, 2, "SERVANT", "TCPIP2::gpib0::SERVANT"}},
             {"usb::4660::22136::A", {VI_INTF_USB, 0, "INSTR", "USB0::0x1234::0x5678::A::INSTR"}},
             {"USB3::0xa::0XFFFF::SN-1::12::INSTR", {VI_INTF_USB, 3, "INSTR", "USB3::0x000A::0xFFFF::SN-1::12::INSTR"}},
         })
        EXPECT_EQ(parse(resource), name);
}

TEST_F(VisaParse, TextsAreOptionalAndNumbersAreNot)
{
    ViUInt16 type = 17;
    ViUInt16 board = 17;
    EXPECT_EQ(viParseRsrcEx(manager_, "USB2::1::2::A", &type, &board, nullptr, nullptr, nullptr), VI_SUCCESS);
    EXPECT_EQ(type, VI_INTF_USB);
    EXPECT_EQ(board, 2);
    EXPECT_EQ(viParseRsrc(manager_, "ASRL1", nullptr, &board), VI_ERROR_INV_PARAMETER);
    EXPECT_EQ(viParseRsrc(manager_, "ASRL1", &type, nullptr), VI_ERROR_INV_PARAMETER);
}

TEST_F(VisaParse, RefusesWhatOpeningRefuses)
{
    ViUInt16 type = 17;
    ViUInt16 board = 18;
    for (const char* resource : {"", "COM1", "ASRL1::SOCKET", "PXI0::32", "TCPIP::h::0::SOCKET"})
        EXPECT_EQ(viParseRsrc(manager_, resource, &type, &board), VI_ERROR_INV_RSRC_NAME) << resource;
    EXPECT_EQ(viParseRsrc(manager_, nullptr, &type, &board), VI_ERROR_INV_RSRC_NAME);
    EXPECT_EQ(viParseRsrc(VI_NULL, "ASRL1", &type, &board), VI_ERROR_INV_OBJECT);
    EXPECT_EQ(type, 17);
    EXPECT_EQ(board, 18);
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
                                                                "GPIB::1::MEMACC",
                                                                "GPIB-VXI0::SERVANT",
                                                                "GPIB-VXI",
                                                                "GPIB-1",
                                                                "VXI0",
                                                                "VXI0::256",
                                                                "VXI0::1::2::INSTR",
                                                                "VXI0::x::BACKPLANE",
                                                                "VXI0::INTFC",
                                                                "PXI0::INSTR",
                                                                "PXI0::32",
                                                                "PXI0::1::8",
                                                                "PXI0::1-32",
                                                                "PXI0::256-1",
                                                                "PXI0::1-2.8",
                                                                "PXI0::1-2.",
                                                                "PXI0::1-",
                                                                "PXI0::-1",
                                                                "PXI0::1.2-3",
                                                                "PXI0::1-2::3",
                                                                "PXI0::CHASSIS1",
                                                                "PXI0::CHASSIS1::4",
                                                                "PXI0::SLOT4::CHASSIS1",
                                                                "PXI0::CHASSIS1::SLOT4::FUNC8",
                                                                "PXI0::CHASSIS1::SLOT4::INDEX",
                                                                "PXI0::CHASSIS1::SLOT4::INDEX1::FUNC1",
                                                                "PXI0::BACKPLANE",
                                                                "TCPIP::a::b::SERVANT",
                                                                "TCPIP::a,1::SERVANT",
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
                                         "PXI0::CHASSIS1::SLOT2::INDEX3::INSTR",
                                         "GPIB-VXI0::9::BACKPLANE",
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
