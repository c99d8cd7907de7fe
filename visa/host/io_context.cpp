#include "visa/host/io_context.h"

namespace visa
{

asio::io_context& ioContext()
{
    // Never destroyed: sessions may still be closed while the process ends.
    static asio::io_context& context = *new asio::io_context;
    return context;
}

} // namespace visa
