#include "visa/host/network.h"

namespace visa
{

NetworkHold::NetworkHold() noexcept = default;

void startNetwork() noexcept {}

} // namespace visa
