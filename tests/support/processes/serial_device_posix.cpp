#include "tests/support/processes/serial_device.h"

namespace kvxtest
{

struct SerialDevice::Host
{
};

SerialDevice::SerialDevice(const std::string& path) : name_(path), resource_("ASRL" + path + "::INSTR") {}

SerialDevice::~SerialDevice() = default;

} // namespace kvxtest
