#include "tests/support/visa/serial_peer.h"
#include "tests/support/visa/tcp_peer.h"
#include "tests/support/visa/visa_fixture.h"

#include <array>
#include <cstring>
#include <vector>

namespace
{

using kvxtest::attribute;
using kvxtest::SerialPeer;
using kvxtest::TcpPeer;
using kvxtest::textAttribute;

class VisaAttributes : public kvxtest::VisaTest
{
protected:
    void SetUp() override
    {
        VisaTest::SetUp();
        socket_ = open(tcp_.resource());
        serial_ = open(line_.resource());
    }

    TcpPeer tcp_;
    SerialPeer line_;
    ViSession socket_ = VI_NULL;
    ViSession serial_ = VI_NULL;
};

TEST_F(VisaAttributes, DefaultsOfEverySession)
{
    for (const ViSession session : {socket_, serial_}) {
        EXPECT_EQ(attribute<ViUInt32>(session, VI_ATTR_TMO_VALUE), 2000U);
        EXPECT_EQ(attribute<ViUInt8>(session, VI_ATTR_TERMCHAR), 0x0A);
        EXPECT_EQ(attribute<ViBoolean>(session, VI_ATTR_TERMCHAR_EN), VI_FALSE);
        EXPECT_EQ(attribute<ViBoolean>(session, VI_ATTR_SEND_END_EN), VI_TRUE);
        EXPECT_EQ(attribute<ViUInt16>(session, VI_ATTR_IO_PROT), VI_PROT_NORMAL);
        EXPECT_EQ(attribute<ViSession>(session, VI_ATTR_RM_SESSION), manager_);
    }
}

TEST_F(VisaAttributes, DefaultsAndFactsOfASocket)
{
    EXPECT_EQ(attribute<ViBoolean>(socket_, VI_ATTR_TCPIP_NODELAY), VI_TRUE);
    EXPECT_EQ(attribute<ViBoolean>(socket_, VI_ATTR_TCPIP_KEEPALIVE), VI_FALSE);
    EXPECT_EQ(textAttribute(socket_, VI_ATTR_TCPIP_ADDR), "127.0.0.1");
    EXPECT_EQ(textAttribute(socket_, VI_ATTR_TCPIP_HOSTNAME), "127.0.0.1");
    EXPECT_EQ(attribute<ViUInt16>(socket_, VI_ATTR_TCPIP_PORT), tcp_.port());
    EXPECT_EQ(textAttribute(socket_, VI_ATTR_RSRC_CLASS), "SOCKET");
    EXPECT_EQ(textAttribute(socket_, VI_ATTR_RSRC_NAME), tcp_.resource());
    EXPECT_EQ(attribute<ViUInt16>(socket_, VI_ATTR_INTF_TYPE), VI_INTF_TCPIP);
    EXPECT_EQ(attribute<ViUInt16>(socket_, VI_ATTR_INTF_NUM), 0);
}

TEST_F(VisaAttributes, DefaultsAndFactsOfASerialPort)
{
    EXPECT_EQ(attribute<ViBoolean>(serial_, VI_ATTR_SUPPRESS_END_EN), VI_FALSE);
    EXPECT_EQ(attribute<ViUInt32>(serial_, VI_ATTR_ASRL_BAUD), 9600U);
    EXPECT_EQ(attribute<ViUInt16>(serial_, VI_ATTR_ASRL_DATA_BITS), 8);
    EXPECT_EQ(attribute<ViUInt16>(serial_, VI_ATTR_ASRL_PARITY), VI_ASRL_PAR_NONE);
    EXPECT_EQ(attribute<ViUInt16>(serial_, VI_ATTR_ASRL_STOP_BITS), VI_ASRL_STOP_ONE);
    EXPECT_EQ(attribute<ViUInt16>(serial_, VI_ATTR_ASRL_FLOW_CNTRL), VI_ASRL_FLOW_NONE);
    EXPECT_EQ(attribute<ViUInt16>(serial_, VI_ATTR_ASRL_END_IN), VI_ASRL_END_TERMCHAR);
    EXPECT_EQ(attribute<ViUInt16>(serial_, VI_ATTR_ASRL_END_OUT), VI_ASRL_END_NONE);
    EXPECT_EQ(attribute<ViUInt32>(serial_, VI_ATTR_ASRL_AVAIL_NUM), 0U);
    EXPECT_EQ(textAttribute(serial_, VI_ATTR_RSRC_CLASS), "INSTR");
    EXPECT_EQ(textAttribute(serial_, VI_ATTR_RSRC_NAME), line_.resource());
    EXPECT_EQ(attribute<ViUInt16>(serial_, VI_ATTR_INTF_TYPE), VI_INTF_ASRL);
    EXPECT_EQ(attribute<ViUInt16>(serial_, VI_ATTR_INTF_NUM), line_.board());
}

TEST_F(VisaAttributes, ResourceManagerHasItsOwn)
{
    EXPECT_EQ(attribute<ViSession>(manager_, VI_ATTR_RM_SESSION), static_cast<ViSession>(VI_NULL));
    EXPECT_EQ(textAttribute(manager_, VI_ATTR_RSRC_NAME), "");
    EXPECT_EQ(viSetAttribute(manager_, VI_ATTR_TMO_VALUE, 1), VI_ERROR_NSUP_ATTR);
    EXPECT_EQ(viSetAttribute(manager_, VI_ATTR_RM_SESSION, 1), VI_ERROR_ATTR_READONLY);
    ViUInt32 timeout = 0;
    EXPECT_EQ(viGetAttribute(manager_, VI_ATTR_TMO_VALUE, &timeout), VI_ERROR_NSUP_ATTR);
}

TEST_F(VisaAttributes, ValuesAreKeptAndTold)
{
    EXPECT_EQ(viSetAttribute(socket_, VI_ATTR_TMO_VALUE, 1234), VI_SUCCESS);
    EXPECT_EQ(attribute<ViUInt32>(socket_, VI_ATTR_TMO_VALUE), 1234U);
    EXPECT_EQ(viSetAttribute(socket_, VI_ATTR_TERMCHAR, ';'), VI_SUCCESS);
    EXPECT_EQ(attribute<ViUInt8>(socket_, VI_ATTR_TERMCHAR), ';');
    EXPECT_EQ(viSetAttribute(socket_, VI_ATTR_IO_PROT, VI_PROT_4882_STRS), VI_SUCCESS);
    EXPECT_EQ(attribute<ViUInt16>(socket_, VI_ATTR_IO_PROT), VI_PROT_4882_STRS);
    EXPECT_EQ(viSetAttribute(socket_, VI_ATTR_TCPIP_KEEPALIVE, VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(attribute<ViBoolean>(socket_, VI_ATTR_TCPIP_KEEPALIVE), VI_TRUE);
    EXPECT_EQ(viSetAttribute(socket_, VI_ATTR_TCPIP_NODELAY, VI_FALSE), VI_SUCCESS);
    EXPECT_EQ(attribute<ViBoolean>(socket_, VI_ATTR_TCPIP_NODELAY), VI_FALSE);
}

TEST_F(VisaAttributes, ValuesAreReducedToTheAttributesWidth)
{
    const auto minusOne = static_cast<ViAttrState>(-1);
    EXPECT_EQ(viSetAttribute(socket_, VI_ATTR_TMO_VALUE, minusOne), VI_SUCCESS);
    EXPECT_EQ(attribute<ViUInt32>(socket_, VI_ATTR_TMO_VALUE), VI_TMO_INFINITE);
    EXPECT_EQ(viSetAttribute(socket_, VI_ATTR_TERMCHAR, static_cast<ViAttrState>(static_cast<signed char>(0xFE))),
              VI_SUCCESS);
    EXPECT_EQ(attribute<ViUInt8>(socket_, VI_ATTR_TERMCHAR), 0xFE);
    EXPECT_EQ(viSetAttribute(socket_, VI_ATTR_TERMCHAR_EN, minusOne - 0xFFFF + VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(attribute<ViBoolean>(socket_, VI_ATTR_TERMCHAR_EN), VI_TRUE);
}

TEST_F(VisaAttributes, ValuesOutsideTheRangeAreNotSupported)
{
    EXPECT_EQ(viSetAttribute(socket_, VI_ATTR_TERMCHAR_EN, 2), VI_ERROR_NSUP_ATTR_STATE);
    EXPECT_EQ(viSetAttribute(socket_, VI_ATTR_SEND_END_EN, 0xFFFF), VI_ERROR_NSUP_ATTR_STATE);
    EXPECT_EQ(viSetAttribute(socket_, VI_ATTR_IO_PROT, 2), VI_ERROR_NSUP_ATTR_STATE);
    EXPECT_EQ(viSetAttribute(socket_, VI_ATTR_TCPIP_NODELAY, 7), VI_ERROR_NSUP_ATTR_STATE);
    EXPECT_EQ(attribute<ViBoolean>(socket_, VI_ATTR_TERMCHAR_EN), VI_FALSE);
}

TEST_F(VisaAttributes, OtherResourcesAttributesAreNotSupported)
{
    ViUInt32 value = 17;
    for (const ViAttr name : {VI_ATTR_ASRL_BAUD, VI_ATTR_ASRL_END_IN, VI_ATTR_ASRL_AVAIL_NUM, VI_ATTR_SUPPRESS_END_EN,
                              VI_ATTR_TCPIP_DEVICE_NAME, ViAttr{0}, ViAttr{0xFFFFFFFF}})
    {
        EXPECT_EQ(viSetAttribute(socket_, name, 1), VI_ERROR_NSUP_ATTR) << std::hex << name;
        EXPECT_EQ(viGetAttribute(socket_, name, &value), VI_ERROR_NSUP_ATTR) << std::hex << name;
    }
    for (const ViAttr name : {VI_ATTR_TCPIP_NODELAY, VI_ATTR_TCPIP_PORT, VI_ATTR_TCPIP_ADDR}) {
        EXPECT_EQ(viSetAttribute(serial_, name, 1), VI_ERROR_NSUP_ATTR) << std::hex << name;
        EXPECT_EQ(viGetAttribute(serial_, name, &value), VI_ERROR_NSUP_ATTR) << std::hex << name;
    }
    EXPECT_EQ(value, 17U);
}

TEST_F(VisaAttributes, FactsAreReadOnly)
{
    for (const ViAttr name :
         {VI_ATTR_RD_BUF_SIZE, VI_ATTR_WR_BUF_SIZE, VI_ATTR_RSRC_NAME, VI_ATTR_RSRC_CLASS, VI_ATTR_RM_SESSION,
          VI_ATTR_INTF_TYPE, VI_ATTR_INTF_NUM, VI_ATTR_TCPIP_ADDR, VI_ATTR_TCPIP_HOSTNAME, VI_ATTR_TCPIP_PORT})
        EXPECT_EQ(viSetAttribute(socket_, name, 1), VI_ERROR_ATTR_READONLY) << std::hex << name;
    EXPECT_EQ(viSetAttribute(serial_, VI_ATTR_ASRL_AVAIL_NUM, 1), VI_ERROR_ATTR_READONLY);
}

TEST_F(VisaAttributes, BufferSizesAreThoseOfSetBuf)
{
    EXPECT_EQ(viSetBuf(socket_, VI_READ_BUF, 1024), VI_SUCCESS);
    EXPECT_EQ(viSetBuf(socket_, VI_WRITE_BUF, 2048), VI_SUCCESS);
    EXPECT_EQ(attribute<ViUInt32>(socket_, VI_ATTR_RD_BUF_SIZE), 1024U);
    EXPECT_EQ(attribute<ViUInt32>(socket_, VI_ATTR_WR_BUF_SIZE), 2048U);
}

TEST_F(VisaAttributes, ValuesAreWrittenInTheirOwnWidth)
{
    struct Width
    {
        ViAttr attribute;
        std::size_t bytes;
    };
    for (const Width width : {Width{VI_ATTR_TERMCHAR, 1}, Width{VI_ATTR_TERMCHAR_EN, 2}, Width{VI_ATTR_TCPIP_PORT, 2},
                              Width{VI_ATTR_TMO_VALUE, 4}, Width{VI_ATTR_RM_SESSION, 4}})
    {
        std::array<unsigned char, 8> low{};
        std::array<unsigned char, 8> high{};
        low.fill(0x00);
        high.fill(0xFF);
        ASSERT_EQ(viGetAttribute(socket_, width.attribute, low.data()), VI_SUCCESS);
        ASSERT_EQ(viGetAttribute(socket_, width.attribute, high.data()), VI_SUCCESS);
        EXPECT_EQ(std::memcmp(low.data(), high.data(), width.bytes), 0) << std::hex << width.attribute;
        for (std::size_t i = width.bytes; i < high.size(); ++i)
            EXPECT_EQ(high.at(i), 0xFF) << std::hex << width.attribute;
    }
}

TEST_F(VisaAttributes, EverySessionHasThoseOfTheTemplate)
{
    for (const ViSession session : {manager_, socket_, serial_}) {
        EXPECT_EQ(attribute<ViVersion>(session, VI_ATTR_RSRC_SPEC_VERSION), 0x00700200U);
        EXPECT_EQ(attribute<ViVersion>(session, VI_ATTR_RSRC_IMPL_VERSION), 0x00100000U);
        EXPECT_EQ(attribute<ViUInt16>(session, VI_ATTR_RSRC_MANF_ID), 0x3FFF);
        EXPECT_EQ(textAttribute(session, VI_ATTR_RSRC_MANF_NAME), "KVX2800T stand-in VISA");
        EXPECT_EQ(attribute<ViAccessMode>(session, VI_ATTR_RSRC_LOCK_STATE), static_cast<ViAccessMode>(VI_NO_LOCK));
        EXPECT_EQ(attribute<ViUInt32>(session, VI_ATTR_MAX_QUEUE_LENGTH), 50U);
        EXPECT_EQ(viSetAttribute(session, VI_ATTR_MAX_QUEUE_LENGTH, 0), VI_ERROR_NSUP_ATTR_STATE);
        EXPECT_EQ(viSetAttribute(session, VI_ATTR_MAX_QUEUE_LENGTH, 7), VI_SUCCESS);
        EXPECT_EQ(attribute<ViUInt32>(session, VI_ATTR_MAX_QUEUE_LENGTH), 7U);
        for (const ViAttr name : {VI_ATTR_RSRC_SPEC_VERSION, VI_ATTR_RSRC_IMPL_VERSION, VI_ATTR_RSRC_MANF_ID,
                                  VI_ATTR_RSRC_MANF_NAME, VI_ATTR_RSRC_LOCK_STATE})
            EXPECT_EQ(viSetAttribute(session, name, 1), VI_ERROR_ATTR_READONLY) << std::hex << name;
    }
}

TEST_F(VisaAttributes, UserDataIsKeptInItsWholeWidth)
{
    const auto value = static_cast<ViAttrState>(0x123456789ABCDEF0);
    for (const ViSession session : {manager_, socket_, serial_}) {
        EXPECT_EQ(attribute<ViAttrState>(session, VI_ATTR_USER_DATA), 0U);
        EXPECT_EQ(viSetAttribute(session, VI_ATTR_USER_DATA, value), VI_SUCCESS);
        EXPECT_EQ(attribute<ViAttrState>(session, VI_ATTR_USER_DATA), value);
        EXPECT_EQ(viSetAttribute(session, VI_ATTR_USER_DATA_32, 0xFFFFFFFF), VI_SUCCESS);
        EXPECT_EQ(attribute<ViUInt32>(session, VI_ATTR_USER_DATA_32), 0xFFFFFFFFU);
    }
}

TEST_F(VisaAttributes, DefaultsOfWhatOnlyFormattedAndFileInputAndOutputNeed)
{
    for (const ViSession session : {socket_, serial_}) {
        EXPECT_EQ(attribute<ViBoolean>(session, VI_ATTR_DMA_ALLOW_EN), VI_FALSE);
        EXPECT_EQ(attribute<ViBoolean>(session, VI_ATTR_FILE_APPEND_EN), VI_FALSE);
        EXPECT_EQ(attribute<ViUInt16>(session, VI_ATTR_RD_BUF_OPER_MODE), VI_FLUSH_DISABLE);
        EXPECT_EQ(attribute<ViUInt16>(session, VI_ATTR_WR_BUF_OPER_MODE), VI_FLUSH_WHEN_FULL);
        EXPECT_EQ(viSetAttribute(session, VI_ATTR_RD_BUF_OPER_MODE, VI_FLUSH_WHEN_FULL), VI_ERROR_NSUP_ATTR_STATE);
        EXPECT_EQ(viSetAttribute(session, VI_ATTR_RD_BUF_OPER_MODE, VI_FLUSH_ON_ACCESS), VI_SUCCESS);
        EXPECT_EQ(viSetAttribute(session, VI_ATTR_WR_BUF_OPER_MODE, VI_FLUSH_DISABLE), VI_ERROR_NSUP_ATTR_STATE);
        EXPECT_EQ(viSetAttribute(session, VI_ATTR_WR_BUF_OPER_MODE, VI_FLUSH_ON_ACCESS), VI_SUCCESS);
    }
    EXPECT_EQ(attribute<ViInt16>(serial_, VI_ATTR_TRIG_ID), VI_TRIG_SW);
    EXPECT_EQ(viSetAttribute(serial_, VI_ATTR_TRIG_ID, static_cast<ViAttrState>(VI_TRIG_SW)), VI_SUCCESS);
    EXPECT_EQ(viSetAttribute(serial_, VI_ATTR_TRIG_ID, VI_TRIG_TTL0), VI_ERROR_NSUP_ATTR_STATE);
    ViInt16 trigger = 17;
    EXPECT_EQ(viGetAttribute(socket_, VI_ATTR_TRIG_ID, &trigger), VI_ERROR_NSUP_ATTR);
}

TEST_F(VisaAttributes, SocketHasNoCertificate)
{
    for (const ViAttr name :
         {VI_ATTR_TCPIP_SERVER_CERT, VI_ATTR_TCPIP_SERVER_CERT_ISSUER_NAME, VI_ATTR_TCPIP_SERVER_CERT_SUBJECT_NAME,
          VI_ATTR_TCPIP_SERVER_CERT_EXPIRATION_DATE, VI_ATTR_TCPIP_TLS_CIPHER_SUITE})
    {
        EXPECT_EQ(textAttribute(socket_, name), "") << std::hex << name;
        EXPECT_EQ(viSetAttribute(socket_, name, 0), VI_ERROR_ATTR_READONLY) << std::hex << name;
    }
    EXPECT_EQ(attribute<ViUInt32>(socket_, VI_ATTR_TCPIP_SERVER_CERT_SIZE), 0U);
    EXPECT_EQ(attribute<ViBoolean>(socket_, VI_ATTR_TCPIP_SERVER_CERT_IS_PERPETUAL), VI_FALSE);
}

TEST_F(VisaAttributes, InterfacesHaveNames)
{
    EXPECT_EQ(textAttribute(socket_, VI_ATTR_INTF_INST_NAME), "TCPIP0");
    EXPECT_EQ(viSetAttribute(serial_, VI_ATTR_INTF_INST_NAME, 0), VI_ERROR_ATTR_READONLY);
    EXPECT_NE(textAttribute(serial_, VI_ATTR_INTF_INST_NAME), "");
}

TEST_F(VisaAttributes, FlowControlCharactersAreThoseOfTheLine)
{
    EXPECT_EQ(attribute<ViUInt8>(serial_, VI_ATTR_ASRL_XON_CHAR), 0x11);
    EXPECT_EQ(attribute<ViUInt8>(serial_, VI_ATTR_ASRL_XOFF_CHAR), 0x13);
    EXPECT_EQ(attribute<ViUInt8>(serial_, VI_ATTR_ASRL_REPLACE_CHAR), 0);
    EXPECT_EQ(viSetAttribute(serial_, VI_ATTR_ASRL_XON_CHAR, 0x21), VI_SUCCESS);
    EXPECT_EQ(viSetAttribute(serial_, VI_ATTR_ASRL_XOFF_CHAR, 0x23), VI_SUCCESS);
    EXPECT_EQ(attribute<ViUInt8>(serial_, VI_ATTR_ASRL_XON_CHAR), 0x21);
    EXPECT_EQ(attribute<ViUInt8>(serial_, VI_ATTR_ASRL_XOFF_CHAR), 0x23);
}

TEST_F(VisaAttributes, OnlyTheLinesThatAPortDrivesCanBeSetAndToOneOfTwoStates)
{
    for (const ViAttr name :
         {VI_ATTR_ASRL_CTS_STATE, VI_ATTR_ASRL_DCD_STATE, VI_ATTR_ASRL_DSR_STATE, VI_ATTR_ASRL_RI_STATE})
        EXPECT_EQ(viSetAttribute(serial_, name, VI_STATE_ASSERTED), VI_ERROR_ATTR_READONLY) << std::hex << name;
    EXPECT_EQ(viSetAttribute(serial_, VI_ATTR_ASRL_DTR_STATE, 2), VI_ERROR_NSUP_ATTR_STATE);
    EXPECT_EQ(viSetAttribute(serial_, VI_ATTR_ASRL_RTS_STATE, static_cast<ViAttrState>(VI_STATE_UNKNOWN)),
              VI_ERROR_NSUP_ATTR_STATE);
}

TEST_F(VisaAttributes, NullPointerIsRefused)
{
    EXPECT_EQ(viGetAttribute(socket_, VI_ATTR_TMO_VALUE, nullptr), VI_ERROR_INV_PARAMETER);
}

} // namespace
