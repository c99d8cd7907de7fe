#include "virtual_instrument/common/front_panel.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

using namespace kvxvirtual;

/// Remote, remote enabled and locked out, in this order: "R", "E", "L", or "-".
std::string stateOf(const FrontPanel& panel)
{
    return std::string(panel.remote() ? "R" : "-") + (panel.remoteEnabled() ? "E" : "-") +
           (panel.lockedOut() ? "L" : "-");
}

TEST(FrontPanel, IsLocalAndEnabledAtFirstAndBecomesRemoteWhenAClientActs)
{
    FrontPanel panel;
    EXPECT_EQ(stateOf(panel), "-E-");
    panel.clientActed();
    EXPECT_EQ(stateOf(panel), "RE-");
}

TEST(FrontPanel, StaysLocalWhileRemoteIsDisabled)
{
    FrontPanel panel;
    panel.request(PanelRequest::DisableRemote);
    panel.clientActed();
    EXPECT_EQ(stateOf(panel), "---");
}

TEST(FrontPanel, EveryRequestSetsWhatItNamesAndLeavesTheRest)
{
    struct Case
    {
        PanelRequest request;
        const char* fromLocal;     ///< from "-E-"
        const char* fromLockedOut; ///< from "REL"
        const char* fromDisabled;  ///< from "---"
    };
    for (const auto& [request, fromLocal, fromLockedOut, fromDisabled] : {
             Case{PanelRequest::DisableRemote, "---", "---", "---"},
             Case{PanelRequest::EnableRemote, "-E-", "REL", "-E-"},
             Case{PanelRequest::DisableRemoteAndGoToLocal, "---", "---", "---"},
             Case{PanelRequest::EnableRemoteAndGoToRemote, "RE-", "REL", "RE-"},
             Case{PanelRequest::EnableRemoteAndLockOut, "-EL", "REL", "-EL"},
             Case{PanelRequest::EnableRemoteGoToRemoteAndLockOut, "REL", "REL", "REL"},
             Case{PanelRequest::GoToLocal, "-E-", "-EL", "---"},
         })
    {
        SCOPED_TRACE(static_cast<int>(request));
        FrontPanel local;
        local.request(request);
        EXPECT_EQ(stateOf(local), fromLocal);

        FrontPanel lockedOut;
        lockedOut.request(PanelRequest::EnableRemoteGoToRemoteAndLockOut);
        lockedOut.request(request);
        EXPECT_EQ(stateOf(lockedOut), fromLockedOut);

        FrontPanel disabled;
        disabled.request(PanelRequest::DisableRemote);
        disabled.request(request);
        EXPECT_EQ(stateOf(disabled), fromDisabled);
    }
}

} // namespace
