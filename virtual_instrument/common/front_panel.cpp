#include "virtual_instrument/common/front_panel.h"

#include <array>
#include <cstddef>
#include <optional>

namespace kvxvirtual
{
namespace
{

/// What a request makes of the three; nothing: it stays.
struct PanelRow
{
    std::optional<bool> remoteEnabled;
    std::optional<bool> lockedOut;
    std::optional<bool> remote;
};

constexpr std::optional<bool> kStays;

/// By the request's number.
constexpr std::array<PanelRow, 7> kPanelRows{{
    {false, false, false},
    {true, kStays, kStays},
    {false, false, false},
    {true, kStays, true},
    {true, true, kStays},
    {true, true, true},
    {kStays, kStays, false},
}};

} // namespace

void FrontPanel::request(PanelRequest request)
{
    const auto& row = kPanelRows[static_cast<std::size_t>(request)];
    remoteEnabled_ = row.remoteEnabled.value_or(remoteEnabled_);
    lockedOut_ = row.lockedOut.value_or(lockedOut_);
    remote_ = row.remote.value_or(remote_);
}

} // namespace kvxvirtual
