#include "visa/transport/vxi11/vxi11_open.h"

namespace visa
{

ViStatus openVxi11(const ResourceName&, const Deadline&, std::unique_ptr<Transport>&)
{
    return VI_ERROR_LIBRARY_NFOUND;
}

} // namespace visa
