#pragma once

#include <memory>
#include <string>

namespace kvxtest
{

/// The virtual instrument's serial line as the host's programs name it.
class SerialDevice
{
public:
    /// `path` as the virtual instrument tells it.
    explicit SerialDevice(const std::string& path);
    ~SerialDevice();
    SerialDevice(const SerialDevice&) = delete;
    SerialDevice& operator=(const SerialDevice&) = delete;

    /// The device, as a variable VISA_ASRL<n> may name it.
    const std::string& name() const { return name_; }

    /// The VISA resource descriptor.
    const std::string& resource() const { return resource_; }

private:
    struct Host;
    std::unique_ptr<Host> host_;
    std::string name_;
    std::string resource_;
};

} // namespace kvxtest
