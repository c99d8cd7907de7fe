#pragma once

namespace kvxvirtual
{

/// What a client asks for about the front panel, with the numbers of IEEE 488's REN, LLO and GTL as VISA has them.
enum class PanelRequest
{
    DisableRemote = 0,
    EnableRemote = 1,
    DisableRemoteAndGoToLocal = 2,
    EnableRemoteAndGoToRemote = 3,
    EnableRemoteAndLockOut = 4,
    EnableRemoteGoToRemoteAndLockOut = 5,
    GoToLocal = 6,
};

/// Who operates the instrument: the front panel, which a virtual one has not, or a client (IEEE 488.1 remote/local).
/// It changes nothing of what clients can do.
class FrontPanel
{
public:
    bool remote() const { return remote_; }
    bool remoteEnabled() const { return remoteEnabled_; }
    bool lockedOut() const { return lockedOut_; }

    /// Something came from a client on a link that knows remote and local.
    void clientActed() { remote_ = remote_ || remoteEnabled_; }

    void request(PanelRequest request);

private:
    bool remote_ = false;
    bool remoteEnabled_ = true;
    bool lockedOut_ = false;
};

} // namespace kvxvirtual
