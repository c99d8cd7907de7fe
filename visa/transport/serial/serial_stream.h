#pragma once

#include "visa/resource/resource_name.h"
#include "visa/transport/stream.h"

#include <memory>

namespace visa
{

/// Opens a serial port (ASRL INSTR) in raw mode, without a wait.
ViStatus openSerialStream(const ResourceName& name, const Deadline& deadline, std::unique_ptr<Stream>& stream);

} // namespace visa
