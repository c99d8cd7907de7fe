#pragma once

#include "api/KVX2800T.h"
#include "benchmarks/turns.h"

#include <string>

namespace kvxbenchmark
{

/// A set and a query through the driver and VISA.
class DriverClient
{
public:
    explicit DriverClient(std::string resource)
    {
        require(KVX2800T_init(resource.data(), VI_FALSE, VI_FALSE, &vi_) == VI_SUCCESS);
    }
    DriverClient(const DriverClient&) = delete;
    DriverClient& operator=(const DriverClient&) = delete;
    ~DriverClient() { KVX2800T_close(vi_); }

    void setAndQuery()
    {
        ViReal64 volts = 0.0;
        require(KVX2800T_ConfigureVoltageLevel(vi_, "OutputChannel3", 5.0) == VI_SUCCESS);
        require(KVX2800T_GetAttributeViReal64(vi_, "OutputChannel3", KVX2800T_ATTR_VOLTAGE_LEVEL, &volts) ==
                VI_SUCCESS);
        require(volts == 5.0);
    }

private:
    ViSession vi_ = VI_NULL;
};

} // namespace kvxbenchmark
