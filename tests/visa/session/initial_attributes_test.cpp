#include "visa/session/instrument_session.h"

#include <map>
#include <memory>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using visa::InstrumentSession;

/// A connection that tells of itself and writes down what is set.
class TellingTransport : public visa::Transport
{
public:
    ViStatus read(std::span<ViByte>, const visa::Terms&, std::size_t&) override { return VI_ERROR_TMO; }
    ViStatus write(std::span<const ViByte>, const visa::Terms&, std::size_t&) override { return VI_SUCCESS; }
    ViStatus clear(const visa::Terms&) override { return VI_SUCCESS; }
    ViStatus setAttribute(ViAttr attribute, ViAttrState value) override
    {
        settings[attribute] = value;
        return status;
    }
    ViUInt32 numberFact(ViAttr attribute) override { return attribute == VI_ATTR_USB_MAX_INTR_SIZE ? 64 : 0; }
    void interrupt() noexcept override {}

    std::map<ViAttr, ViAttrState> settings;
    ViStatus status = VI_SUCCESS;
};

class InitialAttributes : public testing::Test
{
protected:
    void openAs(visa::ResourceKind kind, visa::SessionClass sessionClass)
    {
        auto transport = std::make_unique<TellingTransport>();
        transport_ = transport.get();
        visa::ResourceName name;
        name.kind = kind;
        session_ = std::make_unique<InstrumentSession>(InstrumentSession::Identity{2, 1, name},
                                                       visa::OpenedTransport{std::move(transport), sessionClass},
                                                       std::make_shared<visa::ResourceLock>());
    }

    TellingTransport* transport_ = nullptr;
    std::unique_ptr<InstrumentSession> session_;
};

TEST_F(InitialAttributes, LargestNotificationIsTheInterruptPipesUntilItIsSet)
{
    openAs(visa::ResourceKind::Usb, visa::kUsb);
    EXPECT_EQ(session_->applyInitialAttributes(), VI_SUCCESS);
    ViUInt16 size = 0;
    EXPECT_EQ(session_->getAttribute(VI_ATTR_USB_MAX_INTR_SIZE, &size), VI_SUCCESS);
    EXPECT_EQ(size, 64);
    EXPECT_EQ(session_->setAttribute(VI_ATTR_USB_MAX_INTR_SIZE, 0xFFFF), VI_SUCCESS);
    EXPECT_EQ(session_->getAttribute(VI_ATTR_USB_MAX_INTR_SIZE, &size), VI_SUCCESS);
    EXPECT_EQ(size, 0xFFFF);
    EXPECT_THAT(transport_->settings, testing::IsEmpty());
}

TEST_F(InitialAttributes, ConnectionGetsItsOwnAndNoOthers)
{
    openAs(visa::ResourceKind::TcpipSocket, visa::kSocket);
    EXPECT_EQ(session_->applyInitialAttributes(), VI_SUCCESS);
    EXPECT_THAT(transport_->settings, testing::ElementsAre(testing::Pair(VI_ATTR_TCPIP_NODELAY, VI_TRUE),
                                                           testing::Pair(VI_ATTR_TCPIP_KEEPALIVE, VI_FALSE)));
}

TEST_F(InitialAttributes, OneThatIsRefusedIsTheAnswer)
{
    openAs(visa::ResourceKind::TcpipSocket, visa::kSocket);
    transport_->status = VI_ERROR_NSUP_ATTR_STATE;
    EXPECT_EQ(session_->applyInitialAttributes(), VI_ERROR_NSUP_ATTR_STATE);
}

} // namespace
